#!/usr/bin/env python3
"""Writes the seed corpora of the text lexicon, block, compressor and pipe
fuzz targets into fuzz/corpus/{tlex,block,compress,pipe}/: small inputs of
the shapes each reader knows, and some it must refuse.  The files are
checked in; run this again only to change them.  The input layouts are
those that the targets' *_fuzz_one.h headers read."""
import os
import struct

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "corpus")


def be32(v):
    return struct.pack(">I", v & 0xFFFFFFFF)


def lines(*ls, end=b"\r\n"):
    return b"".join(l + end for l in ls)


TLEX = {
    "sentinel-every-action": lines(b"#LID 24941", b"Ada\ti", b"teh\tAthe", b"recieve\tareceive",
                                   b"colour\tccolor", b"Colour\tCColor", b"bad\te", b"ok"),
    "plain-list": lines(b"walk", b"walks", b"wall"),
    "empty": b"",
    "comments-and-blanks": lines(b"#LID 25202", b"", b"# a comment", b"word", b"", b"#x\ti"),
    "windows-language": lines(b"#LID 1036", b"chat\ti"),
    "negative-language": lines(b"#LID -5", b"x\ti"),
    "sentinel-alone": b"#LID",
    "last-line-open": b"#LID 24941\r\nopen\ti\r\nend\ti",
    "lf-lines": b"#LID 24941\nunix\ti\nlines\ti\n",
    "long-line": lines(b"#LID 24941", b"w" * 200, b"x\ti" + b"o" * 150),
    "tab-only": lines(b"#LID 24941", b"\tx", b"\t", b"word\t"),
    "unsorted-duplicates": lines(b"#LID 24941", b"zeta\ti", b"alpha\ti", b"zeta\te", b"Alpha\ti"),
    "nul-bytes": lines(b"#LID 24941", b"nu\0l\ti", b"\0"),
    "latin1": lines(b"#LID 24941", b"caf\xe9\ti", b"\xc9t\xe9\tA\xe9t\xe9"),
    "cr-alone": b"#LID 24941\rword\ti\r\n",
    # found by fuzzing: a word listed with an action and without one
    "twice-one-without-action": lines(b"#LID 24941", b"end\ti", b"end\t", b"x\tioooo"),
}


def block(text, options=0x18680, room=32, copy=0, script=b"\x00\x02\x03\x0b\x04\x05\x06\x07"):
    return be32(options) + bytes([room, copy, len(script)]) + script + text


SAMPLE = (b"The the quick brwn fox. teh colour Colour recieve bad e.g. dogs' O'Neil "
          b"walk-ing 1999 B2B McDonald caf\xe9 don\x92t")
BLOCK = {
    "defaults": block(SAMPLE),
    "copy-doubled-uncapped": block(b"the the walk walk. paris is big", 0x18680 | 0x110, copy=1),
    "every-option": block(SAMPLE, 0x1FFFF, room=0),
    "no-options": block(SAMPLE, 0, room=200, script=b"\x03\x0b\x13\x1b"),
    "empty-text": block(b"", room=8),
    "no-room": block(b"a b c", room=0, script=b"\x05\x0d\x15"),
    "punctuation": block(b"... -- !? ,,, ''' \x92\x92 \t\r\n  ", script=b"\x00\x06\x0e"),
    "long-word": block(b"x" * 100 + b" " + b"y" * 63 + b"s' end", script=b"\x02\x03"),
    "split-words": block(b"quickly walkdog thewall", 0x18680 | 0x1000 | 0x800, script=b"\x00"),
    "hyphens-apostrophes": block(b"walk-ing don't cat's O'Neil re-receive", 0x18680 | 0xC00),
}


def compress(suffixes, first, second=b"", language=0x616D):
    pad = (-len(suffixes)) % 4
    suffixes += b"#" * pad
    return (be32(language) + bytes([len(suffixes) // 4]) + struct.pack(">H", len(first)) +
            suffixes + first + second)


WORDS = lines(b"a", b"an", b"cat", b"cats", b"walk", b"walked", b"walking", b"walks", b"wall")
SUFFIXES = lines(b"s", b"ed", b"ing", b"ly")
COMPRESS = {
    "one-list": compress(SUFFIXES, WORDS),
    "two-lists": compress(SUFFIXES, lines(b"dog", b"dogs"), lines(b"bird", b"birds")),
    "no-suffixes": compress(b"", WORDS),
    "comments-blanks": compress(lines(b"# simple", b"s"), lines(b"# list", b"", b"kind", b"kindly")),
    "out-of-order": compress(SUFFIXES, lines(b"walk", b"cat")),
    "duplicate": compress(SUFFIXES, lines(b"cat", b"cat")),
    "shared-key-across-lists": compress(SUFFIXES, lines(b"walk"), lines(b"wall")),
    "too-long": compress(SUFFIXES, lines(b"a" * 64)),
    "control-byte": compress(SUFFIXES, lines(b"ta\x01b")),
    "extended-suffixes": compress(lines(*[b"s%d" % i for i in range(40)]),
                                  lines(b"base", b"bases1", b"bases35", b"bases39")),
    "long-suffix": compress(lines(b"abcdefghijkl"), lines(b"xabcdefghijkl")),
    "latin1-and-capitals": compress(SUFFIXES, lines(b"ABC", b"Abc", b"abc", b"caf\xe9", b"\xe9t\xe9")),
    "empty": compress(b"", b""),
    "last-line-open": compress(b"", b"one\r\ntwo"),
}

PIPE = {
    "commands-and-text": b"\x00" + lines(b"hello world teh", b"*newword", b"newword here", b"!",
                                          b"quick brwn fox", b"%", b"^*star text", b"@accept",
                                          b"accept it", b"&Lower", b"lower", b"#", b"+", b"-",
                                          b"~tex", end=b"\n"),
    "utf8": b"\x00" + "caf\u00e9 na\u00efve \u00fcber \u2192 \U0001F600 \u65e5\u672c\n".encode(),
    "latin1": b"\x01" + b"caf\xe9 \xe9t\xe9 d\xe9j\xe0\n",
    "bad-utf8": b"\x00" + b"caf\xe9 \xff\xfe\n",
    "crlf": b"\x02" + b"walkwall dogcat\r\nthe the\r\n",
    "long-line": b"\x04" + b"word " * 100 + b"\n",
    "no-line-end": b"\x00" + b"tehx",
    "add-bad-words": b"\x00" + lines(b"*#hash", b"*a\tb", b"* ", b"&", b"@", end=b"\n"),
    # found by fuzzing: a line that begins with a NUL is text, not a command
    "nul-first": b"X" + b"\0\0\0*a\tb\n*\n@\n",
}


def main():
    for name, files in (("tlex", TLEX), ("block", BLOCK), ("compress", COMPRESS), ("pipe", PIPE)):
        out = os.path.join(ROOT, name)
        os.makedirs(out, exist_ok=True)
        for fname, data in files.items():
            with open(os.path.join(out, fname), "wb") as f:
                f.write(data)
        print("%d files in %s" % (len(files), out))


main()
