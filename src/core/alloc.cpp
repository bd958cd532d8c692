// SPDX-License-Identifier: MIT
// Blocks aligned to 32 bytes, each preceded by a word with the address that malloc returned.
#include "core/types.h"
#include "zelt/mem.h"

#include <cstdlib>

using namespace zelt;

namespace {
constexpr std::size_t overhead = 36;  // 31 bytes of rounding and room for a 32-bit pointer
}

extern "C" void* zelt_malloc_align32(uint32_t size) {
    const std::size_t padded = std::size_t{size} + overhead;
    void* raw = padded < size ? nullptr : std::malloc(padded);  // on 32-bit targets the sum can wrap
    if (!raw) return nullptr;
    // malloc aligns to 8 at least, so the block starts 8 or more past raw: a 64-bit pointer fits as well.
    void** block =
        reinterpret_cast<void**>((reinterpret_cast<std::uintptr_t>(raw) + overhead - 1) & ~std::uintptr_t{31});
    block[-1] = raw;
    return block;
}

extern "C" void zelt_mfree_align32(void* p) {
    if (p) std::free(static_cast<void**>(p)[-1]);
}

extern "C" {
ZELT_ALIAS(zelt_malloc_fast_align32, zelt_malloc_align32);
ZELT_ALIAS(zelt_mfree_fast_align32, zelt_mfree_align32);
}
