// SPDX-License-Identifier: MIT
#pragma once
// A line on the terminal, and nothing anywhere else: the share of the work that is done, the rate, the time left.
#include <chrono>
#include <cstdint>

namespace zelt::tool {

class progress {
public:
    /// A total of 0 is not known.
    explicit progress(uint64_t total, const char* unit = "pictures") : total_(total), unit_(unit) {}
    ~progress() { wipe(); }
    void tick();      // one more
    void make_way();  // until the next tick, for what is printed to the same terminal

private:
    void wipe();
    using clock = std::chrono::steady_clock;
    uint64_t total_, done_ = 0;
    const char* unit_;
    clock::time_point start_ = clock::now(), next_ = start_ + std::chrono::milliseconds(300);
    bool shown_ = false;
};

}  // namespace zelt::tool
