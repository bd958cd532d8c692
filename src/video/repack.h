// SPDX-License-Identifier: MIT
#pragma once
// YUV formats that both have chroma halved across, into one another: its samples as they are, or the means of two rows.
// Packed rows are read or written once, luma and chroma together. Rows are at least two registers of pixels wide; what
// is narrower, and the last pixel of an odd packed row, goes the way of all other formats.
#include "core/copy.h"
#include "video/source.h"

namespace zelt::inline ZELT_LEVEL::video {
/// Where a row is, T being u8 or const u8: luma, and the chroma that comes first and second. Pairs and packed rows are
/// at `first`.
template <class T> struct yuv_row { T *luma, *first, *second; };

using repack_rows = void (*)(const yuv_row<const u8>* from, const yuv_row<u8>* to, std::ptrdiff_t pairs);

#if ZELT_SIMD
/// Chroma of `lanes` pairs of pixels: two channels, or to and from packed rows samples of both in turn
struct chroma_registers {
    u8xn first, second;
};

struct as_planes {
    static constexpr bool packed = false;
    template <bool InTurn, class Place> static void get(Place place, yuv_row<const u8>& r, chroma_registers& v) {
        place.template deal<1>(r.first, [&](const u8* p) { return load(p, v.first); });
        place.template deal<1>(r.second, [&](const u8* p) { return load(p, v.second); });
        if (InTurn) zip(v.first, v.second);
    }
    template <bool InTurn, class Place> static void put(Place place, yuv_row<u8>& r, chroma_registers v) {
        if (InTurn) unzip(v.first, v.second);
        place.template deal<1>(r.first, [&](u8* p) { return store(p, v.first); });
        place.template deal<1>(r.second, [&](u8* p) { return store(p, v.second); });
    }
};
struct as_pairs {
    static constexpr bool packed = false;
    template <bool InTurn, class Place> static void get(Place place, yuv_row<const u8>& r, chroma_registers& v) {
        if constexpr (InTurn) {
            place.template deal<2>(r.first, [&](const u8* p) { return load(p, v.first); });
            place.template deal<2, lanes>(r.first, [&](const u8* p) { return load(p, v.second); });
        } else {
            place.template deal<2>(r.first, [&](const u8* p) { return load2(p, v.first, v.second); });
        }
    }
    template <bool InTurn, class Place> static void put(Place place, yuv_row<u8>& r, chroma_registers v) {
        if constexpr (InTurn) {
            place.template deal<2>(r.first, [&](u8* p) { return store(p, v.first); });
            place.template deal<2, lanes>(r.first, [&](u8* p) { return store(p, v.second); });
        } else {
            place.template deal<2>(r.first, [&](u8* p) { return store2(p, v.first, v.second); });
        }
    }
};
struct as_swapped_pairs : as_pairs {
    template <bool InTurn, class Place> static void put(Place place, yuv_row<u8>& r, chroma_registers v) {
        as_pairs::put<InTurn>(place, r, {v.second, v.first});
    }
};
/// And of luma, which is from or for planes
template <bool LumaSecond> struct as_packed {
    static constexpr bool packed = true;
    template <class Place> static void get(Place place, yuv_row<const u8>& r, yuv_row<u8>& luma, chroma_registers& v) {
        const auto half = [&]<int After>(std::integral_constant<int, After>, u8xn& chroma) {
            u8xn y;
            place.template deal<4, 2 * After>(
                r.first, [&](const u8* p) { return LumaSecond ? load2(p, chroma, y) : load2(p, y, chroma); });
            place.template deal<2, After>(luma.luma, [&](u8* p) { return store(p, y); });
        };
        half(std::integral_constant<int, 0>{}, v.first), half(std::integral_constant<int, lanes>{}, v.second);
    }
    template <class Place> static void put(Place place, yuv_row<u8>& r, yuv_row<const u8>& luma, chroma_registers v) {
        const auto half = [&]<int After>(std::integral_constant<int, After>, u8xn chroma) {
            u8xn y;
            place.template deal<2, After>(luma.luma, [&](const u8* p) { return load(p, y); });
            place.template deal<4, 2 * After>(
                r.first, [&](u8* p) { return LumaSecond ? store2(p, chroma, y) : store2(p, y, chroma); });
        };
        half(std::integral_constant<int, 0>{}, v.first), half(std::integral_constant<int, lanes>{}, v.second);
    }
};

/// One row to one row, or the mean of the chroma of two
template <class From, class To, int Rows>
void repack(const yuv_row<const u8>* from, const yuv_row<u8>* to, std::ptrdiff_t pairs) {
    yuv_row<const u8> src = from[0], next_src = from[1];
    yuv_row<u8> dst = to[0], next_dst = to[1];
    const auto get = [](auto place, auto& row, auto& luma) __attribute__((always_inline)) {
        chroma_registers v;
        if constexpr (From::packed)
            From::get(place, row, luma, v);
        else
            From::template get<To::packed>(place, row, v);
        return v;
    };
    const auto turn = [&](auto place) __attribute__((always_inline)) {
        chroma_registers v = get(place, src, dst);
        if constexpr (Rows == 2) {
            const chroma_registers w = get(place, next_src, next_dst);
            v = {average(v.first, w.first), average(v.second, w.second)};
        }
        if constexpr (To::packed)
            To::put(place, dst, src, v);
        else
            To::template put<From::packed>(place, dst, v);
    };
    if constexpr (loads_step) {
        for (std::ptrdiff_t n = pairs / lanes; n != 0; --n) turn(next_pixels{});
        if (pairs % lanes == 0) return;
        src = from[0], next_src = from[1], dst = to[0], next_dst = to[1];
        turn(pixels_at{2 * (pairs - lanes)});
    } else {
        for (std::ptrdiff_t i = 0; i < pairs; i += lanes) turn(pixels_at{2 * std::min(i, pairs - lanes)});
    }
}
/// The same format
template <int Planes> void copy_chroma(const yuv_row<const u8>* from, const yuv_row<u8>* to, std::ptrdiff_t pairs) {
    copy(to->first, from->first, static_cast<std::size_t>(Planes == 1 ? 2 * pairs : pairs));
    if (Planes == 2) copy(to->second, from->second, static_cast<std::size_t>(pairs));
}

/// Of one row and of two to one, by how they lie: planes, pairs, pairs in the other order, luma first, luma second
constexpr repack_rows repackers[4][5][2] = {
    {{copy_chroma<2>, repack<as_planes, as_planes, 2>},
     {repack<as_planes, as_pairs, 1>, repack<as_planes, as_pairs, 2>},
     {},
     {repack<as_planes, as_packed<false>, 1>},
     {repack<as_planes, as_packed<true>, 1>}},
    {{repack<as_pairs, as_planes, 1>, repack<as_pairs, as_planes, 2>},
     {copy_chroma<1>, repack<as_pairs, as_pairs, 2>},
     {repack<as_pairs, as_swapped_pairs, 1>},
     {repack<as_pairs, as_packed<false>, 1>},
     {repack<as_pairs, as_packed<true>, 1>}},
    {{repack<as_packed<false>, as_planes, 1>, repack<as_packed<false>, as_planes, 2>},
     {repack<as_packed<false>, as_pairs, 1>, repack<as_packed<false>, as_pairs, 2>}},
    {{repack<as_packed<true>, as_planes, 1>, repack<as_packed<true>, as_planes, 2>},
     {repack<as_packed<true>, as_pairs, 1>, repack<as_packed<true>, as_pairs, 2>}}};
#else
constexpr repack_rows repackers[4][5][2] = {};
#endif

class repacker {
public:
    repacker(const plan& p, const picture& src, const picture& dst, const band& b) : src_(src), dst_(dst), band_(b) {
        constexpr std::ptrdiff_t least = sizeof(widest);
        const format &from = src.format, &to = dst.format;
        packed_ = from.kind == kind::packed || to.kind == kind::packed;
        pairs_ = packed_ ? b.columns / 2 : (b.columns + 1) / 2;
        if (!from.half_w || !to.half_w || (p.smooth && from.half_h && !to.half_h) || pairs_ < least) return;
        const bool paired = from.kind == kind::paired && to.kind == kind::paired;
        const bool swapped = (from.kind == kind::paired && from.second) != (to.kind == kind::paired && to.second);
        if (swapped && packed_) return;
        swaps_planes_ = swapped && !paired;
        const int way[] = {0, 0, 1, 2}, from_way = way[static_cast<int>(from.kind)];  // by kind
        const int to_way = way[static_cast<int>(to.kind)];
        const bool two_rows = !from.half_h && to.half_h;
        convert_ = repackers[from_way + (from_way == 2 && from.second)]
                            [to_way == 2 ? 3 + to.second : to_way + (swapped && paired)][two_rows];
        one_run_ = convert_ && !packed_ && from.half_h == to.half_h && tight(src) && tight(dst) &&
                   s64{pairs_} * chroma_rows() <= 1 << 28;
    }

    /// Converts chroma that has no gaps between its rows: whether that is all there is to do
    bool convert_run() const {
        if (!one_run_) return false;
        if (chroma_rows() > 0) put(band_.begin + (dst_.format.half_h && band_.begin % 2), pairs_ * chroma_rows());
        return true;
    }
    /// Converts row y, or has done so with one before it: as many of its pixels as are given back
    std::ptrdiff_t convert(std::ptrdiff_t y) const {
        if (!convert_) return 0;
        const bool half_h = dst_.format.half_h;
        if (packed_) {
            if (half_h && (y % 2 ? y == band_.begin : y + 1 == band_.end)) return 0;  // without its neighbour
            if (!half_h || y % 2 == 0) put(y, pairs_);
            return 2 * pairs_;
        }
        if (!half_h || y % 2 == 0) put(y, pairs_);
        return band_.columns;
    }

private:
    std::ptrdiff_t chroma_rows() const {
        return dst_.format.half_h ? (band_.end + 1) / 2 - (band_.begin + 1) / 2 : band_.end - band_.begin;
    }
    /// Whether there are no gaps between rows of chroma
    bool tight(const picture& p) const {
        return p.format.kind == kind::paired ? p.s[1] == 2 * pairs_ : p.s[1] == pairs_ && p.s[2] == pairs_;
    }
    template <class T> static yuv_row<T> row_at(const picture& p, std::ptrdiff_t y, bool swapped) {
        if (p.format.kind == kind::packed) return {nullptr, p.row(0, y), nullptr};
        const std::ptrdiff_t chroma_y = p.format.half_h ? y / 2 : y;
        if (p.format.kind == kind::paired) return {p.row(0, y), p.row(1, chroma_y), nullptr};
        return {p.row(0, y), p.row(1 + swapped, chroma_y), p.row(2 - swapped, chroma_y)};
    }
    void put(std::ptrdiff_t y, std::ptrdiff_t pairs) const {
        const std::ptrdiff_t next = std::min(y + 1, band_.h - 1);
        const yuv_row<const u8> from[] = {row_at<const u8>(src_, y, swaps_planes_),
                                          row_at<const u8>(src_, next, swaps_planes_)};
        const yuv_row<u8> to[] = {row_at<u8>(dst_, y, swaps_planes_), row_at<u8>(dst_, next, swaps_planes_)};
        convert_(from, to, pairs);
    }

    const picture &src_, &dst_;
    const band& band_;
    repack_rows convert_ = nullptr;
    std::ptrdiff_t pairs_ = 0;
    bool packed_ = false, swaps_planes_ = false, one_run_ = false;
};
}  // namespace zelt::inline ZELT_LEVEL::video
