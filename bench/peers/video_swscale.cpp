// SPDX-License-Identifier: MIT
// libswscale between formats of one size: the fastest it has, with chroma replicated, and the same rounded accurately.
// Smooth chroma is bilinear at full resolution.
#include "video.h"

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <utility>

extern "C" {
#include <libswscale/swscale.h>
}

namespace zelt::bench {
namespace {
/// The context of the size at hand; rows are timed one after another.
struct converter {
    AVPixelFormat src, dst;
    int flags;
    shape size = {};
    SwsContext* context = nullptr;

    void run(video_job& j) {
        if (j.size.w != size.w) {
            sws_freeContext(context);
            size = j.size;
            context = sws_getContext(size.w, size.h, src, size.w, size.h, dst, flags, nullptr, nullptr, nullptr);
        }
        const u8* from[4] = {};
        u8* to[4] = {};
        int from_s[4] = {}, to_s[4] = {};
        for (std::size_t i = 0; i < j.src.size(); ++i) from[i] = j.src[i].p, from_s[i] = j.src[i].stride;
        for (std::size_t i = 0; i < j.dst.size(); ++i) to[i] = j.dst[i].p, to_s[i] = j.dst[i].stride;
        sws_scale(context, from, from_s, 0, size.h, to, to_s);
    }
};

using named_format = std::pair<const char*, AVPixelFormat>;
constexpr named_format sources[] = {{"yuv420", AV_PIX_FMT_YUV420P},
                                    {"nv12", AV_PIX_FMT_NV12},
                                    {"yuyv", AV_PIX_FMT_YUYV422},
                                    {"yuv422", AV_PIX_FMT_YUV422P},
                                    {"p010le", AV_PIX_FMT_P010LE}};
constexpr named_format targets[] = {{"rgba8888", AV_PIX_FMT_RGBA},   {"bgra8888", AV_PIX_FMT_BGRA},
                                    {"argb8888", AV_PIX_FMT_ARGB},   {"rgb888", AV_PIX_FMT_RGB24},
                                    {"rgb565", AV_PIX_FMT_RGB565LE}, {"yuv420", AV_PIX_FMT_YUV420P},
                                    {"nv12", AV_PIX_FMT_NV12},       {"yuv444", AV_PIX_FMT_YUV444P},
                                    {"yuv422", AV_PIX_FMT_YUV422P},  {"yuyv", AV_PIX_FMT_YUYV422}};
// not RGB565, where it is off by more than the others
constexpr named_format rgb_sources[] = {{"rgba8888", AV_PIX_FMT_RGBA},
                                        {"bgra8888", AV_PIX_FMT_BGRA},
                                        {"argb8888", AV_PIX_FMT_ARGB},
                                        {"rgb888", AV_PIX_FMT_RGB24},
                                        {"bgr888", AV_PIX_FMT_BGR24}};

void add(const named_format& src, const named_format& dst, const char* name, int flags, const char* suffix = "") {
    const auto c = std::make_shared<converter>(converter{src.second, dst.second, flags});
    add_video_peer(std::string(src.first) + "_to_" + dst.first + suffix, name, [c](video_job& j) { c->run(j); });
}

const bool added = [] {
    for (const named_format& src : sources)
        for (const named_format& dst : targets) {
            if (src.second != AV_PIX_FMT_YUV422P || dst.second != AV_PIX_FMT_ARGB)  // wrong there
                add(src, dst, "libswscale point", SWS_POINT);
            add(src, dst, "libswscale point, accurate", SWS_POINT | SWS_ACCURATE_RND);
        }
    for (const named_format& rgb : rgb_sources)
        for (const named_format& yuv : targets) {
            add(rgb, yuv, "libswscale point", SWS_POINT);
            add(rgb, yuv, "libswscale area", SWS_AREA);
        }
    for (const auto& [src, dst] : {std::pair{0, 0}, {1, 0}, {4, 0}, {0, 7}})
        add(sources[src], targets[dst], "libswscale bilinear", SWS_BILINEAR | SWS_FULL_CHR_H_INT | SWS_ACCURATE_RND,
            " smooth");
    return true;
}();
}  // namespace
}  // namespace zelt::bench
