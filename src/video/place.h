// SPDX-License-Identifier: MIT
#pragma once
// Pictures of another size, or turned: tile by tile, each of which is resized plane by plane, then converted, then
// turned, where there is something to do. Tiles begin at even pixels of the upright destination.
#include "video/convert.h"
#include "video/scale.h"
#include "video/turn.h"

namespace zelt::inline ZELT_LEVEL::video {
/// What a plane has for each pixel, or for all that share a sample
struct cell {
    int bytes;
    bool half_w, half_h;

    area of(area pixels) const {
        const std::ptrdiff_t right = (pixels.x + pixels.w + half_w) >> half_w;
        const std::ptrdiff_t bottom = (pixels.y + pixels.h + half_h) >> half_h;
        const std::ptrdiff_t x = (pixels.x + half_w) >> half_w, y = (pixels.y + half_h) >> half_h;
        return {x, y, right - x, bottom - y};
    }
    area pixels_of(area a) const { return {a.x << half_w, a.y << half_h, a.w << half_w, a.h << half_h}; }
};
inline cell cell_of(const format& f, int plane) {
    if (f.kind == kind::rgb) return {f.rgb->step[plane], false, false};
    if (f.kind == kind::packed) return {4, true, false};
    const int bytes = f.ten ? 2 : 1;
    if (plane == 0) return {bytes, false, false};
    return {f.kind == kind::paired ? 2 * bytes : bytes, f.half_w, f.half_h};
}

/// A caller's arrays
struct plane_list {
    void* p[3];
    s32 s[3];

    u8* row(int plane, std::ptrdiff_t y) const { return static_cast<u8*>(p[plane]) + y * s[plane]; }
};
/// A picture from an even pixel on
inline plane_list from(const picture& of, std::ptrdiff_t x, std::ptrdiff_t y) {
    plane_list list = {};
    for (int i = 0; i < planes_of(of.format); ++i) {
        const area at = cell_of(of.format, i).of({x, y, 0, 0});
        list.p[i] = of.row(i, at.y) + at.x * cell_of(of.format, i).bytes;
        list.s[i] = static_cast<s32>(of.s[i]);
    }
    return list;
}
/// Memory for a tile
template <int Size> struct tile {
    u8 memory[Size];

    plane_list planes(const format& f, std::ptrdiff_t w, std::ptrdiff_t h) {
        plane_list list = {};
        u8* p = memory;
        for (int i = 0; i < planes_of(f); ++i) {
            const cell c = cell_of(f, i);
            const area all = c.of({0, 0, w, h});
            list.p[i] = p, list.s[i] = static_cast<s32>(all.w) * c.bytes;
            p += all.h * list.s[i];
        }
        return list;
    }
};

inline void convert_band(const plan& p, const plane_list& src, const plane_list& dst, const band& b) {
    convert_band(p, src.p, src.s, dst.p, dst.s, b);
}

/// A row of n samples of chroma, the last one first
template <class Chroma> struct reversed {
    Chroma of;
    std::ptrdiff_t n;
    template <class V> void bytes(std::ptrdiff_t i, V& a, V& b) const {
        of.bytes(n - i - static_cast<std::ptrdiff_t>(sizeof(V)), a, b);
        a = reverse<1>(a), b = reverse<1>(b);
    }
};
template <class Chroma> reversed(Chroma, std::ptrdiff_t) -> reversed<Chroma>;

class placer {
public:
    placer(const plan& p, const picture& src, const picture& dst, std::ptrdiff_t w, std::ptrdiff_t h)
        : plan_(p), src_(src), dst_(dst), w_(w), h_(h), way_(p.turn) {
        const bool own = p.dst_w == 0;
        up_w_ = own ? w : way_.exchanged ? p.dst_h : p.dst_w;
        up_h_ = own ? h : way_.exchanged ? p.dst_w : p.dst_h;
        resized_ = up_w_ != w || up_h_ != h;
        resized_plan_ = p;
        resized_plan_.src = p.between, resized_plan_.smooth = 0, resized_plan_.as_csc = p.between_as_csc;
        resized_plan_.matrix = p.matrix_of_bytes;
    }
    std::ptrdiff_t rows() const { return way_.exchanged ? up_w_ : up_h_; }

    void convert(std::ptrdiff_t begin, std::ptrdiff_t end) const {
        if (plan_.turn)
            turn(begin, end);
        else if (resized_ && plan_.filter == ZELT_VIDEO_AREA)
            resize<area_columns>(begin, end);
        else if (resized_)
            resize<bilinear_columns>(begin, end);
        else
            convert_band(plan_, from(src_, 0, 0), from(dst_, 0, 0), {w_, h_, begin, end, w_});
    }

private:
    // Tiles, of which a few rows stay in the nearest cache. Turned ones are squares of which registers turn blocks.
    static constexpr std::ptrdiff_t most_turned = 2048, size_turned = 64;
    const format& between() const { return formats[plan_.between]; }

    template <class Columns> void resize(std::ptrdiff_t begin, std::ptrdiff_t end) const {
        constexpr std::ptrdiff_t most_rows = Columns::rows_at_once;
        const int bytes = std::max(place_of(src_.format, 0).bytes, place_of(src_.format, 1).bytes);
        const std::ptrdiff_t most = std::min<std::ptrdiff_t>(Columns::most, resized_part::most / bytes & -2);
        tile<Columns::most_bytes> memory;
        for (std::ptrdiff_t top = begin & -2, bottom; top < end; top = bottom) {
            bottom = Columns::all_columns_first && end - top > most_rows ? top + most_rows : end;
            for (std::ptrdiff_t x = 0; x < up_w_; x += most) {
                const std::ptrdiff_t columns = std::min(most, up_w_ - x);
                Columns from_source(src_, between(), {w_, h_, up_w_, up_h_}, x, columns);
                for (std::ptrdiff_t y = top; y < bottom; y += most_rows) {
                    const std::ptrdiff_t rows = std::min(most_rows, bottom - y);
                    const std::ptrdiff_t with_next = std::min((rows + 1) & -2, up_h_ - y);
                    put_resized(from_source, memory, {x, y, columns, with_next}, from(dst_, x, y),
                                std::max(begin - y, std::ptrdiff_t{0}), rows);
                }
            }
        }
    }
    /// Some of a tile's rows
    template <class Columns, class Memory>
    void put_resized(Columns& columns, Memory& memory, area t, const plane_list& out, std::ptrdiff_t begin,
                     std::ptrdiff_t end) const {
        const plane_list planes = memory.planes(between(), t.w, t.h);
        u8* const p[] = {planes.row(0, 0), planes.row(1, 0), planes.row(2, 0)};
        columns.rows(t.y, t.h, p, planes.s);
        convert_band(resized_plan_, planes, out, {t.w, t.h, begin, end, t.w});
    }

    // ------------------------------------------------------------------------------------------------------- turned

    /// Rows of a turned plane, as an area of the upright one
    area upright(int plane, std::ptrdiff_t begin, std::ptrdiff_t end) const {
        const cell c = cell_of(dst_.format, plane);
        const area all = c.of({0, 0, up_w_, up_h_});
        const bool half = way_.exchanged ? c.half_w : c.half_h;
        begin = (begin + half) >> half, end = (end + half) >> half;
        const std::ptrdiff_t n = end - begin;
        if (way_.exchanged) return {way_.from_right ? all.w - end : begin, 0, n, all.h};
        return {0, way_.from_bottom ? all.h - end : begin, all.w, n};
    }
    void put_turned(int plane, const u8* src, std::ptrdiff_t src_s, area a) const {
        const cell c = cell_of(dst_.format, plane);
        const area all = c.of({0, 0, up_w_, up_h_}), to = turned(a, all.w, all.h, way_);
        turn_plane(src, src_s, dst_.row(plane, to.y) + to.x * c.bytes, dst_.s[plane], a.w, a.h, c.bytes, way_);
    }
    /// Whether a plane is turned as it is
    bool as_it_is(int plane) const {
        const format &from = src_.format, &to = dst_.format;
        const auto of_planes = [](const format& f) { return f.kind != kind::rgb && f.kind != kind::packed; };
        if (resized_ || !of_planes(from) || !of_planes(to) || from.ten) return false;  // conversion clears bits
        return plane == 0 || (from.kind == to.kind && from.half_w == to.half_w && from.half_h == to.half_h &&
                              from.second == to.second);
    }

    /// Whether chroma is: its samples, whatever their order
    bool chroma_as_it_is() const {
        const format &from = src_.format, &to = dst_.format;
        const auto has_chroma = [](const format& f) { return f.kind == kind::planar || f.kind == kind::paired; };
        return !resized_ && !from.ten && has_chroma(from) && has_chroma(to) && from.half_w == to.half_w &&
               from.half_h == to.half_h;
    }
    /// Calls body with samples of one plane or two, in the order that the destination has.
    template <class Body> void samples_of(const u8* first, const u8* second, Body body) const {
        const bool exchanges = src_.format.second != dst_.format.second;
        if (second)
            body(plane_samples{exchanges ? second : first, exchanges ? first : second});
        else if (exchanges)
            body(paired_samples<true>{first});
        else
            body(paired_samples<false>{first});
    }
    void turn_chroma(area part) const {
        const int planes = planes_of(src_.format) - 1, bytes = planes == 1 ? 2 : 1;
        const area all = cell_of(dst_.format, 1).of({0, 0, up_w_, up_h_});
        const auto at = [&](int plane, std::ptrdiff_t x, std::ptrdiff_t y) {
            return plane > planes ? nullptr : src_.row(plane, y) + x * bytes;
        };
        if (!way_.exchanged) {
            for (std::ptrdiff_t y = part.y; y < part.y + part.h; ++y)
                samples_of(at(1, part.x, y), at(2, part.x, y), [&](auto c) {
                    const area row = turned({part.x, y, part.w, 1}, all.w, all.h, way_);
                    way_.from_right ? put_chroma(reversed{c, part.w}, row) : put_chroma(c, row);
                });
            return;
        }
        constexpr std::ptrdiff_t size = 64, most = (size + 1) * (size + 1);
        u8 memory[2 * most];  // turned, then put into order
        const auto turn_tile = [&](area a) {
            const area out = turned(a, all.w, all.h, way_);
            const std::ptrdiff_t stride = out.w * bytes;
            for (int i = 0; i < planes; ++i)
                turn_plane(at(1 + i, a.x, a.y), src_.s[1 + i], memory + i * most, stride, a.w, a.h, bytes, way_);
            for (std::ptrdiff_t y = 0; y < out.h; ++y) {
                const u8* row = memory + y * stride;
                samples_of(row, planes == 2 ? row + most : nullptr, [&](auto c) {
                    put_chroma(c, {out.x, out.y + y, out.w, 1});
                });
            }
        };
        each_tile(part.y, part.h, size, [&](std::ptrdiff_t y, std::ptrdiff_t rows) {
            each_tile(part.x, part.w, size, [&](std::ptrdiff_t x, std::ptrdiff_t columns) {
                turn_tile({x, y, columns, rows});
            });
        });
    }
    template <class Chroma> void put_chroma(Chroma c, area row) const {
        if (dst_.format.kind == kind::planar)
            to_planes(c, dst_.row(1, row.y) + row.x, dst_.row(2, row.y) + row.x, row.w);
        else
            to_pairs(c, dst_.row(1, row.y) + 2 * row.x, row.w);
    }

    void turn(std::ptrdiff_t begin, std::ptrdiff_t end) const {
        area parts[3] = {}, all = {};
        const int planes = planes_of(dst_.format);
        bool with_luma = false;
        for (int i = 0; i < planes; ++i) {
            area& part = parts[i] = upright(i, begin, end);
            const cell c = cell_of(dst_.format, i);
            if (as_it_is(i)) {
                if (part.w > 0 && part.h > 0) put_turned(i, src_.row(i, part.y) + part.x * c.bytes, src_.s[i], part);
                part = {};
            }
            if (i > 0 && chroma_as_it_is()) {
                if (i == 1 && part.w > 0 && part.h > 0) turn_chroma(part);
                part = {};
            }
            if (part.w < 1 || part.h < 1) continue;
            with_luma = with_luma || i == 0;
            const area pixels = c.pixels_of(part);
            all = all.w ? both(all, pixels) : pixels;
        }
        if (!all.w) return;
        all.w += all.x & 1, all.x &= -2, all.h += all.y & 1, all.y &= -2;
        all = common(all, {0, 0, up_w_, up_h_});
        if (!resized_)
            turn_converted(all, parts, with_luma);
        else if (plan_.filter == ZELT_VIDEO_AREA)
            turn_resized<area_columns>(all, parts);
        else
            turn_resized<bilinear_columns>(all, parts);
    }

    /// The last tiles begin earlier: edges are whole blocks, too.
    static void each_tile(std::ptrdiff_t first, std::ptrdiff_t n, std::ptrdiff_t size, auto body) {
        for (std::ptrdiff_t i = 0; i < n; i += size) {
            const std::ptrdiff_t at = std::max(std::min(i, (n - size) & -2), std::ptrdiff_t{0});
            body(first + at, n - at <= size + 1 ? n - at : size);
        }
    }
    /// Rows that become columns are as many as registers turn, and others long.
    void turn_converted(area all, const area (&parts)[3], bool with_luma) const {
        int bytes = 0;  // of a pixel, at most
        for (int i = 0; i < planes_of(dst_.format); ++i) bytes += cell_of(dst_.format, i).bytes;
        const std::ptrdiff_t most_rows = !way_.exchanged                 ? 8
                                         : dst_.format.kind != kind::rgb ? 64
                                         : bytes == 4                    ? 16
                                                                         : 32;
        constexpr std::ptrdiff_t size = 1 << 14;
        const std::ptrdiff_t most_columns = size / bytes / most_rows & -2;
        tile<size * 11 / 8 + 1024> memory;  // with two rows above, one below and a column
        each_tile(all.y, all.h, most_rows, [&](std::ptrdiff_t y, std::ptrdiff_t rows) {
            each_tile(all.x, all.w, most_columns, [&](std::ptrdiff_t x, std::ptrdiff_t columns) {
                const std::ptrdiff_t above = std::min<std::ptrdiff_t>(y, 2);  // rows that smooth chroma reads
                const plane_list in = from(src_, x, y - above);
                const plane_list out = memory.planes(dst_.format, columns, above + rows);
                convert_band(plan_, in, out, {w_ - x, h_ - y + above, above, above + rows, columns, with_luma});
                put_parts({x, y, columns, rows}, parts, out, above);
            });
        });
    }
    template <class Columns> void turn_resized(area all, const area (&parts)[3]) const {
        tile<4 * most_turned> memory;
        tile<4 * most_turned> upright;
        constexpr std::ptrdiff_t columns = most_turned / size_turned;
        for (std::ptrdiff_t x = 0; x < all.w; x += columns) {
            const std::ptrdiff_t n = std::min(columns, all.w - x);
            Columns from_source(src_, between(), {w_, h_, up_w_, up_h_}, all.x + x, n);
            for (std::ptrdiff_t y = 0; y < all.h; y += size_turned) {
                const area t = {all.x + x, all.y + y, n, std::min(size_turned, all.h - y)};
                const plane_list out = upright.planes(dst_.format, t.w, t.h);
                put_resized(from_source, memory, t, out, 0, t.h);
                put_parts(t, parts, out, 0);
            }
        }
    }
    /// What is wanted of a tile, whose planes are in memory from so many rows above on
    void put_parts(area t, const area (&parts)[3], const plane_list& planes, std::ptrdiff_t above) const {
        for (int i = 0; i < planes_of(dst_.format); ++i) {
            const cell c = cell_of(dst_.format, i);
            const area all = c.of(t), part = common(all, parts[i]);
            if (part.w < 1 || part.h < 1) continue;
            const u8* row = planes.row(i, part.y - all.y + (above >> c.half_h));
            put_turned(i, row + (part.x - all.x) * c.bytes, planes.s[i], part);
        }
    }

    const plan& plan_;
    const picture &src_, &dst_;
    const std::ptrdiff_t w_, h_;
    const way way_;
    std::ptrdiff_t up_w_, up_h_;  // the destination before it is turned
    bool resized_;
    plan resized_plan_;
};
}  // namespace zelt::inline ZELT_LEVEL::video
