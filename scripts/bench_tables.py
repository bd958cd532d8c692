#!/usr/bin/env python3
"""Writes the tables of measurements.

bench_tables.py RUN.json COMMAND [DOCUMENT]                      from a run of zelt_bench
bench_tables.py --level LEVEL RUN.json                           shows a line per family, of a run for one level
bench_tables.py --instructions OURS.tsv PLAIN.tsv COMMAND DOCUMENT  from two runs of zelt_count

Shows a table per family and, given a document, puts it between <!-- bench:FAMILY --> and <!-- /bench --> there;
<!-- instructions:FAMILY --> for the second kind. Times are medians of one run; 2 % is noise."""
import fnmatch
import json
import pathlib
import platform
import re
import statistics
import subprocess
import sys

NOISE = 0.98
BARS = pathlib.Path(__file__).parent.parent / "bench" / "bars"


class Bars:
    """What bars/NAME.txt says: the bars of rows, and the reasons why some are missed."""

    def __init__(self, name, default):
        self.default, self.bars, self.reasons = default, [], []
        path = BARS / f"{name}.txt"
        for line in path.read_text().splitlines() if path.exists() else []:
            if line.startswith("lost "):
                pattern, reason = line[5:].split(": ", 1)
                self.reasons.append((pattern.strip(), reason))
            elif line and not line.startswith("#"):
                bar, pattern = line.split(maxsplit=1)
                self.bars.append((pattern.strip(), float(bar)))

    @staticmethod
    def first(entries, row, default):
        return next((value for pattern, value in entries if fnmatch.fnmatchcase(row, pattern)), default)

    def bar(self, row):
        return self.first(self.bars, row, self.default)

    def remark(self, row, lost):
        return f"**lost**: {self.first(self.reasons, row, 'no reason known yet')}" if lost else ""


class Table:
    def __init__(self, *head):
        """Headings that end with ":" are of columns of figures."""
        self.lost = 0
        rule = ("--:" if h.endswith(":") else "---" for h in head)
        self.lines = [self.joined(h.rstrip(":") for h in head), self.joined(rule)]

    @staticmethod
    def joined(cells):
        return "| " + " | ".join(cells) + " |"

    def add(self, lost, *cells):
        self.lines.append(self.joined(cells))
        self.lost += lost

    def __str__(self):
        return "\n".join(self.lines)

    def summary(self):
        return f"{len(self.lines) - 2} rows, {self.lost} lost"


def read_times(path):
    """family -> row -> candidate -> median nanoseconds a unit, and row -> unit"""
    samples, units = {}, {}
    for entry in json.loads(path.read_text())["benchmarks"]:
        if entry["run_type"] != "iteration":
            continue
        family, row, candidate = entry["name"].split("/", 2)
        assert entry["time_unit"] == "ns"
        times = samples.setdefault(family, {}).setdefault(row, {}).setdefault(candidate, [])
        times.append(entry["cpu_time"] / entry["units"])
        units[family, row] = entry["label"]
    for rows in samples.values():
        for candidates in rows.values():
            candidates.update({name: statistics.median(times) for name, times in candidates.items()})
    return samples, units


def time_table(family, rows, units):
    bars = Bars(family, 1.0)
    table = Table("row", "time:", "× scalar:", "best peer", "× peer:", "bar:", "")
    for row, times in rows.items():
        ours = times["zelt"]
        peers = {name: t for name, t in times.items() if name not in ("zelt", "scalar")}
        lost, cells = False, [row, f"{ours:.3g} ns/{units[family, row]}", "", "", "", ""]
        if "scalar" in times:
            ratio = times["scalar"] / ours
            lost, cells[2] = ratio < NOISE, f"{ratio:.2f}"
        if peers:
            best = min(peers, key=peers.get)
            ratio, bar = peers[best] / ours, bars.bar(row)
            lost, cells[3:] = lost or ratio < bar * NOISE, [best, f"{ratio:.2f}", f"{bar:g}"]
        table.add(lost, *cells, bars.remark(row, lost))
    return table


def level_table(families):
    """A line per family: how many times as fast as the scalar form"""
    table = Table("family", "rows:", "× scalar, mean:", "least:", "most:", "slower than scalar")
    for family, rows in families.items():
        ratios = {row: times["scalar"] / times["zelt"] for row, times in rows.items() if "scalar" in times}
        if not ratios:
            continue
        slower = [f"{row} {ratio:.2f}" for row, ratio in ratios.items() if ratio < NOISE]
        table.add(len(slower), family, str(len(ratios)), f"{statistics.geometric_mean(ratios.values()):.1f}",
                  f"{min(ratios.values()):.2f}", f"{max(ratios.values()):.1f}", ", ".join(slower))
    return table


def read_counts(path):
    """family -> row -> instructions a unit and unit"""
    families = {}
    for line in path.read_text().splitlines():
        family, row, unit, units, count, call = line.split("\t")
        families.setdefault(family, {})[row] = (int(count) - int(call)) / int(units), unit
    return families


def instruction_table(family, ours, plain):
    bars = Bars(f"{family}_instructions", 4.0)
    table = Table("row", "instructions:", "plain:", "× fewer:", "bar:", "")
    for row, (count, unit) in ours.items():
        without = plain[row][0]
        lost = without / count < bars.bar(row)
        table.add(lost, row, f"{count:.4g}/{unit}", f"{without:.4g}", f"{without / count:.2f}", f"{bars.bar(row):g}",
                  bars.remark(row, lost))
    return table


def processor():
    fields = dict(re.findall(r"^([^\t:]+)\s*: (.*)$", pathlib.Path("/proc/cpuinfo").read_text(), re.M))
    name = fields.get("model name", platform.machine())
    return f"{name} (family {fields['cpu family']}, model {fields['model']})" if "cpu family" in fields else name


def compiler(name):
    return subprocess.run([name, "--version"], capture_output=True, text=True, check=True).stdout.splitlines()[0]


def insert(document, marker, text):
    """Replaces what stands between the markers."""
    place = re.compile(rf"(<!-- {marker} -->\n).*?(<!-- /bench -->)", re.S)
    new, count = place.subn(lambda m: f"{m[1]}{text}\n{m[2]}", document.read_text())
    if count != 1:
        sys.exit(f"{document} has no place for <!-- {marker} --> and <!-- /bench -->")
    document.write_text(new)


def report(kind, family, table, made_by, document):
    print(f"{table}\n\n{family}: {table.summary()}\n")
    if document:
        insert(document, f"{kind}:{family}", f"{made_by}: {table.summary()}.\n\n{table}")


def main(arguments):
    if arguments[0] == "--instructions":
        ours, plain = (read_counts(pathlib.Path(a)) for a in arguments[1:3])
        made_by = f"`{arguments[3]}`, {compiler('arm-linux-gnueabi-g++')}"
        for family, rows in ours.items():
            table = instruction_table(family, rows, plain[family])
            report("instructions", family, table, made_by, pathlib.Path(arguments[4]))
    elif arguments[0] == "--level":
        print(f"{arguments[1]} on {processor()}, {compiler('c++')}:\n")
        print(level_table(read_times(pathlib.Path(arguments[2]))[0]))
    else:
        families, units = read_times(pathlib.Path(arguments[0]))
        made_by = f"`{arguments[1]}` on {processor()}, {compiler('c++')}"
        document = pathlib.Path(arguments[2]) if len(arguments) > 2 else None
        for family, rows in families.items():
            report("bench", family, time_table(family, rows, units), made_by, document)


if __name__ == "__main__":
    main(sys.argv[1:])
