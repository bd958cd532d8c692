#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""wasm_table.py SIMD SCALAR NATIVE: of what builds of bench/wasm.c printed, the table of docs/performance.md."""
import pathlib
import subprocess
import sys

from bench_tables import Bars, NOISE, Table, insert, processor


def main(paths):
    builds = [dict((name, (float(time), digest)) for name, time, digest in map(lambda line: line.split("\t"), lines))
              for lines in (pathlib.Path(path).read_text().splitlines() for path in paths)]
    bars = Bars("wasm", 4)
    table = Table("row", "vectors, ms:", "scalar, ms:", "× scalar:", "goal:", "native, ms:", "× native:", "")
    for row, (time, digest) in builds[0].items():
        scalar, native = builds[1][row], builds[2][row]
        if not digest == scalar[1] == native[1]:
            sys.exit(f"{row}: other bytes: {digest}, {scalar[1]}, {native[1]}")
        ratio, bar = scalar[0] / time, bars.bar(row)
        lost = ratio < bar * NOISE
        table.add(lost, row, f"{time:.2f}", f"{scalar[0]:.2f}", f"{ratio:.1f}", f"{bar:g}", f"{native[0]:.2f}",
                  f"{native[0] / time:.2f}", bars.remark(row, lost))
    node = subprocess.run(["node", "--version"], capture_output=True, text=True, check=True).stdout.strip()
    print(f"{table}\n\n{table.summary()}")
    insert(pathlib.Path("docs/performance.md"), "bench:wasm",
           f"`./scripts/wasm.sh --bench` on {processor()}, node {node}: {table.summary()}.\n\n{table}")


if __name__ == "__main__":
    main(sys.argv[1:])
