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
    if (total_)
        std::fprintf(stderr, "\r%" PRIu64 " of at most %" PRIu64 " %s", done_, total_, unit_);
    else
        std::fprintf(stderr, "\r%" PRIu64 " %s", done_, unit_);
}

progress::~progress() {
    if (shown_) std::fputs("\r\033[K", stderr);
}

}  // namespace zelt::tool
