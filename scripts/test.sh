#!/usr/bin/env bash
# Installs what is missing, builds everything and runs all checks: tests, formatting, clang-tidy, and again under the
# sanitizers the tests that these can say something about.
#   scripts/test.sh [--quick]
# --quick stops after the tests of the release build.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

quick=no
case "${1:-}" in
    "") ;;
    --quick) quick=yes ;;
    *) echo "usage: scripts/test.sh [--quick]" >&2; exit 2 ;;
esac

scripts/packages.sh build run test
scripts/build.sh release
ctest --preset release
[ "$quick" = no ] || exit 0

scripts/lint.sh
for preset in asan tsan; do
    # The real files take their time, and the release build has read them all.
    scripts/build.sh "$preset" regular_tests
    ctest --preset "$preset" -LE corpus
done
echo "All checks passed."
