// SPDX-License-Identifier: MIT
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

/// What one register takes of a block of W columns and H rows; rows share it up to N samples.
template <int W, int H, int N, int Widest> struct step {
    static constexpr int columns = power_of_two_in(W, Widest);
    static constexpr int rows = columns >= N ? 1 : power_of_two_in(H, N / columns);
    static constexpr int rows_by_two = 8;  // up to so many take two a turn, which need no multiple of a stride
};
template <int W, int H> struct byte_step : step<W, H, shared_bytes, lanes> {
    using base = step<W, H, shared_bytes, lanes>;
    static auto load(const u8* p, std::ptrdiff_t stride) { return load_rows<base::columns, base::rows>(p, stride); }
    template <class T> static auto load_next_two(const T*& p, std::ptrdiff_t n) { return load_two(p, n); }
    template <class T> static auto load_next_four(const T*& p) { return load_four(p); }
};
template <int W, int H> struct word_step : step<W, H, 8, lanes_16> {
    using base = step<W, H, 8, lanes_16>;
    template <class T> static auto load(const T* p, std::ptrdiff_t stride) {
        return load_rows_16<base::columns, base::rows>(p, stride);
    }
    template <class T> static auto load_next_two(const T*& p, std::ptrdiff_t n) { return load_two_16(p, n); }
    template <class T> static auto load_next_four(const T*& p) { return load_four_16(p); }
};

/// The rows of two blocks, four in a turn: as a base and 0 to 3 strides where loads take an index, otherwise as a place
/// that moves down
template <class A, class B> class rows_of_two {
public:
    rows_of_two(const A* a, const B* b, std::ptrdiff_t sa, std::ptrdiff_t sb) : a_(a, sa), b_(b, sb) {}

    /// f(a, b) at row i of a turn; all are asked for, in order.
    template <class F> [[gnu::always_inline]] auto at(int i, F f) {
        const auto v = f(a_.row(i), b_.row(i));
        if constexpr (!loads_take_an_index) a_.move(1), b_.move(1);
        return v;
    }
    /// Comes after a turn of n.
    void next_turn(int n) {
        if constexpr (loads_take_an_index) a_.move(n), b_.move(n);
    }
    const A* a() const { return a_.p; }
    const B* b() const { return b_.p; }

private:
    template <class P> static P hide_unless_scaled(P p) { return loads_scale_an_index ? p : hide_from_optimizer(p); }
    template <class T> struct place {
        const T* p;
        std::ptrdiff_t stride, two, three;

        place(const T* at, std::ptrdiff_t n)
            : p(at), stride(n), two(hide_unless_scaled(2 * n)), three(hide_unless_scaled(3 * n)) {}
        const T* row(int i) const {
            return loads_take_an_index ? p + (i == 0 ? 0 : i == 1 ? stride : i == 2 ? two : three) : p;
        }
        void move(int n) { p = hide_unless_scaled(p + n * stride); }
    };
    place<A> a_;
    place<B> b_;
};

/// Two registers of a row; p moves on by n samples.
template <class Step, class T> [[gnu::always_inline]] inline auto load_and_step(const T*& p, std::ptrdiff_t n) {
    if constexpr (registers_at_once >= 2) {
        return Step::load_next_two(p, n);
    } else {
        const two<decltype(Step::load(p, 0))> v = {Step::load(p, 0), Step::load(p + Step::columns, 0)};
        p += n;
        return v;
    }
}

/// s = f(s, a, b, last) with every two registers of a row, four loaded at once where that pays; both addresses move on
/// to the next row, with the loads or after them.
template <class Step, int W, bool Steps, class S, class A, class B, class F>
[[gnu::always_inline]] inline void each_two_of_row(S& s, const A*& a, const B*& b, std::ptrdiff_t sa, std::ptrdiff_t sb,
                                                   F f) {
    constexpr int two = 2 * Step::columns;
    static_assert(W % two == 0);
    const A* pa = a;
    const B* pb = b;
    if constexpr (registers_at_once >= 4 && W % (2 * two) == 0 && std::is_same_v<A, B>) {
        ZELT_UNROLL(4)
        for (int x = 2 * two; x <= W; x += 2 * two) {
            const auto va = Step::load_next_four(pa);
            const auto vb = Step::load_next_four(pb);
            s = f(f(s, va.first, vb.first, false), va.second, vb.second, x == W);
        }
        a = step_on(a, sa), b = step_on(b, sb);
        return;
    }
    ZELT_UNROLL(4)
    for (int x = two; x <= W; x += two) {
        const auto va = load_and_step<Step>(pa, x < W || !Steps ? two : two - W + sa);
        const auto vb = load_and_step<Step>(pb, x < W || !Steps ? two : two - W + sb);
        s = f(s, va, vb, x == W);
    }
    a = Steps ? hide_from_optimizer(pa) : step_on(a, sa);
    b = Steps ? hide_from_optimizer(pb) : step_on(b, sb);
}

/// s = f(s, a, b) with every register of a block, four rows of registers in a turn. Blocks of few registers are
/// straight code. Of others two turns are enough: gcc would keep all sums live, and spill. Both addresses move on to
/// the next row. Sums of several registers go by reference: clang for ARMv7 takes a structure that it copies for a call
/// apart into core registers.
template <class Step, int W, int H, int Few, class S, class A, class B, class F>
[[gnu::always_inline]] inline void each_step(S& s, const A*& a, const B*& b, std::ptrdiff_t sa, std::ptrdiff_t sb,
                                             F f) {
    constexpr int rows = H / Step::rows;
    constexpr bool by_two = loads_take_an_index && !loads_scale_an_index && rows <= Step::rows_by_two;
    constexpr bool short_turns = loads_come_first && W >= 4 * Step::columns;
    constexpr int turn = divisor_of(rows, by_two || short_turns ? 2 : 4) * Step::rows;
    constexpr int turns_at_once = short_turns ? 1 : W / Step::columns * rows <= Few ? H / turn : H / turn % 2 ? 1 : 2;
    static_assert(W % Step::columns == 0 && H % Step::rows == 0);
    rows_of_two<A, B> places(a, b, Step::rows * sa, Step::rows * sb);
    const auto load = [=](const A* pa, const B* pb) __attribute__((always_inline)) {
        return two<decltype(Step::load(pa, sa))>{Step::load(pa, sa), Step::load(pb, sb)};
    };
    const auto f_of_two = [=](const S& t, const auto& va, const auto& vb, bool) __attribute__((always_inline)) {
        return f(f(t, va.first, vb.first), va.second, vb.second);
    };
    constexpr bool steps = loads_step || W == 2 * Step::columns;  // a load of two registers has no offset
    ZELT_UNROLL(1)
    for (int y = 0; y < H; y += turn * turns_at_once) {
        ZELT_UNROLL(16)
        for (int n = 0; n < turns_at_once; ++n)
            if constexpr (W > Step::columns) {
                ZELT_UNROLL(4)
                for (int i = 0; i < turn; ++i) each_two_of_row<Step, W, steps>(s, a, b, sa, sb, f_of_two);
            } else {
                ZELT_UNROLL(4)
                for (int i = 0; i < turn / Step::rows; ++i) {
                    const auto v = places.at(i, load);
                    s = f(s, v.first, v.second);
                }
                places.next_turn(turn / Step::rows);
            }
    }
    if constexpr (W == Step::columns) a = places.a(), b = places.b();
}

/// The difference of R rows of W samples each
template <int W, int R, class A, class B>
auto difference_of_rows(const A* a, const B* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    return load_rows_16<W, R>(a, sa) - load_rows_16<W, R>(b, sb);
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

/// (a, b) to (a + b, a - b)
template <class V> void butterfly(V& a, V& b) {
    const V sum = a + b;
    b = hide_difference_from_optimizer(a - b), a = sum;
}
template <class V> void butterfly_sat(V& a, V& b) {
    const V sum = add_sat(a, b);
    b = sub_sat(a, b), a = sum;
}
}  // namespace zelt::inline ZELT_LEVEL::vec
