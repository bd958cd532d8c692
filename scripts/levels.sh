#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Shows what it costs on x86-64 that one library holds the kernels of several levels, on one processor: sizes, the time
# to load the library, and the time of a call of the smallest kernel, beside a library of the best level alone.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

need "${build_packages[@]}"
build=build/levels
cmake --preset x86-64 -B $build -DZELT_TESTS=OFF -DZELT_TOOL=OFF -DZELT_BENCH=ON >/dev/null
cmake --build $build --target zelt_baseline levels_zelt{,_best,_static,_best_static,_pointers} >/dev/null

cpu=$(taskset -cp $$ | sed 's/.*[ ,-]//')
run() { taskset -c "$cpu" "$build/bench/levels_$1" "${@:2}"; }
size() { printf '%d KB' $(($(stat -Lc %s "$1") / 1024)); }
for kind in "" _best _baseline; do
    name=${kind#_} library=$build${kind:+/zelt$kind}/libzelt.so
    echo "shared, ${name:-all levels}: $(size "$library"), loaded in $(run zelt_static "$PWD/$library")"
done
echo "a call, shared, all levels: $(run zelt); the best alone: $(run zelt_best)"
echo "a call, static, all levels: $(run zelt_static); the best alone: $(run zelt_best_static); by a pointer: $(run zelt_pointers)"
