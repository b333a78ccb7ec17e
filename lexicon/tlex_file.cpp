/*
 * tlex_file.cpp -- writing text lexicon files, and the lock that keeps the
 * clients of one file from losing each other's changes.
 *
 * A rewrite never touches the old file: the whole table goes into a new
 * file in the same folder, which is pushed to the disk and then renamed
 * over the old name, so at every instant the name holds either the old
 * file or the new one, whole.
 *
 * The clients of one file (in this process or in others) take turns by an
 * exclusive lock on a lock file beside it, NAME.lock.  The lock can't be
 * taken on the lexicon itself, because each rewrite puts a new file in its
 * place.  Under the lock a client reloads the file if it is newer than its
 * own copy, makes its change and writes the file.  "Newer" is judged by the
 * modification time in nanoseconds, and each rewrite gives its file a time
 * strictly after the file it replaces, so that even two rewrites within
 * one tick of the file system's clock can't look alike.
 */
#include <stdio.h>
#include <string.h>

#include "engine/debug_log.h"
#include "engine/string_helpers.h"
#include "lexicon/tlex_file.h"
#include "orto.h"
#include "platform/file.h"

/* How long a change waits for the lock while no other client gets it: the
 * same bound as the session lock.  A queue of clients on a slow or busy
 * disk (each rewrite ends in fsync) can take far longer as a whole, but
 * every turn taken starts the bound again, so only a client stuck while
 * holding the lock makes a change fail. */
enum { LockWaitMs = 10000 };
/* Temporary names tried before a rewrite gives up. */
enum { TempNameTries = 100 };

/* Creates the temporary file in the folder of `fileName`: "X" and the low
 * 16 bits of the time as a signed number, then the process id, then a
 * counter if that name is taken.  Creation fails on a name that exists, so
 * no two writers ever share one.  `temp` keeps the last name tried. */
static int createTemp(const char *fileName, char *temp, size_t tempSize)
{
    const char *slash = strrchr(fileName, '/');
    int dirLen = slash ? (int)(slash - fileName + 1) : 0;
    short stamp = (short)(fileNow() & 0xFFFF);
    for (int n = 0; n < TempNameTries; n++) {
        if (n == 0)
            snprintf(temp, tempSize, "%.*sX%05hd-%d", dirLen, fileName, stamp, (int)fileProcessId());
        else
            snprintf(temp, tempSize, "%.*sX%05hd-%d-%d", dirLen, fileName, stamp, (int)fileProcessId(), n);
        int h = fileCreateNew(temp, fileName);
        if (h >= 0 || !fileLastErrorWasExists())
            return h;
    }
    return -1;
}

/* Lines gathered into one buffer and written in large pieces; the first
 * failed write is remembered and ends all writing. */
struct LineWriter {
    int handle;
    u32 used;
    bool failed;
    char buffer[8192];
};

static void flushLines(LineWriter *w)
{
    if (!w->failed && w->used > 0 && fileWrite(w->handle, w->buffer, (int32_t)w->used) != (int32_t)w->used)
        w->failed = true;
    w->used = 0;
}

static void putLine(LineWriter *w, const char *text, u32 len)
{
    if (w->used + len + 2 > sizeof w->buffer)
        flushLines(w);
    memcpy(w->buffer + w->used, text, len);
    w->buffer[w->used + len] = '\r';
    w->buffer[w->used + len + 1] = '\n';
    w->used += len + 2;
}

/* Appends `src` to the line, which holds at most TLexLineMax characters. */
static u32 appendCut(char *line, u32 len, const char *src)
{
    while (*src && len < (u32)TLexLineMax)
        line[len++] = *src++;
    return len;
}

/* Writes the lexicon into the open temporary file; false if a write failed. */
static bool writeEntries(const TLex *tlex, int handle)
{
    LineWriter w;
    w.handle = handle;
    w.used = 0;
    w.failed = false;
    char line[TLexLineMax + 1];
    if (!tlex->plainList) {
        int len = snprintf(line, sizeof line, "#LID %hd", (short)tlex->language);
        putLine(&w, line, (u32)len);
    }
    for (u32 i = 0; i < tlex->count && !w.failed; i++) {
        const TLexEntry *e = &tlex->table.base[i];
        u32 len = appendCut(line, 0, e->word);
        /* a plain word list holds the words alone: action and other word
         * live in memory only */
        if (!tlex->plainList) {
            len = appendCut(line, len, "\t");
            len = appendCut(line, len, e->info);
        }
        putLine(&w, line, len);
    }
    flushLines(&w);
    return !w.failed;
}

i16 TLex_WriteFile(TLex *tlex)
{
    char temp[PathSize + 48];
    int h = createTemp(tlex->fileName, temp, sizeof temp);
    if (h < 0) {
        DebugLog("error opening %s", temp);
        return ORTO_OpenError;
    }
    bool ok = writeEntries(tlex, h);
    if (ok) {
        int64_t old = fileModTimeNs(tlex->fileName);
        if (old && fileModTimeNsOf(h) <= old)
            ok = fileSetModTimeNs(h, old + 1) == 0;
    }
    if (ok)
        ok = fileSync(h) == 0;
    if (fileClose(h) != 0)
        ok = false;
    if (!ok) {
        DebugLog("%s: file write err", temp);
        fileDelete(temp);
        return ORTO_WriteError;
    }
    if (fileRename(temp, tlex->fileName) != 0) {
        DebugLog("%s: file rename err", temp);
        fileDelete(temp);
        return ORTO_WriteError;
    }
    /* Without this the rename itself might not survive a crash; the data
     * is safe either way, so a failure here is no failure of the write. */
    fileSyncDir(tlex->fileName);
    return 0;
}

i16 lockFile(const char *fileName)
{
    char name[PathSize + 8];
    snprintf(name, sizeof name, "%s.lock", fileName);
    int h = fileLock(name, LockWaitMs);
    if (h < 0)
        return h == -2 ? -2 : -1;
    if (h > INT16_MAX) {
        /* a lock number is an i16: a descriptor beyond it can't be handed out */
        fileUnlock(h);
        return -1;
    }
    return (i16)h;
}

void unlockFile(i16 lock)
{
    fileUnlock(lock);
}

void TLex_StampFile(TLex *tlex)
{
    int64_t t = fileModTimeNs(tlex->fileName);
    tlex->fileTimeNs = t;
    tlex->fileTime = (i32)(t / 1000000000);
}

i16 TLex_CreateFile(TLex *tlex)
{
    int h = fileOpen(tlex->fileName, 3);
    if (h >= 0) {
        DebugLog("lexicons %s exists", tlex->fileName);
        fileClose(h);
        return ORTO_FileExists;
    }
    /* Under the lock, so that two clients creating one file at the same
     * moment can't both write it: the second finds the first one's file. */
    i16 lock = lockFile(tlex->fileName);
    if (lock < 0) {
        DebugLog("TLex_Create: can't lock %s", tlex->fileName);
        /* a lock file that can't be made means a folder that can't take
         * the lexicon either */
        return lock == -1 ? ORTO_OpenError : ORTO_WriteError;
    }
    h = fileOpen(tlex->fileName, 3);
    if (h >= 0) {
        DebugLog("lexicons %s exists", tlex->fileName);
        fileClose(h);
        unlockFile(lock);
        return ORTO_FileExists;
    }
    i16 rc = TLex_WriteFile(tlex);
    if (rc == 0) {
        /* fileTime stays the time of creation; the fine stamp is the
         * file's own, so the first change doesn't reload it needlessly */
        tlex->fileTimeNs = fileModTimeNs(tlex->fileName);
    }
    unlockFile(lock);
    return rc;
}

static bool holdsLineBreakOrTab(const char *s, int limit)
{
    for (int i = 0; i < limit && s[i]; i++)
        if (s[i] == '\t' || s[i] == '\r' || s[i] == '\n')
            return true;
    return false;
}

bool TLex_FitsFile(const char *word, const char *otherWord)
{
    if (word[0] == '#' || holdsLineBreakOrTab(word, INT16_MAX))
        return false;
    /* the other word is stored cut to 63 characters: only those count */
    return !otherWord || !holdsLineBreakOrTab(otherWord, MaxOtherWord);
}
