/*
 * file_replace.h -- a file replaced whole: either the old bytes stay or the
 * new ones are there, never a part of them, whatever stops the program.
 */
#ifndef ORTO_FILE_REPLACE_H
#define ORTO_FILE_REPLACE_H

#include <sys/stat.h>

#include <string>

enum ReplaceResult {
    Replaced,         /* the file now holds the new bytes */
    ChangedMeanwhile, /* the file isn't as `before` saw it: left alone, the bytes are in `copy` */
    ReplaceFailed,    /* nothing changed; `error` tells why */
};

/* Writes `bytes` to a new file in the folder of `target` with the
 * permissions (and, where the system lets us, the owner) of `before`, the
 * status of `target` when it was read, syncs it and renames it over
 * `target`.  Interrupts (SIGINT, SIGTERM, SIGHUP, SIGQUIT) are held back
 * meanwhile and come after.  `error` gets the errno of a failure. */
ReplaceResult replaceFile(const std::string &target, const std::string &bytes, const struct stat &before,
                          std::string *copy, int *error);

#endif
