// SPDX-License-Identifier: MIT
// Threads that call the same kernels for the first time at once, from a library that chooses forms by itself.
#include "zelt/zelt.h"

#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

int main() {
    std::atomic<int> wrong{0}, ready{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            uint8_t a[64 * 64], b[64 * 64];
            for (++ready; ready < 4;) continue;
            zelt_mset_x32(a, 0x05050505, sizeof a);
            zelt_mset_x32(b, 0x03030303, sizeof b);
            wrong += zelt_sad4x4(a, b, 64, 64) != 2 * 16;
            wrong += zelt_sad64x64(a, b, 64, 64) != 2 * 64 * 64;
            wrong += zelt_ssd(16, 16, a, b, 64, 64) != 4 * 16 * 16;
        });
    for (std::thread& thread : threads) thread.join();
    std::printf("%d wrong results\n", wrong.load());
    return wrong != 0;
}
