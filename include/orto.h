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
 * Threads: the engine starts no thread of its own.  A host may run one
 * session per thread: ORTO_OpenSession and ORTO_CloseSession may be called
 * from any thread at any time, and different sessions may work at once,
 * also on the same lexicon files (each session holds its own copy in
 * memory; the clients of one text lexicon file take turns by the file's
 * lock, between threads as between processes).  A session, with its
 * lexicons, blocks and compression, serves one thread at a time: two
 * threads must never call with one session id at once, and a session
 * handed from one thread to another must pass through the host's own
 * synchronisation.  ORTO_SetDebugFile changes a name that every thread
 * reads: call it while no other thread is in the engine.  The lines that
 * threads log go whole into the one file, in no fixed order.
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
 * closed.  With a file name (at most 515 characters) the file is written at
 * once, holding the line "#LID <language>", and every later change rewrites
 * it whole before the call returns.  Returns the lexicon id (0..31),
 * ORTO_FileExists (a file of that name can be opened; it is left alone),
 * ORTO_OpenError (the file can't be made there, e.g. a missing folder, or
 * the name is too long), ORTO_WriteError, ORTO_TooManyLexicons,
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
 * ORTO_InvalidWord (empty word; for a lexicon with a file also a word that
 * begins with '#' or holds a TAB, CR or LF, or such an other word),
 * ORTO_OutOfMemory, ORTO_BadSessionId or ORTO_BadLexId.  For a lexicon
 * with a file also ORTO_WriteError (the file can't be locked or written),
 * ORTO_OpenError (no working file can be made beside it) or
 * ORTO_FileOpenError (another client's newer file can't be read); the file
 * then stays as it was, and so does the lexicon, except that an entry the
 * new one was to replace is gone from memory. */
ORTO_API int16_t ORTO_AddToLex(int16_t sid, int16_t lex, const char *word,
                               uint16_t action, const char *otherWord);

/* Deletes `word`, matched exactly with its case and without cutting a
 * possessive ending.  Returns 0, ORTO_NotFound, ORTO_ReadOnlyLex,
 * ORTO_BadSessionId or ORTO_BadLexId; for a lexicon with a file also
 * ORTO_WriteError, ORTO_OpenError or ORTO_FileOpenError, which leave file
 * and lexicon as they were. */
ORTO_API int16_t ORTO_DelFromLex(int16_t sid, int16_t lex, const char *word);

/* Removes every entry of a text lexicon; its file then holds the "#LID"
 * line alone (nothing, for a plain word list), and what other clients had
 * added to it is gone too.  Returns 0, ORTO_ReadOnlyLex, ORTO_BadSessionId
 * or ORTO_BadLexId; for a lexicon with a file also ORTO_WriteError or
 * ORTO_OpenError, after which the file is unchanged but the lexicon in
 * memory stays empty. */
ORTO_API int16_t ORTO_ClearLex(int16_t sid, int16_t lex);

/* Looks `word` up in one lexicon, with case when the session has
 * ORTO_CaseSensitive.  Returns the entry's action code (a positive letter),
 * ORTO_NotFound, or another negative code.  `otherWord` takes the entry's
 * other word, cut to `otherWordSize` - 1 characters; it is left as it was
 * when the word is not found.  A compressed lexicon answers 'i' or
 * ORTO_NotFound, and empties `otherWord` first (it holds no other words);
 * a part of its file that can't be read gives ORTO_OpenError, ORTO_BadFormat
 * (file cut or damaged there) or ORTO_OutOfMemory. */
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
 * ORTO_TooManyBlocks, ORTO_BufferTooSmall (`blockSize` < `textLength`, a
 * null `text` that isn't empty, or `blockSize` of 2 GiB or more),
 * ORTO_OutOfMemory or ORTO_BadSessionId.  The cursor starts on the first
 * word. */
ORTO_API int16_t ORTO_OpenBlock(int16_t sid, char *text, uint32_t textLength,
                                uint32_t blockSize, uint16_t copyText);

/* Closes a block; a copy is freed, a caller's buffer stays as edited.
 * Returns 0, ORTO_BadSessionId or ORTO_BadBlockId. */
ORTO_API int16_t ORTO_CloseBlock(int16_t sid, int16_t block);

/* Walks the block from its cursor and stops at the first word that has
 * something to report; the cursor then stands on it (or, if the call began
 * in the white space before that word, where it was).  Returns the result
 * mask of ORTO_CheckWord, with ORTO_DoubledWord (0x80) added when the word
 * repeats the one before it with only white space between (under
 * ORTO_ReportDoubledWords), or ORTO_EndOfBlock (0x40) when no word is left.
 * Only the first word of a block is held to a capital
 * (ORTO_ReportUncappedWords), and a word of digits alone always passes.
 * Calling again without moving the cursor reports the same word again.
 * `word` takes the word, cut to `wordSize` - 1 characters (a longer word is
 * checked as cut); `replacement` is filled as by ORTO_CheckWord, and a
 * `replacementSize` of 0 or below, or a null `replacement`, means none is
 * wanted.  A null `word` or `wordSize` 0 gives ORTO_BufferTooSmall and
 * checks nothing.  Also ORTO_BadSessionId or ORTO_BadBlockId. */
ORTO_API int16_t ORTO_CheckBlock(int16_t sid, int16_t block, char *word, uint16_t wordSize,
                                 char *replacement, int16_t replacementSize);

/* Copies the word at or after the cursor into `word`, cut to `wordSize` - 1
 * characters, without moving the cursor.  Returns the byte behind the word
 * (0..255; 0 at the end of the text), ORTO_NotFound when no word is left
 * (`word` untouched), ORTO_BufferTooSmall for a null `word` or `wordSize`
 * 0, ORTO_BadSessionId or ORTO_BadBlockId.  A word with a period inside
 * keeps one period behind it ("e.g."); an apostrophe after a final s is
 * dropped ("dogs'" gives "dogs"); hyphens end words under
 * ORTO_SplitHyphenatedWords. */
ORTO_API int16_t ORTO_GetBlockWord(int16_t sid, int16_t block, char *word, uint16_t wordSize);

/* Moves the cursor to the start of the next word.  Returns 0, or
 * ORTO_NotFound when there is none (the cursor then stands at the end of
 * the text), ORTO_BadSessionId or ORTO_BadBlockId. */
ORTO_API int16_t ORTO_NextBlockWord(int16_t sid, int16_t block);

/* Puts the cursor at byte `cursor` (not moved to a word start) and forgets
 * the word before it, so that the word there can't count as doubled.
 * Returns 0, ORTO_BufferTooSmall when `cursor` lies past the text (cursor
 * unchanged), ORTO_BadSessionId or ORTO_BadBlockId. */
ORTO_API int16_t ORTO_SetBlockCursor(int16_t sid, int16_t block, uint32_t cursor);

/* Stores, through each pointer that isn't null, the text length, the
 * buffer size, the cursor and the number of words.  Counting walks the
 * text, which ends the first-word status of ORTO_CheckBlock.  Returns 0,
 * ORTO_BadSessionId or ORTO_BadBlockId. */
ORTO_API int16_t ORTO_GetBlockInfo(int16_t sid, int16_t block, uint32_t *textLength,
                                   uint32_t *blockSize, uint32_t *cursor, uint32_t *wordCount);

/* Copies the block's text into `buffer`, with no terminator.  Returns the
 * text length, ORTO_BufferTooSmall when `bufferSize` (0 for a null
 * `buffer`) is below it (nothing copied), ORTO_BadSessionId or
 * ORTO_BadBlockId. */
ORTO_API int32_t ORTO_GetBlock(int16_t sid, int16_t block, char *buffer, uint32_t bufferSize);

/* Replaces the word at the cursor, which must stand on its first character,
 * by `newWord` (null: the empty string); the cursor stays on the start of
 * the new word.  Returns the length of `newWord`, ORTO_NotFound when no
 * word is left, ORTO_BufferTooSmall when the new word doesn't fit with one
 * byte to spare -- the old word is then deleted all the same --,
 * ORTO_BadSessionId or ORTO_BadBlockId.  `newWord` must not point into the
 * block's own buffer. */
ORTO_API int16_t ORTO_ReplaceBlockWord(int16_t sid, int16_t block, const char *newWord);

/* Inserts `newText` (null: the empty string) at the cursor, which stays on
 * its start.  The byte behind the text moves along, so a terminator there
 * stays behind the text.  Returns the length of `newText`, or
 * ORTO_BufferTooSmall when the text would not leave one byte of the buffer
 * to spare, or `newText` is 32,768 bytes or longer (text unchanged); also
 * ORTO_BadSessionId or ORTO_BadBlockId.  `newText` must not point into the
 * block's own buffer. */
ORTO_API int16_t ORTO_InsertBlockText(int16_t sid, int16_t block, const char *newText);

/* Deletes the word at the cursor together with the white space in front of
 * it; here a hyphen or a period ends a word.  The cursor goes to the next
 * word.  `deletedText` takes the deleted bytes, cut to `deletedSize` - 1
 * and terminated; with a null `deletedText` or `deletedSize` 0 or below
 * nothing is handed back.  Returns the position where the deleted text
 * began (ORTO_SetBlockCursor there and ORTO_InsertBlockText of the deleted
 * text undo the deletion), ORTO_NotFound when no word is left (the cursor
 * then stands in front of the white space, `deletedText` untouched),
 * ORTO_BadSessionId or ORTO_BadBlockId. */
ORTO_API int32_t ORTO_DelBlockWord(int16_t sid, int16_t block, char *deletedText,
                                   int16_t deletedSize);

/* Deletes `count` bytes at the cursor; the cursor stays.  The byte behind
 * the old text is not moved: after a deletion only the length tells where
 * the text ends.  Returns 0, ORTO_BufferTooSmall when fewer than `count`
 * bytes follow the cursor (text unchanged), ORTO_BadSessionId or
 * ORTO_BadBlockId. */
ORTO_API int16_t ORTO_DelBlockText(int16_t sid, int16_t block, uint32_t count);

/* @@BLOCK_CALLS@@ */

/* Opens a lexicon file in the lowest free lexicon slot.  The kind of file
 * is told by its contents.  A text lexicon is read whole into memory: CR LF
 * lines, a first line "#LID <language>" and then one entry a line (word,
 * TAB, action letter, other word), or, when the first line doesn't begin
 * with '#', a plain word list (language 0x616D, each line a word accepted
 * with action 'i').  The file isn't kept open; each change rewrites it, and
 * a change first reloads the file if another client has written it since.
 * A compressed lexicon (a file that begins with 57 00 05 01) is read-only:
 * opening reads its directory and suffix tables, and the words are read
 * from the file, which must stay in place unchanged, as lookups need them.
 * `memoryBudget` is the most bytes of its word text held in memory at once
 * (the least recently used parts go first); 0 means no limit.  It concerns
 * compressed lexicons only.  A compressed file that ends between its
 * sections, or inside its language, character size or word text, opens
 * with what it holds up to there.  A null `fileName` counts as empty.  Returns
 * the lexicon id (0..31), ORTO_FileOpenError (the file can't be opened, or
 * the name has more than 515 characters), ORTO_TooManyLexicons,
 * ORTO_OutOfMemory (also: a part of a compressed lexicon is larger than
 * `memoryBudget`, or its tables pass their limits), ORTO_BadFormat (a
 * damaged compressed lexicon), ORTO_ReadError (its suffix tables cut short),
 * ORTO_Unsupported (a Unicode one) or ORTO_BadSessionId. */
ORTO_API int16_t ORTO_OpenLex(int16_t sid, const char *fileName, uint32_t memoryBudget);

/* @@LEXFILE_CALLS@@ */

/* ======================================================================
 * Lexicon compressor: sorted word lists into a compressed lexicon
 * ====================================================================== */

/* Starts a compressed lexicon in `outputFile` (at most 515 characters), in
 * `language`, with the suffix tables of `suffixFile` (null or empty: no
 * suffixes; otherwise CR LF lines, '#' lines are comments, the first 30
 * others are the one-byte suffixes, the next 255 the two-byte ones, each
 * cut to 8 characters).  The file is written under a temporary name beside
 * `outputFile` and takes its name only at ORTO_CompressLexEnd, so a failed
 * or aborted compression leaves an earlier file of that name as it was.
 * With a suffix file, `*lineNumber` (if not null) receives the number of
 * suffix lines read up to the end of the one-byte table, comments included.
 * Returns 0, ORTO_OpenError (output or suffix file can't be opened, or the
 * name is empty or too long), ORTO_WriteError, ORTO_OutOfMemory,
 * ORTO_Unsupported (this session is compressing already: end or abort that
 * first) or ORTO_BadSessionId.  After a failure nothing is open; call
 * ORTO_CompressLexInit again or ORTO_CompressLexAbort. */
ORTO_API int16_t ORTO_CompressLexInit(int16_t sid, const char *outputFile, const char *suffixFile,
                                      int16_t language, uint32_t *lineNumber);

/* Adds the words of the list `wordFile`: CR LF lines, one word a line (at
 * most 63 bytes of letters, digits, punctuation and spaces), strictly
 * ascending by unsigned bytes, no duplicates; empty lines and lines that
 * begin with '#' are skipped.  Several lists may be given, one a call, in
 * any order, but no two may hold words with the same first three bytes.
 * `*lineNumber` (if not null) receives the number of the last line read,
 * counting skipped lines, so it points at a bad word.
 * Returns 0, ORTO_OpenError (list can't be opened), ORTO_InvalidWord (word
 * too long, or a byte below 0x20 or of no character class),
 * ORTO_OutOfSequence (word not above the one before, or first three bytes
 * shared with an earlier list), ORTO_OutOfMemory (also: more than 65,535
 * different first-three-byte keys), ORTO_WriteError, ORTO_Unsupported (no
 * ORTO_CompressLexInit, or it failed) or ORTO_BadSessionId.  After a
 * failure, ORTO_CompressLexEnd keeps the lists finished before it;
 * ORTO_CompressLexAbort gives up. */
ORTO_API int16_t ORTO_CompressLexFile(int16_t sid, const char *wordFile, uint32_t *lineNumber);

/* Finishes the lexicon, puts it under its name (replacing a file that was
 * there) and ends the compression.  Returns 0 (also when none was started),
 * ORTO_WriteError (nothing replaced then), ORTO_Unsupported (the
 * ORTO_CompressLexInit before it failed) or ORTO_BadSessionId. */
ORTO_API int16_t ORTO_CompressLexEnd(int16_t sid);

/* Gives up a compression: the temporary file is deleted, `outputFile` is
 * left as it was.  A session without a compression, or a bad id, is left
 * as it is. */
ORTO_API void ORTO_CompressLexAbort(int16_t sid);

/* @@CLEX_CALLS@@ */

/* ======================================================================
 * Suggestions
 * ====================================================================== */

/* Ranks replacement candidates for `word` (its possessive ending cut when
 * the session strips possessives) from every lexicon of the session, slot 31
 * first, by spelling (ORTO_TypographicalSuggestions) and by sound
 * (ORTO_PhoneticSuggestions), plus the word split in two
 * (ORTO_SuggestSplitWords).  An a/A/c/C entry of a text lexicon for exactly
 * this word offers its other word with score 99.  At most `maxSuggestions`
 * candidates are kept, best first; equal scores stand in order of arrival.
 * Each candidate takes the case pattern of `word` (all capitals, or a
 * capital first letter); a candidate that then equals the one before it is
 * left out.
 * `depth` (0..100) bounds the search in compressed lexicons: a segment of
 * words is opened when its first three letters score at least 100 - depth
 * against those of the word.  Text lexicons are always searched whole.
 * Output: `suggestions` receives the strings one behind the other, each
 * NUL-terminated, and an empty string after the last (an empty list is one
 * NUL byte); `scores[i]` (0..100) receives the score of string i.  Elements
 * of `scores` beyond the list are not touched.
 * Returns 0 (also for an empty list or an empty word), ORTO_BadSessionId,
 * ORTO_OutOfMemory, the code of a compressed lexicon whose segment can't be
 * read (ORTO_OpenError, ORTO_BadFormat, ...), or ORTO_BufferTooSmall:
 *   - `suggestionsSize` < 1, `maxSuggestions` < 1, or a null `suggestions`
 *     or `scores`: nothing is written at all;
 *   - the strings don't fit with the closing empty string: those that fit
 *     stand in `suggestions` with their scores, but the list is not closed
 *     and must not be read.
 * After any other failure `suggestions` holds the empty list.  Both buffers
 * are the caller's; the call keeps no pointer to them. */
ORTO_API int16_t ORTO_Suggest(int16_t sid, const char *word, int16_t depth, char *suggestions,
                              int32_t suggestionsSize, int16_t *scores, int16_t maxSuggestions);

/* The second ranking: the candidates people mean first.  A call of its own,
 * so that ORTO_Suggest keeps its order for every host that relies on it.
 * Arguments, output, case carry-over, the possessive ending and the result
 * codes are those of ORTO_Suggest (logged as ORTO_SuggestRanked); what
 * differs is which candidates come and in what order:
 *   - candidates are the words of every lexicon within a few plain edits
 *     of the word (a letter put in, left out, changed, or two neighbours
 *     swapped: one edit for words of up to three characters, two up to
 *     seven, three beyond; one fewer at `depth` below 25, one more at 75
 *     or above; and at `depth` 25 or above, for a word of four characters
 *     or more of which no candidate scores 80, a second search with one
 *     more), whatever the options ORTO_TypographicalSuggestions and
 *     ORTO_PhoneticSuggestions say, and the word split in two where both
 *     halves are words, whatever ORTO_SuggestSplitWords says;
 *   - their order comes from an error model that knows what people get
 *     wrong (a letter doubled or left single, neighbours swapped, two
 *     letters swapped across the one between them, a vowel for a vowel,
 *     letters and groups of letters that sound alike) and from how
 *     common each word is: the frequencies that ORTO_SetLexFrequencies
 *     gave its compressed lexicon.  Words of a text lexicon count as
 *     common; a compressed lexicon without frequencies ranks by the error
 *     model alone.  An a/A/c/C entry of a text lexicon for exactly this
 *     word offers its other word first, with score 99;
 *   - scores (0..100) mean what they mean for ORTO_Suggest: 100 is the word
 *     itself, and the lower the score the more of the word a candidate
 *     changes; no candidate scores below 40, so that a word with nothing
 *     close (such as "qzxqzxqzx") gets the empty list.  Equal scores stand
 *     in the order of the error model.
 * `depth` only sets the edits as above; text lexicons are searched whole.
 * Nothing is kept from one call to the next but the segments that the
 * walk brings into a compressed lexicon's cache. */
ORTO_API int16_t ORTO_SuggestRanked(int16_t sid, const char *word, int16_t depth,
                                    char *suggestions, int32_t suggestionsSize,
                                    int16_t *scores, int16_t maxSuggestions);

/* Gives lexicon `lex` the word frequencies of the file `fileName`, for
 * ORTO_SuggestRanked, in place of any it had; a null or empty `fileName`
 * takes them away.  The file is text in the lexicon's code page, LF or
 * CR LF lines: a line "=N" (N from 0, the most common words, to 15) sets
 * the class of the words on the lines after it, one word a line; '#'
 * lines and empty lines are skipped.  A word the file doesn't name is of
 * the class after the highest in the file.  The file is read whole and
 * closed; the table takes 4 bytes a word, freed with the lexicon.  Returns
 * 0, ORTO_FileOpenError (the file can't be read), ORTO_BadFormat (a word
 * before the first "=N" line, a class out of range, a word of 64 bytes or
 * more, or a file of 64 MB or more; the lexicon then keeps what it had),
 * ORTO_OutOfMemory, ORTO_BadSessionId or ORTO_BadLexId. */
ORTO_API int16_t ORTO_SetLexFrequencies(int16_t sid, int16_t lex, const char *fileName);

/* @@SUGGEST_CALLS@@ */

/* ======================================================================
 * Settings of the dialogs
 *
 * The dialogs take their lexicons, options and texts from a settings
 * file of the INI kind: the section [ORTO] holds the settings of the
 * installation, [ORTO User] those of the user, and the section named by
 * the string table name (default "English") replacement texts for the
 * dialogs.  Lines are "key=value"; names match without regard to case.
 * The file is the one ORTO_SetIniFile names; else ORTO.INI beside
 * liborto.so, if it exists; else the file that the key ORTOProfileFile of
 * [ORTO] in /etc/orto.ini names; else $XDG_CONFIG_HOME/orto/ORTO.INI
 * (~/.config/orto/ORTO.INI when the variable is unset).  A write makes the
 * file and its folder if need be, and changes only the line of its key.
 *
 * Reads never fail: a missing key or file reads as the empty string.
 * Writes that can't be done (no rights) fail in silence.  Lists are file
 * names separated by commas; a name without '/' lies in the folder of its
 * kind (MainLexPath or UserLexPath).
 *
 * The getters copy the value cut to `size` - 1 characters and terminated;
 * a null `buffer` or a `size` of 0 gets nothing.  The setters return 0,
 * or ORTO_DialogActive while a dialog of the shared session runs (nothing
 * is changed then).  A setter that gets through closes the shared session
 * (see ORTO_GetSid) after saving its options, so that the next dialog
 * starts afresh from the new settings.  Null strings count as empty.
 * ====================================================================== */

/* The help file of the dialogs ([ORTO] HelpFile). */
ORTO_API void    ORTO_GetHelpFile(char *buffer, uint16_t size);
ORTO_API int16_t ORTO_SetHelpFile(const char *name);
/* The main lexicons ([ORTO] MainLexFiles). */
ORTO_API void    ORTO_GetMainLexFiles(char *buffer, uint16_t size);
ORTO_API int16_t ORTO_SetMainLexFiles(const char *list);
/* The folder of the main lexicons ([ORTO] MainLexPath).  The empty string
 * here means that the dialogs take [ORTO] LexPath, or ".". */
ORTO_API void    ORTO_GetMainLexPath(char *buffer, uint16_t size);
ORTO_API int16_t ORTO_SetMainLexPath(const char *path);
/* The user lexicons ([ORTO User] UserLexFiles); the Dictionaries dialog
 * writes this list too. */
ORTO_API void    ORTO_GetUserLexFiles(char *buffer, uint16_t size);
ORTO_API int16_t ORTO_SetUserLexFiles(const char *list);
/* The folder of the user lexicons ([ORTO User] UserLexPath); empty: the
 * folder of the main lexicons. */
ORTO_API void    ORTO_GetUserLexPath(char *buffer, uint16_t size);
ORTO_API int16_t ORTO_SetUserLexPath(const char *path);
/* The section of the dialogs' texts ([ORTO User] StringTableName).  The
 * setter takes at most 255 characters, and writes the key too. */
ORTO_API void    ORTO_GetStringTableName(char *buffer, uint16_t size);
ORTO_API int16_t ORTO_SetStringTableName(const char *name);
/* A name kept for hosts written for the registry ("Software\Fernhollow\ORTO"
 * at first); nothing reads settings under it on this system.  The setter
 * takes at most 515 characters. */
ORTO_API void    ORTO_GetRegTreeName(char *buffer, uint16_t size);
ORTO_API int16_t ORTO_SetRegTreeName(const char *name);
/* Names the settings file (at most 515 characters), which is then used as
 * it stands, never searched for; the empty string makes the next use
 * search again.  The shared session's options go to the file used until
 * now first. */
ORTO_API int16_t ORTO_SetIniFile(const char *path);

/* @@SETTINGS_CALLS@@ */

/* ======================================================================
 * The shared session of the dialogs
 *
 * All dialogs of a process work on one session, opened at the first call
 * that needs it, from the settings: a temporary lexicon (no file; Ignore
 * All and Change All put their words there) in lexicon slot 0, then the
 * user lexicons, then the main lexicons, then the options ([ORTO User]
 * IgnoreCappedWords ... SplitWords, Language).  A lexicon that can't be
 * opened is shown by a message box and left out; lexicons past the 31st
 * are left out.  The session closes when the library is unloaded (at the
 * end of the process) and when a settings call changes what it came from,
 * and then writes its options back to [ORTO User].
 * ====================================================================== */

/* Opens the shared session if it isn't open.  Returns its id, or the code
 * of the ORTO_OpenSession or ORTO_CreateLex that failed.  A host may use
 * the engine calls on it; it must not close it. */
ORTO_API int16_t ORTO_GetSid(void);

/* The counts of the last Check Spelling dialog: words checked, words
 * changed, problems found.  A null pointer is left out. */
ORTO_API void ORTO_GetStatistics(uint32_t *wordsChecked, uint32_t *wordsChanged, uint32_t *errorsFound);

/* Empties the temporary lexicon of the shared session, opening the session
 * if need be.  Returns 0, ORTO_DialogActive while a dialog runs, or the
 * code of a failed opening. */
ORTO_API int16_t ORTO_ResetLex(void);

/* Whether the dialogs apply auto-change entries without asking: reads
 * [ORTO User] AutoCorrect, 0 if it is missing (where the dialogs start
 * with 1), and makes it the dialogs' value. */
ORTO_API int32_t ORTO_GetAutoCorrect(void);
/* Sets the dialogs' value and writes the key; also while a dialog runs.
 * Returns 0. */
ORTO_API int16_t ORTO_SetAutoCorrect(int16_t value);

/* The search depth of the dialogs' suggestions (see ORTO_Suggest): reads
 * [ORTO User] MinSuggestDepth, 0 if it is missing (where the dialogs
 * start with 50), and makes it the dialogs' value. */
ORTO_API int16_t ORTO_GetMinSuggestDepth(void);
/* Sets the dialogs' value and writes the key; also while a dialog runs.
 * Returns 0. */
ORTO_API int16_t ORTO_SetMinSuggestDepth(int16_t depth);

/* The lexicon id in the shared session of a lexicon of the dialogs, found
 * by its name as its list gives it, or by the file name behind the last
 * '/' of that; the empty string (or null) names the temporary lexicon.
 * Opens the shared session if need be.  Returns the id, a negative id for
 * a listed file that couldn't be opened, ORTO_FileOpenError when no
 * lexicon has that name, or the code of a failed opening. */
ORTO_API int16_t ORTO_GetLexId(const char *name);

/* Where the next Check Spelling dialog opens: its top left corner at (x, y)
 * in screen cells, as if the user had locked it there (its Lock Pos. box
 * shows checked).  Needs no session; allowed while a dialog runs. */
ORTO_API void ORTO_SetDialogOrigin(int16_t x, int16_t y);

/* @@SHARED_SESSION_CALLS@@ */

#ifdef __cplusplus
}
#endif

#endif /* ORTO_H */
