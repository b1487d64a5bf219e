#!/usr/bin/env bash
# Opens Quillo on a virtual display and saves a picture of its window.
#   scripts/window-picture.sh PICTURE [FILE]
set -euo pipefail
scripts=$(dirname "$(readlink -f "$0")")

[ -n "${QUILLO_ON_VIRTUAL_DISPLAY:-}" ] ||
    exec env QUILLO_ON_VIRTUAL_DISPLAY=yes "$scripts/virtual-display.sh" "$0" "$@"

picture=$1
shift
work=$(mktemp -d)
finish() {
    kill "${quillo:-}" 2>/dev/null || true
    rm -rf "$work"
}
trap finish EXIT

"$scripts/../build/release/bin/quillo" "$@" &
quillo=$!

timeout 20 xdotool search --sync --onlyvisible --pid "$quillo" --name Quillo >"$work/windows" ||
    { echo "window-picture.sh: no window appeared" >&2; exit 1; }
window=$(head -n 1 "$work/windows")

# The picture is taken once two in a row are the same, so the pages have had the time to become sharp.
import -window "$window" "$work/before.png"
for _ in $(seq 40); do
    sleep 0.5
    import -window "$window" "$work/after.png"
    if [ "$(compare -metric AE "$work/before.png" "$work/after.png" null: 2>&1)" = 0 ]; then
        break
    fi
    mv "$work/after.png" "$work/before.png"
done
cp "$work/after.png" "$picture"
