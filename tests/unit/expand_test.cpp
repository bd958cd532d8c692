// SPDX-License-Identifier: MIT
#include "unit/picture_model.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <random>

namespace {

/// What the steps write one byte at a time: a left fill that starts `low half` samples before each row. All accesses
/// keep to their plane's memory.
bytes in_steps(const ZELT_IMGB* img, const uint32_t* pad) {
    bytes after = block(img);
    uint8_t* memory = after.data();
    const auto planes = picture_model(img->cs, img->aw, img->ah);
    for (size_t i = 0; i < planes.size(); ++i) {
        const int64_t bx = pad[i] >> 16, by = pad[i] & 0xffff, n = planes[i].bytes, s = img->stride[i];
        const int64_t w = std::min(planes[i].w, s / n - 2 * bx), h = std::min(planes[i].h, img->rows[i] - 2 * by);
        const int64_t size = s * img->rows[i];
        const int64_t p = static_cast<uint8_t*>(img->plane[i]) - static_cast<uint8_t*>(img->base[i]);
        const auto repeat = [&](int64_t to, int64_t from, int64_t period, int64_t count) {
            for (int64_t k = 0; k < count; ++k)
                if (const int64_t at = from + k % period; to + k >= 0 && to + k < size && at >= 0 && at < size)
                    memory[to + k] = memory[at];
        };
        const int64_t sides = w > 0 ? h : 0, above = w > 0 && h > 0 ? by : 0, first = p - bx * n;
        for (int64_t r = 0; r < sides; ++r) repeat(p + r * s - by * n, p + r * s, n, bx * n);
        for (int64_t r = 0; r < sides; ++r) repeat(p + r * s + w * n, p + r * s + (w - 1) * n, n, bx * n);
        for (int64_t r = 1; r <= above; ++r) repeat(first - r * s, first, s, s);
        for (int64_t r = 1; r <= above; ++r) repeat(first + (h - 1 + r) * s, first + (h - 1) * s, s, s);
        memory += size;
    }
    return after;
}

TEST(expand, gives_what_the_steps_give) {
    std::mt19937 random(1);
    test_allocator allocator;
    const auto below = [&](unsigned n) { return static_cast<uint32_t>(random() % n); };
    const uint32_t widths[] = {0, 8, 16, 24, 32, 40, 80},
                   align[] = {8 << 16 | 1, 4 << 16 | 1, 4 << 16 | 1, 16 << 16 | 1};
    for (int i = 0; i < 800; ++i) {
        const int32_t cs = std::next(chroma_of.begin(), below(16))->first;
        uint32_t own[4], given[4];
        for (auto* words : {own, given})
            for (int k = 0; k < 4; ++k) {
                const uint32_t across = cs == 20 || cs / 10 == 6 ? below(40) : widths[below(7)];
                words[k] = across << 16 | (below(2) ? across : below(below(2) ? 3 : 50));
            }
        const bool same = below(3), moved = below(4) == 0;
        const int32_t w = 1 + static_cast<int32_t>(below(60)), h = 1 + static_cast<int32_t>(below(below(4) ? 9 : 90));
        ZELT_IMGB* img = create(w, h, cs, 0, align, own);
        auto* const start = static_cast<uint8_t*>(img->base[0]);
        std::generate(start, start + img->size, [&] { return static_cast<uint8_t>(random()); });
        if (moved) img->plane[0] = start + 2 * below(static_cast<uint32_t>(img->size) / 2);
        const uint32_t* const pad = same ? own : given;
        const bytes expected = in_steps(img, pad);
        // A picture that a caller put together may have no block; then its words tell where it begins.
        if (same && !moved && below(2)) std::fill_n(img->base, 4, nullptr);
        zelt_imgb_expand(img, pad);
        img->base[0] = start;
        ASSERT_EQ(block(img), expected) << "picture " << i << ", cs " << cs << ", " << w << " x " << h << std::hex
                                        << ", made with " << own[0] << ", expanded with " << pad[0];
        ASSERT_TRUE(allocator.intact());
        img->release(img);
    }
}

TEST(expand, leaves_other_pictures_alone) {
    test_allocator allocator;
    const uint32_t pad[] = {8 << 16 | 8, 8 << 16 | 8, 8 << 16 | 8};
    ZELT_IMGB* img = create(16, 8, ZELT_CS_YUV444, 0, nullptr, pad);
    std::memset(img->plane[0], 1, 16);
    const bytes before = block(img);
    zelt_imgb_expand(img, nullptr);
    for (const int cs : {-1, 9, 14, 19, 21, 65, 99, 100, 200, 400, 500}) {
        img->cs = cs;
        zelt_imgb_expand(img, pad);
        EXPECT_EQ(block(img), before) << cs;
    }
    img->release(img);
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
    EXPECT_DEATH(expand(16, 12 << 16 | 12), "");  // a border that is no width of theirs
    EXPECT_DEATH(expand(18, 8 << 16 | 8), "");    // a stride that is not a multiple of 4
    expand(18, 8 << 16);                          // no rows above or below: the stride does not matter
    expand(16, 12);
}

}  // namespace
