#!/bin/sh
# SPDX-License-Identifier: MIT
# exports.sh NM LIST LIBRARY: the names that a library exports are those of the list, with the same kind of symbol and
# in the same version node. A function that the loader chooses (i) is one (T).
nm=$1 list=$2 library=$3
[ -s "$list" ] || { echo "no list: $list"; exit 1; }
"$nm" -D --defined-only --format=posix "$library" | sed 's/^\([^@ ]*\)@*\([^ ]*\)/\1 \2/; s/  / none /' | awk '
    FNR == NR { listed[$0] = 1; next }
    $3 == "A" { next }  # the version itself
    { name = ($3 == "i" ? "T" : $3) " " $1 " " $2; if (name in listed) delete listed[name]; else bad = bad "not listed: " name "\n" }
    END { for (name in listed) bad = bad "missing: " name "\n"; printf "%s", bad; exit bad != "" }' "$list" -
