/* The window layer: the library's templates, the template reader, modal
 * dialogs driven by a scripted user, and the messages of each control. */
#include <gtest/gtest.h>

#include <string.h>

#include "support/script_front_end.h"
#include "ui/window.h"

/* ---- The library's four templates, control by control ---- */

struct ExpectedDialog {
    const char *name, *caption;
    int x, y, cx, cy;
    bool sysMenu;
};

struct ExpectedControl {
    const char *dialog;
    int id;
    const char *className, *label;
    int x, y, cx, cy;
    uint32_t type;                /* BS_/CBS_ type, or style bits that must be set */
    uint32_t absent;              /* style bits that must be clear */
};

static const ExpectedDialog dialogs[] = {
    {"CheckSpellingDlg", "Check Spelling", 15, 28, 266, 177, false},
    {"EditLexDlg", "Dictionaries", 15, 27, 268, 170, false},
    {"NewLexDlg", "New Dictionary", 0, 0, 218, 117, true},
    {"OptionsDlg", "Options", 64, 32, 170, 185, true},
};

#define PUSH BS_PUSHBUTTON
#define CHECK BS_AUTOCHECKBOX
static const ExpectedControl controls[] = {
    {"CheckSpellingDlg", 1032, "STATIC", "Change &To:", 4, 18, 72, 8, 0, 0},
    {"CheckSpellingDlg", 1010, "EDIT", "", 78, 16, 88, 12, ES_AUTOHSCROLL, ES_MULTILINE},
    {"CheckSpellingDlg", 1033, "STATIC", "S&uggestions:", 4, 30, 71, 8, 0, 0},
    {"CheckSpellingDlg", 1009, "LISTBOX", "", 78, 30, 88, 46, LBS_NOTIFY | WS_VSCROLL, LBS_SORT},
    {"CheckSpellingDlg", 1001, "BUTTON", "&Ignore", 170, 28, 45, 12, PUSH, 0},
    {"CheckSpellingDlg", 1002, "BUTTON", "I&gnore All", 218, 28, 45, 12, PUSH, 0},
    {"CheckSpellingDlg", 1003, "BUTTON", "&Change", 170, 44, 45, 12, PUSH, 0},
    {"CheckSpellingDlg", 1004, "BUTTON", "Change A&ll", 218, 44, 45, 12, PUSH, 0},
    {"CheckSpellingDlg", 1005, "BUTTON", "&Add", 170, 60, 45, 12, PUSH, 0},
    {"CheckSpellingDlg", 1006, "BUTTON", "&Suggest", 218, 60, 45, 12, PUSH, 0},
    {"CheckSpellingDlg", 1034, "STATIC", "Add &words to:", 4, 76, 72, 8, 0, 0},
    {"CheckSpellingDlg", 1013, "COMBOBOX", "", 78, 76, 88, 40, CBS_DROPDOWN, CBS_SORT},
    {"CheckSpellingDlg", 1014, "BUTTON", "Dictio&naries...", 116, 92, 51, 16, PUSH, 0},
    {"CheckSpellingDlg", 1031, "BUTTON", "&Options...", 170, 92, 45, 16, PUSH, 0},
    {"CheckSpellingDlg", 1011, "STATIC", "Consider Changing:", 4, 4, 72, 8, 0, 0},
    {"CheckSpellingDlg", 1012, "EDIT", "", 78, 2, 88, 12, ES_AUTOHSCROLL, ES_MULTILINE},
    {"CheckSpellingDlg", 1046, "BUTTON", "Lock Pos.", 216, 4, 48, 8, CHECK, 0},
    {"CheckSpellingDlg", 1055, "BUTTON", "&Help...", 218, 92, 45, 16, PUSH, 0},
    {"CheckSpellingDlg", 1050, "EDIT", "", 4, 112, 259, 60,
     ES_MULTILINE | ES_READONLY | ES_NOHIDESEL | WS_VSCROLL | WS_HSCROLL | WS_DISABLED, WS_VISIBLE},
    {"CheckSpellingDlg", 1007, "BUTTON", "&Undo", 170, 76, 45, 12, PUSH, 0},
    {"CheckSpellingDlg", 2, "BUTTON", "Cancel", 218, 76, 45, 12, PUSH, 0},
    {"EditLexDlg", 1035, "STATIC", "&Words:", 4, 4, 52, 8, 0, 0},
    {"EditLexDlg", 1001, "COMBOBOX", "", 4, 12, 124, 72, CBS_SIMPLE, CBS_SORT},
    {"EditLexDlg", -1, "STATIC", "A&ction:", 136, 4, 132, 8, 0, 0},
    {"EditLexDlg", 1058, "COMBOBOX", "", 136, 12, 124, 56, CBS_DROPDOWNLIST, CBS_SORT},
    {"EditLexDlg", -1, "STATIC", "O&ther word:", 136, 28, 124, 8, 0, 0},
    {"EditLexDlg", 1057, "EDIT", "", 136, 36, 124, 12, ES_AUTOHSCROLL, 0},
    {"EditLexDlg", 1014, "BUTTON", "&Add Word", 156, 52, 50, 16, PUSH, 0},
    {"EditLexDlg", 1015, "BUTTON", "&Delete Word", 156, 72, 50, 16, PUSH, 0},
    {"EditLexDlg", 1024, "BUTTON", "I&mport...", 212, 52, 50, 16, PUSH, 0},
    {"EditLexDlg", 1025, "BUTTON", "&Export...", 212, 72, 50, 15, PUSH, 0},
    {"EditLexDlg", 1036, "STATIC", "F&iles:", 8, 96, 40, 8, 0, 0},
    {"EditLexDlg", 1002, "COMBOBOX", "", 8, 104, 188, 56, CBS_DROPDOWN | CBS_AUTOHSCROLL, CBS_SORT},
    {"EditLexDlg", 1003, "BUTTON", "Add &File", 208, 96, 50, 14, PUSH, 0},
    {"EditLexDlg", 1016, "BUTTON", "&New File...", 208, 112, 50, 14, PUSH, 0},
    {"EditLexDlg", 1004, "BUTTON", "&Remove File", 208, 128, 50, 14, PUSH, 0},
    {"EditLexDlg", 1055, "BUTTON", "&Help", 81, 152, 44, 13, PUSH, 0},
    {"EditLexDlg", 2, "BUTTON", "Cl&ose", 137, 152, 50, 14, BS_DEFPUSHBUTTON, 0},
    {"EditLexDlg", -1, "BUTTON", "", 4, 88, 260, 60, BS_GROUPBOX, 0},
    {"EditLexDlg", 1037, "STATIC", "Language:", 8, 120, 36, 8, SS_RIGHT, 0},
    {"EditLexDlg", 1029, "STATIC", "", 48, 120, 144, 8, 0, 0},
    {"NewLexDlg", 1039, "STATIC", "&File Name:", 12, 8, 40, 8, SS_RIGHT, 0},
    {"NewLexDlg", 1027, "EDIT", "", 56, 4, 100, 13, ES_AUTOHSCROLL, 0},
    {"NewLexDlg", 1028, "BUTTON", "&Browse...", 164, 4, 50, 14, PUSH, 0},
    {"NewLexDlg", 1037, "STATIC", "&Language", 4, 24, 48, 8, SS_RIGHT, 0},
    {"NewLexDlg", 1023, "COMBOBOX", "", 56, 24, 100, 56, CBS_SIMPLE, CBS_SORT},
    {"NewLexDlg", 1, "BUTTON", "OK", 20, 96, 50, 14, BS_DEFPUSHBUTTON, 0},
    {"NewLexDlg", 2, "BUTTON", "Cancel", 148, 96, 50, 14, PUSH, 0},
    {"NewLexDlg", 1055, "BUTTON", "&Help", 84, 96, 50, 14, PUSH, 0},
    {"OptionsDlg", 1021, "BUTTON", "Ignore &capitalized words (e.g., Canada)", 4, 4, 164, 10, CHECK, 0},
    {"OptionsDlg", 1025, "BUTTON", "I&gnore words with &numbers (e.g., Win95)", 4, 24, 164, 10, CHECK, 0},
    {"OptionsDlg", 1022, "BUTTON", "Report &doubled words (e.g., the the)", 4, 44, 164, 10, CHECK, 0},
    {"OptionsDlg", 1, "BUTTON", "&OK", 23, 162, 32, 14, BS_DEFPUSHBUTTON, 0},
    {"OptionsDlg", 2, "BUTTON", "&Cancel", 115, 162, 32, 14, PUSH, 0},
    {"OptionsDlg", 1028, "BUTTON", "Ignore &all-caps words (e.g., ASAP)", 4, 14, 164, 10, CHECK, 0},
    {"OptionsDlg", 1041, "BUTTON", "Cas&e sensitive", 4, 54, 164, 10, CHECK, 0},
    {"OptionsDlg", 1042, "BUTTON", "&Phonetic suggestions", 4, 64, 164, 10, CHECK, 0},
    {"OptionsDlg", 1043, "BUTTON", "Suggest sp&lit words", 4, 84, 164, 10, CHECK, 0},
    {"OptionsDlg", 1044, "BUTTON", "Ignore words with &mixed case (e.g., SuperBase)", 4, 34, 164, 10, CHECK, 0},
    {"OptionsDlg", 1055, "BUTTON", "&Help", 71, 162, 32, 14, PUSH, 0},
    {"OptionsDlg", 1045, "BUTTON", "&Typographical suggestions", 4, 74, 164, 10, CHECK, 0},
    {"OptionsDlg", -1, "BUTTON", "Suggestions", 3, 116, 164, 42, BS_GROUPBOX, 0},
    {"OptionsDlg", 1051, "BUTTON", "&Fast but less accurate", 11, 127, 152, 8, BS_AUTORADIOBUTTON, WS_TABSTOP},
    {"OptionsDlg", 1052, "BUTTON", "&Moderately fast and accurate", 11, 137, 152, 8, BS_AUTORADIOBUTTON, WS_TABSTOP},
    {"OptionsDlg", 1053, "BUTTON", "Slo&w but accurate", 11, 147, 151, 8, BS_AUTORADIOBUTTON, WS_TABSTOP},
    {"OptionsDlg", 1050, "BUTTON", "A&uto correct", 4, 95, 164, 10, CHECK, 0},
};

TEST(LibraryTemplates, MatchTheirTablesControlByControlInTabOrder)
{
    size_t row = 0;
    for (const ExpectedDialog &e : dialogs) {
        SCOPED_TRACE(e.name);
        const DialogTemplate *t = findTemplate(ORTO_LibraryModule(), e.name);
        ASSERT_NE(t, nullptr);
        EXPECT_EQ(t->caption, e.caption);
        EXPECT_EQ((std::vector<int>{t->x, t->y, t->cx, t->cy}), (std::vector<int>{e.x, e.y, e.cx, e.cy}));
        EXPECT_EQ(t->fontFace, "MS Sans Serif");
        EXPECT_EQ(t->fontSize, 8);
        EXPECT_TRUE(t->style & DS_MODALFRAME);
        EXPECT_EQ((t->style & WS_SYSMENU) != 0, e.sysMenu);
        for (const ControlTemplate &c : t->controls) {
            ASSERT_LT(row, sizeof controls / sizeof controls[0]);
            const ExpectedControl &x = controls[row++];
            SCOPED_TRACE(x.label);
            ASSERT_STREQ(x.dialog, e.name);
            EXPECT_EQ(c.id, x.id);
            EXPECT_STREQ(c.className, x.className);
            EXPECT_EQ(c.text, x.label);
            EXPECT_EQ((std::vector<int>{c.x, c.y, c.cx, c.cy}), (std::vector<int>{x.x, x.y, x.cx, x.cy}));
            if (c.kind == KindButton)
                EXPECT_EQ(c.style & BS_TYPEMASK, x.type);
            else if (c.kind == KindComboBox)
                EXPECT_EQ(c.style & (CBS_TYPEMASK | CBS_AUTOHSCROLL), x.type);
            else
                EXPECT_EQ(c.style & x.type, x.type);
            EXPECT_EQ(c.style & x.absent, 0u);
        }
    }
    EXPECT_EQ(row, sizeof controls / sizeof controls[0]);
}

TEST(LibraryTemplates, NoTwoControlsShareACellOnTheScreen)
{
    ScriptFrontEnd user;
    for (const ExpectedDialog &e : dialogs) {
        user.then(inspect(
            [&](ORTO_HWND d) {
                std::vector<std::pair<int, std::vector<int32_t>>> rects;
                for (const ExpectedControl &c : controls) {
                    if (strcmp(c.dialog, e.name) != 0 || c.id < 0 || c.type == BS_GROUPBOX)
                        continue;
                    std::vector<int32_t> r(4);
                    ORTO_GetWindowRect(ORTO_GetDlgItem(d, c.id), r.data());
                    if (c.id == 1050 && strcmp(e.name, "CheckSpellingDlg") == 0)
                        continue; /* the context pane, hidden */
                    for (const auto &other : rects)
                        EXPECT_FALSE(r[0] < other.second[2] && other.second[0] < r[2] && r[1] < other.second[3] &&
                                     other.second[1] < r[3])
                            << e.name << ": " << c.id << " and " << other.first;
                    rects.push_back({c.id, r});
                }
            },
            closeDialog()));
        ORTO_DialogBoxParam(nullptr, e.name, nullptr,
                            [](ORTO_HWND d, uint32_t m, uintptr_t w, intptr_t) -> intptr_t {
                                if (m == ORTO_WM_COMMAND && (w & 0xFFFF) == 2)
                                    ORTO_EndDialog(d, 0);
                                return 1;
                            },
                            0);
    }
    EXPECT_EQ(user.captions.size(), 4u);
}

/* ---- The template reader ---- */

TEST(TemplateReader, ErrorsNameTheirLineAndGiveNoModule)
{
    struct {
        const char *script, *message;
    } cases[] = {
        {"D DIALOG 0, 0, 10, 10\nBEGIN\n  LTEXT \"x\", 1, 0, 0, 4, 4\n", "line 1: the dialog D has no END"},
        {"D DIALOG 0, 0, 10, 10\nBEGIN\n  FOO 1, 2\nEND\n", "line 3: unknown control statement 'FOO'"},
        {"D DIALOG 0, 0, 10\nBEGIN\nEND\n", "line 2: a comma is missing before 'BEGIN'"},
        {"\nD DIALOG 0, 0, 10, 10\nSTYLE WS_NOSUCH\nBEGIN\nEND\n", "line 3: unknown name 'WS_NOSUCH'"},
        {"D DIALOG 0, 0, 10, 10\nCAPTION \"open\nBEGIN\nEND\n", "line 2: a string is not closed on its line"},
        {"D MENU\nBEGIN\nEND\n", "line 1: only DIALOG templates can be read here, not 'MENU'"},
        {"D DIALOG 0,0,9,9\nBEGIN\n CONTROL \"\", 1, \"progress\", 0, 0,0,1,1\nEND",
         "line 3: unknown window class \"progress\""},
        {"D DIALOG 0,0,9,9\nBEGIN\n EDITTEXT 7x, 0,0,1,1\nEND", "line 3: '7x' is not a number"},
    };
    for (const auto &c : cases) {
        char error[128] = "unset";
        EXPECT_EQ(ORTO_LoadTemplates(c.script, error, sizeof error), nullptr) << c.script;
        EXPECT_STREQ(error, c.message);
    }
    char tiny[8];
    EXPECT_EQ(ORTO_LoadTemplates("D DIALOG", tiny, sizeof tiny), nullptr);
    EXPECT_STREQ(tiny, "line 1:"); /* cut to the buffer */
    EXPECT_EQ(ORTO_DialogBoxParam(nullptr, "NoSuchDlg", nullptr, [](ORTO_HWND, uint32_t, uintptr_t, intptr_t) -> intptr_t { return 0; }, 0), -1);
}

TEST(TemplateReader, StylesDefinesAndUnits)
{
    char error[128];
    ORTO_HINSTANCE m = ORTO_LoadTemplates("#define IDC_NAME 300 // the field\n"
                                          "/* a comment */ host DIALOGEX 1, 2, 101, 43, 0\n"
                                          "FONT 9, \"Tahoma\", 400, 0, 1\n"
                                          "{\n"
                                          "  EDITTEXT IDC_NAME + 1, 2, 6, 1, 1\n"
                                          "  AUTORADIOBUTTON \"\"\"q\"\"\", IDOK, 0,0,0,0, NOT WS_TABSTOP | WS_GROUP\n"
                                          "  COMBOBOX 5, 0, 0, 3, 12, CBS_DROPDOWN\n"
                                          "}\n",
                                          error, sizeof error);
    ASSERT_NE(m, nullptr) << error;
    const DialogTemplate *t = findTemplate(m, "HOST");
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t->fontWeight, 400);
    ASSERT_EQ(t->controls.size(), 3u);
    EXPECT_EQ(t->controls[0].id, 301);
    EXPECT_EQ(t->controls[0].style, WS_CHILD | WS_VISIBLE | WS_BORDER | WS_TABSTOP);
    EXPECT_EQ(t->controls[1].text, "\"q\"");
    EXPECT_EQ(t->controls[1].style, WS_CHILD | WS_VISIBLE | WS_GROUP | BS_AUTORADIOBUTTON);
    EXPECT_EQ(t->controls[2].style & CBS_TYPEMASK, (uint32_t)CBS_DROPDOWN); /* not joined with the default */
    ORTO_FreeTemplates(m);

    /* sums wrap at 32 bits, as the resource compiler's do, from any define */
    m = ORTO_LoadTemplates("#define BIG 0x7FFFFFFFFFFFFFFF\n#define TOP 2147483647\nw DIALOG 0,0,8,4\nBEGIN\n"
                           " EDITTEXT TOP + 1, 0,0,1,1\n EDITTEXT BIG + 1, 0,0,1,1\n EDITTEXT -(BIG + 1) - 1, 0,0,1,1\n"
                           "END\n",
                           error, sizeof error);
    ASSERT_NE(m, nullptr) << error;
    t = findTemplate(m, "W");
    ASSERT_NE(t, nullptr);
    ASSERT_EQ(t->controls.size(), 3u);
    EXPECT_EQ((std::vector<int32_t>{t->controls[0].id, t->controls[1].id, t->controls[2].id}),
              (std::vector<int32_t>{INT32_MIN, 0, -1}));
    ORTO_FreeTemplates(m);

    struct {
        int units, columns, rows, columnSize, rowSize;
    } units[] = {{0, 0, 0, 0, 0}, {1, 0, 0, 1, 1}, {2, 0, 0, 1, 1}, {4, 1, 0, 1, 1},
                 {6, 1, 1, 1, 1}, {12, 3, 1, 3, 1}, {266, 66, 33, 66, 33}, {-2, -1, 0, -1, 0}};
    for (const auto &u : units) {
        EXPECT_EQ(unitsToColumns(u.units, 0), u.columns) << u.units;
        EXPECT_EQ(unitsToRows(u.units, 0), u.rows) << u.units;
        EXPECT_EQ(unitsToColumns(u.units, 1), u.columnSize) << u.units;
        EXPECT_EQ(unitsToRows(u.units, 1), u.rowSize) << u.units;
    }
}

/* ---- Modal dialogs played by a script ---- */

static const char testScript[] =
    "TESTDLG DIALOG 8, 16, 200, 100\n"
    "CAPTION \"Test\"\nFONT 8, \"MS Sans Serif\"\n"
    "BEGIN\n"
    "  LTEXT \"&Name:\", 10, 0, 0, 40, 8\n"
    "  EDITTEXT 11, 40, 0, 80, 12\n"
    "  LISTBOX 12, 0, 16, 80, 40, LBS_NOTIFY | WS_VSCROLL\n"
    "  COMBOBOX 13, 90, 16, 80, 40, CBS_DROPDOWN\n"
    "  AUTOCHECKBOX \"&Box\", 14, 0, 60, 60, 8\n"
    "  GROUPBOX \"Speed\", -1, 60, 60, 80, 30\n"
    "  AUTORADIOBUTTON \"&Slow\", 15, 64, 68, 40, 8, WS_GROUP\n"
    "  AUTORADIOBUTTON \"&Fast\", 16, 64, 76, 40, 8\n"
    "  AUTOCHECKBOX \"&Other\", 17, 150, 60, 40, 8, WS_GROUP\n"
    "  DEFPUSHBUTTON \"OK\", 1, 150, 80, 40, 14\n"
    "  PUSHBUTTON \"Cancel\", 2, 150, 60, 40, 14, WS_DISABLED\n"
    "  PUSHBUTTON \"&Nested\", 18, 100, 80, 40, 14\n"
    "  CONTROL \"\", 19, \"RichEdit20A\", ES_MULTILINE, 0, 90, 40, 8\n"
    "END\n";

struct Heard {
    std::vector<uint32_t> commands;   /* id | code << 16 */
    int nested = 0;
};
static Heard *heard;
static ORTO_HINSTANCE testModule;

static intptr_t testDlgProc(ORTO_HWND dialog, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    if (message == ORTO_WM_INITDIALOG) {
        ORTO_SendMessage(ORTO_GetDlgItem(dialog, 12), ORTO_LB_ADDSTRING, 0, (intptr_t)"alpha");
        ORTO_SendMessage(ORTO_GetDlgItem(dialog, 12), ORTO_LB_ADDSTRING, 0, (intptr_t)"beta");
        if (lParam == 1)
            ORTO_EndDialog(dialog, 77);
        return 1;
    }
    if (message != ORTO_WM_COMMAND)
        return 0;
    heard->commands.push_back((uint32_t)wParam);
    switch (wParam & 0xFFFF) {
    case 1:
        ORTO_EndDialog(dialog, 5);
        ORTO_SetWindowText(ORTO_GetDlgItem(dialog, 11), "after end"); /* the handler runs on */
        break;
    case 2:
        ORTO_EndDialog(dialog, -17);
        break;
    case 12:
        if ((wParam >> 16) == ORTO_LBN_DBLCLK) /* the dialog's own change notifies */
            ORTO_SetWindowText(ORTO_GetDlgItem(dialog, 11), "from the list");
        break;
    case 18:
        heard->nested = (int)ORTO_DialogBoxParam(testModule, "testdlg", dialog, testDlgProc, 0);
        break;
    }
    return 1;
}

class DialogBoxTest : public ::testing::Test {
protected:
    Heard h;
    void SetUp() override
    {
        heard = &h;
        char error[128];
        testModule = ORTO_LoadTemplates(testScript, error, sizeof error);
        ASSERT_NE(testModule, nullptr) << error;
    }
    void TearDown() override { ORTO_FreeTemplates(testModule); }
    intptr_t run(intptr_t param = 0) { return ORTO_DialogBoxParam(testModule, "TestDlg", nullptr, testDlgProc, param); }
};

TEST_F(DialogBoxTest, ScriptedUserWorksEveryControlKind)
{
    ScriptFrontEnd user;
    ORTO_HWND seen = nullptr;
    user.then(inspect(
        [&](ORTO_HWND d) {
            seen = d;
            int32_t r[4];
            ORTO_GetWindowRect(d, r); /* (8, 16) units; 50 x 12 cells of client, frame and caption */
            EXPECT_EQ((std::vector<int32_t>{r[0], r[1], r[2], r[3]}), (std::vector<int32_t>{2, 2, 54, 15}));
            ORTO_GetWindowRect(ORTO_GetDlgItem(d, 11), r);
            EXPECT_EQ((std::vector<int32_t>{r[0], r[1], r[2], r[3]}), (std::vector<int32_t>{13, 3, 33, 4}));
            char name[16];
            ORTO_GetClassName(ORTO_GetDlgItem(d, 19), name, sizeof name);
            EXPECT_STREQ(name, "RichEdit20A");
        },
        typeText(11, "hello")));
    user.then(selectItem(12, 1));
    user.then(doubleClickItem(12, 0));
    user.then(typeText(13, "typed"));
    user.then(click(14));
    user.then(click(16));
    user.then(click(15));
    user.then(click(2));     /* disabled: no user can press it */
    user.then(click(999));   /* no such control */
    user.then(inspect(
        [&](ORTO_HWND d) {
            EXPECT_EQ(itemText(d, 11), "from the list");
            EXPECT_EQ(itemText(d, 13), "typed");
            EXPECT_EQ(ORTO_SendMessage(ORTO_GetDlgItem(d, 12), ORTO_LB_GETCURSEL, 0, 0), 0);
            EXPECT_TRUE(checked(d, 14));
            EXPECT_TRUE(checked(d, 15));
            EXPECT_FALSE(checked(d, 16)); /* cleared by its group */
            EXPECT_FALSE(enabled(d, 2));
        },
        click(1)));
    EXPECT_EQ(run(), 5);
    EXPECT_EQ(h.commands, (std::vector<uint32_t>{
                              11 | ORTO_EN_CHANGE << 16, 12 | ORTO_LBN_SELCHANGE << 16, 12 | ORTO_LBN_DBLCLK << 16,
                              11 | ORTO_EN_CHANGE << 16, /* the dialog's own SetWindowText */
                              13 | ORTO_CBN_EDITCHANGE << 16, 14, 16, 15, 1, 11 | ORTO_EN_CHANGE << 16}));
    EXPECT_FALSE(ORTO_IsWindowVisible(seen)); /* gone with its end: the handle is refused */
    EXPECT_EQ(ORTO_GetDlgItem(seen, 11), nullptr);
}

TEST_F(DialogBoxTest, EndDuringOpeningNeverShowsNestedDialogsStackAndCloseIsCancel)
{
    ScriptFrontEnd user;
    EXPECT_EQ(run(1), 77);
    EXPECT_TRUE(user.captions.empty());

    user.then(click(18));
    user.then(inspect([](ORTO_HWND) { EXPECT_EQ(runningDialogs().size(), 2u); }, click(1)));
    user.then(closeDialog()); /* Cancel is disabled, but closing still sends it */
    EXPECT_EQ(run(), -17);
    EXPECT_EQ(h.nested, 5);
    EXPECT_EQ(user.captions.size(), 3u);
    EXPECT_TRUE(runningDialogs().empty());
}

TEST_F(DialogBoxTest, WithoutAUserTheDialogClosesAtOnce)
{
    EXPECT_EQ(run(), -17);
    ORTO_HINSTANCE stubborn = ORTO_LoadTemplates("S DIALOG 0,0,10,10\nBEGIN\nEND\n", nullptr, 0);
    EXPECT_EQ(ORTO_DialogBoxParam(stubborn, "S", nullptr,
                                  [](ORTO_HWND, uint32_t, uintptr_t, intptr_t) -> intptr_t { return 1; }, 0),
              -1);
    ORTO_FreeTemplates(stubborn);
}

/* ---- Text controls ---- */

TEST(TextControl, SelectionsReplacementsLimitsAndRanges)
{
    EXPECT_EQ(ORTO_CreateTextControl("BUTTON", "x"), nullptr);
    ORTO_HWND c = ORTO_CreateTextControl("RICHED16", "one two three");
    ASSERT_NE(c, nullptr);
    ORTO_SendMessage(c, ORTO_EM_SETSEL, 7, 4); /* put in order */
    uint32_t start = 0, end = 0;
    EXPECT_EQ(ORTO_SendMessage(c, ORTO_EM_GETSEL, (uintptr_t)&start, (intptr_t)&end), 4 | 7 << 16);
    ORTO_SendMessage(c, ORTO_EM_REPLACESEL, 0, (intptr_t)"2");
    EXPECT_EQ(windowText(c), "one 2 three");
    ORTO_SendMessage(c, ORTO_EM_LIMITTEXT, 13, 0);
    ORTO_SendMessage(c, ORTO_EM_SETSEL, 4, 5);
    ORTO_SendMessage(c, ORTO_EM_REPLACESEL, 0, (intptr_t)"four"); /* room for 3 of 4 */
    EXPECT_EQ(windowText(c), "one fou three");
    ORTO_CHARRANGE range = {-1, 0};
    ORTO_SendMessage(c, ORTO_EM_EXGETSEL, 0, (intptr_t)&range);
    EXPECT_EQ((std::vector<int32_t>{range.cpMin, range.cpMax}), (std::vector<int32_t>{7, 7}));
    char part[8];
    ORTO_TEXTRANGE tr = {{8, -1}, part};
    EXPECT_EQ(ORTO_SendMessage(c, ORTO_EM_GETTEXTRANGE, 0, (intptr_t)&tr), 5);
    EXPECT_STREQ(part, "three");

    std::string big(70000, 'a');
    ORTO_SetWindowText(c, big.c_str()); /* the limit bounds typing, not WS_SETTEXT */
    EXPECT_EQ(ORTO_SendMessage(c, ORTO_WM_GETTEXTLENGTH, 0, 0), 70000);
    ORTO_CHARRANGE far = {66000, 66010};
    ORTO_SendMessage(c, ORTO_EM_EXSETSEL, 0, (intptr_t)&far);
    EXPECT_EQ(ORTO_SendMessage(c, ORTO_EM_GETSEL, (uintptr_t)&start, (intptr_t)&end), -1);
    EXPECT_EQ((std::vector<uint32_t>{start, end}), (std::vector<uint32_t>{66000, 66010}));

    const char *shown[] = {"\xCE\xB1", nullptr};
    EXPECT_EQ(ORTO_SetShownCharacters(c, 0x81, shown, 1), 1);
    EXPECT_EQ(ORTO_SetShownCharacters(c, 0x81, shown, 2), 0); /* a null entry */
    ORTO_DestroyWindow(c);
    EXPECT_EQ(ORTO_SetShownCharacters(c, 0x81, shown, 1), 0);
    char text[4] = "old";
    EXPECT_EQ(ORTO_GetWindowText(c, text, sizeof text), 0);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(ORTO_SendMessage(c, ORTO_WM_GETTEXTLENGTH, 0, 0), 0);
    ORTO_HWND next = ORTO_CreateTextControl("EDIT", "new");
    EXPECT_NE(next, c); /* same slot, new generation */
    EXPECT_EQ(ORTO_SetWindowText(c, "x"), 0);
    ORTO_DestroyWindow(next);
}

TEST(ListControls, FindSelectDeleteAndItemData)
{
    char error[64];
    ORTO_HINSTANCE m = ORTO_LoadTemplates("L DIALOG 0,0,40,40\nBEGIN\nCOMBOBOX 1, 0,0,20,20, CBS_DROPDOWNLIST\nEND",
                                          error, sizeof error);
    ScriptFrontEnd user;
    user.then(inspect(
        [](ORTO_HWND d) {
            ORTO_HWND box = ORTO_GetDlgItem(d, 1);
            for (const char *s : {"alpha.tlx", "Beta.tlx", "alps.tlx"})
                ORTO_SendMessage(box, ORTO_CB_ADDSTRING, 0, (intptr_t)s);
            ORTO_SendMessage(box, ORTO_CB_SETITEMDATA, 1, 42);
            EXPECT_EQ(ORTO_SendMessage(box, ORTO_CB_FINDSTRING, 0, (intptr_t)"AL"), 2);  /* behind 0, wrapping */
            EXPECT_EQ(ORTO_SendMessage(box, ORTO_CB_FINDSTRING, 2, (intptr_t)"al"), 0);
            EXPECT_EQ(ORTO_SendMessage(box, ORTO_CB_FINDSTRING, (uintptr_t)-1, (intptr_t)""), ORTO_CB_ERR);
            EXPECT_EQ(ORTO_SendMessage(box, ORTO_CB_SETCURSEL, 2, 0), 2);
            EXPECT_EQ(windowText(box), "alps.tlx");
            ORTO_SendMessage(box, ORTO_CB_DELETESTRING, 0, 0);
            EXPECT_EQ(ORTO_SendMessage(box, ORTO_CB_GETCURSEL, 0, 0), 1); /* moved up with its entry */
            EXPECT_EQ(ORTO_SendMessage(box, ORTO_CB_GETITEMDATA, 0, 0), 42);
            ORTO_SendMessage(box, ORTO_CB_DELETESTRING, 1, 0);
            EXPECT_EQ(ORTO_SendMessage(box, ORTO_CB_GETCURSEL, 0, 0), ORTO_CB_ERR);
            EXPECT_EQ(ORTO_SendMessage(box, ORTO_CB_SETCURSEL, 5, 0), ORTO_CB_ERR);
            EXPECT_EQ(windowText(box), "");
        },
        closeDialog()));
    ORTO_DialogBoxParam(m, "L", nullptr,
                        [](ORTO_HWND d, uint32_t msg, uintptr_t w, intptr_t) -> intptr_t {
                            if (msg == ORTO_WM_COMMAND && (w & 0xFFFF) == 2)
                                ORTO_EndDialog(d, 0);
                            return 1;
                        },
                        0);
    ORTO_FreeTemplates(m);
}
