// SPDX-License-Identifier: MIT
// Indices run from 0 to size, the read index even to size + 1 (see ZELT_RBUF), so the length of a piece can be -1.
// Sums of two indices are computed in 64 bits.
#include "zelt/rbuf.h"

#include "core/types.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

using namespace zelt;

namespace {
bool wrapped(const ZELT_RBUF* rb) { return rb->tail > rb->head; }
bool empty(const ZELT_RBUF* rb) { return rb->head == rb->tail; }
/// Whether the write index is (tail + size - 1) % size
bool full(const ZELT_RBUF* rb) {
    return rb->head == (rb->tail == 0 ? rb->size - 1 : rb->tail <= rb->size ? rb->tail - 1 : 0);
}

void copy(u8* dst, const u8* src, s64 n) {
    if (n > 0) std::memcpy(dst, src, static_cast<std::size_t>(n));
}

/// Consumes up to len bytes of wrapped data; returns how many are before the wrap (-1 at worst) and behind it.
struct pieces {
    s64 before, behind;
};
pieces take_wrapped(ZELT_RBUF* rb, s64 len) {
    const s64 e = s64{rb->size} - rb->tail, m = std::min<s64>(len - e, rb->head);
    rb->tail = static_cast<s32>(m);
    return {e, m};
}

/// Copies up to n bytes to `line + at`, up to and including a line feed, before which a missing carriage return is
/// added. Nothing is written before `line`. Returns the length written, 0 without a line feed or with a zero byte
/// before it.
int copy_line(const u8* src, s64 n, char* line, s64 at) {
    const auto put = [&](s64 k, int c) {
        if (at + k >= 0) line[at + k] = static_cast<char>(c);
    };
    for (s64 k = 0; k < n && src[k]; ++k) {
        put(k, src[k]);
        if (src[k] != '\n') continue;
        if (k > 0 && src[k - 1] == '\r') return static_cast<int>(k + 1);
        put(k, '\r');
        put(k + 1, '\n');
        return static_cast<int>(k + 2);
    }
    return 0;
}

int end_line(char* line, s64 length) {
    line[length] = 0;
    return static_cast<int>(length);
}
}  // namespace

ZELT_RBUF* zelt_rbuf_create(int size) {
    if (size < 1) return nullptr;
    auto* rb = static_cast<ZELT_RBUF*>(std::malloc(sizeof(ZELT_RBUF)));
    auto* buf = static_cast<u8*>(std::malloc(static_cast<std::size_t>(size)));
    if (!rb || !buf) {
        std::free(buf);
        std::free(rb);
        return nullptr;
    }
    *rb = {0, 0, size, buf};
    return rb;
}

void zelt_rbuf_delete(ZELT_RBUF* rb) {
    if (!rb) return;
    std::free(rb->buf);
    std::free(rb);
}

void zelt_rbuf_empty(ZELT_RBUF* rb) { rb->tail = rb->head; }

int zelt_rbuf_get_tot_len(ZELT_RBUF* rb) { return rb->size - 1; }

int zelt_rbuf_is_full(ZELT_RBUF* rb) { return full(rb); }

int zelt_rbuf_is_empty(ZELT_RBUF* rb) { return empty(rb); }

int zelt_rbuf_get_fill_len(ZELT_RBUF* rb) {
    // Kept: wrapped data counts one byte less than there is.
    return wrapped(rb) ? static_cast<int>(s64{rb->size} + rb->head - 1 - rb->tail) : rb->head - rb->tail;
}

int zelt_rbuf_get_free_len(ZELT_RBUF* rb) {
    // Kept: without a wrap it counts two bytes more than can be stored.
    return wrapped(rb) ? rb->tail - rb->head - 1 : static_cast<int>(s64{rb->size} + rb->tail + 1 - rb->head);
}

int zelt_rbuf_get_fillc_len(ZELT_RBUF* rb) { return (wrapped(rb) ? rb->size : rb->head) - rb->tail; }

int zelt_rbuf_get_freec_len(ZELT_RBUF* rb) {
    return wrapped(rb) ? rb->tail - rb->head - 1 : rb->size - rb->head - (rb->tail == 0);
}

int zelt_rbuf_get_head(ZELT_RBUF* rb, uint8_t** ptr, int* len) {
    *ptr = full(rb) ? nullptr : rb->buf + rb->head;
    *len = full(rb) ? 0 : zelt_rbuf_get_freec_len(rb);
    return 0;
}

int zelt_rbuf_get_tail(ZELT_RBUF* rb, uint8_t** ptr, int* len) {
    *ptr = empty(rb) ? nullptr : rb->buf + rb->tail;
    *len = empty(rb) ? 0 : zelt_rbuf_get_fillc_len(rb);
    return 0;
}

int zelt_rbuf_skip_head(ZELT_RBUF* rb, int len) {
    if (len < 0 || full(rb)) return 0;
    if (wrapped(rb)) {
        const int n = std::min(rb->tail - rb->head - 1, len);
        rb->head += n;
        return n;
    }
    const int e = rb->size - rb->head;
    if (e > len) {
        rb->head += len;
        return len;
    }
    if (rb->tail == 0) return std::min(len, e - 1);  // Kept: counted, and nothing committed
    rb->head = std::min(len - e, rb->tail - 1);
    return e + rb->head;
}

int zelt_rbuf_skip_tail(ZELT_RBUF* rb, int len) {
    if (len < 0 || empty(rb)) return 0;
    if (!wrapped(rb) || rb->size - rb->tail > len) {
        const int n = wrapped(rb) ? len : std::min(rb->head - rb->tail, len);
        rb->tail += n;
        return n;
    }
    const auto [before, behind] = take_wrapped(rb, len);
    return static_cast<int>(before + behind);
}

int zelt_rbuf_put(ZELT_RBUF* rb, const uint8_t* data, int len) {
    if (len < 0 || full(rb)) return 0;
    const int e = wrapped(rb) ? rb->tail - rb->head : rb->size - rb->head;
    // Kept: with the read index at 0 the rest of the storage can be filled completely, the write index is then `size`.
    if (e > len || (e == len && rb->tail == 0)) {
        copy(rb->buf + rb->head, data, len);
        rb->head += len;
        return len;
    }
    if (wrapped(rb) || rb->tail == 0) return 0;
    copy(rb->buf + rb->head, data, e);
    const int r = len - e;
    if (rb->tail <= r) return 0;
    copy(rb->buf, data + e, r);
    rb->head = r;
    return len;
}

int zelt_rbuf_get(ZELT_RBUF* rb, uint8_t* dst, int len) {
    if (len < 0 || empty(rb)) return 0;
    const u8* src = rb->buf + rb->tail;
    if (!wrapped(rb)) {
        const int n = std::min(rb->head - rb->tail, len);
        copy(dst, src, n);
        rb->tail += n;
        return n;
    }
    if (rb->size - rb->tail >= len) {
        copy(dst, src, len);
        rb->tail = (rb->tail + len) % rb->size;
        return len;
    }
    const auto [before, behind] = take_wrapped(rb, len);
    copy(dst, src, before);
    const s64 drop = before < 0 ? -before : 0;  // bytes that would be written before dst
    copy(dst + (before + drop), rb->buf + drop, behind - drop);
    return static_cast<int>(before + behind);
}

int zelt_rbuf_get_one_line(ZELT_RBUF* rb, char* line, int max) {
    if (max < 0 || empty(rb)) return 0;
    const s64 e = zelt_rbuf_get_fillc_len(rb);
    // Kept: data before a wrap is searched and copied whole, whatever max says.
    if (const int n = copy_line(rb->buf + rb->tail, wrapped(rb) ? e : std::min<s64>(e, max - 1), line, 0)) {
        rb->tail += n;  // Kept: a carriage return that was added is consumed from the ring, too
        return end_line(line, n);
    }
    if (!wrapped(rb) || e >= max || (e > 0 && std::memchr(rb->buf + rb->tail, 0, static_cast<std::size_t>(e))))
        return 0;
    if (e > 0 && rb->head > 0 && rb->buf[rb->size - 1] == '\r' && rb->buf[0] == '\n') {
        line[e] = '\n';
        rb->tail = 1;
        return end_line(line, e + 2);  // Kept: counts a byte that is not written
    }
    const int c = copy_line(rb->buf, std::min<s64>(rb->head, max - e), line, e);
    if (!c) return 0;
    rb->tail = c;
    return end_line(line, e + c);
}
