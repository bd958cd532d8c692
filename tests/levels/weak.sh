#!/bin/sh
# SPDX-License-Identifier: MIT
# weak.sh NM LEVEL OBJECT...: the weak symbols of a level's objects, which the linker may merge with those of another
# one's, are all of the level's namespace.
nm=$1 level=$2
shift 2
"$nm" -C "$@" | sed -n 's/^[0-9a-f]* [VWu] //p' | awk -v level="$level" '
    index($0, "zelt::" level "::") { next }
    { print "not of zelt::" level ": " $0; bad = 1 }
    END { exit bad }'
