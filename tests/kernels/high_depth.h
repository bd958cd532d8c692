#pragma once  // the 10-bit colour matrices as the tests know them
#include "kernels/kernel.h"

#include <array>

namespace zelt::test {
/// R, G, B or Y, U, V
using triple = std::array<int, 3>;
triple rgb10_of(triple yuv);
triple yuv10_of(triple rgb);
}  // namespace zelt::test
