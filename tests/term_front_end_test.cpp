/* The terminal front end, played by a person's keys under tmux at 80x24:
 * what the screen shows, and what the dialogs did afterwards. */
#include <gtest/gtest.h>
#include <sys/stat.h>

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

/* A host's template with a control of every kind (term_host's TESTDLG). */
static const char everyControl[] = R"(TESTDLG DIALOG 8, 8, 240, 160
STYLE DS_MODALFRAME | WS_POPUP | WS_CAPTION
CAPTION "Every Control"
FONT 8, "MS Sans Serif"
BEGIN
    LTEXT           "&Name:", 101, 4, 4, 36, 8
    EDITTEXT        102, 44, 2, 80, 12, ES_AUTOHSCROLL
    LTEXT           "&Items:", 103, 4, 20, 36, 8
    LISTBOX         104, 44, 20, 80, 40, LBS_NOTIFY | WS_VSCROLL | WS_TABSTOP
    LTEXT           "&Kind:", 105, 4, 66, 36, 8
    COMBOBOX        106, 44, 64, 80, 60, CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP
    LTEXT           "&Entry:", 107, 4, 82, 36, 8
    COMBOBOX        108, 44, 80, 80, 32, CBS_SIMPLE | WS_TABSTOP
    AUTOCHECKBOX    "&Bold", 109, 132, 4, 60, 10
    AUTOCHECKBOX    "&Wide", 110, 132, 14, 60, 10
    GROUPBOX        "Size", -1, 132, 28, 100, 44
    AUTORADIOBUTTON "&Small", 111, 140, 38, 80, 8, WS_GROUP | WS_TABSTOP
    AUTORADIOBUTTON "&Medium", 112, 140, 48, 80, 8
    AUTORADIOBUTTON "&Large", 113, 140, 58, 80, 8
    PUSHBUTTON      "&Off", 114, 132, 80, 40, 14, WS_DISABLED | WS_GROUP
    PUSHBUTTON      "Clic&k", 115, 180, 80, 40, 14
    DEFPUSHBUTTON   "OK", 1, 132, 136, 40, 14
    PUSHBUTTON      "Cancel", 2, 180, 136, 40, 14
END
)";

/* Each act, its command in the host's log and its mark on the screen: a
 * field edited in Latin-1, a list scrolled by page and end, plain letters
 * on boxes, arrows in a radio group, a drop-down list by key and mouse, a
 * field over a list, a disabled button that nothing reaches, clicks and a
 * double click, and Enter for the default button. */
TEST(TerminalFrontEnd, EveryControlKindByKeysAndTheMouse)
{
    TermFixture f;
    std::string script = f.dir.file("test.rc"), log = f.dir.file("log");
    writeFile(script, everyControl);
    TmuxSession t(f.host("template " + TmuxSession::quote(script) + " " + TmuxSession::quote(log)));
    auto logged = [&](const std::string &line) {
        return TmuxSession::until([&] { return readFile(log).find(line + "\n") != std::string::npos; });
    };
    ASSERT_TRUE(t.waitFor("Name:     café ")) << t.screen();
    t.keys("End BSpace");
    t.keys("é", true);
    t.keys("Home DC End Left");
    t.keys("-", true);
    ASSERT_TRUE(t.waitFor("Name:     af-é ")) << t.screen();
    /* a pasted line end is a blank, not Enter on OK */
    t.run("set-buffer " + TmuxSession::quote("x\ny"));
    t.run("paste-buffer -p");
    ASSERT_TRUE(t.waitFor("Name:     af-x yé ")) << t.screen();

    struct Act {
        const char *keys;
        const char *logLine;  /* the command the act sends */
        const char *shown;    /* what the screen shows then */
    };
    const Act acts[] = {
        {"Tab NPage", "command 104 1 at 4", "item 5"}, /* from no selection: the last one shown */
        {"End", "command 104 1 at 29", "item 30"},
        {"Home", "command 104 1 at 0", "item 1 "},
        {"Down Down", "command 104 1 at 2", "item 3"},
        {"b", "command 109 0", "\u2612 Bold"},
        {"w", "command 110 0", "\u2612 Wide"},
        {"Space", "command 110 0", "\u2610 Wide"},
        {"m", "command 112 0", "\u25C9 Medium"},
        {"Down", "command 113 0", "\u25C9 Large"},
        {"Up Up", "command 111 0", "\u25C9 Small"},
        {"M-k F4 Down Down", "command 106 1 at 2", "Cherry"},
        {"Enter", "command 106 1 at 2", "Kind:     Cherry"},
        {"F4 Up", "command 106 1 at 1", "Kind:     Banana"},
        {"Escape", "command 106 1 at 2", "Kind:     Cherry"}, /* gives back the pick it had */
        {"M-e x y", "command 108 5 at -1", "Entry:    xy "},
        {"Down", "command 108 1 at 0", "Entry:    na\u00EFve"},
    };
    for (const Act &a : acts) {
        SCOPED_TRACE(a.keys);
        t.keys(a.keys);
        EXPECT_TRUE(logged(a.logLine)) << readFile(log);
        EXPECT_TRUE(t.waitFor(a.shown)) << t.screen();
    }
    t.keys("M-k F4");
    ASSERT_TRUE(t.waitFor("Banana")) << t.screen();
    ASSERT_TRUE(t.click("Banana")); /* an entry of the open list, over the field below */
    EXPECT_TRUE(logged("command 106 1 at 1")) << readFile(log);
    ASSERT_TRUE(t.waitFor("Kind:     Banana")) << t.screen();
    ASSERT_TRUE(t.waitFor("Cherry", 20, true)) << t.screen(); /* the list is closed */
    ASSERT_TRUE(t.click("[Click]"));
    EXPECT_TRUE(logged("command 115 0")) << readFile(log);
    ASSERT_TRUE(t.click("item 4", 2));
    EXPECT_TRUE(logged("command 104 2 at 3")) << readFile(log);
    ASSERT_TRUE(t.click("[Off]"));
    t.keys("M-o M-e Enter"); /* nothing reaches the disabled button; Enter in a field: OK */
    ASSERT_TRUE(t.waitFor("[exited 0]")) << t.screen();
    EXPECT_NE(t.screen().find("result 1"), std::string::npos);
    std::string text = readFile(log);
    EXPECT_EQ(text.find("command 114"), std::string::npos) << text;
    EXPECT_NE(text.find("command 1 0\nname=af-x y\xE9\nitems=3\nkind=Banana\nword=na\xEFve\nchecks=10 radios=100\n"),
              std::string::npos)
        << text;
}

/* The save form of the file dialog: the filter's patterns and the next
 * filter, Tab along a path to a folder and a name, a folder that doesn't
 * exist, and the question before a file is replaced, answered both ways. */
TEST(TerminalFrontEnd, TheSaveFileDialogFiltersCompletesAndAsksBeforeReplacing)
{
    TermFixture f("UserLexFiles=fruits.tlx\n");
    writeFile(f.dir.file("fruits.tlx"), "#LID 24941\r\napple\r\n");
    writeFile(f.dir.file("notes.txt"), "");
    writeFile(f.dir.file("table.dat"), "");
    mkdir(f.dir.file("sub").c_str(), 0755);
    writeFile(f.dir.file("sub/words.txt"), "old\n");
    TmuxSession t(f.host("dictionaries"));
    ASSERT_TRUE(t.waitFor("fruits.tlx")) << t.screen();
    EXPECT_NE(t.screen().find("[Delete Word]"), std::string::npos) << t.screen(); /* a face a cell wider */
    t.keys("M-e");
    ASSERT_TRUE(t.waitFor("Export Dictionary")) << t.screen();
    ASSERT_TRUE(t.waitFor("notes.txt")) << t.screen();
    EXPECT_EQ(t.screen().find("table.dat"), std::string::npos) << t.screen();
    t.keys("F2"); /* All files */
    ASSERT_TRUE(t.waitFor("table.dat")) << t.screen();
    t.keys("F2");
    t.keys("sub/w", true);
    t.keys("Tab");
    ASSERT_TRUE(t.waitFor("Folder: " + f.dir.path + "/sub")) << t.screen();
    ASSERT_TRUE(t.waitFor("Name: words.txt")) << t.screen();
    t.keys("Enter");
    ASSERT_TRUE(t.waitFor("words.txt exists. Replace it?")) << t.screen();
    t.keys("n");
    ASSERT_TRUE(t.waitFor("Replace it?", 20, true)) << t.screen();
    EXPECT_NE(t.screen().find("Name: words.txt"), std::string::npos) << t.screen();
    EXPECT_EQ(readFile(f.dir.file("sub/words.txt")), "old\n");
    t.keys("BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace");
    t.keys("../nowhere/x", true);
    t.keys("Enter");
    ASSERT_TRUE(t.waitFor("The folder " + f.dir.path + "/nowhere does not exist.")) << t.screen();
    t.keys("Enter");
    ASSERT_TRUE(t.waitFor("does not exist", 20, true)) << t.screen();
    t.keys("BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace");
    t.keys("words.txt", true);
    t.keys("Enter");
    ASSERT_TRUE(t.waitFor("Replace it?")) << t.screen();
    t.keys("y");
    ASSERT_TRUE(t.waitFor("Export Dictionary", 20, true)) << t.screen();
    EXPECT_EQ(readFile(f.dir.file("sub/words.txt")), "apple\ti\n");
    t.keys("Escape");
    ASSERT_TRUE(t.waitFor("[exited 0]")) << t.screen();
}

/* A text control checked in place: the document behind the dialog, the
 * word under check highlighted and scrolled into view through resizes,
 * each change shown there as it is made. */
TEST(TerminalFrontEnd, TheDocumentShowsTheWordUnderCheckAndEachChange)
{
    TermFixture f;
    std::string text;
    for (int line = 1; line <= 40; line++)
        text += line == 30 ? "line 30 has a speling slip\n"
                : line == 33 ? "line 33 has a mistaek too\n"
                             : "line " + std::to_string(line) + " is fine\n";
    writeFile(f.dir.file("doc.txt"), text);
    TmuxSession t(f.host("control " + TmuxSession::quote(f.dir.file("doc.txt"))));
    ASSERT_TRUE(t.waitFor("Not in Dictionary:speling")) << t.screen();
    auto wordAboveDialog = [&] {
        std::string shown = t.screen();
        size_t word = shown.find("line 30 has a speling"), dialog = shown.find("Check Spelling");
        return word != std::string::npos && dialog != std::string::npos && word < dialog;
    };
    EXPECT_TRUE(wordAboveDialog()) << t.screen();
    EXPECT_EQ(t.screen().find("line 1 is fine"), std::string::npos) << t.screen();
    EXPECT_NE(t.screen(true).find("\x1b[46mspeling\x1b[0m"), std::string::npos) << t.screen(true);
    /* too small for a while, then as big as before, then bigger: laid out
     * as it was placed each time */
    t.resize(40, 10);
    ASSERT_TRUE(t.waitFor("ORTO needs a terminal of at least 68x15")) << t.screen();
    t.resize(80, 24);
    EXPECT_TRUE(TmuxSession::until(wordAboveDialog)) << t.screen();
    t.resize(100, 30);
    ASSERT_TRUE(t.waitFor("line 39 is fine")) << t.screen();
    EXPECT_TRUE(TmuxSession::until(wordAboveDialog)) << t.screen();
    t.resize(80, 24);
    ASSERT_TRUE(t.waitFor("line 39 is fine", 20, true)) << t.screen();
    t.keys("M-c");
    ASSERT_TRUE(t.waitFor("Not in Dictionary:mistaek")) << t.screen();
    EXPECT_NE(t.screen().find("line 30 has a spelling slip"), std::string::npos) << t.screen();
    EXPECT_NE(t.screen(true).find("\x1b[46mmistaek\x1b[0m"), std::string::npos) << t.screen(true);
    t.keys("Escape");
    ASSERT_TRUE(t.waitFor("[exited 0]")) << t.screen();
    EXPECT_NE(t.screen().find("line 30 has a spelling slip\nline 31"), std::string::npos) << t.screen();
    EXPECT_NE(t.screen().find("line 33 has a mistaek too\n"), std::string::npos) << t.screen();
    EXPECT_NE(t.screen().find("result -17\n"), std::string::npos) << t.screen();
}

/* A terminal whose type can't show the dialogs: one line says so, and the
 * dialog ends as a dialog without a user does; the host goes on. */
TEST(TerminalFrontEnd, ATerminalThatCantShowTheDialogsIsSaidSoAndTheHostGoesOn)
{
    TermFixture f;
    for (const char *type : {"no-such-terminal", "dumb"}) {
        SCOPED_TRACE(type);
        TmuxSession t(std::string("TERM=") + type + " " + f.host("options"));
        ASSERT_TRUE(t.waitFor("[exited 0]")) << t.screen();
        std::string shown = t.screen();
        EXPECT_NE(shown.find(std::string("ORTO: the terminal \"") + type + "\" can't show the dialogs"),
                  std::string::npos)
            << shown;
        EXPECT_NE(shown.find("result -17"), std::string::npos) << shown;
    }
}

/* The context pane breaks its lines at blanks, and a person can scroll it
 * with the keys once it has the focus; a new problem brings the word back
 * into view. */
TEST(TerminalFrontEnd, TheContextPaneWrapsAtBlanksAndScrollsByKeys)
{
    TermFixture f;
    std::string text;
    for (int i = 1; i <= 30; i++)
        text += "Line " + std::to_string(i) + " has wrods. ";
    TmuxSession t(f.host("check " + TmuxSession::quote(text)));
    ASSERT_TRUE(t.waitFor("Not in Dictionary:wrods")) << t.screen();
    EXPECT_NE(t.screen().find("Line 11 has   "), std::string::npos) << t.screen(); /* no word cut */
    EXPECT_EQ(t.screen().find("Line 30"), std::string::npos);
    t.keys("BTab BTab NPage NPage");
    ASSERT_TRUE(t.waitFor("Line 30 has wrods.")) << t.screen();
    t.keys("M-i");
    ASSERT_TRUE(t.waitFor("Line 30 has wrods.", 20, true)) << t.screen();
}
