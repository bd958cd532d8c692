# SPDX-License-Identifier: MIT
"""MD5 digests of bytes and pictures."""
from __future__ import annotations

from ctypes import byref, c_uint8
from typing import Any, Iterable, Iterator, Optional

from ._library import DigestRecord, library, quick
from .arrays import Array, Planes, address, as_array, row_stride
from .formats import named

_AT_ONCE = 1 << 30  # bytes a call, whose count has 32 bits


def _digest(arrays: Iterable[Array]) -> str:
    record, digest = DigestRecord(), (c_uint8 * 16)()
    context = byref(record)
    quick.zelt_md5_init(context)
    for array in arrays:
        if array.flags.c_contiguous:
            place = address(array)
            for start in range(0, array.nbytes, _AT_ONCE):
                library.zelt_md5_update(context, place + start, min(array.nbytes - start, _AT_ONCE))
        else:
            stride = row_stride(array.shape, array.strides, array.itemsize, "the array")
            place, length = address(array), array[0].nbytes
            for row in range(len(array)):
                library.zelt_md5_update(context, place + row * stride, length)
    quick.zelt_md5_finish(context, digest)
    return bytes(digest).hex()


def md5(data: Any, format: Optional[str] = None) -> str:
    """The digest of bytes, or of a picture's samples, row by row without the gaps between rows, in hexadecimal.

    data: bytes, an array or another buffer; with `format` a picture as convert() takes it, plane after plane.

    >>> md5(b"abc")
    '900150983cd24fb0d6963f7d28e17f72'
    """
    return _digest(Planes(data, named(format)).views() if format else [as_array(data)])


def framemd5(frames: Iterable[Any], format: str, rate: str = "25/1", aspect: str = "0/1") -> Iterator[str]:
    """Lines with the digests of pictures, as `ffmpeg -f framemd5` and `zelt md5 --per-frame` print them.

    frames: pictures of one format and size, taken one by one. rate: pictures a second, aspect: of a pixel, for the
    lines' head.

    >>> import numpy as np
    >>> lines = list(framemd5([np.zeros((2, 2), np.uint8)], "gray", "30000/1001"))
    >>> lines[3], lines[-1]
    ('#tb 0: 1001/30000', '0,          0,          0,        1,        4, f1d3ff8443297732862df21dc4e57262')
    """
    layout, size = named(format), None
    for n, frame in enumerate(frames):
        planes = Planes(frame, layout)
        if size is None:
            size = planes.width, planes.height
            yield from ("#format: frame checksums", "#version: 2", "#hash: MD5",
                        f"#tb 0: {'/'.join(reversed(rate.split('/')))}", "#media_type 0: video",
                        "#codec_id 0: rawvideo", f"#dimensions 0: {size[0]}x{size[1]}", f"#sar 0: {aspect}",
                        "#stream#, dts,        pts, duration,     size, hash")
        elif size != (planes.width, planes.height):
            raise ValueError(f"picture {n} is {planes.width} x {planes.height} pixels, the first {size[0]} x {size[1]}")
        views = planes.views()
        yield f"0, {n:10}, {n:10}, {1:8}, {sum(view.nbytes for view in views):8}, {_digest(views)}"
