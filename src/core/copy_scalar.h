#pragma once  // copies of memory that does not overlap
#include "core/types.h"

#include <cstring>

namespace zelt::scalar {
inline void copy(u8* dst, const u8* src, s64 n) {
    if (n > 0) std::memcpy(dst, src, static_cast<std::size_t>(n));
}

/// Copies N bytes; the compiler lays them out.
template <int N> void copy_fixed(u8* dst, const u8* src) { std::memcpy(dst, src, N); }
}  // namespace zelt::scalar
