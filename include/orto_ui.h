/*
 * orto_ui.h -- the dialogs of the ORTO spelling engine and the small window
 * toolkit they run on.
 *
 * The dialogs (Check Spelling, Dictionaries, New Dictionary, Options) are
 * built from templates written in resource-script text, the language of the
 * library's own four templates, so that a host can replace any of them by
 * one with the same control ids.  A template's dialog units become screen
 * cells: x/4 columns and y/8 rows, rounded to the nearest cell (halves
 * down), at least one for a non-empty size.  A control's edges are
 * rounded, so neighbours stay neighbours; a control of one line (a label,
 * a field, a button, a check box, a drop-down combo box) is one row high,
 * on the row of its middle.  A dialog's window is its client area with one
 * column of frame on each side and one row of caption on top.
 *
 * Windows and messages keep the names and numbers of the system this design
 * comes from, so that a host's dialog procedure reads as usual: a dialog
 * procedure gets ORTO_WM_INITDIALOG once (lParam the dialog's parameter),
 * then ORTO_WM_COMMAND for each act of the user, with the control id in the
 * low 16 bits of wParam and the notification code in the high 16 bits.
 *
 * Who plays the user is the front end (ORTO_SetFrontEnd): the terminal front
 * end for a person, or a script in a test.  The dialogs never touch a
 * screen themselves.
 *
 * Text is Windows Latin-1 bytes, as in orto.h.  Threads: windows and
 * dialogs belong to the process and are used from one thread at a time;
 * the dialogs are modal and run inside the caller's call.
 */
#ifndef ORTO_UI_H
#define ORTO_UI_H

#include <stdint.h>

#include "orto.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ORTO_Window *ORTO_HWND;       /* a dialog or a control */
typedef struct ORTO_Module *ORTO_HINSTANCE;  /* a set of dialog templates */
typedef intptr_t (*ORTO_DLGPROC)(ORTO_HWND dialog, uint32_t message, uintptr_t wParam, intptr_t lParam);

/* ---- Messages: the names and numbers of the Win32 originals. ---- */
#define ORTO_WM_CLOSE            0x0010
#define ORTO_WM_SETTEXT          0x000C /* lParam: const char * */
#define ORTO_WM_GETTEXT          0x000D /* wParam: buffer size, lParam: char *; result: length copied */
#define ORTO_WM_GETTEXTLENGTH    0x000E
#define ORTO_WM_SETFONT          0x0030 /* wParam: font handle */
#define ORTO_WM_GETFONT          0x0031 /* result: font handle or 0 */
#define ORTO_WM_INITDIALOG       0x0110 /* lParam: the dialog's parameter; a non-zero answer focuses the first tab stop */
#define ORTO_WM_COMMAND          0x0111 /* wParam: id | code << 16, lParam: the control */
#define ORTO_WM_CTLCOLOREDIT     0x0133 /* wParam: device context, lParam: the control; answer: a brush */
#define ORTO_WM_CTLCOLORLISTBOX  0x0134
#define ORTO_WM_CTLCOLORBTN      0x0135
#define ORTO_WM_CTLCOLORDLG      0x0136
#define ORTO_WM_CTLCOLORSTATIC   0x0138

/* Edit and rich edit controls.  Every text control answers both kinds. */
#define ORTO_EM_GETSEL           0x00B0 /* wParam, lParam: uint32_t * or 0; result: start | end << 16, -1 past 65,535 */
#define ORTO_EM_SETSEL           0x00B1 /* wParam start, lParam end; start -1 removes the selection, end -1 is the end */
#define ORTO_EM_SCROLLCARET      0x00B7
#define ORTO_EM_REPLACESEL       0x00C2 /* lParam: const char *; a control at its limit takes what fits */
#define ORTO_EM_LIMITTEXT        0x00C5 /* wParam: the most characters; 0 lifts the limit */
#define ORTO_EM_SETREADONLY      0x00CF
#define ORTO_EM_GETLIMITTEXT     0x00D5
#define ORTO_EM_EXGETSEL         0x0434 /* lParam: ORTO_CHARRANGE * */
#define ORTO_EM_EXSETSEL         0x0437 /* lParam: const ORTO_CHARRANGE * */
#define ORTO_EM_GETTEXTRANGE     0x044B /* lParam: ORTO_TEXTRANGE *; result: characters copied */

typedef struct ORTO_CHARRANGE {
    int32_t cpMin;
    int32_t cpMax;               /* -1: the end of the text */
} ORTO_CHARRANGE;

typedef struct ORTO_TEXTRANGE {
    ORTO_CHARRANGE chrg;
    char *lpstrText;             /* room for the range and a NUL */
} ORTO_TEXTRANGE;

/* List boxes.  Results below 0 are ORTO_LB_ERR. */
#define ORTO_LB_ADDSTRING        0x0180 /* lParam: text; result: index */
#define ORTO_LB_INSERTSTRING     0x0181 /* wParam: index (-1 the end) */
#define ORTO_LB_DELETESTRING     0x0182 /* result: count left */
#define ORTO_LB_RESETCONTENT     0x0184
#define ORTO_LB_SETCURSEL        0x0186 /* wParam: index, -1 for none */
#define ORTO_LB_GETCURSEL        0x0188
#define ORTO_LB_GETTEXT          0x0189 /* wParam: index, lParam: buffer big enough for LB_GETTEXTLEN + 1 */
#define ORTO_LB_GETTEXTLEN       0x018A
#define ORTO_LB_GETCOUNT         0x018B
#define ORTO_LB_GETTOPINDEX      0x018E
#define ORTO_LB_FINDSTRING       0x018F /* wParam: index to start behind (-1 the start), lParam: prefix */
#define ORTO_LB_SETTOPINDEX      0x0197
#define ORTO_LB_GETITEMDATA      0x0199
#define ORTO_LB_SETITEMDATA      0x019A
#define ORTO_LB_FINDSTRINGEXACT  0x01A2
#define ORTO_LB_ERR              (-1)

/* Combo boxes: an edit field or a plain field over a list.  Results below 0
 * are ORTO_CB_ERR. */
#define ORTO_CB_LIMITTEXT        0x0141
#define ORTO_CB_ADDSTRING        0x0143
#define ORTO_CB_DELETESTRING     0x0144
#define ORTO_CB_GETCOUNT         0x0146
#define ORTO_CB_GETCURSEL        0x0147
#define ORTO_CB_GETLBTEXT        0x0148
#define ORTO_CB_GETLBTEXTLEN     0x0149
#define ORTO_CB_INSERTSTRING     0x014A
#define ORTO_CB_RESETCONTENT     0x014B
#define ORTO_CB_FINDSTRING       0x014C /* the first entry behind wParam that begins with lParam, case-blind, wrapping */
#define ORTO_CB_SELECTSTRING     0x014D
#define ORTO_CB_SETCURSEL        0x014E /* also sets the field's text (or empties it for -1) */
#define ORTO_CB_SHOWDROPDOWN     0x014F
#define ORTO_CB_GETITEMDATA      0x0150
#define ORTO_CB_SETITEMDATA      0x0151
#define ORTO_CB_GETDROPPEDSTATE  0x0157
#define ORTO_CB_FINDSTRINGEXACT  0x0158
#define ORTO_CB_ERR              (-1)

/* Buttons. */
#define ORTO_BM_GETCHECK         0x00F0
#define ORTO_BM_SETCHECK         0x00F1
#define ORTO_BM_CLICK            0x00F5 /* the click a user makes: automatic boxes flip, then BN_CLICKED */
#define ORTO_BST_UNCHECKED       0
#define ORTO_BST_CHECKED         1

/* Notification codes, in the high 16 bits of a command. */
#define ORTO_BN_CLICKED          0
#define ORTO_LBN_SELCHANGE       1
#define ORTO_LBN_DBLCLK          2
#define ORTO_EN_CHANGE           0x0300
#define ORTO_CBN_SELCHANGE       1
#define ORTO_CBN_DBLCLK          2
#define ORTO_CBN_EDITCHANGE      5
#define ORTO_CBN_SELENDOK        9

/* Command ids of the standard buttons. */
#define ORTO_IDOK                1
#define ORTO_IDCANCEL            2

/* File dialog flags. */
#define ORTO_OFN_READONLY        0x00000001
#define ORTO_OFN_OVERWRITEPROMPT 0x00000002
#define ORTO_OFN_HIDEREADONLY    0x00000004
#define ORTO_OFN_NOCHANGEDIR     0x00000008
#define ORTO_OFN_PATHMUSTEXIST   0x00000800
#define ORTO_OFN_FILEMUSTEXIST   0x00001000

/* ======================================================================
 * Templates and modal dialogs
 * ====================================================================== */

/* Reads a resource script with one or more DIALOG templates.  Returns the
 * module, or null with a message naming the line in `error` (cut to
 * `errorSize` - 1 characters). */
ORTO_API ORTO_HINSTANCE ORTO_LoadTemplates(const char *scriptText, char *error, uint16_t errorSize);
/* Frees a module of ORTO_LoadTemplates; null and the library's own module
 * are left alone. */
ORTO_API void ORTO_FreeTemplates(ORTO_HINSTANCE module);
/* The library's own four templates: CHECKSPELLINGDLG, EDITLEXDLG,
 * NEWLEXDLG, OPTIONSDLG. */
ORTO_API ORTO_HINSTANCE ORTO_LibraryModule(void);

/* Runs the template `templateName` (names match without regard to case) of
 * `module` (null: the library's own) as a modal dialog owned by `parent`,
 * with `proc` as its procedure and `param` as the lParam of
 * ORTO_WM_INITDIALOG.  Returns the value given to ORTO_EndDialog, or -1 if
 * the dialog can't start (no such template, no procedure).  A dialog ended
 * during its opening is never shown. */
ORTO_API intptr_t ORTO_DialogBoxParam(ORTO_HINSTANCE module, const char *templateName, ORTO_HWND parent,
                                      ORTO_DLGPROC proc, intptr_t param);
/* Marks the dialog to end with `result`; the caller's handler runs on, and
 * the dialog goes when it returns.  Returns 1, or 0 for a window that is no
 * running dialog. */
ORTO_API int32_t ORTO_EndDialog(ORTO_HWND dialog, intptr_t result);

/* ======================================================================
 * Windows
 * ====================================================================== */

/* Makes a text control of its own, outside any dialog, for a host to check
 * (ORTO_CheckCtrlDlg).  `className` is kept as given (ORTO_GetClassName
 * returns it) and must name a text control: "EDIT", or a rich edit name
 * beginning with "RICH" ("RICHEDIT", "RichEdit20A", "RICHED16"), without
 * regard to case; else the result is null.  The control has no text limit
 * until ORTO_EM_LIMITTEXT sets one. */
ORTO_API ORTO_HWND ORTO_CreateTextControl(const char *className, const char *text);
/* For a host that keeps each character Windows Latin-1 lacks behind one
 * stand-in byte of a text control made by ORTO_CreateTextControl: the
 * front end shows the k-th `byte` of the control's text as `chars[k]`
 * (the UTF-8 of one character), and the byte itself past the last one.
 * The list is copied; `count` 0 clears it.  Returns 1, or 0 for a bad
 * handle or a null entry. */
ORTO_API int32_t   ORTO_SetShownCharacters(ORTO_HWND control, unsigned char byte, const char *const *chars,
                                           uint32_t count);
/* Places a window in screen cells: a dialog or a control of its own on the
 * screen, a control of a dialog relative to the dialog's client area. */
ORTO_API void      ORTO_MoveWindow(ORTO_HWND window, int32_t x, int32_t y, int32_t width, int32_t height);
/* Destroys a control made by ORTO_CreateTextControl.  A handle that is no
 * window any more is refused by every call: a destroyed control can't be
 * reached through an old handle. */
ORTO_API void      ORTO_DestroyWindow(ORTO_HWND window);
ORTO_API ORTO_HWND ORTO_GetDlgItem(ORTO_HWND dialog, int32_t id);
/* Text of a window, cut to `size` - 1 characters; returns the length
 * copied (0 for a bad handle). */
ORTO_API int32_t   ORTO_GetWindowText(ORTO_HWND window, char *buffer, int32_t size);
/* Returns 1, or 0 for a bad handle. */
ORTO_API int32_t   ORTO_SetWindowText(ORTO_HWND window, const char *text);
ORTO_API int32_t   ORTO_GetClassName(ORTO_HWND window, char *buffer, int32_t size);
ORTO_API int32_t   ORTO_IsWindowEnabled(ORTO_HWND window);
ORTO_API int32_t   ORTO_IsWindowVisible(ORTO_HWND window);
ORTO_API void      ORTO_GetWindowRect(ORTO_HWND window, int32_t rect[4]);   /* left, top, right, bottom, screen cells */
/* Sends a message to a window and returns its answer; 0 for a bad handle.
 * Sent to a dialog, the message goes to the dialog's procedure. */
ORTO_API intptr_t  ORTO_SendMessage(ORTO_HWND window, uint32_t message, uintptr_t wParam, intptr_t lParam);

/* ======================================================================
 * The front end: who plays the user
 * ====================================================================== */

typedef struct ORTO_FileRequest {
    int32_t save;                 /* 0: open an existing file, 1: save */
    const char *title;
    const char *filter;           /* description/pattern pairs, NUL-separated, ended by an empty string */
    const char *startFolder;
    const char *defaultExtension;
    uint32_t flags;               /* ORTO_OFN_ bits as the dialog passes them */
} ORTO_FileRequest;

typedef struct ORTO_FrontEnd {
    void *context;
    /* The user's next act on the modal dialog `dialog`: the front end may first change controls
       as a user would (text, check state, list selection); the result is the command that act
       sends, control id in the low 16 bits and notification code in the high 16 bits, or -1
       when the user closes the dialog (taken as a press of the button with id 2).
       A click on an automatic check box or radio button is the command alone: the dialog's own
       loop flips the box, or checks the button and clears the others of its group, before the
       dialog hears of it; a CBN_SELCHANGE of a combo box is followed by its CBN_SELENDOK, as a
       pick from the list is taken at once.  What the front end changes is silent (no notification of its own);
       the command it returns is the notification.  A command of a disabled or hidden control,
       or of no control of the dialog, is dropped, as no user could give it. */
    int32_t (*nextCommand)(void *context, ORTO_HWND dialog);
    void    (*messageBox)(void *context, ORTO_HWND owner, const char *text, const char *title);
    int32_t (*fileDialog)(void *context, ORTO_HWND owner, const ORTO_FileRequest *request,
                          char *path, uint32_t pathSize);          /* 1 chosen, 0 cancelled */
    void    (*help)(void *context, ORTO_HWND owner, const char *helpFile, uint32_t topic);
    void    (*waitCursor)(void *context, int32_t on);
    void    (*workArea)(void *context, int32_t rect[4]);          /* the screen the dialogs may use */
} ORTO_FrontEnd;

/* Chooses the front end; the record is copied.  A null field means the act
 * has no user: a null nextCommand closes each dialog at once (and a dialog
 * that won't close by its button 2 is ended with -1), a null messageBox
 * writes the text to the dialogs' log, a null fileDialog cancels, a null
 * workArea gives 80 by 24 cells.  null: the terminal front end. */
ORTO_API void ORTO_SetFrontEnd(const ORTO_FrontEnd *frontEnd);

/* The message that SndMsgEnumCb sends to a control. */
typedef struct ORTO_ChildMessage {
    uint32_t message;
    uintptr_t wParam;
    intptr_t lParam;
} ORTO_ChildMessage;

/* The callback through which the dialogs send one message to every control
 * of a dialog: `lParam` points to an ORTO_ChildMessage.  It always answers
 * 1, so that the walk goes on to the end. */
ORTO_API int32_t SndMsgEnumCb(ORTO_HWND window, intptr_t lParam);

/* ======================================================================
 * The dialogs
 *
 * Every dialog works on the shared session (ORTO_GetSid), which starts from
 * the settings store at the first dialog.  A dialog entry called while a
 * dialog of the shared session runs returns ORTO_DialogActive.  Each `Tmplt`
 * form takes a host's templates with the same control ids: a template name
 * of null means the library's own, and a null `instance` with a name means
 * the library's own module.
 * ====================================================================== */

/* Options: the session's options as check boxes and the dialogs' search
 * depth as three radio buttons; OK applies each to the session and writes
 * it to the store.  Returns 0 for OK, ORTO_Cancelled, ORTO_DialogActive,
 * the code of a failed start of the shared session, or -1 if the dialog
 * can't be made.  ORTO_OptionsDlgTmplt leaves the busy state alone, so the
 * Check Spelling dialog can open it. */
ORTO_API int32_t  ORTO_OptionsDlg(ORTO_HWND owner);
ORTO_API int32_t  ORTO_OptionsDlgTmplt(ORTO_HWND owner, ORTO_HINSTANCE instance, const char *templateName);

/* Dictionaries: the user lexicons of the shared session and their words;
 * files are added, created (through the New Dictionary dialog) and
 * removed, words added, deleted, imported from and exported to text files.
 * Every change is written at once: the lexicon files, and the store's
 * UserLexFiles.  Returns 0 at Close, ORTO_DialogActive, or the code of a
 * failed start of the shared session. */
ORTO_API int16_t  ORTO_EditLexDlg(ORTO_HWND parent);
ORTO_API int16_t  ORTO_EditLexDlgTmplt(ORTO_HWND parent, ORTO_HINSTANCE instance,
                                       const char *editLexDlgTemplate, const char *newLexDlgTemplate);

/* Check Spelling over a buffer of the host: `text` holds `textLen`
 * characters in a buffer of `blockSize` bytes, and is edited in place; the
 * dialog stops at each problem the engine reports, from the first to the
 * last, and a text with none shows no dialog.  With `showContext` the whole
 * text stands in the dialog's context pane.  Returns the new length of the
 * text; ORTO_Cancelled when the user cancelled (the changes made until then
 * stay in the buffer); ORTO_BufferTooSmall when a replacement did not fit
 * (the same); ORTO_DialogActive; the code of a failed start of the shared
 * session, or of ORTO_OpenBlock (a textLen above blockSize); a null `text`
 * with a textLen above 0 gives ORTO_BufferTooSmall. */
ORTO_API int32_t  ORTO_CheckBlockDlg(ORTO_HWND parent, char *text, uint32_t textLen, uint32_t blockSize,
                                     int16_t showContext);
ORTO_API int32_t  ORTO_CheckBlockDlgTmplt(ORTO_HWND parent, char *text, uint32_t textLen, uint32_t blockSize,
                                          int16_t showContext, ORTO_HINSTANCE instance,
                                          const char *checkDlgTemplate, const char *editLexDlgTemplate,
                                          const char *optionsDlgTemplate, const char *newLexDlgTemplate);

/* Check Spelling over a text control (ORTO_CreateTextControl, "EDIT" or a
 * rich edit name), chunk by chunk: each change is made in the control as
 * it happens, and the word under check is selected there.  With
 * `selectionOnly`, only the control's selection, if it has one.  Returns
 * 0 at the end of the text, or the first negative code: ORTO_Cancelled,
 * ORTO_BufferTooSmall, ORTO_OutOfMemory, ORTO_DialogActive, the code of a
 * failed start of the shared session, or ORTO_GeneralError for a window
 * that is no text control (or no window any more). */
ORTO_API int16_t  ORTO_CheckCtrlDlg(ORTO_HWND parent, ORTO_HWND ctrl, int16_t selectionOnly);
ORTO_API int16_t  ORTO_CheckCtrlDlgTmplt(ORTO_HWND parent, ORTO_HWND ctrl, int16_t selectionOnly,
                                         ORTO_HINSTANCE instance, const char *checkDlgTemplate,
                                         const char *editLexDlgTemplate, const char *optionsDlgTemplate,
                                         const char *newLexDlgTemplate);

/* The dialog procedures, for hosts that run the templates themselves. */
ORTO_API intptr_t SpellCheckDlgProc(ORTO_HWND dialog, uint32_t message, uintptr_t wParam, intptr_t lParam);
ORTO_API intptr_t OptionsDlgProc(ORTO_HWND dialog, uint32_t message, uintptr_t wParam, intptr_t lParam);
ORTO_API intptr_t EditLexDlgProc(ORTO_HWND dialog, uint32_t message, uintptr_t wParam, intptr_t lParam);
ORTO_API intptr_t NewLexDlgProc(ORTO_HWND dialog, uint32_t message, uintptr_t wParam, intptr_t lParam);

/* @@DIALOG_CALLS@@ */

#ifdef __cplusplus
}
#endif

#endif /* ORTO_UI_H */
