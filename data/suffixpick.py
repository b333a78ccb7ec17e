#!/usr/bin/env python3
"""suffixpick.py -- picks the suffix table of the lexicon compressor.

Usage: suffixpick.py OUTPUT WORDLIST...

The compressor codes each word by the part that follows its three key
characters and what it shares with the word before (the "tail").  From the
left of the tail, the first position whose rest is exactly a table suffix
ends the word with that suffix's code: one byte for the 30 simple suffixes,
two for the 255 extended ones; a tail with no suffix costs its bytes plus an
end code.  The tails are fixed by the sorted lists alone, so the whole cost
of a table can be counted exactly here, without running the compressor.

How the table is chosen:
  1. Greedy with lazy gains: adding a suffix can only lower the cost of a
     word, so the gain of a candidate never grows as the table fills, and a
     heap of stale gains is enough.  First the 30 simple suffixes (cost 1),
     then the 255 extended ones (cost 2).
  2. Polishing, a local search until no move lowers the exact total: a
     simple and an extended suffix change tables, or a suffix is dropped
     and the best candidate of a pool (the strongest on their own) takes
     its place.

Writes OUTPUT as the compressor reads it: CR LF lines, a few '#' comment
lines, then the 30 simple and the 255 extended suffixes in order.  A suffix
never begins with '#' and never holds a byte below 0x20, since the file
couldn't carry it.  Prints the bytes saved.
"""
import heapq
import sys

SIMPLE_MAX = 30
EXTENDED_MAX = 255
SUFFIX_MAX = 8
POOL_SIZE = 1500


def read_tails(path):
    """The tails of one sorted list, as the compressor cuts them."""
    tails = []
    key = None
    prev = b""
    with open(path, "rb") as f:
        for line in f.read().split(b"\r\n"):
            if not line or line.startswith(b"#"):
                continue
            if line[:3] != key:
                key = line[:3]
                prev = b""
            if len(line) >= 3:
                a, b = line[3:], prev[3:]
                n = 0
                while n < len(a) and n < len(b) and a[n] == b[n]:
                    n += 1
                tails.append(a[n:])
            prev = line
    return tails


def usable(s):
    return 0 < len(s) <= SUFFIX_MAX and not s.startswith(b"#") and min(s) >= 0x20


class Model:
    """Exact cost of every tail under a table, kept up to date."""

    def __init__(self, tails):
        self.tails = tails
        self.cost = [len(t) + 1 for t in tails]  # literals and end code
        self.code = {}  # suffix -> its code length, 1 or 2
        self.where = {}  # candidate -> list of (tail index, position)
        for w, t in enumerate(tails):
            for i in range(max(0, len(t) - SUFFIX_MAX), len(t)):
                s = t[i:]
                if usable(s):
                    self.where.setdefault(s, []).append((w, i))

    def best_cost(self, w):
        t = self.tails[w]
        for i in range(max(0, len(t) - SUFFIX_MAX), len(t)):
            k = self.code.get(t[i:])
            if k:
                return i + k
        return len(t) + 1

    def gain(self, s, k):
        return sum(max(0, self.cost[w] - (i + k)) for w, i in self.where[s])

    def add(self, s, k):
        self.code[s] = k
        for w, i in self.where[s]:
            self.cost[w] = min(self.cost[w], i + k)

    def remove(self, s):
        del self.code[s]
        for w, _ in self.where[s]:
            self.cost[w] = self.best_cost(w)

    def change(self, removals, additions):
        """Takes suffixes out and puts others in; result the change of the
        total, counted over the tails concerned only."""
        touched = {w for s in removals + [a for a, _ in additions] for w, _ in self.where[s]}
        before = sum(self.cost[w] for w in touched)
        for s in removals:
            del self.code[s]
        for s, k in additions:
            self.code[s] = k
        for w in touched:
            self.cost[w] = self.best_cost(w)
        return sum(self.cost[w] for w in touched) - before

    def total(self):
        return sum(self.cost)


def greedy(model, k, count, exclude):
    heap = [(-model.gain(s, k), s) for s in model.where if s not in exclude]
    heapq.heapify(heap)
    chosen = []
    while heap and len(chosen) < count:
        g, s = heapq.heappop(heap)
        fresh = model.gain(s, k)
        if heap and fresh < -heap[0][0]:
            heapq.heappush(heap, (-fresh, s))
            continue
        if fresh <= 0:
            break
        model.add(s, k)
        chosen.append(s)
    return chosen


def polish(model, simple, extended, pool):
    """Local search until no move lowers the total: tier swaps between a
    simple and an extended suffix, then each suffix in turn replaced by the
    best candidate of the pool for its tier."""
    improved = True
    while improved:
        improved = False
        for si in range(len(simple)):
            for ei in range(len(extended)):
                s, e = simple[si], extended[ei]
                if model.change([s, e], [(e, 1), (s, 2)]) < 0:
                    simple[si], extended[ei] = e, s
                    improved = True
                else:
                    model.change([s, e], [(s, 1), (e, 2)])
        for table, k in ((simple, 1), (extended, 2)):
            for n in range(len(table)):
                x = table[n]
                model.remove(x)
                best, best_gain = x, model.gain(x, k)
                for c in pool:
                    if c not in model.code:
                        g = model.gain(c, k)
                        if g > best_gain:
                            best, best_gain = c, g
                model.add(best, k)
                if best != x:
                    table[n] = best
                    improved = True


def main():
    if len(sys.argv) < 3:
        sys.exit("usage: suffixpick.py OUTPUT WORDLIST...")
    tails = []
    for path in sys.argv[2:]:
        tails += read_tails(path)
    model = Model(tails)
    plain = model.total()
    # Only candidates that are worth something on their own can win a place.
    pool = sorted(model.where, key=lambda s: -model.gain(s, 2))[:POOL_SIZE]
    simple = greedy(model, 1, SIMPLE_MAX, set())
    extended = greedy(model, 2, EXTENDED_MAX, set(simple))
    greedy_total = model.total()
    polish(model, simple, extended, pool)
    # Within a table the order doesn't change the size; most used first
    # keeps the file readable.
    uses = {s: sum(1 for w, i in model.where[s] if model.cost[w] == i + model.code[s])
            for s in model.code}
    simple.sort(key=lambda s: (-uses[s], s))
    extended.sort(key=lambda s: (-uses[s], s))
    # Empty lines keep the extended suffixes in their places should fewer
    # than 30 simple ones be worth anything; an empty suffix never matches.
    simple += [b""] * (SIMPLE_MAX - len(simple))
    with open(sys.argv[1], "wb") as f:
        f.write(b"# Suffix table of the bundled English lexicons, made by suffixpick.py.\r\n")
        f.write(b"# 30 simple suffixes (one byte each), then 255 extended (two bytes).\r\n")
        for s in simple + extended:
            f.write(s + b"\r\n")
    print(f"tails {len(tails)}: {plain} bytes without suffixes, "
          f"{greedy_total} after greedy, {model.total()} after polishing")


if __name__ == "__main__":
    main()
