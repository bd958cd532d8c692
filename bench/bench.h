// SPDX-License-Identifier: MIT
#pragma once
// The frame of the benchmark (main.cpp) and of the instruction counter (count.cpp). A row of a table has
// candidates that do the same work: `zelt` (the library as linked), `scalar` (the same exports of the build without
// vector forms, for the benchmark) and peers (other libraries).
//
// How a family joins:
// - Its kernels get rows with `zelt` and `scalar` by themselves: set kernel::timed in the test registry.
// - A peer works on the memory of such a row: add_peer() in peers/<family>_<library>.cpp, which CMakeLists.txt builds
//   where the library is found. Its result is compared with ours before anything is timed.
// - Other work (a whole resize, a parser) is a row of its own: add_row() in <family>.cpp, with a candidate for each of
//   libraries(); add_candidate() in a peer's file adds to it.
// - All of these are called before main: `const bool added = add_row(...);` at namespace scope.
// - Bars and the reasons for lost rows stand in bars/<family>.txt (<family>_instructions.txt for the counter), the
// table
//   between the markers <!-- bench:<family> --> (<!-- instructions:<family> -->) and <!-- /bench --> of
//   docs/performance.md. A kernel's family is the word after zelt_.
#include "kernels/kernel.h"

#include <utility>

namespace zelt::bench {
using namespace zelt::test;

/// Whether this is the instruction counter: what is counted once in an emulator can be little.
#ifdef ZELT_COUNT
constexpr bool counting = true;
#else
constexpr bool counting = false;
#endif

struct candidate {
    std::string name;           // "zelt", "scalar", or the other library and its function
    std::function<void()> run;  // the work once; a microsecond or more, or the loop around it shows
};

/// A build of ours
struct library {
    const char* name;
    void* handle = nullptr;

    /// An export; the program ends where there is none.
    function find(const std::string& export_name) const;
    /// The same by type and name, as in find<decltype(zelt_version)>("zelt_version")
    template <class F> F* find(const char* export_name) const {
        return reinterpret_cast<F*>(find(std::string(export_name)));
    }
};
const std::vector<library>& libraries();

/// What any code for a run does, of which limits.cpp tells how fast this processor is at most; 0 where none is told
struct work {
    double read = 0, written = 0;  // bytes
    double steps = 0;              // operations, each of which waits for the one before
    double footprint = 0;          // bytes that a run goes over, which says in which memory they are
};

struct row {
    std::string family, name;  // the table, and the line of it; the name holds no "/"
    std::string unit;          // what times are given for: "pixel", "block", "byte"
    double units;              // how many of them a run does
    /// Called when the row's turn comes; what the candidates hold is freed after it.
    std::function<std::vector<candidate>()> prepare;
    bench::work work = {};
};
/// Of all files, in no order that matters
const std::vector<row>& rows();
/// What its prepare() gives, and what others added to it
std::vector<candidate> candidates_of(const row& r);

bool add_row(row r);
bool add_candidate(const std::string& family, const std::string& row_name, std::function<candidate()> prepare);

/// Rows for all of the registry. Called by main, since the registry has tables of its own to set up first.
void add_kernel_rows();

/// Says that a candidate gives wrong results. The caller leaves it out, and the program fails at its end.
void reject(const std::string& row_name, const std::string& candidate_name);
/// Whether nothing was rejected
bool all_right();

// ---------------------------------------------------------------------------------------------------- peers of kernels

/// Whether a row of samples is near enough to ours
using comparison = bool (*)(const u8* ours, const u8* theirs, int bytes);
template <int tolerance> bool bytes_within(const u8* ours, const u8* theirs, int bytes) {
    for (int i = 0; i < bytes; ++i)
        if (ours[i] - theirs[i] > tolerance || theirs[i] - ours[i] > tolerance) return false;
    return true;
}
/// Fields of RGB565 words of samples that differ by up to 2
inline bool fields_within_1(const u8* ours, const u8* theirs, int bytes) {
    for (int i = 0; i < bytes; i += 2) {
        const int a = ours[i] | ours[i + 1] << 8, b = theirs[i] | theirs[i + 1] << 8;
        for (const auto& [at, mask] : {std::pair{11, 31}, {5, 63}, {0, 31}})
            if (const int d = (a >> at & mask) - (b >> at & mask); d > 1 || d < -1) return false;
    }
    return true;
}
/// For a peer that does the same amount of work with other constants
inline bool not_compared(const u8*, const u8*, int) { return true; }

struct picture_peer {
    std::string name;
    comparison near_enough;
    std::function<void(shape, const view*)> run;  // on the kernel's own operands
};

/// What a row of block kernels visits
struct blocks {
    static constexpr int candidates = 16;  // that follow one another and belong to one block of a

    shape size;
    const u8 *a, *b;
    int a_element, b_element;                 // bytes per sample
    int a_stride, b_stride, d_stride;         // samples
    s16* d;                                   // where differences go
    std::vector<std::pair<int, int>> places;  // pairs of blocks, as samples from the start of either plane

    /// Sum of f(block of a, block of b) over all places
    template <class F> u64 visit(F f) const {
        u64 sum = 0;
        for (const auto& [from_a, from_b] : places)
            sum += static_cast<u32>(f(a + static_cast<std::ptrdiff_t>(from_a) * a_element,
                                      b + static_cast<std::ptrdiff_t>(from_b) * b_element));
        return sum;
    }
};

/// Does all places in one run, so that only direct calls are between the kernels. Must be exact.
struct block_peer {
    std::string name;
    std::function<u64(const blocks&)> run;
    bool aligned = false;  // takes no other blocks: both start at multiples of 16 samples
};

/// Both take the kernel's name in the registry.
bool add_peer(const std::string& kernel, picture_peer p);
bool add_peer(const std::string& kernel, block_peer p);

/// A peer of the signature that video coders give these kernels
inline block_peer pair_peer(std::string name, int (*f)(const void*, std::intptr_t, const void*, std::intptr_t)) {
    return {std::move(name), [f](const blocks& k) {
                return k.visit([&](const u8* a, const u8* b) { return f(a, k.a_stride, b, k.b_stride); });
            }};
}
}  // namespace zelt::bench
