#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes the tables of measurements.

bench_tables.py RUN.json COMMAND [DOCUMENT]                      from a run of zelt_bench
bench_tables.py --level LEVEL RUN.json                           shows a line per family, of a run for one level
bench_tables.py --levels COMMAND DOCUMENT LEVEL RUN.json...      a column per level, of runs for each
bench_tables.py --instructions FOLDER COMMAND [DOCUMENT]         from the runs of zelt_count that COMMAND left there

Shows a table per family and, given a document, puts it between <!-- bench:FAMILY --> and <!-- /bench --> there;
<!-- instructions:FAMILY --> for the last kind, which also has tables called means, cycles and clang. A run of zelt_bench
ends with the means over all rows that have a peer, which are shown only. Times are medians of one run; 2 % is noise."""
import fnmatch
import json
import pathlib
import platform
import re
import statistics
import subprocess
import sys

NOISE = 0.98
CLANG_BAR = 1.15
MODEL = "llvm-mca-19"
BARS = pathlib.Path(__file__).parent.parent / "bench" / "bars"


class Bars:
    """What bars/NAME.txt says: the bars of rows, the reasons why some are missed, and which have none."""

    def __init__(self, name, default):
        self.default, self.bars, self.reasons, self.exceptions = default, [], [], []
        path = BARS / f"{name}.txt"
        for line in path.read_text().splitlines() if path.exists() else []:
            if line.startswith("lost "):
                pattern, reason = line[5:].split(": ", 1)
                self.reasons.append((pattern.strip(), reason))
            elif line.startswith("except "):
                pattern, reason = line[7:].split(": ", 1)
                self.exceptions.append((pattern.strip(), reason))
            elif line and not line.startswith("#"):
                bar, pattern = line.split(maxsplit=1)
                self.bars.append((pattern.strip(), float(bar)))

    @staticmethod
    def first(entries, row, default):
        return next((value for pattern, value in entries if fnmatch.fnmatchcase(row, pattern)), default)

    def bar(self, row):
        return self.first(self.bars, row, self.default)

    def exception(self, row):
        reason = self.first(self.exceptions, row, "")
        return reason and f"not counted: {reason}"

    def remark(self, row, lost):
        return f"**lost**: {self.first(self.reasons, row, 'no reason known yet')}" if lost else ""


class Table:
    def __init__(self, *head, bars=True):
        """Headings that end with ":" are of columns of figures. Rows without bars are neither met nor lost."""
        self.lost = 0 if bars else None
        rule = ("--:" if h.endswith(":") else "---" for h in head)
        self.lines = [self.joined(h.rstrip(":") for h in head), self.joined(rule)]

    @staticmethod
    def joined(cells):
        return "| " + " | ".join(cells) + " |"

    def add(self, lost, *cells):
        self.lines.append(self.joined(cells))
        if lost:
            self.lost += lost

    def __str__(self):
        return "\n".join(self.lines)

    def summary(self):
        rows = f"{len(self.lines) - 2} rows"
        return rows if self.lost is None else f"{rows}, {self.lost} lost"


def read_times(path):
    """family -> row -> candidate -> median nanoseconds a unit, (family, row) -> unit, and the limits"""
    samples, units, work = {}, {}, {}
    for entry in json.loads(path.read_text())["benchmarks"]:
        if entry["run_type"] != "iteration":
            continue
        family, row, candidate = entry["name"].split("/", 2)
        assert entry["time_unit"] == "ns"
        times = samples.setdefault(family, {}).setdefault(row, {}).setdefault(candidate, [])
        times.append(entry["cpu_time"] / entry["units"])
        units[family, row] = entry["label"]
        work[family, row] = {kind: entry.get(kind, 0) / entry["units"] for kind in ("read", "written", "steps")}
        work[family, row]["footprint"] = entry.get("footprint", 0)
    for rows in samples.values():
        for candidates in rows.values():
            candidates.update({name: statistics.median(times) for name, times in candidates.items()})
    return samples, units, Limits(samples.pop("limit", {}), work)


class Limits:
    """Times of what the processor can do at most, those of the family `limit`, and of rows by what they do"""

    def __init__(self, rows, work):
        self.times, self.work = {row: times["processor"] for row, times in rows.items()}, work

    def transfer(self, kind, footprint):
        """As measured with no more than so many bytes"""
        sizes = sorted(int(row.split()[1]) for row in self.times if row.startswith(kind))
        return self.times[f"{kind} {max((size for size in sizes if size <= footprint), default=sizes[0])}"]

    def of(self, family, row):
        """The least time that a unit of the row can take, and what takes it"""
        if not self.times:
            return 0, ""
        work = self.work[family, row]
        return max((work["read"] * self.transfer("load", work["footprint"]), "loads"),
                   (work["written"] * self.transfer("store", work["footprint"]), "stores"),
                   (work["steps"] * self.times["step"], "steps"))


def time_table(family, rows, units, limits):
    bars = Bars(family, 1.0)
    table = Table("row", "time:", "of the limit:", "× scalar:", "best peer", "× peer:", "bar:", "")
    for row, times in rows.items():
        ours = times["zelt"]
        peers = {name: t for name, t in times.items() if name not in ("zelt", "scalar")}
        least, kind = limits.of(family, row)
        share = f"{least / ours:.0%} {kind}" if least else ""
        lost, cells = False, [row, f"{ours:.3g} ns/{units[family, row]}", share, "", "", "", ""]
        if "scalar" in times:
            ratio = times["scalar"] / ours
            lost, cells[3] = ratio < NOISE, f"{ratio:.2f}"
        if peers:
            best = min(peers, key=peers.get)
            ratio, bar = peers[best] / ours, bars.bar(row)
            lost, cells[4:] = lost or ratio < bar * NOISE, [best, f"{ratio:.2f}", f"{bar:g}"]
        table.add(lost, *cells, bars.remark(row, lost))
    return table


def times_scalar(rows):
    """row -> how many times as fast as the scalar form"""
    return {row: times["scalar"] / times["zelt"] for row, times in rows.items() if "scalar" in times}


def peers_of(times):
    """What is timed beside ours and is not ours: the kernels of bytes beside the mixed ones are."""
    return {name: t for name, t in times.items() if name != "scalar" and not name.startswith("zelt")}


def peer_means(families):
    """A line per family, and one for all: the geometric mean of the best peers' times by ours"""
    table = Table("family", "rows:", "× peer, mean:", "least:", f"below {NOISE}:", bars=False)
    ratios = {}
    for family, rows in families.items():
        peers = {row: peers_of(times) for row, times in rows.items()}
        ratios[family] = [min(p.values()) / rows[row]["zelt"] for row, p in peers.items() if p]
    ratios["all"] = [r for of_family in ratios.values() for r in of_family]
    for family, of_family in ratios.items():
        if of_family:
            table.add(False, family, str(len(of_family)), f"{statistics.geometric_mean(of_family):.2f}",
                      f"{min(of_family):.2f}", str(sum(r < NOISE for r in of_family)))
    return table


def level_table(families):
    """A line per family: how many times as fast as the scalar form"""
    table = Table("family", "rows:", "× scalar, mean:", "least:", "most:", "slower than scalar")
    for family, rows in families.items():
        ratios = times_scalar(rows)
        if not ratios:
            continue
        slower = [f"{row} {ratio:.2f}" for row, ratio in ratios.items() if ratio < NOISE]
        table.add(len(slower), family, str(len(ratios)), f"{statistics.geometric_mean(ratios.values()):.1f}",
                  f"{min(ratios.values()):.2f}", f"{max(ratios.values()):.1f}", ", ".join(slower))
    return table


def levels_table(runs):
    """A line per family: the same means and leasts, of several levels side by side; runs: level -> families"""
    table = Table("family", "rows:", *(h for level in runs for h in (f"{level}, mean:", "least:", "slower:")), bars=False)
    for family, rows in next(iter(runs.values())).items():
        ratios = [list(times_scalar(families[family]).values()) for families in runs.values()]
        if ratios[0]:
            table.add(False, family, str(len(times_scalar(rows))), *(
                cell for r in ratios for cell in (f"{statistics.geometric_mean(r):.1f}", f"{min(r):.2f}",
                                                  str(sum(ratio < NOISE for ratio in r)))))
    return table


class Target:
    """What was counted on one of them: NAME.tsv, NAME-clang.tsv and NAME-cycles.tsv of a folder"""

    def __init__(self, title, folder, name):
        self.title = title
        self.counts, self.units = self.read_counts(folder / f"{name}.tsv")
        self.clang, _ = self.read_counts(folder / f"{name}-clang.tsv")
        self.cycles = {}  # (family, row) -> core -> candidate -> cycles a unit, or None
        for line in (folder / f"{name}-cycles.tsv").read_text().splitlines():
            family, row, _, candidate, core, cycles = line.split("\t")
            cores = self.cycles.setdefault((family, row), {})
            cores.setdefault(core, {})[candidate] = float(cycles) if cycles else None

    @staticmethod
    def read_counts(path):
        """(family, row) -> candidate -> instructions a unit, and (family, row) -> unit"""
        counts, units = {}, {}
        for line in path.read_text().splitlines():
            family, row, unit, number, candidate, called, harness = line.split("\t")
            inline = family == "bits"  # peers are functions of headers: the loop around counts with all candidates
            count = int(called) + inline * int(harness)
            counts.setdefault((family, row), {})[candidate] = count / float(number)
            units[family, row] = unit
        return counts, units

    def best_peer(self, key):
        return best_peer(self.counts.get(key, {}))

    def ratio(self, key):
        """Instructions of the best peer by ours, or None"""
        peer = self.best_peer(key)
        return self.counts[key][peer] / self.counts[key]["zelt"] if peer else None

    def loops(self):
        """(family, row), core, cycles of ours, best peer, its cycles; only where the model has all forms of both sides"""
        for key, cores in self.cycles.items():
            for core, cycles in cores.items():
                peer = best_peer({name: c for name, c in cycles.items() if c is not None})
                if peer and cycles["zelt"] is not None and cycles[self.best_peer(key)] is not None:
                    yield key, core, cycles["zelt"], peer, cycles[peer]

    def fast_enough(self, family):
        """Whether its modelled loops take at most the best peer's cycles"""
        ours = [(cycles, theirs) for (f, _), _, cycles, _, theirs in self.loops() if f == family]
        return bool(ours) and not any(takes_more(*pair) for pair in ours)


def takes_more(cycles, theirs):
    return round(theirs / cycles, 2) < 1


def best_peer(candidates):
    peers = [name for name in candidates if not name.startswith("zelt")]
    return min(peers, key=candidates.get) if peers else None


def families_of(targets):
    return dict.fromkeys(family for t in targets for family, _ in t.counts)


def instruction_table(family, targets, bars):
    head = [h for t in targets for h in (f"{t.title}:", "best peer", "its:", "× peer:")]
    table = Table("row", *head, "", bars=False)
    for key in dict.fromkeys(key for t in targets for key in t.counts if key[0] == family):
        cells = []
        for t in targets:
            peer, ratio = t.best_peer(key), t.ratio(key)
            ours = f"{t.counts[key]['zelt']:.4g}/{t.units[key]}" if key in t.counts else ""
            cells += [ours, peer, f"{t.counts[key][peer]:.4g}", f"{ratio:.2f}"] if peer else [ours, "", "", ""]
        table.add(False, key[1], *cells, bars.exception(f"{family} {key[1]}"))
    return table


def mean_table(targets, bars):
    """A line per family: the geometric mean of what the best peers execute, by ours"""
    table = Table("family", *(h for t in targets for h in (f"{t.title}, rows:", "× peer, mean:", "bar:", "")))

    def cells(t, name, ratios, excuse):
        if not ratios:
            return ["", "", "", ""]
        mean, bar = statistics.geometric_mean(ratios), bars.bar(f"{t.title} {name}".strip())
        remark = "" if mean >= bar else excuse or "**lost**"
        table.lost += remark == "**lost**"
        return [str(len(ratios)), f"{mean:.3f}", f"{bar:g}", remark]

    ratios = {t: {key: t.ratio(key) for key in t.counts if t.best_peer(key)} for t in targets}
    for t in targets:
        ratios[t] = {key: r for key, r in ratios[t].items() if not bars.exception(" ".join(key))}
    for family in families_of(targets):
        line = [cells(t, family, [r for (f, _), r in ratios[t].items() if f == family],
                      t.fast_enough(family) and "met: its loops take no more cycles") for t in targets]
        if any(c[0] for c in line):
            table.add(0, family, *sum(line, []))
    table.add(0, "all", *sum((cells(t, "", list(ratios[t].values()), "") for t in targets), []))
    return table


def cycle_table(targets):
    table = Table("loop", "core", "cycles:", "best peer", "its:", "× peer:", "")
    for t in targets:
        for (family, row), core, ours, peer, theirs in t.loops():
            lost = takes_more(ours, theirs)
            table.add(lost, row if row.startswith(family) else f"{family} {row}", core.title(),
                      f"{ours:.4g}/{t.units[family, row]}", peer, f"{theirs:.4g}", f"{theirs / ours:.2f}",
                      "**more**" if lost else "")
    return table


def clang_table(targets):
    """Rows for which clang's code executes noticeably more than gcc's"""
    table = Table("row", "target", "gcc:", "clang:", "× more:", bars=False)
    for t in targets:
        for (family, row), candidates in t.clang.items():
            more = candidates["zelt"] / t.counts[family, row]["zelt"]
            if more > CLANG_BAR:
                table.add(False, f"{family} {row}", t.title, f"{t.counts[family, row]['zelt']:.4g}",
                          f"{candidates['zelt']:.4g}", f"{more:.2f}")
    return table


def processor():
    fields = dict(re.findall(r"^([^\t:]+)\s*: (.*)$", pathlib.Path("/proc/cpuinfo").read_text(), re.M))
    name = fields.get("model name", platform.machine())
    return f"{name} (family {fields['cpu family']}, model {fields['model']})" if "cpu family" in fields else name


def compiler(name):
    return subprocess.run([name, "--version"], capture_output=True, text=True, check=True).stdout.splitlines()[0]


def llvm_version():
    text = subprocess.run([MODEL, "--version"], capture_output=True, text=True, check=True).stdout
    return re.search(r"LLVM version \S+", text)[0]


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
        folder, document = pathlib.Path(arguments[1]), pathlib.Path(arguments[3]) if len(arguments) > 3 else None
        targets = [Target("ARMv7", folder, "armhf"), Target("AArch64", folder, "arm64")]
        bars = Bars("instructions", 1.0)
        made_by = f"`{arguments[2]}`, {compiler('arm-linux-gnueabihf-g++')}, {compiler('aarch64-linux-gnu-g++')}"
        for family in families_of(targets):
            report("instructions", family, instruction_table(family, targets, bars), made_by, document)
        report("instructions", "cycles", cycle_table(targets), f"`{arguments[2]}`, {llvm_version()}", document)
        report("instructions", "clang", clang_table(targets), f"`{arguments[2]}`, {compiler('clang++')}", document)
        report("instructions", "means", mean_table(targets, bars), made_by, document)
    elif arguments[0] == "--levels":
        command, document, *pairs = arguments[1:]
        runs = {level: read_times(pathlib.Path(run))[0] for level, run in zip(pairs[::2], pairs[1::2])}
        made_by = f"`{command}` on {processor()}, {compiler('c++')}"
        report("bench", "levels", levels_table(runs), made_by, pathlib.Path(document))
    elif arguments[0] == "--level":
        print(f"{arguments[1]} on {processor()}, {compiler('c++')}:\n")
        print(level_table(read_times(pathlib.Path(arguments[2]))[0]))
    else:
        families, units, limits = read_times(pathlib.Path(arguments[0]))
        made_by = f"`{arguments[1]}` on {processor()}, {compiler('c++')}"
        document = pathlib.Path(arguments[2]) if len(arguments) > 2 else None
        for family, rows in families.items():
            report("bench", family, time_table(family, rows, units, limits), made_by, document)
        print(peer_means(families))


if __name__ == "__main__":
    main(sys.argv[1:])
