// SPDX-License-Identifier: MIT
// Model and rows of the conversions from decoder layouts.
#include "kernels/video.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zelt::test {
const std::vector<video_format>& video_formats() {
    static const std::vector<video_format> all = {
        {"yuv400", ZELT_CS_YUV400, {{0, 0, 1}}, 0, 0},
        {"yuv420", ZELT_CS_YUV420, {{0, 0, 1}, {1, 0, 1}, {2, 0, 1}}, 1, 1},
        {"yuv422", ZELT_CS_YUV422, {{0, 0, 1}, {1, 0, 1}, {2, 0, 1}}, 1, 0},
        {"yuv440", ZELT_CS_YUV440, {{0, 0, 1}, {1, 0, 1}, {2, 0, 1}}, 0, 1},
        {"yuv444", ZELT_CS_YUV444, {{0, 0, 1}, {1, 0, 1}, {2, 0, 1}}, 0, 0},
        {"nv12", ZELT_CS_NV12, {{0, 0, 1}, {1, 0, 2}, {1, 1, 2}}, 1, 1},
        {"nv21", ZELT_CS_NV21, {{0, 0, 1}, {1, 1, 2}, {1, 0, 2}}, 1, 1},
        {"nv16", ZELT_CS_NV16, {{0, 0, 1}, {1, 0, 2}, {1, 1, 2}}, 1, 0},
        {"yuyv", ZELT_CS_YUYV, {{0, 0, 2}, {0, 1, 4}, {0, 3, 4}}, 1, 0},
        {"uyvy", ZELT_CS_UYVY, {{0, 1, 2}, {0, 0, 4}, {0, 2, 4}}, 1, 0},
        {"rgb888", ZELT_CS_RGB888, {}, 0, 0},
        {"bgr888", ZELT_CS_BGR888, {}, 0, 0},
        {"rgba8888", ZELT_CS_RGBA8888, {}, 0, 0},
        {"bgra8888", ZELT_CS_BGRA8888, {}, 0, 0},
        {"argb8888", ZELT_CS_ARGB8888, {}, 0, 0},
        {"rgb565", ZELT_CS_RGB565, {}, 0, 0},
        {"r8g8b8", ZELT_CS_R8G8B8, {}, 0, 0},
        {"p010", ZELT_CS_P010, {{0, 0, 2}, {1, 0, 2}, {2, 0, 2}}, 1, 1, 10, 0},
        {"p210", ZELT_CS_P210, {{0, 0, 2}, {1, 0, 2}, {2, 0, 2}}, 1, 0, 10, 0},
        {"p410", ZELT_CS_P410, {{0, 0, 2}, {1, 0, 2}, {2, 0, 2}}, 0, 0, 10, 0},
        {"p010le", ZELT_CS_P010LE, {{0, 0, 2}, {1, 0, 4}, {1, 2, 4}}, 1, 1, 10, 6},
        {"p210le", ZELT_CS_P210LE, {{0, 0, 2}, {1, 0, 4}, {1, 2, 4}}, 1, 0, 10, 6},
        {"r10g10b10", ZELT_CS_R10G10B10, {}, 0, 0, 10, 0},
    };
    return all;
}

const video_format* video_format_of(int cs) {
    const auto& all = video_formats();
    const auto found = std::find_if(all.begin(), all.end(), [=](const video_format& f) { return f.cs == cs; });
    return found == all.end() ? nullptr : &*found;
}

int video_format::channels() const { return cs == ZELT_CS_YUV400 ? 1 : samples[0].step ? 3 : 0; }

bool converts(const video_format& from, const video_format& to) {
    if (!from.channels()) return from.bits == to.bits && to.channels();
    return from.bits == 10 || to.bits == 8;
}

// Words are operands of two bytes, since they may stand at any address and have any bits beside their 10.
std::vector<operand> video_format::operands(shape s, bool written) const {
    const int bytes = bits > 8 ? 2 : 1;
    if (!channels() && bytes == 2)
        return std::vector<operand>(3, {.width = s.w * bytes, .rows = s.h, .written = written});
    if (!channels()) {
        const layout& l = layout_of(name);
        std::vector<operand> all = operands_of(l, s, l, s);
        all.resize(l.planes.size());
        for (operand& o : all) o.written = written;
        return all;
    }
    std::vector<operand> all;
    for (int c = 0; c < channels(); ++c) {  // the last channel of a plane says how large it is
        const std::size_t plane = static_cast<std::size_t>(samples[c].plane);
        const int w = c ? (s.w + half_w) >> half_w : s.w, h = c ? (s.h + half_h) >> half_h : s.h;
        all.resize(std::max(all.size(), plane + 1));
        // both samples of a pair, all four bytes of two packed pixels
        all[plane] = {.width = w * (c ? samples[c].step : bytes), .rows = h, .written = written};
    }
    return all;
}

namespace {
constexpr double constants[][2] = {{0.299, 0.114}, {0.2126, 0.0722}, {0.2627, 0.0593}};  // of red and blue
}
void real_rgb(int matrix, int range, const int (&yuv)[3], double (&rgb)[3], int bits) {
    const double red = constants[matrix][0], blue = constants[matrix][1], green = 1 - red - blue;
    const int one = 1 << (bits - 8), most = (1 << bits) - 1;  // of limited range the steps are those of 8 bits
    const double y = range ? yuv[0] * 1.0 / most : (yuv[0] - 16 * one) / (219.0 * one);
    const double unit = range ? most : 224 * one, pb = (yuv[1] - 128 * one) / unit, pr = (yuv[2] - 128 * one) / unit;
    rgb[0] = y + 2 * (1 - red) * pr;
    rgb[2] = y + 2 * (1 - blue) * pb;
    rgb[1] = (y - red * rgb[0] - blue * rgb[2]) / green;  // y is the weighted sum of all three
}

void real_yuv(int matrix, int range, const double (&rgb)[3], double (&yuv)[3], int bits) {
    const double red = constants[matrix][0], blue = constants[matrix][1];
    const double y = red * rgb[0] + (1 - red - blue) * rgb[1] + blue * rgb[2];
    const int one = 1 << (bits - 8), most = (1 << bits) - 1;
    const double unit = range ? most : 224 * one;
    yuv[0] = range ? y * most : (16 + y * 219) * one;
    yuv[1] = 128 * one + unit * (rgb[2] - y) / (2 - 2 * blue);
    yuv[2] = 128 * one + unit * (rgb[0] - y) / (2 - 2 * red);
}

namespace {
/// The same as it is done: products with 15 fractional bits of the factor
struct back_matrix {
    int black, small[2], both, blue, chroma[2][3];

    back_matrix(int matrix, int range) {
        constexpr int weights[][2] = {{27, 53}, {22, 74}, {31, 80}};  // of red and green
        for (int i = 0; i < 2; ++i) small[i] = weights[matrix][i];
        double yuv[3];
        const auto scaled = [](double v) { return static_cast<int>(std::lround(v / 255 * 32768)); };
        real_yuv(matrix, range, {0, 0, 0}, yuv);
        black = static_cast<int>(yuv[0]);
        real_yuv(matrix, range, {1, 1, 0}, yuv);
        both = scaled((yuv[0] - black) * 64 / (small[0] + small[1]));
        real_yuv(matrix, range, {0, 0, 1}, yuv);
        blue = scaled(yuv[0] - black);
        for (int i = 0; i < 3; ++i) {
            real_yuv(matrix, range, {i == 0 ? 1.0 : 0.0, i == 1 ? 1.0 : 0.0, i == 2 ? 1.0 : 0.0}, yuv);
            for (int c = 0; c < 2; ++c) chroma[c][i] = scaled(yuv[1 + c] - 128);
        }
    }
    static int product(int f, int v) { return (f * v + (1 << 14)) >> 15; }
    u8 luma(components c) const {
        const int sum = product(both, small[0] * c.v[0] + small[1] * c.v[1]) + product(blue, 64 * c.v[2]);
        return static_cast<u8>(black + ((sum + 32) >> 6));
    }
    u8 of_mean(int c, components sum_of_four) const {
        int sum = 64;
        for (int i = 0; i < 3; ++i) sum += product(chroma[c][i], sum_of_four.v[i] * 32);
        return static_cast<u8>(std::min(128 + (sum >> 7), 255));
    }
};

/// R, G, B as they are read; 5 and 6 bits are repeated from the top
components read_rgb(const video_format& f, const layout& l, const view* planes, int x, int y) {
    const u8* p[4] = {};
    for (std::size_t i = 0; i < l.planes.size(); ++i) p[i] = planes[i].p + y * planes[i].stride + x * l.bytes[i];
    components c = l.read(p);
    if (f.cs == ZELT_CS_RGB565) c.v[0] += c.v[0] / 32, c.v[1] += c.v[1] / 64, c.v[2] += c.v[2] / 32;
    return c;
}

void model_back(const ZELT_VIDEO& v, const video_format& from, const video_format& to, shape s, const view* planes,
                const view* out);

constexpr int one = 64;  // what samples are multiples of: chroma has fractions, and so have 10 bits in steps of 8

/// The same as it is done: factors of 13 fractional bits, products and sums of 6. Samples of 10 bits have 2, so that
/// the result is of 4.
struct integer_matrix {
    int factors[3][3], constant, bits, most;  // [R, G, B][Y, U, V]; fractional bits of a result

    integer_matrix(int matrix, int range, int from_bits, int to_bits)
        : bits(to_bits == 10 ? 4 : 6), most((1 << to_bits) - 1) {
        const int zero = 1 << (from_bits - 1), step = 1 << (from_bits - 8), unit = 1 << bits;
        double base[3], more[3];
        real_rgb(matrix, range, {zero, zero, zero}, base, from_bits);
        for (int of = 0; of < 3; ++of) {
            real_rgb(matrix, range, {zero + (of == 0), zero + (of == 1), zero + (of == 2)}, more, from_bits);
            for (int i = 0; i < 3; ++i)
                factors[i][of] = static_cast<int>(std::lround((more[i] - base[i]) * step * most * unit / 64 * 8192));
        }
        const double grey = base[0] * most * unit;
        constant = static_cast<int>(std::ceil(grey + unit / 2 - 1 - 1e-6));
    }
    static int product(int f, int v, int shift = 13) { return (f * (v - 128 * one) + (1 << shift >> 1)) >> shift; }
    components operator()(const int (&sums)[3], int y) const {
        components c = {{0, 0, 0, 255}};
        for (int i = 0; i < 3; ++i) c.v[i] = std::clamp((sums[i] + product(factors[i][0], y)) >> bits, 0, most);
        return c;
    }
    components operator()(int y, int u, int v) const {
        int sums[3];
        for (int i = 0; i < 3; ++i) sums[i] = product(factors[i][1], u) + product(factors[i][2], v) + constant;
        return (*this)(sums, y);
    }
    /// With chroma between two samples, or twice the same
    components operator()(int y, const int (&u)[2], const int (&v)[2]) const {
        int sums[3] = {};
        for (int i = 0; i < 3; ++i)
            for (int k = 0; k < 2; ++k)
                sums[i] += product(factors[i][1], u[k], 14) + product(factors[i][2], v[k], 14) + (constant >> 1);
        return (*this)(sums, y);
    }
};

struct weighted {
    int at, weight;  // in quarters
};
/// Which samples of one direction a destination's place is made from
std::array<weighted, 2> sources(int place, int size, int from_half, int to_half, bool smooth, bool centred) {
    const int last = from_half ? (size - 1) / 2 : size - 1;
    if (!from_half) {
        if (!to_half) return {{{place, 4}, {place, 0}}};
        return {{{2 * place, 2}, {std::min(2 * place + 1, last), 2}}};
    }
    if (to_half) return {{{place, 4}, {place, 0}}};
    const int near = place / 2;
    if (!smooth || (!centred && place % 2 == 0)) return {{{near, 4}, {near, 0}}};
    const int other = std::clamp(place % 2 ? near + 1 : near - 1, 0, last);
    return {{{near, centred ? 3 : 2}, {other, centred ? 1 : 2}}};
}

u8* sample(const video_format& f, const view* planes, int channel, int x, int y) {
    const auto& at = f.samples[channel];
    return planes[at.plane].p + y * planes[at.plane].stride + at.first + x * at.step;
}
int read(const video_format& f, const view* planes, int channel, int x, int y) {
    const u8* p = sample(f, planes, channel, x, y);
    return f.bits == 8 ? p[0] * one : ((p[0] | p[1] << 8) >> f.above & 1023) * (one / 4);
}
}  // namespace

std::vector<u8> bytes_of(const video_format& f, const view* planes, int channel, shape size) {
    const layout* rgb = f.channels() ? nullptr : &layout_of(f.name);
    std::vector<u8> all;
    for (int y = 0; y < size.h; ++y)
        for (int x = 0; x < size.w; ++x)
            all.push_back(static_cast<u8>(rgb ? read_rgb(f, *rgb, planes, x, y).v[channel]
                                              : std::min((read(f, planes, channel, x, y) + one / 2) / one, 255)));
    return all;
}

namespace {
void write_word(u8* p, int word) { p[0] = static_cast<u8>(word), p[1] = static_cast<u8>(word >> 8); }
void write(const video_format& f, const view* planes, int channel, int x, int y, int value) {
    u8* p = sample(f, planes, channel, x, y);
    if (f.bits == 8)
        *p = static_cast<u8>(std::min((value + one / 2) / one, 255));
    else
        write_word(p, (value * 4 + one / 2) / one << f.above);
}

/// Factors of 15 fractional bits, products and sums of 6; chroma of the pixels that there are
void model_ten_back(const ZELT_VIDEO& v, const video_format& to, shape s, const view* rgb, const view* out) {
    double black[3], more[3], middle[3];
    int factors[3][3];  // [Y, U, V][R, G, B]
    real_yuv(v.matrix, v.range, {0, 0, 0}, black, 10);
    real_yuv(v.matrix, v.range, {512 / 1023.0, 512 / 1023.0, 512 / 1023.0}, middle, 10);
    for (int i = 0; i < 3; ++i) {
        real_yuv(v.matrix, v.range, {1.0 * (i == 0), 1.0 * (i == 1), 1.0 * (i == 2)}, more, 10);
        for (int of = 0; of < 3; ++of)
            factors[of][i] = static_cast<int>(std::lround((more[of] - black[of]) / 1023 * 32768));
    }
    const auto component = [&](int c, int x, int y, int w, int h) {
        int sum = static_cast<int>(std::floor(middle[c] * 64 + 1e-6 + 32.5));
        for (int i = 0; i < 3; ++i) {
            int all = 0, count = 0;
            for (int row = y; row < std::min(y + h, s.h); ++row)
                for (int column = x; column < std::min(x + w, s.w); ++column, ++count) {
                    const u8* p = rgb[i].p + row * rgb[i].stride + 2 * column;
                    all += ((p[0] | p[1] << 8) & 1023) - 512;
                }
            sum += (factors[c][i] * (all * 4 / count) * 16 + (1 << 14)) >> 15;
        }
        return std::clamp(sum >> 6, 0, 1023) * (one / 4);
    };
    for (int c = 0; c < 3; ++c) {
        const int w = c ? to.half_w + 1 : 1, h = c ? to.half_h + 1 : 1;
        for (int y = 0; y < s.h; y += h)
            for (int x = 0; x < s.w; x += w) write(to, out, c, x / w, y / h, component(c, x, y, w, h));
    }
}
}  // namespace

void model_video(const ZELT_VIDEO& v, const video_format& from, const video_format& to, shape s, const view* planes) {
    const view* out = planes + from.operands(s, false).size();
    if (!from.channels())
        return from.bits == 10 ? model_ten_back(v, to, s, planes, out) : model_back(v, from, to, s, planes, out);
    const bool smooth = v.chroma == ZELT_VIDEO_SMOOTH;
    const integer_matrix rgb(v.matrix, v.range, from.bits, to.bits);
    const layout* const l = to.channels() || to.bits == 10 ? nullptr : &layout_of(to.name);
    const auto chroma = [&](int channel, int x, int y, int half_w, int half_h) {
        if (from.channels() == 1) return 128 * one;
        int sum = 0;
        for (const weighted& row : sources(y, s.h, from.half_h, half_h, smooth, true))
            for (const weighted& column : sources(x, s.w, from.half_w, half_w, smooth, false))
                sum += row.weight * column.weight * read(from, planes, channel, column.at, row.at);
        return sum / 16;
    };
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            const int luma = read(from, planes, 0, x, y);
            if (to.channels()) {
                const bool packed = to.bits == 8 && to.samples[0].step == 2;
                write(to, out, 0, x, y, luma);
                if (packed && x % 2 == 0 && x + 1 == s.w) write(to, out, 0, x + 1, y, luma);
                continue;
            }
            const bool as_csc = from.cs == ZELT_CS_YUV444 && v.matrix == ZELT_VIDEO_BT601 && v.range == ZELT_VIDEO_FULL;
            const auto at = [&](int c) { return chroma(c, x, y, 0, 0); };
            const auto near = [&](int c) { return chroma(c, x / 2, y, 1, 0); };
            const auto next = [&](int c) { return chroma(c, std::min((x + 1) / 2, (s.w - 1) / 2), y, 1, 0); };
            components pixel;
            if (as_csc)
                pixel = rgb_of({{luma / one, at(1) / one, at(2) / one, 255}});
            else if (from.half_w && smooth)
                pixel = rgb(luma, {near(1), next(1)}, {near(2), next(2)});
            else
                pixel = rgb(luma, at(1), at(2));
            if (to.bits == 10) {
                for (int i = 0; i < 3; ++i) write_word(out[i].p + y * out[i].stride + 2 * x, pixel.v[i]);
                continue;
            }
            u8* p[4] = {};
            for (std::size_t i = 0; i < l->planes.size(); ++i) p[i] = out[i].p + y * out[i].stride + x * l->bytes[i];
            l->write(p, pixel);
        }
    for (int c = 1; c < to.channels(); ++c)
        for (int y = 0; y < (s.h + to.half_h) >> to.half_h; ++y)
            for (int x = 0; x < (s.w + to.half_w) >> to.half_w; ++x)
                write(to, out, c, x, y, chroma(c, x, y, to.half_w, to.half_h));
}

namespace {
void model_back(const ZELT_VIDEO& v, const video_format& from, const video_format& to, shape s, const view* planes,
                const view* out) {
    const back_matrix yuv(v.matrix, v.range);
    const layout& l = layout_of(from.name);
    const bool as_csc = to.cs == ZELT_CS_YUV444 && v.matrix == ZELT_VIDEO_BT601 && v.range == ZELT_VIDEO_FULL;
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            const components c = read_rgb(from, l, planes, x, y);
            *sample(to, out, 0, x, y) = static_cast<u8>(as_csc ? yuv_of(c).v[0] : yuv.luma(c));
            const bool alone = to.packed() && x % 2 == 0 && x + 1 == s.w;  // of a packed pair
            if (alone) *sample(to, out, 0, x + 1, y) = *sample(to, out, 0, x, y);
            if (to.channels() == 1 || x & to.half_w || y & to.half_h) continue;
            components sum = {};
            int count = 0;
            for (int below = y; below <= std::min(y + to.half_h, s.h - 1); ++below)
                for (int right = x; right <= std::min(x + to.half_w, s.w - 1); ++right, ++count)
                    for (int i = 0; i < 3; ++i) sum.v[i] += read_rgb(from, l, planes, right, below).v[i];
            for (int& s : sum.v) s *= 4 / count;
            for (int i = 1; i < 3; ++i)
                *sample(to, out, i, x >> to.half_w, y >> to.half_h) =
                    as_csc ? static_cast<u8>(yuv_of(c).v[i]) : yuv.of_mean(i - 1, sum);
        }
}
}  // namespace

void call_video(const ZELT_VIDEO& v, const video_format& from, const video_format& to, shape s, const view* planes,
                const std::vector<int>& bands, int dst_h) {
    if (dst_h < 1) dst_h = s.h;
    const std::size_t n = from.operands(s, false).size(), all = n + to.operands(s, true).size();
    void* p[8] = {};
    int stride[8] = {};
    for (std::size_t i = 0; i < all; ++i) p[i] = planes[i].p, stride[i] = static_cast<int>(planes[i].stride);
    if (bands.empty()) zelt_video_convert(&v, p, stride, p + n, stride + n, s.w, s.h);
    for (int y = 0, i = 0; !bands.empty() && y < dst_h; ++i) {
        const int rows = bands[static_cast<std::size_t>(i) % bands.size()];
        zelt_video_convert_rows(&v, p, stride, p + n, stride + n, s.w, s.h, y, rows);
        y += rows;
    }
}

std::vector<kernel> video_kernels() {
    std::vector<kernel> rows;
    const std::vector<shape> long_rows = {{2, 2}, {31, 2}, {1057, 2}};
    const auto add = [&](const std::string& name, const video_format& from, const video_format& to, int chroma) {
        const int i = static_cast<int>(rows.size());
        // every matrix and range, whole and in bands, whatever the formats
        ZELT_VIDEO v = {};
        v.src_cs = from.cs, v.dst_cs = to.cs, v.matrix = i % 3, v.range = i / 2 % 2, v.chroma = chroma;
        const std::vector<int> bands = i / 4 % 2 ? std::vector<int>{1, 2, 3} : std::vector<int>{};
        const auto operands = [=](shape s) {
            std::vector<operand> all = from.operands(s, false);
            for (const operand& o : to.operands(s, true)) all.push_back(o);
            return all;
        };
        const auto call = [=](function, shape s, const view* planes) {
            ZELT_VIDEO ready = v;
            const int status = zelt_video_init(&ready);
            call_video(ready, from, to, s, planes, bands);
            return static_cast<u64>(status);
        };
        const auto model = [=](shape s, const view* planes) {
            model_video(v, from, to, s, planes);
            return u64{0};
        };
        rows.push_back({name + from.name + " to " + to.name + (chroma ? " smooth" : ""),
                        reinterpret_cast<function>(zelt_video_convert),
                        i % 4 ? std::vector<shape>{{1, 1}, {3, 5}, {32, 3}, {66, 4}, {129, 3}} : long_rows, operands,
                        call, model});
    };
    for (const int bits : {8, 10})
        for (const video_format& from : video_formats())
            for (const video_format& to : video_formats()) {
                if (from.bits != bits || !converts(from, to)) continue;
                const std::string kind = bits == 10        ? "10 bits "
                                         : from.channels() ? ""
                                                           : "back ",
                                  name = "zelt_video_convert " + kind;
                add(name, from, to, ZELT_VIDEO_REPLICATED);
                if (from.half_w > to.half_w || from.half_h > to.half_h) add(name, from, to, ZELT_VIDEO_SMOOTH);
            }
    return rows;
}
}  // namespace zelt::test
