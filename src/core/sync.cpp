// SPDX-License-Identifier: MIT
// A word that one side polls and the other sets. Relaxed atomics: every poll reads the whole word anew, and nothing
// else is ordered.
#include "core/atomic.h"
#include "zelt/common.h"

using namespace zelt;

namespace {
constexpr u32 stop = 0xffffffff;

// What the processor offers: an exclusive load and store, a wait for an event and its signal, a hint while polling.
#if defined(__aarch64__) || (defined(__arm__) && __ARM_ARCH >= 7)
u32 load_exclusive(u32* p) {
    u32 value;
#ifdef __aarch64__
    asm volatile("ldxr %w0, %1" : "=r"(value) : "Q"(*p));
#else
    asm volatile("ldrex %0, %1" : "=r"(value) : "Q"(*p));
#endif
    return value;
}

/// Stores unless the word was accessed by others since load_exclusive.
bool store_exclusive(u32* p, u32, u32 value) {
    u32 failed;
#ifdef __aarch64__
    asm volatile("stxr %w0, %w2, %1" : "=&r"(failed), "+Q"(*p) : "r"(value));
#else
    asm volatile("strex %0, %2, %1" : "=&r"(failed), "+Q"(*p) : "r"(value));
#endif
    return !failed;
}

void wait_for_event() { asm volatile("wfe" ::: "memory"); }
void signal_event() { asm volatile("dsb sy\n\tsev" ::: "memory"); }  // the store comes before the event
void relax() { asm volatile("yield"); }
#else
u32 load_exclusive(u32* p) { return atomic_load(p); }
bool store_exclusive(u32* p, u32 loaded, u32 value) { return atomic_replace(p, loaded, value); }

void relax() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}
void wait_for_event() { relax(); }
void signal_event() {}
#endif
}  // namespace

uint32_t zelt_sync_wait(uint32_t* p, uint32_t v) {
    for (;; relax()) {
        const u32 now = atomic_load(p);
        if (now == v || now == stop) return now;
    }
}

void zelt_sync_wake(uint32_t* p, uint32_t v) { atomic_store(p, v); }

uint32_t zelt_sync_wait_asm(uint32_t* p, uint32_t v) {
    const u32 now = load_exclusive(p);
    if (now == stop) return stop;
    if (now == v) return 0;  // Kept: a wait that ends at once returns 0, any other the value
    wait_for_event();
    return zelt_sync_wait(p, v);
}

int32_t zelt_sync_wake_asm(uint32_t* p, uint32_t v) {
    const u32 now = load_exclusive(p);
    if (now == v || store_exclusive(p, now, v))
        signal_event();
    else
        zelt_sync_wake(p, v);  // Kept: a waiter that sleeps is not woken then
    return 0;
}
