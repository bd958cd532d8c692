#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""gstreamer_table.py [REGEX]: times zeltconvert beside videoconvert and videoconvertscale, see gstreamer.sh.

What a pipeline of N + 5 pictures takes less what one of 5 takes, by N, the least of three times."""
import os
import pathlib
import re
import resource
import subprocess
import sys
import time

from bench_tables import Bars, NOISE, Table, insert, processor

PICTURES = 150
SOURCE = (1920, 1080)
PAIRS = [("I420", "RGB"), ("I420", "RGBA"), ("NV12", "RGB"), ("NV12", "BGRx"), ("YUY2", "RGB16"),
         ("P010_10LE", "BGRx"), ("BGRx", "I420"), ("I420", "RGB", (1280, 720)), ("NV12", "RGBP", (640, 640)),
         ("I420", "I420", (640, 360))]
MODES = {"smooth": ("chroma-mode=smooth", "", "defaults"),
         "replicated": ("chroma-mode=replicate", "chroma-mode=none chroma-resampler=nearest dither=none", "cheapest")}


def caps(name, size):
    colours = "" if name.startswith(("RGB", "BGR")) else ",colorimetry=bt709"
    return f"video/x-raw,format={name},width={size[0]},height={size[1]}{colours}"


def pipeline(pair, element, pictures):
    src, dst, size = pair if len(pair) == 3 else (*pair, SOURCE)
    return (f"videotestsrc num-buffers=1 ! {caps(src, SOURCE)} ! imagefreeze num-buffers={pictures} ! {element} ! "
            f"{caps(dst, size)} ! fakesink")


def run(pair, element, pictures):
    """Seconds of the processors, and of the clock"""
    before, start = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
    subprocess.run(["gst-launch-1.0", "-q", *pipeline(pair, element, pictures).split()], check=True)
    end, after = time.monotonic(), resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, end - start


def cost(pair, element):
    """Milliseconds that a picture takes: of the processors with one thread, and of the clock with all"""
    def least(threads, kind):
        times = {n: min(run(pair, f"{element} n-threads={threads}", n)[kind] for _ in range(3))
                 for n in (5, PICTURES + 5)}
        return (times[PICTURES + 5] - times[5]) / PICTURES * 1000
    return least(1, 0), least(0, 1)


def main(pattern):
    bars = Bars("gstreamer", 3)
    table = Table("row", "compared with", "zelt, processor, ms:", "theirs:", "×:", "goal:", "zelt, clock, ms:", "theirs:", "")
    commands = []
    for pair in PAIRS:
        resized = len(pair) == 3
        size = pair[2] if resized else SOURCE
        name = f"{pair[0]} to {pair[1]} {size[0]}x{size[1]}"
        commands.append(f"    gst-launch-1.0 {pipeline(pair, 'ELEMENT', PICTURES + 5)}")
        for mode, (ours, theirs, settings) in MODES.items():
            row = f"{name}, {mode}"
            if not re.search(pattern, row):
                continue
            peer = "videoconvertscale" if resized else "videoconvert"
            (cpu, clock), (peer_cpu, peer_clock) = cost(pair, f"zeltconvert {ours}"), cost(pair, f"{peer} {theirs}")
            ratio, bar = peer_cpu / cpu, bars.bar(row)
            lost = ratio < bar * NOISE
            table.add(lost, row, f"{peer}, {settings}", f"{cpu:.2f}", f"{peer_cpu:.2f}", f"{ratio:.1f}", f"{bar:g}",
                      f"{clock:.2f}", f"{peer_clock:.2f}", bars.remark(row, lost))
            print(table.lines[-1], flush=True)
    print(f"\n{table}\n\n{table.summary()}")
    if not pattern:
        version = subprocess.run(["gst-launch-1.0", "--version"], capture_output=True, text=True, check=True).stdout
        made_by = f"`./scripts/gstreamer.sh` on {processor()}, {os.cpu_count()} processors, {version.splitlines()[1]}"
        insert(pathlib.Path("docs/performance.md"), "bench:gstreamer",
               f"{made_by}: {table.summary()}.\n\n{table}\n\n" + "\n".join(commands))


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else "")
