#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""instruction_list_test.py SCRIPT: what scripts/instruction_list.py lets pass and what not."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

TARGETS = ["x86-64-v2", "x86-64-v3", "ARMv7", "AArch64"]
ROWS = {"sad/sad4x4": 100, "csc/of two words 320x240": 100000}


class InstructionList(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.list = self.folder / "list.txt"
        self.compilers = [f"compiler of {target} (1.0): 1" for target in TARGETS]
        for target in TARGETS:
            self.count(target, ROWS)
        self.run_script()

    def count(self, target, rows):
        """A run of zelt_count, whose peers and harness count nothing"""
        lines = []
        for row, count in rows.items():
            family, name = row.split("/")
            lines += [f"{family}\t{name}\tblock\t32\tpeer\t7\t9\n", f"{family}\t{name}\tblock\t32\tzelt\t{count}\t9\n"]
        (self.folder / f"{target}.tsv").write_text("".join(lines))

    def run_script(self, *options):
        command = [sys.executable, SCRIPT, *options, str(self.list), str(self.folder), *self.compilers]
        done = subprocess.run(command, capture_output=True, text=True, check=False)
        return done.returncode, done.stdout

    def assert_check(self, status, *parts):
        code, said = self.run_script("--check")
        self.assertEqual(code, status, said)
        for part in parts:
            self.assertIn(part, said)

    def test_limit(self):
        for count, status in ((103000, 0), (103001, 1), (97000, 0), (96999, 1)):
            for target in TARGETS:
                self.count(target, ROWS | {"csc/of two words 320x240": count})
                self.assert_check(status, f"8 counts compared, {status} changed")
                self.count(target, ROWS)

    def test_table_names_what_changed(self):
        self.count("ARMv7", ROWS | {"sad/sad4x4": 110})
        code, said = self.run_script("--check")
        self.assertEqual((code, said.splitlines()[-1].split()), (1, ["sad/sad4x4", "ARMv7", "100", "110", "+10.0", "%"]))

    def test_rows_that_come_and_go(self):
        self.count("AArch64", {"sad/sad4x4": 100, "ssd/ssd 4x4": 5})
        self.assert_check(1, "2 changed", "gone", "new")

    def test_another_compiler_is_told_and_not_compared(self):
        self.count("x86-64-v3", ROWS | {"sad/sad4x4": 200})
        self.compilers[1] = "another"
        self.assert_check(0, "x86-64-v3 is not compared", "this is another", "6 counts compared, 0 changed")
        self.count("x86-64-v2", ROWS | {"sad/sad4x4": 200})
        self.assert_check(1, "6 counts compared, 1 changed")

    def test_new_list_is_agreed_with(self):
        self.count("ARMv7", ROWS | {"sad/sad4x4": 200})
        self.compilers[0] = "another"
        self.run_script()
        self.assert_check(0, "8 counts compared, 0 changed")


if __name__ == "__main__":
    SCRIPT = sys.argv.pop()
    unittest.main()
