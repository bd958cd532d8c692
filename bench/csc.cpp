// SPDX-License-Identifier: MIT
// The C library beside the plane copies.
#include "bench.h"

#include <cstring>

namespace zelt::bench {
namespace {
picture_peer copied_rows(int planes) {
    return {"memcpy", bytes_within<0>, [=](shape s, const view* v) {
                for (int i = 0; i < planes; ++i)
                    for (int y = 0; y < s.h; ++y)
                        std::memcpy(v[planes + i].p + y * v[planes + i].stride, v[i].p + y * v[i].stride,
                                    static_cast<std::size_t>(s.w));
            }};
}

const bool added[] = {add_peer("zelt_csc_yuv444x_to_yuv444x", copied_rows(3)),
                      add_peer("zelt_csc_yuv444x_to_yuv444x alpha", copied_rows(4))};
}  // namespace
}  // namespace zelt::bench
