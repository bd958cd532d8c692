// SPDX-License-Identifier: MIT
// Pictures of any geometry, cleared, reborn, expanded and digested with any words: every plane lies inside the block,
// planes follow each other, and nothing outside the block is touched.
#include "zelt/imgb.h"

#include "input.h"
#include "zelt/md5.h"

namespace {
constexpr uint32_t largest = 1 << 17;

void* alloc(uint32_t size, uint32_t*) { return size <= largest ? std::calloc(size + !size, 1) : nullptr; }
void free_block(void* block, uint32_t) { std::free(block); }

struct geometry {
    int32_t w, h, cs;
    uint32_t option, align[4], pad[4];

    /// Mostly numbers of a picture; now and then any at all
    explicit geometry(fuzz::input& in) {
        static constexpr int32_t formats[] = {10, 11, 12, 13, 18, 20, 22, 41, 44, 60, 62, 64, 150, 200, 350, 400};
        static constexpr uint32_t borders[] = {0, 8, 16, 24, 32, 40, 80, 3};
        const uint8_t wild = in.byte();
        w = wild & 1 ? static_cast<int32_t>(in.word()) : in.byte() % 72;
        h = wild & 2 ? static_cast<int32_t>(in.word()) : in.byte() % 72;
        cs = wild & 4 ? static_cast<int32_t>(in.word() % 1000) : formats[in.byte() % 16];
        option = in.byte();
        for (uint32_t& a : align) a = wild & 8 ? in.word() : 1u << in.byte() % 7 << 16 | 1u << in.byte() % 5;
        for (uint32_t& p : pad) p = wild & 16 ? in.word() : borders[in.byte() % 8] << 16 | borders[in.byte() % 8];
    }
};

void check(const ZELT_IMGB* img) {
    int64_t at = 0;
    for (int i = 0; i < 4 && img->base[i]; ++i) {
        fuzz::require(img->base[i] == static_cast<uint8_t*>(img->base[0]) + at);
        at += int64_t{img->stride[i]} * img->rows[i];
        fuzz::require(img->stride[i] >= 0 && img->rows[i] >= 0 && at <= img->size);
    }
}

/// Where the kernels of the borders do not stop the program
bool accepted(const ZELT_IMGB* img, const uint32_t* pad) {
    for (int i = 0; i < 4 && img->base[i]; ++i) {
        const uint32_t bx = pad[i] >> 16, by = pad[i] & 0xffff;
        const bool width = bx <= 40 ? bx % 8 == 0 : bx == 80;
        if (!width || (by && img->stride[i] % 4)) return false;
    }
    return true;
}
}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::input in(data, size);
    const geometry first(in);
    int32_t err = 1;
    ZELT_IMGB* img =
        zelt_imgb_create(first.w, first.h, first.cs, first.option, first.align, first.pad, alloc, free_block, &err);
    fuzz::require((img != nullptr) == (err == ZELT_OK));
    if (!img) return 0;
    check(img);
    while (!in.empty()) {
        const uint8_t kind = in.byte();
        const geometry g(in);
        switch (kind % 4) {
        case 0: {
            const ZELT_IMGB before = *img;
            const int32_t status = zelt_imgb_rebirth(img, g.w, g.h, g.cs, g.option, kind & 4 ? g.align : nullptr,
                                                     kind & 8 ? g.pad : nullptr);
            if (status != ZELT_OK)
                fuzz::require(img->w == before.w && img->base[1] == before.base[1] && img->cs == before.cs);
            break;
        }
        case 1: {
            const int32_t w[4] = {g.w, g.h, first.w, first.h}, aw[4] = {first.h, first.w, g.h, g.w};
            zelt_imgb_option(img, g.option, kind >> 4, w, aw, aw, w, g.pad, g.align);
            break;
        }
        case 2:
            if (accepted(img, g.pad) || img->cs >= 60 || img->cs == 20) zelt_imgb_expand(img, g.pad);
            break;
        default: {
            ZELT_IMGB other = *img;
            if (img->size > 0 && kind & 4) other.x = g.w, other.y = g.h;  // without a block there are no bounds
            if (img->size > 0 && kind & 8) other.w = g.w, other.h = g.h;
            uint8_t digest[16];
            zelt_md5_imgb(&other, digest);
        }
        }
        check(img);
    }
    img->release(img);
    return 0;
}
