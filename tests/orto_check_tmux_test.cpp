/* `orto check` as a person uses it: the real program in tmux at 80x24,
 * keys by send-keys, the screen by capture-pane, and the files on disk
 * afterwards. */
#include <gtest/gtest.h>

#include <sys/stat.h>

#include "support/test_support.h"
#include "support/tmux_session.h"

struct CheckRun {
    TempDir dir;
    std::string file = dir.file("doc.txt");

    std::string command(const std::string &name = "doc.txt") const
    {
        return "cd " + TmuxSession::quote(dir.path) + " && XDG_CONFIG_HOME=" + TmuxSession::quote(dir.file("config")) +
               " " ORTO_PROGRAM " check --ini " + TmuxSession::quote(dir.file("ORTO.INI")) + " " + name;
    }
    std::string personal() const { return readFile(dir.file("config/orto/personal.tlx")); }
};

/* The Change To field emptied and `word` typed in. */
static void typeChangeTo(const TmuxSession &t, const std::string &word)
{
    t.keys("M-t End");
    for (int i = 0; i < 24; i++)
        t.keys("BSpace");
    t.keys(word, true);
}

TEST(OrtoCheckInTmux, ASessionOfEveryKindOfAnswer)
{
    CheckRun r;
    writeFile(r.file, "Teh cat sat on the mat is is fine. A sentance with wrold and wrold and zorblax.\n");
    TmuxSession t(r.command());
    ASSERT_TRUE(t.waitFor("Not in Dictionary:Teh")) << t.screen();
    t.keys("M-i"); /* Ignore */
    ASSERT_TRUE(t.waitFor("Doubled word:     is")) << t.screen();
    ASSERT_TRUE(t.waitFor("[Delete]")) << t.screen();
    t.keys("M-d");
    ASSERT_TRUE(t.waitFor("Not in Dictionary:sentance")) << t.screen();
    typeChangeTo(t, "sentence");
    t.keys("M-c");
    ASSERT_TRUE(t.waitFor("Not in Dictionary:wrold")) << t.screen();
    ASSERT_TRUE(t.waitFor("A sentence with wrold")) << t.screen(); /* the document pane */
    t.keys("M-u M-u Enter"); /* S&uggestions and &Undo share the letter: the second is Undo */
    ASSERT_TRUE(t.waitFor("Consider changing:sentance")) << t.screen();
    ASSERT_TRUE(t.waitFor("Change To:        sentence")) << t.screen();
    t.keys("M-o"); /* Options, and back to the same word */
    ASSERT_TRUE(t.waitFor("Typographical suggestions")) << t.screen();
    t.keys("Escape");
    ASSERT_TRUE(t.waitFor("Consider changing:sentance")) << t.screen();
    t.keys("M-n"); /* Dictionaries, and back */
    ASSERT_TRUE(t.waitFor("Remove File")) << t.screen();
    t.keys("Escape");
    ASSERT_TRUE(t.waitFor("Consider changing:sentance")) << t.screen();
    t.resize(100, 30);
    ASSERT_TRUE(t.waitFor("Consider changing:sentance")) << t.screen();
    t.resize(80, 24);
    ASSERT_TRUE(t.waitFor("Consider changing:sentance")) << t.screen();
    t.keys("M-c");
    ASSERT_TRUE(t.waitFor("Not in Dictionary:wrold")) << t.screen();
    typeChangeTo(t, "world");
    t.keys("M-l"); /* Change All: the second wrold changes by itself */
    ASSERT_TRUE(t.waitFor("Not in Dictionary:zorblax")) << t.screen();
    t.keys("M-a"); /* Add, to the personal lexicon */
    ASSERT_TRUE(t.waitFor("[exited 0]")) << t.screen();
    EXPECT_EQ(readFile(r.file), "Teh cat sat on the mat is fine. A sentence with world and world and zorblax.\n");
    EXPECT_NE(r.personal().find("zorblax"), std::string::npos);
}

TEST(OrtoCheckInTmux, AFileComesBackByteForByteOrWithOneWordChanged)
{
    auto wide = [](int n) {
        std::string s;
        while (n-- > 0)
            s += "\xE6\x97\xA5"; /* a character two cells wide */
        return s;
    };
    const std::string original = std::string("\xEF\xBB\xBF\xCE\x9A\xCE\xB1\xCE\xBB\xCE\xB7\xCE\xBC\xCE\xAD\xCF\x81\xCE\xB1 "
                                 "\xF0\x9F\x98\x80 wrold\r\nsecond line teh\r\n") +
                                 wide(45) + " end";
    /* BOM, Greek, emoji, CR LF, a line of wide characters, no final newline */
    CheckRun r;
    writeFile(r.file, original);
    struct stat before;
    stat(r.file.c_str(), &before);
    {
        TmuxSession t(r.command());
        ASSERT_TRUE(t.waitFor("Not in Dictionary:wrold")) << t.screen();
        EXPECT_TRUE(t.waitFor("\xCE\x9A\xCE\xB1\xCE\xBB\xCE\xB7\xCE\xBC\xCE\xAD\xCF\x81\xCE\xB1 \xF0\x9F\x98\x80 wrold"))
            << t.screen(); /* the document shows what the file has */
        EXPECT_NE(t.screen().find(wide(40) + "\n" + wide(5) + " end"), std::string::npos) << t.screen();
        t.keys("M-i");
        ASSERT_TRUE(t.waitFor("Not in Dictionary:teh")) << t.screen();
        t.keys("M-i");
        ASSERT_TRUE(t.waitFor("[exited 0]")) << t.screen();
    }
    struct stat after;
    stat(r.file.c_str(), &after);
    EXPECT_EQ(readFile(r.file), original);
    EXPECT_EQ(after.st_ino, before.st_ino); /* not touched */
    EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    {
        TmuxSession t(r.command());
        ASSERT_TRUE(t.waitFor("Not in Dictionary:wrold")) << t.screen();
        typeChangeTo(t, "world");
        t.keys("M-c");
        ASSERT_TRUE(t.waitFor("Not in Dictionary:teh")) << t.screen();
        t.keys("M-i");
        ASSERT_TRUE(t.waitFor("[exited 0]")) << t.screen();
    }
    std::string changed = original;
    changed.replace(changed.find("wrold"), 5, "world");
    EXPECT_EQ(readFile(r.file), changed);
}

TEST(OrtoCheckInTmux, CtrlCInTheMiddleLeavesTheFileAsItWas)
{
    CheckRun r;
    writeFile(r.file, "one wrold two teh\n");
    TmuxSession t(r.command() + "; echo \"[status $?]\"; cat -v");
    ASSERT_TRUE(t.waitFor("Not in Dictionary:wrold")) << t.screen();
    typeChangeTo(t, "world");
    t.keys("M-c");
    ASSERT_TRUE(t.waitFor("Not in Dictionary:teh")) << t.screen();
    t.keys("C-c");
    ASSERT_TRUE(t.waitFor("[status ")) << t.screen();
    EXPECT_EQ(t.screen().find("[status 0]"), std::string::npos);
    EXPECT_EQ(readFile(r.file), "one wrold two teh\n");
    /* the terminal is given back without its paste mode */
    t.run("set-buffer pasted");
    t.run("paste-buffer -p");
    t.keys("Enter");
    ASSERT_TRUE(t.waitFor("pasted")) << t.screen();
    EXPECT_EQ(t.screen().find("200~"), std::string::npos) << t.screen();
}
