// SPDX-License-Identifier: MIT
#pragma once
// RGB pictures of 8 bits in another order of bytes or planes, which is exact.
#include "pictures/picture.h"

namespace zelt::tool {

bool repacks(const format& from, const format& to);
void repack(const picture& from, const picture& to);  // alpha that `from` has not is 255

}  // namespace zelt::tool
