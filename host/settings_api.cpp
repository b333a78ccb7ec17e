/*
 * settings_api.cpp -- the exported calls that read and change the dialogs'
 * settings in the store.
 *
 * A setter is refused while a dialog of the shared session runs, and
 * stops the session after it: the next dialog starts it afresh from what
 * the store now says.  The calls that move the store (another file,
 * another string table) stop first, so that the session's options go to
 * the store it was started from.
 */
#include "engine/debug_log.h"
#include "engine/string_helpers.h"
#include "host/profile.h"
#include "host/shared_session.h"
#include "orto.h"

static void getString(const char *key, int scope, char *buffer, uint16_t size)
{
    Profile_GetString(key, scope, "", buffer, size);
}

/* Writes the key, logs the value by `logFormat` if given, then stops the
 * session. */
static int16_t setString(const char *key, int scope, const char *value, const char *logFormat)
{
    if (busyFlag)
        return ORTO_DialogActive;
    Profile_SetString(key, scope, value);
    if (logFormat)
        DebugLog(logFormat, orEmpty(value));
    stopSharedSession();
    return 0;
}

extern "C" void ORTO_GetHelpFile(char *buffer, uint16_t size)
{
    getString("HelpFile", ProfileMachine, buffer, size);
}

extern "C" int16_t ORTO_SetHelpFile(const char *name)
{
    return setString("HelpFile", ProfileMachine, name, nullptr);
}

extern "C" void ORTO_GetMainLexFiles(char *buffer, uint16_t size)
{
    getString("MainLexFiles", ProfileMachine, buffer, size);
}

extern "C" int16_t ORTO_SetMainLexFiles(const char *list)
{
    return setString("MainLexFiles", ProfileMachine, list, "ORTO_SetMainLexFiles: MainLexFiles set to %s");
}

extern "C" void ORTO_GetMainLexPath(char *buffer, uint16_t size)
{
    getString("MainLexPath", ProfileMachine, buffer, size);
}

extern "C" int16_t ORTO_SetMainLexPath(const char *path)
{
    return setString("MainLexPath", ProfileMachine, path, "ORTO_SetMainLexPath: MainLexPath set to %s");
}

extern "C" void ORTO_GetUserLexFiles(char *buffer, uint16_t size)
{
    getString("UserLexFiles", ProfileUser, buffer, size);
}

extern "C" int16_t ORTO_SetUserLexFiles(const char *list)
{
    return setString("UserLexFiles", ProfileUser, list, "ORTO_SetUserLexFiles: UserLexFiles set to %s");
}

extern "C" void ORTO_GetUserLexPath(char *buffer, uint16_t size)
{
    getString("UserLexPath", ProfileUser, buffer, size);
}

extern "C" int16_t ORTO_SetUserLexPath(const char *path)
{
    return setString("UserLexPath", ProfileUser, path, "ORTO_SetUserLexPath: UserLexPath set to %s");
}

extern "C" void ORTO_GetStringTableName(char *buffer, uint16_t size)
{
    getString("StringTableName", ProfileUser, buffer, size);
}

extern "C" int16_t ORTO_SetStringTableName(const char *name)
{
    if (busyFlag)
        return ORTO_DialogActive;
    stopSharedSession();
    StrCopy(stringTableName, sizeof stringTableName, orEmpty(name));
    Profile_SetString("StringTableName", ProfileUser, stringTableName);
    DebugLog("ORTO_SetStringTableName: string table name set to %s", stringTableName);
    return 0;
}

extern "C" void ORTO_GetRegTreeName(char *buffer, uint16_t size)
{
    if (buffer && size > 0)
        StrCopy(buffer, size, regTreeName);
}

extern "C" int16_t ORTO_SetRegTreeName(const char *name)
{
    if (busyFlag)
        return ORTO_DialogActive;
    stopSharedSession();
    StrCopy(regTreeName, sizeof regTreeName, orEmpty(name));
    DebugLog("ORTO_SetRegTreeName: registry tree set to %s", regTreeName);
    return 0;
}

extern "C" int16_t ORTO_SetIniFile(const char *path)
{
    if (busyFlag)
        return ORTO_DialogActive;
    stopSharedSession();
    StrCopy(iniFile, sizeof iniFile, orEmpty(path));
    DebugLog("ORTO_SetIniFile: ini file set to %s", iniFile);
    return 0;
}
