#pragma once
// A run of destination columns, prepared once for many rows: where in a source row their samples stand, and the weights
// across. The weights separate: a value is ((8 - fy) s(top) + fy s(bottom)) >> 6 with s = (8 - fx) left + fx right, at
// most 2040, so that all of it fits 16 bits, and s of a source row serves every destination row next to it.
#include "resize/bilinear.h"
#include "simd/vocabulary.h"

#include <cstring>

namespace zelt::inline ZELT_LEVEL::simd {
using csc::axis;

/// How registers go over a row of pixels of `bytes` samples; `windows` is 0 where they cannot.
struct row_shape {
    std::ptrdiff_t samples;  // of a destination row
    s64 limit;               // bytes of a source row up to the last one that is needed
    int windows;             // of 16 bytes, that an eight reads

    int masks() const { return masks_of(windows); }
    static constexpr int masks_of(int windows) { return (16 * windows + reach - 1) / reach; }

    row_shape(const axis& x, int w, int bytes) : samples(static_cast<std::ptrdiff_t>(s64{w} * bytes)) {
        limit = (x.sample((w - s64{1}) * x.step) + x.next + 1) * bytes;
        s64 span = 0;                                             // of what an eight reads
        for (int c = 0; c < bytes; c += 8 % bytes ? 1 : bytes) {  // its first channel
            const s64 apart = ((c + 7) / bytes * x.step + (1 << 18) - 1) >> 18;
            span = std::max<s64>(span, (apart * (s64{1} << x.shift) + x.next) * bytes + (c + 7) % bytes + 1);
        }
        windows = span <= 64 ? static_cast<int>((span + 15) / 16) : span <= 128 ? 8 : 0;
        if (limit < 16 * windows || x.next != s64{1} << x.shift) windows = 0;
    }
};

struct columns {
    static constexpr int eights = lanes / 8, longest_run = 128;

    int groups;                     // of `lanes` samples
    std::ptrdiff_t first, last;     // first sample of the first and of the last group, which ends with the row
    const std::ptrdiff_t* offsets;  // of an eight's windows in a source row
    const u8 *masks, *weights;
    // Groups whose pairs stand one after another, as at ratios of 2 and 4. Their eights are in their own order.
    int run, run_end;
    std::ptrdiff_t run_source;  // where their pairs begin in a source row

    std::ptrdiff_t at(int group) const { return std::min(first + group * lanes, last); }
    /// The part of a source row that is read
    std::ptrdiff_t source_start() const { return offsets[0]; }
    std::ptrdiff_t source_end(int windows) const { return offsets[groups * eights - 1] + 16 * windows; }

    /// Asks for half a group's part of the row that comes next: too little of each is read for the processor to foresee
    /// it.
    void prefetch(int half_group, const u8* row) const { __builtin_prefetch(row + offsets[half_group * (eights / 2)]); }

    u8xn weight(int half_group) const {
        u8xn w;
        load(weights + half_group * lanes, w);
        return w;
    }
    template <int Windows> pairs gather_pairs(int half_group, const u8* row) const {
        return vec::gather_pairs<Windows>(row, offsets + half_group * (eights / 2),
                                          masks + half_group * row_shape::masks_of(Windows) * lanes);
    }
};

/// Pixel and channel of the eight samples from each channel on
template <int Bytes> struct pixel_bytes {
    u32 pixel[Bytes][8] = {};
    u16 channel[Bytes][8] = {};
    constexpr pixel_bytes() {
        for (u32 c = 0; c < Bytes; ++c)
            for (u32 i = 0; i < 8; ++i)
                pixel[c][i] = (c + i) / Bytes, channel[c][i] = static_cast<u16>((c + i) % Bytes);
    }
};
template <class Vector, class T> Vector load_lanes(const T* p) {
    Vector v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

/// Memory for columns, on the stack
template <int Size> class column_tables {
public:
    /// Samples from `first` on, as many as fit but at most `most`; pixels have Bytes samples.
    template <int Bytes>
    columns prepare(const axis& x, const row_shape& row, std::ptrdiff_t first, s64 most, bool may_run) {
        const int group_size = lanes * 2 * (1 + row.masks()) + columns::eights * static_cast<int>(sizeof *offsets_);
        const int groups = static_cast<int>(
            std::min<s64>({Size / group_size, most / lanes, (row.samples - first + lanes - 1) / lanes}));
        weights_ = memory_, masks_ = weights_ + groups * 2 * lanes;
        offsets_ = reinterpret_cast<std::ptrdiff_t*>(masks_ + groups * 2 * lanes * row.masks());
        columns c = {groups, first, row.samples - lanes, offsets_, masks_, weights_, groups, groups, 0};
        for (int i = 0; i < groups * columns::eights; ++i)
            prepare_eight<Bytes>(x, row, i, c.at(i / columns::eights) + 8 * eight_at(i % columns::eights));
        if (may_run && 8 % Bytes == 0 && x.shift <= 1) find_run<Bytes>(c, x, row);
        for (int i = c.run * columns::eights; i < c.run_end * columns::eights; i += columns::eights) order(i);
        return c;
    }

private:
    /// Finds the first pixels of which each one's pair stands where the one before ends, over whole groups.
    template <int Bytes> static void find_run(columns& c, const axis& x, const row_shape& row) {
        const auto first_pixel = [&](int group) { return c.at(group) / Bytes; };
        const auto last_pixel = [&](int group) { return (c.at(group) + lanes) / Bytes - 1; };
        const auto lag = [&](s64 pixel) { return 2 * pixel - (pixel * x.step >> 18); };  // never both rises and falls
        for (c.run = 0; c.run < c.groups && lag(first_pixel(c.run)) != lag(last_pixel(c.run));) ++c.run;
        const s64 from = first_pixel(c.run);
        const auto adjoins = [&](int group) {
            return c.at(group) == c.first + group * lanes && lag(last_pixel(group)) == lag(from) &&
                   (x.sample(last_pixel(group) * x.step) + 2 * x.next) * Bytes <= row.limit;
        };
        const int longest = std::min(c.groups, c.run + columns::longest_run);
        for (c.run_end = c.run; c.run_end < longest && adjoins(c.run_end);) ++c.run_end;
        c.run_source = static_cast<std::ptrdiff_t>(x.sample(from * x.step) * Bytes);
    }

    /// Puts the weights of a group's eights in their own order.
    void order(int index) {
        u8 copy[2 * lanes];
        std::memcpy(copy, weights_ + 16 * index, sizeof copy);
        for (int i = 0; i < columns::eights; ++i) std::memcpy(weights_ + 16 * (index + eight_at(i)), copy + 16 * i, 16);
    }

    template <int Bytes> void prepare_eight(const axis& x, const row_shape& row, int index, std::ptrdiff_t sample) {
        const s64 pixel = sample / Bytes, position = pixel * x.step, start = x.sample(position) * Bytes;
        const s64 window = std::min(start, row.limit - 16 * row.windows);
        offsets_[index] = static_cast<std::ptrdiff_t>(window);
        static constexpr pixel_bytes<Bytes> of;
        const auto c = static_cast<std::size_t>(sample - pixel * Bytes);  // channel of the first sample
        const u32x4 low = load_lanes<u32x4>(of.pixel[c]), high = load_lanes<u32x4>(of.pixel[c] + 4);
        const u32 fraction = static_cast<u32>(position) & 0x3FFFF, step = static_cast<u32>(x.step);
        const u16x8 place = pack((low * step + fraction) >> 15, (high * step + fraction) >> 15);
        const u16x8 phase = place & 7;
        store_pairs(weights_ + 16 * index, 8 - phase, phase);
        const u16x8 left = (place >> 3 << static_cast<u16>(x.shift)) * static_cast<u16>(Bytes) +
                           load_lanes<u16x8>(of.channel[c]) + static_cast<u16>(start - window);
        constexpr int sharing = columns::eights / 2;  // eights whose masks are in one register
        for (int k = 0; k < row.masks(); ++k) {
            const u16x8 l = left - static_cast<u16>(reach * k), r = l + static_cast<u16>(x.next * Bytes);
            store_pairs(masks_ + (index / sharing * row.masks() + k) * lanes + index % sharing * 16,
                        l >= reach ? u16x8{} + 0x80 : l, r >= reach ? u16x8{} + 0x80 : r);
        }
    }

    u8 *weights_, *masks_;
    std::ptrdiff_t* offsets_;
    alignas(lanes) u8 memory_[Size];
};
}  // namespace zelt::inline ZELT_LEVEL::simd
