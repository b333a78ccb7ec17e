/*
 * lex_open.cpp -- ORTO_OpenLex: a lexicon from a file of either kind.
 *
 * The kind of a file is told by its contents, never by its name.  A file
 * that the compressed reader doesn't claim is a text lexicon: any file at
 * all reads as one, at worst as a plain word list.
 */
#include <stdlib.h>
#include <string.h>

#include "engine/debug_log.h"
#include "engine/session.h"
#include "engine/string_helpers.h"
#include "lexicon/clex.h"
#include "lexicon/lexicon.h"
#include "lexicon/tlex_file.h"
#include "orto.h"

i16 Lex_Identify(const char *fileName, Lexicon *lexicon)
{
    lexicon->format = LexCompressed;
    i16 rc = CLex_Probe(fileName, lexicon);
    if (rc != ORTO_BadFormat)
        return rc;
    lexicon->format = LexText;
    return TLex_Probe(fileName, lexicon);
}

extern "C" int16_t ORTO_OpenLex(int16_t sid, const char *fileName, uint32_t memoryBudget)
{
    Session *s = sessionFromId(sid, "ORTO_OpenLex");
    if (!s)
        return ORTO_BadSessionId;
    fileName = orEmpty(fileName);
    i16 lex = 0;
    while (lex < MaxLexicons && s->lexSlots[lex])
        lex++;
    if (lex == MaxLexicons) {
        DebugLog("ORTO_OpenLex: too many lexicons");
        return ORTO_TooManyLexicons;
    }
    /* A name that doesn't fit the lexicon's 516 bytes would be cut, and the
     * rewrites would then go to another file: refuse it as unopenable. */
    if (strlen(fileName) >= (size_t)PathSize) {
        DebugLog("open error; file=%s", fileName);
        return ORTO_FileOpenError;
    }
    Lexicon *l = (Lexicon *)calloc(1, sizeof(Lexicon));
    if (!l) {
        DebugLog("ORTO_OpenLex: out of memory");
        return ORTO_OutOfMemory;
    }
    i16 rc = Lex_Identify(fileName, l);
    if (rc >= 0) {
        switch (l->format) {
        case LexText:
            rc = TLex_Open(fileName, &l->tlex);
            if (rc < 0)
                TLex_Close(&l->tlex);
            break;
        case LexCompressed:
            rc = CLex_OpenBody(l, fileName, memoryBudget);
            break;
        default:
            DebugLog("ORTO_OpenLex: bad lex format %hd", (i16)l->format);
            rc = ORTO_BadFormat;
            break;
        }
    }
    if (rc < 0) {
        free(l);
        return rc;
    }
    s->lexSlots[lex] = l;
    DebugLog("ORTO_OpenLex: %s opened; id=%hd", fileName, lex);
    return lex;
}
