// SPDX-License-Identifier: MIT
// Which kernels the archive uses, and where some functions of it are in this program, which is linked at fixed
// addresses.
#include "zelt/zelt.h"

#include <cstdio>

#define SHOW(name) std::printf("%016lx " #name "\n", reinterpret_cast<unsigned long>(name))

int main() {
    std::printf("%s kernels\n", zelt_kernels());
    SHOW(zelt_csc_p410_to_r10g10b10);
    SHOW(zelt_csc_rsz_r8g8b8_to_rgb888);
    SHOW(zelt_csc_yuv444_to_rgb888);
    SHOW(zelt_diff4x4);
    SHOW(zelt_imgb_expand);
    SHOW(zelt_irsz_create);
    SHOW(zelt_irsz8b_full);
    SHOW(zelt_is_vkeyfrm);
    SHOW(zelt_mcpy_pic);
    SHOW(zelt_md5_update);
    SHOW(zelt_sad4x8_bi_16);
    SHOW(zelt_satd8x8);
    SHOW(zelt_ssd);
}
