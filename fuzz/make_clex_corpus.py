#!/usr/bin/env python3
"""Writes the seed corpus of the compressed lexicon fuzz target into
fuzz/corpus/clex/: small valid lexicons of several shapes and damaged
variants of them.  The files are checked in; run this again only to change
them.  The encoder follows the writer's rules: the shared count is the
common tail of two neighbours, and the first suffix that is the whole rest
of a word replaces it, simple table first."""
import os
import struct

OUT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "corpus", "clex")


def be32(v):
    return struct.pack(">I", v & 0xFFFFFFFF)


MAGIC = be32(0x57000501)


def section(sid, payload):
    return be32(sid) + be32(len(payload)) + payload


def tables(simple, extended):
    a = b"".join(s + b"\0" for s in simple)
    b = b"".join(s + b"\0" for s in extended)
    return be32(len(a)) + a + be32(len(b)) + b


def key_of(w):
    return (w[:3] + b"\0\0\0")[:3]


def encode_segment(words, simple, extended):
    out, prev = b"", b""
    for w in words:
        if len(w) < 3:
            return b"\0\0"
        tail = w[3:]
        n = 0
        while n < len(tail) and n < len(prev) and tail[n] == prev[n]:
            n += 1
        out += bytes([n])
        p, done = n, False
        while p < len(tail) and not done:
            rest = tail[p:]
            if rest in simple:
                out += bytes([simple.index(rest) + 2])
                done = True
            elif rest in extended:
                out += bytes([1, extended.index(rest)])
                done = True
            else:
                out += tail[p:p + 1]
                p += 1
        if not done:
            out += b"\0"
        prev = tail
    return out


def segments(words, simple=(), extended=()):
    simple, extended = list(simple), list(extended)
    segs, groups = [], {}
    for w in sorted(set(words)):
        groups.setdefault(key_of(w), []).append(w)
    for k in sorted(groups):
        segs.append((k, encode_segment(groups[k], simple, extended)))
    return segs


def text_of(segs):
    return b"".join(t for _, t in segs)


def directory(segs):
    d, off = be32(len(segs)), 0
    for k, t in segs:
        d += k + be32(off) + be32(len(t))
        off += len(t)
    return d


def lexicon(words, simple=(), extended=(), lang=0x616D):
    segs = segments(words, simple, extended)
    return (MAGIC + section(1, be32(lang)) + section(2, be32(1)) +
            section(3, tables(simple, extended)) + section(5, text_of(segs)) +
            section(4, directory(segs)))


def main():
    os.makedirs(OUT, exist_ok=True)
    files = {}
    example = bytes.fromhex(
        "57000501" "00000001000000040000616d" "000000020000000400000001"
        "000000030000000e" "00000006730069 6e6700".replace(" ", "") + "00000000"
        "0000000500000010" "0000" "006b0001656400010301020 06c00".replace(" ", "")
        + "000000040000001a" "00000002" "610000" "00000000" "00000002"
        "77616c" "00000002" "0000000e")
    assert len(example) == 108, len(example)
    files["valid-example"] = example
    files["valid-empty"] = lexicon([])
    files["valid-magic-only"] = MAGIC
    simple = [b"s", b"ing", b"ed", b"es", b"er", b"ly"]
    extended = [b"ation", b"ness", b"able"]
    words = [b"a", b"I", b"of", b"to", b"Paris", b"3rd", b"walk", b"walked", b"walking",
             b"walks", b"wall", b"walls", b"nation", b"national", b"nationness",
             b"kind", b"kindly", b"kindness", b"kinder", b"don't", b"cat's", b"ice cream",
             b"\xe9t\xe9", b"caf\xe9", b"ABC", b"Abc", b"abc", b"aBc", b"abcd", b"ABCD"]
    files["valid-suffixes"] = lexicon(words, simple, extended)
    files["valid-no-suffixes"] = lexicon(words)
    long_words = [b"x" * 63, b"x" * 62 + b"y", b"xxx", b"xxxs"]
    files["valid-long-words"] = lexicon(long_words, [b"s"])
    segs = segments(words[:12], simple)
    s1, s2, s3 = section(1, be32(0x6272)), section(2, be32(1)), section(3, tables(simple, []))
    s5, s4 = section(5, text_of(segs)), section(4, directory(segs))
    files["valid-unknown-section"] = MAGIC + s1 + section(9, b"junk") + s2 + s3 + s5 + s4
    files["valid-directory-first"] = MAGIC + s2 + s3 + s4 + s5
    # the text laid out in another order than the directory
    rev = list(reversed(segs))
    off, recs = 0, {}
    for k, t in rev:
        recs[k] = (off, len(t))
        off += len(t)
    d = be32(len(segs)) + b"".join(k + be32(recs[k][0]) + be32(recs[k][1]) for k, _ in segs)
    files["valid-text-reordered"] = MAGIC + s1 + s2 + s3 + section(5, text_of(rev)) + section(4, d)

    good = lexicon(words, simple, extended)
    files["bad-truncated-half"] = good[:len(good) // 2]
    files["bad-truncated-header"] = MAGIC + be32(1) + b"\0\0"
    files["bad-unicode"] = MAGIC + s1 + section(2, be32(2)) + s3 + s5 + s4
    files["bad-charsize-3"] = MAGIC + s1 + section(2, be32(3)) + s3 + s5 + s4
    files["bad-tables-first"] = MAGIC + s1 + s3 + s2 + s5 + s4
    files["bad-table-huge"] = MAGIC + s1 + s2 + section(3, be32(0x7FFFFFFF)) + s5 + s4
    files["bad-too-many-segments"] = MAGIC + s1 + s2 + s3 + s5 + section(4, be32(0x10001))
    files["bad-count-beyond-file"] = MAGIC + s1 + s2 + s3 + s5 + section(4, be32(60000) + b"abc")
    files["bad-record-outside"] = MAGIC + s1 + s2 + s3 + s5 + section(
        4, be32(1) + b"wal" + be32(0xFFFFFFF0) + be32(0x20))
    files["bad-directory-order"] = MAGIC + s1 + s2 + s3 + s5 + section(
        4, be32(2) + b"wal" + be32(0) + be32(1) + b"aaa" + be32(1) + be32(1))
    # a file that ends inside the segment text ends there: it opens, empty
    files["cut-segment-text"] = MAGIC + s1 + s2 + s3 + be32(5) + be32(100000)
    files["bad-extended-huge"] = MAGIC + s1 + s2 + section(3, be32(0) + be32(65536))
    files["bad-table-cut"] = MAGIC + s1 + s2 + be32(3) + be32(9) + be32(60000) + b"abcde"
    files["bad-no-text"] = MAGIC + s1 + s2 + s3 + section(4, be32(1) + b"wal" + be32(0) + be32(2))
    files["bad-text-cut-under-directory"] = MAGIC + s1 + s2 + s3 + s4 + be32(5) + be32(1000) + b"\0"
    files["bad-directory-repeat"] = MAGIC + s1 + s2 + s3 + s5 + section(
        4, be32(2) + b"wal" + be32(0) + be32(1) + b"wal" + be32(1) + be32(1))
    files["bad-tables-twice"] = MAGIC + s1 + s2 + s3 + s3 + s5 + s4
    files["bad-directory-twice"] = MAGIC + s1 + s2 + s3 + s5 + s4 + s4
    bad_texts = {
        "shared-count": b"\0k\0\x05x\0",
        "first-shares": b"\x01k\0",
        "literal-run": b"\0" + b"x" * 61 + b"\0",
        "suffix-number": b"\0k\x1f",
        "extended-number": b"\0k\x01\x07",
        "extended-cut": b"\0k\x01",
        "record-runs-past": b"\0kkk",
        "suffix-passes-63": b"\0xxxxxxxxxx\x02\x0a" + b"y" * 42 + b"\x02",
        "shared-count-only": b"\0",
    }
    for name, text in bad_texts.items():
        segs2 = [(b"abc", b"\0k\0"), (b"wal", text)]
        files["bad-segment-" + name] = (MAGIC + s1 + s2 + section(3, tables([b"sssssssss"], [])) +
                                       section(5, text_of(segs2)) + section(4, directory(segs2)))
    for name, data in files.items():
        with open(os.path.join(OUT, name), "wb") as f:
            f.write(data)
    print("%d files in %s" % (len(files), OUT))


if __name__ == "__main__":
    main()
