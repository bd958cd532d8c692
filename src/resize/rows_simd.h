#pragma once
// Rows through runs of columns: from the planes that Source makes of a caller's row, to values that Out::put takes.
// Neither has a part in the arithmetic.
#include "resize/columns_simd.h"

namespace zelt::inline ZELT_LEVEL::simd {
using csc::row_job;

/// Samples as they stand in memory
template <int N> struct in_place {
    static constexpr int planes = N, source_planes = N, most = 1 << 30, most_windows = 8;
    static constexpr bool as_is = true;
    in_place(const columns&, int) {}
    const u8* const* operator()(const u8* const* row) { return row; }
};

// ------------------------------------------------------------------------------------------------- rows by themselves

/// Weights across and down in one, at most 64, so that a pair of them is one product
inline u8xn scaled(u8xn weights, int factor) { return (u8xn)((u16xn)weights * static_cast<u16>(factor)); }

/// The weights of a run's groups, kept while the vertical phase stays the same, as it does for long at a ratio of 2
class run_weights {
public:
    void scale(const columns& c, int phase) {
        if (phase == phase_) return;
        phase_ = phase;
        for (int i = 0; i < 2 * (c.run_end - c.run); ++i) {
            const u8xn w = c.weight(2 * c.run + i);
            top[i] = scaled(w, 8 - phase), bottom[i] = scaled(w, phase);
        }
    }
    u8xn top[2 * columns::longest_run], bottom[2 * columns::longest_run];

private:
    int phase_ = -1;
};

template <class Out, int Windows, int N, class Dest>
[[gnu::flatten]] void make_groups(const columns& all, int g, int end, const row_job<N, Dest>& rows,
                                  const row_job<N, Dest>& next) {
    const columns c = all;
    const row_job<N, Dest> job = rows, after = next;
    for (; g < end; ++g) {
        s16x2n sums[N];
        for (int h = 0; h < 2; ++h) {
            const u8xn w = c.weight(2 * g + h), top = scaled(w, 8 - job.phase), bottom = scaled(w, job.phase);
            for (int p = 0; p < N; ++p) {
                (h ? sums[p].hi : sums[p].lo) =
                    weighted_sum(weighted_sum(c.gather_pairs<Windows>(2 * g + h, job.top[p]), top),
                                 c.gather_pairs<Windows>(2 * g + h, job.bottom[p]), bottom);
                if (h < (Windows + 1) / 2) c.prefetch(2 * g + h, after.top[p]), c.prefetch(2 * g + h, after.bottom[p]);
            }
        }
        u8xn v[N];
        for (int p = 0; p < N; ++p) v[p] = narrow_q6(sums[p]);
        Out::put(job.dst, c.at(g), v);
    }
}

template <class Out, int Bytes, int Next, int N, class Dest>
[[gnu::flatten]] void make_run(const columns& c, const run_weights& weights, const row_job<N, Dest>& rows,
                               const row_job<N, Dest>& next) {
    const row_job<N, Dest> job = rows, after = next;
    const int end = 2 * (c.run_end - c.run);
    std::ptrdiff_t x = c.first + c.run * lanes, source = c.run_source;
    for (int i = 0; i < end; i += 2, x += lanes, source += 2 * Next * lanes) {
        u8xn v[N];
        for (int p = 0; p < N; ++p) {
            const auto sum = [&](int half) {
                const std::ptrdiff_t at = source + half * Next * lanes;
                if (Bytes == 1 && half < Next)  // longer rows are foreseen
                    __builtin_prefetch(after.top[p] + at), __builtin_prefetch(after.bottom[p] + at);
                return weighted_sum(weighted_sum(load_pairs<Bytes, Next>(job.top[p] + at), weights.top[i + half]),
                                    load_pairs<Bytes, Next>(job.bottom[p] + at), weights.bottom[i + half]);
            };
            v[p] = narrow_q6_ordered({sum(0), sum(1)});
        }
        Out::put(job.dst, x, v);
    }
}

template <class Source, class Out, int Windows, int Bytes, class Jobs>
[[gnu::noinline]] void make_rows(const columns& c, const axis& x, const Jobs& jobs, int count) {
    constexpr int planes = Source::planes;
    run_weights run;
    Source take_top(c, Windows), take_bottom(c, Windows);
    const auto taken = [&](const auto& job) {
        row_job<planes, decltype(job.dst)> rows;
        std::copy_n(take_top(job.top), planes, rows.top), std::copy_n(take_bottom(job.bottom), planes, rows.bottom);
        rows.phase = job.phase, rows.dst = job.dst;
        return rows;
    };
    for (int i = 0; i < count; ++i) {
        const auto job = taken(jobs[i]);
        auto next = job;
        if constexpr (Source::as_is) next = jobs[i + (i + 1 < count)];
        if (c.run > 0) make_groups<Out, Windows>(c, 0, c.run, job, next);
        if (c.run == c.groups) continue;
        if constexpr (8 % Bytes == 0) {
            run.scale(c, job.phase);
            x.next == 1 ? make_run<Out, Bytes, 1>(c, run, job, next) : make_run<Out, Bytes, 2>(c, run, job, next);
        }
        if (c.run_end < c.groups) make_groups<Out, Windows>(c, c.run_end, c.groups, job, next);
    }
}

// ----------------------------------------------------------------------------------------------------------- kept sums

/// The sums of a row of one plane, two halves a group
template <int Windows> void sum_row(const columns c, const u8* row, const u8* next, s16xn* to) {
    for (int h = 0; h < 2 * c.groups; ++h) {
        if (h % 2 < (Windows + 1) / 2) c.prefetch(h, next);
        to[h] = weighted_sum(c.gather_pairs<Windows>(h, row), c.weight(h));
    }
}
using sum_row_fn = void (*)(columns, const u8*, const u8*, s16xn*);

/// Sums of two source rows, kept while the rows next to them are made
template <class Source> class kept_sums {
public:
    static constexpr int planes = Source::planes, source_planes = Source::source_planes;
    static constexpr int most = 4096 / planes / lanes * lanes;  // samples
    using source_row = const u8* [source_planes];

    kept_sums(const columns& c, int windows, sum_row_fn sum) : source_(c, windows), sum_(sum) {}

    /// Those of a row, in place of any but the other row's
    const s16xn* of(const columns c, const source_row& row, const source_row& other, const source_row& next) {
        for (int i = 0; i < 2; ++i)
            if (same(rows_[i], row)) return sums_[i];
        const int i = same(rows_[0], other);
        std::copy_n(row, source_planes, rows_[i]);
        const u8* const* samples = source_(row);
        for (int p = 0; p < planes; ++p) sum_(c, samples[p], next[Source::as_is ? p : 0], sums_[i] + 2 * c.groups * p);
        return sums_[i];
    }

private:
    /// Planes may have strides of 0: a row is known by its samples in all of them.
    static bool same(const source_row& a, const source_row& b) { return std::equal(a, a + source_planes, b); }

    Source source_;
    sum_row_fn sum_;
    source_row rows_[2] = {};
    s16xn sums_[2][planes * most / lanes * 2];
};

template <class Out, int N, class Dest>
[[gnu::flatten]] void put_between(const columns& all, const s16xn* top, const s16xn* bottom, int phase,
                                  const Dest& to) {
    const columns c = all;
    const Dest dst = to;
    const u16xn bottom_weight = u16xn{} + static_cast<u16>(phase), top_weight = 8 - bottom_weight;
    const auto down = [=](s16xn t, s16xn b) { return (s16xn)((u16xn)t * top_weight + (u16xn)b * bottom_weight); };
    for (int g = 0; g < c.groups; ++g, top += 2, bottom += 2) {
        u8xn v[N];
        for (int p = 0, i = 0; p < N; ++p, i += 2 * c.groups)
            v[p] = narrow_q6({down(top[i], bottom[i]), down(top[i + 1], bottom[i + 1])});
        Out::put(dst, c.at(g), v);
    }
}

template <class Source, class Out, class Jobs>
[[gnu::noinline]] void make_rows_of_sums(const columns& c, int windows, const Jobs& jobs, int count) {
    static constexpr sum_row_fn sum_rows[] = {sum_row<1>, sum_row<2>, sum_row<3>, sum_row<4>};
    kept_sums<Source> kept(c, windows, windows > 4 ? sum_row<8> : sum_rows[windows - 1]);
    for (int i = 0; i < count; ++i) {
        const auto job = jobs[i], next = jobs[i + (i + 1 < count)];
        const s16xn* top = kept.of(c, job.top, job.bottom, next.top);
        const s16xn* bottom = kept.of(c, job.bottom, job.top, next.bottom);
        put_between<Out, Source::planes>(c, top, bottom, job.phase, job.dst);
    }
}

// --------------------------------------------------------------------------------------------------------- all columns

/// Whether source rows serve more than one destination row, by and large
template <class Jobs> bool rows_are_shared(const Jobs& jobs, int count) {
    const int some = std::min(count, 64);
    int fresh = 0;
    for (int i = 1; i < some; ++i) {
        const auto job = jobs[i], before = jobs[i - 1];
        for (const u8* row : {*job.top, *job.bottom}) fresh += row != *before.top && row != *before.bottom;
    }
    return fresh < some - 1;
}

template <class Source, class Out, int Bytes, class Jobs>
[[gnu::noinline]] void make_picture(const Jobs& jobs, int count, const axis& x, const row_shape& shape) {
    const int windows = shape.windows;
    const bool keep = windows > 4 || rows_are_shared(jobs, count);
    s64 most = keep ? kept_sums<Source>::most : 1 << 16;
    most = std::min<s64>(most, ((Source::most - s64{128}) << 18) / (x.step << x.shift));
    column_tables<24 * 1024> tables;
    columns c;
    for (std::ptrdiff_t first = 0; first < shape.samples; first += c.groups * lanes) {
        c = tables.template prepare<Bytes>(x, shape, first, most, !keep);
        if (keep) {
            make_rows_of_sums<Source, Out>(c, windows, jobs, count);
            continue;
        }
        if (windows == 1) make_rows<Source, Out, 1, Bytes>(c, x, jobs, count);
        if (windows == 2) make_rows<Source, Out, 2, Bytes>(c, x, jobs, count);
        if (windows == 3) make_rows<Source, Out, 3, Bytes>(c, x, jobs, count);
        if (windows == 4) make_rows<Source, Out, 4, Bytes>(c, x, jobs, count);
    }
}

/// Makes all rows, of pixels of Bytes samples in a plane; false where it cannot or preparing would not pay, and nothing
/// is done. Preparing takes as long as some rows do a pixel at a time, fewer of them where each sample is a pixel.
template <class Source, class Out, int Bytes, class Jobs>
bool go_through(const Jobs& jobs, int count, const axis& x, int dst_w) {
    const s64 rows = s64{count} * Source::planes * (Source::as_is && Bytes == 1 ? 2 : 1), samples = s64{dst_w} * Bytes;
    if (samples < lanes || rows < 2 || rows * samples < 128 || samples > PTRDIFF_MAX) return false;
    const row_shape shape(x, dst_w, Bytes);
    if (!shape.windows || shape.windows > Source::most_windows || rows <= shape.windows) return false;
    make_picture<Source, Out, Bytes>(jobs, count, x, shape);
    return true;
}
}  // namespace zelt::inline ZELT_LEVEL::simd
