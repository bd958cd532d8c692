#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs every fuzz target, one per processor at a time; what one finds stops the run and stays under build/fuzz/found.
#   [SECONDS]       for each target, 60 where nothing is said
#   [SECONDS] i686  the same as a 32-bit program, under build/fuzz-i686
# Inputs that reach new code gather in corpus/ beside it. "cov" counts branches reached, of the counters in the program.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

seconds=${1-60} arch=${2-}
build=build/fuzz${arch:+-$arch}
need "${fuzz_packages[@]}"
settings=(-DCMAKE_CXX_COMPILER=clang++ -DCMAKE_C_COMPILER=clang)
loader=
if [ "$arch" ]; then
    need "${i686_packages[@]}"
    settings=(-DCMAKE_TOOLCHAIN_FILE="cmake/toolchains/$arch-linux-gnu-clang.cmake")
    loader="/usr/$arch-linux-gnu/lib/ld-linux.so.2 --library-path /usr/$arch-linux-gnu/lib"
fi
cmake -S . -B "$build" -G Ninja --no-warn-unused-cli "${settings[@]}" -DCMAKE_BUILD_TYPE=Release \
    -DZELT_FUZZ=ON -DZELT_TOOL=OFF -DZELT_BENCH=OFF >/dev/null
mkdir -p "$build/found"
targets=()
for source in fuzz/corpus/*/; do
    targets+=("$(basename "$source")")
done
cmake --build "$build" --target "${targets[@]/#/fuzz_}" -- --quiet

fuzz() {
    local target=$1 log=$build/$1.log status=0
    mkdir -p "$build/corpus/$target"
    $loader "$build/fuzz/fuzz_$target" -max_total_time="$seconds" -max_len=1024 -print_final_stats=1 \
        -artifact_prefix="$build/found/$target-" "$build/corpus/$target" "fuzz/corpus/$target" >"$log" 2>&1 || status=$?
    echo "== $target ${arch:-x86-64}, $seconds s"
    grep -E 'Loaded.*counters|DONE|number_of_executed_units|new_units_added|ERROR|SUMMARY|Test unit' "$log" || true
    [ $status -eq 0 ] && return
    echo "fuzz_$target ended with status $status; the end of $log:" >&2
    tail -n 20 "$log" >&2
    exit 255  # which ends the run
}
export -f fuzz
export build seconds arch loader
# shellcheck disable=SC2016 # for the other shell
printf '%s\0' "${targets[@]}" | xargs -0 -n1 -P"$(nproc)" bash -c 'fuzz "$1"' -
echo "Nothing found."
