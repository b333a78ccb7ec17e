/*
 * rank_cost.cpp -- the error model of the second ranking: what it costs to
 * take a candidate for the word that was typed.
 *
 * A weighted edit distance, worked out over the whole table of the two
 * strings (a candidate has 63 characters at most), with weights that tell
 * the mistakes people make from the ones they don't:
 *   - a letter doubled or left single (untill, accomodate) costs 45;
 *   - a letter dropped (goverment) 60, a letter too many 95, an
 *     apostrophe or hyphen 30;
 *   - two neighbours swapped (teh, recieve) 60, two letters swapped
 *     across the one between them (poralized, munbers) 80;
 *   - a vowel for a vowel (seperate, definately) 75; a letter for one that
 *     sounds alike (c/k/s, s/z, m/n, d/t, ...) 50 to 75; any other letter
 *     100 (keys side by side get no discount: the misspellings people
 *     leave in text are mostly of spelling, not of typing);
 *   - some spellings of one sound for another (ph/f, ck/k, x/ks, qu/kw,
 *     gh/f, dg/j) 50 to 70 for the group.
 * Plain edits cost 100, so that the costs read as hundredths of an edit.
 * The weights were set on a part of the @cspell/dict-en-common-misspellings
 * list apart from the one the benchmarks report on (bench/rank_quality.sh).
 * Case is compared apart (rankCaseCost); an accent costs 10.
 */
#include "suggest/rank.h"

#include <string.h>

#include "engine/charclass.h"
#include "engine/string_helpers.h"
#include "lexicon/clex.h"

/* Costs of one letter for another, by folded letter. */
struct SubstitutionTable {
    unsigned char cost[26][26];
};

static SubstitutionTable makeSubstitutions()
{
    SubstitutionTable t;
    memset(t.cost, 100, sizeof t.cost);
    const auto set = [&t](char a, char b, int cost) {
        unsigned char &x = t.cost[a - 'a'][b - 'a'], &y = t.cost[b - 'a'][a - 'a'];
        x = y = (unsigned char)(cost < x ? cost : x);
    };
    const char vowels[] = "aeiou";
    for (const char *a = vowels; *a; a++)
        for (const char *b = vowels; *b; b++)
            if (*a != *b)
                set(*a, *b, 75);
    static const struct {
        char a, b;
        int cost;
    } Sounds[] = {{'c', 'k', 50}, {'c', 's', 55}, {'s', 'z', 50}, {'k', 'q', 60}, {'c', 'q', 65},
                  {'g', 'j', 60}, {'f', 'v', 75}, {'d', 't', 70}, {'b', 'p', 75}, {'m', 'n', 65},
                  {'i', 'y', 50}, {'e', 'y', 70}, {'x', 'z', 75}};
    for (const auto &s : Sounds)
        set(s.a, s.b, s.cost);
    return t;
}

static const SubstitutionTable Substitutions = makeSubstitutions();

/* Spellings of one sound for another, as groups: `typed` in the word for
 * `meant` in the candidate. */
struct SoundRule {
    const char *typed;
    const char *meant;
    i32 cost;
};
static const SoundRule SoundRules[] = {
    {"f", "ph", 55}, {"ph", "f", 55}, {"k", "ck", 50}, {"ck", "k", 50}, {"c", "ck", 50},
    {"ck", "c", 50}, {"ks", "x", 60}, {"x", "ks", 60}, {"kw", "qu", 50}, {"qu", "kw", 50},
    {"f", "gh", 70}, {"j", "dg", 60}, {"sh", "ti", 60}, {"sh", "ci", 60}, {"z", "x", 75},
    {"k", "ch", 55}, {"n", "kn", 50}, {"n", "gn", 55}, {"r", "wr", 50}, {"w", "wh", 50},
    {"s", "ps", 55}, {"s", "sc", 50},
};

constexpr int SoundRuleCount = sizeof SoundRules / sizeof SoundRules[0];
static_assert(SoundRuleCount <= 32, "one bit a rule");

/* The rules whose candidate spelling ends in a character, one bit each, so
 * that a cell of the table tries the few that can apply. */
struct RuleIndex {
    u32 byLast[256];
};

static RuleIndex makeRuleIndex()
{
    RuleIndex index = {};
    for (int r = 0; r < SoundRuleCount; r++) {
        const char *m = SoundRules[r].meant;
        index.byLast[(unsigned char)m[m[1] ? 1 : 0]] |= 1u << r;
    }
    return index;
}

static const RuleIndex Rules = makeRuleIndex();

static i32 substitutionCost(unsigned char w, unsigned char c, unsigned char fw, unsigned char fc)
{
    if (fw == fc)
        return ToLower(w) == ToLower(c) ? 0 : 10;
    if (fw >= 'a' && fw <= 'z' && fc >= 'a' && fc <= 'z')
        return Substitutions.cost[fw - 'a'][fc - 'a'];
    return 100;
}

static bool isJoiner(unsigned char f)
{
    return f == '\'' || f == 0x92 || f == '-';
}

/* The candidate has a character at j that the word lacks. */
static i32 insertionCost(const unsigned char *fc, i32 j, i32 m)
{
    unsigned char f = fc[j];
    if ((j > 0 && fc[j - 1] == f) || (j + 1 < m && fc[j + 1] == f))
        return 45;
    if (isJoiner(f))
        return 30;
    return 60;
}

/* The word has a character at i that the candidate lacks. */
static i32 deletionCost(const unsigned char *fw, i32 i, i32 n)
{
    unsigned char f = fw[i];
    if ((i > 0 && fw[i - 1] == f) || (i + 1 < n && fw[i + 1] == f))
        return 45;
    if (isJoiner(f))
        return 30;
    return 95;
}

void rankWordInit(RankWord *word, const char *text, i16 depth)
{
    word->text = text;
    word->length = (i32)StrLen(text);
    word->letters = 0;
    word->lowerOnly = true;
    for (i32 i = 0; i < word->length; i++) {
        unsigned char c = (unsigned char)text[i];
        word->fold[i] = rankFold(c);
        word->letters |= CLex_LetterBit(baseLetter[c]);
        word->lowerOnly = word->lowerOnly && !IsUpper(c);
    }
    word->fold[word->length] = 0;
    word->maxEdits = word->length <= 3 ? 1 : word->length <= 7 ? 2 : 3;
    if (depth < 25 && word->maxEdits > 1)
        word->maxEdits--;
    if (depth >= 75)
        word->maxEdits++;
    word->full = 100 * (word->length < 2 ? 2 : word->length);
}

void rankWordWiden(RankWord *word)
{
    word->maxEdits++;
}

i32 rankErrorCost(const RankWord *word, const char *candidate, i32 limit)
{
    const unsigned char *w = (const unsigned char *)word->text;
    const unsigned char *c = (const unsigned char *)candidate;
    const unsigned char *fw = word->fold;
    unsigned char fc[WordSize];
    i32 n = word->length, m = 0;
    while (c[m] && m < WordSize - 1) {
        fc[m] = rankFold(c[m]);
        m++;
    }
    fc[m] = 0;
    /* d[i][j]: the word's first i characters taken for the candidate's first j */
    i32 d[WordSize][WordSize];
    d[0][0] = 0;
    for (i32 j = 1; j <= m; j++)
        d[0][j] = d[0][j - 1] + insertionCost(fc, j - 1, m);
    for (i32 i = 1; i <= n; i++) {
        d[i][0] = d[i - 1][0] + deletionCost(fw, i - 1, n);
        i32 rowMin = d[i][0];
        for (i32 j = 1; j <= m; j++) {
            i32 best = d[i - 1][j - 1] + substitutionCost(w[i - 1], c[j - 1], fw[i - 1], fc[j - 1]);
            i32 v = d[i - 1][j] + deletionCost(fw, i - 1, n);
            best = v < best ? v : best;
            v = d[i][j - 1] + insertionCost(fc, j - 1, m);
            best = v < best ? v : best;
            if (i > 1 && j > 1 && fw[i - 1] == fc[j - 2] && fw[i - 2] == fc[j - 1] &&
                fw[i - 1] != fw[i - 2]) {
                v = d[i - 2][j - 2] + 60;
                best = v < best ? v : best;
            }
            if (i > 2 && j > 2 && fw[i - 1] == fc[j - 3] && fw[i - 3] == fc[j - 1] &&
                fw[i - 2] == fc[j - 2] && fw[i - 1] != fw[i - 3]) {
                v = d[i - 3][j - 3] + 80;
                best = v < best ? v : best;
            }
            for (u32 bits = Rules.byLast[fc[j - 1]]; bits; bits &= bits - 1) {
                const SoundRule &r = SoundRules[__builtin_ctz(bits)];
                i32 lt = r.typed[1] ? 2 : 1, lm = r.meant[1] ? 2 : 1;
                if (i >= lt && j >= lm && fw[i - 1] == (unsigned char)r.typed[lt - 1] &&
                    fc[j - 1] == (unsigned char)r.meant[lm - 1] &&
                    (lt == 1 || fw[i - 2] == (unsigned char)r.typed[0]) &&
                    (lm == 1 || fc[j - 2] == (unsigned char)r.meant[0])) {
                    v = d[i - lt][j - lm] + r.cost;
                    best = v < best ? v : best;
                }
            }
            d[i][j] = best;
            rowMin = best < rowMin ? best : rowMin;
        }
        if (rowMin > limit)
            return limit + 1;
    }
    return d[n][m];
}

i32 rankCaseCost(const RankWord *word, const char *candidate)
{
    if (!word->lowerOnly)
        return 0;
    i32 capitals = 0;
    for (const unsigned char *p = (const unsigned char *)candidate; *p; p++)
        capitals += IsUpper(*p);
    return capitals == 0 ? 0 : capitals == 1 ? 20 : 35;
}

i32 rankFrequencyCost(int klass)
{
    static const i32 Costs[RankClassCount] = {0,  8,  18, 27,  39,  48,  60,  72,
                                              84, 96, 108, 120, 132, 144, 156, 168};
    if (klass < 0)
        return 27; /* no data: as a word of middling use */
    return Costs[klass < RankClassCount ? klass : RankClassCount - 1];
}

i16 rankScore(const RankWord *word, i32 cost, bool same)
{
    if (same)
        return 100;
    i32 score = 100 - (cost * 100 + word->full / 2) / word->full;
    return (i16)(score < 1 ? 1 : score > 99 ? 99 : score);
}
