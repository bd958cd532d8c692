// SPDX-License-Identifier: MIT
#pragma once  // short names of the sample and result types, and what every source file takes for granted
#include <cstddef>
#include <cstdint>
#include <type_traits>

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "libzelt is for little-endian processors");

namespace zelt {
using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using u64 = std::uint64_t;
using s8 = std::int8_t;
using s16 = std::int16_t;
using s32 = std::int32_t;
using s64 = std::int64_t;
}  // namespace zelt

// A second exported name of a function, for use inside extern "C". gcc wants the target's attributes on it, too.
#if __has_attribute(copy)
#define ZELT_ALIAS(name, target) extern decltype(target) name __attribute__((alias(#target), copy(target)))
#else
#define ZELT_ALIAS(name, target) extern decltype(target) name __attribute__((alias(#target)))
#endif
