# SPDX-License-Identifier: MIT
"""Colour conversion and resizing of pictures."""
from __future__ import annotations

from ctypes import byref, c_uint32
from functools import lru_cache, partial
from typing import Any, Callable, Mapping, Optional

from ._library import Video, library
from .arrays import Planes, as_array, new_picture, result_planes
from .formats import FORMATS, WORD, Format, Plane, Size, named, pixels

_MATRICES = {"bt601": 0, "bt709": 1, "bt2020": 2}
_RANGES = {"limited": 0, "full": 1}
_CHROMA = {"replicated": 0, "smooth": 1}
_FILTERS = {"bilinear": 0, "area": 1}
_TURNS = {0: 0, 90: 1, 180: 2, 270: 3}
_MIRRORED = 4
_FULL_RANGE = ("yuv444", "yuv444a8", "p410")  # sources and destinations that count as full range unless told otherwise


def _value(what: str, values: Mapping[Any, int], key: Any) -> int:
    if key not in values:
        raise ValueError(f"{what} is one of {', '.join(map(repr, values))}, not {key!r}")
    return values[key]


def _dispatched(source: Format, target: Format, size: Size, target_size: Size) -> Any:
    """The converter of full-range BT.601 that the dispatch has for a pair, or None"""
    if source is target and source.name == "r10g10b10":
        return None  # the dispatch converts it to p410
    if (source.name, target.name) == ("r8g8b8a8", "rgba5658"):
        # whose converter in the dispatch writes four bytes a pixel
        return library.zelt_csc_r8g8b8a8_to_rgba5658 if size == target_size else None
    return library.zelt_imgp_get_fn_csc(*size, source.cs, *target_size, target.cs, None) or None


def _video(source: Format, target: Format, **request: int) -> Optional[Video]:
    video = Video(src_cs=source.cs, dst_cs=target.cs, **request)
    return None if library.zelt_video_init(byref(video)) else video


def _converts(source: Format, target: Format) -> bool:
    return bool(_dispatched(source, target, (1, 1), (1, 1)) or _video(source, target))


def conversions(source: str) -> list[str]:
    """The names of the formats that pictures of a format can become.

    >>> conversions("r8g8b8a8")
    ['rgba5658', 'rgba8888', 'bgra8888', 'argb8888', 'rgb565a8']
    """
    return [f.name for f in FORMATS if _converts(named(source), f)]


def _between(source: Format, target: Format) -> Optional[str]:
    """A format of full resolution, with alpha if there is any, by which two steps lead to another"""
    ways = (name for name in ("yuv444a8", "r8g8b8a8", "yuv444", "r8g8b8", "p410")
            if _converts(source, named(name)) and _converts(named(name), target))
    return next(ways, None)


class Prepared:
    """A conversion of given arrays, see Converter.prepare. Calling it converts what is in the source now."""
    __slots__ = ("result", "_call", "_kept")

    def __init__(self, call: Callable[[], Any], result: Any, kept: Any) -> None:
        self.result, self._call, self._kept = result, call, kept

    def __call__(self) -> Any:
        self._call()
        return self.result


class Converter:
    """Converts pictures of one format and size to another; made once, called for each picture.

    src_format, dst_format: names such as "yuv444", "nv12", "rgb888", or FFmpeg's "rgb24"; formats() lists them.
    size: (width, height) of the source in pixels. dst_size: of the result as it is stored, after turning; None is the
        source's own.
    matrix: "bt601", "bt709" or "bt2020". range: "limited" or "full", of the YUV side; None is "full" for yuv444,
        yuv444a8 and p410, "limited" for the others.
    chroma: "replicated" or "smooth", how halved chroma is enlarged. filter: "bilinear" or "area", how a picture gets
        another size. turn: 0, 90, 180 or 270 degrees clockwise. mirror: left and right exchanged before that.

    Any number of threads may call one converter at once, and the interpreter's lock is released meanwhile.

    >>> import numpy as np
    >>> to_rgb = Converter("nv12", "rgb888", (64, 48), matrix="bt709")
    >>> frame = np.full((72, 64), 128, np.uint8)  # 48 rows of luma, 24 of chroma
    >>> to_rgb(frame).shape, to_rgb(frame)[0, 0].tolist()
    ((48, 64, 3), [130, 130, 130])
    """

    def __init__(self, src_format: str, dst_format: str, size: Size, dst_size: Optional[Size] = None, *,
                 matrix: str = "bt601", range: Optional[str] = None, chroma: str = "replicated",
                 filter: str = "bilinear", turn: int = 0, mirror: bool = False) -> None:
        self._source, self._target = named(src_format), named(dst_format)
        if range is None:
            yuv = self._source if self._source.yuv else self._target
            range = "limited" if yuv.yuv and yuv.name not in _FULL_RANGE else "full"
        request = {"matrix": _value("matrix", _MATRICES, matrix), "range": _value("range", _RANGES, range),
                   "chroma": _value("chroma", _CHROMA, chroma), "filter": _value("filter", _FILTERS, filter),
                   "turn": _value("turn", _TURNS, turn) + _MIRRORED * bool(mirror)}
        self.size = pixels(size)
        upright = self.size if turn in (0, 180) else self.size[::-1]
        self.dst_size = upright if dst_size is None else pixels(dst_size)
        self._source.check_size(*self.size)
        self._target.check_size(*self.dst_size)
        if self.dst_size != upright:
            request["dst_w"], request["dst_h"] = self.dst_size

        self._function = self._video = None
        repacked = self._source.yuv == self._target.yuv  # without a matrix
        if request["turn"] == request["filter"] == 0 and (repacked or (matrix, range) == ("bt601", "full")):
            self._function = _dispatched(self._source, self._target, self.size, self.dst_size)
        if not self._function:
            self._video = _video(self._source, self._target, **request)
            if not self._video:
                raise ValueError(self._refusal(request))

    def _refusal(self, request: Mapping[str, int]) -> str:
        pair = f"{self._source.name} to {self._target.name}"
        if not _converts(self._source, self._target):
            over = _between(self._source, self._target)
            become = ", ".join(conversions(self._source.name))
            return (f"nothing converts {pair}; {self._source.name} can become {become}"
                    + (f". In two steps it goes over {over}" if over else ""))
        if request["turn"] and not _video(self._source, self._target, turn=request["turn"]):
            return f"no converter from {pair} turns the picture so: convert it first, to yuv420 or yuv444"
        if "dst_w" in request:
            return f"no converter from {pair} gives another size: there is no other size of 10 bits, and RGB has resize()"
        return f"no converter from {pair} has this matrix and range: it is full-range BT.601 alone"

    def _call(self, source: Planes, result: Planes) -> tuple[Any, ...]:
        """The function that converts, and its arguments"""
        (width, height), (dst_width, dst_height) = self.size, self.dst_size
        if self._video:
            return (library.zelt_video_convert, byref(self._video), source.addresses, source.strides, result.addresses,
                    result.strides, width, height)
        return (self._function, source.addresses, width, height, source.strides, self._source.cs, result.addresses,
                dst_width, dst_height, result.strides, self._target.cs)

    def _planes(self, src: Any, out: Any) -> tuple[Planes, Planes, Any]:
        source = Planes(src, self._source)
        if (source.width, source.height) != self.size:
            raise ValueError(f"the picture is {source.width} x {source.height} pixels, this converter is for "
                             f"{self.size[0]} x {self.size[1]}")
        if out is None:
            out = new_picture(self._target, *self.dst_size)
            return source, Planes(out, self._target), out
        return source, result_planes(out, self._target, *self.dst_size, source), out

    def prepare(self, src: Any, out: Any = None) -> Prepared:
        """A call that converts the same arrays again and again, for the least time a call.

        The arrays live as long as the call; `result` is the array that it writes and returns.

        >>> import numpy as np
        >>> grey = np.zeros((8, 8), np.uint8)
        >>> call = Converter("gray", "rgb24", (8, 8), range="full").prepare(grey)
        >>> grey[:] = 200
        >>> int(call().max())
        200
        """
        source, result, out = self._planes(src, out)
        return Prepared(partial(*self._call(source, result)), out, (source, result))

    def __call__(self, src: Any, out: Any = None) -> Any:
        """Converts a picture; returns the result: `out`, or a new one as convert() describes."""
        source, result, out = self._planes(src, out)
        function, *arguments = self._call(source, result)
        function(*arguments)
        return out


@lru_cache(maxsize=64)
def _converter(src_format: str, dst_format: str, size: Size, dst_size: Optional[Size], matrix: str,
               range: Optional[str], chroma: str, filter: str, turn: int, mirror: bool) -> Converter:
    return Converter(src_format, dst_format, size, dst_size, matrix=matrix, range=range, chroma=chroma, filter=filter,
                     turn=turn, mirror=mirror)


def convert(src: Any, src_format: str, dst_format: str, size: Optional[Size] = None, out: Any = None, *,
            matrix: str = "bt601", range: Optional[str] = None, chroma: str = "replicated", filter: str = "bilinear",
            turn: int = 0, mirror: bool = False) -> Any:
    """Converts a picture from one format to another; the arguments are those of Converter.

    src: an array, or anything with __array_interface__ or a buffer; a Picture; a frame of PyAV; read in place.
        Packed formats are (H, W, bytes), rgb565 (H, W) of uint16. Planes of one size are one array of (planes, H, W),
        4:2:0 of even sizes is one of (H * 3 / 2, W), as PyAV and OpenCV give it, and everything with planes may be a
        list of them: (H, W), interleaved chroma (H / 2, W / 2, 2), halves rounded up. Rows may have gaps between them,
        samples of a row may not. 10-bit samples are uint16.
    size: (width, height) of the result, or None.
    out: where the result goes, in any of these forms; None makes a new one, in the first form that fits.

    >>> import numpy as np
    >>> yuv = np.full((3, 4, 6), 128, np.uint8)
    >>> rgb = convert(yuv, "yuv444", "rgb888")
    >>> rgb.shape, rgb[0, 0].tolist()
    ((4, 6, 3), [128, 128, 128])
    >>> convert(yuv, "yuv444", "rgb888", size=(3, 2)).shape
    (2, 3, 3)
    >>> convert(rgb, "rgb888", "rgb565")
    Traceback (most recent call last):
    ...
    ValueError: nothing converts rgb888 to rgb565; rgb888 can become yuv400, yuv420, yuv422, yuv440, yuv444, nv12, \
nv21, nv16, yuyv, uyvy. In two steps it goes over yuv444
    """
    planes = Planes(src, named(src_format))
    return _converter(src_format, dst_format, (planes.width, planes.height), None if size is None else pixels(size),
                      matrix, range, chroma, filter, turn, mirror)(src, out)


def _plane_resizer(format: Format, plane: Plane) -> Any:
    """The library's function for a plane, or None"""
    if plane.dtype == WORD:
        return library.zelt_irsz5b6b5b_full if format.name in ("rgb565", "rgb565a8") else None
    if format.name == "rgba5658":
        return None
    return {1: library.zelt_irsz8b_full, 3: library.zelt_irsz8b8b8b_full,
            4: library.zelt_irsz8b8b8b8b_full}.get(plane.channels)


def _format_by_shape(picture: Any) -> str:
    array = as_array(picture) if not isinstance(picture, (list, tuple)) else None
    if array is not None and array.dtype.itemsize == 1:
        if array.ndim == 2:
            return "yuv400"
        if array.ndim == 3 and array.shape[2] in (3, 4):
            return "rgb888" if array.shape[2] == 3 else "rgba8888"
    raise ValueError("the format of this picture does not follow from its shape: say it, format=...")


def resize(src: Any, size: Size, out: Any = None, *, format: Optional[str] = None, filter: str = "bilinear") -> Any:
    """Resizes a picture of any format but packed YUV and 10 bits.

    src, out: as for convert(). size: (width, height) of the result. format: of the picture; None tells grey and three
        or four bytes a pixel by the array's shape.
    filter: "bilinear", by the rule of zelt/irsz.h, which is fine down to a half; "area" takes the mean of all samples
        that a pixel covers, of YUV formats.

    >>> import numpy as np
    >>> resize(np.zeros((480, 640, 3), np.uint8), (320, 240)).shape
    (240, 320, 3)
    """
    name = format or _format_by_shape(src)
    layout = named(name)
    source = Planes(src, layout)
    width, height = pixels(size)
    if layout.yuv and layout.name != "yuv444a8":
        return Converter(name, name, (source.width, source.height), size, filter=filter)(src, out)
    resizers = [_plane_resizer(layout, plane) for plane in layout.planes]
    if not all(resizers) or _value("filter", _FILTERS, filter):
        raise ValueError(f"there is no {filter} resizing of {layout.name}; YUV formats of 8 bits without alpha have "
                         "both filters, rgb565 and those of 8 bits a sample the bilinear one")
    layout.check_size(width, height)
    out = new_picture(layout, width, height) if out is None else out
    result = result_planes(out, layout, width, height, source)
    steps = (c_uint32 * 2)()
    library.bilinear_rsz_step_size(source.width, source.height, width, height, byref(steps, 0), byref(steps, 4))
    for i, resizer in enumerate(resizers):
        resizer(source.addresses[i], source.strides[i], width, height, result.strides[i], result.addresses[i], *steps)
    return out
