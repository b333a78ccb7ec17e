/*
 * main.cpp -- the orto program: the engine from the command line.
 *
 * It uses the exported C API only, as any host would.
 */
#include <stdio.h>
#include <string.h>

#include "orto.h"

static void printUsage(FILE *out)
{
    fputs("Usage: orto [--help] [--version]\n"
          "\n"
          "ORTO spelling engine.\n"
          "\n"
          "Options:\n"
          "  --help     show this help and exit\n"
          "  --version  show the engine version and exit\n",
          out);
}

int main(int argc, char **argv)
{
    if (argc < 2) {
        printUsage(stderr);
        return 2;
    }
    if (strcmp(argv[1], "--help") == 0 || strcmp(argv[1], "-h") == 0) {
        printUsage(stdout);
        return 0;
    }
    if (strcmp(argv[1], "--version") == 0) {
        char version[16];
        ORTO_Version(version, sizeof version);
        printf("orto %s\n", version);
        return 0;
    }
    fprintf(stderr, "orto: unknown option '%s' (try 'orto --help')\n", argv[1]);
    return 2;
}
