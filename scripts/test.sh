#!/usr/bin/env bash
# Builds and runs every test twice: a normal build, then one under
# AddressSanitizer and UndefinedBehaviorSanitizer, where any report fails;
# between the two, runs each fuzz target for 45 seconds.  Last, the
# threaded test under ThreadSanitizer, where a data race fails.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
jobs=$(nproc)

echo "== normal build"
bash scripts/build.sh build -DCMAKE_BUILD_TYPE=RelWithDebInfo
ctest --test-dir build --output-on-failure -j"$jobs"

echo "== fuzzing every reader, 45 s each"
bash scripts/fuzz.sh 45

echo "== sanitizer build"
bash scripts/build.sh build-asan -DCMAKE_BUILD_TYPE=Debug -DORTO_SANITIZE=ON -DORTO_BUILD_BENCH=OFF
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:halt_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
ctest --test-dir build-asan --output-on-failure -j"$jobs"

echo "== thread sanitizer build: sessions on threads of their own"
cmake -S . -B build-tsan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DORTO_SANITIZE_THREADS=ON \
  -DORTO_BUILD_BENCH=OFF >/dev/null
cmake --build build-tsan -j"$jobs" --target threads_test orto_lexicons
TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 build-tsan/tests/threads_test
