#!/usr/bin/env bash
# The main job: install what is missing, build, and check a text with the
# bundled en-US lexicon, printing each misspelled word where it occurs.
#   bash scripts/demo.sh [FILE]      (default: data/sample.txt)
set -euo pipefail
text=${1:-}
[ -z "$text" ] || text=$(realpath "$text")
cd "$(dirname "$0")/.."
text=${text:-data/sample.txt}
bash scripts/deps.sh
bash scripts/build.sh build >/dev/null
echo "Misspelled words in $text:"
./build/bin/orto list "$text"
