// SPDX-License-Identifier: MIT
// Decoder layouts: the exports.
#include "video/convert.h"

#include "simd/export.h"
#include "video/place.h"

#include <cstring>

using namespace zelt;
using namespace zelt::video;

static_assert(sizeof(plan) <= sizeof(ZELT_VIDEO::state));

namespace {
/// Pixels that share a sample must do so when they are turned, too. Other sizes are made of bytes.
bool can_place(const ZELT_VIDEO& v, const format& dst) {
    if (v.filter < 0 || v.filter > 1 || v.turn < 0 || v.turn > 7) return false;
    if (v.dst_w < 0 || v.dst_h < 0 || (v.dst_w > 0) != (v.dst_h > 0)) return false;
    if (v.dst_w && dst.ten) return false;
    if (v.turn && dst.kind == kind::packed) return false;
    return !(v.turn & 1) || dst.half_w == dst.half_h;
}
/// Planes with as many samples as the destination has, or bytes of RGB
const format* planes_between(const format& src, const format& dst, s32 filter) {
    if (src.rgb && filter == ZELT_VIDEO_AREA) return find(ZELT_CS_R8G8B8);
    if (src.rgb) return src.cs == ZELT_CS_RGB565 ? find(ZELT_CS_RGBA8888) : &src;
    if (src.kind == kind::grey || dst.kind == kind::grey) return find(ZELT_CS_YUV400);
    if (!dst.half_w) return find(dst.half_h ? ZELT_CS_YUV440 : ZELT_CS_YUV444);
    return find(dst.half_h ? ZELT_CS_YUV420 : ZELT_CS_YUV422);
}

s32 make_plan(const ZELT_VIDEO& v, plan& p) {
    const format *src = find(v.src_cs), *dst = find(v.dst_cs);
    const auto below = [](s32 value, s32 count) { return value >= 0 && value < count; };
    // Of 10 bits only YUV becomes something of 8.
    const auto depths_fit = [&] { return src->ten == dst->ten || (src->ten && !src->rgb); };
    if (!src || !dst || (src->rgb && dst->rgb) || !depths_fit() || !below(v.matrix, 3) || !below(v.range, 2) ||
        !below(v.chroma, 2))
        return ZELT_ERR_UNSUPPORTED;
    if (!can_place(v, *dst)) return ZELT_ERR_UNSUPPORTED;
    for (const s32 later : v.reserved)
        if (later) return ZELT_ERR_UNSUPPORTED;
    p.src = static_cast<s32>(src - formats);
    p.dst = static_cast<s32>(dst - formats);
    p.smooth = v.chroma == ZELT_VIDEO_SMOOTH;
    const s32 yuv = dst->rgb ? v.src_cs : v.dst_cs;
    const bool csc = (src->rgb || dst->rgb) && v.range == ZELT_VIDEO_FULL && v.matrix == ZELT_VIDEO_BT601;
    p.as_csc = csc && yuv == ZELT_CS_YUV444;
    const format* between = planes_between(*src, *dst, v.filter);
    p.between = static_cast<s32>(between - formats);
    p.between_as_csc = csc && (src->rgb ? dst : between)->cs == ZELT_CS_YUV444;
    p.filter = v.filter, p.dst_w = v.dst_w, p.dst_h = v.dst_h, p.turn = v.turn;
    p.matrix = matrices.of[src->ten + (src->ten && dst->ten)][v.matrix][v.range];
    p.matrix_of_bytes = matrices.of[0][v.matrix][v.range];
    p.back = back_matrices[v.matrix][v.range];
    p.ten_back = ten_back_matrices[v.matrix][v.range];
    p.ready = 1;
    return ZELT_OK;
}

void convert_rows(const ZELT_VIDEO& v, void* const* src_a, const s32* src_s, void* const* dst_a, const s32* dst_s,
                  s32 w, s32 h, s64 begin, s64 end) {
    plan p;
    std::memcpy(&p, v.state, sizeof p);
    if (!p.ready || w < 1 || h < 1) return;
    begin = std::max<s64>(begin, 0);
    if (p.turn || p.dst_w) {
        const picture src(formats[p.src], src_a, src_s), dst(formats[p.dst], dst_a, dst_s);
        const placer place(p, src, dst, w, h);
        end = std::min<s64>(end, place.rows());
        if (begin < end) place.convert(static_cast<std::ptrdiff_t>(begin), static_cast<std::ptrdiff_t>(end));
        return;
    }
    end = std::min<s64>(end, h);
    if (begin >= end) return;
    convert_band(p, src_a, src_s, dst_a, dst_s,
                 {w, h, static_cast<std::ptrdiff_t>(begin), static_cast<std::ptrdiff_t>(end), w});
}
}  // namespace

ZELT_EXPORT(int32_t, zelt_video_init)(ZELT_VIDEO* v) {
    if (!v) return ZELT_ERR_INVALID_ARG;
    plan p{};
    const s32 status = make_plan(*v, p);
    std::memset(v->state, 0, sizeof v->state);
    std::memcpy(v->state, &p, sizeof p);
    return status;
}

ZELT_EXPORT(void, zelt_video_convert_rows)
(const ZELT_VIDEO* v, void* const* src_a, const int32_t* src_s, void* const* dst_a, const int32_t* dst_s, int32_t w,
 int32_t h, int32_t y, int32_t rows) {
    convert_rows(*v, src_a, src_s, dst_a, dst_s, w, h, y, s64{y} + rows);
}

ZELT_EXPORT(void, zelt_video_convert)
(const ZELT_VIDEO* v, void* const* src_a, const int32_t* src_s, void* const* dst_a, const int32_t* dst_s, int32_t w,
 int32_t h) {
    convert_rows(*v, src_a, src_s, dst_a, dst_s, w, h, 0, INT32_MAX);
}
