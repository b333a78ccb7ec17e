/*
 * cmd_lex.cpp -- `orto lex`: a text lexicon file from the shell, so that a
 * user can keep personal words, auto-change and exclusion lists.
 *
 *   orto lex show FILE                    the entries, one a line
 *   orto lex add FILE WORD [ACTION [OTHER]]
 *   orto lex del FILE WORD...
 *   orto lex find FILE WORD...
 *   orto lex clear FILE
 *
 * An entry is shown as WORD, TAB, the action letter, and, when it has one,
 * TAB and the other word.  The engine rewrites the file at each change.
 * Words are stored exactly as given: the session's possessive cut is off
 * here, so that what `add` stores, `del` and `find` meet again.
 */
#include <errno.h>
#include <string.h>

#include "lexicons.h"
#include "orto.h"

void printLexHelp(FILE *out)
{
    fputs("Usage: orto lex show FILE\n"
          "       orto lex add FILE WORD [ACTION [OTHER-WORD]]\n"
          "       orto lex del FILE WORD...\n"
          "       orto lex find FILE WORD...\n"
          "       orto lex clear FILE\n"
          "\n"
          "Shows and edits a text lexicon file (CR LF lines, Windows Latin-1), such\n"
          "as the personal lexicon.  `add` makes the file when it doesn't exist.\n"
          "An entry is printed as WORD, TAB, ACTION and, if it has one, TAB and\n"
          "the other word.  The actions:\n"
          "  i  accept the word (the default)\n"
          "  e  exclude it: report it as misspelled\n"
          "  a  change it at once into OTHER-WORD, spelled as stored\n"
          "  A  the same, in the case of the checked word\n"
          "  c  offer OTHER-WORD in its place, spelled as stored\n"
          "  C  the same, in the case of the checked word\n"
          "Words are stored as given.  The checker looks a word up without a\n"
          "possessive ending ('s), so store \"Jane\", not \"Jane's\".\n"
          "\n"
          "Options:\n"
          "  --language CODE   language of a new file: am, br, en-US, ... (default am)\n"
          "  -i ENCODING       encoding of words and output: utf-8 (default) or latin1\n"
          "  --help            show this help\n",
          out);
}

struct LexArgs {
    std::vector<std::string> operands;
    uint16_t language;
    TextEncoding encoding;
};

static bool parseLexArgs(int argc, char **argv, int first, LexArgs *args, bool *help)
{
    args->language = ORTO_LangAmerican;
    args->encoding = EncodingUtf8;
    *help = false;
    bool onlyOperands = false;
    for (int i = first; i < argc; i++) {
        std::string arg = argv[i];
        if (onlyOperands || arg[0] != '-' || arg == "-") {
            args->operands.push_back(arg);
        } else if (arg == "--") {
            onlyOperands = true;
        } else if (arg == "--help" || arg == "-h") {
            *help = true;
        } else if (arg == "--language" || arg.compare(0, 11, "--language=") == 0 || arg == "-i" ||
                   arg == "--encoding" || arg.compare(0, 11, "--encoding=") == 0) {
            std::string value;
            size_t eq = arg.find('=');
            if (eq != std::string::npos) {
                value = arg.substr(eq + 1);
                arg = arg.substr(0, eq);
            } else if (i + 1 < argc) {
                value = argv[++i];
            } else {
                printError("option %s needs a value", arg.c_str());
                return false;
            }
            if (arg == "--language" && !parseLanguage(value.c_str(), &args->language)) {
                printError("unknown language '%s' (am, br, en-US, en-GB, ... or a number)", value.c_str());
                return false;
            }
            if (arg != "--language" && !parseEncoding(value.c_str(), &args->encoding)) {
                printError("unknown encoding '%s' (utf-8 or latin1)", value.c_str());
                return false;
            }
        } else {
            printError("unknown option '%s' (try 'orto lex --help')", arg.c_str());
            return false;
        }
    }
    return true;
}

static bool engineWord(const std::string &text, TextEncoding encoding, std::string *word)
{
    size_t foreign = 0;
    if (!toEngineText(text, encoding, word, &foreign)) {
        printError("'%s' is not valid UTF-8 (give -i latin1 for Latin-1 words)", text.c_str());
        return false;
    }
    if (foreign > 0) {
        printError("'%s' has characters that Windows Latin-1 lacks", text.c_str());
        return false;
    }
    if (!isStorableWord(*word)) {
        printError("'%s' can't stand in a lexicon file: a word has 1 to 63 characters, no control "
                   "character, and doesn't begin with #", text.c_str());
        return false;
    }
    return true;
}

static bool parseAction(const std::string &text, uint16_t *action)
{
    static const struct {
        const char *name;
        char letter;
    } names[] = {{"ignore", 'i'}, {"accept", 'i'}, {"exclude", 'e'}};
    if (text.size() == 1 && strchr("aAcCei", text[0])) {
        *action = (uint16_t)text[0];
        return true;
    }
    for (const auto &n : names)
        if (text == n.name) {
            *action = (uint16_t)n.letter;
            return true;
        }
    printError("unknown action '%s': one of a A c C e i", text.c_str());
    return false;
}

/* Opens FILE for a change: a text lexicon as the engine writes it, or,
 * with `create`, a new one.  Returns the lexicon id, or -1 after a
 * message. */
static int16_t openForChange(int16_t sid, const std::string &path, bool create, uint16_t language)
{
    bool utf8;
    switch (lexFileShape(path, &utf8)) {
    case ShapeMissing:
        if (errno == ENOENT && create) {
            int16_t lex = ORTO_CreateLex(sid, path.c_str(), language);
            if (lex < 0)
                printError("cannot make %s: %s", path.c_str(),
                           lex == ORTO_OpenError ? "the file can't be created" : resultText(lex));
            return lex < 0 ? -1 : lex;
        }
        printError("%s: %s", path.c_str(), strerror(errno));
        return -1;
    case ShapeCompressed:
        printError("%s is a compressed lexicon; it can't be changed", path.c_str());
        return -1;
    case ShapeBinary:
        printError("%s: not a lexicon file, or a damaged one", path.c_str());
        return -1;
    case ShapeUnixText:
        printError("%s has %s; orto changes only lexicon files of CR LF lines in Windows Latin-1",
                   path.c_str(), utf8 ? "UTF-8 text" : "LF line ends");
        return -1;
    case ShapeEngineText:
        break;
    }
    int16_t lex = ORTO_OpenLex(sid, path.c_str(), 0);
    if (lex < 0) {
        printError("cannot open %s: %s", path.c_str(), resultText(lex));
        return -1;
    }
    return lex;
}

static std::string entryLine(const std::string &word, uint16_t action, const std::string &other,
                             TextEncoding encoding)
{
    std::string line = fromEngineText(word, encoding) + "\t" + (char)action;
    if (!other.empty())
        line += "\t" + fromEngineText(other, encoding);
    return line + "\n";
}

static int showLex(int16_t sid, const std::string &path, TextEncoding encoding)
{
    int16_t lex = openLexiconFile(sid, path);
    if (lex < 0)
        return ExitFailure;
    uint32_t size = 0;
    uint16_t format = 0;
    ORTO_GetLexInfo(sid, lex, &size, &format, nullptr);
    if (format != ORTO_LexText) {
        printError("%s is a compressed lexicon; its words can't be listed", path.c_str());
        return ExitFailure;
    }
    std::vector<char> buffer(size);
    int32_t count = ORTO_GetLex(sid, lex, buffer.data(), size);
    if (count < 0) {
        printError("cannot list %s: %s", path.c_str(), resultText(count));
        return ExitFailure;
    }
    const char *p = buffer.data();
    for (int32_t i = 0; i < count; i++) {
        const char *tab = strchr(p, '\t');
        std::string word(p, tab ? (size_t)(tab - p) : strlen(p));
        uint16_t action = tab && tab[1] ? (unsigned char)tab[1] : '?';
        std::string other = tab && tab[1] ? tab + 2 : "";
        fputs(entryLine(word, action, other, encoding).c_str(), stdout);
        p += strlen(p) + 1;
    }
    return ExitOk;
}

int runLex(int argc, char **argv, int first)
{
    LexArgs args;
    bool help;
    if (!parseLexArgs(argc, argv, first, &args, &help))
        return ExitUsage;
    if (help) {
        printLexHelp(stdout);
        return ExitOk;
    }
    const std::vector<std::string> &ops = args.operands;
    const std::string action = ops.empty() ? "" : ops[0];
    size_t low = 2, high = 2;
    if (action == "add")
        low = 3, high = 5;
    else if (action == "del" || action == "find")
        low = 3, high = (size_t)-1;
    else if (action != "show" && action != "clear") {
        if (action.empty())
            printError("lex needs an action: show, add, del, find or clear (try 'orto lex --help')");
        else
            printError("unknown lex action '%s' (show, add, del, find or clear)", action.c_str());
        return ExitUsage;
    }
    if (ops.size() < low || ops.size() > high) {
        printError("wrong number of arguments for 'lex %s' (try 'orto lex --help')", action.c_str());
        return ExitUsage;
    }
    const std::string &path = ops[1];

    int16_t sid = ORTO_OpenSession();
    if (sid < 0) {
        printError("cannot open a session: %s", resultText(sid));
        return ExitFailure;
    }
    ORTO_SetOption(sid, ORTO_StripPossessives, 0);
    int status = ExitOk;
    if (action == "show") {
        status = showLex(sid, path, args.encoding);
    } else if (action == "add") {
        std::string word, other;
        uint16_t code = ORTO_Ignore;
        if (!engineWord(ops[2], args.encoding, &word) || (ops.size() > 3 && !parseAction(ops[3], &code)) ||
            (ops.size() > 4 && !engineWord(ops[4], args.encoding, &other))) {
            status = ExitUsage;
        } else {
            int16_t lex = openForChange(sid, path, true, args.language);
            int16_t rc = lex < 0 ? -1 : ORTO_AddToLex(sid, lex, word.c_str(), code, other.c_str());
            if (lex >= 0 && rc < 0)
                printError("cannot add '%s' to %s: %s", ops[2].c_str(), path.c_str(), resultText(rc));
            status = rc < 0 ? ExitFailure : ExitOk;
        }
    } else if (action == "del" || action == "clear") {
        int16_t lex = openForChange(sid, path, false, args.language);
        if (lex < 0)
            status = ExitFailure;
        for (size_t i = 2; lex >= 0 && i < ops.size(); i++) {
            std::string word;
            if (!toEngineText(ops[i], args.encoding, &word)) {
                printError("'%s' is not valid UTF-8", ops[i].c_str());
                status = ExitFailure;
                continue;
            }
            int16_t rc = ORTO_DelFromLex(sid, lex, word.c_str());
            if (rc == ORTO_NotFound)
                printError("'%s' is not in %s", ops[i].c_str(), path.c_str());
            else if (rc < 0)
                printError("cannot delete '%s' from %s: %s", ops[i].c_str(), path.c_str(), resultText(rc));
            if (rc < 0)
                status = ExitFailure;
        }
        if (lex >= 0 && action == "clear") {
            int16_t rc = ORTO_ClearLex(sid, lex);
            if (rc < 0) {
                printError("cannot clear %s: %s", path.c_str(), resultText(rc));
                status = ExitFailure;
            }
        }
    } else { /* find */
        int16_t lex = openLexiconFile(sid, path);
        if (lex < 0)
            status = ExitFailure;
        for (size_t i = 2; lex >= 0 && i < ops.size(); i++) {
            std::string word;
            char other[64] = "";
            if (!toEngineText(ops[i], args.encoding, &word)) {
                printError("'%s' is not valid UTF-8", ops[i].c_str());
                status = ExitFailure;
                continue;
            }
            int16_t rc = ORTO_FindLexWord(sid, lex, word.c_str(), other, sizeof other);
            if (rc > 0) {
                fputs(entryLine(word, (uint16_t)rc, other, args.encoding).c_str(), stdout);
            } else {
                if (rc == ORTO_NotFound || rc == 0)
                    printError("'%s' is not in %s", ops[i].c_str(), path.c_str());
                else
                    printError("cannot look up '%s' in %s: %s", ops[i].c_str(), path.c_str(), resultText(rc));
                status = ExitFailure;
            }
        }
    }
    ORTO_CloseSession(sid);
    return status;
}
