#pragma once  // every format of the resizer, and the handle
#include "resize/resize_scalar.h"
#if ZELT_SIMD
#include "resize/resize_simd.h"
#endif

// clang-format off
#define ZELT_RESIZERS(X)                                           \
    X(8b,            ZELT_IRSZ_8B,            channels<1>)         \
    X(8b8b8b,        ZELT_IRSZ_8B8B8B,        channels<3>)         \
    X(8b8b8b_5b6b5b, ZELT_IRSZ_8B8B8B_5B6B5B, rgb888_to_565)       \
    X(5b6b5b,        ZELT_IRSZ_5B6B5B,        rgb565_words)        \
    X(8b8b8b8b,      ZELT_IRSZ_8B8B8B8B,      channels<4>)
// clang-format on

struct ZELT_IRSZ {
    zelt::s32 format, mode;
    zelt::s32 src_w, src_h, dst_w, dst_h;
    zelt::s64 src_stride, dst_stride;  // bytes
    zelt::csc::axis x, y;
    zelt::u8* dst;
    zelt::s32 (*resize)(ZELT_IRSZ*, const zelt::u8*, zelt::s32, zelt::s32);

    // Band mode, see bands.cpp. Rows are counted from the start of the band.
    zelt::s32 band_rows;
    zelt::s64 position;  // of destination row `row`
    zelt::s32 row;
    zelt::s64 carried;    // lower source row of a destination row that waits for this band
    bool pending, carry;  // a row waits; the next ones share its upper source row, which row_buffer holds
    bool enlarging;       // in either direction
    std::size_t row_size;
    zelt::u8* row_buffer;
};

namespace zelt::inline ZELT_LEVEL::csc {
/// Destination rows of a band on their way to the row kernels, which want many at a time
template <class Format> class row_batch {
public:
    row_batch(const axis& x, int dst_w) : x_(x), dst_w_(dst_w) {}
    ~row_batch() { flush(); }
    row_batch(const row_batch&) = delete;
    row_batch& operator=(const row_batch&) = delete;

    void add(const row_pair& rows) {
        if (count_ == size) flush();
        rows_[count_++] = rows;
    }
    void flush() {
        const row_pair* rows = rows_;
        fast::resize_rows<Format>(rows, count_, x_, dst_w_);
        count_ = 0;
    }

private:
    static constexpr int size = 64;
    const axis x_;
    const int dst_w_;
    int count_ = 0;
    row_pair rows_[size];
};

struct byte_rows {
    u8* start;
    s64 stride;
    u8* row(int i) const { return start + i * stride; }
};

template <class Format>
void resize_picture(const u8* src, s64 src_stride, int dst_w, int dst_h, s64 dst_stride, u8* dst, const axis& x,
                    const axis& y) {
    const picture_rows<1, byte_rows> rows = {{src}, {src_stride}, y, {dst, dst_stride}};
    fast::resize_rows<Format>(rows, dst_h, x, dst_w);
}
}  // namespace zelt::inline ZELT_LEVEL::csc
