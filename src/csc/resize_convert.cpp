// Resizing and colour conversion in one pass: the source layout is planes sampled on a grid, the rest is as at one
// size.
#include "csc/convert.h"
#include "csc/resize_scalar.h"
#include "zelt/csc.h"
#if ZELT_SIMD
#include "csc/rows_simd.h"
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
    template <int N, class Dest> static void put(const Dest& dst, std::ptrdiff_t x, const bytes (&v)[N]) {
        dst.put(x, Matrix{}(pixel<bytes>{v[0], v[1], v[2], N == 4 ? v[N - 1] : opaque<bytes>}));
    }
};
#endif

template <int N, class Matrix, class Dest>
void convert_rows(const row_job<N, Dest>* jobs, int count, const axis& x, int w) {
#if ZELT_SIMD
    if (go_through<in_place<N>, put_converted<Matrix>, 1>(jobs, count, x, w)) return;
#endif
    for (int i = 0; i < count; ++i)
        convert_row<u8>(sampled<N, Dest>{jobs[i], weights_of(jobs[i].phase), x}, Matrix{}, jobs[i].dst, w);
}

template <int N, class Matrix, class Dest>
void resize_convert(void* const* src_a, int src_w, int src_h, const int* src_s, void* const* dst_a, int dst_w,
                    int dst_h, const int* dst_s) {
    if (src_w < 1 || src_h < 1 || dst_w < 1 || dst_h < 1) return;
    const planes<N> src(src_a, src_s);
    Dest dst(dst_a, dst_s);
    const axis x(src_w, dst_w), y(src_h, dst_h);
    constexpr int batch = 64;
    row_job<N, Dest> jobs[batch];
    s64 position = 0;
    for (int done = 0, count = 0; done < dst_h; done += count) {
        for (count = 0; count < std::min(batch, dst_h - done); ++count, position += y.step, dst.next_row()) {
            row_job<N, Dest>& job = jobs[count];
            for (int p = 0; p < N; ++p) {
                job.top[p] = src.p[p] + y.sample(position) * src.stride[p];
                job.bottom[p] = job.top[p] + y.next * src.stride[p];
            }
            job.phase = axis::phase(position), job.dst = dst;
        }
        convert_rows<N, Matrix, Dest>(jobs, count, x, dst_w);
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
