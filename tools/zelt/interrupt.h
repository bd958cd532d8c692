// SPDX-License-Identifier: MIT
#pragma once
// An interrupted run cleans up like a failed one and then ends by the signal that interrupted it.
#include <pthread.h>

namespace zelt::tool {

void watch_signals();
int caught_signal();          // or 0
void wake(pthread_t thread);  // out of a system call that waits
[[noreturn]] void end_by_signal(int sig);

}  // namespace zelt::tool
