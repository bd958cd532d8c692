#pragma once
// The one place where a target is chosen, from the compiler's predefined macros: its back end of the vector vocabulary,
// if there is one, and the level's name. All code that depends on a level's flags is in zelt::ZELT_LEVEL, so that the
// linker does not merge templates of one name that were compiled for different processors.

#if defined(ZELT_SCALAR)
#define ZELT_LEVEL plain
#elif defined(__ARM_NEON)
#define ZELT_LEVEL neon
#define ZELT_BACK_END "simd/neon.h"
#elif defined(__AVX2__)
#define ZELT_LEVEL v3
#define ZELT_BACK_END "simd/avx2.h"
#else
#define ZELT_LEVEL plain
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
