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
#include <stdlib.h>
#include <string.h>

#define NCURSES_WIDECHAR 1
#include <ncursesw/curses.h>

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

void termStart(void)
{
    if (term.active)
        return;
    static bool initialised;
    if (!initialised) {
        chooseCharacterType();
        set_escdelay(50);
        initscr();
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
    } else {
        reset_prog_mode();
        refresh();
    }
    term.active = true;
    getmaxyx(stdscr, term.rows, term.cols);
}

void termStop(void)
{
    if (!term.active)
        return;
    erase();
    refresh();
    def_prog_mode();
    endwin();
    term.active = false;
}

void termFrontEndIdle(void) { termStop(); }

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
