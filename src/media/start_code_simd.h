// SPDX-License-Identifier: MIT
#pragma once  // start codes in whole registers
#include "media/start_code_scalar.h"
#include "simd/vocabulary.h"

namespace zelt::inline ZELT_LEVEL::simd {
constexpr s32 places = 4 * lanes;

template <class Kind> bool is_start_among(const u8* p) {
    u8xn found{};
    for (s32 i = 0; i < places; i += lanes) {
        u8xn a, b, c;
        load(p + i, a), load(p + i + 1, b), load(p + i + 2, c);
        found |= starts<Kind>(a, b, c);
    }
    return any(found);
}

/// One pair of neighbours of every start code begins at an odd place from p, and few other pairs look like it.
template <class Kind> bool any_start(const u8* p) {
    u16xn found{};
    for (s32 i = 0; i < places; i += lanes) {
        u8xn v;
        load(p + i + 1, v);
        found |= (u16xn)(((u16xn)v & Kind::pair_bits) == 0);
    }
    return any((u8xn)found) && is_start_among<Kind>(p);
}
}  // namespace zelt::inline ZELT_LEVEL::simd
