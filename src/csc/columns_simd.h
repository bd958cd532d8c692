#pragma once
// A run of destination columns, prepared once for many rows: where in a source row their samples stand, and the weights
// across. The weights separate: a value is ((8 - fy) s(top) + fy s(bottom)) >> 6 with s = (8 - fx) left + fx right, at
// most 2040, so that all of it fits 16 bits, and s of a source row serves every destination row next to it.
#include "core/simd.h"
#include "csc/bilinear.h"

namespace zelt::simd {
using csc::axis;

/// How registers go over a row of pixels of `bytes` samples; `windows` is 0 where they cannot.
struct row_shape {
    std::ptrdiff_t samples;  // of a destination row
    s64 limit;               // bytes of a source row up to the last one that is needed
    int windows;

    row_shape(const axis& x, int w, int bytes) : samples(std::ptrdiff_t{w} * bytes) {
        limit = (x.sample((w - s64{1}) * x.step) + x.next + 1) * bytes;
        const s64 pixels = 8 % bytes ? 8 / bytes + 2 : 8 / bytes;  // that an eight may touch
        const s64 apart = ((pixels - 1) * x.step + (1 << 18) - 1) >> 18;
        const s64 span = (apart * (s64{1} << x.shift) + x.next + 1) * bytes;
        windows = span <= 16 ? 1 : span <= 32 ? 2 : span <= 64 ? 4 : span <= 128 ? 8 : 0;
        if (limit < 16 * windows || samples < lanes || x.next != s64{1} << x.shift) windows = 0;
    }
};

struct columns {
    static constexpr int eights = lanes / 8;

    int groups;                     // of `lanes` samples
    std::ptrdiff_t first, last;     // first sample of the first and of the last group, which ends with the row
    const std::ptrdiff_t* offsets;  // of an eight's windows in a source row
    const u8 *masks, *weights;
    const u8* adjoining;  // whether the pairs of a group stand one after another, as they do at a ratio of 2

    std::ptrdiff_t at(int group) const { return std::min(first + group * lanes, last); }

    /// The part of a source row that is read
    std::ptrdiff_t source_start() const { return offsets[0]; }
    std::ptrdiff_t source_end(int windows) const { return offsets[groups * eights - 1] + 16 * windows; }

    /// s of a group
    template <int Windows> words sum(int group, const u8* row) const {
        const u8* w = weights + group * 2 * lanes;
        const std::ptrdiff_t* o = offsets + group * eights;
        if (Windows == 1 && adjoining[group]) {
            pairs low, high;
            load_pairs(row + *o, low, high);
            return {weigh(low, w), weigh(high, w + lanes)};
        }
        const u8* m = masks + group * 2 * Windows * lanes;
        return {weigh(pick<Windows>(row, o, m), w),
                weigh(pick<Windows>(row, o + eights / 2, m + Windows * lanes), w + lanes)};
    }
};

/// The value between two sums, by the weights down
inline bytes between(words top, words bottom, uhalf top_weight, uhalf bottom_weight) {
    const auto down = [&](half t, half b) { return (half)((uhalf)t * top_weight + (uhalf)b * bottom_weight); };
    return narrow_q6({down(top.lo, bottom.lo), down(top.hi, bottom.hi)});
}

/// Memory for columns, on the stack
template <int Size> class column_tables {
public:
    /// As many samples from `first` on as fit, at most `most`; pixels have Bytes samples.
    template <int Bytes> columns prepare(const axis& x, const row_shape& row, std::ptrdiff_t first, int most) {
        const int size = lanes * 2 * (1 + row.windows) + columns::eights * static_cast<int>(sizeof(std::ptrdiff_t)) + 1;
        const int groups = static_cast<int>(
            std::min<std::ptrdiff_t>({Size / size, most / lanes, (row.samples - first + lanes - 1) / lanes}));
        weights_ = memory_, masks_ = weights_ + groups * 2 * lanes;
        u8* const offsets = masks_ + groups * 2 * lanes * row.windows;
        offsets_ = reinterpret_cast<std::ptrdiff_t*>(offsets);
        u8* const adjoining = offsets + groups * columns::eights * static_cast<int>(sizeof(std::ptrdiff_t));
        const columns c = {groups, first, row.samples - lanes, offsets_, masks_, weights_, adjoining};
        for (int g = 0; g < groups; ++g) {
            bool all = Bytes == 1 && row.windows == 1;
            for (int i = 0; i < columns::eights; ++i) {
                const int index = g * columns::eights + i, place = eight_at(i);
                all &= eight<Bytes>(x, row, index, c.at(g) + 8 * place);
                all &= offsets_[index] == offsets_[g * columns::eights] + 16 * place;
            }
            adjoining[g] = all;
        }
        return c;
    }

private:
    /// Prepares eight samples; true where their pairs stand one after another from the window's start.
    template <int Bytes> bool eight(const axis& x, const row_shape& row, int index, std::ptrdiff_t sample) {
        const s64 pixel = sample / Bytes, position = pixel * x.step, start = x.sample(position) * Bytes;
        const s64 window = std::min(start, row.limit - 16 * row.windows);
        offsets_[index] = static_cast<std::ptrdiff_t>(window);
        const u32 skipped = static_cast<u32>(start - window), channel = static_cast<u32>(sample - pixel * Bytes);
        const u32 fraction = static_cast<u32>(position) & 0x3FFFF, step = static_cast<u32>(x.step);
        const u32 next = static_cast<u32>(x.next) * Bytes, shift = static_cast<u32>(x.shift);
        u8* weights = weights_ + 16 * index;
        u8 left[8];
        bool adjoining = true;
        for (u32 i = 0; i < 8; ++i) {
            const u32 byte = channel + i, p = fraction + byte / Bytes * step;
            const u8 phase = p >> 15 & 7;
            left[i] = static_cast<u8>(skipped + (p >> 18 << shift) * Bytes + byte % Bytes);
            weights[pair_at(static_cast<int>(i), 0)] = static_cast<u8>(8 - phase);
            weights[pair_at(static_cast<int>(i), 1)] = phase;
            adjoining &= left[i] == 2 * i;
        }
        constexpr int sharing = columns::eights / 2;  // eights whose masks are in one register
        for (int k = 0; k < row.windows; ++k) {
            u8* masks = masks_ + (index / sharing * row.windows + k) * lanes + index % sharing * 16;
            for (int i = 0; i < 8; ++i)
                for (int side = 0; side < 2; ++side) {
                    const u32 place = left[i] + (side ? next : 0) - static_cast<u32>(16 * k);
                    masks[pair_at(i, side)] = static_cast<u8>(place < 16 ? place : 0x80);
                }
        }
        return adjoining && next == 1;
    }

    u8 *weights_, *masks_;
    std::ptrdiff_t* offsets_;
    alignas(lanes) u8 memory_[Size];
};
}  // namespace zelt::simd
