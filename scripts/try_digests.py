#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""try_digests.py LIBRARY   what a native library gives for the samples of docs/try/: docs/try/digests.json

Digests are the first 16 digits of MD5. The page's sliders have the steps that are listed here.
"""
import hashlib
import json
import os
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SAMPLES = ROOT / "samples"
SIZES = [25, 50, 75, 100, 125, 150, 200]  # percent
BLOCKS = [4, 8, 16, 32, 64]
REACHES = [0, 4, 8, 16, 32]  # 0: no search
GAPS = [1, 4]  # frames from one to the other
FORMATS = ["yuv444", "yuv422", "yuv420", "nv12", "yuyv", "yuv400"]
COLOURS = [(matrix, range_) for matrix in ("bt601", "bt709", "bt2020") for range_ in ("limited", "full")]
CODED = ["pan_h264.mp4", "pan.h264", "pan_hevc.mp4"]


def digest(*pictures):
    """Of pictures one behind the other, as arrays or lists of planes"""
    md5 = hashlib.md5()
    for picture in pictures:
        for plane in picture if isinstance(picture, list) else [picture]:
            md5.update(plane)
    return md5.hexdigest()[:16]


def conversions(frames):
    """The steps after frames of RGBA: stored in a format, and shown in a size; of all frames together"""
    height, width = frames[0].shape[:2]
    sizes = [[(length * percent + 50) // 100 for length in (width, height)] for percent in SIZES]
    stored, shown = {}, {}
    for format_ in FORMATS:
        stored[format_], shown[format_] = {}, {}
        for matrix, range_ in COLOURS:
            colour = {"matrix": matrix, "range": range_}
            yuv = [libzelt.convert(frame, "rgba8888", format_, **colour) for frame in frames]
            stored[format_][f"{matrix} {range_}"] = digest(*yuv)
            shown[format_][f"{matrix} {range_}"] = {
                f"{chroma} {filter_}": [
                    digest(*(libzelt.convert(frame, format_, "rgba8888", size, chroma=chroma, filter=filter_, **colour)
                             for frame in yuv))
                    for size in sizes]
                for chroma in ("replicated", "smooth") for filter_ in ("bilinear", "area")}
    return {"stored": stored, "shown": shown}


def photo():
    rgba = numpy.array(PIL.Image.open(SAMPLES / "coffee.png").convert("RGBA"))
    return {"source": [digest(rgba)], **conversions([rgba])}


def clip_frames():
    """The clip's frames, luma above chroma"""
    header, *frames = (SAMPLES / "pan420.y4m").read_bytes().split(b"FRAME\n")
    width, height = (int(word[1:]) for word in header.split()[1:3])
    return [numpy.frombuffer(frame, "u1").reshape(height * 3 // 2, width) for frame in frames]


def clip():
    frames = clip_frames()
    rgba = [libzelt.convert(frame, "yuv420", "rgba8888", matrix="bt601", range="full") for frame in frames]
    return {"source": [digest(*frames), digest(*rgba)], **conversions(rgba)}


def motion():
    luma = [frame[:len(frame) * 2 // 3] for frame in clip_frames()]

    def field(before, now, block, reach, metric):
        if reach:
            vectors, costs = libzelt.motion(before, now, block, reach, metric)
        else:
            costs = libzelt.sad_map(before, now, block, metric)
            vectors = numpy.zeros((*costs.shape, 2), "<i2")
        return digest(vectors.astype("<i2"), costs.astype("<u4"))

    def fields(gap, block, reach, metric):
        return [field(before, now, block, reach, metric) for before, now in zip(luma, luma[gap:])]

    return {metric: {gap: {block: {reach: fields(gap, block, reach, metric) for reach in REACHES}
                           for block in BLOCKS} for gap in GAPS} for metric in ("sad", "satd")}


def key_frames(name):
    """Sizes of frames, and whether they are key frames; lengths of units give way to start codes."""
    def with_start_codes(data):
        at = 0
        while at < len(data):
            size = int.from_bytes(data[at:at + 4], "big")
            data[at:at + 4] = b"\0\0\0\1"
            at += 4 + size
        return bytes(data)

    with av.open(str(SAMPLES / name)) as file:
        packets = [bytes(packet) for packet in file.demux(file.streams.video[0]) if packet.size]
        codec = file.streams.video[0].codec_context.name
    units = [with_start_codes(bytearray(packet)) if name.endswith("mp4") else packet for packet in packets]
    return digest("".join(f"{len(unit)},{libzelt.is_keyframe(codec, unit):d}\n" for unit in units).encode())


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    os.environ["LIBZELT"] = sys.argv[1]
    sys.path.insert(0, str(ROOT / "bindings/python"))
    import av
    import libzelt
    import numpy
    import PIL.Image
    table = {"sizes": SIZES, "blocks": BLOCKS, "reaches": REACHES, "gaps": GAPS,
             "convert": {"photo": photo(), "clip": clip()}, "motion": motion(),
             "frames": {name: key_frames(name) for name in CODED}}
    print(json.dumps(table, separators=(",", ":")))
