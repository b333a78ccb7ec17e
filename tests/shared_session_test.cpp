// The dialogs' shared session: its start from the store, its table of
// lexicons, its stop into the store, and its message boxes.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "host/dialog_services.h"
#include "host/shared_session.h"
#include "orto.h"
#include "support/script_front_end.h"
#include "support/store_sandbox.h"
#include "support/test_support.h"

namespace {

/* A text lexicon file with one word. */
void makeLexicon(const std::string &path, const std::string &word = "qqword")
{
    writeFile(path, "#LID 24941\r\n" + word + "\ti\r\n");
}

/* The table as "name:state:lexId" for each used entry. */
std::vector<std::string> table()
{
    std::vector<std::string> used;
    for (const DialogLexEntry &e : dialogLexTable)
        if (e.state != LexEntryFree)
            used.push_back(std::string(e.name) + ":" + std::to_string(e.state) + ":" + std::to_string(e.lexId));
    return used;
}

} // namespace

TEST(SharedSession, StartOpensTemporaryThenUserThenMainLexicons)
{
    StoreSandbox store;
    TempDir user, other;
    makeLexicon(user.file("u1.tlx"));
    makeLexicon(other.file("u2.tlx"), "elsewhere");
    makeLexicon(store.dir.file("m1.tlx"));
    store.write("[ORTO]\nMainLexPath=" + store.dir.path + "\nMainLexFiles=m1.tlx\n[ORTO User]\nUserLexPath=" +
                user.path + "\nUserLexFiles=u1.tlx," + other.file("u2.tlx") + "\n");
    int16_t sid = ORTO_GetSid();
    ASSERT_GE(sid, 0);
    EXPECT_EQ(ORTO_GetSid(), sid);
    EXPECT_EQ(table(), (std::vector<std::string>{":2:0", "u1.tlx:1:1", other.file("u2.tlx") + ":1:2", "m1.tlx:0:3"}));
    EXPECT_EQ(ORTO_CheckWord(sid, "elsewhere", nullptr, 0), 0);
    // by the name the list gives, or the file name behind the folder
    EXPECT_EQ(findLexEntry("U1.TLX"), 1);
    EXPECT_EQ(ORTO_GetLexId(nullptr), 0);
    EXPECT_EQ(ORTO_GetLexId("M1.tlx"), 3);
    EXPECT_EQ(ORTO_GetLexId("u2.tlx"), 2);
    EXPECT_EQ(ORTO_GetLexId("nothing.tlx"), ORTO_FileOpenError);
    // one session: the next one a host opens gets the next slot
    int16_t own = ORTO_OpenSession();
    EXPECT_EQ(own, sid + 1);
    ORTO_CloseSession(own);
}

TEST(SharedSession, StartTakesTheDefaultsOfTheTable)
{
    std::pair<std::string, const char *> cases[] = {
        {"", "."},
        {"[ORTO]\nMainLexPath=\nLexPath=/lex\n", "/lex"}, // set and empty counts as missing
    };
    for (const auto &c : cases) {
        StoreSandbox store;
        store.write(c.first);
        int16_t sid = ORTO_GetSid();
        ASSERT_GE(sid, 0);
        EXPECT_STREQ(mainLexPath, c.second);
        EXPECT_STREQ(userLexPath, c.second);
        EXPECT_EQ(table(), (std::vector<std::string>{":2:0"}));
        const uint32_t on = ORTO_ReportDoubledWords | ORTO_CaseSensitive | ORTO_TypographicalSuggestions |
                            ORTO_SuggestSplitWords | ORTO_SplitHyphenatedWords |
                            ORTO_ReportSpelling | ORTO_StripPossessives; // these two as a new session's
        for (uint32_t bit = 1; bit <= 0x10000; bit <<= 1)
            EXPECT_EQ(ORTO_GetOption(sid, bit), (on & bit) ? 1 : 0) << std::hex << bit;
        EXPECT_EQ(ORTO_GetOption(sid, ORTO_Language), 0x616D);
        EXPECT_TRUE(minSuggestDepth == 50 && autoCorrect == 1);
        EXPECT_STREQ(helpFile, "orto.hlp");
        EXPECT_EQ(store.text(), c.first); // a start writes nothing
    }
}

TEST(SharedSession, LexiconThatFailsToOpenShowsOneMessageBox)
{
    StoreSandbox store;
    ScriptFrontEnd user;
    const TempDir &d = store.dir;
    makeLexicon(d.file("a.tlx"));
    makeLexicon(d.file("c.tlx"));
    std::string longName(250, 'x');
    store.write("[ORTO User]\nUserLexFiles=a.tlx,missing.tlx,c.tlx\n[ORTO]\nLexPath=" + d.path +
                "\nMainLexFiles=" + longName + "\n");
    ASSERT_GE(ORTO_GetSid(), 0);
    ASSERT_EQ(user.messages.size(), 2u);
    EXPECT_EQ(user.messages[0], "|Error opening dictionary file " + d.file("missing.tlx"));
    EXPECT_EQ(user.messages[1].size(), 1u + 255u); // a text past its buffer is cut
    EXPECT_EQ(user.waitCursorOn, 3);              // off for each box, and on again
    EXPECT_EQ(user.waitCursorOff, 3);
    // the failed file holds its place and name
    EXPECT_EQ(table(), (std::vector<std::string>{":2:0", "a.tlx:1:1", "missing.tlx:1:-4", "c.tlx:1:2",
                                                 longName + ":0:-4"}));
}

TEST(SharedSession, StopWritesTheOptionsAndAFreshStartForgetsTheTemporaryWords)
{
    StoreSandbox store;
    store.write("; mine\n[ORTO User]\nMinSuggestDepth=7\n");
    int16_t sid = ORTO_GetSid();
    ORTO_SetOption(sid, ORTO_PhoneticSuggestions, 1);
    ORTO_SetOption(sid, ORTO_CaseSensitive, 0);
    ORTO_SetOption(sid, ORTO_Language, 0x6272);
    ASSERT_EQ(ORTO_AddToLex(sid, ORTO_GetLexId(""), "qzx", 'i', nullptr), 0);

    EXPECT_EQ(ORTO_SetHelpFile("x.hlp"), 0); // writes, then stops
    EXPECT_EQ(sharedSid, -1);
    EXPECT_EQ(store.text(), "; mine\n[ORTO User]\nMinSuggestDepth=7\nIgnoreCappedWords=0\nIgnoreAllCapsWords=0\n"
                            "IgnoreMixedDigits=0\nIgnoreMixedCase=0\nReportDoubledWords=1\nCaseSensitive=0\n"
                            "PhoneticSuggestions=1\nTypographicalSuggestions=1\nSuggestSplitWords=1\n"
                            "SplitContractedWords=0\nSplitHyphenatedWords=1\nSplitWords=0\nLanguage=25202\n"
                            "[ORTO]\nHelpFile=x.hlp\n");
    sid = ORTO_GetSid();
    EXPECT_EQ(ORTO_CheckWord(sid, "qzx", nullptr, 0), ORTO_MisspelledWord);
    EXPECT_EQ(ORTO_GetOption(sid, ORTO_PhoneticSuggestions), 1);
    EXPECT_EQ(ORTO_GetOption(sid, ORTO_Language), 0x6272);
    EXPECT_STREQ(helpFile, "x.hlp");

    // ResetLex empties the temporary lexicon, but not while a dialog runs
    ORTO_AddToLex(sid, 0, "qzx", 'i', nullptr);
    busyFlag = 1;
    EXPECT_EQ(ORTO_ResetLex(), ORTO_DialogActive);
    EXPECT_EQ(ORTO_CheckWord(sid, "qzx", nullptr, 0), 0);
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
    const TempDir &d = store.dir;
    std::string list;
    for (int i = 0; i < 33; i++) {
        makeLexicon(d.file("l" + std::to_string(i)), std::string("word") + (char)('a' + i % 26) + (char)('a' + i / 26));
        list += (i ? ",l" : "l") + std::to_string(i);
    }
    store.write("[ORTO]\nDebugFile=" + d.file("log") + "\nLexPath=" + d.path + "\nMainLexFiles=l0\n" +
                "[ORTO User]\nUserLexFiles=" + list + "\n");
    int16_t sid = ORTO_GetSid();
    ORTO_SetDebugFile(""); // the start named the log for the engine too
    std::vector<std::string> refused;
    for (const std::string &l : logLines(d.file("log")))
        if (l.find("no room") != std::string::npos || l.find("client id") != std::string::npos)
            refused.push_back(l);
    EXPECT_EQ(refused, (std::vector<std::string>{"client id " + std::to_string(getpid()),
                                                 "startSharedSession: no room for lexicon l31",
                                                 "startSharedSession: no room for lexicon l32",
                                                 "startSharedSession: no room for lexicon l0"}));
    EXPECT_EQ(table().back(), "l30:1:31");
    EXPECT_EQ(ORTO_CheckWord(sid, "wordeb", nullptr, 0), 0);                   // in l30
    EXPECT_EQ(ORTO_CheckWord(sid, "wordfb", nullptr, 0), ORTO_MisspelledWord); // in l31
    EXPECT_EQ(ORTO_GetLexId("l31"), ORTO_FileOpenError);
    EXPECT_EQ(logLines(d.file("log")).back(), "ORTO_GetLexId: No such lexicon: l31");
}

TEST(SharedSession, MessagesTakeTheStringTableAndNeverItsFormats)
{
    StoreSandbox store;
    ScriptFrontEnd user;
    store.write("[English]\nErrorOpeningLexStr=Cannot open %s and %s: %d%n %% %\n"
                "[Deutsch]\nErrorOpeningLexStr=%s fehlt\nCheckSpellingStr=Rechtschreibung\n");
    for (const char *table : {"English", "Deutsch"}) {
        ORTO_SetStringTableName(table);
        dialogMessage(nullptr, "ErrorOpeningLexStr", "Error opening dictionary file %s", "CheckSpellingStr",
                      "Check spelling", "a.tlx", nullptr);
    }
    EXPECT_EQ(user.messages, (std::vector<std::string>{"Check spelling|Cannot open a.tlx and : %d%n % %",
                                                       "Rechtschreibung|a.tlx fehlt"}));
    uint32_t checked = 9, found = 9;
    wordsChecked = 5, errorsFound = 3;
    ORTO_GetStatistics(&checked, nullptr, &found);
    ORTO_GetStatistics(nullptr, nullptr, nullptr);
    EXPECT_TRUE(checked == 5 && found == 3);
}
