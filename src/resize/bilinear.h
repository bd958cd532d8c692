// SPDX-License-Identifier: MIT
#pragma once  // positions along an axis, and the source rows that a destination row is interpolated from
#include "core/types.h"
#include "simd/level.h"

#include <algorithm>

namespace zelt::inline ZELT_LEVEL::rsz {
/// Positions of destination samples among the source samples of one axis. Destination sample i is at i * step / 2^18 on
/// the grid of every 2^shift-th source sample; the top three bits of the fraction are its phase.
struct axis {
    int shift = 0;
    s64 next = 0;  // distance to the second source sample; 0 if step is, since then only the first one may be read
    s64 step = 0;

    axis() = default;
    axis(int grid, s64 second, s64 increment) : shift(grid), next(increment ? second : 0), step(increment) {}
    axis(int src, int dst) {
        if (src < 1 || dst < 1) return;
        const int ratio = std::min(src / dst, 31);
        shift = ratio < 3 ? 0 : ratio < 5 ? 1 : ratio < 9 ? 2 : ratio < 17 ? 3 : 4;
        step = (static_cast<s64>((src - 1) >> shift) << 18) / dst;  // src - 1: the second sample is inside, too
        next = step ? 1 << shift : 0;
    }
    explicit axis(u32 packed) : axis(packed & 7, 1 << (packed & 7), packed >> 3) {}

    u32 packed() const { return static_cast<u32>(step << 3) | static_cast<u32>(shift); }
    s64 sample(s64 position) const { return (position >> 18) * (s64{1} << shift); }
    static int phase(s64 position) { return static_cast<int>(position >> 15 & 7); }
};

/// One destination row: two source rows of each of N planes, how many eighths it is below the upper ones, and where it
/// goes
template <int N, class Dest> struct row_job {
    static constexpr int planes = N;
    const u8 *top[N], *bottom[N];
    int phase;
    Dest dst;
};
using row_pair = row_job<1, u8*>;

/// The rows of a whole picture
template <int N, class Dest> struct picture_rows {
    static constexpr int planes = N;
    const u8* src[N];
    s64 src_stride[N];
    axis y;
    Dest dst;  // its rows are dst.row(i)

    auto operator[](int i) const {
        const s64 position = i * y.step;
        row_job<N, decltype(dst.row(i))> job;
        for (int p = 0; p < N; ++p) {
            job.top[p] = src[p] + y.sample(position) * src_stride[p];
            job.bottom[p] = job.top[p] + y.next * src_stride[p];
        }
        job.phase = axis::phase(position);
        job.dst = dst.row(i);
        return job;
    }
};
}  // namespace zelt::inline ZELT_LEVEL::rsz
