/*
 * ini_text.cpp -- finding and setting a key in the bytes of an INI file.
 *
 * The text is walked line by line as spans of the buffer, never copied
 * into line buffers, so a line of any length or with any bytes in it (NUL
 * included) is read like any other.  A line ends at LF; a CR just before
 * the LF belongs to the line end, and so does a CR that ends the file.  An edit splices the one line it
 * concerns and leaves all other bytes where they were.
 */
#include <string.h>

#include "platform/ini_file.h"

namespace {

enum LineKind { LineOther, LineSection, LineKey };

/* One line: its kind and, for a section or key line, where the name is. */
struct IniLine {
    size_t start;      /* first byte */
    size_t end;        /* behind the last byte, line end left out */
    size_t next;       /* start of the next line (the length at the end) */
    LineKind kind;
    size_t nameStart;  /* name, blanks around it left out */
    size_t nameEnd;
    size_t equals;     /* key lines: where the '=' stands */
};

bool isBlank(char c) { return c == ' ' || c == '\t'; }

char lowerAscii(char c) { return c >= 'A' && c <= 'Z' ? (char)(c + 32) : c; }

void trimName(const char *text, IniLine *line)
{
    while (line->nameStart < line->nameEnd && isBlank(text[line->nameStart]))
        line->nameStart++;
    while (line->nameEnd > line->nameStart && isBlank(text[line->nameEnd - 1]))
        line->nameEnd--;
}

IniLine lineAt(const char *text, size_t length, size_t pos)
{
    IniLine line = {pos, length, length, LineOther, 0, 0, 0};
    const char *lf = (const char *)memchr(text + pos, '\n', length - pos);
    if (lf) {
        line.end = (size_t)(lf - text);
        line.next = line.end + 1;
    }
    /* the CR of CR LF, or a CR LF cut short at the end of the file */
    if (line.end > pos && text[line.end - 1] == '\r')
        line.end--;
    size_t first = pos;
    while (first < line.end && isBlank(text[first]))
        first++;
    if (first == line.end || text[first] == ';')
        return line;
    if (text[first] == '[') {
        const char *close = (const char *)memchr(text + first + 1, ']', line.end - first - 1);
        line.kind = LineSection;
        line.nameStart = first + 1;
        line.nameEnd = close ? (size_t)(close - text) : line.end;
    } else {
        const char *eq = (const char *)memchr(text + first, '=', line.end - first);
        if (!eq)
            return line;
        line.kind = LineKey;
        line.nameStart = first;
        line.nameEnd = line.equals = (size_t)(eq - text);
    }
    trimName(text, &line);
    return line;
}

bool nameIs(const char *text, const IniLine &line, const char *name)
{
    size_t n = strlen(name);
    if (line.nameEnd - line.nameStart != n)
        return false;
    for (size_t i = 0; i < n; i++)
        if (lowerAscii(text[line.nameStart + i]) != lowerAscii(name[i]))
            return false;
    return true;
}

/* What a walk for one key found: the section's header line, the key's
 * line, and where a new key line of the section would go. */
struct KeyPlace {
    bool sectionFound;
    bool keyFound;
    IniLine key;
    size_t insertAt;   /* behind the section's last key line, or its header */
};

KeyPlace findKey(const char *text, size_t length, const char *section, const char *key)
{
    KeyPlace place = {false, false, {}, 0};
    size_t pos = 0;
    bool inSection = false;
    while (pos < length) {
        IniLine line = lineAt(text, length, pos);
        pos = line.next;
        if (line.kind == LineSection) {
            if (inSection)
                break; /* the first section of that name is the one */
            inSection = nameIs(text, line, section);
            if (inSection) {
                place.sectionFound = true;
                place.insertAt = line.next;
            }
        } else if (inSection && line.kind == LineKey) {
            place.insertAt = line.next;
            if (nameIs(text, line, key)) {
                place.keyFound = true;
                place.key = line;
                break;
            }
        }
    }
    return place;
}

bool hasAny(const char *s, const char *chars) { return strpbrk(s, chars) != nullptr; }

bool blankAround(const char *s)
{
    size_t n = strlen(s);
    return n > 0 && (isBlank(s[0]) || isBlank(s[n - 1]));
}

} // namespace

bool iniFindValue(const char *text, size_t length, const char *section, const char *key,
                  IniSpan *value)
{
    if (!text || !section || !key)
        return false;
    KeyPlace place = findKey(text, length, section, key);
    if (!place.keyFound)
        return false;
    value->start = place.key.equals + 1;
    value->length = place.key.end - value->start;
    return true;
}

bool iniSetValue(std::string *text, const char *section, const char *key, const char *value)
{
    if (!section || !key || !*key || hasAny(key, "=\r\n") || key[0] == '[' || key[0] == ';' ||
        hasAny(section, "]\r\n") || blankAround(key) || blankAround(section))
        return false;
    /* A value can't hold a line end: the rest would become a line of its own. */
    size_t valueLength = value ? strcspn(value, "\r\n") : 0;

    KeyPlace place = findKey(text->data(), text->size(), section, key);
    if (place.keyFound) {
        if (value)
            text->replace(place.key.equals + 1, place.key.end - place.key.equals - 1, value, valueLength);
        else
            text->erase(place.key.start, place.key.next - place.key.start);
        return true;
    }
    if (!value)
        return true;

    /* New lines end as the file's lines do; a new file gets LF alone. */
    size_t lf = text->find('\n');
    const char *eol = lf != std::string::npos && lf > 0 && (*text)[lf - 1] == '\r' ? "\r\n" : "\n";
    std::string lines;
    size_t at = place.sectionFound ? place.insertAt : text->size();
    if (at == text->size() && at > 0 && text->back() != '\n')
        lines += text->back() == '\r' ? "\n" : eol; /* the last line gets its line end first */
    if (!place.sectionFound)
        lines = lines + "[" + section + "]" + eol;
    lines.append(key).append("=").append(value, valueLength).append(eol);
    text->insert(at, lines);
    return true;
}
