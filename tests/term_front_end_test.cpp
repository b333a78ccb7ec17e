/* The terminal front end, played by a person's keys under tmux at 80x24:
 * what the screen shows, and what the dialogs did afterwards. */
#include <gtest/gtest.h>

#include "support/test_support.h"
#include "support/tmux_session.h"

struct TermFixture {
    TempDir dir;
    std::string ini = dir.file("ORTO.INI");
    explicit TermFixture(const std::string &more = "")
    {
        writeFile(ini, "[ORTO]\nMainLexPath=" ORTO_BINARY_DIR "/data\nMainLexFiles=en-US.clx\n"
                       "[ORTO User]\nUserLexPath=" + dir.path + "\n" + more);
    }
    std::string host(const std::string &arguments) const
    {
        return std::string(ORTO_TERM_HOST) + " " + TmuxSession::quote(ini) + " " + arguments;
    }
};

TEST(TerminalFrontEnd, OptionsByMnemonicsHelpPagerAndTheDefaultButton)
{
    TermFixture f;
    TmuxSession t(f.host("options"));
    ASSERT_TRUE(t.waitFor("\u2610 Phonetic suggestions")) << t.screen();
    EXPECT_NE(t.screen().find("<OK>"), std::string::npos); /* the default button */
    t.keys("M-p");
    ASSERT_TRUE(t.waitFor("\u2612 Phonetic suggestions")) << t.screen();
    t.keys("Escape h"); /* the Escape-prefixed form of Alt */
    ASSERT_TRUE(t.waitFor("Check boxes, switched with Space")) << t.screen();
    t.keys("q");
    ASSERT_TRUE(t.waitFor("\u2612 Phonetic suggestions")) << t.screen();
    t.keys("Enter");
    ASSERT_TRUE(t.waitFor("[exited 0]")) << t.screen();
    EXPECT_NE(t.screen().find("result 0"), std::string::npos);
    EXPECT_NE(readFile(f.ini).find("PhoneticSuggestions=1"), std::string::npos);
}

TEST(TerminalFrontEnd, CheckByKeysThroughResizesAndASmallTerminal)
{
    TermFixture f;
    TmuxSession t(f.host("check 'Teh quick brwn fox'"));
    ASSERT_TRUE(t.waitFor("Not in Dictionary:Teh")) << t.screen();
    t.resize(100, 30);
    ASSERT_TRUE(t.waitFor("Teh quick brwn fox")) << t.screen();
    t.resize(40, 10);
    ASSERT_TRUE(t.waitFor("ORTO needs a terminal of at least 68x")) << t.screen();
    t.resize(80, 24);
    ASSERT_TRUE(t.waitFor("Not in Dictionary:Teh")) << t.screen();
    t.keys("M-t");                          /* the label's field */
    t.keys("BSpace BSpace BSpace BSpace");
    t.keys("The", true);
    ASSERT_TRUE(t.waitFor("Change To:        The ")) << t.screen();
    t.keys("M-c");
    ASSERT_TRUE(t.waitFor("Not in Dictionary:brwn")) << t.screen();
    t.keys("M-u Down Down Enter");          /* the list, its second entry */
    ASSERT_TRUE(t.waitFor("Change To:        brown")) << t.screen();
    t.keys("Enter");                        /* twice on a suggestion: Change */
    ASSERT_TRUE(t.waitFor("[exited 0]")) << t.screen();
    EXPECT_NE(t.screen().find("result 19: The quick brown fox"), std::string::npos) << t.screen();
}

TEST(TerminalFrontEnd, FileDialogCompletesAndAMessageBoxAnswers)
{
    TermFixture f;
    writeFile(f.dir.file("fruits.tlx"), "#LID 24941\r\napple\r\n");
    TmuxSession t(f.host("dictionaries"));
    ASSERT_TRUE(t.waitFor("Dictionaries")) << t.screen();
    t.keys("M-f");
    ASSERT_TRUE(t.waitFor("Add Dictionary File")) << t.screen();
    t.keys("fr", true);
    t.keys("Tab");
    ASSERT_TRUE(t.waitFor("Name: fruits.tlx")) << t.screen();
    t.keys("Enter");
    ASSERT_TRUE(t.waitFor("apple")) << t.screen(); /* its words in the word box */
    t.keys("M-f");
    ASSERT_TRUE(t.waitFor("Add Dictionary File")) << t.screen();
    writeFile(f.dir.file("x.clx"), readFile(ORTO_BINARY_DIR "/data/en-US.clx")); /* a short path */
    t.keys(f.dir.file("x.clx"), true);
    t.keys("Enter");
    ASSERT_TRUE(t.waitFor("not a user dictionary")) << t.screen();
    t.keys("Enter");
    ASSERT_TRUE(t.waitFor("not a user dictionary", 20, true)) << t.screen();
    t.keys("Escape");
    ASSERT_TRUE(t.waitFor("[exited 0]")) << t.screen();
    EXPECT_NE(readFile(f.ini).find("UserLexFiles=fruits.tlx"), std::string::npos);
}
