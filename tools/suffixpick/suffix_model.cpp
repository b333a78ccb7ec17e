/*
 * suffix_model.cpp -- reads the word lists into tails and candidates, and
 * keeps the cost of every tail under a changing suffix table.
 *
 * A change of the table touches only the tails in which the changed suffix
 * occurs, so adding or removing a suffix costs the length of its use list,
 * and the gains of all candidates at once cost one pass over the endings.
 * Since the compressor takes the leftmost (longest) ending that is in the
 * table, and a longer ending is never dearer than a shorter one (position
 * p + 2 <= position p + 1 + 1), a tail's cost is the first table member in
 * its ending list, which is what SuffixModel_Add and tailCost rely on.
 */
#include "suffix_model.h"

#include <stdio.h>
#include <string.h>

#include <set>
#include <unordered_map>

/* Magic number, sections 1 and 2, the headers of sections 3 and 5, the two
 * table sizes, and section 4's id, length and count. */
static const uint64_t HeaderBytes = 4 + 12 + 12 + 8 + 8 + 8 + 12;
static const uint64_t DirectoryRecordBytes = 11;

static bool readFile(const std::string &path, std::string &text)
{
    FILE *f = fopen(path.c_str(), "rb");
    if (!f)
        return false;
    char buffer[65536];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, f)) > 0)
        text.append(buffer, n);
    bool ok = !ferror(f);
    fclose(f);
    return ok;
}

/* Splits at CR LF as the compressor's line reader does; a last line
 * without an end counts too. */
static void splitLines(const std::string &text, std::vector<std::string> &lines)
{
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find("\r\n", start);
        if (end == std::string::npos) {
            lines.push_back(text.substr(start));
            break;
        }
        lines.push_back(text.substr(start, end - start));
        start = end + 2;
    }
}

static uint8_t tailCost(const SuffixModel &model, const Tail &t)
{
    for (uint32_t e = t.firstEnding; e < t.firstEnding + t.endingCount; e++) {
        uint8_t k = model.tier[model.endings[e].cand];
        if (k)
            return (uint8_t)(model.endings[e].pos + k);
    }
    return t.literal;
}

bool SuffixModel_Read(SuffixModel &model, const std::vector<std::string> &lists, std::string &error)
{
    std::unordered_map<std::string, uint32_t> tailIndex, candIndex;
    std::set<std::string> keys;
    std::vector<std::string> tailText;
    uint64_t wordBytes = 0; /* shared counts and short words */
    char where[600];

    for (const std::string &path : lists) {
        std::string text;
        if (!readFile(path, text)) {
            error = "can't read " + path;
            return false;
        }
        std::vector<std::string> lines;
        splitLines(text, lines);
        std::string previous, key;
        for (size_t n = 0; n < lines.size(); n++) {
            const std::string &word = lines[n];
            if (word.empty() || word[0] == '#')
                continue;
            snprintf(where, sizeof where, "%s, line %zu: ", path.c_str(), n + 1);
            if (word.size() > WordMax) {
                error = std::string(where) + "word too long";
                return false;
            }
            for (unsigned char c : word)
                if (c < 0x20) {
                    error = std::string(where) + "control byte in a word";
                    return false;
                }
            /* std::string compares as unsigned bytes, as the compressor does */
            if (!previous.empty() && word.compare(previous) <= 0) {
                error = std::string(where) + "word out of sequence";
                return false;
            }
            std::string wordKey = word.substr(0, 3);
            wordKey.resize(3, '\0');
            if (wordKey != key) {
                key = wordKey;
                if (!keys.insert(key).second) {
                    error = std::string(where) + "first three letters also in an earlier list";
                    return false;
                }
                previous.clear();
            }
            model.words++;
            if (word.size() < 3) {
                wordBytes += 2;
            } else {
                wordBytes += 1;
                size_t shared = 0;
                while (3 + shared < word.size() && 3 + shared < previous.size() &&
                       word[3 + shared] == previous[3 + shared])
                    shared++;
                std::string tail = word.substr(3 + shared);
                auto found = tailIndex.find(tail);
                if (found == tailIndex.end()) {
                    tailIndex.emplace(tail, (uint32_t)model.tails.size());
                    model.tails.push_back(Tail{0, 0, (uint8_t)(tail.size() + 1), 1});
                    tailText.push_back(tail);
                } else {
                    model.tails[found->second].weight++;
                }
            }
            previous = word;
        }
    }
    model.segments = (uint32_t)keys.size();
    model.fixedBytes = HeaderBytes + DirectoryRecordBytes * model.segments + wordBytes;

    /* Endings, longest first, and the candidates they make.  A suffix line
     * that begins with '#' would be a comment, so no such candidate. */
    for (uint32_t t = 0; t < model.tails.size(); t++) {
        const std::string &s = tailText[t];
        Tail &tail = model.tails[t];
        tail.firstEnding = (uint32_t)model.endings.size();
        size_t longest = s.size() < (size_t)SuffixMax ? s.size() : (size_t)SuffixMax;
        for (size_t len = longest; len >= 1; len--) {
            size_t pos = s.size() - len;
            if (s[pos] == '#')
                continue;
            std::string ending = s.substr(pos);
            auto found = candIndex.find(ending);
            uint32_t c;
            if (found == candIndex.end()) {
                c = (uint32_t)model.cands.size();
                candIndex.emplace(ending, c);
                model.cands.push_back(Candidate{ending, 0, 0});
            } else {
                c = found->second;
            }
            model.cands[c].useCount++;
            model.endings.push_back(TailEnding{c, (uint8_t)pos});
        }
        tail.endingCount = (uint8_t)(model.endings.size() - tail.firstEnding);
    }
    uint32_t next = 0;
    for (Candidate &c : model.cands) {
        c.firstUse = next;
        next += c.useCount;
        c.useCount = 0;
    }
    model.uses.resize(next);
    for (uint32_t t = 0; t < model.tails.size(); t++) {
        const Tail &tail = model.tails[t];
        for (uint32_t e = tail.firstEnding; e < tail.firstEnding + tail.endingCount; e++) {
            Candidate &c = model.cands[model.endings[e].cand];
            model.uses[c.firstUse + c.useCount++] = CandidateUse{t, model.endings[e].pos};
        }
    }

    model.tier.assign(model.cands.size(), 0);
    model.cost.resize(model.tails.size());
    model.tailBytes = 0;
    for (uint32_t t = 0; t < model.tails.size(); t++) {
        model.cost[t] = model.tails[t].literal;
        model.tailBytes += (uint64_t)model.tails[t].weight * model.cost[t];
    }
    return true;
}

uint32_t SuffixModel_TableBytes(uint32_t simpleCount, uint32_t simpleBytes, uint32_t extendedCount,
                                uint32_t extendedBytes)
{
    uint32_t padding = extendedCount && simpleCount < SimpleMax ? SimpleMax - simpleCount : 0;
    return simpleBytes + padding + extendedBytes;
}

uint64_t SuffixModel_Total(const SuffixModel &model)
{
    return model.fixedBytes + model.tailBytes +
           SuffixModel_TableBytes(model.simpleCount, model.simpleBytes, model.extendedCount,
                                  model.extendedBytes);
}

void SuffixModel_Add(SuffixModel &model, uint32_t c, uint8_t tier)
{
    const Candidate &cand = model.cands[c];
    model.tier[c] = tier;
    if (tier == 1) {
        model.simpleCount++;
        model.simpleBytes += (uint32_t)cand.text.size() + 1;
    } else {
        model.extendedCount++;
        model.extendedBytes += (uint32_t)cand.text.size() + 1;
    }
    for (uint32_t u = cand.firstUse; u < cand.firstUse + cand.useCount; u++) {
        const CandidateUse &use = model.uses[u];
        uint8_t now = (uint8_t)(use.pos + tier);
        if (now < model.cost[use.tail]) {
            model.tailBytes -= (uint64_t)model.tails[use.tail].weight * (model.cost[use.tail] - now);
            model.cost[use.tail] = now;
        }
    }
}

void SuffixModel_Remove(SuffixModel &model, uint32_t c)
{
    const Candidate &cand = model.cands[c];
    uint8_t tier = model.tier[c];
    if (!tier)
        return;
    model.tier[c] = 0;
    if (tier == 1) {
        model.simpleCount--;
        model.simpleBytes -= (uint32_t)cand.text.size() + 1;
    } else {
        model.extendedCount--;
        model.extendedBytes -= (uint32_t)cand.text.size() + 1;
    }
    for (uint32_t u = cand.firstUse; u < cand.firstUse + cand.useCount; u++) {
        const CandidateUse &use = model.uses[u];
        if (model.cost[use.tail] != use.pos + tier)
            continue;
        uint8_t now = tailCost(model, model.tails[use.tail]);
        model.tailBytes += (uint64_t)model.tails[use.tail].weight * (now - model.cost[use.tail]);
        model.cost[use.tail] = now;
    }
}

void SuffixModel_Gains(const SuffixModel &model, std::vector<int64_t> &gain1, std::vector<int64_t> &gain2)
{
    gain1.assign(model.cands.size(), 0);
    gain2.assign(model.cands.size(), 0);
    for (uint32_t t = 0; t < model.tails.size(); t++) {
        const Tail &tail = model.tails[t];
        int cost = model.cost[t];
        /* only endings left of the one in force can lower the cost */
        for (uint32_t e = tail.firstEnding; e < tail.firstEnding + tail.endingCount; e++) {
            const TailEnding &end = model.endings[e];
            if (end.pos + 1 >= cost)
                break;
            gain1[end.cand] += (int64_t)tail.weight * (cost - end.pos - 1);
            if (end.pos + 2 < cost)
                gain2[end.cand] += (int64_t)tail.weight * (cost - end.pos - 2);
        }
    }
}

int64_t SuffixModel_Find(const SuffixModel &model, const std::string &text)
{
    for (uint32_t c = 0; c < model.cands.size(); c++)
        if (model.cands[c].text == text)
            return c;
    return -1;
}

uint32_t SuffixModel_Uses(const SuffixModel &model, uint32_t c)
{
    const Candidate &cand = model.cands[c];
    uint32_t n = 0;
    if (!model.tier[c])
        return 0;
    for (uint32_t u = cand.firstUse; u < cand.firstUse + cand.useCount; u++) {
        const Tail &tail = model.tails[model.uses[u].tail];
        for (uint32_t e = tail.firstEnding; e < tail.firstEnding + tail.endingCount; e++)
            if (model.tier[model.endings[e].cand]) {
                if (model.endings[e].cand == c)
                    n += tail.weight;
                break;
            }
    }
    return n;
}
