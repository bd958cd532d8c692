#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Draws the figures of docs/performance.md.

charts.py growth GROWTH.tsv FIGURE.svg              from a run of zelt_growth
charts.py ratios RUN.json COMMAND DOCUMENT FIGURE.svg   from a run of zelt_bench; DOCUMENT gets the lines that go with it,
                                                    between <!-- bench:ratios --> and <!-- /bench -->"""
import html
import math
import pathlib
import statistics
import subprocess
import sys
import textwrap

import bench_tables

COLOURS = ["#3b6fb6", "#b5523b", "#4f8a4c", "#8a5fb0", "#808080"]
INK, RULE = "#333333", "#dddddd"
LINE = 18  # from one line of text to the next
DARK = ('<style>@media (prefers-color-scheme: dark) { [fill="#333333"] { fill: #dddddd } [stroke="#333333"] '
        '{ stroke: #dddddd } [stroke="#dddddd"] { stroke: #555555 } [fill="white"] { fill: none } }</style>')


class Figure:
    """An SVG, from the top left"""

    def __init__(self, width, height):
        self.parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" '
                      f'height="{height}" font-family="sans-serif" font-size="13" fill="{INK}">',
                      DARK, '<rect width="100%" height="100%" fill="white"/>']

    def text(self, x, y, words, anchor="start", colour=INK, size=13):
        self.parts.append(f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" fill="{colour}" font-size="{size}">'
                          f'{html.escape(words)}</text>')

    def line(self, points, colour, width=1.0, dash=""):
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        dashes = f' stroke-dasharray="{dash}"' if dash else ""
        self.parts.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="{width}"{dashes}/>')

    def box(self, x0, x1, y, height, colour):
        self.parts.append(f'<rect x="{min(x0, x1):.1f}" y="{y:.1f}" width="{abs(x1 - x0):.1f}" height="{height}" '
                          f'fill="{colour}"/>')

    def dot(self, x, y, colour):
        self.parts.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3" fill="{colour}"/>')

    def save(self, path):
        path.write_text("\n".join(self.parts + ["</svg>", ""]))


def scale(low, high, start, end):
    """A logarithmic axis: where a value stands"""
    return lambda value: start + (end - start) * math.log(value / low) / math.log(high / low)


# ------------------------------------------------------------------------------------------------------------- growth

def size_text(size):
    return f"{size >> 20} MB" if size >= 1 << 20 else f"{size >> 10} KB"


def cache_size(name):
    said = subprocess.run(["getconf", f"{name}_SIZE"], capture_output=True, text=True, check=True).stdout.strip()
    return int(said) if said.isdigit() else 0


def draw_growth(rows):
    """rows: work, size, bytes, nanoseconds"""
    sizes = dict.fromkeys(size for _, size, _, _ in rows)
    pixels = {size: math.prod(map(int, size.split("x"))) for size in sizes}
    low, high = 0.02, 2
    left, right, top, bottom = 50, 720, 56, 420
    x, y = scale(min(pixels.values()), max(pixels.values()), left, right), scale(low, high, bottom, top)
    f = Figure(960, bottom + 3 * LINE)
    f.text(left, 20, "What a pixel costs as pictures grow, in nanoseconds", size=15)
    f.text(left, 38, bench_tables.processor(), size=12)
    for tick in (0.02, 0.05, 0.1, 0.2, 0.5, 1, 2):
        f.line([(left, y(tick)), (right, y(tick))], RULE)
        f.text(left - 6, y(tick) + 4, f"{tick:g}", "end")
    for size in sizes:
        f.line([(x(pixels[size]), top), (x(pixels[size]), bottom)], RULE)
        f.text(x(pixels[size]), bottom + LINE, size, "middle", size=11)
    caches = [cache_size(name) for name in ("LEVEL1_DCACHE", "LEVEL2_CACHE", "LEVEL3_CACHE")]
    works = dict.fromkeys(work for work, *_ in rows)
    ends = []
    for (work, colour) in zip(works, COLOURS):
        points = [(pixels[size], int(size_bytes), cost) for w, size, size_bytes, cost in rows if w == work]
        f.line([(x(n), y(cost)) for n, _, cost in points], colour, 2, "5 4" if work.startswith("memcpy") else "")
        for n, _, cost in points:
            f.dot(x(n), y(cost), colour)
        for cache in caches:
            for (n0, b0, c0), (n1, b1, c1) in zip(points, points[1:]):
                if b0 <= cache < b1:  # on the line between the two
                    part = math.log(cache / b0) / math.log(b1 / b0)
                    at = x(n0) + part * (x(n1) - x(n0)), y(c0) + part * (y(c1) - y(c0))
                    f.line([(at[0], at[1] - 8), (at[0], at[1] + 8)], colour, 2)
        ends.append([y(points[-1][2]), work, colour])
    ends.sort()
    for i, (at, work, colour) in enumerate(ends):
        if i:
            at = ends[i][0] = max(at, ends[i - 1][0] + 16)
        f.text(right + 10, at + 4, work, colour=colour)
    known = ", ".join(f"L{n} {size_text(c)}" for n, c in enumerate(caches, 1) if c > 0)
    f.text(left, bottom + 2.5 * LINE, f"Upright marks: more bytes are read and written than a cache holds ({known}).", size=12)
    return f


# ------------------------------------------------------------------------------------------------------------- ratios

def peer_ratios(rows):
    """row -> the best peer's time by ours"""
    ratios = {}
    for row, times in rows.items():
        peer = bench_tables.best_peer({name: t for name, t in times.items() if name != "scalar"})
        if peer:
            ratios[row] = times[peer] / times["zelt"]
    return ratios


def draw_ratios(families):
    """families: name -> row -> ratio"""
    every = [r for ratios in families.values() for r in ratios.values()]
    first, last = math.floor(math.log2(min(every))), math.ceil(math.log2(max(every)))
    left, right, top, height = 70, 640, 64, 26
    x = scale(2 ** first, 2 ** last, left, right)
    bottom = top + height * len(families)
    f = Figure(900, bottom + 2.5 * LINE)
    f.text(left, 20, "How many times as fast as the best other library, by family", size=15)
    f.text(left, 38, bench_tables.processor(), size=12)
    for tick in (2 ** power for power in range(first, last + 1)):
        f.line([(x(tick), top - 8), (x(tick), bottom)], INK if tick == 1 else RULE)
        f.text(x(tick), bottom + LINE, f"{tick:g}×", "middle")
    for i, (family, ratios) in enumerate(families.items()):
        at, values = top + height * i, ratios.values()
        mean = statistics.geometric_mean(values)
        f.text(left - 8, at + 14, family, "end")
        f.box(x(1), x(mean), at + 2, 16, COLOURS[mean < bench_tables.NOISE])
        f.line([(x(min(values)), at + 10), (x(max(values)), at + 10)], INK)
        behind = sum(r < bench_tables.NOISE for r in values)
        f.text(right + 10, at + 14, f"{mean:.2f}× over {len(values)} rows" + f", {behind} behind" * bool(behind))
    f.text(left, bottom + 2.2 * LINE, "Bars: geometric means. Lines: from the least row to the most.", size=12)
    return f


def ratio_lines(families, command):
    every = sorted((r, f"{family} {row}") for family, ratios in families.items() for row, r in ratios.items())
    behind = [f"{row} ({r:.2f})" for r, row in every if r < bench_tables.NOISE]
    ahead = sum(r > 2 - bench_tables.NOISE for r, _ in every)
    text = (f"`{command}` on {bench_tables.processor()}, {bench_tables.compiler('c++')}: {len(every)} rows have a peer. "
            f"The geometric mean over all of them is {statistics.geometric_mean(r for r, _ in every):.2f}; {ahead} are "
            f"ahead of the best peer by more than 2 %, {len(every) - ahead - len(behind)} as fast, {len(behind)} behind.")
    if behind:
        text += f" Furthest behind: {', '.join(behind[:5])}."
    return textwrap.fill(text, 120, break_long_words=False, break_on_hyphens=False)


def main(arguments):
    kind, run, *rest = arguments
    figure = pathlib.Path(rest[-1])
    if kind == "growth":
        rows = [line.split("\t") for line in pathlib.Path(run).read_text().splitlines()]
        draw_growth([(work, size, int(size_bytes), float(cost)) for work, size, size_bytes, cost in rows]).save(figure)
    else:
        families, *_ = bench_tables.read_times(pathlib.Path(run))
        ratios = {family: r for family, rows in families.items() if (r := peer_ratios(rows))}
        draw_ratios(ratios).save(figure)
        bench_tables.insert(pathlib.Path(rest[1]), "bench:ratios", ratio_lines(ratios, rest[0]))


if __name__ == "__main__":
    main(sys.argv[1:])
