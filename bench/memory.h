// SPDX-License-Identifier: MIT
#pragma once
// What the fills, copies, digests and rings work on, for us and for peers.
#include "bench.h"
#include "zelt/imgb.h"
#include "zelt/md5.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>

namespace zelt::bench {
struct area_size {
    int w, h;
};
inline std::string sized(const std::string& what, int bytes) { return what + ' ' + std::to_string(bytes); }
inline std::string sized(const std::string& what, area_size s) { return sized(what, s.w) + 'x' + std::to_string(s.h); }

/// Memory for as many runs or areas as take a microsecond or more, at addresses of all kinds
class places {
public:
    places(area_size s, int stride) : size(s), stride(stride) {
        const std::size_t bytes = static_cast<std::size_t>(stride) * static_cast<std::size_t>(s.h);
        count_ = (1 << 14) / bytes + 1;
        step_ = bytes + 67;
        to_ = std::make_unique<u8[]>(count_ * step_);
        from_ = std::make_unique<u8[]>(count_ * step_);
    }
    template <class F> void visit(F f) const {
        for (std::size_t i = 0; i < count_; ++i) f(to_.get() + i * step_, from_.get() + (count_ - 1 - i) * step_);
    }
    double bytes() const { return static_cast<double>(count_) * size.w * size.h; }
    const area_size size;
    const int stride;

private:
    std::size_t count_, step_;
    std::unique_ptr<u8[]> to_, from_;
};

/// The same memory for all candidates of a row
inline std::shared_ptr<places> shared_places(area_size s, int stride) {
    static std::map<std::pair<int, int>, std::weak_ptr<places>> all;
    auto& known = all[{s.w, s.h}];
    auto data = known.lock();
    if (!data) known = data = std::make_shared<places>(s, stride);
    return data;
}

/// Runs to fill: a few registers, a row, a small plane, a picture
constexpr int run_sizes[] = {128, 1920, 1 << 16, 1 << 21};
constexpr u32 fill_word = 0x11223344, fill_byte = 0x44444444;

/// f(start, bytes) for every run; `pattern` is what it writes
template <class F> candidate fill_candidate(std::string name, int size, u32 pattern, F f) {
    std::vector<u8> run(static_cast<std::size_t>(size));
    f(run.data(), size);
    for (std::size_t i = 0; i < run.size(); ++i)
        if (run[i] != static_cast<u8>(pattern >> i % 4 * 8)) reject(sized("fill", size), name), i = run.size();
    return {std::move(name),
            [=, data = shared_places({size, 1}, size)] { data->visit([&](u8* to, u8*) { f(to, size); }); }};
}

/// Areas to copy between two planes, blocks of video and pictures
constexpr area_size area_sizes[] = {{8, 8}, {16, 16}, {32, 32}, {64, 64}, {320, 240}, {1920, 1080}};
inline int stride_of(area_size s) { return s.w + 64; }

/// f(to, from, stride, w, h) for every area
template <class F> candidate copy_candidate(std::string name, area_size s, F f) {
    std::vector<u8> from(static_cast<std::size_t>(stride_of(s) * s.h)), to(from.size()), expected(from.size());
    for (std::size_t i = 0; i < from.size(); ++i) {
        from[i] = static_cast<u8>(i * 7 + 1);
        if (static_cast<int>(i) % stride_of(s) < s.w) expected[i] = from[i];
    }
    f(to.data(), from.data(), stride_of(s), s.w, s.h);
    if (to != expected) reject(sized("copy", s), name);
    return {std::move(name), [=, data = shared_places(s, stride_of(s))] {
                data->visit([&](u8* to, const u8* from) { f(to, from, stride_of(s), s.w, s.h); });
            }};
}

/// 4:2:0 pictures with the same border around every plane
struct bordered_size {
    area_size size;
    int border;
};
constexpr bordered_size bordered_sizes[] = {{{64, 64}, 16}, {{320, 240}, 32}, {{1920, 1080}, 80}};
constexpr u32 padding_word(int border) { return static_cast<u32>(border << 16 | border); }

struct plane {
    u8* start;  // the first sample, behind the border
    std::ptrdiff_t stride;
    int w, h;  // without border
};
/// f(plane, border) for every plane of a picture
template <class F> auto over_planes(int border, F f) {
    return [=](ZELT_IMGB* img) {
        for (int i = 0; i < 3; ++i)
            f(plane{static_cast<u8*>(img->plane[i]), img->stride[i], img->stride[i] - 2 * border,
                    img->rows[i] - 2 * border},
              border);
    };
}

/// f(picture) gives it its border, which must be ours.
template <class F> candidate border_candidate(std::string name, bordered_size b, F f) {
    const u32 word = padding_word(b.border), pad[] = {word, word, word};
    const auto make = [&] {
        const auto drop = [](ZELT_IMGB* i) { i->release(i); };
        std::shared_ptr<ZELT_IMGB> img(
            zelt_imgb_create(b.size.w, b.size.h, ZELT_CS_YUV420, 0, nullptr, pad, nullptr, nullptr, nullptr), drop);
        for (int i = 0; i < img->size; ++i) static_cast<u8*>(img->base[0])[i] = static_cast<u8>(i * 7 + i / 1000);
        return img;
    };
    const auto ours = make(), theirs = make();
    zelt_imgb_expand(ours.get(), pad);
    f(theirs.get());
    if (std::memcmp(ours->base[0], theirs->base[0], static_cast<std::size_t>(ours->size)))
        reject(sized("expand", b.size), name);
    return {std::move(name), [=] { f(theirs.get()); }};
}

constexpr int message_sizes[] = {64, 1500, 1 << 16};

/// f(bytes, size, digest of 16 bytes), which must be ours
template <class F> candidate digest_candidate(const std::string& name, int size, F f) {
    auto message = std::make_shared<std::vector<u8>>(static_cast<std::size_t>(size), u8{0x5a});
    u8 ours[16], theirs[16];
    ZELT_MD5 ctx;
    zelt_md5_init(&ctx);
    zelt_md5_update(&ctx, message->data(), static_cast<u32>(size));
    zelt_md5_finish(&ctx, ours);
    f(message->data(), message->size(), theirs);
    if (std::memcmp(ours, theirs, sizeof ours)) reject(sized("MD5", size), name);
    return {name, [=] {
                u8 digest[16];
                f(message->data(), static_cast<std::size_t>(size), digest);
                asm volatile("" ::"r"(digest) : "memory");
            }};
}

/// A stream of packets of seven transport packets each: so many in, so many out.
constexpr int packet_size = 1316, packets = 40, ring_size = 1 << 16;

/// put(packet) and get(packet)
template <class Put, class Get> candidate ring_candidate(std::string name, Put put, Get get) {
    u8 in[packet_size] = {1, 2, 3}, out[packet_size];
    put(in), get(out);
    if (std::memcmp(in, out, packet_size)) reject(sized("put and get", packet_size), name);
    return {std::move(name), [=] {
                u8 packet[packet_size] = {1};
                for (int i = 0; i < packets; ++i) put(packet);
                for (int i = 0; i < packets; ++i) get(packet);
                asm volatile("" ::"r"(packet) : "memory");
            }};
}
}  // namespace zelt::bench
