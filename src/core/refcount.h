// SPDX-License-Identifier: MIT
#pragma once  // what the reference-counted records share: creation, counting, the default allocator of their blocks
#include "core/atomic.h"
#include "zelt/mem.h"

#include <cstdlib>

namespace zelt {

template <class R> s32 addref(R* r) { return r ? zelt_atomic_inc(&r->refcnt) : ZELT_ERR_INVALID_ARG; }

template <class R> s32 getref(R* r) { return r ? atomic_load(&r->refcnt) : ZELT_ERR_INVALID_ARG; }

/// Drops a reference; the last one frees what the record owns, and the record. Every holder's use of the record
/// happens before that: each decrement releases, and the load at 0 acquires them all, since decrements and increments
/// continue each other's release sequence. (A fence would do as well, but thread checkers do not model it.)
template <class R, void (*free_owned)(R*)> s32 release(R* r) {
    if (!r) return ZELT_ERR_INVALID_ARG;
    const s32 left = atomic_add<__ATOMIC_RELEASE>(&r->refcnt, -1);
    if (left != 0) return left;
    static_cast<void>(atomic_load<__ATOMIC_ACQUIRE>(&r->refcnt));
    free_owned(r);
    std::free(r);
    return 0;
}

/// A zeroed record, or null.
template <class R> R* new_record() { return static_cast<R*>(std::calloc(1, sizeof(R))); }

/// Starts the counting of a complete record, at 1.
template <class R, void (*free_owned)(R*)> void start_counting(R* r) {
    r->addref = addref<R>;
    r->getref = getref<R>;
    r->release = release<R, free_owned>;
    r->addref(r);
}

inline void* default_alloc(u32 size, u32* aux) {
    *aux = 0;
    return zelt_malloc_align32(size);
}

inline void default_free(void* block, u32) { zelt_mfree_align32(block); }

inline void set_status(s32* err, s32 status) {
    if (err) *err = status;
}

}  // namespace zelt
