/*
 * lexsq_api.cpp -- the exported calls of the lexicon compressor.
 *
 * A session has room for one compression, in Session::compressor: the
 * LexSq is allocated by the first ORTO_CompressLexInit and freed by
 * ORTO_CompressLexEnd or ORTO_CompressLexAbort (or by closing the session).
 * A failed ORTO_CompressLexInit leaves it in place with no file open; the
 * next Init reuses it, and File or End on it refuse to write.
 */
#include <stdlib.h>

#include "engine/debug_log.h"
#include "engine/session.h"
#include "engine/string_helpers.h"
#include "lexicon/lexsq.h"
#include "orto.h"

extern "C" int16_t ORTO_CompressLexInit(int16_t sid, const char *outputFile,
                                        const char *suffixFile, int16_t language,
                                        uint32_t *lineNumber)
{
    Session *s = sessionFromId(sid, "ORTO_CompressLexInit");
    if (!s)
        return ORTO_BadSessionId;
    /* A second start while a file is being written is refused: going on
     * would lose the open file and its segments without a word. */
    if (s->compressor && s->compressor->fileIsOpen) {
        DebugLog("ORTO_CompressLexInit: compression already running");
        return ORTO_Unsupported;
    }
    if (!s->compressor) {
        s->compressor = (LexSq *)malloc(sizeof(LexSq));
        if (!s->compressor) {
            DebugLog("ORTO_CompressLexInit: out of memory");
            return ORTO_OutOfMemory;
        }
        LexSq_Clear(s->compressor);
    }
    uint32_t unused;
    /* An empty suffix file name, like a null one, means no suffixes. */
    const char *suffixes = suffixFile && suffixFile[0] ? suffixFile : nullptr;
    return LexSq_Init(s->compressor, orEmpty(outputFile), suffixes, language,
                      lineNumber ? lineNumber : &unused);
}

extern "C" int16_t ORTO_CompressLexFile(int16_t sid, const char *wordFile, uint32_t *lineNumber)
{
    Session *s = sessionFromId(sid, "ORTO_CompressLexFile");
    if (!s)
        return ORTO_BadSessionId;
    if (!s->compressor) {
        DebugLog("ORTO_CompressLexFile: call ORTO_CompressLexInit first");
        return ORTO_Unsupported;
    }
    uint32_t unused;
    return LexSq_File(s->compressor, orEmpty(wordFile), lineNumber ? lineNumber : &unused);
}

extern "C" int16_t ORTO_CompressLexEnd(int16_t sid)
{
    Session *s = sessionFromId(sid, "ORTO_CompressLexEnd");
    if (!s)
        return ORTO_BadSessionId;
    if (!s->compressor)
        return 0;
    i16 rc = LexSq_End(s->compressor);
    free(s->compressor);
    s->compressor = nullptr;
    return rc;
}

extern "C" void ORTO_CompressLexAbort(int16_t sid)
{
    Session *s = sessionFromId(sid, "ORTO_CompressLexAbort");
    if (!s || !s->compressor)
        return;
    LexSq_Abort(s->compressor);
    free(s->compressor);
    s->compressor = nullptr;
}
