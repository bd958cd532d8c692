// The colour matrices over all inputs, of 10 bits over a dense set; fewer first components where that takes minutes.
#include "kernels/converters.h"
#include "zelt/csc.h"

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
