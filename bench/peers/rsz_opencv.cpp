// SPDX-License-Identifier: MIT
// OpenCV's bilinear resize, alone and before libyuv's conversion, on this thread alone.
#include "rsz.h"

#include <libyuv.h>
#include <opencv2/imgproc.hpp>

namespace zelt::bench {
namespace {
void resize(const u8* src, shape from, u8* dst, shape to, int channels) {
    cv::setNumThreads(1);
    const cv::Mat in(from.h, from.w, CV_8UC(channels), const_cast<u8*>(src));
    cv::Mat out(to.h, to.w, CV_8UC(channels), dst);
    cv::resize(in, out, out.size(), 0, 0, cv::INTER_LINEAR);
}

resize_work packed(int channels) {
    return [=](resize_job& j) { resize(j.src.data(), j.from, j.dst.data(), j.to, channels); };
}

const u8* planes(resize_job& j) {
    static std::vector<u8> memory;
    const std::size_t size = static_cast<std::size_t>(j.to.w * j.to.h);
    memory.resize(3 * size);
    for (int i = 0; i < 3; ++i) resize(j.plane(i), j.from, &memory[size * static_cast<std::size_t>(i)], j.to, 1);
    return memory.data();
}

const bool added[] = {
    add_resizer("8b", "OpenCV resize", packed(1)),
    add_resizer("8b8b8b", "OpenCV resize", packed(3)),
    add_resizer("8b8b8b8b", "OpenCV resize", packed(4)),
    add_resizer("yuv444_to_rgb888", "OpenCV resize + libyuv I444ToRGB24Matrix",
                [](resize_job& j) {
                    const u8* y = planes(j);
                    const int size = j.to.w * j.to.h;
                    libyuv::I444ToRGB24Matrix(y, j.to.w, y + 2 * size, j.to.w, y + size, j.to.w, j.dst.data(),
                                              j.to.w * 3, &libyuv::kYvuJPEGConstants, j.to.w, j.to.h);
                }),
    add_resizer("r8g8b8_to_rgb888", "OpenCV resize + libyuv MergeRGBPlane",
                [](resize_job& j) {
                    const u8* r = planes(j);
                    const int size = j.to.w * j.to.h;
                    libyuv::MergeRGBPlane(r, j.to.w, r + size, j.to.w, r + 2 * size, j.to.w, j.dst.data(), j.to.w * 3,
                                          j.to.w, j.to.h);
                }),
};
}  // namespace
}  // namespace zelt::bench
