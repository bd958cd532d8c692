// SPDX-License-Identifier: MIT
/* Creates a picture, converts it and says what came out; C99 as well as C++. */
#include <stdio.h>
#include <zelt/zelt.h>

int main(void) {
    int32_t err;
    ZELT_IMGB* yuv = zelt_imgb_create(4, 2, ZELT_CS_YUV444, 0, NULL, NULL, NULL, NULL, &err);
    uint8_t rgb[2][12], *y;
    void* dst[1];
    int32_t dst_stride[1] = {12}, i;
    zelt_csc_fn convert = zelt_imgp_get_fn_csc(4, 2, ZELT_CS_YUV444, 4, 2, ZELT_CS_RGB888, NULL);
    ZELT_BSR reader;
    zelt_bsr_init(&reader, rgb[0], 0, NULL);
    if (!yuv) return 1; /* a function has one address, for the library too, also if it was chosen from several */
    if (reader.flush_fn != zelt_bsr_flush || convert != zelt_csc_yuv444_to_rgb888) return 1;
    for (y = (uint8_t*)yuv->base[0], i = 0; i < yuv->size; ++i) y[i] = i < 8 ? 200 : 128;
    dst[0] = rgb;
    convert(yuv->plane, 4, 2, yuv->stride, yuv->cs, dst, 4, 2, dst_stride, ZELT_CS_RGB888);
    yuv->release(yuv);
    printf("%d %d %d\n", rgb[1][9], rgb[1][10], rgb[1][11]);
    return 0;
}
