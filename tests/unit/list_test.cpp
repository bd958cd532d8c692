#include "zelt/list.h"

#include <climits>
#include <cstring>
#include <gtest/gtest.h>
#include <list>
#include <random>

namespace {
std::vector<int> freed;

void note_freed(void* data) {
    int value;
    std::memcpy(&value, data, sizeof value);
    freed.push_back(value);
}

struct list_deleter {
    void operator()(ZELT_LIST* list) const { zelt_list_delete(list); }
};
using owned_list = std::unique_ptr<ZELT_LIST, list_deleter>;

owned_list make_list(int cnt) {
    owned_list list(zelt_list_create(sizeof(int), nullptr));
    for (int i = 0; i < cnt; ++i) zelt_list_add(list.get(), &i);
    return list;
}

int value(void* data) { return data ? *static_cast<int*>(data) : INT_MIN; }

/// A std::list beside a ZELT_LIST. The model's cursor at end() stands for one that is not set.
class twin {
public:
    explicit twin(unsigned seed) : random_(seed), list_(zelt_list_create(sizeof(int), note_freed)) { freed.clear(); }

    void step() {
        const int n = static_cast<int>(model_.size());
        const int idx = std::uniform_int_distribution(-2, n + 2)(random_);
        const bool inside = idx >= 0 && idx < n;
        const bool at_last = cur_ != model_.end() && std::next(cur_) == model_.end();
        ZELT_LIST* l = list_.get();
        switch (std::uniform_int_distribution(0, 21)(random_)) {
        case 0:
        case 1:
        case 2:
            added(zelt_list_add(l, &next_));
            model_.push_back(next_++);
            break;
        case 3:
        case 4:
            added(zelt_list_add_first(l, &next_));
            model_.push_front(next_++);
            break;
        case 5:
            if (idx < 0 || idx == n) {
                added(zelt_list_insert_at(l, &next_, idx));
                model_.insert(idx < 0 ? model_.begin() : model_.end(), next_++);
            } else {
                EXPECT_EQ(zelt_list_insert_at(l, &next_, idx), nullptr);
            }
            break;
        case 6: EXPECT_EQ(value(zelt_list_get_at(l, idx)), n && idx < n ? *at(std::max(idx, 0)) : INT_MIN); break;
        case 7: {
            void* id = zelt_list_get_id(l, idx);
            EXPECT_EQ(id != nullptr, inside);
            if (inside) {
                EXPECT_EQ(value(zelt_list_get_atid(l, id)), *at(idx));
            }
            break;
        }
        case 8: EXPECT_EQ(value(zelt_list_get_first(l)), n ? model_.front() : INT_MIN); break;
        case 9: EXPECT_EQ(value(zelt_list_get_last(l)), n ? model_.back() : INT_MIN); break;
        case 10: moved(zelt_list_move_first(l), model_.begin()); break;
        case 11: moved(zelt_list_move_last(l), n ? std::prev(model_.end()) : model_.end()); break;
        case 12:
        case 13: moved(zelt_list_move_next(l), cur_ == model_.end() ? cur_ : std::next(cur_)); break;
        case 14:
        case 15: moved(zelt_list_move_prev(l), cur_ == model_.begin() ? model_.end() : before_cursor()); break;
        case 16: removed(zelt_list_rem_at(l, idx), inside ? at(idx) : model_.end()); break;
        case 17:
            if (inside) removed(zelt_list_rem_atid(l, zelt_list_get_id(l, idx)), at(idx));
            break;
        case 18: removed(zelt_list_rem_first(l), model_.begin()); break;
        case 19: removed(zelt_list_rem_last(l), n ? std::prev(model_.end()) : model_.end()); break;
        case 20: removed(zelt_list_rem_cur(l), cur_); break;
        case 21:
            if (random_() & 1) {
                const bool any = cur_ == model_.end() ? n > 0 : cur_ != model_.begin();
                const int result = zelt_list_rem_prev(l);
                if (any)
                    removed(result, cur_ == model_.end() ? std::prev(cur_) : before_cursor());
                else
                    EXPECT_EQ(result, -1);
            } else {
                const int result = zelt_list_rem_next(l);
                if (cur_ != model_.end() && !at_last)
                    removed(result, std::next(cur_));
                else
                    EXPECT_EQ(result, at_last ? -1 : 0);
            }
            break;
        }
        if (std::uniform_int_distribution(0, 999)(random_) == 0) {
            EXPECT_EQ(zelt_list_rem_all(l), 0);
            gone_.insert(gone_.end(), model_.begin(), model_.end());
            model_.clear();
            cur_ = model_.end();
        }
        compare();
    }

private:
    using position = std::list<int>::iterator;
    position at(int idx) { return std::next(model_.begin(), idx); }
    position before_cursor() { return cur_ == model_.end() ? cur_ : std::prev(cur_); }
    void added(void* data) { EXPECT_EQ(value(data), next_); }
    void moved(void* data, position to) {
        cur_ = to;
        EXPECT_EQ(value(data), to == model_.end() ? INT_MIN : *to);
    }
    void removed(int result, position what) {
        if (what != model_.end()) {
            gone_.push_back(*what);
            const position after = model_.erase(what);
            if (what == cur_) cur_ = after;
        }
        EXPECT_EQ(result, static_cast<int>(model_.size()));
    }

    void compare() const {
        const ZELT_LIST* l = list_.get();
        ASSERT_EQ(l->size, sizeof(int));
        ASSERT_EQ(l->cnt, static_cast<int>(model_.size()));
        ASSERT_EQ(zelt_list_get_cnt(list_.get()), l->cnt);
        ASSERT_EQ(l->free_fn, note_freed);
        ASSERT_EQ(l->head->prev, l->head);
        ASSERT_EQ(l->tail->next, l->tail);
        const ZELT_NODE* node = l->head;
        const ZELT_NODE* cursor = nullptr;
        for (auto it = model_.begin(); it != model_.end(); ++it) {
            ASSERT_EQ(node->next->prev, node);
            node = node->next;
            ASSERT_EQ(*reinterpret_cast<const int*>(node + 1), *it);
            if (it == cur_) cursor = node;
        }
        ASSERT_EQ(node->next, l->tail);
        ASSERT_EQ(l->tail->prev, node);
        ASSERT_EQ(l->cur, cursor);
        ASSERT_EQ(zelt_list_get_cur(list_.get()), cursor ? const_cast<ZELT_NODE*>(cursor) + 1 : nullptr);
        ASSERT_EQ(freed, gone_);
    }

    std::mt19937 random_;
    owned_list list_;
    std::list<int> model_;
    position cur_ = model_.end();
    std::vector<int> gone_;
    int next_ = 0;
};

TEST(list, agrees_with_a_standard_list_over_random_calls) {
    for (unsigned seed = 0; seed < 4; ++seed) {
        twin t(seed);
        for (int i = 0; i < 5000 && !testing::Test::HasFailure(); ++i) t.step();
    }
}

TEST(list, removes_front_to_back_on_delete) {
    freed.clear();
    ZELT_LIST* list = zelt_list_create(sizeof(int), note_freed);
    for (int i : {5, 6, 7}) zelt_list_add(list, &i);
    zelt_list_move_last(list);
    zelt_list_delete(list);
    EXPECT_EQ(freed, (std::vector{5, 6, 7}));
    zelt_list_delete(nullptr);
}

TEST(list, answers_for_what_it_does_not_hold) {
    const owned_list empty = make_list(0), list = make_list(3), other = make_list(1);
    EXPECT_EQ(zelt_list_get_at(empty.get(), -1), nullptr);
    EXPECT_EQ(value(zelt_list_get_at(list.get(), INT_MIN)), 0);  // a negative position is the first one
    EXPECT_EQ(zelt_list_get_atid(list.get(), zelt_list_get_id(other.get(), 0)), nullptr);
    EXPECT_EQ(zelt_list_get_atid(list.get(), list->head), nullptr);
    EXPECT_EQ(zelt_list_get_atid(list.get(), list->tail), nullptr);
    EXPECT_EQ(zelt_list_get_atid(list.get(), nullptr), nullptr);
    EXPECT_EQ(zelt_list_rem_atid(list.get(), nullptr), 3);
    EXPECT_EQ(zelt_list_rem_prev(empty.get()), -1);
    EXPECT_EQ(zelt_list_rem_next(empty.get()), 0);
    const int x = 9;
    EXPECT_EQ(zelt_list_insert_at(list.get(), &x, INT_MAX), nullptr);
    EXPECT_EQ(value(zelt_list_insert_at(list.get(), &x, INT_MIN)), 9);
    EXPECT_EQ(value(list->head->next + 1), 9);
}

TEST(list, takes_elements_of_any_size) {
    const owned_list none(zelt_list_create(0, nullptr)), odd(zelt_list_create(13, nullptr));
    EXPECT_NE(zelt_list_add(none.get(), nullptr), nullptr);
    EXPECT_EQ(none->cnt, 1);
    EXPECT_EQ(std::memcmp(zelt_list_add(odd.get(), "thirteen long"), "thirteen long", 13), 0);
}
}  // namespace
