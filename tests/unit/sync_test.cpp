// SPDX-License-Identifier: MIT
#include "zelt/common.h"

#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr uint32_t stop = 0xffffffff;

/// Ends the program where a test hangs; a thread that polls for ever cannot be stopped otherwise.
struct time_limit {
    explicit time_limit(unsigned seconds) { alarm(seconds); }
    ~time_limit() { alarm(0); }
};

TEST(sync, wakes_store_the_final_words_that_end_a_wait_at_once) {
    uint32_t word = 0;
    for (const uint32_t v : {5u, 7u, stop}) {
        zelt_sync_wake(&word, v);
        EXPECT_EQ(word, v);
        EXPECT_EQ(zelt_sync_wait(&word, v), v);
        EXPECT_EQ(zelt_sync_wait_asm(&word, v), v == stop ? stop : 0);
        EXPECT_EQ(zelt_sync_wake_asm(&word, v + 1), 0);
        EXPECT_EQ(word, v + 1);
    }
    word = stop;
    EXPECT_EQ(zelt_sync_wait(&word, 7), stop);
    EXPECT_EQ(zelt_sync_wait_asm(&word, 7), stop);
}

/// Two threads that hand a word to and fro until one of them is stopped: no wake is lost, whichever forms they use.
TEST(sync, threads_take_turns) {
    const time_limit limit(120);
    for (const bool wait_asm : {false, true})
        for (const bool wake_asm : {false, true}) {
            uint32_t word = 0, last = 0;
            const auto wait = [&](uint32_t v) { return (wait_asm ? zelt_sync_wait_asm : zelt_sync_wait)(&word, v); };
            const auto wake = [&](uint32_t v) {
                if (wake_asm)
                    zelt_sync_wake_asm(&word, v);
                else
                    zelt_sync_wake(&word, v);
                std::this_thread::yield();
            };
            std::thread other([&] {
                for (uint32_t i = 1; (last = wait(i)) != stop; i += 2) wake(i + 1);
            });
            for (uint32_t i = 2; i <= 200; i += 2) {
                wake(i - 1);
                const uint32_t seen = wait(i);
                // A waiter that starts late finds the value there, for which the assisted form gives 0.
                EXPECT_TRUE(seen == i || (wait_asm && seen == 0)) << seen;
            }
            wake(stop);
            other.join();
            EXPECT_EQ(last, stop);
        }
}

}  // namespace
