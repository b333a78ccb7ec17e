/*
 * dialog_fixture.h -- what a dialog test stands on: a settings store of
 * its own, a scripted user, a folder of user lexicons, and lexicon files
 * made and read back through a session of the test's own.
 */
#ifndef ORTO_DIALOG_FIXTURE_H
#define ORTO_DIALOG_FIXTURE_H

#include <sys/stat.h>

#include <string>
#include <vector>

#include "support/script_front_end.h"
#include "support/store_sandbox.h"

struct LexEntryText {
    std::string word;
    char action;
    std::string other;
};

struct DialogFixture {
    StoreSandbox store;
    ScriptFrontEnd user;
    std::string folder;           /* UserLexPath */

    /* `settings` is the store's text; "@" in it stands for the folder. */
    explicit DialogFixture(const std::string &settings = "")
        : folder(store.dir.file("lex"))
    {
        mkdir(folder.c_str(), 0755);
        std::string text = "[ORTO User]\nUserLexPath=" + folder + "\n";
        for (char c : settings)
            text += c == '@' ? folder : std::string(1, c);
        store.write(text);
    }

    std::string path(const std::string &name) const { return folder + "/" + name; }

    /* A text lexicon file with these entries. */
    void makeLex(const std::string &name, const std::vector<LexEntryText> &entries,
                 uint16_t language = ORTO_LangAny) const
    {
        int16_t sid = ORTO_OpenSession();
        int16_t lex = ORTO_CreateLex(sid, path(name).c_str(), language);
        for (const LexEntryText &e : entries)
            ORTO_AddToLex(sid, lex, e.word.c_str(), (uint16_t)e.action, e.other.c_str());
        ORTO_CloseSession(sid);
    }

    /* The entries of a lexicon file as ORTO_GetLex lists them
     * ("word\tAother"), read from the disk by a session of its own. */
    std::vector<std::string> entriesOnDisk(const std::string &file) const
    {
        std::vector<std::string> out;
        int16_t sid = ORTO_OpenSession();
        int16_t lex = ORTO_OpenLex(sid, file.c_str(), 0);
        uint32_t size = 0;
        if (lex >= 0 && ORTO_GetLexInfo(sid, lex, &size, nullptr, nullptr) == 0 && size > 0) {
            std::string buffer(size, '\0');
            ORTO_GetLex(sid, lex, &buffer[0], size);
            for (const char *p = buffer.c_str(); *p; p += strlen(p) + 1)
                out.push_back(p);
        }
        ORTO_CloseSession(sid);
        return out;
    }

    /* A key of the store as a reader finds it now. */
    std::string key(const char *name, int scope = ProfileUser) const
    {
        char value[8320];
        Profile_GetString(name, scope, "<missing>", value, sizeof value);
        return value;
    }
};

#endif
