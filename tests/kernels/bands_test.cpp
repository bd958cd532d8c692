// SPDX-License-Identifier: MIT
// Band mode for every band height: what whole pictures give where that is promised, and a digest of all that it gives.
#include "kernels/guarded.h"
#include "kernels/resize.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace zelt::test {
namespace {
struct job {
    const resizer* format;
    shape from, to;
    int band_rows;
    bool short_last;  // the last band is the smallest power of two that covers what remains
};

/// A picture in bands, each in memory of its own
std::vector<u8> resized(const job& j, const std::vector<u8>& picture, guarded_memory& memory) {
    const resizer* format = j.format;
    const shape from = j.from, to = j.to;
    const int unit = format->id == ZELT_IRSZ_5B6B5B ? 2 : 1, src_row = from.w * format->src_bytes;
    std::vector<u8> dst(static_cast<std::size_t>(to.w * to.h * format->dst_bytes), 0x5A);
    const ZELT_IRSZ_PARAM param = {format->id, ZELT_IRSZ_BANDS, from.w,    from.h, from.w * unit, j.band_rows, to.w,
                                   to.h,       to.w * unit,     dst.data()};
    ZELT_IRSZ* irsz = zelt_irsz_create(&param, nullptr);
    EXPECT_TRUE(irsz && survives([&] {
                    for (int y0 = 0, rows = j.band_rows; y0 < from.h; y0 += rows) {
                        while (j.short_last && rows > 1 && rows / 2 >= from.h - y0) rows /= 2;
                        const std::size_t size = static_cast<std::size_t>(std::min(rows, from.h - y0) * src_row);
                        u8* start = memory.start() + memory.size() - size;
                        std::memcpy(start, &picture[static_cast<std::size_t>(y0 * src_row)], size);
                        zelt_irsz(irsz, start, y0, rows);
                        std::memset(start, 0xA5, size);
                    }
                }));
    zelt_irsz_delete(irsz);
    return dst;
}
}  // namespace

TEST(bands, whole_pictures_and_digests) {
    const u32 digests[] = {3740170762, 808611678, 2480774478, 3914148666, 3907458127};  // FNV-1a, per format
    std::mt19937 random(1);
    guarded_memory memory(1 << 16);
    for (std::size_t i = 0; i < resizers.size(); ++i) {
        u32 digest = 2166136261;
        const auto check = [&](const job& j) {
            std::vector<u8> picture(static_cast<std::size_t>(j.from.w * j.from.h * j.format->src_bytes));
            for (u8& v : picture) v = static_cast<u8>(random());
            const std::vector<u8> got = resized(j, picture, memory);
            for (const u8 v : got) digest = (digest ^ v) * 16777619;
            if (!bands_give_whole(j.from, j.to, j.band_rows)) return;
            std::vector<u8> whole(got.size());
            model_picture(*j.format, {picture.data(), j.from.w * j.format->src_bytes}, j.from,
                          {whole.data(), j.to.w * j.format->dst_bytes}, j.to);
            ASSERT_EQ(got, whole) << j.format->name << " " << j.from.w << "x" << j.from.h << " to " << j.to.w << "x"
                                  << j.to.h << ", bands of " << j.band_rows << (j.short_last ? ", short last" : "");
        };
        for (const shape from : {shape{37, 53}, {64, 64}, {5, 130}, {1, 16}, {33, 1}, {3, 2}})
            for (const int w : {from.w, 1 + from.w / 2, from.w * 3 / 2 + 1})
                for (const int h : {1, 2, 5, 13, 40, 53, 54, 64, 80, 107, 130, 200})
                    if (i == 0 || random() % 8 == 0)
                        for (int band = 1; band <= 256 && !HasFatalFailure(); band *= 2)
                            check({&resizers[i], from, {w, h}, band, false}),
                                check({&resizers[i], from, {w, h}, band, true});
        EXPECT_EQ(digest, digests[i]) << resizers[i].name;
    }
}

TEST(bands, out_of_turn_nothing_past_their_rows_is_read) {
    constexpr int size = 16;
    guarded_memory memory(size);
    u8 dst[size * size];
    for (const resizer& format : resizers) {
        const ZELT_IRSZ_PARAM param = {format.id, ZELT_IRSZ_BANDS, 4, size, 4, 8, 4, size, 4, dst};
        ZELT_IRSZ* irsz = zelt_irsz_create(&param, nullptr);
        u8* last_row = memory.start() + memory.size() - 4 * format.src_bytes;
        EXPECT_TRUE(survives([&] { zelt_irsz(irsz, last_row, size - 1, 8); })) << format.name;
        zelt_irsz_delete(irsz);
    }
}
}  // namespace zelt::test
