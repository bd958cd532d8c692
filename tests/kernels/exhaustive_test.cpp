// The colour matrices over all inputs, of 10 bits over a dense set; fewer first components where that takes minutes.
// Those of zelt/video.h are compared with the standards, and their errors printed as its table has them.
#include "kernels/video.h"
#include "zelt/csc.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace zelt::test;

namespace {
/// Converts all second and third components up to `high`, with every so many of the first and with the last, and
/// compares with the model.
template <class Sample>
void check(zelt_csc_fn fn, components (*model)(components), int high, int every, [[maybe_unused]] int every_sampled) {
#ifdef ZELT_SAMPLED
    every = every_sampled;
#endif
    const int side = high + 1, n = side * side, stride = n * static_cast<int>(sizeof(Sample));
    std::vector<Sample> in(3 * static_cast<std::size_t>(n)), out(in.size());
    void* const src[] = {&in[0], &in[n], &in[2 * n]};
    void* const dst[] = {&out[0], &out[n], &out[2 * n]};
    const int strides[] = {stride, stride, stride};
    for (int i = 0; i < n; ++i)
        in[n + i] = static_cast<Sample>(i / side), in[2 * n + i] = static_cast<Sample>(i % side);
    for (int first = 0; first < side; first = first < high ? std::min(first + every, high) : side) {
        std::fill_n(in.begin(), n, static_cast<Sample>(first));
        fn(src, n, 1, strides, 0, dst, n, 1, strides, 0);
        for (int i = 0; i < n; ++i) {
            const components want = model({{first, i / side, i % side, 0}});
            ASSERT_TRUE(out[i] == want.v[0] && out[n + i] == want.v[1] && out[2 * n + i] == want.v[2])
                << first << ", " << i / side << ", " << i % side;
        }
    }
}
}  // namespace

TEST(exhaustive, matrices) {
    check<u8>(zelt_csc_yuv444_to_r8g8b8, rgb_of, 255, 1, 7);
    check<u8>(zelt_csc_r8g8b8_to_yuv444, yuv_of, 255, 1, 7);
    check<u16>(zelt_csc_p410_to_r10g10b10, rgb10_of, 1024, 37, 341);
    check<u16>(zelt_csc_r10g10b10_to_p410, yuv10_of, 1023, 37, 341);
}

TEST(exhaustive, video_matrices) {
    constexpr int n = 1 << 16;
    std::vector<u8> in(3 * n), out(3 * n);
    void *const src[] = {&in[0], &in[n], &in[2 * n]}, *const dst[] = {&out[0], &out[n], &out[2 * n]};
    const int strides[] = {n, n, n};
    for (int i = 0; i < n; ++i) in[n + i] = static_cast<u8>(i / 256), in[2 * n + i] = static_cast<u8>(i);
#ifdef ZELT_SAMPLED
    constexpr int every = 15;
#else
    constexpr int every = 1;
#endif
    for (int matrix = 0; matrix < 3; ++matrix)
        for (int range = 0; range < 2; ++range) {
            ZELT_VIDEO v = {};
            v.src_cs = ZELT_CS_YUV440, v.dst_cs = ZELT_CS_R8G8B8, v.matrix = matrix, v.range = range;
            ASSERT_EQ(zelt_video_init(&v), ZELT_OK);
            std::vector<double> black(3 * n);  // and what luma adds to it
            const double white = range ? 1 : 255 / 219.0;
            for (int i = 0; i < n; ++i) {
                double rgb[3];
                real_rgb(matrix, range, {0, i / 256, i % 256}, rgb);
                for (int c = 0; c < 3; ++c) black[c * n + i] = rgb[c] * 255;
            }
            double worst[3] = {}, inexact[3] = {}, count = 0;
            for (int y = 0; y < 256; y += every, count += n) {
                std::fill_n(in.begin(), n, static_cast<u8>(y));
                zelt_video_convert(&v, src, strides, dst, strides, n, 1);
                for (int i = 0; i < 3 * n; ++i) {
                    const double real = std::clamp(black[i] + white * y, 0.0, 255.0), error = std::abs(out[i] - real);
                    worst[i / n] = std::max(worst[i / n], error);
                    if (error <= 0.5) continue;
                    inexact[i / n] += 100;
                    ASSERT_FALSE(i % n == 128 * 257) << "of grey " << y;
                }
            }
            std::printf("%d %d", matrix, range);
            for (int c = 0; c < 3; ++c) {
                EXPECT_LT(worst[c], 0.54);  // within 1 of what is rounded, therefore
                EXPECT_LT(inexact[c] / count, 0.8);
                std::printf("  %.3f %.2f %%", worst[c], inexact[c] / count);
            }
            std::printf("\n");
        }
}
