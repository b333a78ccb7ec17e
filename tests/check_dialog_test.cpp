/* The Check Spelling dialog over buffers and text controls, driven by a
 * scripted user; the buffer, the controls and the lexicon files are read
 * back after each run. */
#include <gtest/gtest.h>

#include "support/dialog_fixture.h"
#include "ui/window.h"

enum { Ignore = 1001, IgnoreAll = 1002, Change = 1003, ChangeAll = 1004, Add = 1005, Suggest = 1006, Undo = 1007,
       List = 1009, ChangeTo = 1010, Label = 1011, Word = 1012, AddTo = 1013, Dictionaries = 1014,
       Options = 1031, LockPos = 1046, Pane = 1050 };

static const char mainWords[] = "the this is fine world lantern marble basket pencil quartz window one two red green blue";

/* A store with a main text lexicon of a few words and a user lexicon that
 * changes "teh" to "the" by itself. */
struct CheckFixture : DialogFixture {
    explicit CheckFixture(const std::string &more = "")
        : DialogFixture("UserLexFiles=mine.tlx,other.tlx\n" + more + "[ORTO]\nMainLexPath=@\nMainLexFiles=main.tlx\n")
    {
        std::vector<LexEntryText> words;
        std::string w;
        for (const char *p = mainWords;; p++) {
            if (*p == ' ' || !*p) {
                words.push_back({w, 'i', ""});
                w.clear();
                if (!*p)
                    break;
            } else {
                w += *p;
            }
        }
        makeLex("main.tlx", words);
        makeLex("mine.tlx", {{"teh", 'A', "the"}});
        makeLex("other.tlx", {});
    }

    /* Runs the dialog over `text`; `text` is left as the buffer became, of
     * the length returned, or of `cancelled` characters when the call gives
     * no length (-1: as long as it was). */
    int32_t check(std::string *text, int16_t showContext = 0, int32_t cancelled = -1)
    {
        std::vector<char> buffer(text->size() + 64, '\0');
        memcpy(buffer.data(), text->data(), text->size());
        int32_t r = ORTO_CheckBlockDlg(nullptr, buffer.data(), (uint32_t)text->size(), (uint32_t)buffer.size(),
                                       showContext);
        size_t length = r >= 0 ? (size_t)r : cancelled >= 0 ? (size_t)cancelled : text->size();
        *text = std::string(buffer.data(), length);
        return r;
    }
};

static std::string label(ORTO_HWND d) { return itemText(d, Label); }

TEST(CheckDialog, CleanTextShowsNoDialogAndCountsItsWords)
{
    CheckFixture f;
    std::string text = "the world is fine", empty;
    EXPECT_EQ(f.check(&text), 17);
    EXPECT_EQ(f.check(&empty), 0);
    EXPECT_TRUE(f.user.captions.empty());
    uint32_t checked = 0, changed = 9, found = 9;
    ORTO_GetStatistics(&checked, &changed, &found);
    EXPECT_EQ((std::vector<uint32_t>{checked, changed, found}), (std::vector<uint32_t>{0, 0, 0}));
    ORTO_GetStatistics(nullptr, nullptr, nullptr);
    std::string bad;
    EXPECT_EQ(ORTO_CheckBlockDlg(nullptr, nullptr, 5, 10, 0), ORTO_BufferTooSmall);
    char small[8] = "teh";
    EXPECT_EQ(ORTO_CheckBlockDlg(nullptr, small, 8, 4, 0), ORTO_BufferTooSmall); /* textLen above blockSize */
}

TEST(CheckDialog, EachKindOfProblemAndItsControls)
{
    CheckFixture f;
    f.user.then(inspect(
        [](ORTO_HWND d) {
            EXPECT_EQ(label(d), "Not in Dictionary:");
            EXPECT_EQ(itemText(d, Word), "lanterm");
            EXPECT_EQ(itemText(d, ChangeTo), "lantern");
            EXPECT_EQ(listEntries(d, List), (std::vector<std::string>{"lantern"})); /* basket is 27 behind */
            EXPECT_EQ(itemText(d, Change), "&Change");
            EXPECT_TRUE(enabled(d, Undo)); /* Teh became The by itself */
        },
        typeText(ChangeTo, "")));
    f.user.then(inspect(
        [](ORTO_HWND d) {
            EXPECT_EQ(itemText(d, Change), "&Delete"); /* emptied by hand */
            EXPECT_FALSE(enabled(d, ChangeAll));
        },
        click(Ignore)));
    f.user.then(inspect(
        [](ORTO_HWND d) {
            EXPECT_EQ(itemText(d, Word), "zzzz");
            EXPECT_EQ(itemText(d, ChangeTo), "zzzz"); /* the best is below 50: no list */
            EXPECT_TRUE(listEntries(d, List).empty());
        },
        click(Change))); /* the word by itself: the same word again */
    f.user.then(inspect([](ORTO_HWND d) { EXPECT_EQ(itemText(d, Word), "zzzz"); }, click(Ignore)));
    f.user.then(inspect(
        [](ORTO_HWND d) {
            EXPECT_EQ(label(d), "Doubled word:");
            EXPECT_EQ(itemText(d, ChangeTo), "");
            EXPECT_EQ(itemText(d, Change), "&Delete");
            EXPECT_FALSE(enabled(d, ChangeAll));
            EXPECT_TRUE(enabled(d, Undo));
        },
        click(Change)));
    std::string text = "Teh lanterm zzzz is is fine";
    EXPECT_EQ(f.check(&text), 24);
    EXPECT_EQ(text, "The lanterm zzzz is fine");
    uint32_t checked = 0, changed = 0, found = 0;
    ORTO_GetStatistics(&checked, &changed, &found);
    EXPECT_EQ((std::vector<uint32_t>{checked, changed, found}), (std::vector<uint32_t>{5, 3, 4}));
}

TEST(CheckDialog, AtMostFourAutomaticChangesAtATime)
{
    for (int autoCorrect : {1, 0}) {
        CheckFixture f;
        ORTO_SetAutoCorrect((int16_t)autoCorrect);
        f.user.then(inspect(
            [&](ORTO_HWND d) {
                EXPECT_EQ(label(d), autoCorrect ? "Not in Dictionary:" : "Consider changing:");
                EXPECT_EQ(itemText(d, Word), autoCorrect ? "wrld" : "teh");
            },
            closeDialog()));
        std::string text = "teh teh teh teh teh teh wrld";
        EXPECT_EQ(f.check(&text), ORTO_Cancelled);
        EXPECT_EQ(text, autoCorrect ? "the the the the teh teh wrld" : "teh teh teh teh teh teh wrld");
        uint32_t found = 9;
        ORTO_GetStatistics(nullptr, nullptr, &found);
        EXPECT_EQ(found, autoCorrect ? 1u : 0u);
    }
}

TEST(CheckDialog, UndoGoesBackToTheFirstChangeAndCancelKeepsChanges)
{
    CheckFixture f;
    std::string original;
    for (int i = 0; i < 40; i++)
        original += i % 2 ? "marbel two " : "marbel one ";
    original += "lanterm"; /* a problem after the last change keeps the dialog open */
    for (int i = 0; i < 40; i++)
        f.user.then(click(Change));
    for (int i = 0; i < 40; i++)
        f.user.then(click(Undo));
    f.user.then(inspect([](ORTO_HWND d) { EXPECT_FALSE(enabled(d, Undo)); }, closeDialog()));
    std::string text = original;
    EXPECT_EQ(f.check(&text), ORTO_Cancelled);
    EXPECT_EQ(text, original);

    f.user.acts.clear();
    f.user.next = 0;
    f.user.then(click(ChangeAll));
    f.user.then(inspect([](ORTO_HWND d) { EXPECT_EQ(label(d), "Consider changing:"); }, click(Change)));
    f.user.then(closeDialog()); /* at lanterm, the second wrld changed by itself */
    text = "wrld marbel wrld lanterm";
    EXPECT_EQ(f.check(&text, 0, 26), ORTO_Cancelled);
    EXPECT_EQ(text, "world marble world lanterm");
}

TEST(CheckDialog, DeleteOfADoubledWordAndItsUndoInTheContextPane)
{
    CheckFixture f;
    f.user.then(click(Change));
    f.user.then(inspect(
        [](ORTO_HWND d) {
            EXPECT_EQ(itemText(d, Pane), "this is fine wrld");
            EXPECT_TRUE(ORTO_IsWindowVisible(ORTO_GetDlgItem(d, Pane)));
        },
        click(Undo)));
    f.user.then(inspect(
        [](ORTO_HWND d) {
            EXPECT_EQ(itemText(d, Pane), "this is is fine wrld");
            EXPECT_EQ(itemText(d, Word), "wrld"); /* the restored word starts a new run */
            uint32_t start = 0, end = 0;
            ORTO_SendMessage(ORTO_GetDlgItem(d, Pane), ORTO_EM_GETSEL, (uintptr_t)&start, (intptr_t)&end);
            EXPECT_EQ((std::vector<uint32_t>{start, end}), (std::vector<uint32_t>{16, 20}));
        },
        typeText(ChangeTo, "world")));
    f.user.then(click(Change));
    std::string text = "this is is fine wrld";
    EXPECT_EQ(f.check(&text, 1), 21);
    EXPECT_EQ(text, "this is is fine world");
}

TEST(CheckDialog, SuggestLooksDeeperEachTimeUntil100)
{
    for (int16_t depth : {50, 100}) {
        CheckFixture f;
        ORTO_SetMinSuggestDepth(depth);
        int presses = 0;
        Act press = [&](ORTO_HWND d) {
            if (!enabled(d, Suggest))
                return command(0, 0); /* nothing a user can press */
            presses++;
            return command(Suggest, 0);
        };
        for (int i = 0; i < 8; i++)
            f.user.then(press);
        f.user.then(typeText(Word, "wrl")); /* another word starts over */
        f.user.then(inspect([](ORTO_HWND d) { EXPECT_TRUE(enabled(d, Suggest)); }, closeDialog()));
        std::string text = "wrld";
        f.check(&text);
        EXPECT_EQ(presses, depth == 50 ? 6 : 1) << depth;
    }
}

TEST(CheckDialog, AddIntoTheChosenLexiconAndLastSelectedLex)
{
    CheckFixture f("LastSelectedLex=OTHER\n");
    f.user.then(inspect([](ORTO_HWND d) { EXPECT_EQ(itemText(d, AddTo), "other.tlx"); }, click(Add)));
    f.user.then(typeText(AddTo, "typed"));
    f.user.then(click(Add)); /* no selection: nothing added, no message */
    f.user.then(click(Dictionaries));
    f.user.then(typeText(1001, "qrtz"));
    f.user.then(selectItem(1058, 4)); /* Ignore, in place of the A that the first word showed */
    f.user.then(typeText(1057, ""));
    f.user.then(click(1014));
    f.user.then(click(ORTO_IDCANCEL));
    f.user.then(inspect([](ORTO_HWND d) { EXPECT_EQ(itemText(d, Word), "qrtz"); }, selectItem(AddTo, 0)));
    f.user.then(click(Ignore));
    f.user.then(click(Ignore)); /* zzz */
    std::string text = "wrld lanterm qrtz zzz qrtz";
    EXPECT_EQ(f.check(&text), 26);
    EXPECT_EQ(f.entriesOnDisk(f.path("other.tlx")), (std::vector<std::string>{"wrld\ti"}));
    EXPECT_EQ(f.entriesOnDisk(f.path("mine.tlx")), (std::vector<std::string>{"qrtz\ti", "teh\tAthe"}));
    EXPECT_TRUE(f.user.messages.empty());
    EXPECT_EQ(f.user.captions.size(), 12u); /* the second qrtz is accepted */
    EXPECT_EQ(f.key("LastSelectedLex"), "mine.tlx");
}

/* Controls: a text of clean words with misspellings at chosen places. */
static std::string cleanText(size_t length)
{
    static const char *cycle[] = {"one ", "two ", "red ", "green ", "blue "};
    std::string s;
    for (size_t i = 0; s.size() < length; i++)
        s += cycle[i % 5];
    s.resize(length);
    while (!s.empty() && s.back() != ' ')
        s.pop_back();
    s.resize(length, ' ');
    return s;
}

TEST(CheckControl, ChunksOfPlainAndRichControls)
{
    CheckFixture f;
    const size_t max = 196605;
    /* plain: a misspelling early on, and one across the chunk's end */
    std::string plain = "wrld " + cleanText(max - 1 - 5) + "lanterm one";
    ORTO_HWND edit = ORTO_CreateTextControl("EDIT", plain.c_str());
    f.user.then(typeText(ChangeTo, "world"));
    f.user.then(click(Change));
    f.user.then(inspect(
        [&](ORTO_HWND) {
            uint32_t start = 0, end = 0;
            ORTO_SendMessage(edit, ORTO_EM_GETSEL, (uintptr_t)&start, (intptr_t)&end);
            EXPECT_EQ(start, max); /* the second run starts at the first one's new end */
        },
        click(Change)));
    EXPECT_EQ(ORTO_CheckCtrlDlg(nullptr, edit, 0), 0);
    EXPECT_EQ(windowText(edit), "world " + cleanText(max - 1 - 5) + "lantern one");
    EXPECT_EQ(f.user.captions.size(), 3u);
    ORTO_DestroyWindow(edit);

    /* rich, exactly one chunk long, its last word misspelled: cut before it */
    std::string rich = cleanText(max - 4) + "qrtz";
    ORTO_HWND control = ORTO_CreateTextControl("RICHEDIT", rich.c_str());
    f.user.acts.clear();
    f.user.next = 0;
    f.user.then(inspect([](ORTO_HWND d) { EXPECT_EQ(itemText(d, Word), "qrtz"); }, typeText(ChangeTo, "quartz")));
    f.user.then(click(Change));
    EXPECT_EQ(ORTO_CheckCtrlDlg(nullptr, control, 0), 0);
    EXPECT_EQ(windowText(control), cleanText(max - 4) + "quartz");
    ORTO_DestroyWindow(control);
    EXPECT_EQ(ORTO_CheckCtrlDlg(nullptr, control, 0), ORTO_GeneralError); /* destroyed */
}

TEST(CheckControl, ASelectionThatGrowsIsSetBackAsItWas)
{
    CheckFixture f;
    ORTO_HWND edit = ORTO_CreateTextControl("Edit", "wrld one wrld two wrld");
    ORTO_SendMessage(edit, ORTO_EM_SETSEL, 9, 17);
    f.user.then(typeText(ChangeTo, "world"));
    f.user.then(click(Change));
    EXPECT_EQ(ORTO_CheckCtrlDlg(nullptr, edit, 1), 0);
    EXPECT_EQ(windowText(edit), "wrld one world two wrld");
    uint32_t start = 0, end = 0;
    ORTO_SendMessage(edit, ORTO_EM_GETSEL, (uintptr_t)&start, (intptr_t)&end);
    EXPECT_EQ((std::vector<uint32_t>{start, end}), (std::vector<uint32_t>{9, 17}));
    ORTO_DestroyWindow(edit);
}

TEST(CheckPlacement, LockedOriginFullAreaAndNearTheRightEdge)
{
    CheckFixture f;
    struct {
        int32_t control[4];       /* x, y, width, height */
        bool origin;
        int32_t expected[2];
        bool lockShown;
    } cases[] = {
        {{0, 0, 80, 3}, true, {10, 20}, true},   /* wherever the control is */
        {{0, 0, 80, 24}, false, {12, 9}, false}, /* all places fail: the bottom right corner */
        {{70, 0, 10, 3}, false, {12, 3}, false}, /* below, pulled left to xMax */
        {{0, 12, 80, 12}, false, {12, 0}, false}, /* no room around: the corner covering least */
    };
    for (const auto &c : cases) {
        if (c.origin)
            ORTO_SetDialogOrigin(10, 20);
        ORTO_HWND edit = ORTO_CreateTextControl("EDIT", "wrld");
        ORTO_MoveWindow(edit, c.control[0], c.control[1], c.control[2], c.control[3]);
        int32_t rect[4] = {0, 0, 0, 0};
        bool lock = false;
        f.user.acts.clear();
        f.user.next = 0;
        f.user.then(inspect(
            [&](ORTO_HWND d) {
                ORTO_GetWindowRect(d, rect);
                lock = checked(d, LockPos);
            },
            c.origin ? click(LockPos) : closeDialog()));
        f.user.then(closeDialog());
        EXPECT_EQ(ORTO_CheckCtrlDlg(nullptr, edit, 0), ORTO_Cancelled);
        EXPECT_EQ((std::vector<int32_t>{rect[0], rect[1]}), (std::vector<int32_t>{c.expected[0], c.expected[1]}));
        EXPECT_EQ(rect[3] - rect[1], 15); /* cut off above the context pane */
        EXPECT_EQ(lock, c.lockShown);
        ORTO_DestroyWindow(edit);
    }
}

TEST(CheckDialog, OptionsFromTheDialogButNotBesideIt)
{
    CheckFixture f;
    f.user.then(inspect([](ORTO_HWND) { EXPECT_EQ(ORTO_OptionsDlg(nullptr), ORTO_DialogActive); }, click(Options)));
    f.user.then(click(1042)); /* Phonetic suggestions, in the nested Options dialog */
    f.user.then(click(ORTO_IDOK));
    f.user.then(inspect([](ORTO_HWND d) { EXPECT_EQ(itemText(d, Word), "wrld"); }, click(1055)));
    f.user.then(closeDialog());
    std::string text = "wrld";
    EXPECT_EQ(f.check(&text), ORTO_Cancelled);
    EXPECT_EQ(ORTO_GetOption(ORTO_GetSid(), ORTO_PhoneticSuggestions), 1);
    EXPECT_EQ(f.user.helpCalls, (std::vector<std::pair<std::string, uint32_t>>{{"orto.hlp", 100}}));
}
