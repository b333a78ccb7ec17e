#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the bundled data need,
# when any of them is missing.  Run as root on Debian.
set -euo pipefail
packages=(cmake ninja-build g++ clang libclang-rt-dev libgtest-dev libgmock-dev libbenchmark-dev
          pkg-config libncurses-dev tmux nlohmann-json3-dev neovim)
missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "deps: installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
