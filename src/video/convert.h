#pragma once
// Pictures, strip by strip. What a format is stands in one table, and so does what writes it.
#include "core/copy.h"
#include "video/rows.h"
#include "zelt/video.h"

namespace zelt::inline ZELT_LEVEL::video {

// ------------------------------------------------------------------------------------------------------------- formats

enum class kind { grey, planar, paired, packed, rgb };

/// What writes an RGB format
struct writer {
    int planes;
    const int* step;                                                           // bytes per pixel in each plane
    decltype(&put_row<rgb888, chroma_of::pair>) put[3];                        // by chroma_of
    decltype(&csc::convert<planar<3>, csc::to_rgb, rgb888>) full_range_bt601;  // from 4:4:4
};
template <class Dest>
constexpr writer writer_of = {
    Dest::count,
    Dest::step,
    {put_row<Dest, chroma_of::pair>, put_row<Dest, chroma_of::pixel>, put_row<Dest, chroma_of::neighbours>},
    csc::convert<planar<3>, csc::to_rgb, Dest>};

struct format {
    s32 cs;
    video::kind kind;
    bool half_w = false, half_h = false;
    bool second = false;  // V comes first in pairs, or luma second in packed ones
    const writer* rgb = nullptr;
};
// clang-format off
constexpr format formats[] = {
    {ZELT_CS_YUV400,   kind::grey},
    {ZELT_CS_YUV420,   kind::planar, true,  true},
    {ZELT_CS_YUV422,   kind::planar, true,  false},
    {ZELT_CS_YUV440,   kind::planar, false, true},
    {ZELT_CS_YUV444,   kind::planar, false, false},
    {ZELT_CS_NV12,     kind::paired, true,  true},
    {ZELT_CS_NV21,     kind::paired, true,  true,  true},
    {ZELT_CS_NV16,     kind::paired, true,  false},
    {ZELT_CS_YUYV,     kind::packed, true,  false},
    {ZELT_CS_UYVY,     kind::packed, true,  false, true},
    {ZELT_CS_RGB888,   kind::rgb, false, false, false, &writer_of<rgb888>},
    {ZELT_CS_BGR888,   kind::rgb, false, false, false, &writer_of<bgr888>},
    {ZELT_CS_RGBA8888, kind::rgb, false, false, false, &writer_of<rgba8888>},
    {ZELT_CS_BGRA8888, kind::rgb, false, false, false, &writer_of<bgra8888>},
    {ZELT_CS_ARGB8888, kind::rgb, false, false, false, &writer_of<argb8888_packed>},
    {ZELT_CS_RGB565,   kind::rgb, false, false, false, &writer_of<rgb565>},
    {ZELT_CS_R8G8B8,   kind::rgb, false, false, false, &writer_of<planar<3>>},
};
// clang-format on

inline const format* find(s32 cs) {
    for (const format& f : formats)
        if (f.cs == cs) return &f;
    return nullptr;
}

// ------------------------------------------------------------------------------------------------------------ matrices

constexpr matrix make_matrix(double kr, double kb, bool full) {
    const double kg = 1 - kr - kb, luma = full ? 1 : 255.0 / 219, chroma = full ? 1 : 255.0 / 224;
    const double red_v = 2 * (1 - kr) * chroma, blue_u = 2 * (1 - kb) * chroma;
    const auto fixed = [](double v, int one) { return static_cast<s16>(v * one + (v < 0 ? -0.5 : 0.5)); };
    // Luma is centred, too. Of full range the product of luma is exact, and those of chroma are rounded up as often as
    // down: the rounding is a little less than a half, as if they were not.
    const int constant = fixed(luma * (full ? 128 : 112), 64) + (full ? 31 : 32);
    return {
        fixed(luma, 8192),   fixed(red_v, 8192),        fixed(-blue_u * kb / kg, 8192), fixed(-red_v * kr / kg, 8192),
        fixed(blue_u, 8192), static_cast<s16>(constant)};
}
constexpr matrix matrices[][2] = {
    {make_matrix(0.299, 0.114, false), make_matrix(0.299, 0.114, true)},
    {make_matrix(0.2126, 0.0722, false), make_matrix(0.2126, 0.0722, true)},
    {make_matrix(0.2627, 0.0593, false), make_matrix(0.2627, 0.0593, true)},
};

// ------------------------------------------------------------------------------------------------------------ pictures

/// What init leaves in the record's state
struct plan {
    s32 ready;
    s32 src, dst;  // in formats
    s32 smooth;
    s32 as_csc;  // full-range BT.601 from 4:4:4
    video::matrix matrix;
};

struct band {
    std::ptrdiff_t w, h, begin, end;  // the picture, and the rows to convert
};

/// Planes of a format, copied from the caller's arrays
struct picture {
    const video::format& format;
    u8* p[3] = {};
    std::ptrdiff_t s[3] = {};

    picture(const video::format& f, void* const* a, const s32* strides) : format(f) {
        const int of_kind[] = {1, 3, 2, 1, f.rgb ? f.rgb->planes : 0};  // by kind
        for (int i = 0; i < of_kind[static_cast<int>(f.kind)]; ++i) p[i] = static_cast<u8*>(a[i]), s[i] = strides[i];
    }
    u8* row(int plane, std::ptrdiff_t y) const { return p[plane] + y * s[plane]; }
};

/// A part of a row: pixels from x on, which is even
struct strip {
    std::ptrdiff_t x, pixels;
    std::ptrdiff_t pairs() const { return (pixels + 1) / 2; }
};
template <class Body> void for_strips(std::ptrdiff_t w, Body body) {
    constexpr std::ptrdiff_t most = 2 * strip_pairs;
    for (std::ptrdiff_t x = 0; x < w; x += most) body(strip{x, std::min(most, w - x)});
}

/// Every second byte of a packed row
template <int Which> void take(const u8* src, u8* dst, std::ptrdiff_t n) {
    for_each(n, [=](auto a, std::ptrdiff_t i) {
        auto b = a;
        load2(src + 2 * i, a, b);
        store(dst + i, Which ? b : a);
    });
}
/// Luma or chroma of a packed row
inline void take(const u8* src, bool second, u8* dst, std::ptrdiff_t n) { (second ? take<1> : take<0>)(src, dst, n); }

/// The two rows of a source that a row of chroma is made from, and whether the nearer one counts three times as much
struct pair_of_rows {
    std::ptrdiff_t near, far;
    bool apart;
};
/// For a pixel row, at full height or at half of it (then one of even number)
inline pair_of_rows rows_for(std::ptrdiff_t y, std::ptrdiff_t h, bool from_half, bool to_half, bool smooth) {
    if (!from_half) return {y, to_half ? std::min(y + 1, h - 1) : y, false};
    const std::ptrdiff_t near = y / 2, last = (h - 1) / 2;
    if (to_half || !smooth) return {near, near, false};
    return {near, std::clamp(y % 2 ? near + 1 : near - 1, std::ptrdiff_t{0}, last), true};
}

/// Chroma of a strip of a source, on its way to pixels or to another format
class chroma_reader {
public:
    chroma_reader(const picture& src, std::ptrdiff_t w) : src_(src), w_(w) {}

    const u8* plane(int channel, std::ptrdiff_t row, strip s) const {
        return src_.row(1 + channel, row) + (src_.format.half_w ? s.x / 2 : s.x);
    }
    /// Samples as they are: where they are halved across and come from one row
    template <class Body> void samples(std::ptrdiff_t row, strip s, Body body) {
        if (src_.format.kind == kind::planar)
            body(plane_samples{plane(0, row, s), plane(1, row, s)});
        else
            body(paired_samples<false>{paired(row, s, s.pairs(), near_)});
    }

    /// Makes the sums over the two rows.
    void add_up(pair_of_rows rows, strip s) { rows.apart ? add_up<3, 1>(rows, s) : add_up<2, 2>(rows, s); }

    /// Chroma halved across, U first or V
    single samples(bool v_first = false) const { return {even_[v_first], even_[!v_first]}; }
    /// The same for sums with neighbours, one more than there are
    halved halves() const { return {even_[0], even_[1]}; }
    /// Chroma of all pixels
    single odd_samples() const { return {odd_[0], odd_[1]}; }
    mean means(bool v_first) const { return {even_[v_first], odd_[v_first], even_[!v_first], odd_[!v_first]}; }
    /// One channel for even and odd pixels
    single of_pixels(int channel) const { return {even_[channel], odd_[channel]}; }
    single replicated(int channel) const { return {even_[channel], even_[channel]}; }
    doubled smooth(int channel) const { return {even_[channel]}; }

private:
    bool v_first() const { return src_.format.kind == kind::paired && src_.format.second; }
    const u8* paired(std::ptrdiff_t row, strip s, std::ptrdiff_t n, u8* scratch) const {
        if (src_.format.kind == kind::paired) return src_.row(1, row) + s.x;
        take(src_.row(0, row) + 2 * s.x, !src_.format.second, scratch, 2 * n);
        return scratch;
    }

    template <int A, int B> void add_up(pair_of_rows rows, strip s) {
        if (!src_.format.half_w) {
            for (int c = 0; c < 2; ++c) {
                const u8 *near = plane(c, rows.near, s), *far = plane(c, rows.far, s);
                const std::ptrdiff_t last = s.pixels / 2;
                weigh2<A, B>(near, far, even_[c], odd_[c], last);
                if (s.pixels % 2) weigh<A, B>(near + 2 * last, far + 2 * last, even_[c] + last, 1);
                if (s.pixels % 2) odd_[c][last] = even_[c][last];
            }
            return;
        }
        // and the next one, which in the last strip there is not
        const std::ptrdiff_t n = s.pairs(), there = std::min(n + 1, (w_ + 1 - s.x) / 2);
        if (src_.format.kind == kind::planar) {
            for (int c = 0; c < 2; ++c) weigh<A, B>(plane(c, rows.near, s), plane(c, rows.far, s), even_[c], there);
        } else {
            const u8* near = paired(rows.near, s, there, near_);
            const u8* far = rows.far == rows.near ? near : paired(rows.far, s, there, far_);
            weigh2<A, B>(near, far, even_[v_first()], even_[!v_first()], there);
        }
        if (there == n)
            for (auto& channel : even_) channel[n] = channel[n - 1];
    }

    const picture& src_;
    const std::ptrdiff_t w_;
    s16 even_[2][strip_pairs + 1], odd_[2][strip_pairs + 1];
    u8 near_[2 * strip_pairs + 2], far_[2 * strip_pairs + 2];
};

// -------------------------------------------------------------------------------------------------------------- to RGB

class to_pixels {
public:
    to_pixels(const plan& p, const picture& src, const picture& dst, std::ptrdiff_t w)
        : plan_(p), src_(src), dst_(dst), chroma_of_(which_terms(p, src)), chroma_(src, w) {
        if (src.format.kind != kind::grey) return;
        const std::ptrdiff_t n = std::min<std::ptrdiff_t>(w / 2 + 1, strip_pairs);
        for (s16* component : {even_.r, even_.g, even_.b}) std::fill_n(component, n, p.matrix.constant);
    }

    /// Rows that share their chroma
    void convert(const band& b, std::ptrdiff_t y, std::ptrdiff_t rows) {
        const pair_of_rows from = rows_for(y, b.h, src_.format.half_h, false, plan_.smooth);
        for_strips(b.w, [&](strip s) {
            make_terms(from, s);
            for (std::ptrdiff_t i = 0; i < rows; ++i) put(y + i, s);
        });
    }
    bool shares_chroma() const { return src_.format.half_h && !plan_.smooth; }

private:
    static chroma_of which_terms(const plan& p, const picture& src) {
        if (src.format.kind == kind::grey) return chroma_of::pair;
        if (!src.format.half_w) return chroma_of::pixel;
        return p.smooth ? chroma_of::neighbours : chroma_of::pair;
    }
    void make_terms(pair_of_rows from, strip s) {
        if (src_.format.kind == kind::grey) return;
        const std::ptrdiff_t n = s.pairs();
        const matrix& m = plan_.matrix;
        if (chroma_of_ == chroma_of::pixel && from.near == from.far)
            return multiply(m, chroma_.plane(0, from.near, s), chroma_.plane(1, from.near, s), even_, odd_, s.pixels);
        if (chroma_of_ == chroma_of::pair && src_.format.kind == kind::paired && src_.format.second)
            return multiply(m, paired_samples<true>{src_.row(1, from.near) + s.x}, even_, n);
        if (chroma_of_ == chroma_of::pair)
            return chroma_.samples(from.near, s, [&](auto c) { multiply(m, c, even_, n); });
        chroma_.add_up(from, s);
        if (chroma_of_ == chroma_of::neighbours) return multiply(m, chroma_.halves(), even_, n + 1);
        multiply(m, chroma_.samples(), even_, n);
        if (chroma_of_ == chroma_of::pixel) multiply(m, chroma_.odd_samples(), odd_, n);
    }

    void put(std::ptrdiff_t y, strip s) {
        const u8* luma = src_.row(0, y) + s.x;
        if (src_.format.kind == kind::packed) {
            take(src_.row(0, y) + 2 * s.x, src_.format.second, luma_, s.pixels);
            luma = luma_;
        }
        const writer& rgb = *dst_.format.rgb;
        u8* p[3];
        for (int i = 0; i < rgb.planes; ++i) p[i] = dst_.row(i, y) + s.x * rgb.step[i];
        rgb.put[static_cast<int>(chroma_of_)](even_, odd_, plan_.matrix.luma, luma, p, s.pixels);
    }

    const plan& plan_;
    const picture &src_, &dst_;
    const chroma_of chroma_of_;
    chroma_reader chroma_;
    terms even_, odd_;
    u8 luma_[2 * strip_pairs];
};

// -------------------------------------------------------------------------------------------------------------- to YUV

class to_yuv {
public:
    to_yuv(const plan& p, const picture& src, const picture& dst, std::ptrdiff_t w)
        : plan_(p), src_(src), dst_(dst), chroma_(src, w) {}

    /// Luma of all rows, between planes of it
    void copy_luma(const band& b) {
        if (packed()) return;
        for (std::ptrdiff_t y = b.begin; y < b.end; ++y)
            copy(dst_.row(0, y), src_.row(0, y), static_cast<std::size_t>(b.w));
    }
    void convert(const band& b, std::ptrdiff_t y) {
        const format &from = src_.format, &to = dst_.format;
        const bool with_chroma = to.kind != kind::grey && !(to.half_h && y % 2);
        if (!with_chroma && !packed()) return;
        const pair_of_rows rows = rows_for(y, b.h, from.half_h, to.half_h, plan_.smooth);
        for_strips(b.w, [&](strip s) {
            if (with_chroma) put_chroma(rows, to.half_h ? y / 2 : y, s);
            if (packed()) put_luma(y, s);
        });
    }

private:
    bool packed() const { return src_.format.kind == kind::packed || dst_.format.kind == kind::packed; }

    /// To or from a packed row
    void put_luma(std::ptrdiff_t y, strip s) {
        const format &from = src_.format, &to = dst_.format;
        const bool unpack = from.kind == kind::packed, pack = to.kind == kind::packed;
        const u8* luma = src_.row(0, y) + (unpack ? 2 : 1) * s.x;
        u8* const out = dst_.row(0, y) + (pack ? 2 : 1) * s.x;
        if (unpack) {
            take(luma, from.second, pack ? luma_ : out, s.pixels);
            luma = luma_;
        }
        if (pack) interleave(luma, out, s);
    }

    /// A pair of pixels of which there is one gets its luma twice.
    void interleave(const u8* luma, u8* out, strip s) {
        const bool second = dst_.format.second;
        for_each(s.pixels, [=, this](auto y, std::ptrdiff_t i) {
            auto c = y;
            load(luma + i, y), load(pairs_ + i, c);
            second ? store2(out + 2 * i, c, y) : store2(out + 2 * i, y, c);
        });
        if (s.pixels % 2) {
            out[2 * s.pixels + second] = luma[s.pixels - 1];
            out[2 * s.pixels + !second] = pairs_[s.pixels];
        }
    }

    void put_chroma(pair_of_rows rows, std::ptrdiff_t y, strip s) {
        const format &from = src_.format, &to = dst_.format;
        if (from.kind == kind::grey) return put_grey(y, s);
        const bool one_row = rows.near == rows.far;
        if (to.half_w && from.half_w && one_row && v_first(from) == v_first(to))
            return chroma_.samples(rows.near, s, [&](auto c) { put_halved(c, y, s); });
        chroma_.add_up(rows, s);
        if (to.half_w) {
            from.half_w ? put_halved(chroma_.samples(v_first(to)), y, s) : put_halved(chroma_.means(v_first(to)), y, s);
            return;
        }
        for (int c = 0; c < 2; ++c) {
            u8* out = dst_.row(1 + c, y) + s.x;
            if (!from.half_w)
                put_pixels(chroma_.of_pixels(c), out, s);
            else if (plan_.smooth)
                put_pixels(chroma_.smooth(c), out, s);
            else
                put_pixels(chroma_.replicated(c), out, s);
        }
    }
    static bool v_first(const format& f) { return f.kind == kind::paired && f.second; }

    void put_grey(std::ptrdiff_t y, strip s) {
        const auto size = static_cast<std::size_t>(dst_.format.half_w ? s.pairs() : s.pixels);
        if (dst_.format.kind == kind::packed)
            std::memset(pairs_, 128, 2 * size);
        else if (dst_.format.kind == kind::paired)
            std::memset(dst_.row(1, y) + s.x, 128, 2 * size);
        else
            for (int i = 1; i < 3; ++i) std::memset(dst_.row(i, y) + (dst_.format.half_w ? s.x / 2 : s.x), 128, size);
    }
    template <class Chroma> void put_halved(Chroma c, std::ptrdiff_t y, strip s) {
        if (dst_.format.kind == kind::planar)
            to_planes(c, dst_.row(1, y) + s.x / 2, dst_.row(2, y) + s.x / 2, s.pairs());
        else
            to_pairs(c, dst_.format.kind == kind::paired ? dst_.row(1, y) + s.x : pairs_, s.pairs());
    }
    template <class Chroma> static void put_pixels(Chroma c, u8* out, strip s) {
        to_pairs(c, out, s.pixels / 2);
        if (s.pixels % 2) {
            u8 even, odd;
            c.template bytes<u8>(s.pixels / 2, even, odd);
            out[s.pixels - 1] = even;
        }
    }

    const plan& plan_;
    const picture &src_, &dst_;
    chroma_reader chroma_;
    u8 luma_[2 * strip_pairs], pairs_[2 * strip_pairs];
};
}  // namespace zelt::inline ZELT_LEVEL::video
