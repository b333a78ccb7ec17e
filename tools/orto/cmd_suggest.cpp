/*
 * cmd_suggest.cpp -- `orto suggest WORD...`: what the checker says about
 * each word, and for a misspelled one the ranked suggestions with their
 * scores, all that ORTO_Suggest gives up to --max.
 *
 * Output, one block a word:
 *
 *   hello: correct
 *   helo: misspelled
 *     83 hello
 *     80 help
 *   teh: auto-change to the
 */
#include <string.h>

#include "lexicons.h"
#include "orto.h"
#include "suggestions.h"

void printSuggestHelp(FILE *out)
{
    fputs("Usage: orto suggest [OPTION]... WORD...\n"
          "\n"
          "Checks each WORD and tells whether it is correct; for a misspelled word\n"
          "it prints the suggestions, best first, each after its score (0 to 100).\n"
          "Other findings show with the text the checker offers in the word's place:\n"
          "auto-change to, consider changing to, should begin with a capital, mixed\n"
          "case.\n"
          "\n",
          out);
    printCheckOptionsHelp(out);
}

/* What the result bits say, with the replacement where it matters. */
static std::string describe(int16_t mask, const std::string &replacement)
{
    if (mask == 0)
        return "correct";
    std::string text;
    const auto add = [&text](const std::string &part) {
        if (!text.empty())
            text += ", ";
        text += part;
    };
    if (mask & ORTO_MisspelledWord)
        add((mask & ORTO_MixedDigitsWord) ? "misspelled (with a digit)" : "misspelled");
    if (mask & ORTO_AutoChangeWord)
        add("auto-change to " + replacement);
    if (mask & ORTO_ConditionalChangeWord)
        add("consider changing to " + replacement);
    if (mask & ORTO_UncappedWord)
        add("should begin with a capital: " + replacement);
    if (mask & ORTO_MixedCaseWord)
        add("mixed case: " + replacement);
    return text;
}

int runSuggest(int argc, char **argv, int first)
{
    CheckOptions options;
    initCheckOptions(&options);
    if (!parseCheckOptions(argc, argv, first, "suggest", &options))
        return ExitUsage;
    if (options.help) {
        printSuggestHelp(stdout);
        return ExitOk;
    }
    if (options.operands.empty()) {
        printError("suggest needs a word (try 'orto suggest --help')");
        return ExitUsage;
    }
    LexiconSet set;
    if (openLexicons(options, false, &set) != ExitOk)
        return ExitFailure;

    int status = ExitOk;
    for (const std::string &arg : options.operands) {
        std::string word;
        size_t foreign = 0;
        if (!toEngineText(arg, options.encoding, &word, &foreign)) {
            printError("'%s' is not valid UTF-8 (give -i latin1 for Latin-1 words)", arg.c_str());
            status = ExitFailure;
            continue;
        }
        if (foreign || word.size() > 63) {
            printf("%s: not checked: %s\n", arg.c_str(),
                   foreign ? "it has characters that Windows Latin-1 lacks" : "longer than 63 characters");
            continue;
        }
        char replacement[64] = "";
        int16_t mask = ORTO_CheckWord(set.sid, word.c_str(), replacement, sizeof replacement);
        if (mask < 0) {
            printError("checking '%s' failed: %s", arg.c_str(), resultText(mask));
            status = ExitFailure;
            continue;
        }
        printf("%s: %s\n", arg.c_str(), describe(mask, fromEngineText(replacement, options.encoding)).c_str());
        if (!(mask & ORTO_MisspelledWord))
            continue;
        std::vector<Suggestion> list;
        int16_t rc = suggestWord(set.sid, word, options.depth, options.maxSuggestions, &list,
                                 options.exact ? SuggestExact : SuggestRanked);
        if (rc < 0) {
            printError("suggestions for '%s' failed: %s", arg.c_str(), resultText(rc));
            status = ExitFailure;
            continue;
        }
        if (list.empty())
            printf("  (no suggestions)\n");
        for (const Suggestion &s : list)
            printf("  %3d %s\n", s.score, fromEngineText(s.word, options.encoding).c_str());
    }
    closeLexicons(&set);
    return status;
}
