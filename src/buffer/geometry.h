// SPDX-License-Identifier: MIT
#pragma once  // the planes of a picture in its block of memory
#include "core/types.h"

namespace zelt {

struct geometry {
    s32 nplanes;
    s64 size;                ///< bytes in the block; -1 if the picture cannot be allocated, and only nplanes is valid
    s32 w[4], h[4];          ///< of each plane in samples and rows
    s32 aw[4], ah[4];        ///< the same, aligned
    s32 stride[4], rows[4];  ///< with padding
    s32 plane_offset[4];     ///< bytes from the start of a plane's memory to its sample (0, 0)
    u32 bps[4];              ///< bytes per sample in the high half, 1 in the low half
};

/// Geometry of a picture; align and pad are null or hold a word per plane (horizontal half high, vertical half low).
/// Returns ZELT_ERR_UNSUPPORTED for a colour space that no picture can have. A picture cannot be allocated if its
/// width, its height or anything computed from them is negative or exceeds 2^31 - 1.
s32 get_info(s32 cs, s32 w, s32 h, const u32* align, const u32* pad, geometry* g);

}  // namespace zelt
