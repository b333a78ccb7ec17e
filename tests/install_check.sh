#!/usr/bin/env bash
# A host built against an installed tree, both ways a host builds: by
# pkg-config and by CMake's find_package(orto).  Installs BUILD-DIR into a
# temporary prefix, checks the files a host needs there, builds
# tests/install_host with each and runs it.
#   install_check.sh BUILD-DIR HOST-SOURCE-DIR C-COMPILER [C-FLAGS]
set -euo pipefail
build=$1 source=$2 cc=$3 cflags=${4:-}
work=$(mktemp -d "${TMPDIR:-/tmp}/orto-install-XXXXXX")
sock=$work.tmux # the terminal's tmux server, on a socket of its own
trap 'rm -rf "$work"; rm -f "$sock"' EXIT
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null
fail=0
report() { echo "install: $*"; fail=1; }

pc=$(find "$prefix" -name orto.pc)
config=$(find "$prefix" -name ortoConfig.cmake)
[ -n "$pc" ] || report "no orto.pc"
[ -n "$config" ] || report "no ortoConfig.cmake"
for file in include/orto.h include/orto_ui.h share/orto/en-US.clx share/orto/orto.hlp; do
  [ -f "$prefix/$file" ] || report "no $file"
done
[ $fail -eq 0 ] || exit 1

expected="asked: cheks
result 28: A host that checks its text."
run() { # WAY PROGRAM
  local out
  out=$(cd "$work" && "$2" "$work/$1.ini" 2>&1) || true
  [ "$out" = "$expected" ] || report "the host built by $1 said: $out"
}

export PKG_CONFIG_PATH=$(dirname "$pc")
lexicons=$(pkg-config --variable=lexicondir orto)
# shellcheck disable=SC2046,SC2086
"$cc" $cflags -o "$work/host-pc" "$source/host.c" $(pkg-config --cflags --libs orto) \
  -DORTO_LEXICON_DIR="\"$lexicons\"" -Wl,-rpath,"$(pkg-config --variable=libdir orto)"
run pkg-config "$work/host-pc"

cmake -S "$source" -B "$work/cmake-build" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$cc" \
  -DCMAKE_C_FLAGS="$cflags" >/dev/null
cmake --build "$work/cmake-build" >/dev/null
run cmake "$work/cmake-build/host"

# The same host with the terminal front end, a person's key played by
# tmux: Ignore at the first problem ends the check.  Bounded polls only.
wait_for() { # TEXT: true once the screen shows it, false after 20 s
  for _ in $(seq 1 1000); do
    tmux -S "$sock" capture-pane -p 2>/dev/null | grep -qF "$1" && return 0
    sleep 0.02
  done
  return 1
}
tmux -S "$sock" new-session -d -x 80 -y 24 \
  "cd '$work' && '$work/host-pc' '$work/terminal.ini' --terminal; echo '[host ended]'; sleep 60"
if wait_for "Not in Dictionary:cheks"; then
  tmux -S "$sock" send-keys M-i
  wait_for "result 27: A host that cheks its text." || report "the terminal host did not end: $(tmux -S "$sock" capture-pane -p)"
  # its settings are written as it exits: wait for that before the folder goes
  wait_for "[host ended]" || report "the terminal host did not exit"
else
  report "the terminal host showed no dialog: $(tmux -S "$sock" capture-pane -p)"
fi
tmux -S "$sock" kill-server 2>/dev/null || true

[ $fail -eq 0 ] && echo "install: a host builds and runs against the installed tree both ways, and on a terminal"
exit $fail
