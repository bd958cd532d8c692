// SPDX-License-Identifier: MIT
#pragma once  // some columns of a resized plane, whose rows are made strip by strip
#include "resize/resize_scalar.h"

namespace zelt::inline ZELT_LEVEL::rsz {
/// Rows of a plane from `first` on, to memory of their own
struct strip_of_rows {
    const u8* src;
    s64 src_stride;
    axis y;
    s64 first;
    u8* dst;
    std::ptrdiff_t dst_stride;

    row_pair operator[](int i) const {
        const s64 position = (first + i) * y.step;
        const u8* top = src + y.sample(position) * src_stride;
        return {{top}, {top + y.next * src_stride}, axis::phase(position), dst + i * dst_stride};
    }
};

/// How a plane has its pixels: bytes of one as it is resized and in the source, what makes a row of bytes of the
/// source's where these differ, and the definition
struct pixel_format {
    int bytes, src_bytes;
    void (*unpack)(const u8* src, u8* dst, std::ptrdiff_t pixels);
    decltype(&scalar::resize_row<channels<1>>) resize_row;
};
template <class Format> constexpr pixel_format pixels_of() {
    pixel_format f = {Format::dst_bytes, Format::src_bytes, nullptr, scalar::resize_row<Format>};
    if constexpr (requires { Format::unpack; }) f.unpack = Format::unpack;
    return f;
}
}  // namespace zelt::inline ZELT_LEVEL::rsz

namespace zelt::inline ZELT_LEVEL::scalar {
class resized_part {
public:
    static constexpr int most = 512;  // bytes of a row

    /// What is kept of one plane between strips
    struct cache {
        explicit cache(const resized_part&) {}
    };

    /// n columns from `first` on, of w
    resized_part(const axis& x, const axis&, s64, s64 first, int n, const rsz::pixel_format& f)
        : x_(x), first_(first), n_(n), format_(f) {}

    void rows(cache&, const rsz::strip_of_rows& rows, int count) const {
        for (int i = 0; i < count; ++i) format_.resize_row(rows[i], x_, n_, first_);
    }

private:
    axis x_;
    s64 first_;
    int n_;
    rsz::pixel_format format_;
};
}  // namespace zelt::inline ZELT_LEVEL::scalar
