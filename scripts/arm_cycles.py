#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""arm_cycles.py COUNTS.tsv TRACE: cycles that llvm-mca models for what ran.

COUNTS.tsv and TRACE are of one run of zelt_count with the plugin's trace. Prints a line for every candidate and core:
family, row, unit, candidate, core, cycles a unit, or nothing where the core's model lacks a form.

The instructions that a candidate ran, in the order in which it ran them, are modelled as straight code, a long run by
parts all over it. So branches are predicted, all memory is in the first-level cache and alignment does not matter: the
models know no better. Calls are modelled as branches: llvm-mca takes every one for a hundred cycles. Pushes, pops, returns
and prefetches are left out, which some models have no figures for. Thumb is modelled as the same ARM instructions."""
import pathlib
import re
import subprocess
import sys

PARTS, PART = 8, 2000  # how many instructions are modelled of a longer run
MODEL = "llvm-mca-19"  # Neoverse N1 has a model of its own from 17 on
CORES = {
    "arm": (["cortex-a9"], ["-mtriple=armv7-linux-gnueabihf", "-mattr=+neon,+thumb2,+hwdiv-arm"]),
    "aarch64": (["cortex-a55", "cortex-a57", "neoverse-n1"], ["-mtriple=aarch64-linux-gnu"]),
}


def aarch64_forms(text):
    name, _, operands = text.partition(" ")
    if name in ("ret", "nop", "br", "hint") or name.startswith("prf"):
        return []
    if name == "adrp":
        operands = re.sub(r"#\w+$", "#4096", operands)
    elif name.startswith(("b.", "cb", "tb")):
        operands = re.sub(r"#\w+$", "#64", operands)
    elif name in ("b", "bl", "blr"):
        return ["b #64"]
    return [f"{name} {operands}"]


def arm_forms(text):
    name, _, operands = text.partition(" ")
    name = re.sub(r"\.[wn]$", "", name)
    if name.startswith(("it", "tb", "ldm", "stm", "pld", "push", "pop", "vpush", "vpop", "bx", "nop", "mrc")):
        return []
    if name.startswith("cb"):
        return [f"cmp {operands.split(',')[0]}, #0"]
    if re.match(r"bl?x?(eq|ne|cs|hs|cc|lo|mi|pl|vs|vc|hi|ls|ge|lt|gt|le)?$", name):
        return ["b #64"]
    if name in ("ldrd", "strd"):  # any two registers in Thumb, and larger offsets
        first, second, address = operands.split(", ", 2)
        address = re.sub(r"#-?\w+", "#8", address)
        return [f"{name[:3]} {first}, {address}", f"{name[:3]} {second}, {address}"]
    if not name.startswith(("v", "ldr", "str", "movw", "movt", "bf", "sbfx", "ubfx")):
        operands = re.sub(r"#-?\w+$", "#4", operands)  # in other ranges in Thumb
    if name.startswith(("ldrh", "strh", "ldrs")):
        operands = re.sub(r", lsl #\d+", "", operands)  # Thumb alone has it
    name = {"addw": "add", "subw": "sub"}.get(name, name)
    return [f"{name} {operands}"]


def read_runs(path):
    """The blocks of code of each count, and the code of a block"""
    code, runs, run = {}, [], []
    with path.open() as lines:
        for line in lines:
            number, tab, text = line.rstrip("\n").partition("\t")
            if tab:
                code[number] = [t.strip() for t in text.split(";") if t.strip()]
            elif number == "end":
                runs.append(run)
                run = []
            else:
                run.append(number)
    return runs, code


def modelled(parts, core, options):
    """Cycles of the parts together, or None"""
    times = 1 if len(parts[0]) >= PART else PART // len(parts[0])
    regions = [f"# LLVM-MCA-BEGIN {i}\n" + "\n".join(part) + "\n# LLVM-MCA-END\n" for i, part in enumerate(parts)]
    result = subprocess.run([MODEL, *options, f"-mcpu={core}", f"-iterations={times}", "-instruction-info=0",
                             "-resource-pressure=0"], input="".join(regions), capture_output=True, text=True)
    totals = re.findall(r"Total Cycles:\s+(\d+)", result.stdout)
    if "unsupported instruction" in result.stderr:
        return None
    if len(totals) != len(parts):
        sys.exit(result.stderr[:1000])
    return sum(map(int, totals)) / times


def main(counts, trace):
    runs, code = read_runs(pathlib.Path(trace))
    target = "aarch64" if any(re.search(r"\bx\d", t) for texts in code.values() for t in texts) else "arm"
    cores, options = CORES[target]
    forms = arm_forms if target == "arm" else aarch64_forms
    code = {number: [form for text in texts for form in forms(text)] for number, texts in code.items()}
    for run, line in zip(runs, pathlib.Path(counts).read_text().splitlines(), strict=True):
        family, row, unit, units, candidate = line.split("\t")[:5]
        ran = [form for number in run for form in code[number]]
        parts = [ran]
        if len(ran) > PARTS * PART:
            parts = [ran[(len(ran) - PART) * i // (PARTS - 1):][:PART] for i in range(PARTS)]
        for core in cores:
            cycles, of_a_unit = modelled(parts, core, options), ""
            if cycles is not None:
                of_a_unit = f"{cycles * len(ran) / sum(map(len, parts)) / int(units):.6g}"
            print(family, row, unit, candidate, core, of_a_unit, sep="\t", flush=True)


if __name__ == "__main__":
    main(*sys.argv[1:])
