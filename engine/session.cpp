/*
 * session.cpp -- opening and closing sessions, options, the version, and
 * the validation rule of the ids.
 *
 * The table of sessions is the process's own.  Only the search for a free
 * slot is guarded; everything after it works on a slot that is already
 * taken, so a session serves one thread without further locking.  The
 * slots themselves are read and written atomically, because closing a
 * session clears its slot without the lock while another thread may be
 * searching the table under it.
 */
#include "engine/session.h"

#include <stdlib.h>

#include "engine/debug_log.h"
#include "engine/string_helpers.h"
#include "platform/session_lock.h"

Session *SessionTable[MaxSessions];

static bool sessionTableCleared; /* set by the first ORTO_OpenSession */

static const char revisionString[] = "$Revision: 5.1 $";

static Session *slotAt(int sid)
{
    return __atomic_load_n(&SessionTable[sid], __ATOMIC_ACQUIRE);
}

static void setSlot(int sid, Session *session)
{
    __atomic_store_n(&SessionTable[sid], session, __ATOMIC_RELEASE);
}

Session *sessionFromId(i16 sid, const char *call)
{
    Session *s = sid >= 0 && sid < MaxSessions ? slotAt(sid) : nullptr;
    if (!s)
        DebugLog("%s: bad session id %hd", call, sid);
    return s;
}

Lexicon *lexFromId(Session *session, i16 lex, const char *call)
{
    if (lex < 0 || lex >= MaxLexicons || !session->lexSlots[lex]) {
        DebugLog("%s: bad lex id %hd", call, lex);
        return nullptr;
    }
    return session->lexSlots[lex];
}

Block *blockFromId(Session *session, i16 block, const char *call)
{
    if (block < 0 || block >= MaxBlocks || !session->blockSlots[block]) {
        DebugLog("%s: bad block id %hd", call, block);
        return nullptr;
    }
    return session->blockSlots[block];
}

extern "C" int16_t ORTO_OpenSession(void)
{
    bool locked = sessionLockAcquire(10000); /* after 10 s the call goes on */
    if (!sessionTableCleared) {
        for (int i = 0; i < MaxSessions; i++)
            setSlot(i, nullptr);
        sessionTableCleared = true;
    }
    int sid = 0;
    while (sid < MaxSessions && slotAt(sid))
        sid++;
    if (sid == MaxSessions) {
        DebugLog("ORTO_OpenSession: too many sessions");
        if (locked)
            sessionLockRelease();
        return ORTO_GeneralError;
    }
    Session *s = (Session *)calloc(1, sizeof(Session));
    if (!s) {
        DebugLog("ORTO_OpenSession: out of memory");
        if (locked)
            sessionLockRelease();
        return ORTO_OutOfMemory;
    }
    /* the record is whole before its slot shows it */
    s->language = ORTO_LangAmerican;
    s->options = ORTO_DefaultOptions;
    s->compressor = nullptr;
    setSlot(sid, s);
    if (locked)
        sessionLockRelease();
    DebugLog("ORTO_OpenSession: session opened");
    return (int16_t)sid;
}

extern "C" int16_t ORTO_CloseSession(int16_t sid)
{
    Session *s = sessionFromId(sid, "ORTO_CloseSession");
    if (!s)
        return ORTO_BadSessionId;
    for (i16 lex = 0; lex < MaxLexicons; lex++)
        if (s->lexSlots[lex])
            ORTO_CloseLex(sid, lex);
    for (i16 block = 0; block < MaxBlocks; block++)
        if (s->blockSlots[block])
            ORTO_CloseBlock(sid, block);
    if (s->compressor)
        ORTO_CompressLexAbort(sid);
    setSlot(sid, nullptr);
    free(s);
    DebugLog("ORTO_CloseSession: Session %hd closed", sid);
    return 0;
}

extern "C" int32_t ORTO_GetOption(int16_t sid, uint32_t option)
{
    Session *s = sessionFromId(sid, "ORTO_GetOption");
    if (!s)
        return ORTO_BadSessionId;
    if (option == ORTO_Language)
        return (int16_t)s->language;
    return (s->options & option) ? 1 : 0;
}

extern "C" int32_t ORTO_SetOption(int16_t sid, uint32_t option, uint32_t value)
{
    Session *s = sessionFromId(sid, "ORTO_SetOption");
    if (!s)
        return ORTO_BadSessionId;
    if (option == ORTO_Language) {
        int16_t before = (int16_t)s->language;
        s->language = (u16)value;
        return before;
    }
    int32_t before = (s->options & option) ? 1 : 0;
    if (value)
        s->options |= option;
    else
        s->options &= ~option;
    return before;
}

extern "C" void ORTO_Version(char *buffer, uint16_t size)
{
    if (!buffer || size == 0)
        return;
    /* The version is the second blank-separated word of the revision
     * string; without a blank, the whole string. */
    const char *start = StrFindChar(revisionString, ' ');
    if (!start) {
        StrCopy(buffer, size, revisionString);
        return;
    }
    start++;
    const char *end = StrFindChar(start, ' ');
    u16 n = end ? (u16)(end - start) : StrLen(start);
    StrCopyN(buffer, size, start, n);
}
