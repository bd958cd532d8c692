# SPDX-License-Identifier: MIT
"""Pixel formats: their names, and what arrays hold a picture of each."""
from __future__ import annotations

from dataclasses import dataclass
from functools import cached_property
from operator import index
from typing import Any, Sequence

import numpy as np

BYTE, WORD = np.dtype("u1"), np.dtype("<u2")
Size = tuple[int, int]


def pixels(size: Sequence[int]) -> Size:
    """(width, height) as plain integers, whatever a caller has them in"""
    if len(size) != 2:
        raise ValueError(f"a size is (width, height), not {len(size)} numbers")
    return index(size[0]), index(size[1])


@dataclass(frozen=True)
class Plane:
    """A plane of a format: its samples' type, how many there are in a pixel, and by what shifts it is smaller."""
    dtype: np.dtype[Any] = BYTE
    channels: int = 1
    right: int = 0
    down: int = 0

    def shape(self, width: int, height: int) -> tuple[int, ...]:
        """Of the plane's array in a picture of that size; halves are rounded up."""
        rows, columns = -(-height >> self.down), -(-width >> self.right)
        return (rows, columns) if self.channels == 1 else (rows, columns, self.channels)


@dataclass(frozen=True)
class Format:
    name: str  # as the tool says it
    alias: str  # FFmpeg's name of the same layout, or ""
    cs: int
    planes: tuple[Plane, ...]

    @cached_property
    def yuv(self) -> bool:
        return self.name[0] in "ynup"

    @cached_property
    def uniform(self) -> bool:
        """Whether an array of (planes, rows, columns) holds a picture."""
        return len(self.planes) > 1 and self.planes == self.planes[:1] * len(self.planes)

    @cached_property
    def stacks(self) -> bool:
        """Whether an array with chroma below luma holds a picture of even size, as PyAV and OpenCV give 4:2:0."""
        return len(self.planes) > 1 and all(p.right and p.down for p in self.planes[1:])

    def check_size(self, width: int, height: int) -> None:
        if width < 1 or height < 1:
            raise ValueError(f"a picture has at least one pixel, not {width} x {height}")
        if self.name in ("yuyv", "uyvy") and width % 2:
            raise ValueError(f"pixels of {self.name} come in pairs: a width of {width} is odd")

    def describe(self) -> str:
        """What may hold a picture, for messages"""
        first = self.planes[0]
        kind = "16-bit" if first.dtype == WORD else "8-bit"
        if len(self.planes) == 1:
            return f"a {kind} array of shape {'(H, W)' if first.channels == 1 else f'(H, W, {first.channels})'}"
        ways = [f"a list of {len(self.planes)} planes"]
        if self.uniform:
            ways.append(f"a {kind} array of shape ({len(self.planes)}, H, W)")
        if self.stacks:
            ways.append(f"a {kind} array of shape (H * 3 / 2, W) for even sizes")
        return " or ".join(ways)


def _planar(count: int, right: int = 0, down: int = 0, dtype: np.dtype[Any] = BYTE) -> tuple[Plane, ...]:
    chroma = Plane(dtype, 1, right, down)
    return (Plane(dtype), chroma, chroma, Plane(dtype))[:count]


def _packed(channels: int) -> tuple[Plane, ...]:
    return (Plane(BYTE, channels),)


FORMATS = (
    Format("yuv400", "gray", 10, _planar(1)),
    Format("yuv420", "yuv420p", 11, _planar(3, 1, 1)),
    Format("yuv422", "yuv422p", 12, _planar(3, 1, 0)),
    Format("yuv440", "yuv440p", 18, _planar(3, 0, 1)),
    Format("yuv444", "yuv444p", 13, _planar(3)),
    Format("yuv444a8", "yuva444p", 43, _planar(4)),
    Format("nv12", "", 800, (Plane(), Plane(BYTE, 2, 1, 1))),
    Format("nv21", "", 801, (Plane(), Plane(BYTE, 2, 1, 1))),
    Format("nv16", "", 802, (Plane(), Plane(BYTE, 2, 1, 0))),
    Format("yuyv", "yuyv422", 820, _packed(2)),
    Format("uyvy", "uyvy422", 821, _packed(2)),
    Format("p010", "yuv420p10le", 60, _planar(3, 1, 1, WORD)),
    Format("p210", "yuv422p10le", 61, _planar(3, 1, 0, WORD)),
    Format("p410", "yuv444p10le", 62, _planar(3, dtype=WORD)),
    Format("p010le", "", 810, (Plane(WORD), Plane(WORD, 2, 1, 1))),
    Format("p210le", "", 811, (Plane(WORD), Plane(WORD, 2, 1, 0))),
    Format("rgb565", "rgb565le", 200, (Plane(WORD),)),
    Format("rgb888", "rgb24", 400, _packed(3)),
    Format("bgr888", "bgr24", 840, _packed(3)),
    Format("rgba5658", "", 430, _packed(3)),
    Format("rgba8888", "rgba", 500, _packed(4)),
    Format("bgra8888", "bgra", 501, _packed(4)),
    Format("argb8888", "argb", 502, _packed(4)),
    Format("r8g8b8", "", 600, _planar(3)),
    Format("r8g8b8a8", "", 700, _planar(4)),
    Format("r10g10b10", "", 603, _planar(3, dtype=WORD)),
    Format("rgb565a8", "", 650, (Plane(WORD), Plane())),
)
_by_name = {name: f for f in FORMATS for name in (f.name, f.alias) if name}


def named(name: str) -> Format:
    """The format of a name, the tool's or FFmpeg's."""
    try:
        return _by_name[name]
    except (KeyError, TypeError):
        raise ValueError(f"no format is called {name!r}; there are {', '.join(f.name for f in FORMATS)}") from None


def formats() -> dict[str, str]:
    """The names of all formats, each with FFmpeg's name of the same layout, or "".

    >>> formats()["rgb888"], formats()["nv12"]
    ('rgb24', '')
    """
    return {f.name: f.alias for f in FORMATS}
