// SPDX-License-Identifier: MIT
#pragma once
// The bytes of a fuzzer as values. Every target defines LLVMFuzzerTestOneInput and stops the program where a property
// does not hold.
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace fuzz {

class input {
public:
    input(const uint8_t* data, size_t size) : at_(data), end_(data + size) {}

    bool empty() const { return at_ == end_; }
    /// The next byte, 0 after the last one
    uint8_t byte() { return empty() ? 0 : *at_++; }
    uint32_t word() {
        uint32_t v = 0;
        for (int i = 0; i < 4; ++i) v = v << 8 | byte();
        return v;
    }
    /// A count that no caller should pass: mostly one beside a limit, else any at all
    int wild() {
        static constexpr int limits[] = {INT_MIN, -257, -256, -33, -32, -1, 33, 64, 255, 256, 300, INT_MAX};
        const uint8_t i = byte() % 16;
        return i < sizeof limits / sizeof *limits ? limits[i] : static_cast<int>(word());
    }
    /// At most `count` bytes in memory of just that size
    std::vector<uint8_t> bytes(size_t count) {
        const size_t left = static_cast<size_t>(end_ - at_), n = count < left ? count : left;
        at_ += n;
        return {at_ - n, at_};
    }
    std::vector<uint8_t> rest() { return bytes(SIZE_MAX); }

private:
    const uint8_t *at_, *end_;
};

/// Names its caller's place where a property does not hold.
inline void require(bool property, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (property) return;
    std::fprintf(stderr, "%s:%d: does not hold\n", file, line);
    std::abort();
}

}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
