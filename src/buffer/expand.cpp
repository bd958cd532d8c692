// SPDX-License-Identifier: MIT
#include "buffer/expand.h"

#include "core/types.h"
#include "core/unaligned.h"
#include "simd/export.h"
#include "zelt/imgb.h"

#include <algorithm>
#include <cstring>

using namespace zelt;

namespace {
/// Kept: ends the program, on every target alike, so that an unsupported width shows at once.
[[noreturn]] void stop() {
    *static_cast<volatile int*>(nullptr) = 0;
    __builtin_trap();
}

void extend_side(const u8* src, u8* dst, s64 rows, s64 stride, int count) {
    switch (count) {
    case 0: return;
    case 8: return fast::expand_rows<8>(src, dst, rows, stride);
    case 16: return fast::expand_rows<16>(src, dst, rows, stride);
    case 24: return fast::expand_rows<24>(src, dst, rows, stride);
    case 32: return fast::expand_rows<32>(src, dst, rows, stride);
    case 40: return fast::expand_rows<40>(src, dst, rows, stride);
    case 80: return fast::expand_rows<80>(src, dst, rows, stride);
    default: stop();
    }
}

void extend_side_16(const u8* src, u8* dst, s64 rows, s64 stride, int count) {
    const std::size_t bytes = count > 0 ? 2 * static_cast<std::size_t>(count) : 0;
    for (; rows > 0; --rows, src += stride, dst += stride) fast::fill(dst, load_unaligned<u16>(src) * 0x10001u, bytes);
}

s64 round_to_even(s64 stride) { return (stride + 1) >> 1 << 1; }

/// A plane with its border, as byte offsets into its memory, to which every access is clipped
struct padded_plane {
    u8* memory;
    s64 size, origin, stride;
    s64 w, h;     // samples and rows without border
    int element;  // bytes per sample
    int bx, by;

    void expand() const {
        const s64 step = element == 2 ? round_to_even(stride) : stride;
        // Kept: the high half of the pad is the width of the left border, the low half gives its start. If they are
        // equal, the two sides do not overlap and are filled in turn, while their rows are in the cache.
        const s64 batch = bx == by ? 32 : h;
        for (s64 r = 0; r < h; r += batch) {
            const s64 row = origin + r * step, n = std::min(batch, h - r);
            extend_side_of(row, row - s64{by} * element, n, step);
            extend_side_of(row + (w - 1) * element, row + w * element, n, step);
        }
        if (by && element == 1 && stride % 4) stop();
        const s64 first = origin - s64{bx} * element, last = first + (h - 1) * stride;
        for (int r = 1; r <= by; ++r) repeat_row(first, first - r * stride);
        for (int r = 1; r <= by; ++r) repeat_row(last, last + r * stride);
    }

private:
    bool holds(s64 from, s64 bytes) const { return from >= 0 && from + bytes <= size; }

    void extend_side_of(s64 src, s64 dst, s64 n, s64 step) const {
        const auto fill = element == 1 ? extend_side : extend_side_16;
        const s64 last = (n - 1) * step, run = s64{bx} * element;
        if (holds(src, element) && holds(src + last, element) && holds(dst, run) && holds(dst + last, run))
            return fill(memory + src, memory + dst, n, step, bx);
        fill(memory, memory, 0, step, bx);  // stops if the width is unsupported
        for (s64 r = 0; r < n; ++r, src += step, dst += step) {
            const s64 left = std::max<s64>(-dst, 0), end = std::min(run, size - dst);
            for (s64 i = (left + element - 1) / element * element; i + element <= end && holds(src, element);
                 i += element)
                std::memcpy(memory + dst + i, memory + src, static_cast<std::size_t>(element));
        }
    }

    void repeat_row(s64 src, s64 dst) const {
        const s64 left = std::max({s64{0}, -src, -dst}), end = std::min({stride, size - src, size - dst});
        if (left < end) fast::copy(memory + dst + left, memory + src + left, static_cast<std::size_t>(end - left));
    }
};
}  // namespace

ZELT_EXPORT(void, zelt_imgb_expand)(ZELT_IMGB* img, const uint32_t* pad) {
    s32 w[4] = {img->aw}, h[4] = {img->ah}, nplanes;
    u32 bps[4];
    if (!pad || img->cs > 99 || zelt_imgb_get_dimension(img->cs, w, h, &nplanes, bps) != ZELT_OK) return;
    for (int i = 0; i < nplanes; ++i) {
        u8* const sample = static_cast<u8*>(img->plane[i]);
        const int element = static_cast<int>(bps[i] >> 16), bx = static_cast<int>(pad[i] >> 16), by = pad[i] & 0xffff;
        const s64 stride = img->stride[i], rows = img->rows[i];
        const s64 own_w = stride / element - 2 * bx, own_h = rows - 2 * by;
        // A picture that the caller put together may lack its base pointers.
        u8* const memory = img->base[i] ? static_cast<u8*>(img->base[i]) : sample - (bx * element + by * stride);
        const padded_plane plane = {memory,
                                    stride * rows,
                                    sample - memory,
                                    stride,
                                    std::min<s64>(w[i], own_w),
                                    std::min<s64>(h[i], own_h),
                                    element,
                                    bx,
                                    by};
        if (sample && plane.w > 0 && plane.h > 0) plane.expand();
    }
}

ZELT_EXPORT(void, zelt_imgb_expand_ver)(const uint8_t* src, uint8_t* dst, int32_t rows, int32_t stride, int32_t count) {
    extend_side(src, dst, rows, stride, count);
}

ZELT_EXPORT(void, zelt_imgb_expand_ver_16)
(const uint16_t* src, uint16_t* dst, int32_t rows, int32_t stride, int32_t count) {
    extend_side_16(reinterpret_cast<const u8*>(src), reinterpret_cast<u8*>(dst), rows, round_to_even(stride), count);
}

ZELT_EXPORT(void, zelt_imgb_expand_hor)(const uint8_t* src, uint8_t* dst, int32_t width, int32_t count) {
    if (width % 4) stop();
    // Kept: rows whose width is an odd multiple of 4 are written in groups of eight.
    const s64 rows = width % 8 ? (s64{count} + 7) / 8 * 8 : count;
    if (width <= 0) return;
    for (s64 r = 0; r < rows; ++r, dst += width) fast::copy(dst, src, static_cast<std::size_t>(width));
}
