#pragma once  // every block size of the metrics

// clang-format off
/// SAD: width, height, and the mixed kernels `_bi` and `_bi_16`: none, `_bi_16` as an alias of `_16`, or of its own.
#define ZELT_SAD_SIZES(X)                                                       \
    X(2, 2, NONE)    X(2, 4, NONE)    X(4, 2, NONE)    X(4, 4, NONE)            \
    X(4, 8, ALIAS)   X(8, 4, ALIAS)   X(8, 8, OWN)     X(8, 16, ALIAS)          \
    X(16, 8, ALIAS)  X(16, 16, OWN)   X(16, 32, ALIAS) X(32, 16, ALIAS)         \
    X(32, 32, OWN)   X(32, 64, ALIAS) X(64, 32, OWN)   X(64, 64, OWN)

/// Differences of both sample kinds, and of 16-bit samples only
#define ZELT_DIFF_SIZES(X)                                                      \
    X(2, 2)   X(2, 4)   X(4, 2)   X(4, 4)   X(4, 8)   X(8, 4)   X(8, 8)         \
    X(8, 16)  X(16, 8)  X(16, 16) X(16, 32) X(32, 16) X(32, 32) X(32, 64)       \
    X(64, 32) X(64, 64)
#define ZELT_DIFF_16_SIZES(X) X(2, 8) X(4, 16) X(8, 32) X(16, 64)
// clang-format on
