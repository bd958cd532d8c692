// SPDX-License-Identifier: MIT
#pragma once  // what reader and writer share: shifts of the cache word by any count, bytes left in the buffer
#include "core/types.h"

namespace zelt {

/// 64-bit targets shift 32-bit words in 64 bits, where counts up to 63 need no test.
using shift_word = std::conditional_t<sizeof(std::size_t) == 8, u64, u32>;
constexpr u32 shift_limit = 8 * sizeof(shift_word);

/// Shifts by a count modulo 256, as ARM registers do: 32 to 255, and so negative counts, give 0.
inline u32 shl(u32 v, s32 n) {
    const u32 count = n & 255;
    return count < shift_limit ? static_cast<u32>(shift_word{v} << count) : 0;
}
inline u32 shr(u32 v, s32 n) {
    const u32 count = n & 255;
    return count < shift_limit ? static_cast<u32>(shift_word{v} >> count) : 0;
}

/// Bytes from `cur` to the end of the buffer, below 1 if none are left. In integers: a record's pointers may be outside
/// the buffer, as `end` is if it is empty.
template <class Record> std::intptr_t bytes_left(const Record* bs) {
    return static_cast<std::intptr_t>(reinterpret_cast<std::uintptr_t>(bs->end) -
                                      reinterpret_cast<std::uintptr_t>(bs->cur) + 1);
}

/// p + n, which may be outside the buffer.
template <class Byte> Byte* advance(Byte* p, s32 n) {
    return reinterpret_cast<Byte*>(reinterpret_cast<std::uintptr_t>(p) + static_cast<std::uintptr_t>(n));
}

/// Sums of bit counts, wrapping: a record may hold any numbers.
inline s32 add(s32 a, s32 b) { return static_cast<s32>(static_cast<u32>(a) + static_cast<u32>(b)); }
inline s32 sub(s32 a, s32 b) { return static_cast<s32>(static_cast<u32>(a) - static_cast<u32>(b)); }

}  // namespace zelt
