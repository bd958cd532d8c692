// The colour matrices over all inputs, of 10 bits over a dense set; fewer first components where that takes minutes.
// Those of zelt/video.h are compared with the standards, and their errors printed as its table has them.
#include "kernels/video.h"
#include "zelt/csc.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

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

// Of 10 bits every pair of samples beside a third in the middle, and 2^24 random triples, of which the shares are
TEST(exhaustive, video_matrices_of_10_bits) {
    constexpr int n = 1 << 16, pairs = 3 * 16, triples = 256;
    std::vector<u16> in(3 * n), words(3 * n);
    std::vector<u8> bytes(3 * n);
    void* const src[] = {&in[0], &in[n], &in[2 * n]};
#ifdef ZELT_SAMPLED
    constexpr int every = 19;
#else
    constexpr int every = 1;
#endif
    const auto measure = [&](int matrix, int range, int bits) {
        ZELT_VIDEO v = {};
        v.src_cs = ZELT_CS_P410, v.dst_cs = bits == 8 ? ZELT_CS_R8G8B8 : ZELT_CS_R10G10B10;
        v.matrix = matrix, v.range = range;
        ASSERT_EQ(zelt_video_init(&v), ZELT_OK);
        u8* const start = bits == 8 ? bytes.data() : reinterpret_cast<u8*>(words.data());
        const int src_s[] = {2 * n, 2 * n, 2 * n}, stride = bits == 8 ? n : 2 * n, dst_s[] = {stride, stride, stride};
        void* const dst[] = {start, start + stride, start + 2 * stride};
        const double most = (1 << bits) - 1;
        double zero[3], factor[3][3];  // [Y, U, V][R, G, B]
        real_rgb(matrix, range, {0, 0, 0}, zero, 10);
        for (int of = 0; of < 3; ++of) real_rgb(matrix, range, {of == 0, of == 1, of == 2}, factor[of], 10);
        double worst[3] = {}, inexact[3] = {}, count = 0;
        std::minstd_rand random;
        for (int batch = 0; batch < pairs + triples; batch += every) {
            for (int i = 0; i < n; ++i) {
                const int index = batch % 16 * n + i, at = batch / 16;
                const u32 any = batch < pairs ? 0 : random();  // 31 bits
                for (int c = 0; c < 3; ++c) {
                    const int of_pair = c == (at + 1) % 3 ? index >> 10 : c == (at + 2) % 3 ? index & 1023 : 512;
                    in[c * n + i] = static_cast<u16>(batch < pairs ? of_pair : any >> 10 * c & 1023);
                }
            }
            zelt_video_convert(&v, src, src_s, dst, dst_s, n, 1);
            for (int c = 0; c < 3; ++c)
                for (int i = 0; i < n; ++i) {
                    double real = zero[c];
                    for (int of = 0; of < 3; ++of) real += (factor[of][c] - zero[c]) * in[of * n + i];
                    const double error = std::abs((bits == 8 ? bytes[c * n + i] : words[c * n + i]) -
                                                  std::clamp(real * most, 0.0, most));
                    worst[c] = std::max(worst[c], error);
                    if (error <= 0.5 + 1e-9) continue;
                    inexact[c] += batch < pairs ? 0 : 100;
                    const bool end = in[i] == (range ? 0 : 64) || in[i] == (range ? 1023 : 940);
                    ASSERT_FALSE(end && in[n + i] == 512 && in[2 * n + i] == 512) << "of black or white";
                }
            count += batch < pairs ? 0 : n;
        }
        std::printf("10 to %d bits, %d %d", bits, matrix, range);
        for (int c = 0; c < 3; ++c) {
            EXPECT_LT(worst[c], bits == 8 ? 0.54 : 0.65);  // within 1 of what is rounded, therefore
            EXPECT_LT(inexact[c] / count, bits == 8 ? 0.8 : 3);
            std::printf("  %.3f %.2f %%", worst[c], inexact[c] / count);
        }
        std::printf("\n");
    };
    for (const int bits : {8, 10})
        for (int matrix = 0; matrix < 3; ++matrix)
            for (int range = 0; range < 2; ++range) measure(matrix, range, bits);
}

// From RGB of 10 bits, and to it again
TEST(exhaustive, video_back_of_10_bits) {
    constexpr int n = 1 << 16;
    std::vector<u16> in(3 * n), yuv(3 * n), out(3 * n);
    void *const src[] = {&in[0], &in[n], &in[2 * n]}, *const between[] = {&yuv[0], &yuv[n], &yuv[2 * n]};
    void* const dst[] = {&out[0], &out[n], &out[2 * n]};
    const int strides[] = {2 * n, 2 * n, 2 * n};
#ifdef ZELT_SAMPLED
    constexpr int batches = 4;
#else
    constexpr int batches = 64;
#endif
    for (int matrix = 0; matrix < 3; ++matrix)
        for (int range = 0; range < 2; ++range) {
            ZELT_VIDEO v = {}, w = {};
            v.src_cs = w.dst_cs = ZELT_CS_R10G10B10, v.dst_cs = w.src_cs = ZELT_CS_P410;
            v.matrix = w.matrix = matrix, v.range = w.range = range;
            ASSERT_TRUE(zelt_video_init(&v) == ZELT_OK && zelt_video_init(&w) == ZELT_OK);
            double worst[3] = {}, inexact[3] = {}, worst_trip = 0, trips = 0;
            std::minstd_rand random;
            for (int batch = 0; batch < batches; ++batch) {
                for (int i = 0; i < n; ++i) {
                    const u32 any = i < 1024 ? static_cast<u32>(i) * 0x100401 : random();  // greys, then anything
                    for (int c = 0; c < 3; ++c) in[c * n + i] = static_cast<u16>(any >> 10 * c & 1023);
                }
                zelt_video_convert(&v, src, strides, between, strides, n, 1);
                zelt_video_convert(&w, between, strides, dst, strides, n, 1);
                for (int i = 0; i < n; ++i) {
                    double real[3];
                    real_ten_yuv(matrix, range, {in[i] / 1023.0, in[n + i] / 1023.0, in[2 * n + i] / 1023.0}, real);
                    ASSERT_FALSE(i < 1024 && (yuv[n + i] != 512 || yuv[2 * n + i] != 512)) << "of grey " << i;
                    for (int c = 0; c < 3; ++c) {
                        const double error = std::abs(yuv[c * n + i] - std::clamp(real[c], 0.0, 1023.0));
                        const double trip = std::abs(out[c * n + i] - in[c * n + i]);
                        worst[c] = std::max(worst[c], error), inexact[c] += error > 0.5 + 1e-9 ? 100 : 0;
                        worst_trip = std::max(worst_trip, trip), trips += trip;
                    }
                }
            }
            std::printf("10 bits back, %d %d", matrix, range);
            for (int c = 0; c < 3; ++c) {
                EXPECT_LT(worst[c], 0.54);
                EXPECT_LT(inexact[c] / n / batches, 1);
                std::printf("  %.3f %.2f %%", worst[c], inexact[c] / n / batches);
            }
            EXPECT_LE(worst_trip, 2);
            std::printf("  round trip %.0f, %.2f\n", worst_trip, trips / 3 / n / batches);
        }
}
