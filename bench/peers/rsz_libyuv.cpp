// SPDX-License-Identifier: MIT
// libyuv's bilinear scalers, and its two ways from YUV 4:4:4 to RGBA of another size. At exactly 2:1 it takes the mean
// of four.
#include "rsz.h"

#include <libyuv.h>
#include <libyuv/scale_rgb.h>

namespace zelt::bench {
namespace {
constexpr auto bilinear = libyuv::kFilterBilinear;

std::vector<u8>& between(std::size_t size) {
    static std::vector<u8> memory;
    if (memory.size() < size) memory.resize(size);
    return memory;
}

void scale_packed(decltype(libyuv::ARGBScale)* scale, int bytes, const u8* src, resize_job& j) {
    scale(src, j.from.w * bytes, j.from.w, j.from.h, j.dst.data(), j.to.w * bytes, j.to.w, j.to.h, bilinear);
}

const bool added[] = {
    add_resizer("8b", "libyuv ScalePlane",
                [](resize_job& j) {
                    libyuv::ScalePlane(j.src.data(), j.from.w, j.from.w, j.from.h, j.dst.data(), j.to.w, j.to.w, j.to.h,
                                       bilinear);
                }),
    add_resizer("8b8b8b8b", "libyuv ARGBScale",
                [](resize_job& j) { scale_packed(libyuv::ARGBScale, 4, j.src.data(), j); }),
    add_resizer("8b8b8b", "libyuv RGBScale",
                [](resize_job& j) {
                    libyuv::RGBScale(j.src.data(), j.from.w * 3, j.from.w, j.from.h, j.dst.data(), j.to.w * 3, j.to.w,
                                     j.to.h, bilinear);
                }),
    add_resizer("yuv444_to_rgba8888", "libyuv J444ToABGR + ARGBScale",
                [](resize_job& j) {
                    auto& rgba = between(static_cast<std::size_t>(j.from.w * j.from.h) * 4);
                    libyuv::J444ToABGR(j.plane(0), j.from.w, j.plane(1), j.from.w, j.plane(2), j.from.w, rgba.data(),
                                       j.from.w * 4, j.from.w, j.from.h);
                    scale_packed(libyuv::ARGBScale, 4, rgba.data(), j);
                }),
    add_resizer("yuv444_to_rgba8888", "libyuv ScalePlane + J444ToABGR",
                [](resize_job& j) {
                    const std::size_t size = static_cast<std::size_t>(j.to.w * j.to.h);
                    auto& yuv = between(size * 3);
                    for (int i = 0; i < 3; ++i)
                        libyuv::ScalePlane(j.plane(i), j.from.w, j.from.w, j.from.h,
                                           &yuv[size * static_cast<std::size_t>(i)], j.to.w, j.to.w, j.to.h, bilinear);
                    libyuv::J444ToABGR(&yuv[0], j.to.w, &yuv[size], j.to.w, &yuv[2 * size], j.to.w, j.dst.data(),
                                       j.to.w * 4, j.to.w, j.to.h);
                }),
};
}  // namespace
}  // namespace zelt::bench
