#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""instruction_list.py [--check] LIST FOLDER COMPILER...: the list of scripts/instructions.sh, from the runs of zelt_count
that it left in FOLDER, TARGET.tsv, each by the compiler at its place.

Writes LIST. With --check compares with it: fails, with a table, if a count has changed by more than 3 %, or rows are
not the same. A target whose compiler is not the list's is told and left out."""
import pathlib
import sys

TARGETS = ["x86-64-v2", "x86-64-v3", "ARMv7", "AArch64"]
LIMIT = 0.03


def read_run(path):
    """family/row -> instructions of our candidate, of one run"""
    counts = {}
    for line in path.read_text().splitlines():
        family, row, _, _, candidate, called, _ = line.split("\t")
        if candidate == "zelt":
            counts[f"{family}/{row}"] = int(called)
    return counts


def read_list(path):
    """target -> compiler, and target -> row -> instructions"""
    compilers, counts = {}, {target: {} for target in TARGETS}
    for line in path.read_text().splitlines():
        if line.startswith("# "):
            target, _, compiler = line[2:].partition(": ")
            compilers[target] = compiler
        elif line:
            row, *numbers = line.rsplit(maxsplit=len(TARGETS))
            for target, number in zip(TARGETS, numbers):
                counts[target][row] = int(number)
    return compilers, counts


def columns(rows):
    """Lines of cells: the first to the left, the others to the right"""
    widths = [max(map(len, column)) for column in zip(*rows)]
    return ["  ".join([row[0].ljust(widths[0])] + [c.rjust(w) for c, w in zip(row[1:], widths[1:])]) for row in rows]


def write(path, compilers, counts):
    rows = {row: [str(counts[target][row]) for target in TARGETS] for row in counts[TARGETS[0]]}
    head = [f"# {target}: {compilers[target]}" for target in TARGETS]
    path.write_text("\n".join(head + columns([[row, *numbers] for row, numbers in rows.items()])) + "\n")
    print(f"{len(rows)} rows in {path}")


def check(path, compilers, counts):
    listed_compilers, listed = read_list(path)
    compared = [t for t in TARGETS if listed_compilers.get(t) == compilers[t]]
    for target in TARGETS:
        if target not in compared:
            print(f"{target} is not compared: {path} is of {listed_compilers.get(target)}, this is {compilers[target]}")
    changed, rows = [], 0
    for target in compared:
        for row in listed[target] | counts[target]:
            before, now = listed[target].get(row), counts[target].get(row)
            rows += 1
            if before is None or now is None:
                changed.append([row, target, str(before or "new"), str(now or "gone"), ""])
            elif abs(now - before) > LIMIT * before:
                changed.append([row, target, str(before), str(now), f"{100 * (now / before - 1):+.1f} %"])
    print(f"{rows} counts compared, {len(changed)} changed by more than {100 * LIMIT:g} %")
    if changed:
        print("\n".join(columns([["row", "target", "listed", "now", ""], *changed])))
        sys.exit("If this is meant: ./scripts/instructions.sh writes the list anew. Commit it with the change, and say "
                 "in the message what ./scripts/bench.sh measures of these rows before and after.")


def main(arguments):
    checking = arguments[0] == "--check"
    path, folder, *compilers = arguments[checking:]
    counts = {target: read_run(pathlib.Path(folder) / f"{target}.tsv") for target in TARGETS}
    (check if checking else write)(pathlib.Path(path), dict(zip(TARGETS, compilers)), counts)


if __name__ == "__main__":
    main(sys.argv[1:])
