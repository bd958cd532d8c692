// SPDX-License-Identifier: MIT
// libavutil's copy of a plane, MD5 and FIFO.
#include "memory.h"

extern "C" {
#include <libavutil/fifo.h>
#include <libavutil/imgutils.h>
#include <libavutil/md5.h>
}

namespace zelt::bench {
namespace {
const bool added = [] {
    for (const area_size s : area_sizes)
        add_candidate("memory", sized("copy", s), [=] {
            return copy_candidate("av_image_copy_plane", s, [](u8* to, const u8* from, int stride, int w, int h) {
                av_image_copy_plane(to, stride, from, stride, w, h);
            });
        });
    for (const int size : message_sizes)
        add_candidate("digest", sized("MD5", size), [=] {
            return digest_candidate("av_md5_sum", size,
                                    [](const u8* p, std::size_t n, u8* digest) { av_md5_sum(digest, p, n); });
        });
    add_candidate("ring", sized("put and get", packet_size), [] {
        std::shared_ptr<AVFifo> fifo(av_fifo_alloc2(ring_size, 1, 0), [](AVFifo* f) { av_fifo_freep2(&f); });
        return ring_candidate(
            "AVFifo", [=](const u8* p) { av_fifo_write(fifo.get(), p, packet_size); },
            [=](u8* p) { av_fifo_read(fifo.get(), p, packet_size); });
    });
    return true;
}();
}  // namespace
}  // namespace zelt::bench
