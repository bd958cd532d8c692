// SPDX-License-Identifier: MIT
// MD5 (RFC 1321). Each step waits for the one before it, so what counts is the number of instructions from `b` to the
// step's result; everything that does not depend on `b` is kept off that path.
#include "zelt/md5.h"

#include "core/fill.h"
#include "core/types.h"
#include "core/unaligned.h"
#include "simd/barrier.h"
#include "simd/export.h"

#include <algorithm>
#include <bit>
#include <cstring>

using namespace zelt;

namespace {
constexpr std::size_t block_size = 64;

// The four functions of a step. G is (b & d) | (c & ~d): its terms are disjoint, so the one without b is added early.
// clang-format off
struct F { static u32 early(u32, u32)     { return 0; }      static u32 late(u32 b, u32 c, u32 d) { return d ^ (b & (c ^ d)); } };
struct G { static u32 early(u32 c, u32 d) { return c & ~d; } static u32 late(u32 b, u32, u32 d)   { return b & d; } };
struct H { static u32 early(u32, u32)     { return 0; }      static u32 late(u32 b, u32 c, u32 d) { return b ^ (c ^ d); } };
struct I { static u32 early(u32, u32)     { return 0; }      static u32 late(u32 b, u32 c, u32 d) { return c ^ (b | ~d); } };
// clang-format on

/// The optimisation barrier keeps the compiler from reassociating the sum, which would lengthen the path.
template <class Function, int Shift> void step(u32& a, u32 b, u32 c, u32 d, u32 word_and_constant) {
    a = hide_from_optimizer(a + word_and_constant + Function::early(c, d));
    a = b + std::rotl(a + Function::late(b, c, d), Shift);
}

void transform(u32 (&state)[4], const u8* data, std::size_t blocks) {
    auto [a, b, c, d] = state;
    for (; blocks; --blocks, data += block_size) {
        const u32 a0 = a, b0 = b, c0 = c, d0 = d;
        const auto x = [data](int k) { return load_unaligned<u32>(data + 4 * k); };
        // clang-format off
#define STEPS(FUNCTION, s0, s1, s2, s3, k0, t0, k1, t1, k2, t2, k3, t3) \
        step<FUNCTION, s0>(a, b, c, d, x(k0) + t0);                     \
        step<FUNCTION, s1>(d, a, b, c, x(k1) + t1);                     \
        step<FUNCTION, s2>(c, d, a, b, x(k2) + t2);                     \
        step<FUNCTION, s3>(b, c, d, a, x(k3) + t3);
        STEPS(F, 7, 12, 17, 22,  0, 0xd76aa478,  1, 0xe8c7b756,  2, 0x242070db,  3, 0xc1bdceee)
        STEPS(F, 7, 12, 17, 22,  4, 0xf57c0faf,  5, 0x4787c62a,  6, 0xa8304613,  7, 0xfd469501)
        STEPS(F, 7, 12, 17, 22,  8, 0x698098d8,  9, 0x8b44f7af, 10, 0xffff5bb1, 11, 0x895cd7be)
        STEPS(F, 7, 12, 17, 22, 12, 0x6b901122, 13, 0xfd987193, 14, 0xa679438e, 15, 0x49b40821)
        STEPS(G, 5,  9, 14, 20,  1, 0xf61e2562,  6, 0xc040b340, 11, 0x265e5a51,  0, 0xe9b6c7aa)
        STEPS(G, 5,  9, 14, 20,  5, 0xd62f105d, 10, 0x02441453, 15, 0xd8a1e681,  4, 0xe7d3fbc8)
        STEPS(G, 5,  9, 14, 20,  9, 0x21e1cde6, 14, 0xc33707d6,  3, 0xf4d50d87,  8, 0x455a14ed)
        STEPS(G, 5,  9, 14, 20, 13, 0xa9e3e905,  2, 0xfcefa3f8,  7, 0x676f02d9, 12, 0x8d2a4c8a)
        STEPS(H, 4, 11, 16, 23,  5, 0xfffa3942,  8, 0x8771f681, 11, 0x6d9d6122, 14, 0xfde5380c)
        STEPS(H, 4, 11, 16, 23,  1, 0xa4beea44,  4, 0x4bdecfa9,  7, 0xf6bb4b60, 10, 0xbebfbc70)
        STEPS(H, 4, 11, 16, 23, 13, 0x289b7ec6,  0, 0xeaa127fa,  3, 0xd4ef3085,  6, 0x04881d05)
        STEPS(H, 4, 11, 16, 23,  9, 0xd9d4d039, 12, 0xe6db99e5, 15, 0x1fa27cf8,  2, 0xc4ac5665)
        STEPS(I, 6, 10, 15, 21,  0, 0xf4292244,  7, 0x432aff97, 14, 0xab9423a7,  5, 0xfc93a039)
        STEPS(I, 6, 10, 15, 21, 12, 0x655b59c3,  3, 0x8f0ccc92, 10, 0xffeff47d,  1, 0x85845dd1)
        STEPS(I, 6, 10, 15, 21,  8, 0x6fa87e4f, 15, 0xfe2ce6e0,  6, 0xa3014314, 13, 0x4e0811a1)
        STEPS(I, 6, 10, 15, 21,  4, 0xf7537e82, 11, 0xbd3af235,  2, 0x2ad7d2bb,  9, 0xeb86d391)
#undef STEPS
        // clang-format on
        a += a0;
        b += b0;
        c += c0;
        d += d0;
    }
    state[0] = a;
    state[1] = b;
    state[2] = c;
    state[3] = d;
}

void update(ZELT_MD5* ctx, const u8* data, u32 len) {
    const std::size_t pending = ctx->bits_lo / 8 % block_size;
    ctx->bits_hi += (len >> 29) + (ctx->bits_lo + (len << 3) < ctx->bits_lo);
    ctx->bits_lo += len << 3;
    if (pending) {
        const std::size_t n = std::min<std::size_t>(len, block_size - pending);
        if (n) std::memcpy(ctx->buffer + pending, data, n);
        if (pending + n < block_size) return;
        transform(ctx->state, ctx->buffer, 1);
        data += n;
        len -= static_cast<u32>(n);
    }
    transform(ctx->state, data, len / block_size);
    if (const std::size_t rest = len % block_size) std::memcpy(ctx->buffer, data + (len - rest), rest);
}
}  // namespace

ZELT_EXPORT(void, zelt_md5_init)(ZELT_MD5* ctx) {
    constexpr u32 start[] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    std::memcpy(ctx->state, start, sizeof start);
    ctx->bits_lo = ctx->bits_hi = 0;
}

ZELT_EXPORT(void, zelt_md5_update)(ZELT_MD5* ctx, const uint8_t* data, uint32_t len) { update(ctx, data, len); }

ZELT_EXPORT(void, zelt_md5_update_16)(ZELT_MD5* ctx, const uint16_t* samples, int32_t count) {
    if (count > 0) update(ctx, reinterpret_cast<const u8*>(samples), 2 * static_cast<u32>(count));
}

ZELT_EXPORT(void, zelt_md5_trans)(ZELT_MD5* ctx, const uint32_t* block) {
    transform(ctx->state, reinterpret_cast<const u8*>(block), 1);
}

ZELT_EXPORT(void, zelt_md5_finish)(ZELT_MD5* ctx, uint8_t digest[16]) {
    const std::size_t pending = ctx->bits_lo / 8 % block_size;
    // Appends 0x80, zeros and the 64-bit length, filling one block or two. Copies of constant size: this dominates
    // short messages.
    static constexpr u8 padding[block_size] = {0x80};
    u8 tail[2 * block_size];
    std::memcpy(tail, ctx->buffer, block_size);
    std::memcpy(tail + pending, padding, block_size);
    const std::size_t size = pending < block_size - 8 ? block_size : 2 * block_size;
    store_unaligned(tail + size - 8, ctx->bits_lo);
    store_unaligned(tail + size - 4, ctx->bits_hi);
    transform(ctx->state, tail, size / block_size);
    std::memcpy(digest, ctx->state, sizeof ctx->state);
    fast::fill_bytes(reinterpret_cast<u8*>(ctx), 0, sizeof *ctx);
}
