/*
 * options_dialog.cpp -- the Options dialog: the options of the shared
 * session as check boxes, the search depth of the dialogs as three radio
 * buttons.  Nothing takes effect before OK, which applies each choice to
 * the session and writes it to the store at once.
 */
#include "dialogs/dialog_look.h"
#include "host/dialog_services.h"
#include "host/profile.h"
#include "host/shared_session.h"
#include "orto.h"
#include "orto_ui.h"

/* The check boxes, in the order the dialog sets and reads them.  A bit of
 * 0 stands for the dialogs' own autoCorrect flag. */
struct OptionBox {
    int32_t id;
    uint32_t bit;
    const char *key;
};

static const OptionBox optionBoxes[] = {
    {1021, ORTO_IgnoreCappedWords, "IgnoreCappedWords"},
    {1028, ORTO_IgnoreAllCapsWords, "IgnoreAllCapsWords"},
    {1025, ORTO_IgnoreMixedDigits, "IgnoreMixedDigits"},
    {1044, ORTO_IgnoreMixedCase, "IgnoreMixedCase"},
    {1041, ORTO_CaseSensitive, "CaseSensitive"},
    {1022, ORTO_ReportDoubledWords, "ReportDoubledWords"},
    {1043, ORTO_SuggestSplitWords, "SuggestSplitWords"},
    {1042, ORTO_PhoneticSuggestions, "PhoneticSuggestions"},
    {1045, ORTO_TypographicalSuggestions, "TypographicalSuggestions"},
    {1050, 0, "AutoCorrect"},
};

enum { FastButton = 1051, ModerateButton = 1052, SlowButton = 1053, HelpButton = 1055 };
enum { OptionsHelpTopic = 200 };

static HBRUSH optionsBrush;   /* made at each opening */
static HFONT optionsFont;     /* the normal-weight font of this opening, if made */

static void setCheck(HWND dialog, int32_t id, bool on)
{
    SendDlgItemMessageA(dialog, id, ORTO_BM_SETCHECK, on ? ORTO_BST_CHECKED : ORTO_BST_UNCHECKED, 0);
}

static bool isChecked(HWND dialog, int32_t id)
{
    return SendDlgItemMessageA(dialog, id, ORTO_BM_GETCHECK, 0, 0) == ORTO_BST_CHECKED;
}

static void openOptionsDialog(HWND dialog)
{
    i16 depth = minSuggestDepth;
    for (const OptionBox &box : optionBoxes)
        setCheck(dialog, box.id, box.bit ? ORTO_GetOption(sharedSid, box.bit) > 0 : autoCorrect != 0);
    setCheck(dialog, FastButton, depth < 34);
    setCheck(dialog, ModerateButton, depth >= 34 && depth < 68);
    setCheck(dialog, SlowButton, depth >= 68);
    optionsFont = applyNormalWeightFont(dialog);
    optionsBrush = makeFaceBrush();
}

static void endOptionsDialog(HWND dialog, intptr_t code)
{
    DeleteObject(optionsBrush);
    optionsBrush = nullptr;
    if (optionsFont)
        DeleteObject(optionsFont);
    optionsFont = nullptr;
    EndDialog(dialog, code);
}

static void applyOptions(HWND dialog)
{
    for (const OptionBox &box : optionBoxes) {
        int state = isChecked(dialog, box.id) ? 1 : 0;
        if (box.bit)
            ORTO_SetOption(sharedSid, box.bit, (uint32_t)state);
        else
            autoCorrect = state;
        Profile_SetInt(box.key, ProfileUser, state);
    }
    i16 depth = isChecked(dialog, FastButton) ? 25 : isChecked(dialog, ModerateButton) ? 50 : 75;
    minSuggestDepth = depth;
    Profile_SetInt("MinSuggestDepth", ProfileUser, depth);
}

extern "C" ORTO_API intptr_t OptionsDlgProc(ORTO_HWND dialog, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    (void)lParam;
    if (message == ORTO_WM_INITDIALOG) {
        openOptionsDialog(dialog);
        return 1;
    }
    if (isColourRequest(message))
        return answerColourRequest(wParam, optionsBrush);
    if (message != ORTO_WM_COMMAND)
        return 0;
    switch (wParam & 0xFFFF) {
    case ORTO_IDOK:
        applyOptions(dialog);
        endOptionsDialog(dialog, 0);
        break;
    case ORTO_IDCANCEL:
        endOptionsDialog(dialog, ORTO_Cancelled);
        break;
    case HelpButton:
        WinHelpA(dialog, helpFile, HELP_CONTEXT, OptionsHelpTopic);
        break;
    default:
        break;
    }
    return 1;
}

extern "C" ORTO_API int32_t ORTO_OptionsDlgTmplt(ORTO_HWND owner, ORTO_HINSTANCE instance, const char *templateName)
{
    if (busyFlag)
        return ORTO_DialogActive;
    i16 rc = startSharedSession();
    if (rc < 0)
        return rc;
    if (templateName)
        return (int32_t)DialogBoxParamA(instance, templateName, owner, OptionsDlgProc, 0);
    return (int32_t)DialogBoxParamA(moduleHandle(), "OptionsDlg", owner, OptionsDlgProc, 0);
}

extern "C" ORTO_API int32_t ORTO_OptionsDlg(ORTO_HWND owner)
{
    return ORTO_OptionsDlgTmplt(owner, moduleHandle(), "OptionsDlg");
}
