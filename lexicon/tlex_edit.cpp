/*
 * tlex_edit.cpp -- changes to a text lexicon: add, delete, clear.
 *
 * A file-backed lexicon makes each change under the file's lock, on the
 * latest table (synchronised first), and rewrites the whole file before
 * the call returns.  When the rewrite fails, the change is taken back in
 * memory so that table and file agree again.  The new time stamp is taken
 * while the lock is still held: taken after, it could be the stamp of
 * another client's rewrite, which this client would then never reload.
 */
#include <stdlib.h>
#include <string.h>

#include "engine/debug_log.h"
#include "engine/string_helpers.h"
#include "lexicon/lexicon.h"
#include "lexicon/tlex_file.h"
#include "orto.h"

static bool hasFile(const TLex *tlex) { return tlex->fileName[0] != 0; }

/* Lock and bring the table in step with the file.  Returns the lock number
 * or a negative code (the lock then already given up). */
static i16 lockAndSync(TLex *tlex, const char *lockMessage)
{
    i16 lock = lockFile(tlex->fileName);
    if (lock < 0) {
        DebugLog(lockMessage, tlex->fileName);
        return ORTO_WriteError;
    }
    i16 rc = syncLexFile(tlex);
    if (rc < 0) {
        unlockFile(lock);
        return rc;
    }
    return lock;
}

i16 TLex_Add(TLex *tlex, const char *word, char action, const char *otherWord)
{
    /* Adding a word that exists replaces its action and other word; its
     * case is part of its identity.  An entry read with no action (0) is
     * there too and is replaced the same way. */
    if (TLex_Find(tlex, word, 1, nullptr, 0) >= 0)
        TLex_Remove(tlex, word);
    i16 lock = 0;
    if (hasFile(tlex)) {
        lock = lockAndSync(tlex, "TLex_Add: can't lock %s");
        if (lock < 0)
            return lock;
        /* The reload may have brought the old entry back: take it out
         * again, so that a word never stands twice in the table. */
        if (TLex_Find(tlex, word, 1, nullptr, 0) >= 0)
            TLex_Remove(tlex, word);
    }
    i16 rc = TLex_Insert(tlex, word, action, otherWord);
    if (rc < 0) {
        if (hasFile(tlex))
            unlockFile(lock);
        return rc;
    }
    if (!hasFile(tlex))
        return 0;
    rc = TLex_WriteFile(tlex);
    if (rc < 0) {
        /* the entry replaced above stays out: the file still holds it */
        TLex_Remove(tlex, word);
        unlockFile(lock);
        return rc;
    }
    TLex_StampFile(tlex);
    unlockFile(lock);
    return 0;
}

i16 TLex_Del(TLex *tlex, const char *word)
{
    i16 lock = 0;
    if (hasFile(tlex)) {
        lock = lockAndSync(tlex, "can't lock %s");
        if (lock < 0)
            return lock;
    }
    if (tlex->count == 0) {
        if (hasFile(tlex))
            unlockFile(lock);
        return ORTO_NotFound;
    }
    int64_t at = TLex_FindIndex(tlex, word);
    if (at < 0) {
        i16 rc = TLex_Remove(tlex, word); /* logs the word not found */
        if (hasFile(tlex))
            unlockFile(lock);
        return rc;
    }
    /* The entry is taken out of the table but kept whole until the file is
     * written, so that a failed rewrite can put back exactly what was
     * there, with no allocation that could fail in turn. */
    TLexEntry kept = tlex->table.base[at];
    TLexEntry *base = tlex->table.base;
    memmove(&base[at], &base[at + 1], (size_t)(tlex->count - (u32)at - 1) * sizeof(TLexEntry));
    tlex->count--;
    TLex_Changed(tlex);
    i16 rc = hasFile(tlex) ? TLex_WriteFile(tlex) : 0;
    if (rc < 0) {
        memmove(&base[at + 1], &base[at], (size_t)(tlex->count - (u32)at) * sizeof(TLexEntry));
        base[at] = kept;
        tlex->count++;
        TLex_Changed(tlex);
        unlockFile(lock);
        return rc;
    }
    free(kept.word);
    free(kept.info);
    if (!hasFile(tlex))
        return 0;
    TLex_StampFile(tlex);
    unlockFile(lock);
    return 0;
}

i16 TLex_Clear(TLex *tlex)
{
    TLexTable_FreeEntries(tlex);
    if (!hasFile(tlex))
        return 0;
    /* No synchronisation first: what another client added goes too. */
    i16 lock = lockFile(tlex->fileName);
    if (lock < 0) {
        DebugLog("TLex_Clear: can't lock %s", tlex->fileName);
        return ORTO_WriteError;
    }
    /* the entries stay cleared after a failed rewrite */
    i16 rc = TLex_WriteFile(tlex);
    if (rc == 0)
        TLex_StampFile(tlex);
    unlockFile(lock);
    return rc;
}
