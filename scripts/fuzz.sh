#!/usr/bin/env bash
# Builds the fuzz targets with clang and runs each for a bounded time:
# scripts/fuzz.sh [seconds for the compressed lexicon reader, default 60]
# The INI reader and the template reader get a quarter of that each (at
# least 10 s): their inputs are small and their paths few.
# The checked-in corpora (fuzz/corpus/*) seed the runs and aren't changed;
# new inputs go to a scratch folder, crashes to build-fuzz/crashes/.
set -euo pipefail
seconds=${1:-60}
cd "$(dirname "$0")/.."
dir=${ORTO_FUZZ_BUILD_DIR:-build-fuzz}
CC=clang CXX=clang++ cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DORTO_BUILD_FUZZ=ON -DORTO_BUILD_TESTS=OFF -DORTO_BUILD_BENCH=OFF >/dev/null
cmake --build "$dir" --target clex_fuzz ini_fuzz template_fuzz -j2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$dir/crashes"

# run TARGET SECONDS MAX_LEN: one target on its corpus and dictionary
run() {
  mkdir -p "$work/$1"
  "$dir/fuzz/$1_fuzz" -max_total_time="$2" -max_len="$3" -timeout=10 \
    -dict="fuzz/$1.dict" -artifact_prefix="$dir/crashes/" "$work/$1" "fuzz/corpus/$1"
}
run clex "$seconds" 4096
short=$((seconds / 4))
short=$((short < 10 ? 10 : short))
run ini "$short" 8192
run template "$short" 8192
