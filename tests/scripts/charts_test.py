#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""charts_test.py SCRIPTS: what the figures and the lines beside them make of a run."""
import pathlib
import re
import sys
import unittest
import xml.etree.ElementTree

sys.path.insert(0, sys.argv.pop())
import bench_tables  # noqa: E402
import charts  # noqa: E402

# The second candidate of ours and the scalar build are no peers, whatever they take.
RUN = {
    "sad": {"a": {"zelt": 2, "scalar": 1, "zelt_sad": 1, "p": 8, "q": 6}, "alone": {"zelt": 2, "scalar": 20}},
    "csc": {"b": {"zelt": 4, "scalar": 2, "p": 3}, "even": {"zelt": 4, "p": 4.05}},
}


def texts(figure):
    root = xml.etree.ElementTree.fromstring("\n".join(figure.parts + ["</svg>"]))
    return [e.text for e in root.iter() if e.text and e.text.strip()]


class Charts(unittest.TestCase):
    def setUp(self):
        self.ratios = {family: charts.peer_ratios(rows) for family, rows in RUN.items()}

    def test_ratios_are_to_the_best_peer(self):
        self.assertEqual(self.ratios, {"sad": {"a": 3}, "csc": {"b": 0.75, "even": 4.05 / 4}})

    def test_lines(self):
        said = " ".join(charts.ratio_lines(self.ratios, "command").split())
        self.assertIn("3 rows have a peer. The geometric mean over all of them is 1.32; 1 are ahead", said)
        self.assertTrue(said.endswith("1 as fast, 1 behind. Furthest behind: csc b (0.75)."), said)
        self.assertNotIn("Furthest", charts.ratio_lines({"sad": self.ratios["sad"]}, "command"))

    def test_figures(self):
        said = texts(charts.draw_ratios(self.ratios))
        self.assertIn("3.00× over 1 rows", said)
        self.assertIn("0.87× over 2 rows, 1 behind", said)
        rows = [(work, size, size_bytes, cost) for work, cost in (("a < b", 0.3), ("memcpy", 0.29))
                for size, size_bytes in (("64x64", 1 << 12), ("640x480", 1 << 32))]
        figure = charts.draw_growth(rows)
        self.assertTrue({"a < b", "memcpy", "64x64", "640x480"} <= set(texts(figure)))
        at = [float(y) for y in re.findall(r'y="([^"]*)"[^>]*>(?:a &lt; b|memcpy)<', "\n".join(figure.parts))]
        self.assertGreaterEqual(abs(at[0] - at[1]), 16, "names of lines that end together lie over each other")

    def test_limits_are_those_of_the_memory_that_is_gone_over(self):
        times = {f"{kind} {size}": {"processor": t} for kind, by_size in (("load", (1, 2)), ("store", (2, 8)))
                 for size, t in zip((100, 1000), by_size)} | {"step": {"processor": 5}}
        work = {("f", row): dict(zip(("read", "written", "steps", "footprint"), values)) for row, values in
                {"small": (3, 1, 0, 9), "large": (3, 1, 0, 1000), "between": (5, 1, 0, 999), "chain": (3, 1, 2, 0)}.items()}
        limits = bench_tables.Limits(times, work)
        self.assertEqual([limits.of("f", row) for row in ("small", "large", "between", "chain")],
                         [(3, "loads"), (8, "stores"), (5, "loads"), (10, "steps")])
        self.assertEqual(bench_tables.Limits({}, work).of("f", "small"), (0, ""))

    def test_levels_stand_side_by_side(self):
        faster = {"sad": {"a": {"zelt": 0.5, "scalar": 1}, "alone": {"zelt": 1, "scalar": 8}}, "csc": {}}
        lines = str(bench_tables.levels_table({"v2": {"sad": RUN["sad"], "csc": {}}, "v3": faster})).splitlines()
        self.assertEqual(lines[2:], ["| sad | 2 | 2.2 | 0.50 | 1 | 4.0 | 2.00 | 0 |"])


if __name__ == "__main__":
    unittest.main()
