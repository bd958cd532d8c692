#pragma once
// The resizer's row loops. Their template parameters:
//   Format    Format::source has the planes of a source row: `direct`, or a class like it; Format::put stores `lanes`
//             destination samples of each plane. The filter itself depends on neither.
//   Channels  interleaved in each plane
//   Windows   that an eight reads
//   Row       a row_job; Rows: an array of such or a picture_rows
#include "resize/columns_simd.h"

#include <algorithm>

namespace zelt::inline ZELT_LEVEL::simd {
using rsz::row_job;

/// Planes that are filtered where they are
template <int N> struct direct {
    static constexpr int planes = N, source_planes = N;
    static constexpr int max_pixels = 1 << 30, max_windows = 8;
    static constexpr bool is_direct = true;
    direct(const columns&, int) {}
    const u8* const* samples_of(const u8* const* row) { return row; }
};

// ----------------------------------------------------------------------------------------- both directions in one step

/// Horizontal weights times a vertical one: at most 64, still bytes
inline u8xn scaled(u8xn weights, int factor) { return (u8xn)((u16xn)weights * static_cast<u16>(factor)); }

/// The products of weights for a run, computed anew only if the vertical phase changes: at 2:1 it seldom does
class run_weights {
public:
    void scale(const columns& c, int phase) {
        if (phase == phase_) return;
        phase_ = phase;
        for (int i = 0; i < 2 * (c.run_end - c.run); ++i) {
            const u8xn w = c.weight(2 * c.run + i);
            top[i] = scaled(w, 8 - phase);
            bottom[i] = scaled(w, phase);
        }
    }
    u8xn top[2 * columns::max_run], bottom[2 * columns::max_run];

private:
    int phase_ = -1;
};

/// Groups g..end of a row. Arguments are copied: stores of samples may alias them.
template <class Format, int Windows, class Row>
[[gnu::flatten]] void filter_groups(const columns& all, int g, int end, const Row& row, const Row& next) {
    constexpr int planes = Row::planes;
    const columns c = all;
    const Row job = row, after = next;
    for (; g < end; ++g) {
        s16x2n sums[planes];
        for (int h = 0; h < 2; ++h) {
            const u8xn w = c.weight(2 * g + h), top = scaled(w, 8 - job.phase), bottom = scaled(w, job.phase);
            for (int p = 0; p < planes; ++p) {
                (h ? sums[p].hi : sums[p].lo) =
                    weighted_sum(weighted_sum(c.gather_pairs<Windows>(2 * g + h, job.top[p]), top),
                                 c.gather_pairs<Windows>(2 * g + h, job.bottom[p]), bottom);
                if (h < (Windows + 1) / 2) {  // of one or two windows both halves share a cache line
                    c.prefetch(2 * g + h, after.top[p]);
                    c.prefetch(2 * g + h, after.bottom[p]);
                }
            }
        }
        u8xn v[planes];
        for (int p = 0; p < planes; ++p) v[p] = narrow_q6(sums[p]);
        Format::put(job.dst, c.at(g), v);
    }
}

/// The groups of a run, whose pairs are loaded as they are in memory: Next pixels apart
template <class Format, int Channels, int Next, class Row>
[[gnu::flatten]] void filter_run(const columns& c, const run_weights& weights, const Row& row, const Row& next) {
    constexpr int planes = Row::planes;
    const Row job = row, after = next;
    const int end = 2 * (c.run_end - c.run);
    std::ptrdiff_t x = c.first + c.run * lanes, source = c.run_source;
    for (int i = 0; i < end; i += 2, x += lanes, source += 2 * Next * lanes) {
        u8xn v[planes];
        for (int p = 0; p < planes; ++p) {
            const auto sum = [&](int h) {
                const std::ptrdiff_t at = source + h * Next * lanes;
                if (Channels == 1 && h < Next) {  // wider pixels: the hardware prefetcher keeps up
                    __builtin_prefetch(after.top[p] + at);
                    __builtin_prefetch(after.bottom[p] + at);
                }
                return weighted_sum(weighted_sum(load_pairs<Channels, Next>(job.top[p] + at), weights.top[i + h]),
                                    load_pairs<Channels, Next>(job.bottom[p] + at), weights.bottom[i + h]);
            };
            v[p] = narrow_q6_ordered({sum(0), sum(1)});
        }
        Format::put(job.dst, x, v);
    }
}

template <class Format, int Channels, int Windows, class Rows>
[[gnu::noinline]] void resize_uncached(const columns& c, const axis& x, const Rows& rows, int count) {
    using source = typename Format::source;
    constexpr int planes = source::planes;
    run_weights run;
    source top(c, Windows), bottom(c, Windows);
    const auto read = [&](const auto& job) {
        row_job<planes, decltype(job.dst)> row;
        std::copy_n(top.samples_of(job.top), planes, row.top);
        std::copy_n(bottom.samples_of(job.bottom), planes, row.bottom);
        row.phase = job.phase;
        row.dst = job.dst;
        return row;
    };
    for (int i = 0; i < count; ++i) {
        const auto row = read(rows[i]);
        auto next = row;
        if constexpr (source::is_direct) next = rows[i + (i + 1 < count)];
        if (c.run > 0) filter_groups<Format, Windows>(c, 0, c.run, row, next);
        if (c.run == c.groups) continue;
        if constexpr (8 % Channels == 0) {
            run.scale(c, row.phase);
            if (x.next == 1)
                filter_run<Format, Channels, 1>(c, run, row, next);
            else
                filter_run<Format, Channels, 2>(c, run, row, next);
        }
        if (c.run_end < c.groups) filter_groups<Format, Windows>(c, c.run_end, c.groups, row, next);
    }
}

// --------------------------------------------------------------------------- horizontally, then vertically from a
// cache

/// The horizontal sums of a row of one plane, two registers per group
template <int Windows> void filter_horizontal(const columns c, const u8* row, const u8* next, s16xn* to) {
    for (int h = 0; h < 2 * c.groups; ++h) {
        if (h % 2 < (Windows + 1) / 2) c.prefetch(h, next);
        to[h] = weighted_sum(c.gather_pairs<Windows>(h, row), c.weight(h));
    }
}
using filter_horizontal_fn = void (*)(columns, const u8*, const u8*, s16xn*);

/// Horizontal sums of two source rows: a destination row shares one or both with the row before it
template <class Source> class row_cache {
public:
    static constexpr int planes = Source::planes, source_planes = Source::source_planes;
    static constexpr int max_samples = 4096 / planes / lanes * lanes;
    using source_row = const u8* [source_planes];

    row_cache(const columns& c, int windows, filter_horizontal_fn filter) : source_(c, windows), filter_(filter) {}

    /// Sums of `row`, computed into the slot that does not hold `other` unless they are cached
    const s16xn* filtered(const columns c, const source_row& row, const source_row& other, const source_row& next) {
        for (int i = 0; i < 2; ++i)
            if (same(rows_[i], row)) return sums_[i];
        const int i = same(rows_[0], other);
        std::copy_n(row, source_planes, rows_[i]);
        const u8* const* samples = source_.samples_of(row);
        for (int p = 0; p < planes; ++p)
            filter_(c, samples[p], next[Source::is_direct ? p : 0] + c.source_start, sums_[i] + 2 * c.groups * p);
        return sums_[i];
    }

private:
    /// Planes may have strides of 0, so that a row is the same only if it is in all of them.
    static bool same(const source_row& a, const source_row& b) { return std::equal(a, a + source_planes, b); }

    Source source_;
    filter_horizontal_fn filter_;
    source_row rows_[2] = {};
    s16xn sums_[2][planes * max_samples / lanes * 2];
};

/// Arguments are copied: stores of samples may alias them.
template <class Format, class Dest>
[[gnu::flatten]] void filter_vertical(const columns& all, const s16xn* top, const s16xn* bottom, int phase,
                                      const Dest& to) {
    constexpr int planes = Format::source::planes;
    const columns c = all;
    const Dest dst = to;
    const u16xn bottom_weight = u16xn{} + static_cast<u16>(phase), top_weight = 8 - bottom_weight;
    const auto blend = [=](s16xn t, s16xn b) { return (s16xn)((u16xn)t * top_weight + (u16xn)b * bottom_weight); };
    for (int g = 0; g < c.groups; ++g, top += 2, bottom += 2) {
        u8xn v[planes];
        for (int p = 0, i = 0; p < planes; ++p, i += 2 * c.groups)
            v[p] = narrow_q6({blend(top[i], bottom[i]), blend(top[i + 1], bottom[i + 1])});
        Format::put(dst, c.at(g), v);
    }
}

template <class Format, class Rows>
[[gnu::noinline]] void resize_cached(const columns& c, int windows, const Rows& rows, int count) {
    static constexpr filter_horizontal_fn filters[] = {filter_horizontal<1>, filter_horizontal<2>, filter_horizontal<3>,
                                                       filter_horizontal<4>};
    row_cache<typename Format::source> cache(c, windows, windows > 4 ? filter_horizontal<8> : filters[windows - 1]);
    for (int i = 0; i < count; ++i) {
        const auto row = rows[i], next = rows[i + (i + 1 < count)];
        const s16xn* top = cache.filtered(c, row.top, row.bottom, next.top);
        const s16xn* bottom = cache.filtered(c, row.bottom, row.top, next.bottom);
        filter_vertical<Format>(c, top, bottom, row.phase, row.dst);
    }
}

// --------------------------------------------------------------------------------------------------------- all columns

/// Whether most source rows are used by more than one destination row (estimated from the first 64)
template <class Rows> bool rows_are_shared(const Rows& rows, int count) {
    const int some = std::min(count, 64);
    int fresh = 0;
    for (int i = 1; i < some; ++i) {
        const auto row = rows[i], before = rows[i - 1];
        for (const u8* source : {*row.top, *row.bottom}) fresh += source != *before.top && source != *before.bottom;
    }
    return fresh < some - 1;
}

template <class Format, int Channels, class Rows>
[[gnu::noinline]] void resize_columns(const Rows& rows, int count, const axis& x, const row_shape& shape) {
    using source = typename Format::source;
    const int windows = shape.windows;
    const bool cached = windows > 4 || rows_are_shared(rows, count);
    s64 most = cached ? row_cache<source>::max_samples : 1 << 16;
    most = std::min<s64>(most, ((source::max_pixels - s64{128}) << 18) / (x.step << x.shift));
    column_tables<24 * 1024> tables;
    columns c;
    for (std::ptrdiff_t first = 0; first < shape.samples; first += c.groups * lanes) {
        c = tables.template prepare<Channels>(x, shape, first, most, !cached);
        if (!source::is_direct) tables.count_from_first(c);
        if (cached) {
            resize_cached<Format>(c, windows, rows, count);
            continue;
        }
        if (windows == 1) resize_uncached<Format, Channels, 1>(c, x, rows, count);
        if (windows == 2) resize_uncached<Format, Channels, 2>(c, x, rows, count);
        if (windows == 3) resize_uncached<Format, Channels, 3>(c, x, rows, count);
        if (windows == 4) resize_uncached<Format, Channels, 4>(c, x, rows, count);
    }
}

/// Resizes all rows with vectors. Returns false, with nothing written, for ratios that registers cannot read, and for
/// pictures too small to pay for the set-up, which costs as much as a few scalar rows.
template <class Format, int Channels, class Rows>
bool resize_simd(const Rows& rows, int count, const axis& x, int dst_w) {
    using source = typename Format::source;
    constexpr int gain = source::is_direct && Channels == 1 ? 2 : 1;  // per sample the scalar form is slowest there
    const s64 work = s64{count} * source::planes * gain, samples = s64{dst_w} * Channels;
    if (samples < lanes || work < 2 || work * samples < 128 || samples > PTRDIFF_MAX) return false;
    const row_shape shape(x, dst_w, Channels);
    if (!shape.windows || shape.windows > source::max_windows || work <= shape.windows) return false;
    resize_columns<Format, Channels>(rows, count, x, shape);
    return true;
}
}  // namespace zelt::inline ZELT_LEVEL::simd
