#!/usr/bin/env bash
# Changes one thing at a time in the sources of a folder, builds, runs the tests, and lists the changes that no test
# notices. For use before an issue is called done, not in the regular checks.
#   scripts/mutate.sh FOLDER [--tests PROGRAM...] [--sample N] [--seed N]
# FOLDER is one of src/, such as src/insight. PROGRAM is a test program, such as cli_tests; without one it is that of
# the folder's name. --sample takes N changes at random instead of all.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

scripts/packages.sh build run test
[ -f build/release/build.ninja ] || cmake --preset release >/dev/null
exec python3 scripts/mutate.py "$@"
