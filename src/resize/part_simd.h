// SPDX-License-Identifier: MIT
#pragma once  // the same with the tables of these columns, which stay for all strips
#include "resize/part_scalar.h"
#include "resize/resize_simd.h"

namespace zelt::inline ZELT_LEVEL::simd {
/// The part of a source row that columns need, as bytes
class unpacked {
public:
    static constexpr int planes = 1, source_planes = 1, most = 4096;
    static constexpr bool is_direct = false;

    unpacked(const columns& c, int windows, const rsz::pixel_format& f)
        : format_(f), start_(c.source_start / f.bytes * f.src_bytes),
          pixels_(windows ? c.source_end(windows) / f.bytes : 0) {}

    const u8* const* samples_of(const u8* const* row) {
        if (!format_.unpack) return row;
        format_.unpack(*row + start_, memory_, pixels_);
        samples_ = memory_;
        return &samples_;
    }

private:
    const rsz::pixel_format format_;
    const std::ptrdiff_t start_, pixels_;
    const u8* samples_;
    u8 memory_[most];
};

class resized_part {
public:
    static constexpr int most = scalar::resized_part::most;

    class cache {
    public:
        explicit cache(const resized_part& part)
            : rows(part.columns_, part.windows_, filter_of(part.windows_), part.format_) {}
        row_cache<unpacked, most> rows;
    };

    resized_part(const axis& x, const axis& y, s64 w, s64 first, int n, const rsz::pixel_format& f)
        : narrow_(x, y, w, first, n, f), x_(x), format_(f), cached_(f.unpack || (y.shift == 0 && y.step < 1 << 18)) {
        if (n * f.bytes < lanes || w * f.bytes > PTRDIFF_MAX) return;
        if (f.bytes == 1) prepare<1>(w, first, n);
        if (f.bytes == 2) prepare<2>(w, first, n);
        if (f.bytes == 3) prepare<3>(w, first, n);
        if (f.bytes == 4) prepare<4>(w, first, n);
    }
    resized_part(const resized_part&) = delete;  // columns point to the tables
    resized_part& operator=(const resized_part&) = delete;

    void rows(cache& c, const rsz::strip_of_rows& rows, int count) const {
        if (windows_ == 0) {
            scalar::resized_part::cache none(narrow_);
            narrow_.rows(none, rows, count);
        } else if (cached_) {
            filter_cached<packed>(c.rows, columns_, rows, count);
        } else if (format_.bytes == 1) {
            uncached<1>(rows, count);
        } else if (format_.bytes == 2) {
            uncached<2>(rows, count);
        } else if (format_.bytes == 3) {
            uncached<3>(rows, count);
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
        if (!format_.unpack) return;
        tables_.count_from_first(columns_);
        if (columns_.source_end(windows_) > unpacked::most) windows_ = 0;
    }
    template <int Bytes> void uncached(const rsz::strip_of_rows& rows, int count) const {
        if (windows_ == 1) resize_uncached<packed, Bytes, 1>(columns_, x_, rows, count);
        if (windows_ == 2) resize_uncached<packed, Bytes, 2>(columns_, x_, rows, count);
        if (windows_ == 3) resize_uncached<packed, Bytes, 3>(columns_, x_, rows, count);
        if (windows_ == 4) resize_uncached<packed, Bytes, 4>(columns_, x_, rows, count);
    }

    scalar::resized_part narrow_;
    axis x_;
    rsz::pixel_format format_;
    bool cached_;  // most rows of the source serve several of the destination, or an eight has too many windows
    int windows_ = 0;
    columns columns_ = {};
    column_tables<10 * 1024> tables_;
};
}  // namespace zelt::inline ZELT_LEVEL::simd
