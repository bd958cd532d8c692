// The 10-bit colour matrices over a dense set of inputs, and pixels of known result.
#include "kernels/high_depth.h"
#include "zelt/csc.h"

#include <gtest/gtest.h>

using namespace zelt::test;

namespace {
/// Converts all pairs of second and third components with some of the first: the ends, and every 37th.
void check_dense(zelt_csc_fn convert, triple (*model)(triple), int high) {
#ifdef ZELT_SAMPLED
    constexpr int every = 341;
#else
    constexpr int every = 37;
#endif
    const int n = high + 1;
    std::vector<u16> in(3 * static_cast<std::size_t>(n)), out(in.size());
    void* const src[] = {&in[0], &in[n], &in[2 * n]};
    void* const dst[] = {&out[0], &out[n], &out[2 * n]};
    const int strides[] = {2 * n, 2 * n, 2 * n};
    for (int first = 0; first <= high; first = first < high ? std::min(first + every, high) : high + 1)
        for (int second = 0; second <= high; ++second) {
            for (int i = 0; i < n; ++i)
                in[i] = static_cast<u16>(first), in[n + i] = static_cast<u16>(second),
                in[2 * n + i] = static_cast<u16>(i);
            convert(src, n, 1, strides, 0, dst, n, 1, strides, 0);
            for (int i = 0; i < n; ++i) {
                const triple want = model({first, second, i});
                ASSERT_TRUE(out[i] == want[0] && out[n + i] == want[1] && out[2 * n + i] == want[2])
                    << first << ", " << second << ", " << i;
            }
        }
}
}  // namespace

TEST(high_depth, dense) {
    check_dense(zelt_csc_p410_to_r10g10b10, rgb10_of, 1024);
    check_dense(zelt_csc_r10g10b10_to_p410, yuv10_of, 1023);
}

TEST(high_depth, literal_pixels) {
    const auto convert = [](zelt_csc_fn fn, triple in) {
        u16 words[3] = {static_cast<u16>(in[0]), static_cast<u16>(in[1]), static_cast<u16>(in[2])};
        void* const planes[] = {&words[0], &words[1], &words[2]};
        const int strides[] = {2, 2, 2};
        fn(planes, 1, 1, strides, 0, planes, 1, 1, strides, 0);  // in place
        return triple{words[0], words[1], words[2]};
    };
    EXPECT_EQ(convert(zelt_csc_p410_to_r10g10b10, {1023, 512, 512}), (triple{1023, 1023, 1023}));
    EXPECT_EQ(convert(zelt_csc_p410_to_r10g10b10, {0, 512, 512}), (triple{0, 0, 0}));
    EXPECT_EQ(convert(zelt_csc_p410_to_r10g10b10, {1023, 1023, 512})[2], 1023);
    EXPECT_EQ(convert(zelt_csc_p410_to_r10g10b10, {0, 0, 512})[2], 0);
    EXPECT_EQ(convert(zelt_csc_r10g10b10_to_p410, {1023, 1023, 1023}), (triple{1023, 512, 512}));
    EXPECT_EQ(convert(zelt_csc_r10g10b10_to_p410, {0, 0, 1023})[1], 1024);
    EXPECT_EQ(convert(zelt_csc_r10g10b10_to_p410, {1023, 0, 0})[2], 1024);
}
