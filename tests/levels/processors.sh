#!/bin/sh
# SPDX-License-Identifier: MIT
# processors.sh NM EMULATOR LOADED LIBRARY STATIC: which form of each kernel a library loaded by its path, and a static
# program, have on which processor. Every feature that a level asks for is missing once.
set -eu
nm=$1 emulator=$2 loaded=$3 library=$4 static=$5
names=$("$nm" -D "$library" | sed -n 's/.* i \([^@]*\).*/\1/p')

# check FILE LEVEL PROGRAM...: of the addresses and names that a program prints, each is that of the name's form of this
# level in the file, and so is what zelt_kernels() gives.
check() {
    file=$1 level=$2
    shift 2
    "$emulator" -cpu "$processor" "$@" >"$static.said" 2>"$static.log" || { cat "$static.log"; exit 1; }
    "$nm" "$file" | awk -v level="$level" -v what="$processor: ${file##*/}" '
        FNR == NR { if (NF == 3) at[$1 " " $3] = 1; next }
        $2 == "kernels" {
            if ($1 != (level == "baseline" ? "scalar" : "x86-64-" level)) { print what ": says " $1; bad = 1 }
            next
        }
        { first = $2; sub(/_bi_16$/, "_16", first) }  # a second name of that one, perhaps
        !(($1 " " $2 "_" level in at) || ($1 " " first "_" level in at)) { print what ": not " level ": " $2; bad = 1 }
        END { printf "%s: %d %s\n", what, FNR, level; exit bad || FNR < 10 }' - "$static.said"
}

while read -r processor level; do
    # shellcheck disable=SC2086 # a list
    check "$library" "$level" "$loaded" "$library" $names
    check "$static" "$level" "$static"
done <<END
qemu64 baseline
Nehalem,-ssse3 baseline
Nehalem,-sse4.1 baseline
Nehalem v2
Haswell,-avx2 v2
Haswell,-bmi1 v2
Haswell,-bmi2 v2
Haswell,-fma v2
Haswell,-popcnt v2
Haswell v3
max v3
END
