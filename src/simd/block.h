#pragma once  // blocks over the vocabulary: how registers go over them, and butterflies

namespace zelt::inline ZELT_LEVEL::vec {
/// The largest power of two that divides n, but not above `most`
constexpr int power_of_two_in(int n, int most) {
    int power = n & -n;
    while (power > most) power /= 2;
    return power;
}

/// The largest number up to `most` that divides n
constexpr int divisor_of(int n, int most) {
    while (n % most != 0) --most;
    return most;
}

/// What one register takes of a block of W columns and H rows, in samples of N to a register of 16 bytes
template <int W, int H, int N, int Widest> struct step {
    static constexpr int columns = power_of_two_in(W, Widest);
    static constexpr int rows = columns >= N ? 1 : power_of_two_in(H, N / columns);
};
template <int W, int H> using byte_step = step<W, H, 16, lanes>;
template <int W, int H> using word_step = step<W, H, 8, lanes_16>;

/// Calls f(a, b) at the place of every register of a block, four rows of registers in a turn, so that x86 can address
/// them as a base and 0 to 3 strides. If a row has several registers, or loads take no index, one address moves down.
/// Blocks of few registers are straight code. Of others two turns are enough: gcc would keep all sums live, and spill.
template <class Step, int W, int H, int Few, class A, class B, class F>
[[gnu::always_inline]] inline void each_step(const A* a, const B* b, std::ptrdiff_t sa, std::ptrdiff_t sb, F f) {
    constexpr int rows = H / Step::rows;
    constexpr int turn = divisor_of(rows, 4) * Step::rows;
    constexpr int turns_at_once = W / Step::columns * rows <= Few ? H / turn : H / turn % 2 ? 1 : 2;
    static_assert(W % Step::columns == 0 && H % Step::rows == 0);
#pragma GCC unroll 1
    for (int y = 0; y < H; y += turn * turns_at_once)
        for (int n = 0; n < turns_at_once; ++n)
            if constexpr (W > Step::columns || (!loads_take_an_index && Step::rows == 1)) {
                for (int i = 0; i < turn; i += Step::rows) {
                    for (int x = 0; x < W; x += Step::columns) f(a + x, b + x);
                    a = hide_from_optimizer(a + Step::rows * sa);
                    b = hide_from_optimizer(b + Step::rows * sb);
                }
            } else {
                for (int i = 0; i < turn; i += Step::rows) f(a + i * sa, b + i * sb);
                a += turn * sa, b += turn * sb;
            }
}

/// Calls f(W, x, y, rows) for strips of W columns that make up an area of any size, W being an integral constant: a
/// register, then 8, 4, 2 and 1. There are not more rows at a time than the cache keeps.
template <class F> [[gnu::always_inline]] inline void each_strip(int w, int h, F f) {
    constexpr int most = 64;
    for (int y = 0; h > 0; h -= most, y += most) {
        const int rows = h < most ? h : most;
        int x = 0;
        const auto strip = [&](auto width) { f(width, x, y, rows), x += width; };
        while (w - x >= lanes_16) strip(std::integral_constant<int, lanes_16>{});
        if (lanes_16 > 8 && w - x >= 8) strip(std::integral_constant<int, 8>{});
        if (w - x >= 4) strip(std::integral_constant<int, 4>{});
        if (w - x >= 2) strip(std::integral_constant<int, 2>{});
        if (w - x >= 1) strip(std::integral_constant<int, 1>{});
    }
}

/// (a, b) to (a + b, a - b). Without the barrier gcc also computes -b, if both b and a - b are live.
template <class V> void butterfly(V& a, V& b) {
    const V sum = a + b;
    b = hide_from_optimizer(a - b), a = sum;
}
template <class V> void butterfly_sat(V& a, V& b) {
    const V sum = add_sat(a, b);
    b = sub_sat(a, b), a = sum;
}
}  // namespace zelt::inline ZELT_LEVEL::vec
