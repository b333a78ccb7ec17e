/*
 * cmd_compress.cpp -- `orto compress`: word lists into a compressed
 * lexicon, by the engine's compressor.
 *
 * The compressor reads CR LF lines of Windows Latin-1.  Lists made on
 * Linux have LF line ends and UTF-8 as a rule, so each input (the lists and
 * the suffix file) is first written to a temporary file in the engine's
 * form, line for line, so that a line number from the compressor is the
 * line number in the user's file.  A failure of the compressor comes back
 * as a code and a line number; the program then looks at that line itself
 * to name the cause (too long, a character of no class, out of order, or
 * first letters that an earlier list had).
 *
 * With --sort the program sorts the words itself (by the bytes of Windows
 * Latin-1, as the compressor wants them), drops duplicates and merges all
 * lists into one, so that any list of words can be given.
 */
#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>

#include "orto.h"
#include "program.h"

void printCompressHelp(FILE *out)
{
    fputs("Usage: orto compress -o OUT [OPTION]... LIST...\n"
          "\n"
          "Makes the compressed lexicon OUT from the word lists LIST: one word a\n"
          "line (at most 63 bytes in Windows Latin-1), strictly ascending by the\n"
          "bytes of Windows Latin-1 (capitals before small letters), no word twice;\n"
          "empty lines and lines that begin with # are skipped.  Lists may be given\n"
          "in any order, but no two may hold words with the same first three\n"
          "letters.  A bad line is reported with its line number and cause.\n"
          "\n"
          "Options:\n"
          "  -o OUT            the lexicon to write (replaced only on success)\n"
          "  --suffixes FILE   suffix table: the first 30 lines are the one-byte\n"
          "                    suffixes, the next 255 the two-byte ones (# comments)\n"
          "  --language CODE   am, br, ... or en-US, en-GB, or a number (default am)\n"
          "  --sort            sort the words, drop duplicates, merge all lists\n"
          "  -i ENCODING       encoding of the lists: utf-8 (default) or latin1\n"
          "  --help            show this help\n",
          out);
}

struct InputFile {
    std::string name;                 /* as the user gave it */
    std::vector<std::string> lines;   /* engine text, line for line */
    std::vector<std::string> origins; /* after --sort: "file:line" of each line */
};

/* Reads a file of the user's into engine text; false after a message. */
static bool readInput(const std::string &name, TextEncoding encoding, InputFile *input)
{
    FILE *f = fopen(name.c_str(), "rb");
    if (!f) {
        printError("%s: %s", name.c_str(), strerror(errno));
        return false;
    }
    input->name = name;
    input->lines.clear();
    char *buffer = nullptr;
    size_t capacity = 0;
    ssize_t n;
    bool ok = true;
    while (ok && (n = getline(&buffer, &capacity, f)) >= 0) {
        std::string line(buffer, (size_t)n);
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
            line.pop_back();
        if (input->lines.empty() && encoding == EncodingUtf8 && line.compare(0, 3, "\xEF\xBB\xBF") == 0)
            line.erase(0, 3);
        std::string engine;
        size_t foreign = 0;
        unsigned long number = input->lines.size() + 1;
        if (!toEngineText(line, encoding, &engine, &foreign)) {
            printError("%s:%lu: invalid UTF-8 (give -i latin1 for Latin-1 lists)", name.c_str(), number);
            ok = false;
        } else if (foreign > 0) {
            printError("%s:%lu: '%s' has characters that Windows Latin-1 lacks", name.c_str(), number,
                       line.c_str());
            ok = false;
        }
        input->lines.push_back(engine);
    }
    if (ok && ferror(f)) {
        printError("%s: %s", name.c_str(), strerror(errno));
        ok = false;
    }
    free(buffer);
    fclose(f);
    return ok;
}

static bool writeEngineFile(const std::string &path, const std::vector<std::string> &lines)
{
    FILE *f = fopen(path.c_str(), "wb");
    if (!f) {
        printError("%s: %s", path.c_str(), strerror(errno));
        return false;
    }
    for (const std::string &line : lines) {
        fwrite(line.data(), 1, line.size(), f);
        fputs("\r\n", f);
    }
    bool ok = !ferror(f);
    if (fclose(f) != 0 || !ok) {
        printError("%s: %s", path.c_str(), strerror(errno));
        return false;
    }
    return true;
}

static bool isSkipped(const std::string &line)
{
    return line.empty() || line[0] == '#';
}

static bool byteLess(const std::string &a, const std::string &b)
{
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](char x, char y) { return (unsigned char)x < (unsigned char)y; });
}

/* True if a word of one of the lists before `list` begins with `key`. */
static bool earlierListHasKey(const std::vector<InputFile> &lists, size_t list, const std::string &key)
{
    for (size_t i = 0; i < list; i++)
        for (const std::string &line : lists[i].lines)
            if (!isSkipped(line) && line.compare(0, 3, key) == 0 && (line.size() >= 3 || line == key))
                return true;
    return false;
}

/* Names the cause of a failure of ORTO_CompressLexFile on list number
 * `list` at `lineNumber`. */
static void reportListError(const std::vector<InputFile> &lists, size_t list, uint32_t lineNumber, int16_t code,
                            TextEncoding encoding)
{
    const InputFile &input = lists[list];
    size_t count = input.lines.size();
    std::string line = lineNumber >= 1 && lineNumber <= count ? input.lines[lineNumber - 1] : "";
    std::string shown = fromEngineText(line, encoding);
    std::string where = input.name + ":" + std::to_string(lineNumber);
    if (lineNumber >= 1 && lineNumber <= input.origins.size())
        where = input.origins[lineNumber - 1];
    /* the word before this line in the same list */
    std::string previous;
    for (size_t i = std::min<size_t>(lineNumber > 0 ? lineNumber - 1 : 0, count); i >= 1; i--)
        if (!isSkipped(input.lines[i - 1])) {
            previous = input.lines[i - 1];
            break;
        }
    if (code == ORTO_InvalidWord && line.size() > 63) {
        printError("%s: word too long: %zu bytes, at most 63", where.c_str(), line.size());
    } else if (code == ORTO_InvalidWord) {
        printError("%s: '%s' holds a character that can't stand in a word (a control character?)",
                   where.c_str(), shown.c_str());
    } else if (code == ORTO_OutOfSequence && !previous.empty() && !isSkipped(line) &&
               !byteLess(previous, line)) {
        printError("%s: '%s' is out of order: it must sort after '%s' (by bytes, no word twice)",
                   where.c_str(), shown.c_str(), fromEngineText(previous, encoding).c_str());
    } else if (code == ORTO_OutOfSequence) {
        /* a segment is closed, and its first letters compared with the
         * earlier lists', when the next one begins or at the end of the list */
        std::string key = previous.substr(0, 3);
        if (!earlierListHasKey(lists, list, key))
            key = line.substr(0, 3);
        printError("%s: words beginning with '%s' came in an earlier list too "
                   "(lists may not share first three letters; --sort merges them)",
                   where.c_str(), fromEngineText(key, encoding).c_str());
    } else if (code == ORTO_OutOfMemory) {
        printError("%s: out of memory, or more than 65,535 different first three letters", where.c_str());
    } else {
        printError("%s: %s", where.c_str(), resultText(code));
    }
}

static bool makeTempDir(std::string *dir)
{
    const char *base = getenv("TMPDIR");
    std::string pattern = std::string(base && *base ? base : "/tmp") + "/orto-compress-XXXXXX";
    std::vector<char> buf(pattern.begin(), pattern.end());
    buf.push_back(0);
    if (!mkdtemp(buf.data())) {
        printError("cannot make a temporary folder: %s", strerror(errno));
        return false;
    }
    *dir = buf.data();
    return true;
}

/* Runs the compressor over the prepared files; returns the exit code. */
static int compress(const std::string &out, const InputFile *suffixes, const std::vector<InputFile> &lists,
                    uint16_t language, TextEncoding encoding, const std::string &temp)
{
    std::string suffixPath;
    if (suffixes) {
        suffixPath = temp + "/suffixes";
        if (!writeEngineFile(suffixPath, suffixes->lines))
            return ExitFailure;
    }
    int16_t sid = ORTO_OpenSession();
    if (sid < 0) {
        printError("cannot open a session: %s", resultText(sid));
        return ExitFailure;
    }
    uint32_t lineNumber = 0;
    int16_t rc = ORTO_CompressLexInit(sid, out.c_str(), suffixes ? suffixPath.c_str() : nullptr,
                                      (int16_t)language, &lineNumber);
    if (rc < 0) {
        /* the suffix file is our own copy, so an open error is the output's */
        printError("cannot write %s: %s", out.c_str(),
                   rc == ORTO_OpenError ? "the file can't be created" : resultText(rc));
        ORTO_CompressLexAbort(sid);
        ORTO_CloseSession(sid);
        return ExitFailure;
    }
    for (size_t i = 0; i < lists.size(); i++) {
        std::string path = temp + "/list" + std::to_string(i);
        if (!writeEngineFile(path, lists[i].lines)) {
            rc = ORTO_WriteError;
            break;
        }
        rc = ORTO_CompressLexFile(sid, path.c_str(), &lineNumber);
        unlink(path.c_str());
        if (rc < 0) {
            reportListError(lists, i, lineNumber, rc, encoding);
            break;
        }
    }
    if (rc >= 0) {
        rc = ORTO_CompressLexEnd(sid);
        if (rc < 0)
            printError("cannot write %s: %s", out.c_str(), resultText(rc));
    } else {
        ORTO_CompressLexAbort(sid);
    }
    ORTO_CloseSession(sid);
    if (!suffixPath.empty())
        unlink(suffixPath.c_str());
    return rc < 0 ? ExitFailure : ExitOk;
}

int runCompress(int argc, char **argv, int first)
{
    std::string out, suffixFile;
    std::vector<std::string> listNames;
    uint16_t language = ORTO_LangAmerican;
    TextEncoding encoding = EncodingUtf8;
    bool sortWords = false, onlyOperands = false;
    for (int i = first; i < argc; i++) {
        std::string arg = argv[i];
        std::string value;
        bool hasValue = false;
        size_t eq = arg.find('=');
        if (!onlyOperands && arg.compare(0, 2, "--") == 0 && eq != std::string::npos) {
            value = arg.substr(eq + 1);
            arg = arg.substr(0, eq);
            hasValue = true;
        }
        const bool needsValue = !onlyOperands && (arg == "-o" || arg == "--output" || arg == "--suffixes" ||
                                                  arg == "--language" || arg == "-i" || arg == "--encoding");
        if (needsValue && !hasValue) {
            if (i + 1 >= argc) {
                printError("option %s needs a value", arg.c_str());
                return ExitUsage;
            }
            value = argv[++i];
        }
        if (onlyOperands || arg[0] != '-' || arg == "-") {
            listNames.push_back(argv[i]);
        } else if (arg == "--") {
            onlyOperands = true;
        } else if (arg == "--help" || arg == "-h") {
            printCompressHelp(stdout);
            return ExitOk;
        } else if (arg == "-o" || arg == "--output") {
            out = value;
        } else if (arg == "--suffixes") {
            suffixFile = value;
        } else if (arg == "--language") {
            if (!parseLanguage(value.c_str(), &language)) {
                printError("unknown language '%s' (am, br, en-US, en-GB, ... or a number)", value.c_str());
                return ExitUsage;
            }
        } else if (arg == "-i" || arg == "--encoding") {
            if (!parseEncoding(value.c_str(), &encoding)) {
                printError("unknown encoding '%s' (utf-8 or latin1)", value.c_str());
                return ExitUsage;
            }
        } else if (arg == "--sort") {
            sortWords = true;
        } else {
            printError("unknown option '%s' (try 'orto compress --help')", argv[i]);
            return ExitUsage;
        }
    }
    if (out.empty() || listNames.empty()) {
        printError("compress needs -o OUT and at least one word list (try 'orto compress --help')");
        return ExitUsage;
    }

    InputFile suffixes;
    if (!suffixFile.empty() && !readInput(suffixFile, encoding, &suffixes))
        return ExitFailure;
    std::vector<InputFile> lists(listNames.size());
    for (size_t i = 0; i < listNames.size(); i++)
        if (!readInput(listNames[i] == "-" ? "/dev/stdin" : listNames[i], encoding, &lists[i]))
            return ExitFailure;
    if (sortWords) {
        std::vector<std::pair<std::string, std::string>> words; /* word, where it came from */
        for (const InputFile &list : lists)
            for (size_t i = 0; i < list.lines.size(); i++)
                if (!isSkipped(list.lines[i]))
                    words.emplace_back(list.lines[i], list.name + ":" + std::to_string(i + 1));
        std::stable_sort(words.begin(), words.end(),
                         [](const std::pair<std::string, std::string> &a,
                            const std::pair<std::string, std::string> &b) { return byteLess(a.first, b.first); });
        InputFile merged;
        merged.name = lists[0].name;
        for (const auto &w : words)
            if (merged.lines.empty() || merged.lines.back() != w.first) {
                merged.lines.push_back(w.first);
                merged.origins.push_back(w.second);
            }
        lists.assign(1, merged);
    }

    std::string temp;
    if (!makeTempDir(&temp))
        return ExitFailure;
    int status = compress(out, suffixFile.empty() ? nullptr : &suffixes, lists, language, encoding, temp);
    rmdir(temp.c_str());
    return status;
}
