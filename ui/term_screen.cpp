/*
 * term_screen.cpp -- the terminal itself: curses mode on and off, the
 * colours, keys, and the conversion between the engine's Windows Latin-1
 * and the screen's characters.
 *
 * The screen starts at the first act that needs it and goes back to the
 * shell when the outermost dialog ends, so a program that runs dialogs now
 * and then keeps its terminal between them.  A program that left the
 * character type at "C" gets the environment's, so that UTF-8 reaches the
 * screen; nothing else of the locale is touched.
 */
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define NCURSES_WIDECHAR 1
#include <ncursesw/curses.h>
#include <ncursesw/term.h>

#include <vector>

#include "engine/debug_log.h"
#include "platform/terminal_modes.h"
#include "ui/term.h"

TermState term;

/* cp1252 0x80-0x9F; 0 where cp1252 has no character. */
static const uint16_t cp1252High[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,
};

wchar_t latin1ToWide(unsigned char c)
{
    if (c >= 0x80 && c < 0xA0)
        return cp1252High[c - 0x80] ? (wchar_t)cp1252High[c - 0x80] : (wchar_t)0xFFFD;
    if (c < 0x20 || c == 0x7F)
        return L' ';
    return (wchar_t)c;
}

int wideToLatin1(wchar_t c)
{
    if (c >= 0x20 && c < 0x7F)
        return (int)c;
    if (c >= 0xA0 && c <= 0xFF)
        return (int)c;
    for (int i = 0; i < 32; i++)
        if (cp1252High[i] && cp1252High[i] == (uint16_t)c)
            return 0x80 + i;
    return -1;
}

std::string labelWithoutMarks(const std::string &label, char *mnemonic, int *at)
{
    std::string out;
    if (mnemonic)
        *mnemonic = 0;
    if (at)
        *at = -1;
    for (size_t i = 0; i < label.size(); i++) {
        if (label[i] == '&' && i + 1 < label.size()) {
            i++;
            if (label[i] != '&' && mnemonic && !*mnemonic) {
                *mnemonic = label[i];
                if (at)
                    *at = (int)out.size();
            }
        }
        out += label[i];
    }
    return out;
}

void putText(int y, int x, const std::string &text, int width, int underline)
{
    if (y < 0 || y >= term.rows)
        return;
    for (int i = 0; i < width && i < (int)text.size(); i++) {
        if (x + i < 0 || x + i >= term.cols)
            continue;
        wchar_t wc[2] = {latin1ToWide((unsigned char)text[(size_t)i]), 0};
        cchar_t cell;
        attr_t attrs;
        short pair;
        attr_get(&attrs, &pair, nullptr);
        setcchar(&cell, wc, i == underline ? attrs | A_UNDERLINE : attrs, pair, nullptr);
        mvadd_wch(y, x + i, &cell);
    }
}

static void chooseCharacterType(void)
{
    const char *now = setlocale(LC_CTYPE, nullptr);
    if (now && strcmp(now, "C") != 0 && strcmp(now, "POSIX") != 0)
        return;
    const char *fromEnvironment = setlocale(LC_CTYPE, "");
    if (!fromEnvironment || strcmp(fromEnvironment, "C") == 0 || strcmp(fromEnvironment, "POSIX") == 0)
        setlocale(LC_CTYPE, "C.UTF-8");
}

/* Whether the terminal can show the dialogs: a type that terminfo knows
 * and that can put the cursor anywhere.  Asked before curses starts, whose
 * own start would end the host's process on a type it doesn't know. */
bool termUsable(void)
{
    static int usable = -1;
    if (usable >= 0)
        return usable != 0;
    int error = 0;
    usable = 0;
    if (setupterm(nullptr, 1, &error) == OK) {
        char *move = tigetstr("cup");
        usable = move != nullptr && move != (char *)-1;
        del_curterm(cur_term);
    }
    if (!usable) {
        const char *type = getenv("TERM");
        fprintf(stderr, "ORTO: the terminal \"%s\" can't show the dialogs (an unknown type, or one that "
                        "can't move the cursor)\n", type ? type : "");
        DebugLog("termUsable: TERM \"%s\" can't show the dialogs", type ? type : "");
    }
    return usable != 0;
}

/* Bracketed paste, so that a pasted line end is text, not Enter on the
 * default button.  The terminal's own sequences when its terminfo entry
 * has them, else xterm's, which terminals that lack the mode ignore (tmux
 * runs programs as "screen", whose entry doesn't list them). */
static const char *pasteCap(const char *name, const char *xterm)
{
    char *cap = tigetstr(name);
    return cap && cap != (char *)-1 && *cap ? cap : xterm;
}

static void bracketedPaste(bool on)
{
    if (on)
        setTerminalMode(pasteCap("BE", "\033[?2004h"), pasteCap("BD", "\033[?2004l"));
    else
        clearTerminalMode();
}

bool termStart(void)
{
    if (term.active)
        return true;
    if (!termUsable())
        return false;
    static bool initialised;
    if (!initialised) {
        chooseCharacterType();
        set_escdelay(50);
        if (!newterm(nullptr, stdout, stdin)) {
            DebugLog("termStart: curses can't start on this terminal");
            return false;
        }
        initialised = true;
        if (has_colors()) {
            start_color();
            use_default_colors();
            init_pair(PairDocument, -1, -1);
            init_pair(PairDialog, COLOR_BLACK, COLOR_WHITE);
            init_pair(PairField, COLOR_WHITE, COLOR_BLUE);
            init_pair(PairSelected, COLOR_BLACK, COLOR_CYAN);
            init_pair(PairFocus, COLOR_WHITE, COLOR_BLACK);
            init_pair(PairDisabled, COLOR_BLACK, COLOR_WHITE);
            init_pair(PairTitle, COLOR_WHITE, COLOR_BLUE);
        }
        cbreak();
        noecho();
        nonl();
        keypad(stdscr, TRUE);
        mousemask(BUTTON1_CLICKED | BUTTON1_DOUBLE_CLICKED | BUTTON1_PRESSED, nullptr);
        mouseinterval(300);
        define_key(pasteCap("PS", "\033[200~"), KeyPasteStart);
        define_key(pasteCap("PE", "\033[201~"), KeyPasteEnd);
    } else {
        reset_prog_mode();
        refresh();
    }
    bracketedPaste(true);
    term.active = true;
    getmaxyx(stdscr, term.rows, term.cols);
    return true;
}

void termStop(void)
{
    if (!term.active)
        return;
    erase();
    refresh();
    def_prog_mode();
    endwin();
    bracketedPaste(false);
    term.active = false;
    term.pasting = false;
}

void termFrontEndIdle(void) { termStop(); }

static bool sameRect(const RECT &a, const RECT &b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

/* A resize lays the screen out again from where each pane and dialog was
 * put (by its owner or by the dialog logic), not from where the last
 * resize left it, so a terminal that was too small for a while shows
 * again what it showed before.  A pane that spanned the screen's width
 * spans it again and gains or loses the rows the screen did; a dialog that
 * stood at the screen's bottom or right edge stays there; a dialog is kept
 * on the screen where it fits. */
void termResized(void)
{
    int oldRows = term.rows, oldCols = term.cols;
    getmaxyx(stdscr, term.rows, term.cols);
    std::vector<HWND> windows;
    listTopLevelWindows(&windows);
    windows.insert(windows.end(), runningDialogs().begin(), runningDialogs().end());
    std::map<HWND, Placement> placed;
    for (HWND h : windows) {
        Window *w = windowOf(h);
        if (!w || (w->kind != KindEdit && w->kind != KindDialog))
            continue;
        RECT now = {w->x, w->y, w->x + w->width, w->y + w->height};
        auto found = term.placed.find(h);
        Placement p = found != term.placed.end() && sameRect(found->second.shown, now)
                          ? found->second
                          : Placement{now, oldRows, oldCols, now};
        int x = p.at.left, y = p.at.top, width = p.at.right - p.at.left, height = p.at.bottom - p.at.top;
        if (w->kind == KindEdit) {
            if (x == 0 && width > 0 && width >= p.cols) {
                width = term.cols;
                height = height + term.rows - p.rows > 1 ? height + term.rows - p.rows : 1;
            }
        } else {
            if (p.at.bottom >= p.rows)
                y = term.rows - height;
            if (p.at.right >= p.cols)
                x = term.cols - width;
            x = x + width > term.cols ? term.cols - width : x;
            y = y + height > term.rows ? term.rows - height : y;
            x = x < 0 ? 0 : x;
            y = y < 0 ? 0 : y;
        }
        MoveWindow(h, x, y, width, height, 0);
        p.shown = RECT{x, y, x + width, y + height};
        placed[h] = p;
    }
    term.placed.swap(placed);
}

bool readKey(wint_t *key, bool *isCode, int timeoutMs)
{
    timeout(timeoutMs);
    int kind = get_wch(key);
    timeout(-1);
    if (kind == ERR)
        return false;
    *isCode = kind == KEY_CODE_YES;
    return true;
}
