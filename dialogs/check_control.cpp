/*
 * check_control.cpp -- Check Spelling over a text control.  The control
 * stays the text's home: the text is copied out in chunks of at most
 * MaxChunkLen characters, each chunk is a block for one run of the
 * dialog, and the control is that run's mirror, so every change is made in
 * it as it happens.  The chunk's copy is thrown away after its run.
 *
 * A plain edit control is read whole at each pass and its chunks get room
 * to grow by their length; a rich edit control is read a chunk's range at
 * a time into a block of RichBlockSize.  A chunk is cut before a word that
 * would run over its end; a run of word characters as long as a chunk is
 * split at the limit instead, so the walk always moves on.
 */
#include <stdlib.h>
#include <string.h>

#include "dialogs/check_dialog.h"
#include "engine/charclass.h"
#include "host/dialog_services.h"
#include "host/shared_session.h"
#include "orto.h"

enum : u32 {
    MaxChunkLen = 196605,         /* 0x2FFFD */
    RichBlockSize = 245756        /* MaxChunkLen and a quarter of it */
};

/* The room a plain control's chunk has to grow in one run. */
static u32 plainBlockSize(u32 length)
{
    u32 room = (length & ~3u) <= 4096 ? 1024 : length / 4;
    return length + room;
}

/* The length of a full chunk cut before the word that runs over its end;
 * the whole chunk if it is one run of word characters. */
static u32 cutBeforeWord(const char *chunk, u32 length)
{
    u32 cut = length;
    while (cut > 0 && IsWordChar((unsigned char)chunk[cut - 1]))
        cut--;
    return cut > 0 ? cut : length;
}

static int16_t checkPlainEdit(CheckDlgParams *params, HWND parent, int16_t selectionOnly)
{
    HWND ctrl = params->mirrorCtrl;
    u32 end = (u32)GetWindowTextLengthA(ctrl);
    u32 selStart = 0, selEnd = 0;
    bool selection = false;
    int16_t status = 0;
    params->mirrorBase = 0;
    if (selectionOnly) {
        uint32_t packed = (uint32_t)SendMessageA(ctrl, ORTO_EM_GETSEL, 0, 0);
        u32 start = packed & 0xFFFF, stop = packed >> 16;
        if (stop > start) {
            selStart = start;
            selEnd = stop;
            selection = true;
            params->mirrorBase = selStart;
        }
    }
    for (;;) {
        u32 textLength = (u32)GetWindowTextLengthA(ctrl);
        char *text = (char *)malloc((size_t)textLength + 1);
        if (!text) {
            dialogLog("Out of memory");
            return ORTO_OutOfMemory;
        }
        GetWindowTextA(ctrl, text, (int32_t)textLength + 1);
        u32 base = params->mirrorBase < textLength ? params->mirrorBase : textLength;
        u32 length = selection ? selEnd - selStart : end - params->mirrorBase;
        if (length > MaxChunkLen)
            length = MaxChunkLen;
        if (length > textLength - base) /* the control changed under the walk */
            length = textLength - base;
        u32 blockSize = plainBlockSize(length);
        char *chunk = (char *)malloc(blockSize ? blockSize : 1);
        if (!chunk) {
            free(text);
            dialogLog("Out of memory");
            return ORTO_OutOfMemory;
        }
        memcpy(chunk, text + base, length);
        if (length == MaxChunkLen && base + length < textLength && IsWordChar((unsigned char)text[base + length]))
            length = cutBeforeWord(chunk, length);
        free(text);
        i32 result = runCheckDialog(params, parent, chunk, length, blockSize);
        free(chunk);
        if (result < 0) {
            status = (int16_t)result;
            break;
        }
        end = end + (u32)result - length;
        params->mirrorBase += (u32)result;
        if (selection || params->mirrorBase >= end || (result == 0 && length == 0))
            break;
    }
    SendMessageA(ctrl, ORTO_EM_SETSEL, selStart, (intptr_t)selEnd);
    return status;
}

static int16_t checkRichEdit(CheckDlgParams *params, HWND parent, int16_t selectionOnly)
{
    HWND ctrl = params->mirrorCtrl;
    int16_t status = 0;
    ORTO_CHARRANGE selection = {0, 0};
    bool hasSelection = false;
    params->mirrorBase = 0;
    if (selectionOnly) {
        SendMessageA(ctrl, ORTO_EM_EXGETSEL, 0, (intptr_t)&selection);
        if (selection.cpMax > selection.cpMin) {
            params->mirrorBase = (u32)selection.cpMin;
            hasSelection = true;
        }
    }
    bool last = false;
    while (!last) {
        char *buffer = (char *)malloc(RichBlockSize);
        if (!buffer) {
            dialogLog("Out of memory");
            return ORTO_OutOfMemory;
        }
        int64_t rangeEnd = (int64_t)params->mirrorBase + MaxChunkLen;
        if (hasSelection && selection.cpMax < rangeEnd)
            rangeEnd = selection.cpMax;
        if (rangeEnd < params->mirrorBase)
            rangeEnd = params->mirrorBase;
        ORTO_TEXTRANGE range = {{(int32_t)params->mirrorBase, (int32_t)rangeEnd}, buffer};
        u32 length = (u32)SendMessageA(ctrl, ORTO_EM_GETTEXTRANGE, 0, (intptr_t)&range);
        if (length < MaxChunkLen)
            last = true;
        else
            length = cutBeforeWord(buffer, length);
        i32 result = runCheckDialog(params, parent, buffer, length, RichBlockSize);
        free(buffer);
        if (result < 0) {
            status = (int16_t)result;
            break;
        }
        params->mirrorBase += (u32)result;
    }
    if (hasSelection)
        SendMessageA(ctrl, ORTO_EM_EXSETSEL, 0, (intptr_t)&selection);
    return status;
}

extern "C" ORTO_API int16_t ORTO_CheckCtrlDlgTmplt(ORTO_HWND parent, ORTO_HWND ctrl, int16_t selectionOnly,
                                                   ORTO_HINSTANCE instance, const char *checkDlgTemplate,
                                                   const char *editLexDlgTemplate, const char *optionsDlgTemplate,
                                                   const char *newLexDlgTemplate)
{
    if (busyFlag)
        return ORTO_DialogActive;
    CheckDlgParams params = {-1, minSuggestDepth, ctrl, 0, 0, instance, checkDlgTemplate,
                             optionsDlgTemplate, editLexDlgTemplate, newLexDlgTemplate};
    char className[9];
    if (GetClassNameA(ctrl, className, sizeof className) == 0 || windowKindOfClass(className) != KindEdit) {
        dialogLog("ORTO_CheckCtrlDlg: not a text control");
        return ORTO_GeneralError;
    }
    i16 rc = startSharedSession();
    if (rc < 0)
        return rc;
    params.suggestDepth = minSuggestDepth;
    wordsChecked = wordsChanged = errorsFound = 0;
    busyFlag = 1;
    bool rich = strcmp(className, "RICHED16") == 0 || strcmp(className, "RICHEDIT") == 0;
    int16_t result = rich ? checkRichEdit(&params, parent, selectionOnly)
                          : checkPlainEdit(&params, parent, selectionOnly);
    busyFlag = 0;
    return result;
}

extern "C" ORTO_API int16_t ORTO_CheckCtrlDlg(ORTO_HWND parent, ORTO_HWND ctrl, int16_t selectionOnly)
{
    return ORTO_CheckCtrlDlgTmplt(parent, ctrl, selectionOnly, nullptr, nullptr, nullptr, nullptr, nullptr);
}
