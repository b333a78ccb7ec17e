#!/usr/bin/env bash
# The dependency rule of the source tree, checked on the #include lines:
# - tools/ uses the exported interface only: orto.h, orto_ui.h and system
#   headers;
# - only platform/ calls the operating system (POSIX headers);
# - host/ (settings store, shared session) uses the engine through orto.h
#   and a few helper headers only, the window layer through ui/window.h,
#   and platform/;
# - dialogs/ uses orto.h, orto_ui.h, host/, ui/ and those helper headers,
#   and the file layer (platform/file.h) for the files it writes whole;
# - the library's folders don't reach into tools/ or tests/.
set -u
root=${1:-$(dirname "$0")/..}
cd "$root" || exit 2
fail=0
report() { echo "layout: $*"; fail=1; }

while IFS= read -r line; do
  report "tools/ includes an internal header: $line"
done < <(grep -rn --include='*.cpp' --include='*.h' -E '^#include "' tools/ 2>/dev/null \
         | grep -v -E '#include "(orto\.h|orto_ui\.h|[a-z_]+\.h)"' )
# tools may include their own headers by bare name, from their own folder
while IFS=: read -r file _ include; do
  name=$(sed -E 's/^#include "([^"]+)".*/\1/' <<<"$include")
  case $name in orto.h|orto_ui.h) continue ;; esac
  [ -f "$(dirname "$file")/$name" ] || report "tools/ includes a header not of its folder: $file: $include"
done < <(grep -rn --include='*.cpp' --include='*.h' -E '^#include "[a-z_]+\.h"' tools/ 2>/dev/null)
# and never a path into the library
while IFS= read -r line; do
  report "tools/ includes a library path: $line"
done < <(grep -rn --include='*.cpp' --include='*.h' -E '^#include "(engine|lexicon|suggest|host|ui|dialogs|platform)/' tools/ 2>/dev/null)

# What a folder may include of ours: check_includes FOLDER ALLOWED-REGEX
engine_helpers='engine/(string_helpers|charclass|debug_log|types)\.h'
check_includes() {
  while IFS= read -r line; do
    report "$1/ includes what it may not: $line"
  done < <(grep -rn --include='*.cpp' --include='*.h' -E '^#include "' "$1"/ 2>/dev/null \
           | grep -v -E "#include \"($2)\"")
}
check_includes host "orto\.h|orto_ui\.h|host/[a-z_]+\.h|ui/window\.h|platform/[a-z_]+\.h|$engine_helpers"
check_includes dialogs "orto\.h|orto_ui\.h|dialogs/[a-z_]+\.h|host/[a-z_]+\.h|ui/[a-z_]+\.h|platform/file\.h|$engine_helpers"

os_headers='<(unistd|fcntl|pthread|dirent|dlfcn|pwd|poll|termios|sys/[a-z_]+)\.h>'
while IFS= read -r line; do
  report "operating system called outside platform/: $line"
done < <(grep -rn --include='*.cpp' --include='*.h' -E "^#include $os_headers" \
         engine lexicon suggest host dialogs ui 2>/dev/null)

while IFS= read -r line; do
  report "library reaches into tools/ or tests/: $line"
done < <(grep -rn --include='*.cpp' --include='*.h' -E '^#include "(tools|tests)/' \
         engine lexicon suggest host ui dialogs platform 2>/dev/null)

[ $fail -eq 0 ] && echo "layout: the dependency rule holds"
exit $fail
