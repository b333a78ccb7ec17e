/*
 * cmd_list.cpp -- `orto list`: the words to report, one a line, in the
 * order of the text, as `hunspell -l` and `aspell list` print them.
 *
 * The text is read line by line and checked as blocks of whole lines.  A
 * block ends at an empty line (a paragraph) or when it reaches 64 KB, so
 * that memory stays small on any input and a paragraph keeps what a block
 * gives it: the doubled-word test across line ends, and the first word
 * held to a capital under ReportUncappedWords.
 */
#include <errno.h>
#include <stdlib.h>
#include <string.h>

#include "check_walk.h"
#include "lexicons.h"
#include "orto.h"
#include "report_rules.h"

static const size_t BlockTarget = 64 * 1024;

void printListHelp(FILE *out)
{
    fputs("Usage: orto list [OPTION]... [FILE]...\n"
          "       orto -l [OPTION]... [FILE]...\n"
          "\n"
          "Checks the text of each FILE (standard input without FILE, or for -)\n"
          "and prints each word that the checker reports, one a line, in the order\n"
          "of the text.  The exit status is 0 whether or not words were found, 1\n"
          "when a file or a lexicon can't be read or the text isn't valid UTF-8,\n"
          "2 for a bad option.\n"
          "\n",
          out);
    printReportRulesHelp(out);
    printCheckOptionsHelp(out);
}

static bool isBlankLine(const std::string &line)
{
    for (char c : line)
        if (c != ' ' && c != '\t' && c != '\r' && c != '\n')
            return false;
    return true;
}

/* Checks one block of engine text and prints its reported words. */
static bool flushBlock(int16_t sid, std::string *block, TextEncoding encoding)
{
    if (block->empty())
        return true;
    std::vector<WalkWord> words;
    int16_t rc = walkText(sid, *block, false, &words);
    block->clear();
    if (rc < 0) {
        printError("checking failed: %s", resultText(rc));
        return false;
    }
    for (const WalkWord &w : words) {
        std::string out = fromEngineText(w.word, encoding);
        out.push_back('\n');
        fwrite(out.data(), 1, out.size(), stdout);
    }
    return true;
}

/* Lists one input; returns ExitOk, or ExitFailure after a message. */
static int listStream(int16_t sid, FILE *in, const char *name, TextEncoding encoding)
{
    std::string block, engine, text;
    char *line = nullptr;
    size_t capacity = 0;
    ssize_t n;
    unsigned long lineNumber = 0;
    int status = ExitOk;
    while ((n = getline(&line, &capacity, in)) >= 0) {
        text.assign(line, (size_t)n);
        if (++lineNumber == 1 && text.compare(0, 3, "\xEF\xBB\xBF") == 0 && encoding == EncodingUtf8)
            text.erase(0, 3);
        if (!toEngineText(text, encoding, &engine)) {
            printError("%s:%lu: invalid UTF-8 (give -i latin1 for Latin-1 text)", name, lineNumber);
            status = ExitFailure;
            break;
        }
        block += engine;
        if (isBlankLine(text) || block.size() >= BlockTarget) {
            if (!flushBlock(sid, &block, encoding)) {
                status = ExitFailure;
                break;
            }
        }
    }
    if (n < 0 && ferror(in)) {
        printError("%s: %s", name, strerror(errno));
        status = ExitFailure;
    }
    free(line);
    if (!flushBlock(sid, &block, encoding))
        status = ExitFailure;
    return status;
}

int runList(int argc, char **argv, int first)
{
    CheckOptions options;
    initCheckOptions(&options);
    if (!parseCheckOptions(argc, argv, first, "list", &options))
        return ExitUsage;
    if (options.help) {
        printListHelp(stdout);
        return ExitOk;
    }
    LexiconSet set;
    if (openLexicons(options, false, &set) != ExitOk)
        return ExitFailure;

    int status = ExitOk;
    if (options.operands.empty())
        options.operands.push_back("-");
    for (const std::string &name : options.operands) {
        if (name == "-") {
            if (listStream(set.sid, stdin, "standard input", options.encoding) != ExitOk)
                status = ExitFailure;
            continue;
        }
        FILE *in = fopen(name.c_str(), "rb");
        if (!in) {
            printError("%s: %s", name.c_str(), strerror(errno));
            status = ExitFailure;
            continue;
        }
        if (listStream(set.sid, in, name.c_str(), options.encoding) != ExitOk)
            status = ExitFailure;
        fclose(in);
    }
    closeLexicons(&set);
    if (fflush(stdout) != 0) {
        printError("standard output: %s", strerror(errno));
        status = ExitFailure;
    }
    return status;
}
