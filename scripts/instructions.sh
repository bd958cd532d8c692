#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Counts the instructions of a fixed set of kernels on x86-64-v2, x86-64-v3, ARMv7 (NEON) and AArch64 in an emulator, and
# writes them to bench/instructions.txt. Counts repeat exactly, whatever else the machine does.
#   --check  compares with that list instead: fails if a row has changed by more than 3 %. What has grown is to be
#            explained, and what has shrunk to stay so. Another compiler than the list's is told, and not compared.
# It takes the builds of the presets that the tests use, and builds what is missing of them.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

mode=()
case ${1-} in
"") ;;
--check) mode=(--check) ;;
*) sed -n '3,/^set/s/^# \{0,1\}//p' "$0" >&2 && exit 1 ;;
esac
need "${count_packages[@]}"

# Kernels that call nothing of the C library, where another version of it would count; MD5 copies a few bytes.
rows=('bits/(read_ue|write_ue|scan_plain|scan_zeros)'
    'border/imgb_expand_hor 80x16'
    'csc/(yuv444_to_(rgb888|rgba8888|rgb565|r8g8b8)|yuv444a8_to_rgb565a8|r8g8b8_to_(rgb888|rgba8888)) 320x240'
    'csc/(r8g8b8a8_to_argb8888|(rgb888|rgb565)_to_yuv444|rgba8888_to_yuv444a8) 320x240'
    'csc/(p410_to_r10g10b10|r10g10b10_to_p410|p010_to_yuv420) 320x240'
    'diff/(diff4x4|diff16x16|diff64x64|diff16x16_16)'
    'digest/MD5 (64|65536)'
    'memory/(fill words 128|mset_x32 1920|mset16 1920)'
    'rsz/(8b|8b8b8b8b) 320x240 to (213x160|160x120|640x480)'
    'rsz/(8b8b8b|5b6b5b|yuv444_to_rgba8888|r8g8b8_to_rgb888) 320x240 to 213x160'
    'rsz/yuv444_to_rgb565 320x240 to (80x60|480x360)'
    'sad/(sad4x4|sad8x8|sad16x16|sad64x64|sad4x4_16|sad16x16_16|sad16x16_bi|sad 16x16|eskip)'
    'satd/(satd4x4|satd8x8|satd 16x16|satd8x8_16|satd_16 16x16)'
    'ssd/(ssd 4x4|ssd 16x16|ssd 64x64|ssd_16 4x4|ssd_16 16x16)'
    'video/(yuv420_to_rgba8888( smooth|)|nv12_to_rgb888|yuyv_to_(rgb565|yuv420)|p010le_to_rgba8888|rgba8888_to_nv12) 320x240')
printf -v filter '%s|' "${rows[@]}"

build=build/instructions compilers=()
mkdir -p $build
gcc -O2 -Wall -Wextra -shared -fPIC bench/count_plugin.c -o $build/count_plugin.so

# count PRESET TARGET EMULATOR PROCESSOR
count() {
    "$3" -cpu "$4" -d plugin -D /dev/null -plugin $build/count_plugin.so "build/$1/bench/zelt_count" \
        "^(${filter%|})\$" >"$build/$2.tsv"
    local compiler
    compiler=$(sed -n 's/^set(CMAKE_CXX_COMPILER "\(.*\)")$/\1/p' "build/$1"/CMakeFiles/*/CMakeCXXCompiler.cmake)
    compilers+=("$("$compiler" --version | head -n1)")
}

for preset in x86-64 armv7-softfp aarch64; do
    cmake --preset $preset >/dev/null
    cmake --build build/$preset --target zelt_count -- --quiet
done
count x86-64 x86-64-v2 qemu-x86_64 Nehalem
count x86-64 x86-64-v3 qemu-x86_64 max
count armv7-softfp ARMv7 qemu-arm cortex-a9
count aarch64 AArch64 qemu-aarch64 neoverse-n1
scripts/instruction_list.py "${mode[@]}" bench/instructions.txt $build "${compilers[@]}"
