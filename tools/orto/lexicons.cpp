/*
 * lexicons.cpp -- the lexicons of a checking session.
 *
 * Slot order decides between lexicons (the first one that holds a word
 * answers for it), so the personal lexicon goes first: its exclusions and
 * auto-changes then overrule the main lexicons.  When the personal file
 * doesn't exist yet, an empty lexicon keeps slot 0 for it, and gives it up
 * at the first add.  A personal lexicon is rewritten by the engine at each
 * add, so one that the engine can't write back as it found it (LF line
 * ends, UTF-8) is refused rather than spoiled.
 */
#include <errno.h>
#include <string.h>
#include <sys/stat.h>

#include "lexicons.h"
#include "orto.h"

/* Opens the personal lexicon if its file exists. */
static int16_t openPersonal(LexiconSet *set)
{
    bool utf8;
    LexFileShape shape = lexFileShape(set->personalPath, &utf8);
    if (shape == ShapeMissing && errno == ENOENT)
        return 0;
    const char *path = set->personalPath.c_str();
    switch (shape) {
    case ShapeMissing:
        printError("cannot open personal lexicon %s: %s", path, strerror(errno));
        return ORTO_FileOpenError;
    case ShapeBinary:
        printError("cannot open personal lexicon %s: not a lexicon file, or a damaged one", path);
        return ORTO_BadFormat;
    case ShapeCompressed:
        printError("personal lexicon %s is a compressed lexicon; it must be a text lexicon", path);
        return ORTO_ReadOnlyLex;
    case ShapeUnixText:
        printError("personal lexicon %s has %s; orto keeps its lexicons as CR LF lines in "
                   "Windows Latin-1 (use it with -d, or start a new one)",
                   path, utf8 ? "UTF-8 text" : "LF line ends");
        return ORTO_BadFormat;
    case ShapeEngineText:
        break;
    }
    int16_t lex = ORTO_OpenLex(set->sid, path, 0);
    if (lex < 0) {
        printError("cannot open personal lexicon %s: %s", path, resultText(lex));
        return lex;
    }
    set->personalLex = lex;
    return 0;
}

int openLexicons(const CheckOptions &options, bool wantRunLexicon, LexiconSet *set)
{
    set->personalLex = set->reservedLex = set->runLex = -1;
    set->language = ORTO_LangAmerican;
    set->personalIsDefault = options.personalPath.empty();
    set->personalPath = set->personalIsDefault ? defaultPersonalPath() : options.personalPath;
    set->sid = ORTO_OpenSession();
    if (set->sid < 0) {
        printError("cannot open a session: %s", resultText(set->sid));
        return ExitFailure;
    }
    ORTO_SetOption(set->sid, ORTO_IgnoreMixedDigits, 1);
    for (const OptionSetting &s : options.settings)
        ORTO_SetOption(set->sid, s.bit, (uint32_t)s.on);

    if (!set->personalPath.empty() && openPersonal(set) < 0) {
        closeLexicons(set);
        return ExitFailure;
    }
    if (set->personalLex < 0)
        set->reservedLex = ORTO_CreateLex(set->sid, nullptr, ORTO_LangAny);
    if (wantRunLexicon)
        set->runLex = ORTO_CreateLex(set->sid, nullptr, ORTO_LangAny);

    std::vector<std::string> names = options.lexicons;
    if (names.empty())
        names.push_back("en-US");
    bool first = true;
    for (const std::string &name : names) {
        std::string path = name;
        if (name.find('/') == std::string::npos && !isFile(name) &&
            !findBundledLexicon(name, &path)) {
            printError("no lexicon '%s': no such file, and no bundled lexicon of that name", name.c_str());
            closeLexicons(set);
            return ExitFailure;
        }
        int16_t lex = openLexiconFile(set->sid, path);
        if (lex < 0) {
            closeLexicons(set);
            return ExitFailure;
        }
        if (first)
            ORTO_GetLexInfo(set->sid, lex, nullptr, nullptr, &set->language);
        first = false;
    }
    return ExitOk;
}

void closeLexicons(LexiconSet *set)
{
    if (set->sid >= 0)
        ORTO_CloseSession(set->sid);
    set->sid = -1;
}

bool makeFolders(const std::string &dir)
{
    if (dir.empty() || dir == "/" || dir == ".")
        return true;
    struct stat st;
    if (stat(dir.c_str(), &st) == 0)
        return S_ISDIR(st.st_mode);
    if (!makeFolders(dirName(dir)))
        return false;
    return mkdir(dir.c_str(), 0700) == 0 || errno == EEXIST;
}

int16_t addToPersonal(LexiconSet *set, const std::string &word)
{
    if (set->personalLex < 0) {
        if (set->personalPath.empty()) {
            printError("no personal lexicon: set HOME or XDG_CONFIG_HOME, or give -p FILE");
            return ORTO_FileOpenError;
        }
        if (set->personalIsDefault && !makeFolders(dirName(set->personalPath))) {
            printError("cannot make the folder of %s: %s", set->personalPath.c_str(), strerror(errno));
            return ORTO_OpenError;
        }
        if (set->reservedLex >= 0) {
            ORTO_CloseLex(set->sid, set->reservedLex);
            set->reservedLex = -1;
        }
        int16_t lex = ORTO_CreateLex(set->sid, set->personalPath.c_str(), set->language);
        if (lex == ORTO_FileExists) /* made meanwhile by another run */
            lex = ORTO_OpenLex(set->sid, set->personalPath.c_str(), 0);
        if (lex < 0) {
            printError("cannot make personal lexicon %s: %s", set->personalPath.c_str(), resultText(lex));
            return lex;
        }
        set->personalLex = lex;
    }
    int16_t rc = ORTO_AddToLex(set->sid, set->personalLex, word.c_str(), ORTO_Ignore, nullptr);
    if (rc < 0)
        printError("cannot add to personal lexicon %s: %s", set->personalPath.c_str(), resultText(rc));
    return rc;
}

int16_t acceptForRun(LexiconSet *set, const std::string &word)
{
    if (set->runLex < 0)
        set->runLex = ORTO_CreateLex(set->sid, nullptr, ORTO_LangAny);
    if (set->runLex < 0)
        return set->runLex;
    return ORTO_AddToLex(set->sid, set->runLex, word.c_str(), ORTO_Ignore, nullptr);
}
