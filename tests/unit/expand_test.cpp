#include "unit/picture_model.h"
#include "unit/test_allocator.h"
#include "zelt/imgb.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

using bytes = std::vector<uint8_t>;

constexpr int planar[] = {10, 11, 12, 13, 18, 20, 22, 41, 42, 43, 44, 60, 61, 62, 63, 64};

uint32_t word(uint32_t high, uint32_t low) { return high << 16 | low; }

/// A picture of random bytes, border and all.
ZELT_IMGB* random_picture(int w, int h, int cs, const uint32_t* align, const uint32_t* pad, std::mt19937& random) {
    ZELT_IMGB* img = zelt_imgb_create(w, h, cs, 0, align, pad, test_allocator::alloc, test_allocator::free, nullptr);
    auto* block = static_cast<uint8_t*>(img->base[0]);
    std::generate(block, block + img->size, [&] { return static_cast<uint8_t>(random()); });
    return img;
}

bytes block(const ZELT_IMGB* img) {
    const auto* start = static_cast<const uint8_t*>(img->base[0]);
    return bytes(start, start + img->size);
}

/// Every byte outside the picture proper becomes that of the nearest sample inside.
bytes replicated(const ZELT_IMGB* img, const uint32_t* pad) {
    bytes after = block(img);
    const auto planes = picture_model(img->cs, img->aw, img->ah);
    for (size_t i = 0; i < planes.size(); ++i) {
        const int64_t px = pad[i] >> 16, py = pad[i] & 0xffff, stride = img->stride[i], n = planes[i].bytes;
        const int64_t start = static_cast<uint8_t*>(img->plane[i]) - static_cast<uint8_t*>(img->base[0]);
        const auto at = [&](int64_t x, int64_t y, int64_t k) -> uint8_t& {
            return after[static_cast<size_t>(start + y * stride + x * n + k)];
        };
        for (int64_t y = -py; y < planes[i].h + py; ++y)
            for (int64_t x = -px; x < planes[i].w + px; ++x)
                for (int64_t k = 0; k < n; ++k)
                    at(x, y, k) =
                        at(std::clamp<int64_t>(x, 0, planes[i].w - 1), std::clamp<int64_t>(y, 0, planes[i].h - 1), k);
    }
    return after;
}

TEST(expand, gives_every_byte_outside_that_of_the_nearest_sample) {
    std::mt19937 random(1);
    test_allocator allocator;
    const auto below = [&](unsigned n) { return static_cast<int>(random() % n); };
    const auto check = [&](int w, int h, int cs, const uint32_t* align, const uint32_t* pad) {
        ZELT_IMGB* img = random_picture(w, h, cs, align, pad, random);
        const bytes expected = replicated(img, pad);
        zelt_imgb_expand(img, pad);
        EXPECT_EQ(block(img), expected) << "cs " << cs << ", border " << (pad[0] >> 16);
        EXPECT_TRUE(allocator.intact());
        img->release(img);
    };
    for (const int cs : planar)
        for (const uint32_t border : {0u, 8u, 16u, 24u, 32u, 40u, 80u}) {
            const uint32_t align[] = {word(8, 1), word(4, 1), word(4, 1), word(16, 1)}, next = border ? 8 : 0;
            const uint32_t pad[] = {word(border, border), word(border, border), word(next, next), 0};
            check(16 + below(3) * 16, 1 + below(border == 16 ? 90 : 9), cs, align, pad);
        }
    for (const int cs : {20, 60, 62})  // samples of 16 bits have any border
        for (uint32_t border = 0; border < 40; ++border) {
            const uint32_t pad[] = {word(border, border), word(border / 2, border / 2), word(3, 3)};
            check(1 + below(9), 1 + below(5), cs, nullptr, pad);
        }
}

/// What the steps write one byte at a time: a left fill that starts `low half` samples before each row.
bytes in_steps(const ZELT_IMGB* img, uint32_t pad) {
    bytes after = block(img);
    const int64_t bx = pad >> 16, by = pad & 0xffff, s = img->stride[0], n = img->cs == 20 ? 2 : 1;
    const int64_t w = std::min<int64_t>(img->aw, s / n - 2 * bx), h = std::min<int64_t>(img->ah, img->rows[0] - 2 * by);
    const int64_t p = static_cast<uint8_t*>(img->plane[0]) - static_cast<uint8_t*>(img->base[0]);
    if (w < 1 || h < 1) return after;
    const auto size = static_cast<int64_t>(after.size());
    const auto put = [&](int64_t to, int64_t from) {
        if (to >= 0 && to < size && from >= 0 && from < size)
            after[static_cast<size_t>(to)] = after[static_cast<size_t>(from)];
    };
    for (int64_t r = 0; r < h; ++r)
        for (int64_t i = 0; i < bx * n; ++i) put(p + r * s - by * n + i, p + r * s + i % n);
    for (int64_t r = 0; r < h; ++r)
        for (int64_t i = 0; i < bx * n; ++i) put(p + r * s + w * n + i, p + r * s + (w - 1) * n + i % n);
    for (int64_t r = 1; r <= by; ++r)
        for (int64_t i = 0; i < s; ++i) put(p - bx * n - r * s + i, p - bx * n + i);
    for (int64_t r = 1; r <= by; ++r)
        for (int64_t i = 0; i < s; ++i) put(p - bx * n + (h - 1 + r) * s + i, p - bx * n + (h - 1) * s + i);
    return after;
}

TEST(expand, unequal_halves_and_other_words_than_the_pictures_own) {
    std::mt19937 random(3);
    test_allocator allocator;
    const uint32_t widths[] = {0, 8, 16, 24, 32, 40, 80};
    const auto width = [&] { return widths[random() % 7]; };
    for (int i = 0; i < 600; ++i) {
        const uint32_t own = word(width(), random() % 3 ? static_cast<uint32_t>(random() % 50) : 0);
        const uint32_t given = i % 3 ? own : word(width(), static_cast<uint32_t>(random() % 50));
        ZELT_IMGB* img = random_picture(4 * (1 + static_cast<int>(random() % 20)), 1 + static_cast<int>(random() % 70),
                                        i % 4 ? 10 : 20, nullptr, &own, random);
        const bytes expected = in_steps(img, given);
        zelt_imgb_expand(img, &given);
        ASSERT_EQ(block(img), expected) << std::hex << "made with " << own << ", expanded with " << given;
        ASSERT_TRUE(allocator.intact());
        img->release(img);
    }
}

TEST(expand, leaves_other_pictures_alone) {
    std::mt19937 random(4);
    test_allocator allocator;
    const uint32_t pad = word(8, 8);
    for (const int cs : {200, 400, 500}) {
        ZELT_IMGB* img = random_picture(16, 8, cs, nullptr, &pad, random);
        const bytes before = block(img);
        zelt_imgb_expand(img, &pad);
        EXPECT_EQ(block(img), before);
        img->release(img);
    }
    ZELT_IMGB* img = random_picture(16, 8, 13, nullptr, nullptr, random);
    const bytes before = block(img);
    for (const int cs : {9, 14, 19, 21, 65, 99, -1}) {
        img->cs = cs;
        zelt_imgb_expand(img, &pad);
    }
    img->cs = 13;
    zelt_imgb_expand(img, nullptr);
    EXPECT_EQ(block(img), before);
    img->release(img);
}

TEST(expand, planes_that_a_caller_put_together) {
    bytes memory(24 * 20, 0);
    ZELT_IMGB img{};
    img.cs = ZELT_CS_YUV400;
    img.aw = 8;
    img.ah = 4;
    img.stride[0] = 24;
    img.rows[0] = 20;
    img.plane[0] = &memory[8 * 24 + 8];
    const uint32_t pad = word(8, 8);
    memory[8 * 24 + 8] = 5;
    memory[11 * 24 + 15] = 6;
    zelt_imgb_expand(&img, &pad);
    EXPECT_EQ(memory.front(), 5);
    EXPECT_EQ(memory.back(), 6);
}

TEST(expand_death, stops_on_widths_that_the_kernels_do_not_take) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    std::vector<uint8_t> memory(4096);
    for (const int count : {12, 4, 48, -8, 81})
        EXPECT_DEATH(zelt_imgb_expand_ver(&memory[0], &memory[1000], 4, 128, count), "") << count;
    for (const int width : {2, 7, 18, 101, -6})
        EXPECT_DEATH(zelt_imgb_expand_hor(&memory[0], &memory[1000], width, 1), "") << width;

    const auto expand = [](int w, uint32_t pad) {
        ZELT_IMGB* img = zelt_imgb_create(w, 8, ZELT_CS_YUV400, 0, nullptr, &pad, nullptr, nullptr, nullptr);
        zelt_imgb_expand(img, &pad);
        img->release(img);
    };
    EXPECT_DEATH(expand(16, word(12, 12)), "");  // a border that is no width of theirs
    EXPECT_DEATH(expand(18, word(8, 8)), "");    // a stride that is not a multiple of 4
    expand(18, word(8, 0));                      // no rows above or below: the stride does not matter
    expand(16, word(0, 12));
}

}  // namespace
