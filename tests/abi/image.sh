#!/bin/sh
# SPDX-License-Identifier: MIT
# image.sh READELF SONAME [any] LIBRARY: a library has that soname, needs libc alone (or any library), is free of text
# relocations, does not ask for a stack that can be executed, and has segments that fit pages of 16 KiB.
readelf=$1 soname=$2
shift 2
any=0
if [ "$1" = any ]; then any=1; shift; fi
"$readelf" -dlW "$1" | awk -v soname="$soname" -v any="$any" '
    function bracketed() { gsub(/.*\[|\].*/, ""); return $0 }
    function complain(text) { print text; bad = 1 }
    BEGIN { name = "none" }
    /\(NEEDED\)/ { needed++; if (bracketed() !~ /^libc[.]so([.]6)?$/ && !any) complain("needed: " $0) }
    /\(SONAME\)/ { name = bracketed() }
    /TEXTREL/ { complain("text relocations") }
    $1 == "GNU_STACK" && $7 ~ /E/ { complain("executable stack") }
    $1 == "LOAD" { segments++; if ($NF != "0x4000") complain("segment alignment: " $NF) }
    END {
        if (name != soname) complain("soname: " name)
        if (!needed) complain("needed: nothing, not even libc")
        if (!segments) complain("no segments")
        exit bad
    }'
