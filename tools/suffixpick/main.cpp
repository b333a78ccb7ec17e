/*
 * main.cpp -- orto_suffixpick: picks the suffix table that makes the
 * compressed lexicon of some word lists smallest, and writes it as the
 * compressor reads it.
 *
 *   orto_suffixpick [--rounds N] [--seed N] [--start TABLE] OUTPUT LIST...
 *
 * It is run by hand when the word lists change (see data/README.md), not
 * by the build.  The lists are read as the compressor reads them: CR LF
 * lines of Windows Latin-1, strictly ascending.  With --start the search
 * begins from an existing table instead of the priced tree program, which
 * also tells what an existing table costs (--rounds 0).
 *
 * The output holds a comment, the simple suffixes (most used first), empty
 * lines up to the 30th if there are fewer, and the extended suffixes.  The
 * program prints the file size it expects; the compressor's output has
 * exactly that size.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>

#include "suffix_model.h"
#include "suffix_search.h"

static void printUsage(FILE *out)
{
    fputs("Usage: orto_suffixpick [--rounds N] [--seed N] [--start TABLE] OUTPUT LIST...\n"
          "\n"
          "Picks the suffix table that makes the compressed lexicon of the word\n"
          "lists LIST smallest, and writes it to OUTPUT.  The lists are those of one\n"
          "lexicon, as orto compress takes them; for two lexicons pick two tables.\n"
          "\n"
          "  --rounds N     rounds of the iterated local search (default 300)\n"
          "  --seed N       seed of its random choices (default 1)\n"
          "  --start TABLE  begin from this suffix table instead of a greedy pick\n",
          out);
}

static void report(const char *what, const SuffixModel &m)
{
    uint64_t total = SuffixModel_Total(m);
    printf("%-22s %8llu bytes, %.4f bytes/word (%u simple, %u extended suffixes)\n", what,
           (unsigned long long)total, m.words ? (double)total / m.words : 0.0, m.simpleCount, m.extendedCount);
    fflush(stdout);
}

static void showProgress(uint32_t round, uint64_t bestTotal)
{
    static uint64_t shown = 0;
    if (bestTotal != shown || round % 100 == 0) {
        printf("  round %u: best %llu\n", round, (unsigned long long)bestTotal);
        fflush(stdout);
        shown = bestTotal;
    }
}

/* Loads a suffix file into the model as its table: the first 30 lines
 * that aren't comments are simple, the next 255 extended. */
static bool loadTable(SuffixModel &m, const char *path)
{
    FILE *f = fopen(path, "rb");
    if (!f)
        return false;
    char line[256];
    uint32_t n = 0, unused = 0;
    while (n < SimpleMax + ExtendedMax && fgets(line, sizeof line, f)) {
        line[strcspn(line, "\r\n")] = '\0';
        if (line[0] == '#')
            continue;
        uint8_t tier = n++ < SimpleMax ? 1 : 2;
        line[SuffixMax] = '\0';
        if (!line[0])
            continue;
        int64_t c = SuffixModel_Find(m, line);
        if (c < 0 || m.tier[c])
            unused++;
        else
            SuffixModel_Add(m, (uint32_t)c, tier);
    }
    fclose(f);
    if (unused)
        printf("%u suffixes of %s end no word, or stand twice: left out\n", unused, path);
    return true;
}

static bool writeTable(const SuffixModel &m, const char *path, const std::vector<std::string> &lists)
{
    std::vector<std::pair<uint32_t, uint32_t>> simple, extended; /* uses, candidate */
    for (uint32_t c = 0; c < m.cands.size(); c++)
        if (m.tier[c])
            (m.tier[c] == 1 ? simple : extended).emplace_back(SuffixModel_Uses(m, c), c);
    auto order = [&m](const std::pair<uint32_t, uint32_t> &a, const std::pair<uint32_t, uint32_t> &b) {
        if (a.first != b.first)
            return a.first > b.first;
        return m.cands[a.second].text < m.cands[b.second].text;
    };
    std::sort(simple.begin(), simple.end(), order);
    std::sort(extended.begin(), extended.end(), order);
    FILE *f = fopen(path, "wb");
    if (!f)
        return false;
    fputs("# Suffix table of", f);
    for (const std::string &list : lists) {
        size_t slash = list.find_last_of('/');
        fprintf(f, " %s", list.c_str() + (slash == std::string::npos ? 0 : slash + 1));
    }
    fputs(", made by orto_suffixpick.\r\n", f);
    fprintf(f, "# %zu simple suffixes (one byte each)%s, then %zu extended (two bytes).\r\n", simple.size(),
            simple.size() < SimpleMax && !extended.empty() ? " and empty lines up to 30" : "",
            extended.size());
    for (const auto &s : simple)
        fprintf(f, "%s\r\n", m.cands[s.second].text.c_str());
    if (!extended.empty())
        for (size_t n = simple.size(); n < SimpleMax; n++)
            fputs("\r\n", f);
    for (const auto &e : extended)
        fprintf(f, "%s\r\n", m.cands[e.second].text.c_str());
    return fclose(f) == 0;
}

int main(int argc, char **argv)
{
    uint32_t rounds = 300;
    uint64_t seed = 1;
    const char *start = nullptr;
    int i = 1;
    for (; i < argc && argv[i][0] == '-' && argv[i][1]; i++) {
        if (!strcmp(argv[i], "--help")) {
            printUsage(stdout);
            return 0;
        }
        if (i + 1 >= argc) {
            printUsage(stderr);
            return 2;
        }
        if (!strcmp(argv[i], "--rounds"))
            rounds = (uint32_t)strtoul(argv[++i], nullptr, 10);
        else if (!strcmp(argv[i], "--seed"))
            seed = strtoull(argv[++i], nullptr, 10);
        else if (!strcmp(argv[i], "--start"))
            start = argv[++i];
        else {
            printUsage(stderr);
            return 2;
        }
    }
    if (argc - i < 2) {
        printUsage(stderr);
        return 2;
    }
    const char *output = argv[i++];
    std::vector<std::string> lists(argv + i, argv + argc);

    SuffixModel m;
    std::string error;
    if (!SuffixModel_Read(m, lists, error)) {
        fprintf(stderr, "orto_suffixpick: %s\n", error.c_str());
        return 1;
    }
    printf("%u words, %u segments, %zu different tails, %zu candidate suffixes\n", m.words, m.segments,
           m.tails.size(), m.cands.size());
    report("no suffixes:", m);
    if (start) {
        if (!loadTable(m, start)) {
            fprintf(stderr, "orto_suffixpick: can't read %s\n", start);
            return 1;
        }
        report("start table:", m);
    } else {
        Search_Lagrange(m);
        report("priced tree program:", m);
    }
    Search_Local(m);
    report("local search:", m);
    if (rounds) {
        Search_Iterate(m, rounds, seed, showProgress);
        report("iterated search:", m);
    }
    if (!writeTable(m, output, lists)) {
        fprintf(stderr, "orto_suffixpick: can't write %s\n", output);
        return 1;
    }
    return 0;
}
