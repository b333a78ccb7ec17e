/*
 * cmd_dialogs.cpp -- `orto dictionaries` and `orto options`: the
 * Dictionaries and Options dialogs on their own, in the terminal, over
 * the same settings as `orto check`.  What they change is written by the
 * dialogs themselves: the lexicon files and the settings store.
 */
#include "orto_ui.h"
#include "dialog_setup.h"

void printDictionariesHelp(FILE *out)
{
    fputs("Usage: orto dictionaries [OPTION]...\n"
          "\n"
          "Opens the Dictionaries dialog in the terminal: the user lexicons of\n"
          "the settings and their words.  Lexicons are added, created and\n"
          "removed, words added with their actions, deleted, imported from and\n"
          "exported to text files; each change is written at once.\n"
          "\n",
          out);
    printDialogOptionsHelp(out, false);
}

void printOptionsHelp(FILE *out)
{
    fputs("Usage: orto options [OPTION]...\n"
          "\n"
          "Opens the Options dialog in the terminal: what the checker reports and\n"
          "ignores, how it splits words and how far it searches for suggestions.\n"
          "OK writes the choices to the settings, where 'orto check' finds them.\n"
          "\n",
          out);
    printDialogOptionsHelp(out, false);
}

/* The exit code of a dialog's result. */
static int dialogExit(int32_t rc)
{
    if (rc >= 0 || rc == ORTO_Cancelled)
        return ExitOk;
    printError("the dialog can't start: %s", resultText(rc));
    return ExitFailure;
}

int runDictionaries(int argc, char **argv, int first)
{
    DialogOptions options;
    int exitCode;
    if (!beginDialogCommand(argc, argv, first, "dictionaries", false, printDictionariesHelp, &options,
                            &exitCode))
        return exitCode;
    return dialogExit(ORTO_EditLexDlg(nullptr));
}

int runOptions(int argc, char **argv, int first)
{
    DialogOptions options;
    int exitCode;
    if (!beginDialogCommand(argc, argv, first, "options", false, printOptionsHelp, &options, &exitCode))
        return exitCode;
    return dialogExit(ORTO_OptionsDlg(nullptr));
}
