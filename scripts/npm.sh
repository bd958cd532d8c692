#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The npm package: its modules, its tests beside the tool, and what would be published, as out/libzelt-*.tgz.
#   --bench    times it beside the native library and packages for browsers; writes the table of docs/performance.md
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
need "${npm_packages[@]}"
command -v npm >/dev/null || need npm  # comes with other builds of node than Debian's

package=build/npm
cmake --preset x86-64 -DZELT_TOOL=AUTO >/dev/null
cmake --build --preset x86-64 --target zelt_tool -- --quiet
cmake --preset wasm32 >/dev/null
cmake --build --preset wasm32 --target zelt-simd zelt-scalar -- --quiet

rm -rf $package
mkdir -p $package out
cp -r bindings/wasm/. LICENSE build/wasm32/bindings/wasm/*.wasm $package
export ZELT=$PWD/build/x86-64/tools/zelt/zelt
if [ "${1-}" = --bench ]; then
    cmake --build --preset x86-64 --target zelt_static -- --quiet
    c++ -std=c++20 -O3 -Wno-attributes -Iinclude bindings/wasm/bench/native.cpp build/x86-64/libzelt.a -o build/npm-native
    npm --silent install --no-save --prefix $package yuv-buffer@1.0.1 yuv-canvas@1.3.0
    exec node $package/bench/bench.js build/npm-native docs/performance.md
fi
(cd $package && npm --silent test)
rm -f out/libzelt-*.tgz
npm pack ./$package --pack-destination out
