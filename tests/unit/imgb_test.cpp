// SPDX-License-Identifier: MIT
#include "unit/picture_model.h"

#include <gtest/gtest.h>
#include <iterator>
#include <numeric>
#include <random>

namespace {

// The block of a picture after clearing, a byte at a time: `before` but for the bytes that `option` names.
bytes cleared(const bytes& before, const std::vector<plane_model>& planes, int32_t cs, uint32_t option) {
    bytes after = before;
    size_t at = 0;
    for (const plane_model& m : planes) {
        const int64_t below = cs < 100 ? m.aw * m.bytes : m.aw;  // the shortfall of packed formats
        for (int64_t row = -m.py; row < m.ah + m.py; ++row)
            for (int64_t byte = -m.px * m.bytes; byte < (m.aw + m.px) * m.bytes; ++byte, ++at) {
                const bool border = row < 0 || row >= m.ah || byte < 0 || byte >= m.aw * m.bytes;
                // A vertical half of 0 leaves rows of border alone: the strip right of the picture reaches into them.
                const bool right = row >= 0 && row < m.h && byte >= m.w * m.bytes && byte < m.aw * m.bytes;
                const bool under = row >= m.h && row < m.ah && byte >= 0 && byte < below;
                if (((option & 1) && (right || under)) || ((option & 2) && border)) after[at] = 0;
            }
    }
    return after;
}

// A word of a plane: nothing, something common, or anything.
uint32_t random_word(std::mt19937& rng, bool align) {
    const auto half = [&]() -> uint32_t {
        const uint32_t n = rng() % 8;
        if (align) return n == 0 ? 0 : 1u << n % 6;
        return n < 3 ? 0 : rng() % 20;
    };
    return half() << 16 | half();
}

constexpr int32_t all_cs[] = {10, 11, 12, 13, 18, 20,  22,  41,  42,  43,  44,
                              60, 61, 62, 63, 64, 150, 200, 300, 400, 430, 500};

}  // namespace

TEST(imgb, auxiliary_addresses) {
    const uint32_t pad[] = {2 << 16 | 1, 1 << 16 | 1, 0};
    // 8x4 in 12x6 bytes, 4x2 in 6x4, 4x2.
    const struct {
        uint32_t base[4], plane[4];
    } cases[] = {
        {{0x1000, 0x1048, 0x1060}, {0x100e, 0x104f, 0x1060}},
        {{0, 72, 96}, {0, 72 + 7, 96}},  // no second address: none for the first plane, offsets for the others
        {{0xffffffb8, 0, 24}, {0xffffffc6, 0, 24}},  // wraps to 0, which again means none
    };
    for (const auto& c : cases) {
        test_allocator allocator;
        allocator.next_aux = c.base[0];
        ZELT_IMGB* img = create(8, 4, ZELT_CS_YUV420, 0, nullptr, pad);
        for (int again = 0; again < 2; ++again) {
            for (int i = 0; i < 4; ++i) {
                EXPECT_EQ(img->base_aux[i], c.base[i]) << i;
                EXPECT_EQ(img->plane_aux[i], c.plane[i]) << i;
            }
            EXPECT_EQ(zelt_imgb_rebirth(img, 8, 4, ZELT_CS_YUV420, 0, nullptr, pad), ZELT_OK);  // the same once more
        }
        img->release(img);
    }
}

// A picture of 16x16x4 bytes becomes another one and keeps what is the holder's, or nothing changes.
TEST(imgb, rebirth) {
    test_allocator allocator;
    const uint32_t none[4] = {}, pad[] = {0xffffffff, 0, 0, 0};
    const struct {
        int32_t w, h, cs;
        const uint32_t* pad;
        int32_t status;
    } cases[] = {
        {8, 8, ZELT_CS_RGB888, none, ZELT_OK},
        {16, 16, ZELT_CS_RGBA8888, none, ZELT_OK},  // exactly the capacity
        {16, 65, 10, none, ZELT_ERR_OUT_OF_MEMORY},
        {-1, 1, 10, none, ZELT_ERR_OUT_OF_MEMORY},
        {1, INT32_MIN, 10, none, ZELT_ERR_OUT_OF_MEMORY},
        {32768, 32768, 500, none, ZELT_ERR_OUT_OF_MEMORY},
        {1, 1, 10, pad, ZELT_ERR_OUT_OF_MEMORY},
        {1, 1, 14, none, ZELT_ERR_UNSUPPORTED},
        {-1, -1, 700, none, ZELT_ERR_UNSUPPORTED},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.w << " x " << c.h << ", cs " << c.cs);
        ZELT_IMGB* img = create(16, 16, ZELT_CS_YUV444A8);
        std::iota(std::begin(img->user), std::end(img->user), 1u);
        img->x = 3;
        img->y = 4;
        img->addref(img);
        const bytes content = block(img);
        ZELT_IMGB wanted = *img;
        if (c.status == ZELT_OK) {
            wanted.w = wanted.aw = c.w;
            wanted.h = wanted.ah = wanted.rows[0] = c.h;
            wanted.x = wanted.y = 0;
            wanted.cs = c.cs;
            wanted.stride[0] = c.w * (c.cs == ZELT_CS_RGB888 ? 3 : 4);
            for (int i = 1; i < 4; ++i) {  // the planes it no longer has
                wanted.stride[i] = wanted.rows[i] = 0;
                wanted.plane[i] = wanted.base[i] = nullptr;
                wanted.base_aux[i] = wanted.plane_aux[i] = 0;
            }
        }
        EXPECT_EQ(zelt_imgb_rebirth(img, c.w, c.h, c.cs, 3, nullptr, c.pad), c.status);
        EXPECT_EQ(std::memcmp(img, &wanted, sizeof wanted), 0);
        EXPECT_EQ(block(img), content);
        EXPECT_EQ(img->release(img), 1);
        EXPECT_EQ(img->release(img), 0);
    }
}

TEST(imgb, clears_exactly_what_alignment_and_padding_added) {
    test_allocator allocator;
    std::mt19937 rng(20);
    for (int round = 0; round < 2000; ++round) {
        const int32_t cs = all_cs[rng() % std::size(all_cs)];
        uint32_t align[4], pad[4];
        for (uint32_t& word : align) word = random_word(rng, true);
        for (uint32_t& word : pad) word = random_word(rng, false);
        const uint32_t* a = rng() % 4 ? align : nullptr;
        const uint32_t* p = rng() % 4 ? pad : nullptr;
        const int32_t w = static_cast<int32_t>(rng() % 40), h = static_cast<int32_t>(rng() % 30);
        const uint32_t option = rng() % 8;  // 4 is no option
        SCOPED_TRACE(testing::Message() << "round " << round << ": cs " << cs << ", " << w << " x " << h << ", option "
                                        << option << (a ? ", aligned" : "") << (p ? ", padded" : ""));
        // Once into a new block, once into a used and larger one.
        ZELT_IMGB* img = create(w, h, cs, option, a, p);
        ASSERT_NE(img, nullptr);
        bytes filled(static_cast<size_t>(img->size), test_allocator::fill);
        bytes expected = cleared(filled, picture_model(cs, w, h, a, p), cs, option);
        ASSERT_EQ(block(img), expected);
        ZELT_IMGB* other = create(img->size + 100, 1, ZELT_CS_YUV400);
        ASSERT_EQ(zelt_imgb_rebirth(other, w, h, cs, option, a, p), ZELT_OK);
        expected.resize(expected.size() + 100, test_allocator::fill);
        ASSERT_EQ(block(other), expected);
        ASSERT_TRUE(allocator.intact());
        img->release(img);
        other->release(other);
    }
}

TEST(imgb, options_of_their_own) {
    test_allocator allocator;
    const uint32_t pad[] = {2 << 16 | 2, 0, 0, 0}, bps[] = {1 << 16 | 1, 0, 0, 0};
    const int32_t four[4] = {4, 4, 4, 4}, any[4] = {INT32_MAX, -9, 65536, 70};
    ZELT_IMGB* img = create(4, 4, ZELT_CS_YUV400, 0, nullptr, pad);
    const bytes before = block(img);
    EXPECT_EQ(zelt_imgb_option(img, 2, 1, four, four, four, four, nullptr, bps), ZELT_OK);  // no words, no border
    EXPECT_EQ(zelt_imgb_option(img, ~3u, 1, four, four, four, four, pad, bps), ZELT_OK);
    for (int32_t cs : {9, 600, 700, -1}) {  // refused before the border is looked at
        img->cs = cs;
        EXPECT_EQ(zelt_imgb_option(img, 3, 1, four, four, four, four, pad, bps), ZELT_ERR_UNSUPPORTED);
    }
    EXPECT_EQ(block(img), before);
    EXPECT_EQ(zelt_imgb_option(img, 2, 1, four, four, four, four, pad, bps), ZELT_OK);
    EXPECT_EQ(block(img), cleared(before, picture_model(10, 4, 4, nullptr, pad), 10, 2));
    img->cs = 10;  // whatever the sizes are, nothing outside the plane changes
    EXPECT_EQ(zelt_imgb_option(img, 3, 1, four, four, any, any, pad, bps), ZELT_OK);
    EXPECT_TRUE(allocator.intact());
    img->release(img);
}
