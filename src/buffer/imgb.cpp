// SPDX-License-Identifier: MIT
#include "zelt/imgb.h"

#include "buffer/geometry.h"
#include "core/refcount.h"

#include <algorithm>
#include <cstring>

using namespace zelt;

static_assert(sizeof(void*) != 4 || sizeof(ZELT_IMGB) == 58 * 4);

namespace {

void free_block(ZELT_IMGB* img) {
    if (img->base[0]) img->free_cb(img->base[0], img->base_aux[0]);
}

void lay_out(ZELT_IMGB* img, s32 cs, const geometry& g, void* block, u32 aux) {
    img->w = g.w[0];
    img->h = g.h[0];
    img->x = img->y = 0;
    img->cs = cs;
    img->aw = g.aw[0];
    img->ah = g.ah[0];
    u8* base = static_cast<u8*>(block);
    for (int i = 0; i < 4; ++i) {
        const bool used = i < g.nplanes;
        img->stride[i] = g.stride[i];
        img->rows[i] = g.rows[i];
        img->base[i] = used ? base : nullptr;
        img->plane[i] = used ? base + g.plane_offset[i] : nullptr;
        img->base_aux[i] = used ? aux : 0;
        // Kept: an auxiliary address of 0 means none, yet those of the planes after the first are computed from it.
        img->plane_aux[i] = used && aux ? aux + static_cast<u32>(g.plane_offset[i]) : 0;
        const s32 bytes = g.stride[i] * g.rows[i];
        base += bytes;
        aux += static_cast<u32>(bytes);
    }
}

// Clears rectangles of one plane. They come from the caller and are clipped to the plane's memory.
struct plane_memory {
    u8* base;
    s64 stride, size;

    plane_memory(const ZELT_IMGB* img, int i)
        : base(static_cast<u8*>(img->base[i])), stride(img->stride[i]), size(stride * img->rows[i]) {}

    void clear(s64 offset, s64 bytes, s64 rows) const {
        if (stride <= 0 || rows <= 0 || bytes <= 0) return;
        if (bytes >= stride) {  // no gaps: one run
            bytes += (rows - 1) * stride;
            rows = 1;
        }
        for (; rows > 0 && offset < size; --rows, offset += stride)
            std::memset(base + offset, 0, static_cast<std::size_t>(std::min(bytes, size - offset)));
    }
};

s64 count(s32 n) { return std::max(n, 0); }

// Clears what alignment added to the right of and below w x h samples, bytes_below of each row below.
void clear_alignment(const ZELT_IMGB* img, int i, s64 w, s64 h, s64 aw, s64 ah, s64 bytes, s64 bytes_below) {
    const plane_memory memory(img, i);
    const s64 origin = static_cast<u8*>(img->plane[i]) - memory.base;
    memory.clear(origin + w * bytes, (aw - w) * bytes, h);
    memory.clear(origin + h * memory.stride, bytes_below, ah - h);
}

void clear_padding(const ZELT_IMGB* img, int i, s64 aw, s64 ah, u32 pad, s64 bytes) {
    const plane_memory memory(img, i);
    const s64 stride = memory.stride, px = pad >> 16, py = pad & 0xffff;
    memory.clear(0, stride, py);
    memory.clear((ah + py) * stride, stride, py);
    memory.clear(py * stride, px * bytes, ah);
    memory.clear(py * stride + (px + aw) * bytes, px * bytes, ah);
}

s32 reshape(ZELT_IMGB* img, s32 w, s32 h, s32 cs, u32 option, const u32* align, const u32* pad) {
    geometry g;
    const s32 status = get_info(cs, w, h, align, pad, &g);
    if (status != ZELT_OK) return status;
    if (g.size < 0 || g.size > img->size) return ZELT_ERR_OUT_OF_MEMORY;
    lay_out(img, cs, g, img->base[0], img->base_aux[0]);
    return zelt_imgb_option(img, option, g.nplanes, g.w, g.h, g.aw, g.ah, pad, g.bps);
}

}  // namespace

int32_t zelt_imgb_option(ZELT_IMGB* img, uint32_t option, int32_t nplanes, const int32_t w[4], const int32_t h[4],
                         const int32_t aw[4], const int32_t ah[4], const uint32_t* pad, const uint32_t bps[4]) {
    nplanes = std::min(nplanes, 4);
    if (option & ZELT_IMGB_CLEAR_ALIGN) {
        if (img->cs < 10 || img->cs >= 600) return ZELT_ERR_UNSUPPORTED;
        if (img->cs >= 100)  // Kept: rows below a packed picture are cleared for aw bytes, not samples
            clear_alignment(img, 0, count(img->w), count(img->h), count(aw[0]), count(ah[0]), bps[0] >> 16, aw[0]);
        else
            for (int i = 0; i < nplanes; ++i)
                clear_alignment(img, i, count(w[i]), count(h[i]), count(aw[i]), count(ah[i]), bps[i] >> 16,
                                count(aw[i]) * (bps[i] >> 16));
    }
    if ((option & ZELT_IMGB_CLEAR_PAD) && pad)
        for (int i = 0; i < nplanes; ++i)
            if (pad[i]) clear_padding(img, i, count(aw[i]), count(ah[i]), pad[i], bps[i] >> 16);
    return ZELT_OK;
}

ZELT_IMGB* zelt_imgb_create(int32_t w, int32_t h, int32_t cs, uint32_t option, const uint32_t* align,
                            const uint32_t* pad, zelt_alloc_fn alloc_cb, zelt_free_fn free_cb, int32_t* err) {
    const auto fail = [err](s32 status, ZELT_IMGB* img = nullptr) {
        std::free(img);
        set_status(err, status);
        return nullptr;
    };
    if (alloc_cb && !free_cb) return fail(ZELT_ERR_INVALID_ARG);
    ZELT_IMGB* img = new_record<ZELT_IMGB>();
    if (!img) return fail(ZELT_ERR_OUT_OF_MEMORY);
    img->alloc_cb = alloc_cb ? alloc_cb : default_alloc;
    img->free_cb = alloc_cb ? free_cb : default_free;
    geometry g;
    const s32 status = get_info(cs, w, h, align, pad, &g);
    if (status != ZELT_OK) return fail(status, img);
    if (g.size < 0) return fail(ZELT_ERR_BUFFER_ALLOC, img);
    img->size = static_cast<s32>(g.size);
    u32 aux = 0;
    void* block = img->alloc_cb(static_cast<u32>(g.size), &aux);
    if (!block) return fail(ZELT_ERR_BUFFER_ALLOC, img);
    lay_out(img, cs, g, block, aux);
    zelt_imgb_option(img, option, g.nplanes, g.w, g.h, g.aw, g.ah, pad, g.bps);
    start_counting<ZELT_IMGB, free_block>(img);
    set_status(err, ZELT_OK);
    return img;
}

int32_t zelt_imgb_rebirth(ZELT_IMGB* img, int32_t w, int32_t h, int32_t cs, uint32_t option, const uint32_t* align,
                          const uint32_t* pad) {
    img->addref(img);  // held while its layout changes
    const s32 status = reshape(img, w, h, cs, option, align, pad);
    img->release(img);
    return status;
}
