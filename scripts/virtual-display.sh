#!/usr/bin/env bash
# Runs a command on a virtual display with a window manager and a session bus of its own.
#   scripts/virtual-display.sh COMMAND [ARGUMENT...]
set -euo pipefail

work=$(mktemp -d)
finish() {
    # Ends whatever is still there; a child that is already gone is no failure.
    kill $(jobs -p) 2>/dev/null || true
    wait 2>/dev/null || true
    rm -rf "$work"
}
trap finish EXIT

Xvfb -displayfd 3 -screen 0 1440x960x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
for _ in $(seq 100); do
    [ -s "$work/display" ] && break
    sleep 0.05
done
[ -s "$work/display" ] || { echo "virtual-display.sh: the virtual display did not start" >&2; exit 1; }
DISPLAY=:$(cat "$work/display")
export DISPLAY
unset WAYLAND_DISPLAY
openbox 2>/dev/null &
# A window that comes while the window manager is still starting may stay unmapped.
for _ in $(seq 100); do
    xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id' && break
    sleep 0.05
done

# The bus is talkative; the command keeps its own standard error.
dbus-run-session -- sh -c 'exec "$@" 2>&4 4>&-' sh "$@" 4>&2 2>/dev/null
