#pragma once // the search for two zero bytes and a third one that makes them a start code
#include "core/types.h"

#include <algorithm>

namespace zelt {

/// Kinds of start code. `miss` is 0 for their third byte, and in one operation for many bytes at once.
struct unit_start { // H.264, HEVC: 00 00 01
    static constexpr u8 miss(u8 c) { return c ^ 1; }
};
struct picture_start { // H.263: 00 00, then the bits 1000 00
    static constexpr u8 miss(u8 c) { return (c & 0xFC) ^ 0x80; }
};
struct vop_or_picture_start { // MPEG-4 part 2: both
    static constexpr u8 miss(u8 c) {
        return unit_start::miss(c) < picture_start::miss(c) ? unit_start::miss(c) : picture_start::miss(c);
    }
};

/// Offset of the first start code at or after `from` that has `need` bytes in front of `size`, or -1. The whole block
/// is tested before anything is decided: streams full of zeros cost no more than others.
template <class Kind> s32 find_start_code(const u8* data, s32 from, s32 size, s32 need) {
    const auto miss = [](const u8* p) { return static_cast<u8>(p[0] | p[1] | Kind::miss(p[2])); };
    constexpr s32 block = 64;
    s32 i = from;
    for (; size - i >= need - 1 + block; i += block) {
        u8 least = 0xFF;
        for (s32 j = 0; j < block; ++j) least = std::min(least, miss(data + i + j));
        if (least == 0) break;
    }
    for (; size - i >= need; ++i)
        if (miss(data + i) == 0) return i;
    return -1;
}

} // namespace zelt
