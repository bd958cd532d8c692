// Resizing and colour conversion in one pass: the source layout is planes sampled on a grid, the rest is as at one
// size.
#include "csc/convert.h"
#include "csc/resize_scalar.h"
#include "zelt/csc.h"

using namespace zelt;
using namespace zelt::csc;

namespace {
/// Two rows of N planes, interpolated one pixel at a time
template <int N> struct sampled {
    const u8 *top[N], *bottom[N];
    const u8* weights;
    axis x;

    template <class V> pixel<V> get(std::ptrdiff_t i) const {
        const s64 position = i * x.step;
        const std::ptrdiff_t left = static_cast<std::ptrdiff_t>(x.sample(position));
        const std::ptrdiff_t right = left + static_cast<std::ptrdiff_t>(x.next);
        const u8* w = weights + 32 * axis::phase(position);
        const auto sample = [&](int p) {
            return static_cast<u8>(blend(w, top[p][left], top[p][right], bottom[p][left], bottom[p][right]));
        };
        pixel<V> v{sample(0), sample(1), sample(2), 255};
        if constexpr (N == 4) v.a = sample(3);
        return v;
    }
};

template <int N, class Matrix, class Dest>
void resize_convert(void* const* src_a, int src_w, int src_h, const int* src_s, void* const* dst_a, int dst_w,
                    int dst_h, const int* dst_s) {
    if (src_w < 1 || src_h < 1 || dst_w < 1 || dst_h < 1) return;
    const planes<N> src(src_a, src_s);
    Dest dst(dst_a, dst_s);
    const axis x(src_w, dst_w), y(src_h, dst_h);
    sampled<N> rows;
    rows.x = x;
    s64 position = 0;
    for (int i = 0; i < dst_h; ++i, position += y.step, dst.next_row()) {
        for (int p = 0; p < N; ++p) {
            rows.top[p] = src.p[p] + y.sample(position) * src.stride[p];
            rows.bottom[p] = rows.top[p] + y.next * src.stride[p];
        }
        rows.weights = weights_of(axis::phase(position));
        convert_row<u8>(rows, Matrix{}, dst, dst_w);
    }
}
}  // namespace

#define CONVERTER(name, planes, matrix, dest)                                                                   \
    void zelt_csc_rsz_##name(void* const* src_a, int32_t src_w, int32_t src_h, const int32_t* src_s, int32_t,   \
                             void* const* dst_a, int32_t dst_w, int32_t dst_h, const int32_t* dst_s, int32_t) { \
        resize_convert<planes, matrix, dest>(src_a, src_w, src_h, src_s, dst_a, dst_w, dst_h, dst_s);           \
    }
CONVERTER(r8g8b8_to_rgb888, 3, repack, rgb888)
CONVERTER(r8g8b8_to_rgba8888, 3, repack, rgba8888)
CONVERTER(r8g8b8a8_to_rgba8888, 4, repack, rgba8888)
CONVERTER(yuv444_to_rgb888, 3, to_rgb, rgb888)
CONVERTER(yuv444_to_rgba8888, 3, to_rgb, rgba8888)
CONVERTER(yuv444_to_rgb565, 3, to_rgb, rgb565)
CONVERTER(yuv444a8_to_rgba8888, 4, to_rgb, rgba8888)
CONVERTER(yuv444a8_to_rgb565a8, 4, to_rgb, rgb565a8)
