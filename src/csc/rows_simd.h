#pragma once
// Rows through runs of columns: from N planes of a source row, which Source makes of the caller's row, to values that
// Out::put takes. Neither has a part in the arithmetic.
#include "csc/columns_simd.h"

namespace zelt::simd {
using csc::row_job;

/// Samples as they stand in memory
template <int N> struct in_place {
    static constexpr int planes = N, most = 1 << 30;
    in_place(const columns&, int) {}
    const u8* const* operator()(const u8* const* row) { return row; }
};

struct weights_down {
    uhalf top, bottom;
    explicit weights_down(int phase)
        : top(uhalf{} + static_cast<u16>(8 - phase)), bottom(uhalf{} + static_cast<u16>(phase)) {}
};

/// Sums of two source rows, kept while the rows next to them are made
template <class Source, int Size> class kept_sums {
public:
    static constexpr int planes = Source::planes;
    static constexpr int most = Size / planes / lanes * lanes;  // samples

    kept_sums(const columns& c, int windows) : source_(c, windows) {}

    template <int Windows> const half* of(const columns c, const u8* const* row, const u8* other) {
        for (int i = 0; i < 2; ++i)
            if (rows_[i] == *row) return sums_[i];
        const int i = rows_[0] == other;
        rows_[i] = *row;
        half* to = sums_[i];
        const u8* const* samples = source_(row);
        for (int p = 0; p < planes; ++p) {
            const u8* const plane = samples[p];
            for (int g = 0; g < c.groups; ++g, to += 2) {
                const words s = c.sum<Windows>(g, plane);
                to[0] = s.lo, to[1] = s.hi;
            }
        }
        return sums_[i];
    }

private:
    Source source_;
    const u8* rows_[2] = {};
    half sums_[2][planes * most / lanes * 2];
};

template <class Source, class Out, int Windows, int Size, class Job>
void rows_with_kept_sums(const columns c, const Job* jobs, int count) {
    kept_sums<Source, Size> kept(c, Windows);
    for (; count > 0; --count, ++jobs) {
        const auto dst = jobs->dst;
        const weights_down w(jobs->phase);
        const half* top = kept.template of<Windows>(c, jobs->top, *jobs->bottom);
        const half* bottom = kept.template of<Windows>(c, jobs->bottom, *jobs->top);
        for (int g = 0; g < c.groups; ++g, top += 2, bottom += 2) {
            bytes v[Source::planes];
            for (int p = 0, i = 0; p < Source::planes; ++p, i += 2 * c.groups)
                v[p] = between({top[i], top[i + 1]}, {bottom[i], bottom[i + 1]}, w.top, w.bottom);
            Out::put(dst, c.at(g), v);
        }
    }
}

template <class Out, int Windows, int N, class Dest>
void rows_by_themselves(const columns c, const row_job<N, Dest>* jobs, int count) {
    for (; count > 0; --count, ++jobs) {
        const row_job<N, Dest> job = *jobs;
        const weights_down w(job.phase);
        for (int g = 0; g < c.groups; ++g) {
            bytes v[N];
            for (int p = 0; p < N; ++p)
                v[p] = between(c.sum<Windows>(g, job.top[p]), c.sum<Windows>(g, job.bottom[p]), w.top, w.bottom);
            Out::put(job.dst, c.at(g), v);
        }
    }
}

/// Whether source rows serve more than one destination row, by and large
template <class Job> bool rows_are_shared(const Job* jobs, int count) {
    int fresh = 0;
    for (int i = 1; i < count; ++i)
        for (const u8* row : {*jobs[i].top, *jobs[i].bottom})
            fresh += row != *jobs[i - 1].top && row != *jobs[i - 1].bottom;
    return fresh < count - 1;
}

/// Pixels have Bytes samples in a plane.
template <class Source, class Out, int Bytes, int Windows, class Job>
void go_through(const Job* jobs, int count, const axis& x, const row_shape& shape) {
    constexpr int kept = 2048;
    column_tables<24 * 1024> tables;
    constexpr bool as_is = std::is_same_v<Source, in_place<Source::planes>>;
    const bool keep = !as_is || rows_are_shared(jobs, count);
    int most = keep ? kept_sums<Source, kept>::most : 1 << 16;
    if (!as_is) most = static_cast<int>(std::min<s64>(most, ((Source::most - 128ll) << 18) / (x.step << x.shift)));
    for (std::ptrdiff_t first = 0; first < shape.samples;) {
        const columns c = tables.template prepare<Bytes>(x, shape, first, most);
        if constexpr (as_is)
            if (!keep) rows_by_themselves<Out, Windows>(c, jobs, count);
        if (keep) rows_with_kept_sums<Source, Out, Windows, kept>(c, jobs, count);
        first += c.groups * lanes;
    }
}

/// Makes all rows; false where it cannot and nothing is done.
template <class Source, class Out, int Bytes, class Job>
bool go_through(const Job* jobs, int count, const axis& x, int dst_w) {
    const row_shape shape(x, dst_w, Bytes);
    switch (shape.windows) {
    case 1: go_through<Source, Out, Bytes, 1>(jobs, count, x, shape); return true;
    case 2: go_through<Source, Out, Bytes, 2>(jobs, count, x, shape); return true;
    case 4: go_through<Source, Out, Bytes, 4>(jobs, count, x, shape); return true;
    case 8: go_through<Source, Out, Bytes, 8>(jobs, count, x, shape); return true;
    default: return false;
    }
}
}  // namespace zelt::simd
