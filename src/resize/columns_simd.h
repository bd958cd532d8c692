// SPDX-License-Identifier: MIT
#pragma once
// A run of destination columns, prepared once for many rows: where their samples are in a source row, and the
// horizontal weights. The drawing at the head of resize.h has the terms.
#include "resize/bilinear.h"
#include "simd/vocabulary.h"

#include <algorithm>
#include <cstring>

namespace zelt::inline ZELT_LEVEL::simd {
using rsz::axis;

/// How registers read a source row of pixels of `channels` bytes; `windows` is 0 if they cannot.
struct row_shape {
    std::ptrdiff_t samples;  // of a destination row
    s64 limit;               // bytes of a source row up to the last one that is needed
    int windows;             // that an eight reads

    int masks() const { return masks_of(windows); }
    static constexpr int masks_of(int windows) { return (16 * windows + reach - 1) / reach; }

    row_shape(const axis& x, int w, int channels) : samples(static_cast<std::ptrdiff_t>(s64{w} * channels)) {
        limit = (x.sample((w - s64{1}) * x.step) + x.next + 1) * channels;
        s64 span = 0;                                                      // bytes that an eight reads
        for (int c = 0; c < channels; c += 8 % channels ? 1 : channels) {  // its first channel
            const s64 distance = ((c + 7) / channels * x.step + (1 << 18) - 1) >> 18;
            const s64 last_pixel = distance * (s64{1} << x.shift) + x.next;
            span = std::max<s64>(span, last_pixel * channels + (c + 7) % channels + 1);
        }
        windows = span <= 64 ? static_cast<int>((span + 15) / 16) : span <= 128 ? 8 : 0;
        if (limit < 16 * windows || x.next != s64{1} << x.shift) windows = 0;
    }
};

struct columns {
    static constexpr int eights = lanes / 8, max_run = 128;

    int groups, whole;              // the latter without a last group that repeats samples of the one before
    std::ptrdiff_t first, last;     // first sample of the first and of the last group, which ends with the row
    const std::ptrdiff_t* offsets;  // of each eight's windows in a source row
    const u8* tables;               // of each half group: a register of weights, then its masks
    // Groups whose pairs are contiguous, as at ratios of 2:1 and 4:1
    int run, run_end;
    std::ptrdiff_t run_source;    // where their pairs begin in a source row
    std::ptrdiff_t source_start;  // what offsets and run_source count from: the row's start, or what is read of it

    /// Whether pixels of so many bytes have runs
    template <int Bytes> static constexpr bool has_runs = Bytes == 1 || Bytes == 4;
    /// Registers of a half group's table
    template <int Windows> static constexpr int registers = 1 + row_shape::masks_of(Windows);
    template <int Windows> const u8* table(int group) const { return tables + 2 * group * registers<Windows> * lanes; }
    std::ptrdiff_t at(int group) const { return std::min(first + group * lanes, last); }
    std::ptrdiff_t source_end(int windows) const { return offsets[groups * eights - 1] + 16 * windows; }
};

/// Pixel offset and channel of 8 consecutive samples, for each channel that the first may have
template <int Channels> struct sample_offsets {
    u32 pixel[Channels][8] = {};
    u16 channel[Channels][8] = {};
    constexpr sample_offsets() {
        for (u32 c = 0; c < Channels; ++c)
            for (u32 i = 0; i < 8; ++i) {
                pixel[c][i] = (c + i) / Channels;
                channel[c][i] = static_cast<u16>((c + i) % Channels);
            }
    }
};
template <class Vector, class T> Vector load_lanes(const T* p) {
    Vector v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

/// Memory for the tables of columns, on the stack
template <int Size> class column_tables {
public:
    /// Samples from `first` on, as many as fit but at most `most`; planes have Channels interleaved channels.
    template <int Channels>
    columns prepare(const axis& x, const row_shape& row, std::ptrdiff_t first, s64 most, bool may_run) {
        const int group_size = lanes * 2 * (1 + row.masks()) + columns::eights * static_cast<int>(sizeof *offsets_);
        const int groups = static_cast<int>(
            std::min<s64>({Size / group_size, most / lanes, (row.samples - first + lanes - 1) / lanes}));
        offsets_ = reinterpret_cast<std::ptrdiff_t*>(tables_ + groups * 2 * lanes * (1 + row.masks()));
        const int whole = static_cast<int>(std::min<std::ptrdiff_t>(groups, (row.samples - first) / lanes));
        columns c = {groups, whole, first, row.samples - lanes, offsets_, tables_, groups, groups, 0, 0};
        for (int i = 0; i < groups * columns::eights; ++i)
            prepare_eight<Channels>(x, row, i, c.at(i / columns::eights) + 8 * eight_at(i % columns::eights));
        if (may_run && columns::has_runs<Channels> && x.shift <= 1) find_run<Channels>(c, x, row);
        return c;
    }

    /// Has places in source rows count from the first one that is read.
    void count_from_first(columns& c) {
        c.source_start = offsets_[0];
        for (int i = 0; i < c.groups * columns::eights; ++i) offsets_[i] -= c.source_start;
        c.run_source -= c.source_start;
    }

private:
    /// Finds the first run of groups whose sample pairs are contiguous in memory.
    template <int Channels> static void find_run(columns& c, const axis& x, const row_shape& row) {
        const auto first_pixel = [&](int group) { return c.at(group) / Channels; };
        const auto last_pixel = [&](int group) { return (c.at(group) + lanes) / Channels - 1; };
        const auto lag = [&](s64 pixel) { return 2 * pixel - (pixel * x.step >> 18); };  // monotonic
        c.run = 0;
        while (c.run < c.groups && lag(first_pixel(c.run)) != lag(last_pixel(c.run))) ++c.run;
        const s64 from = first_pixel(c.run);
        const auto continues = [&](int group) {
            return c.at(group) == c.first + group * lanes && lag(last_pixel(group)) == lag(from) &&
                   (x.sample(last_pixel(group) * x.step) + 2 * x.next) * Channels <= row.limit;
        };
        const int end = std::min(c.groups, c.run + columns::max_run);
        c.run_end = c.run;
        while (c.run_end < end && continues(c.run_end)) ++c.run_end;
        c.run_source = static_cast<std::ptrdiff_t>(x.sample(from * x.step) * Channels);
    }

    template <int Channels> void prepare_eight(const axis& x, const row_shape& row, int index, std::ptrdiff_t sample) {
        const s64 pixel = sample / Channels, position = pixel * x.step, start = x.sample(position) * Channels;
        const s64 window = std::min(start, row.limit - 16 * row.windows);
        offsets_[index] = static_cast<std::ptrdiff_t>(window);
        static constexpr sample_offsets<Channels> of;
        const auto c = static_cast<std::size_t>(sample - pixel * Channels);  // channel of the first sample
        const u32x4 low = load_lanes<u32x4>(of.pixel[c]), high = load_lanes<u32x4>(of.pixel[c] + 4);
        const u32 fraction = static_cast<u32>(position) & 0x3FFFF, step = static_cast<u32>(x.step);
        const u16x8 place = pack((low * step + fraction) >> 15, (high * step + fraction) >> 15);
        const u16x8 phase = place & 7;
        constexpr int sharing = columns::eights / 2;  // eights in a half group
        u8* table = tables_ + index / sharing * (1 + row.masks()) * lanes + index % sharing * 16;
        store_pairs(table, 8 - phase, phase);
        const u16x8 left = (place >> 3 << static_cast<u16>(x.shift)) * static_cast<u16>(Channels) +
                           load_lanes<u16x8>(of.channel[c]) + static_cast<u16>(start - window);
        for (int k = 0; k < row.masks(); ++k) {
            const u16x8 l = left - static_cast<u16>(reach * k), r = l + static_cast<u16>(x.next * Channels);
            table += lanes;
            store_pairs(table, l >= reach ? u16x8{} + 0x80 : l, r >= reach ? u16x8{} + 0x80 : r);
        }
    }

    std::ptrdiff_t* offsets_;
    alignas(lanes) u8 tables_[Size];
};
}  // namespace zelt::inline ZELT_LEVEL::simd
