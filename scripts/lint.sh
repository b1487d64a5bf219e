#!/usr/bin/env bash
# Checks formatting, and the sources of the release build with clang-tidy.
#   scripts/lint.sh [--tests]
# --tests takes the tests' sources, too: more to read than all the rest, and what is wrong there shows when they run.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

folders="src|samples|benchmarks"
case "${1:-}" in
    "") ;;
    --tests) folders="$folders|tests" ;;
    *) echo "usage: scripts/lint.sh [--tests]" >&2; exit 2 ;;
esac

git ls-files '*.h' '*.cpp' | xargs clang-format-14 --dry-run -Werror
echo "Formatting is as it should be."

# clang-tidy cannot read the compiler's precompiled headers.
mkdir -p build/tidy
sed -E 's/ -Winvalid-pch| -fpch-preprocess| -include [^ ]*cmake_pch\.hxx//g' build/release/compile_commands.json \
    >build/tidy/compile_commands.json

# Generated sources carry other people's style.
run-clang-tidy-14 -quiet -p build/tidy "^$PWD/($folders)/" >build/tidy.log 2>&1 ||
    { grep -E 'error:|warning:' build/tidy.log | sort -u; echo "clang-tidy found the above; all of it: build/tidy.log"; exit 1; }
echo "clang-tidy found nothing."
