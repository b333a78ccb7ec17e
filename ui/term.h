/*
 * term.h -- the terminal front end: the dialogs drawn with ncurses in a
 * terminal, and a person at its keys.
 *
 * The front end keeps only what the window records don't: the screen, the
 * caret of each field and where each field and pane is scrolled.  Every
 * act of the user it turns into what a user of the original dialogs does:
 * it changes controls silently (text, selection), and returns the command
 * that the act sends.  The screen is drawn anew before each act, from the
 * records, so what the dialog logic changed is always what is shown.
 *
 * Text on the screen is UTF-8 (wide characters); the engine's Windows
 * Latin-1 is converted at this edge, both ways.
 */
#ifndef ORTO_UI_TERM_H
#define ORTO_UI_TERM_H

#include <map>
#include <string>

#include "ui/window.h"

/* The colours of the screen's parts. */
enum TermPair {
    PairDocument = 1, /* the document pane */
    PairDialog,       /* a dialog's face */
    PairField,        /* an edit field, a list */
    PairSelected,     /* the selected entry, the word under check */
    PairFocus,        /* the control with the focus */
    PairDisabled,     /* a disabled control */
    PairTitle         /* a dialog's caption */
};

/* A pane or dialog as its owner placed it, on a screen of that size, and
 * the rectangle the last resize gave it. */
struct Placement {
    RECT at;
    int rows, cols;
    RECT shown;
};

struct TermState {
    bool active;                      /* curses mode is on */
    int rows, cols;                   /* the screen's size */
    std::map<HWND, uint32_t> caret;   /* caret of each field */
    std::map<HWND, uint32_t> scroll;  /* first shown character of a field, first line of a pane */
    HWND enterOnList;                 /* the list that took the last Enter, for a double Enter */
    std::map<HWND, int32_t> selectionAtDrop; /* a drop-down list's selection when it opened */
    std::map<HWND, int32_t> paneShift;       /* lines a pane is scrolled by keys from where its selection puts it */
    std::map<HWND, uint32_t> paneSelection;  /* the selection the shift was made at */
    std::map<HWND, Placement> placed; /* where the panes and dialogs were put, for resizes */
    bool pasting;                     /* between a bracketed paste's start and end */
};

/* The key codes curses gives for the start and end of a bracketed paste. */
enum { KeyPasteStart = 0x7100, KeyPasteEnd = 0x7101 };
extern TermState term;

/* The screen: started at the first need, given back to the shell when the
 * outermost dialog ends.  False when the terminal can't show the dialogs
 * (termUsable), which then have no user. */
bool termUsable(void);
bool termStart(void);
void termStop(void);
void termFrontEndIdle(void);
/* The terminal has a new size: the document panes and the dialogs are
 * laid out for it again. */
void termResized(void);

/* Windows Latin-1 to the screen's characters and back; -1 for a character
 * that has no Latin-1 form. */
wchar_t latin1ToWide(unsigned char c);
int wideToLatin1(wchar_t c);

/* A label without its '&' marks; `mnemonic` gets the marked letter (0 if
 * none) and `at` its place in the label. */
std::string labelWithoutMarks(const std::string &label, char *mnemonic, int *at);

/* Writes Latin-1 text at (y, x), at most `width` cells; the character at
 * `underline` (-1: none) underlined. */
void putText(int y, int x, const std::string &text, int width, int underline = -1);

/* Where a control stands on the screen. */
RECT screenRect(Window *w);
bool takesFocus(Window *w);
bool editsText(Window *w);

/* Drawing. */
void frame(int top, int left, int height, int width);
void drawScreen(HWND top);
void drawWaitNotice(void);
/* Rows of the list of an open drop-down combo box, below its box. */
int droppedRows(Window *w);

/* The boxes over a dialog. */
void termMessageBox(const char *text, const char *title);
int32_t termFileDialog(const ORTO_FileRequest *request, char *path, uint32_t pathSize);
void termHelp(const char *helpFile, uint32_t topic);

/* The user's next act on `dialog`. */
int32_t termNextCommand(HWND dialog);

/* Reads one key, wide; false when none came in `timeoutMs` (-1: wait). */
bool readKey(wint_t *key, bool *isCode, int timeoutMs = -1);

#endif
