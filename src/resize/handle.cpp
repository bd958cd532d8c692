// SPDX-License-Identifier: MIT
// The resizer's handle: whole pictures, and bands of rows as they arrive.
#include "resize/resize.h"
#include "simd/export.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

using namespace zelt;
using namespace zelt::rsz;

namespace {
/// A ZELT_IRSZ: of this level alone, whose functions create it and use it
struct handle {
    s32 format, mode;
    s32 src_w, src_h, dst_w, dst_h;
    s64 src_stride, dst_stride;  // bytes
    axis x, y;
    u8* dst;
    s32 (*resize)(handle&, const u8*, s32, s32);

    // Band mode. Source rows are counted from the start of the band.
    s32 band_rows;
    s64 position;  // of destination row `row`
    s32 row;
    s64 carried;          // lower source row of a destination row that waits for this band
    bool pending, carry;  // a row waits; the next ones share its upper source row, which row_buffer holds
    bool enlarging;       // in either direction
    std::size_t row_size;
    u8* row_buffer;
};
handle& of(ZELT_IRSZ* irsz) { return *reinterpret_cast<handle*>(irsz); }

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

/// A band, its rows counted from its start. A row outside it, or below the picture, is null.
struct band {
    const u8* start;
    s64 stride, rows;

    const u8* row(s64 i) const { return i >= 0 && i < rows ? start + i * stride : nullptr; }
};

/// Bits of a position in whole source rows that count within a band
s64 within(const handle& z, s64 position, s64 mask) { return position >> (18 - z.y.shift) & mask; }

/// Finds the source rows of the next destination row. Returns false if the lower one is in a band to come: the row is
/// then pending, and its upper source row goes into the row buffer.
bool next_rows(handle& z, const band& b, s64 mask, const u8*& top, const u8*& bottom) {
    if (z.pending) {
        z.position -= z.y.step;
        --z.row;
        z.pending = z.carried >= z.band_rows;  // Kept: waiting for yet another band steps back each time
        top = z.row_buffer;
        bottom = b.row(z.carried);
        return !z.pending;
    }
    const s64 upper = z.y.sample(z.position) & mask;
    const s64 lower = z.carry ? z.carried : upper + z.y.next;
    top = z.carry ? z.row_buffer : b.row(upper);
    bottom = b.row(lower);
    if (lower < z.band_rows) return true;
    z.carried = lower - z.band_rows;
    z.pending = true;
    z.position += z.y.step;
    ++z.row;
    return false;
}

/// Writes the rows that the band completes.
template <class Format> void resize_band(handle& z, const band& b, s64 end, s64 mask) {
    row_batch<Format> batch(z.x, z.dst_w);
    const u8 *top, *bottom;
    while (end > z.y.sample(z.position) && (z.row < z.dst_h || z.pending)) {
        if (!next_rows(z, b, mask, top, bottom)) {
            batch.flush();  // what is in the batch may use the row buffer
            if (top && top != z.row_buffer) std::memcpy(z.row_buffer, top, z.row_size);
            break;
        }
        if (top && bottom && z.row >= 0 && z.row < z.dst_h)
            batch.add({{top}, {bottom}, axis::phase(z.position), z.dst + z.row * z.dst_stride});
        z.position += z.y.step;
        ++z.row;
        if (z.carry && within(z, z.position, mask) < within(z, z.position - z.y.step, mask)) z.carry = false;
    }
}

template <class Format> s32 resize(handle& z, const u8* src, s32 y0, s32 rows) {
    if (z.src_w < 1 || z.src_h < 1 || z.dst_w < 1 || z.dst_h < 1) return 0;
    if (z.mode == ZELT_IRSZ_WHOLE) {
        resize_picture<Format>(src, z.src_stride, z.dst_w, z.dst_h, z.dst_stride, z.dst, z.x, z.y);
        return 0;
    }
    if (rows < 1) return 0;
    const s64 mask = rows - s64{1};
    resize_band<Format>(z, {src, z.src_stride, std::min<s64>(rows, s64{z.src_h} - y0)}, s64{y0} + rows, mask);
    // Whether the next destination row has the same upper source row
    if (z.enlarging && !within(z, (z.position - z.y.step) ^ z.position, mask)) z.carry = true;
    return 0;
}
}  // namespace

#define KERNEL(name, id, pixels)                                                                            \
    ZELT_EXPORT(int32_t, zelt_irsz##name)(ZELT_IRSZ * irsz, const uint8_t* src, int32_t y0, int32_t rows) { \
        return of(irsz).format == id ? resize<pixels>(of(irsz), src, y0, rows) : 0;                         \
    }
ZELT_RESIZERS(KERNEL)

ZELT_EXPORT(int32_t, zelt_irsz)(ZELT_IRSZ* irsz, const uint8_t* src, int32_t y0, int32_t rows) {
    return of(irsz).resize(of(irsz), src, y0, rows);
}

namespace {
struct format {
    s32 id;
    int src_bytes, dst_bytes;
    decltype(handle::resize) resize;
};
#define FORMAT(name, id, pixels) {id, pixels::src_bytes, pixels::dst_bytes, resize<pixels>},
constexpr format formats[] = {ZELT_RESIZERS(FORMAT)};

const format* find(s32 id) {
    for (const format& f : formats)
        if (f.id == id) return &f;
    return nullptr;
}

s32 create(const ZELT_IRSZ_PARAM& p, handle*& irsz) {
    if (p.mode != ZELT_IRSZ_WHOLE && p.mode != ZELT_IRSZ_BANDS) return -2;
    const format* f = find(p.format);
    if (!f) return -4;
    irsz = static_cast<handle*>(std::calloc(1, sizeof *irsz));
    if (!irsz) return -3;
    const bool in_bytes = p.format == ZELT_IRSZ_5B6B5B;  // Kept: pitches of RGB565 pictures are in bytes
    irsz->format = p.format;
    irsz->mode = p.mode;
    irsz->src_w = p.src_w;
    irsz->src_h = p.src_h;
    irsz->dst_w = p.dst_w;
    irsz->dst_h = p.dst_h;
    irsz->src_stride = s64{p.src_pitch} * (in_bytes ? 1 : f->src_bytes);
    irsz->dst_stride = s64{p.dst_pitch} * (in_bytes ? 1 : f->dst_bytes);
    irsz->x = axis(p.src_w, p.dst_w);
    irsz->y = axis(p.src_h, p.dst_h);
    irsz->dst = static_cast<u8*>(p.dst);
    irsz->resize = f->resize;
    irsz->band_rows = std::max(p.band_rows, 1);
    irsz->enlarging = p.dst_w > p.src_w || p.dst_h > p.src_h;
    if (p.mode == ZELT_IRSZ_WHOLE) return 0;
    const u64 row_size = static_cast<u64>(std::max(p.src_w, 1)) * static_cast<u64>(f->src_bytes);
    if (row_size <= SIZE_MAX) irsz->row_buffer = static_cast<u8*>(std::calloc(1, static_cast<std::size_t>(row_size)));
    irsz->row_size = static_cast<std::size_t>(row_size);
    return irsz->row_buffer ? 0 : -3;
}

void destroy(handle* irsz) {
    if (!irsz) return;
    std::free(irsz->row_buffer);
    std::free(irsz);
}
}  // namespace

ZELT_EXPORT(ZELT_IRSZ*, zelt_irsz_create)(const ZELT_IRSZ_PARAM* param, int32_t* err) {
    handle* irsz = nullptr;
    const s32 status = create(*param, irsz);
    if (err) *err = status;
    if (!status) return reinterpret_cast<ZELT_IRSZ*>(irsz);
    destroy(irsz);
    return nullptr;
}

ZELT_EXPORT(void, zelt_irsz_delete)(ZELT_IRSZ* irsz) { destroy(reinterpret_cast<handle*>(irsz)); }
