#!/usr/bin/env bash
# Checks formatting, and with clang-tidy the sources of the release build that the last commits have changed.
#   scripts/lint.sh [--all]
# --all takes every source, the tests' too, which is many times as much to read.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

commits=20
everything=no
case "${1:-}" in
    "") ;;
    --all) everything=yes ;;
    *) echo "usage: scripts/lint.sh [--all]" >&2; exit 2 ;;
esac

git ls-files '*.h' '*.cpp' | xargs clang-format-14 --dry-run -Werror
echo "Formatting is as it should be."

# clang-tidy cannot read the compiler's precompiled headers.
mkdir -p build/tidy
sed -E 's/ -Winvalid-pch| -fpch-preprocess| -include [^ ]*cmake_pch\.hxx//g' build/release/compile_commands.json \
    >build/tidy/compile_commands.json

# Generated sources carry other people's style.
patterns=("^$PWD/(src|tests|samples|benchmarks)/")
if [ "$everything" = no ]; then
    # A header is read along with the source of its name.
    changed=$(git log -$commits --format= --name-only -- 'src/*' 'samples/*' 'benchmarks/*' |
        sed -nE 's/\.(h|cpp)$/.cpp/p' | sort -u)
    patterns=()
    for source in $changed; do
        [ ! -f "$source" ] || patterns+=("^$PWD/$source$")
    done
fi
[ ${#patterns[@]} -eq 0 ] ||
    run-clang-tidy-14 -quiet -p build/tidy "${patterns[@]}" >build/tidy.log 2>&1 ||
    { grep -E 'error:|warning:' build/tidy.log | sort -u; echo "clang-tidy found the above; all of it: build/tidy.log"; exit 1; }
echo "clang-tidy found nothing."
