/*
 * word_check.h -- what becomes of one word: option tests, lookups over the
 * session's lexicons, tries in pieces, and the case and digit reports.
 */
#ifndef ORTO_ENGINE_WORD_CHECK_H
#define ORTO_ENGINE_WORD_CHECK_H

#include "engine/session.h"
#include "engine/types.h"

/* The check proper; never negative.  `mask` holds the option bits that
 * count for this check; StripPossessives and CaseSensitive are taken from
 * the session. */
i16 CheckWordMask(Session *session, u32 mask, const char *word, char *replacement,
                  i16 replacementSize);
/* A word through all lexicons in up to three passes: 0 or one of
 * ORTO_MisspelledWord, ORTO_AutoChangeWord, ORTO_ConditionalChangeWord. */
i16 LookupWord(Session *session, const char *word, char *replacement, i16 replacementSize);
/* A word in one lexicon: its action code, or a negative code. */
i16 LookupInLex(Session *session, Lexicon *lexicon, const char *word, char *replacement,
                i16 replacementSize);
/* The 64-byte working copy of a word, with 's or s' cut off when `options`
 * strip possessives.  Returns its length. */
i16 StripPossessive(const char *word, u32 options, char *buffer);
/* Puts the possessive ending of `word` back onto a replacement. */
void RestorePossessive(const char *word, char *replacement, i16 replacementSize);
/* Copies the next piece of `text` up to a separator into `piece` (64 bytes)
 * and returns where the rest begins. */
const char *NextPiece(const char *text, u32 mask, char *piece);
/* The result bit of a found action. */
i16 ActionToResult(int action);

#endif
