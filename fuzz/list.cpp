// SPDX-License-Identifier: MIT
// Any sequence of list calls: the links stay whole, order, count and cursor are those of a vector, and what is removed
// goes through the list's free routine.
#include "zelt/list.h"

#include "input.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace {
constexpr int none = -1;
std::vector<uint8_t> freed;

void note_freed(void* data) { freed.push_back(*static_cast<uint8_t*>(data)); }

class list {
public:
    list() : list_(zelt_list_create(1, note_freed)) {}
    ~list() {
        list_.reset();
        all_freed();
    }

    void call(fuzz::input& in) {
        const uint8_t kind = in.byte(), value = in.byte();
        const int n = static_cast<int>(model_.size());
        const int idx = kind >= 0xF0 ? in.wild() : static_cast<int8_t>(in.byte()) % (n + 3);
        ZELT_LIST* l = list_.get();
        switch (kind % 24) {
        case 0: return is(zelt_list_get_first(l), 0);
        case 1: return is(zelt_list_get_last(l), n - 1);
        case 2: return added(zelt_list_insert_at(l, &value, idx), idx < 0 ? 0 : idx == n ? n : none, value);
        case 3: return is(zelt_list_get_at(l, idx), n ? std::max(idx, 0) : none);
        case 4: return is(zelt_list_get_atid(l, zelt_list_get_id(l, idx)), idx);
        case 5: return moved(zelt_list_move_first(l), 0);
        case 6: return moved(zelt_list_move_last(l), n - 1);
        case 7: return moved(zelt_list_move_next(l), cur_ == none ? none : cur_ + 1);
        case 8: return moved(zelt_list_move_prev(l), cur_ - (cur_ != none));
        case 9: return removed(zelt_list_rem_at(l, idx), idx, n);
        case 10: return removed(zelt_list_rem_atid(l, zelt_list_get_id(l, idx)), idx, n);
        case 11: return removed(zelt_list_rem_first(l), 0, n);
        case 12: return removed(zelt_list_rem_last(l), n - 1, n);
        case 13: return removed(zelt_list_rem_cur(l), cur_, n);
        case 14: return removed(zelt_list_rem_prev(l), (cur_ == none ? n : cur_) - 1, -1);
        case 15: return removed(zelt_list_rem_next(l), cur_ == none ? none : cur_ + 1, cur_ == none ? 0 : -1);
        case 16:
            if (value % 4) break;
            fuzz::require(zelt_list_rem_all(l) == 0);
            cur_ = none;
            return all_freed();
        case 17:
        case 18:
        case 19: return added(zelt_list_add_first(l, &value), 0, value);
        }
        added(zelt_list_add(l, &value), n, value);
    }

    void check() const {
        ZELT_LIST* l = list_.get();
        fuzz::require(l->cnt == static_cast<int>(model_.size()) && zelt_list_get_cnt(l) == l->cnt && freed.empty());
        fuzz::require(l->head->prev == l->head && l->tail->next == l->tail);
        is(zelt_list_get_cur(l), cur_);
        for (ZELT_NODE* end : {l->head, l->tail}) fuzz::require(!zelt_list_get_atid(l, end));
        const ZELT_NODE* node = l->head;
        fuzz::require((l->cur == nullptr) == (cur_ == none));
        for (int i = 0; i < l->cnt; ++i) {
            fuzz::require(node->next->prev == node);
            node = node->next;
            fuzz::require(*reinterpret_cast<const uint8_t*>(node + 1) == model_[static_cast<size_t>(i)]);
            fuzz::require((node == l->cur) == (i == cur_));
        }
        fuzz::require(node->next == l->tail && l->tail->prev == node);
    }

private:
    bool inside(int idx) const { return idx >= 0 && idx < static_cast<int>(model_.size()); }
    void is(const void* data, int idx) const {
        fuzz::require((data != nullptr) == inside(idx));
        if (data) fuzz::require(*static_cast<const uint8_t*>(data) == model_[static_cast<size_t>(idx)]);
    }
    void added(const void* data, int idx, uint8_t value) {
        fuzz::require((data != nullptr) == (idx != none));
        if (!data) return;
        model_.insert(model_.begin() + idx, value);
        if (cur_ >= idx) ++cur_;
    }
    void moved(const void* data, int idx) {
        is(data, idx);
        cur_ = inside(idx) ? idx : none;
    }
    void removed(int result, int idx, int otherwise) {
        if (!inside(idx)) return fuzz::require(result == otherwise);
        fuzz::require(freed == std::vector{model_[static_cast<size_t>(idx)]});
        freed.clear();
        model_.erase(model_.begin() + idx);
        fuzz::require(result == static_cast<int>(model_.size()));
        if (cur_ > idx || (cur_ == idx && !inside(idx))) cur_ = cur_ > idx ? cur_ - 1 : none;
    }
    void all_freed() {
        fuzz::require(freed == model_);  // from front to back
        freed.clear();
        model_.clear();
    }

    struct deleter {
        void operator()(ZELT_LIST* l) const { zelt_list_delete(l); }
    };
    std::unique_ptr<ZELT_LIST, deleter> list_;
    std::vector<uint8_t> model_;
    int cur_ = none;
};
}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::input in(data, size);
    list l;
    while (!in.empty()) {
        l.call(in);
        l.check();
    }
    return 0;
}
