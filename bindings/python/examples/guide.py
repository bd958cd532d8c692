#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the pictures of docs/python.md: guide.py SAMPLES OUT. Needs Pillow, and PyAV for the timeline."""
import sys
import tempfile
from pathlib import Path

import av
import numpy as np
from PIL import Image, ImageDraw

import archive
import libzelt


def panels(pictures, gap=4):
    """RGB pictures of one height side by side"""
    blank = np.full((pictures[0].shape[0], gap, 3), 255, np.uint8)
    return np.concatenate([part for picture in pictures for part in (picture, blank)][:-1], 1)


def photo(samples):
    """A photograph as a decoder would give it, and four things that one call makes of that"""
    rgb = np.asarray(Image.open(samples / "chelsea.png").convert("RGB"))[:300, :450]
    nv12 = libzelt.convert(rgb, "rgb24", "nv12", matrix="bt709")
    whole = libzelt.convert(nv12, "nv12", "rgb24", (225, 150), matrix="bt709")
    wrong = libzelt.convert(nv12, "nv12", "rgb24", (225, 150), matrix="bt709", range="full")
    turned = libzelt.convert(nv12, "nv12", "rgb24", (100, 150), matrix="bt709", turn=90)
    grey = libzelt.convert(libzelt.resize(nv12[:300], (225, 150), filter="area"), "gray", "rgb24")
    return panels([whole, wrong, turned, grey])


def motion_map(samples):
    """Where the blocks of a picture come from, and what is left of them there"""
    frames = archive.Frames(samples / "pan444.y4m")
    before, now = (list(frames.read(n, 1))[0] for n in (2, 6))
    vectors, costs = libzelt.motion(before[0], now[0], block=8)
    image = Image.fromarray(libzelt.convert(now, "yuv444", "rgb24", (528, 432)))
    draw = ImageDraw.Draw(image)
    for y, x in np.ndindex(costs.shape):
        centre = np.array((x * 8 + 4, y * 8 + 4))
        end = centre + vectors[y, x]
        draw.line([*(3 * centre), *(3 * end)], (255, 220, 0))
        draw.ellipse([*(3 * centre - 1), *(3 * centre + 1)], (255, 60, 0))
    heat = np.repeat(np.repeat((costs * 63 // max(costs.max(), 1) * 4).astype(np.uint8), 24, 0), 24, 1)
    return panels([np.asarray(image.quantize(128).convert("RGB")),  # leaves the palette of the file room for the greys
                   libzelt.convert(heat, "gray", "rgb24", range="full")])


def scenes(samples, path, size=(176, 144)):
    """A clip of four scenes, each a slow pan over a photograph, with key frames at least every 12 pictures"""
    with av.open(str(path), "w") as container:
        stream = container.add_stream("mpeg4", rate=25)
        stream.width, stream.height, stream.gop_size, stream.pix_fmt = *size, 12, "yuv420p"
        for name, x, y, pictures in (("coffee", 0, 0, 31), ("chelsea", 90, 60, 24), ("coffee", 320, 200, 17),
                                     ("chelsea", 200, 120, 28)):
            rgb = np.asarray(Image.open(samples / f"{name}.png").convert("RGB"))
            for n in range(pictures):
                view = rgb[y:y + size[1], x + n:x + n + size[0]]
                frame = av.VideoFrame.from_ndarray(libzelt.convert(view, "rgb24", "yuv420p"), format="yuv420p")
                for packet in stream.encode(frame):
                    container.mux(packet)
        for packet in stream.encode():
            container.mux(packet)


def timeline(rows, width=900, height=150):
    """Bars of the difference from picture to picture; key frames in blue below, cuts in red"""
    image = Image.new("RGB", (width, height), "white")
    draw = ImageDraw.Draw(image)
    rows = [row for row in rows if row[2]]
    step, most = width / len(rows), max(float(row[5] or 0) for row in rows)
    for row in rows:
        x, difference = int(row[2]) * step, float(row[5] or 0)
        colour = (214, 40, 40) if row[4] == "1" else (150, 150, 150)
        draw.rectangle([x, height - 24 - difference / most * (height - 34), x + step - 2, height - 24], colour)
        if row[3] == "1":
            draw.rectangle([x, height - 16, x + step - 2, height - 4], (40, 90, 200))
    return np.asarray(image)


def main():
    samples, out = map(Path, sys.argv[1:])
    with tempfile.TemporaryDirectory() as folder:
        scenes(samples, Path(folder) / "scenes.mp4")
        rows = archive.work(folder, archive.Task("scenes.mp4"), 24)
    print(rows[-1], [row[2] for row in rows if row[4] == "1"])
    for name, picture in (("photo", photo(samples)), ("motion", motion_map(samples)), ("timeline", timeline(rows))):
        Image.fromarray(picture).quantize(256).save(out / f"python-{name}.png", optimize=True)


if __name__ == "__main__":
    main()
