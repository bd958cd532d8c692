#pragma once  // start codes in whole registers
#include "core/simd.h"
#include "media/start_code_scalar.h"

namespace zelt::simd {
constexpr s32 places = 4 * lanes;

template <class Kind> bool any_start(const u8* p) {
    bytes found{};
    for (s32 i = 0; i < places; i += lanes) {
        bytes a, b, c;
        load(p + i, a), load(p + i + 1, b), load(p + i + 2, c);
        found |= starts<Kind>(a, b, c);
    }
    return any(found);
}
}  // namespace zelt::simd
