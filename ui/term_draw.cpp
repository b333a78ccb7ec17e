/*
 * term_draw.cpp -- the screen drawn from the window records: the document
 * panes (a host's own text controls) at the back, then each running
 * dialog, the innermost on top, each control in its rectangle.
 *
 * A dialog's colour requests are sent to it as it is drawn, as the system
 * sends them; a brush of the button-face colour is the dialog face.  The
 * weight of a control's font shows: bold above 600, normal below.
 */
#define NCURSES_WIDECHAR 1
#include <ncursesw/curses.h>

#include <string.h>
#include <wchar.h>

#include <algorithm>
#include <vector>

#include "ui/term.h"

RECT screenRect(Window *w)
{
    RECT r;
    GetWindowRect(w->handle, &r);
    return r;
}

bool takesFocus(Window *w)
{
    if (!(w->style & WS_VISIBLE) || (w->style & WS_DISABLED))
        return false;
    if (w->kind == KindStatic)
        return false;
    if (w->kind == KindButton && (w->style & BS_TYPEMASK) == BS_GROUPBOX)
        return false;
    return true;
}

static bool isGroupBox(Window *w)
{
    return w->kind == KindButton && (w->style & BS_TYPEMASK) == BS_GROUPBOX;
}

bool editsText(Window *w)
{
    if (w->kind == KindEdit)
        return !(w->style & ES_READONLY);
    return w->kind == KindComboBox && (w->style & CBS_TYPEMASK) != CBS_DROPDOWNLIST;
}

static void fill(int top, int left, int height, int width)
{
    for (int y = top; y < top + height; y++)
        if (y >= 0 && y < term.rows)
            for (int x = left; x < left + width; x++)
                if (x >= 0 && x < term.cols)
                    mvaddch(y, x, ' ');
}

/* The attributes in force.  A part drawn in other colours puts them back
 * when it is done: turning its colour pair off would leave no pair at all,
 * and the cells behind it in the terminal's own colours. */
struct Pen {
    attr_t attrs;
    short pair;
};

static Pen currentPen(void)
{
    Pen pen;
    attr_get(&pen.attrs, &pen.pair, nullptr);
    return pen;
}

static void usePen(Pen pen) { attr_set(pen.attrs, pen.pair, nullptr); }

void frame(int top, int left, int height, int width)
{
    if (height < 2 || width < 2)
        return;
    mvhline(top, left + 1, ACS_HLINE, width - 2);
    mvhline(top + height - 1, left + 1, ACS_HLINE, width - 2);
    mvvline(top + 1, left, ACS_VLINE, height - 2);
    mvvline(top + 1, left + width - 1, ACS_VLINE, height - 2);
    mvaddch(top, left, ACS_ULCORNER);
    mvaddch(top, left + width - 1, ACS_URCORNER);
    mvaddch(top + height - 1, left, ACS_LLCORNER);
    mvaddch(top + height - 1, left + width - 1, ACS_LRCORNER);
}

/* The character a host keeps behind its k-th stand-in byte, and the
 * cells it takes: 0 when there is none to show (the byte is shown). */
static int shownChar(const Window *w, size_t k, wchar_t *wc)
{
    if (k >= w->shownChars.size())
        return 0;
    mbstate_t state = mbstate_t();
    const std::string &utf8 = w->shownChars[k];
    if (mbrtowc(wc, utf8.c_str(), utf8.size(), &state) != utf8.size())
        return 0;
    int cells = wcwidth(*wc);
    return cells == 1 || cells == 2 ? cells : 0;
}

/* Cells of the byte at `i`, the k-th stand-in if it is one. */
static uint32_t cellsAt(const Window *w, uint32_t i, size_t k)
{
    wchar_t wc;
    int cells = (unsigned char)w->text[i] == w->shownByte && !w->shownChars.empty() ? shownChar(w, k, &wc) : 1;
    return cells > 0 ? (uint32_t)cells : 1;
}

/* Lines of a text as a pane shows them: cut at line ends and at the
 * width, in cells (a character a host keeps behind a stand-in byte may
 * take two).  Each entry is the position where a shown line starts. */
static void paneLines(const Window *w, int width, std::vector<uint32_t> *starts)
{
    const std::string &text = w->text;
    bool shown = !w->shownChars.empty();
    starts->clear();
    starts->push_back(0);
    uint32_t lineStart = 0, afterBlank = 0; /* where the line began, and behind its last blank */
    uint32_t lineCells = 0, blankCells = 0; /* cells from each of them up to here */
    size_t k = 0;                           /* stand-in bytes before this one */
    for (uint32_t i = 0; i < text.size(); i++) {
        char c = text[i];
        if (c == '\n' || (c == '\r' && (i + 1 >= text.size() || text[i + 1] != '\n'))) {
            starts->push_back(i + 1);
            lineStart = afterBlank = i + 1;
            lineCells = blankCells = 0;
            continue;
        }
        uint32_t cells = shown ? cellsAt(w, i, k) : 1;
        k += shown && (unsigned char)c == w->shownByte;
        if (i < lineStart)
            continue; /* the blank that hangs past the line before */
        lineCells += cells;
        blankCells += cells;
        if (c == ' ' || c == '\t') {
            afterBlank = i + 1;
            blankCells = 0;
        }
        bool more = i + 1 < text.size() && text[i + 1] != '\n' && text[i + 1] != '\r';
        if (c != '\r' && more && lineCells + (shown ? cellsAt(w, i + 1, k) : 1) > (uint32_t)width) {
            /* a long line breaks behind its last blank, else where it is full */
            bool hangs = text[i + 1] == ' ', atBlank = !hangs && afterBlank > lineStart;
            uint32_t cut = hangs ? i + 2 /* the blank hangs past the edge */ : atBlank ? afterBlank : i + 1;
            starts->push_back(cut);
            lineCells = atBlank ? blankCells : 0;
            blankCells = lineCells;
            lineStart = afterBlank = cut;
        }
    }
}

/* Draws the character a host keeps behind its k-th stand-in byte if it
 * fits in `room`; returns the cells used, 0 when the byte is to be shown
 * instead. */
static int putShownChar(Window *w, size_t k, int y, int x, int room)
{
    wchar_t wc[2] = {0, 0};
    int cells = shownChar(w, k, &wc[0]);
    if (cells == 0 || cells > room || y < 0 || y >= term.rows || x < 0 || x + cells > term.cols)
        return 0;
    mvaddwstr(y, x, wc);
    return cells;
}

/* A multi-line text: the selection on show and marked. */
static void drawPane(Window *w, RECT r, bool framed)
{
    int top = r.top, left = r.left, height = r.bottom - r.top, width = r.right - r.left;
    if (framed && height > 2 && width > 2) {
        frame(top, left, height, width);
        top++;
        left++;
        height -= 2;
        width -= 2;
    }
    if (height <= 0 || width <= 0)
        return;
    std::vector<uint32_t> starts;
    paneLines(w, width, &starts);
    uint32_t line = 0;
    while (line + 1 < starts.size() && starts[line + 1] <= w->selStart)
        line++;
    /* the selection a third of the way down, as an editor shows a find */
    uint32_t first = line > (uint32_t)height / 3 ? line - (uint32_t)height / 3 : 0;
    if (first + (uint32_t)height > starts.size())
        first = starts.size() > (uint32_t)height ? (uint32_t)(starts.size() - (size_t)height) : 0;
    /* the user's own scrolling holds until the selection moves */
    if (term.paneSelection[w->handle] != w->selStart) {
        term.paneSelection[w->handle] = w->selStart;
        term.paneShift[w->handle] = 0;
    }
    int64_t shifted = (int64_t)first + term.paneShift[w->handle];
    int64_t lastFirst = starts.size() > (size_t)height ? (int64_t)(starts.size() - (size_t)height) : 0;
    shifted = shifted < 0 ? 0 : shifted > lastFirst ? lastFirst : shifted;
    term.paneShift[w->handle] = (int32_t)(shifted - (int64_t)first);
    first = (uint32_t)shifted;
    term.scroll[w->handle] = first;
    Pen pen = currentPen();
    size_t standIns = 0; /* stand-in bytes before the one drawn */
    for (int row = 0; row < height; row++) {
        size_t k = first + (size_t)row;
        if (k >= starts.size())
            break;
        uint32_t from = starts[k], to = k + 1 < starts.size() ? starts[k + 1] : (uint32_t)w->text.size();
        if (row == 0 && !w->shownChars.empty())
            standIns = (size_t)std::count(w->text.begin(), w->text.begin() + from, (char)w->shownByte);
        for (uint32_t i = from, col = 0; i < to && col < (uint32_t)width; i++) {
            char c = w->text[i];
            if (c == '\n' || c == '\r')
                continue;
            if (i >= w->selStart && i < w->selEnd)
                attrset(COLOR_PAIR(PairSelected) | A_REVERSE);
            int cells = 0;
            if (!w->shownChars.empty() && (unsigned char)c == w->shownByte)
                cells = putShownChar(w, standIns++, top + row, left + (int)col, width - (int)col);
            if (cells == 0) {
                putText(top + row, left + (int)col, std::string(1, c == '\t' ? ' ' : c), 1);
                cells = 1;
            }
            usePen(pen);
            col += (uint32_t)cells;
        }
    }
}

/* How far a label may run: to the dialog's inside edge, unless another
 * control begins on its row before that.  A cell grid is coarser than the
 * proportional text the templates were laid out for, so a label uses the
 * room beside it rather than being cut. */
static int labelRoom(Window *d, Window *w, RECT r)
{
    RECT dr = screenRect(d);
    int limit = dr.right - 1;
    for (HWND h : d->children) {
        Window *c = windowOf(h);
        if (!c || c == w || !(c->style & WS_VISIBLE) || isGroupBox(c))
            continue;
        RECT cr = screenRect(c);
        if (cr.left >= r.right && cr.left < limit && cr.top <= r.top && cr.bottom > r.top)
            limit = cr.left - 1;
    }
    return limit - r.left > r.right - r.left ? limit - r.left : r.right - r.left;
}

/* Text cut to `width` cells, the cut shown by an ellipsis. */
static void putFitted(int y, int x, const std::string &text, int width, int underline)
{
    if ((int)text.size() <= width || width < 2) {
        putText(y, x, text, width, underline);
        return;
    }
    putText(y, x, text, width - 1, underline < width - 1 ? underline : -1);
    mvaddwstr(y, x + width - 1, L"\u2026");
}

static void drawLabel(Window *w, RECT r, int widthLimit = -1)
{
    char mnemonic;
    int at;
    std::string label = labelWithoutMarks(w->text, &mnemonic, &at);
    int width = widthLimit >= 0 ? widthLimit : r.right - r.left;
    int x = r.left;
    if (w->kind == KindStatic && (w->style & 3) == SS_RIGHT && (int)label.size() < width)
        x += width - (int)label.size();
    else if (w->kind == KindStatic && (w->style & 3) == SS_CENTER && (int)label.size() < width)
        x += (width - (int)label.size()) / 2;
    putFitted(r.top, x, label, width, at);
}

/* A one-line field, scrolled so that the caret shows; the field with the
 * focus in a colour of its own, beside the caret. */
static void drawField(Window *w, int y, int x, int width, bool focused)
{
    Pen pen = currentPen();
    attron(COLOR_PAIR(focused ? PairFocus : PairField));
    fill(y, x, 1, width);
    uint32_t caret = term.caret.count(w->handle) ? term.caret[w->handle] : (uint32_t)w->text.size();
    if (caret > w->text.size())
        caret = (uint32_t)w->text.size();
    uint32_t &first = term.scroll[w->handle];
    if (caret < first)
        first = caret;
    if (width > 0 && caret >= first + (uint32_t)width)
        first = caret - (uint32_t)width + 1;
    if (first > w->text.size())
        first = 0;
    putText(y, x, w->text.substr(first), width);
    usePen(pen);
    if (focused) {
        move(y, x + (int)(caret - first));
        curs_set(1);
    }
}

/* The selected entry stands out by colour whatever the font's weight: in
 * reverse where the list has the focus, else in the colour of a selection.
 * A list with the focus and no selection has its first row underlined. */
static void drawList(Window *w, int y, int x, int height, int width, bool focused)
{
    Pen pen = currentPen();
    attron(COLOR_PAIR(PairField));
    Pen field = currentPen();
    fill(y, x, height, width);
    int count = (int)w->items.size();
    if (w->curSel >= 0 && w->curSel < w->topIndex)
        w->topIndex = w->curSel;
    if (w->curSel >= 0 && height > 0 && w->curSel >= w->topIndex + height)
        w->topIndex = w->curSel - height + 1;
    int textWidth = width - (count > height ? 1 : 0);
    if (focused && w->curSel < 0 && height > 0) { /* the focus on a list without a selection */
        attron(A_UNDERLINE);
        fill(y, x, 1, textWidth);
        usePen(field);
    }
    for (int row = 0; row < height && w->topIndex + row < count; row++) {
        int index = w->topIndex + row;
        if (focused && w->curSel < 0 && row == 0)
            attron(A_UNDERLINE);
        if (index == w->curSel) {
            if (focused)
                attron(A_REVERSE);
            else
                attron(COLOR_PAIR(PairSelected));
            fill(y + row, x, 1, textWidth);
        }
        putText(y + row, x, w->items[(size_t)index].text, textWidth);
        usePen(field);
    }
    if (count > height && height > 0 && width > 1) {
        int mark = count > 1 ? (w->curSel < 0 ? 0 : w->curSel) * (height - 1) / (count - 1) : 0;
        for (int row = 0; row < height; row++)
            mvaddch(y + row, x + width - 1, row == mark ? ACS_CKBOARD : ACS_VLINE);
    }
    usePen(pen);
}

/* A push button's face: the label in brackets ("<...>" for the default
 * button) if they fit, else the label alone, else without a closing
 * "...", else cut. */
static std::string buttonFace(const std::string &label, bool isDefault, int width, int *shift)
{
    *shift = 1;
    if ((int)label.size() + 2 <= width)
        return (isDefault ? "<" : "[") + label + (isDefault ? ">" : "]");
    *shift = 0;
    if ((int)label.size() > width && label.size() > 3 && label.compare(label.size() - 3, 3, "...") == 0)
        return label.substr(0, label.size() - 3);
    return label;
}

static void drawButton(Window *d, Window *w, RECT r, bool focused)
{
    uint32_t type = w->style & BS_TYPEMASK;
    char mnemonic;
    int at;
    std::string label = labelWithoutMarks(w->text, &mnemonic, &at);
    if (type == BS_GROUPBOX) {
        frame(r.top, r.left, r.bottom - r.top, r.right - r.left);
        if (!label.empty())
            putText(r.top, r.left + 1, " " + label + " ", r.right - r.left - 2, at >= 0 ? at + 1 : -1);
        return;
    }
    if (type == BS_AUTOCHECKBOX || type == BS_CHECKBOX || type == BS_3STATE || type == BS_AUTO3STATE ||
        type == BS_AUTORADIOBUTTON || type == BS_RADIOBUTTON) {
        bool radio = type == BS_AUTORADIOBUTTON || type == BS_RADIOBUTTON;
        const wchar_t *mark = radio ? (w->check ? L"\u25C9" : L"\u25CB")
                                    : (w->check == 1 ? L"\u2612" : w->check == 2 ? L"\u25A3" : L"\u2610");
        if (focused)
            attron(A_REVERSE);
        mvaddwstr(r.top, r.left, mark);
        if (focused)
            attroff(A_REVERSE);
        putFitted(r.top, r.left + 2, label, labelRoom(d, w, r) - 2, at);
        return;
    }
    /* a face one or two cells wider than its button takes the free cells
     * beside it, as a label does, so that it keeps its brackets */
    bool isDefault = type == BS_DEFPUSHBUTTON;
    int width = r.right - r.left, shift = 1;
    std::string shown = buttonFace(label, isDefault, width, &shift);
    if (shown.size() == label.size() || shown.size() > (size_t)width) {
        int room = labelRoom(d, w, r);
        shown = buttonFace(label, isDefault, room, &shift);
        width = (int)shown.size() > width ? (int)shown.size() : width;
    }
    int x = r.left + (width > (int)shown.size() ? (width - (int)shown.size()) / 2 : 0);
    if (focused)
        attron(A_REVERSE);
    putText(r.top, x, shown, width, at >= 0 && at + shift < (int)shown.size() ? at + shift : -1);
    if (focused)
        attroff(A_REVERSE);
}

static void drawControl(Window *d, Window *w, std::vector<Window *> *droppedLists)
{
    if (!(w->style & WS_VISIBLE))
        return;
    RECT r = screenRect(w);
    bool focused = d->focus == w->handle && runningDialogs().back() == d->handle;
    bool disabled = (w->style & WS_DISABLED) != 0;
    attr_t weight = fontWeightOf(w->handle) >= 600 ? A_BOLD : A_NORMAL;
    attron(COLOR_PAIR(disabled ? PairDisabled : PairDialog) | weight | (disabled ? A_DIM : 0));
    switch (w->kind) {
    case KindStatic:
        drawLabel(w, r, (w->style & 3) == SS_LEFT ? labelRoom(d, w, r) : -1);
        break;
    case KindButton:
        drawButton(d, w, r, focused);
        break;
    case KindEdit:
        if (w->style & ES_MULTILINE) {
            Pen pen = currentPen();
            attron(COLOR_PAIR(PairField));
            fill(r.top, r.left, r.bottom - r.top, r.right - r.left);
            drawPane(w, r, false);
            usePen(pen);
        } else {
            drawField(w, r.top, r.left, r.right - r.left, focused);
        }
        break;
    case KindListBox:
        drawList(w, r.top, r.left, r.bottom - r.top, r.right - r.left, focused);
        break;
    case KindComboBox: {
        int width = r.right - r.left;
        bool simple = (w->style & CBS_TYPEMASK) == CBS_SIMPLE;
        if ((w->style & CBS_TYPEMASK) == CBS_DROPDOWNLIST) {
            Pen pen = currentPen();
            attron(COLOR_PAIR(PairField) | (focused ? A_REVERSE : 0));
            fill(r.top, r.left, 1, width - 1);
            putText(r.top, r.left, w->text, width - 1);
            usePen(pen);
        } else {
            drawField(w, r.top, r.left, simple ? width : width - 1, focused);
        }
        if (!simple)
            mvaddch(r.top, r.left + width - 1, ACS_DARROW);
        if (simple)
            drawList(w, r.top + 1, r.left, r.bottom - r.top - 1, width, false);
        else if (w->dropped && focused)
            droppedLists->push_back(w);
        break;
    }
    default:
        break;
    }
    attroff(COLOR_PAIR(disabled ? PairDisabled : PairDialog) | weight | A_DIM);
}

int droppedRows(Window *w) { return (int)w->items.size() < 8 ? (int)w->items.size() : 8; }

static void drawDialog(HWND dialog)
{
    Window *d = windowOf(dialog);
    if (!d)
        return;
    /* the colour request of the dialog, as the system makes it */
    HDC dc = createDeviceContext();
    SendMessageA(dialog, ORTO_WM_CTLCOLORDLG, (uintptr_t)dc, (intptr_t)dialog);
    DeleteObject(dc);
    RECT r = screenRect(d);
    attron(COLOR_PAIR(PairDialog));
    fill(r.top, r.left, r.bottom - r.top, r.right - r.left);
    frame(r.top, r.left, r.bottom - r.top, r.right - r.left);
    std::string title = " " + d->text + " ";
    int width = r.right - r.left;
    attron(A_BOLD);
    putText(r.top, r.left + (width > (int)title.size() ? (width - (int)title.size()) / 2 : 1), title, width - 2);
    attroff(A_BOLD);
    attroff(COLOR_PAIR(PairDialog));
    std::vector<Window *> dropped;
    for (HWND child : d->children)
        if (Window *c = windowOf(child))
            drawControl(d, c, &dropped);
    for (Window *w : dropped) { /* an open drop-down list lies over the rest */
        RECT c = screenRect(w);
        drawList(w, c.bottom, c.left, droppedRows(w), c.right - c.left, true);
    }
}

void drawScreen(HWND top)
{
    (void)top;
    curs_set(0);
    attrset(COLOR_PAIR(PairDocument));
    erase();
    std::vector<HWND> panes;
    listTopLevelWindows(&panes);
    for (HWND p : panes) {
        Window *w = windowOf(p);
        if (!w || w->kind != KindEdit || !(w->style & WS_VISIBLE))
            continue;
        RECT r = screenRect(w);
        if (r.right <= r.left || r.bottom <= r.top)
            SetRect(&r, 0, 0, term.cols, term.rows);
        attrset(COLOR_PAIR(PairDocument));
        drawPane(w, r, false);
    }
    for (HWND dialog : runningDialogs())
        drawDialog(dialog);
    if (!runningDialogs().empty()) {
        Window *d = windowOf(runningDialogs().back());
        Window *f = d ? windowOf(d->focus) : nullptr;
        if (f && editsText(f)) { /* the caret stands in the focused field: draw it last */
            RECT r = screenRect(f);
            uint32_t caret = term.caret.count(f->handle) ? term.caret[f->handle] : (uint32_t)f->text.size();
            uint32_t first = term.scroll[f->handle];
            if (caret >= first)
                move(r.top, r.left + (int)(caret - first));
            curs_set(1);
        }
    }
    attrset(A_NORMAL);
}

void drawWaitNotice(void)
{
    if (!term.active)
        return;
    const char notice[] = " Working... ";
    attrset(COLOR_PAIR(PairTitle) | A_BOLD);
    putText(term.rows - 1, term.cols - (int)sizeof notice, notice, (int)sizeof notice - 1);
    attrset(A_NORMAL);
    refresh();
}
