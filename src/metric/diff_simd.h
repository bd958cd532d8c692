#pragma once
#include "metric/diff_scalar.h"
#include "simd/vocabulary.h"

namespace zelt::inline ZELT_LEVEL::simd {
/// Two registers are loaded before they are stored: a load waits for the stores before it that might be to its place.
template <int W, int H, class A, class B> void diff(const A* a, const B* b, int s_a, int s_b, int s_d, s16* d) {
    constexpr bool of_bytes = std::is_same_v<A, u8> && std::is_same_v<B, u8> && W % lanes == 0;
    using step = std::conditional_t<of_bytes, byte_step<W, H>, word_step<W, H>>;
    constexpr bool one = W == step::columns && H == step::rows, down = W == step::columns;
    constexpr int rows = down && !one ? 2 * step::rows : step::rows, columns = down ? W : 2 * step::columns;
    static_assert(one || (W % columns == 0 && H % rows == 0), "no form for blocks of this size");
    const std::ptrdiff_t sa = s_a, sb = s_b, sd = s_d;
    const auto subtract = [=](const A* pa, const B* pb) {
        if constexpr (of_bytes)
            return dot<1, -1>(load_rows<lanes, 1>(pa, sa), load_rows<lanes, 1>(pb, sb));
        else
            return load_rows_16<step::columns, step::rows>(pa, sa) - load_rows_16<step::columns, step::rows>(pb, sb);
    };
    const auto store = [=](s16* pd, auto v) {
        if constexpr (of_bytes)
            store_widened(pd, v);
        else
            store_rows_16<step::columns, step::rows>(pd, sd, v);
    };
    const auto second = [](auto* p, std::ptrdiff_t stride) { return p + (down ? step::rows * stride : step::columns); };
    if constexpr (one) return store(d, subtract(a, b));
#pragma GCC unroll 8
    for (int y = 0; y < H; y += rows) {
        for (int x = 0; x < W; x += columns) {
            const auto v = subtract(a + x, b + x), w = subtract(second(a + x, sa), second(b + x, sb));
            store(d + x, v), store(second(d + x, sd), w);
        }
        a = hide_from_optimizer(a + rows * sa), b = hide_from_optimizer(b + rows * sb),
        d = hide_from_optimizer(d + rows * sd);
    }
}

template <class A, class B> void diff(int w, int h, const A* a, const B* b, int sa, int sb, int sd, s16* d) {
    each_strip(w, h, [=](auto width, int x, int y, int rows) {
        const A* pa = a + y * std::ptrdiff_t{sa} + x;
        const B* pb = b + y * std::ptrdiff_t{sb} + x;
        s16* pd = d + y * std::ptrdiff_t{sd} + x;
        for (; rows > 0; --rows, pa += sa, pb += sb, pd += sd)
            if constexpr (width == 1)
                *pd = static_cast<s16>(*pa - *pb);
            else
                store_rows_16<width, 1>(pd, sd, load_rows_16<width, 1>(pa, sa) - load_rows_16<width, 1>(pb, sb));
    });
}
}  // namespace zelt::inline ZELT_LEVEL::simd
