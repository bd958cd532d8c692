#pragma once  // the colour matrices as the tests know them
#include "kernels/kernel.h"

namespace zelt::test {
/// R, G, B, A or Y, U, V, A
struct components {
    int v[4];
};
components rgb_of(components yuv);
components yuv_of(components rgb);
}  // namespace zelt::test
