#pragma once
#include "core/copy_scalar.h"
#include "core/loose.h"
#include "core/simd.h"

namespace zelt::simd {
typedef u8 byte_quad __attribute__((vector_size(16)));

/// Copies n bytes, one to two of T, as its two ends.
template <class T> void copy_ends(u8* dst, const u8* src, s64 n) {
    const s64 last = n - static_cast<s64>(sizeof(T));
    const T a = load_loose<T>(src), b = load_loose<T>(src + last);
    store_loose(dst, a);
    store_loose(dst + last, b);
}

inline void copy(u8* dst, const u8* src, s64 n) {
    constexpr s64 long_run = 512;  // from here on the C library's way is as fast or faster
    if (n >= long_run) {
        std::memcpy(dst, src, static_cast<std::size_t>(n));
    } else if (n >= lanes) {
        const s64 last = n - lanes;
        for (s64 i = 0; i < last; i += lanes) store_loose(dst + i, load_loose<bytes>(src + i));
        store_loose(dst + last, load_loose<bytes>(src + last));
    } else if (n >= 16) {
        copy_ends<byte_quad>(dst, src, n);
    } else if (n >= 8) {
        copy_ends<u64>(dst, src, n);
    } else if (n >= 4) {
        copy_ends<u32>(dst, src, n);
    } else {
        for (; n > 0; --n) *dst++ = *src++;
    }
}

template <int N> void copy_fixed(u8* dst, const u8* src) {
    const auto piece = [&]<class T>(T) {
        store_loose(dst, load_loose<T>(src));
        copy_fixed<N - static_cast<int>(sizeof(T))>(dst + sizeof(T), src + sizeof(T));
    };
    if constexpr (N >= lanes)
        piece(bytes{});
    else if constexpr (N >= 16)
        piece(byte_quad{});
    else if constexpr (N >= 8)
        piece(u64{});
    else if constexpr (N >= 4)
        piece(u32{});
    else if constexpr (N >= 2)
        piece(u16{});
}
}  // namespace zelt::simd
