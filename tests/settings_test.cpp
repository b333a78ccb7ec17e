// The settings store through the exported settings calls: where the file
// is found, the two scopes, integers, lists, and the guard while a dialog
// runs.
#include <gtest/gtest.h>
#include <limits.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host/profile.h"
#include "host/shared_session.h"
#include "orto.h"
#include "platform/system_paths.h"
#include "support/store_sandbox.h"
#include "support/test_support.h"

namespace {

std::string mainLexPathSetting()
{
    char buffer[PathSize];
    ORTO_GetMainLexPath(buffer, sizeof buffer);
    return buffer;
}

void writeMarker(const std::string &path, const std::string &marker)
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    writeFile(path, "[orto]\r\nmainlexpath=" + marker + "\r\n");
}

} // namespace

TEST(Settings, StoreIsFoundInItsOrder)
{
    StoreSandbox store(true);
    const TempDir &d = store.dir;
    writeMarker(d.file("set.ini"), "set");
    writeMarker(d.file("lib/ORTO.INI"), "beside the library");
    writeMarker(d.file("named.ini"), "named by the system");
    writeMarker(d.file("config/orto/bare.ini"), "bare name");
    writeMarker(d.file("config/orto/ORTO.INI"), "user folder");
    writeMarker(d.file("home/.config/orto/ORTO.INI"), "home");
    std::filesystem::create_directories(d.file("etc"));
    writeFile(d.file("etc/orto.ini"), "[ORTO]\nORTOProfileFile=" + d.file("named.ini") + "\n");

    ORTO_SetIniFile(d.file("set.ini").c_str());
    EXPECT_EQ(mainLexPathSetting(), "set");
    struct Step {
        std::function<void()> change;
        const char *found;
    } steps[] = {
        {[] {}, "beside the library"},
        {[&] { std::filesystem::remove(d.file("lib/ORTO.INI")); }, "named by the system"},
        {[&] { writeFile(d.file("etc/orto.ini"), "[orto]\nortoprofilefile=bare.ini\n"); }, "bare name"},
        {[&] { writeFile(d.file("etc/orto.ini"), "[ORTO]\nORTOProfileFile=\n"); }, "user folder"},
        {[&] { std::filesystem::remove(d.file("etc/orto.ini")); }, "user folder"},
        {[&] {
             setenv("XDG_CONFIG_HOME", "relative/config", 1);
             setenv("HOME", d.file("home").c_str(), 1);
         },
         "home"},
    };
    std::string home = getenv("HOME") ? getenv("HOME") : "";
    for (const Step &s : steps) {
        s.change();
        ORTO_SetIniFile(""); // search again
        EXPECT_EQ(mainLexPathSetting(), s.found);
    }
    setenv("HOME", home.c_str(), 1);

    // the first write makes the folder
    setenv("XDG_CONFIG_HOME", d.file("new/config").c_str(), 1);
    ORTO_SetIniFile("");
    EXPECT_EQ(ORTO_SetMainLexPath("/lex"), 0);
    EXPECT_EQ(readFile(d.file("new/config/orto/ORTO.INI")), "[ORTO]\nMainLexPath=/lex\n");
}

TEST(Settings, LibraryFileIsTheOneThatHoldsTheCode)
{
    systemPathsForTest(nullptr, nullptr);
    char path[PATH_MAX];
    ASSERT_GT(moduleFilePath(path, sizeof path), 0u);
    // linked into this test program, the library is the program
    EXPECT_EQ(std::string(path), std::filesystem::canonical("/proc/self/exe").string());
    EXPECT_EQ(moduleFilePath(path, 4), 0u); // a cut path is no path
    EXPECT_STREQ(path, "");
}

TEST(Settings, EachCallHasItsKeyAndScope)
{
    StoreSandbox store;
    DebugCapture log;
    struct Call {
        int16_t (*set)(const char *);
        void (*get)(char *, uint16_t);
        const char *line, *logged;
    } calls[] = {
        {ORTO_SetHelpFile, ORTO_GetHelpFile, "HelpFile=h.hlp", nullptr},
        {ORTO_SetMainLexFiles, ORTO_GetMainLexFiles, "MainLexFiles=h.hlp",
         "ORTO_SetMainLexFiles: MainLexFiles set to h.hlp"},
        {ORTO_SetMainLexPath, ORTO_GetMainLexPath, "MainLexPath=h.hlp", "ORTO_SetMainLexPath: MainLexPath set to h.hlp"},
        {ORTO_SetUserLexFiles, ORTO_GetUserLexFiles, "UserLexFiles=h.hlp",
         "ORTO_SetUserLexFiles: UserLexFiles set to h.hlp"},
        {ORTO_SetUserLexPath, ORTO_GetUserLexPath, "UserLexPath=h.hlp", "ORTO_SetUserLexPath: UserLexPath set to h.hlp"},
        {ORTO_SetStringTableName, ORTO_GetStringTableName, "StringTableName=h.hlp",
         "ORTO_SetStringTableName: string table name set to h.hlp"},
    };
    for (const Call &c : calls) {
        char buffer[16] = "x";
        c.get(buffer, sizeof buffer);
        EXPECT_STREQ(buffer, ""); // nothing stored: empty
        EXPECT_EQ(c.set("h.hlp"), 0);
        c.get(buffer, sizeof buffer);
        EXPECT_STREQ(buffer, "h.hlp");
        c.get(buffer, 3);
        EXPECT_STREQ(buffer, "h.");
        c.get(nullptr, 10);
        if (c.logged) {
            EXPECT_TRUE(log.has(c.logged)) << c.logged;
        }
    }
    EXPECT_EQ(store.text(), "[ORTO]\nHelpFile=h.hlp\nMainLexFiles=h.hlp\nMainLexPath=h.hlp\n"
                            "[ORTO User]\nUserLexFiles=h.hlp\nUserLexPath=h.hlp\nStringTableName=h.hlp\n");
    EXPECT_STREQ(stringTableName, "h.hlp");

    char tree[32];
    ORTO_GetRegTreeName(tree, sizeof tree);
    EXPECT_STREQ(tree, "Software\\Fernhollow\\ORTO");
    EXPECT_EQ(ORTO_SetRegTreeName("Software\\Other"), 0);
    ORTO_GetRegTreeName(tree, 9);
    EXPECT_STREQ(tree, "Software");
    EXPECT_TRUE(log.has("ORTO_SetRegTreeName: registry tree set to Software\\Other"));
    EXPECT_EQ(ORTO_SetIniFile(store.dir.file("other.ini").c_str()), 0);
    EXPECT_TRUE(log.has("ORTO_SetIniFile: ini file set to " + store.dir.file("other.ini")));
    EXPECT_EQ(mainLexPathSetting(), "");
}

TEST(Settings, IntegersAreReadAsDecimalNumbersAndWrittenUnsigned)
{
    StoreSandbox store;
    struct Case {
        const char *stored;
        int16_t depth;
        int32_t autoCorrect;
    } cases[] = {
        {nullptr, 0, 0}, {"", 0, 0},   {"42", 42, 42},        {" \t-7", -7, -7},
        {"+3x", 3, 3},   {"x3", 0, 0}, {"4294967295", -1, -1}, {"65537", 1, 65537},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.stored ? c.stored : "(missing)");
        store.write(c.stored ? std::string("[ORTO User]\nMinSuggestDepth=") + c.stored + "\nAutoCorrect=" + c.stored + "\n"
                             : "");
        EXPECT_EQ(ORTO_GetMinSuggestDepth(), c.depth);
        EXPECT_EQ(minSuggestDepth, c.depth);
        EXPECT_EQ(ORTO_GetAutoCorrect(), c.autoCorrect);
        EXPECT_EQ(autoCorrect, c.autoCorrect);
    }
    EXPECT_EQ(ORTO_SetMinSuggestDepth(-2), 0);
    EXPECT_EQ(ORTO_SetAutoCorrect(1), 0);
    EXPECT_EQ(store.text(), "[ORTO User]\nMinSuggestDepth=4294967294\nAutoCorrect=1\n");
    EXPECT_EQ(ORTO_GetMinSuggestDepth(), -2);
}

TEST(Settings, ListItemsComeOneByOne)
{
    struct Case {
        const char *list;
        std::vector<std::string> items;
    } cases[] = {
        {"a.tlx,b.tlx", {"a.tlx", "b.tlx"}},
        {",b.tlx", {"", "b.tlx"}},
        {"a.tlx,", {"a.tlx"}},
        {"a b,,c", {"a b", "", "c"}},
        {"abcdefgh", {"abcde", "fgh"}},  // longer than the item buffer: goes on as a further item
        {"", {}},
    };
    for (const Case &c : cases) {
        std::vector<std::string> items;
        char item[6];
        for (const char *rest = nextListItem(c.list, item, sizeof item); rest; rest = nextListItem(rest, item, sizeof item))
            items.push_back(item);
        EXPECT_EQ(items, c.items) << c.list;
    }
    EXPECT_EQ(nextListItem(nullptr, nullptr, 6), nullptr);
}

TEST(Settings, SettersAreRefusedWhileADialogRuns)
{
    StoreSandbox store;
    store.write("[ORTO]\nHelpFile=old\n");
    busyFlag = 1;
    for (int16_t (*set)(const char *) : {ORTO_SetHelpFile, ORTO_SetMainLexFiles, ORTO_SetMainLexPath,
                                         ORTO_SetUserLexFiles, ORTO_SetUserLexPath, ORTO_SetStringTableName,
                                         ORTO_SetRegTreeName, ORTO_SetIniFile})
        EXPECT_EQ(set("new"), ORTO_DialogActive);
    EXPECT_EQ(ORTO_ResetLex(), ORTO_DialogActive);
    EXPECT_EQ(store.text(), "[ORTO]\nHelpFile=old\n");
    EXPECT_STREQ(iniFile, store.ini.c_str());
    EXPECT_STREQ(stringTableName, "English");
    // the two options of the dialogs change also while one runs
    EXPECT_EQ(ORTO_SetAutoCorrect(0), 0);
    EXPECT_EQ(store.text(), "[ORTO]\nHelpFile=old\n[ORTO User]\nAutoCorrect=0\n");
    busyFlag = 0;
}
