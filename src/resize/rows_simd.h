// SPDX-License-Identifier: MIT
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

/// Fetches a part of the next row: rows are read too sparsely for the hardware prefetcher.
inline void prefetch(const u8* p) { __builtin_prefetch(p); }

/// Whether the halves of a group read more than one cache line
template <int Windows> constexpr bool halves_are_lines_apart = columns::eights * 16 * Windows > 64;

/// Horizontal weights times a vertical one: at most 64, still bytes
inline u8xn scaled(u8xn weights, int factor) { return as_bytes((u8xn)((u16xn)weights * static_cast<u16>(factor))); }

/// The products of weights for a run, computed anew only if the vertical phase changes: at 2:1 it seldom does
class run_products {
public:
    template <int Windows> void scale(const columns& c, int phase) {
        if (phase == phase_) return;
        phase_ = phase;
        const u8* tables = c.table<Windows>(c.run);
        for (int i = 0; i < c.run_end - c.run; ++i) {
            u8xn lo[columns::registers<Windows>], hi[columns::registers<Windows>];
            load_next(tables, lo), load_next(tables, hi);
            top_bottom_[i][0] = run_weights(scaled(*lo, 8 - phase), scaled(*hi, 8 - phase));
            top_bottom_[i][1] = run_weights(scaled(*lo, phase), scaled(*hi, phase));
        }
    }
    /// Of each group the products for the top row, then those for the bottom row
    const u8* start() const { return reinterpret_cast<const u8*>(top_bottom_); }

private:
    int phase_ = -1;
    weights_2n top_bottom_[columns::max_run][2];
};

/// Groups g..end of a row. Arguments are copied: stores of samples may alias them.
template <class Format, int Windows, class Row>
[[gnu::flatten]] void filter_groups(const columns& all, int g, int end, const Row& row, const Row& next) {
    constexpr int planes = Row::planes;
    const Row job = row, after = next;
    const std::ptrdiff_t last = all.last;
    std::ptrdiff_t x = all.first + g * lanes;
    const u8* tables = all.table<Windows>(g);
    const std::ptrdiff_t* offsets = all.offsets + g * columns::eights;
    constexpr int n = std::max(planes, 2);  // of one plane the sums of both rows, of several the blended ones
    const auto filter = [&](s16xn(&sums)[n], bool prefetches) {
        u8xn table[columns::registers<Windows>];
        load_next(tables, table);
        const auto gather = [&](const u8* line) { return gather_pairs<Windows>(line, offsets, table + 1); };
        if constexpr (planes == 1) {
            sums[0] = weighted_sum(gather(job.top[0]), *table);
            sums[1] = weighted_sum(gather(job.bottom[0]), *table);
        } else {
            const u8xn top = scaled(*table, 8 - job.phase), bottom = scaled(*table, job.phase);
            ZELT_STRAIGHT(4)
            for (int p = 0; p < planes; ++p)
                sums[p] = weighted_sum(weighted_sum(gather(job.top[p]), top), gather(job.bottom[p]), bottom);
        }
        ZELT_STRAIGHT(4)
        for (int p = 0; p < planes && prefetches; ++p) {
            prefetch(after.top[p] + *offsets);
            prefetch(after.bottom[p] + *offsets);
        }
        offsets += columns::eights / 2;
    };
    for (int stop = std::min(end, all.whole); g < end; stop = end, x = last)
        for (; g < stop; ++g, x += lanes) {
            u8xn v[planes];
            s16xn lo[n], hi[n];
            filter(lo, true);
            filter(hi, halves_are_lines_apart<Windows>);
            if constexpr (planes == 1) {
                v[0] = blend_q6({lo[0], hi[0]}, {lo[1], hi[1]}, job.phase);
            } else {
                ZELT_STRAIGHT(4)
                for (int p = 0; p < planes; ++p) v[p] = narrow_q6({lo[p], hi[p]});
            }
            Format::put(job.dst, x, v);
        }
}

/// The groups of a run, whose pairs are loaded as they are in memory: Next pixels apart
template <class Format, int Channels, int Next, class Row>
[[gnu::flatten]] void filter_run(const columns& c, const run_products& products, const Row& row, const Row& next) {
    constexpr int planes = Row::planes;
    const Row after = next;
    Row job = row;
    for (int p = 0; p < planes; ++p) job.top[p] += c.run_source, job.bottom[p] += c.run_source;
    const u8* weights = products.start();
    std::ptrdiff_t x = c.first + c.run * lanes, source = c.run_source;
    for (const std::ptrdiff_t end = c.first + c.run_end * lanes; x < end; x += lanes) {
        u8xn top[2], bottom[2], v[planes];
        load_next(weights, top), load_next(weights, bottom);
        ZELT_STRAIGHT(4)
        for (int p = 0; p < planes; ++p) {
            if (Channels == 1 || (wide_pixels_need_prefetch && Next == 1))
                for (int i = 0; i < Next; ++i) {
                    prefetch(after.top[p] + source + i * Next * lanes);
                    prefetch(after.bottom[p] + source + i * Next * lanes);
                }
            v[p] = narrow_q6_ordered(weighted_sum(load_pairs<Channels, Next>(job.top[p]), {top[0], top[1]},
                                                  load_pairs<Channels, Next>(job.bottom[p]), {bottom[0], bottom[1]}));
        }
        source += 2 * Next * lanes;
        Format::put(job.dst, x, v);
    }
}

template <class Format, int Channels, int Windows, class Rows>
[[gnu::noinline]] void resize_uncached(const columns& c, const axis& x, const Rows& rows, int count) {
    using source = typename Format::source;
    constexpr int planes = source::planes;
    run_products run;
    source top(c, Windows), bottom(c, Windows);
    const auto read = [&](const auto& job) {
        row_job<planes, decltype(job.dst)> row;
        std::copy_n(top.samples_of(job.top), planes, row.top);
        std::copy_n(bottom.samples_of(job.bottom), planes, row.bottom);
        row.phase = job.phase;
        row.dst = job.dst;
        return row;
    };
    auto upcoming = rows[0];
    for (int i = 0; i < count; ++i) {
        const auto row = read(upcoming);
        upcoming = rows[i + (i + 1 < count)];
        auto next = row;
        if constexpr (source::is_direct) next = upcoming;
        if (c.run > 0) filter_groups<Format, Windows>(c, 0, c.run, row, next);
        if (c.run == c.groups) continue;
        if constexpr (columns::has_runs<Channels>) {
            run.template scale<Windows>(c, row.phase);
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
    const u8* tables = c.table<Windows>(0);
    const std::ptrdiff_t* offsets = c.offsets;
    u8* sums = reinterpret_cast<u8*>(to);
    const auto filter = [&](bool prefetches) {
        u8xn table[columns::registers<Windows>];
        load_next(tables, table);
        if (prefetches) prefetch(next + *offsets);
        store(sums, (u8xn)weighted_sum(gather_pairs<Windows>(row, offsets, table + 1), *table));
        offsets += columns::eights / 2;
        sums += lanes;
    };
    for (int g = c.groups; g > 0; --g) {
        filter(true);
        filter(halves_are_lines_apart<Windows>);
    }
}
using filter_horizontal_fn = void (*)(columns, const u8*, const u8*, s16xn*);

/// Horizontal sums of two source rows: a destination row shares one or both with the row before it
template <class Source, int Samples = 4096> class row_cache {
public:
    static constexpr int planes = Source::planes, source_planes = Source::source_planes;
    static constexpr int max_samples = Samples / planes / lanes * lanes;
    using source_row = const u8* [source_planes];

    template <class... Of>
    row_cache(const columns& c, int windows, filter_horizontal_fn filter, const Of&... source)
        : source_(c, windows, source...), filter_(filter) {}

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
    const Dest dst = to;
    const u8 *tops[planes], *bottoms[planes];
    for (int p = 0; p < planes; ++p) {
        tops[p] = reinterpret_cast<const u8*>(top + 2 * all.groups * p);
        bottoms[p] = reinterpret_cast<const u8*>(bottom + 2 * all.groups * p);
    }
    const std::ptrdiff_t last = all.last;
    std::ptrdiff_t x = all.first;
    for (int g = 0, stop = all.whole; g < all.groups; stop = all.groups, x = last)
        for (; g < stop; ++g, x += lanes) {
            u8xn v[planes];
            ZELT_STRAIGHT(4)
            for (int p = 0; p < planes; ++p) {
                u8xn t[2], b[2];
                load_next(tops[p], t), load_next(bottoms[p], b);
                v[p] = blend_q6({(s16xn)t[0], (s16xn)t[1]}, {(s16xn)b[0], (s16xn)b[1]}, phase);
            }
            Format::put(dst, x, v);
        }
}

inline filter_horizontal_fn filter_of(int windows) {
    static constexpr filter_horizontal_fn filters[] = {nullptr, filter_horizontal<1>, filter_horizontal<2>,
                                                       filter_horizontal<3>, filter_horizontal<4>};
    return windows > 4 ? filter_horizontal<8> : filters[windows];
}

template <class Format, class Cache, class Rows>
void filter_cached(Cache& cache, const columns& c, const Rows& rows, int count) {
    for (int i = 0; i < count; ++i) {
        const auto row = rows[i], next = rows[i + (i + 1 < count)];
        const s16xn* top = cache.filtered(c, row.top, row.bottom, next.top);
        const s16xn* bottom = cache.filtered(c, row.bottom, row.top, next.bottom);
        filter_vertical<Format>(c, top, bottom, row.phase, row.dst);
    }
}
template <class Format, class Rows>
[[gnu::noinline]] void resize_cached(const columns& c, int windows, const Rows& rows, int count) {
    row_cache<typename Format::source> cache(c, windows, filter_of(windows));
    filter_cached<Format>(cache, c, rows, count);
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
