// SPDX-License-Identifier: MIT
#include "zelt/list.h"

#include "container/node.h"

#include <cstring>

using namespace zelt;

namespace {
bool empty(const ZELT_LIST* list) { return list->cnt < 1; }

ZELT_NODE* next_or_null(const ZELT_LIST* list, const ZELT_NODE* node) {
    return node->next == list->tail ? nullptr : node->next;
}

ZELT_NODE* prev_or_null(const ZELT_LIST* list, const ZELT_NODE* node) {
    return node->prev == list->head ? nullptr : node->prev;
}

void* data_or_null(ZELT_NODE* node) { return node ? data_of(node) : nullptr; }

void* insert_after(ZELT_LIST* list, ZELT_NODE* place, const void* data) {
    ZELT_NODE* node = new_node(list->size);
    if (!node) return nullptr;
    if (list->size) std::memcpy(data_of(node), data, list->size);
    *node = {place, place->next};
    node->prev->next = node->next->prev = node;
    ++list->cnt;
    return data_of(node);
}

int remove(ZELT_LIST* list, ZELT_NODE* node) {
    if (node == list->cur) list->cur = next_or_null(list, node);
    node->prev->next = node->next;
    node->next->prev = node->prev;
    --list->cnt;
    if (list->free_fn) list->free_fn(data_of(node));
    std::free(node);
    return list->cnt;
}

/// Node at a position inside the list, from the nearer end.
ZELT_NODE* node_at(const ZELT_LIST* list, int idx) {
    if (idx <= list->cnt / 2) {
        ZELT_NODE* node = list->head->next;
        for (; idx > 0; --idx) node = node->next;
        return node;
    }
    ZELT_NODE* node = list->tail->prev;
    while (++idx < list->cnt) node = node->prev;
    return node;
}

void* set_cursor(ZELT_LIST* list, ZELT_NODE* node) { return data_or_null(list->cur = node); }
}  // namespace

ZELT_LIST* zelt_list_create(uint32_t size, void (*free_fn)(void*)) {
    auto* list = static_cast<ZELT_LIST*>(std::malloc(sizeof(ZELT_LIST)));
    ZELT_NODE* head = new_node(0);
    ZELT_NODE* tail = new_node(0);
    if (!list || !head || !tail) {
        std::free(tail);
        std::free(head);
        std::free(list);
        return nullptr;
    }
    *head = {head, tail};
    *tail = {head, tail};
    *list = {size, 0, head, tail, nullptr, free_fn};
    return list;
}

void zelt_list_delete(ZELT_LIST* list) {
    if (!list) return;
    zelt_list_rem_all(list);
    std::free(list->head);
    std::free(list->tail);
    std::free(list);
}

int zelt_list_rem_all(ZELT_LIST* list) {
    while (!empty(list)) remove(list, list->head->next);
    list->cur = nullptr;
    return 0;
}

void* zelt_list_add(ZELT_LIST* list, const void* data) { return insert_after(list, list->tail->prev, data); }

void* zelt_list_add_first(ZELT_LIST* list, const void* data) { return insert_after(list, list->head, data); }

void* zelt_list_insert_at(ZELT_LIST* list, const void* data, int idx) {
    // Kept: elements are added at the ends only, positions inside the list are refused.
    if (idx < 0) return zelt_list_add_first(list, data);
    return idx == list->cnt ? zelt_list_add(list, data) : nullptr;
}

void* zelt_list_get_at(ZELT_LIST* list, int idx) {
    // Kept: a negative position is not refused, it gives the first element.
    return empty(list) || idx >= list->cnt ? nullptr : data_of(node_at(list, idx));
}

void* zelt_list_get_id(ZELT_LIST* list, int idx) { return idx < 0 || idx >= list->cnt ? nullptr : node_at(list, idx); }

void* zelt_list_get_atid(ZELT_LIST* list, void* id) {
    ZELT_NODE* node = list->head->next;
    while (node != list->tail && node != id) node = node->next;
    return node == list->tail ? nullptr : data_of(node);
}

void* zelt_list_get_first(ZELT_LIST* list) { return data_or_null(next_or_null(list, list->head)); }

void* zelt_list_get_last(ZELT_LIST* list) { return data_or_null(prev_or_null(list, list->tail)); }

int zelt_list_get_cnt(ZELT_LIST* list) { return list->cnt; }

void* zelt_list_get_cur(ZELT_LIST* list) { return data_or_null(list->cur); }

void* zelt_list_move_first(ZELT_LIST* list) { return set_cursor(list, next_or_null(list, list->head)); }

void* zelt_list_move_last(ZELT_LIST* list) { return set_cursor(list, prev_or_null(list, list->tail)); }

void* zelt_list_move_next(ZELT_LIST* list) {
    return set_cursor(list, list->cur ? next_or_null(list, list->cur) : nullptr);
}

void* zelt_list_move_prev(ZELT_LIST* list) {
    return set_cursor(list, list->cur ? prev_or_null(list, list->cur) : nullptr);
}

int zelt_list_rem_at(ZELT_LIST* list, int idx) {
    return idx < 0 || idx >= list->cnt ? list->cnt : remove(list, node_at(list, idx));
}

int zelt_list_rem_atid(ZELT_LIST* list, void* id) { return id ? remove(list, static_cast<ZELT_NODE*>(id)) : list->cnt; }

int zelt_list_rem_first(ZELT_LIST* list) { return empty(list) ? list->cnt : remove(list, list->head->next); }

int zelt_list_rem_last(ZELT_LIST* list) { return empty(list) ? list->cnt : remove(list, list->tail->prev); }

int zelt_list_rem_cur(ZELT_LIST* list) { return list->cur ? remove(list, list->cur) : list->cnt; }

int zelt_list_rem_prev(ZELT_LIST* list) {
    // Kept: without a cursor the last element is removed, as if the cursor were behind it.
    ZELT_NODE* node = prev_or_null(list, list->cur ? list->cur : list->tail);
    return node ? remove(list, node) : -1;
}

int zelt_list_rem_next(ZELT_LIST* list) {
    if (!list->cur) return 0;
    ZELT_NODE* node = next_or_null(list, list->cur);
    return node ? remove(list, node) : -1;
}
