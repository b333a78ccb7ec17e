/*
 * file.h -- the file layer: the one place where the engine touches files.
 *
 * A thin layer over POSIX descriptors.  A handle is an int, -1 on failure;
 * no handle stays open between two calls of the engine, so every user opens,
 * works and closes within one operation.  Sizes and offsets are 32-bit: the
 * engine's files (lexicons, word lists, logs) stay far below 2 GB.
 *
 * Lines end in CR LF.  A lone LF is an ordinary byte of the line: files
 * written on other systems come through as one long line cut into pieces
 * of the reader's size, never as silently different entries.
 */
#ifndef ORTO_PLATFORM_FILE_H
#define ORTO_PLATFORM_FILE_H

#include <stdint.h>

/* Modes of fileOpen. */
enum FileMode {
    FileReadMode = 0,   /* open an existing file for reading (3 is the same) */
    FileCreateMode = 4  /* create, or empty an existing file, for writing (any mode but 0 and 3) */
};

/* Origins of fileSeek. */
enum FileOrigin {
    FileFromStart = 0,
    FileFromCurrent = 1,
    FileFromEnd = 2
};

/* Mode 0 or 3: opens an existing file for reading.  Any other mode creates
 * the file (0644 less the umask), or empties it if it exists, for writing.
 * Result the handle, or -1. */
int fileOpen(const char *name, int mode);
/* Closes a handle; -1 is ignored.  Result 0, or -1 if the close failed
 * (on a written file that can mean lost data). */
int fileClose(int handle);

/* Reads at most `count` bytes.  Result the number read (0 at the end of the
 * file), or -1 on an error. */
int32_t fileRead(int handle, void *buffer, int32_t count);
/* Result the byte (0..255), or -1 at the end of the file or on an error. */
int fileReadByte(int handle);
/* Writes `count` bytes.  Result the number written, which is `count`
 * unless the write failed (then -1). */
int32_t fileWrite(int handle, const void *buffer, int32_t count);
/* Writes one byte.  Result 1, or -1 on failure. */
int fileWriteByte(int handle, int byte);

/* Moves the position by `offset` from `origin` (a FileOrigin).  Result 0,
 * or -1 on failure (the position then stays). */
int fileSeek(int handle, int32_t offset, int origin);
/* Result the position, or -1. */
int32_t fileTell(int handle);
/* Size of the open file in bytes, or -1. */
int32_t fileSize(int handle);

/* Reads one line of at most `size` - 1 bytes into `buffer` and NUL-ends it.
 * A line ends at the first CR LF, which is dropped, and the file is left
 * just behind the LF.  Without a CR LF among the bytes read, the line is
 * all that was read: a longer line comes in pieces, one a call, and a last
 * line without CR LF is a line like any other.  Result the length of the
 * line (0 for an empty one), or -1 at the end of the file or on an error.
 * A size below 2 reads nothing and gives -1. */
int32_t fileReadLine(int handle, char *buffer, int32_t size);
/* Reading many lines: the same lines as fileReadLine gives, piece for
 * piece, but from a buffer filled in large reads.  The reader owns the
 * handle's position from fileLinesBegin on; to start over, seek and begin
 * again. */
enum { FileLinesBufferSize = 8192 };
struct FileLines {
    int handle;
    int32_t start;  /* next unread byte in buffer */
    int32_t end;    /* end of the bytes in buffer */
    int eof;        /* nothing more comes from the handle */
    char buffer[FileLinesBufferSize];
};
void fileLinesBegin(FileLines *lines, int handle);
/* As fileReadLine(handle, buffer, size); a size above the reader's buffer
 * counts as FileLinesBufferSize + 1. */
int32_t fileLinesNext(FileLines *lines, char *buffer, int32_t size);

/* Writes `text` (null counts as empty) and CR LF.  Result the length of
 * `text`, or -1 if a write failed. */
int32_t fileWriteLine(int handle, const char *text);

/* Modification time in seconds since 1970, or 0 if the file can't be
 * examined. */
int32_t fileModTime(const char *name);
/* The same in nanoseconds since 1970, or 0 if the file can't be examined. */
int64_t fileModTimeNs(const char *name);
/* The same for an open handle, or 0. */
int64_t fileModTimeNsOf(int handle);
/* Sets the modification (and access) time of an open file, in nanoseconds
 * since 1970.  Result 0 or -1. */
int fileSetModTimeNs(int handle, int64_t timeNs);

/* Nonzero if `name` is a file (not a folder) that exists. */
int fileExists(const char *name);
/* Result 0, or -1 if the file couldn't be deleted. */
int fileDelete(const char *name);
/* Renames `from` to `to`, atomically replacing `to` if it exists (within
 * one file system).  Result 0 or -1. */
int fileRename(const char *from, const char *to);
/* Pushes the file's data to the disk.  Result 0 or -1. */
int fileSync(int handle);
/* Pushes the directory entries of the folder holding `name` to the disk,
 * so that a rename survives a crash.  Result 0 or -1. */
int fileSyncDir(const char *name);

/* Creates `name` for writing, failing if it exists already (so that two
 * writers never share a temporary file).  Its permissions are those of the
 * existing file `likeName` if given and present, else 0644 less the umask.
 * Result the handle, or -1 (errno EEXIST when the name was taken). */
int fileCreateNew(const char *name, const char *likeName);
/* Nonzero if the last failure was an existing name (for a retry with
 * another name after fileCreateNew). */
int fileLastErrorWasExists(void);

/* Exclusive advisory lock on the lock file `name`, created if missing and
 * left in place afterwards.  Waits, polling, as long as other clients keep
 * taking the lock in turn, and gives up when `timeoutMs` pass in which none
 * of them got it (a client stuck while holding it).  The lock file counts
 * the turns in its first 8 bytes.  Result a handle holding the lock, -1 if
 * the lock file can't be made, or -2 if the lock wasn't had.  Locks of one
 * process on separate handles exclude each other as locks of separate
 * processes do. */
int fileLock(const char *name, uint32_t timeoutMs);
/* Gives the lock up and closes its handle; -1 is ignored. */
void fileUnlock(int handle);

/* The current time in seconds since 1970. */
int32_t fileNow(void);
/* The current time in nanoseconds since 1970. */
int64_t fileNowNs(void);
/* The process id, for names that no other process picks. */
int32_t fileProcessId(void);

/* Test hook: makes the `nth` call from now (1 = the next) of one kind fail
 * as the system call would.  0 disarms.  Process-wide; for tests only, the
 * engine never arms it. */
enum FileFault {
    FaultWrite = 0,  /* fileWrite, fileWriteByte, fileWriteLine's writes */
    FaultCreate = 1, /* fileOpen for writing, fileCreateNew */
    FaultRename = 2, /* fileRename */
    FaultSync = 3,   /* fileSync */
    FaultLock = 4,   /* fileLock, as if the wait ran out */
    FaultKinds = 5
};
void fileInjectFault(int kind, int nth);

#endif
