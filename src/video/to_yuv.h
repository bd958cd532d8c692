// SPDX-License-Identifier: MIT
#pragma once  // a YUV format to another one
#include "core/copy.h"
#include "video/source.h"

namespace zelt::inline ZELT_LEVEL::video {
class to_yuv {
public:
    to_yuv(const plan& p, const picture& src, const picture& dst, std::ptrdiff_t w)
        : plan_(p), src_(src), dst_(dst), chroma_(src, w) {}

    /// Luma of all rows, between planes of it
    void copy_luma(const band& b) {
        if (packed()) return;
        if (dst_.s[0] == b.columns && src_.s[0] == b.columns) {  // no gaps: one run
            copy(dst_.row(0, b.begin), src_.row(0, b.begin), static_cast<std::size_t>(b.columns * (b.end - b.begin)));
            return;
        }
        for (std::ptrdiff_t y = b.begin; y < b.end; ++y)
            copy(dst_.row(0, y), src_.row(0, y), static_cast<std::size_t>(b.columns));
    }
    /// A row from pixel x on, which is even
    void convert(const band& b, std::ptrdiff_t x, std::ptrdiff_t y) {
        const format &from = src_.format, &to = dst_.format;
        const bool with_chroma = to.kind != kind::grey && !(to.half_h && y % 2);
        if (!with_chroma && !packed()) return;
        const pair_of_rows rows = rows_for(y, b.h, from.half_h, to.half_h, plan_.smooth);
        for_strips(x, b.columns, [&](strip s) {
            if (with_chroma) put_chroma(rows, to.half_h ? y / 2 : y, s);
            if (packed()) put_luma(y, s);
        });
    }

private:
    bool packed() const { return src_.format.kind == kind::packed || dst_.format.kind == kind::packed; }

    /// To or from a packed row
    void put_luma(std::ptrdiff_t y, strip s) {
        const format &from = src_.format, &to = dst_.format;
        const bool unpack = from.kind == kind::packed, pack = to.kind == kind::packed;
        const u8* luma = src_.row(0, y) + (unpack ? 2 : 1) * s.x;
        u8* const out = dst_.row(0, y) + (pack ? 2 : 1) * s.x;
        if (unpack) {
            take(luma, from.second, pack ? luma_ : out, s.pixels);
            luma = luma_;
        }
        if (pack) interleave(luma, pairs_, to.second, out, s.pixels);
    }

    void put_chroma(pair_of_rows rows, std::ptrdiff_t y, strip s) {
        const format &from = src_.format, &to = dst_.format;
        if (from.kind == kind::grey) return put_grey(y, s);
        const bool one_row = rows.near == rows.far;
        if (to.half_w && from.half_w && one_row && v_first(from) == v_first(to))
            return chroma_.samples(rows.near, s, [&](auto c) { put_halved(c, y, s); });
        chroma_.add_up(rows, s);
        if (to.half_w) {
            from.half_w ? put_halved(chroma_.samples(v_first(to)), y, s) : put_halved(chroma_.means(v_first(to)), y, s);
            return;
        }
        for (int c = 0; c < 2; ++c) {
            u8* out = dst_.row(1 + c, y) + s.x;
            if (!from.half_w)
                put_pixels(chroma_.of_pixels(c), out, s);
            else if (plan_.smooth)
                put_pixels(chroma_.smooth(c), out, s);
            else
                put_pixels(chroma_.replicated(c), out, s);
        }
    }
    static bool v_first(const format& f) { return f.kind == kind::paired && f.second; }

    void put_grey(std::ptrdiff_t y, strip s) {
        const auto size = static_cast<std::size_t>(dst_.format.half_w ? s.pairs() : s.pixels);
        if (dst_.format.kind == kind::packed)
            std::memset(pairs_, 128, 2 * size);
        else if (dst_.format.kind == kind::paired)
            std::memset(dst_.row(1, y) + s.x, 128, 2 * size);
        else
            for (int i = 1; i < 3; ++i) std::memset(dst_.row(i, y) + (dst_.format.half_w ? s.x / 2 : s.x), 128, size);
    }
    template <class Chroma> void put_halved(Chroma c, std::ptrdiff_t y, strip s) {
        if (dst_.format.kind == kind::planar)
            to_planes(c, dst_.row(1, y) + s.x / 2, dst_.row(2, y) + s.x / 2, s.pairs());
        else
            to_pairs(c, dst_.format.kind == kind::paired ? dst_.row(1, y) + s.x : pairs_, s.pairs());
    }
    template <class Chroma> static void put_pixels(Chroma c, u8* out, strip s) {
        to_pairs(c, out, s.pixels / 2);
        if (s.pixels % 2) {
            u8 even, odd;
            c.template bytes<u8>(s.pixels / 2, even, odd);
            out[s.pixels - 1] = even;
        }
    }

    const plan& plan_;
    const picture &src_, &dst_;
    chroma_reader chroma_;
    u8 luma_[2 * strip_pairs], pairs_[2 * strip_pairs];
};
}  // namespace zelt::inline ZELT_LEVEL::video
