// SPDX-License-Identifier: MIT
#include "unit/picture_model.h"

#include <gtest/gtest.h>

namespace {

constexpr int64_t limit = INT32_MAX;

// What the allocator is asked for, or -1: it gives nothing, so that no memory is needed for the largest.
int64_t asked_for;
void* refuse(uint32_t size, uint32_t*) {
    asked_for = size;
    return nullptr;
}

// The same word for every plane, as zelt_imgb_create takes them; null for none
struct words {
    uint32_t word[4];
    words(uint32_t w) : word{w, w, w, w} {}
    operator const uint32_t*() const { return word[0] ? word : nullptr; }
};

}  // namespace

TEST(geometry, dimensions_of_every_identifier) {
    std::vector<int32_t> ids = {INT32_MIN, -100, -1, INT32_MAX};
    for (int32_t cs = 0; cs <= 1000; ++cs) ids.push_back(cs);
    for (int32_t cs : ids)
        for (const auto& [width, height] : {std::pair{1, 1}, {5, 3}, {6, 2}, {7, 8}, {0, 0}, {INT32_MAX, INT32_MAX}}) {
            SCOPED_TRACE(testing::Message() << "cs " << cs << ", " << width << " x " << height);
            constexpr int32_t canary = -77;
            int32_t w[4] = {width, canary, canary, canary}, h[4] = {height, canary, canary, canary}, n = canary;
            uint32_t bps[4] = {1000, 1000, 1000, 1000};
            auto expected = picture_model(cs, width, height);
            if (cs >= 100 && cs != 400) expected.clear();
            ASSERT_EQ(zelt_imgb_get_dimension(cs, w, h, &n, bps), expected.empty() ? ZELT_ERR_UNSUPPORTED : ZELT_OK);
            EXPECT_EQ(n, expected.empty() ? canary : static_cast<int32_t>(expected.size()));
            for (size_t i = 0; i < 4; ++i) {
                const bool used = i < expected.size();
                EXPECT_EQ(w[i], used ? expected[i].w : i ? canary : width);
                EXPECT_EQ(h[i], used ? expected[i].h : i ? canary : height);
                EXPECT_EQ(bps[i], used ? static_cast<uint32_t>(expected[i].bytes) << 16 | 1 : 1000);
            }
        }
}

TEST(geometry, pictures_of_every_identifier) {
    const uint32_t align[] = {8 << 16 | 4, 4 << 16 | 2, 16 << 16 | 1, 1 << 16 | 32};
    const uint32_t pad[] = {3 << 16 | 2, 0, 1 << 16, 5};
    test_allocator allocator;
    for (int32_t cs = -1; cs <= 1000; ++cs)
        for (const int words : {0, 1, 2, 3}) {
            SCOPED_TRACE(testing::Message() << "cs " << cs << ", words " << words);
            const uint32_t* a = words & 1 ? align : nullptr;
            const uint32_t* p = words & 2 ? pad : nullptr;
            auto planes = picture_model(cs, 21, 11, a, p);
            int32_t err = 1;
            ZELT_IMGB* img = zelt_imgb_create(21, 11, cs, 0, a, p, test_allocator::alloc, test_allocator::free, &err);
            ASSERT_EQ(err, planes.empty() ? ZELT_ERR_UNSUPPORTED : ZELT_OK);
            ASSERT_EQ(img == nullptr, planes.empty());
            if (!img) continue;
            auto* at = static_cast<uint8_t*>(img->base[0]);
            const size_t used = planes.size();
            planes.resize(4);
            for (size_t i = 0; i < 4; ++i) {
                const plane_model& m = planes[i];
                EXPECT_EQ(img->stride[i], m.stride());
                EXPECT_EQ(img->rows[i], m.rows());
                EXPECT_EQ(img->base[i], i < used ? at : nullptr);
                EXPECT_EQ(img->plane[i], i < used ? at + m.px * m.bytes + m.py * m.stride() : nullptr);
                at += m.stride() * m.rows();
            }
            EXPECT_EQ(img->size, at - static_cast<uint8_t*>(img->base[0]));
            EXPECT_EQ(static_cast<uint32_t>(img->size), allocator.last_size);
            const int64_t fields[][2] = {{img->cs, cs},          {img->x, 0},  {img->y, 0},
                                         {img->w, 21},           {img->h, 11}, {img->aw, planes[0].aw},
                                         {img->ah, planes[0].ah}};
            for (const auto& [field, wanted] : fields) EXPECT_EQ(field, wanted) << &field - fields[0];
            for (const uint32_t word : img->reserved) EXPECT_EQ(word, 0u);
            EXPECT_EQ(img->release(img), 0);
        }
}

// Everything that a 32-bit product or sum would get wrong.
TEST(geometry, sizes_beyond_the_limit_are_refused_unasked) {
    constexpr int32_t max = INT32_MAX, min = INT32_MIN;
    struct picture {
        int32_t w, h, cs;
        int64_t size;  // -1: refused
        words align = 0, pad = 0;
    };
    const picture cases[] = {
        {max, 1, 10, limit},
        {46341, 46340, 10, int64_t{46341} * 46340},
        {46341, 46341, 10, -1},
        {32768, 32768, ZELT_CS_RGBA8888, -1},  // 2^32: 0 in 32 bits
        {65536, 65536, 10, -1},
        {65536, 65537, 10, -1},              // 65536 in 32 bits
        {32768, 32768, ZELT_CS_YUV444, -1},  // the third plane takes it over
        {max, max, ZELT_CS_YUV444A8, -1},
        {1 << 30, 0, ZELT_CS_RGBA8888, -1},  // a stride that no field holds
        {max, 0, 10, 0},
        {0, max, 10, 0},
        {0, 0, ZELT_CS_YUV420, 0},
        {max, 1, 10, -1, 0x80000001},
        {0, max, 10, -1, 0, 0xffff},
        {1, 1, 10, int64_t{0x2001} * 0x2001, 0, 0x10001000},
        {1, 1, 10, -1, 0, 0xffffffff},
        // a half of 0 is no size
        {10, 10, 10, 0, 8},
        {10, 10, 10, 0, 8 << 16},
    };
    const auto check = [](const picture& c) {
        int32_t err = 1;
        asked_for = -1;
        EXPECT_EQ(zelt_imgb_create(c.w, c.h, c.cs, 0, c.align, c.pad, refuse, test_allocator::free, &err), nullptr);
        EXPECT_EQ(err, ZELT_ERR_BUFFER_ALLOC);
        EXPECT_EQ(asked_for, c.size) << c.w << " x " << c.h << ", cs " << c.cs;
    };
    for (const picture& c : cases) check(c);
    for (const auto& [w, h] : {std::pair{-1, 1}, {1, -1}, {-1, -1}, {min, min}, {min, 1}, {-65536, -65536}, {-1, 0}})
        for (int32_t cs : {10, 11, 200}) check({w, h, cs, -1, 16 << 16 | 16, 64 << 16 | 64});
}
