// SPDX-License-Identifier: MIT
#pragma once  // the node of lists and pools: two links, then the element
#include "core/types.h"
#include "zelt/common.h"

#include <cstdlib>

namespace zelt {
inline ZELT_NODE* new_node(u32 size) {
    const std::size_t bytes = sizeof(ZELT_NODE) + size;
    return bytes < size ? nullptr : static_cast<ZELT_NODE*>(std::malloc(bytes));  // on 32-bit targets the sum can wrap
}

inline void* data_of(ZELT_NODE* node) { return node + 1; }
}  // namespace zelt
