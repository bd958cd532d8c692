// SPDX-License-Identifier: MIT
// Models and rows of the block metrics. The models are the formulas of the header in 64 bits.
#include "kernels/kernel.h"
#include "zelt/sad.h"

#include <bit>
#include <climits>
#include <cstdlib>
#include <tuple>

namespace zelt::test {
namespace {
using s64 = std::int64_t;

/// How a kernel reads its samples
enum class sample { u8, s16, u16 };
struct kinds {
    sample a, b;
};
constexpr kinds bytes = {sample::u8, sample::u8}, words = {sample::s16, sample::s16}, mixed = {sample::s16, sample::u8},
                unsigned_words = {sample::u16, sample::u16};

int size_of(sample k) { return k == sample::u8 ? 1 : 2; }
s64 at(const view& v, sample kind, int x, int y) {
    const u8* p = v.p + y * v.stride + x * size_of(kind);
    if (kind == sample::u8) return p[0];
    const int word = p[0] + 256 * p[1];
    return kind == sample::s16 && word >= 32768 ? word - 65536 : word;
}
s64 difference(kinds k, const view* v, int x, int y) { return at(v[0], k.a, x, y) - at(v[1], k.b, x, y); }

u64 sad_model(kinds k, shape s, const view* v) {
    s64 sum = 0;
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            const s64 d = difference(k, v, x, y);
            sum += std::abs(d);
            if (k.b != sample::u8 && std::abs(d) > 32768 && d % 2) sum += d > 0 ? -2 : 2;
        }
    return static_cast<u32>(sum);
}

u64 ssd_model(kinds k, shape s, const view* v) {
    u64 sum = 0;
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            const s64 d = difference(k, v, x, y);
            sum += static_cast<u64>(d * d);
        }
    return static_cast<u32>(sum);
}

/// S, the sum of the magnitudes of H D H^T for the n x n block at (x0, y0), each coefficient first reduced to 16 bits
/// where `wrap` says so
s64 hadamard_sum(kinds k, int n, bool wrap, const view* v, int x0, int y0) {
    const auto h = [](int i, int j) { return std::popcount(static_cast<unsigned>(i & j)) % 2 ? -1 : 1; };
    s64 sum = 0;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            s64 t = 0;
            for (int y = 0; y < n; ++y)
                for (int x = 0; x < n; ++x) t += h(i, y) * difference(k, v, x0 + x, y0 + y) * h(j, x);
            if (wrap) t = (t % 65536 + 65536) % 65536, t = t > 32768 ? 65536 - t : t;
            sum += std::abs(t);
        }
    return sum;
}
u64 satd_model(kinds k, shape s, const view* v) {
    s64 sum = 0;
    for (int y = 0; y < s.h; y += 4)
        for (int x = 0; x < s.w; x += 4) sum += hadamard_sum(k, 4, true, v, x, y) / 2;
    return static_cast<u64>(sum);
}
u64 satd8x8_model(kinds k, shape, const view* v) {
    return static_cast<u64>((hadamard_sum(k, 8, false, v, 0, 0) + 2) / 4);
}

/// The stored residual is a block whose rows lie together, against one of zeros.
u64 hadamard_model(kinds, shape, const view* v) {
    u8 zeros[16] = {};
    const view block[] = {{v[0].p, 8}, {zeros, 4}};
    return satd_model(mixed, {4, 4}, block);
}

u64 diff_model(kinds k, shape s, const view* v) {
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            const s64 d = difference(k, v, x, y);
            u8* p = v[2].p + y * v[2].stride + 2 * x;
            p[0] = static_cast<u8>(d), p[1] = static_cast<u8>(d >> 8);
        }
    return 0;
}

/// A threshold for each way to end: after the first row, somewhere on the way, never
template <class F> u64 over_thresholds(shape s, F sum_until) {
    u64 all = 0;
    for (const int threshold : {-1, 0, 100 * s.w, 60 * s.w * s.h, INT_MAX})
        all = all * 1000003 + static_cast<u64>(sum_until(threshold));
    return all;
}
u64 eskip_model(kinds k, shape s, const view* v) {
    return over_thresholds(s, [=](int threshold) {
        s64 sum = 0;
        for (int y = 0; y < s.h && (y == 0 || sum <= threshold); ++y)
            for (int x = 0; x < s.w; ++x) sum += std::abs(difference(k, v, x, y));
        return sum;
    });
}

/// What each sample kind is filled with: all that it can hold, and for 16 bits also what a picture of 10 bits has,
/// which is timed, and differences of up to 12 and 13 bits.
struct range {
    const char* name;
    int low, high;
};
std::vector<range> ranges(kinds k) {
    if (k.a == sample::u8) return {{"", 0, 255}};
    if (k.b == sample::u8) return {{"", -255, 510}, {" full", -32768, 32767}};
    return {{"", 0, 1023}, {" signed", -2047, 2048}, {" 13 bits", -4095, 4096}, {" full", -32768, 32767}};
}

/// A pointer as whatever parameter takes it
struct any_pointer {
    void* p;
    template <class T> operator T*() const { return static_cast<T*>(p); }
};

/// `read` is what the kernel reads for the size that it is given
using area = shape (*)(shape);
shape same(shape s) { return s; }

class table {
public:
    std::vector<kernel> rows;

    /// Kernels of a fixed size, or that are given one; of two blocks, or of a residual. Metrics give a result,
    /// differences write one. Those of any size are also timed, at some.
    template <class R, class... A>
    void add(const std::string& name, R (*fn)(A...), kinds k, u64 (*expected)(kinds, shape, const view*),
             const std::vector<shape>& shapes, const std::vector<shape>& timed = {}, area read = same) {
        constexpr bool writes = std::is_void_v<R>, early = sizeof...(A) == 7, residual = sizeof...(A) == 1;
        constexpr bool sized = std::is_same_v<std::tuple_element_t<0, std::tuple<A...>>, int>;
        const auto call = [=](function f, shape s, const view* v) {
            const auto stride = [=](int i, sample of) { return static_cast<int>(v[i].stride) / size_of(of); };
            const any_pointer a{v[0].p}, b{v[!residual].p};
            const int sa = stride(0, k.a), sb = stride(!residual, k.b);
            const auto run = reinterpret_cast<R (*)(A...)>(f);
            if constexpr (residual)
                return run(a);
            else if constexpr (early)
                return over_thresholds(s, [=](int threshold) { return run(s.w, s.h, a, b, sa, sb, threshold); });
            else if constexpr (sized && writes)
                run(s.w, s.h, a, b, sa, sb, stride(2, sample::s16), any_pointer{v[2].p});
            else if constexpr (sized)
                return run(s.w, s.h, a, b, sa, sb);
            else if constexpr (writes)
                run(a, b, sa, sb, stride(2, sample::s16), any_pointer{v[2].p});
            else
                return run(a, b, sa, sb);
        };
        const auto model = [=](shape s, const view* v) { return expected(k, read(s), v); };
        constexpr timing how = residual ? timing::residual
                               : early  ? timing::early_exit
                               : writes ? (sized ? timing::sized_difference : timing::difference)
                                        : (sized ? timing::sized_pair : timing::pair);
        const auto add_range = [&](const range& r, const std::string& title, const std::vector<shape>& sizes,
                                   timing t) {
            const auto operands = [=](shape s) {
                const auto [w, h] = read(s);
                std::vector<operand> all = {{w, h, size_of(k.a), r.low, r.high}, {w, h, size_of(k.b), r.low, r.high}};
                if (k.b == sample::u8) all[1].low = 0, all[1].high = 255;
                if (residual) all.pop_back();
                if (writes) all.push_back({w, h, 2, -32768, 32767, true});
                return all;
            };
            rows.push_back({title + r.name, reinterpret_cast<function>(fn), sizes, operands, call, model, t, true});
        };
        for (const range& r : ranges(k)) add_range(r, name, shapes, *r.name || !timed.empty() ? timing::none : how);
        for (const shape s : timed)
            add_range(ranges(k)[0], name + ' ' + std::to_string(s.w) + 'x' + std::to_string(s.h), {s}, how);
    }
};

const std::vector<shape> any_shapes = {{1, 1},  {2, 3},   {3, 8},   {4, 4},   {5, 9},   {7, 2},   {8, 8},  {11, 17},
                                       {12, 5}, {16, 16}, {19, 71}, {24, 33}, {31, 10}, {32, 24}, {45, 3}, {100, 20}};
const std::vector<shape> tiled_shapes = {{4, 4},   {4, 8},   {8, 8},   {12, 4}, {8, 16}, {16, 16}, {20, 12},
                                         {24, 20}, {28, 24}, {32, 32}, {1, 1},  {6, 9},  {17, 7},  {64, 64}};
const std::vector<shape> sad_shapes = {{8, 1},   {8, 8},  {8, 13}, {8, 257}, {16, 8},
                                       {16, 15}, {12, 8}, {0, 3},  {16, 600}};
const std::vector<shape> ssd_shapes = {{4, 1},  {4, 4},  {4, 9},   {8, 4},  {8, 7},  {16, 4}, {16, 13}, {32, 2},
                                       {32, 5}, {64, 1}, {64, 64}, {12, 1}, {-1, 2}, {9, 3},  {32, 32}, {16, 16}};
const std::vector<shape> ssd_16_shapes = {{4, 2},  {4, 4},  {4, 3},  {4, -5}, {8, 2},   {8, 8},
                                          {8, 4},  {8, 0},  {16, 2}, {16, 4}, {16, 16}, {16, 5},
                                          {32, 2}, {32, 9}, {64, 1}, {64, 7}, {5, 4},   {0, 9}};
const std::vector<shape> eskip_shapes = {{16, 16}, {4, 1},   {4, 7}, {8, 8}, {12, 6},  {20, 5},
                                         {32, 9},  {64, 64}, {7, 6}, {1, 4}, {100, 13}};
const std::vector<shape> timed_shapes = {{4, 4}, {8, 8}, {16, 16}, {32, 32}, {64, 64}};
}  // namespace

std::vector<kernel> metric_kernels() {
    table t;
    // clang-format off
#define ADD(NAME, W, H, KINDS, MODEL) t.add("zelt_" #NAME, zelt_##NAME, KINDS, MODEL, {{W, H}, {W, H}});
#define SAD(W, H) ADD(sad##W##x##H, W, H, bytes, sad_model) ADD(sad##W##x##H##_16, W, H, words, sad_model)
#define SAD_MIXED(W, H) SAD(W, H) ADD(sad##W##x##H##_bi, W, H, mixed, sad_model) \
                        ADD(sad##W##x##H##_bi_16, W, H, words, sad_model)
    SAD(2, 2) SAD(2, 4) SAD(4, 2) SAD(4, 4)
    SAD_MIXED(4, 8) SAD_MIXED(8, 4) SAD_MIXED(8, 8) SAD_MIXED(8, 16) SAD_MIXED(16, 8) SAD_MIXED(16, 16)
    SAD_MIXED(16, 32) SAD_MIXED(32, 16) SAD_MIXED(32, 32) SAD_MIXED(32, 64) SAD_MIXED(64, 32) SAD_MIXED(64, 64)
#define DIFF_16(W, H) ADD(diff##W##x##H##_16, W, H, words, diff_model)
#define DIFF(W, H) ADD(diff##W##x##H, W, H, bytes, diff_model) DIFF_16(W, H)
    DIFF(2, 2) DIFF(2, 4) DIFF(4, 2) DIFF(4, 4) DIFF(4, 8) DIFF(8, 4) DIFF(8, 8) DIFF(8, 16) DIFF(16, 8) DIFF(16, 16)
    DIFF(16, 32) DIFF(32, 16) DIFF(32, 32) DIFF(32, 64) DIFF(64, 32) DIFF(64, 64)
    DIFF_16(2, 8) DIFF_16(4, 16) DIFF_16(8, 32) DIFF_16(16, 64)
    ADD(diff4x4_bi, 4, 4, mixed, diff_model) ADD(diff4x4_bi_16, 4, 4, words, diff_model)
    ADD(satd4x4, 4, 4, bytes, satd_model) ADD(satd4x4_16, 4, 4, words, satd_model)
    ADD(satd4x4_bi, 4, 4, mixed, satd_model) ADD(satd4x4_bi_16, 4, 4, words, satd_model)
    ADD(satd8x8, 8, 8, bytes, satd8x8_model) ADD(satd8x8_16, 8, 8, unsigned_words, satd8x8_model)
    ADD(satd8x8_bi, 8, 8, mixed, satd8x8_model) ADD(satd8x8_bi_16, 8, 8, words, satd8x8_model)
#undef ADD
#undef SAD
#undef SAD_MIXED
#undef DIFF
#undef DIFF_16
        // clang-format on

        const area tiles = [](shape s) {
            return shape{(s.w + 3) / 4 * 4, (s.h + 3) / 4 * 4};
        };
    const area sad_area = [](shape s) { return shape{s.w == 8 ? 8 : 16, s.h}; };
    const area ssd_area = [](shape s) {
        const bool listed = s.w == 4 || s.w == 8 || s.w == 16 || s.w == 32;
        return shape{listed ? s.w : 64, s.h};
    };
    const area ssd_16_area = [](shape s) {
        if (s.w == 16 || s.w == 32 || s.w == 64) return s;
        const int side = s.w == 8 ? 8 : 4;
        return shape{side, s.h == side ? side : 2};
    };
    t.add("zelt_diff", zelt_diff, bytes, diff_model, any_shapes, {{16, 16}});
    t.add("zelt_diff_16", zelt_diff_16, words, diff_model, any_shapes, {{16, 16}});
    t.add("zelt_satd", zelt_satd, bytes, satd_model, tiled_shapes, timed_shapes, tiles);
    t.add("zelt_satd_16", zelt_satd_16, words, satd_model, tiled_shapes, timed_shapes, tiles);
    t.add("zelt_sad", zelt_sad, bytes, sad_model, sad_shapes, {{8, 8}, {16, 16}}, sad_area);
    t.add("zelt_sad_16", zelt_sad_16, words, sad_model, any_shapes, {{16, 16}});
    t.add("zelt_ssd", zelt_ssd, bytes, ssd_model, ssd_shapes, timed_shapes, ssd_area);
    t.add("zelt_ssd_16", zelt_ssd_16, words, ssd_model, ssd_16_shapes, timed_shapes, ssd_16_area);
    t.add("zelt_sad_eskip", zelt_sad_eskip, bytes, eskip_model, eskip_shapes);

    t.add("zelt_hadamard4x4", zelt_hadamard4x4, mixed, hadamard_model, std::vector<shape>(8, {16, 1}));
    return t.rows;
}
}  // namespace zelt::test
