/*
 * options.cpp -- the options that the checking commands share, and the
 * small parsers that every command uses (numbers, languages, option bits).
 *
 * Options may stand before, between and after the operands; "--" ends
 * them.  A long option takes its value as the next argument or after "=";
 * -d, -p and -i also take it glued on ("-den-GB").
 */
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>

#include "orto.h"
#include "program.h"

struct OptionName {
    const char *name;
    uint32_t bit;
};

/* Every option bit by the name that the settings store gives it. */
static const OptionName OptionNames[] = {
    {"IgnoreCappedWords", ORTO_IgnoreCappedWords},
    {"IgnoreMixedCase", ORTO_IgnoreMixedCase},
    {"IgnoreMixedDigits", ORTO_IgnoreMixedDigits},
    {"IgnoreAllCapsWords", ORTO_IgnoreAllCapsWords},
    {"ReportUncappedWords", ORTO_ReportUncappedWords},
    {"ReportMixedCase", ORTO_ReportMixedCase},
    {"ReportMixedDigits", ORTO_ReportMixedDigits},
    {"ReportSpelling", ORTO_ReportSpelling},
    {"ReportDoubledWords", ORTO_ReportDoubledWords},
    {"CaseSensitive", ORTO_CaseSensitive},
    {"SplitHyphenatedWords", ORTO_SplitHyphenatedWords},
    {"SplitContractedWords", ORTO_SplitContractedWords},
    {"SplitWords", ORTO_SplitWords},
    {"SuggestSplitWords", ORTO_SuggestSplitWords},
    {"PhoneticSuggestions", ORTO_PhoneticSuggestions},
    {"TypographicalSuggestions", ORTO_TypographicalSuggestions},
    {"StripPossessives", ORTO_StripPossessives},
};

struct LanguageName {
    const char *letters;
    const char *tag; /* the usual tag of the language, or null */
};

static const LanguageName LanguageNames[] = {
    {"xx", nullptr}, {"am", "en-US"}, {"br", "en-GB"}, {"sc", "ca"},    {"cz", "cs"},
    {"da", "da"},    {"du", "nl"},    {"fi", "fi"},    {"fr", "fr"},    {"ge", "de"},
    {"hu", "hu"},    {"it", "it"},    {"cb", "nb"},    {"cd", "nn"},    {"pl", "pl"},
    {"pb", "pt-BR"}, {"po", "pt-PT"}, {"ru", "ru"},    {"sp", "es"},    {"sw", "sv"},
};

void printError(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    fputs("orto: ", stderr);
    vfprintf(stderr, format, args);
    fputc('\n', stderr);
    va_end(args);
}

void initCheckOptions(CheckOptions *options)
{
    options->lexicons.clear();
    options->personalPath.clear();
    options->settings.clear();
    options->depth = 50; /* the dialogs' default search depth */
    options->maxSuggestions = 10;
    options->exact = false;
    options->encoding = EncodingUtf8;
    options->operands.clear();
    options->help = false;
}

uint32_t optionBitByName(const char *name)
{
    for (const OptionName &o : OptionNames)
        if (strcasecmp(o.name, name) == 0)
            return o.bit;
    return 0;
}

bool parseOptionSetting(const char *text, OptionSetting *setting)
{
    const char *eq = strchr(text, '=');
    std::string name(text, eq ? (size_t)(eq - text) : strlen(text));
    uint32_t bit = optionBitByName(name.c_str());
    if (bit == 0) {
        printError("unknown option name '%s' (see 'orto list --help')", name.c_str());
        return false;
    }
    if (!eq || (strcmp(eq + 1, "0") != 0 && strcmp(eq + 1, "1") != 0)) {
        printError("--option %s needs the value 0 or 1, as in %s=1", name.c_str(), name.c_str());
        return false;
    }
    setting->bit = bit;
    setting->on = eq[1] == '1';
    return true;
}

bool parseNumber(const char *text, int low, int high, const char *what, int *value)
{
    char *end;
    long v = strtol(text, &end, 10);
    if (*text == 0 || *end != 0 || v < low || v > high) {
        printError("%s must be a whole number from %d to %d, not '%s'", what, low, high, text);
        return false;
    }
    *value = (int)v;
    return true;
}

bool parseLanguage(const char *text, uint16_t *language)
{
    for (const LanguageName &l : LanguageNames) {
        if (strcasecmp(text, l.letters) == 0 || (l.tag && strcasecmp(text, l.tag) == 0)) {
            *language = (uint16_t)((l.letters[0] << 8) | l.letters[1]);
            return true;
        }
        /* en_US as well as en-US */
        if (l.tag && strlen(text) == strlen(l.tag)) {
            std::string t(text);
            for (char &c : t)
                if (c == '_')
                    c = '-';
            if (strcasecmp(t.c_str(), l.tag) == 0) {
                *language = (uint16_t)((l.letters[0] << 8) | l.letters[1]);
                return true;
            }
        }
    }
    char *end;
    long v = strtol(text, &end, 10);
    if (*text != 0 && *end == 0 && v >= 0 && v <= 65535) {
        *language = (uint16_t)v;
        return true;
    }
    return false;
}

const char *resultText(int code)
{
    switch (code) {
    case ORTO_GeneralError: return "general failure";
    case ORTO_BadSessionId: return "bad session";
    case ORTO_NotFound: return "not found";
    case ORTO_FileOpenError: return "the file can't be opened";
    case ORTO_TooManyLexicons: return "too many lexicons (at most 32)";
    case ORTO_UnknownAction: return "unknown action";
    case ORTO_BadLexId: return "bad lexicon";
    case ORTO_BufferTooSmall: return "text too long";
    case ORTO_ReadOnlyLex: return "the lexicon is compressed and can't be changed";
    case ORTO_OutOfMemory: return "out of memory";
    case ORTO_Unsupported: return "not supported for this lexicon (or a Unicode lexicon)";
    case ORTO_FileExists: return "the file exists already";
    case ORTO_TooManyBlocks: return "too many blocks";
    case ORTO_BadBlockId: return "bad block";
    case ORTO_InvalidWord: return "invalid word";
    case ORTO_OutOfSequence: return "out of sequence";
    case ORTO_ReadError: return "damaged lexicon (a table can't be read)";
    case ORTO_WriteError: return "the file can't be written";
    case ORTO_OpenError: return "a working file can't be opened";
    case ORTO_BadFormat: return "damaged lexicon (bad format)";
    default: return "unknown error";
    }
}

/* The value of an option that takes one: glued ("-den-GB", "--max=5") or
 * the next argument.  Null with a message when it is missing. */
static const char *optionValue(int argc, char **argv, int *i, const char *arg, size_t nameLength)
{
    if (arg[nameLength] == '=')
        return arg + nameLength + 1;
    if (arg[nameLength] != 0 && arg[1] != '-')
        return arg + nameLength;
    if (arg[nameLength] != 0)
        return nullptr;
    if (*i + 1 >= argc) {
        printError("option %s needs a value", arg);
        return nullptr;
    }
    return argv[++*i];
}

static bool isOption(const char *arg, const char *name)
{
    size_t n = strlen(name);
    if (strncmp(arg, name, n) != 0)
        return false;
    if (arg[n] == 0 || arg[n] == '=')
        return true;
    return name[1] != '-'; /* short options take glued values */
}

bool parseCheckOptions(int argc, char **argv, int first, const char *command,
                       CheckOptions *options)
{
    bool onlyOperands = false;
    for (int i = first; i < argc; i++) {
        const char *arg = argv[i];
        const char *value;
        if (onlyOperands || arg[0] != '-' || strcmp(arg, "-") == 0) {
            options->operands.push_back(arg);
        } else if (strcmp(arg, "--") == 0) {
            onlyOperands = true;
        } else if (strcmp(arg, "--help") == 0 || strcmp(arg, "-h") == 0) {
            options->help = true;
        } else if (isOption(arg, "-d") || isOption(arg, "--lexicon")) {
            if (!(value = optionValue(argc, argv, &i, arg, arg[1] == 'd' ? 2 : 9)))
                return false;
            options->lexicons.push_back(value);
        } else if (isOption(arg, "-p") || isOption(arg, "--personal")) {
            if (!(value = optionValue(argc, argv, &i, arg, arg[1] == 'p' ? 2 : 10)))
                return false;
            options->personalPath = value;
        } else if (isOption(arg, "-i") || isOption(arg, "--encoding")) {
            if (!(value = optionValue(argc, argv, &i, arg, arg[1] == 'i' ? 2 : 10)))
                return false;
            if (!parseEncoding(value, &options->encoding)) {
                printError("unknown encoding '%s' (utf-8 or latin1)", value);
                return false;
            }
        } else if (isOption(arg, "--option")) {
            OptionSetting setting;
            if (!(value = optionValue(argc, argv, &i, arg, 8)) || !parseOptionSetting(value, &setting))
                return false;
            options->settings.push_back(setting);
        } else if (strcmp(arg, "--exact") == 0) {
            options->exact = true;
        } else if (isOption(arg, "--depth")) {
            if (!(value = optionValue(argc, argv, &i, arg, 7)) ||
                !parseNumber(value, 0, 100, "--depth", &options->depth))
                return false;
        } else if (isOption(arg, "--max")) {
            if (!(value = optionValue(argc, argv, &i, arg, 5)) ||
                !parseNumber(value, 1, 100, "--max", &options->maxSuggestions))
                return false;
        } else {
            printError("unknown option '%s' (try 'orto %s --help')", arg, command);
            return false;
        }
    }
    return true;
}

void printCheckOptionsHelp(FILE *out)
{
    fputs("Options:\n"
          "  -d LEX          a lexicon: a lexicon file, or a bundled name (en-US, en-GB);\n"
          "                  repeat for more; default en-US\n"
          "  -p FILE         the personal lexicon (default: orto/personal.tlx in\n"
          "                  $XDG_CONFIG_HOME or ~/.config)\n"
          "  -i ENCODING     encoding of text and words: utf-8 (default) or latin1\n"
          "  --option NAME=0|1\n"
          "                  turn an option of the engine on or off; repeatable\n"
          "  --depth N       how far suggestions search, 0 to 100 (default 50)\n"
          "  --max N         most suggestions for a word, 1 to 100 (default 10)\n"
          "  --exact         rank suggestions by the engine's typographical and\n"
          "                  phonetic measures (ORTO_Suggest), not by the error\n"
          "                  model and word frequencies (ORTO_SuggestRanked)\n"
          "  --help          show this help\n"
          "\n"
          "Option names (default in brackets; the program turns IgnoreMixedDigits\n"
          "on, where the engine has it off, so that 1st and 3.14 pass):\n",
          out);
    for (const OptionName &o : OptionNames)
        fprintf(out, "  %-26s[%d]\n", o.name, (ProgramDefaultOptions & o.bit) ? 1 : 0);
}
