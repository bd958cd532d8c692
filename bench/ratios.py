#!/usr/bin/env python3
"""Ratios of medians from Google Benchmark's JSON, benchmarks being named row/who.

    build/x86-64/bench/bench_bits --benchmark_enable_random_interleaving --benchmark_repetitions=15 \\
        --benchmark_report_aggregates_only --benchmark_format=json | bench/ratios.py
"""
import json
import sys

rows = {}
for run in json.load(sys.stdin)["benchmarks"]:
    if run.get("aggregate_name") == "median":
        row, who = run["run_name"].split("/", 1)
        rows.setdefault(row, {})[who] = run.get("per_item", run["cpu_time"])

print("| row | zelt, ns an item | best peer | ns an item | ratio |\n|---|---|---|---|---|")
for row, times in rows.items():
    ours = times.pop("zelt")
    for who, time in sorted(times.items(), key=lambda t: t[1])[:1]:
        print(f"| {row} | {ours * 1e9:.4g} | {who} | {time * 1e9:.4g} | {time / ours:.2f} |")
