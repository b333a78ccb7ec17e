/*
 * system_paths.h -- the places the settings store looks for its file: the
 * library's own file, the user's configuration folder and the system's
 * INI file.
 */
#ifndef ORTO_PLATFORM_SYSTEM_PATHS_H
#define ORTO_PLATFORM_SYSTEM_PATHS_H

#include <stddef.h>

/* The full path of the file this code was loaded from: liborto.so, or the
 * program that the library is linked into.  Result its length, or 0 (an
 * empty buffer) if it is unknown or doesn't fit. */
size_t moduleFilePath(char *buffer, size_t size);

/* The user's configuration folder: $XDG_CONFIG_HOME if it holds an
 * absolute path, else the home folder ($HOME, or the password database's)
 * and "/.config".  Result its length, or 0 (an empty buffer) if there is
 * no home to be found or the path doesn't fit. */
size_t userConfigFolder(char *buffer, size_t size);

/* The system's own INI file, "/etc/orto.ini". */
const char *systemIniFile(void);

/* Test hook: stand-ins for the library's own file and for the system's INI
 * file, so that tests never read the real ones; null gives the real one
 * back.  The library never calls it. */
void systemPathsForTest(const char *moduleFile, const char *systemIni);

#endif
