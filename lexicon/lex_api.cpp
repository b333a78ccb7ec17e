/*
 * lex_api.cpp -- the exported calls that work on any open lexicon.
 *
 * Each validates session, then lexicon, then refuses what the lexicon's
 * format can't do, and hands the rest to the TLex or CLex routines.
 */
#include <stdlib.h>
#include <string.h>

#include "engine/debug_log.h"
#include "engine/session.h"
#include "engine/string_helpers.h"
#include "engine/word_check.h"
#include "lexicon/clex.h"
#include "lexicon/lexicon.h"
#include "lexicon/tlex_file.h"
#include "orto.h"

static bool isAction(uint16_t action)
{
    switch (action) {
    case 'a': case 'A': case 'c': case 'C': case 'e': case 'i':
        return true;
    default:
        return false;
    }
}

extern "C" int16_t ORTO_CreateLex(int16_t sid, const char *fileName, uint16_t language)
{
    Session *s = sessionFromId(sid, "ORTO_CreateLex");
    if (!s)
        return ORTO_BadSessionId;
    i16 lex = 0;
    while (lex < MaxLexicons && s->lexSlots[lex])
        lex++;
    if (lex == MaxLexicons) {
        DebugLog("ORTO_CreateLex: too many lexicons");
        return ORTO_TooManyLexicons;
    }
    /* A name cut to the lexicon's 516 bytes would make another file. */
    if (fileName && strlen(fileName) >= (size_t)PathSize) {
        DebugLog("error opening %s", fileName);
        return ORTO_OpenError;
    }
    Lexicon *l = (Lexicon *)calloc(1, sizeof(Lexicon));
    if (!l) {
        DebugLog("ORTO_CreateLex: out of memory");
        return ORTO_OutOfMemory;
    }
    l->format = LexText;
    l->language = language;
    i16 rc = TLex_Create(fileName, language, &l->tlex);
    if (rc < 0) {
        TLex_Close(&l->tlex);
        free(l);
        return rc;
    }
    s->lexSlots[lex] = l;
    DebugLog("ORTO_CreateLex: %s created; id=%hd", fileName ? fileName : "temp. lex", lex);
    return lex;
}

extern "C" int16_t ORTO_CloseLex(int16_t sid, int16_t lex)
{
    Session *s = sessionFromId(sid, "ORTO_CloseLex");
    if (!s)
        return ORTO_BadSessionId;
    Lexicon *l = lexFromId(s, lex, "ORTO_CloseLex");
    if (!l)
        return ORTO_BadLexId;
    if (l->format == LexText)
        TLex_Close(&l->tlex);
    else if (l->format == LexCompressed)
        CLex_CloseBody(l);
    free(l->frequencies);
    DebugLog("ORTO_CloseLex: %hd closed", lex);
    free(l);
    s->lexSlots[lex] = nullptr;
    return 0;
}

/* Session and lexicon of a call that changes a text lexicon; null after
 * logging, with *rc set to the code to return. */
static Lexicon *editableLex(int16_t sid, int16_t lex, const char *call, Session **session, i16 *rc)
{
    Session *s = sessionFromId(sid, call);
    if (!s) {
        *rc = ORTO_BadSessionId;
        return nullptr;
    }
    Lexicon *l = lexFromId(s, lex, call);
    if (!l) {
        *rc = ORTO_BadLexId;
        return nullptr;
    }
    if (l->format != LexText) {
        DebugLog("%s: read only lex", call);
        *rc = ORTO_ReadOnlyLex;
        return nullptr;
    }
    if (session)
        *session = s;
    return l;
}

extern "C" int16_t ORTO_AddToLex(int16_t sid, int16_t lex, const char *word, uint16_t action,
                                 const char *otherWord)
{
    Session *s = nullptr;
    i16 rc = 0;
    Lexicon *l = editableLex(sid, lex, "ORTO_AddToLex", &s, &rc);
    if (!l)
        return rc;
    if (!isAction(action)) {
        DebugLog("ORTO_AddToLex: unknown action %hd", (i16)action);
        return ORTO_UnknownAction;
    }
    char stripped[WordSize];
    if (StripPossessive(orEmpty(word), s->options, stripped) < 1) {
        /* an empty word can't be looked up, nor stand on a line of a file */
        DebugLog("ORTO_AddToLex: invalid word");
        return ORTO_InvalidWord;
    }
    /* A file line can't hold what would read back as a comment, another
     * field or another line; a lexicon in memory only takes anything. */
    if (l->tlex.fileName[0] && !TLex_FitsFile(stripped, otherWord)) {
        DebugLog("ORTO_AddToLex: invalid word");
        return ORTO_InvalidWord;
    }
    rc = TLex_Add(&l->tlex, stripped, (char)action, otherWord);
    return rc < 0 ? rc : 0;
}

extern "C" int16_t ORTO_DelFromLex(int16_t sid, int16_t lex, const char *word)
{
    i16 rc = 0;
    Lexicon *l = editableLex(sid, lex, "ORTO_DelFromLex", nullptr, &rc);
    if (!l)
        return rc;
    return TLex_Del(&l->tlex, orEmpty(word));
}

extern "C" int16_t ORTO_ClearLex(int16_t sid, int16_t lex)
{
    i16 rc = 0;
    Lexicon *l = editableLex(sid, lex, "ORTO_ClearLex", nullptr, &rc);
    if (!l)
        return rc;
    return TLex_Clear(&l->tlex);
}

extern "C" int16_t ORTO_FindLexWord(int16_t sid, int16_t lex, const char *word, char *otherWord,
                                    int16_t otherWordSize)
{
    Session *s = sessionFromId(sid, "ORTO_FindLexWord");
    if (!s)
        return ORTO_BadSessionId;
    Lexicon *l = lexFromId(s, lex, "ORTO_FindLexWord");
    if (!l)
        return ORTO_BadLexId;
    if (!otherWord)
        otherWordSize = 0;
    int caseSensitive = (s->options & ORTO_CaseSensitive) ? 1 : 0;
    if (l->format == LexText)
        return TLex_Find(&l->tlex, orEmpty(word), caseSensitive, otherWord, otherWordSize);
    if (l->format == LexCompressed && l->clex) {
        if (otherWordSize > 0)
            otherWord[0] = 0; /* a compressed lexicon holds no other word */
        return CLex_Find(orEmpty(word), caseSensitive, l->clex);
    }
    return ORTO_GeneralError;
}

extern "C" int32_t ORTO_GetLex(int16_t sid, int16_t lex, char *buffer, uint32_t bufferSize)
{
    Session *s = sessionFromId(sid, "ORTO_GetLex");
    if (!s)
        return ORTO_BadSessionId;
    Lexicon *l = lexFromId(s, lex, "ORTO_GetLex");
    if (!l)
        return ORTO_BadLexId;
    if (l->format != LexText) {
        DebugLog("ORTO_GetLex: unsupported action");
        return ORTO_Unsupported;
    }
    return TLex_GetAll(&l->tlex, buffer, buffer ? bufferSize : 0);
}

extern "C" int16_t ORTO_GetLexInfo(int16_t sid, int16_t lex, uint32_t *size, uint16_t *format,
                                   uint16_t *language)
{
    Session *s = sessionFromId(sid, "ORTO_GetLexInfo");
    if (!s)
        return ORTO_BadSessionId;
    Lexicon *l = lexFromId(s, lex, "ORTO_GetLexInfo");
    if (!l)
        return ORTO_BadLexId;
    if (format)
        *format = l->format;
    if (language)
        *language = l->language;
    if (size) {
        if (l->format == LexText)
            TLex_GetSize(&l->tlex, size);
        else
            *size = 0;
    }
    return 0;
}
