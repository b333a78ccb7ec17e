/*
 * file.cpp -- the file layer over POSIX descriptors.
 *
 * Every call retries on EINTR and reports a failure as -1, never by an
 * exception or a signal.  Descriptors are opened close-on-exec so that a
 * host that spawns programs doesn't hand them our files or our locks.
 * Locks are flock() locks on a lock file of their own: they belong to the
 * open file description, so they exclude other handles of this process as
 * well as other processes, and they end with the process that holds them.
 */
#include "platform/file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

/* Countdowns of the test hook, one per FileFault; 0 is disarmed. */
static int faultCountdown[FaultKinds];

/* True when the armed fault of this kind is due now. */
static bool faultDue(int kind)
{
    if (faultCountdown[kind] <= 0)
        return false;
    if (--faultCountdown[kind] > 0)
        return false;
    errno = EIO;
    return true;
}

void fileInjectFault(int kind, int nth)
{
    if (kind >= 0 && kind < FaultKinds)
        faultCountdown[kind] = nth > 0 ? nth : 0;
}

int fileOpen(const char *name, int mode)
{
    if (!name || !*name)
        return -1;
    int fd;
    if (mode == 0 || mode == 3) {
        do {
            fd = open(name, O_RDONLY | O_CLOEXEC);
        } while (fd < 0 && errno == EINTR);
        /* a folder opens for reading here, but reads as nothing: it is no
         * file to read */
        struct stat st;
        if (fd >= 0 && fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
            close(fd);
            errno = EISDIR;
            return -1;
        }
        return fd;
    }
    if (faultDue(FaultCreate))
        return -1;
    do {
        fd = open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    } while (fd < 0 && errno == EINTR);
    return fd;
}

int fileClose(int handle)
{
    if (handle < 0)
        return 0;
    /* No retry on EINTR: Linux frees the descriptor whatever close says. */
    return close(handle) == 0 ? 0 : -1;
}

int32_t fileRead(int handle, void *buffer, int32_t count)
{
    if (handle < 0 || count < 0 || (count > 0 && !buffer))
        return -1;
    char *p = static_cast<char *>(buffer);
    int32_t done = 0;
    /* A regular file gives short counts only at its end, but a pipe or a
     * signal may cut a read short: keep going until the end or the count. */
    while (done < count) {
        ssize_t n = read(handle, p + done, (size_t)(count - done));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return done > 0 ? done : -1;
        }
        if (n == 0)
            break;
        done += (int32_t)n;
    }
    return done;
}

int fileReadByte(int handle)
{
    unsigned char c;
    return fileRead(handle, &c, 1) == 1 ? c : -1;
}

int32_t fileWrite(int handle, const void *buffer, int32_t count)
{
    if (handle < 0 || count < 0 || (count > 0 && !buffer))
        return -1;
    if (faultDue(FaultWrite))
        return -1;
    const char *p = static_cast<const char *>(buffer);
    int32_t done = 0;
    while (done < count) {
        ssize_t n = write(handle, p + done, (size_t)(count - done));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return -1;
        }
        done += (int32_t)n;
    }
    return done;
}

int fileWriteByte(int handle, int byte)
{
    unsigned char c = (unsigned char)byte;
    return fileWrite(handle, &c, 1) == 1 ? 1 : -1;
}

int fileSeek(int handle, int32_t offset, int origin)
{
    int whence;
    switch (origin) {
    case FileFromStart: whence = SEEK_SET; break;
    case FileFromCurrent: whence = SEEK_CUR; break;
    case FileFromEnd: whence = SEEK_END; break;
    default: return -1;
    }
    if (handle < 0)
        return -1;
    return lseek(handle, (off_t)offset, whence) < 0 ? -1 : 0;
}

int32_t fileTell(int handle)
{
    if (handle < 0)
        return -1;
    off_t pos = lseek(handle, 0, SEEK_CUR);
    return (pos < 0 || pos > INT32_MAX) ? -1 : (int32_t)pos;
}

int32_t fileSize(int handle)
{
    struct stat st;
    if (handle < 0 || fstat(handle, &st) != 0 || st.st_size > INT32_MAX)
        return -1;
    return (int32_t)st.st_size;
}

int32_t fileReadLine(int handle, char *buffer, int32_t size)
{
    if (!buffer || size < 2)
        return -1;
    int32_t n = fileRead(handle, buffer, size - 1);
    if (n <= 0)
        return -1;
    buffer[n] = '\0';
    for (int32_t i = 0; i + 1 < n; i++) {
        if (buffer[i] == '\r' && buffer[i + 1] == '\n') {
            buffer[i] = '\0';
            int32_t rest = n - (i + 2);
            if (rest > 0 && fileSeek(handle, -rest, FileFromCurrent) != 0)
                return -1;
            return i;
        }
    }
    return n;
}

void fileLinesBegin(FileLines *lines, int handle)
{
    lines->handle = handle;
    lines->start = 0;
    lines->end = 0;
    lines->eof = 0;
}

int32_t fileLinesNext(FileLines *lines, char *buffer, int32_t size)
{
    if (!buffer || size < 2)
        return -1;
    int32_t want = size - 1 < FileLinesBufferSize ? size - 1 : FileLinesBufferSize;
    /* the window of fileReadLine: the next `want` bytes, or what is left */
    if (lines->end - lines->start < want && !lines->eof) {
        int32_t kept = lines->end - lines->start;
        memmove(lines->buffer, lines->buffer + lines->start, (size_t)kept);
        lines->start = 0;
        lines->end = kept;
        while (lines->end < FileLinesBufferSize && !lines->eof) {
            int32_t n = fileRead(lines->handle, lines->buffer + lines->end, FileLinesBufferSize - lines->end);
            if (n <= 0)
                lines->eof = 1;
            else
                lines->end += n;
        }
    }
    int32_t avail = lines->end - lines->start;
    int32_t n = avail < want ? avail : want;
    if (n <= 0)
        return -1;
    const char *p = lines->buffer + lines->start;
    int32_t len = n, used = n;
    for (int32_t i = 0; i + 1 < n; i++)
        if (p[i] == '\r' && p[i + 1] == '\n') {
            len = i;
            used = i + 2;
            break;
        }
    memcpy(buffer, p, (size_t)len);
    buffer[len] = '\0';
    lines->start += used;
    return len;
}

int32_t fileWriteLine(int handle, const char *text)
{
    if (!text)
        text = "";
    int32_t len = (int32_t)strlen(text);
    if (len > 0 && fileWrite(handle, text, len) != len)
        return -1;
    if (fileWrite(handle, "\r\n", 2) != 2)
        return -1;
    return len;
}

static int64_t statTimeNs(const struct stat &st)
{
    return (int64_t)st.st_mtim.tv_sec * 1000000000 + st.st_mtim.tv_nsec;
}

int32_t fileModTime(const char *name)
{
    struct stat st;
    if (!name || stat(name, &st) != 0)
        return 0;
    return (int32_t)st.st_mtim.tv_sec;
}

int64_t fileModTimeNs(const char *name)
{
    struct stat st;
    if (!name || stat(name, &st) != 0)
        return 0;
    return statTimeNs(st);
}

int64_t fileModTimeNsOf(int handle)
{
    struct stat st;
    if (handle < 0 || fstat(handle, &st) != 0)
        return 0;
    return statTimeNs(st);
}

int fileSetModTimeNs(int handle, int64_t timeNs)
{
    if (handle < 0 || timeNs < 0)
        return -1;
    struct timespec ts[2];
    ts[0].tv_sec = (time_t)(timeNs / 1000000000);
    ts[0].tv_nsec = (long)(timeNs % 1000000000);
    ts[1] = ts[0];
    return futimens(handle, ts) == 0 ? 0 : -1;
}

int fileDelete(const char *name)
{
    if (!name || !*name)
        return -1;
    return unlink(name) == 0 ? 0 : -1;
}

int fileExists(const char *name)
{
    struct stat st;
    return name && *name && stat(name, &st) == 0 && !S_ISDIR(st.st_mode);
}

int fileRename(const char *from, const char *to)
{
    if (!from || !to || !*from || !*to)
        return -1;
    if (faultDue(FaultRename))
        return -1;
    return rename(from, to) == 0 ? 0 : -1;
}

int fileSync(int handle)
{
    if (handle < 0)
        return -1;
    if (faultDue(FaultSync))
        return -1;
    int rc;
    do {
        rc = fsync(handle);
    } while (rc != 0 && errno == EINTR);
    return rc == 0 ? 0 : -1;
}

int fileSyncDir(const char *name)
{
    if (!name || !*name)
        return -1;
    char dir[4096];
    const char *slash = strrchr(name, '/');
    if (!slash) {
        strcpy(dir, ".");
    } else if (slash == name) {
        strcpy(dir, "/");
    } else {
        size_t len = (size_t)(slash - name);
        if (len >= sizeof dir)
            return -1;
        memcpy(dir, name, len);
        dir[len] = '\0';
    }
    int fd = open(dir, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return -1;
    int rc = fsync(fd);
    close(fd);
    return rc == 0 ? 0 : -1;
}

int fileCreateNew(const char *name, const char *likeName)
{
    if (!name || !*name)
        return -1;
    if (faultDue(FaultCreate))
        return -1;
    int fd;
    do {
        fd = open(name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0)
        return -1;
    struct stat st;
    /* A rewrite keeps the permissions that the owner gave the old file. */
    if (likeName && stat(likeName, &st) == 0 && S_ISREG(st.st_mode))
        fchmod(fd, st.st_mode & 07777);
    return fd;
}

int fileLastErrorWasExists(void)
{
    return errno == EEXIST;
}

/* The turns taken on a lock file: a count in its first 8 bytes, raised by
 * each client that gets the lock.  0 when it can't be read. */
static uint64_t lockTurns(int fd)
{
    uint64_t turns = 0;
    ssize_t n;
    do {
        n = pread(fd, &turns, sizeof turns, 0);
    } while (n < 0 && errno == EINTR);
    return n == (ssize_t)sizeof turns ? turns : 0;
}

static int64_t monotonicMs()
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return (int64_t)ts.tv_sec * 1000 + ts.tv_nsec / 1000000;
}

int fileLock(const char *name, uint32_t timeoutMs)
{
    if (!name || !*name)
        return -1;
    if (faultDue(FaultLock))
        return -2;
    int fd;
    do {
        fd = open(name, O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    } while (fd < 0 && errno == EINTR);
    /* another user's lock file may not be writable for us; a lock needs
     * no more than reading */
    if (fd < 0 && errno == EACCES)
        fd = open(name, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return -1;
    /* Polling rather than a blocking flock: a wait that can't be bounded
     * would hang the host's call forever behind a stuck client.  The bound
     * is on a wait in which no client gets the lock: while the others take
     * their turns the queue moves, however slowly a loaded machine lets it,
     * and only a client that holds the lock without end makes us give up. */
    const long pollNs = 1000000;
    uint64_t turns = lockTurns(fd);
    int64_t deadline = monotonicMs() + timeoutMs;
    for (;;) {
        if (flock(fd, LOCK_EX | LOCK_NB) == 0) {
            uint64_t next = lockTurns(fd) + 1;
            if (pwrite(fd, &next, sizeof next, 0) < 0) {
                /* a lock file we can only read: our turn goes uncounted */
            }
            return fd;
        }
        if (errno != EWOULDBLOCK && errno != EINTR) {
            close(fd);
            return -1;
        }
        int64_t now = monotonicMs();
        uint64_t seen = lockTurns(fd);
        if (seen != turns) {
            turns = seen;
            deadline = now + timeoutMs;
        }
        if (now >= deadline)
            break;
        struct timespec ts = {0, pollNs};
        nanosleep(&ts, nullptr);
    }
    close(fd);
    return -2;
}

void fileUnlock(int handle)
{
    if (handle < 0)
        return;
    flock(handle, LOCK_UN);
    close(handle);
}

int32_t fileNow(void)
{
    return (int32_t)time(nullptr);
}

int64_t fileNowNs(void)
{
    struct timespec ts;
    clock_gettime(CLOCK_REALTIME, &ts);
    return (int64_t)ts.tv_sec * 1000000000 + ts.tv_nsec;
}

int32_t fileProcessId(void)
{
    return (int32_t)getpid();
}
