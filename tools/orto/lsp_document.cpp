/*
 * lsp_document.cpp -- open documents as lines: edits, and positions in the
 * units the client counts in.
 *
 * A position is a line and a column; the column counts UTF-8 bytes,
 * UTF-16 code units or characters, as negotiated.  Inside the server a
 * column is a character position, which is also the position in engine
 * text (one byte a character).  Lines of ASCII alone, most of them, need
 * no conversion.
 *
 * An edit replaces a range with text: the first and last line of the range
 * are joined around the new text and split again at line ends (LF, CR LF
 * or CR), so that the lines outside the range keep their check.
 */
#include "lsp.h"

static size_t utf8Length(unsigned char lead)
{
    return lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

static bool isAscii(const Line &line)
{
    return line.scanned && line.engine.size() == line.text.size();
}

uint32_t clientColumn(const Line &line, uint32_t offset, PositionEncoding encoding)
{
    if (encoding == PositionUtf32 || isAscii(line))
        return offset;
    const std::string &t = line.text;
    uint32_t column = 0;
    size_t i = 0;
    for (uint32_t c = 0; c < offset && i < t.size(); c++) {
        size_t len = utf8Length((unsigned char)t[i]);
        column += encoding == PositionUtf8 ? (uint32_t)len : len == 4 ? 2 : 1;
        i += len;
    }
    return column;
}

/* Walks `text` to client column `column`; gives the byte offset and the
 * character position there.  A column inside a character counts as its
 * start; one past the end as the end. */
static void walkToColumn(const std::string &text, int64_t column, PositionEncoding encoding, size_t *byte,
                         uint32_t *character)
{
    size_t i = 0;
    uint32_t c = 0;
    int64_t at = 0;
    while (i < text.size()) {
        size_t len = utf8Length((unsigned char)text[i]);
        int64_t units = encoding == PositionUtf8 ? (int64_t)len : encoding == PositionUtf16 && len == 4 ? 2 : 1;
        if (at + units > column)
            break;
        at += units;
        i += len;
        c++;
    }
    if (i > text.size())
        i = text.size();
    *byte = i;
    *character = c;
}

uint32_t characterAt(const Line &line, int64_t column, PositionEncoding encoding)
{
    if (column < 0)
        return 0;
    if (isAscii(line))
        return column > (int64_t)line.text.size() ? (uint32_t)line.text.size() : (uint32_t)column;
    size_t byte;
    uint32_t character;
    walkToColumn(line.text, column, encoding, &byte, &character);
    return character;
}

static Line newLine(std::string text)
{
    Line l;
    l.text = std::move(text);
    l.entryState = l.exitState = 0;
    l.scanned = l.checked = false;
    l.publishedAs = SIZE_MAX;
    return l;
}

static std::vector<Line> splitLines(const std::string &text)
{
    std::vector<Line> lines;
    size_t start = 0;
    for (size_t i = 0; i < text.size(); i++) {
        if (text[i] != '\n' && text[i] != '\r')
            continue;
        lines.push_back(newLine(text.substr(start, i - start)));
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
            i++;
        start = i + 1;
    }
    lines.push_back(newLine(text.substr(start)));
    return lines;
}

void setDocumentText(Document *doc, const std::string &text)
{
    doc->lines = splitLines(text);
    doc->published = false;
    rescanFrom(doc, 0);
}

/* A position of the document as a line index and a byte offset in it. */
static bool readPosition(const Document &doc, const Json *position, PositionEncoding encoding, size_t *line,
                         size_t *byte, std::string *note)
{
    int64_t l, c;
    if (!position || !intMember(*position, "line", &l) || !intMember(*position, "character", &c))
        return false;
    uint32_t character;
    if (l < 0 || c < 0) {
        *note = "a negative position";
        l = l < 0 ? 0 : l;
        c = 0;
    }
    if (l >= (int64_t)doc.lines.size()) {
        *note = "line " + std::to_string(l) + " is past the end of the document";
        *line = doc.lines.size() - 1;
        *byte = doc.lines[*line].text.size();
        return true;
    }
    *line = (size_t)l;
    walkToColumn(doc.lines[*line].text, c, encoding, byte, &character);
    return true;
}

void applyChange(Document *doc, const Json &change, PositionEncoding encoding, std::string *note)
{
    std::string text;
    if (!stringMember(change, "text", &text)) {
        *note = "a change without text";
        return;
    }
    const Json *range = member(change, "range");
    if (!range || range->is_null()) {
        setDocumentText(doc, text);
        return;
    }
    size_t startLine, startByte, endLine, endByte;
    if (!readPosition(*doc, member(*range, "start"), encoding, &startLine, &startByte, note) ||
        !readPosition(*doc, member(*range, "end"), encoding, &endLine, &endByte, note)) {
        *note = "a change with a malformed range";
        return;
    }
    if (endLine < startLine || (endLine == startLine && endByte < startByte)) {
        *note = "a range that ends before it starts";
        std::swap(startLine, endLine);
        std::swap(startByte, endByte);
    }
    std::string joined = doc->lines[startLine].text.substr(0, startByte) + text +
                         doc->lines[endLine].text.substr(endByte);
    std::vector<Line> fresh = splitLines(joined);
    std::vector<Line> &lines = doc->lines;
    size_t replaced = endLine - startLine + 1;
    size_t common = fresh.size() < replaced ? fresh.size() : replaced;
    for (size_t i = 0; i < common; i++)
        lines[startLine + i] = std::move(fresh[i]);
    if (fresh.size() > replaced)
        lines.insert(lines.begin() + (long)(startLine + common), std::make_move_iterator(fresh.begin() + (long)common),
                     std::make_move_iterator(fresh.end()));
    else if (fresh.size() < replaced)
        lines.erase(lines.begin() + (long)(startLine + common), lines.begin() + (long)(startLine + replaced));
    doc->published = false;
    rescanFrom(doc, startLine);
}

void rescanFrom(Document *doc, size_t from)
{
    std::vector<Line> &lines = doc->lines;
    uint32_t state = from == 0 ? 0 : lines[from - 1].exitState;
    for (size_t i = from; i < lines.size(); i++) {
        Line &l = lines[i];
        if (l.scanned && l.entryState == state)
            break; /* from here on nothing differs */
        std::string engine;
        uint32_t exit = scanLine(*doc, i, state, &engine);
        if (!l.scanned || engine != l.engine) {
            l.checked = false;
            if (i + 1 < lines.size())
                lines[i + 1].checked = false;
            l.engine.swap(engine);
        }
        l.entryState = state;
        l.exitState = exit;
        l.scanned = true;
        state = exit;
    }
}

void invalidateDocument(Document *doc, bool rescan)
{
    for (Line &l : doc->lines) {
        l.checked = false;
        if (rescan)
            l.scanned = false;
    }
    if (rescan)
        rescanFrom(doc, 0);
    doc->published = false;
}
