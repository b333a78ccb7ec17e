/*
 * text_file.cpp -- a file into a text control and back, exactly.
 *
 * The control holds engine text: Windows Latin-1, one byte a character.
 * What the file has beyond that is taken off on the way in and put back on
 * the way out, so that a check which changes nothing gives back the same
 * bytes, and one change gives back the file with that change alone:
 *
 * - a UTF-8 byte-order mark is taken off the start;
 * - CR LF line ends become LF when every LF of the file has its CR (a file
 *   of mixed line ends goes in as it is, its CRs are white space to the
 *   engine), so the document pane shows plain lines;
 * - each UTF-8 character without a byte of its own in Windows Latin-1
 *   becomes the one stand-in byte that no other character gives, and its
 *   own bytes are kept in a list in text order.  The dialog edits words
 *   only, and the stand-in is no word character, so the stand-ins of the
 *   text come back in the same order and each takes its bytes again.
 *
 * A file without a final newline gets none: nothing is added or taken off
 * at the end.
 */
#include "text_file.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "file_replace.h"
#include "lexicons.h"

static const char ByteOrderMark[] = "\xEF\xBB\xBF";

/* The whole file, from an open descriptor. */
static bool readAll(int fd, size_t size, std::string *bytes)
{
    bytes->clear();
    bytes->reserve(size);
    char buffer[65536];
    for (;;) {
        ssize_t n = read(fd, buffer, sizeof buffer);
        if (n == 0)
            return true;
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        bytes->append(buffer, (size_t)n);
    }
}

static bool refuse(const std::string &path, const char *why)
{
    printError("%s: %s; not checked", path.c_str(), why);
    return false;
}

/* Opens and reads what `path` names, refusing what can't be checked in
 * place. */
static bool readCheckable(const std::string &path, TextFile *file)
{
    char resolved[PATH_MAX];
    if (!realpath(path.c_str(), resolved))
        return refuse(path, strerror(errno));
    file->target = resolved;
    /* without O_NONBLOCK a pipe would wait here for a writer */
    int fd = open(resolved, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return refuse(path, strerror(errno));
    bool ok = fstat(fd, &file->status) == 0;
    if (!ok)
        refuse(path, strerror(errno));
    else if (S_ISDIR(file->status.st_mode))
        ok = refuse(path, "is a directory");
    else if (!S_ISREG(file->status.st_mode))
        ok = refuse(path, "not a regular file");
    else if (file->status.st_size >= INT32_MAX)
        ok = refuse(path, "too big (2 GB or more)");
    else if (!readAll(fd, (size_t)file->status.st_size, &file->bytes))
        ok = refuse(path, strerror(errno));
    close(fd);
    if (!ok)
        return false;
    /* the file is replaced through a new one in its folder */
    if (access(resolved, W_OK) != 0 || access(dirName(file->target).c_str(), W_OK | X_OK) != 0) {
        std::string why = std::string("can't be written: ") + strerror(errno);
        return refuse(path, why.c_str());
    }
    if (memchr(file->bytes.data(), 0, file->bytes.size()))
        return refuse(path, "a binary file (it holds NUL bytes)");
    return true;
}

/* True when the text has LF line ends and each one has its CR. */
static bool allLineEndsCrLf(const std::string &text)
{
    size_t lf = 0;
    for (size_t i = 0; i < text.size(); i++)
        if (text[i] == '\n') {
            if (i == 0 || text[i - 1] != '\r')
                return false;
            lf++;
        }
    return lf > 0;
}

static std::string withoutCrBeforeLf(const std::string &text)
{
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); i++)
        if (!(text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n'))
            out.push_back(text[i]);
    return out;
}

int loadTextFile(const std::string &path, TextEncoding encoding, TextFile *file, std::string *engine)
{
    file->path = path;
    file->encoding = encoding;
    file->kept.clear();
    if (!readCheckable(path, file))
        return ExitFailure;
    std::string text = file->bytes;
    file->byteOrderMark = encoding == EncodingUtf8 && text.compare(0, 3, ByteOrderMark) == 0;
    if (file->byteOrderMark)
        text.erase(0, 3);
    file->crlf = allLineEndsCrLf(text);
    if (file->crlf)
        text = withoutCrBeforeLf(text);
    if (!toEngineText(text, encoding, engine, nullptr, &file->kept)) {
        unsigned long line = 1;
        for (char c : *engine)
            line += c == '\n';
        printError("%s:%lu: invalid UTF-8 (give -i latin1 for Latin-1 text); not checked", path.c_str(), line);
        return ExitFailure;
    }
    return ExitOk;
}

bool rebuildText(const TextFile &file, const std::string &engine, std::string *bytes)
{
    std::string text;
    if (file.encoding == EncodingLatin1) {
        text = engine;
    } else {
        size_t next = 0, from = 0;
        text.reserve(engine.size() + engine.size() / 4);
        for (size_t i = 0; i <= engine.size(); i++) {
            if (i < engine.size() && (unsigned char)engine[i] != ForeignLetterByte)
                continue;
            text += fromEngineText(engine.substr(from, i - from), EncodingUtf8);
            if (i < engine.size()) {
                if (next == file.kept.size())
                    return false;
                text += file.kept[next++];
            }
            from = i + 1;
        }
        if (next != file.kept.size())
            return false;
    }
    bytes->clear();
    bytes->reserve(text.size() + text.size() / 16 + 3);
    if (file.byteOrderMark)
        *bytes = ByteOrderMark;
    if (!file.crlf) {
        *bytes += text;
        return true;
    }
    for (char c : text) {
        if (c == '\n')
            bytes->push_back('\r');
        bytes->push_back(c);
    }
    return true;
}

int saveTextFile(const TextFile &file, const std::string &bytes)
{
    if (bytes == file.bytes)
        return ExitOk;
    std::string copy;
    int error = 0;
    switch (replaceFile(file.target, bytes, file.status, &copy, &error)) {
    case Replaced:
        return ExitOk;
    case ChangedMeanwhile:
        printError("%s was changed by another program during the check; it is left as that "
                   "program made it, and the checked text is in %s", file.path.c_str(), copy.c_str());
        return ExitFailure;
    case ReplaceFailed:
        break;
    }
    printError("%s: the checked text can't be written (%s); the file is left as it was", file.path.c_str(),
               strerror(error));
    return ExitFailure;
}
