// SPDX-License-Identifier: MIT
#pragma once
// Kernels inside the static archives of video coders: no header declares them.
#include "bench.h"

#ifdef __x86_64__
#include <mmintrin.h>
#define LATEST(f) f##_avx2
#else
#define LATEST(f) f##_neon
#endif
#define NAME_OF(f) #f
#define NAMED(f) NAME_OF(f), f

namespace zelt::bench {
/// Forms for MMX leave its state behind.
inline void end_of_mmx() {
#ifdef __x86_64__
    _mm_empty();
#endif
}

/// As pair_peer()
inline block_peer coder_peer(const char* name, int (*f)(const void*, std::intptr_t, const void*, std::intptr_t),
                             bool aligned = false) {
    return {name,
            [f](const blocks& k) {
                const u64 sum = k.visit([&](const u8* a, const u8* b) { return f(a, k.a_stride, b, k.b_stride); });
                end_of_mmx();
                return sum;
            },
            aligned};
}

/// The first block is the one of the grid, which is aligned; forms that want the second aligned get them swapped.
inline block_peer swapped_peer(const char* name, int (*f)(const void*, std::intptr_t, const void*, std::intptr_t)) {
    return {name, [f](const blocks& k) {
                const u64 sum = k.visit([&](const u8* a, const u8* b) { return f(b, k.b_stride, a, k.a_stride); });
                end_of_mmx();
                return sum;
            }};
}

/// Whole blocks where the kernel may stop early: what a search that keeps its best candidate does without it
inline block_peer whole_block_peer(const char* name, int (*f)(const void*, std::intptr_t, const void*, std::intptr_t)) {
    return {name, [f](const blocks& k) {
                int n = 0, best = 0;
                return k.visit([&](const u8* a, const u8* b) {
                    const int sum = f(a, k.a_stride, b, k.b_stride);
                    return best = n++ % blocks::candidates && best < sum ? best : sum;
                });
            }};
}

/// The kernels of high bit depth of two libraries take half of the address of their 16-bit samples.
inline const u8* half(const u8* p) { return reinterpret_cast<const u8*>(reinterpret_cast<std::uintptr_t>(p) / 2); }
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

/// Two libraries have kernels of this kind for all sizes.
using sized_squares = std::int64_t(const u8*, int, const u8*, int, int w, int h);
inline bool add_squares(const std::string& size, const char* name, sized_squares* f) {
    return add_peer("zelt_ssd " + size, {name, [f](const blocks& k) {
                                             return k.visit([&](const u8* a, const u8* b) {
                                                 return f(a, k.a_stride, b, k.b_stride, k.size.w, k.size.h);
                                             });
                                         }});
}
inline bool add_high_depth_squares(const std::string& size, const char* name, sized_squares* f) {
    return add_peer("zelt_ssd_16 " + size, {name, [f](const blocks& k) {
                                                return k.visit([&](const u8* a, const u8* b) {
                                                    return f(half(a), k.a_stride, half(b), k.b_stride, k.size.w,
                                                             k.size.h);
                                                });
                                            }});
}
using sized_differences = void(int h, int w, s16*, std::ptrdiff_t, const u8*, std::ptrdiff_t, const u8*,
                               std::ptrdiff_t);
inline bool add_differences(const std::string& size, const char* name, sized_differences* f) {
    return add_peer("zelt_diff" + size, {name, [f](const blocks& k) {
                                             return k.visit([&](const u8* a, const u8* b) {
                                                 f(k.size.h, k.size.w, k.d, k.d_stride, a, k.a_stride, b, k.b_stride);
                                                 return 0;
                                             });
                                         }});
}
using high_depth_differences = void(int h, int w, s16*, std::ptrdiff_t, const u8*, std::ptrdiff_t, const u8*,
                                    std::ptrdiff_t, int depth);
inline bool add_high_depth_differences(const std::string& size, const char* name, high_depth_differences* f) {
    return add_peer("zelt_diff" + size + "_16", {name, [f](const blocks& k) {
                                                     return k.visit([&](const u8* a, const u8* b) {
                                                         f(k.size.h, k.size.w, k.d, k.d_stride, half(a), k.a_stride,
                                                           half(b), k.b_stride, 10);
                                                         return 0;
                                                     });
                                                 }});
}
inline const char* const all_squares[] = {"4x4", "8x8", "16x16", "32x32", "64x64"};
inline const char* const all_sizes[] = {"4x4",   "4x8",   "8x4",   "8x8",   "8x16",  "16x8", "16x16",
                                        "16x32", "32x16", "32x32", "32x64", "64x32", "64x64"};
}  // namespace zelt::bench

/// Declares f and adds it to the row of a kernel.
#define PEER(kernel, f)                                                       \
    extern "C" int f(const void*, std::intptr_t, const void*, std::intptr_t); \
    static const bool f##_added = zelt::bench::add_peer(kernel, zelt::bench::coder_peer(#f, f));
#define ALIGNED_PEER(kernel, f)                                               \
    extern "C" int f(const void*, std::intptr_t, const void*, std::intptr_t); \
    static const bool f##_added = zelt::bench::add_peer(kernel, zelt::bench::coder_peer(#f, f, true));
#define SWAPPED_PEER(kernel, f)                                               \
    extern "C" int f(const void*, std::intptr_t, const void*, std::intptr_t); \
    static const bool f##_added = zelt::bench::add_peer(kernel, zelt::bench::swapped_peer(#f, f));
#define WHOLE_BLOCK_PEER(kernel, f) \
    static const bool f##_whole = zelt::bench::add_peer(kernel, zelt::bench::whole_block_peer(#f, f));
#define HIGH_DEPTH_PEER(kernel, f)                             \
    extern "C" unsigned f(const void*, int, const void*, int); \
    static const bool f##_added = zelt::bench::add_peer(kernel, zelt::bench::high_depth_peer(#f, f));
#define DIFFERENCE_PEER(kernel, f)                                                                               \
    extern "C" void f(zelt::bench::s16*, std::intptr_t, const void*, const void*, std::intptr_t, std::intptr_t); \
    static const bool f##_added = zelt::bench::add_peer(kernel, zelt::bench::difference_peer(#f, f));

/// The sizes of 8-bit SAD that two libraries have alike, and the latest form of each
// clang-format off
#ifndef __x86_64__
#define EACH_SAD(SAD) \
    SAD(4x4, neon) SAD(4x8, neon) SAD(8x4, neon) SAD(8x8, neon) SAD(8x16, neon) SAD(16x8, neon) SAD(16x16, neon) \
    SAD(16x32, neon) SAD(32x16, neon) SAD(32x32, neon) SAD(32x64, neon) SAD(64x32, neon) SAD(64x64, neon)
#else
#define EACH_SAD(SAD) \
    SAD(4x4, sse2) SAD(4x8, sse2) SAD(8x4, sse2) SAD(8x8, sse2) SAD(8x16, sse2) SAD(16x8, sse2) SAD(16x16, sse2) \
    SAD(16x32, sse2) SAD(32x16, avx2) SAD(32x32, avx2) SAD(32x64, avx2) SAD(64x32, avx2) SAD(64x64, avx2)
#endif
// clang-format on
