/*
 * lsp_settings.cpp -- the server's settings, its lexicons, and the words
 * the user adds.
 *
 * Settings come in layers: the command line (`orto lsp -d en-GB ...`),
 * then initializationOptions, then what workspace/didChangeConfiguration
 * sent last; a key that a layer leaves out keeps the value below, since
 * many clients send an empty configuration right after the start.  Either
 * layer may hold the settings under "orto" or at its top.  A bad value is
 * reported by window/showMessage and leaves the value below in force.
 *
 * The session holds, in slot order: the personal lexicon, the words
 * ignored for the session, the main lexicons, then the project
 * dictionary, a text lexicon in the workspace folder made at the first
 * add.  A project dictionary that is a plain LF word list (as people
 * write them) is read by the program; an add then appends a line to it.
 */
#include <errno.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>

#include "lsp.h"
#include "orto.h"

static const char *const DefaultProjectName = ".orto-words.tlx";

static const char *const SeverityNames[] = {"error", "warning", "information", "hint"};
static const char *const KindNames[ProblemKinds] = {"misspelled", "change", "capitalization", "doubled"};

static std::string expandHome(const std::string &path)
{
    const char *home = getenv("HOME");
    if (path.compare(0, 2, "~/") == 0 && home)
        return std::string(home) + path.substr(1);
    return path;
}

/* A path of the settings: from the workspace folder unless absolute. */
static std::string settingPath(const Server &s, const std::string &path)
{
    std::string p = expandHome(path);
    if (p.empty() || p[0] == '/' || s.root.empty())
        return p;
    return s.root + "/" + p;
}

/* The settings object of one layer. */
static const Json *settingsLayer(const Json &layer)
{
    const Json *orto = member(layer, "orto");
    if (orto && orto->is_object())
        return orto;
    return layer.is_object() ? &layer : nullptr;
}

static bool readSeverity(const Json &v, int *out)
{
    if (v.is_number_integer() && v.get<int64_t>() >= 1 && v.get<int64_t>() <= 4) {
        *out = (int)v.get<int64_t>();
        return true;
    }
    if (!v.is_string())
        return false;
    for (int i = 0; i < 4; i++)
        if (v.get_ref<const std::string &>() == SeverityNames[i] ||
            (i == 2 && v.get_ref<const std::string &>() == "info")) {
            *out = i + 1;
            return true;
        }
    return false;
}

static bool readStrings(const Json &v, std::vector<std::string> *out)
{
    std::vector<std::string> list;
    if (v.is_string()) {
        list.push_back(v.get<std::string>());
    } else if (v.is_array()) {
        for (const Json &e : v) {
            if (!e.is_string())
                return false;
            list.push_back(e.get<std::string>());
        }
    } else {
        return false;
    }
    *out = list;
    return true;
}

/* One layer onto `settings`; each problem goes to `warnings`. */
static void readLayer(const Json &layer, ServerSettings *settings, std::vector<std::string> *warnings)
{
    const Json *object = settingsLayer(layer);
    if (!object) {
        if (!layer.is_null())
            warnings->push_back("the settings must be a JSON object");
        return;
    }
    for (auto it = object->begin(); it != object->end(); ++it) {
        const std::string &key = it.key();
        const Json &v = it.value();
        std::string bad;
        if (v.is_null())
            continue;
        if (key == "lexicons") {
            std::vector<std::string> names;
            if (readStrings(v, &names))
                settings->check.lexicons = names;
            else
                bad = "a list of lexicon names or files";
        } else if (key == "personalDictionary") {
            if (v.is_string() && !v.get_ref<const std::string &>().empty())
                settings->check.personalPath = expandHome(v.get<std::string>());
            else
                bad = "a file name";
        } else if (key == "projectDictionary") {
            if (v.is_string() && !v.get_ref<const std::string &>().empty())
                settings->projectName = v.get<std::string>();
            else
                bad = "a file name";
        } else if (key == "languages") {
            if (!readStrings(v, &settings->languages))
                bad = "a list of languageIds";
        } else if (key == "maxSuggestions") {
            if (v.is_number_integer() && v.get<int64_t>() >= 1 && v.get<int64_t>() <= 100)
                settings->check.maxSuggestions = (int)v.get<int64_t>();
            else
                bad = "a whole number from 1 to 100";
        } else if (key == "severity") {
            int all;
            if (readSeverity(v, &all)) {
                for (int &k : settings->severity)
                    k = all;
            } else if (v.is_object()) {
                for (auto k = v.begin(); k != v.end(); ++k) {
                    int kind = -1;
                    for (int i = 0; i < ProblemKinds; i++)
                        if (k.key() == KindNames[i])
                            kind = i;
                    if (kind < 0 || !readSeverity(k.value(), &settings->severity[kind]))
                        warnings->push_back("bad severity." + k.key() +
                                            ": give error, warning, information or hint for misspelled, "
                                            "change, capitalization or doubled");
                }
            } else {
                bad = "error, warning, information or hint, or an object of them by kind";
            }
        } else if (key == "options" && !v.is_object()) {
            bad = "an object of option names and true or false";
        } else if (key == "options") {
            for (auto o = v.begin(); o != v.end(); ++o) {
                uint32_t bit = optionBitByName(o.key().c_str());
                const Json &on = o.value();
                bool flag = on.is_boolean() ? on.get<bool>() : on.is_number_integer() && on.get<int64_t>() == 1;
                if (bit == 0 || !(on.is_boolean() || (on.is_number_integer() && on.get<int64_t>() >= 0 &&
                                                      on.get<int64_t>() <= 1)))
                    warnings->push_back("bad option '" + o.key() + "': give an option name of 'orto list " +
                                        "--help' with true or false");
                else
                    settings->check.settings.push_back({bit, flag ? 1 : 0});
            }
        } else {
            warnings->push_back("unknown setting '" + key + "'");
        }
        if (!bad.empty())
            warnings->push_back("bad setting '" + key + "': it takes " + bad);
    }
}

/* Drops the lexicons that can't be found, with a warning each. */
static void checkLexiconNames(const Server &s, std::vector<std::string> *names, std::vector<std::string> *warnings)
{
    std::vector<std::string> kept;
    for (const std::string &name : *names) {
        std::string path;
        if (name.empty()) {
            warnings->push_back("an empty lexicon name");
            continue;
        }
        if (name.find('/') != std::string::npos || name[0] == '~') {
            path = settingPath(s, name);
            if (isFile(path)) {
                kept.push_back(path);
                continue;
            }
        } else if (isFile(name) || findBundledLexicon(name, &path)) {
            kept.push_back(name);
            continue;
        }
        warnings->push_back("no lexicon '" + name + "': no such file, and no bundled lexicon of that name");
    }
    *names = kept;
}

void closeServerLexicons(Server *s)
{
    if (s->haveLexicons)
        closeLexicons(&s->lexicons);
    s->haveLexicons = false;
    s->projectLex = -1;
}

static void openProjectDictionary(Server *s)
{
    s->projectLex = -1;
    s->projectIsWordList = false;
    if (s->projectPath.empty())
        return;
    bool utf8;
    LexFileShape shape = lexFileShape(s->projectPath, &utf8);
    if (shape == ShapeMissing && errno == ENOENT)
        return; /* made at the first add */
    if (shape == ShapeEngineText || shape == ShapeUnixText) {
        s->projectLex = shape == ShapeEngineText ? ORTO_OpenLex(s->lexicons.sid, s->projectPath.c_str(), 0)
                                                 : openLexiconFile(s->lexicons.sid, s->projectPath);
        s->projectIsWordList = shape == ShapeUnixText;
        /* a list of ASCII alone takes new words in UTF-8 */
        s->projectUtf8 = utf8;
        if (FILE *f = fopen(s->projectPath.c_str(), "rb")) {
            int c;
            bool high = false;
            while (!high && (c = fgetc(f)) != EOF)
                high = c >= 0x80;
            fclose(f);
            s->projectUtf8 = utf8 || !high;
        }
        if (s->projectLex >= 0)
            return;
    }
    showMessage(&s->io, MessageWarning,
                "the project dictionary " + s->projectPath + " can't be opened: it must be a text lexicon or a "
                "word list");
}

/* Opens the session; false when not even the lexicons of the command
 * line open. */
static bool openServerLexicons(Server *s, std::vector<std::string> *warnings)
{
    closeServerLexicons(s);
    CheckOptions options = s->settings.check;
    if (openLexicons(options, true, &s->lexicons) != ExitOk) {
        warnings->push_back("the lexicons of the settings can't be opened (see the server's log); "
                            "using those of the command line");
        CheckOptions fallback = s->startOptions;
        if (openLexicons(fallback, true, &s->lexicons) != ExitOk) {
            showMessage(&s->io, MessageError, "no lexicon can be opened; nothing is checked");
            return false;
        }
    }
    s->haveLexicons = true;
    for (const std::string &w : s->ignored)
        acceptForRun(&s->lexicons, w);
    openProjectDictionary(s);
    return true;
}

bool applySettings(Server *s)
{
    ServerSettings next;
    next.check = s->startOptions;
    next.projectName = DefaultProjectName;
    next.languages.clear();
    next.severity[KindMisspelled] = 3;
    next.severity[KindChange] = 3;
    next.severity[KindCapitalization] = 3;
    next.severity[KindDoubled] = 2;
    std::vector<std::string> warnings;
    readLayer(s->initOptions, &next, &warnings);
    readLayer(s->configuration, &next, &warnings);
    checkLexiconNames(*s, &next.check.lexicons, &warnings);

    std::string projectPath = s->root.empty() ? std::string() : settingPath(*s, next.projectName);
    const CheckOptions &a = next.check, &b = s->settings.check;
    bool sameOptions = a.settings.size() == b.settings.size();
    for (size_t i = 0; sameOptions && i < a.settings.size(); i++)
        sameOptions = a.settings[i].bit == b.settings[i].bit && a.settings[i].on == b.settings[i].on;
    bool reopen = !s->haveLexicons || !sameOptions || a.lexicons != b.lexicons ||
                  a.personalPath != b.personalPath || projectPath != s->projectPath;
    bool changed = reopen || next.languages != s->settings.languages || a.maxSuggestions != b.maxSuggestions;
    for (int k = 0; k < ProblemKinds; k++)
        changed = changed || next.severity[k] != s->settings.severity[k];
    s->settings = next;
    s->projectPath = projectPath;
    if (reopen)
        openServerLexicons(s, &warnings);
    /* every layer is read again each time: what was said stays unsaid */
    for (const std::string &w : warnings)
        if (std::find(s->warnings.begin(), s->warnings.end(), w) == s->warnings.end())
            showMessage(&s->io, MessageWarning, w);
    s->warnings = warnings;
    return changed;
}

static bool storable(Server *s, const std::string &word)
{
    if (isStorableWord(word))
        return true;
    showMessage(&s->io, MessageWarning, "'" + fromEngineText(word, EncodingUtf8) + "' can't be added");
    return false;
}

bool addToPersonalDictionary(Server *s, const std::string &word)
{
    if (!s->haveLexicons || !storable(s, word))
        return false;
    int16_t rc = addToPersonal(&s->lexicons, word);
    if (rc < 0)
        showMessage(&s->io, MessageError, "cannot add to the personal dictionary " +
                                              s->lexicons.personalPath + ": " + resultText(rc));
    return rc >= 0;
}

/* Appends a line to the project's word list. */
static bool appendWord(Server *s, const std::string &word)
{
    FILE *f = fopen(s->projectPath.c_str(), "a+b");
    if (!f)
        return false;
    bool newline = fseek(f, -1, SEEK_END) == 0 && fgetc(f) != '\n';
    std::string line = (newline ? "\n" : "") +
                       (s->projectUtf8 ? fromEngineText(word, EncodingUtf8) : word) + "\n";
    fseek(f, 0, SEEK_END);
    bool ok = fwrite(line.data(), 1, line.size(), f) == line.size();
    return fclose(f) == 0 && ok;
}

bool addToProjectDictionary(Server *s, const std::string &word)
{
    if (!s->haveLexicons || !storable(s, word))
        return false;
    if (s->projectPath.empty()) {
        showMessage(&s->io, MessageWarning, "no workspace folder, so no project dictionary");
        return false;
    }
    const char *path = s->projectPath.c_str();
    if (s->projectLex < 0) {
        int16_t lex = ORTO_CreateLex(s->lexicons.sid, path, s->lexicons.language);
        if (lex == ORTO_FileExists) { /* made meanwhile by someone else */
            openProjectDictionary(s);
            lex = s->projectLex;
        }
        if (lex < 0) {
            showMessage(&s->io, MessageError,
                        "cannot make the project dictionary " + s->projectPath + ": " + resultText(lex));
            return false;
        }
        s->projectLex = lex;
    }
    if (s->projectIsWordList && !appendWord(s, word)) {
        showMessage(&s->io, MessageError,
                    "cannot add to the project dictionary " + s->projectPath + ": " + strerror(errno));
        return false;
    }
    int16_t rc = ORTO_AddToLex(s->lexicons.sid, s->projectLex, word.c_str(), ORTO_Ignore, nullptr);
    if (rc < 0)
        showMessage(&s->io, MessageError,
                    "cannot add to the project dictionary " + s->projectPath + ": " + resultText(rc));
    return rc >= 0;
}

bool ignoreForSession(Server *s, const std::string &word)
{
    if (!s->haveLexicons || !storable(s, word))
        return false;
    int16_t rc = acceptForRun(&s->lexicons, word);
    if (rc < 0) {
        showMessage(&s->io, MessageError, std::string("cannot ignore the word: ") + resultText(rc));
        return false;
    }
    s->ignored.push_back(word);
    return true;
}
