/*
 * lsp_check.cpp -- lines through the engine, and their diagnostics.
 *
 * A line is checked as a block of its own, after the last word of the line
 * before it and a line end: the doubled-word test then sees a word
 * repeated across a line end, as it would in one block of the whole text,
 * while an edit costs the check of the edited lines and the one after
 * each.  A line after an empty one (or after a Markdown heading) is
 * checked with nothing in front, so with ReportUncappedWords a
 * paragraph's first word is held to a capital.
 *
 * In source code a reported word that joins words the way identifiers do
 * (getUserName, parseHTTPHeader, utf8Decode, os.path) is checked again as
 * its parts, and only a part that is misspelled is reported, with its own
 * range.
 */
#include <string.h>

#include "check_walk.h"
#include "lsp.h"
#include "orto.h"

static const size_t MaxContext = 63; /* a longer last word of a line is left out */

/* The last word of the line before, as the block will read it. */
static std::string contextOf(const std::string &engine)
{
    size_t end = engine.find_last_not_of(" \t\r");
    if (end == std::string::npos)
        return std::string();
    size_t start = engine.find_last_of(" \t", end);
    start = start == std::string::npos ? 0 : start + 1;
    if (end + 1 - start > MaxContext)
        return std::string();
    return engine.substr(start, end + 1 - start) + "\n";
}

static bool isUpperByte(unsigned char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7);
}

static bool isLowerByte(unsigned char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 0xDF && c != 0xF7);
}

static bool isDigitByte(unsigned char c)
{
    return c >= '0' && c <= '9';
}

/* The parts of an identifier-like word as [start, end) pairs: split at a
 * change from small to capital letter, before the last capital of a run
 * that a small letter follows, between letters and digits, and at periods
 * and hyphens.  Fewer than two parts: not such a word. */
static std::vector<std::pair<size_t, size_t>> identifierParts(const std::string &w)
{
    std::vector<std::pair<size_t, size_t>> parts;
    size_t start = 0;
    for (size_t k = 1; k <= w.size(); k++) {
        bool end = k == w.size();
        bool separator = !end && (w[k] == '.' || w[k] == '-');
        bool boundary = false;
        if (!end && !separator && w[k - 1] != '.' && w[k - 1] != '-') {
            unsigned char a = (unsigned char)w[k - 1], b = (unsigned char)w[k];
            boundary = (isLowerByte(a) && isUpperByte(b)) || (isDigitByte(a) != isDigitByte(b)) ||
                       (isUpperByte(a) && isUpperByte(b) && k + 1 < w.size() &&
                        isLowerByte((unsigned char)w[k + 1]));
        }
        if (end || separator || boundary) {
            if (k > start)
                parts.push_back({start, k});
            start = separator ? k + 1 : k;
        }
    }
    return parts;
}

static void addProblem(Line *line, uint32_t start, const std::string &word, ProblemKind kind,
                       const std::string &replacement)
{
    Problem p;
    p.start = start;
    p.end = start + (uint32_t)word.size();
    p.kind = kind;
    p.word = fromEngineText(word, EncodingUtf8);
    p.replacement = fromEngineText(replacement, EncodingUtf8);
    line->problems.push_back(p);
}

/* Checks the parts of an identifier-like word; false when it has none. */
static bool checkParts(int16_t sid, Line *line, uint32_t at, const std::string &word)
{
    std::vector<std::pair<size_t, size_t>> parts = identifierParts(word);
    if (parts.size() < 2)
        return false;
    for (const auto &part : parts) {
        std::string piece = word.substr(part.first, part.second - part.first);
        if (piece.find_first_not_of("0123456789") == std::string::npos)
            continue;
        char replacement[64];
        int16_t mask = ORTO_CheckWord(sid, piece.c_str(), replacement, sizeof replacement);
        if (mask < 0)
            continue;
        if (mask & ORTO_MisspelledWord)
            addProblem(line, at + (uint32_t)part.first, piece, KindMisspelled, piece);
        else if (mask & (ORTO_AutoChangeWord | ORTO_ConditionalChangeWord))
            addProblem(line, at + (uint32_t)part.first, piece, KindChange, replacement);
    }
    return true;
}

void checkLine(Server *s, Document *doc, size_t i)
{
    Line &line = doc->lines[i];
    if (line.checked)
        return;
    line.checked = true;
    line.problems.clear();
    line.publishedAs = SIZE_MAX;
    if (!doc->enabled || !s->haveLexicons)
        return;
    std::string text = i > 0 && !endsBlock(*doc, i - 1) ? contextOf(doc->lines[i - 1].engine) : std::string();
    uint32_t prefix = (uint32_t)text.size();
    text += line.engine;
    std::vector<WalkWord> words;
    /* In code a word with digits is an identifier whose letters are words
     * of their own (base64Dcode): it is not passed whole, its parts are
     * checked below. */
    int32_t ignoredDigits = doc->scope == ScopeCode ? ORTO_SetOption(s->lexicons.sid, ORTO_IgnoreMixedDigits, 0) : 0;
    int16_t rc = walkText(s->lexicons.sid, text, false, &words);
    if (ignoredDigits > 0)
        ORTO_SetOption(s->lexicons.sid, ORTO_IgnoreMixedDigits, 1);
    if (rc < 0)
        logMessage(&s->io, MessageError,
                   doc->uri + ":" + std::to_string(i + 1) + ": checking failed: " + resultText(rc));
    for (const WalkWord &w : words) {
        if (w.offset < prefix)
            continue;
        uint32_t at = w.offset - prefix;
        int16_t mask = w.mask;
        if (doc->scope == ScopeCode && (mask & (ORTO_MisspelledWord | ORTO_MixedCaseWord)) &&
            checkParts(s->lexicons.sid, &line, at, w.word))
            mask &= (int16_t) ~(ORTO_MisspelledWord | ORTO_MixedCaseWord | ORTO_MixedDigitsWord);
        if (mask & ORTO_MisspelledWord)
            addProblem(&line, at, w.word, KindMisspelled, w.word);
        if (mask & (ORTO_AutoChangeWord | ORTO_ConditionalChangeWord))
            addProblem(&line, at, w.word, KindChange, w.replacement);
        if (mask & (ORTO_UncappedWord | ORTO_MixedCaseWord))
            addProblem(&line, at, w.word, KindCapitalization, w.replacement);
        if (mask & ORTO_DoubledWord)
            addProblem(&line, at, w.word, KindDoubled, w.word);
    }
}

bool needsCheck(const Document &doc)
{
    for (const Line &l : doc.lines)
        if (!l.checked)
            return true;
    return false;
}

size_t checkSome(Server *s, size_t budget)
{
    for (auto &entry : s->documents) {
        Document &doc = entry.second;
        if (doc.published)
            continue;
        for (size_t i = 0; i < doc.lines.size() && budget > 0; i++)
            if (!doc.lines[i].checked) {
                checkLine(s, &doc, i);
                budget--;
            }
        if (budget == 0 && needsCheck(doc))
            return 0;
        publishDiagnostics(s, &doc);
    }
    return budget;
}

void checkAndPublishAll(Server *s)
{
    for (auto &entry : s->documents) {
        Document &doc = entry.second;
        for (size_t i = 0; i < doc.lines.size(); i++)
            checkLine(s, &doc, i);
        if (!doc.published)
            publishDiagnostics(s, &doc);
    }
}

static const char *const KindCodes[ProblemKinds] = {"misspelled", "change", "capitalization", "doubled"};
static const char *const KindLabels[ProblemKinds] = {"Not in Dictionary: ", "Consider changing: ",
                                                     "Capitalization: ", "Doubled word: "};

Json diagnosticJson(const Server &s, const Line &line, size_t lineIndex, const Problem &p)
{
    Json range = {{"start", {{"line", lineIndex}, {"character", clientColumn(line, p.start, s.encoding)}}},
                  {"end", {{"line", lineIndex}, {"character", clientColumn(line, p.end, s.encoding)}}}};
    return Json{{"range", range},
                {"severity", s.settings.severity[p.kind]},
                {"code", KindCodes[p.kind]},
                {"source", "orto"},
                {"message", KindLabels[p.kind] + p.word}};
}

/* The notification carries every diagnostic of the document, also after
 * a change to one line.  Each line keeps its diagnostics as the library
 * serialised them, until they or the line's number change, and the
 * message is the envelope with those pieces set into its empty list. */
void publishDiagnostics(Server *s, Document *doc)
{
    Json envelope = {{"jsonrpc", "2.0"},
                     {"method", "textDocument/publishDiagnostics"},
                     {"params", {{"uri", doc->uri}, {"version", doc->version}, {"diagnostics", Json::array()}}}};
    std::string empty = envelope.dump(-1, ' ', false, Json::error_handler_t::replace);
    /* a key in raw quotes can't stand inside a string, where quotes are escaped */
    static const char EmptyList[] = "\"diagnostics\":[";
    size_t at = empty.find(EmptyList) + sizeof EmptyList - 1;
    std::string &body = s->publishing;
    body.assign(empty, 0, at);
    bool first = true;
    for (size_t i = 0; i < doc->lines.size(); i++) {
        Line &line = doc->lines[i];
        if (line.problems.empty())
            continue;
        if (line.publishedAs != i) {
            line.published.clear();
            for (const Problem &p : line.problems) {
                if (!line.published.empty())
                    line.published += ',';
                line.published += diagnosticJson(*s, line, i, p).dump(-1, ' ', false, Json::error_handler_t::replace);
            }
            line.publishedAs = i;
        }
        if (!first)
            body += ',';
        body += line.published;
        first = false;
    }
    body.append(empty, at, std::string::npos);
    sendBody(&s->io, body);
    doc->published = true;
}
