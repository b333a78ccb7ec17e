/*
 * lexicons.h -- the lexicons of a checking session: the main ones (-d),
 * the personal lexicon (-p) and the words accepted for one run.
 */
#ifndef ORTO_LEXICONS_H
#define ORTO_LEXICONS_H

#include <stdint.h>

#include <string>

#include "program.h"

struct LexiconSet {
    int16_t sid;              /* the session, -1 when none is open */
    std::string personalPath; /* where the personal lexicon is or will be; may be empty */
    bool personalIsDefault;   /* the path is the default one: its folder may be made */
    int16_t personalLex;      /* -1 while the personal lexicon isn't open */
    int16_t reservedLex;      /* empty lexicon that keeps slot 0 for a personal lexicon to come */
    int16_t runLex;           /* words accepted for this run; -1 when not wanted */
    uint16_t language;        /* for a new personal lexicon: that of the first main lexicon */
};

/* Opens a session with the options of `options` and its lexicons: the
 * personal lexicon first, if its file exists, so that its exclusions and
 * changes overrule the main lexicons; then, with `wantRunLexicon`, an
 * empty lexicon for words accepted for the run; then each -d lexicon, or
 * en-US.  Reports a failure on stderr and returns ExitFailure (with
 * everything closed), else ExitOk. */
int openLexicons(const CheckOptions &options, bool wantRunLexicon, LexiconSet *set);

/* Opens one lexicon file of any kind into session `sid`: by the engine, or
 * a Unix text file by the program into a lexicon in memory.  Reports a
 * failure on stderr and returns the negative code, else the lexicon id. */
int16_t openLexiconFile(int16_t sid, const std::string &path);

/* Closes the session. */
void closeLexicons(LexiconSet *set);

/* Adds `word` (engine text) to the personal lexicon with the action i,
 * making the lexicon and its file on the first add.  Reports a failure on
 * stderr and returns the engine's code, else 0. */
int16_t addToPersonal(LexiconSet *set, const std::string &word);

/* Accepts `word` (engine text) until the session closes. */
int16_t acceptForRun(LexiconSet *set, const std::string &word);

/* The file of a bundled lexicon ("en-US", "en_gb", ...); false if there
 * is none. */
bool findBundledLexicon(const std::string &name, std::string *path);

/* A file of the program's data folders (the bundled lexicons' folder:
 * the build tree's, share/orto beside the program, the installed one),
 * such as the dialogs' help file; false if none has it. */
bool findDataFile(const std::string &fileName, std::string *path);

/* The default personal lexicon: orto/personal.tlx in $XDG_CONFIG_HOME, or
 * in ~/.config; empty when neither is known. */
std::string defaultPersonalPath();

/* True if `word` (engine text) can stand in a text lexicon file: 1 to 63
 * bytes, no control byte (a TAB or a line end would break its line), and
 * no '#' first (the reader takes such a line for a comment). */
bool isStorableWord(const std::string &word);

/* The folder part of a path ("." when there is none). */
std::string dirName(const std::string &path);

/* Makes a folder and those above it that are missing (mode 0700); true
 * when it exists afterwards. */
bool makeFolders(const std::string &dir);

/* True for an existing regular file. */
bool isFile(const std::string &path);

/* How a lexicon file looks to the program before the engine opens it. */
enum LexFileShape {
    ShapeMissing,    /* can't be read at all; errno tells why */
    ShapeCompressed, /* begins with the magic number of compressed lexicons */
    ShapeEngineText, /* a text lexicon as the engine reads and writes it */
    ShapeUnixText,   /* text with LF line ends, or UTF-8 text: read by the program */
    ShapeBinary,     /* control bytes that no text lexicon holds */
};

/* Looks at a lexicon file; with ShapeUnixText, `utf8` tells whether its
 * words are UTF-8 (else Windows Latin-1). */
LexFileShape lexFileShape(const std::string &path, bool *utf8);

#endif
