#pragma once  // values at any address, as one load or store each
#include "core/types.h"

#include <type_traits>

namespace zelt {
template <class T> T load_unaligned(const u8* p) {
    typedef T unaligned __attribute__((aligned(1), may_alias));
    return *reinterpret_cast<const unaligned*>(p);
}

template <class T> void store_unaligned(u8* p, T value) {
    typedef T unaligned __attribute__((aligned(1), may_alias));
    *reinterpret_cast<unaligned*>(p) = value;
}

/// p, with nothing known of how it came about
template <class T> T* hide_from_optimizer(T* p) {
    asm("" : "+r"(p));
    return p;
}

/// Where loads and stores step their own addresses, hides from the compiler how one came about: it would rather compute
/// each of a row of addresses by itself.
template <class T> void hide_step_from_optimizer([[maybe_unused]] T*& p) {
#ifdef __arm__
    p = hide_from_optimizer(p);
#endif
}
}  // namespace zelt
