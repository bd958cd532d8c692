// SPDX-License-Identifier: MIT
// What goes from block to block: comparisons are shorter than calls from JavaScript.
#include "zelt/sad.h"

#include <algorithm>
#include <cstdlib>

namespace {
using cost_fn = uint32_t (*)(const uint8_t* a, const uint8_t* b, int stride_a, int stride_b);
constexpr int largest = 64;

template <int N>
constexpr cost_fn satd = [](const uint8_t* a, const uint8_t* b, int stride_a, int stride_b) {
    return static_cast<uint32_t>(zelt_satd(N, N, a, b, stride_a, stride_b));
};
template <int N>
constexpr cost_fn ssd = [](const uint8_t* a, const uint8_t* b, int stride_a, int stride_b) {
    return zelt_ssd(N, N, a, b, stride_a, stride_b);
};
template <auto* function>
constexpr cost_fn sad =
    [](const uint8_t* a, const uint8_t* b, int stride_a, int stride_b) { return function(a, b, stride_a, stride_b); };
constexpr cost_fn metrics[3][5] = {
    {sad<zelt_sad4x4>, sad<zelt_sad8x8>, sad<zelt_sad16x16>, sad<zelt_sad32x32>, sad<zelt_sad64x64>},
    {satd<4>, satd<8>, satd<16>, satd<32>, satd<64>},
    {ssd<4>, ssd<8>, ssd<16>, ssd<32>, ssd<64>},
};

struct plane {
    const uint8_t* samples;
    int32_t stride, width, height;
};

/// A block where it lies, or, over an edge, a copy in which the edge's samples are repeated
struct block {
    const uint8_t* samples;
    int stride;
    uint8_t copy[largest * largest];

    block() {}  // without filling the copy

    void take(const plane& p, int x, int y, int n) {
        if (x >= 0 && y >= 0 && x + n <= p.width && y + n <= p.height) {
            samples = p.samples + y * p.stride + x;
            stride = p.stride;
            return;
        }
        for (int j = 0; j < n; ++j) {
            const uint8_t* row = p.samples + std::clamp(y + j, 0, p.height - 1) * p.stride;
            for (int i = 0; i < n; ++i) copy[j * n + i] = row[std::clamp(x + i, 0, p.width - 1)];
        }
        samples = copy;
        stride = n;
    }
};

struct vector {
    int16_t x, y;
    friend vector operator+(vector a, vector b) {
        return {static_cast<int16_t>(a.x + b.x), static_cast<int16_t>(a.y + b.y)};
    }
    friend bool operator==(vector, vector) = default;
};

constexpr vector large[8] = {{0, -2}, {1, -1}, {2, 0}, {1, 1}, {0, 2}, {-1, 1}, {-2, 0}, {-1, -1}};
constexpr vector small[4] = {{0, -1}, {1, 0}, {0, 1}, {-1, 0}};
constexpr int most_places = 40, most_new = 5;

constexpr bool is_large(vector v) { return std::find(large, large + 8, v) != large + 8; }

/// Where a block has been found cheapest so far
struct search {
    const plane& past;
    const block& now;
    cost_fn metric;
    int x, y, n, reach;
    block there{};
    vector best{};
    uint32_t cost = 0;
    int tried = 0;

    uint32_t cost_of(vector v) {
        ++tried;
        there.take(past, x + v.x, y + v.y, n);
        return metric(now.samples, there.samples, now.stride, there.stride);
    }

    /// Goes to the cheapest of the places around that are wanted: which one it is, or -1 if the centre is no dearer
    template <int N, class Wanted> int step(const vector (&pattern)[N], Wanted wanted) {
        const vector centre = best;
        int choice = -1;
        for (int i = 0; i < N; ++i) {
            const vector v = centre + pattern[i];
            if (!wanted(pattern[i]) || std::abs(v.x) > reach || std::abs(v.y) > reach) continue;
            if (const uint32_t c = cost_of(v); c < cost) {
                best = v;
                cost = c;
                choice = i;
            }
        }
        return choice;
    }

    void run(const vector* start) {
        const auto all = [](vector) { return true; };
        cost = cost_of(best);
        if (start) step<1>({*start}, all);
        int moved = cost ? step(large, all) : -1;
        while (moved >= 0 && cost && tried + most_new + 4 <= most_places) {
            const vector from = large[moved];  // whose new places are those that the last diamond did not have
            moved = step(large, [from](vector v) { return !is_large(from + v) && from + v != vector{}; });
        }
        if (cost) step(small, all);
    }
};
}  // namespace

#define ZELT_EXPORT_AS(name) extern "C" __attribute__((export_name(#name)))

/// metric: 0 SAD, 1 SATD, 2 SSD. size: 0 is 4 x 4, 4 is 64 x 64. costs: of each block, row by row
ZELT_EXPORT_AS(zelt_blocks_map)
void map(int metric, int size, const plane* a, const plane* b, uint32_t* costs) {
    const int n = 4 << size;
    block first, second;
    for (int y = 0; y < a->height; y += n)
        for (int x = 0; x < a->width; x += n) {
            first.take(*a, x, y, n);
            second.take(*b, x, y, n);
            *costs++ = metrics[metric][size](first.samples, second.samples, first.stride, second.stride);
        }
}

/// vectors: of each block, where to begin if `starts` is not 0, and where it is found
ZELT_EXPORT_AS(zelt_blocks_motion)
void motion(int metric, int size, const plane* before, const plane* now, int reach, int starts, vector* vectors,
            uint32_t* costs) {
    const int n = 4 << size;
    block current;
    for (int y = 0; y < now->height; y += n)
        for (int x = 0; x < now->width; x += n) {
            current.take(*now, x, y, n);
            search s{*before, current, metrics[metric][size], x, y, n, reach};
            s.run(starts ? vectors : nullptr);
            *vectors++ = s.best;
            *costs++ = s.cost;
        }
}
