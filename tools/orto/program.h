/*
 * program.h -- what the parts of the orto program share.
 *
 * The program is a host like any other: it reaches the engine through
 * include/orto.h alone.  Its own work is the shell around the engine: the
 * command line, the conversion between the user's text (UTF-8 as a rule)
 * and the engine's Windows Latin-1, finding lexicon files, and the output
 * formats of each command.
 *
 * Exit codes: 0 success (also when misspelled words were found), 1 a real
 * failure at run time (a file that can't be read, a lexicon that won't
 * open, text that isn't valid UTF-8), 2 a bad command line.
 */
#ifndef ORTO_PROGRAM_H
#define ORTO_PROGRAM_H

#include <stdint.h>
#include <stdio.h>

#include <string>
#include <vector>

#include "orto.h"

enum {
    ExitOk = 0,
    ExitFailure = 1,
    ExitUsage = 2,
};

/* ---- encoding.cpp: the user's text and the engine's code page. ---- */

enum TextEncoding {
    EncodingUtf8,   /* the default: converted to and from Windows Latin-1 */
    EncodingLatin1, /* bytes pass through both ways */
};

/* Stand-ins in engine text for characters that Windows Latin-1 lacks.  Both
 * take one byte, so that offsets in engine text are character offsets of
 * the input.  A letter of another script becomes a byte that is no word
 * character; a word that touches one is a piece of a word the engine can't
 * see whole, and the program doesn't report it.  A symbol (arrows, emoji)
 * becomes punctuation. */
const unsigned char ForeignLetterByte = 0x81;
const unsigned char ForeignSymbolByte = 0xA6;

/* Parses an encoding name: utf-8/utf8, or latin1/latin-1/iso-8859-1/
 * cp1252/windows-1252.  False for any other name. */
bool parseEncoding(const char *name, TextEncoding *encoding);

/* Converts user text to engine text.  False when `in` isn't valid UTF-8
 * (never with EncodingLatin1); `out` then holds what was converted before
 * the bad byte.  `foreign`, if not null, receives the number of characters
 * that became stand-ins.  With `kept`, every character that has no byte of
 * its own in Windows Latin-1 becomes ForeignLetterByte, whatever its kind,
 * and its UTF-8 bytes go to `kept` in the order of the text, so that the
 * text can be put back byte for byte (a file checked in place). */
bool toEngineText(const std::string &in, TextEncoding encoding, std::string *out,
                  size_t *foreign = nullptr, std::vector<std::string> *kept = nullptr);

/* Converts engine text back to the user's encoding. */
std::string fromEngineText(const std::string &in, TextEncoding encoding);

/* True for a byte of engine text that stands for a letter the engine can't
 * take as one: the foreign-letter stand-in, and the cp1252 letters in
 * 0x80-0x9F (such as 0x8A, S with caron) that the engine doesn't class as
 * letters. */
bool isForeignLetter(unsigned char c);

/* ---- options.cpp: the options shared by the checking commands. ---- */

struct OptionSetting {
    uint32_t bit;   /* one ORTO_ option bit */
    int on;         /* 1 to set, 0 to clear */
};

/* The options the program's sessions start with: the engine's, and words
 * with digits (1st, 3.14) pass unchecked, as other checkers let them. */
const uint32_t ProgramDefaultOptions = ORTO_DefaultOptions | ORTO_IgnoreMixedDigits;

struct CheckOptions {
    std::vector<std::string> lexicons;      /* -d, in the order given */
    std::string personalPath;               /* -p; empty for the default */
    std::vector<OptionSetting> settings;    /* --option, in the order given */
    int depth;                              /* --depth, 0..100 */
    int maxSuggestions;                     /* --max, 1..100 */
    bool exact;                             /* --exact: ORTO_Suggest's order */
    TextEncoding encoding;                  /* -i */
    std::vector<std::string> operands;      /* what isn't an option */
    bool help;                              /* --help was given */
};

void initCheckOptions(CheckOptions *options);

/* Parses the options of `list` and `suggest` from argv[first] on.  Reports
 * a bad option on stderr and returns false. */
bool parseCheckOptions(int argc, char **argv, int first, const char *command,
                       CheckOptions *options);

/* The bit of an option name (case doesn't matter), or 0. */
uint32_t optionBitByName(const char *name);

/* Parses "NAME=0" or "NAME=1" into `setting`; false with a message. */
bool parseOptionSetting(const char *text, OptionSetting *setting);

/* Parses a whole number within [low, high]; false with a message naming
 * `what`. */
bool parseNumber(const char *text, int low, int high, const char *what, int *value);

/* A language code from "am", "br", ... , "en-US", "en-GB" or a decimal
 * number; false for anything else. */
bool parseLanguage(const char *text, uint16_t *language);

/* The text of an engine result code, for messages. */
const char *resultText(int code);

/* Prints "orto: " and the message to stderr. */
void printError(const char *format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;

/* ---- the commands; each returns the exit code. ---- */

int runList(int argc, char **argv, int first);
int runSuggest(int argc, char **argv, int first);
int runPipe(int argc, char **argv, int first);
int runCompress(int argc, char **argv, int first);
int runLex(int argc, char **argv, int first);
int runCheck(int argc, char **argv, int first);
int runDictionaries(int argc, char **argv, int first);
int runOptions(int argc, char **argv, int first);

/* The files of `orto check` through the Check Spelling dialog, with the
 * front end in force, after the settings are ready: the command without
 * its terminal test, for tests with a scripted user. */
int checkFiles(const std::vector<std::string> &paths, TextEncoding encoding);

int runLsp(int argc, char **argv, int first);

void printListHelp(FILE *out);
void printSuggestHelp(FILE *out);
void printPipeHelp(FILE *out);
void printCompressHelp(FILE *out);
void printLexHelp(FILE *out);
void printCheckHelp(FILE *out);
void printDictionariesHelp(FILE *out);
void printOptionsHelp(FILE *out);
void printLspHelp(FILE *out);
void printCheckOptionsHelp(FILE *out);

#endif
