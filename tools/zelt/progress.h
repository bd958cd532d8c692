// SPDX-License-Identifier: MIT
#pragma once
// A line that counts pictures or other work, on a terminal only.
#include <chrono>
#include <cstdint>

namespace zelt::tool {

class progress {
public:
    /// 0: not known
    explicit progress(uint64_t total, const char* unit = "pictures") : total_(total), unit_(unit) {}
    ~progress();  // wipes the line
    void tick();  // one more

private:
    using clock = std::chrono::steady_clock;
    uint64_t total_, done_ = 0;
    const char* unit_;
    clock::time_point next_ = clock::now() + std::chrono::milliseconds(300);
    bool shown_ = false;
};

}  // namespace zelt::tool
