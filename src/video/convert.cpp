// Decoder layouts: the exports.
#include "video/convert.h"

#include "simd/export.h"

#include <cstring>

using namespace zelt;
using namespace zelt::video;

static_assert(sizeof(plan) <= sizeof(ZELT_VIDEO::state));

namespace {
s32 make_plan(const ZELT_VIDEO& v, plan& p) {
    const format *src = find(v.src_cs), *dst = find(v.dst_cs);
    const auto below = [](s32 value, s32 count) { return value >= 0 && value < count; };
    // Of 10 bits only YUV becomes something of 8.
    const auto depths_fit = [&] { return src->ten == dst->ten || (src->ten && !src->rgb); };
    if (!src || !dst || (src->rgb && dst->rgb) || !depths_fit() || !below(v.matrix, 3) || !below(v.range, 2) ||
        !below(v.chroma, 2))
        return ZELT_ERR_UNSUPPORTED;
    for (const s32 later : v.reserved)
        if (later) return ZELT_ERR_UNSUPPORTED;
    p.src = static_cast<s32>(src - formats);
    p.dst = static_cast<s32>(dst - formats);
    p.smooth = v.chroma == ZELT_VIDEO_SMOOTH;
    const s32 yuv = dst->rgb ? v.src_cs : v.dst_cs;
    p.as_csc =
        (src->rgb || dst->rgb) && yuv == ZELT_CS_YUV444 && v.range == ZELT_VIDEO_FULL && v.matrix == ZELT_VIDEO_BT601;
    p.matrix = matrices.of[src->ten + (src->ten && dst->ten)][v.matrix][v.range];
    p.back = back_matrices[v.matrix][v.range];
    p.ten_back = ten_back_matrices[v.matrix][v.range];
    p.ready = 1;
    return ZELT_OK;
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
    plan p;
    std::memcpy(&p, v->state, sizeof p);
    const s64 begin = std::max(y, 0), end = std::min(s64{h}, s64{y} + rows);
    if (!p.ready || w < 1 || begin >= end) return;
    convert_band(p, src_a, src_s, dst_a, dst_s,
                 {w, h, static_cast<std::ptrdiff_t>(begin), static_cast<std::ptrdiff_t>(end)});
}

ZELT_EXPORT(void, zelt_video_convert)
(const ZELT_VIDEO* v, void* const* src_a, const int32_t* src_s, void* const* dst_a, const int32_t* dst_s, int32_t w,
 int32_t h) {
    plan p;
    std::memcpy(&p, v->state, sizeof p);
    if (!p.ready || w < 1 || h < 1) return;
    convert_band(p, src_a, src_s, dst_a, dst_s, {w, h, 0, h});
}
