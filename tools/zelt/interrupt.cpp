// SPDX-License-Identifier: MIT
#include "interrupt.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <initializer_list>

namespace zelt::tool {
namespace {

std::atomic<int> caught = 0;
static_assert(std::atomic<int>::is_always_lock_free);  // as a handler needs it

constexpr int waking = SIGURG;  // which means nothing to a process without sockets

void note(int sig) {
    if (sig != waking) caught = sig;
}

}  // namespace

void watch_signals() {
    struct sigaction action = {};
    action.sa_handler = note;  // without SA_RESTART: a read that waits gives up
    for (const int sig : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        struct sigaction old;
        if (sigaction(sig, nullptr, &old) == 0 && old.sa_handler != SIG_IGN) sigaction(sig, &action, nullptr);
    }
    sigaction(waking, &action, nullptr);
    // A reader that goes away and a limit on file sizes show as failed writes.
    for (const int sig : {SIGPIPE, SIGXFSZ}) std::signal(sig, SIG_IGN);
}

int caught_signal() { return caught; }

void wake(pthread_t thread) { pthread_kill(thread, waking); }

void end_by_signal(int sig) {
    std::signal(sig, SIG_DFL);
    std::raise(sig);
    std::abort();
}

}  // namespace zelt::tool
