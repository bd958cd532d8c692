#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Times what a pixel costs in pictures from 64x64 to 7680x4320, on one processor, and draws docs/growth.svg.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

need "${build_packages[@]}" python3
build=build/bench
cmake --preset x86-64 -B $build -DZELT_TESTS=OFF -DZELT_TOOL=OFF >/dev/null
cmake --build $build --target zelt_growth -- --quiet
cpu=$(taskset -cp $$ | sed 's/.*[ ,-]//')
taskset -c "$cpu" $build/bench/zelt_growth >$build/growth.tsv
scripts/charts.py growth $build/growth.tsv docs/growth.svg
