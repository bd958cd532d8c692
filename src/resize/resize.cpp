// The resizer's tables, steps, row and whole-picture kernels, and the life of a handle.
#include "resize/resize.h"

#include <cstdlib>

using namespace zelt;
using namespace zelt::csc;

// clang-format off
#define PHASES(fx, fy) (8 - fx) * (8 - fy), fx * (8 - fy), (8 - fx) * fy, fx * fy
#define ROW(fx) PHASES(fx, 0), PHASES(fx, 1), PHASES(fx, 2), PHASES(fx, 3), \
                PHASES(fx, 4), PHASES(fx, 5), PHASES(fx, 6), PHASES(fx, 7)
#define WEIGHTS {ROW(0), ROW(1), ROW(2), ROW(3), ROW(4), ROW(5), ROW(6), ROW(7)}
// clang-format on
const uint8_t zelt_tbl_bilinear_rszw[256] = WEIGHTS;
const uint8_t zelt_irsz_tbl_rsz_weight[256] = WEIGHTS;

uint32_t bilinear_rsz_step_size(int32_t src_w, int32_t src_h, int32_t dst_w, int32_t dst_h, uint32_t* x_packed,
                                uint32_t* y_packed) {
    *x_packed = axis(src_w, dst_w).packed();
    return *y_packed = axis(src_h, dst_h).packed();
}

#define KERNELS(name, id, pixels)                                                                                     \
    void zelt_irsz##name##_line(const uint8_t* const* rows, const uint8_t* weights, int32_t dst_w, int32_t x_shift,   \
                                int32_t x_next, int32_t x_step, uint8_t* dst_row) {                                   \
        if (x_step < 0) return;                                                                                       \
        const row_pair pair = {{rows[0]}, {rows[1]}, weights[2] >> 3 & 7, dst_row}; /* at phase 0 across, 8 fy */     \
        fast::resize_rows<pixels>(&pair, 1, axis(x_shift & 7, x_next, x_step), dst_w);                                \
    }                                                                                                                 \
    void zelt_irsz##name##_full(const uint8_t* src, int32_t src_row_bytes, int32_t dst_w, int32_t dst_h,              \
                                int32_t dst_row_bytes, uint8_t* dst, uint32_t x_packed, uint32_t y_packed) {          \
        resize_picture<pixels>(src, src_row_bytes, dst_w, dst_h, dst_row_bytes, dst, axis(x_packed), axis(y_packed)); \
    }
ZELT_RESIZERS(KERNELS)

namespace {
struct format {
    s32 id;
    int src_bytes, dst_bytes;
    decltype(ZELT_IRSZ::resize) resize;
};
#define FORMAT(name, id, pixels) {id, pixels::src_bytes, pixels::dst_bytes, zelt_irsz##name},
constexpr format formats[] = {ZELT_RESIZERS(FORMAT)};

const format* find(s32 id) {
    for (const format& f : formats)
        if (f.id == id) return &f;
    return nullptr;
}

s32 create(const ZELT_IRSZ_PARAM& p, ZELT_IRSZ*& irsz) {
    if (p.mode != ZELT_IRSZ_WHOLE && p.mode != ZELT_IRSZ_BANDS) return -2;
    const format* f = find(p.format);
    if (!f) return -4;
    irsz = static_cast<ZELT_IRSZ*>(std::calloc(1, sizeof *irsz));
    if (!irsz) return -3;
    const bool words = p.format == ZELT_IRSZ_5B6B5B;  // Kept: pitches of RGB565 pictures are in bytes
    irsz->format = p.format, irsz->mode = p.mode;
    irsz->src_w = p.src_w, irsz->src_h = p.src_h, irsz->dst_w = p.dst_w, irsz->dst_h = p.dst_h;
    irsz->src_stride = s64{p.src_pitch} * (words ? 1 : f->src_bytes);
    irsz->dst_stride = s64{p.dst_pitch} * (words ? 1 : f->dst_bytes);
    irsz->x = axis(p.src_w, p.dst_w), irsz->y = axis(p.src_h, p.dst_h);
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
}  // namespace

ZELT_IRSZ* zelt_irsz_create(const ZELT_IRSZ_PARAM* param, int32_t* err) {
    ZELT_IRSZ* irsz = nullptr;
    const s32 status = create(*param, irsz);
    if (err) *err = status;
    if (!status) return irsz;
    zelt_irsz_delete(irsz);
    return nullptr;
}

void zelt_irsz_delete(ZELT_IRSZ* irsz) {
    if (!irsz) return;
    std::free(irsz->row_buffer);
    std::free(irsz);
}
