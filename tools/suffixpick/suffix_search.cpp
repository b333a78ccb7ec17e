/*
 * suffix_search.cpp -- picks the suffix table that makes the file smallest.
 *
 * The cost is exact (suffix_model.cpp), table bytes included: a suffix is
 * worth its place only if it saves more than its length plus one, and the
 * table may stay short of 255 extended suffixes.  The search starts from
 * the priced tree program (suffix_tree.cpp), or from a given table, and
 * then has three tools:
 *   1. Greedy with lazy gains, to fill free places.  Adding a suffix can
 *      only lower the cost of a tail, so a candidate's gain never grows as
 *      the table fills, and a heap of stale gains gives the best next pick
 *      (both tiers at once).
 *   2. Local search until no move lowers the total: each member in turn is
 *      taken out and the best of all candidates (itself included, or none)
 *      put in its place, one pass over all endings per member; then a
 *      simple and an extended member swap tiers.
 *   3. Iterated local search: a kick, then the local search, and the result
 *      kept if it is no worse; else the table before is restored.  Equal
 *      results are kept so that the search can drift across plateaus.  A
 *      kick either throws out a few members at random and refills the
 *      holes greedily, or forces one to three strong candidates in, each in
 *      place of a random member of its tier.
 * Greedy and local search alone stop far from the best table (about 750
 * bytes on the American list), since the better tables differ in many
 * suffixes at once: one simple "k" makes "ak", "ek", "ok" ... redundant
 * and frees their places.  The tree program and the local search after it
 * reach the best table there (an integer-program solver, run once on both
 * bundled lists, found none smaller); the iterated search alone, from the
 * greedy table, comes within 30 bytes of it in 600 rounds, and guards
 * against a list where the program falls short.  A fixed seed and a fixed
 * number of rounds make the result the same on every run.
 */
#include "suffix_search.h"

#include <algorithm>
#include <queue>
#include <tuple>

/* Candidates among which a kick picks one to force into the table. */
static const size_t ForcePool = 100;

/* splitmix64: small, and the same sequence on every platform */
static uint64_t nextRandom(uint64_t &state)
{
    uint64_t z = (state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

static uint32_t tableBytes(const SuffixModel &m)
{
    return SuffixModel_TableBytes(m.simpleCount, m.simpleBytes, m.extendedCount, m.extendedBytes);
}

/* What the table grows by if candidate c joins tier k. */
static int64_t tableGrowth(const SuffixModel &m, uint32_t c, int k)
{
    uint32_t len = (uint32_t)m.cands[c].text.size() + 1;
    uint32_t after = k == 1 ? SuffixModel_TableBytes(m.simpleCount + 1, m.simpleBytes + len, m.extendedCount,
                                                     m.extendedBytes)
                            : SuffixModel_TableBytes(m.simpleCount, m.simpleBytes, m.extendedCount + 1,
                                                     m.extendedBytes + len);
    return (int64_t)after - tableBytes(m);
}

static bool hasRoom(const SuffixModel &m, int k)
{
    return k == 1 ? m.simpleCount < SimpleMax : m.extendedCount < ExtendedMax;
}

/* Exact saving of the tails if c joined tier k. */
static int64_t gainOf(const SuffixModel &m, uint32_t c, int k)
{
    const Candidate &cand = m.cands[c];
    int64_t gain = 0;
    for (uint32_t u = cand.firstUse; u < cand.firstUse + cand.useCount; u++) {
        const CandidateUse &use = m.uses[u];
        int now = use.pos + k;
        if (now < m.cost[use.tail])
            gain += (int64_t)m.tails[use.tail].weight * (m.cost[use.tail] - now);
    }
    return gain;
}

void Search_Greedy(SuffixModel &m)
{
    typedef std::tuple<int64_t, uint32_t, int> Entry; /* net saving, candidate, tier */
    std::priority_queue<Entry> heap;
    std::vector<int64_t> gain1, gain2;
    SuffixModel_Gains(m, gain1, gain2);
    for (uint32_t c = 0; c < m.cands.size(); c++) {
        if (m.tier[c])
            continue;
        for (int k = 1; k <= 2; k++) {
            int64_t net = (k == 1 ? gain1[c] : gain2[c]) - tableGrowth(m, c, k);
            if (net > 0 && hasRoom(m, k))
                heap.emplace(net, c, k);
        }
    }
    while (!heap.empty()) {
        Entry top = heap.top();
        heap.pop();
        uint32_t c = std::get<1>(top);
        int k = std::get<2>(top);
        if (m.tier[c] || !hasRoom(m, k))
            continue;
        int64_t net = gainOf(m, c, k) - tableGrowth(m, c, k);
        if (net <= 0)
            continue;
        if (!heap.empty() && net < std::get<0>(heap.top())) {
            heap.emplace(net, c, k);
            continue;
        }
        SuffixModel_Add(m, c, (uint8_t)k);
    }
}

/* Takes member x out and puts the best choice in its place; true if the
 * total went down. */
static bool improveMember(SuffixModel &m, uint32_t x, std::vector<int64_t> &gain1, std::vector<int64_t> &gain2)
{
    uint64_t before = SuffixModel_Total(m);
    uint8_t oldTier = m.tier[x];
    SuffixModel_Remove(m, x);
    SuffixModel_Gains(m, gain1, gain2);
    int64_t bestNet = 0; /* leaving the place empty */
    uint32_t best = 0;
    int bestTier = 0;
    for (int k = 1; k <= 2; k++) {
        if (!hasRoom(m, k))
            continue;
        const std::vector<int64_t> &gain = k == 1 ? gain1 : gain2;
        for (uint32_t c = 0; c < m.cands.size(); c++) {
            if (m.tier[c] || gain[c] <= bestNet)
                continue;
            int64_t net = gain[c] - tableGrowth(m, c, k);
            if (net > bestNet) {
                bestNet = net;
                best = c;
                bestTier = k;
            }
        }
    }
    if (bestTier)
        SuffixModel_Add(m, best, (uint8_t)bestTier);
    if (SuffixModel_Total(m) < before)
        return true;
    if (bestTier)
        SuffixModel_Remove(m, best);
    SuffixModel_Add(m, x, oldTier);
    return false;
}

static bool swapTiers(SuffixModel &m)
{
    bool improved = false;
    std::vector<uint32_t> simple, extended;
    for (uint32_t c = 0; c < m.cands.size(); c++) {
        if (m.tier[c] == 1)
            simple.push_back(c);
        else if (m.tier[c] == 2)
            extended.push_back(c);
    }
    for (uint32_t &s : simple)
        for (uint32_t &e : extended) {
            uint64_t before = SuffixModel_Total(m);
            SuffixModel_Remove(m, s);
            SuffixModel_Remove(m, e);
            SuffixModel_Add(m, s, 2);
            SuffixModel_Add(m, e, 1);
            if (SuffixModel_Total(m) < before) {
                std::swap(s, e);
                improved = true;
                continue;
            }
            SuffixModel_Remove(m, s);
            SuffixModel_Remove(m, e);
            SuffixModel_Add(m, s, 1);
            SuffixModel_Add(m, e, 2);
        }
    return improved;
}

static std::vector<uint32_t> members(const SuffixModel &m)
{
    std::vector<uint32_t> list;
    for (uint32_t c = 0; c < m.cands.size(); c++)
        if (m.tier[c])
            list.push_back(c);
    return list;
}

void Search_Local(SuffixModel &m)
{
    std::vector<int64_t> gain1, gain2;
    bool improved = true;
    while (improved) {
        improved = false;
        for (uint32_t x : members(m))
            if (m.tier[x] && improveMember(m, x, gain1, gain2))
                improved = true;
        if (swapTiers(m))
            improved = true;
        /* room left by a removal may be worth filling */
        uint64_t before = SuffixModel_Total(m);
        Search_Greedy(m);
        if (SuffixModel_Total(m) < before)
            improved = true;
    }
}

struct Snapshot {
    std::vector<uint8_t> tier, cost;
    uint32_t simpleCount, extendedCount, simpleBytes, extendedBytes;
    uint64_t tailBytes;
};

static void save(const SuffixModel &m, Snapshot &s)
{
    s.tier = m.tier;
    s.cost = m.cost;
    s.simpleCount = m.simpleCount;
    s.extendedCount = m.extendedCount;
    s.simpleBytes = m.simpleBytes;
    s.extendedBytes = m.extendedBytes;
    s.tailBytes = m.tailBytes;
}

static void restore(SuffixModel &m, const Snapshot &s)
{
    m.tier = s.tier;
    m.cost = s.cost;
    m.simpleCount = s.simpleCount;
    m.extendedCount = s.extendedCount;
    m.simpleBytes = s.simpleBytes;
    m.extendedBytes = s.extendedBytes;
    m.tailBytes = s.tailBytes;
}

/* Puts `count` strong candidates into the table whether they pay or not,
 * each in place of a member of its tier picked at random: a move that the
 * local search can't make, since it needs the members around it to change
 * too before it pays. */
static void forceIn(SuffixModel &m, uint64_t &seed, uint32_t count)
{
    std::vector<int64_t> gain1, gain2;
    for (uint32_t n = 0; n < count; n++) {
        int k = 1 + (int)(nextRandom(seed) % 2);
        SuffixModel_Gains(m, gain1, gain2);
        const std::vector<int64_t> &gain = k == 1 ? gain1 : gain2;
        std::vector<std::pair<int64_t, uint32_t>> strong;
        for (uint32_t c = 0; c < m.cands.size(); c++)
            if (!m.tier[c] && gain[c] > (int64_t)m.cands[c].text.size() + 1)
                strong.emplace_back(gain[c] - (int64_t)m.cands[c].text.size(), c);
        if (strong.empty())
            return;
        size_t top = std::min<size_t>(strong.size(), ForcePool);
        std::partial_sort(strong.begin(), strong.begin() + top, strong.end(),
                          [](const std::pair<int64_t, uint32_t> &a, const std::pair<int64_t, uint32_t> &b) {
                              return a.first > b.first || (a.first == b.first && a.second < b.second);
                          });
        uint32_t c = strong[nextRandom(seed) % top].second;
        if (!hasRoom(m, k)) {
            std::vector<uint32_t> tier;
            for (uint32_t x = 0; x < m.cands.size(); x++)
                if (m.tier[x] == k)
                    tier.push_back(x);
            SuffixModel_Remove(m, tier[nextRandom(seed) % tier.size()]);
        }
        SuffixModel_Add(m, c, (uint8_t)k);
    }
}

void Search_Iterate(SuffixModel &m, uint32_t rounds, uint64_t seed, SearchProgress progress)
{
    Snapshot current, best;
    save(m, current);
    save(m, best);
    uint64_t bestTotal = SuffixModel_Total(m), currentTotal = bestTotal;
    for (uint32_t round = 1; round <= rounds; round++) {
        std::vector<uint32_t> list = members(m);
        if (list.empty())
            break;
        if (round % 2) {
            uint32_t kicks = 2 + (uint32_t)(nextRandom(seed) % 7);
            for (uint32_t n = 0; n < kicks && !list.empty(); n++) {
                uint32_t i = (uint32_t)(nextRandom(seed) % list.size());
                SuffixModel_Remove(m, list[i]);
                list[i] = list.back();
                list.pop_back();
            }
        } else {
            forceIn(m, seed, 1 + (uint32_t)(nextRandom(seed) % 3));
        }
        Search_Greedy(m);
        Search_Local(m);
        uint64_t total = SuffixModel_Total(m);
        if (total <= currentTotal) {
            currentTotal = total;
            save(m, current);
            if (total < bestTotal) {
                bestTotal = total;
                save(m, best);
            }
        } else {
            restore(m, current);
        }
        if (progress)
            progress(round, bestTotal);
    }
    restore(m, best);
}
