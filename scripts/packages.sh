#!/usr/bin/env bash
# Installs the packages of the named groups of packages.txt that are missing; quick when none is.
#   scripts/packages.sh GROUP...
set -euo pipefail

list="$(dirname "$(readlink -f "$0")")/packages.txt"

wanted=$(awk -v groups=" $* " '
    /^#/ || /^$/ { next }
    /^\[/ { gsub(/[][]/, ""); inside = index(groups, " " $0 " ") > 0; next }
    inside { print }' "$list")
[ -n "$wanted" ] || { echo "packages.sh: no such group: $*" >&2; exit 2; }

# Unknown packages make dpkg-query fail; they are simply not installed yet.
installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' $wanted 2>/dev/null |
    awk '$1 == "installed" { print $2 }' || true)
missing=$(comm -23 <(sort -u <<<"$wanted") <(sort -u <<<"$installed"))
[ -n "$missing" ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "packages.sh: run as root or install sudo; missing:" $missing >&2; exit 1; }
    as_root=(sudo)
fi

echo "Installing packages:" $missing
install() { "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -qq -y --no-install-recommends $missing; }
# The package lists of a new machine may be old or absent.
install >/dev/null 2>&1 || { "${as_root[@]}" apt-get update -qq && install >/dev/null; }
