#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Counts the instructions of every kernel on ARMv7 (NEON) and AArch64 under emulation, beside those of other libraries and
# of clang's code, models the cycles of the hottest loops, and writes the tables of docs/performance.md.
#   --show  shows the tables and writes nothing
# The first run fetches the other libraries (scripts/arm_peers.sh), about 60 MB.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

need "${instruction_packages[@]}"
build=build/arm_instructions document=(docs/performance.md)
if [[ ${1-} == --show ]]; then document=(); fi
loops=('sad/sad(16x16|32x32|64x64)' 'satd/satd(4x4|8x8| 16x16)' 'ssd/ssd(|_16) 16x16' 'diff/diff16x16'
    'csc/(yuv444_to_rgba8888|yuv444_to_rgb565|rgb888_to_yuv444|r8g8b8_to_rgba8888) 320x240'
    'rsz/(8b|8b8b8b8b) 320x240 to 213x160')
printf -v filter '%s|' "${loops[@]}"

mkdir -p $build
gcc -O2 -Wall -Wextra -shared -fPIC bench/count_plugin.c -o $build/count_plugin.so

# count NAME ARGUMENT... : runs the program of that build; for the plugin and the program
count() {
    local emulator=(qemu-arm -cpu cortex-a9)
    [[ $1 == armhf* ]] || emulator=(qemu-aarch64 -cpu neoverse-n1)
    "${emulator[@]}" -d plugin -D /dev/null -plugin "$build/count_plugin.so$2" "$build/$1/bench/zelt_count" "${@:3}"
}

# program NAME PRESET OPTION...: builds it
program() {
    echo "Building for $2"
    cmake --preset "$2" -B "$build/$1" -DZELT_TESTS=OFF -DZELT_BENCH=ON "${@:3}" | grep "Benchmark without" || true
    cmake --build "$build/$1" --target zelt_count -- --quiet
}

for arch in armhf arm64; do
    preset=aarch64
    [ $arch = arm64 ] || preset=armv7
    scripts/arm_peers.sh $arch
    program $arch ${preset/armv7/armv7-hf} -DZELT_ARM_PEERS="$PWD/build/arm_peers/$arch/root"
    program $arch-clang $preset-clang
    echo "Counting for $preset"
    count $arch "" >$build/$arch.tsv
    count $arch-clang "" >$build/$arch-clang.tsv
    echo "Modelling cycles for $preset"
    count $arch ",trace=$build/$arch.trace" "^(${filter%|})\$" >$build/$arch-traced.tsv
    scripts/arm_cycles.py $build/$arch-traced.tsv $build/$arch.trace >$build/$arch-cycles.tsv
done
scripts/bench_tables.py --instructions $build ./scripts/arm_instructions.sh "${document[@]}"
