// SPDX-License-Identifier: MIT
// Models and rows of the converters of 10-bit samples and of the plane copy.
#include "kernels/converters.h"
#include "zelt/csc.h"

namespace zelt::test {
namespace {
int word_at(const u8* p) { return p[0] + 256 * p[1]; }

/// Converts the samples at one place of as many planes as there are; those of planes that end before it are null.
using pixel = std::function<void(u8* const* src, u8* const* dst)>;

kernel row(const char* name, zelt_csc_fn fn, std::size_t planes, operand source, operand destination,
           bool chroma_halved, int dst_cs, const pixel& convert_pixel) {
    destination.written = true;
    const auto operands = [=](shape s) {
        std::vector<operand> all(planes, source);
        all.insert(all.end(), planes, destination);
        for (std::size_t i = 0; i < all.size(); ++i) {
            const bool half = chroma_halved && i % planes > 0;
            all[i].width = half ? (s.w + 1) / 2 : s.w, all[i].rows = half ? (s.h + 1) / 2 : s.h;
        }
        return all;
    };
    const auto call = [=](function f, shape s, const view* v) {
        convert(f, v, planes, 2 * planes, s, {-1, -1}, dst_cs);
    };
    const auto model = [=](shape s, const view* v) {
        const std::vector<operand> all = operands(s);
        for (int y = 0; y < s.h; ++y)
            for (int x = 0; x < s.w; ++x) {
                u8* p[8];
                for (std::size_t i = 0; i < all.size(); ++i)
                    p[i] =
                        x < all[i].width && y < all[i].rows ? v[i].p + y * v[i].stride + x * all[i].element : nullptr;
                convert_pixel(p, p + planes);
            }
    };
    kernel k = {name, reinterpret_cast<function>(fn), picture_shapes(), operands, call, model};
    k.timed = timing::picture;
    k.in_order = source.element == 2 && destination.element == 2;  // the others go plane by plane
    return k;
}

pixel matrix(components (*of)(components)) {
    return [=](u8* const* src, u8* const* dst) {
        const components c = of({{word_at(src[0]), word_at(src[1]), word_at(src[2]), 0}});
        for (int i = 0; i < 3; ++i)
            dst[i][0] = static_cast<u8>(c.v[i] % 256), dst[i][1] = static_cast<u8>(c.v[i] / 256);
    };
}
void reduce(u8* const* src, u8* const* dst) {
    for (int i = 0; i < 3; ++i)
        if (src[i]) *dst[i] = static_cast<u8>(word_at(src[i]) / 4);
}
template <int Planes> void copy(u8* const* src, u8* const* dst) {
    for (int i = 0; i < Planes; ++i) *dst[i] = *src[i];
}
}  // namespace

std::vector<kernel> high_depth_kernels() {
    const operand bytes = {.width = 0, .rows = 0}, words = {.width = 0, .rows = 0, .element = 2};
    operand rgb = words, yuv = words;
    rgb.high = 1023, yuv.high = 1024;
    return {row("zelt_csc_p410_to_r10g10b10", zelt_csc_p410_to_r10g10b10, 3, yuv, rgb, false, -1, matrix(rgb10_of)),
            row("zelt_csc_r10g10b10_to_p410", zelt_csc_r10g10b10_to_p410, 3, rgb, yuv, false, -1, matrix(yuv10_of)),
            row("zelt_csc_p010_to_yuv420", zelt_csc_p010_to_yuv420, 3, words, bytes, true, -1, reduce),
            row("zelt_csc_yuv444x_to_yuv444x", zelt_csc_yuv444x_to_yuv444x, 3, bytes, bytes, false, ZELT_CS_YUV444,
                copy<3>),
            row("zelt_csc_yuv444x_to_yuv444x alpha", zelt_csc_yuv444x_to_yuv444x, 4, bytes, bytes, false,
                ZELT_CS_YUV444A8, copy<4>)};
}
}  // namespace zelt::test
