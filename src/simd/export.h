// SPDX-License-Identifier: MIT
#pragma once
// How a kernel gets its exported name. A library of one level defines the name itself. In one of several, every level
// defines a form, name_v3, and the lowest exports the name, bound to the best form that the processor has: by the
// loader if the C library is glibc, elsewhere by the first call.
#include "core/types.h"
#include "simd/level.h"

// What a level asks of the processor. The build makes the level's options (-mavx2 ...) of these lines, too.
#define ZELT_NEEDS_V2(X) X("ssse3") X("sse4.1")
#define ZELT_NEEDS_V3(X) X("avx2") X("bmi") X("bmi2") X("fma") X("popcnt")

#define ZELT_AND_HAS(feature) &&__builtin_cpu_supports(feature)
#ifdef ZELT_WITH_V2
#define ZELT_ON_V2(statement) \
    if (true ZELT_NEEDS_V2(ZELT_AND_HAS)) statement
#else
#define ZELT_ON_V2(statement)
#endif
#ifdef ZELT_WITH_V3
#define ZELT_ON_V3(statement) \
    if (true ZELT_NEEDS_V3(ZELT_AND_HAS)) statement
#else
#define ZELT_ON_V3(statement)
#endif

#define ZELT_JOIN(name, level) name##_##level
#define ZELT_FORM(name, level) ZELT_JOIN(name, level)
#define ZELT_TEXT(name) #name
#define ZELT_TEXT_OF(name) ZELT_TEXT(name)
#ifdef _WIN32  // where a list of names exports
#define ZELT_VISIBILITY(kind)
#else
#define ZELT_VISIBILITY(kind) __attribute__((visibility(#kind)))
#endif
#define ZELT_HIDDEN ZELT_VISIBILITY(hidden)
#define ZELT_DECLARE_FORMS(name) \
    extern "C" ZELT_HIDDEN decltype(name) ZELT_FORM(name, baseline), ZELT_FORM(name, v2), ZELT_FORM(name, v3);

// A loader asks before constructors have run and before sanitizers are ready.
#if __has_attribute(disable_sanitizer_instrumentation)
#define ZELT_EARLY __attribute__((disable_sanitizer_instrumentation, no_sanitize("address", "undefined", "thread")))
#else
#define ZELT_EARLY __attribute__((no_sanitize("address", "undefined", "thread")))
#endif

/// name_choose() returns the best form that the processor has. Its type is the kernel's own, for tools that compare
/// interfaces.
#define ZELT_CHOOSE(name)                                                        \
    ZELT_DECLARE_FORMS(name)                                                     \
    extern "C" ZELT_HIDDEN ZELT_EARLY decltype(name)* ZELT_FORM(name, choose)(); \
    decltype(name)* ZELT_FORM(name, choose)() {                                  \
        __builtin_cpu_init();                                                    \
        ZELT_ON_V3(return ZELT_FORM(name, v3);)                                  \
        ZELT_ON_V2(return ZELT_FORM(name, v2);)                                  \
        return ZELT_FORM(name, ZELT_LEVEL);                                      \
    }

#if defined(__GLIBC__) && !defined(ZELT_NO_IFUNC)
#define ZELT_BIND(name) ZELT_CHOOSE(name) ZELT_BIND_ALIAS(name, name)
#define ZELT_BIND_ALIAS(name, target) \
    extern "C" decltype(target) name __attribute__((ifunc(ZELT_TEXT_OF(ZELT_FORM(target, choose)))));
#else
namespace zelt::inline ZELT_LEVEL {
/// Where a kernel's pointer leads at first. Threads that come here at once all store the same.
template <class Form, Form*& chosen, Form* (*choose)()> struct first_call;
template <class R, class... A, R (*&chosen)(A...), R (*(*choose)())(A...)> struct first_call<R(A...), chosen, choose> {
    static R call(A... a) {
        const auto form = choose();
        __atomic_store_n(&chosen, form, __ATOMIC_RELAXED);
        return form(a...);
    }
};
}  // namespace zelt::inline ZELT_LEVEL

/// The name is a jump to where its pointer leads: only a macro knows the name, only a template the parameters.
#define ZELT_BIND(name)                                                                           \
    ZELT_CHOOSE(name)                                                                             \
    extern "C" ZELT_HIDDEN decltype(name)* ZELT_FORM(name, chosen);                               \
    [[gnu::used]] constinit decltype(name)* ZELT_FORM(name, chosen) =                             \
        zelt::first_call<decltype(name), ZELT_FORM(name, chosen), ZELT_FORM(name, choose)>::call; \
    ZELT_DECLARE_JUMP(name) __attribute__((naked));                                               \
    void ZELT_FORM(name, jump)() noexcept { asm("jmp *" ZELT_TEXT_OF(ZELT_FORM(name, chosen)) "(%rip)"); }
#define ZELT_BIND_ALIAS(name, target) ZELT_DECLARE_JUMP(name) __attribute__((alias(#target)));
#define ZELT_DECLARE_JUMP(name) extern "C" ZELT_VISIBILITY(default) void ZELT_FORM(name, jump)() noexcept __asm__(#name)
#endif

// What the kernels' files use: the head of a kernel's definition, and a second name for one, inside extern "C"
#if !defined(ZELT_WITH_V2) && !defined(ZELT_WITH_V3)
#define ZELT_EXPORT(type, name) type name
#define ZELT_EXPORT_ALIAS(name, target) ZELT_ALIAS(name, target);
#elif defined(ZELT_LOWEST)
#define ZELT_EXPORT(type, name) ZELT_BIND(name) type ZELT_FORM(name, ZELT_LEVEL)
#define ZELT_EXPORT_ALIAS(name, target) ZELT_BIND_ALIAS(name, target)
#else
#define ZELT_EXPORT(type, name) ZELT_DECLARE_FORMS(name) type ZELT_FORM(name, ZELT_LEVEL)
#define ZELT_EXPORT_ALIAS(name, target)
#endif
