# SPDX-License-Identifier: MIT
"""Media types of containers' codes, and key frames."""
from __future__ import annotations

from enum import IntEnum
from typing import Any, Optional, Union

from ._library import quick
from .arrays import address, as_bytes


class MediaType(IntEnum):
    """What a code stands for; the values are those of zelt/fcc2mt.h."""
    UNKNOWN = 0
    VID_MPEG4 = 102
    VID_H263 = 103
    VID_H264 = 104
    VID_WMV1 = 105
    VID_WMV2 = 106
    VID_WMV3 = 107
    VID_DIV3 = 110
    VID_RV10 = 113
    VID_RV20 = 114
    VID_RV30 = 115
    VID_RV40 = 116
    VID_MP43 = 117
    VID_VC1 = 118
    VID_VP8 = 119
    VID_HEVC = 120
    VID_HFYU = 122
    VID_UNKNOWN = 299
    AUD_PCM = 300
    AUD_ALAW = 301
    AUD_MULAW = 302
    AUD_MPEG = 304
    AUD_MP3 = 305
    AUD_AAC = 306
    AUD_AC3 = 307
    AUD_DTS = 308
    AUD_AMR_NB = 309
    AUD_AMR_WB = 310
    AUD_QCELP = 311
    AUD_WMA = 312
    AUD_WMA_PRO = 313
    AUD_WMA_LOSSLESS = 314
    AUD_EVRC = 321
    AUD_SIPR = 331
    AUD_COOK = 332
    AUD_UNKNOWN = 499
    DRM_DIVX = 1100
    DRM_UNKNOWN = 1299
    SUB_SRT = 3000
    SUB_TX3G = 3006
    SUB_ASS = 3007
    SUB_SSA = 3008
    SUB_UNKNOWN = 3199


_CLASSES = {None: quick.zelt_fcc2mt, "video": quick.zelt_fcc2mt_vid, "audio": quick.zelt_fcc2mt_aud,
            "subtitle": quick.zelt_fcc2mt_sub, "drm": quick.zelt_fcc2mt_drm}


def media_type(code: Union[str, bytes, int], kind: Optional[str] = None) -> MediaType:
    """What a container's code stands for.

    code: a FourCC of four characters, or a number: a FourCC with its first character lowest, or a WAVE format tag.
    kind: "video", "audio", "subtitle" or "drm" looks in that class alone, and gives its *_UNKNOWN where nothing fits.

    >>> media_type("avc1"), media_type(85, "audio")
    (<MediaType.VID_H264: 104>, <MediaType.AUD_MP3: 305>)
    """
    if kind not in _CLASSES:
        raise ValueError(f"kind is one of {', '.join(repr(k) for k in _CLASSES if k)} or None, not {kind!r}")
    if not isinstance(code, int):
        text = code.encode("latin-1") if isinstance(code, str) else code
        if len(text) != 4:
            raise ValueError(f"a FourCC has four characters, not {len(text)}")
        code = int.from_bytes(text, "little")
    return MediaType(_CLASSES[kind](code & 0xffffffff))


def is_keyframe(kind: Union[MediaType, str], data: Any) -> bool:
    """Whether a compressed frame is intra coded, so that decoding can start there, from the headers at its beginning.

    kind: a MediaType, or the end of its name, "h264", "mpeg4". data: the bytes of the frame as a container delivers
    it, H.264 and HEVC with start codes. The rule for each type is in zelt/fcc2mt.h; types without one have no key
    frames.

    >>> is_keyframe("h264", bytes.fromhex("00000001 65"))
    True
    """
    if isinstance(kind, str):
        try:
            kind = MediaType[f"VID_{kind.upper()}"]
        except KeyError:
            raise ValueError(f"no video is called {kind!r}; there are "
                             f"{', '.join(m.name[4:].lower() for m in MediaType if 0 < m < 299)}") from None
    array = as_bytes(data)
    return bool(array.nbytes and quick.zelt_is_vkeyfrm(kind, address(array), min(array.nbytes, 2**31 - 1)))
