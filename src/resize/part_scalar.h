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
}  // namespace zelt::inline ZELT_LEVEL::rsz

namespace zelt::inline ZELT_LEVEL::scalar {
class resized_part {
public:
    static constexpr int most = 512;  // bytes of a row

    /// What is kept of one plane between strips
    struct cache {
        explicit cache(const resized_part&) {}
    };

    /// n columns from `first` on, of w; pixels of 1, 2 or 4 bytes
    resized_part(const axis& x, const axis&, s64, s64 first, int n, int bytes)
        : x_(x), first_(first), n_(n), bytes_(bytes) {}

    void rows(cache&, const rsz::strip_of_rows& rows, int count) const {
        for (int i = 0; i < count; ++i)
            if (bytes_ == 1)
                resize_row<rsz::channels<1>>(rows[i], x_, n_, first_);
            else if (bytes_ == 2)
                resize_row<rsz::channels<2>>(rows[i], x_, n_, first_);
            else
                resize_row<rsz::channels<4>>(rows[i], x_, n_, first_);
    }

private:
    axis x_;
    s64 first_;
    int n_, bytes_;
};
}  // namespace zelt::inline ZELT_LEVEL::scalar
