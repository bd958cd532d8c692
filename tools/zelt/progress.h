#pragma once
// A line that counts pictures, on a terminal only.
#include <chrono>
#include <cstdint>

namespace zelt::tool {

class progress {
public:
    explicit progress(uint64_t total) : total_(total) {}  // 0: not known
    ~progress();                                          // wipes the line
    void tick();                                          // one picture more

private:
    using clock = std::chrono::steady_clock;
    uint64_t total_, done_ = 0;
    clock::time_point next_ = clock::now() + std::chrono::milliseconds(300);
    bool shown_ = false;
};

}  // namespace zelt::tool
