/*
 * list_control.cpp -- list boxes and combo boxes.  A combo box is a field
 * over a list of the same kind as a list box's, so both message families
 * run on the same list routines; only the numbers differ.
 *
 * Each entry has a number beside it (item data).  The selection is an
 * index or -1.  Searches are case-blind and start behind the index given,
 * wrapping to the start; an empty text finds nothing.
 */
#include <string.h>
#include <strings.h>

#include "ui/controls.h"

enum { ListError = -1 };

static intptr_t insertItem(Window *w, intptr_t index, const char *text, bool sorted)
{
    ListItem item{text ? text : "", 0};
    intptr_t count = (intptr_t)w->items.size();
    if (sorted) {
        index = 0;
        while (index < count && strcasecmp(w->items[(size_t)index].text.c_str(), item.text.c_str()) <= 0)
            index++;
    } else if (index < 0 || index > count) {
        if (index != -1)
            return ListError;
        index = count;
    }
    w->items.insert(w->items.begin() + index, item);
    if (w->curSel >= index)
        w->curSel++;
    return index;
}

static intptr_t deleteItem(Window *w, intptr_t index)
{
    if (index < 0 || index >= (intptr_t)w->items.size())
        return ListError;
    w->items.erase(w->items.begin() + index);
    if (w->curSel == index)
        w->curSel = -1;
    else if (w->curSel > index)
        w->curSel--;
    if (w->topIndex >= (int32_t)w->items.size())
        w->topIndex = w->items.empty() ? 0 : (int32_t)w->items.size() - 1;
    return (intptr_t)w->items.size();
}

static void resetItems(Window *w)
{
    w->items.clear();
    w->curSel = -1;
    w->topIndex = 0;
}

static intptr_t itemText(Window *w, intptr_t index, char *buffer)
{
    if (index < 0 || index >= (intptr_t)w->items.size())
        return ListError;
    const std::string &text = w->items[(size_t)index].text;
    if (buffer) {
        memcpy(buffer, text.c_str(), text.size() + 1);
    }
    return (intptr_t)text.size();
}

static intptr_t findItem(Window *w, intptr_t after, const char *text, bool exact)
{
    size_t length = text ? strlen(text) : 0;
    intptr_t count = (intptr_t)w->items.size();
    if (length == 0 || count == 0)
        return ListError;
    intptr_t start = (after < 0 || after >= count) ? 0 : after + 1;
    for (intptr_t k = 0; k < count; k++) {
        const std::string &entry = w->items[(size_t)((start + k) % count)].text;
        bool match = exact ? strcasecmp(entry.c_str(), text) == 0
                           : entry.size() >= length && strncasecmp(entry.c_str(), text, length) == 0;
        if (match)
            return (start + k) % count;
    }
    return ListError;
}

static intptr_t setSelection(Window *w, intptr_t index)
{
    if (index < 0 || index >= (intptr_t)w->items.size()) {
        w->curSel = -1;
        return ListError;
    }
    w->curSel = (int32_t)index;
    if (w->curSel < w->topIndex)
        w->topIndex = w->curSel;
    return index;
}

static intptr_t itemData(Window *w, intptr_t index)
{
    if (index < 0 || index >= (intptr_t)w->items.size())
        return ListError;
    return w->items[(size_t)index].data;
}

static intptr_t setItemData(Window *w, intptr_t index, intptr_t data)
{
    if (index < 0 || index >= (intptr_t)w->items.size())
        return ListError;
    w->items[(size_t)index].data = data;
    return 0;
}

intptr_t listBoxMessage(Window *w, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    intptr_t index = (intptr_t)wParam;
    switch (message) {
    case ORTO_LB_ADDSTRING:
        return insertItem(w, -1, (const char *)lParam, (w->style & LBS_SORT) != 0);
    case ORTO_LB_INSERTSTRING:
        return insertItem(w, index, (const char *)lParam, false);
    case ORTO_LB_DELETESTRING:
        return deleteItem(w, index);
    case ORTO_LB_RESETCONTENT:
        resetItems(w);
        return 0;
    case ORTO_LB_SETCURSEL:
        return setSelection(w, index);
    case ORTO_LB_GETCURSEL:
        return w->curSel;
    case ORTO_LB_GETTEXT:
        return itemText(w, index, (char *)lParam);
    case ORTO_LB_GETTEXTLEN:
        return itemText(w, index, nullptr);
    case ORTO_LB_GETCOUNT:
        return (intptr_t)w->items.size();
    case ORTO_LB_GETTOPINDEX:
        return w->topIndex;
    case ORTO_LB_SETTOPINDEX:
        if (index < 0 || index >= (intptr_t)w->items.size())
            return ListError;
        w->topIndex = (int32_t)index;
        return 0;
    case ORTO_LB_FINDSTRING:
        return findItem(w, index, (const char *)lParam, false);
    case ORTO_LB_FINDSTRINGEXACT:
        return findItem(w, index, (const char *)lParam, true);
    case ORTO_LB_GETITEMDATA:
        return itemData(w, index);
    case ORTO_LB_SETITEMDATA:
        return setItemData(w, index, lParam);
    default:
        return 0;
    }
}

/* The field of a combo box shows the selected entry, or nothing. */
static void showSelectionInField(Window *w)
{
    w->text = w->curSel >= 0 ? w->items[(size_t)w->curSel].text : std::string();
}

intptr_t comboBoxMessage(Window *w, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    intptr_t index = (intptr_t)wParam;
    switch (message) {
    case ORTO_CB_ADDSTRING:
        return insertItem(w, -1, (const char *)lParam, (w->style & CBS_SORT) != 0);
    case ORTO_CB_INSERTSTRING:
        return insertItem(w, index, (const char *)lParam, false);
    case ORTO_CB_DELETESTRING:
        return deleteItem(w, index);
    case ORTO_CB_RESETCONTENT:
        resetItems(w);
        w->text.clear();
        return 0;
    case ORTO_CB_SETCURSEL: {
        intptr_t r = setSelection(w, index);
        showSelectionInField(w);
        return r;
    }
    case ORTO_CB_SELECTSTRING: {
        intptr_t found = findItem(w, index, (const char *)lParam, false);
        if (found == ListError)
            return ListError;
        setSelection(w, found);
        showSelectionInField(w);
        return found;
    }
    case ORTO_CB_GETCURSEL:
        return w->curSel;
    case ORTO_CB_GETLBTEXT:
        return itemText(w, index, (char *)lParam);
    case ORTO_CB_GETLBTEXTLEN:
        return itemText(w, index, nullptr);
    case ORTO_CB_GETCOUNT:
        return (intptr_t)w->items.size();
    case ORTO_CB_FINDSTRING:
        return findItem(w, index, (const char *)lParam, false);
    case ORTO_CB_FINDSTRINGEXACT:
        return findItem(w, index, (const char *)lParam, true);
    case ORTO_CB_GETITEMDATA:
        return itemData(w, index);
    case ORTO_CB_SETITEMDATA:
        return setItemData(w, index, lParam);
    case ORTO_CB_SHOWDROPDOWN:
        w->dropped = wParam != 0 && (w->style & CBS_TYPEMASK) != CBS_SIMPLE;
        return 1;
    case ORTO_CB_GETDROPPEDSTATE:
        return w->dropped;
    case ORTO_CB_LIMITTEXT:
        w->textLimit = (uint32_t)wParam;
        return 1;
    default:
        return 0;
    }
}
