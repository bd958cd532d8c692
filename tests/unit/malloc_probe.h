// SPDX-License-Identifier: MIT
#pragma once  // watches malloc, calloc and free of one thread, and lets them fail
#include <cstdint>

/// While one lives, the calls of its thread are counted; call number `failing` (from 1) gives null. Sanitizers have a
/// malloc of their own: there nothing is watched, and `works` is false.
class malloc_probe {
public:
    explicit malloc_probe(int failing = 0);
    ~malloc_probe();
    malloc_probe(const malloc_probe&) = delete;

    static const bool works;
    int calls = 0;                ///< of malloc and calloc
    int live = 0;                 ///< blocks given less blocks freed
    void* last = nullptr;         ///< the block given last
    std::uint64_t last_size = 0;  ///< its size
    void* last_freed = nullptr;   ///< the address freed last
    int failing;
};
