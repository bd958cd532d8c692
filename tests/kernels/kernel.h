// SPDX-License-Identifier: MIT
#pragma once
// The registry of kernels: what a kernel reads and writes, how to call it, and a model of it. The checker and the
// benchmark walk it.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

namespace zelt::test {
using u8 = std::uint8_t;
using u16 = std::uint16_t;
using s16 = std::int16_t;
using u32 = std::uint32_t;
using u64 = std::uint64_t;

/// Any exported function; `kernel::call` knows the true type.
using function = void (*)();

/// Size of a picture or block, in what unit the kernel takes.
struct shape {
    int w, h;
};

/// A block of memory that a kernel may touch: `rows` rows of `width` samples.
struct operand {
    int width, rows;
    int element = 1;                                  // bytes per sample, 1 or 2
    int low = 0, high = element == 2 ? 0xffff : 255;  // range of the samples that the checker puts there
    bool written = false;                             // part of the result, and of its digest
};

/// Where an operand lies.
struct view {
    u8* p;
    std::ptrdiff_t stride;  // bytes from row to row, a multiple of the element size
};

/// How the benchmark times a kernel, which follows from its signature
enum class timing {
    none,
    picture,          // through kernel::call, over whole pictures
    pair,             // u32 f(a, b, sa, sb): two blocks as a motion search picks them, of the kernel's first shape
    sized_pair,       // u32 f(w, h, a, b, sa, sb): likewise
    early_exit,       // int f(w, h, a, b, sa, sb, threshold): likewise, against the least of the block before
    residual,         // u32 f(const s16* d)
    difference,       // void f(a, b, sa, sb, sd, s16* d): likewise, with a third block that is written
    sized_difference  // void f(w, h, a, b, sa, sb, sd, s16* d)
};

/// A function with a result, 0 where what it is made from has none
template <class... A> struct with_result : std::function<u64(A...)> {
    template <class F>
    with_result(F f)
        : std::function<u64(A...)>([f](A... a) -> u64 {
              if constexpr (!std::is_void_v<std::invoke_result_t<F, A...>>) return static_cast<u64>(f(a...));
              f(a...);
              return 0;
          }) {}
};

struct kernel {
    std::string name;  // the exported name, with what else tells rows of one export apart after a blank
    function exported;
    std::vector<shape> shapes;  // what the checker runs
    std::function<std::vector<operand>(shape)> operands;
    with_result<function, shape, const view*> call;
    with_result<shape, const view*> model;  // the same from the documentation alone, in plain C++
    timing timed = timing::none;
    bool block = false;     // not pictures but blocks: any stride, zero too, and single samples that stand out
    bool in_order = false;  // pixel by pixel, so that source and destination may share memory

    /// What is counted of kernels that the benchmark times in other ways: the table, and shapes of its rows
    struct {
        const char* family;
        std::vector<shape> shapes;
        bool pictures = false;  // and whether it is for pixels, or else for bytes
    } counted = {};

    std::string family = {};  // of the digest, where the name does not say it
};

std::vector<kernel> converter_kernels();
std::vector<kernel> high_depth_kernels();
std::vector<kernel> memory_kernels();
std::vector<kernel> metric_kernels();
std::vector<kernel> resize_kernels();
std::vector<kernel> video_kernels();
std::vector<kernel> video_place_kernels();

/// All rows of all families.
std::vector<kernel> all_kernels();

/// Every width that ends at, before or after a register or two, and some between.
std::vector<shape> picture_shapes();

/// How much is run, of the environment's ZELT_TEST_EFFORT: everything with 2, not all of 2^24 inputs with 1, and with 0
/// a third of the cases of each shape too.
inline int effort() {
    const char* text = std::getenv("ZELT_TEST_EFFORT");
    return text ? std::atoi(text) : 2;
}
}  // namespace zelt::test
