// SPDX-License-Identifier: MIT
#pragma once  // from any source to any destination
#include "video/from_rgb.h"
#include "video/from_ten.h"
#include "video/repack.h"
#include "video/to_rgb.h"
#include "video/to_ten.h"
#include "video/to_yuv.h"

namespace zelt::inline ZELT_LEVEL::video {
inline void convert_band(const plan& p, void* const* src_a, const s32* src_s, void* const* dst_a, const s32* dst_s,
                         band b) {
    const picture src(formats[p.src], src_a, src_s), dst(formats[p.dst], dst_a, dst_s);
    if (p.as_csc) {
        void *from[3], *to[3];
        s32 from_s[3], to_s[3];
        for (int i = 0; i < 3; ++i) {
            from[i] = src.p[i] ? src.row(i, b.begin) : nullptr, from_s[i] = static_cast<s32>(src.s[i]);
            to[i] = dst.p[i] ? dst.row(i, b.begin) : nullptr, to_s[i] = static_cast<s32>(dst.s[i]);
        }
        const auto convert = src.format.from ? src.format.from->full_range_bt601 : dst.format.rgb->full_range_bt601;
        convert(from, static_cast<int>(b.columns), static_cast<int>(b.end - b.begin), from_s, to, to_s);
    } else if (src.format.from) {
        from_rgb convert(p, src, dst);
        for (std::ptrdiff_t y = b.begin, rows; y < b.end; y += rows) rows = convert.convert(b, y);
    } else if (src.format.rgb) {
        const to_ten convert(p, src, dst, b.columns);
        for (std::ptrdiff_t y = b.begin; y < b.end; ++y) convert.convert(b, y);
    } else if (src.format.ten && !dst.format.rgb) {
        tens_to_yuv convert(p, src, dst, b.w);
        for (std::ptrdiff_t y = b.begin; y < b.end; ++y) convert.convert(b, y);
    } else if (dst.format.rgb) {
        const std::ptrdiff_t x = convert_shared(p, src, dst, b);
        if (x == b.columns) return;
        if (src.format.ten) return tens_to_pixels(p, src, dst, b.w).convert(b, x);
        to_pixels convert(p, src, dst, b.w);
        for (std::ptrdiff_t y = b.begin; y < b.end;) y += convert.convert(b, x, y);
    } else {
        to_yuv convert(p, src, dst, b.w);
        if (b.with_luma) convert.copy_luma(b);
        const repacker whole(p, src, dst, b);
        if (whole.convert_run()) return;
        for (std::ptrdiff_t y = b.begin; y < b.end; ++y)
            if (const std::ptrdiff_t x = whole.convert(y); x < b.columns) convert.convert(b, x, y);
    }
}
}  // namespace zelt::inline ZELT_LEVEL::video
