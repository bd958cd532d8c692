#!/usr/bin/env bash
# Times the library against its scalar build and other libraries, on one processor.
#   (nothing)  every family; writes the tables of docs/performance.md
#   FAMILY     one family (csc, sad, ...) and its table
#   REGEX      the rows whose family/name it matches, shown and not written
#   --level v2 every family at x86-64-v2 beside the scalar build for that level, a line per family; shown and
#              not written
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

need "${bench_packages[@]}"
build=build/bench level=()
if [[ ${1-} == --level ]]; then
    build+=-$2 level=(-DZELT_BENCH_LEVEL="$2")
    shift 2
fi
filter=${1-}
if [[ $filter =~ ^[a-z]*$ ]]; then
    pattern=^${filter:+$filter/} output=(docs/performance.md)
else
    pattern=$filter output=()
fi
cmake --preset x86-64 -B "$build" -DZELT_TESTS=OFF -DZELT_TOOL=OFF -DZELT_BENCH=ON "${level[@]}" | grep "^-- .*[Bb]enchmark" || true
cmake --build "$build" --target zelt_bench -- --quiet

cpu=$(taskset -cp $$ | sed 's/.*[ ,-]//')
taskset -c "$cpu" "$build/bench/zelt_bench" "$pattern" --benchmark_enable_random_interleaving=true \
    --benchmark_repetitions=15 --benchmark_min_time=0.005 >"$build/bench.json"
if [[ ${#level[@]} -gt 0 ]]; then
    scripts/bench_tables.py --level "${build#build/bench-}" "$build/bench.json"
else
    scripts/bench_tables.py "$build/bench.json" "./scripts/bench.sh${filter:+ $filter}" "${output[@]}"
fi
