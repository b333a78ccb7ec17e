#!/usr/bin/env bash
# Builds the fuzz targets with clang and runs each for a bounded time:
#   scripts/fuzz.sh [seconds per target, default 60] [target...]
# Targets: clex tlex block compress pipe ini template (all when none is
# named).  With ORTO_FUZZ_RUNS set, each runs that many inputs instead (the
# long runs by hand); ORTO_FUZZ_SANITIZE=undefined builds them without ASan,
# for speed.  The checked-in corpus (fuzz/corpus/TARGET) seeds each run and
# isn't changed; new inputs go to a scratch folder, crashes to
# build-fuzz/crashes/.  The engine syncs every file it writes, so the
# targets' scratch files go to /dev/shm where there is one.
set -euo pipefail
seconds=${1:-60}
shift || true
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(clex tlex block compress pipe ini template)
cd "$(dirname "$0")/.."
dir=${ORTO_FUZZ_BUILD_DIR:-build-fuzz}
CC=clang CXX=clang++ cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DORTO_BUILD_FUZZ=ON -DORTO_BUILD_TESTS=OFF -DORTO_BUILD_BENCH=OFF \
  -DORTO_FUZZ_SANITIZE="${ORTO_FUZZ_SANITIZE:-address,undefined}" >/dev/null
cmake --build "$dir" --target "${targets[@]/%/_fuzz}" -j2
[ -d /dev/shm ] && [ -w /dev/shm ] && export TMPDIR=/dev/shm
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$dir/crashes"
for t in "${targets[@]}"; do
  echo "== fuzzing $t"
  mkdir -p "$work/$t"
  limit=(-max_total_time="$seconds")
  [ -n "${ORTO_FUZZ_RUNS:-}" ] && limit=(-runs="$ORTO_FUZZ_RUNS")
  dict=()
  [ -f "fuzz/$t.dict" ] && dict=(-dict="fuzz/$t.dict")
  "$dir/fuzz/${t}_fuzz" "${limit[@]}" -max_len=4096 -timeout=10 -close_fd_mask=1 \
    -print_final_stats=1 "${dict[@]}" -artifact_prefix="$dir/crashes/$t-" "$work/$t" "fuzz/corpus/$t"
done
