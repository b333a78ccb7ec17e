#!/usr/bin/env bash
# Builds the fuzz targets with clang and runs the compressed lexicon reader's
# target for a bounded time: scripts/fuzz.sh [seconds, default 60]
# The checked-in corpus (fuzz/corpus/clex) seeds the run and isn't changed;
# new inputs go to a scratch folder, crashes to build-fuzz/crashes/.
set -euo pipefail
seconds=${1:-60}
cd "$(dirname "$0")/.."
dir=${ORTO_FUZZ_BUILD_DIR:-build-fuzz}
CC=clang CXX=clang++ cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DORTO_BUILD_FUZZ=ON -DORTO_BUILD_TESTS=OFF -DORTO_BUILD_BENCH=OFF >/dev/null
cmake --build "$dir" --target clex_fuzz -j2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$dir/crashes"
"$dir/fuzz/clex_fuzz" -max_total_time="$seconds" -max_len=4096 -timeout=10 \
  -dict=fuzz/clex.dict -artifact_prefix="$dir/crashes/" "$work" fuzz/corpus/clex
