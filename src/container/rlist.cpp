// SPDX-License-Identifier: MIT
#include "zelt/rlist.h"

#include "container/node.h"

#include <algorithm>

using namespace zelt;

ZELT_RLIST* zelt_rlist_create(uint32_t size, int cnt) {
    auto* rl = static_cast<ZELT_RLIST*>(std::malloc(sizeof(ZELT_RLIST)));
    if (!rl) return nullptr;
    *rl = {std::max(cnt, 1), size, 0, nullptr, nullptr};
    for (int i = 0; i < rl->cnt; ++i) {
        ZELT_NODE* node = new_node(size);
        if (!node) {
            zelt_rlist_delete(rl);
            return nullptr;
        }
        *node = {rl->last, nullptr};
        (rl->last ? rl->last->next : rl->first) = node;
        rl->last = node;
    }
    return rl;
}

void zelt_rlist_delete(ZELT_RLIST* rl) {
    if (!rl) return;
    for (ZELT_NODE* node = rl->first; node;) {
        ZELT_NODE* next = node->next;
        std::free(node);
        node = next;
    }
    std::free(rl);
}

int zelt_rlist_get_used_cnt(ZELT_RLIST* rl) { return rl->used; }

int zelt_rlist_get_free_cnt(ZELT_RLIST* rl) { return rl->cnt - rl->used; }

void* zelt_rlist_get_buf(ZELT_RLIST* rl) {
    if (rl->used >= rl->cnt) return nullptr;
    // The last free node of the chain, from the nearer end.
    const int free = rl->cnt - rl->used;
    ZELT_NODE* node = rl->used < free ? rl->last : rl->first;
    if (rl->used < free)
        for (int i = 0; i < rl->used; ++i) node = node->prev;
    else
        for (int i = 1; i < free; ++i) node = node->next;
    ++rl->used;
    return data_of(node);
}

void* zelt_rlist_get_data(ZELT_RLIST* rl) { return rl->used ? data_of(rl->last) : nullptr; }

void zelt_rlist_rem_data(ZELT_RLIST* rl) {
    if (!rl->used) return;
    --rl->used;
    ZELT_NODE* node = rl->last;
    if (!node->prev) return;  // the only node stays where it is
    rl->last = node->prev;
    rl->last->next = nullptr;
    *node = {nullptr, rl->first};
    rl->first->prev = node;
    rl->first = node;
}

void zelt_rlist_rem_all(ZELT_RLIST* rl) {
    while (rl->used) zelt_rlist_rem_data(rl);
}
