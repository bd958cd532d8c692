#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""clips_table.py BUILD [REGEX]: times zelt beside ffmpeg on BUILD/clip.mp4 and BUILD/clip.y4m, see clips.sh.

The least of three runs that alternate. Of the coded clip the processor time is what is left without decoding, which is
ffmpeg's with as many threads and no output."""
import os
import pathlib
import re
import resource
import subprocess
import sys
import time

from bench_tables import Bars, NOISE, Table, insert, processor

TURNS = 3
PNG_PICTURES = 16
ALL = os.cpu_count()


def rows():
    """name, ffmpeg's output, zelt's verb and output; {n} is the number of threads"""
    for clip in "clip.mp4", "clip.y4m":
        for name in ("rgb24", "nv12") if clip == "clip.mp4" else ("rgb24", "rgba", "nv12"):
            yield (f"{clip} to {name}", clip, f"-pix_fmt {name} -f rawvideo /dev/null",
                   f"convert --to raw --pix-fmt {name} -o /dev/null")
        yield f"{clip}, md5", clip, "-f md5 -", "md5"
        yield f"{clip}, md5 of each", clip, "-f framemd5 -", "md5 --per-frame"
    yield (f"clip.y4m, {PNG_PICTURES} to PNG", "clip.y4m", f"-frames:v {PNG_PICTURES} out/theirs-%d.png",
           f"convert --limit {PNG_PICTURES} -o out/ours-%d.png")


def run(command, folder):
    """Seconds of the user's processor time, and of the clock"""
    before, start = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
    subprocess.run(command.split(), cwd=folder, check=True, stdout=subprocess.DEVNULL)
    end, after = time.monotonic(), resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime - before.ru_utime, end - start


def least(commands, folder):
    """Of each command, by turns"""
    runs = [[run(command, folder) for command in commands] for _ in range(TURNS)]
    return [tuple(min(times) for times in zip(*one)) for one in zip(*runs)]


def main(build, pattern):
    (build / "out").mkdir(exist_ok=True)
    bars = Bars("clips", 0.5)
    table = Table("row", "user time, × ffmpeg's:", "at most:", "clock, × ffmpeg's:", f"clock, 1 thread by {ALL}:", "")
    (decoding, _), = least([f"ffmpeg -nostdin -v error -threads {ALL} -i clip.mp4 -f null -"], build)
    for name, clip, theirs, ours in rows():
        if not re.search(pattern, name):
            continue
        ffmpeg = f"ffmpeg -nostdin -v error -y -threads {ALL} -i {clip}"
        zelt = f"tools/zelt/zelt {ours} -i {clip} --threads"
        peer, own, alone = least([f"{ffmpeg} {theirs}", f"{zelt} {ALL}", f"{zelt} 1"], build)
        base = decoding if clip == "clip.mp4" else 0
        user, clock, bar = max(own[0] - base, 0) / (peer[0] - base), own[1] / peer[1], bars.bar(name)
        lost = user * NOISE > bar or clock * NOISE > 1
        table.add(lost, name, f"{user:.2f}", f"{bar:g}", f"{clock:.2f}", f"{alone[1] / own[1]:.2f}",
                  bars.remark(name, lost))
        print(table.lines[-1], flush=True)
    print(f"\n{table}\n\n{table.summary()}")
    if not pattern:
        version = subprocess.run(["ffmpeg", "-version"], capture_output=True, text=True, check=True).stdout.split()[2]
        made_by = f"`./scripts/clips.sh` on {processor()}, {ALL} processors, ffmpeg {version}"
        insert(pathlib.Path("docs/performance.md"), "bench:clips", f"{made_by}: {table.summary()}.\n\n{table}")


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]), sys.argv[2] if len(sys.argv) > 2 else "")
