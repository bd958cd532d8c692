// SPDX-License-Identifier: MIT
#pragma once
// Chroma of a row on its way to the pixels of a strip: samples of one or two source rows, weighted down and then
// across, as bytes, or multiplied by the matrix. A strip is as many pixels as the nearest cache holds in all their
// forms. Even and odd pixels have arrays of their own if each pixel has chroma of its own.
#include "csc/convert.h"
#include "video/matrix.h"
#include "video/samples.h"

namespace zelt::inline ZELT_LEVEL::video {
using namespace fast;

constexpr int strip_pairs = 512;

/// Keeps compilers from vectorising what registers leave, and what is rare.
inline std::ptrdiff_t one_by_one(std::ptrdiff_t i) { return sizeof(widest) > 1 ? hide_from_optimizer(i) : i; }

/// Calls body(V{}, i) for all of n elements, by registers if there are enough; the last one may overlap the one before.
template <class Body> [[gnu::always_inline]] inline void for_each(std::ptrdiff_t n, const Body& body) {
    constexpr std::ptrdiff_t step = sizeof(widest);
    if (step > 1 && n >= step)
        for (std::ptrdiff_t i = 0; i < n; i += step) body(widest{}, std::min(i, n - step));
    else
        for (std::ptrdiff_t i = 0; i < n; ++i) body(u8{}, one_by_one(i));
}
/// The same of pixels, where registers begin at even ones
template <class Body> [[gnu::always_inline]] inline void for_pixels(std::ptrdiff_t n, const Body& body) {
    constexpr std::ptrdiff_t step = sizeof(widest);
    const std::ptrdiff_t whole = step > 1 && n >= step ? n & -2 : 0;
    for (std::ptrdiff_t x = 0; x < whole; x += step) body(widest{}, std::min(x, whole - step));
    for (std::ptrdiff_t x = whole; x < n; ++x) body(u8{}, one_by_one(x));
}

#if ZELT_SIMD
/// The pixels from x on, which is even, of planes that stay where they are
struct pixels_at {
    std::ptrdiff_t x;

    /// What op(p) deals with, so many bytes for each two pixels, after bytes that were dealt with here
    template <int Bytes, int After = 0, class P, class Op> void deal(P* p, Op op) const {
        op(p + (Bytes % 2 ? Bytes * (x >> 1) : Bytes / 2 * x) + After);
    }
};
/// The next pixels of planes that step on
struct next_pixels {
    template <int, int = 0, class P, class Op> void deal(P*& p, Op op) const {
        p = op(p);
        hide_step_from_optimizer(p);
    }
};
#endif

// ---------------------------------------------------------------------------------------------------------------- down

/// Of a sample in one row and of that in another: A + B is 4, so that what follows has quarters.
template <int A, int B> void weigh(const u8* near, const u8* far, s16* out, std::ptrdiff_t n) {
    for_each(n, [=](auto v, std::ptrdiff_t i) {
        auto w = v;
        load(near + i, v), load(far + i, w);
        store_widened(out + i, dot<A, B>(v, w));
    });
}
/// The same of two channels in turn, or of even and odd samples
template <int A, int B> void weigh2(const u8* near, const u8* far, s16* first, s16* second, std::ptrdiff_t n) {
    for_each(n, [=](auto v0, std::ptrdiff_t i) {
        auto v1 = v0, w0 = v0, w1 = v0;
        load2(near + 2 * i, v0, v1), load2(far + 2 * i, w0, w1);
        store_widened(first + i, dot<A, B>(v0, w0));
        store_widened(second + i, dot<A, B>(v1, w1));
    });
}

// -------------------------------------------------------------------------------------------------------------- across

// Two channels, or two pixels of one, as those who use them ask for them: centred, (c - 128) << 8 with its fraction or
// half of that, in an order of their own, which put() makes memory order; or as rounded bytes.

template <class V> wide_of<V> words_at(const s16* p) {
    wide_of<V> v;
    load_words(p, v);
    return v;
}
/// Quarters as they are
struct single {
    static constexpr int rows = 1;
    static constexpr bool halves = false;
    const s16 *first, *second;
    template <class V> void centred(std::ptrdiff_t i, wide_of<V>* d, wide_of<V>* e) const {
        *d = (words_at<V>(first + i) << 6) + -(512 << 6);
        *e = (words_at<V>(second + i) << 6) + -(512 << 6);
    }
    template <class V> static void put(s16* p, wide_of<V> v) { store_words(p, v); }
    template <class V> void bytes(std::ptrdiff_t i, V& a, V& b) const {
        a = narrow_ordered((words_at<V>(first + i) + 2) >> 2);
        b = narrow_ordered((words_at<V>(second + i) + 2) >> 2);
    }
};
/// Sums of two rows, for those with the neighbour's: Near + Far is 4. Of two rows between them the second one is nearer
/// to the other.
template <int Near, int Far, int Rows, class Samples> struct between_rows {
    static constexpr int rows = Rows;
    static constexpr bool halves = true;
    Samples near, far;
    template <class V> void centred(std::ptrdiff_t i, wide_of<V>* d, wide_of<V>* e) const {
        V u, v, u_far, v_far;
        near.bytes(i, u, v), far.bytes(i, u_far, v_far);
        d[0] = dot<32 * Near, 32 * Far>(u, u_far) + -(512 << 5);
        e[0] = dot<32 * Near, 32 * Far>(v, v_far) + -(512 << 5);
        if constexpr (Rows == 2) {
            d[1] = dot<32 * Far, 32 * Near>(u, u_far) + -(512 << 5);
            e[1] = dot<32 * Far, 32 * Near>(v, v_far) + -(512 << 5);
        }
    }
    template <class V> static void put(s16* p, wide_of<V> v) { store_widened(p, v); }
};

/// The mean of even and odd samples
struct mean {
    const s16 *first, *first_odd, *second, *second_odd;
    template <class V> void bytes(std::ptrdiff_t i, V& a, V& b) const {
        a = narrow_ordered((words_at<V>(first + i) + words_at<V>(first_odd + i) + 4) >> 3);
        b = narrow_ordered((words_at<V>(second + i) + words_at<V>(second_odd + i) + 4) >> 3);
    }
};
/// One channel at its samples and between them
struct doubled {
    const s16* samples;
    template <class V> void bytes(std::ptrdiff_t i, V& a, V& b) const {
        const wide_of<V> v = words_at<V>(samples + i), next = words_at<V>(samples + i + 1);
        a = narrow_ordered((v + 2) >> 2), b = narrow_ordered((v + next + 4) >> 3);
    }
};

/// Two planes as they are
struct plane_samples {
    static constexpr int rows = 1;
    static constexpr bool halves = false;
    const u8 *u, *v;
    template <class V> void centred(std::ptrdiff_t i, wide_of<V>* d, wide_of<V>* e) const {
        V a, b;
        bytes(i, a, b);
        *d = (widen(a) + -128) << 8, *e = (widen(b) + -128) << 8;
    }
    template <class V> static void put(s16* p, wide_of<V> v) { store_widened(p, v); }
    template <class V> void bytes(std::ptrdiff_t i, V& a, V& b) const { load(u + i, a), load(v + i, b); }
};
/// One plane of both
template <bool VFirst> struct paired_samples {
    static constexpr int rows = 1;
    static constexpr bool halves = false;
    const u8* uv;
    template <class V> void centred(std::ptrdiff_t i, wide_of<V>* d, wide_of<V>* e) const {
        VFirst ? load_centred2(uv + 2 * i, *e, *d) : load_centred2(uv + 2 * i, *d, *e);
    }
    template <class V> static void put(s16* p, wide_of<V> v) { store_words(p, v); }
    template <class V> void bytes(std::ptrdiff_t i, V& a, V& b) const {
        VFirst ? load2(uv + 2 * i, b, a) : load2(uv + 2 * i, a, b);
    }
};

// ---------------------------------------------------------------------------------------------------------------- uses

/// What chroma adds to the components, the constant included: of every second pixel, or for one half of each sum
struct terms {
    alignas(64) s16 r[strip_pairs + 1];
    alignas(64) s16 g[strip_pairs + 1];
    alignas(64) s16 b[strip_pairs + 1];
};

/// Of as many rows as Chroma has
template <class Chroma> void multiply(const matrix& given, Chroma c, terms* rows, std::ptrdiff_t n) {
    const matrix m = given;
    const int constant = Chroma::halves ? m.constant >> 1 : m.constant;
    for_each(n, [=](auto v, std::ptrdiff_t i) {
        using V = decltype(v);
        wide_of<V> d[Chroma::rows], e[Chroma::rows];
        c.template centred<V>(i, d, e);
        for (int row = 0; row < Chroma::rows; ++row) {
            c.template put<V>(rows[row].r + i, m.red(d[row], e[row]) + constant);
            c.template put<V>(rows[row].g + i, m.green(d[row], e[row]) + constant);
            c.template put<V>(rows[row].b + i, m.blue(d[row], e[row]) + constant);
        }
    });
}
/// Of planes with chroma for each pixel
inline void multiply(const matrix& given, const u8* u, const u8* v, terms& even, terms& odd, std::ptrdiff_t n) {
    const matrix m = given;
    for_pixels(n, [=, &even, &odd](auto a, std::ptrdiff_t x) {
        auto b = a;
        load(u + x, a), load(v + x, b);
        const auto d = centred_pixels(a), e = centred_pixels(b);
        store_term(even.r, odd.r, x, m.red(d, e) + m.constant);
        store_term(even.g, odd.g, x, m.green(d, e) + m.constant);
        store_term(even.b, odd.b, x, m.blue(d, e) + m.constant);
    });
}

template <class Chroma> void to_planes(Chroma c, u8* u, u8* v, std::ptrdiff_t n) {
    for_each(n, [=](auto a, std::ptrdiff_t i) {
        auto b = a;
        c.bytes(i, a, b);
        store(u + i, a), store(v + i, b);
    });
}
template <class Chroma> void to_pairs(Chroma c, u8* uv, std::ptrdiff_t n) {
    for_each(n, [=](auto a, std::ptrdiff_t i) {
        auto b = a;
        c.bytes(i, a, b);
        store2(uv + 2 * i, a, b);
    });
}
}  // namespace zelt::inline ZELT_LEVEL::video
