// SPDX-License-Identifier: MIT
// libyuv's turns and sizes. What it has no direct way for takes two passes over the picture. Its ABGR is R, G, B, A in
// memory.
#include "video_place.h"

#include <libyuv.h>

namespace zelt::bench {
namespace {
#define AT(plane) plane.p, plane.stride
constexpr int w = 1920, h = 1080;

/// A picture between two passes
struct between {
    static video_plane at(int stride, int row = 0) {
        static std::vector<u8> memory(std::size_t{4} * w * h);
        return {memory.data() + std::ptrdiff_t{stride} * row, stride};
    }
};

bool add_turns(int degrees) {
    const auto mode = static_cast<libyuv::RotationMode>(degrees);
    const std::string by = " turned by " + std::to_string(degrees);
    add_placed_peer("plane" + by, "libyuv RotatePlane",
                    [=](video_job& j) { libyuv::RotatePlane(AT(j.src[0]), AT(j.dst[0]), w, h, mode); });
    add_placed_peer("rgba8888" + by, "libyuv ARGBRotate",
                    [=](video_job& j) { libyuv::ARGBRotate(AT(j.src[0]), AT(j.dst[0]), w, h, mode); });
    add_placed_peer("yuv420" + by, "libyuv I420Rotate", [=](video_job& j) {
        libyuv::I420Rotate(AT(j.src[0]), AT(j.src[1]), AT(j.src[2]), AT(j.dst[0]), AT(j.dst[1]), AT(j.dst[2]), w, h,
                           mode);
    });
    add_placed_peer("nv12_to_yuv420" + by, "libyuv NV12ToI420Rotate", [=](video_job& j) {
        libyuv::NV12ToI420Rotate(AT(j.src[0]), AT(j.src[1]), AT(j.dst[0]), AT(j.dst[1]), AT(j.dst[2]), w, h, mode);
    });
    return add_placed_peer("nv12_to_rgba8888" + by, "libyuv NV12ToABGR + ARGBRotate", [=](video_job& j) {
        const video_plane upright = between::at(4 * w);
        libyuv::NV12ToABGR(AT(j.src[0]), AT(j.src[1]), AT(upright), w, h);
        libyuv::ARGBRotate(AT(upright), AT(j.dst[0]), w, h, mode);
    });
}
bool add_size(const std::string& row, libyuv::FilterMode filter) {
    add_placed_peer(row, "libyuv NV12Scale + NV12ToABGR", [=](video_job& j) {
        const video_plane y = between::at(j.size.w), uv = between::at(j.size.w, j.size.h);
        libyuv::NV12Scale(AT(j.src[0]), AT(j.src[1]), w, h, AT(y), AT(uv), j.size.w, j.size.h, filter);
        libyuv::NV12ToABGR(AT(y), AT(uv), AT(j.dst[0]), j.size.w, j.size.h);
    });
    return add_placed_peer(row, "libyuv NV12ToABGR + ARGBScale", [=](video_job& j) {
        const video_plane all = between::at(4 * w);
        libyuv::NV12ToABGR(AT(j.src[0]), AT(j.src[1]), AT(all), w, h);
        libyuv::ARGBScale(AT(all), w, h, AT(j.dst[0]), j.size.w, j.size.h, filter);
    });
}

const bool added[] = {add_turns(90),
                      add_turns(180),
                      add_turns(270),
                      add_size("nv12_to_rgba8888 of 1280x720", libyuv::kFilterBilinear),
                      add_size("nv12_to_rgba8888 of 640x360 by area", libyuv::kFilterBox),
                      add_size("nv12_to_rgba8888 of 320x180 by area", libyuv::kFilterBox)};
}  // namespace
}  // namespace zelt::bench
