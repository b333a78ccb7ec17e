/*
 * ini_file.h -- settings files of the INI kind: our own reader and writer
 * under the names of the system calls the profile store was written for.
 *
 * A file is lines of "key=value" under "[section]" lines.  Section and key
 * names match without regard to ASCII case, blanks around them aside; a
 * value is the rest of its line after the first '=', as it stands (the CR
 * of a CR LF line end is no part of it).  Lines before the first section,
 * lines that begin with ';' and lines without '=' are no keys.  Where a
 * section or key stands twice, the first one counts, for reading and
 * writing alike.
 *
 * Reads never fail: a file that is missing or can't be read counts as
 * empty.  A write changes the one line of its key, or adds that line to
 * its section (or the section, at the end of the file), and keeps every
 * other byte as it was: comments, blank lines, line ends.
 */
#ifndef ORTO_PLATFORM_INI_FILE_H
#define ORTO_PLATFORM_INI_FILE_H

#include <stddef.h>
#include <stdint.h>

#include <string>

/* Copies the value of `key` in `section` of the file `fileName`, or
 * `defaultValue` (null counts as empty) if there is none, into `buffer`,
 * cut to `size` - 1 bytes and NUL-ended.  Result the number of bytes
 * copied.  A null buffer or a size of 0 gets nothing. */
uint32_t GetPrivateProfileStringA(const char *section, const char *key, const char *defaultValue,
                                  char *buffer, uint32_t size, const char *fileName);
/* Sets `key` of `section` to `value` (cut at its first CR or LF); a null
 * value takes the key's line out.  Makes the file, and its folders, if
 * missing.  Result 1 if the file now holds the value, 0 if it couldn't be
 * written (names that can't stand in such a file, a folder without
 * rights, a file that can't be read, no lock within 10 seconds). */
int32_t WritePrivateProfileStringA(const char *section, const char *key, const char *value,
                                   const char *fileName);
/* GetPrivateProfileStringA on the system's own INI file (systemIniFile()). */
uint32_t GetProfileStringA(const char *section, const char *key, const char *defaultValue,
                           char *buffer, uint32_t size);

/* ---- The same on a file's bytes in memory ---- */

/* Where a value stands in the text: `start` and `length` in bytes. */
struct IniSpan {
    size_t start;
    size_t length;
};
/* True if the text holds `key` in `section`; `*value` then tells where its
 * value stands. */
bool iniFindValue(const char *text, size_t length, const char *section, const char *key,
                  IniSpan *value);
/* Sets the key in `*text` as WritePrivateProfileStringA does in a file.
 * False, with the text unchanged, for names that couldn't be read back:
 * an empty key, a key with '=' or beginning with '[' or ';', a section
 * with ']', names with a line end or blanks around them. */
bool iniSetValue(std::string *text, const char *section, const char *key, const char *value);

#endif
