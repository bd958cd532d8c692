# SPDX-License-Identifier: MIT
"""Who keeps whose memory, and that none is lost."""
import gc
import resource
import weakref
from pathlib import Path

import numpy as np
import pytest

import libzelt
from conftest import random_planes


def test_a_prepared_call_keeps_its_arrays():
    source = np.full((3, 64, 64), 128, np.uint8)
    out = np.zeros((64, 64, 3), np.uint8)
    alive = weakref.ref(source), weakref.ref(out)
    call = libzelt.Converter("yuv444", "rgb888", (64, 64)).prepare(source, out)
    del source, out
    gc.collect()
    assert (call() == 128).all() and all(array() is not None for array in alive)
    del call
    gc.collect()
    assert not any(array() is not None for array in alive)


def test_a_reader_keeps_its_bytes():
    data = np.full(1 << 20, 0xa5, np.uint8)
    alive = weakref.ref(data)
    reader = libzelt.BitReader(data)
    del data
    gc.collect()
    reader.skip(8 * (1 << 20) - 8)
    assert reader.read(8) == 0xa5
    del reader
    assert alive() is None


@pytest.mark.parametrize("name, pixel", [("yuv400", 1), ("yuv420", 1), ("p410", 2), ("rgb888", 3),
                                         ("bgra", 4), ("rgb565", 2)])
def test_planes_outlive_their_picture(name, pixel):
    picture = libzelt.Picture(name, (50, 30), align=16, border=16)
    assert [plane.shape for plane in picture.planes] == [plane.shape for plane in random_planes(name, 50, 30)]
    assert picture.padded[0].shape[:2] == (64, 96) and picture.padded[0].strides[0] == 96 * pixel
    planes, values = picture.planes, random_planes(name, 50, 30)
    block = weakref.ref(picture._block)
    del picture
    for plane, value in zip(planes, values):
        plane[:] = value
    [np.zeros(1 << 18, np.uint8) for _ in range(9)]
    assert all((plane == value).all() for plane, value in zip(planes, values))
    views = [plane[1:, 2:] for plane in planes]
    del plane, planes
    gc.collect()
    assert block() is not None
    del views
    assert block() is None  # at once: nothing waits for the garbage collector


@pytest.mark.parametrize("name, size, border", [("yuv400", (48, 32), 24), ("yuv420", (64, 48), 32),
                                                ("yuv444", (8, 8), 80), ("p010", (30, 20), 12),
                                                ("yuv422", (64, 10), 16)])
def test_borders(name, size, border):
    picture = libzelt.Picture(name, size, border=border)
    for plane, value in zip(picture.planes, random_planes(name, *size)):
        plane[:] = value
    picture.expand()
    for plane, padded in zip(picture.planes, picture.padded):
        assert (padded == np.pad(plane, (padded.shape[1] - plane.shape[1]) // 2, "edge")).all()


def test_pictures_refuse():
    for call, text in ((lambda: libzelt.Picture("nv12", (8, 8)), "no image buffers of nv12"),
                       (lambda: libzelt.Picture("yuv420", (8, 8), align=12), "power of two"),
                       (lambda: libzelt.Picture("yuv420", (8, 0)), "at least one pixel"),
                       (lambda: libzelt.Picture("yuv420", (8, 8), border=8).expand(), "border of 4 samples"),
                       (lambda: libzelt.Picture("yuv400", (7, 8), border=8).expand(), "rows of 23 bytes"),
                       (lambda: libzelt.Picture("rgb888", (8, 8), border=8).expand(), "no planes whose border")):
        with pytest.raises(ValueError, match=text):
            call()
    with pytest.raises(MemoryError):
        libzelt.Picture("yuv444", (40000, 40000))


@pytest.mark.parametrize("capacity", [1, 2, 7, 64])
def test_a_ring_beside_a_queue(capacity):
    ring, queue, random = libzelt.Ring(capacity), b"", np.random.default_rng(13)
    for count in random.integers(0, capacity + 3, 2000).tolist():
        if random.random() < .5:
            data = random.bytes(count)
            assert ring.write(data) == min(count, capacity - len(queue))
            queue = (queue + data)[:capacity]
        else:
            assert ring.read(count) == queue[:count]
            queue = queue[count:]
        assert (len(ring), ring.free) == (len(queue), capacity - len(queue))
    for call in lambda: ring.read(-1), lambda: libzelt.Ring(0):
        with pytest.raises(ValueError):
            call()


def test_a_million_calls_leave_no_memory_behind():
    yuv, out = np.full((3, 16, 16), 90, np.uint8), np.zeros((16, 16, 3), np.uint8)
    converter = libzelt.Converter("yuv444", "rgb888", (16, 16))
    prepared = converter.prepare(yuv, out)

    def refused():
        with pytest.raises(ValueError):
            converter(yuv[:, :3])

    calls = ((prepared, 870_000), (lambda: converter(yuv), 20_000), (lambda: libzelt.sad(yuv[0], yuv[1]), 20_000),
             (lambda: libzelt.BitReader(b"abc").read_ue(), 20_000), (lambda: libzelt.BitWriter().getvalue(), 20_000),
             (lambda: libzelt.Picture("yuv420", (64, 64)).planes, 20_000), (lambda: libzelt.Ring(4096), 20_000),
             (lambda: libzelt.md5(yuv, "yuv444"), 8_000), (refused, 2_000))
    for call, _ in calls:
        for _ in range(1000):
            call()
    page, resident = resource.getpagesize(), lambda: int(Path("/proc/self/statm").read_text().split()[1])
    before = resident()
    for call, count in calls:
        for _ in range(count):
            call()
    assert (resident() - before) * page < 2 << 20
