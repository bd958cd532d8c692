#!/usr/bin/env bash
# Counts the instructions of every kernel on 32-bit ARM (NEON, soft-float calls) under emulation, beside a build without
# any vector code, and writes the tables of docs/performance.md.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

need "${instruction_packages[@]}"
build=build/arm_instructions
cmake --preset armv7-softfp -B $build -DZELT_TESTS=OFF -DZELT_BENCH=ON >/dev/null
cmake --build $build --target zelt_count_static zelt_count_plain -- --quiet
g++ -x c -O2 -Wall -Wextra -shared -fPIC bench/count_plugin.c -o $build/count_plugin.so
for form in static plain; do
    QEMU_CPU=cortex-a9 qemu-arm -plugin $build/count_plugin.so $build/bench/zelt_count_$form >$build/$form.tsv
done
scripts/bench_tables.py --instructions $build/static.tsv $build/plain.tsv ./scripts/arm_instructions.sh \
    docs/performance.md
