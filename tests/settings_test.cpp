// The settings store through the exported settings calls: where the file
// is found, the two scopes, integers, lists, and the guard while a dialog
// runs.
#include <gtest/gtest.h>
#include <limits.h>
#include <stdlib.h>

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

static std::string mainLexPathSetting()
{
    char buffer[PathSize];
    ORTO_GetMainLexPath(buffer, sizeof buffer);
    return buffer;
}

TEST(Settings, StoreIsFoundInItsOrder)
{
    StoreSandbox store(true);
    const TempDir &d = store.dir;
    for (std::string marker : {"set", "lib/ORTO.INI", "named", "config/orto/bare", "config/orto/ORTO.INI",
                               "home/.config/orto/ORTO.INI"}) {
        std::filesystem::create_directories(std::filesystem::path(d.file(marker)).parent_path());
        writeFile(d.file(marker), "[orto]\r\nmainlexpath=" + marker + "\r\n");
    }
    std::filesystem::create_directories(d.file("etc"));
    writeFile(d.file("etc/orto.ini"), "[ORTO]\nORTOProfileFile=" + d.file("named") + "\n");
    ORTO_SetIniFile(d.file("set").c_str());
    EXPECT_EQ(mainLexPathSetting(), "set");

    std::string home = getenv("HOME") ? getenv("HOME") : "";
    std::pair<std::function<void()>, const char *> steps[] = {
        {[] {}, "lib/ORTO.INI"},
        {[&] { std::filesystem::remove(d.file("lib/ORTO.INI")); }, "named"},
        {[&] { writeFile(d.file("etc/orto.ini"), "[orto]\nortoprofilefile=bare\n"); }, "config/orto/bare"},
        {[&] { writeFile(d.file("etc/orto.ini"), "[ORTO]\nORTOProfileFile=\n"); }, "config/orto/ORTO.INI"},
        {[&] { std::filesystem::remove(d.file("etc/orto.ini")); }, "config/orto/ORTO.INI"},
        {[&] {
             setenv("XDG_CONFIG_HOME", "relative", 1);
             setenv("HOME", d.file("home").c_str(), 1);
         },
         "home/.config/orto/ORTO.INI"},
    };
    for (const auto &step : steps) {
        step.first();
        ORTO_SetIniFile(""); // search again
        EXPECT_EQ(mainLexPathSetting(), step.second);
    }
    setenv("HOME", home.c_str(), 1);

    // the first write makes the folder
    setenv("XDG_CONFIG_HOME", d.file("new").c_str(), 1);
    ORTO_SetIniFile("");
    EXPECT_EQ(ORTO_SetMainLexPath("/lex"), 0);
    EXPECT_EQ(readFile(d.file("new/orto/ORTO.INI")), "[ORTO]\nMainLexPath=/lex\n");

    // without the test's stand-in, the library's file is this program, which holds it
    systemPathsForTest(nullptr, nullptr);
    char path[PATH_MAX];
    ASSERT_GT(moduleFilePath(path, sizeof path), 0u);
    EXPECT_EQ(std::string(path), std::filesystem::canonical("/proc/self/exe").string());
}

TEST(Settings, EachCallHasItsKeyAndScope)
{
    StoreSandbox store;
    DebugCapture log;
    struct Call {
        int16_t (*set)(const char *);
        void (*get)(char *, uint16_t);
        const char *logged;
    } calls[] = {
        {ORTO_SetHelpFile, ORTO_GetHelpFile, nullptr},
        {ORTO_SetMainLexFiles, ORTO_GetMainLexFiles, "ORTO_SetMainLexFiles: MainLexFiles set to v"},
        {ORTO_SetMainLexPath, ORTO_GetMainLexPath, "ORTO_SetMainLexPath: MainLexPath set to v"},
        {ORTO_SetUserLexFiles, ORTO_GetUserLexFiles, "ORTO_SetUserLexFiles: UserLexFiles set to v"},
        {ORTO_SetUserLexPath, ORTO_GetUserLexPath, "ORTO_SetUserLexPath: UserLexPath set to v"},
        {ORTO_SetStringTableName, ORTO_GetStringTableName, "ORTO_SetStringTableName: string table name set to v"},
    };
    for (const Call &c : calls) {
        char buffer[4] = "x";
        c.get(buffer, sizeof buffer);
        EXPECT_STREQ(buffer, ""); // nothing stored: empty
        EXPECT_EQ(c.set("v"), 0);
        c.get(buffer, sizeof buffer);
        EXPECT_STREQ(buffer, "v");
        c.get(nullptr, 10);
        EXPECT_TRUE(!c.logged || log.has(c.logged)) << c.logged;
    }
    EXPECT_EQ(store.text(), "[ORTO]\nHelpFile=v\nMainLexFiles=v\nMainLexPath=v\n"
                            "[ORTO User]\nUserLexFiles=v\nUserLexPath=v\nStringTableName=v\n");
    EXPECT_STREQ(stringTableName, "v");

    char tree[9];
    ORTO_GetRegTreeName(tree, sizeof tree);
    EXPECT_STREQ(tree, "Software");
    EXPECT_EQ(ORTO_SetRegTreeName("Other"), 0);
    EXPECT_TRUE(log.has("ORTO_SetRegTreeName: registry tree set to Other"));
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
        {nullptr, 0, 0}, {"", 0, 0}, {" \t-7", -7, -7}, {"+3x", 3, 3}, {"x3", 0, 0},
        {"4294967295", -1, -1}, {"65537", 1, 65537},
    };
    for (const Case &c : cases) {
        store.write(c.stored ? std::string("[ORTO User]\nMinSuggestDepth=") + c.stored + "\nAutoCorrect=" + c.stored + "\n"
                             : "");
        EXPECT_EQ(ORTO_GetMinSuggestDepth(), c.depth) << (c.stored ? c.stored : "(missing)");
        EXPECT_EQ(ORTO_GetAutoCorrect(), c.autoCorrect);
        EXPECT_TRUE(minSuggestDepth == c.depth && autoCorrect == c.autoCorrect);
    }
    EXPECT_EQ(ORTO_SetMinSuggestDepth(-2), 0);
    EXPECT_EQ(ORTO_SetAutoCorrect(1), 0);
    EXPECT_EQ(store.text(), "[ORTO User]\nMinSuggestDepth=4294967294\nAutoCorrect=1\n");
    EXPECT_EQ(ORTO_GetMinSuggestDepth(), -2);
}

TEST(Settings, ListItemsComeOneByOne)
{
    std::pair<const char *, std::vector<std::string>> cases[] = {
        {"a.tlx,b.tlx", {"a.tlx", "b.tlx"}}, {",b.tlx", {"", "b.tlx"}}, {"a.tlx,", {"a.tlx"}},
        {"a b,,c", {"a b", "", "c"}},        {"abcdefgh", {"abcde", "fgh"}}, // longer than the item buffer
        {"", {}},
    };
    for (const auto &c : cases) {
        std::vector<std::string> items;
        char item[6];
        for (const char *rest = nextListItem(c.first, item, 6); rest; rest = nextListItem(rest, item, 6))
            items.push_back(item);
        EXPECT_EQ(items, c.second) << c.first;
    }
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
    EXPECT_STREQ(iniFile, store.ini.c_str());
    EXPECT_STREQ(stringTableName, "English");
    // the two options of the dialogs change also while one runs
    EXPECT_EQ(ORTO_SetAutoCorrect(0), 0);
    EXPECT_EQ(store.text(), "[ORTO]\nHelpFile=old\n[ORTO User]\nAutoCorrect=0\n");
}
