// SPDX-License-Identifier: MIT
#include "progress.h"

#include <cinttypes>
#include <cstdio>
#include <unistd.h>

namespace zelt::tool {

void progress::tick() {
    ++done_;
    const clock::time_point now = clock::now();
    if (now < next_ || !::isatty(STDERR_FILENO)) return;
    next_ = now + std::chrono::milliseconds(100);
    shown_ = true;
    const auto done = static_cast<double>(done_), total = static_cast<double>(total_);
    const double rate = done / std::chrono::duration<double>(now - start_).count();
    const int digits = rate < 10;
    if (done_ <= total_) {  // totals may be estimates
        const auto left = static_cast<uint64_t>((total - done) / rate + 0.5);
        std::fprintf(stderr, "\r%" PRIu64 " of %" PRIu64 " %s, %.0f %%, %.*f/s, %" PRIu64 ":%02" PRIu64 " left\033[K",
                     done_, total_, unit_, 100 * done / total, digits, rate, left / 60, left % 60);
    } else {
        std::fprintf(stderr, "\r%" PRIu64 " %s, %.*f/s\033[K", done_, unit_, digits, rate);
    }
}

void progress::make_way() {
    if (!shown_ || !::isatty(STDOUT_FILENO)) return;
    wipe();
    next_ = clock::now();
}

void progress::wipe() {
    if (shown_) std::fputs("\r\033[K", stderr);
    shown_ = false;
}

}  // namespace zelt::tool
