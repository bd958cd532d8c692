// SPDX-License-Identifier: MIT
#include "unit/malloc_probe.h"
#include "zelt/common.h"
#include "zelt/mem.h"
#include "zelt/vdata.h"

#include <cstring>
#include <dlfcn.h>
#include <gtest/gtest.h>

TEST(core, version_is_fixed) {
    EXPECT_STREQ(zelt_version(), "Mar 16 2019 18:27:20\n");
    EXPECT_EQ(zelt_version(), zelt_version());
}

TEST(core, logarithms) {
    EXPECT_EQ(zelt_floor_log2(0), -1);
    EXPECT_EQ(zelt_ceil_log2(0), -1);
    for (int n = 0; n < 32; ++n) {
        const uint32_t power = uint32_t{1} << n;
        EXPECT_EQ(zelt_floor_log2(power), n);
        EXPECT_EQ(zelt_ceil_log2(power), n);
        EXPECT_EQ(zelt_floor_log2(power | (power - 1)), n);
        EXPECT_EQ(zelt_ceil_log2(power | (power - 1)), n ? n + 1 : 0);
        EXPECT_EQ(zelt_ceil_log2(power + 1), n + 1);
    }
}

TEST(core, aligned_blocks_remember_what_malloc_gave) {
    for (uint32_t size = 0; size < 200; ++size) {
        malloc_probe probe;
        void* const block = zelt_malloc_align32(size);
        ASSERT_NE(block, nullptr);
        std::memset(block, 0x5a, size);
        const auto stored = static_cast<void**>(block)[-1];
        const auto distance = static_cast<char*>(block) - static_cast<char*>(stored);
        zelt_mfree_align32(block);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 32, 0u);
        EXPECT_TRUE(distance >= 4 && distance <= 35) << distance;
        if (!malloc_probe::works) continue;
        EXPECT_EQ(stored, probe.last);
        EXPECT_EQ(probe.last_freed, probe.last);
        EXPECT_EQ(probe.last_size, size + 36u);
        EXPECT_EQ(probe.live, 0);
    }
    zelt_mfree_align32(nullptr);
    for (const uint32_t size : {0xffffffff, 0xffffffff - 35})  // rounding up must not wrap to a small block
        EXPECT_TRUE(sizeof(size_t) > 4 || !zelt_malloc_align32(size));
}

// Through the loader: a compiler may take two names for two addresses.
TEST(core, second_names_are_the_same_functions) {
    for (const auto& [name, second] : {std::pair{"zelt_malloc_align32", "zelt_malloc_fast_align32"},
                                       std::pair{"zelt_mfree_align32", "zelt_mfree_fast_align32"}}) {
        void* address = dlsym(RTLD_DEFAULT, name);
        EXPECT_NE(address, nullptr) << name;
        EXPECT_EQ(address, dlsym(RTLD_DEFAULT, second)) << second;
    }
}

TEST(core, counters_give_the_new_value_and_wrap) {
    int32_t count = 0;
    EXPECT_EQ(zelt_atomic_dec(&count), -1);
    EXPECT_EQ(count, -1);
    EXPECT_EQ(zelt_atomic_inc(&count), 0);
    count = INT32_MAX;
    EXPECT_EQ(zelt_atomic_inc(&count), INT32_MIN);
    EXPECT_EQ(zelt_atomic_dec(&count), INT32_MAX);
}

TEST(vdata, holds_a_terminated_copy) {
    uint8_t bytes[] = {'a', 0, 'b'};
    ZELT_VDATA v{}, copy{};
    malloc_probe probe;
    const auto expect = [](const ZELT_VDATA& d) {
        EXPECT_EQ(d.type, 7u);
        EXPECT_EQ(d.size, 3);
        EXPECT_EQ(std::memcmp(d.data, "a\0b\0\0", 5), 0);
    };
    ASSERT_EQ(zelt_vdata_set(&v, bytes, 3, 7), ZELT_OK);
    EXPECT_TRUE(probe.last_size == 5 || !malloc_probe::works);
    bytes[0] = 'x';
    ASSERT_EQ(zelt_vdata_cpy(&copy, &v), ZELT_OK);
    expect(v);
    EXPECT_NE(copy.data, v.data);
    for (ZELT_VDATA empty : {v, ZELT_VDATA{3, 4, nullptr}}) {  // with or without something to free
        zelt_vdata_free(&empty);
        EXPECT_EQ(empty.data, nullptr);
        EXPECT_EQ(empty.size, 0);
        EXPECT_EQ(empty.type, 0u);
    }
    expect(copy);
    zelt_vdata_free(&copy);
    zelt_vdata_free(nullptr);
}

TEST(vdata, empty_sources_change_nothing) {
    uint8_t kept = 1, byte = 2;
    ZELT_VDATA v{5, 6, &kept};
    for (const ZELT_VDATA& empty :
         {ZELT_VDATA{7, 0, &byte}, ZELT_VDATA{7, INT32_MIN, &byte}, ZELT_VDATA{7, 1, nullptr}}) {
        EXPECT_EQ(zelt_vdata_set(&v, static_cast<const uint8_t*>(empty.data), empty.size, 7), ZELT_ERR_INVALID_ARG);
        EXPECT_EQ(zelt_vdata_cpy(&v, &empty), ZELT_ERR_INVALID_ARG);
    }
    EXPECT_EQ(v.type, 5u);
    EXPECT_EQ(v.size, 6);
    EXPECT_EQ(v.data, &kept);
}
