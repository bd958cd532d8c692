// SPDX-License-Identifier: MIT
#pragma once  // blocks in registers
#include "csc/convert.h"
#include "video/turn_scalar.h"

#include <algorithm>

namespace zelt::inline ZELT_LEVEL::simd {
using scalar::reverse;
using vec::reverse;

/// 16 bytes of so many rows: on registers of 32 bytes rows of twice as many
template <int Bytes> constexpr int block_columns = 16 / Bytes;
template <int Bytes> constexpr int block_rows = lanes / Bytes;

/// Elements of the first half of the registers in turn with those of the second half, the logarithm of their number
/// times
template <int Bytes> void transpose_block(const u8* src, std::ptrdiff_t src_s, u8* dst, std::ptrdiff_t dst_s) {
    constexpr int n = block_columns<Bytes>;
    u8xn v[n], w[n];
    for (int i = 0; i < n; ++i) v[i] = load_apart(src + i * src_s, n * src_s);
    const auto stage = [](const u8xn(&from)[n], u8xn(&to)[n]) __attribute__((always_inline)) {
        ZELT_UNROLL(8)
        for (int i = 0; i < n / 2; ++i) {
            const auto both = zip<Bytes>(from[i], from[i + n / 2]);
            to[2 * i] = both.first, to[2 * i + 1] = both.second;
        }
    };
    stage(v, w), stage(w, v);
    if constexpr (n > 4) stage(v, w);
    if constexpr (n > 8) stage(w, v);
    ZELT_UNROLL(16)
    for (int i = 0; i < n; ++i) store(dst + i * dst_s, n == 8 ? w[i] : v[i]);
}

/// Bands of rows whose columns become parts of rows, those of a cache line at once. The last blocks may overlap those
/// before.
template <int Bytes>
void transpose(const u8* src, std::ptrdiff_t src_s, u8* dst, std::ptrdiff_t dst_s, std::ptrdiff_t w, std::ptrdiff_t h) {
    constexpr std::ptrdiff_t columns = block_columns<Bytes>, rows = block_rows<Bytes>, line = 64 / Bytes, band = 64;
    if (w < columns || h < rows) return scalar::transpose<Bytes>(src, src_s, dst, dst_s, w, h);
    for (std::ptrdiff_t top = 0; top < h; top += band)
        for (std::ptrdiff_t left = 0; left < w; left += line)
            for (std::ptrdiff_t i = top; i < std::min(h, top + band); i += rows)
                for (std::ptrdiff_t k = left; k < std::min(w, left + line); k += columns) {
                    const std::ptrdiff_t x = std::min(k, w - columns), y = std::min(i, h - rows);
                    transpose_block<Bytes>(src + y * src_s + x * Bytes, src_s, dst + x * dst_s + y * Bytes, dst_s);
                }
}

/// Three bytes a pixel, as planes
template <>
inline void transpose<3>(const u8* src, std::ptrdiff_t src_s, u8* dst, std::ptrdiff_t dst_s, std::ptrdiff_t w,
                         std::ptrdiff_t h) {
    constexpr std::ptrdiff_t size = 32;
    if (w < lanes || h < lanes) return scalar::transpose<3>(src, src_s, dst, dst_s, w, h);
    u8 from[3][size][size], to[3][size][size];
    const auto places = [](u8(&planes)[3][size][size], std::ptrdiff_t y) {
        csc::planar<3> row;
        for (int c = 0; c < 3; ++c) row.p[c] = planes[c][y];
        return row;
    };
    const auto pixels = [](const u8* p) {
        csc::rgb888 row;
        row.p[0] = const_cast<u8*>(p);
        return row;
    };
    for (std::ptrdiff_t top = 0; top < h; top += size)
        for (std::ptrdiff_t left = 0; left < w; left += size) {
            const std::ptrdiff_t tile_w = std::min(size, w), tile_h = std::min(size, h);
            const std::ptrdiff_t x = std::min(left, w - tile_w), y = std::min(top, h - tile_h);
            for (std::ptrdiff_t i = 0; i < tile_h; ++i)
                csc::convert_row<u8xn>(pixels(src + (y + i) * src_s + x * 3), csc::repack{}, places(from, i), tile_w);
            for (int c = 0; c < 3; ++c) transpose<1>(from[c][0], size, to[c][0], size, tile_w, tile_h);
            for (std::ptrdiff_t i = 0; i < tile_w; ++i)
                csc::convert_row<u8xn>(places(to, i), csc::repack{}, pixels(dst + (x + i) * dst_s + y * 3), tile_h);
        }
}

template <int Bytes> void reverse_row(const u8* src, u8* dst, std::ptrdiff_t n) {
    constexpr std::ptrdiff_t step = Bytes == 3 ? lanes : lanes / Bytes;
    if (n < step) return scalar::reverse_row<Bytes>(src, dst, n);
    for (std::ptrdiff_t i = 0; i < n; i += step) {
        const std::ptrdiff_t at = std::min(i, n - step);
        const u8* from = src + (n - at - step) * Bytes;
        u8xn a, b, c;
        if constexpr (Bytes == 3) {
            load3(from, a, b, c);
            store3(dst + at * 3, reverse<1>(a), reverse<1>(b), reverse<1>(c));
        } else {
            load(from, a);
            store(dst + at * Bytes, reverse<Bytes>(a));
        }
    }
}
}  // namespace zelt::inline ZELT_LEVEL::simd
