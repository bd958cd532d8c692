#pragma once
// Rows through runs of columns: from the planes that Source makes of a caller's row, to values that Out::put takes.
// Neither has a part in the arithmetic.
#include "csc/columns_simd.h"

namespace zelt::simd {
using csc::row_job;

// ------------------------------------------------------------------------------------------------- rows by themselves

/// Weights across and down in one, at most 64
inline bytes scaled(bytes weights, int factor) { return weights * static_cast<u8>(factor); }

template <class Out, int N, class Dest>
[[gnu::flatten]] void make_rows(const columns c, const row_job<N, Dest>* jobs, int count) {
    for (; count > 0; --count, ++jobs) {
        const row_job<N, Dest> job = *jobs;
        for (int p = 0; p < N && count > 1; ++p) c.prefetch(jobs[1].top[p], 1), c.prefetch(jobs[1].bottom[p], 1);
        for (int g = 0; g < c.groups; ++g) {
            words sums[N];
            for (int h = 0; h < 2; ++h) {
                const bytes w = c.weight(2 * g + h), top = scaled(w, 8 - job.phase), bottom = scaled(w, job.phase);
                for (int p = 0; p < N; ++p)
                    (h ? sums[p].hi : sums[p].lo) = weigh(weigh(c.pick<1>(2 * g + h, job.top[p]), top),
                                                          c.pick<1>(2 * g + h, job.bottom[p]), bottom);
            }
            bytes v[N];
            for (int p = 0; p < N; ++p) v[p] = narrow_q6(sums[p]);
            Out::put(job.dst, c.at(g), v);
        }
    }
}

/// The same where all pairs adjoin. The vertical phase hardly changes at a ratio of 2, so the weights are scaled ahead.
template <class Out, int N, class Dest>
[[gnu::flatten]] void make_adjoining_rows(const columns c, const row_job<N, Dest>* jobs, int count) {
    constexpr int most = 64;  // groups
    bytes weights[2][2 * most];
    for (int start = 0; start < c.groups; start += most) {
        const int end = std::min(start + most, c.groups);
        int phase = -1;
        for (int i = 0; i < count; ++i) {
            const row_job<N, Dest> job = jobs[i];
            for (int p = 0; p < N && i + 1 < count; ++p)
                c.prefetch(jobs[i + 1].top[p], 2), c.prefetch(jobs[i + 1].bottom[p], 2);
            if (job.phase != phase)
                for (int h = 2 * start; h < 2 * end; ++h) {
                    weights[0][h - 2 * start] = scaled(c.weight(h), 8 - job.phase);
                    weights[1][h - 2 * start] = scaled(c.weight(h), job.phase);
                }
            phase = job.phase;
            for (int g = start; g < end; ++g) {
                bytes v[N];
                const bytes *top = &weights[0][2 * (g - start)], *bottom = &weights[1][2 * (g - start)];
                for (int p = 0; p < N; ++p) {
                    const u8* t = job.top[p] + c.offsets[columns::eights * g];
                    const u8* b = job.bottom[p] + c.offsets[columns::eights * g];
                    v[p] = narrow_q6_eights(
                        {weigh(weigh(load_pairs(t), top[0]), load_pairs(b), bottom[0]),
                         weigh(weigh(load_pairs(t + lanes), top[1]), load_pairs(b + lanes), bottom[1])});
                }
                Out::put(job.dst, c.at(g), v);
            }
        }
    }
}

// ----------------------------------------------------------------------------------------------------------- kept sums

/// The sums of a row of one plane, two halves a group
template <int Windows> void sum_row(const columns c, const u8* row, const u8* next, half* to) {
    c.prefetch(next, Windows);
    for (int h = 0; h < 2 * c.groups; ++h) {
        to[h] = weigh(c.pick<Windows>(h, row), c.weight(h));
    }
}
using sum_row_fn = void (*)(columns, const u8*, const u8*, half*);

/// Samples as they stand in memory
template <int N> struct in_place {
    static constexpr int planes = N, most = 1 << 30;
    in_place(const columns&, int) {}
    const u8* const* operator()(const u8* const* row) { return row; }
};

/// Sums of two source rows, kept while the rows next to them are made
template <class Source> class kept_sums {
public:
    static constexpr int planes = Source::planes;
    static constexpr int most = 4096 / planes / lanes * lanes;  // samples

    kept_sums(const columns& c, int windows, sum_row_fn sum) : source_(c, windows), sum_(sum) {}

    /// Those of a row, in place of any but the other row's
    const half* of(const columns c, const u8* const* row, const u8* other, const u8* const* next) {
        for (int i = 0; i < 2; ++i)
            if (rows_[i] == *row) return sums_[i];
        const int i = rows_[0] == other;
        rows_[i] = *row;
        const u8* const* samples = source_(row);
        for (int p = 0; p < planes; ++p) sum_(c, samples[p], next[as_is ? p : 0], sums_[i] + 2 * c.groups * p);
        return sums_[i];
    }

private:
    static constexpr bool as_is = std::is_same_v<Source, in_place<planes>>;
    Source source_;
    sum_row_fn sum_;
    const u8* rows_[2] = {};
    half sums_[2][planes * most / lanes * 2];
};

template <class Source, class Out, class Job>
[[gnu::flatten]] void make_rows(const columns c, kept_sums<Source>& kept, const Job* jobs, int count) {
    for (; count > 0; --count, ++jobs) {
        const auto dst = jobs->dst;
        const uhalf bottom_weight = uhalf{} + static_cast<u16>(jobs->phase), top_weight = 8 - bottom_weight;
        const auto down = [=](half top, half bottom) {
            return (half)((uhalf)top * top_weight + (uhalf)bottom * bottom_weight);
        };
        const half* top = kept.of(c, jobs->top, *jobs->bottom, jobs[count > 1].top);
        const half* bottom = kept.of(c, jobs->bottom, *jobs->top, jobs[count > 1].bottom);
        for (int g = 0; g < c.groups; ++g, top += 2, bottom += 2) {
            bytes v[Source::planes];
            for (int p = 0, i = 0; p < Source::planes; ++p, i += 2 * c.groups)
                v[p] = narrow_q6({down(top[i], bottom[i]), down(top[i + 1], bottom[i + 1])});
            Out::put(dst, c.at(g), v);
        }
    }
}

// --------------------------------------------------------------------------------------------------------- all columns

/// Whether source rows serve more than one destination row, by and large
template <class Job> bool rows_are_shared(const Job* jobs, int count) {
    int fresh = 0;
    for (int i = 1; i < count; ++i)
        for (const u8* row : {*jobs[i].top, *jobs[i].bottom})
            fresh += row != *jobs[i - 1].top && row != *jobs[i - 1].bottom;
    return fresh < count - 1;
}

/// Makes all rows, of pixels of Bytes samples in a plane; false where it cannot and nothing is done.
template <class Source, class Out, int Bytes, class Job>
bool go_through(const Job* jobs, int count, const axis& x, int dst_w) {
    const row_shape shape(x, dst_w, Bytes);
    const int windows = shape.windows;
    if (!windows) return false;
    const sum_row_fn sum = windows == 1   ? sum_row<1>
                           : windows == 2 ? sum_row<2>
                           : windows == 4 ? sum_row<4>
                                          : sum_row<8>;
    constexpr bool as_is = std::is_same_v<Source, in_place<Source::planes>>;
    const bool keep = !as_is || windows > 1 || rows_are_shared(jobs, count);
    s64 most = keep ? kept_sums<Source>::most : 1 << 16;
    most = std::min<s64>(most, ((Source::most - s64{128}) << 18) / (x.step << x.shift));
    column_tables<24 * 1024> tables;
    columns c;
    for (std::ptrdiff_t first = 0; first < shape.samples; first += c.groups * lanes) {
        c = tables.template prepare<Bytes>(x, shape, first, most, !keep);
        if constexpr (as_is) {
            if (!keep) {
                c.adjoining ? make_adjoining_rows<Out>(c, jobs, count) : make_rows<Out>(c, jobs, count);
                continue;
            }
        }
        kept_sums<Source> kept(c, windows, sum);
        make_rows<Source, Out>(c, kept, jobs, count);
    }
    return true;
}
}  // namespace zelt::simd
