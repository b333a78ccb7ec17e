/*
 * rank_walk.cpp -- the candidates of the second ranking: the words of each
 * lexicon that lie within a few plain edits of the checked word.
 *
 * A plain edit is a letter put in, left out, changed, or two neighbours
 * swapped; the word may lie RankWord.maxEdits of them away (one for words
 * of up to three letters, two up to seven, three beyond, and one more in
 * the second walk that the driver runs when the first found nothing good).
 * Nearly every misspelling keeps its first letter, or loses it to a
 * neighbour, so a compressed lexicon is walked where its segment keys begin
 * like the word (first letter the same), or like the word with one edit at
 * its start (the first letter swapped, dropped, doubled or changed, or
 * swapped with the third), and nowhere else.  In a segment, each word is
 * weighed by its length and its letters first: it can't lack more of the
 * word's letters, or hold more others, than there are edits to spend.  The
 * few that pass run the plain edit distance, which takes up the rows of the
 * last word where their beginning is shared, since the words come sorted;
 * the ones within reach are costed by the error model and offered to the
 * pool.
 */
#include "suggest/rank.h"

#include <string.h>

#include <algorithm>

#include "engine/charclass.h"
#include "engine/string_helpers.h"
#include "lexicon/clex.h"
#include "lexicon/lexicon.h"

/* The rows of the plain edit distance of the last candidate that ran it. */
struct EditTrail {
    unsigned char fold[WordSize];        /* that candidate, folded */
    unsigned char row[WordSize][WordSize]; /* row[j][i]: its first j characters against the word's first i */
    i32 rows;                            /* rows that hold a value: 0..rows-1 */
    i32 deadAt;                          /* first row whose least value passes the edits; rows when none */
};

static void trailInit(EditTrail *trail, const RankWord *word)
{
    for (i32 i = 0; i <= word->length; i++)
        trail->row[0][i] = (unsigned char)i;
    trail->rows = 1;
    trail->deadAt = 1 << 30;
}

/* The plain edit distance (with swaps of neighbours) from the word to
 * `candidate`, or maxEdits + 1 once it must be more.  Only the band of
 * cells within maxEdits of the diagonal can stay within reach; each row
 * keeps a cell of maxEdits + 1 at either side of its band for the reads of
 * the next. */
static i32 plainEdits(const RankWord *word, const char *candidate, i32 length, EditTrail *trail)
{
    const i32 k = word->maxEdits, n = word->length;
    const unsigned char *fw = word->fold;
    const unsigned char out = (unsigned char)(k + 1);
    i32 shared = 0;
    while (shared < length && shared + 1 < trail->rows &&
           trail->fold[shared] == rankFold((unsigned char)candidate[shared]))
        shared++;
    if (shared >= trail->deadAt)
        return k + 1;
    trail->deadAt = 1 << 30;
    for (i32 j = shared + 1; j <= length; j++) {
        unsigned char fc = rankFold((unsigned char)candidate[j - 1]);
        trail->fold[j - 1] = fc;
        unsigned char *row = trail->row[j], *up = trail->row[j - 1];
        i32 lo = j - k > 1 ? j - k : 1, hi = j + k < n ? j + k : n;
        i32 rowMin = k + 1;
        if (j - k <= 0) {
            row[0] = (unsigned char)j;
            rowMin = j;
        } else {
            row[lo - 1] = out;
        }
        if (hi < n)
            row[hi + 1] = out;
        for (i32 i = lo; i <= hi; i++) {
            i32 v = up[i - 1] + (fw[i - 1] != fc);
            i32 a = up[i] + 1, b = row[i - 1] + 1;
            v = a < v ? a : v;
            v = b < v ? b : v;
            if (i > 1 && j > 1 && fw[i - 1] == trail->fold[j - 2] && fw[i - 2] == fc &&
                trail->row[j - 2][i - 2] + 1 < v)
                v = trail->row[j - 2][i - 2] + 1;
            v = v > k ? k + 1 : v;
            row[i] = (unsigned char)v;
            rowMin = v < rowMin ? v : rowMin;
        }
        trail->rows = j + 1;
        if (rowMin > k) {
            trail->deadAt = j;
            return k + 1;
        }
    }
    return trail->row[length][n];
}

/* Weighs one word of a lexicon that passed the plain edits. */
static void offerWord(const RankWord *word, const char *candidate, i32 frequencyCost,
                      RankPool *pool)
{
    i32 extra = frequencyCost + rankCaseCost(word, candidate);
    i32 limit = rankPoolLimit(pool) - extra;
    if (limit < 0)
        return;
    i32 cost = rankErrorCost(word, candidate, limit);
    if (cost > limit)
        return;
    bool same = StrCompare(candidate, word->text) == 0;
    rankOffer(pool, candidate, cost + extra, rankScore(word, cost + extra, same));
}

/* Bits set in x (the processor's own count isn't assumed). */
static inline int popCount(u32 x)
{
    x = x - ((x >> 1) & 0x55555555u);
    x = (x & 0x33333333u) + ((x >> 2) & 0x33333333u);
    return (int)((((x + (x >> 4)) & 0x0F0F0F0Fu) * 0x01010101u) >> 24);
}

/* Length and letters leave room for the edits. */
static bool mayReach(const RankWord *word, i32 length, u32 letters)
{
    i32 d = length - word->length;
    if (d > word->maxEdits || -d > word->maxEdits)
        return false;
    return popCount(letters & ~word->letters) <= word->maxEdits &&
           popCount(word->letters & ~letters) <= word->maxEdits;
}

static void weighCandidate(const RankWord *word, const char *candidate, i32 length,
                           const RankFrequencies *frequencies, EditTrail *trail, RankPool *pool)
{
    if (plainEdits(word, candidate, length, trail) > word->maxEdits)
        return;
    int klass = frequencies ? RankFreq_Class(frequencies, candidate) : -1;
    offerWord(word, candidate, rankFrequencyCost(klass), pool);
}

/* Spellings of a first sound that a misspelling takes for one another:
 * `typed` in the word for `meant` in the candidate. */
struct FirstSound {
    char typed;
    const char *meant;
};
static const FirstSound FirstSounds[] = {
    {'f', "ph"}, {'k', "ch"}, {'k', "c"},  {'c', "k"},  {'c', "ch"}, {'c', "s"},
    {'s', "c"},  {'s', "ps"}, {'s', "sc"}, {'n', "kn"}, {'n', "gn"}, {'r', "wr"},
    {'r', "rh"}, {'j', "g"},  {'g', "j"},  {'w', "wh"}, {'z', "x"},
};

/* The key spells the word's first sound another way, and goes on with the
 * word's next letter or the one after it (y and i taken for each other). */
static bool keySoundsLike(const unsigned char *w, const unsigned char *key)
{
    for (const FirstSound &s : FirstSounds) {
        if (w[0] != (unsigned char)s.typed)
            continue;
        size_t n = strlen(s.meant);
        if (key[0] != (unsigned char)s.meant[0] || (n > 1 && key[1] != (unsigned char)s.meant[1]))
            continue;
        unsigned char next = key[n];
        if (next == w[1] || next == w[2] || (next == 'y' && w[1] == 'i') || (next == 'i' && w[1] == 'y'))
            return true;
    }
    return false;
}

/* A segment key begins like the word, like the word with one edit at its
 * start, or with another spelling of its first sound. */
static bool keyMayHold(const RankWord *word, const char *key)
{
    unsigned char k0 = rankFold((unsigned char)key[0]), k1 = rankFold((unsigned char)key[1]);
    unsigned char k2 = rankFold((unsigned char)key[2]);
    const unsigned char folded[3] = {k0, k1, k2};
    const unsigned char *w = word->fold; /* NUL-padded to WordSize */
    /* the first letters that another spelling of a first sound begins with */
    const bool soundFirst = k0 == 'c' || k0 == 'g' || k0 == 'j' || k0 == 'k' || k0 == 'p' ||
                            k0 == 's' || k0 == 'r' || k0 == 'w' || k0 == 'x';
    if (k0 != w[0] && k0 != w[1] && k1 != w[0] && k1 != w[1] && k0 != w[2] && !soundFirst)
        return false; /* the common case, in a glance */
    return k0 == w[0] ||                  /* the same first letter */
           (k0 == w[1] && k1 == w[2]) ||  /* the word has a letter too many at its start */
           (k1 == w[0] && k2 == w[1]) ||  /* it lacks its first letter */
           (k0 == w[1] && k1 == w[0]) ||  /* its first two letters swapped */
           (k1 == w[1] && k2 == w[2]) ||  /* its first letter another */
           (k0 == w[2] && k1 == w[1] && k2 == w[0]) || /* its first and third swapped */
           keySoundsLike(w, folded);
}

static i16 walkSegment(const RankWord *word, CLex *clex, u32 index,
                       const RankFrequencies *frequencies, EditTrail *trail, RankPool *pool)
{
    const CLexSummary *summary = &clex->summaries[index];
    /* a segment decoded before is weighed by its lengths and letters, and
     * not even loaded when no word of it can do */
    if (summary->maxLength && (summary->maxLength + word->maxEdits < word->length ||
                               summary->minLength > word->length + word->maxEdits ||
                               popCount(word->letters & ~summary->letters) > word->maxEdits))
        return 0;
    CLexSegment *segment = clex->segments[index];
    i16 rc = loadSeg(clex, segment);
    if (rc == ORTO_NotFound)
        return 0;
    RETURN_IF_NEG(rc);
    if (!segment->words)
        CLex_BuildWords(clex, index);
    trailInit(trail, word);
    if (!segment->words) {
        /* no memory for the decoded table: decode the text as we go */
        CLexCursor cur;
        CLex_StartSegment(&cur, clex, segment);
        while (const char *w = CLex_NextWord(&cur)) {
            i32 length = (i32)StrLen(w);
            u32 letters = 0;
            for (i32 i = 0; i < length; i++)
                letters |= CLex_LetterBit(baseLetter[(unsigned char)w[i]]);
            if (mayReach(word, length, letters))
                weighCandidate(word, w, length, frequencies, trail, pool);
        }
        return 0;
    }
    const CLexWords *words = segment->words;
    const u32 *at = CLex_WordsAt(words);
    const u32 *letters = CLex_WordsLetters(words);
    const unsigned char *lengths = CLex_WordsLength(words);
    const char *chars = CLex_WordsChars(words);
    for (u32 i = 0; i < words->count; i++)
        if (mayReach(word, lengths[i], letters[i]))
            weighCandidate(word, chars + at[i], lengths[i], frequencies, trail, pool);
    return 0;
}

/* One key of the directory that may hold candidates: a key of one or two
 * characters is a word of its own, any other a segment to walk. */
static i16 visitKey(const RankWord *word, CLex *clex, u32 index, const RankFrequencies *frequencies,
                    EditTrail *trail, RankPool *pool)
{
    u32 value = clex->keyValues[index];
    char key[4] = {(char)(value >> 16), (char)(value >> 8), (char)value, 0};
    if (key[2] != 0)
        return keyMayHold(word, key) ? walkSegment(word, clex, index, frequencies, trail, pool) : 0;
    i32 length = (i32)StrLen(key);
    u32 letters = CLex_LetterBit(baseLetter[(unsigned char)key[0]]) |
                  (length > 1 ? CLex_LetterBit(baseLetter[(unsigned char)key[1]]) : 0);
    if (mayReach(word, length, letters)) {
        trailInit(trail, word);
        weighCandidate(word, key, length, frequencies, trail, pool);
    }
    return 0;
}

/* Some spelling of the word's first sound begins with `first`. */
static bool soundBeginsWith(unsigned char wordFirst, unsigned char first)
{
    for (const FirstSound &s : FirstSounds)
        if ((unsigned char)s.typed == wordFirst && (unsigned char)s.meant[0] == first)
            return true;
    return false;
}

/* The keys are walked by their first byte.  Where it is the word's first
 * or second letter, or begins another spelling of its first sound, every
 * key is put to keyMayHold; elsewhere only a word that lost or changed its
 * first letter, or swapped it with the third, can stand, and only under
 * the keys that go on with the word's first two letters, its second and
 * third, or its second and first, found by search. */
i16 rankWalkCLex(const RankWord *word, CLex *clex, const RankFrequencies *frequencies,
                 RankPool *pool)
{
    EditTrail trail;
    const unsigned char *w = word->fold;
    const u32 *keys = clex->keyValues;
    for (u32 b = 0; b < 256; b++) {
        u32 from = clex->firstSegment[b], to = clex->firstSegment[b + 1];
        if (from == to)
            continue;
        unsigned char first = rankFold((unsigned char)b);
        if (first == w[0] || first == w[1] || soundBeginsWith(w[0], first)) {
            for (u32 index = from; index < to; index++)
                RETURN_IF_NEG(visitKey(word, clex, index, frequencies, &trail, pool));
            continue;
        }
        u32 sought[3] = {b << 16 | (u32)w[0] << 8 | w[1], b << 16 | (u32)w[1] << 8 | w[2],
                         first == w[2] ? b << 16 | (u32)w[1] << 8 | w[0] : 0};
        std::sort(sought, sought + 3);
        for (int s = 0; s < 3; s++) {
            if (sought[s] == 0 || (s > 0 && sought[s] == sought[s - 1]))
                continue;
            const u32 *at = std::lower_bound(keys + from, keys + to, sought[s]);
            if (at != keys + to && *at == sought[s])
                RETURN_IF_NEG(visitKey(word, clex, (u32)(at - keys), frequencies, &trail, pool));
        }
    }
    return 0;
}

void rankWalkTLex(const RankWord *word, TLex *tlex, RankPool *pool)
{
    EditTrail trail;
    for (u32 i = 0; i < tlex->count; i++) {
        const TLexEntry *entry = &tlex->table.base[i];
        switch (entry->info[0]) {
        case 'a': case 'A': case 'c': case 'C':
            if (StrCompare(entry->word, word->text) == 0 && entry->info[1])
                rankOffer(pool, entry->info + 1, -1, 99);
            break;
        case 'i': {
            /* a word the user keeps counts as a common one */
            i32 length = (i32)StrLen(entry->word);
            u32 letters = 0;
            for (i32 c = 0; c < length; c++)
                letters |= CLex_LetterBit(baseLetter[(unsigned char)entry->word[c]]);
            if (!mayReach(word, length, letters))
                break;
            trailInit(&trail, word);
            if (plainEdits(word, entry->word, length, &trail) <= word->maxEdits)
                offerWord(word, entry->word, rankFrequencyCost(0), pool);
            break;
        }
        default:
            break;
        }
    }
}
