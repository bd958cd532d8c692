#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Times the package beside OpenCV and Pillow on one thread; bench.py [DOCUMENT] writes the table between its markers.

Candidates take turns; a time is the processor time of the best of many turns."""
import sys
import time
from pathlib import Path

import cv2
import numpy as np
from PIL import Image

import libzelt

sys.path.insert(0, str(Path(__file__).parents[2] / "scripts"))
from bench_tables import NOISE, Table, insert, processor  # noqa: E402

COMMAND = "./scripts/python.sh --bench"
TURNS, LEAST = 25, 0.01  # turns of each candidate, and seconds of a turn
REASONS = {
    "a 64x64": "a call through ctypes and its checks; Converter.prepare has what each call needs of them",
}


def noise(*shape):
    return np.random.default_rng(1).integers(0, 256, shape, np.uint8)


def rows():
    """Name, and what does the work: ours first"""
    for width, height, name in (64, 64, "a 64x64 picture"), (1920, 1080, "1920x1080"):
        yuv, nv12, rgb, grey = (noise(3, height, width), noise(height * 3 // 2, width), noise(height, width, 3),
                                noise(height, width))
        packed = np.ascontiguousarray(yuv.transpose(1, 2, 0))
        ycc, image = Image.fromarray(packed, "YCbCr"), Image.fromarray(rgb)
        out, small = np.empty_like(rgb), np.empty((height // 2, width // 2, 3), np.uint8)
        size, half = (width, height), (width // 2, height // 2)
        mono, as_grey = np.empty_like(grey), libzelt.Converter("rgb24", "gray", size, range="full")
        from_nv12 = libzelt.Converter("nv12", "rgb24", size)
        yield (f"NV12 -> RGB, {name}", {
            "libzelt": lambda: from_nv12(nv12, out),
            "OpenCV": lambda: cv2.cvtColor(nv12, cv2.COLOR_YUV2RGB_NV12, dst=out)})
        prepared = from_nv12.prepare(nv12, out)
        yield (f"the same, prepared, {name}", {
            "libzelt": prepared, "OpenCV": lambda: cv2.cvtColor(nv12, cv2.COLOR_YUV2RGB_NV12, dst=out)})
        full = libzelt.Converter("yuv444", "rgb24", size)
        yield (f"YUV 4:4:4 -> RGB, {name}", {
            "libzelt": lambda: full(yuv, out), "OpenCV": lambda: cv2.cvtColor(packed, cv2.COLOR_YCrCb2RGB, dst=out),
            "Pillow": lambda: ycc.convert("RGB")})
        yield (f"RGB -> grey, {name}", {
            "libzelt": lambda: as_grey(rgb, mono), "OpenCV": lambda: cv2.cvtColor(rgb, cv2.COLOR_RGB2GRAY, dst=mono),
            "Pillow": lambda: image.convert("L")})
        yield (f"RGB to a half, bilinear, {name}", {
            "libzelt": lambda: libzelt.resize(rgb, half, small),
            "OpenCV": lambda: cv2.resize(rgb, half, dst=small, interpolation=cv2.INTER_LINEAR),
            "Pillow": lambda: image.resize(half, Image.Resampling.BILINEAR)})
        other, shift = noise(2, height, width)
        yield (f"sum of absolute differences, {name}", {
            "libzelt": lambda: libzelt.sad(other, shift), "OpenCV": lambda: cv2.norm(other, shift, cv2.NORM_L1)})
    yield ("motion of 8160 blocks, 1920x1080", {"libzelt": lambda: libzelt.motion(other, shift)})


def measure(candidates):
    """Name -> least seconds a call"""
    counts, best = {}, {}
    for name, call in candidates.items():
        call()
        start = time.process_time()
        call()
        counts[name] = max(int(LEAST / max(time.process_time() - start, 1e-6)), 1)
    for _ in range(TURNS):
        for name, call in candidates.items():
            start = time.process_time()
            for _ in range(counts[name]):
                call()
            taken = (time.process_time() - start) / counts[name]
            best[name] = min(taken, best.get(name, taken))
    return best


def main():
    cv2.setNumThreads(1)
    table = Table("row", "time:", "OpenCV:", "× OpenCV:", "Pillow:", "× Pillow:", "")
    for name, candidates in rows():
        best = measure(candidates)
        cells = [f"{best['libzelt'] * 1e6:.4g} us"]
        for peer in "OpenCV", "Pillow":
            cells += [f"{best[peer] * 1e6:.4g}", f"{best[peer] / best['libzelt']:.2f}"] if peer in best else ["", ""]
        lost = best.get("OpenCV", 9e9) / best["libzelt"] < NOISE
        reason = next((why for what, why in REASONS.items() if what in name), "no reason known yet")
        table.add(lost, name, *cells, f"**behind**: {reason}" if lost else "")
    print(table)
    if len(sys.argv) > 1:
        insert(Path(sys.argv[1]), "bench:python", f"`{COMMAND}` on {processor()}, OpenCV {cv2.__version__}, Pillow "
               f"{Image.__version__}, NumPy {np.__version__}: {table.summary()}.\n\n{table}")


if __name__ == "__main__":
    main()
