/*
 * main.cpp -- the orto program: the engine from the command line.
 *
 * It uses the exported C API only, as any host would.  The first argument
 * names the command.  Without one, the flags of ispell decide, so that
 * editors can start the program as they start ispell or Hunspell: -a is
 * the pipe, -l the list, -v and -vv the version line that Emacs reads.
 */
#include <stdio.h>
#include <string.h>

#include "orto.h"
#include "program.h"

static void printUsage(FILE *out)
{
    fputs("Usage: orto COMMAND [OPTION]... [ARGUMENT]...\n"
          "\n"
          "ORTO spelling checker.\n"
          "\n"
          "Commands:\n"
          "  list [FILE]...       print the misspelled words of the text (orto -l)\n"
          "  suggest WORD...      check words and print ranked suggestions\n"
          "  pipe                 the ispell pipe protocol for editors (orto -a)\n"
          "  compress -o OUT LIST...  make a compressed lexicon from word lists\n"
          "  lex ACTION FILE ...  show and edit a text lexicon file\n"
          "  check FILE...        check files in the Check Spelling dialog (a terminal)\n"
          "  dictionaries         the Dictionaries dialog: the user lexicons\n"
          "  options              the Options dialog: the settings of the check\n"
          "  lsp                  a language server for editors (LSP, on stdio)\n"
          "  help [COMMAND]       show this help, or the help of a command\n"
          "\n"
          "Options:\n"
          "  --help     show this help and exit\n"
          "  --version  show the engine version and exit\n"
          "  -v, -vv    show the ispell version line that editors look for\n"
          "\n"
          "'orto COMMAND --help' tells the options of each command.\n",
          out);
}

static void printBannerVersion()
{
    char version[16];
    ORTO_Version(version, sizeof version);
    printf("@(#) International Ispell Version 3.1.20 (but really ORTO %s)\n", version);
}

struct Command {
    const char *name;
    int (*run)(int argc, char **argv, int first);
    void (*help)(FILE *out);
};

static const Command Commands[] = {
    {"list", runList, printListHelp},
    {"suggest", runSuggest, printSuggestHelp},
    {"pipe", runPipe, printPipeHelp},
    {"compress", runCompress, printCompressHelp},
    {"lex", runLex, printLexHelp},
    {"check", runCheck, printCheckHelp},
    {"dictionaries", runDictionaries, printDictionariesHelp},
    {"options", runOptions, printOptionsHelp},
    {"lsp", runLsp, printLspHelp},
};

static const Command *findCommand(const char *name)
{
    for (const Command &c : Commands)
        if (strcmp(c.name, name) == 0)
            return &c;
    return nullptr;
}

int main(int argc, char **argv)
{
    if (argc < 2) {
        printUsage(stderr);
        return ExitUsage;
    }
    const char *first = argv[1];
    if (const Command *command = findCommand(first))
        return command->run(argc, argv, 2);
    if (strcmp(first, "help") == 0) {
        if (argc < 3) {
            printUsage(stdout);
            return ExitOk;
        }
        const Command *command = findCommand(argv[2]);
        if (!command) {
            printError("no command '%s' (try 'orto --help')", argv[2]);
            return ExitUsage;
        }
        command->help(stdout);
        return ExitOk;
    }
    if (strcmp(first, "--help") == 0 || strcmp(first, "-h") == 0) {
        printUsage(stdout);
        return ExitOk;
    }
    if (strcmp(first, "--version") == 0) {
        char version[16];
        ORTO_Version(version, sizeof version);
        printf("orto %s\n", version);
        return ExitOk;
    }

    /* ispell's flags: -a anywhere makes the pipe, whatever else is given */
    for (int i = 1; i < argc; i++)
        if (strcmp(argv[i], "-a") == 0)
            return runPipe(argc, argv, 1);
    for (int i = 1; i < argc; i++)
        if (strcmp(argv[i], "-v") == 0 || strcmp(argv[i], "-vv") == 0) {
            printBannerVersion();
            return ExitOk;
        }
    if (strcmp(first, "-l") == 0)
        return runList(argc, argv, 2);
    if (first[0] == '-')
        printError("unknown option '%s' (try 'orto --help')", first);
    else
        printError("unknown command '%s' (try 'orto --help')", first);
    return ExitUsage;
}
