// The dialogs' shared session: its start from the store, its table of
// lexicons, its stop into the store, and the services of the dialogs.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/dialog_services.h"
#include "host/profile.h"
#include "host/shared_session.h"
#include "orto.h"
#include "support/script_front_end.h"
#include "support/store_sandbox.h"
#include "support/test_support.h"

namespace {

/* A text lexicon file with one word. */
std::string makeLexicon(const TempDir &dir, const std::string &name, const std::string &word = "qqword")
{
    writeFile(dir.file(name), "#LID 24941\r\n" + word + "\ti\r\n");
    return dir.file(name);
}

struct Expected {
    const char *name;
    u32 state;
    bool open;
};

void expectTable(const std::vector<Expected> &expected)
{
    for (int i = 0; i < MaxLexicons; i++) {
        SCOPED_TRACE(i);
        const DialogLexEntry &e = dialogLexTable[i];
        if (i >= (int)expected.size()) {
            EXPECT_EQ(e.state, LexEntryFree);
            continue;
        }
        EXPECT_STREQ(e.name, expected[i].name);
        EXPECT_EQ(e.state, expected[i].state);
        if (expected[i].open) {
            EXPECT_EQ(e.lexId, i); // slots are taken in table order
        } else {
            EXPECT_LT(e.lexId, 0);
        }
    }
}

} // namespace

TEST(SharedSession, StartOpensTemporaryThenUserThenMainLexicons)
{
    StoreSandbox store;
    TempDir userDir, mainDir, otherDir;
    makeLexicon(userDir, "u1.tlx");
    std::string elsewhere = makeLexicon(otherDir, "u2.tlx", "elsewhere");
    makeLexicon(mainDir, "m1.tlx");
    store.write("[ORTO]\nMainLexPath=" + mainDir.path + "\nMainLexFiles=m1.tlx\n[ORTO User]\nUserLexPath=" +
                userDir.path + "\nUserLexFiles=u1.tlx," + elsewhere + "\n");
    int16_t sid = ORTO_GetSid();
    ASSERT_GE(sid, 0);
    EXPECT_EQ(ORTO_GetSid(), sid);
    expectTable({{"", LexEntryTemporary, true},
                 {"u1.tlx", LexEntryUser, true},
                 {elsewhere.c_str(), LexEntryUser, true},
                 {"m1.tlx", LexEntryMain, true}});
    EXPECT_EQ(findLexEntry("U1.TLX"), 1);
    EXPECT_EQ(findFreeLexEntry(), 4);
    // names as the list gives them, or the file name behind the folder
    EXPECT_EQ(ORTO_GetLexId(""), 0);
    EXPECT_EQ(ORTO_GetLexId(nullptr), 0);
    EXPECT_EQ(ORTO_GetLexId("M1.tlx"), 3);
    EXPECT_EQ(ORTO_GetLexId(elsewhere.c_str()), 2);
    EXPECT_EQ(ORTO_GetLexId("u2.tlx"), 2);
    EXPECT_EQ(ORTO_GetLexId("nothing.tlx"), ORTO_FileOpenError);
    EXPECT_EQ(ORTO_CheckWord(sid, "elsewhere", nullptr, 0), 0);

    // one session: the next one a host opens gets the next slot
    int16_t own = ORTO_OpenSession();
    EXPECT_EQ(own, sid + 1);
    ORTO_CloseSession(own);
}

TEST(SharedSession, StartTakesTheDefaultsOfTheTable)
{
    struct Case {
        std::string stored;
        const char *mainPath, *userPath;
    } cases[] = {
        {"", ".", "."},
        {"[ORTO]\nMainLexPath=\nLexPath=/lex\n", "/lex", "/lex"},
        {"[ORTO]\nMainLexPath=/main\nLexPath=/lex\n[ORTO User]\nUserLexPath=/user\n", "/main", "/user"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.stored);
        StoreSandbox store;
        store.write(c.stored);
        int16_t sid = ORTO_GetSid();
        ASSERT_GE(sid, 0);
        EXPECT_STREQ(mainLexPath, c.mainPath);
        EXPECT_STREQ(userLexPath, c.userPath);
        expectTable({{"", LexEntryTemporary, true}});
        const uint32_t on = ORTO_ReportDoubledWords | ORTO_CaseSensitive | ORTO_TypographicalSuggestions |
                            ORTO_SuggestSplitWords | ORTO_SplitHyphenatedWords |
                            ORTO_ReportSpelling | ORTO_StripPossessives; // these two: a new session's
        for (uint32_t bit = 1; bit <= 0x10000; bit <<= 1)
            EXPECT_EQ(ORTO_GetOption(sid, bit), (on & bit) ? 1 : 0) << std::hex << bit;
        EXPECT_EQ(ORTO_GetOption(sid, ORTO_Language), 0x616D);
        EXPECT_EQ(minSuggestDepth, 50);
        EXPECT_EQ(autoCorrect, 1);
        EXPECT_STREQ(helpFile, "orto.hlp");
        EXPECT_STREQ(stringTableName, "English");
        EXPECT_EQ(store.text(), c.stored); // a start writes nothing
    }
}

TEST(SharedSession, LexiconThatFailsToOpenShowsOneMessageBox)
{
    StoreSandbox store;
    ScriptFrontEnd user;
    TempDir dir;
    makeLexicon(dir, "a.tlx");
    makeLexicon(dir, "c.tlx");
    std::string longName(250, 'x');
    store.write("[ORTO User]\nUserLexPath=" + dir.path + "\nUserLexFiles=a.tlx,missing.tlx,c.tlx\n" +
                "[ORTO]\nMainLexPath=" + dir.path + "\nMainLexFiles=" + longName + "\n");
    ASSERT_GE(ORTO_GetSid(), 0);
    std::string text = "Error opening dictionary file " + dir.path + "/missing.tlx";
    ASSERT_EQ(user.messages.size(), 2u);
    EXPECT_EQ(user.messages[0], "|" + text);
    // a text longer than the message buffer is cut
    EXPECT_EQ(user.messages[1].size(), 1u + 255u);
    EXPECT_EQ(user.messages[1].substr(0, 32), "|Error opening dictionary file " + dir.path.substr(0, 1));
    EXPECT_EQ(user.waitCursorOn, 3); // off for each box, and on again
    EXPECT_EQ(user.waitCursorOff, 3);
    // the entry of the failed file holds its place and name
    EXPECT_STREQ(dialogLexTable[2].name, "missing.tlx");
    EXPECT_EQ(dialogLexTable[2].state, LexEntryUser);
    EXPECT_EQ(dialogLexTable[2].lexId, ORTO_FileOpenError);
    EXPECT_EQ(ORTO_GetLexId("missing.tlx"), ORTO_FileOpenError);
    EXPECT_EQ(dialogLexTable[3].lexId, 2); // c.tlx in the next slot
    EXPECT_EQ(dialogLexTable[4].name, longName);
}

TEST(SharedSession, StopWritesTheOptionsAndAFreshStartForgetsTheTemporaryWords)
{
    StoreSandbox store;
    store.write("; mine\n[ORTO User]\nMinSuggestDepth=7\n");
    int16_t sid = ORTO_GetSid();
    ASSERT_GE(sid, 0);
    ORTO_SetOption(sid, ORTO_PhoneticSuggestions, 1);
    ORTO_SetOption(sid, ORTO_CaseSensitive, 0);
    ORTO_SetOption(sid, ORTO_Language, 0x6272);
    ASSERT_EQ(ORTO_AddToLex(sid, ORTO_GetLexId(""), "qzx", 'i', nullptr), 0);
    EXPECT_EQ(store.text(), "; mine\n[ORTO User]\nMinSuggestDepth=7\n");

    EXPECT_EQ(ORTO_SetHelpFile("x.hlp"), 0); // writes, then stops
    EXPECT_EQ(sharedSid, -1);
    EXPECT_EQ(store.text(), "; mine\n[ORTO User]\nMinSuggestDepth=7\nIgnoreCappedWords=0\nIgnoreAllCapsWords=0\n"
                            "IgnoreMixedDigits=0\nIgnoreMixedCase=0\nReportDoubledWords=1\nCaseSensitive=0\n"
                            "PhoneticSuggestions=1\nTypographicalSuggestions=1\nSuggestSplitWords=1\n"
                            "SplitContractedWords=0\nSplitHyphenatedWords=1\nSplitWords=0\nLanguage=25202\n"
                            "[ORTO]\nHelpFile=x.hlp\n");
    stopSharedSession(); // a stopped session writes nothing more
    sid = ORTO_GetSid();
    EXPECT_EQ(ORTO_CheckWord(sid, "qzx", nullptr, 0), ORTO_MisspelledWord);
    EXPECT_EQ(ORTO_GetOption(sid, ORTO_PhoneticSuggestions), 1);
    EXPECT_EQ(ORTO_GetOption(sid, ORTO_Language), 0x6272);
    EXPECT_EQ(minSuggestDepth, 7);
    EXPECT_STREQ(helpFile, "x.hlp");

    // ResetLex empties the temporary lexicon, but not while a dialog runs
    ORTO_AddToLex(sid, 0, "qzx", 'i', nullptr);
    busyFlag = 1;
    EXPECT_EQ(ORTO_ResetLex(), ORTO_DialogActive);
    EXPECT_EQ(ORTO_CheckWord(sid, "qzx", nullptr, 0), 0);
    EXPECT_EQ(ORTO_GetSid(), sid); // not refused
    busyFlag = 0;
    EXPECT_EQ(ORTO_ResetLex(), 0);
    EXPECT_EQ(ORTO_CheckWord(sid, "qzx", nullptr, 0), ORTO_MisspelledWord);
}

TEST(SharedSession, TheEndOfTheProcessStopsTheSession)
{
    StoreSandbox store;
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ORTO_SetOption(ORTO_GetSid(), ORTO_SplitWords, 1);
        exit(0); // the library's destructor saves the options
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_NE(store.text().find("\nSplitWords=1\nLanguage=24941\n"), std::string::npos) << store.text();
}

TEST(SharedSession, ListsPastTheTableAreRefusedOneByOne)
{
    StoreSandbox store;
    TempDir dir;
    std::string list;
    for (int i = 0; i < 33; i++) {
        makeLexicon(dir, "l" + std::to_string(i) + ".tlx", "word" + std::string(1, (char)('a' + i % 26)) + std::string(1, (char)('a' + i / 26)));
        list += (i ? "," : "") + std::string("l") + std::to_string(i) + ".tlx";
    }
    store.write("[ORTO]\nDebugFile=" + dir.file("log") + "\nLexPath=" + dir.path + "\nMainLexFiles=l0.tlx\n" +
                "[ORTO User]\nUserLexFiles=" + list + "\n");
    int16_t sid = ORTO_GetSid();
    ASSERT_GE(sid, 0);
    std::vector<std::string> lines = logLines(dir.file("log"));
    std::vector<std::string> refused;
    for (const std::string &l : lines)
        if (l.find("no room") != std::string::npos)
            refused.push_back(l);
    EXPECT_EQ(refused, (std::vector<std::string>{"startSharedSession: no room for lexicon l31.tlx",
                                                 "startSharedSession: no room for lexicon l32.tlx",
                                                 "startSharedSession: no room for lexicon l0.tlx"}));
    EXPECT_NE(std::find(lines.begin(), lines.end(), "client id " + std::to_string(getpid())), lines.end());
    EXPECT_STREQ(dialogLexTable[31].name, "l30.tlx");
    EXPECT_EQ(dialogLexTable[31].lexId, 31);
    EXPECT_EQ(ORTO_CheckWord(sid, "wordeb", nullptr, 0), 0);  // in l30.tlx
    EXPECT_EQ(ORTO_CheckWord(sid, "wordfb", nullptr, 0), ORTO_MisspelledWord); // in l31.tlx
    EXPECT_EQ(ORTO_GetLexId("l31.tlx"), ORTO_FileOpenError);
    EXPECT_EQ(logLines(dir.file("log")).back(), "ORTO_GetLexId: No such lexicon: l31.tlx");
    ORTO_SetDebugFile("");
}

TEST(SharedSession, MessagesTakeTheStringTableAndNeverItsFormats)
{
    StoreSandbox store;
    ScriptFrontEnd user;
    store.write("[English]\nErrorOpeningLexStr=Cannot open %s and %s: %d%n %% %\n"
                "[Deutsch]\nErrorOpeningLexStr=%s fehlt\nCheckSpellingStr=Rechtschreibung\n");
    dialogMessage(nullptr, "ErrorOpeningLexStr", "Error opening dictionary file %s", "CheckSpellingStr",
                  "Check spelling", "a.tlx", nullptr);
    ASSERT_EQ(ORTO_SetStringTableName("Deutsch"), 0);
    dialogMessage(nullptr, "ErrorOpeningLexStr", "Error opening dictionary file %s", "CheckSpellingStr",
                  "Check spelling", "a.tlx", nullptr);
    dialogMessage(nullptr, "LexFullErrorStr", "Dictionary is full", nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(user.messages, (std::vector<std::string>{"Check spelling|Cannot open a.tlx and : %d%n % %",
                                                       "Rechtschreibung|a.tlx fehlt", "|Dictionary is full"}));

    uint32_t counts[3] = {9, 9, 9};
    wordsChecked = 5, wordsChanged = 2, errorsFound = 3;
    ORTO_GetStatistics(&counts[0], nullptr, &counts[2]);
    ORTO_GetStatistics(nullptr, nullptr, nullptr);
    EXPECT_EQ(counts[0], 5u);
    EXPECT_EQ(counts[1], 9u);
    EXPECT_EQ(counts[2], 3u);
    const i32 pairs[][2] = {{0, 'a'}, {1, 'A'}, {2, 'a'}};
    EXPECT_EQ(lookupPair(pairs, 3, 2), 'a');
    EXPECT_EQ(lookupPair(pairs, 2, 2), -1);
}

TEST(SharedSession, SendToChildrenReachesEveryControl)
{
    char error[128];
    ORTO_HINSTANCE module = ORTO_LoadTemplates("D DIALOG 0, 0, 100, 50\nBEGIN\n"
                                               "EDITTEXT 10, 4, 4, 40, 12\nLTEXT \"a\", 11, 4, 20, 40, 8\n"
                                               "PUSHBUTTON \"b\", 12, 50, 20, 40, 12\nEND\n",
                                               error, sizeof error);
    ASSERT_NE(module, nullptr) << error;
    auto proc = [](ORTO_HWND dialog, uint32_t message, uintptr_t, intptr_t) -> intptr_t {
        if (message == ORTO_WM_INITDIALOG) {
            sendToChildren(dialog, ORTO_WM_SETTEXT, 0, (intptr_t) "same");
            int same = 0;
            for (int id : {10, 11, 12})
                same += windowText(ORTO_GetDlgItem(dialog, id)) == "same";
            ORTO_EndDialog(dialog, same);
        }
        return 0;
    };
    EXPECT_EQ(ORTO_DialogBoxParam(module, "D", nullptr, proc, 0), 3);
    ORTO_FreeTemplates(module);
}
