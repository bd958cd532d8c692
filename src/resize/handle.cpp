// The resizer's handle at work: whole pictures, and bands of rows as they come.
#include "resize/resize.h"

#include <cstring>

using namespace zelt;
using namespace zelt::csc;

namespace {
/// A band, its rows counted from its start. A row outside it, or past the picture's end, is null.
struct band {
    const u8* start;
    s64 stride, rows;

    const u8* row(s64 i) const { return i >= 0 && i < rows ? start + i * stride : nullptr; }
};

/// Bits of a position in whole source rows that count within a band
s64 within(const ZELT_IRSZ& z, s64 position, s64 mask) { return position >> (18 - z.y.shift) & mask; }

/// Finds the source rows of the next destination row. False where the lower one lies in a band to come: the row is then
/// pending, its upper source row kept in the row buffer.
bool next_rows(ZELT_IRSZ& z, const band& b, s64 mask, const u8*& top, const u8*& bottom) {
    if (z.pending) {
        z.position -= z.y.step, --z.row;
        z.pending = z.carried >= z.band_rows;  // Kept: waiting for yet another band steps back each time
        top = z.row_buffer, bottom = b.row(z.carried);
        return !z.pending;
    }
    const s64 upper = z.y.sample(z.position) & mask;
    const s64 lower = z.carry ? z.carried : upper + z.y.next;
    top = z.carry ? z.row_buffer : b.row(upper), bottom = b.row(lower);
    if (lower < z.band_rows) return true;
    z.carried = lower - z.band_rows, z.pending = true;
    ++z.row, z.position += z.y.step;
    return false;
}

/// Writes the rows that the band completes.
template <class Format> void resize_band(ZELT_IRSZ& z, const band& b, s64 end, s64 mask) {
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
        ++z.row, z.position += z.y.step;
        if (z.carry && within(z, z.position, mask) < within(z, z.position - z.y.step, mask)) z.carry = false;
    }
}

template <class Format> s32 resize(ZELT_IRSZ* irsz, s32 id, const u8* src, s32 y0, s32 rows) {
    ZELT_IRSZ& z = *irsz;
    if (z.format != id || z.src_w < 1 || z.src_h < 1 || z.dst_w < 1 || z.dst_h < 1) return 0;
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

#define FORMAT(name, id, pixels)                                                             \
    int32_t zelt_irsz##name(ZELT_IRSZ* irsz, const uint8_t* src, int32_t y0, int32_t rows) { \
        return resize<pixels>(irsz, id, src, y0, rows);                                      \
    }
ZELT_RESIZERS(FORMAT)

int32_t zelt_irsz(ZELT_IRSZ* irsz, const uint8_t* src, int32_t y0, int32_t rows) {
    return irsz->resize(irsz, src, y0, rows);
}
