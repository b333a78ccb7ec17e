#!/bin/sh
# Fetches the data of block_bench into bench/data/ (git-ignored):
#   block_prose.txt  English prose: the text of Perl's manual pages
#                    (perl-doc, GPL/Artistic), code and markup taken out;
#   block_words.txt  the American English word list of wamerican.
# Needs root for apt-get; run it by hand, it is no part of the build.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
data="$here/data"
mkdir -p "$data"

if ! dpkg -s perl-doc wamerican >/dev/null 2>&1; then
    apt-get update
    DEBIAN_FRONTEND=noninteractive apt-get install -y perl-doc wamerican
fi

cp /usr/share/dict/american-english "$data/block_words.txt"

# POD to plain prose: indented lines are code, lines starting with '=' are
# commands; formatting codes such as C<...> keep their inner text.
dpkg -L perl-doc | grep '\.pod$' | sort | xargs cat | perl -ne '
    next if /^\s/;
    next if /^=/;
    s/[A-Z]<<+\s*(.*?)\s*>>+/$1/g;
    s/[A-Z]<([^<>]*)>/$1/g;
    print' > "$data/block_prose.txt"

size=$(wc -c < "$data/block_prose.txt")
echo "block_prose.txt: $size bytes; block_words.txt: $(wc -l < "$data/block_words.txt") words"
if [ "$size" -lt 5000000 ]; then
    echo "warning: less than 5 MB of prose" >&2
fi
