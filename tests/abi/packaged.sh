#!/bin/sh
# SPDX-License-Identifier: MIT
# packaged.sh LIST SYMBOLS: the names in the symbols file of the Debian package are those of the list, in the same
# version nodes, each since the version that its node is named after.
list=$1 symbols=$2
[ -s "$list" ] || { echo "no list: $list"; exit 1; }
sed -n 's/^ //p' "$symbols" 2>/dev/null | awk '
    function since(node) { sub("ZELT_", "", node); return node (node ~ /[.]/ ? ".0" : ".0.0") }
    FNR == NR { listed[$2 "@" $3 " " since($3)] = listed[$3 "@" $3 " " since($3)] = 1; next }
    { if ($0 in listed) delete listed[$0]; else bad = bad "not listed: " $0 "\n" }
    END { for (name in listed) bad = bad "not packaged: " name "\n"; printf "%s", bad; exit bad != "" }' "$list" -
