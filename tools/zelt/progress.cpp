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
    std::fprintf(stderr, total_ ? "\r%" PRIu64 " of at most %" PRIu64 " pictures" : "\r%" PRIu64 " pictures", done_,
                 total_);
}

progress::~progress() {
    if (shown_) std::fputs("\r\033[K", stderr);
}

}  // namespace zelt::tool
