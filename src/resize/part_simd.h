#pragma once  // the same with the tables of these columns, which stay for all strips
#include "resize/part_scalar.h"
#include "resize/resize_simd.h"

namespace zelt::inline ZELT_LEVEL::simd {
class resized_part {
public:
    static constexpr int most = scalar::resized_part::most;

    class cache {
    public:
        explicit cache(const resized_part& part) : rows(part.columns_, part.windows_, filter_of(part.windows_)) {}
        row_cache<direct<1>, most> rows;
    };

    resized_part(const axis& x, const axis& y, s64 w, s64 first, int n, int bytes)
        : narrow_(x, y, w, first, n, bytes), x_(x), bytes_(bytes), cached_(y.shift == 0 && y.step < 1 << 18) {
        if (n * bytes < lanes || w * bytes > PTRDIFF_MAX) return;
        if (bytes == 1) prepare<1>(w, first, n);
        if (bytes == 2) prepare<2>(w, first, n);
        if (bytes == 4) prepare<4>(w, first, n);
    }
    resized_part(const resized_part&) = delete;  // columns point to the tables
    resized_part& operator=(const resized_part&) = delete;

    void rows(cache& c, const rsz::strip_of_rows& rows, int count) const {
        if (windows_ == 0) {
            scalar::resized_part::cache none(narrow_);
            narrow_.rows(none, rows, count);
        } else if (cached_) {
            filter_cached<packed>(c.rows, columns_, rows, count);
        } else if (bytes_ == 1) {
            uncached<1>(rows, count);
        } else if (bytes_ == 2) {
            uncached<2>(rows, count);
        } else {
            uncached<4>(rows, count);
        }
    }

private:
    template <int Bytes> void prepare(s64 w, s64 first, int n) {
        row_shape shape(x_, static_cast<int>(w), Bytes);
        windows_ = shape.windows;
        if (windows_ == 0) return;
        cached_ = cached_ || windows_ > 4;
        const auto start = static_cast<std::ptrdiff_t>(first * Bytes);
        shape.samples = start + n * Bytes;
        columns_ = tables_.template prepare<Bytes>(x_, shape, start, most, !cached_);
        columns_.first -= start, columns_.last -= start;  // places of the destination, from here on
    }
    template <int Bytes> void uncached(const rsz::strip_of_rows& rows, int count) const {
        if (windows_ == 1) resize_uncached<packed, Bytes, 1>(columns_, x_, rows, count);
        if (windows_ == 2) resize_uncached<packed, Bytes, 2>(columns_, x_, rows, count);
        if (windows_ == 3) resize_uncached<packed, Bytes, 3>(columns_, x_, rows, count);
        if (windows_ == 4) resize_uncached<packed, Bytes, 4>(columns_, x_, rows, count);
    }

    scalar::resized_part narrow_;
    axis x_;
    int bytes_;
    bool cached_;  // most rows of the source serve several of the destination, or an eight has too many windows
    int windows_ = 0;
    columns columns_ = {};
    column_tables<10 * 1024> tables_;
};
}  // namespace zelt::inline ZELT_LEVEL::simd
