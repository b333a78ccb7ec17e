/*
 * cmd_check.cpp -- `orto check`: the Check Spelling dialog over files, in
 * the terminal, each file corrected in place.
 *
 * Each file's text goes into a text control of its own, which the dialog
 * walks as a host's edit control (ORTO_CheckCtrlDlg): every change lands
 * in the control as it is made, and the terminal shows the control as the
 * document behind the dialog.  Only when the walk is over is the control's
 * text put back into the file, also after Cancel, since the dialog keeps
 * the changes made until then.  Until that moment the file is not touched,
 * so an interrupt during the check (Ctrl-C, SIGTERM, SIGHUP: the terminal
 * gives the screen back and the program ends) leaves it as it was; the
 * replacement itself is one rename (file_replace.cpp).
 *
 * Cancel ends the whole run: the files after it are not checked.
 */
#include <string.h>
#include <sys/ioctl.h>

#include "orto_ui.h"
#include "dialog_setup.h"
#include "text_file.h"

void printCheckHelp(FILE *out)
{
    fputs("Usage: orto check [OPTION]... FILE...\n"
          "\n"
          "Checks each FILE in the Check Spelling dialog, in the terminal, and\n"
          "writes the changes back into the file at the end of the check, also\n"
          "when the dialog is cancelled.  Cancel stops the run: the files after\n"
          "that one are not checked.  A file is replaced whole, with its\n"
          "permissions, and keeps its encoding, line ends, byte-order mark and\n"
          "final newline or the lack of one; a file without changes is not\n"
          "touched, and an interrupt (Ctrl-C) before the end leaves it as it was.\n"
          "A directory, a file that can't be read or written, a binary file and\n"
          "text that isn't valid UTF-8 are refused; the other files are checked.\n"
          "The lexicons and options are those of the settings, which the\n"
          "Dictionaries and Options dialogs change ('orto dictionaries',\n"
          "'orto options'); settings that name no main lexicon get the bundled\n"
          "en-US (or -d) and the personal lexicon of 'orto list'.  The exit\n"
          "status is 0 when every file was checked and saved, 1 when a file was\n"
          "refused or couldn't be saved, 2 for a bad command line or without a\n"
          "terminal.\n"
          "\n",
          out);
    printDialogOptionsHelp(out, true);
}

/* Rows that the Check Spelling dialog takes in the terminal without its
 * context pane, and the fewest rows the document gets. */
enum { CheckDialogRows = 15, MinDocumentRows = 3 };

/* The document takes the top of the screen, all the rows the dialog leaves
 * free, so that the dialog's placement puts it below the text and the
 * word under check stays in sight. */
static void placeDocument(ORTO_HWND control)
{
    struct winsize size;
    int rows = 24, columns = 80;
    if (ioctl(1, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0) {
        rows = size.ws_row;
        columns = size.ws_col;
    }
    int height = rows - CheckDialogRows;
    ORTO_MoveWindow(control, 0, 0, columns, height < MinDocumentRows ? MinDocumentRows : height);
}

/* Runs the dialog over `text` (engine text) in a text control, which
 * shows the characters the stand-in bytes keep; `text` becomes the
 * control's text afterwards.  Returns the dialog's result. */
static int16_t checkInControl(const TextFile &file, std::string *text)
{
    ORTO_HWND control = ORTO_CreateTextControl("EDIT", text->c_str());
    if (!control)
        return ORTO_OutOfMemory;
    std::vector<const char *> kept;
    for (const std::string &c : file.kept)
        kept.push_back(c.c_str());
    ORTO_SetShownCharacters(control, ForeignLetterByte, kept.data(), (uint32_t)kept.size());
    placeDocument(control);
    int16_t rc = ORTO_CheckCtrlDlg(nullptr, control, 0);
    intptr_t length = ORTO_SendMessage(control, ORTO_WM_GETTEXTLENGTH, 0, 0);
    std::vector<char> after((size_t)length + 1, '\0');
    int32_t got = ORTO_GetWindowText(control, after.data(), (int32_t)after.size());
    text->assign(after.data(), (size_t)got);
    ORTO_DestroyWindow(control);
    return rc;
}

int checkFiles(const std::vector<std::string> &paths, TextEncoding encoding)
{
    int status = ExitOk;
    for (size_t i = 0; i < paths.size(); i++) {
        TextFile file;
        std::string text, bytes;
        if (loadTextFile(paths[i], encoding, &file, &text) != ExitOk) {
            status = ExitFailure;
            continue;
        }
        int16_t rc = checkInControl(file, &text);
        if (rc != 0 && rc != ORTO_Cancelled && rc != ORTO_BufferTooSmall && rc != ORTO_OutOfMemory) {
            /* the dialog couldn't start: no change was made */
            printError("the check can't start: %s", resultText(rc));
            return ExitFailure;
        }
        if (!rebuildText(file, text, &bytes)) {
            printError("%s: the checked text lost a character that Windows Latin-1 lacks, so it can't "
                       "be put back; the file is left as it was", paths[i].c_str());
            status = ExitFailure;
        } else if (saveTextFile(file, bytes) != ExitOk) {
            status = ExitFailure;
        }
        if (rc == ORTO_Cancelled) {
            if (i + 1 < paths.size())
                printError("cancelled: %zu more file(s) not checked", paths.size() - i - 1);
            break;
        }
        if (rc < 0) {
            printError("%s: the check stopped early: %s", paths[i].c_str(), resultText(rc));
            status = ExitFailure;
        }
    }
    return status;
}

int runCheck(int argc, char **argv, int first)
{
    DialogOptions options;
    int exitCode;
    if (!beginDialogCommand(argc, argv, first, "check", true, printCheckHelp, &options, &exitCode))
        return exitCode;
    return checkFiles(options.operands, options.encoding);
}
