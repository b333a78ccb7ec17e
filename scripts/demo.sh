#!/usr/bin/env bash
# The main job: install what is missing, build, and run the orto program.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
bash scripts/build.sh build >/dev/null
./build/bin/orto --help
