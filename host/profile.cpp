/*
 * profile.cpp -- the settings store on its INI file.
 *
 * Which file: a path that ORTO_SetIniFile gave is used as it stands.  Else
 * ORTO.INI beside the library's own file, if there is one (an installation
 * can bring its settings along); else what the key ORTOProfileFile of
 * [ORTO] in the system's INI file names, by default ORTO.INI in the
 * folder "orto" of the user's configuration folder.  The answer is kept
 * in `iniFile` until ORTO_SetIniFile replaces it.
 *
 * Each operation reads or writes the file and keeps nothing of it, so a
 * change that another program makes is seen at the next read.
 */
#include "host/profile.h"

#include <stdio.h>
#include <string.h>

#include "engine/string_helpers.h"
#include "platform/file.h"
#include "platform/ini_file.h"
#include "platform/system_paths.h"

char iniFile[PathSize];
char regTreeName[PathSize] = "Software\\Fernhollow\\ORTO";
char stringTableName[StringTableNameSize] = "English";

static const char *sectionOf(int scope)
{
    return scope == ProfileUser ? "ORTO User" : "ORTO";
}

bool Profile_UsesRegistry(void)
{
    return false; /* no registry on this system: the INI file is the store */
}

/* "folder/name" into `out`, or false (out empty) if it doesn't fit. */
static bool joinPath(char *out, size_t size, const char *folder, const char *name)
{
    int n = snprintf(out, size, "%s/%s", folder, name);
    if (n < 0 || (size_t)n >= size) {
        out[0] = 0;
        return false;
    }
    return true;
}

void Profile_IniPath(void)
{
    if (iniFile[0])
        return;
    char folder[PathSize];
    char *slash = moduleFilePath(folder, sizeof folder) > 0 ? StrFindLastChar(folder, '/') : nullptr;
    if (slash) {
        *slash = 0;
        if (joinPath(iniFile, sizeof iniFile, folder, "ORTO.INI") && fileExists(iniFile))
            return;
    }
    char userFolder[PathSize];
    char fallback[PathSize] = "ORTO.INI";
    if (userConfigFolder(folder, sizeof folder) > 0 && joinPath(userFolder, sizeof userFolder, folder, "orto"))
        joinPath(fallback, sizeof fallback, userFolder, "ORTO.INI");
    else
        userFolder[0] = 0;
    GetProfileStringA("ORTO", "ORTOProfileFile", fallback, iniFile, sizeof iniFile);
    if (!iniFile[0]) {
        StrCopy(iniFile, sizeof iniFile, fallback);
    } else if (!StrFindChar(iniFile, '/') && userFolder[0]) {
        /* A bare file name goes where this system keeps the user's
         * settings, as the original system put such names in its own
         * folder. */
        char bare[PathSize];
        StrCopy(bare, sizeof bare, iniFile);
        if (!joinPath(iniFile, sizeof iniFile, userFolder, bare))
            StrCopy(iniFile, sizeof iniFile, bare);
    }
}

void Profile_GetString(const char *key, int scope, const char *defaultValue, char *buffer, u16 size)
{
    if (!buffer || size == 0)
        return;
    Profile_IniPath();
    GetPrivateProfileStringA(sectionOf(scope), key, defaultValue, buffer, size, iniFile);
}

/* A decimal number as the store's integers are read: blanks, an optional
 * sign, digits up to the first other character, taken modulo 2^32 so that
 * what "%lu" wrote of a negative number comes back as that number. */
static i32 readInteger(const char *text)
{
    while (*text == ' ' || (*text >= '\t' && *text <= '\r'))
        text++;
    bool negative = *text == '-';
    if (*text == '-' || *text == '+')
        text++;
    u32 value = 0;
    for (; *text >= '0' && *text <= '9'; text++)
        value = value * 10u + (u32)(*text - '0');
    return (i32)(negative ? 0u - value : value);
}

i32 Profile_GetInt(const char *key, int scope, i32 defaultValue)
{
    char fallback[20];
    char text[20];
    snprintf(fallback, sizeof fallback, "%lu", (unsigned long)(u32)defaultValue);
    Profile_GetString(key, scope, fallback, text, sizeof text);
    return readInteger(text);
}

void Profile_SetString(const char *key, int scope, const char *value)
{
    Profile_IniPath();
    WritePrivateProfileStringA(sectionOf(scope), key, orEmpty(value), iniFile);
}

void Profile_SetInt(const char *key, int scope, i32 value)
{
    char text[20];
    snprintf(text, sizeof text, "%lu", (unsigned long)(u32)value);
    Profile_SetString(key, scope, text);
}

void Profile_GetText(const char *id, const char *defaultValue, char *buffer, u16 size)
{
    if (!buffer || size == 0)
        return;
    Profile_IniPath();
    GetPrivateProfileStringA(stringTableName, id, defaultValue, buffer, size, iniFile);
}

const char *nextListItem(const char *list, char *item, u16 itemSize)
{
    /* an item buffer without room for one character would never move on */
    if (!list || !*list || !item || itemSize < 2)
        return nullptr;
    u16 n = 0;
    while (*list && *list != ',' && n + 1 < itemSize)
        item[n++] = *list++;
    item[n] = 0;
    return *list == ',' ? list + 1 : list;
}
