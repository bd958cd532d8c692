// SPDX-License-Identifier: MIT
#pragma once
#include "metric/sad_scalar.h"
#include "simd/vocabulary.h"

#include <algorithm>

namespace zelt::inline ZELT_LEVEL::simd {
using scalar::sad;  // blocks that are too small for a register

/// Whether a block fills half a register at least
template <int W, int H, class Sample>
constexpr bool worth_a_register = W % 2 == 0 && (W * H) * static_cast<int>(sizeof(Sample)) >= 8;

// ------------------------------------------------------------------------------------------------------- 8-bit samples

template <int W, int H, class Sums>
#ifdef __clang__  // would not inline it by itself, and keep the sums in memory
[[gnu::always_inline]]
#endif
inline void
add_block(Sums& sum, const u8* a, const u8* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    each_step<byte_step<W, H>, W, H, 16>(
        sum, a, b, sa, sb,
        [](const Sums& s, auto va, auto vb) __attribute__((always_inline)) { return add_abs_diff(s, vb, va); });
}

template <int W, int H>
requires worth_a_register<W, H, u8> u32 sad(const u8* a, const u8* b, int sa, int sb) {
    using step = byte_step<W, H>;
    abs_diff_sums_8<W, W / step::columns*(H / step::rows)> sum{};
    add_block<W, H>(sum, a, b, sa, sb);
    return reduce_add(sum);
}

/// Up to as many rows as the partial sums can take
constexpr int rows_at_once = 256;
template <int W> u32 sad_few_rows(int h, const u8* a, const u8* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    abs_diff_sums_8<W, rows_at_once> sum{};
    for (; h >= 8; h -= 8, a += 8 * sa, b += 8 * sb) add_block<W, 8>(sum, a, b, sa, sb);
    for (; h > 0; --h, a += sa, b += sb) add_block<W, 1>(sum, a, b, sa, sb);
    return reduce_add(sum);
}
template <int W>
[[gnu::noinline]] u32 sad_many_rows(int h, const u8* a, const u8* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    u32 sum = 0;
    for (; h > rows_at_once; h -= rows_at_once, a += rows_at_once * sa, b += rows_at_once * sb)
        sum += sad_few_rows<W>(rows_at_once, a, b, sa, sb);
    return sum + sad_few_rows<W>(h, a, b, sa, sb);
}
template <int W> u32 sad_rows(int h, const u8* a, const u8* b, int sa, int sb) {
    return h == W ? sad<W, W>(a, b, sa, sb) : sad_many_rows<W>(h, a, b, sa, sb);
}

/// One row of any width
inline u32 sad_row(int w, const u8* a, const u8* b) {
    u32 sum = 0;
    for (; w >= 64; w -= 64, a += 64, b += 64) sum += sad<64, 1>(a, b, 0, 0);
    for (; w >= 16; w -= 16, a += 16, b += 16) sum += sad<16, 1>(a, b, 0, 0);
    return sum + scalar::sad(w, 1, a, b, 0, 0);
}

/// Goes four rows at a time while the threshold is not reached, then row by row to the one that exceeds it.
template <class Four, class One>
int sad_eskip(int h, const u8* a, const u8* b, std::ptrdiff_t sa, std::ptrdiff_t sb, int threshold, Four four,
              One one) {
    u32 sum = 0;
    for (; h >= 4; h -= 4, a += 4 * sa, b += 4 * sb) {
        const u32 next = sum + four(a, b);
        if (static_cast<int>(next) > threshold) break;
        sum = next;
    }
    for (; h > 0; --h, a += sa, b += sb) {
        sum += one(a, b);
        if (static_cast<int>(sum) > threshold) break;
    }
    return static_cast<int>(sum);
}
/// Adds the next R rows, or those up to the first that takes the sum above the threshold. Returns whether that is all:
/// of the last rows it always is, and nothing depends on a branch that is taken at random.
template <int W, int R>
bool add_until(u32& sum, const u8*& a, const u8*& b, std::ptrdiff_t sa, std::ptrdiff_t sb, int threshold, bool last) {
    abs_diff_sums_8<W, R> rows[R] = {};
    for (auto& row : rows) add_block<W, 1>(row, a, b, sa, sb), a += sa, b += sb;
    if (const u32 next = sum + reduce_add(rows); R == 1 || (!last && static_cast<int>(next) <= threshold)) {
        sum = next;
        return last || static_cast<int>(sum) > threshold;
    }
    if constexpr (R > 1)
        sum += sum_until(rows, static_cast<u32>(std::clamp(threshold - static_cast<int>(sum), -1, 65534) + 1));
    return true;
}
/// A function of its own: in one with the other widths all would save the registers that one of them needs.
template <int W>
[[gnu::noinline]] int sad_eskip_by_rows(int h, const u8* a, const u8* b, int s_a, int s_b, int threshold) {
    constexpr int most = W > 32 ? 4 : 8;  // whose sum is below 2^16
    const std::ptrdiff_t sa = s_a, sb = s_b;
    u32 sum = 0;
    bool done = h <= 0;
    for (; !done && h >= most; h -= most) done = add_until<W, most>(sum, a, b, sa, sb, threshold, h == most);
    for (; !done && h >= 4; h -= 4) done = add_until<W, 4>(sum, a, b, sa, sb, threshold, h == 4);
    for (; !done; --h) done = add_until<W, 1>(sum, a, b, sa, sb, threshold, h == 1);
    return static_cast<int>(sum);
}
template <int W> int sad_eskip(int h, const u8* a, const u8* b, int sa, int sb, int threshold) {
    if constexpr (sums_rows_apart) return sad_eskip_by_rows<W>(h, a, b, sa, sb, threshold);
    return sad_eskip(
        h, a, b, sa, sb, threshold, [=](const u8* pa, const u8* pb) { return sad<W, 4>(pa, pb, sa, sb); },
        [](const u8* pa, const u8* pb) { return sad<W, 1>(pa, pb, 0, 0); });
}
inline int sad_eskip_of_any_width(int w, int h, const u8* a, const u8* b, int sa, int sb, int threshold) {
    const auto row = [=](const u8* pa, const u8* pb) { return sad_row(w, pa, pb); };
    const auto four = [=](const u8* pa, const u8* pb) {
        u32 sum = 0;
        for (std::ptrdiff_t y = 0; y < 4; ++y) sum += sad_row(w, pa + y * sa, pb + y * sb);
        return sum;
    };
    return sad_eskip(h, a, b, sa, sb, threshold, four, row);
}
[[gnu::noinline]] inline int sad_eskip_of_other_width(int w, int h, const u8* a, const u8* b, int sa, int sb,
                                                      int threshold) {
    return sad_eskip_of_any_width(w, h, a, b, sa, sb, threshold);
}
inline int sad_eskip(int w, int h, const u8* a, const u8* b, int sa, int sb, int threshold) {
    switch (w) {
    case 4: return sad_eskip<4>(h, a, b, sa, sb, threshold);
    case 8: return sad_eskip<8>(h, a, b, sa, sb, threshold);
    case 16: return sad_eskip<16>(h, a, b, sa, sb, threshold);
    case 32: return sad_eskip<32>(h, a, b, sa, sb, threshold);
    case 64: return sad_eskip<64>(h, a, b, sa, sb, threshold);
    }
    return sums_rows_apart ? sad_eskip_of_other_width(w, h, a, b, sa, sb, threshold)
                           : sad_eskip_of_any_width(w, h, a, b, sa, sb, threshold);
}

// ------------------------------------------------------------------------------------------- 16-bit and mixed samples

/// Sums of parts of up to eight magnitudes. Those of samples of 12 bits are exact; otherwise the scalar form may have
/// the result.
template <class V> class abs_diffs {
public:
    static constexpr int at_once = 8;

    void add(const abs_diff_sums_16<V>& part) { sum_ = pairwise_add_accumulate(sum_, part.sum), seen_ |= seen(part); }
    bool exact() const { return exact_abs_diffs(seen_); }
    u32 reduce_add() const { return vec::reduce_add(sum_); }

private:
    u32_of<V> sum_{};
    V seen_{};
};

template <int W, int H, class A, class B>
[[gnu::cold, gnu::noinline]] u32 sad_of_large(const A* a, const B* b, int sa, int sb) {
    return scalar::sad<W, H>(a, b, sa, sb);
}

template <int W, int H, class B>
requires worth_a_register<W, H, s16> u32 sad(const s16* a, const B* b, int s_a, int s_b) {
    using step = word_step<W, H>;
    using V = u16_of<step::columns * step::rows>;
    static_assert(W <= abs_diffs<V>::at_once * step::columns, "no form for rows of this width");
    constexpr int group = divisor_of(H / step::rows, abs_diffs<V>::at_once * step::columns / W) * step::rows;
    constexpr bool odd = group * W / (step::columns * step::rows) % 2;  // registers in a group
    const std::ptrdiff_t sa = s_a, sb = s_b;
    abs_diffs<V> all;
    const s16* pa = a;
    const B* pb = b;
    for (int y = 0; y < H; y += group) {
        struct by_two {
            abs_diff_sums_16<V> part;
            V a, b;  // the first ones
            bool second;
        };
        const auto add = [](const by_two& s, V va, V vb) {
            by_two next = {s.part, va, vb, !s.second};
            if (s.second) add_abs_diffs(next.part, s.b, s.a, vb, va);
            return next;
        };
        by_two s{};
        each_step<step, W, group, abs_diffs<V>::at_once>(s, pa, pb, sa, sb, add);
        if (odd) add_abs_diff(s.part, s.b, s.a);
        all.add(s.part);
    }
    if (!all.exact()) [[unlikely]]
        return sad_of_large<W, H>(a, b, s_a, s_b);
    return all.reduce_add();
}

inline u32 sad(int w, int h, const s16* a, const s16* b, int sa, int sb) {
    abs_diffs<u16xn> wide;
    abs_diffs<u16x8> narrow;
    u32 sum = 0;
    each_strip(w, h, [&](auto width, int x, int y, int rows) {
        const s16 *pa = a + y * std::ptrdiff_t{sa} + x, *pb = b + y * std::ptrdiff_t{sb} + x;
        if constexpr (width == 1) {
            sum += scalar::sad(1, rows, pa, pb, sa, sb);
        } else {
            using V = u16_of<width>;
            while (rows > 0) {
                abs_diff_sums_16<V> part{};
                const auto row = [=](auto* p) { return load_rows_16<width, 1>(p, 0); };
                int n = std::min(rows, abs_diffs<V>::at_once);
                rows -= n;
                for (; n >= 2; n -= 2, pa += 2 * std::ptrdiff_t{sa}, pb += 2 * std::ptrdiff_t{sb})
                    add_abs_diffs(part, row(pb), row(pa), row(pb + sb), row(pa + sa));
                if (n > 0) add_abs_diff(part, row(pb), row(pa)), pa += sa, pb += sb;
                if constexpr (width == lanes_16)
                    wide.add(part);
                else
                    narrow.add(part);
            }
        }
    });
    if (!wide.exact() || !narrow.exact()) [[unlikely]]
        return scalar::sad(w, h, a, b, sa, sb);
    return sum + wide.reduce_add() + narrow.reduce_add();
}
}  // namespace zelt::inline ZELT_LEVEL::simd
