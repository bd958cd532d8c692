// SPDX-License-Identifier: MIT
// libswscale's fast bilinear scaler, which halves chroma on its way.
#include "rsz.h"

extern "C" {
#include <libswscale/swscale.h>
}

namespace zelt::bench {
namespace {
/// The context of the size at hand; rows are timed one after another.
struct scaler {
    SwsContext* context = nullptr;
    shape from = {}, to = {};

    SwsContext* of(const resize_job& j, AVPixelFormat src, AVPixelFormat dst) {
        if (j.from.w == from.w && j.to.w == to.w) return context;
        sws_freeContext(context);
        from = j.from, to = j.to;
        return context =
                   sws_getContext(from.w, from.h, src, to.w, to.h, dst, SWS_FAST_BILINEAR, nullptr, nullptr, nullptr);
    }
};

resize_work scale(AVPixelFormat from, int src_bytes, AVPixelFormat to, int dst_bytes) {
    const auto scalers = std::make_shared<scaler>();
    return [=](resize_job& j) {
        SwsContext* const context = scalers->of(j, from, to);
        const bool planar = src_bytes == 0;
        const u8* const src[] = {j.plane(0), planar ? j.plane(1) : nullptr, planar ? j.plane(2) : nullptr, nullptr};
        const int s = planar ? j.from.w : j.from.w * src_bytes, src_s[] = {s, s, s, 0};
        u8* const dst[] = {j.dst.data(), nullptr, nullptr, nullptr};
        const int dst_s[] = {j.to.w * dst_bytes, 0, 0, 0};
        sws_scale(context, src, src_s, 0, j.from.h, dst, dst_s);
    };
}

const bool added[] = {
    add_resizer("8b", "libswscale", scale(AV_PIX_FMT_GRAY8, 1, AV_PIX_FMT_GRAY8, 1)),
    add_resizer("8b8b8b", "libswscale", scale(AV_PIX_FMT_RGB24, 3, AV_PIX_FMT_RGB24, 3)),
    add_resizer("8b8b8b8b", "libswscale", scale(AV_PIX_FMT_RGBA, 4, AV_PIX_FMT_RGBA, 4)),
    add_resizer("5b6b5b", "libswscale", scale(AV_PIX_FMT_RGB565LE, 2, AV_PIX_FMT_RGB565LE, 2)),
    add_resizer("8b8b8b_5b6b5b", "libswscale", scale(AV_PIX_FMT_RGB24, 3, AV_PIX_FMT_RGB565LE, 2)),
    add_resizer("yuv444_to_rgba8888", "libswscale", scale(AV_PIX_FMT_YUVJ444P, 0, AV_PIX_FMT_RGBA, 4)),
    add_resizer("yuv444_to_rgb888", "libswscale", scale(AV_PIX_FMT_YUVJ444P, 0, AV_PIX_FMT_RGB24, 3)),
    add_resizer("yuv444_to_rgb565", "libswscale", scale(AV_PIX_FMT_YUVJ444P, 0, AV_PIX_FMT_RGB565LE, 2)),
};
}  // namespace
}  // namespace zelt::bench
