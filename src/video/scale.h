// SPDX-License-Identifier: MIT
#pragma once  // tiles of planes of another size
#include "video/area.h"
#include "video/source.h"

namespace zelt::inline ZELT_LEVEL::video {
/// From a size to another one
struct sizes {
    s64 w, h, to_w, to_h;

    /// Of chroma that is halved or not
    sizes of_chroma(const format& src, const format& dst) const {
        const auto halves = [](s64 n, bool half) { return half ? (n + 1) / 2 : n; };
        return {halves(w, src.half_w), halves(h, src.half_h), halves(to_w, dst.half_w), halves(to_h, dst.half_h)};
    }
};

/// A channel of a row of interleaved samples
inline void deal(const u8* row, place_of_samples from, u8* out, std::ptrdiff_t n) {
    if (from.bytes == 1) {
        std::memcpy(out, row, static_cast<std::size_t>(n));
    } else if (from.bytes == 2) {
        take(row, from.first, out, n);
    } else {
        u8 pairs[resized_part::most / 2];
        take(row, from.first % 2, pairs, 2 * n);
        take(pairs, from.first / 2, out, n);
    }
}

/// Some columns of the planes of a picture in another size, between four samples
class bilinear_columns {
public:
    static constexpr std::ptrdiff_t most = 256, rows_at_once = 8, most_bytes = 4 * most * rows_at_once;
    static constexpr bool all_columns_first = false;  // tables of columns serve all rows

    /// n columns from x on, where `dst` has the planes' sizes
    bilinear_columns(const picture& src, const format& dst, const sizes& s, std::ptrdiff_t x, std::ptrdiff_t n)
        : src_(src), dst_(dst), chroma_sizes_(s.of_chroma(src.format, dst)), luma_y_(axis_of(s.h, s.to_h)),
          chroma_y_(axis_of(chroma_sizes_.h, chroma_sizes_.to_h)), n_(n),
          luma_(axis_of(s.w, s.to_w), luma_y_, s.to_w, x, static_cast<int>(n), pixels_in(src.format, 0)),
          chroma_(axis_of(chroma_sizes_.w, chroma_sizes_.to_w), chroma_y_, chroma_sizes_.to_w, dst.half_w ? x / 2 : x,
                  static_cast<int>(columns(1)), pixels_in(src.format, 1)),
          caches_{cache(luma_), cache(chroma_), cache(chroma_)} {}

    /// Rows of pixels from y on, which is even
    void rows(std::ptrdiff_t y, std::ptrdiff_t count, u8* const* out, const s32* out_s) {
        make(luma_, 0, luma_y_, y, count, out, out_s);
        if (planes_of(dst_) == 1) return;
        if (dst_.half_h) y /= 2, count = (count + 1) / 2;
        make(chroma_, 1, chroma_y_, y, count, out, out_s);
        if (planes_of(src_.format) == 3) make(chroma_, 2, chroma_y_, y, count, out, out_s);
    }

private:
    using cache = resized_part::cache;
    using axis = rsz::axis;
    static axis axis_of(s64 from, s64 to) { return {static_cast<int>(from), static_cast<int>(to)}; }
    std::ptrdiff_t columns(int channel) const {
        if (channel > 0 && planes_of(dst_) == 1) return 0;
        return channel && dst_.half_w ? (n_ + 1) / 2 : n_;
    }

    void make(const resized_part& part, int channel, const axis& y, std::ptrdiff_t first, std::ptrdiff_t count,
              u8* const* out, const s32* out_s) {
        constexpr std::ptrdiff_t some = 8;
        u8 pixels[some][resized_part::most];
        const place_of_samples from = place_of(src_.format, channel);
        const bool apart = from.bytes > 1 && dst_.kind != kind::rgb;
        for (std::ptrdiff_t i = 0; i < count; i += some) {
            const std::ptrdiff_t n = std::min(count - i, some);
            u8* const to = apart ? pixels[0] : out[channel] + i * out_s[channel];
            part.rows(
                caches_[channel],
                {src_.p[from.plane], src_.s[from.plane], y, first + i, to, apart ? resized_part::most : out_s[channel]},
                static_cast<int>(n));
            for (std::ptrdiff_t k = 0; k < n && apart; ++k)
                for (int c = channel; c < (channel ? 3 : 1); ++c)
                    deal(pixels[k], place_of(src_.format, c), out[c] + (i + k) * out_s[c], columns(c));
        }
    }
    const picture& src_;
    const format& dst_;
    const sizes chroma_sizes_;
    const axis luma_y_, chroma_y_;
    const std::ptrdiff_t n_;
    const resized_part luma_, chroma_;
    cache caches_[3];
};

/// The same by area
class area_columns {
public:
    static constexpr std::ptrdiff_t most = shrinking::most;
    static constexpr std::ptrdiff_t rows_at_once = 32;  // of halved chroma as many as are added up
    static constexpr std::ptrdiff_t most_bytes = 3 * most * rows_at_once;
    static constexpr bool all_columns_first = true;  // memory is read as it comes

    area_columns(const picture& src, const format& dst, const sizes& s, std::ptrdiff_t x, std::ptrdiff_t n)
        : src_(src), dst_(dst), luma_(columns_of(s, 0, x, n)),
          chroma_(columns_of(s.of_chroma(src.format, dst), 1, dst.half_w ? x / 2 : x, dst.half_w ? (n + 1) / 2 : n)) {}

    void rows(std::ptrdiff_t y, std::ptrdiff_t count, u8* const* out, const s32* out_s) {
        const int planes = planes_of(src_.format);
        const bool pixels = src_.format.kind == kind::rgb && planes == 1;
        make(luma_, 0, pixels ? 3 : 1, y, count, out, out_s);
        if (dst_.kind == kind::grey || pixels) return;
        if (dst_.half_h) y /= 2, count = (count + 1) / 2;
        make(chroma_, 1, planes == 3 ? 1 : 2, y, count, out, out_s);
        if (planes == 3) make(chroma_, 2, 1, y, count, out, out_s);
    }

private:
    shrinking columns_of(const sizes& s, int channel, std::ptrdiff_t x, std::ptrdiff_t n) const {
        return {s.w, s.h, s.to_w, s.to_h, x, n, pixels_in(src_.format, channel)};
    }
    void make(const shrinking& columns, int channel, int channels, std::ptrdiff_t y, std::ptrdiff_t count,
              u8* const* out, const s32* out_s) const {
        const int plane = place_of(src_.format, channel).plane;
        interleaved_plane from = {src_.p[plane], src_.s[plane], channels, {}};
        for (int c = 0; c < channels; ++c) from.first[c] = place_of(src_.format, channel + c).first;
        if (!columns.as_it_is()) return columns.rows(from, y, count, out + channel, out_s + channel);
        for (std::ptrdiff_t i = 0; i < count; ++i) {  // chroma, where only luma is shrunk
            u8 memory[2 * most];
            const u8* row = columns.bytes(from, y + i, memory);
            for (int c = channel; c < channel + channels; ++c)
                deal(row, place_of(src_.format, c), out[c] + i * out_s[c], columns.count());
        }
    }

    const picture& src_;
    const format& dst_;
    const shrinking luma_, chroma_;
};
}  // namespace zelt::inline ZELT_LEVEL::video
