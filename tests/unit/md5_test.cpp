// SPDX-License-Identifier: MIT
#include "unit/picture_model.h"
#include "zelt/md5.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <numeric>
#include <random>
#include <string>
#include <sys/mman.h>
#include <vector>

namespace {
std::string hex(const uint8_t (&digest)[16]) {
    std::string text;
    for (const uint8_t byte : digest) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

/// Digest of what `update` hands over
std::string digest_of(const std::function<void(ZELT_MD5*)>& update) {
    ZELT_MD5 ctx;
    std::memset(&ctx, 0xa5, sizeof ctx);
    zelt_md5_init(&ctx);
    update(&ctx);
    uint8_t digest[16];
    zelt_md5_finish(&ctx, digest);
    const ZELT_MD5 zeros{};
    EXPECT_EQ(std::memcmp(&ctx, &zeros, sizeof ctx), 0);
    return hex(digest);
}

/// Digest of a text, handed over in pieces
std::string md5(const std::string& text, std::size_t piece = SIZE_MAX) {
    return digest_of([&](ZELT_MD5* ctx) {
        for (std::size_t at = 0; at < text.size(); at += std::min(piece, text.size() - at))
            zelt_md5_update(ctx, reinterpret_cast<const uint8_t*>(text.data()) + at,
                            static_cast<uint32_t>(std::min(piece, text.size() - at)));
    });
}

TEST(md5, takes_messages_of_any_length_in_any_pieces) {
    std::string text, digests;
    for (int i = 0; i < 300; ++i) text += static_cast<char>(i * 11);
    for (std::size_t size = 0; size <= text.size(); ++size) {
        const std::string digest = md5(text.substr(0, size));
        digests += digest;
        for (const std::size_t piece : {1, 3, 55, 56, 63, 64, 65, 128})
            ASSERT_EQ(md5(text.substr(0, size), piece), digest) << size << " by " << piece;
    }
    EXPECT_EQ(md5("abc"), "900150983cd24fb0d6963f7d28e17f72");    // RFC 1321
    EXPECT_EQ(md5(digests), "e39e89a2f89366b349163640b8a53db0");  // as another implementation gives it
}

TEST(md5, counts_bits_beyond_32) {
    ZELT_MD5 ctx;
    zelt_md5_init(&ctx);
    const uint8_t zeros[64] = {};
    ctx.bits_lo = 0xfffffe00;
    zelt_md5_update(&ctx, zeros, 63);
    EXPECT_EQ(ctx.bits_hi, 0u);
    zelt_md5_update(&ctx, zeros, 2);
    EXPECT_EQ(ctx.bits_hi, 1u);
    EXPECT_EQ(ctx.bits_lo, 8u);

    constexpr size_t large = 1 << 29;  // pages of zeros, which take no memory
    void* const pages = mmap(nullptr, large, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(pages, MAP_FAILED);
    const auto all = [&](ZELT_MD5* whole) { zelt_md5_update(whole, static_cast<const uint8_t*>(pages), large); };
    EXPECT_EQ(digest_of(all), "aa559b4e3523a6c931f08f4df52d58f2");
    munmap(pages, large);
}

TEST(md5, transforms_one_block_alone) {
    ZELT_MD5 whole, single;
    zelt_md5_init(&whole);
    zelt_md5_init(&single);
    uint32_t block[16];
    std::iota(std::begin(block), std::end(block), 0x89abcdefu);
    zelt_md5_update(&whole, reinterpret_cast<const uint8_t*>(block), 64);
    zelt_md5_trans(&single, block);
    EXPECT_EQ(std::memcmp(whole.state, single.state, sizeof whole.state), 0);
    EXPECT_EQ(single.bits_lo, 0u);
}

TEST(md5, takes_samples_low_byte_first) {
    for (const int count : {-1, INT_MIN, 0, 1, 2, 255, 256, 257, 1000}) {
        std::vector<uint16_t> samples;
        std::string text;
        for (int i = 0; i < count; ++i) {
            samples.push_back(static_cast<uint16_t>(0x0102 + i * 771));
            text += {static_cast<char>(samples.back() & 255), static_cast<char>(samples.back() >> 8)};
        }
        EXPECT_EQ(digest_of([&](ZELT_MD5* ctx) { zelt_md5_update_16(ctx, samples.data(), count); }), md5(text))
            << count;
    }
}

std::string md5(const ZELT_IMGB* img) {
    uint8_t digest[16];
    EXPECT_EQ(zelt_md5_imgb(img, digest), ZELT_OK);
    return hex(digest);
}

/// The bytes that are digested. A visible origin shortens rows at their end, chroma counts as halved in every format,
/// and what is outside the block is left out.
std::string digested(const ZELT_IMGB* img) {
    const auto* block = static_cast<const char*>(img->base[0]);
    std::string text;
    for (int plane = 0; plane < (img->cs == ZELT_CS_YUV400 ? 1 : 3) && img->plane[plane]; ++plane) {
        const int64_t half = plane ? 1 : 0, origin = static_cast<const char*>(img->plane[plane]) - block;
        const int64_t bytes = (int64_t{img->w} - img->x + half) >> half;
        for (int64_t r = std::max(img->y, -100) >> half; r < (std::min(img->h, 100) + half) >> half; ++r)
            for (int64_t i = 0; i < bytes; ++i)
                if (const int64_t at = origin + r * img->stride[plane] + i; at >= 0 && at < img->size)
                    text += block[at];
    }
    return text;
}

TEST(md5, of_pictures_keeps_to_the_rules_and_the_block) {
    std::mt19937 random(3);
    const auto any = [&](int from, int to) { return from + static_cast<int>(random() % unsigned(to - from)); };
    const auto edge = [&](int limit) { return any(0, 8) ? any(-40, 60) : limit; };
    for (int i = 0; i < 1000; ++i) {
        test_allocator allocator;
        const uint32_t border = any(0, 2) ? 0 : 4 << 16 | 2, pad[] = {border, border, border, border};
        const int w = any(1, 20), h = any(1, 12), cs = std::next(chroma_of.begin(), any(0, 16))->first;
        ZELT_IMGB* img = create(w, h, cs, 0, nullptr, pad);
        for (int k = 0; k < img->size; ++k) static_cast<uint8_t*>(img->base[0])[k] = static_cast<uint8_t>(k * 7);
        for (int p = 0; p < 3 && i % 4 == 0; ++p) {  // upside down
            img->plane[p] = static_cast<uint8_t*>(img->plane[p]) + (img->rows[p] / 2) * img->stride[p];
            img->stride[p] *= -1;
        }
        if (any(0, 2)) img->x = edge(INT_MAX), img->w = edge(INT_MIN);
        if (any(0, 2)) img->y = edge(any(0, 2) ? INT_MIN : INT_MAX), img->h = edge(INT_MAX);
        EXPECT_EQ(md5(img), md5(digested(img))) << "cs " << cs << ", " << img->x << ", " << img->y << " to " << img->w
                                                << ", " << img->h << " by " << img->stride[0];
        img->release(img);
    }
}

TEST(md5, of_pictures_with_wild_numbers) {
    test_allocator allocator;
    allocator.largest = 1 << 23;
    ZELT_IMGB* img = create(500, 5000, ZELT_CS_YUV420);
    img->w = img->h = INT_MAX;
    img->x = img->y = INT_MIN;
    md5(img);  // ends soon, and faults nowhere under a memory checker
    img->stride[0] = img->stride[1] = img->stride[2] = 0;
    md5(img);
    for (const int cs : {-1, 9, 100, 500}) {
        uint8_t digest[16] = {1};
        img->cs = cs;
        EXPECT_EQ(zelt_md5_imgb(img, digest), ZELT_ERR_UNSUPPORTED) << cs;
        EXPECT_EQ(digest[0], 1);
    }
    img->release(img);
}

// Whatever `base` holds: a record that was cleared and filled in has no size.
TEST(md5, takes_planes_that_a_caller_put_together) {
    uint8_t samples[] = {1, 2, 3, 9, 4, 5, 6, 9};
    for (void* const base : {static_cast<void*>(nullptr), static_cast<void*>(samples)}) {
        ZELT_IMGB img{};
        img.w = 3;
        img.h = 2;
        img.cs = ZELT_CS_YUV420;
        img.stride[0] = 4;
        img.plane[0] = samples;
        img.base[0] = base;
        EXPECT_EQ(md5(&img), md5("\1\2\3\4\5\6"));
        img.x = -5;
        img.stride[0] = 0;
        EXPECT_EQ(md5(&img), md5("\1\2\3\x9\4\5\6\x9\1\2\3\x9\4\5\6\x9"));
    }
}
}  // namespace
