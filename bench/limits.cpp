// SPDX-License-Identifier: MIT
// What this processor does at most, measured in the run that the rows are measured in: bytes that it loads and stores
// in each of its memories, and operations that wait for one another.
#include "bench.h"

#include <cstdlib>
#include <cstring>
#include <memory>

namespace zelt::bench {
namespace {
#if defined(__x86_64__) && !defined(ZELT_COUNT)
constexpr std::size_t step = 256;  // bytes a turn

#define ZELT_EIGHT_TIMES(X) X(0) X(32) X(64) X(96) X(128) X(160) X(192) X(224)
#define ZELT_LOAD(at) "vmovdqa " #at "(%0), %%ymm0\n\t"
#define ZELT_STORE(at) "vmovdqa %%ymm0, " #at "(%0)\n\t"
void load(u8* p, const u8* end) {
    for (; p < end; p += step) asm volatile(ZELT_EIGHT_TIMES(ZELT_LOAD) : : "r"(p) : "xmm0", "memory");
    asm volatile("vzeroupper");
}
void store(u8* p, const u8* end) {
    for (; p < end; p += step) asm volatile(ZELT_EIGHT_TIMES(ZELT_STORE) : : "r"(p) : "memory");
    asm volatile("vzeroupper");
}

/// Additions of registers: those of constants may be done before they are executed.
#define ZELT_ADD(at) "add %1, %0\n\t"
constexpr int additions = 1 << 14;
void chain() {
    u64 sum = 0;
    for (int i = 0; i < additions; i += 8) asm volatile(ZELT_EIGHT_TIMES(ZELT_ADD) : "+r"(sum) : "r"(u64{3}));
}

void add_transfers(const char* name, void (*transfer)(u8*, const u8*)) {
    for (const int bytes : {1 << 14, 1 << 17, 1 << 20, 1 << 22, 1 << 23, 1 << 25})
        add_row({"limit", std::string(name) + ' ' + std::to_string(bytes), "byte", static_cast<double>(bytes),
                 [=]() -> std::vector<candidate> {
                     std::shared_ptr<u8> memory(
                         static_cast<u8*>(std::aligned_alloc(step, static_cast<std::size_t>(bytes))), std::free);
                     std::memset(memory.get(), 1, static_cast<std::size_t>(bytes));
                     return {{"processor", [=] { transfer(memory.get(), memory.get() + bytes); }}};
                 }});
}

const bool added = [] {
    if (!__builtin_cpu_supports("avx2")) return false;
    add_transfers("load", load);
    add_transfers("store", store);
    return add_row({"limit", "step", "step", additions, []() -> std::vector<candidate> {
                        return {{"processor", chain}};
                    }});
}();
#endif
}  // namespace
}  // namespace zelt::bench
