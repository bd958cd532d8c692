// SPDX-License-Identifier: MIT
#include "core/types.h"
#include "zelt/imgb.h"
#include "zelt/md5.h"

#include <algorithm>

using namespace zelt;

namespace {
/// Digests rows from..to of a plane, clipped to the block if the library allocated one.
void digest_rows(ZELT_MD5* ctx, const ZELT_IMGB* img, int plane, s64 from, s64 to, s64 bytes) {
    const u8* sample = static_cast<const u8*>(img->plane[plane]);
    if (!sample || bytes <= 0) return;
    const s64 stride = img->stride[plane];
    const u8* block = static_cast<const u8*>(img->base[0]);
    const s64 size = img->size;
    if (!block || size <= 0) {  // planes that a caller put together
        for (s64 r = from; r < to; ++r) zelt_md5_update(ctx, sample + r * stride, static_cast<u32>(bytes));
        return;
    }
    const s64 origin = sample - block;
    if (stride) {  // only rows that reach into the block, or nearly
        const auto [least, most] = std::minmax({-(origin + bytes) / stride, (size - origin) / stride});
        from = std::max(from, least - 1);
        to = std::min(to, most + 2);
    }
    // No picture's own rows come near this, but where w and x are wild every row may be most of the block.
    s64 left = 4 * size + (1 << 20);
    for (s64 r = from; r < to && left > 0; ++r) {
        const s64 start = std::max<s64>(origin + r * stride, 0), end = std::min(origin + r * stride + bytes, size);
        if (start < end) zelt_md5_update(ctx, block + start, static_cast<u32>(end - start));
        left -= std::max<s64>(end - start, 1);
    }
}
}  // namespace

int32_t zelt_md5_imgb(const ZELT_IMGB* img, uint8_t digest[16]) {
    if (img->cs < 10 || img->cs > 99) return ZELT_ERR_UNSUPPORTED;
    const s64 w = img->w, h = img->h, x = img->x, y = img->y;
    ZELT_MD5 ctx;
    zelt_md5_init(&ctx);
    // Kept: every row starts at column 0; x shortens it at its end.
    digest_rows(&ctx, img, 0, y, h, w - x);
    // Kept: chroma counts as halved both ways, with one byte per sample, in every format, and alpha is left out.
    if (img->cs != ZELT_CS_YUV400)
        for (const int plane : {1, 2}) digest_rows(&ctx, img, plane, y >> 1, (h + 1) >> 1, (w + 1 - x) >> 1);
    zelt_md5_finish(&ctx, digest);
    return ZELT_OK;
}
