#pragma once
// The bytes of a fuzzer as values. Every target defines LLVMFuzzerTestOneInput and stops the program where a property
// does not hold.
#include <cstddef>
#include <cstdint>
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

inline void require(bool property) {
    if (!property) std::abort();
}

}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
