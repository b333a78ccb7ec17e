/*
 * word_check.cpp -- CheckWordMask and the lookups under it.
 *
 * A check allocates nothing: the stripped word, each piece and the scratch
 * session (a copy of the session by value, CaseSensitive cleared) live on
 * the stack.  The first lexicon in slot order that holds a word decides,
 * whatever the others hold.
 */
#include "engine/word_check.h"

#include "engine/charclass.h"
#include "engine/string_helpers.h"
#include "lexicon/clex.h"
#include "lexicon/lexicon.h"
#include "orto.h"

i16 ActionToResult(int action)
{
    switch (action) {
    case 'A': case 'a':
        return ORTO_AutoChangeWord;
    case 'C': case 'c':
        return ORTO_ConditionalChangeWord;
    case 'e':
        return ORTO_MisspelledWord;
    default:
        return 0;
    }
}

/* The last two characters are an apostrophe and s or S, in either order. */
static bool endsPossessive(const char *word, u16 len)
{
    if (len < 2)
        return false;
    unsigned char a = (unsigned char)word[len - 2], b = (unsigned char)word[len - 1];
    return (IsApostrophe(a) && (b == 's' || b == 'S')) ||
           ((a == 's' || a == 'S') && IsApostrophe(b));
}

/* StrCopy that also gives the length copied: one pass over the word, on
 * the path of every check. */
static u16 copyMeasured(char *dest, u16 size, const char *src)
{
    u16 n = 0;
    while (n + 1 < size && src[n]) {
        dest[n] = src[n];
        n++;
    }
    if (size)
        dest[n] = 0;
    return n;
}

i16 StripPossessive(const char *word, u32 options, char *buffer)
{
    /* A word of more than 63 characters is tested on its 64-byte copy, so
     * the test never reads past what the copy holds. */
    u16 len = copyMeasured(buffer, WordSize, word);
    if (!(options & ORTO_StripPossessives) || len < 2)
        return (i16)len;
    if (endsPossessive(buffer, len)) {
        buffer[len - 2] = 0;
        return (i16)(len - 2);
    }
    return (i16)len;
}

void RestorePossessive(const char *word, char *replacement, i16 replacementSize)
{
    u16 len = StrLen(word);
    if (!endsPossessive(word, len))
        return;
    u16 size = (u16)(replacementSize < WordSize ? replacementSize : WordSize);
    StrAppend(replacement, size, word + len - 2);
}

const char *NextPiece(const char *text, u32 mask, char *piece)
{
    int n = 0;
    const char *p = text;
    for (; *p; p++) {
        unsigned char c = (unsigned char)*p;
        if ((c == '-' && (mask & ORTO_SplitHyphenatedWords)) ||
            (IsApostrophe(c) && (mask & ORTO_SplitContractedWords))) {
            p++; /* behind the separator */
            break;
        }
        if (n < WordSize - 1)
            piece[n++] = (char)c;
    }
    piece[n] = 0;
    return p;
}

i16 LookupInLex(Session *session, Lexicon *lexicon, const char *word, char *replacement,
                i16 replacementSize)
{
    int caseSensitive = (session->options & ORTO_CaseSensitive) ? 1 : 0;
    if (lexicon->format == LexText) {
        i16 action = TLex_Find(&lexicon->tlex, word, caseSensitive,
                               replacementSize > 0 ? replacement : nullptr, replacementSize);
        if ((action == 'A' || action == 'C') && replacementSize > 0)
            MatchCase(word, replacement);
        return action;
    }
    if (lexicon->format == LexCompressed && lexicon->clex)
        return CLex_Find(word, caseSensitive, lexicon->clex);
    return ORTO_GeneralError;
}

/* One pass over the slots; the action of the first lexicon that holds the
 * word, or 0. */
static i16 lookupPass(Session *session, const char *word, char *replacement, i16 replacementSize)
{
    for (int slot = 0; slot < MaxLexicons; slot++) {
        Lexicon *lex = session->lexSlots[slot];
        if (!lex)
            continue;
        i16 action = LookupInLex(session, lex, word, replacement, replacementSize);
        if (action > 0)
            return action;
    }
    return 0;
}

i16 LookupWord(Session *session, const char *word, char *replacement, i16 replacementSize)
{
    i16 action = lookupPass(session, word, replacement, replacementSize);
    bool caseSensitive = session->options & ORTO_CaseSensitive;
    if (!action && caseSensitive && IsUpper((unsigned char)word[0])) {
        char lowered[WordSize];
        StrCopy(lowered, WordSize, word);
        lowered[0] = (char)ToLower((unsigned char)lowered[0]);
        action = lookupPass(session, lowered, replacement, replacementSize);
    }
    if (!action && caseSensitive && IsAllCaps(word)) {
        Session scratch = *session;
        scratch.options &= ~ORTO_CaseSensitive;
        action = lookupPass(&scratch, word, replacement, replacementSize);
    }
    if (!action)
        return ORTO_MisspelledWord;
    if ((action == 'A' || action == 'C') && replacementSize > 0)
        MatchCase(word, replacement);
    return ActionToResult(action);
}

/* Greedy from the left, longest prefix first, no second try.  Later parts
 * are looked up case-blind.  Sets *result to the last lookup's answer. */
static bool runTogetherTest(Session *session, const char *stripped, char *replacement,
                            i16 replacementSize, i16 *result)
{
    Session scratch = *session;
    scratch.options &= ~ORTO_CaseSensitive;
    Session *who = session;
    const char *rest = stripped;
    char piece[WordSize];
    while (*rest) {
        u16 n = StrLen(rest);
        i16 answer = ORTO_MisspelledWord;
        while (n > 0) {
            StrCopyN(piece, WordSize, rest, n);
            answer = LookupWord(who, piece, replacement, replacementSize);
            if (!(answer & ORTO_MisspelledWord))
                break;
            n--;
        }
        if (n == 0)
            return false;
        *result = answer;
        rest += n;
        who = &scratch;
    }
    return true;
}

/* Every piece between separators must be a word. */
static bool pieceTest(Session *session, u32 mask, const char *stripped, char *replacement,
                      i16 replacementSize, i16 *result)
{
    const char *rest = stripped;
    char piece[WordSize];
    do {
        rest = NextPiece(rest, mask, piece);
        i16 answer = LookupWord(session, piece, replacement, replacementSize);
        if (answer & ORTO_MisspelledWord)
            return false;
        *result = answer;
    } while (*rest);
    return true;
}

static bool hasDigit(const char *word)
{
    for (const unsigned char *p = (const unsigned char *)word; *p; p++)
        if (IsDigit(*p))
            return true;
    return false;
}

i16 CheckWordMask(Session *session, u32 mask, const char *word, char *replacement,
                  i16 replacementSize)
{
    if (!replacement)
        replacementSize = 0;
    /* Read before anything is written to `replacement`, which the host may
     * have made the same buffer as `word`; worked out only when asked for. */
    bool mixed = (mask & (ORTO_IgnoreMixedCase | ORTO_ReportMixedCase)) && IsMixedCase(word);
    char stripped[WordSize];
    if (StripPossessive(word, session->options, stripped) < 1)
        return 0;
    if (replacementSize > 0)
        copyMeasured(replacement, (u16)replacementSize, word);

    unsigned char first = (unsigned char)word[0];
    if ((mask & ORTO_IgnoreCappedWords) && IsUpper(first))
        return 0;
    if ((mask & ORTO_IgnoreMixedCase) && mixed)
        return 0;
    if ((mask & ORTO_IgnoreMixedDigits) && hasDigit(word))
        return 0;
    if (mask & ORTO_IgnoreAllCapsWords) {
        const unsigned char *p = (const unsigned char *)word;
        while (*p && IsUpper(*p))
            p++;
        if (!*p)
            return 0;
    }

    i16 result = 0;
    if (mask & ORTO_ReportSpelling) {
        result = LookupWord(session, stripped, replacement, replacementSize);
        if (result & ORTO_MisspelledWord) {
            i16 pieces = 0;
            if ((mask & ORTO_SplitWords) &&
                runTogetherTest(session, stripped, replacement, replacementSize, &pieces))
                result = pieces;
            else if ((mask & (ORTO_SplitHyphenatedWords | ORTO_SplitContractedWords)) &&
                     pieceTest(session, mask, stripped, replacement, replacementSize, &pieces))
                result = pieces;
            else
                result = ORTO_MisspelledWord;
        }
    }

    if (mask & ORTO_ReportUncappedWords) {
        if (!IsUpper(first))
            result |= ORTO_UncappedWord;
        if (replacementSize > 0)
            replacement[0] = (char)ToUpper((unsigned char)replacement[0]);
    }
    if ((mask & ORTO_ReportMixedCase) && mixed) {
        result |= ORTO_MixedCaseWord;
        if (replacementSize > 0) {
            for (char *p = replacement; *p; p++)
                *p = (char)ToLower((unsigned char)*p);
            if (IsUpper(first))
                replacement[0] = (char)ToUpper((unsigned char)replacement[0]);
        }
    }
    if ((result & ORTO_MisspelledWord) && (mask & ORTO_ReportMixedDigits) && hasDigit(word))
        result |= ORTO_MixedDigitsWord;
    if ((mask & ORTO_StripPossessives) &&
        (result & (ORTO_AutoChangeWord | ORTO_ConditionalChangeWord)) && replacementSize > 0)
        RestorePossessive(word, replacement, replacementSize);
    return result;
}

extern "C" int16_t ORTO_CheckWord(int16_t sid, const char *word, char *replacement,
                                  int16_t replacementSize)
{
    Session *s = sessionFromId(sid, "ORTO_CheckWord");
    if (!s)
        return ORTO_BadSessionId;
    return CheckWordMask(s, s->options, orEmpty(word), replacement, replacementSize);
}
