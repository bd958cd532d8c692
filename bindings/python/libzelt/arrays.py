# SPDX-License-Identifier: MIT
"""Pictures in arrays: the planes of what a caller passes, without a copy, and new arrays for results."""
from __future__ import annotations

from ctypes import c_int32, c_void_p
from functools import lru_cache
from typing import Any, NamedTuple

import numpy as np
import numpy.typing as npt

from .formats import WORD, Format, Plane, Size, named, pixels

Array = npt.NDArray[Any]
Shape = tuple[int, ...]
Form = tuple[Shape, Shape, str]  # shape, strides and dtype of an array

_Addresses, _Strides = c_void_p * 4, c_int32 * 4
CONTIGUOUS = "pass numpy.ascontiguousarray(...) of it"


def as_array(thing: Any) -> Array:
    """An array over the memory of an object that has __array_interface__ or a buffer."""
    if isinstance(thing, np.ndarray):
        return thing
    if not hasattr(thing, "__array_interface__"):
        try:
            thing = memoryview(thing)
        except TypeError:
            raise TypeError(f"{type(thing).__name__} is neither an array nor has it a buffer") from None
    return np.asarray(thing)


def as_bytes(thing: Any) -> Array:
    """The same for bytes, which lie side by side."""
    array = as_array(thing)
    if not array.flags.c_contiguous:
        raise ValueError(f"the bytes do not lie side by side: {CONTIGUOUS}")
    return array


def address(array: Array) -> int:
    """Of its first element"""
    place: int = array.__array_interface__["data"][0]
    return place


def row_stride(shape: Shape, strides: Shape, itemsize: int, what: str) -> int:
    """Bytes from row to row; an error unless the samples of a row lie side by side."""
    expected = itemsize
    for size, stride in zip(shape[:0:-1], strides[:0:-1]):
        if stride != expected and size > 1:
            raise ValueError(f"the samples of a row of {what} do not lie side by side: {CONTIGUOUS}")
        expected *= size
    if not -2**31 <= strides[0] < 2**31:
        raise ValueError(f"rows of {what} are {strides[0]} bytes apart, more than 2^31")
    return strides[0]


class Memory:
    """Memory as an array over it sees it: the array keeps this object, and that the owner."""

    def __init__(self, owner: Any, place: int, shape: Shape, strides: Shape, dtype: str,
                 read_only: bool = False) -> None:
        self._owner = owner
        self.__array_interface__ = {"data": (place, read_only), "shape": shape, "strides": strides, "typestr": dtype,
                                    "version": 3}


class PlanePlace(NamedTuple):
    array: int  # in which of the arrays it lies
    offset: int  # bytes from that one's first element
    shape: Shape
    strides: Shape
    dtype: str


class Geometry(NamedTuple):
    """What the forms of arrays say of the picture in them"""
    width: int
    height: int
    places: tuple[PlanePlace, ...]
    strides: Any  # of rows, as the library takes them


def _places_in_one(format: Format, form: Form, what: str) -> list[PlanePlace]:
    """Where the planes of a format with several are in one array"""
    shape, strides, dtype = form
    if format.uniform and len(shape) == 3:
        return [PlanePlace(0, i * strides[0], shape[1:], strides[1:], dtype) for i in range(shape[0])]
    if not format.stacks or len(shape) != 2:
        raise ValueError(f"{what} of {format.name} is {format.describe()}, not one of shape {shape}")
    rows, columns = shape
    height, size = rows * 2 // 3, np.dtype(dtype).itemsize
    if rows % 3 or height % 2 or columns % 2:
        raise ValueError(f"{what} has {rows} rows and {columns} columns: one array holds {format.name} of even sizes, "
                         "in H * 3 / 2 rows; pass a list of planes")
    stride = row_stride(shape, strides, size, what)
    luma = PlanePlace(0, 0, (height, columns), strides, dtype)
    half = (height // 2, columns // 2)
    if len(format.planes) == 2:
        return [luma, PlanePlace(0, height * stride, (*half, 2), (stride, 2 * size, size), dtype)]
    if stride != columns * size:
        raise ValueError(f"rows of {what} have gaps, but two of chroma share one of luma's: {CONTIGUOUS}, or a list of "
                         "planes")
    chroma = half[0] * half[1] * size
    return [luma, *(PlanePlace(0, height * stride + i * chroma, half, (stride // 2, size), dtype) for i in range(2))]


@lru_cache(maxsize=256)
def _geometry(name: str, what: str, forms: tuple[Form, ...]) -> Geometry:
    """Errors unless the arrays hold a picture of the format"""
    format = named(name)
    if len(forms) == len(format.planes):
        places = [PlanePlace(i, 0, *form) for i, form in enumerate(forms)]
    elif len(forms) == 1:
        places = _places_in_one(format, forms[0], what)
    if len(forms) not in (1, len(format.planes)) or len(places) != len(format.planes):
        raise ValueError(f"{what} of {name} is {format.describe()}, not {len(forms)} arrays of {forms[0][0]}")
    if len(places[0].shape) < 2:
        raise ValueError(f"{what} of {name} is {format.describe()}, not one of shape {places[0].shape}")
    height, width = places[0].shape[:2]
    format.check_size(width, height)
    strides = _Strides()
    for i, (place, plane) in enumerate(zip(places, format.planes)):
        part = f"plane {i} of {what}" if len(places) > 1 else what
        _check_plane(place, plane, plane.shape(width, height), f"{part} of {name}", format)
        strides[i] = row_stride(place.shape, place.strides, np.dtype(place.dtype).itemsize, part)
    return Geometry(width, height, tuple(places), strides)


def _check_plane(place: PlanePlace, plane: Plane, shape: Shape, what: str, format: Format) -> None:
    """Also right are words as pairs of bytes or with a sign, and grey of shape (H, W, 1)."""
    kinds = ("<u2", "<i2") if plane.dtype == WORD else ("|u1",)
    if place.dtype in kinds and place.shape in (shape, (*shape, 1)):
        return
    if plane.dtype == WORD and place.dtype == "|u1" and place.shape == (*shape, 2):
        return
    raise ValueError(f"{what} is {plane.dtype.name} of shape {shape}, not {np.dtype(place.dtype).name} of "
                     f"{place.shape}; a picture is {format.describe()}")


def _av_plane(plane: Any, expected: Plane) -> Array:
    """An array over a plane of one of PyAV's frames, which has rows of `line_size` bytes"""
    size = expected.dtype.itemsize
    dimensions = 2 if expected.channels == 1 else 3
    shape: Shape = (plane.height, plane.width, expected.channels)
    strides: Shape = (plane.line_size, size * expected.channels, size)
    return np.ndarray(shape[:dimensions], expected.dtype, memoryview(plane), strides=strides[:dimensions])


class Planes:
    """The planes of a picture as the library takes them; keeps alive what they point into."""
    __slots__ = ("arrays", "places", "width", "height", "addresses", "strides")

    def __init__(self, picture: Any, format: Format, what: str = "the picture") -> None:
        if isinstance(picture, np.ndarray):
            self.arrays = [picture]
        else:
            planes = getattr(picture, "planes", picture)  # a Picture has them, and a frame of PyAV
            if not isinstance(planes, (list, tuple)):
                self.arrays = [as_array(planes)]
            elif planes and hasattr(planes[0], "line_size"):
                self.arrays = [_av_plane(*pair) for pair in zip(planes, format.planes)]
            else:
                self.arrays = [as_array(plane) for plane in planes]
        forms = tuple([(array.shape, array.strides, array.dtype.str) for array in self.arrays])
        self.width, self.height, self.places, self.strides = _geometry(format.name, what, forms)
        starts = [address(array) for array in self.arrays]
        self.addresses = _Addresses(*[starts[place.array] + place.offset for place in self.places])

    def views(self) -> list[Array]:
        """An array for each plane"""
        return [np.asarray(Memory(self.arrays[p.array], place, p.shape, p.strides, p.dtype,
                                  not self.arrays[p.array].flags.writeable))
                for p, place in zip(self.places, self.addresses)]


def result_planes(out: Any, format: Format, width: int, height: int, source: Planes) -> Planes:
    """The planes of what a caller gave to be written: of the right size, writable and apart from the source."""
    result = Planes(out, format, "out")
    if (result.width, result.height) != (width, height):
        raise ValueError(f"out is {result.width} x {result.height} pixels, the result {width} x {height}")
    for array in result.arrays:
        if not array.flags.writeable:
            raise ValueError("out is read-only")
        for other in source.arrays:
            if np.may_share_memory(array, other) and np.shares_memory(array, other):
                raise ValueError("out and the source share memory")
    return result


def new_picture(format: Format, width: int, height: int) -> Any:
    """Uninitialised arrays for a picture: one array if one can hold it, else a list of planes."""
    first = format.planes[0]
    if len(format.planes) == 1:
        return np.empty(first.shape(width, height), first.dtype)
    if format.uniform:
        return np.empty((len(format.planes), height, width), first.dtype)
    if format.stacks and width % 2 == 0 and height % 2 == 0:
        return np.empty((height * 3 // 2, width), first.dtype)
    return [np.empty(plane.shape(width, height), plane.dtype) for plane in format.planes]


def planes(picture: Any, format: str) -> list[Array]:
    """The planes of a picture in any of the forms that convert() takes, as arrays over its memory.

    >>> [plane.shape for plane in planes(np.zeros((72, 64), np.uint8), "nv12")]
    [(48, 64), (24, 32, 2)]
    """
    return Planes(picture, named(format)).views()


def empty(format: str, size: Size) -> Any:
    """A picture of (width, height) pixels that is not initialised, in the form in which convert() returns them.

    >>> empty("yuv444", (64, 48)).shape, empty("yuv420", (64, 48)).shape
    ((3, 48, 64), (72, 64))
    """
    layout, (width, height) = named(format), pixels(size)
    layout.check_size(width, height)
    return new_picture(layout, width, height)
