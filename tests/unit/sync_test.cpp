#include "zelt/common.h"

#include <chrono>
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

TEST(sync, a_waiter_is_woken) {
    const time_limit limit(60);
    for (const bool wait_asm : {false, true})
        for (const bool wake_asm : {false, true})
            for (const uint32_t v : {1u, stop}) {
                uint32_t word = 0, seen = 0;
                std::thread waiter([&] { seen = (wait_asm ? zelt_sync_wait_asm : zelt_sync_wait)(&word, 1); });
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
                if (wake_asm)
                    zelt_sync_wake_asm(&word, v);
                else
                    zelt_sync_wake(&word, v);
                waiter.join();
                // A waiter that starts late finds the value there, for which the assisted form gives 0.
                if (!(wait_asm && seen == 0)) {
                    EXPECT_EQ(seen, v);
                }
            }
}

/// Two threads that hand a word to and fro: no wake is lost, whichever forms they use.
TEST(sync, threads_take_turns) {
    const time_limit limit(120);
    constexpr uint32_t turns = 400;
    uint32_t word = 0;
    std::thread other([&] {
        for (uint32_t i = 1; i < turns; i += 2) {
            zelt_sync_wait_asm(&word, i);
            zelt_sync_wake(&word, i + 1);
            std::this_thread::yield();
        }
    });
    for (uint32_t i = 0; i < turns; i += 2) {
        zelt_sync_wait(&word, i);
        zelt_sync_wake_asm(&word, i + 1);
        std::this_thread::yield();
    }
    EXPECT_EQ(zelt_sync_wait(&word, turns), turns);
    other.join();
}

}  // namespace
