/*
 * orto.h -- the exported interface of the ORTO spelling engine.
 *
 * Text is a byte string in the Windows Latin-1 code page (0x92 is the
 * typographic apostrophe).  A word has at most 63 characters; longer words
 * are handled as their first 63.  Every `size` argument is the whole size of
 * the caller's buffer, terminator included.
 *
 * Results: 0 or a positive value is success, a negative ORTO_* error code is
 * failure.  A failing call changes nothing unless its comment says otherwise,
 * and writes one line to the debug log when one is set (ORTO_SetDebugFile).
 *
 * Null pointers: a null pointer where a string is read counts as the empty
 * string; a null output buffer counts as a buffer of size 0.  No call
 * dereferences a null pointer.
 *
 * Threads: a session serves one thread at a time.  Different sessions may be
 * used from different threads at once.
 */
#ifndef ORTO_H
#define ORTO_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define ORTO_API __attribute__((visibility("default")))
#else
#define ORTO_API
#endif

/* ---- Error codes: every failure is one of these negative numbers. ---- */
#define ORTO_GeneralError     (-1)  /* no free session slot; lexicon of unknown kind */
#define ORTO_BadSessionId     (-2)  /* session id out of range or not open */
#define ORTO_NotFound         (-3)  /* no word at or after the cursor; word not in a lexicon */
#define ORTO_FileOpenError    (-4)  /* a lexicon file can't be opened */
#define ORTO_TooManyLexicons  (-5)  /* all 32 lexicon slots in use */
#define ORTO_UnknownAction    (-6)  /* action code not one of a A c C e i */
#define ORTO_BadLexId         (-7)  /* lexicon id out of range or not open */
#define ORTO_BufferTooSmall   (-8)  /* a buffer can't take the text, or a range runs past the text */
#define ORTO_ReadOnlyLex      (-9)  /* change to a lexicon that isn't a text lexicon */
#define ORTO_OutOfMemory      (-12) /* no memory */
#define ORTO_Unsupported      (-13) /* operation not available for this lexicon, or out of order */
#define ORTO_FileExists       (-14) /* the file of a new lexicon exists already */
#define ORTO_TooManyBlocks    (-15) /* all 4 block slots in use */
#define ORTO_BadBlockId       (-16) /* block id out of range or not open */
#define ORTO_Cancelled        (-17) /* the user left a dialog by Cancel */
#define ORTO_InvalidWord      (-19) /* a word that is empty, too long or holds bytes a lexicon can't store */
#define ORTO_OutOfSequence    (-20) /* compressor input out of order, duplicate segment */
#define ORTO_ReadError        (-22) /* a table of a compressed lexicon can't be read */
#define ORTO_WriteError       (-23) /* a file can't be written or locked */
#define ORTO_OpenError        (-24) /* a working file can't be opened */
#define ORTO_DialogActive     (-25) /* a dialog runs, so its settings can't change */
#define ORTO_BadFormat        (-26) /* bad magic number, bad section, unknown lexicon format */

/* ---- Result bits of a word check (ORTO_CheckWord, ORTO_CheckBlock). ---- */
#define ORTO_MisspelledWord         0x01 /* in no lexicon, or excluded (action e) */
#define ORTO_AutoChangeWord         0x02 /* action a/A: replacement takes the word's place */
#define ORTO_ConditionalChangeWord  0x04 /* action c/C: replacement is offered */
#define ORTO_UncappedWord           0x08 /* should begin with a capital and doesn't */
#define ORTO_MixedCaseWord          0x10 /* case changes inside the word */
#define ORTO_MixedDigitsWord        0x20 /* misspelled and holds a digit; never without 0x01 */
#define ORTO_EndOfBlock             0x40 /* ORTO_CheckBlock only: no word is left */
#define ORTO_DoubledWord            0x80 /* ORTO_CheckBlock only: repeats the word before it */

/* ---- Option bits (ORTO_GetOption, ORTO_SetOption). ---- */
#define ORTO_IgnoreCappedWords        0x1u     /* capitalised words pass unchecked */
#define ORTO_IgnoreMixedCase          0x2u     /* mixed-case words pass unchecked */
#define ORTO_IgnoreMixedDigits        0x4u     /* words with a digit pass unchecked */
#define ORTO_IgnoreAllCapsWords       0x8u     /* words of capitals only pass unchecked */
#define ORTO_ReportUncappedWords      0x10u    /* a first word without a capital is reported */
#define ORTO_ReportMixedCase          0x20u    /* mixed-case words are reported */
#define ORTO_ReportMixedDigits        0x40u    /* misspelled words with a digit get ORTO_MixedDigitsWord */
#define ORTO_ReportSpelling           0x80u    /* words are looked up at all (default on) */
#define ORTO_ReportDoubledWords       0x100u   /* ORTO_CheckBlock reports repeated words */
#define ORTO_CaseSensitive            0x200u   /* lookups respect case (default on) */
#define ORTO_SplitHyphenatedWords     0x400u   /* hyphens end words; pieces are checked (default on) */
#define ORTO_SplitContractedWords     0x800u   /* pieces between apostrophes are checked */
#define ORTO_SplitWords               0x1000u  /* run-together words are checked as their parts */
#define ORTO_SuggestSplitWords        0x2000u  /* suggestions include a word split in two */
#define ORTO_PhoneticSuggestions      0x4000u  /* suggestions by sound */
#define ORTO_TypographicalSuggestions 0x8000u  /* suggestions by spelling (default on) */
#define ORTO_StripPossessives         0x10000u /* 's and s' come off before lookup (default on) */
#define ORTO_Language                 0x80000002u /* not a bit: the session's language code */

/* The option mask of a new session: 0x18680. */
#define ORTO_DefaultOptions (ORTO_ReportSpelling | ORTO_CaseSensitive | \
    ORTO_SplitHyphenatedWords | ORTO_TypographicalSuggestions | ORTO_StripPossessives)

/* ---- Lexicon formats (ORTO_GetLexInfo). ---- */
#define ORTO_LexCompressed 0
#define ORTO_LexText       1

/* ---- Action codes of text lexicon entries. ---- */
#define ORTO_AutoChange                      'a' /* replace at once, other word as stored */
#define ORTO_AutoChangePreserveCase          'A' /* replace at once, case of the checked word */
#define ORTO_ConditionalChange               'c' /* offer the other word as stored */
#define ORTO_ConditionalChangePreserveCase   'C' /* offer the other word, case of the checked word */
#define ORTO_Ignore                          'i' /* accept the word */
#define ORTO_Exclude                         'e' /* report the word as misspelled */

/* ---- Language codes: two letters, the first in the high byte. ---- */
#define ORTO_LangAny            0x7878 /* "xx" */
#define ORTO_LangAmerican       0x616D /* "am", a new session's language */
#define ORTO_LangBritish        0x6272 /* "br" */

/* ======================================================================
 * Sessions, options, version, debug log
 * ====================================================================== */

/* Opens a session.  Returns its id (0..15, the lowest free one),
 * ORTO_GeneralError when all 16 are open, or ORTO_OutOfMemory.
 * A new session has the options ORTO_DefaultOptions and language 0x616D. */
ORTO_API int16_t ORTO_OpenSession(void);

/* Closes a session with all its lexicons and blocks (and drops a running
 * compression).  Returns 0 or ORTO_BadSessionId. */
ORTO_API int16_t ORTO_CloseSession(int16_t sid);

/* For option ORTO_Language: the session's language code, sign-extended from
 * 16 bits.  Otherwise 1 if any bit of `option` is set in the session's mask,
 * else 0.  ORTO_BadSessionId for a bad session. */
ORTO_API int32_t ORTO_GetOption(int16_t sid, uint32_t option);

/* For option ORTO_Language: stores the low 16 bits of `value` as the
 * language.  Otherwise sets every bit of `option` when `value` is not 0 and
 * clears them when it is 0.  Returns what ORTO_GetOption returned before the
 * call, or ORTO_BadSessionId.  No bit or value is refused. */
ORTO_API int32_t ORTO_SetOption(int16_t sid, uint32_t option, uint32_t value);

/* Writes the engine version ("5.1"), cut to `size` - 1 characters and
 * terminated.  Nothing is written when `buffer` is null or `size` is 0. */
ORTO_API void ORTO_Version(char *buffer, uint16_t size);

/* Names the debug log file (at most 515 characters) and writes
 * "Debugging started at <date>" into it; null stops logging with
 * "Debugging stopped at <date>", the empty string stops it silently.
 * The file is opened for each line and closed after it. */
ORTO_API void ORTO_SetDebugFile(const char *fileName);

/* ======================================================================
 * Word check
 * ====================================================================== */

/* Checks one word against the session's lexicons under its options.
 * Returns a mask of result bits (0: nothing to say), or ORTO_BadSessionId.
 * `replacement` takes the text to put in the word's place (the other word of
 * an a/A/c/C entry, the word with its case mended, or the word itself), cut
 * to `replacementSize` - 1 characters.  `replacementSize` 0 means that no
 * replacement is wanted; `replacement` may then be null. */
ORTO_API int16_t ORTO_CheckWord(int16_t sid, const char *word, char *replacement,
                                int16_t replacementSize);

/* ======================================================================
 * Lexicons
 * ====================================================================== */

/* Creates an empty text lexicon in the lowest free lexicon slot.  A null
 * `fileName` makes a temporary lexicon that lives in memory until it is
 * closed.  Returns the lexicon id (0..31), ORTO_TooManyLexicons,
 * ORTO_OutOfMemory or ORTO_BadSessionId. */
ORTO_API int16_t ORTO_CreateLex(int16_t sid, const char *fileName, uint16_t language);

/* Closes a lexicon and frees its slot.  Returns 0, ORTO_BadSessionId or
 * ORTO_BadLexId. */
ORTO_API int16_t ORTO_CloseLex(int16_t sid, int16_t lex);

/* Adds `word` (its possessive ending cut when the session strips
 * possessives) with `action` (one of a A c C e i) and `otherWord` (may be
 * null; cut to 63 characters).  A word that is there already, with the same
 * case, gets the new action and other word.  Returns 0, ORTO_ReadOnlyLex
 * (not a text lexicon; tested before the action), ORTO_UnknownAction,
 * ORTO_InvalidWord (empty word), ORTO_OutOfMemory, ORTO_BadSessionId or
 * ORTO_BadLexId. */
ORTO_API int16_t ORTO_AddToLex(int16_t sid, int16_t lex, const char *word,
                               uint16_t action, const char *otherWord);

/* Deletes `word`, matched exactly with its case and without cutting a
 * possessive ending.  Returns 0, ORTO_NotFound, ORTO_ReadOnlyLex,
 * ORTO_BadSessionId or ORTO_BadLexId. */
ORTO_API int16_t ORTO_DelFromLex(int16_t sid, int16_t lex, const char *word);

/* Removes every entry of a text lexicon.  Returns 0, ORTO_ReadOnlyLex,
 * ORTO_BadSessionId or ORTO_BadLexId. */
ORTO_API int16_t ORTO_ClearLex(int16_t sid, int16_t lex);

/* Looks `word` up in one lexicon, with case when the session has
 * ORTO_CaseSensitive.  Returns the entry's action code (a positive letter),
 * ORTO_NotFound, or another negative code.  `otherWord` takes the entry's
 * other word, cut to `otherWordSize` - 1 characters; it is left as it was
 * when the word is not found. */
ORTO_API int16_t ORTO_FindLexWord(int16_t sid, int16_t lex, const char *word,
                                  char *otherWord, int16_t otherWordSize);

/* Lists a text lexicon into `buffer`: for each entry in order the word, a
 * TAB, the action letter, the other word and a NUL; one more NUL after the
 * last entry.  Returns the number of entries, ORTO_BufferTooSmall (the
 * buffer then holds the entries that fitted), ORTO_Unsupported for a
 * compressed lexicon, ORTO_BadSessionId or ORTO_BadLexId.
 * ORTO_GetLexInfo tells the size needed. */
ORTO_API int32_t ORTO_GetLex(int16_t sid, int16_t lex, char *buffer, uint32_t bufferSize);

/* Stores, through each pointer that isn't null, the bytes ORTO_GetLex needs
 * (0 for a compressed lexicon), the format (ORTO_LexCompressed or
 * ORTO_LexText) and the language of a lexicon.  Returns 0,
 * ORTO_BadSessionId or ORTO_BadLexId. */
ORTO_API int16_t ORTO_GetLexInfo(int16_t sid, int16_t lex, uint32_t *size,
                                 uint16_t *format, uint16_t *language);

/* ======================================================================
 * Text blocks
 * ====================================================================== */

/* Opens a block on `text` (`textLength` bytes, any byte allowed, no
 * terminator needed) in a buffer of `blockSize` bytes.  With `copyText` not
 * 0 the engine works on a copy of its own; with 0 it edits the caller's
 * buffer in place, which must stay alive and writable for `blockSize` bytes
 * until the block is closed.  Returns the block id (0..3),
 * ORTO_TooManyBlocks, ORTO_BufferTooSmall (`blockSize` < `textLength`, or a
 * null `text` that isn't empty), ORTO_OutOfMemory or ORTO_BadSessionId. */
ORTO_API int16_t ORTO_OpenBlock(int16_t sid, char *text, uint32_t textLength,
                                uint32_t blockSize, uint16_t copyText);

/* Closes a block; a copy is freed, a caller's buffer stays as edited.
 * Returns 0, ORTO_BadSessionId or ORTO_BadBlockId. */
ORTO_API int16_t ORTO_CloseBlock(int16_t sid, int16_t block);

/* @@BLOCK_CALLS@@ */

/* @@LEXFILE_CALLS@@ */

/* @@CLEX_CALLS@@ */

/* @@SUGGEST_CALLS@@ */

#ifdef __cplusplus
}
#endif

#endif /* ORTO_H */
