#!/usr/bin/env bash
# Installs what is missing, builds Quillo and opens it, with FILE if one is given.
#   scripts/run.sh [FILE]
# Without a display it prints the analysis of FILE and saves a picture of the window instead.
set -euo pipefail

file=${1:+$(readlink -f "$1")}
cd "$(dirname "$(readlink -f "$0")")/.."

scripts/packages.sh build run
scripts/build.sh release quillo quillo-cli

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    exec build/release/bin/quillo ${file:+"$file"}
fi

echo "There is no display: the window is opened on a virtual one and its picture saved."
[ -z "$file" ] || build/release/bin/quillo-cli analyze "$file"
picture=$PWD/build/window.png
scripts/window-picture.sh "$picture" ${file:+"$file"}
echo "Picture of the window: $picture"
