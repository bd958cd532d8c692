#pragma once  // the resizer a pixel at a time: its formats, and rows of them
#include "resize/bilinear.h"
#include "zelt/irsz.h"

#include <array>

namespace zelt::inline ZELT_LEVEL::csc {
/// The fields of a pixel, at their own precision
template <int N> using fields = std::array<int, N>;

template <int N> struct channels {
    static constexpr int count = N, src_bytes = N, dst_bytes = N;

    static fields<N> get(const u8* p) {
        fields<N> v;
        for (int i = 0; i < N; ++i) v[i] = p[i];
        return v;
    }
    static void put(u8* p, const fields<N>& v) {
        for (int i = 0; i < N; ++i) p[i] = static_cast<u8>(v[i]);
    }
};

struct rgb565_words {
    static constexpr int count = 3, src_bytes = 2, dst_bytes = 2;

    static fields<3> get(const u8* p) { return {p[1] >> 3, (p[1] & 7) << 3 | p[0] >> 5, p[0] & 31}; }
    static void put(u8* p, const fields<3>& v) {
        p[0] = static_cast<u8>(v[1] << 5 | v[2]), p[1] = static_cast<u8>(v[0] << 3 | v[1] >> 3);
    }
};

struct rgb888_to_565 : channels<3> {
    static constexpr int dst_bytes = 2;
    static void put(u8* p, const fields<3>& v) { rgb565_words::put(p, {v[0] >> 3, v[1] >> 2, v[2] >> 3}); }
};

/// The entry of the horizontal phase 0; others lie at 32 bytes a phase.
inline const u8* weights_of(int phase) { return zelt_tbl_bilinear_rszw + 4 * phase; }

/// Weighted sum of four samples; the weights' sum is 64
inline int blend(const u8* w, int tl, int tr, int bl, int br) {
    return (tl * w[0] + tr * w[1] + bl * w[2] + br * w[3]) >> 6;
}

}  // namespace zelt::inline ZELT_LEVEL::csc

namespace zelt::inline ZELT_LEVEL::scalar {
using csc::axis;
using csc::row_pair;

template <class Format> void resize_row(const row_pair& rows, const axis& x, int dst_w) {
    const u8 *top = rows.top[0], *bottom = rows.bottom[0], *weights = csc::weights_of(rows.phase);
    u8* dst = rows.dst;
    const std::ptrdiff_t next = static_cast<std::ptrdiff_t>(x.next * Format::src_bytes);
    s64 position = 0;
    for (int i = 0; i < dst_w; ++i, position += x.step, dst += Format::dst_bytes) {
        const std::ptrdiff_t left = static_cast<std::ptrdiff_t>(x.sample(position) * Format::src_bytes);
        const u8* w = weights + 32 * axis::phase(position);
        const auto tl = Format::get(top + left), tr = Format::get(top + left + next);
        const auto bl = Format::get(bottom + left), br = Format::get(bottom + left + next);
        csc::fields<Format::count> v;
        for (int c = 0; c < Format::count; ++c) v[c] = csc::blend(w, tl[c], tr[c], bl[c], br[c]);
        Format::put(dst, v);
    }
}

template <class Format, class Rows> void resize_rows(const Rows& rows, int count, const axis& x, int dst_w) {
    if (dst_w < 1) return;  // the rows may be anywhere then
    for (int i = 0; i < count; ++i) resize_row<Format>(rows[i], x, dst_w);
}
}  // namespace zelt::inline ZELT_LEVEL::scalar
