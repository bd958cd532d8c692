#include "unit/picture_model.h"
#include "unit/test_allocator.h"
#include "zelt/imgb.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

using bytes = std::vector<uint8_t>;

ZELT_IMGB* create(int32_t w, int32_t h, int32_t cs, uint32_t option = 0, const uint32_t* align = nullptr,
                  const uint32_t* pad = nullptr) {
    int32_t err = 1;
    ZELT_IMGB* img = zelt_imgb_create(w, h, cs, option, align, pad, test_allocator::alloc, test_allocator::free, &err);
    EXPECT_EQ(img ? ZELT_OK : ZELT_ERR_BUFFER_ALLOC, err);
    return img;
}

bytes block(const ZELT_IMGB* img) {
    const auto* start = static_cast<const uint8_t*>(img->base[0]);
    return bytes(start, start + img->size);
}

// The block of a picture after clearing, a byte at a time: `before` but for the bytes that `option` names.
bytes cleared(const bytes& before, int32_t w, int32_t h, int32_t cs, uint32_t option, const uint32_t* align,
              const uint32_t* pad) {
    bytes after = before;
    size_t at = 0;
    const auto planes = picture_model(cs, w, h);
    for (size_t i = 0; i < planes.size(); ++i) {
        const plane_model& m = planes[i];
        const auto up = [](int64_t n, int64_t step) { return step ? (n + step - 1) / step * step : 0; };
        const int64_t aw = align ? up(m.w, align[i] >> 16) : m.w, ah = align ? up(m.h, align[i] & 0xffff) : m.h;
        const int64_t px = pad ? pad[i] >> 16 : 0, py = pad ? pad[i] & 0xffff : 0;
        const int64_t below = cs < 100 ? aw * m.bytes : aw;  // the shortfall of packed formats
        for (int64_t row = -py; row < ah + py; ++row)
            for (int64_t byte = -px * m.bytes; byte < (aw + px) * m.bytes; ++byte, ++at) {
                const bool border = row < 0 || row >= ah || byte < 0 || byte >= aw * m.bytes;
                // A vertical half of 0 leaves rows of border alone: the strip right of the picture reaches into them.
                const bool right = row >= 0 && row < m.h && byte >= m.w * m.bytes && byte < aw * m.bytes;
                const bool under = row >= m.h && row < ah && byte >= 0 && byte < below;
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

TEST(imgb, default_allocator) {
    test_allocator unused;  // a free routine alone is ignored: were it called, it would complain
    ZELT_IMGB* img =
        zelt_imgb_create(5, 4, ZELT_CS_YUV444, 0, nullptr, nullptr, nullptr, test_allocator::free, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(img->base[0]) % 32, 0u);
    EXPECT_EQ(img->release(img), 0);
    EXPECT_EQ(unused.calls, 0);
}

TEST(imgb, auxiliary_addresses) {
    const uint32_t pad[] = {2 << 16 | 1, 1 << 16 | 1, 0};
    // 8x4 in 12x6 bytes, 4x2 in 6x4, 4x2.
    struct {
        uint32_t aux, base[3], plane[3];
    } cases[] = {
        {0x1000, {0x1000, 0x1048, 0x1060}, {0x100e, 0x104f, 0x1060}},
        {0, {0, 72, 96}, {0, 72 + 7, 96}},  // no second address: none for the first plane, offsets for the others
        {0xffffffb8, {0xffffffb8, 0, 24}, {0xffffffc6, 0, 24}},  // wraps to 0, which again means none
    };
    for (const auto& c : cases) {
        test_allocator allocator;
        allocator.next_aux = c.aux;
        ZELT_IMGB* img = create(8, 4, ZELT_CS_YUV420, 0, nullptr, pad);
        for (int again = 0; again < 2; ++again) {
            for (int i = 0; i < 3; ++i) {
                EXPECT_EQ(img->base_aux[i], c.base[i]) << i;
                EXPECT_EQ(img->plane_aux[i], c.plane[i]) << i;
            }
            EXPECT_EQ(img->base_aux[3], 0u);
            EXPECT_EQ(img->plane_aux[3], 0u);
            EXPECT_EQ(zelt_imgb_rebirth(img, 8, 4, ZELT_CS_YUV420, 0, nullptr, pad), ZELT_OK);  // the same once more
        }
        img->release(img);
    }
}

TEST(imgb, failures_leave_nothing_behind) {
    int32_t err = 1;
    test_allocator allocator;
    EXPECT_EQ(zelt_imgb_create(1, 1, 10, 0, nullptr, nullptr, test_allocator::alloc, nullptr, &err), nullptr);
    EXPECT_EQ(err, ZELT_ERR_INVALID_ARG);
    EXPECT_EQ(zelt_imgb_create(1, 1, 10, 0, nullptr, nullptr, test_allocator::alloc, nullptr, nullptr), nullptr);
    EXPECT_EQ(zelt_imgb_create(1, 1, 600, 0, nullptr, nullptr, test_allocator::alloc, test_allocator::free, &err),
              nullptr);
    EXPECT_EQ(err, ZELT_ERR_UNSUPPORTED);
    EXPECT_EQ(allocator.calls, 0);
    allocator.failing = 1;
    EXPECT_EQ(create(1, 1, ZELT_CS_YUV400), nullptr);
}

TEST(imgb, rebirth_keeps_what_is_the_holders) {
    test_allocator allocator;
    ZELT_IMGB* img = create(16, 16, ZELT_CS_YUV444A8);
    const auto* start = img->base[0];
    for (uint32_t i = 0; i < 17; ++i) img->user[i] = i + 1;
    img->x = 3;
    img->y = 4;
    img->addref(img);
    EXPECT_EQ(zelt_imgb_rebirth(img, 8, 8, ZELT_CS_RGB888, 0, nullptr, nullptr), ZELT_OK);
    EXPECT_EQ(img->getref(img), 2);
    EXPECT_EQ(img->size, 16 * 16 * 4);
    EXPECT_EQ(img->base[0], start);
    EXPECT_EQ(img->x, 0);
    EXPECT_EQ(img->y, 0);
    for (uint32_t i = 0; i < 17; ++i) EXPECT_EQ(img->user[i], i + 1);
    EXPECT_EQ(img->w, 8);
    EXPECT_EQ(img->stride[0], 24);
    for (int i = 1; i < 4; ++i) {  // the planes it no longer has
        EXPECT_EQ(img->stride[i], 0);
        EXPECT_EQ(img->rows[i], 0);
        EXPECT_EQ(img->plane[i], nullptr);
        EXPECT_EQ(img->base[i], nullptr);
        EXPECT_EQ(img->base_aux[i], 0u);
    }
    EXPECT_EQ(zelt_imgb_rebirth(img, 16, 16, ZELT_CS_RGBA8888, 0, nullptr, nullptr), ZELT_OK);  // exactly the capacity
    img->release(img);
    EXPECT_EQ(img->release(img), 0);
}

TEST(imgb, failed_rebirth_changes_nothing) {
    test_allocator allocator;
    const uint32_t pad[] = {0xffffffff, 0, 0, 0};
    ZELT_IMGB* img = create(16, 16, ZELT_CS_YUV400);
    img->x = 1;
    ZELT_IMGB before;
    std::memcpy(&before, img, sizeof before);
    const bytes content = block(img);
    const struct {
        int32_t w, h, cs;
        const uint32_t* pad;
        int32_t status;
    } cases[] = {
        {16, 17, 10, nullptr, ZELT_ERR_OUT_OF_MEMORY},
        {-1, 1, 10, nullptr, ZELT_ERR_OUT_OF_MEMORY},
        {1, INT32_MIN, 10, nullptr, ZELT_ERR_OUT_OF_MEMORY},
        {32768, 32768, 500, nullptr, ZELT_ERR_OUT_OF_MEMORY},
        {1, 1, 10, pad, ZELT_ERR_OUT_OF_MEMORY},
        {1, 1, 14, nullptr, ZELT_ERR_UNSUPPORTED},
        {-1, -1, 700, nullptr, ZELT_ERR_UNSUPPORTED},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(zelt_imgb_rebirth(img, c.w, c.h, c.cs, 3, nullptr, c.pad), c.status);
        EXPECT_EQ(std::memcmp(img, &before, sizeof before), 0);
        EXPECT_EQ(block(img), content);
    }
    img->release(img);
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
        const bytes filled(static_cast<size_t>(img->size), test_allocator::fill);
        const bytes expected = cleared(filled, w, h, cs, option, a, p);
        ASSERT_EQ(block(img), expected);
        ZELT_IMGB* other = create(img->size + 100, 1, ZELT_CS_YUV400);
        ASSERT_EQ(zelt_imgb_rebirth(other, w, h, cs, option, a, p), ZELT_OK);
        bytes more = expected;
        more.resize(more.size() + 100, test_allocator::fill);
        ASSERT_EQ(block(other), more);
        ASSERT_TRUE(allocator.intact());
        img->release(img);
        other->release(other);
    }
}

// Whatever the words and the option's arrays say: no byte changes outside the planes that it was told of.
TEST(imgb, clearing_never_leaves_the_plane) {
    test_allocator allocator;
    std::mt19937 rng(21);
    const int32_t extremes[] = {INT32_MIN, INT32_MIN + 1, -65536, -1, 0, 1, 7, 100, 65535, 65536, 1 << 30, INT32_MAX};
    const auto any = [&] {
        return rng() % 3 ? static_cast<int32_t>(rng() % 60) : extremes[rng() % std::size(extremes)];
    };
    const auto word = [&] { return rng() % 2 ? static_cast<uint32_t>(rng()) : (rng() % 20 << 16 | rng() % 20); };
    int changed = 0;
    for (int round = 0; round < 5000; ++round) {
        SCOPED_TRACE(testing::Message() << "round " << round);
        const int32_t cs = all_cs[rng() % std::size(all_cs)];
        const uint32_t border[] = {2 << 16 | 3, 1 << 16 | 1, 0, 4 << 16};
        ZELT_IMGB* img =
            create(1 + static_cast<int32_t>(rng() % 40), static_cast<int32_t>(rng() % 20), cs, 0, nullptr, border);
        const bytes before = block(img);
        int32_t w[4], h[4], aw[4], ah[4];
        uint32_t pad[4], bps[4];
        for (int i = 0; i < 4; ++i)
            w[i] = any(), h[i] = any(), aw[i] = any(), ah[i] = any(), pad[i] = word(), bps[i] = word();
        if (rng() % 2) img->w = any(), img->h = any();
        const int32_t nplanes = static_cast<int32_t>(rng() % 4);
        EXPECT_EQ(zelt_imgb_option(img, static_cast<uint32_t>(rng()), nplanes, w, h, aw, ah, pad, bps), ZELT_OK);
        ASSERT_TRUE(allocator.intact());
        const bytes after = block(img);
        changed += after != before;
        const int used = cs < 100 ? nplanes : std::max(nplanes, 1);
        size_t own = 0;
        for (int i = 0; i < std::min(used, 4); ++i) own += static_cast<size_t>(img->stride[i] * img->rows[i]);
        ASSERT_TRUE(std::equal(before.begin() + static_cast<std::ptrdiff_t>(own), before.end(),
                               after.begin() + static_cast<std::ptrdiff_t>(own)));
        img->release(img);
    }
    EXPECT_GT(changed, 1000);  // the test is about something
}

TEST(imgb, options_of_their_own) {
    test_allocator allocator;
    const uint32_t pad[] = {2 << 16 | 2, 0, 0, 0}, bps[] = {1 << 16 | 1, 0, 0, 0};
    const int32_t four[4] = {4, 4, 4, 4};
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
    EXPECT_EQ(block(img), cleared(before, 4, 4, ZELT_CS_YUV400, 2, nullptr, pad));
    img->release(img);
}
