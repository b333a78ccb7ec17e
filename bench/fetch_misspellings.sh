#!/usr/bin/env bash
# Fetches a list of real English misspellings for the suggestion benchmark:
# the npm package @cspell/dict-en-common-misspellings, unpacked under
# bench/data/ (not part of the build, git-ignored).  Writes
# bench/data/misspellings.txt, one "misspelling<TAB>intended word" a line,
# keeping the pairs of plain ASCII letters (and apostrophes) whose intended
# word stands in the word list given (default: data/en-US.txt) and whose
# misspelling does not, and bench/data/sample.txt, 2000 of them spread
# evenly, which the benchmark and compare_aspell.sh use.  Needs npm and node.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
words=${1:-$here/../data/en-US.txt}
out=$here/data
mkdir -p "$out"
cd "$out"
if [ ! -f package/dict/dict-en.json ]; then
  tarball=$(npm pack --silent @cspell/dict-en-common-misspellings 2>/dev/null | tail -n 1)
  tar xzf "$tarball"
fi
node - "$words" package/dict/dict-en.json > misspellings.txt <<'JS'
const fs = require('fs');
const [wordFile, dictFile] = process.argv.slice(2);
const known = new Set(fs.readFileSync(wordFile, 'latin1').split(/\r?\n/));
const plain = /^[A-Za-z']+$/;
const seen = new Set();
for (const def of JSON.parse(fs.readFileSync(dictFile, 'utf8')).dictionaryDefinitions) {
  for (const line of [...(def.flagWords || []), ...(def.suggestWords || [])]) {
    const [wrong, rights] = line.split('->');
    if (!rights) continue;
    const right = rights.split(',')[0].trim();
    if (!plain.test(wrong) || !plain.test(right) || wrong.length > 63) continue;
    if (known.has(wrong) || !known.has(right) || seen.has(wrong)) continue;
    seen.add(wrong);
    console.log(wrong + '\t' + right);
  }
}
JS
# the benchmark's sample: 2000 pairs spread evenly over the list
awk -v n="$(wc -l < misspellings.txt)" 'BEGIN { step = n / 2000; next_ = 0 }
  NR - 1 >= next_ && taken < 2000 { print; taken++; next_ += step }' misspellings.txt > sample.txt
echo "$(wc -l < misspellings.txt) misspellings in $out/misspellings.txt, $(wc -l < sample.txt) in sample.txt"
