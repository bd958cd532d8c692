// SPDX-License-Identifier: MIT
#pragma once  // an RGB format to one of YUV
#include "video/source.h"

namespace zelt::inline ZELT_LEVEL::video {
class from_rgb {
public:
    from_rgb(const plan& p, const picture& src, const picture& dst)
        : matrix_(swapped(dst.format) ? p.back.with_v_first() : p.back), src_(src), dst_(dst) {}

    /// Row y, and the next one if both share chroma: how many they were
    std::ptrdiff_t convert(const band& b, std::ptrdiff_t y) {
        const video::format& to = dst_.format;
        if (to.kind == kind::grey || (to.half_h && y % 2)) return put_luma(b, y);
        const bool two = to.half_h && y + 1 < b.h, both_here = two && y + 1 < b.end;
        if (both_here == two && to.kind != kind::packed)
            put({0, b.columns}, y, two, both_here);
        else
            for_strips(0, b.columns, [&](strip s) { put(s, y, two, both_here); });
        return both_here ? 2 : 1;
    }

private:
    static bool swapped(const video::format& f) { return f.kind == kind::paired && f.second; }

    rgb_rows source(strip s, std::ptrdiff_t y, bool two) const {
        const writer& rgb = *src_.format.rgb;
        rgb_rows rows{};
        for (int i = 0; i < rgb.planes; ++i)
            for (int k = 0; k < 1 + two; ++k) rows.p[k][i] = src_.row(i, y + k) + s.x * rgb.step[i];
        return rows;
    }
    std::ptrdiff_t put_luma(const band& b, std::ptrdiff_t y) {
        src_.format.from->luma(matrix_, source({0, b.columns}, y, false), dst_.row(0, y), b.columns);
        return 1;
    }
    /// Where the second row is another band's its luma goes nowhere.
    void put(strip s, std::ptrdiff_t y, bool two, bool both_here) {
        const video::format& to = dst_.format;
        const rgb_rows from = source(s, y, two);
        if (to.kind == kind::packed) {
            src_.format.from->pairs[0](matrix_, from, {{luma_, nullptr}, pairs_, nullptr}, true, s.pixels);
            return interleave(luma_, pairs_, to.second, dst_.row(0, y) + 2 * s.x, s.pixels);
        }
        const std::ptrdiff_t row = to.half_h ? y / 2 : y, x = to.half_w && to.kind == kind::planar ? s.x / 2 : s.x;
        const yuv_rows out = {{dst_.row(0, y) + s.x, both_here ? dst_.row(0, y + 1) + s.x : luma_},
                              dst_.row(1, row) + x,
                              to.kind == kind::planar ? dst_.row(2, row) + x : nullptr};
        if (to.half_w)
            src_.format.from->pairs[two](matrix_, from, out, to.kind == kind::paired, s.pixels);
        else
            src_.format.from->pixels[two](matrix_, from, out, s.pixels);
    }

    const back_matrix matrix_;
    const picture &src_, &dst_;
    u8 luma_[2 * strip_pairs], pairs_[2 * strip_pairs];
};
}  // namespace zelt::inline ZELT_LEVEL::video
