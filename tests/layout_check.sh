#!/usr/bin/env bash
# The dependency rule of the source tree, checked on the #include lines:
# - tools/ uses the exported interface only: orto.h and system headers;
# - only platform/ calls the operating system (POSIX headers);
# - the library's folders don't reach into tools/ or tests/.
set -u
root=${1:-$(dirname "$0")/..}
cd "$root" || exit 2
fail=0
report() { echo "layout: $*"; fail=1; }

while IFS= read -r line; do
  report "tools/ includes an internal header: $line"
done < <(grep -rn --include='*.cpp' --include='*.h' -E '^#include "' tools/ 2>/dev/null \
         | grep -v -E '#include "(orto\.h|[a-z_]+\.h)"' )
# tools may include their own headers by bare name, never a path into the library
while IFS= read -r line; do
  report "tools/ includes a library path: $line"
done < <(grep -rn --include='*.cpp' --include='*.h' -E '^#include "(engine|lexicon|suggest|host|dialogs|platform)/' tools/ 2>/dev/null)

os_headers='<(unistd|fcntl|pthread|dirent|dlfcn|poll|termios|sys/[a-z_]+)\.h>'
while IFS= read -r line; do
  report "operating system called outside platform/: $line"
done < <(grep -rn --include='*.cpp' --include='*.h' -E "^#include $os_headers" \
         engine lexicon suggest host dialogs 2>/dev/null)

while IFS= read -r line; do
  report "library reaches into tools/ or tests/: $line"
done < <(grep -rn --include='*.cpp' --include='*.h' -E '^#include "(tools|tests)/' \
         engine lexicon suggest host dialogs platform 2>/dev/null)

[ $fail -eq 0 ] && echo "layout: the dependency rule holds"
exit $fail
