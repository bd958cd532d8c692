// SPDX-License-Identifier: MIT
#pragma once  // the search for two zero bytes and a third one that makes them a start code
#include "core/types.h"
#include "simd/level.h"

namespace zelt::inline ZELT_LEVEL {
// Kinds of start code. `third` tells of a byte, or of every byte of a register, whether it may be the third one.
// `pair_bits` are clear in both pairs of neighbours of every start code, the first byte the low one.
struct unit_start {  // H.264, HEVC: 00 00 01
    static constexpr u16 pair_bits = 0xFEFF;
    template <class V> static V third(V c) { return (V)(c == 1); }
};
struct picture_start {  // H.263: 00 00, then the bits 1000 00
    static constexpr u16 pair_bits = 0x7CFF;
    template <class V> static V third(V c) { return (V)((c & 0xFC) == 0x80); }
};
struct unit_or_picture_start {  // MPEG-4 part 2: either
    static constexpr u16 pair_bits = unit_start::pair_bits & picture_start::pair_bits;
    template <class V> static V third(V c) { return unit_start::third(c) | picture_start::third(c); }
};

/// Whether a start code begins at each place; `a b c` are the bytes there and at the two places after it.
template <class Kind, class V> V starts(V a, V b, V c) { return (V)((a | b) == 0) & Kind::third(c); }
}  // namespace zelt::inline ZELT_LEVEL

namespace zelt::inline ZELT_LEVEL::scalar {
constexpr s32 places = 64;  // tested at once

/// Whether a start code begins at one of the `places` from p on. All are tested before anything is decided: that takes
/// the same time whatever the bytes are, and the compiler makes vectors of it.
template <class Kind> bool any_start(const u8* p) {
    u8 found = 0;
    for (s32 i = 0; i < places; ++i) found |= starts<Kind, u8>(p[i], p[i + 1], p[i + 2]);
    return found != 0;
}
}  // namespace zelt::inline ZELT_LEVEL::scalar
