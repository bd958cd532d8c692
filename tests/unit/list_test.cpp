// Sequences of calls are those of fuzz/list.cpp.
#include "zelt/list.h"

#include <climits>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>

namespace {
struct list_deleter {
    void operator()(ZELT_LIST* list) const { zelt_list_delete(list); }
};
using owned_list = std::unique_ptr<ZELT_LIST, list_deleter>;

TEST(list, answers_for_what_it_does_not_hold) {
    const owned_list list(zelt_list_create(1, nullptr)), other(zelt_list_create(1, nullptr));
    EXPECT_EQ(zelt_list_get_at(list.get(), -1), nullptr);
    zelt_list_add(list.get(), "b");
    zelt_list_add(other.get(), "c");
    for (void* id : {zelt_list_get_id(other.get(), 0), static_cast<void*>(list->head), static_cast<void*>(list->tail)})
        EXPECT_EQ(zelt_list_get_atid(list.get(), id), nullptr);
    EXPECT_EQ(zelt_list_insert_at(list.get(), "d", INT_MAX), nullptr);
    const void* const first = zelt_list_insert_at(list.get(), "a", INT_MIN);
    EXPECT_EQ(first, list->head->next + 1);
    EXPECT_EQ(zelt_list_get_at(list.get(), INT_MIN), first);  // a negative position is the first one
}

TEST(list, takes_elements_of_any_size) {
    const owned_list nothing(zelt_list_create(0, nullptr)), odd(zelt_list_create(13, nullptr));
    EXPECT_NE(zelt_list_add(nothing.get(), nullptr), nullptr);
    EXPECT_EQ(nothing->cnt, 1);
    EXPECT_EQ(std::memcmp(zelt_list_add(odd.get(), "thirteen long"), "thirteen long", 13), 0);
    zelt_list_delete(nullptr);
}
}  // namespace
