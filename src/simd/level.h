// SPDX-License-Identifier: MIT
#pragma once
// The one place where a target is chosen, from the compiler's predefined macros: the level's names, and if it has
// vector forms its back end of the vocabulary and the bytes of a register. All code that depends on a level's flags is
// in zelt::ZELT_LEVEL, so that the linker does not merge templates of one name that were compiled for different
// processors.

#if defined(ZELT_SCALAR)
#define ZELT_LEVEL baseline
#define ZELT_LEVEL_TEXT "scalar"
#elif defined(ZELT_GENERIC)  // for tests of the vocabulary's definition, and where a target begins
#define ZELT_LEVEL generic_level
#define ZELT_LEVEL_TEXT "generic"
#define ZELT_BACK_END "simd/generic.h"
#define ZELT_LANES 16
#elif defined(__ARM_NEON)
#define ZELT_LEVEL neon
#define ZELT_LEVEL_TEXT "neon"
#define ZELT_BACK_END "simd/neon.h"
#define ZELT_LANES 16
#define ZELT_REGISTER "w"
#elif defined(__wasm_simd128__)
#define ZELT_LEVEL simd128
#define ZELT_LEVEL_TEXT "wasm-simd128"
#define ZELT_BACK_END "simd/wasm.h"
#define ZELT_LANES 16
#define ZELT_REGISTER "r"
#elif defined(__AVX2__)
#define ZELT_LEVEL v3
#define ZELT_LEVEL_TEXT "x86-64-v3"
#define ZELT_BACK_END "simd/x86.h"
#define ZELT_LANES 32
#define ZELT_REGISTER "x"
#elif defined(__SSE4_1__)
#define ZELT_LEVEL v2
#define ZELT_LEVEL_TEXT "x86-64-v2"
#define ZELT_BACK_END "simd/x86.h"
#define ZELT_LANES 16
#define ZELT_REGISTER "x"
#else
#define ZELT_LEVEL baseline
#define ZELT_LEVEL_TEXT "scalar"
#endif

#ifdef ZELT_BACK_END
#define ZELT_SIMD 1
#else
#define ZELT_SIMD 0
#endif

namespace zelt::inline ZELT_LEVEL {
namespace scalar {}
namespace simd {}
/// The form of a kernel that this level exports
#if ZELT_SIMD
namespace fast = simd;
#else
namespace fast = scalar;
#endif
}  // namespace zelt::inline ZELT_LEVEL
