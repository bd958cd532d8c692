// SPDX-License-Identifier: MIT
// Sequences of calls are those of fuzz/list.cpp.
#include "zelt/list.h"

#include <cstring>
#include <gtest/gtest.h>

TEST(list, takes_elements_of_any_size) {
    ZELT_LIST *nothing = zelt_list_create(0, nullptr), *odd = zelt_list_create(13, nullptr);
    EXPECT_NE(zelt_list_add(nothing, nullptr), nullptr);
    EXPECT_EQ(nothing->cnt, 1);
    EXPECT_EQ(std::memcmp(zelt_list_add(odd, "thirteen long"), "thirteen long", 13), 0);
    for (ZELT_LIST* list : {nothing, odd, static_cast<ZELT_LIST*>(nullptr)}) zelt_list_delete(list);
}
