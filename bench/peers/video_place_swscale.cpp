// SPDX-License-Identifier: MIT
// libswscale's mean of what a pixel covers, chroma at full resolution.
#include "video_place.h"

extern "C" {
#include <libswscale/swscale.h>
}

namespace zelt::bench {
namespace {
bool add_area(const std::string& row, int w, int h) {
    SwsContext* const context =
        sws_getContext(1920, 1080, AV_PIX_FMT_NV12, w, h, AV_PIX_FMT_RGBA, SWS_AREA, nullptr, nullptr, nullptr);
    return add_placed_peer(row, "libswscale area", [=](video_job& j) {
        const u8* const from[4] = {j.src[0].p, j.src[1].p};
        const int from_s[4] = {j.src[0].stride, j.src[1].stride}, to_s[4] = {j.dst[0].stride};
        u8* const to[4] = {j.dst[0].p};
        sws_scale(context, from, from_s, 0, 1080, to, to_s);
    });
}
const bool added[] = {add_area("nv12_to_rgba8888 of 640x360 by area", 640, 360),
                      add_area("nv12_to_rgba8888 of 320x180 by area", 320, 180)};
}  // namespace
}  // namespace zelt::bench
