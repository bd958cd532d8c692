#include "unit/malloc_probe.h"
#include "zelt/common.h"
#include "zelt/mem.h"
#include "zelt/vdata.h"

#include <cstring>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

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
        void* block;
        void* raw;
        uint64_t raw_size;
        void* freed;
        int live;
        {
            malloc_probe probe;
            block = zelt_malloc_align32(size);
            raw = probe.last;
            raw_size = probe.last_size;
        }
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 32, 0u);
        std::memset(block, 0x5a, size);
        const auto stored = static_cast<void**>(block)[-1];
        const auto distance = static_cast<char*>(block) - static_cast<char*>(stored);
        EXPECT_GE(distance, 4);
        EXPECT_LE(distance, 35);
        {
            malloc_probe probe;
            zelt_mfree_align32(block);
            live = probe.live;
            freed = probe.last_freed;
        }
        if (malloc_probe::works) {
            EXPECT_EQ(stored, raw);
            EXPECT_EQ(freed, raw);
            EXPECT_EQ(raw_size, size + 36u);
            EXPECT_EQ(live, -1);
        }
    }
    zelt_mfree_align32(nullptr);
}

TEST(core, aligned_blocks_that_cannot_be_had_are_null) {
    if (sizeof(size_t) == 4) {
        EXPECT_EQ(zelt_malloc_align32(0xffffffff), nullptr);  // rounding up must not wrap to a small block
        EXPECT_EQ(zelt_malloc_align32(0xffffffff - 35), nullptr);
    }
    if (!malloc_probe::works) GTEST_SKIP() << "malloc is the sanitizer's";
    malloc_probe probe(1);
    void* block = zelt_malloc_align32(100);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(probe.live, 0);
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

TEST(core, counters_lose_nothing_between_threads) {
    constexpr int nthreads = 4, steps = 20000;
    int32_t count = 0;
    std::vector<uint8_t> seen(nthreads * steps + 1);
    const auto in_threads = [](auto step) {
        std::vector<std::thread> threads;
        for (int t = 0; t < nthreads; ++t)
            threads.emplace_back([&] {
                for (int i = 0; i < steps; ++i) step();
            });
        for (auto& t : threads) t.join();
    };
    in_threads([&] { ++seen[static_cast<size_t>(zelt_atomic_inc(&count))]; });  // each value is given once
    EXPECT_EQ(count, nthreads * steps);
    EXPECT_EQ(std::vector<uint8_t>(seen.begin() + 1, seen.end()), std::vector<uint8_t>(nthreads * steps, 1));
    in_threads([&] { zelt_atomic_dec(&count); });
    EXPECT_EQ(count, 0);
}

TEST(vdata, holds_a_terminated_copy) {
    uint8_t bytes[] = {'a', 0, 'b'};
    ZELT_VDATA v{}, copy{};
    const auto expect = [](const ZELT_VDATA& d) {
        EXPECT_EQ(d.type, 7u);
        EXPECT_EQ(d.size, 3);
        EXPECT_EQ(std::memcmp(d.data, "a\0b\0\0", 5), 0);
    };
    ASSERT_EQ(zelt_vdata_set(&v, bytes, 3, 7), ZELT_OK);
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

TEST(vdata, failed_allocation_leaves_null) {
    if (!malloc_probe::works) GTEST_SKIP() << "malloc is the sanitizer's";
    uint8_t kept = 1;
    const uint8_t bytes[] = {1, 2, 3};
    ZELT_VDATA v{5, 6, &kept};
    malloc_probe probe(1);
    EXPECT_EQ(zelt_vdata_set(&v, bytes, 3, 7), ZELT_ERR_OUT_OF_MEMORY);
    EXPECT_EQ(probe.last_size, 5u);
    EXPECT_EQ(v.data, nullptr);
    EXPECT_EQ(v.type, 5u);  // the rest stands
    EXPECT_EQ(v.size, 6);
}
