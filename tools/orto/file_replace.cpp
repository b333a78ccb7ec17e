/*
 * file_replace.cpp -- whole-file replacement by rename.
 *
 * The new text goes to a hidden file beside the old one (same folder, so
 * same file system, so rename() swaps them in one step), is synced to the
 * disk, and only then renamed over the old file; the folder is synced
 * after, so that the new name survives a crash too.  Writing in place
 * would leave half a file to whoever stops the program at the wrong
 * moment.  The interrupts that a user or a closing terminal send are
 * blocked for the few system calls this takes, so that they can't leave
 * the hidden file behind either; they are delivered when it is done.
 */
#include "file_replace.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include "lexicons.h"

static bool writeAll(int fd, const std::string &bytes)
{
    size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += (size_t)n;
    }
    return true;
}

static bool sameFile(const struct stat &a, const struct stat &b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

static void syncFolder(const std::string &folder)
{
    int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        fsync(fd);
        close(fd);
    }
}

/* Writes the new file; its name goes to `name`. */
static bool writeNewFile(const std::string &target, const std::string &bytes, const struct stat &before,
                         std::string *name)
{
    size_t slash = target.find_last_of('/');
    *name = target.substr(0, slash + 1) + "." + target.substr(slash + 1) + ".orto-XXXXXX";
    int fd = mkostemp(&(*name)[0], O_CLOEXEC);
    if (fd < 0) {
        name->clear();
        return false;
    }
    /* the owner first: a change of owner may clear the set-id bits */
    if (fchown(fd, before.st_uid, before.st_gid) != 0 && fchown(fd, (uid_t)-1, before.st_gid) != 0) {
        /* not ours to give away: the new file stays the user's own */
    }
    bool ok = writeAll(fd, bytes) && fchmod(fd, before.st_mode & 07777) == 0 && fsync(fd) == 0;
    int saved = errno;
    if (close(fd) != 0 && ok) {
        ok = false;
        saved = errno;
    }
    errno = saved;
    return ok;
}

ReplaceResult replaceFile(const std::string &target, const std::string &bytes, const struct stat &before,
                          std::string *copy, int *error)
{
    sigset_t held, old;
    sigemptyset(&held);
    for (int s : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        sigaddset(&held, s);
    sigprocmask(SIG_BLOCK, &held, &old);

    ReplaceResult result = ReplaceFailed;
    std::string name;
    struct stat now;
    if (!writeNewFile(target, bytes, before, &name)) {
        *error = errno;
        if (!name.empty())
            unlink(name.c_str());
    } else if (stat(target.c_str(), &now) != 0 || !sameFile(now, before)) {
        *copy = name;
        result = ChangedMeanwhile;
    } else if (rename(name.c_str(), target.c_str()) != 0) {
        *error = errno;
        unlink(name.c_str());
    } else {
        syncFolder(dirName(target));
        result = Replaced;
    }

    sigprocmask(SIG_SETMASK, &old, nullptr);
    return result;
}
