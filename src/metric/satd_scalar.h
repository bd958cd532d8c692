// SPDX-License-Identifier: MIT
#pragma once  // Hadamard-transformed differences, coefficient by coefficient
#include "core/types.h"
#include "simd/level.h"

namespace zelt::inline ZELT_LEVEL::scalar {
/// In-place transform of N values that lie `step` apart
template <int N, class T> void hadamard(T* v, int step) {
    for (int half = N / 2; half > 0; half /= 2)
        for (int i = 0; i < N; ++i)
            if (!(i & half)) {
                const T a = v[i * step], b = v[(i + half) * step];
                v[i * step] = static_cast<T>(a + b), v[(i + half) * step] = static_cast<T>(a - b);
            }
}

/// Sum of the coefficients' magnitudes. T is unsigned, so that all may wrap; a coefficient is read as signed, and the
/// magnitude of the lowest value is unsigned again.
template <int N, class T> u32 hadamard_sum(T* v) {
    for (int y = 0; y < N; ++y) hadamard<N>(v + N * y, 1);
    for (int x = 0; x < N; ++x) hadamard<N>(v + x, N);
    u32 sum = 0;
    for (int i = 0; i < N * N; ++i) sum += static_cast<std::make_signed_t<T>>(v[i]) < 0 ? static_cast<T>(-v[i]) : v[i];
    return sum;
}

/// 4x4 wraps in 16 bits, 8x8 is exact.
template <int N, class A, class B> u32 satd(const A* a, const B* b, int sa, int sb) {
    std::conditional_t<N == 4, u16, u32> v[N * N];
    for (int y = 0; y < N; ++y, a += sa, b += sb)
        for (int x = 0; x < N; ++x) v[N * y + x] = static_cast<std::remove_reference_t<decltype(*v)>>(a[x] - b[x]);
    return N == 4 ? hadamard_sum<N>(v) >> 1 : (hadamard_sum<N>(v) + 2) >> 2;
}

template <class A, class B> u32 satd4x4(const A* a, const B* b, int sa, int sb) { return satd<4>(a, b, sa, sb); }
template <class A, class B> u32 satd8x8(const A* a, const B* b, int sa, int sb) { return satd<8>(a, b, sa, sb); }

inline u32 hadamard4x4(const s16* d) {
    u16 v[16];
    for (int i = 0; i < 16; ++i) v[i] = static_cast<u16>(d[i]);
    return hadamard_sum<4>(v) >> 1;
}

/// Whole 4x4 tiles, as many as cover the block
template <class A, class B> u32 satd_tiles(int w, int h, const A* a, const B* b, int sa, int sb) {
    u32 sum = 0;
    for (; h > 0; h -= 4, a += 4 * std::ptrdiff_t{sa}, b += 4 * std::ptrdiff_t{sb})
        for (std::ptrdiff_t x = 0; x < w; x += 4) sum += satd<4>(a + x, b + x, sa, sb);
    return sum;
}
}  // namespace zelt::inline ZELT_LEVEL::scalar
