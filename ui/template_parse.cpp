/*
 * template_parse.cpp -- dialog templates written as resource-script text,
 * the language in which hosts have always written their dialogs:
 *
 *     CHECKSPELLINGDLG DIALOG 15, 28, 266, 177
 *     STYLE DS_MODALFRAME | WS_POPUP | WS_CAPTION
 *     CAPTION "Check Spelling"
 *     FONT 8, "MS Sans Serif"
 *     BEGIN
 *         LTEXT "Change &To:", 1032, 4, 18, 72, 8
 *         EDITTEXT 1010, 78, 16, 88, 12, ES_AUTOHSCROLL
 *         CONTROL "", 1050, "RICHEDIT", ES_MULTILINE | WS_VSCROLL, 4, 112, 259, 60
 *     END
 *
 * A recursive descent over a small tokenizer.  Style expressions combine
 * names and numbers with `|`, `+`, `-` and parentheses; `NOT X` takes bits
 * off the statement's default style, as the resource compiler does.
 * `#define NAME number` lines name numbers; other `#` lines are passed
 * over.  Only DIALOG and DIALOGEX resources are read; anything else is an
 * error with its line, never a guess.
 */
#include <ctype.h>
#include <stdio.h>
#include <string.h>
#include <strings.h>

#include <map>

#include "ui/window.h"

enum TokenKind { TokEnd, TokName, TokNumber, TokString, TokPunct };

struct Token {
    TokenKind kind;
    std::string text;             /* name, string contents, or the punctuation character */
    int64_t number;
    int line;
};

struct Parser {
    const char *p;
    int line;
    Token token;                  /* the current token */
    std::map<std::string, int64_t> defines;
    char *error;
    size_t errorSize;
    bool failed;
};

struct Symbol {
    const char *name;
    uint32_t value;
};

static const Symbol symbols[] = {
    {"WS_POPUP", WS_POPUP}, {"WS_CHILD", WS_CHILD}, {"WS_VISIBLE", WS_VISIBLE},
    {"WS_DISABLED", WS_DISABLED}, {"WS_CAPTION", WS_CAPTION}, {"WS_BORDER", WS_BORDER},
    {"WS_VSCROLL", WS_VSCROLL}, {"WS_HSCROLL", WS_HSCROLL}, {"WS_SYSMENU", WS_SYSMENU},
    {"WS_GROUP", WS_GROUP}, {"WS_TABSTOP", WS_TABSTOP}, {"WS_DLGFRAME", 0x00400000u},
    {"WS_THICKFRAME", 0x00040000u}, {"WS_OVERLAPPED", 0}, {"WS_CLIPSIBLINGS", 0x04000000u},
    {"WS_EX_CLIENTEDGE", 0x200}, {"WS_EX_STATICEDGE", 0x20000}, {"WS_EX_TRANSPARENT", 0x20},
    {"DS_MODALFRAME", DS_MODALFRAME}, {"DS_SETFONT", DS_SETFONT}, {"DS_3DLOOK", 0x4},
    {"DS_CENTER", 0x800}, {"DS_SHELLFONT", 0x48}, {"DS_FIXEDSYS", 0x8}, {"DS_ABSALIGN", 0x1},
    {"ES_LEFT", ES_LEFT}, {"ES_CENTER", ES_CENTER}, {"ES_RIGHT", ES_RIGHT},
    {"ES_MULTILINE", ES_MULTILINE}, {"ES_UPPERCASE", ES_UPPERCASE}, {"ES_LOWERCASE", 0x10},
    {"ES_PASSWORD", 0x20}, {"ES_AUTOVSCROLL", ES_AUTOVSCROLL}, {"ES_AUTOHSCROLL", ES_AUTOHSCROLL},
    {"ES_NOHIDESEL", ES_NOHIDESEL}, {"ES_OEMCONVERT", 0x400}, {"ES_READONLY", ES_READONLY},
    {"ES_WANTRETURN", 0x1000}, {"ES_NUMBER", 0x2000},
    {"SS_LEFT", SS_LEFT}, {"SS_CENTER", SS_CENTER}, {"SS_RIGHT", SS_RIGHT},
    {"SS_NOPREFIX", SS_NOPREFIX}, {"SS_LEFTNOWORDWRAP", 0xC}, {"SS_SIMPLE", 0xB},
    {"BS_PUSHBUTTON", BS_PUSHBUTTON}, {"BS_DEFPUSHBUTTON", BS_DEFPUSHBUTTON},
    {"BS_CHECKBOX", BS_CHECKBOX}, {"BS_AUTOCHECKBOX", BS_AUTOCHECKBOX},
    {"BS_RADIOBUTTON", BS_RADIOBUTTON}, {"BS_3STATE", BS_3STATE}, {"BS_AUTO3STATE", BS_AUTO3STATE},
    {"BS_GROUPBOX", BS_GROUPBOX}, {"BS_AUTORADIOBUTTON", BS_AUTORADIOBUTTON},
    {"BS_LEFTTEXT", 0x20}, {"BS_LEFT", 0x100}, {"BS_RIGHT", 0x200}, {"BS_CENTER", 0x300},
    {"LBS_NOTIFY", LBS_NOTIFY}, {"LBS_SORT", LBS_SORT}, {"LBS_HASSTRINGS", LBS_HASSTRINGS},
    {"LBS_NOINTEGRALHEIGHT", LBS_NOINTEGRALHEIGHT}, {"LBS_STANDARD", 0x00A00003u},
    {"LBS_WANTKEYBOARDINPUT", 0x400}, {"LBS_DISABLENOSCROLL", 0x1000},
    {"CBS_SIMPLE", CBS_SIMPLE}, {"CBS_DROPDOWN", CBS_DROPDOWN}, {"CBS_DROPDOWNLIST", CBS_DROPDOWNLIST},
    {"CBS_AUTOHSCROLL", CBS_AUTOHSCROLL}, {"CBS_SORT", CBS_SORT}, {"CBS_HASSTRINGS", CBS_HASSTRINGS},
    {"CBS_DISABLENOSCROLL", 0x800}, {"CBS_NOINTEGRALHEIGHT", 0x400},
    {"IDOK", 1}, {"IDCANCEL", 2}, {"IDABORT", 3}, {"IDRETRY", 4}, {"IDIGNORE", 5},
    {"IDYES", 6}, {"IDNO", 7}, {"IDHELP", 9}, {"IDC_STATIC", 0xFFFFFFFFu},
};

static void fail(Parser *ps, int line, const char *format, const char *what)
{
    if (ps->failed)
        return;
    ps->failed = true;
    char message[256];
    snprintf(message, sizeof message, format, what);
    if (ps->error && ps->errorSize > 0)
        snprintf(ps->error, ps->errorSize, "line %d: %s", line, message);
}

/* What a token looks like in a message. */
static std::string describe(const Token &t)
{
    switch (t.kind) {
    case TokEnd:
        return "the end of the text";
    case TokString:
        return "\"" + t.text.substr(0, 40) + "\"";
    default:
        return "'" + t.text.substr(0, 40) + "'";
    }
}

static void skipPreprocessorLine(Parser *ps)
{
    const char *start = ps->p + 1;
    const char *end = start;
    while (*end && *end != '\n')
        end++;
    std::string line(start, end);
    char name[128];
    char value[128];
    /* "#define NAME number": the one directive that gives ids their names */
    if (sscanf(line.c_str(), " define %127s %127s", name, value) == 2) {
        char *rest = nullptr;
        long long v = strtoll(value, &rest, 0);
        if (rest && rest != value)
            ps->defines[name] = v;
    }
    ps->p = end;
}

static void nextToken(Parser *ps)
{
    Token &t = ps->token;
    t.text.clear();
    t.number = 0;
    for (;;) {
        while (*ps->p && isspace((unsigned char)*ps->p)) {
            if (*ps->p == '\n')
                ps->line++;
            ps->p++;
        }
        if (ps->p[0] == '/' && ps->p[1] == '/') {
            while (*ps->p && *ps->p != '\n')
                ps->p++;
        } else if (ps->p[0] == '/' && ps->p[1] == '*') {
            ps->p += 2;
            while (*ps->p && !(ps->p[0] == '*' && ps->p[1] == '/')) {
                if (*ps->p == '\n')
                    ps->line++;
                ps->p++;
            }
            if (*ps->p)
                ps->p += 2;
        } else if (*ps->p == '#') {
            skipPreprocessorLine(ps);
        } else {
            break;
        }
    }
    t.line = ps->line;
    unsigned char c = (unsigned char)*ps->p;
    if (!c) {
        t.kind = TokEnd;
        return;
    }
    if (c == '"') {
        t.kind = TokString;
        ps->p++;
        for (;;) {
            char ch = *ps->p;
            if (!ch || ch == '\n') {
                fail(ps, t.line, "%s", "a string is not closed on its line");
                t.kind = TokEnd;
                return;
            }
            ps->p++;
            if (ch == '"') {
                if (*ps->p != '"')
                    break;
                ps->p++; /* "" stands for one quote */
            } else if (ch == '\\' && *ps->p) {
                ch = *ps->p++;
                ch = ch == 'n' ? '\n' : ch == 't' ? '\t' : ch;
            }
            t.text += ch;
        }
        return;
    }
    if (isdigit(c)) {
        t.kind = TokNumber;
        const char *start = ps->p;
        char *end = nullptr;
        t.number = (int64_t)strtoull(start, &end, 0);
        ps->p = end;
        while (*ps->p == 'L' || *ps->p == 'l' || *ps->p == 'U' || *ps->p == 'u')
            ps->p++;
        if (isalnum((unsigned char)*ps->p) || *ps->p == '_') {
            while (isalnum((unsigned char)*ps->p) || *ps->p == '_')
                ps->p++;
            std::string word(start, ps->p);
            fail(ps, t.line, "'%s' is not a number", word.c_str());
        }
        t.text.assign(start, ps->p);
        return;
    }
    if (isalpha(c) || c == '_') {
        t.kind = TokName;
        while (isalnum((unsigned char)*ps->p) || *ps->p == '_')
            t.text += *ps->p++;
        return;
    }
    t.kind = TokPunct;
    t.text = std::string(1, (char)c);
    ps->p++;
}

static bool isPunct(const Parser *ps, char c)
{
    return ps->token.kind == TokPunct && ps->token.text[0] == c;
}

static bool isName(const Parser *ps, const char *name)
{
    return ps->token.kind == TokName && strcasecmp(ps->token.text.c_str(), name) == 0;
}

static void expectComma(Parser *ps)
{
    if (!isPunct(ps, ','))
        fail(ps, ps->token.line, "a comma is missing before %s", describe(ps->token).c_str());
    else
        nextToken(ps);
}

/* A value with the bits that NOT takes away from a default. */
struct StyleValue {
    int64_t value;
    uint32_t removed;
};

static StyleValue parseExpression(Parser *ps);

static StyleValue parsePrimary(Parser *ps)
{
    StyleValue v{0, 0};
    Token t = ps->token;
    if (t.kind == TokNumber) {
        v.value = t.number;
        nextToken(ps);
    } else if (t.kind == TokName && strcasecmp(t.text.c_str(), "NOT") == 0) {
        nextToken(ps);
        StyleValue inner = parsePrimary(ps);
        v.removed = (uint32_t)inner.value | inner.removed;
    } else if (t.kind == TokName) {
        auto d = ps->defines.find(t.text);
        if (d != ps->defines.end()) {
            v.value = d->second;
        } else {
            bool found = false;
            for (const Symbol &s : symbols)
                if (t.text == s.name) {
                    v.value = (int32_t)s.value;
                    found = true;
                    break;
                }
            if (!found)
                fail(ps, t.line, "unknown name '%s'", t.text.c_str());
        }
        nextToken(ps);
    } else if (t.kind == TokPunct && (t.text[0] == '-' || t.text[0] == '~')) {
        nextToken(ps);
        StyleValue inner = parsePrimary(ps);
        /* wraps as the resource compiler's 32-bit arithmetic does */
        v.value = t.text[0] == '-' ? (int64_t)(0 - (uint64_t)inner.value) : ~inner.value;
    } else if (t.kind == TokPunct && t.text[0] == '(') {
        nextToken(ps);
        v = parseExpression(ps);
        if (!isPunct(ps, ')'))
            fail(ps, ps->token.line, "a ')' is missing before %s", describe(ps->token).c_str());
        else
            nextToken(ps);
    } else {
        fail(ps, t.line, "expected a number or a name, found %s", describe(t).c_str());
    }
    return v;
}

static StyleValue parseExpression(Parser *ps)
{
    StyleValue v = parsePrimary(ps);
    while (!ps->failed && (isPunct(ps, '|') || isPunct(ps, '+') || isPunct(ps, '-'))) {
        char op = ps->token.text[0];
        nextToken(ps);
        StyleValue r = parsePrimary(ps);
        uint64_t a = (uint64_t)v.value, b = (uint64_t)r.value;
        v.value = (int64_t)(op == '|' ? a | b : op == '+' ? a + b : a - b);
        v.removed |= r.removed;
    }
    return v;
}

static int32_t parseNumber(Parser *ps)
{
    StyleValue v = parseExpression(ps);
    return (int32_t)v.value;
}

/* x, y, cx, cy */
static void parseRectangle(Parser *ps, int32_t *x, int32_t *y, int32_t *cx, int32_t *cy)
{
    *x = parseNumber(ps);
    expectComma(ps);
    *y = parseNumber(ps);
    expectComma(ps);
    *cx = parseNumber(ps);
    expectComma(ps);
    *cy = parseNumber(ps);
}

static std::string parseString(Parser *ps)
{
    if (ps->token.kind != TokString) {
        fail(ps, ps->token.line, "expected a text in quotes, found %s", describe(ps->token).c_str());
        return std::string();
    }
    std::string s = ps->token.text;
    nextToken(ps);
    return s;
}

/* The control statements: class, defaults, and whether a text comes first.
 * `typeDefault` applies only when no style is given; `always` joins any. */
struct ControlStatement {
    const char *keyword;
    const char *className;
    bool hasText;
    uint32_t always;
    uint32_t typeDefault;
};

static const ControlStatement statements[] = {
    {"LTEXT", "STATIC", true, SS_LEFT | WS_GROUP, 0},
    {"RTEXT", "STATIC", true, SS_RIGHT | WS_GROUP, 0},
    {"CTEXT", "STATIC", true, SS_CENTER | WS_GROUP, 0},
    {"PUSHBUTTON", "BUTTON", true, BS_PUSHBUTTON | WS_TABSTOP, 0},
    {"DEFPUSHBUTTON", "BUTTON", true, BS_DEFPUSHBUTTON | WS_TABSTOP, 0},
    {"CHECKBOX", "BUTTON", true, BS_CHECKBOX | WS_TABSTOP, 0},
    {"AUTOCHECKBOX", "BUTTON", true, BS_AUTOCHECKBOX | WS_TABSTOP, 0},
    {"RADIOBUTTON", "BUTTON", true, BS_RADIOBUTTON | WS_TABSTOP, 0},
    {"AUTORADIOBUTTON", "BUTTON", true, BS_AUTORADIOBUTTON | WS_TABSTOP, 0},
    {"STATE3", "BUTTON", true, BS_3STATE | WS_TABSTOP, 0},
    {"AUTO3STATE", "BUTTON", true, BS_AUTO3STATE | WS_TABSTOP, 0},
    {"GROUPBOX", "BUTTON", true, BS_GROUPBOX, 0},
    {"EDITTEXT", "EDIT", false, WS_BORDER | WS_TABSTOP, ES_LEFT},
    {"LISTBOX", "LISTBOX", false, WS_BORDER, LBS_NOTIFY},
    {"COMBOBOX", "COMBOBOX", false, WS_TABSTOP, CBS_SIMPLE},
};

static void parseControl(Parser *ps, DialogTemplate *dialog)
{
    ControlTemplate c{};
    Token keyword = ps->token;
    const ControlStatement *statement = nullptr;
    for (const ControlStatement &s : statements)
        if (keyword.kind == TokName && strcasecmp(keyword.text.c_str(), s.keyword) == 0)
            statement = &s;
    bool generic = keyword.kind == TokName && strcasecmp(keyword.text.c_str(), "CONTROL") == 0;
    if (!statement && !generic) {
        fail(ps, keyword.line, "unknown control statement %s", describe(keyword).c_str());
        return;
    }
    nextToken(ps);
    StyleValue style{0, 0};
    bool styleGiven = false;
    if (generic || statement->hasText) {
        c.text = parseString(ps);
        expectComma(ps);
    }
    c.id = parseNumber(ps);
    if (generic) {
        expectComma(ps);
        std::string className;
        if (ps->token.kind == TokString || ps->token.kind == TokName) {
            className = ps->token.text;
            nextToken(ps);
        } else {
            fail(ps, ps->token.line, "expected a window class, found %s", describe(ps->token).c_str());
        }
        snprintf(c.className, sizeof c.className, "%s", className.c_str());
        expectComma(ps);
        style = parseExpression(ps);
        styleGiven = true;
    } else {
        snprintf(c.className, sizeof c.className, "%s", statement->className);
    }
    expectComma(ps);
    parseRectangle(ps, &c.x, &c.y, &c.cx, &c.cy);
    if (!generic && isPunct(ps, ',')) {
        nextToken(ps);
        style = parseExpression(ps);
        styleGiven = true;
    }
    if (isPunct(ps, ',')) { /* extended style: read, not used */
        nextToken(ps);
        parseExpression(ps);
    }
    if (ps->failed)
        return;
    int kind = windowKindOfClass(c.className);
    if (kind < 0 || kind == KindDialog) {
        fail(ps, keyword.line, "unknown window class \"%s\"", c.className);
        return;
    }
    c.kind = (WindowKind)kind;
    uint32_t bits = WS_CHILD | WS_VISIBLE;
    if (statement)
        bits |= statement->always | (styleGiven ? 0 : statement->typeDefault);
    c.style = (bits | (uint32_t)style.value) & ~style.removed;
    dialog->controls.push_back(c);
}

/* LANGUAGE primary, sub: read and passed over. */
static void skipLanguage(Parser *ps)
{
    nextToken(ps);
    parseNumber(ps);
    expectComma(ps);
    parseNumber(ps);
}

static void parseDialog(Parser *ps, std::vector<DialogTemplate> *out)
{
    DialogTemplate d{};
    d.line = ps->token.line;
    d.name = ps->token.text;
    nextToken(ps);
    if (!isName(ps, "DIALOG") && !isName(ps, "DIALOGEX")) {
        fail(ps, ps->token.line, "only DIALOG templates can be read here, not %s", describe(ps->token).c_str());
        return;
    }
    nextToken(ps);
    parseRectangle(ps, &d.x, &d.y, &d.cx, &d.cy);
    if (isPunct(ps, ',')) { /* DIALOGEX help id */
        nextToken(ps);
        parseNumber(ps);
    }
    d.style = WS_POPUP | WS_BORDER | WS_SYSMENU;
    bool captionGiven = false;
    while (!ps->failed && !isName(ps, "BEGIN") && !isPunct(ps, '{')) {
        Token t = ps->token;
        if (isName(ps, "STYLE")) {
            nextToken(ps);
            StyleValue v = parseExpression(ps);
            d.style = (uint32_t)v.value & ~v.removed;
        } else if (isName(ps, "EXSTYLE") || isName(ps, "CHARACTERISTICS") || isName(ps, "VERSION")) {
            nextToken(ps);
            parseExpression(ps);
        } else if (isName(ps, "CAPTION")) {
            nextToken(ps);
            d.caption = parseString(ps);
            captionGiven = true;
        } else if (isName(ps, "FONT")) {
            nextToken(ps);
            d.fontSize = parseNumber(ps);
            expectComma(ps);
            d.fontFace = parseString(ps);
            if (isPunct(ps, ',')) {
                nextToken(ps);
                d.fontWeight = parseNumber(ps);
            }
            while (!ps->failed && isPunct(ps, ',')) { /* italic, character set */
                nextToken(ps);
                parseNumber(ps);
            }
        } else if (isName(ps, "LANGUAGE")) {
            skipLanguage(ps);
        } else if (isName(ps, "MENU") || isName(ps, "CLASS")) {
            nextToken(ps);
            nextToken(ps);
        } else {
            fail(ps, t.line, "unknown dialog statement %s", describe(t).c_str());
        }
    }
    if (ps->failed)
        return;
    if (captionGiven)
        d.style |= WS_CAPTION;
    nextToken(ps); /* BEGIN */
    while (!ps->failed && !isName(ps, "END") && !isPunct(ps, '}')) {
        if (ps->token.kind == TokEnd) {
            fail(ps, d.line, "the dialog %s has no END", d.name.c_str());
            return;
        }
        parseControl(ps, &d);
    }
    if (ps->failed)
        return;
    nextToken(ps); /* END */
    out->push_back(d);
}

int parseTemplates(const char *script, std::vector<DialogTemplate> *out, char *error, size_t errorSize)
{
    Parser ps{};
    ps.p = script ? script : "";
    ps.line = 1;
    ps.error = error;
    ps.errorSize = errorSize;
    if (error && errorSize > 0)
        error[0] = '\0';
    nextToken(&ps);
    while (!ps.failed && ps.token.kind != TokEnd) {
        if (isName(&ps, "LANGUAGE")) {
            skipLanguage(&ps);
        } else if (ps.token.kind == TokName || ps.token.kind == TokNumber || ps.token.kind == TokString) {
            parseDialog(&ps, out);
        } else {
            fail(&ps, ps.token.line, "expected the name of a dialog, found %s", describe(ps.token).c_str());
        }
    }
    return ps.failed ? -1 : 0;
}

/* To the nearest cell, halves down: 2 units are no column, 6 are one. */
static int32_t scaleUnits(int32_t units, int32_t per, int isSize)
{
    int64_t u = units;
    int32_t cells = (int32_t)(u >= 0 ? (2 * u + per - 1) / (2 * per) : -((-2 * u + per) / (2 * per)));
    if (isSize && units > 0 && cells < 1)
        cells = 1;
    return cells;
}

int32_t unitsToColumns(int32_t units, int isSize) { return scaleUnits(units, 4, isSize); }

int32_t unitsToRows(int32_t units, int isSize) { return scaleUnits(units, 8, isSize); }
