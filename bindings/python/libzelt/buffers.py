# SPDX-License-Identifier: MIT
"""Pictures and rings of bytes in memory of the library."""
from __future__ import annotations

import weakref
from ctypes import byref, c_int32, c_uint8, c_uint32
from typing import Any

import numpy as np

from ._library import library, quick
from .arrays import Array, Memory, address, as_bytes
from .formats import Size, named, pixels

_CLEAR = 3  # what alignment and border add
_BORDERS = (0, 8, 16, 24, 32, 40, 80)  # of 8-bit planes, that can be filled


class _Block:
    """The memory of a picture. The garbage collector does not see into arrays: nothing that they keep may keep them."""

    def __init__(self, image: Any) -> None:
        self.image, self._release = image, image.contents.release

    def __del__(self) -> None:
        self._release(self.image)


class Picture:
    """An image buffer: the planes of a picture in one block of memory, with alignment and a border for codecs.

    format: any that has a plane buffer, all but those of decoders and planar RGB. size: (width, height) in pixels.
    align: what the width and height of planes are rounded up to, a power of two in samples of the first plane.
    border: samples around the first plane on every side; planes of halved width have half of it.

    `planes` are arrays of the visible samples, (H, W) or (H, W, bytes); `padded` the same planes with border and
    alignment. All of them keep the memory alive when the Picture is gone. Every function that takes pictures takes a
    Picture.

    >>> picture = Picture("yuv420", (64, 48), border=32)
    >>> [plane.shape for plane in picture.planes], [plane.shape for plane in picture.padded]
    ([(48, 64), (24, 32), (24, 32)], [(112, 128), (56, 64), (56, 64)])
    >>> picture.planes[0][:] = 100
    >>> picture.expand()
    >>> int(picture.padded[0][0, 0])
    100
    """

    def __init__(self, format: str, size: Size, align: int = 1, border: int = 0) -> None:
        layout, size = named(format), pixels(size)
        layout.check_size(*size)
        if align < 1 or align & (align - 1) or align > 1024:
            raise ValueError(f"align is a power of two up to 1024, not {align}")
        if not 0 <= border <= 4096:
            raise ValueError(f"border is from 0 to 4096 samples, not {border}")
        aligns = [(max(align >> plane.right, 1), max(align >> plane.down, 1)) for plane in layout.planes]
        self._borders = [border >> plane.right for plane in layout.planes]
        # a word for each plane, across in its upper half, down in its lower one
        self._pad = (c_uint32 * 4)(*(b << 16 | b for b in self._borders))
        words = (c_uint32 * 4)(*(across << 16 | down for across, down in aligns))
        error = c_int32()
        image = library.zelt_imgb_create(*size, layout.cs, _CLEAR, words, self._pad, None, None, byref(error))
        if not image:
            if error.value == -211:
                raise ValueError(f"there are no image buffers of {layout.name}")
            raise MemoryError(f"no memory for {size[0]} x {size[1]} pixels of {layout.name}")
        record = image.contents
        self.format, self.size, self._layout, self._block = layout.name, size, layout, _Block(image)
        self.planes: list[Array] = []
        self.padded: list[Array] = []
        for i, plane in enumerate(layout.planes):
            pixel = plane.dtype.itemsize * plane.channels
            strides = (record.stride[i], pixel, plane.dtype.itemsize)
            for views, place, shape in (
                    (self.planes, record.plane[i], plane.shape(*size)),
                    (self.padded, record.base[i], (record.rows[i], record.stride[i] // pixel, plane.channels))):
                dimensions = 2 if plane.channels == 1 else 3
                views.append(np.asarray(Memory(self._block, place, shape[:dimensions], strides[:dimensions],
                                               plane.dtype.str)))

    def expand(self) -> None:
        """Fills the border of every plane with the nearest sample of the picture (as far as alignment makes it)."""
        for border, plane, padded in zip(self._borders, self._layout.planes, self.padded):
            if plane.channels > 1 or self._layout.cs >= 100:
                raise ValueError(f"pictures of {self.format} have no planes whose border can be filled")
            if plane.dtype.itemsize == 1 and (border not in _BORDERS or padded.strides[0] % 4):
                raise ValueError(f"a plane of {self.format} has a border of {border} samples and rows of "
                                 f"{padded.strides[0]} bytes: it takes one of {', '.join(map(str, _BORDERS))}, and "
                                 "rows of a multiple of 4: set border and align")
        library.zelt_imgb_expand(self._block.image, self._pad)


class Ring:
    """A ring of bytes between a writer and a reader of one thread.

    >>> ring = Ring(8)
    >>> ring.write(b"abcdefghij"), ring.read(3), ring.write(b"kl"), ring.read(100)
    (8, b'abc', 2, b'defghkl')
    """

    def __init__(self, capacity: int) -> None:
        if not 1 <= capacity < 2**31 - 1:
            raise ValueError(f"a ring holds from 1 to 2^31 - 2 bytes, not {capacity}")
        self._ring = quick.zelt_rbuf_create(capacity + 1)
        if not self._ring:
            raise MemoryError(f"no memory for {capacity} bytes")
        self._record = self._ring.contents
        weakref.finalize(self, quick.zelt_rbuf_delete, self._ring)
        self.capacity = capacity

    def __len__(self) -> int:
        """Bytes that wait to be read"""
        length: int = (self._record.head - self._record.tail) % self._record.size
        return length

    @property
    def free(self) -> int:
        """Bytes that can be written"""
        return self.capacity - len(self)

    def write(self, data: Any) -> int:
        """Copies bytes into the ring, as many as fit; returns their number."""
        array = as_bytes(data)
        count = min(array.nbytes, self.free)
        if count:
            quick.zelt_rbuf_put(self._ring, address(array), count)
        return count

    def read(self, count: int) -> bytes:
        """Takes bytes out of the ring, `count` of them or as many as there are."""
        if count < 0:
            raise ValueError(f"a number of bytes is not negative: {count}")
        count = min(count, len(self))
        out = (c_uint8 * count)()
        if count:
            quick.zelt_rbuf_get(self._ring, out, count)
        return bytes(out)
