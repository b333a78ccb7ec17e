/* The Dictionaries and New Dictionary dialogs, driven by a scripted user;
 * lexicon files and the store's UserLexFiles are read back from the disk
 * after each change. */
#include <gtest/gtest.h>

#include <algorithm>

#include "support/dialog_fixture.h"

enum { WordBox = 1001, FileBox = 1002, AddFile = 1003, RemoveFile = 1004, AddWord = 1014, DeleteWord = 1015,
       NewFile = 1016, Import = 1024, Export = 1025, Language = 1029, OtherWord = 1057, ActionBox = 1058,
       NameField = 1027, Browse = 1028, LanguageBox = 1023 };

static const std::vector<int32_t> wordButtons = {AddWord, DeleteWord, Import, Export, RemoveFile};

static std::vector<bool> enabledStates(ORTO_HWND d, const std::vector<int32_t> &ids)
{
    std::vector<bool> states;
    for (int32_t id : ids)
        states.push_back(enabled(d, id));
    return states;
}

TEST(EditLexDialog, EmptyTableThenAddNewAndRemoveFiles)
{
    DialogFixture f;
    f.makeLex("fruit.tlx", {{"pear", 'i', ""}});
    f.user.then(inspect(
        [](ORTO_HWND d) {
            EXPECT_TRUE(listEntries(d, FileBox).empty());
            EXPECT_TRUE(listEntries(d, WordBox).empty());
            EXPECT_EQ(enabledStates(d, wordButtons), std::vector<bool>(5, false));
            EXPECT_TRUE(enabled(d, AddFile) && enabled(d, NewFile));
        },
        click(AddFile)));
    f.user.fileAnswers = {f.path("fruit.tlx"), f.path("fruit.tlx"), std::string(ORTO_BINARY_DIR) + "/data/en-US.clx"};
    f.user.then(click(AddFile)); /* the same file again: selected, not opened twice */
    f.user.then(click(AddFile)); /* a compressed lexicon */
    f.user.then(click(NewFile));
    f.user.then(typeText(NameField, "words"));
    f.user.then(selectItem(LanguageBox, 2));                 /* British English */
    f.user.then(click(ORTO_IDOK));
    f.user.then(inspect(
        [&](ORTO_HWND d) {
            EXPECT_EQ(listEntries(d, FileBox), (std::vector<std::string>{"fruit.tlx", "words.TLX"}));
            EXPECT_EQ(itemText(d, FileBox), "words.TLX");
            EXPECT_EQ(itemText(d, Language), "British English");
            EXPECT_EQ(f.key("UserLexFiles"), "fruit.tlx,words.TLX");
        },
        click(RemoveFile)));
    f.user.then(click(RemoveFile));
    f.user.then(inspect([](ORTO_HWND d) { EXPECT_TRUE(listEntries(d, FileBox).empty()); }, click(ORTO_IDCANCEL)));
    EXPECT_EQ(ORTO_EditLexDlg(nullptr), 0);
    EXPECT_EQ(f.user.messages,
              (std::vector<std::string>{"Edit dictionary|" + std::string(ORTO_BINARY_DIR) +
                                        "/data/en-US.clx is not a user dictionary"}));
    EXPECT_EQ(f.key("UserLexFiles"), "");
    EXPECT_TRUE(fileExists(f.path("words.TLX"))); /* removed from the list, not from the disk */
    ASSERT_EQ(f.user.fileRequests.size(), 3u);
    const FileRequestSeen &r = f.user.fileRequests[0];
    EXPECT_EQ(r.title, "Add Dictionary File");
    EXPECT_EQ(r.filter, "Dictionary files (*.tlx)|*.tlx|External dictionaries (*.dic)|*.dic|Text files (*.txt)|"
                        "*.txt|All files (*.*)|*.*|");
    EXPECT_EQ(r.startFolder, f.folder);
    EXPECT_EQ(r.flags, 0x180Cu);
    EXPECT_EQ(r.defaultExtension, "tlx");
}

TEST(EditLexDialog, WordsActionsAndTheFileOnDisk)
{
    DialogFixture f("UserLexFiles=names.tlx,gone.tlx\n");
    f.makeLex("names.tlx", {{"teh", 'A', "the"}, {"zed", 'i', ""}}, ORTO_LangAmerican);
    f.user.then(inspect(
        [](ORTO_HWND d) {
            EXPECT_EQ(listEntries(d, WordBox), (std::vector<std::string>{"teh", "zed"}));
            EXPECT_EQ(itemText(d, ActionBox), "Auto change (use case of checked word)"); /* the first word's */
            EXPECT_EQ(itemText(d, OtherWord), "the");
            EXPECT_EQ(itemText(d, Language), "American English");
        },
        typeText(WordBox, "wiht")));
    f.user.then(inspect(
        [](ORTO_HWND d) {
            EXPECT_TRUE(enabled(d, AddWord));
            EXPECT_FALSE(enabled(d, DeleteWord));
        },
        selectItem(ActionBox, 2)));
    f.user.then(typeText(OtherWord, "with"));
    f.user.then(click(AddWord));
    f.user.then(inspect(
        [&](ORTO_HWND d) {
            EXPECT_EQ(f.entriesOnDisk(f.path("names.tlx")),
                      (std::vector<std::string>{"teh\tAthe", "wiht\tcwith", "zed\ti"}));
            EXPECT_EQ(listEntries(d, WordBox).size(), 3u);
        },
        selectItem(WordBox, 2)));
    f.user.then(click(DeleteWord)); /* the last word: no selection afterwards */
    f.user.then(inspect(
        [&](ORTO_HWND d) {
            EXPECT_EQ(ORTO_SendMessage(ORTO_GetDlgItem(d, WordBox), ORTO_CB_GETCURSEL, 0, 0), ORTO_CB_ERR);
            EXPECT_EQ(f.entriesOnDisk(f.path("names.tlx")), (std::vector<std::string>{"teh\tAthe", "wiht\tcwith"}));
        },
        selectItem(FileBox, 1))); /* gone.tlx failed to open at the start */
    f.user.then(typeText(WordBox, "any"));
    f.user.then(click(AddWord));
    f.user.then(click(RemoveFile));
    f.user.then(click(ORTO_IDCANCEL));
    EXPECT_EQ(ORTO_EditLexDlg(nullptr), 0);
    EXPECT_EQ(f.user.messages, (std::vector<std::string>{"|Error opening dictionary file " + f.path("gone.tlx"),
                                                         "Edit dictionaries|Can't add word"}));
    EXPECT_EQ(f.key("UserLexFiles"), "names.tlx");
}

TEST(EditLexDialog, ImportAndExportRealFiles)
{
    DialogFixture f("UserLexFiles=io.tlx\n");
    f.makeLex("io.tlx", {{"helo", 'A', "hello"}});
    std::string export1 = f.path("out.txt");
    std::string import = f.path("in.txt");
    std::string longWord(100, 'x');
    std::string junk = std::string("\0\x01\x02 ", 4) + std::string(3 << 20, '\x07'); /* megabytes of no word */
    writeFile(import, "# comment line\r\nhelo\tAhello\n; skipped\nword;tail # rest\ncaf\xe9 " + longWord + "\n" +
                          junk + " end\n");
    f.user.fileAnswers = {export1, f.path("missing.txt"), import};
    f.user.then(click(Export));
    f.user.then(click(Import));
    f.user.then(click(Import));
    f.user.then(click(ORTO_IDCANCEL));
    EXPECT_EQ(ORTO_EditLexDlg(nullptr), 0);
    EXPECT_EQ(readFile(export1), "helo\tAhello\n");
    EXPECT_EQ(f.user.messages, (std::vector<std::string>{"Edit dictionary|Can't open " + f.path("missing.txt")}));
    /* every word comes in as Ignore; a ';' right behind a word only ends it */
    std::vector<std::string> expected;
    for (const std::string &w : {std::string("Ahello"), std::string("caf\xe9"), std::string("end"),
                                 std::string("helo"), std::string("tail"), std::string("word"),
                                 std::string(63, 'x') /* a word is 63 characters at most */, std::string(19, 'x')})
        expected.push_back(w + "\ti");
    std::vector<std::string> entries = f.entriesOnDisk(f.path("io.tlx"));
    std::sort(entries.begin(), entries.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(entries, expected);
    EXPECT_EQ(f.user.fileRequests[0].title, "Export Dictionary");
    EXPECT_EQ(f.user.fileRequests[0].flags, 0x80Eu);
    EXPECT_EQ(f.user.fileRequests[1].filter, "Text files (*.txt)|*.txt|All files (*.*)|*.*|");
}

TEST(NewLexDialog, NamesExtensionsBrowseAndCancel)
{
    struct {
        std::string typed, created;
    } names[] = {{"words", "words.TLX"}, {"words.dic", "words.dic"}, {"", ".TLX"}};
    for (const auto &n : names) {
        DialogFixture f;
        f.user.then(click(NewFile));
        f.user.then(typeText(NameField, n.typed));
        f.user.then(click(ORTO_IDOK));
        EXPECT_EQ(ORTO_EditLexDlg(nullptr), 0);
        EXPECT_TRUE(fileExists(f.path(n.created))) << n.typed;
        EXPECT_EQ(f.key("UserLexFiles"), n.created);
    }
    DialogFixture f;
    std::string other = f.store.dir.file("my.dir");
    mkdir(other.c_str(), 0755);
    f.user.fileAnswers = {f.path("inside"), other + "/outside"};
    f.user.then(click(NewFile));
    f.user.then(click(Browse));
    f.user.then(inspect([](ORTO_HWND d) { EXPECT_EQ(itemText(d, NameField), "inside.tlx"); }, click(Browse)));
    f.user.then(inspect([&](ORTO_HWND d) { EXPECT_EQ(itemText(d, NameField), other + "/outside.tlx"); },
                        click(1055)));
    f.user.then(click(ORTO_IDCANCEL)); /* nothing is made */
    f.user.then(click(NewFile));
    f.user.then(typeText(NameField, other + "/plain")); /* a dot in the folder only: no extension */
    f.user.then(click(ORTO_IDOK));
    f.user.then(click(ORTO_IDCANCEL));
    EXPECT_EQ(ORTO_EditLexDlg(nullptr), 0);
    EXPECT_FALSE(fileExists(other + "/outside.tlx"));
    EXPECT_TRUE(fileExists(other + "/plain"));
    EXPECT_EQ(f.key("UserLexFiles"), other + "/plain");
    EXPECT_EQ(f.user.helpCalls.back().second, 400u);

    /* a host's New Dictionary template with the same ids */
    ORTO_HINSTANCE host = ORTO_LoadTemplates("Fresh DIALOG 0,0,100,40\nCAPTION \"Fresh list\"\nBEGIN\n"
                                             " EDITTEXT 1027, 0,0,60,12\n COMBOBOX 1023, 0,14,60,30, CBS_SIMPLE\n"
                                             " DEFPUSHBUTTON \"Make\", 1, 70,0,30,14\nEND\n",
                                             nullptr, 0);
    f.user.acts.clear();
    f.user.next = 0;
    f.user.then(click(NewFile));
    f.user.then(typeText(NameField, "hosted"));
    f.user.then(click(ORTO_IDOK));
    f.user.then(click(ORTO_IDCANCEL));
    EXPECT_EQ(ORTO_EditLexDlgTmplt(nullptr, host, nullptr, "FRESH"), 0);
    EXPECT_TRUE(fileExists(f.path("hosted.TLX")));
    EXPECT_NE(std::find(f.user.captions.begin(), f.user.captions.end(), "Fresh list"), f.user.captions.end());
    ORTO_FreeTemplates(host);
    EXPECT_EQ(f.user.fileRequests[0].title, "Create Dictionary File");
    EXPECT_EQ(f.user.fileRequests[0].flags, 0x80Eu);
}

TEST(EditLexDialog, FullTableBusyAndAHostTemplate)
{
    std::string list;
    for (int i = 0; i < 31; i++)
        list += (i ? "," : "") + std::to_string(i) + ".tlx";
    DialogFixture f("UserLexFiles=" + list + "\n");
    for (int i = 0; i < 31; i++)
        f.makeLex(std::to_string(i) + ".tlx", {});
    f.user.then(inspect([](ORTO_HWND d) { EXPECT_FALSE(enabled(d, AddFile) || enabled(d, NewFile)); },
                        click(ORTO_IDCANCEL)));
    EXPECT_EQ(ORTO_EditLexDlg(nullptr), 0);
    busyFlag = 1;
    EXPECT_EQ(ORTO_EditLexDlg(nullptr), ORTO_DialogActive);
    busyFlag = 0;

    char error[128];
    ORTO_HINSTANCE host = ORTO_LoadTemplates(
        "Lex DIALOG 0,0,200,100\nCAPTION \"Word lists\"\nBEGIN\n COMBOBOX 1001, 0,0,80,60, CBS_SIMPLE\n"
        " COMBOBOX 1058, 90,0,80,60, CBS_DROPDOWNLIST\n EDITTEXT 1057, 90,20,80,12\n"
        " PUSHBUTTON \"Keep\", 1014, 0,70,30,14\n PUSHBUTTON \"Drop\", 1015, 40,70,30,14\n"
        " PUSHBUTTON \"In\", 1024, 0,84,30,14\n PUSHBUTTON \"Out\", 1025, 40,84,30,14\n"
        " COMBOBOX 1002, 90,40,80,40, CBS_DROPDOWN\n PUSHBUTTON \"+\", 1003, 180,0,16,14\n"
        " PUSHBUTTON \"New\", 1016, 180,20,16,14\n PUSHBUTTON \"-\", 1004, 180,40,16,14\n"
        " PUSHBUTTON \"?\", 1055, 180,60,16,14\n DEFPUSHBUTTON \"Done\", 2, 180,80,16,14\n"
        " LTEXT \"\", 1029, 90,60,80,8\nEND\n",
        error, sizeof error);
    ASSERT_NE(host, nullptr) << error;
    f.user.acts.clear();
    f.user.next = 0;
    f.user.then(typeText(WordBox, "hostword"));
    f.user.then(click(AddWord));
    f.user.then(click(ORTO_IDCANCEL));
    EXPECT_EQ(ORTO_EditLexDlgTmplt(nullptr, host, "LEX", nullptr), 0);
    EXPECT_EQ(f.user.captions.back(), "Word lists");
    EXPECT_EQ(f.entriesOnDisk(f.path("0.tlx")), (std::vector<std::string>{"hostword\ti"}));
    ORTO_FreeTemplates(host);
}
