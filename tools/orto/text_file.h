/*
 * text_file.h -- a file that `orto check` corrects in place: read into the
 * engine's text for a text control, and put back from the control's text
 * afterwards, byte for byte as it came except for the user's changes.
 */
#ifndef ORTO_TEXT_FILE_H
#define ORTO_TEXT_FILE_H

#include <sys/stat.h>

#include <string>
#include <vector>

#include "program.h"

struct TextFile {
    std::string path;              /* as the user named it, for messages */
    std::string target;            /* the file itself, behind symbolic links */
    std::string bytes;             /* the file as it was read */
    struct stat status;            /* at the read: kept for the new file, and to see changes made meanwhile */
    TextEncoding encoding;
    bool byteOrderMark;            /* a UTF-8 byte-order mark was taken off the start */
    bool crlf;                     /* every LF had a CR before it: the control holds the LF alone */
    std::vector<std::string> kept; /* the UTF-8 of each stand-in byte, in text order */
};

/* Reads `path` for a check.  Refuses, with a message naming the file, what
 * is no regular file, what can't be read or written, a file with NUL bytes
 * (binary) and, with EncodingUtf8, invalid UTF-8 (naming the line).
 * Returns ExitOk with `file` and `engine`, the text for the control, or
 * ExitFailure. */
int loadTextFile(const std::string &path, TextEncoding encoding, TextFile *file, std::string *engine);

/* The file's bytes for `engine`, the control's text after the check.  False
 * when its stand-in bytes aren't those the read made (one lost, or one
 * more), so that no character could be put back for sure. */
bool rebuildText(const TextFile &file, const std::string &engine, std::string *bytes);

/* Replaces the file by `bytes` if they differ from what was read: whole,
 * through a new file in its folder, with its permissions.  A file that was
 * changed by someone else since the read is left alone, and the new text
 * stays in a file beside it that the message names.  Returns ExitOk or
 * ExitFailure after a message. */
int saveTextFile(const TextFile &file, const std::string &bytes);

#endif
