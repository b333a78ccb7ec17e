/*
 * tlex_read.cpp -- reading text lexicon files: the first look at a file,
 * the whole read into a table, and the reload that keeps a client in step.
 *
 * A file is CR LF lines.  If its first line begins with '#', that line
 * states the language ("#LID 24941") and every later line is an entry;
 * otherwise the file is a plain word list, read from its first line on.
 * An entry line is a word, or a word, TAB, action letter and other word.
 * Later lines that begin with '#' are comments, empty lines are skipped.
 *
 * Lines are read in pieces of at most TLexLineSize - 1 bytes, the longest
 * line the writer makes with its CR LF, so whatever this library wrote
 * reads back whole; a longer line from elsewhere comes as several entries.
 *
 * Time stamps are taken from the open handle, not from the name: the file
 * read is the file stamped, even when another client replaces the name at
 * that moment (the writers replace by rename, so an open file never
 * changes under the reader).
 */
#include <stdlib.h>
#include <string.h>

#include <algorithm>

#include "engine/charclass.h"
#include "engine/debug_log.h"
#include "engine/string_helpers.h"
#include "lexicon/tlex_file.h"
#include "orto.h"
#include "platform/file.h"

/* Windows language ids that a first line may state, with their codes. */
static const struct {
    u16 windowsId;
    u16 code;
} WindowsLanguages[] = {
    {1033, 0x616D}, /* am */ {2057, 0x6272}, /* br */ {1027, 0x7363}, /* sc */
    {1029, 0x637A}, /* cz */ {1030, 0x6461}, /* da */ {1043, 0x6475}, /* du */
    {1035, 0x6669}, /* fi */ {1036, 0x6672}, /* fr */ {1031, 0x6765}, /* ge */
    {1038, 0x6875}, /* hu */ {1040, 0x6974}, /* it */ {1044, 0x6362}, /* cb */
    {2068, 0x6364}, /* cd */ {1045, 0x706C}, /* pl */ {1046, 0x7062}, /* pb */
    {2070, 0x706F}, /* po */ {1049, 0x7275}, /* ru */ {1034, 0x7370}, /* sp */
    {1053, 0x7377}, /* sw */
};

static bool isAsciiDigit(unsigned char c) { return c >= '0' && c <= '9'; }

void TLex_ParseSentinel(const char *line, u16 *language)
{
    const unsigned char *p = (const unsigned char *)orEmpty(line);
    /* the first token, normally "#LID", is skipped unseen */
    while (*p && IsSpace(*p))
        p++;
    while (*p && !IsSpace(*p))
        p++;
    while (*p && IsSpace(*p))
        p++;
    char token[10];
    int n = 0;
    while (n < 9 && p[n] && !IsSpace(p[n])) {
        token[n] = (char)p[n];
        n++;
    }
    token[n] = 0;

    int i = token[0] == '-' ? 1 : 0;
    i32 value = 0; /* nine digits at most: no overflow */
    while (isAsciiDigit((unsigned char)token[i]))
        value = value * 10 + (token[i++] - '0');
    if (token[0] == '-')
        value = -value;
    u16 code = (u16)value;
    for (const auto &row : WindowsLanguages)
        if (row.windowsId == code) {
            code = row.code;
            break;
        }
    *language = code;
}

/* Appends one entry at the end of the table, without looking for its
 * place; the reader puts the table in order once all lines are in.  The
 * room asked for grows with the table, so that reading n lines copies the
 * table a few times rather than n / 32 times. */
static i16 appendEntry(TLex *tlex, const char *word, char action, const char *otherWord)
{
    if (tlex->count + 1 > tlex->table.capacity &&
        !TLexTable_Reserve(&tlex->table, tlex->count < 16 ? 16 : tlex->count * 2)) {
        DebugLog("out of memory");
        return ORTO_OutOfMemory;
    }
    RETURN_IF_NEG(TLexEntry_Make(&tlex->table.base[tlex->count], word, action, otherWord));
    tlex->count++;
    TLex_Changed(tlex);
    return 0;
}

/* Splits an entry line in place and appends it. */
static i16 appendLine(TLex *tlex, char *line)
{
    char *tab = StrFindChar(line, '\t');
    if (!tab)
        return appendEntry(tlex, line, ORTO_Ignore, nullptr);
    *tab = 0;
    char action = tab[1];
    /* nothing behind the TAB: action 0, which lookups take for not found */
    return appendEntry(tlex, line, action, action ? tab + 2 : nullptr);
}

/* Puts entries read in file order into table order.  The result is the one
 * that inserting them one by one gives, each in front of an equal word: a
 * word that stands twice comes later-read first.  A file that this library
 * wrote is in order already and costs one pass. */
static void sortEntries(TLex *tlex)
{
    if (tlex->count < 2)
        return; /* nothing to order, and an empty table may have no array */
    TLexEntry *first = tlex->table.base, *last = first + tlex->count;
    bool ordered = true;
    for (TLexEntry *e = first; e + 1 < last && ordered; e++)
        ordered = StrCompare(e[0].word, e[1].word) < 0;
    if (ordered)
        return;
    std::stable_sort(first, last, [](const TLexEntry &a, const TLexEntry &b) {
        return StrCompare(a.word, b.word) < 0;
    });
    for (TLexEntry *run = first; run < last;) {
        TLexEntry *end = run + 1;
        while (end < last && StrCompare(run->word, end->word) == 0)
            end++;
        std::reverse(run, end);
        run = end;
    }
    TLex_Changed(tlex);
}

i16 TLex_ReadFile(int handle, TLex *tlex)
{
    TLex_Close(tlex);
    FileLines lines;
    fileLinesBegin(&lines, handle);
    char line[TLexLineSize];
    if (fileLinesNext(&lines, line, TLexLineSize) < 0)
        line[0] = 0;
    if (line[0] == '#') {
        TLex_ParseSentinel(line, &tlex->language);
    } else {
        tlex->language = ORTO_LangAmerican;
        tlex->plainList = 1;
        fileSeek(handle, 0, FileFromStart);
        fileLinesBegin(&lines, handle);
    }
    while (fileLinesNext(&lines, line, TLexLineSize) >= 0) {
        if (line[0] == '#' || line[0] == 0)
            continue;
        i16 rc = appendLine(tlex, line);
        if (rc < 0) {
            TLex_Close(tlex);
            return rc;
        }
    }
    sortEntries(tlex);
    return 0;
}

/* Both stamps of a TLex from one moment in nanoseconds. */
static void setStamp(TLex *tlex, int64_t timeNs)
{
    tlex->fileTimeNs = timeNs;
    tlex->fileTime = (i32)(timeNs / 1000000000);
}

i16 TLex_Open(const char *fileName, TLex *tlex)
{
    int h = fileOpen(fileName, 3);
    if (h < 0) {
        DebugLog("file open error; file=%s", fileName);
        return ORTO_FileOpenError;
    }
    i16 rc = TLex_Create(nullptr, 0, tlex);
    if (rc < 0) {
        fileClose(h);
        return rc;
    }
    setStamp(tlex, fileModTimeNsOf(h));
    StrCopy(tlex->fileName, PathSize, fileName);
    tlex->plainList = 0;
    rc = TLex_ReadFile(h, tlex);
    fileClose(h);
    return rc;
}

i16 TLex_Probe(const char *fileName, Lexicon *lexicon)
{
    int h = fileOpen(fileName, 3);
    if (h < 0) {
        DebugLog("open error; file=%s", fileName);
        return ORTO_FileOpenError;
    }
    char line[TLexLineSize];
    if (fileReadLine(h, line, TLexLineSize) < 0)
        line[0] = 0;
    if (line[0] == '#')
        TLex_ParseSentinel(line, &lexicon->language);
    else
        lexicon->language = ORTO_LangAmerican;
    fileClose(h);
    return 0;
}

i16 syncLexFile(TLex *tlex)
{
    /* A file that can't be examined (deleted, say) gives 0 and so never
     * counts as newer: the next rewrite writes it anew from the table. */
    int64_t t = fileModTimeNs(tlex->fileName);
    if (tlex->fileTimeNs >= t)
        return 0;
    int h = fileOpen(tlex->fileName, 3);
    if (h < 0) {
        DebugLog("syncLexFile: file open error; file=%s", tlex->fileName);
        return ORTO_FileOpenError;
    }
    int64_t opened = fileModTimeNsOf(h);
    i16 rc = TLex_ReadFile(h, tlex);
    fileClose(h);
    if (rc < 0)
        return rc;
    setStamp(tlex, opened ? opened : t);
    return 0;
}
