#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Times the library against its scalar build and other libraries, on one processor.
#   (nothing)  every family; writes the tables of docs/performance.md and its figure, then the table of levels
#   FAMILY     one family (csc, sad, ...) and its table
#   REGEX      the rows whose family/name it matches, shown and not written
#   --level v2 every family at x86-64-v2 beside the scalar build for that level, a line per family; shown and
#              not written
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

need "${bench_packages[@]}"
document=docs/performance.md cpu=$(taskset -cp $$ | sed 's/.*[ ,-]//')

# measure FOLDER PATTERN OPTION...: builds the benchmark there and leaves the run of these rows in its bench.json
measure() {
    cmake --preset x86-64 -B "$1" -DZELT_TESTS=OFF -DZELT_TOOL=OFF -DZELT_BENCH=ON "${@:3}" | grep "^-- .*[Bb]enchmark" || true
    cmake --build "$1" --target zelt_bench -- --quiet
    taskset -c "$cpu" "$1/bench/zelt_bench" "$2" --benchmark_enable_random_interleaving=true \
        --benchmark_repetitions=15 --benchmark_min_time=0.005 >"$1/bench.json"
}

level=
if [[ ${1-} == --level ]]; then
    level=$2
    shift 2
fi
filter=${1-} pattern="^limit/|${1-}" output=()
if [[ $filter =~ ^[a-z]*$ ]]; then
    pattern="^limit/|^${filter:+$filter/}" output=("$document")
fi
if [[ $level ]]; then
    measure "build/bench-$level" "$pattern" -DZELT_BENCH_LEVEL="$level"
    scripts/bench_tables.py --level "$level" "build/bench-$level/bench.json"
    exit
fi
run=build/bench/bench.json
measure build/bench "$pattern"
scripts/bench_tables.py $run "./scripts/bench.sh${filter:+ $filter}" "${output[@]}"
if [[ ! $filter ]]; then
    scripts/charts.py ratios $run ./scripts/bench.sh "$document" docs/ratios.svg
    measure build/bench-v2 "$pattern" -DZELT_BENCH_LEVEL=v2
    scripts/bench_tables.py --levels ./scripts/bench.sh "$document" v2 build/bench-v2/bench.json v3 $run
fi
