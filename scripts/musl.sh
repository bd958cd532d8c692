#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds and installs the library for musl, below build/musl, and runs C programs over it, shared and static.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
need "${build_packages[@]}" binutils musl-tools

build=build/musl prefix=$PWD/build/musl/usr
cmake -S . -B $build -G Ninja --toolchain cmake/toolchains/x86_64-linux-musl.cmake -DCMAKE_BUILD_TYPE=Release \
    -DZELT_TESTS=OFF -DZELT_BENCH=OFF -DZELT_TOOL=OFF -DZELT_WERROR=ON >/dev/null
cmake --build $build -- --quiet
cmake --install $build --prefix "$prefix" >/dev/null
sh tests/abi/exports.sh nm abi/symbols.txt "$prefix/lib/libzelt.so"
sh tests/abi/image.sh readelf libzelt.so.1 "$prefix/lib/libzelt.so"

export PKG_CONFIG_PATH=$prefix/lib/pkgconfig LD_LIBRARY_PATH=$prefix/lib
for static in "" -static; do
    mkdir -p $build/consumer$static
    # shellcheck disable=SC2046,SC2086 # lists of flags
    sh tests/consumer/elsewhere.sh $build/consumer$static "" musl-gcc $static $(pkg-config --cflags --libs zelt)
done
echo "musl: built; C programs run, shared and static"
