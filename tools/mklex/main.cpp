/*
 * main.cpp -- orto_mklex: packs sorted word lists into a compressed
 * lexicon with the engine's own compressor.  The build runs it to make the
 * bundled lexicons; it uses the exported C API only, as any host would.
 *
 *   orto_mklex [-l LANG] [-s SUFFIXFILE] OUTPUT LIST...
 *
 * LANG is a two-letter language code (default "am").  On failure the
 * message names the file and line, the output is left as it was, and the
 * exit status is 1; bad arguments give 2.
 */
#include <stdio.h>
#include <string.h>

#include "orto.h"

static void printUsage(FILE *out)
{
    fputs("Usage: orto_mklex [-l LANG] [-s SUFFIXFILE] OUTPUT LIST...\n"
          "\n"
          "Compresses sorted word lists (CR LF lines, Windows Latin-1) into\n"
          "the compressed lexicon OUTPUT.\n"
          "\n"
          "  -l LANG        two-letter language code, e.g. am or br (default am)\n"
          "  -s SUFFIXFILE  suffix table: 30 one-byte, then 255 two-byte suffixes\n",
          out);
}

static const char *codeName(int code)
{
    switch (code) {
    case ORTO_BadSessionId: return "no session";
    case ORTO_OutOfMemory: return "out of memory, or too many segments";
    case ORTO_Unsupported: return "compressor not started";
    case ORTO_InvalidWord: return "invalid or too long word";
    case ORTO_OutOfSequence: return "word out of sequence, or segment shared with an earlier list";
    case ORTO_WriteError: return "write error";
    case ORTO_OpenError: return "can't open file";
    default: return "error";
    }
}

int main(int argc, char **argv)
{
    const char *suffixFile = nullptr;
    const char *lang = "am";
    int arg = 1;
    for (; arg < argc && argv[arg][0] == '-'; arg++) {
        if (strcmp(argv[arg], "-h") == 0 || strcmp(argv[arg], "--help") == 0) {
            printUsage(stdout);
            return 0;
        }
        if (arg + 1 < argc && strcmp(argv[arg], "-s") == 0) {
            suffixFile = argv[++arg];
        } else if (arg + 1 < argc && strcmp(argv[arg], "-l") == 0) {
            lang = argv[++arg];
        } else {
            printUsage(stderr);
            return 2;
        }
    }
    if (argc - arg < 2 || strlen(lang) != 2) {
        printUsage(stderr);
        return 2;
    }
    const char *output = argv[arg++];
    int16_t language = (int16_t)(((unsigned char)lang[0] << 8) | (unsigned char)lang[1]);

    int16_t sid = ORTO_OpenSession();
    if (sid < 0) {
        fprintf(stderr, "orto_mklex: can't open a session (%d)\n", sid);
        return 1;
    }
    uint32_t line = 0;
    int16_t rc = ORTO_CompressLexInit(sid, output, suffixFile, language, &line);
    if (rc < 0) {
        fprintf(stderr, "orto_mklex: can't start %s%s%s: %s (%d)\n", output,
                suffixFile ? " with suffixes " : "", suffixFile ? suffixFile : "", codeName(rc), rc);
        ORTO_CloseSession(sid);
        return 1;
    }
    for (; arg < argc; arg++) {
        rc = ORTO_CompressLexFile(sid, argv[arg], &line);
        if (rc < 0) {
            fprintf(stderr, "orto_mklex: %s:%lu: %s (%d)\n", argv[arg], (unsigned long)line,
                    codeName(rc), rc);
            ORTO_CompressLexAbort(sid);
            ORTO_CloseSession(sid);
            return 1;
        }
    }
    rc = ORTO_CompressLexEnd(sid);
    ORTO_CloseSession(sid);
    if (rc < 0) {
        fprintf(stderr, "orto_mklex: %s: %s (%d)\n", output, codeName(rc), rc);
        return 1;
    }
    return 0;
}
