/* The Options dialog, driven by a scripted user through the exported calls,
 * with the store read back after OK and Cancel. */
#include <gtest/gtest.h>

#include "support/dialog_fixture.h"
#include "ui/window.h"

enum { Capped = 1021, Digits = 1025, Doubled = 1022, AllCaps = 1028, CaseSens = 1041, Phonetic = 1042,
       Split = 1043, Mixed = 1044, Typo = 1045, AutoCorr = 1050, Fast = 1051, Moderate = 1052, Slow = 1053 };

TEST(OptionsDialog, DepthShowsAsRadioButtonAndOkStoresItsStep)
{
    struct {
        int16_t depth;
        int32_t shown;
        const char *afterOk;
    } cases[] = {{0, Fast, "25"}, {33, Fast, "25"}, {34, Moderate, "50"}, {40, Moderate, "50"},
                 {67, Moderate, "50"}, {68, Slow, "75"}, {100, Slow, "75"}};
    for (const auto &c : cases) {
        DialogFixture f;
        ORTO_SetMinSuggestDepth(c.depth);
        f.user.then(inspect(
            [&](ORTO_HWND d) {
                for (int32_t id : {Fast, Moderate, Slow})
                    EXPECT_EQ(checked(d, id), id == c.shown) << c.depth << " " << id;
            },
            click(ORTO_IDOK)));
        EXPECT_EQ(ORTO_OptionsDlg(nullptr), 0);
        EXPECT_EQ(f.key("MinSuggestDepth"), c.afterOk);
        EXPECT_EQ(ORTO_GetMinSuggestDepth(), atoi(c.afterOk));
    }
}

TEST(OptionsDialog, OkAppliesAndWritesEveryBoxCancelChangesNothing)
{
    DialogFixture f;
    int16_t sid = ORTO_GetSid();
    ORTO_SetMinSuggestDepth(40);
    f.user.then(click(Phonetic));
    f.user.then(click(Capped));
    f.user.then(click(AutoCorr));
    f.user.then(click(ORTO_IDCANCEL));
    EXPECT_EQ(ORTO_OptionsDlg(nullptr), ORTO_Cancelled);
    EXPECT_EQ(ORTO_GetOption(sid, ORTO_PhoneticSuggestions), 0);
    EXPECT_EQ(f.key("PhoneticSuggestions"), "<missing>");
    EXPECT_EQ(f.key("MinSuggestDepth"), "40");

    f.user.acts.clear();
    f.user.next = 0;
    f.user.then(click(Phonetic));
    f.user.then(click(Capped));
    f.user.then(click(AutoCorr)); /* on at the start of the session: now off */
    f.user.then(click(Slow));
    f.user.then(inspect([](ORTO_HWND d) { EXPECT_FALSE(checked(d, Moderate)); }, click(1055)));
    f.user.then(click(ORTO_IDOK));
    EXPECT_EQ(ORTO_OptionsDlg(nullptr), 0);
    ASSERT_EQ(f.user.helpCalls.size(), 1u);
    EXPECT_EQ(f.user.helpCalls[0], (std::pair<std::string, uint32_t>{"orto.hlp", 200}));
    EXPECT_EQ(ORTO_GetOption(sid, ORTO_PhoneticSuggestions), 1);
    EXPECT_EQ(ORTO_GetOption(sid, ORTO_IgnoreCappedWords), 1);
    struct {
        const char *key, *value;
    } keys[] = {{"IgnoreCappedWords", "1"}, {"IgnoreAllCapsWords", "0"}, {"IgnoreMixedDigits", "0"},
                {"IgnoreMixedCase", "0"}, {"CaseSensitive", "1"}, {"ReportDoubledWords", "1"},
                {"SuggestSplitWords", "1"}, {"PhoneticSuggestions", "1"}, {"TypographicalSuggestions", "1"},
                {"AutoCorrect", "0"}, {"MinSuggestDepth", "75"}};
    for (const auto &k : keys)
        EXPECT_EQ(f.key(k.key), k.value) << k.key;
    EXPECT_EQ(ORTO_GetAutoCorrect(), 0);
}

TEST(OptionsDialog, BusyFontAndAHostTemplate)
{
    DialogFixture f("[ORTO]\nFontBold=1\n");
    busyFlag = 1;
    EXPECT_EQ(ORTO_OptionsDlg(nullptr), ORTO_DialogActive);
    busyFlag = 0;

    int32_t weight = 0;
    f.user.then(inspect([&](ORTO_HWND d) { weight = fontWeightOf(ORTO_GetDlgItem(d, Capped)); }, closeDialog()));
    EXPECT_EQ(ORTO_OptionsDlg(nullptr), ORTO_Cancelled);
    EXPECT_EQ(weight, FW_BOLD); /* FontBold keeps the template's font */

    /* same ids, other labels and places */
    char error[128];
    ORTO_HINSTANCE host = ORTO_LoadTemplates("MyOpts DIALOGEX 0, 0, 100, 60\nCAPTION \"Mine\"\n"
                                             "FONT 8, \"Helv\"\nBEGIN\n"
                                             " AUTOCHECKBOX \"Proper nouns\", 1021, 0, 0, 90, 8\n"
                                             " AUTORADIOBUTTON \"Quick\", 1051, 0, 10, 40, 8\n"
                                             " AUTORADIOBUTTON \"Thorough\", 1053, 0, 20, 40, 8\n"
                                             " DEFPUSHBUTTON \"Fine\", 1, 0, 40, 30, 14\n"
                                             " PUSHBUTTON \"No\", 2, 40, 40, 30, 14\nEND\n",
                                             error, sizeof error);
    ASSERT_NE(host, nullptr) << error;
    f.user.acts.clear();
    f.user.next = 0;
    f.user.then(click(1021));
    f.user.then(click(1053));
    f.user.then(click(ORTO_IDOK));
    EXPECT_EQ(ORTO_OptionsDlgTmplt(nullptr, host, "myopts"), 0);
    EXPECT_EQ(f.user.captions.back(), "Mine");
    EXPECT_EQ(f.key("IgnoreCappedWords"), "1");
    EXPECT_EQ(f.key("MinSuggestDepth"), "75");
    ORTO_FreeTemplates(host);
}
