// SPDX-License-Identifier: MIT
#pragma once  // the definition of the resizer, a pixel at a time: its formats, and rows of them
#include "csc/convert.h"
#include "resize/bilinear.h"
#include "zelt/irsz.h"

#include <array>

namespace zelt::inline ZELT_LEVEL::rsz {
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
        p[0] = static_cast<u8>(v[1] << 5 | v[2]);
        p[1] = static_cast<u8>(v[0] << 3 | v[1] >> 3);
    }
};

struct rgb888_to_565 : channels<3> {
    static constexpr int dst_bytes = 2;
    static void put(u8* p, const fields<3>& v) { rgb565_words::put(p, {v[0] >> 3, v[1] >> 2, v[2] >> 3}); }
};

/// The entry of the horizontal phase 0; the others follow, 32 bytes per phase.
inline const u8* weights_of(int phase) { return zelt_tbl_bilinear_rszw + 4 * phase; }

/// Weighted sum of four samples; the sum of the weights is 64
inline int blend(const u8* w, int tl, int tr, int bl, int br) {
    return (tl * w[0] + tr * w[1] + bl * w[2] + br * w[3]) >> 6;
}

/// Planes that are interpolated as a converter reads them
template <class Row> struct interpolated {
    const Row& row;
    const u8* weights;
    axis x;

    template <class V> pixel<V> get(csc::at place) const {
        const s64 position = place.x * x.step;
        const std::ptrdiff_t left = static_cast<std::ptrdiff_t>(x.sample(position));
        const std::ptrdiff_t right = left + static_cast<std::ptrdiff_t>(x.next);
        const u8* w = weights + 32 * axis::phase(position);
        const auto sample = [&](int p) {
            const u8 *top = row.top[p], *bottom = row.bottom[p];
            return static_cast<u8>(blend(w, top[left], top[right], bottom[left], bottom[right]));
        };
        pixel<V> v{sample(0), sample(1), sample(2), 255};
        if constexpr (Row::planes == 4) v.a = sample(3);
        return v;
    }
};
}  // namespace zelt::inline ZELT_LEVEL::rsz

namespace zelt::inline ZELT_LEVEL::scalar {
using rsz::axis;
using rsz::row_pair;

template <class Format> void resize_row(const row_pair& row, const axis& x, int dst_w, s64 first = 0) {
    const u8 *top = row.top[0], *bottom = row.bottom[0], *weights = rsz::weights_of(row.phase);
    u8* dst = row.dst;
    const std::ptrdiff_t next = static_cast<std::ptrdiff_t>(x.next * Format::src_bytes);
    s64 position = first * x.step;
    for (int i = 0; i < dst_w; ++i, position += x.step, dst += Format::dst_bytes) {
        const std::ptrdiff_t left = static_cast<std::ptrdiff_t>(x.sample(position) * Format::src_bytes);
        const u8* w = weights + 32 * axis::phase(position);
        const auto tl = Format::get(top + left), tr = Format::get(top + left + next);
        const auto bl = Format::get(bottom + left), br = Format::get(bottom + left + next);
        rsz::fields<Format::count> v;
        for (int c = 0; c < Format::count; ++c) v[c] = rsz::blend(w, tl[c], tr[c], bl[c], br[c]);
        Format::put(dst, v);
    }
}

template <class Format, class Rows> void resize_rows(const Rows& rows, int count, const axis& x, int dst_w) {
    if (dst_w < 1) return;  // the rows may be anywhere then
    for (int i = 0; i < count; ++i) resize_row<Format>(rows[i], x, dst_w);
}

/// Resizes planes and converts what comes of them.
template <class Matrix, class Rows> void resize_planes(const Rows& rows, int count, const axis& x, int dst_w) {
    for (int i = 0; i < count; ++i) {
        const auto row = rows[i];
        const rsz::interpolated<decltype(row)> src = {row, rsz::weights_of(row.phase), x};
        csc::convert_row<u8>(src, Matrix{}, row.dst, dst_w);
    }
}
}  // namespace zelt::inline ZELT_LEVEL::scalar
