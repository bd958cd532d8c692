#pragma once
// Kernels inside the static archives of video coders: no header declares them.
#include "bench.h"

#include <mmintrin.h>

namespace zelt::bench {
/// As pair_peer(); forms for MMX leave its state behind.
inline block_peer coder_peer(const char* name, int (*f)(const void*, std::intptr_t, const void*, std::intptr_t)) {
    return {name, [f](const blocks& k) {
                const u64 sum = k.visit([&](const u8* a, const u8* b) { return f(a, k.a_stride, b, k.b_stride); });
                _mm_empty();
                return sum;
            }};
}

/// The first block is the one of the grid, which is aligned; forms that want the second aligned get them swapped.
inline block_peer swapped_peer(const char* name, int (*f)(const void*, std::intptr_t, const void*, std::intptr_t)) {
    return {name, [f](const blocks& k) {
                const u64 sum = k.visit([&](const u8* a, const u8* b) { return f(b, k.b_stride, a, k.a_stride); });
                _mm_empty();
                return sum;
            }};
}

/// The kernels of high bit depth of two libraries take half of the address of their 16-bit samples.
inline const void* half(const u8* p) { return reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(p) / 2); }
inline block_peer high_depth_peer(const char* name, unsigned (*f)(const void*, int, const void*, int)) {
    return {name, [f](const blocks& k) {
                return k.visit([&](const u8* a, const u8* b) { return f(half(a), k.a_stride, half(b), k.b_stride); });
            }};
}
inline block_peer difference_peer(const char* name, void (*f)(s16*, std::intptr_t, const void*, const void*,
                                                              std::intptr_t, std::intptr_t)) {
    return {name, [f](const blocks& k) {
                return k.visit([&](const u8* a, const u8* b) {
                    f(k.d, k.d_stride, a, b, k.a_stride, k.b_stride);
                    return 0;
                });
            }};
}
}  // namespace zelt::bench

/// Declares f and adds it to the row of a kernel.
#define PEER(kernel, f)                                                       \
    extern "C" int f(const void*, std::intptr_t, const void*, std::intptr_t); \
    static const bool f##_added = zelt::bench::add_peer(kernel, zelt::bench::coder_peer(#f, f));
#define SWAPPED_PEER(kernel, f)                                               \
    extern "C" int f(const void*, std::intptr_t, const void*, std::intptr_t); \
    static const bool f##_added = zelt::bench::add_peer(kernel, zelt::bench::swapped_peer(#f, f));
#define HIGH_DEPTH_PEER(kernel, f)                             \
    extern "C" unsigned f(const void*, int, const void*, int); \
    static const bool f##_added = zelt::bench::add_peer(kernel, zelt::bench::high_depth_peer(#f, f));
#define DIFFERENCE_PEER(kernel, f)                                                                               \
    extern "C" void f(zelt::bench::s16*, std::intptr_t, const void*, const void*, std::intptr_t, std::intptr_t); \
    static const bool f##_added = zelt::bench::add_peer(kernel, zelt::bench::difference_peer(#f, f));

/// The sizes of 8-bit SAD that two libraries have alike, and the latest form of each
// clang-format off
#define EACH_SAD(SAD) \
    SAD(4x4, sse2) SAD(4x8, sse2) SAD(8x4, sse2) SAD(8x8, sse2) SAD(8x16, sse2) SAD(16x8, sse2) SAD(16x16, sse2) \
    SAD(16x32, sse2) SAD(32x16, avx2) SAD(32x32, avx2) SAD(32x64, avx2) SAD(64x32, avx2) SAD(64x64, avx2)
// clang-format on
