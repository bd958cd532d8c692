#pragma once  // values at any address, as one load or store each
#include "core/types.h"

#include <type_traits>

namespace zelt {
template <class T> T load_loose(const u8* p) {
    typedef T loose __attribute__((aligned(1), may_alias));
    return *reinterpret_cast<const loose*>(p);
}

template <class T> void store_loose(u8* p, T value) {
    typedef T loose __attribute__((aligned(1), may_alias));
    *reinterpret_cast<loose*>(p) = value;
}

/// p, with nothing known of how it came about
template <class T> T* opaque(T* p) {
    asm("" : "+r"(p));
    return p;
}

/// Where loads and stores step their own addresses, hides from the compiler how one came about: it would rather compute
/// each of a row of addresses by itself.
template <class T> void step_in_place([[maybe_unused]] T*& p) {
#ifdef __arm__
    p = opaque(p);
#endif
}
}  // namespace zelt
