// SPDX-License-Identifier: MIT
#pragma once  // samples of a strip of a source, on their way to pixels or to another format
#include "video/picture.h"

namespace zelt::inline ZELT_LEVEL::video {
/// Every second byte of a packed row
template <int Which> void take(const u8* src, u8* dst, std::ptrdiff_t n) {
    for_each(n, [=](auto a, std::ptrdiff_t i) {
        auto b = a;
        load2(src + 2 * i, a, b);
        store(dst + i, Which ? b : a);
    });
}
/// Luma or chroma of a packed row
inline void take(const u8* src, bool second, u8* dst, std::ptrdiff_t n) { (second ? take<1> : take<0>)(src, dst, n); }

/// A packed row of luma, the second byte of two or the first one, and of chroma in pairs. A pair of pixels of which
/// there is one gets its luma twice.
inline void interleave(const u8* luma, const u8* pairs, bool second, u8* out, std::ptrdiff_t n) {
    for_each(n, [=](auto y, std::ptrdiff_t i) {
        auto c = y;
        load(luma + i, y), load(pairs + i, c);
        second ? store2(out + 2 * i, c, y) : store2(out + 2 * i, y, c);
    });
    if (n % 2) {
        out[2 * n + second] = luma[n - 1];
        out[2 * n + !second] = pairs[n];
    }
}

/// The two rows of a source that a row of chroma is made from, and whether the nearer one counts three times as much
struct pair_of_rows {
    std::ptrdiff_t near, far;
    bool apart;
};
/// For a pixel row, at full height or at half of it (then one of even number)
inline pair_of_rows rows_for(std::ptrdiff_t y, std::ptrdiff_t h, bool from_half, bool to_half, bool smooth) {
    if (!from_half) return {y, to_half ? std::min(y + 1, h - 1) : y, false};
    const std::ptrdiff_t near = y / 2, last = (h - 1) / 2;
    if (to_half || !smooth) return {near, near, false};
    return {near, std::clamp(y % 2 ? near + 1 : near - 1, std::ptrdiff_t{0}, last), true};
}

/// Chroma of a strip of a source, on its way to pixels or to another format
class chroma_reader {
public:
    chroma_reader(const picture& src, std::ptrdiff_t w) : src_(src), w_(w) {}

    const u8* plane(int channel, std::ptrdiff_t row, strip s) const {
        return src_.row(1 + channel, row) + (src_.format.half_w ? s.x / 2 : s.x);
    }
    /// Samples as they are: where they are halved across and come from one row
    template <class Body> void samples(std::ptrdiff_t row, strip s, Body body) {
        if (src_.format.kind == kind::planar)
            body(plane_samples{plane(0, row, s), plane(1, row, s)});
        else
            body(paired_samples<false>{paired(row, s, s.pairs(), near_)});
    }

    /// Samples of two rows where they are halved across: if those are apart for both rows of pixels between them
    template <class Body> void between(pair_of_rows rows, strip s, Body body) {
        rows.apart ? between<3, 1, 2>(rows, s, body) : between<2, 2, 1>(rows, s, body);
    }
    /// How many samples there are for a strip and the pixel after it
    std::ptrdiff_t with_next(strip s) const { return std::min(s.pairs() + 1, (w_ + 1 - s.x) / 2); }

    /// Makes the sums over the two rows.
    void add_up(pair_of_rows rows, strip s) { rows.apart ? add_up<3, 1>(rows, s) : add_up<2, 2>(rows, s); }

    /// Chroma halved across, U first or V
    single samples(bool v_first = false) const { return {even_[v_first], even_[!v_first]}; }
    /// Chroma of all pixels
    single odd_samples() const { return {odd_[0], odd_[1]}; }
    mean means(bool v_first) const { return {even_[v_first], odd_[v_first], even_[!v_first], odd_[!v_first]}; }
    /// One channel for even and odd pixels
    single of_pixels(int channel) const { return {even_[channel], odd_[channel]}; }
    single replicated(int channel) const { return {even_[channel], even_[channel]}; }
    doubled smooth(int channel) const { return {even_[channel]}; }

private:
    bool v_first() const { return src_.format.kind == kind::paired && src_.format.second; }
    const u8* paired(std::ptrdiff_t row, strip s, std::ptrdiff_t n, u8* scratch) const {
        if (src_.format.kind == kind::paired) return src_.row(1, row) + s.x;
        take(src_.row(0, row) + 2 * s.x, !src_.format.second, scratch, 2 * n);
        return scratch;
    }

    template <int A, int B, int Rows, class Body> void between(pair_of_rows rows, strip s, Body body) {
        if (src_.format.kind == kind::planar) {
            const auto row = [&](std::ptrdiff_t y) { return plane_samples{plane(0, y, s), plane(1, y, s)}; };
            body(between_rows<A, B, Rows, plane_samples>{row(rows.near), row(rows.far)});
            return;
        }
        const std::ptrdiff_t n = with_next(s);
        const u8* near = paired(rows.near, s, n, near_);
        const u8* far = rows.far == rows.near ? near : paired(rows.far, s, n, far_);
        if (v_first())
            body(between_rows<A, B, Rows, paired_samples<true>>{{near}, {far}});
        else
            body(between_rows<A, B, Rows, paired_samples<false>>{{near}, {far}});
    }

    template <int A, int B> void add_up(pair_of_rows rows, strip s) {
        if (!src_.format.half_w) {
            for (int c = 0; c < 2; ++c) {
                const u8 *near = plane(c, rows.near, s), *far = plane(c, rows.far, s);
                const std::ptrdiff_t last = s.pixels / 2;
                weigh2<A, B>(near, far, even_[c], odd_[c], last);
                if (s.pixels % 2) weigh<A, B>(near + 2 * last, far + 2 * last, even_[c] + last, 1);
                if (s.pixels % 2) odd_[c][last] = even_[c][last];
            }
            return;
        }
        // and the next one, which in the last strip there is not
        const std::ptrdiff_t n = s.pairs(), there = with_next(s);
        if (src_.format.kind == kind::planar) {
            for (int c = 0; c < 2; ++c) weigh<A, B>(plane(c, rows.near, s), plane(c, rows.far, s), even_[c], there);
        } else {
            const u8* near = paired(rows.near, s, there, near_);
            const u8* far = rows.far == rows.near ? near : paired(rows.far, s, there, far_);
            weigh2<A, B>(near, far, even_[v_first()], even_[!v_first()], there);
        }
        if (there == n)
            for (auto& channel : even_) channel[n] = channel[n - 1];
    }

    const picture& src_;
    const std::ptrdiff_t w_;
    s16 even_[2][strip_pairs + 1], odd_[2][strip_pairs + 1];
    u8 near_[2 * strip_pairs + 2], far_[2 * strip_pairs + 2];
};
}  // namespace zelt::inline ZELT_LEVEL::video
