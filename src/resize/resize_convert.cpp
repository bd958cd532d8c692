// Resizing and colour conversion in one pass: the source layout is planes sampled on a grid, the rest is as at one
// size.
#include "csc/convert.h"
#include "resize/resize_scalar.h"
#include "zelt/csc.h"
#if ZELT_SIMD
#include "resize/rows_simd.h"
#endif

using namespace zelt;
using namespace zelt::csc;

namespace {
/// N planes interpolated a pixel at a time
template <int N, class Dest> struct sampled {
    const row_job<N, Dest>& job;
    const u8* weights;
    axis x;

    template <class V> pixel<V> get(std::ptrdiff_t i) const {
        const s64 position = i * x.step;
        const std::ptrdiff_t left = static_cast<std::ptrdiff_t>(x.sample(position));
        const std::ptrdiff_t right = left + static_cast<std::ptrdiff_t>(x.next);
        const u8* w = weights + 32 * axis::phase(position);
        const auto sample = [&](int p) {
            const u8 *top = job.top[p], *bottom = job.bottom[p];
            return static_cast<u8>(blend(w, top[left], top[right], bottom[left], bottom[right]));
        };
        pixel<V> v{sample(0), sample(1), sample(2), 255};
        if constexpr (N == 4) v.a = sample(3);
        return v;
    }
};

#if ZELT_SIMD
template <class Matrix> struct put_converted {
    template <int N, class Dest> static void put(const Dest& dst, std::ptrdiff_t x, const u8xn (&v)[N]) {
        dst.put(x, Matrix{}(pixel<u8xn>{v[0], v[1], v[2], N == 4 ? v[N - 1] : opaque<u8xn>}));
    }
};
#endif

template <class Dest> struct layout_rows {
    Dest first;
    Dest row(int i) const {
        Dest dst = first;
        for (int p = 0; p < Dest::count; ++p) dst.p[p] += i * dst.stride[p];
        return dst;
    }
};

template <int N, class Matrix, class Dest>
void resize_convert(void* const* src_a, int src_w, int src_h, const int* src_s, void* const* dst_a, int dst_w,
                    int dst_h, const int* dst_s) {
    if (src_w < 1 || src_h < 1 || dst_w < 1 || dst_h < 1) return;
    const axis x(src_w, dst_w);
    picture_rows<N, layout_rows<Dest>> rows = {{}, {}, axis(src_h, dst_h), {Dest(dst_a, dst_s)}};
    for (int p = 0; p < N; ++p) rows.src[p] = static_cast<const u8*>(src_a[p]), rows.src_stride[p] = src_s[p];
#if ZELT_SIMD
    if (go_through<in_place<N>, put_converted<Matrix>, 1>(rows, dst_h, x, dst_w)) return;
#endif
    for (int i = 0; i < dst_h; ++i) {
        const row_job<N, Dest> job = rows[i];
        convert_row<u8>(sampled<N, Dest>{job, weights_of(job.phase), x}, Matrix{}, job.dst, dst_w);
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
