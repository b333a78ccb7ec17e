/*
 * dialog_setup.cpp -- the start of `orto check`, `orto dictionaries` and
 * `orto options`.
 *
 * The dialogs take their lexicons and options from the library's settings
 * store, not from the command line.  So that a first `orto check` works
 * and answers as `orto list` does, a store that names no main lexicon is
 * filled in before the first dialog with what `orto list` uses by default:
 * the bundled lexicon (-d, en-US), the personal lexicon as the one user
 * lexicon (made empty if it doesn't exist, so that the dialogs don't start
 * with an error about it), and the one option in which `orto list` differs
 * from the dialogs' defaults, IgnoreMixedDigits.  The store keeps options
 * only through the shared session, which writes them when it stops, so the
 * options are set on it and the store is named anew, which stops it.
 * Later the store is the user's: only an explicit -d changes the main
 * lexicon, and the Dictionaries and Options dialogs the rest.
 *
 * The dialogs' help file is a bare name by default; the store gets the
 * path of the installed one when it names none that exists.
 */
#include "dialog_setup.h"

#include <errno.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "lexicons.h"
#include "orto.h"

enum { ListSize = 8320, PathLimit = 515, ListItemLimit = 259 };
static const char HelpFileName[] = "orto.hlp";

void printDialogOptionsHelp(FILE *out, bool check)
{
    fputs("Options:\n"
          "  --ini FILE      the settings file (default: ORTO.INI beside liborto.so,\n"
          "                  else the one /etc/orto.ini names, else\n"
          "                  orto/ORTO.INI in $XDG_CONFIG_HOME or ~/.config)\n"
          "  -d LEX          make LEX the main lexicon in the settings: a bundled name\n"
          "                  (en-US, en-GB) or a lexicon file; without -d the settings'\n"
          "                  main lexicons, or en-US when they name none\n",
          out);
    if (check)
        fputs("  -i ENCODING     encoding of the files: utf-8 (default) or latin1\n", out);
    fputs("  --help          show this help\n"
          "\n"
          "Standard input and output must be a terminal.\n",
          out);
}

/* An option that takes a value, given as "--name VALUE", "--name=VALUE",
 * "-x VALUE" or "-xVALUE"; `glued` tells whether the value came with it. */
static bool valuedOption(const std::string &arg, const char *shortName, const char *longName, bool *glued,
                         std::string *value)
{
    size_t n = strlen(longName);
    if (arg.compare(0, n, longName) == 0 && (arg.size() == n || arg[n] == '=')) {
        *glued = arg.size() > n;
        *value = *glued ? arg.substr(n + 1) : std::string();
        return true;
    }
    if (shortName && arg.compare(0, 2, shortName) == 0) {
        *glued = arg.size() > 2;
        *value = arg.substr(2);
        return true;
    }
    return false;
}

static bool parseOptions(int argc, char **argv, int first, const char *command, bool takesFiles,
                         DialogOptions *options)
{
    options->encoding = EncodingUtf8;
    options->help = false;
    bool onlyOperands = false;
    for (int i = first; i < argc; i++) {
        std::string arg = argv[i];
        if (onlyOperands || arg[0] != '-' || arg == "-") {
            if (!takesFiles) {
                printError("%s takes no file: '%s' (try 'orto %s --help')", command, arg.c_str(), command);
                return false;
            }
            options->operands.push_back(arg);
            continue;
        }
        if (arg == "--") {
            onlyOperands = true;
            continue;
        }
        if (arg == "--help" || arg == "-h") {
            options->help = true;
            continue;
        }
        std::string value;
        bool glued;
        const char *name = nullptr;
        if (valuedOption(arg, nullptr, "--ini", &glued, &value))
            name = "--ini";
        else if (valuedOption(arg, "-d", "--lexicon", &glued, &value))
            name = "-d";
        else if (takesFiles && valuedOption(arg, "-i", "--encoding", &glued, &value))
            name = "-i";
        if (!name) {
            printError("unknown option '%s' (try 'orto %s --help')", arg.c_str(), command);
            return false;
        }
        if (!glued) {
            if (i + 1 >= argc) {
                printError("option %s needs a value", arg.c_str());
                return false;
            }
            value = argv[++i];
        }
        if (strcmp(name, "--ini") == 0) {
            options->ini = value;
        } else if (strcmp(name, "-d") == 0) {
            options->lexicon = value;
        } else if (!parseEncoding(value.c_str(), &options->encoding)) {
            printError("unknown encoding '%s' (utf-8 or latin1)", value.c_str());
            return false;
        }
    }
    return true;
}

bool beginDialogCommand(int argc, char **argv, int first, const char *command, bool takesFiles,
                        void (*help)(FILE *), DialogOptions *options, int *exitCode)
{
    *exitCode = ExitUsage;
    if (!parseOptions(argc, argv, first, command, takesFiles, options))
        return false;
    if (options->help) {
        help(stdout);
        *exitCode = ExitOk;
        return false;
    }
    if (takesFiles && options->operands.empty()) {
        printError("%s needs a file (try 'orto %s --help')", command, command);
        return false;
    }
    /* the dialogs wait for a person's keys: without a terminal they would
     * have none, or draw into a pipe */
    if (!isatty(0) || !isatty(1)) {
        printError("%s runs dialogs in a terminal: standard input and output must be a terminal",
                   command);
        return false;
    }
    *exitCode = prepareStore(*options);
    return *exitCode == ExitOk;
}

static std::string baseName(const std::string &path)
{
    size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

/* The absolute path of the main lexicon `name` and its language, checked
 * by opening it. */
static bool findMainLexicon(const std::string &name, std::string *path, uint16_t *language)
{
    std::string found = name;
    if (name.find('/') == std::string::npos && !isFile(name) && !findBundledLexicon(name, &found)) {
        printError("no lexicon '%s': no such file, and no bundled lexicon of that name", name.c_str());
        return false;
    }
    char resolved[PATH_MAX];
    if (!realpath(found.c_str(), resolved)) {
        printError("cannot open lexicon %s: %s", found.c_str(), strerror(errno));
        return false;
    }
    *path = resolved;
    if (dirName(*path).size() > PathLimit || baseName(*path).size() > ListItemLimit) {
        printError("lexicon path too long for the settings: %s", path->c_str());
        return false;
    }
    /* the dialogs open lexicons by the engine alone, which would take a
     * Linux word list for a few long lines */
    bool utf8;
    LexFileShape shape = lexFileShape(*path, &utf8);
    if (shape == ShapeUnixText || shape == ShapeBinary) {
        printError("%s: the dialogs take compressed lexicons and text lexicons with CR LF lines in "
                   "Windows Latin-1 only (make one with 'orto compress')", path->c_str());
        return false;
    }
    int16_t sid = ORTO_OpenSession();
    int16_t lex = sid < 0 ? sid : ORTO_OpenLex(sid, resolved, 0);
    if (lex >= 0)
        ORTO_GetLexInfo(sid, lex, nullptr, nullptr, language);
    else
        printError("cannot open lexicon %s: %s", resolved, resultText(lex));
    if (sid >= 0)
        ORTO_CloseSession(sid);
    return lex >= 0;
}

/* Makes the personal lexicon of `orto list` the user lexicon of the
 * dialogs, creating its file if need be.  Without a home folder there is
 * none, and the dialogs start without a user lexicon. */
static void setPersonalLexicon(uint16_t language)
{
    std::string personal = defaultPersonalPath();
    if (personal.empty() || dirName(personal).size() > PathLimit)
        return;
    if (!isFile(personal)) {
        int16_t sid = ORTO_OpenSession();
        int16_t lex = ORTO_FileOpenError;
        if (sid >= 0 && makeFolders(dirName(personal)))
            lex = ORTO_CreateLex(sid, personal.c_str(), language);
        if (sid >= 0)
            ORTO_CloseSession(sid);
        if (lex < 0 && lex != ORTO_FileExists) {
            printError("cannot make personal lexicon %s: %s", personal.c_str(), resultText(lex));
            return;
        }
    }
    ORTO_SetUserLexPath(dirName(personal).c_str());
    ORTO_SetUserLexFiles(baseName(personal).c_str());
}

/* True when the store's help file can be found: a bare name is looked for
 * beside the bundled lexicons, as the help pager does. */
static bool helpFileFound(const std::string &name)
{
    std::string ignored;
    if (name.empty())
        return false;
    return name.find('/') != std::string::npos ? isFile(name) : findDataFile(name, &ignored);
}

int prepareStore(const DialogOptions &options)
{
    if (options.ini.size() > PathLimit) {
        printError("settings file name too long (at most %d characters): %s", PathLimit, options.ini.c_str());
        return ExitFailure;
    }
    if (!options.ini.empty())
        ORTO_SetIniFile(options.ini.c_str());

    char list[ListSize];
    ORTO_GetMainLexFiles(list, sizeof list);
    bool firstRun = list[0] == 0;
    if (firstRun || !options.lexicon.empty()) {
        std::string path;
        uint16_t language = ORTO_LangAmerican;
        if (!findMainLexicon(options.lexicon.empty() ? "en-US" : options.lexicon, &path, &language))
            return ExitFailure;
        ORTO_SetMainLexPath(dirName(path).c_str());
        ORTO_SetMainLexFiles(baseName(path).c_str());
        ORTO_GetMainLexFiles(list, sizeof list);
        if (baseName(path) != list) {
            printError("the settings file can't be written; name another with --ini FILE");
            return ExitFailure;
        }
        ORTO_GetUserLexFiles(list, sizeof list);
        if (firstRun && list[0] == 0)
            setPersonalLexicon(language);
        int16_t sid = ORTO_GetSid();
        if (sid >= 0) {
            ORTO_SetOption(sid, ORTO_Language, language);
            if (firstRun)
                ORTO_SetOption(sid, ORTO_IgnoreMixedDigits, 1);
            /* naming the store again stops the shared session, which
             * writes its options there */
            ORTO_SetIniFile(options.ini.c_str());
        }
    }

    char help[PathLimit + 1];
    ORTO_GetHelpFile(help, sizeof help);
    std::string installed;
    if (!helpFileFound(help) && findDataFile(HelpFileName, &installed)) {
        char resolved[PATH_MAX];
        if (realpath(installed.c_str(), resolved) && strlen(resolved) <= PathLimit)
            ORTO_SetHelpFile(resolved);
    }
    return ExitOk;
}
