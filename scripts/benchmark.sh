#!/usr/bin/env bash
# Installs what is missing, builds the release programs and runs the benchmarks; each prints its figures as ratios
# of one run.
#   scripts/benchmark.sh [NAME...]
# NAME is a folder of benchmarks/; all of them without one.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

scripts/packages.sh build run test benchmark
scripts/build.sh release

programs=$PWD/build/release/bin
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

startup() {
    for pages in 1 2000 20000; do
        "$programs/make_samples" --one-colour "$pages" 00A050 "$work/one-colour-$pages.pdf"
    done
    # The viewers write settings and caches; those of the user are left alone.
    HOME=$work XDG_CONFIG_HOME=$work/config XDG_CACHE_HOME=$work/cache XDG_DATA_HOME=$work/data \
        scripts/virtual-display.sh "$programs/startup_benchmark" "$programs/quillo" "$programs/bare_window" "$work"
}

text() {
    "$programs/text_benchmark"
}

understanding() {
    "$programs/understanding_benchmark"
}

view() {
    scripts/virtual-display.sh "$programs/view_benchmark"
}

[ $# -gt 0 ] || set -- startup text understanding view
for name in "$@"; do
    echo "== $name"
    "$name"
done
