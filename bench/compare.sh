#!/usr/bin/env bash
# Compares the orto program with Hunspell and Aspell, by hand, never in CI:
#
#   bash bench/compare.sh [BUILD-DIR]      (as root on Debian; default build)
#
# 1. Listing misspelled words (`orto list`, `hunspell -l`, `aspell list`)
#    over the same text, taken from Debian's `fortunes` package: words per
#    second, peak memory and the number of words reported.  Twice: with the
#    same word list everywhere (our bundled en-US list, given to Hunspell as
#    a dictionary without affix rules and to Aspell as a master dictionary
#    made from it), and with each program's stock English dictionary.
#    With the stock dictionaries also over a second text, the prose of The
#    Debian Administrator's Handbook (Debian's `debian-handbook`: its HTML
#    paragraphs without code, commands and file names), and over every
#    distinct misspelling of the list below, to count those caught.
# 2. Suggestions over real misspellings (npm package
#    @cspell/dict-en-common-misspellings): each misspelling goes through
#    the ispell pipe (`orto -a`, `hunspell -a`, `aspell -a`); suggestions per
#    second, peak memory, and how often the intended word comes first and
#    among the first five.
#
# It installs what it needs (hunspell, aspell and their English
# dictionaries, fortunes, time) with apt-get, fetches the misspellings with
# `npm pack`, and prints one table.  Set SAMPLE to the number of
# misspellings to try (default 3000).
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
build=${1:-build}
sample=${SAMPLE:-3000}
work=${TMPDIR:-/tmp}/orto-compare
mkdir -p "$work"

echo "== installing the peers and the text" >&2
packages=(hunspell hunspell-en-us aspell aspell-en fortunes debian-handbook time python3)
missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
if [ ! -f "$work/misspellings/package/dict/dict-en.json" ]; then
  command -v npm >/dev/null || { echo "compare: npm is needed for the misspellings" >&2; exit 1; }
  rm -rf "$work/misspellings" && mkdir -p "$work/misspellings"
  (cd "$work/misspellings" && npm pack --silent @cspell/dict-en-common-misspellings >/dev/null &&
   tar xzf ./*.tgz)
fi

echo "== building orto" >&2
if [ ! -x "$build/bin/orto" ] || [ ! -f "$build/data/en-US.clx" ]; then
  bash scripts/build.sh "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
fi
orto=$root/$build/bin/orto

echo "== preparing the text, the word list and the misspellings" >&2
# The text: every English fortune, without the '%' separator lines, four
# times over, so that a run lasts long enough to be timed.
text=$work/text.txt
find /usr/share/games/fortunes -maxdepth 1 -type f ! -name '*.dat' -print0 |
  sort -z | xargs -0 cat | grep -av '^%$' | iconv -f utf-8 -t utf-8 -c > "$work/fortunes.txt"
cat "$work/fortunes.txt" "$work/fortunes.txt" "$work/fortunes.txt" "$work/fortunes.txt" > "$text"
words_in_text=$(wc -w < "$text")
# The second text: the handbook's paragraphs, list items and headings,
# without what is set as code, commands, file names, packages or links.
python3 - /usr/share/doc/debian-handbook/html/en-US > "$work/handbook.txt" <<'EOF'
import glob, html.parser, sys
skip_tags = {"pre", "code", "tt", "kbd", "samp", "script", "style", "a"}
skip_classes = {"command", "filename", "literal", "option", "package", "replaceable", "userinput",
                "computeroutput", "varname", "email", "uri", "systemitem", "programlisting", "screen",
                "envar", "parameter", "function", "prompt", "keycap", "guimenu", "guibutton", "guilabel",
                "guimenuitem", "application", "ulink", "footnote"}
class Prose(html.parser.HTMLParser):
    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.stack, self.skip, self.text = [], 0, []
    def handle_starttag(self, tag, attrs):
        if tag in ("br", "img", "hr", "meta", "link", "input"):
            return
        classes = set((dict(attrs).get("class") or "").split())
        skip = tag in skip_tags or bool(classes & skip_classes)
        self.stack.append((tag, skip))
        self.skip += skip
    def handle_endtag(self, tag):
        while self.stack:
            t, skip = self.stack.pop()
            self.skip -= skip
            if t == tag:
                break
        if tag in ("p", "li", "h1", "h2", "h3", "h4", "dt", "dd", "td", "title"):
            paragraph = " ".join("".join(self.text).split())
            if paragraph:
                print(paragraph + "\n")
            self.text = []
    def handle_data(self, data):
        self.text.append(" " if self.skip else data)
for name in sorted(glob.glob(sys.argv[1] + "/*.html")):
    Prose().feed(open(name, encoding="utf-8").read())
EOF
words_in_handbook=$(wc -w < "$work/handbook.txt")

# Our word list in UTF-8 with LF line ends, for the peers.
iconv -f cp1252 -t utf-8 "$root/data/en-US.txt" | tr -d '\r' | grep -v '^#' | grep -v '^$' > "$work/orto-words.txt"
# Hunspell: the list as a dictionary; an affix file with no affix rules,
# only the encoding and the stock file's TRY and KEY lines, which its
# suggestions need.
{ wc -l < "$work/orto-words.txt"; cat "$work/orto-words.txt"; } > "$work/orto_en.dic"
{ echo "SET UTF-8"; grep -E '^(TRY|KEY|WORDCHARS) ' /usr/share/hunspell/en_US.aff || true; } > "$work/orto_en.aff"
# Aspell: the list as a master dictionary of the English language.
aspell --lang=en --encoding=utf-8 --dont-validate-words create master "$work/orto_en.rws" \
  < "$work/orto-words.txt"

# The misspellings: "wrong->right, other" lines, a fixed sample of them.
python3 - "$work/misspellings/package/dict/dict-en.json" "$sample" > "$work/misspellings.tsv" <<'EOF'
import json, random, sys
d = json.load(open(sys.argv[1]))["dictionaryDefinitions"][0]
pairs = []
for entry in d.get("suggestWords", []) + d.get("flagWords", []):
    if "->" not in entry:
        continue
    wrong, right = entry.split("->", 1)
    right = right.split(",")[0].strip()
    if wrong.isalpha() and right and " " not in right:
        pairs.append((wrong, right))
random.Random(5).shuffle(pairs)
for wrong, right in pairs[: int(sys.argv[2])]:
    print(f"{wrong}\t{right}")
EOF
# Every distinct misspelling of the package made of ASCII letters and
# apostrophes, one a line, to count how many each program catches.
python3 - "$work/misspellings/package/dict/dict-en.json" > "$work/misspelled.txt" <<'EOF'
import json, re, sys
words = set()
for d in json.load(open(sys.argv[1]))["dictionaryDefinitions"]:
    for entry in d.get("flagWords", []) + d.get("suggestWords", []):
        wrong = entry.split("->")[0].strip()
        if re.fullmatch(r"[A-Za-z']+", wrong):
            words.add(wrong)
print("\n".join(sorted(words)))
EOF
words_misspelled=$(wc -l < "$work/misspelled.txt")
cut -f1 "$work/misspellings.tsv" | sed 's/^/^/' > "$work/misspellings.pipe"

# Runs a command over a file on standard input; leaves "seconds peak-kB"
# in $work/time and the output in the file named by $2.
measure() {
  local input=$1 output=$2
  shift 2
  /usr/bin/time -f "%e %M" -o "$work/time" "$@" < "$input" > "$output" 2> "$work/stderr" || {
    echo "compare: '$*' failed:" >&2
    head -5 "$work/stderr" >&2
    exit 1
  }
}

results=$work/results.tsv
: > "$results"
list_row() { # task input name dict command...
  local task=$1 input=$2 name=$3 dict=$4 count
  shift 4
  measure "$input" "$work/list.out" "$@"
  read -r secs kb < "$work/time"
  if [ "$task" = caught ]; then
    count=$(sort -u "$work/list.out" | wc -l)
  else
    count=$(wc -l < "$work/list.out")
  fi
  echo -e "$task\t$name\t$dict\t$secs\t$kb\t$count" >> "$results"
}
pipe_row() {
  local name=$1 dict=$2
  shift 2
  measure "$work/misspellings.pipe" "$work/pipe.out" "$@"
  read -r secs kb < "$work/time"
  echo -e "pipe\t$name\t$dict\t$secs\t$kb\t$work/pipe.out.$name.$dict" >> "$results"
  cp "$work/pipe.out" "$work/pipe.out.$name.$dict"
}

echo "== listing" >&2
list_row list "$text" orto same "$orto" list -d en-US
list_row list "$text" hunspell same hunspell -l -i utf-8 -d "$work/orto_en"
list_row list "$text" aspell same aspell list --encoding=utf-8 --master="$work/orto_en.rws"
for t in list:"$text" prose2:"$work/handbook.txt" caught:"$work/misspelled.txt"; do
  list_row "${t%%:*}" "${t#*:}" orto stock "$orto" list -d en-US
  list_row "${t%%:*}" "${t#*:}" hunspell stock hunspell -l -i utf-8 -d en_US
  list_row "${t%%:*}" "${t#*:}" aspell stock aspell list --encoding=utf-8 -d en_US
done

echo "== suggesting" >&2
pipe_row orto same "$orto" -a -d en-US
pipe_row hunspell same hunspell -a -i utf-8 -d "$work/orto_en"
pipe_row aspell same aspell -a --encoding=utf-8 --master="$work/orto_en.rws"
pipe_row orto stock "$orto" -a -d en-US
pipe_row hunspell stock hunspell -a -i utf-8 -d en_US
pipe_row aspell stock aspell -a --encoding=utf-8 -d en_US

python3 - "$results" "$work/misspellings.tsv" "$words_in_text" "$words_in_handbook" "$words_misspelled" <<'EOF'
import sys
results, pairs_file = sys.argv[1], sys.argv[2]
words = {"list": int(sys.argv[3]), "prose2": int(sys.argv[4]), "caught": int(sys.argv[5])}
pairs = [l.rstrip("\n").split("\t") for l in open(pairs_file, encoding="utf-8")]

def answers(path):
    """The suggestion list of each input line of an ispell pipe answer:
    one block of lines, ended by an empty line, for each line sent."""
    out, block = [], []
    for line in open(path, encoding="utf-8", errors="replace").read().split("\n")[1:]:
        if line:
            block.append(line)
            continue
        first = block[0] if block else ""
        if first[:1] in ("&", "?"):
            out.append([s.strip() for s in first.split(": ", 1)[1].split(", ")])
        elif first[:1] in ("*", "+", "-"):
            out.append(["*"])  # taken for a correct word
        else:
            out.append([])
        block = []
    return out

print(f"Texts: list {words['list']} words of fortunes, prose2 {words['prose2']} words of the Debian handbook;")
print(f"caught: {words['caught']} distinct misspellings; suggest: {len(pairs)} of them with their intended words")
print()
print(f"{'task':6} {'program':9} {'lexicon':8} {'seconds':>8} {'peak MB':>8} {'words/s':>10} {'reported':>9} {'first':>7} {'top 5':>7}")
for row in open(results):
    task, name, dict_, secs, kb, extra = row.rstrip("\n").split("\t")
    secs, mb = float(secs), int(kb) / 1024
    if task in words:
        rate = words[task] / secs if secs > 0 else float("inf")
        print(f"{task:6} {name:9} {dict_:8} {secs:8.2f} {mb:8.1f} {rate:10.0f} {int(extra):9d} {'':>7} {'':>7}")
    else:
        lists = answers(extra)
        first = top5 = 0
        for (wrong, right), sugg in zip(pairs, lists):
            first += bool(sugg) and sugg[0] == right
            top5 += right in sugg[:5]
        n = len(pairs)
        rate = n / secs if secs > 0 else float("inf")
        print(f"{'suggest':6} {name:9} {dict_:8} {secs:8.2f} {mb:8.1f} {rate:10.0f} {'':>9} "
              f"{100 * first / n:6.1f}% {100 * top5 / n:6.1f}%")
print()
print("same: the bundled en-US list for all three (Hunspell without affix rules);")
print("stock: each program's own English dictionary (orto's is the bundled en-US).")
print("reported counts the words listed; for caught, the distinct misspellings listed.")
print("suggest words/s is misspellings answered per second; first and top 5 count")
print("how often the intended word is the first suggestion, or among the first five.")
EOF
