#pragma once  // which form of the kernels this build exports: the target's predefined macros decide

#if !defined(ZELT_SCALAR) && (defined(__ARM_NEON) || defined(__AVX2__))
#define ZELT_SIMD 1
#else
#define ZELT_SIMD 0
#endif

namespace zelt {
namespace scalar {}
namespace simd {}
#if ZELT_SIMD
namespace fast = simd;
#else
namespace fast = scalar;
#endif
}  // namespace zelt
