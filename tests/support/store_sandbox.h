/*
 * store_sandbox.h -- a settings store of the test's own.
 *
 * For the scope, every place where the store could be found (the folder
 * of the library, /etc/orto.ini, $XDG_CONFIG_HOME) points into a
 * temporary folder, so that no test reads or writes the real ones; the
 * store is the file `ini` there, named by ORTO_SetIniFile, unless the test
 * asks for the search.  At the end the shared session is stopped (into
 * that store) and the store forgotten, so that no session is left to be
 * saved at the end of the process.  Every test that starts the shared
 * session, dialogs included, runs inside one.
 */
#ifndef ORTO_STORE_SANDBOX_H
#define ORTO_STORE_SANDBOX_H

#include <stdlib.h>

#include <string>

#include "engine/string_helpers.h"
#include "host/profile.h"
#include "host/shared_session.h"
#include "orto.h"
#include "platform/system_paths.h"
#include "support/test_support.h"

struct StoreSandbox {
    TempDir dir;
    std::string ini;             /* the store's file */
    std::string savedXdg;
    bool hadXdg;

    explicit StoreSandbox(bool search = false) : ini(dir.file("ORTO.INI"))
    {
        const char *xdg = getenv("XDG_CONFIG_HOME");
        hadXdg = xdg != nullptr;
        savedXdg = xdg ? xdg : "";
        setenv("XDG_CONFIG_HOME", dir.file("config").c_str(), 1);
        systemPathsForTest(dir.file("lib/liborto.so").c_str(), dir.file("etc/orto.ini").c_str());
        busyFlag = 0;
        ORTO_SetIniFile(search ? "" : ini.c_str());
    }

    ~StoreSandbox()
    {
        busyFlag = 0;
        stopSharedSession();
        ORTO_SetIniFile("");
        ORTO_SetRegTreeName("Software\\Fernhollow\\ORTO");
        StrCopy(stringTableName, sizeof stringTableName, "English");
        systemPathsForTest(nullptr, nullptr);
        if (hadXdg)
            setenv("XDG_CONFIG_HOME", savedXdg.c_str(), 1);
        else
            unsetenv("XDG_CONFIG_HOME");
    }

    StoreSandbox(const StoreSandbox &) = delete;
    StoreSandbox &operator=(const StoreSandbox &) = delete;

    std::string text() const { return readFile(ini); }
    void write(const std::string &bytes) const { writeFile(ini, bytes); }
};

#endif
