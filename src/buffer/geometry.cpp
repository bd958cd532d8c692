// SPDX-License-Identifier: MIT
#include "buffer/geometry.h"

#include "zelt/imgb.h"

using namespace zelt;

namespace {

// Planes 1 and 2 are chroma, 2^-shift of the picture's size rounded up; plane 3 is alpha of full size.
struct format {
    s32 cs;
    u8 nplanes, bytes_per_sample, shift_x, shift_y;
};

constexpr format planar[] = {
    {ZELT_CS_YUV400, 1, 1, 0, 0},   {ZELT_CS_YUV420, 3, 1, 1, 1},   {ZELT_CS_YUV422, 3, 1, 1, 0},
    {ZELT_CS_YUV444, 3, 1, 0, 0},   {ZELT_CS_YUV440, 3, 1, 0, 1},   {ZELT_CS_YUV_PACKED16, 1, 2, 0, 0},
    {ZELT_CS_YUV411, 3, 1, 2, 0},   {ZELT_CS_YUV420A8, 4, 1, 1, 1}, {ZELT_CS_YUV422A8, 4, 1, 1, 0},
    {ZELT_CS_YUV444A8, 4, 1, 0, 0}, {ZELT_CS_YUV440A8, 4, 1, 0, 1}, {ZELT_CS_P010, 3, 2, 1, 1},
    {ZELT_CS_P210, 3, 2, 1, 0},     {ZELT_CS_P410, 3, 2, 0, 0},     {ZELT_CS_P010_2, 3, 2, 1, 1},
    {ZELT_CS_P210_2, 3, 2, 1, 0},
};

constexpr format packed[] = {
    {100, 1, 2, 0, 0}, {200, 1, 2, 0, 0}, {300, 1, 4, 0, 0}, {400, 1, 3, 0, 0}, {500, 1, 4, 0, 0}};

const format* find_format(s32 cs) {
    if (cs >= 100 && cs < 600) return &packed[cs / 100 - 1];
    for (const format& f : planar)
        if (f.cs == cs) return &f;
    return nullptr;
}

s32 reduce(s32 size, int shift) { return static_cast<s32>((s64{size} + (1 << shift) - 1) >> shift); }

void set_dimension(const format& f, s32* w, s32* h, u32* bps) {
    for (int i = 0; i < f.nplanes; ++i) {
        const bool chroma = i == 1 || i == 2;
        w[i] = reduce(w[0], chroma ? f.shift_x : 0);
        h[i] = reduce(h[0], chroma ? f.shift_y : 0);
        bps[i] = u32{f.bytes_per_sample} << 16 | 1;
    }
}

constexpr s64 high(u32 word) { return word >> 16; }
constexpr s64 low(u32 word) { return word & 0xffff; }

// Kept: with a step of 0 the result is 0.
constexpr s64 align_up(s64 size, s64 step) { return (size + step - 1) & -step; }

constexpr bool fits(s64 n) { return n >= 0 && n <= 0x7fffffff; }

}  // namespace

int32_t zelt_imgb_get_dimension(int32_t cs, int32_t w[4], int32_t h[4], int32_t* nplanes, uint32_t bps[4]) {
    const format* f = cs < 100 || cs == ZELT_CS_RGB888 ? find_format(cs) : nullptr;  // Kept: 400 counts as planar here
    if (!f) return ZELT_ERR_UNSUPPORTED;
    set_dimension(*f, w, h, bps);
    *nplanes = f->nplanes;
    return ZELT_OK;
}

s32 zelt::get_info(s32 cs, s32 w, s32 h, const u32* align, const u32* pad, geometry* g) {
    const format* f = find_format(cs);
    if (!f) return ZELT_ERR_UNSUPPORTED;
    *g = {};
    g->nplanes = f->nplanes;
    g->size = -1;
    if (w < 0 || h < 0) return ZELT_OK;
    g->w[0] = w;
    g->h[0] = h;
    set_dimension(*f, g->w, g->h, g->bps);
    s64 size = 0;
    for (int i = 0; i < f->nplanes; ++i) {
        const s64 aw = align ? align_up(g->w[i], high(align[i])) : g->w[i];
        const s64 ah = align ? align_up(g->h[i], low(align[i])) : g->h[i];
        const s64 pad_bytes = pad ? high(pad[i]) * f->bytes_per_sample : 0;
        const s64 pad_rows = pad ? low(pad[i]) : 0;
        const s64 stride = aw * f->bytes_per_sample + 2 * pad_bytes;
        const s64 rows = ah + 2 * pad_rows;
        if (!fits(stride) || !fits(rows)) return ZELT_OK;
        size += stride * rows;
        if (!fits(size)) return ZELT_OK;
        g->aw[i] = static_cast<s32>(aw);
        g->ah[i] = static_cast<s32>(ah);
        g->stride[i] = static_cast<s32>(stride);
        g->rows[i] = static_cast<s32>(rows);
        // within the plane, or pad_bytes if it has no rows
        g->plane_offset[i] = static_cast<s32>(pad_bytes + stride * pad_rows);
    }
    g->size = size;
    return ZELT_OK;
}
