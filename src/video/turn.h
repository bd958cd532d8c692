// SPDX-License-Identifier: MIT
#pragma once
// Turning and mirroring. Each of the eight ways is to exchange rows and columns or not, taking the source's rows from
// the bottom and its columns from the right or not.
#include "core/copy.h"
#include "video/turn_scalar.h"
#if ZELT_SIMD
#include "video/turn_simd.h"
#endif
#include "zelt/video.h"

#include <algorithm>

namespace zelt::inline ZELT_LEVEL::video {
using namespace fast;

struct way {
    bool exchanged, from_right, from_bottom;

    explicit way(s32 turn)
        : exchanged(turn & 1), from_right((turn >> 1 ^ turn >> 2) & 1), from_bottom((turn ^ turn >> 1) & 1) {}
};

/// Some pixels of a plane
struct area {
    std::ptrdiff_t x, y, w, h;
};
inline area common(area a, area b) {
    const std::ptrdiff_t x = std::max(a.x, b.x), y = std::max(a.y, b.y);
    return {x, y, std::min(a.x + a.w, b.x + b.w) - x, std::min(a.y + a.h, b.y + b.h) - y};
}
inline area both(area a, area b) {
    const std::ptrdiff_t x = std::min(a.x, b.x), y = std::min(a.y, b.y);
    return {x, y, std::max(a.x + a.w, b.x + b.w) - x, std::max(a.y + a.h, b.y + b.h) - y};
}
/// Where they are once a plane of w by h is turned
inline area turned(area a, std::ptrdiff_t w, std::ptrdiff_t h, way t) {
    if (t.from_right) a.x = w - a.x - a.w;
    if (t.from_bottom) a.y = h - a.y - a.h;
    if (t.exchanged) return {a.y, a.x, a.h, a.w};
    return a;
}

/// Turns w by h pixels.
template <int Bytes>
void turn_plane(const u8* src, std::ptrdiff_t src_s, u8* dst, std::ptrdiff_t dst_s, std::ptrdiff_t w, std::ptrdiff_t h,
                way t) {
    if (t.from_bottom) src += (h - 1) * src_s, src_s = -src_s;
    if (t.exchanged) {
        if (t.from_right) dst += (w - 1) * dst_s, dst_s = -dst_s;
        return transpose<Bytes>(src, src_s, dst, dst_s, w, h);
    }
    for (std::ptrdiff_t y = 0; y < h; ++y)
        if (t.from_right)
            reverse_row<Bytes>(src + y * src_s, dst + y * dst_s, w);
        else
            copy(dst + y * dst_s, src + y * src_s, static_cast<std::size_t>(w * Bytes));
}
inline void turn_plane(const u8* src, std::ptrdiff_t src_s, u8* dst, std::ptrdiff_t dst_s, std::ptrdiff_t w,
                       std::ptrdiff_t h, int bytes, way t) {
    static constexpr decltype(&turn_plane<1>) of_bytes[] = {turn_plane<1>, turn_plane<2>, turn_plane<3>, turn_plane<4>};
    of_bytes[bytes - 1](src, src_s, dst, dst_s, w, h, t);
}
}  // namespace zelt::inline ZELT_LEVEL::video
