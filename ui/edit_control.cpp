/*
 * edit_control.cpp -- text controls: plain and rich edit controls answer
 * the same messages, so a host may give either kind to the dialogs.
 *
 * The text is a byte string of any length.  The selection is a pair of
 * positions; a caret is a selection of no characters.  A text limit bounds
 * only EM_REPLACESEL, which takes what fits, as the system's controls do:
 * WM_SETTEXT puts any text in.  EN_CHANGE goes to the dialog when a
 * one-line field changes, and for EM_REPLACESEL in any field.
 */
#include <string.h>

#include "ui/controls.h"

enum : uint32_t { NoLimit = 0x7FFFFFFEu };

static uint32_t clampPosition(Window *w, int64_t position)
{
    if (position < 0 || position > (int64_t)w->text.size())
        return (uint32_t)w->text.size();
    return (uint32_t)position;
}

/* Sets the selection as EM_SETSEL and EM_EXSETSEL read their numbers: a
 * start of -1 keeps only the caret, an end of -1 (or any negative) is the
 * end of the text, and the pair is put in order. */
static void setSelection(Window *w, int64_t start, int64_t end)
{
    if (start == -1) {
        w->selStart = w->selEnd;
        return;
    }
    uint32_t s = clampPosition(w, start), e = clampPosition(w, end);
    if (s > e) {
        uint32_t t = s;
        s = e;
        e = t;
    }
    w->selStart = s;
    w->selEnd = e;
}

intptr_t editSetText(Window *w, const char *text)
{
    w->text = text ? text : "";
    w->selStart = w->selEnd = 0;
    w->scrollTo = 0;
    if (!(w->style & ES_MULTILINE))
        notifyParent(w, ORTO_EN_CHANGE);
    return 1;
}

static intptr_t replaceSelection(Window *w, const char *text)
{
    size_t length = text ? strlen(text) : 0;
    size_t kept = w->text.size() - (w->selEnd - w->selStart);
    uint32_t limit = w->textLimit ? w->textLimit : NoLimit;
    if (kept >= limit)
        length = 0;
    else if (kept + length > limit)
        length = limit - kept;
    w->text.replace(w->selStart, w->selEnd - w->selStart, text ? text : "", length);
    w->selStart = w->selEnd = w->selStart + (uint32_t)length;
    notifyParent(w, ORTO_EN_CHANGE);
    return 0;
}

intptr_t editMessage(Window *w, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    switch (message) {
    case ORTO_EM_GETSEL: {
        if (wParam)
            *(uint32_t *)wParam = w->selStart;
        if (lParam)
            *(uint32_t *)lParam = w->selEnd;
        if (w->selStart > 0xFFFF || w->selEnd > 0xFFFF)
            return -1;
        return (intptr_t)(w->selStart | (w->selEnd << 16));
    }
    case ORTO_EM_SETSEL:
        setSelection(w, (int32_t)wParam, (int32_t)lParam);
        return 1;
    case ORTO_EM_EXGETSEL:
        if (lParam) {
            ORTO_CHARRANGE *range = (ORTO_CHARRANGE *)lParam;
            range->cpMin = (int32_t)w->selStart;
            range->cpMax = (int32_t)w->selEnd;
        }
        return 0;
    case ORTO_EM_EXSETSEL:
        if (lParam) {
            const ORTO_CHARRANGE *range = (const ORTO_CHARRANGE *)lParam;
            setSelection(w, range->cpMin, range->cpMax);
        }
        return (intptr_t)w->selEnd;
    case ORTO_EM_GETTEXTRANGE: {
        ORTO_TEXTRANGE *range = (ORTO_TEXTRANGE *)lParam;
        if (!range || !range->lpstrText)
            return 0;
        uint32_t start = clampPosition(w, range->chrg.cpMin);
        uint32_t end = clampPosition(w, range->chrg.cpMax);
        if (end < start)
            end = start;
        memcpy(range->lpstrText, w->text.data() + start, end - start);
        range->lpstrText[end - start] = '\0';
        return (intptr_t)(end - start);
    }
    case ORTO_EM_REPLACESEL:
        return replaceSelection(w, (const char *)lParam);
    case ORTO_EM_LIMITTEXT:
        w->textLimit = (uint32_t)wParam;
        return 0;
    case ORTO_EM_GETLIMITTEXT:
        return w->textLimit ? w->textLimit : NoLimit;
    case ORTO_EM_SCROLLCARET:
        w->scrollTo = w->selStart;
        return 1;
    case ORTO_EM_SETREADONLY:
        if (wParam)
            w->style |= ES_READONLY;
        else
            w->style &= ~(uint32_t)ES_READONLY;
        return 1;
    default:
        return 0;
    }
}
