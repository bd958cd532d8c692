#pragma once
// Pictures of another size, plane by plane.
#include "pictures/picture.h"

namespace zelt::tool {

/// Whether the library resizes pictures of a format.
bool resizable(const format& fmt);

/// Whether bands of so many rows give the bytes of a picture resized whole.
bool bands_are_exact(int band_rows, int src_w, int src_h, int dst_w, int dst_h);

/// Resizes a picture to `to`'s size, in one piece or, where band_rows is not 0, that many source rows at a time. Both
/// have one format, which is resizable.
void resize(const picture& from, const picture& to, int band_rows);

}  // namespace zelt::tool
