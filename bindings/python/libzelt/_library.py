# SPDX-License-Identifier: MIT
"""Loads the library and declares what of it the package calls."""
from __future__ import annotations

import ctypes
import os
from ctypes import c_char_p, c_int, c_int32, c_uint8, c_uint32, c_void_p
from pathlib import Path
from typing import Any

LEAST = "zelt_video_init"  # a function of the oldest library that will do, and its version
LEAST_VERSION = "1.1"


def _load() -> str:
    """The path or name that loads: what LIBZELT says, the library within the package, the system's."""
    bundled = Path(__file__).with_name("libzelt.so.1")
    name = os.environ.get("LIBZELT") or (str(bundled) if bundled.exists() else "libzelt.so.1")
    try:
        ctypes.CDLL(name)
    except OSError as error:
        raise ImportError(f"libzelt cannot be loaded: {error}. Install the library or a wheel that holds it, or set "
                          "LIBZELT to the path of libzelt.so.1") from None
    return name


_name = _load()
#: Calls through `library` let other threads run meanwhile; those through `quick`, shorter than that takes, do not.
library, quick = ctypes.CDLL(_name), ctypes.PyDLL(_name)
if not hasattr(library, LEAST):
    raise ImportError(f"{_name} is older than libzelt {LEAST_VERSION}, which this package needs")

#: A converter from the dispatch. Without declared arguments ctypes passes objects and small integers as they are.
ConvertFunction = ctypes.CFUNCTYPE(None)


class Video(ctypes.Structure):
    """ZELT_VIDEO"""
    _fields_ = [(name, c_int32) for name in ("src_cs", "dst_cs", "matrix", "range", "chroma", "filter", "dst_w",
                                             "dst_h", "turn")] + [("reserved", c_int32 * 7), ("state", c_int32 * 48)]


class BitReaderRecord(ctypes.Structure):
    """ZELT_BSR"""
    _fields_ = [("code", c_uint32), ("leftbits", c_int32), ("cur", c_void_p), ("end", c_void_p), ("beg", c_void_p),
                ("size", c_int32), ("flush_fn", c_void_p)]


class BitWriterRecord(BitReaderRecord):
    """ZELT_BSW, which has the same fields"""


class DigestRecord(ctypes.Structure):
    """ZELT_MD5"""
    _fields_ = [("state", c_uint32 * 4), ("buffer", c_uint8 * 64), ("bits_lo", c_uint32), ("bits_hi", c_uint32)]


class RingRecord(ctypes.Structure):
    """ZELT_RBUF"""
    _fields_ = [("head", c_int32), ("tail", c_int32), ("size", c_int32), ("buf", c_void_p)]


class ImageRecord(ctypes.Structure):
    """ZELT_IMGB up to the last field used"""
    _fields_ = [("refcnt", c_int32), ("addref", c_void_p), ("getref", c_void_p),
                ("release", ctypes.CFUNCTYPE(c_int32, c_void_p)),
                ("w", c_int32), ("h", c_int32), ("x", c_int32), ("y", c_int32), ("cs", c_int32),
                ("stride", c_int32 * 4), ("rows", c_int32 * 4), ("plane", c_void_p * 4), ("plane_aux", c_uint32 * 4),
                ("user", c_uint32 * 17), ("aw", c_int32), ("ah", c_int32), ("alloc_cb", c_void_p),
                ("free_cb", c_void_p), ("base", c_void_p * 4)]


_block = (c_void_p, c_void_p)  # two blocks; their strides come as they are, which takes a third of the time
_sizes = (8, 16, 32, 64)
_prototypes: list[tuple[ctypes.CDLL, str, Any, tuple[Any, ...]]] = [
    (library, "zelt_kernels", c_char_p, ()),
    (library, "zelt_imgp_get_fn_csc", ConvertFunction, (c_int32,) * 6 + (c_void_p,)),
    (library, "zelt_video_init", c_int32, (c_void_p,)),
    (library, "bilinear_rsz_step_size", c_uint32, (c_int32,) * 4 + (c_void_p, c_void_p)),
    *((library, f"zelt_irsz{name}_full", None,
       (c_void_p, c_int32, c_int32, c_int32, c_int32, c_void_p, c_uint32, c_uint32))
      for name in ("8b", "8b8b8b", "8b8b8b8b", "5b6b5b")),
    *((library, f"zelt_{name}", kind, (c_int, c_int, *_block))
      for name, kind in (("sad_16", c_uint32), ("satd", c_int), ("satd_16", c_int), ("ssd", c_uint32),
                         ("ssd_16", c_uint32))),
    (library, "zelt_sad_eskip", c_int, (c_int, c_int, *_block)),
    *((quick, f"zelt_sad{n}x{n}", c_uint32, _block) for n in (4, *_sizes)),
    *((quick, f"zelt_satd{n}x{n}", c_int, _block) for n in (4, 8)),
    (quick, "zelt_satd", c_int, (c_int, c_int, *_block)),
    (quick, "zelt_ssd", c_uint32, (c_int, c_int, *_block)),
    (library, "zelt_md5_update", None, (c_void_p, c_void_p, c_uint32)),
    (quick, "zelt_md5_init", None, (c_void_p,)),
    (quick, "zelt_md5_finish", None, (c_void_p, c_void_p)),
    (quick, "zelt_bsr_init", None, (c_void_p, c_void_p, c_int32, c_void_p)),
    *((quick, f"zelt_bsr_{name}", c_uint32, (c_void_p, c_int32)) for name in ("peek", "read", "skip")),
    (quick, "zelt_bsr_read_ue", c_uint32, (c_void_p,)),
    (quick, "zelt_bsw_init", None, (c_void_p, c_void_p, c_int32, c_void_p)),
    (quick, "zelt_bsw_write", c_int32, (c_void_p, c_uint32, c_int32)),
    (quick, "zelt_bsw_write_ue", None, (c_void_p, c_uint32)),
    (quick, "zelt_bsw_write_se", None, (c_void_p, c_int32)),
    (quick, "zelt_bsw_write_te", None, (c_void_p, c_uint32, c_int32)),
    *((quick, f"zelt_fcc2mt{kind}", c_int32, (c_uint32,)) for kind in ("", "_vid", "_aud", "_sub", "_drm")),
    (quick, "zelt_is_vkeyfrm", c_int32, (c_int32, c_void_p, c_int32)),
    (library, "zelt_imgb_create", ctypes.POINTER(ImageRecord),
     (c_int32, c_int32, c_int32, c_uint32, c_void_p, c_void_p, c_void_p, c_void_p, c_void_p)),
    (library, "zelt_imgb_expand", None, (c_void_p, c_void_p)),
    (quick, "zelt_rbuf_create", ctypes.POINTER(RingRecord), (c_int,)),
    (quick, "zelt_rbuf_delete", None, (c_void_p,)),
    (quick, "zelt_rbuf_put", c_int, (c_void_p, c_void_p, c_int)),
    (quick, "zelt_rbuf_get", c_int, (c_void_p, c_void_p, c_int)),
]
for _dll, _function, _result, _arguments in _prototypes:
    getattr(_dll, _function).restype = _result
    getattr(_dll, _function).argtypes = _arguments


def kernels() -> str:
    """Which form of the kernels the library uses on this processor, such as "x86-64-v3"."""
    text: bytes = library.zelt_kernels()
    return text.decode()
