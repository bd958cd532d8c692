// SPDX-License-Identifier: MIT
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
void check(zelt_csc_fn fn, components (*model)(components), int high, int every, int every_sampled) {
    if (effort() < 2) every = every_sampled;
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
    const int every = effort() < 2 ? 15 : 1;
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
    const int every = effort() < 2 ? 19 : 1;
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
    const int batches = effort() < 2 ? 4 : 64;
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
                    real_yuv(matrix, range, {in[i] / 1023.0, in[n + i] / 1023.0, in[2 * n + i] / 1023.0}, real, 10);
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

// Back to YUV without csc.h's part in it, which 4:4:0 has not, and from there to RGB again
TEST(exhaustive, video_back) {
    constexpr int n = 1 << 16;
    std::vector<u8> in(3 * n), out(3 * n), again(3 * n);
    void *const src[] = {&in[0], &in[n], &in[2 * n]}, *const dst[] = {&out[0], &out[n], &out[2 * n]};
    void* const rgb[] = {&again[0], &again[n], &again[2 * n]};
    const int strides[] = {n, n, n};
    for (int i = 0; i < n; ++i) in[n + i] = static_cast<u8>(i / 256), in[2 * n + i] = static_cast<u8>(i);
    const int every = effort() < 2 ? 15 : 1;
    for (int matrix = 0; matrix < 3; ++matrix)
        for (int range = 0; range < 2; ++range) {
            ZELT_VIDEO v = {}, to_rgb = {};
            v.src_cs = to_rgb.dst_cs = ZELT_CS_R8G8B8, v.dst_cs = to_rgb.src_cs = ZELT_CS_YUV440;
            v.matrix = to_rgb.matrix = matrix, v.range = to_rgb.range = range;
            ASSERT_EQ(zelt_video_init(&v) | zelt_video_init(&to_rgb), ZELT_OK);
            std::vector<double> cyan(3 * n);  // and what red adds to it
            double black[3], red[3];
            real_yuv(matrix, range, {0, 0, 0}, black), real_yuv(matrix, range, {1 / 255.0, 0, 0}, red);
            for (int i = 0; i < n; ++i) {
                double yuv[3];
                real_yuv(matrix, range, {0, i / 256 / 255.0, i % 256 / 255.0}, yuv);
                for (int c = 0; c < 3; ++c) cyan[c * n + i] = yuv[c];
            }
            double worst[3] = {}, inexact[3] = {}, sum[3] = {}, count = 0;
            int farthest[3] = {};
            for (int r = 0; r < 256; r += every, count += n) {
                std::fill_n(in.begin(), n, static_cast<u8>(r));
                zelt_video_convert(&v, src, strides, dst, strides, n, 1);
                for (int i = 0; i < 3 * n; ++i) {
                    const int c = i / n;
                    const double real = std::clamp(cyan[i] + (red[c] - black[c]) * r, 0.0, 255.0);
                    const double error = std::abs(out[i] - real);
                    worst[c] = std::max(worst[c], error);
                    if (error > 0.5) inexact[c] += 100;
                }
                const int grey = r * 257;
                ASSERT_TRUE(out[n + grey] == 128 && out[2 * n + grey] == 128) << r;
                ASSERT_TRUE(r < 255 || out[grey] == (range ? 255 : 235));
                ASSERT_TRUE(range == 0 || out[grey] == r);
                zelt_video_convert(&to_rgb, dst, strides, rgb, strides, n, 1);
                for (int i = 0; i < 3 * n; ++i) {
                    const int error = std::abs(again[i] - in[i]);
                    farthest[i / n] = std::max(farthest[i / n], error), sum[i / n] += error;
                }
            }
            std::printf("%d %d", matrix, range);
            for (int c = 0; c < 3; ++c) {
                EXPECT_LT(worst[c], 0.54);  // within 1 of what is rounded, therefore
                EXPECT_LT(inexact[c] / count, 1.2);
                EXPECT_LE(farthest[c], range ? 1 : 2);
                EXPECT_LT(sum[c] / count, 0.56);
                std::printf("  %.3f %.2f %% %d %.2f", worst[c], inexact[c] / count, farthest[c], sum[c] / count);
            }
            std::printf("\n");
        }
}

// A picture of flat squares comes back from any format as from 4:4:0 of the same matrix and range.
TEST(exhaustive, video_round_trips) {
    constexpr shape s = {64, 64};
    constexpr int n = s.w * s.h;
    std::vector<u8> rgb(4 * n), again(4 * n), reference(4 * n), between(4 * n);
    for (const video_format& from : video_formats())
        for (int choice = 0; choice < 6; ++choice) {
            if (from.channels() || from.bits > 8) continue;
            const auto planes = from.operands(s, false);
            const auto views = [&](const std::vector<operand>& all, std::vector<u8>& memory) {
                std::vector<view> list;
                std::ptrdiff_t at = 0;
                for (const operand& o : all) list.push_back({&memory[static_cast<std::size_t>(at)], o.width}), at += n;
                return list;
            };
            for (std::size_t p = 0; p < planes.size(); ++p) {
                const int bytes = planes[p].width / s.w;
                for (int y = 0; y < s.h; ++y)
                    for (int x = 0; x < planes[p].width; ++x)
                        rgb[p * n + static_cast<std::size_t>(y * planes[p].width + x)] = static_cast<u8>(
                            ((y / 2 * 32 + x / bytes / 2) * 2654435761u >> 8 * (x % bytes + static_cast<int>(p))) &
                            255);
            }
            const auto round_trip = [&](const video_format& yuv, std::vector<u8>& result) {
                ZELT_VIDEO v = {};
                v.src_cs = from.cs, v.dst_cs = yuv.cs, v.matrix = choice % 3, v.range = choice / 3;
                ASSERT_EQ(zelt_video_init(&v), ZELT_OK);
                std::vector<view> all = views(planes, rgb), back = views(yuv.operands(s, false), between);
                all.insert(all.end(), back.begin(), back.end());
                call_video(v, from, yuv, s, all.data(), {});
                std::swap(v.src_cs, v.dst_cs);
                ASSERT_EQ(zelt_video_init(&v), ZELT_OK);
                const auto last = views(planes, result);
                back.insert(back.end(), last.begin(), last.end());
                call_video(v, yuv, from, s, back.data(), {});
            };
            round_trip(*video_format_of(ZELT_CS_YUV440), reference);
            for (const video_format& yuv : video_formats()) {
                const bool as_csc = yuv.cs == ZELT_CS_YUV444 && choice == 3;
                if (yuv.channels() < 3 || yuv.bits > 8 || as_csc) continue;
                round_trip(yuv, again);
                ASSERT_EQ(again, reference) << from.name << " by way of " << yuv.name << ", " << choice;
            }
        }
}
