// SPDX-License-Identifier: MIT
#pragma once  // the formats of the resizer, a register at a time
#include "csc/convert.h"
#include "resize/resize_scalar.h"
#include "resize/rows_simd.h"

#include <algorithm>

namespace zelt::inline ZELT_LEVEL::simd {
using rsz::row_pair;

/// The fields of RGB565 words, as a converter reads them
struct fields565 : csc::planes<1> {
    using planes::planes;
    template <class V, class Place> pixel<V> get(Place place) {
        V low, high;
        place.load(p[0], low, high);
        return {static_cast<V>(high >> 3), static_cast<V>((high & 7) << 3 | low >> 5), static_cast<V>(low & 31), low};
    }
};

/// Source rows of packed pixels, deinterleaved into three planes before they are filtered
template <class Layout, int Bytes> class deinterleaved {
public:
    static constexpr int planes = 3, source_planes = 1;
    static constexpr int max_pixels = 4096;                 // of a source row that the columns may need
    static constexpr int max_windows = Bytes == 2 ? 8 : 4;  // beyond, too many of the pixels would go unused
    static constexpr bool is_direct = false;

    deinterleaved(const columns& c, int windows) : start_(c.source_start), size_(c.source_end(windows)) {}

    [[gnu::noinline]] const u8* const* samples_of(const u8* const* row) {
        Layout src;
        src.p[0] = const_cast<u8*>(*row) + start_ * Bytes;
        csc::planar<3> dst;
        for (int i = 0; i < 3; ++i) dst.p[i] = pixels_[i];
        if (size_ >= lanes)
            csc::convert_row<u8xn>(src, csc::repack{}, dst, size_);
        else
            csc::convert_row<u8>(src, csc::repack{}, dst, size_);
        return samples_;
    }

private:
    std::ptrdiff_t start_, size_;
    u8 pixels_[3][max_pixels];
    const u8* samples_[3] = {pixels_[0], pixels_[1], pixels_[2]};
};

/// Pixels of bytes, all channels of which are filtered alike
struct packed {
    using source = direct<1>;
    static void put(u8* dst, std::ptrdiff_t x, const u8xn (&v)[1]) {
        fetch_for_stores(dst + x);
        store(dst + x, v[0]);
    }
};

struct rgb565_to_565 {
    using source = deinterleaved<fields565, 2>;
    static void put(u8* dst, std::ptrdiff_t x, const u8xn (&v)[3]) {
        store2(dst + 2 * x, v[1] << 5 | v[2], v[0] << 3 | v[1] >> 3);
    }
};

struct rgb888_to_565 {
    using source = deinterleaved<csc::rgb888, 3>;
    static void put(u8* dst, std::ptrdiff_t x, const u8xn (&v)[3]) {
        const pixel<u8xn> rgb = {v[0], v[1], v[2], v[2]};
        store2(dst + 2 * x, csc::low565(rgb), csc::high565(rgb));
    }
};

/// N planes, converted before they are stored to a layout
template <int N, class Matrix> struct converted {
    using source = direct<N>;
    template <class Layout> static void put(Layout dst, std::ptrdiff_t x, const u8xn (&v)[N]) {
        dst.put(csc::at{x}, Matrix{}(pixel<u8xn>{v[0], v[1], v[2], N == 4 ? v[N - 1] : csc::opaque<u8xn>}));
    }
};

/// How the row loops take a format of resize_scalar.h
template <class Format> struct vector_form;
template <int N> struct vector_form<rsz::channels<N>> {
    using format = packed;
    static constexpr int channels = N;
};
template <> struct vector_form<rsz::rgb565_words> {
    using format = rgb565_to_565;
    static constexpr int channels = 1;
};
template <> struct vector_form<rsz::rgb888_to_565> {
    using format = rgb888_to_565;
    static constexpr int channels = 1;
};

template <class Format, class Rows> void resize_rows(const Rows& rows, int count, const axis& x, int dst_w) {
    using form = vector_form<Format>;
    if (dst_w > 0 && !resize_simd<typename form::format, form::channels>(rows, count, x, dst_w))
        scalar::resize_rows<Format>(rows, count, x, dst_w);
}

template <class Matrix, class Rows> void resize_planes(const Rows& rows, int count, const axis& x, int dst_w) {
    if (!resize_simd<converted<Rows::planes, Matrix>, 1>(rows, count, x, dst_w))
        scalar::resize_planes<Matrix>(rows, count, x, dst_w);
}
}  // namespace zelt::inline ZELT_LEVEL::simd
