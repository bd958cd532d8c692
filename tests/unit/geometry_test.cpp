#include "unit/picture_model.h"
#include "unit/test_allocator.h"
#include "zelt/imgb.h"

#include <gtest/gtest.h>

namespace {

constexpr int64_t limit = INT32_MAX;

int64_t multiple(int64_t n, int64_t step) { return step ? (n + step - 1) / step * step : 0; }

// What the allocator is asked for, or -1: it gives nothing, so that no memory is needed for the largest.
int64_t asked_for;
void* refuse(uint32_t size, uint32_t*) {
    asked_for = size;
    return nullptr;
}

int64_t block_size(int32_t w, int32_t h, int32_t cs, const uint32_t* align = nullptr, const uint32_t* pad = nullptr) {
    int32_t err = 1;
    asked_for = -1;
    EXPECT_EQ(zelt_imgb_create(w, h, cs, 0, align, pad, refuse, test_allocator::free, &err), nullptr);
    EXPECT_EQ(err, ZELT_ERR_BUFFER_ALLOC);
    return asked_for;
}

// A word per plane, as zelt_imgb_create takes them.
struct words {
    uint32_t word[4];
    words(uint32_t across, uint32_t down) {
        for (uint32_t& w : word) w = across << 16 | down;
    }
    operator const uint32_t*() const { return word; }
};

}  // namespace

TEST(geometry, dimensions_of_every_identifier) {
    for (int32_t cs : {INT32_MIN, -100, -1, INT32_MAX}) {
        int32_t w[4]{}, h[4]{}, n;
        uint32_t bps[4];
        EXPECT_EQ(zelt_imgb_get_dimension(cs, w, h, &n, bps), ZELT_ERR_UNSUPPORTED);
    }
    for (int32_t cs = 0; cs <= 1000; ++cs)
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
            const auto expected = picture_model(cs, 21, 11);
            int32_t err = 1;
            ZELT_IMGB* img = zelt_imgb_create(21, 11, cs, 0, a, p, test_allocator::alloc, test_allocator::free, &err);
            ASSERT_EQ(err, expected.empty() ? ZELT_ERR_UNSUPPORTED : ZELT_OK);
            ASSERT_EQ(img == nullptr, expected.empty());
            if (!img) continue;
            auto* at = static_cast<uint8_t*>(img->base[0]);
            for (size_t i = 0; i < 4; ++i) {
                const bool used = i < expected.size();
                const plane_model m = used ? expected[i] : plane_model{};
                const int64_t px = p ? p[i] >> 16 : 0, py = p ? p[i] & 0xffff : 0;
                const int64_t aw = a ? multiple(m.w, a[i] >> 16) : m.w, ah = a ? multiple(m.h, a[i] & 0xffff) : m.h;
                const int64_t stride = used ? (aw + 2 * px) * m.bytes : 0, rows = used ? ah + 2 * py : 0;
                EXPECT_EQ(img->stride[i], stride);
                EXPECT_EQ(img->rows[i], rows);
                EXPECT_EQ(img->base[i], used ? at : nullptr);
                EXPECT_EQ(img->plane[i], used ? at + px * m.bytes + py * stride : nullptr);
                if (i == 0) {
                    EXPECT_EQ(img->aw, aw);
                    EXPECT_EQ(img->ah, ah);
                }
                at += stride * rows;
            }
            EXPECT_EQ(img->size, at - static_cast<uint8_t*>(img->base[0]));
            EXPECT_EQ(static_cast<uint32_t>(img->size), allocator.last_size);
            EXPECT_EQ(img->cs, cs);
            EXPECT_EQ(img->x | img->y, 0);
            for (const uint32_t word : img->reserved) EXPECT_EQ(word, 0u);
            EXPECT_EQ(img->w, 21);
            EXPECT_EQ(img->h, 11);
            EXPECT_EQ(img->release(img), 0);
        }
}

TEST(geometry, a_half_of_0_is_no_size) {
    EXPECT_EQ(block_size(10, 10, ZELT_CS_YUV400, words(0, 8)), 0);
    EXPECT_EQ(block_size(10, 10, ZELT_CS_YUV400, words(8, 0)), 0);
    EXPECT_EQ(block_size(10, 10, ZELT_CS_YUV400, words(0, 0), words(2, 3)), 4 * 6);
}

// Everything that a 32-bit product or sum would get wrong.
TEST(geometry, sizes_beyond_the_limit_are_refused_unasked) {
    constexpr int32_t max = INT32_MAX, min = INT32_MIN;
    struct {
        int32_t w, h, cs;
        int64_t size;  // -1: refused
    } const cases[] = {
        {max, 1, ZELT_CS_YUV400, limit},    {46341, 46340, ZELT_CS_YUV400, int64_t{46341} * 46340},
        {46341, 46341, ZELT_CS_YUV400, -1}, {32768, 32768, ZELT_CS_RGBA8888, -1},  // 2^32: 0 in 32 bits
        {65536, 65536, ZELT_CS_YUV400, -1}, {65536, 65537, ZELT_CS_YUV400, -1},    // 65536 in 32 bits
        {32768, 32768, ZELT_CS_YUV444, -1},                                        // the third plane takes it over
        {max, max, ZELT_CS_YUV444A8, -1},   {1 << 30, 0, ZELT_CS_RGBA8888, -1},    // a stride that no field holds
        {max, 0, ZELT_CS_YUV400, 0},        {0, max, ZELT_CS_YUV400, 0},
        {0, 0, ZELT_CS_YUV420, 0},
    };
    for (const auto& c : cases) EXPECT_EQ(block_size(c.w, c.h, c.cs), c.size) << c.w << " x " << c.h << ", cs " << c.cs;
    EXPECT_EQ(block_size(max, 1, ZELT_CS_YUV400, words(0x8000, 1)), -1);
    EXPECT_EQ(block_size(0, max, ZELT_CS_YUV400, nullptr, words(0, 0xffff)), -1);
    EXPECT_EQ(block_size(1, 1, ZELT_CS_YUV400, nullptr, words(0x1000, 0x1000)), int64_t{0x2001} * 0x2001);
    EXPECT_EQ(block_size(1, 1, ZELT_CS_YUV400, nullptr, words(0xffff, 0xffff)), -1);
    for (const auto& [w, h] : {std::pair{-1, 1}, {1, -1}, {-1, -1}, {min, min}, {min, 1}, {-65536, -65536}, {-1, 0}})
        for (int32_t cs : {ZELT_CS_YUV400, ZELT_CS_YUV420, ZELT_CS_RGB565})
            EXPECT_EQ(block_size(w, h, cs, words(16, 16), words(64, 64)), -1) << w << " x " << h << ", cs " << cs;
}
