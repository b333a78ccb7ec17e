/*
 * system_paths.cpp -- where the library lies, where the user's settings
 * go, and the system's INI file.
 *
 * The library finds its own file by asking the dynamic loader which
 * loaded object holds one of its functions (dladdr1).  For a shared
 * library that is the path it was loaded by; for the main program the
 * loader has no name, so /proc/self/exe stands in.  Names are kept in
 * plain arrays: these calls may run from the library's destructor, after
 * objects with destructors of their own are gone.
 */
#include "platform/system_paths.h"

#include <dlfcn.h>
#include <limits.h>
#include <link.h>
#include <pwd.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static char moduleFileForTest[PATH_MAX];  /* empty: ask the loader */
static char systemIniForTest[PATH_MAX];   /* empty: /etc/orto.ini */

/* Copies `from` whole into `buffer`, or nothing: a cut path is no path. */
static size_t copyPath(char *buffer, size_t size, const char *from)
{
    size_t n = strlen(from);
    if (n >= size) {
        buffer[0] = 0;
        return 0;
    }
    memcpy(buffer, from, n + 1);
    return n;
}

size_t moduleFilePath(char *buffer, size_t size)
{
    if (!buffer || size == 0)
        return 0;
    buffer[0] = 0;
    if (moduleFileForTest[0])
        return copyPath(buffer, size, moduleFileForTest);
    Dl_info info;
    struct link_map *map = nullptr;
    if (!dladdr1((void *)&moduleFilePath, &info, (void **)&map, RTLD_DL_LINKMAP) || !map)
        return 0;
    char path[PATH_MAX];
    if (map->l_name[0]) {
        /* a library loaded by a relative path: made whole against the
         * folder it was loaded from, the current one */
        if (!realpath(map->l_name, path))
            return copyPath(buffer, size, map->l_name);
    } else {
        ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
        if (n <= 0)
            return 0;
        path[n] = 0;
    }
    return copyPath(buffer, size, path);
}

size_t userConfigFolder(char *buffer, size_t size)
{
    if (!buffer || size == 0)
        return 0;
    buffer[0] = 0;
    const char *xdg = getenv("XDG_CONFIG_HOME");
    if (xdg && xdg[0] == '/') /* a relative value is to be ignored */
        return copyPath(buffer, size, xdg);
    const char *home = getenv("HOME");
    struct passwd entry;
    struct passwd *found = nullptr;
    char scratch[4096];
    if ((!home || !*home) && getpwuid_r(getuid(), &entry, scratch, sizeof scratch, &found) == 0 && found)
        home = found->pw_dir;
    if (!home || !*home)
        return 0;
    char path[PATH_MAX];
    if (snprintf(path, sizeof path, "%s/.config", strcmp(home, "/") == 0 ? "" : home) >= (int)sizeof path)
        return 0;
    return copyPath(buffer, size, path);
}

const char *systemIniFile(void)
{
    return systemIniForTest[0] ? systemIniForTest : "/etc/orto.ini";
}

void systemPathsForTest(const char *moduleFile, const char *systemIni)
{
    snprintf(moduleFileForTest, sizeof moduleFileForTest, "%s", moduleFile ? moduleFile : "");
    snprintf(systemIniForTest, sizeof systemIniForTest, "%s", systemIni ? systemIni : "");
}
