# SPDX-License-Identifier: MIT
"""Costs of blocks and pictures, and where blocks come from."""
from __future__ import annotations

from itertools import repeat
from typing import Any, Callable, Iterator, Optional, Union

import numpy as np
import numpy.typing as npt

from ._library import library, quick
from .arrays import Array, address, as_array, row_stride

BLOCKS = (4, 8, 16, 32, 64)
METRICS = ("sad", "satd", "ssd")
_MOST = 2**31 - 1

Counts = npt.NDArray[np.int64]


def _pair(a: Any, b: Any, sizes: tuple[int, ...] = (1, 2)) -> tuple[Array, Array]:
    """Two arrays of (rows, columns) with the same samples of so many bytes, each row in one piece"""
    first, second = as_array(a), as_array(b)
    if first.shape != second.shape or first.dtype != second.dtype:
        raise ValueError(f"the pictures differ: {first.dtype.name} of {first.shape}, {second.dtype.name} of "
                         f"{second.shape}")
    if first.ndim != 2 or not first.size or first.dtype.kind not in "ui" or first.itemsize not in sizes \
            or first.dtype == np.int8 or not first.dtype.isnative:
        kinds = "uint8" if sizes == (1,) else "uint8, uint16 or int16"
        raise ValueError(f"samples are {kinds} of shape (H, W), not {first.dtype.name} of {first.shape}")
    for array, what in (first, "the first picture"), (second, "the second picture"):
        row_stride(array.shape, array.strides, array.itemsize, what)
    return first, second


def _spread(a: Array, b: Array, bits: int) -> int:
    """A bound of the differences' magnitude; an error if it has more bits than the functions are exact for."""
    if a.itemsize == 1:
        return 255
    spread = int(max(a.max(), b.max())) - int(min(a.min(), b.min()))
    if spread >= 1 << bits:
        raise ValueError(f"samples differ by up to {spread}, and costs are exact for differences of {bits} bits")
    return max(spread, 1)


def _bands(a: Array, b: Array, most: int) -> Iterator[tuple[int, int, int, int, int]]:
    """Height, addresses and strides (in samples) of bands whose cost is at most 2^31 - 1 if that of a row is `most`"""
    rows = max(_MOST // most, 4) // 4 * 4
    strides = a.strides[0], b.strides[0]
    for y in range(0, len(a), rows):
        yield (min(rows, len(a) - y), address(a) + y * strides[0], address(b) + y * strides[1],
               strides[0] // a.itemsize, strides[1] // b.itemsize)


def sad(a: Any, b: Any) -> int:
    """Sum of absolute differences of two pictures or blocks, (H, W) of uint8, uint16 or int16.

    16-bit samples may differ by up to 32767.

    >>> import numpy as np
    >>> sad(np.zeros((2, 3), np.uint8), np.full((2, 3), 7, np.uint8))
    42
    """
    first, second = _pair(a, b)
    width = first.shape[1]
    most = width * _spread(first, second, 15)
    if first.itemsize == 1:
        return sum(library.zelt_sad_eskip(width, h, pa, pb, sa, sb, _MOST)
                   for h, pa, pb, sa, sb in _bands(first, second, most))
    return sum(library.zelt_sad_16(width, h, pa, pb, sa, sb) for h, pa, pb, sa, sb in _bands(first, second, most))


def satd(a: Any, b: Any) -> int:
    """Sum of the Hadamard-transformed differences of two pictures' tiles of 4x4, half of their magnitudes' sum.

    (H, W) of uint8, uint16 or int16, multiples of 4; 16-bit samples may differ by up to 2047.

    >>> import numpy as np
    >>> satd(np.zeros((4, 4), np.uint8), np.full((4, 4), 7, np.uint8))
    56
    """
    first, second = _pair(a, b)
    height, width = first.shape
    if height % 4 or width % 4:
        raise ValueError(f"SATD is of tiles of 4x4: {width} x {height} are no multiples of 4")
    function = library.zelt_satd if first.itemsize == 1 else library.zelt_satd_16
    return sum(function(width, h, pa, pb, sa, sb)
               for h, pa, pb, sa, sb in _bands(first, second, 2 * width * _spread(first, second, 11)))


def ssd(a: Any, b: Any) -> int:
    """Sum of squared differences of two pictures or blocks, (H, W) of uint8, uint16 or int16.

    16-bit samples may differ by up to 16383.

    >>> import numpy as np
    >>> ssd(np.zeros((2, 3), np.uint8), np.full((2, 3), 7, np.uint8))
    294
    """
    first, second = _pair(a, b)
    least = 4 if first.itemsize == 1 else 16  # columns: the library knows powers of two from there to 64
    spread, width = _spread(first, second, 14), first.shape[1]
    if width % least:
        pad = ((0, 0), (0, -width % least))
        first, second = np.pad(first, pad), np.pad(second, pad)
    function = library.zelt_ssd if least == 4 else library.zelt_ssd_16
    total, x, width = 0, 0, first.shape[1]
    while x < width:
        columns = next(c for c in (64, 32, 16, 8, 4) if c <= width - x)
        while columns > least and columns * spread**2 > _MOST:
            columns //= 2
        rows = min(max((2**32 - 1) // (columns * spread**2), 1), len(first))
        for y in range(0, len(first), rows):
            p, q = first[y:y + rows, x:x + columns], second[y:y + rows, x:x + columns]
            total += function(columns, len(p), address(p), address(q), p.strides[0] // p.itemsize,
                              q.strides[0] // q.itemsize)
        x += columns
    return total


def _block_costs(metric: str, n: int, stride_a: int, stride_b: int) -> Callable[[Array, Array], Counts]:
    """A function from addresses of blocks of n x n samples to their costs"""
    fixed = metric == "sad" or (metric == "satd" and n == 4)
    function = getattr(quick, f"zelt_{metric}{n}x{n}" if fixed else f"zelt_{metric}")
    before = () if fixed else (repeat(n), repeat(n))

    def costs(a: Array, b: Array) -> Counts:
        calls = map(function, *before, a.tolist(), b.tolist(), repeat(stride_a), repeat(stride_b))
        return np.fromiter(calls, np.int64, len(a))

    return costs


def _whole_blocks(picture: Array, block: int, margin: int = 0) -> Array:
    """A picture whose edges are repeated: up to whole blocks, and in a margin around them"""
    down, right = (-size % block for size in picture.shape)
    if not (down or right or margin):
        return picture
    return np.pad(picture, ((margin, down + margin), (margin, right + margin)), "edge")


def _block_addresses(picture: Array, shape: tuple[int, int], block: int, margin: int) -> Counts:
    """Of all blocks, row by row"""
    rows, columns = (np.arange(n) * block + margin for n in shape)
    return (address(picture) + rows[:, None] * picture.strides[0] + columns).ravel()


def _grid(picture: Array, block: int, metric: str) -> tuple[int, int]:
    """Rows of blocks and blocks in a row; errors for what is no block and no metric"""
    if metric not in METRICS:
        raise ValueError(f"metric is one of {', '.join(map(repr, METRICS))}, not {metric!r}")
    if block not in BLOCKS:
        raise ValueError(f"block is one of {', '.join(map(str, BLOCKS))}, not {block}")
    rows, columns = (-(-size // block) for size in picture.shape)
    return rows, columns


def sad_map(a: Any, b: Any, block: int = 16, metric: str = "sad") -> Counts:
    """What each block of two pictures costs: (rows of blocks, blocks in a row), int64.

    a, b: (H, W) of uint8. block: 4, 8, 16, 32 or 64. metric: "sad", "satd" or "ssd". Where a picture ends within a
    block its last row and column are repeated.

    >>> import numpy as np
    >>> sad_map(np.zeros((16, 32), np.uint8), np.ones((16, 32), np.uint8)).tolist()
    [[256, 256]]
    """
    first, second = _pair(a, b, (1,))
    shape = _grid(first, block, metric)
    first, second = _whole_blocks(first, block), _whole_blocks(second, block)
    costs = _block_costs(metric, block, first.strides[0], second.strides[0])
    return costs(_block_addresses(first, shape, block, 0), _block_addresses(second, shape, block, 0)).reshape(shape)


_LARGE = np.array([(0, -2), (1, -1), (2, 0), (1, 1), (0, 2), (-1, 1), (-2, 0), (-1, -1)])
_SMALL = np.array([(0, -1), (1, 0), (0, 1), (-1, 0)])
#: For each step from a large diamond's centre to one of its places: which places of the next diamond are new.
_NEW = ~((_LARGE[:, None, None] + _LARGE[:, None]) == np.vstack([_LARGE, [(0, 0)]])).all(3).any(2)
_PLACES = 40  # that a block is compared with at most


def motion(before: Any, now: Any, block: int = 16, reach: int = 32, metric: str = "sad",
           start: Optional[Union[Array, tuple[int, int]]] = None) -> tuple[npt.NDArray[np.int16], Counts]:
    """Where the blocks of a picture come from in the one before, and what they cost there.

    before, now: luma, (H, W) of uint8. block: 4, 8, 16, 32 or 64. reach: the longest vector, across and down, in
        samples. metric: "sad", "satd" or "ssd".
    start: a vector to begin from where it costs less than none, or an array of one for each block: those of the last
        picture find faster motion.

    Returns vectors (rows of blocks, blocks in a row, 2) of int16, x to the right and y down: the block at (X, Y) is
    most like the one at (X + x, Y + y) before; and costs, int64. Edges are repeated where blocks lie over them.

    A diamond search: from (0, 0), or `start`, to the cheapest of the eight places of a large diamond, as long as one is
    cheaper than its centre, then to the cheapest of the four next to it. It compares a block with 40 places at most, so
    it finds what lies about 10 samples away, down a slope of costs; it is no full search.

    >>> import numpy as np
    >>> y, x = np.mgrid[:64, :64]
    >>> scene = (128 + 60 * np.sin(x * .09) * np.cos(y * .05) + 60 * np.sin(y * .08)).astype(np.uint8)
    >>> vectors, costs = motion(scene[:48, :48], scene[3:51, 5:53])
    >>> vectors[1, 1].tolist(), int(costs[1, 1])
    ([5, 3], 0)
    """
    past, present = _pair(before, now, (1,))
    shape = _grid(present, block, metric)
    if not 1 <= reach <= 1024:
        raise ValueError(f"reach is from 1 to 1024 samples, not {reach}")
    past, present = _whole_blocks(past, block, reach), _whole_blocks(present, block)
    stride = past.strides[0]
    cost = _block_costs(metric, block, present.strides[0], stride)
    blocks, origins = _block_addresses(present, shape, block, 0), _block_addresses(past, shape, block, reach)

    def step(which: Counts, pattern: Array, fresh: Array) -> tuple[Counts, Counts]:
        """Takes blocks to the cheapest of the fresh places around: those that had a cheaper one, and which it was."""
        places = vectors[which, None] + pattern
        wanted = fresh & (abs(places) <= reach).all(2)
        at, place = wanted.nonzero()
        costs = np.full(wanted.shape, np.iinfo(np.int64).max)
        costs[wanted] = cost(blocks[which[at]], origins[which[at]] + places[at, place] @ (1, stride))
        tried[which] += wanted.sum(1)
        choice = costs.argmin(1)
        least = costs[np.arange(len(choice)), choice]
        better = least < best[which]
        moved = which[better]
        vectors[moved], best[moved] = places[better, choice[better]], least[better]
        return moved, choice[better]

    count = len(blocks)
    vectors, tried, best = np.zeros((count, 2), np.int64), np.ones(count, np.int64), cost(blocks, origins)
    everywhere = np.arange(count)
    if start is not None:
        first = np.clip(np.broadcast_to(np.asarray(start, np.int64), (*shape, 2)).reshape(-1, 2), -reach, reach)
        step(everywhere, first[:, None], np.ones((count, 1), bool))
    active, fresh = everywhere[best > 0], np.ones((count, len(_LARGE)), bool)
    while len(active):
        moved, choice = step(active, _LARGE, fresh[active])
        fresh[moved] = _NEW[choice]
        active = moved[(best[moved] > 0) & (tried[moved] + _NEW.sum(1).max() + len(_SMALL) <= _PLACES)]
    rest = everywhere[best > 0]
    step(rest, _SMALL, np.ones((len(rest), len(_SMALL)), bool))
    return vectors.astype(np.int16).reshape(*shape, 2), best.reshape(shape)
