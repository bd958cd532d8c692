#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# WebAssembly under node: the kernels' tests and the fuzz corpora, with vectors and without, and the examples.
#   --bench    times both beside the native library; writes the table of docs/performance.md
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

case ${1-} in
"") exec scripts/test.sh wasm32 ;;
--bench) ;;
*) sed -n '3,/^set/s/^# \{0,1\}//p' "$0" >&2 && exit 1 ;;
esac
need "${build_packages[@]}" "${wasm_packages[@]}" python3
cmake --preset wasm32 -DZELT_TESTS=AUTO -DZELT_BENCH=ON >/dev/null
cmake --build --preset wasm32 --target zelt_wasm zelt_baseline_wasm -- --quiet
cmake --preset x86-64 -B build/wasm-native -DZELT_TESTS=OFF -DZELT_TOOL=OFF -DZELT_BENCH=AUTO >/dev/null
cmake --build build/wasm-native --target zelt_wasm -- --quiet
cpu=$(taskset -cp $$ | sed 's/.*[ ,-]//')
for level in zelt zelt_baseline; do
    taskset -c "$cpu" node build/wasm32/bench/${level}_wasm.js >build/wasm32/$level.tsv
done
taskset -c "$cpu" build/wasm-native/bench/zelt_wasm >build/wasm32/native.tsv
/usr/bin/python3 scripts/wasm_table.py build/wasm32/{zelt,zelt_baseline,native}.tsv
