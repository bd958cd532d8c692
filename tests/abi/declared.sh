#!/bin/sh
# SPDX-License-Identifier: MIT
# declared.sh LIST FOLDER: the names that the headers of a folder declare are those of the list. A prototype starts on
# its own line with ZELT_API and has its name on that line.
list=$1 folder=$2
[ -s "$list" ] || { echo "no list: $list"; exit 1; }
cat "$folder"/*.h 2>/dev/null | sed -nE 's/^(extern )?ZELT_API [^(]*[ *]([a-z][a-z0-9_]*)[[(].*$/\2/p' | awk '
    FNR == NR { listed[$2] = 1; next }
    { if ($1 in listed) seen[$1] = 1; else bad = bad "not listed: " $1 "\n" }
    END { for (name in listed) if (!(name in seen)) bad = bad "not declared: " name "\n"; printf "%s", bad; exit bad != "" }' "$list" -
