// SPDX-License-Identifier: MIT
#include "zelt/mem.h"

#include "core/copy.h"
#include "core/fill.h"
#include "core/types.h"
#include "simd/barrier.h"
#include "simd/export.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace zelt;

namespace {
u8* bytes_at(void* p) { return static_cast<u8*>(p); }
u8* bytes_at(s16* p) { return reinterpret_cast<u8*>(p); }
const u8* bytes_at(const s16* p) { return reinterpret_cast<const u8*>(p); }

std::size_t from_zero(int n) { return n > 0 ? static_cast<std::size_t>(n) : 0; }
/// Steps are powers of two.
std::size_t whole_steps(std::size_t size, std::size_t step) { return size & -step; }

struct area {
    u8* dst;
    const u8* src;
    s64 s_dst, s_src, w, h;  // bytes
};

/// Kept: of a run of 16-bit samples, the rest after pieces of 64 bytes is copied at twice its size, its bytes counted
/// as samples. A rest of 32 bytes of a row is a piece of its own.
s64 doubled_tail(s64 n, bool contiguous) {
    const s64 rest = n % 64;
    return n < 64 || (rest == 32 && !contiguous) ? n : n + rest;
}

void copy_area(area a, int element) {
    if (a.w <= 0 || a.h <= 0) return;
    const bool contiguous = a.s_src == a.w && a.s_dst == a.w;
    if (contiguous) {
        a.w *= a.h;
        a.h = 1;
    }
    const s64 n = element == 2 ? doubled_tail(a.w, contiguous) : a.w;
    for (; a.h > 0; --a.h, a.dst += a.s_dst, a.src += a.s_src) fast::copy(a.dst, a.src, static_cast<std::size_t>(n));
}

using block_copy = void(u8* dst, const u8* src, int s_dst, int s_src, int w, int h);

/// Rows of N bytes, two at a time and four per iteration
template <int N, int Element> void copy_block(u8* dst, const u8* src, int s_dst, int s_src, int, int h) {
    if (h <= 0) return;
    const std::ptrdiff_t to = std::ptrdiff_t{s_dst} * Element, from = std::ptrdiff_t{s_src} * Element;
    const auto rows = [&]<int Rows>() {
        fast::copy_rows<N, Rows>(dst, to, src, from);
        dst += Rows * to;
        src += Rows * from;
        hide_step_from_optimizer(dst);
        hide_step_from_optimizer(src);
    };
    if (h & 1) rows.template operator()<1>();
    if (h & 2) rows.template operator()<2>();
    for (h >>= 2; h > 0; --h) {
        rows.template operator()<2>();
        rows.template operator()<2>();
    }
}

/// By width. Kept: 64 samples for all other widths
template <int Element>
constexpr auto block_copies = [] {
    std::array<block_copy*, 49> all;
    all.fill(copy_block<64 * Element, Element>);
    const auto set = [&]<int... W>(std::integer_sequence<int, W...>) {
        ((all[W] = copy_block<W * Element, Element>), ...);
    };
    set(std::integer_sequence<int, 2, 4, 6, 8, 12, 16, 24, 32, 48>());
    return all;
}();

template <int Element> block_copy* block_copy_for(int w) {
    const auto& all = block_copies<Element>;
    return all[w > 0 && w < static_cast<int>(all.size()) ? static_cast<std::size_t>(w) : 0];
}

area bytes_of(u8* dst, const u8* src, int s_dst, int s_src, int w, int h) { return {dst, src, s_dst, s_src, w, h}; }
area bytes_of(s16* dst, const s16* src, int s_dst, int s_src, int w, int h) {
    return {bytes_at(dst), bytes_at(src), 2 * s64{s_dst}, 2 * s64{s_src}, 2 * s64{w}, h};
}
}  // namespace

ZELT_EXPORT(void, zelt_mset_x128)(void* dst, uint32_t val, int size) {
    // Kept: rounds up, and writes one step at least.
    fast::fill(bytes_at(dst), val, whole_steps(from_zero(std::max(size, 1)) + 127, 128));
}

ZELT_EXPORT(void, zelt_mset_x64)(void* dst, int val, int size) {
    // Kept: steps of 128, despite the name.
    fast::fill_bytes(bytes_at(dst), static_cast<u8>(val), whole_steps(from_zero(size), 128));
}

ZELT_EXPORT(void, zelt_mset_x64a)(void* dst, int val, int size) {
    fast::fill_bytes(bytes_at(dst), static_cast<u8>(val), from_zero(size));
}

ZELT_EXPORT(void, zelt_mset_x32)(void* dst, uint32_t val, int size) {
    fast::fill(bytes_at(dst), val, whole_steps(from_zero(size), 32));
}

ZELT_EXPORT(void, zelt_mset_x32ax4)(void* dst, uint32_t val, int size) {
    // Kept: one step at least, and a tail of the low byte alone.
    const std::size_t all = from_zero(std::max(size, 32)), steps = whole_steps(all, 32);
    fast::fill(bytes_at(dst), val, steps);
    fast::fill_bytes(bytes_at(dst) + steps, static_cast<u8>(val), all - steps);
}

ZELT_EXPORT(void, zelt_mclr_x64)(void* dst, int n) {
    fast::fill_bytes(bytes_at(dst), 0, 4 * whole_steps(from_zero(n), 64));
}

ZELT_EXPORT(void, zelt_mset16)(int16_t* dst, int val, int n) {
    fast::fill(bytes_at(dst), static_cast<u16>(val) * 0x10001u, 2 * from_zero(n));
}

ZELT_EXPORT(void, zelt_mcpy_pic)(uint8_t* dst, const uint8_t* src, int s_dst, int s_src, int w, int h) {
    copy_area(bytes_of(dst, src, s_dst, s_src, w, h), 1);
}

ZELT_EXPORT(void, zelt_mcpy_pic_16)(int16_t* dst, const int16_t* src, int s_dst, int s_src, int w, int h) {
    copy_area(bytes_of(dst, src, s_dst, s_src, w, h), 2);
}

ZELT_EXPORT(void, zelt_mcpy_blk)(uint8_t* dst, const uint8_t* src, int s_dst, int s_src, int w, int h) {
    block_copy_for<1>(w)(dst, src, s_dst, s_src, w, h);
}

ZELT_EXPORT(void, zelt_mcpy_blk_16)(int16_t* dst, const int16_t* src, int s_dst, int s_src, int w, int h) {
    block_copy_for<2>(w)(bytes_at(dst), bytes_at(src), s_dst, s_src, w, h);
}
