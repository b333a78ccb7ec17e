#!/usr/bin/env bash
# Remakes the bundled English word lists from Debian's word list packages:
#   data/en-US.txt from wamerican, data/en-GB.txt from wbritish,
# with the packages' copyright texts beside them.
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
#     differs from it only in case ("NASA" beside "Nasa");
#   - the rest is sorted by bytes, duplicates removed, written with CR LF.
#
# Needs the packages installed (apt-get install wamerican wbritish) and
# python3.  Run from anywhere; writes next to this script.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"

convert() { # source-file package output
  local src="$1" pkg="$2" out="$3"
  if [ ! -r "$src" ]; then
    echo "make_wordlists: $src missing; install it with: apt-get install $pkg" >&2
    exit 1
  fi
  python3 - "$src" "$out" <<'PY'
import sys
src, out = sys.argv[1], sys.argv[2]
# Bytes with no class in the engine's Windows Latin-1 table.
noclass = set(range(0x00, 0x20)) | set(range(0x80, 0x92)) | {0x9D, 0x9E, 0x9F, 0xA0}
words = set()
dropped = 0
with open(src, encoding="utf-8") as f:
    for line in f:
        w = line.rstrip("\r\n")
        if not w or w.endswith("'s"):
            continue
        try:
            b = w.encode("cp1252")
        except UnicodeEncodeError:
            dropped += 1
            continue
        if len(b) > 63 or any(c in noclass for c in b):
            dropped += 1
            continue
        words.add(b)
# Case as the engine's Latin-1 table has it: capitals are A-Z and
# 0xC0-0xDF but 0xD7, and a capital plus 0x20 is its small letter.
upper = set(range(0x41, 0x5B)) | (set(range(0xC0, 0xE0)) - {0xD7})
lower = {c + 0x20 for c in upper}
def fold(b):
    return bytes(c + 0x20 if c in upper else c for c in b)
folded = {}
for b in words:
    folded[fold(b)] = folded.get(fold(b), 0) + 1
variants = {b for b in words
            if (b[0] in upper and bytes([b[0] + 0x20]) + b[1:] in words)
            or (not any(c in lower for c in b) and any(c in upper for c in b)
                and folded[fold(b)] > 1)}
words -= variants
with open(out, "wb") as f:
    for b in sorted(words):
        f.write(b + b"\r\n")
print(f"{out}: {len(words)} words, {dropped} dropped, "
      f"{len(variants)} case variants dropped")
PY
  cp "/usr/share/doc/$pkg/copyright" "$here/copyright-$pkg"
}

convert /usr/share/dict/american-english wamerican "$here/en-US.txt"
convert /usr/share/dict/british-english wbritish "$here/en-GB.txt"
