/*
 * window.h -- the window layer: a small toolkit of dialogs and controls in
 * place of the system's windows, under the names of the operations that the
 * dialog logic calls (DialogBoxParamA, SendMessageA, ...), with the same
 * meanings.
 *
 * A window is a plain record in a table of the process.  Its handle is not
 * its address: it is the table slot and a generation count, so a handle of
 * a destroyed window is refused by every call instead of reaching freed
 * memory, and a new window never answers to an old handle.  Fonts and
 * brushes are handles of the same kind.
 *
 * Coordinates are screen cells.  A control of a dialog keeps its rectangle
 * relative to the dialog's client area, which starts one column right of
 * the dialog's left edge and one row below its top (the caption row).
 *
 * Notifications (EN_CHANGE) go to a dialog when its own code changes a
 * control, as the system's controls do; what a front end changes while it
 * plays the user is silent, because the command it returns is the
 * notification (see ORTO_FrontEnd).
 */
#ifndef ORTO_UI_WINDOW_H
#define ORTO_UI_WINDOW_H

#include <stdint.h>

#include <string>
#include <vector>

#include "orto_ui.h"

typedef ORTO_HWND HWND;
typedef ORTO_HINSTANCE HINSTANCE;
typedef ORTO_DLGPROC DLGPROC;
typedef uint32_t COLORREF;
typedef intptr_t HCURSOR;

struct GdiObject;                 /* fonts, brushes and device contexts share one table */
typedef GdiObject *HGDIOBJ;
typedef HGDIOBJ HFONT;
typedef HGDIOBJ HBRUSH;
typedef HGDIOBJ HDC;

struct RECT {
    int32_t left, top, right, bottom;
};

/* A font as the dialogs see it: face, size and weight.  A terminal shows
 * normal (below 600) and bold weight. */
struct LOGFONTA {
    int32_t lfHeight;             /* points */
    int32_t lfWeight;             /* 400 normal, 700 bold */
    uint8_t lfItalic;
    char lfFaceName[32];
};

/* ---- Styles: the system's bits. ---- */
enum : uint32_t {
    WS_POPUP = 0x80000000u, WS_CHILD = 0x40000000u, WS_VISIBLE = 0x10000000u,
    WS_DISABLED = 0x08000000u, WS_CAPTION = 0x00C00000u, WS_BORDER = 0x00800000u,
    WS_VSCROLL = 0x00200000u, WS_HSCROLL = 0x00100000u, WS_SYSMENU = 0x00080000u,
    WS_GROUP = 0x00020000u, WS_TABSTOP = 0x00010000u,
    DS_MODALFRAME = 0x80u, DS_SETFONT = 0x40u,
    ES_LEFT = 0, ES_CENTER = 1, ES_RIGHT = 2, ES_MULTILINE = 4, ES_UPPERCASE = 8,
    ES_AUTOVSCROLL = 0x40, ES_AUTOHSCROLL = 0x80, ES_NOHIDESEL = 0x100, ES_READONLY = 0x800,
    SS_LEFT = 0, SS_CENTER = 1, SS_RIGHT = 2, SS_NOPREFIX = 0x80,
    BS_PUSHBUTTON = 0, BS_DEFPUSHBUTTON = 1, BS_CHECKBOX = 2, BS_AUTOCHECKBOX = 3,
    BS_RADIOBUTTON = 4, BS_3STATE = 5, BS_AUTO3STATE = 6, BS_GROUPBOX = 7,
    BS_AUTORADIOBUTTON = 9, BS_TYPEMASK = 0xF,
    LBS_NOTIFY = 1, LBS_SORT = 2, LBS_NOINTEGRALHEIGHT = 0x100, LBS_HASSTRINGS = 0x40,
    CBS_SIMPLE = 1, CBS_DROPDOWN = 2, CBS_DROPDOWNLIST = 3, CBS_TYPEMASK = 3,
    CBS_AUTOHSCROLL = 0x40, CBS_SORT = 0x100, CBS_HASSTRINGS = 0x200,
};

enum WindowKind {
    KindDialog,
    KindStatic,
    KindEdit,      /* plain and rich edit controls alike */
    KindListBox,
    KindComboBox,
    KindButton
};

struct ListItem {
    std::string text;
    intptr_t data;                /* the number beside the entry */
};

struct DialogTemplate;

/* One window.  Fields that a kind doesn't use stay at their zero values. */
struct Window {
    HWND handle;                  /* its own handle */
    WindowKind kind;
    char className[64];           /* as given, cut to 63 */
    uint32_t style;               /* WS_VISIBLE and WS_DISABLED are the shown and enabled states */
    int32_t id;                   /* control id; 0 for dialogs and windows of their own */
    std::string text;             /* caption, label, field text */
    HWND parent;                  /* the dialog of a control; the owner of a dialog; null */
    int32_t x, y, width, height;  /* cells: a control's relative to the parent's client area */
    HFONT font;                   /* WM_SETFONT; 0: the system's */

    /* text controls */
    uint32_t selStart, selEnd;    /* selection, selStart <= selEnd <= text length */
    uint32_t textLimit;           /* most characters EM_REPLACESEL may leave; 0: none */
    uint32_t scrollTo;            /* position that EM_SCROLLCARET brought into view */
    unsigned char shownByte;      /* the host's stand-in byte, shown as... */
    std::vector<std::string> shownChars; /* ...these characters (UTF-8), in text order */

    /* list boxes and combo boxes */
    std::vector<ListItem> items;
    int32_t curSel;               /* -1: none */
    int32_t topIndex;
    int32_t dropped;              /* a drop-down list is open */

    /* buttons */
    int32_t check;

    /* dialogs */
    std::vector<HWND> children;   /* in tab order */
    DLGPROC proc;
    HWND focus;                   /* the control with the focus */
    HFONT templateFont;           /* made from the template, destroyed with the dialog */
    intptr_t result;
    int32_t ending;               /* EndDialog was called */
    int32_t shown;                /* past the opening: the front end may show it */
};

/* ---- The window table ---- */
Window *windowOf(HWND handle);            /* the record, or null for a stale or bad handle */
HWND createWindow(WindowKind kind, const char *className, HWND parent);
void destroyWindow(HWND handle);          /* with its children */
/* Kind of a class name ("BUTTON", "Edit", "RichEdit20A", ...), -1 if no
 * window of this layer has that class. */
int windowKindOfClass(const char *className);
/* The dialogs that run, the innermost last, for the front end. */
const std::vector<HWND> &runningDialogs();
/* Windows of their own (text controls made by a host), for the front end. */
void listTopLevelWindows(std::vector<HWND> *out);

/* A dialog hears of what its controls do, unless the front end is at work. */
void notifyParent(Window *control, uint32_t code);
/* Counts the calls into the front end that are under way; while above 0,
 * control changes don't notify. */
extern int frontEndDepth;

/* ---- Operations of the dialog logic, as their originals ---- */
enum { SW_HIDE = 0, SW_SHOW = 5 };
HWND GetDlgItem(HWND dialog, int32_t id);
uint32_t GetDlgItemTextA(HWND dialog, int32_t id, char *buffer, int32_t size);
int32_t SetDlgItemTextA(HWND dialog, int32_t id, const char *text);
int32_t GetWindowTextA(HWND window, char *buffer, int32_t size);
int32_t SetWindowTextA(HWND window, const char *text);
int32_t GetWindowTextLengthA(HWND window);
int32_t GetClassNameA(HWND window, char *buffer, int32_t size);
int32_t EnableWindow(HWND window, int32_t enable);   /* result: nonzero if it was disabled */
int32_t IsWindowEnabled(HWND window);
int32_t ShowWindow(HWND window, int32_t command);    /* result: nonzero if it was visible */
int32_t IsWindowVisible(HWND window);
int32_t IsWindow(HWND window);
HWND SetFocus(HWND window);                          /* result: the focus before */
HWND GetFocus(void);
int32_t GetWindowRect(HWND window, RECT *rect);
int32_t MoveWindow(HWND window, int32_t x, int32_t y, int32_t width, int32_t height, int32_t repaint);
intptr_t SendMessageA(HWND window, uint32_t message, uintptr_t wParam, intptr_t lParam);
intptr_t SendDlgItemMessageA(HWND dialog, int32_t id, uint32_t message, uintptr_t wParam, intptr_t lParam);
typedef int32_t (*WNDENUMPROC)(HWND window, intptr_t lParam);
int32_t EnumChildWindows(HWND parent, WNDENUMPROC callback, intptr_t lParam);

intptr_t DialogBoxParamA(HINSTANCE module, const char *templateName, HWND parent, DLGPROC proc,
                         intptr_t param);
int32_t EndDialog(HWND dialog, intptr_t result);

/* The answer of a control class to a message (what the system's own
 * window procedures do); dialogs get it after their procedure answered 0. */
intptr_t controlMessage(Window *w, uint32_t message, uintptr_t wParam, intptr_t lParam);

/* ---- Fonts, brushes, colours ---- */
enum { COLOR_BTNFACE = 15, COLOR_WINDOW = 5, COLOR_WINDOWTEXT = 8 };
enum { FW_NORMAL = 400, FW_BOLD = 700 };
HFONT CreateFontIndirectA(const LOGFONTA *font);
HBRUSH CreateSolidBrush(COLORREF color);
int32_t GetObjectA(HGDIOBJ object, int32_t size, void *out);   /* a font's LOGFONTA; result bytes */
int32_t DeleteObject(HGDIOBJ object);
COLORREF GetSysColor(int32_t index);
COLORREF SetBkColor(HDC dc, COLORREF color);                   /* result: the colour before */
HDC createDeviceContext(void);                                 /* for the colour requests */
COLORREF brushColor(HBRUSH brush, COLORREF fallback);
/* Weight of the font a window shows, FW_NORMAL if it has none. */
int32_t fontWeightOf(HWND window);

/* ---- Dialog templates ---- */
struct ControlTemplate {
    WindowKind kind;
    char className[64];
    std::string text;
    int32_t id;
    uint32_t style;
    int32_t x, y, cx, cy;         /* dialog units */
};

struct DialogTemplate {
    std::string name;
    int32_t x, y, cx, cy;         /* dialog units */
    uint32_t style;
    std::string caption;
    std::string fontFace;         /* empty: no FONT statement */
    int32_t fontSize;
    int32_t fontWeight;           /* 0: not given */
    std::vector<ControlTemplate> controls;
    int32_t line;                 /* where it starts in its script */
};

/* Parses resource-script text.  Result 0, or -1 with a message naming the
 * line in `error`. */
int parseTemplates(const char *script, std::vector<DialogTemplate> *out, char *error, size_t errorSize);
const DialogTemplate *findTemplate(HINSTANCE module, const char *name);
/* Dialog units to cells: to the nearest cell, at least 1 for a size above 0. */
int32_t unitsToColumns(int32_t units, int isSize);
int32_t unitsToRows(int32_t units, int isSize);

/* ---- The front end and the system's services ---- */
const ORTO_FrontEnd *currentFrontEnd(void);
/* Called when the outermost dialog has ended. */
void frontEndIdle(void);

enum { MB_OK = 0 };
int32_t MessageBoxA(HWND owner, const char *text, const char *title, uint32_t type);

enum { HELP_CONTEXT = 1 };
int32_t WinHelpA(HWND window, const char *helpFile, uint32_t command, uintptr_t data);

struct OPENFILENAMEA {
    HWND hwndOwner;
    const char *lpstrFilter;      /* pairs, NUL-separated, ended by an empty string */
    uint32_t nFilterIndex;
    char *lpstrFile;              /* in: a name to start with; out: the path */
    uint32_t nMaxFile;
    const char *lpstrInitialDir;
    const char *lpstrTitle;
    uint32_t Flags;
    const char *lpstrDefExt;      /* put behind a chosen name that has no extension */
};
int32_t GetOpenFileNameA(OPENFILENAMEA *request);
int32_t GetSaveFileNameA(OPENFILENAMEA *request);

enum { IDC_ARROW = 32512, IDC_WAIT = 32514 };
HCURSOR LoadCursorA(HINSTANCE module, intptr_t id);
HCURSOR SetCursor(HCURSOR cursor);
int32_t ShowCursor(int32_t show);

enum { SM_CXFRAME = 32, SM_CYFRAME = 33 };
int32_t GetSystemMetrics(int32_t index);
uint32_t GetVersion(void);
enum { SPI_GETWORKAREA = 0x0030 };
int32_t SystemParametersInfoA(uint32_t action, uint32_t uiParam, void *pvParam, uint32_t winIni);
HWND GetDesktopWindow(void);
int32_t SetRect(RECT *rect, int32_t left, int32_t top, int32_t right, int32_t bottom);
int32_t IntersectRect(RECT *out, const RECT *a, const RECT *b);

#endif
