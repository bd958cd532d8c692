// SPDX-License-Identifier: MIT
// Turning a plane: the export.
#include "video/turn.h"

#include "simd/export.h"

using namespace zelt;
using namespace zelt::video;

ZELT_EXPORT(int32_t, zelt_video_turn)
(const uint8_t* src, int32_t src_stride, uint8_t* dst, int32_t dst_stride, int32_t w, int32_t h, int32_t bytes,
 int32_t turn) {
    if (bytes < 1 || bytes > 4 || turn < 0 || turn > 7) return ZELT_ERR_INVALID_ARG;
    if (w > 0 && h > 0) turn_plane(src, src_stride, dst, dst_stride, w, h, bytes, way(turn));
    return ZELT_OK;
}
