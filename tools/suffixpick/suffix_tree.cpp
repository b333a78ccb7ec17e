/*
 * suffix_tree.cpp -- a near-exact start for the search: the suffix choice
 * solved on the tree of endings, with prices on the two tiers' places.
 *
 * The endings of all tails form a tree: the parent of an ending is its
 * longest shorter ending that is a candidate too, and the candidates that
 * can end a tail are exactly its longest ending and that one's ancestors.
 * A tail of length L ended by a suffix of length l in tier k costs
 * L - l + k, so with h the least k - l over the chosen ones among them (1
 * for none: the literal tail), every tail costs L + h.  Without the limits of 30 and 255 places
 * the best choice is then a dynamic program over the tree with h, which has
 * only nine values (-7 to 1), as its state.
 *
 * The limits are priced in (a Lagrangian relaxation): each place of a tier
 * costs an extra lambda, and the prices are bisected until the program
 * picks 30 and 255 suffixes.  Every table met on the way that fits is
 * counted exactly and the best kept; the local search then finishes it.
 * Greedy and local search alone get stuck when many suffixes have to move
 * at once (one simple "k" makes "ak", "ek", "ok" ... redundant and frees
 * their places), which the program sees in one step.
 */
#include <unordered_map>

#include "suffix_search.h"

enum { Levels = 9, LowestH = -7 }; /* h from -7 to 1 */

struct TreeNode {
    int32_t parent; /* -1 for the root */
    uint8_t length; /* of the ending */
    uint64_t weight; /* words whose longest ending this is */
};

struct EndingTree {
    std::vector<TreeNode> nodes; /* candidates by id, then the root */
    std::vector<uint32_t> order; /* longest endings first: children before parents */
    uint32_t root;
};

static void buildTree(const SuffixModel &m, EndingTree &tree)
{
    std::unordered_map<std::string, uint32_t> byText;
    for (uint32_t c = 0; c < m.cands.size(); c++)
        byText.emplace(m.cands[c].text, c);
    tree.root = (uint32_t)m.cands.size();
    tree.nodes.assign(m.cands.size() + 1, TreeNode{-1, 0, 0});
    for (uint32_t c = 0; c < m.cands.size(); c++) {
        const std::string &text = m.cands[c].text;
        tree.nodes[c].length = (uint8_t)text.size();
        tree.nodes[c].parent = (int32_t)tree.root;
        for (size_t cut = 1; cut < text.size(); cut++) {
            auto found = byText.find(text.substr(cut));
            if (found != byText.end()) {
                tree.nodes[c].parent = (int32_t)found->second;
                break;
            }
        }
    }
    for (const Tail &t : m.tails) {
        uint32_t deepest = t.endingCount ? m.endings[t.firstEnding].cand : tree.root;
        tree.nodes[deepest].weight += t.weight;
    }
    for (int len = SuffixMax; len >= 1; len--)
        for (uint32_t c = 0; c < m.cands.size(); c++)
            if (tree.nodes[c].length == len)
                tree.order.push_back(c);
}

struct Choice {
    uint32_t simpleCount, extendedCount;
    int64_t bytes; /* tail bytes above the literal lengths, plus table bytes */
    std::vector<uint8_t> tier;
};

/* Solves the priced problem; fills `choice` with the tiers it picks. */
static void solvePriced(const SuffixModel &m, const EndingTree &tree, double price1, double price2,
                        std::vector<double> &below, std::vector<uint8_t> &pick, Choice &choice)
{
    size_t n = tree.nodes.size();
    below.assign(n * Levels, 0.0); /* sum over the children of their best, per h */
    pick.assign(n * Levels, 0);
    for (uint32_t v : tree.order) {
        const TreeNode &node = tree.nodes[v];
        double *mine = &below[(size_t)v * Levels];
        double *up = &below[(size_t)node.parent * Levels];
        double cost[3] = {0, (double)node.length + price1, (double)node.length + 1 + price2};
        for (int h = 0; h < Levels; h++) {
            double best = 0;
            uint8_t bestTier = 0;
            for (int k = 0; k <= 2; k++) {
                int hh = h;
                if (k) {
                    int value = k - node.length - LowestH;
                    if (value >= h)
                        continue; /* no better than what is above */
                    hh = value;
                }
                double total = cost[k] + (double)node.weight * (hh + LowestH) + mine[hh];
                if (k == 0 || total < best) {
                    best = total;
                    bestTier = (uint8_t)k;
                }
            }
            up[h] += best;
            pick[(size_t)v * Levels + h] = bestTier;
        }
    }
    /* Down the tree: each node learns h from its parent's decision. */
    std::vector<int8_t> level(n, 0);
    level[tree.root] = 1 - LowestH;
    choice.tier.assign(m.cands.size(), 0);
    choice.simpleCount = choice.extendedCount = 0;
    choice.bytes = (int64_t)tree.nodes[tree.root].weight * 1;
    for (size_t i = tree.order.size(); i-- > 0;) {
        uint32_t v = tree.order[i];
        const TreeNode &node = tree.nodes[v];
        int h = level[node.parent];
        uint8_t k = pick[(size_t)v * Levels + h];
        if (k) {
            h = k - node.length - LowestH;
            choice.tier[v] = k;
            if (k == 1) {
                choice.simpleCount++;
                choice.bytes += node.length;
            } else {
                choice.extendedCount++;
                choice.bytes += node.length + 1;
            }
        }
        level[v] = (int8_t)h;
        choice.bytes += (int64_t)node.weight * (h + LowestH);
    }
}

void Search_Lagrange(SuffixModel &m)
{
    EndingTree tree;
    buildTree(m, tree);
    std::vector<double> below;
    std::vector<uint8_t> pick;
    Choice choice, best;
    best.bytes = INT64_MAX;
    auto solve = [&](double price1, double price2) {
        solvePriced(m, tree, price1, price2, below, pick, choice);
        if (choice.simpleCount <= SimpleMax && choice.extendedCount <= ExtendedMax && choice.bytes < best.bytes)
            best = choice;
    };
    /* For a price of the extended places, the price of the simple ones that
     * makes the program pick 30 at most; the outer bisection does the same
     * for 255 extended places.  Ties go to the smaller table. */
    auto fitSimple = [&](double price2) {
        double low = 0, high = 1 << 20;
        solve(low, price2);
        if (choice.simpleCount <= SimpleMax)
            return;
        for (int step = 0; step < 40; step++) {
            double mid = (low + high) / 2;
            solve(mid, price2);
            if (choice.simpleCount > SimpleMax)
                low = mid;
            else
                high = mid;
        }
        solve(high, price2);
    };
    double low = 0, high = 1 << 20;
    fitSimple(low);
    if (choice.extendedCount > ExtendedMax) {
        for (int step = 0; step < 40; step++) {
            double mid = (low + high) / 2;
            fitSimple(mid);
            if (choice.extendedCount > ExtendedMax)
                low = mid;
            else
                high = mid;
        }
        fitSimple(high);
    }
    if (best.bytes == INT64_MAX)
        return;
    for (uint32_t c = 0; c < m.cands.size(); c++)
        if (m.tier[c])
            SuffixModel_Remove(m, c);
    for (uint32_t c = 0; c < m.cands.size(); c++)
        if (best.tier[c])
            SuffixModel_Add(m, c, best.tier[c]);
}
