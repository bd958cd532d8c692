// The colour matrices over all inputs; every seventh first component where that takes minutes.
#include "kernels/converters.h"
#include "zelt/csc.h"

#include <gtest/gtest.h>

using namespace zelt::test;

namespace {
#ifdef ZELT_SAMPLED
constexpr int step = 7;
#else
constexpr int step = 1;
#endif
constexpr int n = 256 * 256;  // a row of all second and third components

/// Converts n pixels of a constant first component between planes and compares with the model.
void check_all(zelt_csc_fn convert, components (*model)(components)) {
    std::vector<u8> in(3 * n), out(3 * n);
    void* const src[] = {&in[0], &in[n], &in[2 * n]};
    void* const dst[] = {&out[0], &out[n], &out[2 * n]};
    const int strides[] = {n, n, n};
    for (int i = 0; i < n; ++i) in[n + i] = static_cast<u8>(i / 256), in[2 * n + i] = static_cast<u8>(i % 256);
    for (int first = 0; first<256; first += first + step> 255 && first < 255 ? 255 - first : step) {
        std::fill_n(in.begin(), n, static_cast<u8>(first));
        convert(src, n, 1, strides, 0, dst, n, 1, strides, 0);
        for (int i = 0; i < n; ++i) {
            const components want = model({{first, i / 256, i % 256, 255}});
            for (int c = 0; c < 3; ++c)
                ASSERT_EQ(out[c * n + i], want.v[c])
                    << "component " << c << " of " << first << ", " << i / 256 << ", " << i % 256;
        }
    }
}
}  // namespace

TEST(exhaustive, yuv_to_rgb) { check_all(zelt_csc_yuv444_to_r8g8b8, rgb_of); }
TEST(exhaustive, rgb_to_yuv) { check_all(zelt_csc_r8g8b8_to_yuv444, yuv_of); }

TEST(exhaustive, rgb565) {
    // Every word to YUV, and packing every triple of bytes
    std::vector<u8> words(2 * n), y(n), u(n), v(n), packed(2 * n);
    for (int i = 0; i < n; ++i) words[2 * i] = static_cast<u8>(i), words[2 * i + 1] = static_cast<u8>(i / 256);
    void* const word_plane[] = {words.data()};
    void* const planes[] = {y.data(), u.data(), v.data()};
    void* const packed_plane[] = {packed.data()};
    const int strides[] = {n, n, n};
    zelt_csc_rgb565_to_yuv444(word_plane, n, 1, strides, 0, planes, n, 1, strides, 0);
    for (int i = 0; i < n; ++i) {
        const components want = yuv_of({{i / 2048 * 8, i / 32 % 64 * 4, i % 32 * 8, 255}});
        ASSERT_TRUE(y[i] == want.v[0] && u[i] == want.v[1] && v[i] == want.v[2]) << "word " << i;
    }
    for (int first = 0; first < 256; first += step) {
        for (int i = 0; i < n; ++i)
            y[i] = static_cast<u8>(first), u[i] = static_cast<u8>(i / 256), v[i] = static_cast<u8>(i);
        zelt_csc_r8g8b8_to_rgb565(planes, n, 1, strides, 0, packed_plane, n, 1, strides, 0);
        for (int i = 0; i < n; ++i)
            ASSERT_EQ(packed[2 * i] + 256 * packed[2 * i + 1], first / 8 * 2048 + i / 1024 * 32 + i % 256 / 8)
                << first << ", " << i;
    }
}
