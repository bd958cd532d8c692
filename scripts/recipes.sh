#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks the recipes for vcpkg and Conan without them, of each linkage: their own lines are run for real, with stand-ins
# for the functions that vcpkg and Conan have (tests/packaging/), and C programs over what they give.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
need "${build_packages[@]}" binutils python3

build=$PWD/build/recipes
# check FOLDER LIBRARY FLAG...: programs compiled with these flags, and the library that they need besides libc
check() {
    sh tests/consumer/elsewhere.sh "$1" "" cc "${@:3}"
    needed=$(readelf -dW "$1/consumer" | sed -n 's/.*NEEDED.*\[\(libzelt.*\)\]/\1/p')
    [ "$needed" = "$2" ] || { echo "$1/consumer needs $needed" >&2 && exit 1; }
    echo "${1#"$build/"}: C programs run, over ${needed:-the archive}"
}

for linkage in static dynamic; do
    at=$build/vcpkg-$linkage
    cmake -DLINKAGE=$linkage "-DSCRATCH=$at" -P tests/packaging/check_vcpkg.cmake
    mv "$at/zelt" "$at/moved"  # as vcpkg does
    cmake -S packaging/conan/test_package -B "$at/package" "-DCMAKE_PREFIX_PATH=$at/moved" >/dev/null
    cmake --build "$at/package" >/dev/null
    [ "$("$at/package/consumer")" = "200 200 200" ] || { echo "$at/package/consumer fails" >&2 && exit 1; }
    # shellcheck disable=SC2046 # a list of flags
    LD_LIBRARY_PATH=$at/moved/lib check "$at" "$([ $linkage = static ] || echo libzelt.so.1)" \
        $(PKG_CONFIG_PATH=$at/moved/lib/pkgconfig pkg-config --cflags --libs zelt)
done

/usr/bin/python3 tests/packaging/check_conan.py "$build/conan"
for kind in static shared; do
    at=$build/conan/$kind
    # shellcheck disable=SC2046 # a list of flags
    LD_LIBRARY_PATH=$at/lib check "$at" "$([ $kind = static ] || echo libzelt.so.1)" $(cat "$at/flags")
done
