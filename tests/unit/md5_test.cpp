#include "zelt/imgb.h"
#include "zelt/md5.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace {
std::string hex(const uint8_t (&digest)[16]) {
    std::string text;
    for (const uint8_t byte : digest) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

/// Digest of a text, handed over in pieces.
std::string md5(const std::string& text, std::size_t piece = SIZE_MAX) {
    ZELT_MD5 ctx;
    std::memset(&ctx, 0xa5, sizeof ctx);
    zelt_md5_init(&ctx);
    for (std::size_t at = 0; at < text.size(); at += std::min(piece, text.size() - at))
        zelt_md5_update(&ctx, reinterpret_cast<const uint8_t*>(text.data()) + at,
                        static_cast<uint32_t>(std::min(piece, text.size() - at)));
    uint8_t digest[16];
    zelt_md5_finish(&ctx, digest);
    const ZELT_MD5 zeros{};
    EXPECT_EQ(std::memcmp(&ctx, &zeros, sizeof ctx), 0);
    return hex(digest);
}

TEST(md5, gives_the_digests_of_the_standard) {
    // RFC 1321, A.5
    EXPECT_EQ(md5(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(md5("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(md5("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(md5("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(md5("abcdefghijklmnopqrstuvwxyz"), "c3fcd3d76192e4007dfb496cca67e13b");
    EXPECT_EQ(md5("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
              "d174ab98d277d9f5a5611c2c9f419d9f");
    EXPECT_EQ(md5("12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
              "57edf4a22be3c955ac49da2e2107b67a");
    EXPECT_EQ(md5(std::string(1000000, 'a')), "7707d6ae4e027c70eea2a935c2296f21");
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
    EXPECT_EQ(md5(digests), "e39e89a2f89366b349163640b8a53db0");  // as another implementation gives it
}

TEST(md5, counts_bits_beyond_32) {
    ZELT_MD5 ctx;
    zelt_md5_init(&ctx);
    uint8_t block[64] = {};
    ctx.bits_lo = 0xfffffe00;
    zelt_md5_update(&ctx, block, 63);
    EXPECT_EQ(ctx.bits_hi, 0u);
    zelt_md5_update(&ctx, block, 2);
    EXPECT_EQ(ctx.bits_hi, 1u);
    EXPECT_EQ(ctx.bits_lo, 8u);
}

TEST(md5, transforms_one_block_alone) {
    ZELT_MD5 whole, single;
    zelt_md5_init(&whole);
    zelt_md5_init(&single);
    uint32_t block[16];
    uint8_t bytes[64];
    for (uint32_t i = 0; i < 64; ++i) bytes[i] = static_cast<uint8_t>(i * 37);
    for (uint32_t i = 0; i < 16; ++i)
        block[i] = bytes[4 * i] | bytes[4 * i + 1] << 8 | bytes[4 * i + 2] << 16 | uint32_t{bytes[4 * i + 3]} << 24;
    zelt_md5_update(&whole, bytes, 64);
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
            text += static_cast<char>(samples.back() & 255);
            text += static_cast<char>(samples.back() >> 8);
        }
        ZELT_MD5 ctx;
        zelt_md5_init(&ctx);
        zelt_md5_update_16(&ctx, samples.data(), count);
        uint8_t digest[16];
        zelt_md5_finish(&ctx, digest);
        EXPECT_EQ(hex(digest), md5(text)) << count;
    }
}

struct picture_deleter {
    void operator()(ZELT_IMGB* img) const { img->release(img); }
};
using picture = std::unique_ptr<ZELT_IMGB, picture_deleter>;

picture make_picture(int w, int h, int cs, const uint32_t* pad = nullptr) {
    picture img(zelt_imgb_create(w, h, cs, 0, nullptr, pad, nullptr, nullptr, nullptr));
    std::memset(img->base[0], 0xee, static_cast<std::size_t>(img->size));
    int pw[4] = {w}, ph[4] = {h}, nplanes = 0;  // packed pictures stay as they are
    uint32_t bps[4];
    zelt_imgb_get_dimension(cs, pw, ph, &nplanes, bps);
    for (int p = 0; p < nplanes; ++p)
        for (int r = 0; r < ph[p]; ++r)
            for (int i = 0; i < pw[p] * static_cast<int>(bps[p] >> 16); ++i)
                static_cast<uint8_t*>(img->plane[p])[r * img->stride[p] + i] =
                    static_cast<uint8_t>(p * 85 + r * 31 + i * 7);
    return img;
}

std::string md5(const picture& img) {
    uint8_t digest[16];
    EXPECT_EQ(zelt_md5_imgb(img.get(), digest), ZELT_OK);
    return hex(digest);
}

/// Rows of a plane as text.
std::string rows(const picture& img, int plane, int from, int to, int bytes) {
    std::string text;
    for (int r = from; r < to; ++r)
        text.append(static_cast<const char*>(img->plane[plane]) + r * img->stride[plane], static_cast<size_t>(bytes));
    return text;
}

TEST(md5, of_420_pictures_is_that_of_other_programs) {
    // Literal digests: ffmpeg -f rawvideo -pix_fmt yuv420p -s 5x3 -i FILE -f framemd5 -
    const uint32_t pad[] = {4 << 16 | 2, 6 << 16 | 1, 8 << 16 | 3};
    for (const uint32_t* border : {static_cast<const uint32_t*>(nullptr), pad}) {
        EXPECT_EQ(md5(make_picture(5, 3, ZELT_CS_YUV420, border)), "dcaec71547ba330f54c6e270a274111b");
        EXPECT_EQ(md5(make_picture(33, 17, ZELT_CS_YUV420, border)), "5ac8d92b92d4e1d5f4e0bd3da3f597e1");
        EXPECT_EQ(md5(make_picture(64, 48, ZELT_CS_YUV420, border)), "792ef082715ddd653ef8a4b291f20645");
    }
}

TEST(md5, shortens_rows_at_their_end_for_a_visible_origin) {
    const picture img = make_picture(9, 7, ZELT_CS_YUV420);
    img->x = 3;
    img->y = 2;
    EXPECT_EQ(md5(img), md5(rows(img, 0, 2, 7, 6) + rows(img, 1, 1, 4, 3) + rows(img, 2, 1, 4, 3)));
    img->x = 9;  // nothing but half a sample of chroma is left
    EXPECT_EQ(md5(img), md5(""));
    img->x = INT_MAX;
    EXPECT_EQ(md5(img), md5(""));
    img->x = 0;
    img->y = INT_MAX;
    EXPECT_EQ(md5(img), md5(""));
}

TEST(md5, takes_chroma_as_halved_in_every_format) {
    for (const int cs : {ZELT_CS_YUV422, ZELT_CS_YUV444, ZELT_CS_YUV440, ZELT_CS_YUV420A8, ZELT_CS_P410}) {
        const picture img = make_picture(9, 7, cs);
        EXPECT_EQ(md5(img), md5(rows(img, 0, 0, 7, 9) + rows(img, 1, 0, 4, 5) + rows(img, 2, 0, 4, 5))) << cs;
    }
    const picture grey = make_picture(9, 7, ZELT_CS_YUV400), packed = make_picture(9, 7, ZELT_CS_YUV_PACKED16);
    EXPECT_EQ(md5(grey), md5(rows(grey, 0, 0, 7, 9)));
    EXPECT_EQ(md5(packed), md5(rows(packed, 0, 0, 7, 9)));
    uint8_t digest[16] = {1};
    EXPECT_EQ(zelt_md5_imgb(make_picture(4, 4, ZELT_CS_RGBA8888).get(), digest), ZELT_ERR_UNSUPPORTED);
    EXPECT_EQ(digest[0], 1);
}

TEST(md5, stays_inside_the_block) {
    // 4:1:1 chroma has 2 bytes a row and is read as 4: U runs into V, and V is cut off at the end of the block.
    const picture img = make_picture(8, 1, ZELT_CS_YUV411);
    EXPECT_EQ(md5(img), md5(rows(img, 0, 0, 1, 8) + "\x55\x5c\xaa\xb1" + "\xaa\xb1"));

    // Any other numbers, rows in memory order and in the other: what the formula says of the block
    for (const bool upside_down : {false, true})
        for (const auto& [x, y, w, h] : {std::array{-24, 0, 16, 8},
                                         {0, -5, 16, 8},
                                         {0, 0, 16, 20},
                                         {-300, -30, 90, 40},
                                         {0, INT_MIN, 16, INT_MAX}}) {
            const picture grey = make_picture(16, 8, ZELT_CS_YUV400);
            const std::string block = rows(grey, 0, 0, 1, 128);
            if (upside_down) grey->plane[0] = static_cast<uint8_t*>(grey->base[0]) + 112, grey->stride[0] = -16;
            grey->x = x, grey->y = y, grey->w = w, grey->h = h;
            std::string expected;
            for (int r = std::max(y, -100); r < std::min(h, 100); ++r)
                for (int i = 0; i < w - x; ++i) {
                    const int at = upside_down ? 112 - r * 16 + i : r * 16 + i;
                    if (at >= 0 && at < 128) expected += block[static_cast<size_t>(at)];
                }
            EXPECT_EQ(md5(grey), md5(expected)) << x << ", " << y << ", " << w << ", " << h;
        }

    const picture wild = make_picture(500, 5000, ZELT_CS_YUV420);
    wild->w = wild->h = INT_MAX;
    wild->x = wild->y = INT_MIN;
    md5(wild);  // ends soon, and faults nowhere under a memory checker
    wild->stride[0] = wild->stride[1] = wild->stride[2] = 0;
    md5(wild);
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
        uint8_t digest[16];
        EXPECT_EQ(zelt_md5_imgb(&img, digest), ZELT_OK);
        EXPECT_EQ(hex(digest), md5("\1\2\3\4\5\6"));
        img.x = -5;
        img.stride[0] = 0;
        EXPECT_EQ(zelt_md5_imgb(&img, digest), ZELT_OK);
        EXPECT_EQ(hex(digest), md5("\1\2\3\x9\4\5\6\x9\1\2\3\x9\4\5\6\x9"));
    }
}
}  // namespace
