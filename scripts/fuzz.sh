#!/usr/bin/env bash
# Runs every fuzz target in turn; what it finds stops the run and stays under build/fuzz/found.
#   [SECONDS]  for each target, 60 where nothing is said
# Inputs that reach new code gather in build/fuzz/corpus.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

need "${fuzz_packages[@]}"
seconds=${1-60}
build=build/fuzz
cmake -S . -B $build -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_C_COMPILER=clang -DCMAKE_BUILD_TYPE=Release \
    -DZELT_FUZZ=ON -DZELT_TOOL=OFF -DZELT_BENCH=OFF >/dev/null
mkdir -p $build/found
for source in fuzz/corpus/*/; do
    target=$(basename "$source")
    cmake --build $build --target "fuzz_$target" -- --quiet
    mkdir -p "$build/corpus/$target"
    echo "== $target, $seconds s"
    "$build/fuzz/fuzz_$target" -max_total_time="$seconds" -max_len=1024 -print_final_stats=1 -verbosity=0 \
        -artifact_prefix="$build/found/$target-" "$build/corpus/$target" "$source" 2>&1 |
        grep -E 'number_of_executed_units|new_units_added|ERROR|SUMMARY|Test unit' || true
    test -z "$(find $build/found -name "$target-*")"
done
echo "Nothing found."
