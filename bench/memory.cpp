// SPDX-License-Identifier: MIT
// The families `memory` (fills and copies), `border`, `digest` and `ring`, beside what the C library has.
#include "memory.h"

#include "zelt/imgb.h"
#include "zelt/md5.h"
#include "zelt/mem.h"
#include "zelt/rbuf.h"

#include <cstring>
#include <cwchar>

namespace zelt::bench {
namespace {
/// A row of our builds, each by make(library), and of one more candidate.
template <class Make, class... More>
void add_our_row(const char* family, std::string title, const char* unit, double units, work work, Make make,
                 More... more) {
    add_row({family, std::move(title), unit, units,
             [=] {
                 std::vector<candidate> list;
                 for (const library& l : libraries()) list.push_back(make(l));
                 (list.push_back(more()), ...);
                 return list;
             },
             work});
}

template <class F, class Libc>
void add_fill(const char* title, const char* name, u32 pattern, const char* peer, Libc libc) {
    for (const int size : run_sizes) {
        const double bytes = places({size, 1}, size).bytes();
        add_our_row(
            "memory", sized(title, size), "byte", bytes, {.written = bytes, .footprint = bytes},
            [=](const library& l) {
                const auto fill = l.find<F>(name);
                return fill_candidate(l.name, size, pattern, [=](u8* p, int n) { fill(p, fill_word, n); });
            },
            [=] { return fill_candidate(peer, size, pattern, libc); });
    }
}

void add_fills() {
    add_fill<decltype(zelt_mset_x128)>("fill words", "zelt_mset_x128", fill_word, "wmemset", [](u8* p, int n) {
        std::wmemset(reinterpret_cast<wchar_t*>(p), fill_word, static_cast<std::size_t>(n) / sizeof(wchar_t));
    });
    add_fill<decltype(zelt_mset_x64a)>("fill bytes", "zelt_mset_x64a", fill_byte, "memset",
                                       [](u8* p, int n) { std::memset(p, 0x44, static_cast<std::size_t>(n)); });
}

void add_copies() {
    for (const area_size s : area_sizes) {
        const bool block = s.w <= 64;
        const double bytes = places(s, stride_of(s)).bytes();
        add_our_row(
            "memory", sized("copy", s), "byte", bytes, {.read = bytes, .written = bytes, .footprint = 2 * bytes},
            [=](const library& l) {
                const auto copy = l.find<decltype(zelt_mcpy_pic)>(block ? "zelt_mcpy_blk" : "zelt_mcpy_pic");
                return copy_candidate(l.name, s, [=](u8* to, const u8* from, int stride, int w, int h) {
                    copy(to, from, stride, stride, w, h);
                });
            },
            [=] {
                return copy_candidate("memcpy", s, [](u8* to, const u8* from, int stride, int w, int h) {
                    for (; h > 0; --h, to += stride, from += stride) std::memcpy(to, from, static_cast<std::size_t>(w));
                });
            });
    }
}

/// The border of one plane as one writes it: a byte, a row
void expand_plainly(const plane& p, int border) {
    const std::size_t n = static_cast<std::size_t>(border), row = static_cast<std::size_t>(p.stride);
    for (int y = 0; y < p.h; ++y) {
        u8* left = p.start + y * p.stride;
        std::memset(left - n, left[0], n);
        std::memset(left + p.w, left[p.w - 1], n);
    }
    for (int y = 1; y <= border; ++y) {
        std::memcpy(p.start - n - y * p.stride, p.start - n, row);
        std::memcpy(p.start - n + (p.h - 1 + y) * p.stride, p.start - n + (p.h - 1) * p.stride, row);
    }
}

void add_borders() {
    for (const bordered_size b : bordered_sizes) {
        const area_size s = b.size;
        const double written = 1.5 * 4 * b.border * (s.w / 2.0 + s.h / 2.0 + 2.0 * b.border);
        add_our_row(
            "border", sized("expand", s), "byte", written, {.written = written, .footprint = written},
            [=](const library& l) {
                return border_candidate(
                    l.name, b, [=, expand = l.find<decltype(zelt_imgb_expand)>("zelt_imgb_expand")](ZELT_IMGB* img) {
                        const u32 word = padding_word(b.border), pad[] = {word, word, word};
                        expand(img, pad);
                    });
            },
            [=] { return border_candidate("memset and memcpy", b, over_planes(b.border, expand_plainly)); });
    }
}

void add_digests() {
    constexpr int steps = 5;  // and, exclusive or, add, rotate, add, 64 times for 64 bytes
    for (const int size : message_sizes)
        add_our_row("digest", sized("MD5", size), "byte", size, {.steps = 1.0 * steps * size}, [=](const library& l) {
            const auto init = l.find<decltype(zelt_md5_init)>("zelt_md5_init");
            const auto update = l.find<decltype(zelt_md5_update)>("zelt_md5_update");
            const auto finish = l.find<decltype(zelt_md5_finish)>("zelt_md5_finish");
            return digest_candidate(l.name, size, [=](const u8* p, std::size_t n, u8* digest) {
                ZELT_MD5 ctx;
                init(&ctx);
                update(&ctx, p, static_cast<u32>(n));
                finish(&ctx, digest);
            });
        });
}

void add_rings() {
    constexpr double bytes = 2 * packets * packet_size;
    add_our_row("ring", sized("put and get", packet_size), "packet", packets, {.read = bytes, .written = bytes},
                [=](const library& l) {
                    const auto put = l.find<decltype(zelt_rbuf_put)>("zelt_rbuf_put");
                    const auto get = l.find<decltype(zelt_rbuf_get)>("zelt_rbuf_get");
                    std::shared_ptr<ZELT_RBUF> rb(zelt_rbuf_create(ring_size), zelt_rbuf_delete);
                    return ring_candidate(
                        l.name, [=](const u8* p) { put(rb.get(), p, packet_size); },
                        [=](u8* p) { get(rb.get(), p, packet_size); });
                });
}

const bool added = [] {
    add_fills();
    add_copies();
    add_borders();
    add_digests();
    add_rings();
    return true;
}();
}  // namespace
}  // namespace zelt::bench
