// SPDX-License-Identifier: MIT
// JACK's ring buffer, which two threads may share.
#include "memory.h"

#include <jack/ringbuffer.h>

namespace zelt::bench {
namespace {
const bool added = add_candidate("ring", sized("put and get", packet_size), [] {
    std::shared_ptr<jack_ringbuffer_t> ring(jack_ringbuffer_create(ring_size), jack_ringbuffer_free);
    return ring_candidate(
        "jack_ringbuffer",
        [=](const u8* p) { jack_ringbuffer_write(ring.get(), reinterpret_cast<const char*>(p), packet_size); },
        [=](u8* p) { jack_ringbuffer_read(ring.get(), reinterpret_cast<char*>(p), packet_size); });
});
}  // namespace
}  // namespace zelt::bench
