#!/usr/bin/env bash
# Remakes the bundled English word lists and their word frequencies from
# SCOWL, as Debian's `scowl` package installs it in /usr/share/dict/scowl:
#   data/en-US.txt, data/en-US-freq.txt   english + american
#   data/en-GB.txt, data/en-GB-freq.txt   english + british (-ise spellings)
# with the package's copyright text beside them (copyright-scowl).
#
#   data/make_wordlists.sh [SIZE [UPPER]]  (defaults 60 and 70; sizes 10 .. 95)
#
# Each list takes the words, contractions, abbreviations and proper names
# of every SCOWL size up to SIZE, the upper-case words (names of people and
# places, mostly) up to UPPER, and SCOWL's roman numerals and words of
# computing (special-hacker).  Size 60 is where the stock Hunspell and
# Aspell dictionaries stand; the upper-case words of size 70 cut what the
# checker reports of real prose by three in a hundred, and let no more
# misspellings pass (bench/compare.sh).  SCOWL's sizes rank words by how
# common they are (size 10 holds the most common ones), so the smallest size a word appears in is its frequency class: 0 for size 10,
# 1 for 20, then 35, 40, 50, 55, 60, 70, 80, 95.  The frequency file lists
# the words of the list below the class of SIZE itself, which is what the
# ranking of suggestions assumes of a word that the file doesn't name.
#
# The engine reads Windows Latin-1 with CR LF line ends, and the lexicon
# compressor wants the words strictly ascending by unsigned bytes, so each
# list is converted, filtered and sorted here:
#   - words ending in 's are dropped: the engine strips possessives itself;
#   - words that don't convert from UTF-8 to Windows-1252 are dropped;
#   - words holding a byte the engine's character table gives no class
#     (controls, 0x80-0x91, 0x9D-0x9F, 0xA0) or longer than 63 bytes are
#     dropped, since the compressor refuses them;
#   - case variants that the checker accepts without an entry of their own
#     are dropped, since with case-sensitive checking a word in small
#     letters also accepts its capitalised and all-capitals forms, any word
#     accepts its all-capitals form, and case-blind checking accepts every
#     form: so a word that begins with a capital goes when the same word
#     with that letter in small case is in the list ("Apple" beside
#     "apple"), and a word with no small letter goes when another word
#     differs from it only in case ("NASA" beside "Nasa"); the word that
#     stays takes the more common class of the two;
#   - the rest is sorted by bytes, duplicates removed, written with CR LF.
# The frequency file has the same encoding: a line "=N" sets the class of
# the words that follow it, one a line (docs/frequency_format.md).
#
# Needs the package installed (apt-get install scowl) and python3.  Run from
# anywhere; writes next to this script.  After it, remake the suffix tables
# (data/README.md).
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
size=${1:-60}
upper=${2:-70}
scowl=/usr/share/dict/scowl
if [ ! -d "$scowl" ]; then
  echo "make_wordlists: $scowl missing; install it with: apt-get install scowl" >&2
  exit 1
fi

convert() { # spelling-category output-stem
  python3 - "$scowl" "$1" "$size" "$upper" "$2" <<'PY'
import os, sys
scowl, variety, size, upper, stem = sys.argv[1], sys.argv[2], int(sys.argv[3]), int(sys.argv[4]), sys.argv[5]
sizes = [10, 20, 35, 40, 50, 55, 60, 70, 80, 95]
if size not in sizes:
    sys.exit(f"make_wordlists: size must be one of {sizes}")
kinds = ["words", "upper", "contractions", "abbreviations", "proper-names"]
# Bytes with no class in the engine's Windows Latin-1 table.
noclass = set(range(0x00, 0x20)) | set(range(0x80, 0x92)) | {0x9D, 0x9E, 0x9F, 0xA0}
klass = {}   # word bytes -> frequency class
dropped = 0
for c, s in enumerate(sizes):
    if s > max(size, upper):
        break
    for category, kind in [(c_, k_) for c_ in ("english", variety) for k_ in kinds] + \
            [("special", "hacker"), ("special", "roman-numerals")]:
        if s <= (upper if kind == "upper" else size):
            path = os.path.join(scowl, f"{category}-{kind}.{s}")
            if not os.path.exists(path):
                continue
            for line in open(path, encoding="utf-8"):
                w = line.rstrip("\r\n")
                if not w or w.endswith("'s"):
                    continue
                try:
                    b = w.encode("cp1252")
                except UnicodeEncodeError:
                    dropped += 1
                    continue
                if len(b) > 63 or any(x in noclass for x in b):
                    dropped += 1
                    continue
                klass.setdefault(b, c)
# Case as the engine's Latin-1 table has it: capitals are A-Z and
# 0xC0-0xDF but 0xD7, and a capital plus 0x20 is its small letter.
upper = set(range(0x41, 0x5B)) | (set(range(0xC0, 0xE0)) - {0xD7})
lower = {x + 0x20 for x in upper}
def fold(b):
    return bytes(x + 0x20 if x in upper else x for x in b)
byfold = {}
for b in klass:
    byfold.setdefault(fold(b), []).append(b)
variants = {}
for b in klass:
    if b[0] in upper and bytes([b[0] + 0x20]) + b[1:] in klass:
        variants[b] = bytes([b[0] + 0x20]) + b[1:]
    elif not any(x in lower for x in b) and any(x in upper for x in b) and len(byfold[fold(b)]) > 1:
        keep = [o for o in byfold[fold(b)] if o != b and o not in variants]
        variants[b] = keep[0] if keep else None
for b, kept in variants.items():
    if kept is not None and kept in klass and kept not in variants:
        klass[kept] = min(klass[kept], klass[b])
for b in variants:
    if variants[b] is not None:
        klass.pop(b, None)
top = sizes.index(size)
with open(f"{stem}.txt", "wb") as f:
    for b in sorted(klass):
        f.write(b + b"\r\n")
with open(f"{stem}-freq.txt", "wb") as f:
    f.write(b"# Frequency classes of the words of " + os.path.basename(stem).encode() +
            b".txt, from the SCOWL sizes (data/make_wordlists.sh).\r\n")
    f.write(b"# Words not named here are of class %d.\r\n" % top)
    for c in range(top):
        f.write(b"=%d\r\n" % c)
        for b in sorted(w for w, k in klass.items() if k == c):
            f.write(b + b"\r\n")
counts = [sum(1 for k in klass.values() if k == c) for c in range(top + 1)]
print(f"{stem}.txt: {len(klass)} words (by class {counts}), {dropped} dropped, "
      f"{len(variants)} case variants dropped")
PY
}

convert american "$here/en-US"
convert british "$here/en-GB"
cp /usr/share/doc/scowl/copyright "$here/copyright-scowl"
