# SPDX-License-Identifier: MIT
"""libzelt: exact colour conversion, resizing, block metrics, digests and bit fields for pictures in NumPy arrays.

Arrays are read and written in place, and while the library works other threads run. Results are the same bytes on
every processor. Errors are exceptions: ValueError and TypeError say what was wrong and what would do, EOFError that
data has ended.
"""
from ._library import kernels
from .arrays import empty, planes
from .bits import BitReader, BitWriter
from .buffers import Picture, Ring
from .convert import Converter, Prepared, conversions, convert, resize
from .digest import framemd5, md5
from .formats import formats
from .media import MediaType, is_keyframe, media_type
from .metrics import motion, sad, sad_map, satd, ssd

__version__ = "1.1.0"
__all__ = ["BitReader", "BitWriter", "Converter", "MediaType", "Picture", "Prepared", "Ring", "conversions", "convert",
           "empty", "formats", "framemd5", "is_keyframe", "kernels", "md5", "media_type", "motion", "planes", "resize",
           "sad", "sad_map", "satd", "ssd"]
