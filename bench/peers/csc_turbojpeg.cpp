// libjpeg-turbo's conversion of YUV planes to packed RGB: the same full-range matrix, rounded otherwise.
#include "bench.h"

#include <turbojpeg.h>

namespace zelt::bench {
namespace {
picture_peer decode(int format) {
    static const tjhandle decoder = tjInitDecompress();
    return {"libjpeg-turbo tjDecodeYUVPlanes", bytes_within<2>, [format](shape s, const view* v) {
                const u8* planes[] = {v[0].p, v[1].p, v[2].p};
                int strides[3];
                for (int i = 0; i < 3; ++i) strides[i] = static_cast<int>(v[i].stride);
                tjDecodeYUVPlanes(decoder, planes, strides, TJSAMP_444, v[3].p, s.w, static_cast<int>(v[3].stride), s.h,
                                  format, 0);
            }};
}

const bool added[] = {
    add_peer("zelt_csc_yuv444_to_rgb888", decode(TJPF_RGB)),
    add_peer("zelt_csc_yuv444_to_rgba8888", decode(TJPF_RGBA)),
    add_peer("zelt_csc_yuv444_to_argb8888", decode(TJPF_ARGB)),
    add_peer("zelt_csc_yuv444_to_bgra8888", decode(TJPF_BGRA)),
};
}  // namespace
}  // namespace zelt::bench
