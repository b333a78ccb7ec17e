/*
 * cmd_pipe.cpp -- `orto -a` / `orto pipe`: the ispell pipe protocol, as
 * Emacs (ispell.el, flyspell) and editor plugins speak it with ispell,
 * Hunspell and Aspell.
 *
 * The program prints a banner line, then answers each input line as soon
 * as it has read it, and flushes, since the editor waits for the answer
 * before it sends the next line.  A text line is answered with one line a
 * word and an empty line:
 *
 *   *                        the word is correct (left out in terse mode)
 *   & WORD COUNT OFFSET: s1, s2, ...   misspelled, with suggestions
 *   # WORD OFFSET            misspelled, no suggestions
 *
 * OFFSET counts characters of the input line from 0, a leading '^'
 * included.  A line that begins with one of * & @ # ! % + - ~ is a
 * command and is answered with nothing; '^' marks a line as text, so that
 * text that begins with a command character can be checked.
 *
 * Editors start the program with the flags they know for ispell or
 * Hunspell.  Unknown flags must not stop the editor's checking, so in this
 * mode they are ignored with a note on standard error.  -C (run-together
 * words are legal) turns SplitWords on, -B turns it off.
 */
#include <stdlib.h>
#include <string.h>

#include "check_walk.h"
#include "cmd_pipe.h"
#include "lexicons.h"
#include "orto.h"
#include "report_rules.h"
#include "suggestions.h"

void printPipeHelp(FILE *out)
{
    fputs("Usage: orto -a [OPTION]...\n"
          "       orto pipe [OPTION]...\n"
          "\n"
          "Speaks the ispell pipe protocol on standard input and output, for\n"
          "editors such as Emacs (set ispell-program-name to \"orto\").  After a\n"
          "banner line, each text line is answered with one line a word, then an\n"
          "empty line:\n"
          "  *                        correct\n"
          "  & WORD COUNT OFFSET: s1, s2, ...   misspelled, with suggestions\n"
          "  # WORD OFFSET            misspelled, no suggestions\n"
          "OFFSET counts characters of the line from 0, a leading ^ included.\n"
          "\n"
          "Lines that begin with these characters are commands:\n"
          "  *WORD   add WORD to the personal lexicon\n"
          "  &WORD   add WORD in lower case to the personal lexicon\n"
          "  @WORD   accept WORD until the end of this run\n"
          "  #       save the personal lexicon (it is saved at each add anyway)\n"
          "  !  %    terse mode on (no line for correct words) and off\n"
          "  + - ~   formatter and character set hints: accepted and ignored\n"
          "  ^TEXT   check TEXT, even if it begins with a command character\n"
          "\n"
          "The flags -m, -B, -C, -l, -S, -t, -n, -x, -w CHARS, -T TYPE, -W N are\n"
          "accepted for ispell's sake; -C lets run-together words pass (SplitWords),\n"
          "-B reports them.  Any other unknown flag is ignored with a note.\n"
          "\n",
          out);
    printReportRulesHelp(out);
    printCheckOptionsHelp(out);
}

/* Flags of ispell and Hunspell that take a value. */
static bool takesValue(const char *flag)
{
    return strcmp(flag, "-w") == 0 || strcmp(flag, "-T") == 0 || strcmp(flag, "-W") == 0;
}

/* Sorts out the ispell-style flags and hands the rest to the common
 * parser, one argument (with its value) at a time. */
static bool parsePipeOptions(int argc, char **argv, int first, CheckOptions *options)
{
    for (int i = first; i < argc; i++) {
        const char *arg = argv[i];
        if (strcmp(arg, "-a") == 0 || strcmp(arg, "-m") == 0 || strcmp(arg, "-l") == 0 ||
            strcmp(arg, "-S") == 0 || strcmp(arg, "-t") == 0 || strcmp(arg, "-n") == 0 ||
            strcmp(arg, "-x") == 0)
            continue;
        if (strcmp(arg, "-B") == 0 || strcmp(arg, "-C") == 0) {
            OptionSetting s = {ORTO_SplitWords, arg[1] == 'C'};
            options->settings.push_back(s);
            continue;
        }
        if (takesValue(arg) || ((arg[1] == 'w' || arg[1] == 'T' || arg[1] == 'W') && arg[0] == '-' && arg[2])) {
            if (takesValue(arg))
                i++;
            continue;
        }
        /* one option of our own, with its value if it takes one */
        int count = 1;
        if ((strcmp(arg, "-d") == 0 || strcmp(arg, "-p") == 0 || strcmp(arg, "-i") == 0 ||
             strcmp(arg, "--lexicon") == 0 || strcmp(arg, "--personal") == 0 ||
             strcmp(arg, "--encoding") == 0 || strcmp(arg, "--option") == 0 ||
             strcmp(arg, "--depth") == 0 || strcmp(arg, "--max") == 0) && i + 1 < argc)
            count = 2;
        bool known = arg[0] == '-' && strcmp(arg, "-") != 0 &&
                     (strncmp(arg, "-d", 2) == 0 || strncmp(arg, "-p", 2) == 0 ||
                      strncmp(arg, "-i", 2) == 0 || strcmp(arg, "--help") == 0 ||
                      strcmp(arg, "--exact") == 0 ||
                      strcmp(arg, "-h") == 0 || strncmp(arg, "--lexicon", 9) == 0 ||
                      strncmp(arg, "--personal", 10) == 0 || strncmp(arg, "--encoding", 10) == 0 ||
                      strncmp(arg, "--option", 8) == 0 || strncmp(arg, "--depth", 7) == 0 ||
                      strncmp(arg, "--max", 5) == 0);
        if (!known) {
            fprintf(stderr, "orto: ignoring %s '%s' in -a mode\n", arg[0] == '-' ? "unknown flag" : "argument", arg);
            continue;
        }
        char *pair[2] = {argv[i], count == 2 ? argv[i + 1] : nullptr};
        if (!parseCheckOptions(count, pair, 0, "pipe", options))
            return false;
        i += count - 1;
    }
    return true;
}

static std::string lowerCase(const std::string &word)
{
    std::string lower = word;
    for (char &ch : lower) {
        unsigned char c = (unsigned char)ch;
        if ((c >= 'A' && c <= 'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7))
            ch = (char)(c + 0x20);
        else if (c == 0x8A || c == 0x8C || c == 0x8E)
            ch = (char)(c + 0x10);
        else if (c == 0x9F)
            ch = (char)0xFF;
    }
    return lower;
}

static std::string trim(const std::string &text)
{
    size_t b = text.find_first_not_of(" \t");
    if (b == std::string::npos)
        return std::string();
    size_t e = text.find_last_not_of(" \t");
    return text.substr(b, e - b + 1);
}

/* The candidates for a reported word: what the check gave in the word's
 * place, then, for a misspelled word, the likely suggestions. */
static void candidatesFor(int16_t sid, const WalkWord &w, const CheckOptions &options,
                          std::vector<std::string> *out)
{
    out->clear();
    const int16_t replacing = ORTO_AutoChangeWord | ORTO_ConditionalChangeWord | ORTO_UncappedWord |
                              ORTO_MixedCaseWord;
    if ((w.mask & replacing) && !w.replacement.empty() && w.replacement != w.word)
        out->push_back(w.replacement);
    if (!(w.mask & ORTO_MisspelledWord))
        return;
    std::vector<Suggestion> list;
    if (suggestWord(sid, w.word, options.depth, options.maxSuggestions, &list,
                    options.exact ? SuggestExact : SuggestRanked) < 0)
        return; /* an editor is better served by no suggestions than by no answer */
    keepLikelySuggestions(&list);
    for (const Suggestion &s : list) {
        bool seen = false;
        for (const std::string &c : *out)
            seen = seen || c == s.word;
        if (!seen && (int)out->size() < options.maxSuggestions)
            out->push_back(s.word);
    }
}

static void answerLine(LexiconSet *set, const std::string &line, unsigned long lineNumber,
                       const CheckOptions &options, bool terse, FILE *out)
{
    std::string engine;
    if (!toEngineText(line, options.encoding, &engine)) {
        printError("standard input:%lu: invalid UTF-8 (give -i latin1 for Latin-1 text); line not checked",
                   lineNumber);
        fputs("\n", out);
        return;
    }
    std::vector<WalkWord> words;
    int16_t rc = walkText(set->sid, engine, true, &words);
    if (rc < 0)
        printError("standard input:%lu: checking failed: %s", lineNumber, resultText(rc));
    std::vector<std::string> candidates;
    for (const WalkWord &w : words) {
        if (w.mask == 0) {
            if (!terse)
                fputs("*\n", out);
            continue;
        }
        std::string word = fromEngineText(w.word, options.encoding);
        candidatesFor(set->sid, w, options, &candidates);
        if (candidates.empty()) {
            fprintf(out, "# %s %u\n", word.c_str(), (unsigned)w.offset);
            continue;
        }
        fprintf(out, "& %s %zu %u: ", word.c_str(), candidates.size(), (unsigned)w.offset);
        for (size_t i = 0; i < candidates.size(); i++)
            fprintf(out, "%s%s", i ? ", " : "", fromEngineText(candidates[i], options.encoding).c_str());
        fputs("\n", out);
    }
    fputs("\n", out);
}

/* A word of a command line, in engine text; false with a note. */
static bool commandWord(const std::string &text, const CheckOptions &options, unsigned long lineNumber,
                        std::string *word)
{
    size_t foreign = 0;
    if (!toEngineText(trim(text), options.encoding, word, &foreign) || foreign > 0 ||
        !isStorableWord(*word)) {
        printError("standard input:%lu: '%s' can't be added", lineNumber, trim(text).c_str());
        return false;
    }
    return true;
}

void pipeLines(LexiconSet *set, const CheckOptions &options, FILE *in, FILE *out)
{
    bool terse = false;
    char *buffer = nullptr;
    size_t capacity = 0;
    ssize_t n;
    unsigned long lineNumber = 0;
    while ((n = getline(&buffer, &capacity, in)) >= 0) {
        std::string line(buffer, (size_t)n);
        lineNumber++;
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
            line.pop_back();
        std::string word;
        switch (line.empty() ? 0 : line[0]) {
        case '*':
            if (commandWord(line.substr(1), options, lineNumber, &word))
                addToPersonal(set, word);
            break;
        case '&':
            if (commandWord(line.substr(1), options, lineNumber, &word))
                addToPersonal(set, lowerCase(word));
            break;
        case '@':
            if (commandWord(line.substr(1), options, lineNumber, &word))
                acceptForRun(set, word);
            break;
        case '#': /* every add is written at once: nothing is left to save */
        case '+':
        case '-':
        case '~':
            break;
        case '!':
            terse = true;
            break;
        case '%':
            terse = false;
            break;
        default: /* '^' and all text */
            answerLine(set, line, lineNumber, options, terse, out);
            break;
        }
        fflush(out);
    }
    free(buffer);
}

int runPipe(int argc, char **argv, int first)
{
    CheckOptions options;
    initCheckOptions(&options);
    if (!parsePipeOptions(argc, argv, first, &options))
        return ExitUsage;
    if (options.help) {
        printPipeHelp(stdout);
        return ExitOk;
    }
    LexiconSet set;
    if (openLexicons(options, true, &set) != ExitOk)
        return ExitFailure;

    char version[16];
    ORTO_Version(version, sizeof version);
    printf("@(#) International Ispell Version 3.1.20 (but really ORTO %s)\n", version);
    fflush(stdout);
    pipeLines(&set, options, stdin, stdout);
    closeLexicons(&set);
    return ExitOk;
}
