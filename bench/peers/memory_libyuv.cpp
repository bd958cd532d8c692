// SPDX-License-Identifier: MIT
// libyuv's fills and copies of planes.
#include "memory.h"

#include <libyuv.h>

namespace zelt::bench {
namespace {
const bool added = [] {
    for (const int size : run_sizes) {
        add_candidate("memory", sized("fill bytes", size), [=] {
            return fill_candidate("libyuv SetPlane", size, fill_byte,
                                  [](u8* p, int n) { libyuv::SetPlane(p, n, n, 1, 0x44); });
        });
        add_candidate("memory", sized("fill words", size), [=] {
            return fill_candidate("libyuv ARGBRect", size, fill_word,
                                  [](u8* p, int n) { libyuv::ARGBRect(p, n, 0, 0, n / 4, 1, fill_word); });
        });
    }
    for (const area_size s : area_sizes)
        add_candidate("memory", sized("copy", s), [=] {
            return copy_candidate("libyuv CopyPlane", s, [](u8* to, const u8* from, int stride, int w, int h) {
                libyuv::CopyPlane(from, stride, to, stride, w, h);
            });
        });
    return true;
}();
}  // namespace
}  // namespace zelt::bench
