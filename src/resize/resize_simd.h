#pragma once  // the formats of the resizer over registers
#include "csc/convert.h"
#include "resize/resize_scalar.h"
#include "resize/rows_simd.h"

namespace zelt::inline ZELT_LEVEL::csc {
/// The fields of RGB565 words
struct fields565 : planes<1> {
    using planes::planes;
    template <class V> pixel<V> get(std::ptrdiff_t x) const {
        V low, high;
        load2(p[0] + 2 * x, low, high);
        return {static_cast<V>(high >> 3), static_cast<V>((high & 7) << 3 | low >> 5), static_cast<V>(low & 31), low};
    }
};
}  // namespace zelt::inline ZELT_LEVEL::csc

namespace zelt::inline ZELT_LEVEL::simd {
using csc::row_pair;

// Pixels of 1, 3 and 4 bytes are interpolated where they stand; the bytes of a row are its samples.

struct put_bytes {
    static void put(u8* dst, std::ptrdiff_t x, const u8xn (&v)[1]) { store(dst + x, v[0]); }
};

// Where the result is RGB565, a source row comes apart into three planes first.

template <class Layout, int Bytes> class taken_apart {
public:
    static constexpr int planes = 3, source_planes = 1;
    static constexpr int most = 4096;                        // pixels of a row that the columns may need
    static constexpr int most_windows = Bytes == 2 ? 8 : 4;  // beyond, too little is used of what comes apart
    static constexpr bool as_is = false;

    taken_apart(const columns& c, int windows) : start_(c.source_start()), size_(c.source_end(windows) - start_) {}

    [[gnu::noinline]] const u8* const* operator()(const u8* const* row) {
        Layout src;
        src.p[0] = const_cast<u8*>(*row) + start_ * Bytes;
        csc::planar<3> dst;
        for (int i = 0; i < 3; ++i) dst.p[i] = pixels_[i], samples_[i] = pixels_[i] - start_;
        if (size_ >= lanes)
            csc::convert_row<u8xn>(src, csc::repack{}, dst, size_);
        else
            csc::convert_row<u8>(src, csc::repack{}, dst, size_);
        return samples_;
    }

private:
    std::ptrdiff_t start_, size_;
    const u8* samples_[3];
    u8 pixels_[3][most];
};

struct put_fields565 {
    static void put(u8* dst, std::ptrdiff_t x, const u8xn (&v)[3]) {
        store2(dst + 2 * x, v[1] << 5 | v[2], v[0] << 3 | v[1] >> 3);
    }
};
struct put_rgb565 {
    static void put(u8* dst, std::ptrdiff_t x, const u8xn (&v)[3]) {
        const pixel<u8xn> rgb = {v[0], v[1], v[2], v[2]};
        store2(dst + 2 * x, csc::low565(rgb), csc::high565(rgb));
    }
};

template <class Format> struct registers;
template <int N> struct registers<csc::channels<N>> {
    template <class Rows> static bool resize(const Rows& rows, int count, const axis& x, int w) {
        return go_through<in_place<1>, put_bytes, N>(rows, count, x, w);
    }
};
template <class Source, class Out> struct apart {
    template <class Rows> static bool resize(const Rows& rows, int count, const axis& x, int w) {
        return go_through<Source, Out, 1>(rows, count, x, w);
    }
};
template <> struct registers<csc::rgb565_words> : apart<taken_apart<csc::fields565, 2>, put_fields565> {};
template <> struct registers<csc::rgb888_to_565> : apart<taken_apart<csc::rgb888, 3>, put_rgb565> {};

template <class Format, class Rows> void resize_rows(const Rows& rows, int count, const axis& x, int dst_w) {
    if (!registers<Format>::resize(rows, count, x, dst_w)) scalar::resize_rows<Format>(rows, count, x, dst_w);
}
}  // namespace zelt::inline ZELT_LEVEL::simd
