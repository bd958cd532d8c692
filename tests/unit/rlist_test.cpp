#include "zelt/rlist.h"

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
    for (const int cnt : {1, 2, 3, 7, 40}) {
        std::mt19937 random(static_cast<unsigned>(cnt));
        const owned_pool rl(zelt_rlist_create(24, cnt));
        // Buffers are used in the order in which they became free: at first from the end of the chain to its front.
        std::deque<void*> free, used;
        for (ZELT_NODE* node = rl->last; node; node = node->prev) free.push_back(node + 1);
        ASSERT_EQ(free.size(), static_cast<std::size_t>(cnt));
        const auto release = [&] {
            free.push_back(used.front());
            used.pop_front();
        };
        for (int i = 0; i < 3000; ++i) {
            switch (random() % 8) {
            case 0:
            case 1:
            case 2: {
                void* buf = zelt_rlist_get_buf(rl.get());
                ASSERT_EQ(buf, free.empty() ? nullptr : free.front());
                if (!buf) break;
                free.pop_front();
                used.push_back(buf);
                std::memset(buf, i, 24);
                break;
            }
            case 3:
            case 4:
            case 5:
                zelt_rlist_rem_data(rl.get());
                if (!used.empty()) release();
                break;
            case 6: ASSERT_EQ(zelt_rlist_get_data(rl.get()), used.empty() ? nullptr : used.front()); break;
            case 7:
                if (random() % 16) break;
                zelt_rlist_rem_all(rl.get());
                while (!used.empty()) release();
                break;
            }
            ASSERT_EQ(rl->cnt, cnt);
            ASSERT_EQ(rl->size, 24u);
            ASSERT_EQ(rl->used, static_cast<int>(used.size()));
            ASSERT_EQ(zelt_rlist_get_used_cnt(rl.get()), rl->used);
            ASSERT_EQ(zelt_rlist_get_free_cnt(rl.get()), static_cast<int>(free.size()));
            const ZELT_NODE* node = rl->last;
            ASSERT_EQ(node->next, nullptr);
            for (const auto* queue : {&used, &free})
                for (const void* buf : *queue) {
                    ASSERT_EQ(node + 1, buf);
                    if (node->prev)
                        ASSERT_EQ(node->prev->next, node);
                    else
                        ASSERT_EQ(rl->first, node);
                    node = node->prev;
                }
            ASSERT_EQ(node, nullptr);
        }
    }
}

TEST(rlist, has_one_buffer_at_least) {
    for (const int cnt : {0, -5, INT_MIN}) {
        const owned_pool rl(zelt_rlist_create(0, cnt));
        EXPECT_EQ(rl->cnt, 1);
        EXPECT_EQ(zelt_rlist_get_buf(rl.get()), rl->last + 1);
        zelt_rlist_rem_data(rl.get());
        EXPECT_EQ(rl->first, rl->last);
        EXPECT_EQ(zelt_rlist_get_free_cnt(rl.get()), 1);
    }
    zelt_rlist_delete(nullptr);
}
}  // namespace
