// SPDX-License-Identifier: MIT
// Runs every kernel of the registry against its model: on fills that reach the extremes, with odd strides and
// addresses, pressed against inaccessible pages. All memory around the blocks, and the inputs, must be as they were.
// What the kernels of a family give, and which cases they run, is also digested: it must be the same on all targets.
#include "kernels/guarded.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <memory>

namespace zelt::test {
namespace {
constexpr u64 default_seed = 1;
long cases_run = 0;

u64 seed_in_use() {
    const char* text = std::getenv("ZELT_TEST_SEED");
    return text ? std::strtoull(text, nullptr, 0) : default_seed;
}

/// Xorshift: most of a run's time goes into random bytes, on emulated 32-bit processors too.
class generator {
public:
    explicit generator(u64 seed) : state_(static_cast<u32>(seed) * 0x9E3779B1 | 1) {}
    u32 operator()() {
        state_ ^= state_ << 13, state_ ^= state_ >> 17, state_ ^= state_ << 5;
        return state_;
    }
    int below(int n) { return static_cast<int>(u64{(*this)()} * static_cast<u32>(n) >> 32); }

private:
    u32 state_;
};

struct digest {  // FNV-1a, 64 bits
    u64 value = 0xCBF29CE484222325;

    void add(const void* p, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) value = (value ^ static_cast<const u8*>(p)[i]) * 0x100000001B3;
    }
};

enum class fill { low, high, opposed, extremes, small, random, single };
constexpr fill fills[] = {fill::low,   fill::high,   fill::opposed, fill::extremes,
                          fill::small, fill::random, fill::single};
constexpr const char* fill_names[] = {"low", "high", "opposed", "extremes", "small", "random", "single"};

enum class placement { at_start, at_end, upside_down, one_row, some_one_row };
constexpr placement placements[] = {placement::at_start, placement::at_end, placement::upside_down, placement::one_row};
constexpr const char* placement_names[] = {"after a guard page", "before a guard page", "with a negative stride",
                                           "with a stride of 0", "some of them with a stride of 0"};

/// The sample of an operand's place under a fill
int sample(fill f, const operand& o, int index, generator& random) {
    const auto between = [&](int low, int high) { return low + random.below(high - low + 1); };
    switch (f) {
    case fill::low: return o.low;
    case fill::high: return o.high;
    case fill::opposed: return index % 2 ? o.low : o.high;
    case fill::extremes: return random() & 1 ? o.low : o.high;
    case fill::small: return between(std::max(o.low, -2), std::min(o.high, std::max(o.low, -2) + 4));
    default: return between(o.low, o.high);
    }
}

/// An operand's memory: the block between random bytes, and a second copy of all for the model
struct placed {
    operand what;
    std::unique_ptr<guarded_memory> memory;
    std::vector<u8> copy;
    std::size_t used, offset;
    view block, model_block;

    void place(const operand& o, placement where, int pad, generator& random) {
        what = o;
        const std::size_t row = static_cast<std::size_t>(o.width * o.element);
        const std::size_t stride = row + static_cast<std::size_t>(pad * o.element);
        // rows that are written must not lie on each other
        const bool one_row = where == placement::one_row && !o.written;
        const std::size_t extent = one_row ? row : stride * static_cast<std::size_t>(o.rows - 1) + row;
        constexpr std::size_t margin = 128;
        used = extent + margin;
        if (!memory || memory->size() < used) memory = std::make_unique<guarded_memory>(used);
        u8* start = where == placement::at_start ? memory->start() : memory->start() + memory->size() - used;
        offset = where == placement::at_start ? 0 : margin;
        for (std::size_t i = 0; i < used; ++i) start[i] = static_cast<u8>(random());
        block = {start + offset, static_cast<std::ptrdiff_t>(stride)};
        if (where == placement::upside_down) {
            block.p += stride * static_cast<std::size_t>(o.rows - 1);
            block.stride = -block.stride;
        }
        if (one_row) block.stride = 0;
    }
    void put(int x, int y, int value) {
        u8* at = block.p + y * block.stride + x * what.element;
        at[0] = static_cast<u8>(value);
        if (what.element == 2) at[1] = static_cast<u8>(value >> 8);
    }
    void put(fill f, int index, generator& random) {
        const fill background = f == fill::single ? fill::small : f;
        for (int y = 0; y < what.rows; ++y)
            for (int x = 0; x < what.width; ++x) put(x, y, sample(background, what, index, random));
        if (f != fill::single) return;
        const int x = random.below(what.width);
        const int y = random.below(what.rows);
        put(x, y, sample(fill::extremes, what, index, random));
    }
    u8* start() const { return (block.stride < 0 ? block.p + (what.rows - 1) * block.stride : block.p) - offset; }
    void copy_for_model() {
        copy.assign(start(), start() + used);
        model_block = {copy.data() + (block.p - start()), block.stride};
    }
};

class family_test : public testing::Test {
public:
    family_test(std::string name, std::vector<kernel> kernels) : name_(std::move(name)), kernels_(std::move(kernels)) {}

    void TestBody() override {
        digest results;
        for (const kernel& k : kernels_) {
            generator random(seed_in_use());
            const u8 flags[] = {k.block, k.in_order};
            results.add(k.name.data(), k.name.size());
            results.add(flags, sizeof flags);
            check(k, random, results);
        }
        if (seed_in_use() == default_seed && effort() > 0 && !HasFailure()) compare_digest(results.value);
    }

private:
    /// All cases of a kernel, up to the first that fails; with little effort each fill in one place, which is another
    /// for the next fill and for the next shape
    void check(const kernel& k, generator& random, digest& results) {
        const int places = k.block ? 4 : 3;
        int turn = 0;
        for (const shape s : k.shapes) {
            for (const fill f : fills)
                for (const placement where : placements) {
                    if (!k.block && (f == fill::single || where == placement::one_row)) continue;
                    const bool chosen = (static_cast<int>(f) + turn) % places == static_cast<int>(where);
                    if ((chosen || effort() > 0) && !passes(k, s, f, where, random, results)) return;
                }
            ++turn;
        }
        // Pictures whose planes repeat one row, each by itself: once a shape.
        for (const shape s : k.shapes)
            if (!k.block && reads_rows(k.operands(s)) &&
                !passes(k, s, fill::random, placement::some_one_row, random, results))
                return;
    }

    /// Whether any operand that is read has several rows
    static bool reads_rows(const std::vector<operand>& all) {
        return std::any_of(all.begin(), all.end(), [](const operand& o) { return !o.written && o.rows > 1; });
    }

    bool passes(const kernel& k, shape s, fill f, placement where, generator& random, digest& results) {
        const std::string problem = run(k, s, f, where, random, results);
        ++cases_run;
        if (!problem.empty())
            ADD_FAILURE() << problem << "\n  " << k.name << " " << s.w << "x" << s.h << ", fill "
                          << fill_names[static_cast<int>(f)] << ", " << placement_names[static_cast<int>(where)]
                          << ", ZELT_TEST_SEED=" << seed_in_use();
        return problem.empty();
    }

    std::string run(const kernel& k, shape s, fill f, placement where, generator& random, digest& results) {
        const std::vector<operand> operands = k.operands(s);
        std::vector<view> views, model_views;
        memory_.resize(operands.size());
        for (std::size_t i = 0; i < operands.size(); ++i) {
            placement here = where;
            if (where == placement::some_one_row) here = random.below(2) ? placement::one_row : placement::at_end;
            memory_[i].place(operands[i], here, random.below(20), random);
            memory_[i].put(f, static_cast<int>(i), random);
            memory_[i].copy_for_model();
            views.push_back(memory_[i].block);
            model_views.push_back(memory_[i].model_block);
        }
        u64 result = 0;
        if (!survives([&] { result = k.call(k.exported, s, views.data()); })) return "memory fault";
        const u64 expected = k.model(s, model_views.data());
        if (result != expected) return "result " + std::to_string(result) + ", not " + std::to_string(expected);
        results.add(&result, sizeof result);
        for (std::size_t i = 0; i < memory_.size(); ++i) {
            const placed& m = memory_[i];
            if (const std::string problem = difference(m); !problem.empty())
                return "operand " + std::to_string(i) + problem;
            if (m.what.written)
                for (int y = 0; y < m.what.rows; ++y)
                    results.add(m.block.p + y * m.block.stride,
                                static_cast<std::size_t>(m.what.width * m.what.element));
        }
        return {};
    }

    static std::string difference(const placed& m) {
        const auto [ours, theirs] = std::mismatch(m.copy.begin(), m.copy.end(), m.start());
        if (ours == m.copy.end()) return m.memory->is_intact() ? "" : ": memory beyond the guards is not as it was";
        return ": byte " + std::to_string(theirs - m.block.p) + " (stride " + std::to_string(m.block.stride) + ") is " +
               std::to_string(*theirs) + ", not " + std::to_string(*ours);
    }

    void compare_digest(u64 value) {
        if (const char* path = std::getenv("ZELT_WRITE_GOLDEN")) {
            std::ofstream(path, std::ios::app) << std::hex << value << ' ' << name_ << '\n';
            return;
        }
        std::ifstream list(ZELT_GOLDEN_FILE);
        u64 golden = 0;
        for (std::string name; name != name_ && list;) list >> std::hex >> golden >> name;
        EXPECT_TRUE(list && value == golden)
            << std::hex << value << ": other bytes than on other targets, or other cases";
    }

    std::string name_;
    std::vector<kernel> kernels_;
    std::vector<placed> memory_;
};

class case_count : public testing::Environment {
    void TearDown() override { std::cout << "kernel cases: " << cases_run << '\n'; }
};
}  // namespace

/// "sad" of zelt_sad_16, "csc_rsz" of the fused converters, "video10" of decoder layouts of 10 bits, "video_back" of
/// those from RGB
std::string family_of(const std::string& name) {
    if (name.starts_with("zelt_video_convert back")) return "video_back";
    if (name.starts_with("zelt_csc_rsz")) return "csc_rsz";
    if (name.starts_with("zelt_video_convert 10 bits")) return "video10";
    return name.substr(5, name.find_first_of(" _0123456789", 5) - 5);
}

void register_kernel_tests() {
    std::map<std::string, std::vector<kernel>> families;
    for (kernel& k : all_kernels()) families[k.family.empty() ? family_of(k.name) : k.family].push_back(std::move(k));
    for (const auto& family : families)
        testing::RegisterTest("kernels", family.first.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                              [=]() -> testing::Test* { return new family_test(family.first, family.second); });
    testing::AddGlobalTestEnvironment(new case_count);
}
}  // namespace zelt::test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    zelt::test::register_kernel_tests();
    return RUN_ALL_TESTS();
}
