# SPDX-License-Identifier: MIT
"""Conversion and resizing: beside the tool's bytes and real formulas, and in every form a picture can have."""
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import libzelt
from conftest import flat, random_planes
from libzelt.formats import FORMATS

W, H = 38, 20


FULL = ("--range", "full", "--matrix", "bt601", "--chroma", "replicate", "--filter", "bilinear")


def test_pairs_give_the_bytes_of_the_tool(zelt, tmp_path):
    """Every pair that the tool converts in one step, of one size and, where that has a star, of two"""
    rows = zelt("formats").split("too:\n")[1].split("\n\n")[0].splitlines()
    file, out, tried = tmp_path / "in.raw", tmp_path / "out.raw", 0
    for source, *targets in (row.split() for row in rows):
        picture = random_planes(source, W, H)
        file.write_bytes(flat(picture))
        for mark in targets:
            target = mark.rstrip("*")
            if target not in libzelt.conversions(source):
                continue  # the tool puts bytes of RGB in another order by itself
            for size in [(W, H)] + [(26, 31)] * mark.endswith("*"):
                zelt("convert", "-i", file, "--raw", f"{W}x{H}:{source}", "-o", out, "--pix-fmt", target, "--size",
                     f"{size[0]}x{size[1]}", *FULL)
                result = libzelt.convert(picture, source, target, size, range="full")
                assert flat(result) == out.read_bytes(), (source, target, size)
                tried += 1
        others = {format.name for format in FORMATS} - {mark.rstrip("*") for mark in targets} - {source}
        for target in others - set(libzelt.conversions(source)):
            with pytest.raises(ValueError, match=f"nothing converts {source} to {target}; {source} can become"):
                libzelt.convert(picture, source, target)
    assert tried > 400


@pytest.mark.parametrize("name", ["yuv444", "yuv444a8", "rgb888", "rgba8888", "bgra8888", "rgb565", "r8g8b8",
                                  "rgb565a8"])
def test_resizing_gives_the_bytes_of_the_tool(zelt, tmp_path, name):
    picture = random_planes(name, W, H)
    (tmp_path / "in.raw").write_bytes(flat(picture))
    for size in (19, 10), (61, 33), (5, 20):
        zelt("convert", "-i", tmp_path / "in.raw", "--raw", f"{W}x{H}:{name}", "-o", tmp_path / "out.raw", "--pix-fmt",
             name, "--size", f"{size[0]}x{size[1]}", "--filter", "bilinear")
        resized, out = libzelt.resize(picture, size, format=name), libzelt.empty(name, size)
        assert libzelt.resize(picture, size, out, format=name) is out and flat(out) == flat(resized)
        assert flat(resized) == (tmp_path / "out.raw").read_bytes()
        if name == "yuv444":
            assert (libzelt.resize(picture[0], size) == resized[0]).all()


def full_size(name, planes):
    """Y, U, V of every pixel as floating point, 8 bits' scale"""
    if name in ("yuyv", "uyvy"):
        pixels = planes[0] if name == "yuyv" else planes[0][:, :, ::-1]
        return [pixels[:, :, 0], *(pixels[:, i::2, 1].repeat(2, 1) for i in (0, 1))]
    y, *rest = planes
    u, v = (rest[0][:, :, 0], rest[0][:, :, 1]) if len(rest) == 1 else rest
    if name == "nv21":
        u, v = v, u
    shift = {"p010": 0, "p010le": 6}.get(name)
    down, across = y.shape[0] // u.shape[0], y.shape[1] // u.shape[1]
    planes = [y, *(c.repeat(down, 0).repeat(across, 1) for c in (u, v))]
    return planes if shift is None else [(p >> shift).astype(float) / 4 for p in planes]


@pytest.mark.parametrize("matrix, kr, kb", [("bt601", .299, .114), ("bt709", .2126, .0722), ("bt2020", .2627, .0593)])
@pytest.mark.parametrize("range", ["limited", "full"])
@pytest.mark.parametrize("name", ["yuv420", "yuv422p", "yuv440", "yuv444", "nv12", "nv21", "nv16", "yuyv", "uyvy422",
                                  "p010", "p010le"])
def test_decoder_layouts_follow_the_formula(name, matrix, kr, kb, range):
    planes = random_planes(name, W, H)
    y, u, v = (c.astype(float) for c in full_size(name.removesuffix("p").removesuffix("422") if name[0] in "yu" and
                                                  name != "yuv422p" else name, planes))
    y, u, v = ((y - 16) * 255 / 219, (u - 128) * 255 / 224, (v - 128) * 255 / 224) if range == "limited" else \
        (y, u - 128, v - 128)
    if name[0] == "p" and range == "full":
        y, u, v = (c * 255 / 255.75 for c in (y, u, v))
    kg = 1 - kr - kb
    model = np.stack([y + 2 * (1 - kr) * v, y - 2 * (1 - kb) * kb / kg * u - 2 * (1 - kr) * kr / kg * v,
                      y + 2 * (1 - kb) * u], 2).clip(0, 255)
    rgb = libzelt.convert(planes, name, "rgb888", matrix=matrix, range=range)
    assert abs(rgb - model).max() < (.7 if (name, matrix, range) == ("yuv444", "bt601", "full") else .6)
    assert (libzelt.convert(planes, name, "bgr24", matrix=matrix, range=range) == rgb[:, :, ::-1]).all()


def test_defaults_and_requests():
    yuv = np.stack(random_planes("yuv444", W, H))
    rgb = libzelt.convert(yuv, "yuv444", "rgb888")
    assert (rgb == libzelt.convert(yuv, "yuv444p", "rgb24", matrix="bt601", range="full")).all()
    assert (rgb[:, :, ::-1] == libzelt.convert(yuv, "yuv444", "bgr888")).all()
    assert (rgb != libzelt.convert(yuv, "yuv444", "rgb888", range="limited")).any()
    nv12 = random_planes("nv12", W, H)
    plain = libzelt.convert(nv12, "nv12", "rgb888")
    assert (plain == libzelt.convert(nv12, "nv12", "rgb888", range="limited")).all()
    assert (plain != libzelt.convert(nv12, "nv12", "rgb888", chroma="smooth")).any()
    for turn, turned in ((0, plain), (90, np.rot90(plain, -1)), (180, np.rot90(plain, 2)), (270, np.rot90(plain))):
        assert (libzelt.convert(nv12, "nv12", "rgb888", turn=turn) == turned).all()
    assert (libzelt.convert(nv12, "nv12", "rgb888", mirror=True) == plain[:, ::-1]).all()
    grey = nv12[0]
    means = grey.reshape(H // 4, 4, W // 2, 2).mean((1, 3))
    assert abs(libzelt.resize(grey, (W // 2, H // 4), filter="area") - means).max() <= .5
    assert libzelt.resize(nv12, np.array((18, 10)), format="nv12").shape == (15, 18)
    assert libzelt.convert(yuv, "yuv444", "rgb888", [np.int64(19), 10]).shape == (10, 19, 3)


def test_every_form_of_a_picture():
    y, u, v = planes = random_planes("yuv420", W, H)
    stacked = np.concatenate([plane.ravel() for plane in planes]).reshape(H * 3 // 2, W)
    want = libzelt.convert(planes, "yuv420", "rgb888")
    wide = np.zeros((H, W + 5), np.uint8)
    wide[:, :W] = y
    buffer = libzelt.Picture("yuv420p", (W, H), align=16, border=32)
    for view, plane in zip(buffer.planes, planes):
        view[:] = plane
    for picture in (stacked, memoryview(stacked), [wide[:, :W], u, v], tuple(planes), buffer, [y.data, u, v]):
        assert (libzelt.convert(picture, "yuv420", "rgb888") == want).all()
    upside_down = [plane[::-1] for plane in planes]
    assert (libzelt.convert(upside_down, "yuv420", "rgb888") == want[::-1]).all()
    assert [p.tobytes() for p in libzelt.planes(upside_down, "yuv420")] == [p.tobytes() for p in upside_down]
    assert [(p == q).all() for p, q in zip(libzelt.planes(stacked, "yuv420"), planes)] == [True] * 3

    nv12 = libzelt.convert(planes, "yuv420", "nv12")
    assert nv12.shape == (H * 3 // 2, W) and (nv12[H:] == np.stack([u, v], 2).reshape(-1, W)).all()
    assert (libzelt.convert(nv12, "nv12", "yuv420") == stacked).all()
    gaps = np.zeros((H * 3 // 2, W + 3), np.uint8)
    gaps[:, :W] = nv12
    assert (libzelt.convert(gaps[:, :W], "nv12", "yuv420") == stacked).all()
    odd = libzelt.convert([p[:p.shape[0], :p.shape[1]] for p in random_planes("yuv420", 5, 3)], "yuv420", "nv12")
    assert [p.shape for p in odd] == [(3, 5), (2, 3, 2)]

    rgb565 = libzelt.convert(planes, "yuv420", "rgb565")
    out = np.zeros((H, W, 2), np.uint8)
    assert libzelt.convert(planes, "yuv420", "rgb565", out=out) is out and (out.view("<u2")[:, :, 0] == rgb565).all()
    frame = np.zeros((H + 2, W + 2, 3), np.uint8)
    libzelt.convert(planes, "yuv420", "rgb888", out=frame[1:-1, 1:-1])
    assert (frame[1:-1, 1:-1] == want).all() and not frame[0].any() and not frame[:, -1].any()


def test_frames_of_pyav_are_read_in_place():
    av = pytest.importorskip("av")
    picture = libzelt.convert(random_planes("rgb888", 34, 18), "rgb888", "yuv420")  # in rows that FFmpeg pads
    frame = av.VideoFrame.from_ndarray(picture, format="yuv420p")
    for name in ("yuv420p", "nv12", "yuyv422", "rgb24", "gray"):
        frame = frame.reformat(format=name)
        array = frame.to_ndarray()
        views = libzelt.planes(frame, name)
        assert flat(views) == array.tobytes() and not any(view.flags.owndata for view in views)
        if name != "rgb24":
            assert (libzelt.convert(frame, name, "rgb24") == libzelt.convert(array, name, "rgb24")).all()


class Texts:
    """Pictures for the refusals"""
    grey, rgb, yuv = np.zeros((4, 6), np.uint8), np.zeros((4, 6, 3), np.uint8), np.zeros((3, 4, 6), np.uint8)
    ten, fixed = np.zeros((3, 4, 6), np.uint16), np.zeros((4, 6, 3), np.uint8)
    fixed.flags.writeable = False


T = Texts


@pytest.mark.parametrize("call, error, text", [
    (lambda: libzelt.convert(T.grey, "yuv999", "rgb888"), ValueError, "no format is called 'yuv999'; there are yuv400"),
    (lambda: libzelt.convert(T.rgb, "rgb888", "rgb565"), ValueError, "In two steps it goes over yuv444"),
    (lambda: libzelt.convert(T.ten, "p410", "p010", (3, 2)), ValueError, "no other size of 10 bits"),
    (lambda: libzelt.convert(T.grey.T, "gray", "rgb888"), ValueError, "side by side: pass numpy.ascontiguousarray"),
    (lambda: libzelt.convert(T.yuv[:, :, ::2], "yuv444", "rgb888"), ValueError, "ascontiguousarray"),
    (lambda: libzelt.convert(T.grey, "yuv444", "rgb888"), ValueError, r"a list of 3 planes or .* \(3, H, W\)"),
    (lambda: libzelt.convert(T.yuv.astype(float), "yuv444", "rgb888"), ValueError, "uint8 .* not float64"),
    (lambda: libzelt.convert([T.grey] * 2, "yuv444", "rgb888"), ValueError, "not 2 arrays"),
    (lambda: libzelt.convert([T.grey, T.grey, T.grey[:2]], "yuv444", "rgb888"), ValueError, "plane 2 of the picture"),
    (lambda: libzelt.convert(T.yuv[:, :0], "yuv444", "rgb888"), ValueError, "at least one pixel"),
    (lambda: libzelt.convert(np.zeros((5, 6), np.uint8), "nv12", "rgb888"), ValueError, "pass a list of planes"),
    (lambda: libzelt.convert(np.zeros((6, 9), np.uint8)[:, :6], "yuv420", "rgb888"), ValueError, "rows .* have gaps"),
    (lambda: libzelt.convert(np.zeros((4, 5, 2), np.uint8), "yuyv", "rgb888"), ValueError, "5 is odd"),
    (lambda: libzelt.convert(np.zeros((4, 6), ">u2"), "rgb565", "yuv444"), ValueError, "uint16"),
    (lambda: libzelt.convert(7, "gray", "rgb888"), TypeError, "int is neither an array nor has it a buffer"),
    (lambda: libzelt.convert(T.yuv, "yuv444", "rgb888", out=T.fixed), ValueError, "read-only"),
    (lambda: libzelt.convert(T.yuv, "yuv444", "rgb888", out=T.rgb[:3]), ValueError, "6 x 3 pixels, the result 6 x 4"),
    (lambda: libzelt.convert(T.yuv, "yuv444", "r8g8b8", out=T.yuv), ValueError, "share memory"),
    (lambda: libzelt.convert(T.yuv, "yuv444", "rgb888", matrix="bt602"), ValueError, "matrix is one of 'bt601'"),
    (lambda: libzelt.convert(T.yuv, "yuv444", "rgb888", turn=45), ValueError, "turn is one of 0, 90, 180, 270"),
    (lambda: libzelt.convert(T.yuv, "yuv444", "rgb888", (0, 4)), ValueError, "at least one pixel"),
    (lambda: libzelt.convert(np.zeros((4, 6, 2), np.uint8), "yuyv", "uyvy", turn=90), ValueError, "turns"),
    (lambda: libzelt.convert(T.yuv, "yuv444", "rgb565a8", matrix="bt709"), ValueError, "full-range BT.601 alone"),
    (lambda: libzelt.Converter("gray", "rgb24", (6, 5))(T.grey), ValueError, "this converter is for 6 x 5"),
    (lambda: libzelt.resize(T.rgb, (3, 2), filter="area"), ValueError, "no area resizing of rgb888"),
    (lambda: libzelt.resize(T.yuv, (3, 2)), ValueError, "say it, format="),
    (lambda: libzelt.resize(T.rgb, (3, 0)), ValueError, "at least one pixel"),
    (lambda: libzelt.resize(T.rgb, (3, 2, 3)), ValueError, r"a size is \(width, height\), not 3 numbers"),
    (lambda: libzelt.resize(T.rgb, (3.5, 2)), TypeError, "float"),
])
def test_refusals_say_what_would_do(call, error, text):
    with pytest.raises(error, match=text):
        call()


def test_no_pair_writes_outside_its_result():
    for source in FORMATS:
        picture = random_planes(source.name, W, H)
        for target in map(lambda name: next(f for f in FORMATS if f.name == name), libzelt.conversions(source.name)):
            around = [np.full((plane.shape(W, H)[0] + 2, *plane.shape(W, H)[1:]), 77, plane.dtype)
                      for plane in target.planes]
            libzelt.convert(picture, source.name, target.name, out=[a[1:-1] for a in around])
            assert all((a[[0, -1]] == 77).all() for a in around), (source.name, target.name)


def test_threads_share_a_converter():
    converter = libzelt.Converter("nv12", "rgb888", (640, 360), (320, 180))
    frames = [np.concatenate([p.reshape(-1, 640) for p in random_planes("nv12", 640, 360, seed)]) for seed in range(8)]
    alone = [converter(frame).tobytes() for frame in frames]
    with ThreadPoolExecutor(8) as pool:
        together = list(pool.map(lambda n: converter(frames[n % 8]).tobytes(), range(64)))
    assert together == alone * 8
