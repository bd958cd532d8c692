// SPDX-License-Identifier: MIT
#include "unit/malloc_probe.h"

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(__GLIBC__)
#define NO_PROBE 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define NO_PROBE 1
#endif
#endif

namespace {
thread_local malloc_probe* active = nullptr;
}

malloc_probe::malloc_probe(int failing) : failing(failing) { active = this; }
malloc_probe::~malloc_probe() { active = nullptr; }

#ifdef NO_PROBE
const bool malloc_probe::works = false;
#else
const bool malloc_probe::works = true;

extern "C" {
// The C library's own, under the names that stay when a program defines the usual ones.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t n, std::size_t size);
void __libc_free(void* p);
}

namespace {
template <class F> void* take(std::size_t size, F allocate) {
    malloc_probe* probe = active;
    if (!probe) return allocate();
    void* p = ++probe->calls == probe->failing ? nullptr : allocate();
    probe->last = p;
    probe->last_size = size;
    probe->live += p != nullptr;
    return p;
}
}  // namespace

extern "C" {
void* malloc(std::size_t size) noexcept {
    return take(size, [=] { return __libc_malloc(size); });
}

void* calloc(std::size_t n, std::size_t size) noexcept {
    return take(n * size, [=] { return __libc_calloc(n, size); });
}

void free(void* p) noexcept {
    if (p && active) {
        --active->live;
        active->last_freed = p;
    }
    __libc_free(p);
}
}
#endif
