/*
 * report_rules.cpp -- what the program makes of a word that the engine
 * reports as misspelled, before the user sees it.
 *
 * The engine's word scanner keeps a word whole across inner periods and
 * apostrophes (wall.org, U.S., e.g., lookin'), cuts a word after 63
 * characters and reads the rest as a word of its own, and looks every word
 * up as it stands.  Other checkers cut words at periods and at edge
 * apostrophes, and pass web addresses; a user expects the same here.  So a
 * word that the engine reported for its spelling alone is looked at once
 * more, and the first of these rules that applies decides:
 *
 *   1. The rest of a cut word (it begins right behind a letter or digit)
 *      is not reported again: the word was, by its first 63 characters.
 *   2. A word inside a web or e-mail address, a file path or a markup tag
 *      passes: its stretch of text between white space holds "://" or an
 *      "@" followed by a dotted name, or begins with "www.", "/", "~/",
 *      "./", "../" or a drive ("C:\") after opening brackets and quotes; or
 *      the word stands alone between "<" or "</" and ">" or "/>".
 *   3. A name of dotted parts of letters, digits and hyphens passes when
 *      its last part is a top-level domain (com, org, edu, ..., or two
 *      letters of one case: wall.org, cs.helsinki.fi, devvax.JPL.NASA.GOV),
 *      or when it has three parts or more, all in small letters
 *      (comp.os.linux.misc, the names of newsgroups and packages).
 *   4. Apostrophes at the end are cut off (quoted', lookin'), and the rest
 *      is checked by its parts between periods, each with ORTO_CheckWord:
 *      the word passes when every part does (U.S., e.g., stab.c), else each
 *      part that fails is reported in the word's place, at its own offset,
 *      with the part's own result (lookin, perl of perl.c).  A part that
 *      ends in 'll, 'd, 've or 're passes when the word before the
 *      apostrophe does (there'd, that'll).
 *
 * A word reported for anything besides its spelling (an auto-change entry,
 * a doubled word, a capital) is left as the engine reported it.
 */
#include <ctype.h>
#include <string.h>
#include <strings.h>

#include "orto.h"
#include "report_rules.h"

typedef std::vector<std::pair<size_t, std::string>> Parts; /* offset in the word, part */

static bool isApostrophe(unsigned char c) { return c == '\'' || c == 0x92; }

static bool isBlank(unsigned char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v';
}

/* A letter or digit of Windows Latin-1, as far as the scanner goes on. */
static bool isWordByte(unsigned char c)
{
    return isalnum(c) || (c >= 0xC0 && c != 0xD7 && c != 0xF7) || c == 0x8A || c == 0x8C ||
           c == 0x8E || c == 0x9A || c == 0x9C || c == 0x9E || c == 0x9F;
}

/* Opening brackets and quotes that may stand before an address. */
static bool isOpening(unsigned char c)
{
    return c == '(' || c == '[' || c == '{' || c == '<' || c == '"' || c == '\'' || c == '`' ||
           c == 0x91 || c == 0x93 || c == 0xAB;
}

static bool startsWith(const std::string &s, size_t at, const char *prefix)
{
    return s.compare(at, strlen(prefix), prefix) == 0;
}

/* <word>, </word> or <word/>. */
static bool isMarkupTag(const std::string &text, size_t offset, size_t length)
{
    size_t end = offset + length;
    bool open = (offset >= 1 && text[offset - 1] == '<') ||
                (offset >= 2 && text[offset - 1] == '/' && text[offset - 2] == '<');
    bool close = startsWith(text, end, ">") || startsWith(text, end, "/>");
    return open && close;
}

/* Rule 2, on the stretch of text between white space around the word. */
static bool inAddressOrPath(const std::string &text, size_t offset, size_t length)
{
    if (isMarkupTag(text, offset, length))
        return true;
    size_t begin = offset, end = offset + length;
    while (begin > 0 && !isBlank((unsigned char)text[begin - 1]))
        begin--;
    while (end < text.size() && !isBlank((unsigned char)text[end]))
        end++;
    std::string token = text.substr(begin, end - begin);
    if (token.find("://") != std::string::npos)
        return true;
    size_t at = token.find('@');
    if (at != std::string::npos) {
        size_t dot = token.find('.', at + 1);
        if (dot != std::string::npos && dot > at + 1 && dot + 1 < token.size() &&
            isalnum((unsigned char)token[dot + 1]))
            return true;
    }
    size_t start = 0;
    while (start < token.size() && isOpening((unsigned char)token[start]))
        start++;
    if (startsWith(token, start, "/") || startsWith(token, start, "~/") || startsWith(token, start, "./") ||
        startsWith(token, start, "../"))
        return true;
    if (start + 2 < token.size() && isalpha((unsigned char)token[start]) && token[start + 1] == ':' &&
        token[start + 2] == '\\')
        return true;
    return strncasecmp(token.c_str() + start, "www.", 4) == 0;
}

/* The generic top-level domains that show in text; two letters of one
 * case stand for a country. */
static const char *const GenericDomains[] = {"com", "org", "net", "edu", "gov", "mil", "int",
                                             "info", "biz", "name", "pro", "museum", "aero",
                                             "coop", "mobi", "travel", "jobs", "io", "dev", "app"};

static bool isTopLevelDomain(const std::string &part)
{
    if (part.size() == 2 && isalpha((unsigned char)part[0]) && isalpha((unsigned char)part[1]))
        return !!islower((unsigned char)part[0]) == !!islower((unsigned char)part[1]);
    for (const char *d : GenericDomains)
        if (strcasecmp(part.c_str(), d) == 0)
            return true;
    return false;
}

/* Splits `word` at its periods; false if a part is empty. */
static bool dottedParts(const std::string &word, Parts *parts)
{
    parts->clear();
    size_t from = 0;
    for (;;) {
        size_t dot = word.find('.', from);
        std::string part = word.substr(from, dot == std::string::npos ? std::string::npos : dot - from);
        if (part.empty())
            return false;
        parts->push_back({from, part});
        if (dot == std::string::npos)
            return true;
        from = dot + 1;
    }
}

/* Rule 3. */
static bool isDottedName(const Parts &parts)
{
    if (parts.size() < 2)
        return false;
    bool small = true;
    for (const auto &p : parts)
        for (char c : p.second) {
            if (!isalnum((unsigned char)c) && c != '-')
                return false;
            small = small && !isupper((unsigned char)c);
        }
    return isTopLevelDomain(parts.back().second) || (parts.size() >= 3 && small);
}

/* The ending after the last apostrophe, if it is one of 'll 'd 've 're. */
static size_t cliticStart(const std::string &part)
{
    static const char *const Clitics[] = {"ll", "d", "ve", "re"};
    for (const char *c : Clitics) {
        size_t n = strlen(c);
        if (part.size() > n + 1 && isApostrophe((unsigned char)part[part.size() - n - 1]) &&
            strcasecmp(part.c_str() + part.size() - n, c) == 0)
            return part.size() - n - 1;
    }
    return 0;
}

/* One part through the session, as rule 4 checks it; a negative code on
 * failure. */
static int16_t checkPart(int16_t sid, const std::string &part, char *replacement, int16_t size)
{
    int16_t mask = ORTO_CheckWord(sid, part.c_str(), replacement, size);
    if (mask > 0)
        mask &= (int16_t)~ORTO_UncappedWord; /* a part starts no sentence */
    size_t clitic = cliticStart(part);
    if (mask == ORTO_MisspelledWord && clitic > 0) {
        int16_t stem = ORTO_CheckWord(sid, part.substr(0, clitic).c_str(), nullptr, 0);
        if (stem >= 0 && (stem & (int16_t)~ORTO_UncappedWord) == 0)
            mask = 0;
    }
    return mask;
}

void addReportedWord(int16_t sid, const std::string &text, const WalkWord &w, bool allWords,
                     std::vector<WalkWord> *words)
{
    const int16_t spelling = ORTO_MisspelledWord | ORTO_MixedDigitsWord;
    if (!(w.mask & ORTO_MisspelledWord) || (w.mask & ~spelling)) {
        words->push_back(w);
        return;
    }
    if (w.offset > 0 && isWordByte((unsigned char)text[w.offset - 1]))
        return; /* rule 1 */
    WalkWord clean = {w.offset, w.word, 0, std::string()};
    std::string word = w.word;
    while (!word.empty() && isApostrophe((unsigned char)word.back()))
        word.pop_back();
    if (!word.empty() && word.back() == '.') /* U.S. keeps the period that ends it */
        word.pop_back();
    Parts parts;
    if (inAddressOrPath(text, w.offset, w.word.size()) ||
        (dottedParts(word, &parts) && isDottedName(parts))) {
        if (allWords)
            words->push_back(clean);
        return;
    }
    if (parts.empty() || (parts.size() == 1 && word == w.word && !cliticStart(word))) {
        words->push_back(w);
        return;
    }
    std::vector<WalkWord> checked;
    bool allPass = true;
    for (const auto &p : parts) {
        char replacement[64];
        int16_t mask = checkPart(sid, p.second, replacement, sizeof replacement);
        if (mask < 0) {
            words->push_back(w);
            return;
        }
        allPass = allPass && mask == 0;
        checked.push_back({w.offset + (uint32_t)p.first, p.second, mask, mask ? replacement : ""});
    }
    if (allPass) {
        if (allWords)
            words->push_back(clean);
        return;
    }
    for (const WalkWord &part : checked)
        if (allWords || part.mask != 0)
            words->push_back(part);
}

void printReportRulesHelp(FILE *out)
{
    fputs("The program lets these words pass, as other checkers do:\n"
          "  - words of web and e-mail addresses, file paths (/usr/bin, ~/src, C:\\) and\n"
          "    markup tags or placeholders (<em>, </p>, <name>);\n"
          "  - host and newsgroup names (wall.org, cs.helsinki.fi, comp.os.linux.misc);\n"
          "  - words with periods inside whose parts are words (U.S., e.g., stab.c);\n"
          "    else the parts that aren't are reported, each on its own;\n"
          "  - a word with an apostrophe at its end, when the word without it is\n"
          "    correct ('quoted'); else that word is reported (lookin' as lookin);\n"
          "  - a word with 'll, 'd, 've or 're after a correct word (there'd, that'll);\n"
          "  - the rest of a word longer than 63 characters, which is reported once.\n"
          "\n",
          out);
}
