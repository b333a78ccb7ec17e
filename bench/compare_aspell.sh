#!/usr/bin/env bash
# The yardstick of the suggestion benchmark: how many words a second
# `aspell -a` (normal suggestion mode) answers with a master dictionary
# made from the same word list as our bundled lexicon, over the same
# sample of misspellings (bench/data/sample.txt, from fetch_misspellings.sh).
# Installs aspell from Debian when it is missing (needs root).
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
words=${1:-$here/../data/en-US.txt}
out=$here/data
[ -f "$out/sample.txt" ] || bash "$here/fetch_misspellings.sh"
if ! command -v aspell >/dev/null || [ ! -f /usr/lib/aspell/en.dat ]; then
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends aspell aspell-en >/dev/null
fi
cd "$out"
# aspell refuses words with characters outside its English alphabet
tr -d '\r' < "$words" | LC_ALL=C grep -E "^[A-Za-z']+$" | grep -v "^'" | grep -v "'$" > aspell-words.txt
aspell --lang=en create master ./aspell-master.rws < aspell-words.txt
cut -f1 sample.txt > sample-words.txt
n=$(wc -l < sample-words.txt)
# CPU seconds (user + system) of the best of three runs: wall time means
# little on a machine shared with other work
best=""
for run in 1 2 3; do
  t=$( { TIMEFORMAT='%U %S'; time aspell -a --lang=en --master=./aspell-master.rws \
         --sug-mode=normal < sample-words.txt > aspell-out.txt; } 2>&1 | awk '{ print $1 + $2 }')
  if [ -z "$best" ] || awk -v t="$t" -v b="$best" 'BEGIN { exit !(t < b) }'; then best=$t; fi
done
awk -v n="$n" -v t="$best" 'BEGIN { printf "aspell -a, normal mode: %d words in %.3f s of CPU (best of 3): %.0f words/s\n", n, t, n / t }'
# how often the intended word is aspell's first suggestion, and in its first five
paste sample.txt <(grep -E '^[&#*]' aspell-out.txt) | awk -F'\t' '
  { split($3, a, ": "); n = split(a[2], s, ", "); total++
    if (s[1] == $2) top1++
    for (i = 1; i <= 5 && i <= n; i++) if (s[i] == $2) { top5++; break } }
  END { printf "aspell: intended word first %.1f%%, in the first five %.1f%%\n", 100 * top1 / total, 100 * top5 / total }'
