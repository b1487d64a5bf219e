#!/usr/bin/env bash
# Configures a preset where that is still to be done, and builds it.
#   scripts/build.sh PRESET [TARGET...]
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

preset=$1
shift
[ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >/dev/null
target=()
[ $# -eq 0 ] || target=(--target "$@")
cmake --build "build/$preset" "${target[@]}"
