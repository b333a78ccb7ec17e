/*
 * ini_file.cpp -- reading and writing INI files whole.
 *
 * A read takes the whole file into memory and looks the key up there
 * (ini_text.cpp); settings files are a few kilobytes, and each read sees
 * the file as it is now, whoever wrote it last.
 *
 * A write never edits the file in place.  Under an exclusive lock on a
 * lock file beside it (NAME.lock, as the lexicon files have), it reads the
 * file, sets the key in that text and puts the result in a new file in the
 * same folder, pushed to the disk and renamed over the old name.  So a
 * reader always finds a whole file, old or new, and two processes that
 * write different keys at once both find their key in the end: the second
 * one reads what the first one wrote.
 */
#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include "platform/file.h"
#include "platform/ini_file.h"
#include "platform/system_paths.h"

/* A settings file is small; past this size the bytes are no settings file
 * of ours, and memory is not spent on them. */
enum { IniMaxBytes = 8 << 20 };
/* The same wait as a lexicon rewrite: one rewrite takes milliseconds, a
 * queue of them on a slow disk seconds. */
enum { LockWaitMs = 10000 };
enum { TempNameTries = 100 };

/* Result 1 with the file's bytes in `*text`, 0 for a missing file (empty
 * text), -1 for one that exists but can't be read whole. */
static int readIniText(const char *name, std::string *text)
{
    text->clear();
    int h = fileOpen(name, 0);
    if (h < 0)
        return errno == ENOENT || errno == ENOTDIR ? 0 : -1;
    int32_t size = fileSize(h);
    int rc = size >= 0 && size <= IniMaxBytes ? 1 : -1;
    if (rc > 0) {
        text->resize((size_t)size);
        int32_t got = 0;
        while (got < size) {
            int32_t n = fileRead(h, &(*text)[(size_t)got], size - got);
            if (n <= 0)
                break;
            got += n;
        }
        if (got < size && fileSize(h) >= size)
            rc = -1; /* a read error, not a file that got shorter */
        text->resize((size_t)got);
    }
    fileClose(h);
    if (rc < 0)
        text->clear();
    return rc;
}

uint32_t GetPrivateProfileStringA(const char *section, const char *key, const char *defaultValue,
                                  char *buffer, uint32_t size, const char *fileName)
{
    if (!buffer || size == 0)
        return 0;
    std::string text;
    IniSpan span;
    const char *from = defaultValue ? defaultValue : "";
    size_t n = strlen(from);
    if (section && key && fileName && readIniText(fileName, &text) > 0 &&
        iniFindValue(text.data(), text.size(), section, key, &span)) {
        from = text.data() + span.start;
        n = span.length;
    }
    if (n > size - 1)
        n = size - 1;
    memmove(buffer, from, n); /* the default may be the caller's buffer */
    buffer[n] = 0;
    return (uint32_t)n;
}

uint32_t GetProfileStringA(const char *section, const char *key, const char *defaultValue,
                           char *buffer, uint32_t size)
{
    return GetPrivateProfileStringA(section, key, defaultValue, buffer, size, systemIniFile());
}

/* Makes the missing folders above `path`.  New folders are private (0700),
 * as the user's configuration folders should be; existing ones keep
 * theirs.  Failures show later, when the lock file can't be made. */
static void makeFolders(const char *path)
{
    std::string folder(path);
    for (size_t slash = folder.find('/', 1); slash != std::string::npos;
         slash = folder.find('/', slash + 1)) {
        folder[slash] = 0;
        mkdir(folder.c_str(), 0700);
        folder[slash] = '/';
    }
}

/* Puts `text` in place of the file `name` by a temporary file beside it.
 * Result 0 or -1; on failure `name` is as it was. */
static int replaceFile(const char *name, const std::string &text)
{
    std::string temp;
    int h = -1;
    for (int n = 0; n < TempNameTries && h < 0; n++) {
        temp = std::string(name) + ".tmp" + std::to_string(fileProcessId()) +
               (n ? "-" + std::to_string(n) : "");
        h = fileCreateNew(temp.c_str(), name);
        if (h < 0 && !fileLastErrorWasExists())
            return -1;
    }
    if (h < 0)
        return -1;
    bool ok = text.empty() || fileWrite(h, text.data(), (int32_t)text.size()) == (int32_t)text.size();
    ok = ok && fileSync(h) == 0;
    ok = fileClose(h) == 0 && ok;
    ok = ok && fileRename(temp.c_str(), name) == 0;
    if (!ok) {
        fileDelete(temp.c_str());
        return -1;
    }
    fileSyncDir(name); /* the data is safe already; this makes the rename last */
    return 0;
}

int32_t WritePrivateProfileStringA(const char *section, const char *key, const char *value,
                                   const char *fileName)
{
    if (!section || !key || !fileName || !*fileName)
        return 0;
    /* A settings file that is a link (as dotfile managers make them) stays
     * one: the new file takes the place of the file it points to. */
    char resolved[PATH_MAX];
    const char *target = realpath(fileName, resolved) ? resolved : fileName;
    makeFolders(target);
    int lock = fileLock((std::string(target) + ".lock").c_str(), LockWaitMs);
    if (lock < 0)
        return 0;
    std::string text;
    std::string edited;
    int rc = 0;
    if (readIniText(target, &text) >= 0) {
        edited = text;
        if (iniSetValue(&edited, section, key, value) && edited.size() <= IniMaxBytes)
            rc = edited == text || replaceFile(target, edited) == 0 ? 1 : 0;
    }
    fileUnlock(lock);
    return rc;
}
