# SPDX-License-Identifier: MIT
"""Metrics, motion, digests, bits and media types, beside models of their own."""
import hashlib
import re
from collections import Counter

import numpy as np
import pytest

import libzelt
from conftest import ROOT, flat, random_planes
from libzelt import metrics


def hadamard_cost(d):
    h = np.array([[1, 1, 1, 1], [1, -1, 1, -1], [1, 1, -1, -1], [1, -1, -1, 1]])
    tiles = d.reshape(d.shape[0] // 4, 4, d.shape[1] // 4, 4).swapaxes(1, 2)
    return int((abs(h @ tiles @ h).sum((2, 3)) // 2).sum())


MODELS = {libzelt.sad: lambda d: int(abs(d).sum()), libzelt.ssd: lambda d: int((d * d).sum()),
          libzelt.satd: hadamard_cost}


@pytest.mark.parametrize("most", [metrics._MOST, 200_000], ids=["whole", "in bands"])
@pytest.mark.parametrize("dtype, low, high", [("u1", 0, 255), ("u2", 0, 1023), ("i2", -500, 500), ("u2", 9000, 9900)])
@pytest.mark.parametrize("shape", [(4, 4), (8, 24), (36, 68), (5, 3), (7, 131), (130, 67)])
def test_costs(monkeypatch, shape, dtype, low, high, most):
    monkeypatch.setattr(metrics, "_MOST", most)
    random = np.random.default_rng(3)
    a, b = random.integers(low, high + 1, (2, *shape), dtype)
    extreme = np.full(shape, low, dtype), np.full(shape, high, dtype)
    for first, second in ((a, b), extreme, (a[::-1], b), (np.pad(a, 3)[3:-3, 3:-3], b)):
        difference = first.astype(np.int64) - second
        for function, model in MODELS.items():
            if function is not libzelt.satd or not (shape[0] % 4 or shape[1] % 4):
                assert function(first, second) == model(difference), function.__name__


@pytest.mark.parametrize("bits, function", [(15, libzelt.sad), (11, libzelt.satd), (14, libzelt.ssd)])
def test_costs_of_words_are_exact_or_refused(bits, function):
    a, b = np.zeros((64, 64), np.uint16), np.full((64, 64), (1 << bits) - 1, np.uint16)
    assert function(a, b) == MODELS[function](a.astype(np.int64) - b)
    with pytest.raises(ValueError, match=f"exact for differences of {bits} bits"):
        function(a, b + 1)


@pytest.mark.parametrize("metric", metrics.METRICS)
@pytest.mark.parametrize("block", metrics.BLOCKS)
def test_maps(metric, block):
    a, b = np.random.default_rng(5).integers(0, 256, (2, 70, 100), np.uint8)
    costs = libzelt.sad_map(a, b, block, metric)
    pad = [(0, -size % block) for size in a.shape]
    difference = np.pad(a, pad, "edge").astype(np.int64) - np.pad(b, pad, "edge")
    assert costs.shape == tuple(-(-size // block) for size in a.shape)
    for (y, x), cost in np.ndenumerate(costs):
        tile = difference[y * block:(y + 1) * block, x * block:(x + 1) * block]
        assert cost == MODELS[getattr(libzelt, metric)](tile)


def scene(dx=0, dy=0, height=130, width=170):
    y, x = np.mgrid[:height, :width]
    y, x = y + dy, x + dx
    return (128 + 60 * np.sin(x * .09) * np.cos(y * .05) + 60 * np.sin(y * .08) * np.cos(x * .03)).astype(np.uint8)


@pytest.mark.parametrize("metric", metrics.METRICS)
def test_motion(monkeypatch, metric):
    before, now = scene(), scene(6, -4)
    looked, costs_of = Counter(), metrics._block_costs

    def counting(*arguments):
        costs = costs_of(*arguments)

        def count(a, b):
            looked.update(a.tolist())
            return costs(a, b)
        return count

    monkeypatch.setattr(metrics, "_block_costs", counting)
    vectors, costs = libzelt.motion(before, now, metric=metric)
    assert vectors.shape == (9, 11, 2) and len(looked) == 99 and max(looked.values()) <= 40
    inside = vectors[1:-2, 1:-2]
    assert (inside == (6, -4)).all(2).mean() > .8
    # what a vector is said to cost it costs
    padded = np.pad(before, 32 + 16, "edge")
    whole = np.pad(now, ((0, 14), (0, 6)), "edge")
    for (y, x), cost in np.ndenumerate(costs):
        dx, dy = vectors[y, x]
        there = padded[48 + 16 * y + dy:, 48 + 16 * x + dx:][:16, :16]
        assert cost == getattr(libzelt, metric)(np.ascontiguousarray(there), whole[16 * y:, 16 * x:][:16, :16])


def test_motion_starts_where_it_is_told_and_stays_in_reach():
    before, now = scene(), scene(25, 12)
    assert (libzelt.motion(before, now)[0][2:5, 2:5] != (25, 12)).any()
    for start in ((25, 12), np.full((9, 11, 2), (25, 12))):
        assert (libzelt.motion(before, now, start=start)[0][2:5, 2:5] == (25, 12)).all()
    assert abs(libzelt.motion(before, now, reach=3)[0]).max() == 3
    assert not libzelt.motion(now, now)[1].any()


@pytest.mark.parametrize("call, text", [
    (lambda a: libzelt.sad(a, a[:2]), "the pictures differ"),
    (lambda a: libzelt.sad(a.astype(float), a.astype(float)), "not float64"),
    (lambda a: libzelt.sad(a.view(np.int8), a.view(np.int8)), "not int8"),
    (lambda a: libzelt.sad(a[:0], a[:0]), r"not uint8 of \(0, 8\)"),
    (lambda a: libzelt.ssd(a[:, ::2], a[:, ::2]), "ascontiguousarray"),
    (lambda a: libzelt.satd(a[:3], a[:3]), "8 x 3 are no multiples of 4"),
    (lambda a: libzelt.sad_map(a, a, 12), "block is one of 4, 8, 16, 32, 64, not 12"),
    (lambda a: libzelt.sad_map(a, a, 8, "psnr"), "metric is one of 'sad', 'satd', 'ssd'"),
    (lambda a: libzelt.motion(a, a, reach=0), "reach is from 1"),
    (lambda a: libzelt.motion(a.astype(np.uint16), a.astype(np.uint16)), "samples are uint8 of shape"),
])
def test_metrics_refuse(call, text):
    with pytest.raises(ValueError, match=text):
        call(np.zeros((8, 8), np.uint8))


def test_digests(zelt, samples):
    random = np.random.default_rng(7)
    for size in (0, 1, 55, 56, 64, 1000, 100_000):
        data = random.bytes(size)
        assert libzelt.md5(data) == hashlib.md5(data).hexdigest()
    wide = random.integers(0, 256, (20, 33), np.uint8)
    for view in (wide[:, :30], wide[::-1], wide[::2, 1:]):
        assert libzelt.md5(view) == hashlib.md5(view.tobytes()).hexdigest()
    planes = random_planes("p010le", 7, 5)
    assert libzelt.md5(planes, "p010le") == hashlib.md5(flat(planes)).hexdigest()

    clip = samples / "pan420.y4m"
    head, *frames = clip.read_bytes().split(b"FRAME\n")
    fields = {field[:1]: field[1:] for field in head.decode().split()}
    pictures = [np.frombuffer(frame, np.uint8).reshape(144 * 3 // 2, 176) for frame in frames]
    lines = libzelt.framemd5(pictures, "yuv420p", fields["F"].replace(":", "/"), fields["A"].replace(":", "/"))
    assert list(lines) == zelt("md5", "-i", clip, "--per-frame").splitlines()
    with pytest.raises(ValueError, match="picture 1 is 6 x 4 pixels, the first 4 x 4"):
        list(libzelt.framemd5([np.zeros((4, 4), np.uint8), np.zeros((4, 6), np.uint8)], "gray"))


def ue(value):
    digits = f"{value + 1:b}"
    return "0" * (len(digits) - 1) + digits


def packed(text):
    return int(text.ljust(-(-len(text) // 8) * 8, "0") or "0", 2).to_bytes(-(-len(text) // 8), "big")


def test_bits_beside_text_of_ones_and_zeros():
    """Fields and codes of every kind in any order, written and read, from every alignment"""
    random = np.random.default_rng(11)
    kinds = {
        "field": lambda v, n: f"{v & ((1 << n) - 1):0{n}b}" if n else "",
        "ue": lambda v, n: ue(v % 65535),
        "se": lambda v, n: ue(2 * (v % 32768) - 1 if v % 32768 and n % 2 else 2 * (v % 32768)),
        "te": lambda v, n: str(1 - v % 2) if n % 2 else ue(v % 65535),
    }
    writer, text, steps = libzelt.BitWriter(16), "", []
    for kind, value, n in zip(random.choice(list(kinds), 3000), random.integers(0, 2**32, 3000).tolist(),
                              random.integers(0, 33, 3000).tolist()):
        value = value >> random.integers(0, 32)
        code = kinds[kind](value, n)
        text += code
        if kind == "field":
            steps.append(("read", (n,), value & ((1 << n) - 1)))
            writer.write(value & ((1 << n) - 1), n)
        elif kind == "te":
            largest = 1 if n % 2 else 65534
            steps.append(("read_te", (largest,), value % (2 if n % 2 else 65535)))
            writer.write_te(steps[-1][2], largest)
        else:
            value = value % 65535 if kind == "ue" else (value % 32768) * (1 if n % 2 else -1)
            steps.append((f"read_{kind}", (), value))
            getattr(writer, f"write_{kind}")(value)
    assert writer.bit_length == len(text) and writer.getvalue() == packed(text)
    reader, position = libzelt.BitReader(writer.getvalue()), 0
    for method, arguments, value in steps:
        ahead = min(32, reader.bits_left)
        assert reader.peek(ahead) == int("0" + text.ljust(len(text) + 8, "0")[position:][:ahead], 2)
        assert getattr(reader, method)(*arguments) == value, (method, arguments)
        position = reader.position
    assert position == len(text)
    reader.align()
    assert reader.bits_left == 0


@pytest.mark.parametrize("offset", range(40))
@pytest.mark.parametrize("kind", ["read_ue", "read_se"])
def test_reading_stops_before_the_end_and_stays(offset, kind):
    code = ue(1000)  # of 19 bits, cut where a byte ends
    for length in range(-offset % 8, len(code), 8):
        reader = libzelt.BitReader(packed("1" * offset + code[:length]))
        reader.skip(offset)
        for _ in range(2):
            with pytest.raises(EOFError, match="ends within an Exp-Golomb code"):
                getattr(reader, kind)()
            assert reader.position == offset
            with pytest.raises(EOFError, match=f"{length + 1} bits are wanted and {length} left"):
                reader.read(length + 1)
        assert reader.read(length) == int("0" + code[:length], 2)


def test_bits_refuse():
    with pytest.raises(ValueError, match="longer than 31 bits"):
        libzelt.BitReader(bytes(3) + b"\xff" * 9).read_ue()
    for call, error in ((lambda: libzelt.BitReader(b"ab").read(33), ValueError),
                        (lambda: libzelt.BitReader(b"ab").skip(-1), ValueError),
                        (lambda: libzelt.BitReader(b"ab").skip(17), EOFError),
                        (lambda: libzelt.BitReader(b"").read(1), EOFError),
                        (lambda: libzelt.BitReader(b"").read_ue(), EOFError),
                        (lambda: libzelt.BitReader(b"ab").read_te(0), ValueError),
                        (lambda: libzelt.BitWriter().write(8, 3), ValueError),
                        (lambda: libzelt.BitWriter().write(0, 33), ValueError),
                        (lambda: libzelt.BitWriter().write_ue(65535), ValueError),
                        (lambda: libzelt.BitWriter().write_se(-32768), ValueError),
                        (lambda: libzelt.BitWriter().write_te(2, 1), ValueError)):
        with pytest.raises(error):
            call()


def test_media_types_are_those_of_the_header():
    text = (ROOT / "include/zelt/fcc2mt.h").read_text()
    assert {m.name: m.value for m in libzelt.MediaType} == \
        {name: int(value) for name, value in re.findall(r"ZELT_MT_(\w+) = (\d+)", text)}
    version = re.findall(r"#define ZELT_VERSION_\w+ (\d+)", (ROOT / "include/zelt/common.h").read_text())
    assert libzelt.__version__ == ".".join(version)


def test_media():
    kind = libzelt.MediaType
    for code, where, want in (("hvc1", None, kind.VID_HEVC), (b"mp4a", "audio", kind.AUD_AAC),
                              (1, "audio", kind.AUD_PCM), (1, None, kind.AUD_PCM), ("divx", "drm", kind.DRM_DIVX),
                              ("none", None, kind.UNKNOWN),
                              ("none", "video", kind.VID_UNKNOWN), ("tx3g", "subtitle", kind.SUB_TX3G)):
        assert libzelt.media_type(code, where) is want
    start = bytes([0, 0, 0, 1])
    for name, data, want in (("h264", start + b"\x41", False), (kind.VID_H264, start + b"\x65", True),
                             ("hfyu", b"x", True), ("hevc", start + b"\x26\x01", True), ("vp8", b"\0" * 9, False),
                             ("wmv1", b"", False)):
        assert libzelt.is_keyframe(name, data) is want
    for call, text in ((lambda: libzelt.media_type("abc"), "four characters, not 3"),
                       (lambda: libzelt.media_type("abcd", "text"), "kind is one of 'video'"),
                       (lambda: libzelt.is_keyframe("h265", b""), "no video is called 'h265'; there are mpeg4, h263")):
        with pytest.raises(ValueError, match=text):
            call()
