#include "core/types.h"
#include "zelt/common.h"

#include <atomic>

using namespace zelt;

// The new value is formed from the old one in unsigned arithmetic: atomics wrap, but `old + 1` alone would overflow.
int32_t zelt_atomic_inc(int32_t* p) {
    return static_cast<s32>(static_cast<u32>(std::atomic_ref(*p).fetch_add(1, std::memory_order_relaxed)) + 1);
}

int32_t zelt_atomic_dec(int32_t* p) {
    return static_cast<s32>(static_cast<u32>(std::atomic_ref(*p).fetch_sub(1, std::memory_order_relaxed)) - 1);
}
