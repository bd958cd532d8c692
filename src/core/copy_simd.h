// SPDX-License-Identifier: MIT
#pragma once
#include "core/copy_scalar.h"
#include "core/unaligned.h"
#include "simd/vocabulary.h"

namespace zelt::inline ZELT_LEVEL::simd {
typedef u8 u8x8 __attribute__((vector_size(8)));

/// Copies n bytes, one to two of T, as its two ends.
template <class T> void copy_ends(u8* dst, const u8* src, std::size_t n) {
    const std::size_t last = n - sizeof(T);
    const T a = load_unaligned<T>(src), b = load_unaligned<T>(src + last);
    store_unaligned(dst, a);
    store_unaligned(dst + last, b);
}

inline void copy(u8* dst, const u8* src, std::size_t n) {
    if (n >= memcpy_from) {
        std::memcpy(dst, src, n);
    } else if (n >= lanes) {
        u8* const last = dst + (n - lanes);
        const u8xn end = load_unaligned<u8xn>(src + (n - lanes));
        const auto one = [&] {
            hide_step_from_optimizer(dst), hide_step_from_optimizer(src);
            store_unaligned(dst, load_unaligned<u8xn>(src));
            dst += lanes, src += lanes;
        };
        constexpr std::size_t turn = loads_step ? 2 : 1;
        const std::size_t count = (n - 1) / lanes;
        if (count % turn) one();
        ZELT_UNROLL(1)
        for (std::size_t i = count / turn; i; --i)
            for (std::size_t k = 0; k < turn; ++k) one();
        store_unaligned(last, end);
    } else if (n >= 16) {
        copy_ends<u8x16>(dst, src, n);
    } else if (n >= 8) {
        copy_ends<u64>(dst, src, n);
    } else if (n >= 4) {
        copy_ends<u32>(dst, src, n);
    } else {
        for (; n > 0; --n) *dst++ = *src++;
    }
}

/// Copies Rows rows of N bytes. Up to a register wide, all rows are loaded before the first is stored: loads do not
/// wait for stores, of which the compiler cannot tell that they are elsewhere. Wider rows are copied one after another.
template <int N, int Rows> void copy_rows(u8* dst, std::ptrdiff_t s_dst, const u8* src, std::ptrdiff_t s_src) {
    const auto column = [&]<class T>(T) {
        T v[Rows];
        for (int i = 0; i < Rows; ++i) v[i] = load_unaligned<T>(src + i * s_src);
        for (int i = 0; i < Rows; ++i) store_unaligned(dst + i * s_dst, v[i]);
        constexpr int size = sizeof(T);
        copy_rows<N - size, Rows>(dst + size, s_dst, src + size, s_src);
    };
    if constexpr (N >= 2 * lanes && Rows > 1)
        for (int i = 0; i < Rows; ++i) copy_rows<N, 1>(dst + i * s_dst, s_dst, src + i * s_src, s_src);
    else if constexpr (N >= lanes)
        column(u8xn{});
    else if constexpr (N >= 16)
        column(u8x16{});
    else if constexpr (N >= 8)
        column(u8x8{});
    else if constexpr (N >= 4)
        column(u32{});
    else if constexpr (N >= 2)
        column(u16{});
    else
        static_assert(N == 0, "no form for rows of this width");
}
}  // namespace zelt::inline ZELT_LEVEL::simd
