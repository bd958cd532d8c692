#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Compares the library's binary interface with that of the last release (abi/*.abi), for programs of 64 and of 32 bits:
# what is removed or changed is an error, what is added is not.
#   --dump  writes abi/*.abi anew, for a release
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
need "${abi_packages[@]}"

case ${1-} in
"" | --dump) ;;
*) sed -n '3,/^set/s/^# \{0,1\}//p' "$0" >&2 && exit 1 ;;
esac

declare -A toolchains=([x86-64]="" [armv7]=cmake/toolchains/arm-linux-gnueabi.cmake)
for target in x86-64 armv7; do
    build=build/abi-$target
    # The scalar forms have the same interface and no resolvers in its place, and compile in seconds.
    cmake -G Ninja -B "$build" -DCMAKE_TOOLCHAIN_FILE="${toolchains[$target]:+$PWD/${toolchains[$target]}}" \
        -DCMAKE_BUILD_TYPE=Debug -DZELT_SCALAR=ON -DZELT_TOOL=OFF -DZELT_BENCH=OFF -DZELT_TESTS=OFF \
        -DZELT_GSTREAMER=OFF >/dev/null
    cmake --build "$build" --target zelt -- --quiet
    if [ "${1-}" = --dump ]; then
        abidw --exported-interfaces-only --no-comp-dir-path --no-corpus-path --no-show-locs --headers-dir include \
            --out-file abi/$target.abi "$build/libzelt.so"
    else
        echo "$target:"
        abidiff --exported-interfaces-only --no-added-syms --headers-dir2 include abi/$target.abi "$build/libzelt.so"
    fi
done
