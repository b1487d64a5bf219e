#!/usr/bin/env bash
# Finds what src/ destroys when the program ends. Searches, openings and drawings run on threads that nobody waits for
# then, so what they may read is never destroyed: a function's static is a pointer to an object that stays.
#   scripts/exit-destructors.sh BUILD_FOLDER
set -euo pipefail
[ $# -eq 1 ] || { echo "usage: scripts/exit-destructors.sh BUILD_FOLDER" >&2; exit 2; }

# A literal's QString has nothing to free and stays readable. UserDefaults writes its last changes, on the main thread.
harmless='^(QString::~QString\(\)|quillo::UserDefaults::~UserDefaults\(\))$'

# Qt's resources are excepted: they belong to the main thread, too.
objects=$(find "$1/src" -name '*.o' -not -path '*/.rcc/*' -exec grep -l __cxa_atexit {} +)
found=$(for object in $objects; do
    objdump -dr --no-show-raw-insn "$object" |
        awk -v object="${object##*/}" '
            / R_/ { name = $3; sub(/[-+]0x[0-9a-f]+$/, "", name) }
            / R_/ && name ~ /D[0-9]Ev$|__tcf_/ { destructor = name }
            / R_/ && name == "__cxa_atexit" { print object, (destructor ? destructor : "something"); destructor = "" }'
done | c++filt)

# What sees nothing at all proves nothing.
grep -q 'UserDefaults.cpp.o quillo::UserDefaults::~UserDefaults()' <<<"$found" ||
    { echo "The destructor that is known to be registered was not found in $1." >&2; exit 1; }
harmful=$(while read -r object destructor; do
    [[ $destructor =~ $harmless ]] || echo "$object: $destructor runs when the program ends"
done <<<"$found" | sort -u)
[ -z "$harmful" ] || { echo "$harmful" >&2; exit 1; }
