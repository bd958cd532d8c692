// SPDX-License-Identifier: MIT
#pragma once
// Pictures of another size, plane by plane.
#include "pictures/picture.h"

namespace zelt::tool {

/// Whether the library resizes pictures of a format.
bool resizable(const format& fmt);

/// Whether bands of so many rows give the bytes of a picture resized whole.
bool bands_are_exact(int band_rows, const format& from, int src_w, int src_h, const format& to, int dst_w, int dst_h);

/// Resizes a picture to `to`'s size. Both have one format, which is resizable. By area, ZELT_VIDEO_AREA, samples are
/// resized, and words of RGB565, which are none, bilinearly.
void resize(const picture& from, const picture& to, int32_t filter);

/// Resizes so many source rows at a time, bilinearly. The formats have as many planes, maybe of other sizes.
void resize_in_bands(const picture& from, const picture& to, int band_rows);

}  // namespace zelt::tool
