// Models and rows of the block metrics. The models are the formulas of the header in 64 bits.
#include "kernels/kernel.h"
#include "zelt/sad.h"

#include <bit>
#include <climits>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>

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

void diff_model(kinds k, shape s, const view* v) {
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            const s64 d = difference(k, v, x, y);
            u8* p = v[2].p + y * v[2].stride + 2 * x;
            p[0] = static_cast<u8>(d), p[1] = static_cast<u8>(d >> 8);
        }
}

/// A threshold for each way to end: after the first row, somewhere on the way, never
std::vector<int> thresholds(shape s) { return {-1, 0, 100 * s.w, 60 * s.w * s.h, INT_MAX}; }
u64 eskip_model(shape s, const view* v) {
    u64 all = 0;
    for (const int threshold : thresholds(s)) {
        s64 sum = 0;
        for (int y = 0; y < s.h && (y == 0 || sum <= threshold); ++y)
            for (int x = 0; x < s.w; ++x) sum += std::abs(difference(bytes, v, x, y));
        all = all * 1000003 + static_cast<u64>(sum);
    }
    return all;
}

/// What each sample kind is filled with: all that it can hold, and for 16 bits also what is the usual range.
struct range {
    const char* name;
    int low, high;
};
std::vector<range> ranges(kinds k) {
    if (k.a == sample::u8) return {{"", 0, 255}};
    if (k.b == sample::u8) return {{"", -255, 510}, {" full", -32768, 32767}};
    return {{"", 0, 4095}, {" residual", -2047, 2047}, {" full", -32768, 32767}};
}

/// Strides as the kernels count them
struct strides {
    int a, b, d;
    strides(kinds k, const view* v, bool result)
        : a(static_cast<int>(v[0].stride) / size_of(k.a)), b(static_cast<int>(v[1].stride) / size_of(k.b)),
          d(result ? static_cast<int>(v[2].stride) / 2 : 0) {}
};

using caller = std::function<u64(function, shape, const view*)>;
using model = std::function<u64(shape, const view*)>;

/// `read` is what the kernel reads for the size that it is given
using area = shape (*)(shape);
shape same(shape s) { return s; }

class table {
public:
    std::vector<kernel> rows;

    void add(const std::string& name, function fn, kinds k, std::vector<shape> shapes, area read, bool result,
             caller call, model expected) {
        for (const range& r : ranges(k)) {
            const auto operands = [=](shape s) {
                const shape full = read(s);
                std::vector<operand> all = {{full.w, full.h, size_of(k.a), r.low, r.high},
                                            {full.w, full.h, size_of(k.b), r.low, r.high}};
                if (k.b == sample::u8) all[1].low = 0, all[1].high = 255;
                if (result) all.push_back({full.w, full.h, 2, -32768, 32767, true});
                return all;
            };
            rows.push_back({name + r.name, fn, shapes, operands, call,
                            [=](shape s, const view* v) { return expected(read(s), v); }, true});
        }
    }
    template <class F, class M> void metric(const std::string& name, F* fn, kinds k, shape s, M expected) {
        add(
            name, reinterpret_cast<function>(fn), k, {s, s}, same, false,
            [=](function f, shape, const view* v) {
                const strides n(k, v, false);
                return static_cast<u64>(reinterpret_cast<F*>(f)(v[0].p, v[1].p, n.a, n.b));
            },
            [=](shape read, const view* v) { return expected(k, read, v); });
    }
    template <class F> void diff(const std::string& name, F* fn, kinds k, shape s) {
        add(
            name, reinterpret_cast<function>(fn), k, {s, s}, same, true,
            [=](function f, shape, const view* v) {
                const strides n(k, v, true);
                reinterpret_cast<F*>(f)(v[0].p, v[1].p, n.a, n.b, n.d, reinterpret_cast<s16*>(v[2].p));
                return u64{0};
            },
            [=](shape read, const view* v) { return diff_model(k, read, v), u64{0}; });
    }
    /// Of a size given by the caller
    template <class Sample, class R, class M>
    void generic(const std::string& name, R (*fn)(int, int, const Sample*, const Sample*, int, int), kinds k,
                 std::vector<shape> shapes, area read, M expected) {
        add(
            name, reinterpret_cast<function>(fn), k, std::move(shapes), read, false,
            [=](function f, shape s, const view* v) {
                const strides n(k, v, false);
                return static_cast<u64>(
                    reinterpret_cast<decltype(fn)>(f)(s.w, s.h, reinterpret_cast<const Sample*>(v[0].p),
                                                      reinterpret_cast<const Sample*>(v[1].p), n.a, n.b));
            },
            [=](shape s, const view* v) { return expected(k, s, v); });
    }
    template <class Sample>
    void generic_diff(const std::string& name, void (*fn)(int, int, const Sample*, const Sample*, int, int, int, s16*),
                      kinds k, std::vector<shape> shapes) {
        add(
            name, reinterpret_cast<function>(fn), k, std::move(shapes), same, true,
            [=](function f, shape s, const view* v) {
                const strides n(k, v, true);
                reinterpret_cast<decltype(fn)>(f)(s.w, s.h, reinterpret_cast<const Sample*>(v[0].p),
                                                  reinterpret_cast<const Sample*>(v[1].p), n.a, n.b, n.d,
                                                  reinterpret_cast<s16*>(v[2].p));
                return u64{0};
            },
            [=](shape s, const view* v) { return diff_model(k, s, v), u64{0}; });
    }
};

const std::vector<shape> any_shapes = {{1, 1},  {2, 3},   {3, 8},  {4, 4},   {5, 9},   {7, 2},   {8, 8},  {11, 17},
                                       {12, 5}, {16, 16}, {19, 7}, {24, 33}, {31, 10}, {32, 24}, {45, 3}, {100, 20}};
const std::vector<shape> tiled_shapes = {{4, 4},   {4, 8},   {8, 8},   {12, 4}, {8, 16}, {16, 16}, {20, 12},
                                         {24, 20}, {28, 24}, {32, 32}, {1, 1},  {6, 9},  {17, 7},  {64, 64}};
const std::vector<shape> sad_shapes = {{8, 1},   {8, 8},  {8, 13}, {8, 257}, {16, 8},
                                       {16, 15}, {12, 8}, {0, 3},  {16, 600}};
const std::vector<shape> ssd_shapes = {{4, 1},  {4, 4},  {4, 9},   {8, 4},  {8, 7},  {16, 4}, {16, 13}, {32, 2},
                                       {32, 5}, {64, 1}, {64, 64}, {12, 1}, {-1, 2}, {9, 3},  {32, 32}, {16, 16}};
const std::vector<shape> ssd_16_shapes = {{4, 2},  {4, 4},  {4, 3},  {4, -5}, {8, 2},   {8, 8},
                                          {8, 4},  {8, 0},  {16, 2}, {16, 4}, {16, 16}, {16, 5},
                                          {32, 2}, {32, 9}, {64, 1}, {64, 7}, {5, 4},   {0, 9}};
}  // namespace

std::vector<kernel> metric_kernels() {
    table t;
    // clang-format off
#define SAD(W, H) t.metric("zelt_sad" #W "x" #H, zelt_sad##W##x##H, bytes, {W, H}, sad_model); \
                  t.metric("zelt_sad" #W "x" #H "_16", zelt_sad##W##x##H##_16, words, {W, H}, sad_model);
#define SAD_MIXED(W, H) SAD(W, H) t.metric("zelt_sad" #W "x" #H "_bi", zelt_sad##W##x##H##_bi, mixed, {W, H}, sad_model); \
                  t.metric("zelt_sad" #W "x" #H "_bi_16", zelt_sad##W##x##H##_bi_16, words, {W, H}, sad_model);
    SAD(2, 2) SAD(2, 4) SAD(4, 2) SAD(4, 4)
    SAD_MIXED(4, 8) SAD_MIXED(8, 4) SAD_MIXED(8, 8) SAD_MIXED(8, 16) SAD_MIXED(16, 8) SAD_MIXED(16, 16)
    SAD_MIXED(16, 32) SAD_MIXED(32, 16) SAD_MIXED(32, 32) SAD_MIXED(32, 64) SAD_MIXED(64, 32) SAD_MIXED(64, 64)
#define DIFF_16(W, H) t.diff("zelt_diff" #W "x" #H "_16", zelt_diff##W##x##H##_16, words, {W, H});
#define DIFF(W, H) t.diff("zelt_diff" #W "x" #H, zelt_diff##W##x##H, bytes, {W, H}); DIFF_16(W, H)
    DIFF(2, 2) DIFF(2, 4) DIFF(4, 2) DIFF(4, 4) DIFF(4, 8) DIFF(8, 4) DIFF(8, 8) DIFF(8, 16) DIFF(16, 8) DIFF(16, 16)
    DIFF(16, 32) DIFF(32, 16) DIFF(32, 32) DIFF(32, 64) DIFF(64, 32) DIFF(64, 64)
    DIFF_16(2, 8) DIFF_16(4, 16) DIFF_16(8, 32) DIFF_16(16, 64)
#undef SAD
#undef SAD_MIXED
#undef DIFF
#undef DIFF_16
        // clang-format on
        t.diff("zelt_diff4x4_bi", zelt_diff4x4_bi, mixed, {4, 4});
    t.diff("zelt_diff4x4_bi_16", zelt_diff4x4_bi_16, words, {4, 4});
    t.generic_diff("zelt_diff", zelt_diff, bytes, any_shapes);
    t.generic_diff("zelt_diff_16", zelt_diff_16, words, any_shapes);

    t.metric("zelt_satd4x4", zelt_satd4x4, bytes, {4, 4}, satd_model);
    t.metric("zelt_satd4x4_16", zelt_satd4x4_16, words, {4, 4}, satd_model);
    t.metric("zelt_satd4x4_bi", zelt_satd4x4_bi, mixed, {4, 4}, satd_model);
    t.metric("zelt_satd4x4_bi_16", zelt_satd4x4_bi_16, words, {4, 4}, satd_model);
    t.metric("zelt_satd8x8", zelt_satd8x8, bytes, {8, 8}, satd8x8_model);
    t.metric("zelt_satd8x8_16", zelt_satd8x8_16, unsigned_words, {8, 8}, satd8x8_model);
    t.metric("zelt_satd8x8_bi", zelt_satd8x8_bi, mixed, {8, 8}, satd8x8_model);
    t.metric("zelt_satd8x8_bi_16", zelt_satd8x8_bi_16, words, {8, 8}, satd8x8_model);

    const area tiles = [](shape s) { return shape{(s.w + 3) / 4 * 4, (s.h + 3) / 4 * 4}; };
    t.generic("zelt_satd", zelt_satd, bytes, tiled_shapes, tiles, satd_model);
    t.generic("zelt_satd_16", zelt_satd_16, words, tiled_shapes, tiles, satd_model);

    t.generic(
        "zelt_sad", zelt_sad, bytes, sad_shapes,
        [](shape s) {
            return shape{s.w == 8 ? 8 : 16, s.h};
        },
        sad_model);
    t.generic("zelt_sad_16", zelt_sad_16, words, any_shapes, same, sad_model);
    t.generic(
        "zelt_ssd", zelt_ssd, bytes, ssd_shapes,
        [](shape s) {
            const bool listed = s.w == 4 || s.w == 8 || s.w == 16 || s.w == 32;
            return shape{listed ? s.w : 64, s.h};
        },
        ssd_model);
    t.generic(
        "zelt_ssd_16", zelt_ssd_16, words, ssd_16_shapes,
        [](shape s) {
            if (s.w == 16 || s.w == 32 || s.w == 64) return s;
            const int side = s.w == 8 ? 8 : 4;
            return shape{side, s.h == side ? side : 2};
        },
        ssd_model);

    // The stored residual of zelt_hadamard4x4 is a block whose rows lie together, against one of zeros.
    for (const range& r : {range{"", -255, 255}, range{" full", -32768, 32767}})
        t.rows.push_back({std::string("zelt_hadamard4x4") + r.name, reinterpret_cast<function>(zelt_hadamard4x4),
                          std::vector<shape>(8, {16, 1}),
                          [=](shape s) {
                              return std::vector<operand>{{s.w, s.h, 2, r.low, r.high}};
                          },
                          [](function f, shape, const view* v) {
                              return static_cast<u64>(reinterpret_cast<decltype(&zelt_hadamard4x4)>(f)(
                                  reinterpret_cast<const s16*>(v[0].p)));
                          },
                          [](shape, const view* v) {
                              u8 zeros[16] = {};
                              const view block[] = {{v[0].p, 8}, {zeros, 4}};
                              return satd_model(mixed, {4, 4}, block);
                          },
                          true});
    t.add(
        "zelt_sad_eskip", reinterpret_cast<function>(zelt_sad_eskip), bytes,
        {{4, 1}, {4, 7}, {8, 8}, {12, 6}, {16, 16}, {20, 5}, {32, 9}, {64, 64}, {7, 6}, {1, 4}, {100, 13}}, same, false,
        [](function f, shape s, const view* v) {
            const strides n(bytes, v, false);
            u64 all = 0;
            for (const int threshold : thresholds(s))
                all = all * 1000003 + static_cast<u64>(reinterpret_cast<decltype(&zelt_sad_eskip)>(f)(
                                          s.w, s.h, v[0].p, v[1].p, n.a, n.b, threshold));
            return all;
        },
        eskip_model);
    return t.rows;
}

// A vector form may do the usual range only and must notice what lies beyond: one pair of samples at the limits of the
// ranges, anywhere in a block that else stays below them.
TEST(metrics, single_large_difference) {
    const std::pair<int, int> pairs[] = {
        {4095, 0},       {0, 4096},    {4096, -1},      {16384, -16383}, {32766, 0},  {32767, 0},      {32767, -1},
        {32767, -2},     {-32768, 0},  {-32768, 1},     {-32768, 32767}, {-32768, 2}, {32767, -32768}, {32766, -32768},
        {-32767, 32767}, {-2, -32768}, {-32768, -4097}, {23170, -1},     {-4096, 0},  {255, -32768}};
    std::mt19937 random(1);
    for (const kernel& k : metric_kernels()) {
        const shape s = k.shapes.back();
        const std::vector<operand> operands = k.operands(s);
        if (operands[0].element != 2 || k.name.find(' ') != std::string::npos || operands.size() > 2) continue;
        std::vector<std::vector<u8>> memory;
        std::vector<view> views;
        for (const operand& o : operands) memory.emplace_back(static_cast<std::size_t>(o.width * o.rows * o.element));
        for (std::size_t i = 0; i < operands.size(); ++i)
            views.push_back({memory[i].data(), operands[i].width * operands[i].element});
        const auto put = [&](std::size_t operand, int place, int value) {
            u8* p = memory[operand].data() + place * operands[operand].element;
            p[0] = static_cast<u8>(value);
            if (operands[operand].element == 2) p[1] = static_cast<u8>(value >> 8);
        };
        const int places = operands[0].width * operands[0].rows;
        for (const auto& [a, b] : pairs)
            for (int round = 0; round < 4; ++round) {
                const int limit = round % 2 ? 4095 : 255;
                for (std::size_t i = 0; i < operands.size(); ++i)
                    for (int place = 0; place < places; ++place)
                        put(i, place, operands[i].element == 2 ? static_cast<int>(random()) & limit : random() & 255);
                const int place = static_cast<int>(random() % static_cast<unsigned>(places));
                put(0, place, a);
                if (operands.size() == 2) put(1, place, b);
                ASSERT_EQ(k.call(k.exported, s, views.data()), k.model(s, views.data()))
                    << k.name << ", " << a << " against " << b << " at " << place;
            }
    }
}

TEST(metrics, known_values) {
    const std::vector<u8> black(64 * 64, 0), white(64 * 64, 255);
    EXPECT_EQ(zelt_sad64x64(white.data(), black.data(), 64, 64), 1044480u);
    EXPECT_EQ(zelt_ssd(4, 4, black.data(), white.data(), 64, 64), 1040400u);
    EXPECT_EQ(zelt_sad(12, 8, white.data(), black.data(), 64, 64), 16u * 8 * 255);
    EXPECT_EQ(zelt_ssd(12, 1, white.data(), black.data(), 64, 64), 64u * 65025);
    EXPECT_EQ(zelt_sad_eskip(16, 16, white.data(), black.data(), 64, 64, 0), 16 * 255);
    EXPECT_EQ(zelt_sad_eskip(16, 16, white.data(), black.data(), 64, 64, 16 * 255), 2 * 16 * 255);

    const std::vector<s16> zeros(64, 0), twelve_bits(64, 4095), minus(64, -1), ones(64, 1);
    EXPECT_EQ(zelt_sad8x8_16(twelve_bits.data(), zeros.data(), 8, 8), 262080u);
    EXPECT_EQ(zelt_sad8x8_bi_16(twelve_bits.data(), zeros.data(), 8, 8), 262080u);
    EXPECT_EQ(zelt_sad8x8_bi(minus.data(), black.data(), 8, 64), 64u);
    EXPECT_EQ(zelt_ssd_16(4, 3, ones.data(), zeros.data(), 8, 8), 8u);
    EXPECT_EQ(zelt_hadamard4x4(ones.data()), 8);
    EXPECT_EQ(zelt_satd8x8_bi_16(ones.data(), zeros.data(), 8, 8), 16);
    std::vector<s16> single(64, 0);
    single[5] = 1;
    EXPECT_EQ(zelt_hadamard4x4(single.data()), 8);
    EXPECT_EQ(zelt_satd8x8_16(single.data(), zeros.data(), 8, 8), 16);
    single[5] = 3;
    EXPECT_EQ(zelt_satd8x8_bi(single.data(), black.data(), 8, 64), 48);

    s16 d[16];
    zelt_diff4x4_bi(minus.data(), white.data(), 8, 64, 4, d);
    EXPECT_EQ(d[0], -256);
    const s16 high[4] = {32767, 0, 0, 0}, low[4] = {-32768, 0, 0, 0};
    zelt_diff2x2_16(high, low, 2, 2, 2, d);
    EXPECT_EQ(d[0], -1);
}

// Reads nothing, so that null will do.
TEST(metrics, sizes_below_one) {
    const u8* none = nullptr;
    const s16* none_16 = nullptr;
    for (const int n : {0, -1, INT_MIN}) {
        for (const shape s : {shape{16, n}, shape{8, n}}) {
            EXPECT_EQ(zelt_sad(s.w, s.h, none, none, 8, 8), 0u);
            EXPECT_EQ(zelt_ssd(s.w, s.h, none, none, 8, 8), 0u);
        }
        EXPECT_EQ(zelt_ssd_16(16, n, none_16, none_16, 8, 8), 0u);
        for (const shape s : {shape{16, n}, shape{n, 16}, shape{n, n}}) {
            EXPECT_EQ(zelt_sad_16(s.w, s.h, none_16, none_16, 8, 8), 0u);
            EXPECT_EQ(zelt_sad_eskip(s.w, s.h, none, none, 8, 8, -1), 0);
            EXPECT_EQ(zelt_satd(s.w, s.h, none, none, 8, 8), 0);
            EXPECT_EQ(zelt_satd_16(s.w, s.h, none_16, none_16, 8, 8), 0);
            zelt_diff(s.w, s.h, none, none, 8, 8, 8, nullptr);
            zelt_diff_16(s.w, s.h, none_16, none_16, 8, 8, 8, nullptr);
        }
    }
}

TEST(metrics, second_names) {
    using kernel_16 = decltype(&zelt_sad4x8_16);
    // through volatile, as a compiler may take two names for two functions
    volatile kernel_16 pairs[][2] = {{zelt_sad4x8_16, zelt_sad4x8_bi_16},     {zelt_sad8x4_16, zelt_sad8x4_bi_16},
                                     {zelt_sad8x16_16, zelt_sad8x16_bi_16},   {zelt_sad16x8_16, zelt_sad16x8_bi_16},
                                     {zelt_sad16x32_16, zelt_sad16x32_bi_16}, {zelt_sad32x16_16, zelt_sad32x16_bi_16},
                                     {zelt_sad32x64_16, zelt_sad32x64_bi_16}};
    for (auto& pair : pairs) {
        const kernel_16 first = pair[0], second = pair[1];
        EXPECT_EQ(first, second);
    }
}
}  // namespace zelt::test
