// SPDX-License-Identifier: MIT
#include "zelt/rlist.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <deque>
#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace {
struct pool_deleter {
    void operator()(ZELT_RLIST* rl) const { zelt_rlist_delete(rl); }
};
using owned_pool = std::unique_ptr<ZELT_RLIST, pool_deleter>;

TEST(rlist, agrees_with_two_queues_over_random_calls) {
    for (const int cnt : {INT_MIN, 0, 1, 2, 3, 7, 40}) {
        std::mt19937 random(5);
        const owned_pool rl(zelt_rlist_create(24, cnt));
        // Buffers are used in the order in which they became free: at first from the end of the chain to its front.
        std::deque<void*> free, used;
        for (ZELT_NODE* node = rl->last; node; node = node->prev) free.push_back(node + 1);
        ASSERT_EQ(free.size(), static_cast<std::size_t>(std::max(cnt, 1)));  // one at least
        const auto release = [&] {
            if (used.empty()) return;
            free.push_back(used.front());
            used.pop_front();
        };
        for (int i = 0; i < 3000; ++i) {
            const unsigned kind = random() % 64;
            if (kind == 0) {
                zelt_rlist_rem_all(rl.get());
                while (!used.empty()) release();
            } else if (kind < 30) {
                zelt_rlist_rem_data(rl.get());
                release();
            } else {
                void* buf = zelt_rlist_get_buf(rl.get());
                ASSERT_EQ(buf, free.empty() ? nullptr : free.front());
                if (!buf) continue;
                free.pop_front();
                used.push_back(buf);
                std::memset(buf, i, 24);
            }
            ASSERT_EQ(rl->cnt, std::max(cnt, 1));
            ASSERT_EQ(rl->size, 24u);
            ASSERT_EQ(rl->used, static_cast<int>(used.size()));
            ASSERT_EQ(zelt_rlist_get_used_cnt(rl.get()), rl->used);
            ASSERT_EQ(zelt_rlist_get_free_cnt(rl.get()), static_cast<int>(free.size()));
            ASSERT_EQ(zelt_rlist_get_data(rl.get()), used.empty() ? nullptr : used.front());
            const ZELT_NODE *node = rl->last, *next = nullptr;
            for (const auto* queue : {&used, &free})
                for (const void* buf : *queue) {
                    ASSERT_EQ(node + 1, buf);
                    ASSERT_EQ(node->next, next);
                    next = node;
                    node = node->prev;
                }
            ASSERT_EQ(node, nullptr);
            ASSERT_EQ(rl->first, next);
        }
    }
    zelt_rlist_delete(nullptr);
}
}  // namespace
