/*
 * dialog_setup.h -- what the three commands of the dialogs (check,
 * dictionaries, options) share: their options, the terminal they need,
 * and a settings store that names the lexicons `orto list` uses.
 */
#ifndef ORTO_DIALOG_SETUP_H
#define ORTO_DIALOG_SETUP_H

#include <stdio.h>

#include <string>
#include <vector>

#include "program.h"

struct DialogOptions {
    std::string ini;                    /* --ini: the settings file; empty for the default one */
    std::string lexicon;                /* -d: the main lexicon to set; empty when not given */
    TextEncoding encoding;              /* -i, for check */
    std::vector<std::string> operands;  /* the files, for check */
    bool help;                          /* --help was given */
};

/* Parses the options of `command` from argv[first] on, and runs what each
 * command does first: --help, the test that standard input and output are
 * a terminal, and prepareStore.  Returns true when the command goes on,
 * else false with its exit code in `exitCode`.  Only check (`takesFiles`)
 * takes -i and operands. */
bool beginDialogCommand(int argc, char **argv, int first, const char *command, bool takesFiles,
                        void (*help)(FILE *), DialogOptions *options, int *exitCode);

/* Readies the settings store for the dialogs: chooses it (--ini); makes
 * `options.lexicon` the main lexicon, or the bundled en-US when the store
 * names none, and then also the personal lexicon of `orto list` the user
 * lexicon (made if it is missing) and the options of `orto list` the
 * dialogs' options; and names the help file where the store names none
 * that can be found.  Returns ExitOk, or ExitFailure after a message. */
int prepareStore(const DialogOptions &options);

void printDialogOptionsHelp(FILE *out, bool check);

#endif
