// SPDX-License-Identifier: MIT
#pragma once
// Memory between two inaccessible pages, and calls that survive touching them.
#include "kernels/kernel.h"

#include <algorithm>
#include <cstdlib>
#if defined _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#elif !defined __EMSCRIPTEN__
#include <csetjmp>
#include <csignal>
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace zelt::test {
#ifdef __EMSCRIPTEN__
/// WebAssembly has no inaccessible pages: bytes on either side that must stay as they are. Reads of them are not seen.
class guarded_memory {
public:
    explicit guarded_memory(std::size_t size)
        : bytes_(size + 2 * margin, guard), start_(bytes_.data() + margin), size_(size) {}
    guarded_memory(const guarded_memory&) = delete;
    guarded_memory& operator=(const guarded_memory&) = delete;

    u8* start() const { return start_; }
    std::size_t size() const { return size_; }
    bool is_intact() const {
        const auto is_guard = [](u8 v) { return v == guard; };
        return std::all_of(bytes_.begin(), bytes_.begin() + margin, is_guard) &&
               std::all_of(bytes_.end() - margin, bytes_.end(), is_guard);
    }

private:
    static constexpr int margin = 256;
    static constexpr u8 guard = 0xC5;
    std::vector<u8> bytes_;
    u8* start_;
    std::size_t size_;
};
#else
namespace pages {
#ifdef _WIN32
inline std::size_t size() {
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return info.dwPageSize;
}
inline void* reserve(std::size_t n) { return VirtualAlloc(nullptr, n, MEM_RESERVE, PAGE_NOACCESS); }
inline bool open(void* p, std::size_t n) { return VirtualAlloc(p, n, MEM_COMMIT, PAGE_READWRITE); }
inline void release(void* p, std::size_t) { VirtualFree(p, 0, MEM_RELEASE); }
#else
inline std::size_t size() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }
inline void* reserve(std::size_t n) {
    void* p = mmap(nullptr, n, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return p == MAP_FAILED ? nullptr : p;
}
inline bool open(void* p, std::size_t n) { return !mprotect(p, n, PROT_READ | PROT_WRITE); }
inline void release(void* p, std::size_t n) { munmap(p, n); }
#endif
}  // namespace pages

/// Pages with an inaccessible one on either side. A block is pressed against one of those.
class guarded_memory {
public:
    explicit guarded_memory(std::size_t size) {
        const std::size_t page = pages::size();
        size_ = (size + page - 1) / page * page;
        total_ = size_ + 2 * page;
        void* all = pages::reserve(total_);
        if (!all) std::abort();
        start_ = static_cast<u8*>(all) + page;
        if (!pages::open(start_, size_)) std::abort();
    }
    ~guarded_memory() { pages::release(start_ - (total_ - size_) / 2, total_); }
    guarded_memory(const guarded_memory&) = delete;
    guarded_memory& operator=(const guarded_memory&) = delete;

    u8* start() const { return start_; }
    std::size_t size() const { return size_; }
    bool is_intact() const { return true; }  // or the program would have stopped

private:
    u8* start_;
    std::size_t size_, total_;
};
#endif

#if defined _WIN32 || defined __EMSCRIPTEN__
/// Runs `f`, which ends the program where it touches memory that it may not.
template <class F> bool survives(F f) {
    f();
    return true;
}
#else
inline sigjmp_buf fault_exit;

/// Runs `f`; false where it touched memory that it may not, or ran an instruction that the processor does not have.
template <class F> bool survives(F f) {
    struct sigaction action = {}, segv, bus, ill;
    action.sa_handler = [](int) { siglongjmp(fault_exit, 1); };
    sigaction(SIGSEGV, &action, &segv), sigaction(SIGBUS, &action, &bus), sigaction(SIGILL, &action, &ill);
    const bool survived = sigsetjmp(fault_exit, 1) == 0;
    if (survived) f();
    sigaction(SIGSEGV, &segv, nullptr), sigaction(SIGBUS, &bus, nullptr), sigaction(SIGILL, &ill, nullptr);
    return survived;
}
#endif
}  // namespace zelt::test
