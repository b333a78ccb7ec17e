/*
 * lsp_scope.cpp -- what of a document is checked, by its languageId.
 *
 * Plain text is checked whole.  Markdown loses its front matter, fenced,
 * indented and inline code, HTML tags, link targets and reference labels,
 * and URLs.
 * Source code keeps only its comments and string literals, found by a
 * small table of comment and string syntax per language family; a
 * language the table lacks is checked as plain text.
 *
 * Each line is scanned on its own with the state that the line before it
 * left (inside a fence, a block comment, a string that spans lines), so an
 * edit rescans lines only until the states agree again.  What isn't
 * checked is overwritten in the line's engine text by a punctuation byte:
 * positions stay as they are, no word is made of two pieces, and the
 * doubled-word test doesn't look across hidden text.
 */
#include <string.h>

#include "lsp.h"

struct CodeSyntax {
    const char *languageIds;  /* the languageIds of the family, blank-separated */
    const char *lineComment;  /* null when none */
    const char *blockOpen;    /* null when none */
    const char *blockClose;
    const char *quotes;       /* open strings that end on their line */
    const char *longQuotes;   /* open strings that may run over lines */
    bool tripleQuotes;        /* """ and ''' open strings that run over lines */
    bool preprocessor;        /* #include and #import lines are code alone */
};

static const CodeSyntax CodeSyntaxes[] = {
    {"c cpp cuda-cpp objective-c objective-cpp java csharp kotlin scala swift dart groovy php",
     "//", "/*", "*/", "\"", "", false, true},
    {"javascript javascriptreact typescript typescriptreact", "//", "/*", "*/", "\"'", "`", false, false},
    {"go", "//", "/*", "*/", "\"", "`", false, false},
    {"rust", "//", "/*", "*/", "\"", "", false, false},
    {"css scss less", "//", "/*", "*/", "\"'", "", false, false},
    {"python", "#", nullptr, nullptr, "\"'", "", true, false},
    {"shellscript sh bash zsh fish ruby perl r makefile cmake dockerfile elixir powershell", "#", nullptr,
     nullptr, "\"'", "", false, false},
    {"lua", "--", "--[[", "]]", "\"'", "", false, false},
    {"sql", "--", "/*", "*/", "'", "", false, false},
    {"haskell", "--", "{-", "-}", "\"", "", false, false},
    {"clojure lisp scheme racket", ";", nullptr, nullptr, "\"", "", false, false},
};

static bool listHas(const char *list, const std::string &word)
{
    for (const char *p = list; *p;) {
        const char *end = strchr(p, ' ');
        size_t n = end ? (size_t)(end - p) : strlen(p);
        if (n == word.size() && word.compare(0, n, p, n) == 0)
            return true;
        p += n;
        while (*p == ' ')
            p++;
    }
    return false;
}

void chooseScope(Document *doc)
{
    doc->syntax = nullptr;
    doc->scope = ScopePlain;
    if (doc->languageId == "markdown" || doc->languageId == "md") {
        doc->scope = ScopeMarkdown;
        return;
    }
    for (const CodeSyntax &c : CodeSyntaxes)
        if (listHas(c.languageIds, doc->languageId)) {
            doc->scope = ScopeCode;
            doc->syntax = &c;
            return;
        }
}

static bool isAlnum(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

static bool startsWith(const std::string &s, size_t at, const char *prefix)
{
    return s.compare(at, strlen(prefix), prefix) == 0;
}

static void hide(std::string *s, size_t from, size_t to)
{
    for (size_t i = from; i < to && i < s->size(); i++)
        (*s)[i] = HiddenByte;
}

/* The end of a URL that begins at `at`, or `at` when none does. */
static size_t urlEnd(const std::string &s, size_t at)
{
    static const char *const Schemes[] = {"http://", "https://", "ftp://", "file://", "mailto:", "www."};
    if (at > 0 && (isAlnum(s[at - 1]) || s[at - 1] == '.'))
        return at;
    for (const char *scheme : Schemes) {
        if (!startsWith(s, at, scheme))
            continue;
        size_t end = at + strlen(scheme);
        while (end < s.size() && !strchr(" \t<>\"`", s[end]))
            end++;
        return end;
    }
    return at;
}

static void hideUrls(std::string *s, size_t from, size_t to)
{
    for (size_t i = from; i < to; i++) {
        size_t end = urlEnd(*s, i);
        if (end > i) {
            end = end < to ? end : to;
            hide(s, i, end);
            i = end;
        }
    }
}

/* ---- Markdown ---- */

/* A line's state: the block it is in (low 16 bits), whether a paragraph
 * is open (an indented line then continues it rather than being code), and
 * the column where the innermost list item's text begins (0: no list), so
 * that an item's indented paragraphs stay text and its code needs 4 more. */
enum {
    MarkdownText = 0,
    MarkdownYaml = 1,       /* front matter between --- lines */
    MarkdownToml = 2,       /* front matter between +++ lines */
    MarkdownFence = 0x1000, /* | 0x800 for ~~~, | the fence length (up to 0x7FF) */
    MarkdownBlockMask = 0xFFFF,
    MarkdownParagraph = 0x10000,
    MarkdownListShift = 20, /* 8 bits of list column */
};

static std::string trimmed(const std::string &s)
{
    size_t b = s.find_first_not_of(" \t");
    if (b == std::string::npos)
        return std::string();
    return s.substr(b, s.find_last_not_of(" \t") - b + 1);
}

/* A fence line: up to three blanks, then three or more ` or ~.  Sets the
 * fence character, its count, and whether nothing but blanks follows. */
static bool fenceLine(const std::string &s, char *fence, size_t *count, bool *bare)
{
    size_t i = 0;
    while (i < s.size() && i < 3 && s[i] == ' ')
        i++;
    if (i >= s.size() || (s[i] != '`' && s[i] != '~'))
        return false;
    char c = s[i];
    size_t n = 0;
    while (i + n < s.size() && s[i + n] == c)
        n++;
    if (n < 3)
        return false;
    *fence = c;
    *count = n;
    *bare = s.find_first_not_of(" \t", i + n) == std::string::npos;
    return true;
}

/* Where a run of exactly `count` backticks begins at `from` or later. */
static size_t backtickRun(const std::string &s, size_t from, size_t count)
{
    for (size_t i = s.find('`', from); i != std::string::npos; i = s.find('`', i)) {
        size_t n = 0;
        while (i + n < s.size() && s[i + n] == '`')
            n++;
        if (n == count)
            return i;
        i += n;
    }
    return std::string::npos;
}

/* The ')' that closes the '(' at `open`, or npos. */
static size_t closingParen(const std::string &s, size_t open)
{
    int depth = 0;
    for (size_t i = open; i < s.size(); i++) {
        if (s[i] == '(')
            depth++;
        else if (s[i] == ')' && --depth == 0)
            return i;
    }
    return std::string::npos;
}

static void hideMarkdownInline(std::string *s)
{
    std::string &t = *s;
    /* a reference definition: [label]: target */
    size_t lead = t.find_first_not_of(' ');
    if (lead != std::string::npos && lead < 4 && t[lead] == '[') {
        size_t close = t.find("]:", lead);
        if (close != std::string::npos) {
            size_t target = t.find_first_not_of(" \t", close + 2);
            size_t end = target == std::string::npos ? t.size() : t.find_first_of(" \t", target);
            hide(s, lead, end == std::string::npos ? t.size() : end);
        }
    }
    /* searches that found nothing once find nothing later either, which
     * keeps a line of many unmatched marks linear */
    size_t noCloseAngle = std::string::npos, noCloseParen = std::string::npos;
    std::map<size_t, size_t> noRun;
    for (size_t i = 0; i < t.size();) {
        char c = t[i];
        if (c == '`') {
            size_t n = 0;
            while (i + n < t.size() && t[i + n] == '`')
                n++;
            auto failed = noRun.find(n);
            size_t close = failed != noRun.end() && failed->second <= i ? std::string::npos
                                                                       : backtickRun(t, i + n, n);
            if (close == std::string::npos) {
                noRun[n] = i;
                i += n;
                continue;
            }
            hide(s, i, close + n);
            i = close + n;
        } else if (c == '<' && i + 1 < t.size() && (isAlnum(t[i + 1]) || strchr("/!?", t[i + 1])) &&
                   (noCloseAngle == std::string::npos || noCloseAngle > i)) {
            size_t close = t.find('>', i + 1);
            if (close == std::string::npos) {
                noCloseAngle = i;
                i++;
                continue;
            }
            hide(s, i, close + 1);
            i = close + 1;
        } else if (c == ']' && i + 1 < t.size() && t[i + 1] == '(' &&
                   (noCloseParen == std::string::npos || noCloseParen > i)) {
            size_t close = closingParen(t, i + 1);
            if (close == std::string::npos) {
                noCloseParen = i;
                i++;
                continue;
            }
            hide(s, i + 1, close + 1);
            i = close + 1;
        } else if (c == ']' && i + 1 < t.size() && t[i + 1] == '[') {
            size_t close = t.find(']', i + 2);
            if (close == std::string::npos) {
                i++;
                continue;
            }
            hide(s, i + 1, close + 1);
            i = close + 1;
        } else {
            size_t end = urlEnd(t, i);
            if (end > i)
                hide(s, i, end);
            i = end > i ? end : i + 1;
        }
    }
}

/* Columns of blank before the line's first other character, a tab
 * going on to the next multiple of 4; `at` gets that character's index. */
static size_t indentOf(const std::string &s, size_t *at)
{
    size_t col = 0, i = 0;
    for (; i < s.size() && (s[i] == ' ' || s[i] == '\t'); i++)
        col = s[i] == '\t' ? (col / 4 + 1) * 4 : col + 1;
    *at = i;
    return col;
}

/* A list item's marker at `at` (-, * or + or 1-9 digits with . or ), then
 * a blank): the column where the item's text begins, or 0 when none. */
static size_t listItemText(const std::string &s, size_t at, size_t col)
{
    size_t i = at;
    if (i < s.size() && s[i] && strchr("-*+", s[i]))
        i++;
    else {
        while (i < s.size() && i - at < 9 && s[i] >= '0' && s[i] <= '9')
            i++;
        if (i == at || i >= s.size() || (s[i] != '.' && s[i] != ')'))
            return 0;
        i++;
    }
    if (i >= s.size() || s[i] != ' ')
        return 0;
    size_t blanks = s.find_first_not_of(' ', i);
    blanks = blanks == std::string::npos ? 1 : blanks - i;
    return col + (i - at) + (blanks <= 4 ? blanks : 1);
}

static uint32_t scanMarkdown(const std::string &text, size_t lineIndex, uint32_t state, std::string *engine)
{
    std::string line = trimmed(text);
    uint32_t block = state & MarkdownBlockMask;
    size_t list = state >> MarkdownListShift;
    uint32_t keepList = state & ~(uint32_t)(MarkdownBlockMask | MarkdownParagraph);
    if (block == MarkdownYaml || block == MarkdownToml) {
        hide(engine, 0, engine->size());
        bool end = block == MarkdownYaml ? line == "---" || line == "..." : line == "+++";
        return end ? (uint32_t)MarkdownText : state;
    }
    if (lineIndex == 0 && (text == "---" || text == "+++")) {
        hide(engine, 0, engine->size());
        return text == "---" ? MarkdownYaml : MarkdownToml;
    }
    char fence;
    size_t count;
    bool bare;
    if (block & MarkdownFence) {
        hide(engine, 0, engine->size());
        char open = (block & 0x800) ? '~' : '`';
        size_t openCount = block & 0x7FF;
        if (fenceLine(text, &fence, &count, &bare) && fence == open && count >= openCount && bare)
            return keepList | MarkdownText;
        return state;
    }
    if (line.empty())
        return keepList;
    size_t at;
    size_t col = indentOf(text, &at);
    /* indented code: 4 columns past the list's text, not inside a paragraph */
    if (col >= list + 4 && !(state & MarkdownParagraph)) {
        hide(engine, 0, engine->size());
        return keepList;
    }
    if (fenceLine(text, &fence, &count, &bare)) {
        hide(engine, 0, engine->size());
        return keepList | MarkdownFence | (fence == '~' ? 0x800 : 0) | (uint32_t)(count < 0x7FF ? count : 0x7FF);
    }
    hideMarkdownInline(engine);
    size_t item = col < list + 4 ? listItemText(text, at, col) : 0;
    if (item > 0)
        list = item < 0xFF ? item : 0xFF;
    else if (list > 0 && col < list && !(state & MarkdownParagraph))
        list = 0; /* text back at the margin after a blank line ends the list */
    bool heading = col < 4 && text[at] == '#';
    return (uint32_t)(list << MarkdownListShift) | (heading ? 0 : MarkdownParagraph);
}

bool endsBlock(const Document &doc, size_t i)
{
    if (doc.scope != ScopeMarkdown)
        return false;
    const std::string &t = doc.lines[i].text;
    size_t lead = t.find_first_not_of(' ');
    return lead != std::string::npos && lead < 4 && t[lead] == '#';
}

/* ---- source code ---- */

enum {
    CodeText = 0,
    CodeBlockComment = 1,
    CodeLongString = 0x100,   /* | the quote character */
    CodeTripleString = 0x200, /* | the quote character */
};

/* In a string: backslash escapes and printf conversions are code. */
static void hideInString(std::string *s, size_t from, size_t to)
{
    std::string &t = *s;
    for (size_t i = from; i < to; i++) {
        if (t[i] == '\\') {
            hide(s, i, i + 2 < to ? i + 2 : to);
            i++;
        } else if (t[i] == '%' && i + 1 < to) {
            size_t j = i + 1;
            while (j < to && strchr("-+ #0123456789.*", t[j]))
                j++;
            while (j < to && strchr("hlLqjzt", t[j]))
                j++;
            if (j < to && ((t[j] >= 'a' && t[j] <= 'z') || (t[j] >= 'A' && t[j] <= 'Z'))) {
                hide(s, i, j + 1);
                i = j;
            }
        }
    }
    hideUrls(s, from, to);
}

/* The end of a string's text from `from` on: the position of the closing
 * `quote` (a run of three with `triple`), or npos when the line ends first. */
static size_t stringEnd(const std::string &t, size_t from, char quote, bool triple)
{
    for (size_t i = from; i < t.size(); i++) {
        if (t[i] == '\\')
            i++;
        else if (t[i] == quote && (!triple || (i + 2 < t.size() && t[i + 1] == quote && t[i + 2] == quote)))
            return i;
    }
    return std::string::npos;
}

static uint32_t scanCode(const CodeSyntax &syntax, const std::string &text, size_t lineIndex, uint32_t state,
                         std::string *engine)
{
    const std::string original = *engine;
    std::string &out = *engine;
    hide(&out, 0, out.size());
    size_t n = original.size();
    /* shown: the text of comments and strings, back from the original */
    auto show = [&](size_t from, size_t to, bool inString) {
        to = to < n ? to : n;
        if (from >= to)
            return;
        out.replace(from, to - from, original, from, to - from);
        if (inString)
            hideInString(&out, from, to);
        else
            hideUrls(&out, from, to);
    };
    std::string head = trimmed(text);
    if (lineIndex == 0 && state == CodeText && startsWith(head, 0, "#!"))
        return CodeText;
    bool noStrings = syntax.preprocessor && (startsWith(head, 0, "#include") || startsWith(head, 0, "#import"));
    size_t i = 0;
    while (i < n) {
        if (state == CodeBlockComment) {
            size_t close = original.find(syntax.blockClose, i);
            if (close == std::string::npos) {
                show(i, n, false);
                return state;
            }
            show(i, close, false);
            i = close + strlen(syntax.blockClose);
            state = CodeText;
            continue;
        }
        if (state & (CodeLongString | CodeTripleString)) {
            bool triple = (state & CodeTripleString) != 0;
            size_t close = stringEnd(original, i, (char)(state & 0xFF), triple);
            if (close == std::string::npos) {
                show(i, n, true);
                return state;
            }
            show(i, close, true);
            i = close + (triple ? 3 : 1);
            state = CodeText;
            continue;
        }
        char c = original[i];
        const char *lc = syntax.lineComment;
        if (lc && startsWith(original, i, lc) &&
            (lc[0] != '#' || i == 0 || original[i - 1] == ' ' || original[i - 1] == '\t') &&
            !(syntax.blockOpen && startsWith(original, i, syntax.blockOpen))) {
            show(i + strlen(lc), n, false);
            return CodeText;
        }
        if (syntax.blockOpen && startsWith(original, i, syntax.blockOpen)) {
            state = CodeBlockComment;
            i += strlen(syntax.blockOpen);
        } else if (noStrings) {
            i++;
        } else if (syntax.tripleQuotes && (c == '"' || c == '\'') && i + 2 < n && original[i + 1] == c &&
                   original[i + 2] == c) {
            state = CodeTripleString | (uint32_t)(unsigned char)c;
            i += 3;
        } else if (strchr(syntax.longQuotes, c) && c) {
            state = CodeLongString | (uint32_t)(unsigned char)c;
            i++;
        } else if (strchr(syntax.quotes, c) && c) {
            size_t close = stringEnd(original, i + 1, c, false);
            show(i + 1, close == std::string::npos ? n : close, true);
            i = close == std::string::npos ? n : close + 1;
        } else {
            i++;
        }
    }
    return state;
}

uint32_t scanLine(const Document &doc, size_t lineIndex, uint32_t state, std::string *engine)
{
    const std::string &text = doc.lines[lineIndex].text;
    if (!toEngineText(text, EncodingUtf8, engine)) {
        /* can't be checked; keeps the length in characters */
        size_t chars = 0;
        for (unsigned char c : text)
            chars += (c & 0xC0) != 0x80;
        engine->assign(chars, HiddenByte);
        return state;
    }
    switch (doc.scope) {
    case ScopeMarkdown:
        return scanMarkdown(text, lineIndex, state, engine);
    case ScopeCode:
        return scanCode(*doc.syntax, text, lineIndex, state, engine);
    case ScopePlain:
        break;
    }
    return state;
}
