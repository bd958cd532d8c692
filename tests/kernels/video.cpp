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
    };
    return all;
}

int video_format::channels() const { return cs == ZELT_CS_YUV400 ? 1 : samples[0].step ? 3 : 0; }

std::vector<operand> video_format::operands(shape s, bool written) const {
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
        const bool pairs = c && samples[c].step > 1;  // both bytes of a pair, all four of two packed pixels
        all.resize(std::max(all.size(), plane + 1));
        all[plane] = {.width = w * (pairs ? samples[c].step : 1), .rows = h, .written = written};
    }
    return all;
}

void real_rgb(int matrix, int range, const int (&yuv)[3], double (&rgb)[3]) {
    constexpr double constants[][2] = {{0.299, 0.114}, {0.2126, 0.0722}, {0.2627, 0.0593}};  // of red and blue
    const double red = constants[matrix][0], blue = constants[matrix][1], green = 1 - red - blue;
    const double y = range ? yuv[0] / 255.0 : (yuv[0] - 16) / 219.0;
    const double pb = (yuv[1] - 128) / (range ? 255.0 : 224.0), pr = (yuv[2] - 128) / (range ? 255.0 : 224.0);
    rgb[0] = y + 2 * (1 - red) * pr;
    rgb[2] = y + 2 * (1 - blue) * pb;
    rgb[1] = (y - red * rgb[0] - blue * rgb[2]) / green;  // y is the weighted sum of all three
}

namespace {
/// The same as it is done: factors of 13 fractional bits, products and sums of 6. Chroma has fractions of its own.
struct integer_matrix {
    double factors[3][3], constant;  // [R, G, B][Y, U, V]

    integer_matrix(int matrix, int range) : constant(std::round((range ? 128 : 112 * 255 / 219.0) * 64)) {
        constant += range ? 31 : 32;
        double base[3], more[3];
        real_rgb(matrix, range, {128, 128, 128}, base);
        for (int of = 0; of < 3; ++of) {
            real_rgb(matrix, range, {128 + (of == 0), 128 + (of == 1), 128 + (of == 2)}, more);
            for (int i = 0; i < 3; ++i) factors[i][of] = std::round((more[i] - base[i]) * 255 * 8192);
        }
    }
    static double product(double f, double v, double one = 64) { return std::floor(f * (v - 128) * one / 8192 + 0.5); }
    components operator()(const double (&sums)[3], double y) const {
        components c = {{0, 0, 0, 255}};
        for (int i = 0; i < 3; ++i)
            c.v[i] = std::clamp(static_cast<int>(std::floor((sums[i] + product(factors[i][0], y)) / 64)), 0, 255);
        return c;
    }
    components operator()(double y, double u, double v) const {
        double sums[3];
        for (int i = 0; i < 3; ++i) sums[i] = product(factors[i][1], u) + product(factors[i][2], v) + constant;
        return (*this)(sums, y);
    }
    /// With chroma between two samples, or twice the same
    components operator()(double y, const double (&u)[2], const double (&v)[2]) const {
        double sums[3] = {};
        for (int i = 0; i < 3; ++i)
            for (int k = 0; k < 2; ++k)
                sums[i] +=
                    product(factors[i][1], u[k], 32) + product(factors[i][2], v[k], 32) + std::floor(constant / 2);
        return (*this)(sums, y);
    }
};

struct weighted {
    int at;
    double weight;
};
/// Which samples of one direction a destination's place is made from
std::array<weighted, 2> sources(int place, int size, int from_half, int to_half, bool smooth, bool centred) {
    const int last = from_half ? (size - 1) / 2 : size - 1;
    if (!from_half) {
        if (!to_half) return {{{place, 1}, {place, 0}}};
        return {{{2 * place, 0.5}, {std::min(2 * place + 1, last), 0.5}}};
    }
    if (to_half) return {{{place, 1}, {place, 0}}};
    const int near = place / 2;
    if (!smooth || (!centred && place % 2 == 0)) return {{{near, 1}, {near, 0}}};
    const int other = std::clamp(place % 2 ? near + 1 : near - 1, 0, last);
    return {{{near, centred ? 0.75 : 0.5}, {other, centred ? 0.25 : 0.5}}};
}

u8* sample(const video_format& f, const view* planes, int channel, int x, int y) {
    const auto& at = f.samples[channel];
    return planes[at.plane].p + y * planes[at.plane].stride + at.first + x * at.step;
}
}  // namespace

void model_video(const ZELT_VIDEO& v, const video_format& from, const video_format& to, shape s, const view* planes) {
    const view* out = planes + from.operands(s, false).size();
    const bool smooth = v.chroma == ZELT_VIDEO_SMOOTH;
    const integer_matrix rgb(v.matrix, v.range);
    const auto chroma = [&](int channel, int x, int y, int half_w, int half_h) {
        if (from.channels() == 1) return 128.0;
        double sum = 0;
        for (const weighted& row : sources(y, s.h, from.half_h, half_h, smooth, true))
            for (const weighted& column : sources(x, s.w, from.half_w, half_w, smooth, false))
                sum += row.weight * column.weight * *sample(from, planes, channel, column.at, row.at);
        return sum;
    };
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            const u8 luma = *sample(from, planes, 0, x, y);
            if (to.channels()) {
                *sample(to, out, 0, x, y) = luma;
                const bool alone = to.samples[0].step == 2 && x % 2 == 0 && x + 1 == s.w;  // of a packed pair
                if (alone) *sample(to, out, 0, x + 1, y) = luma;
                continue;
            }
            const bool as_csc = from.cs == ZELT_CS_YUV444 && v.matrix == ZELT_VIDEO_BT601 && v.range == ZELT_VIDEO_FULL;
            const layout& l = layout_of(to.name);
            u8* p[4] = {};
            for (std::size_t i = 0; i < l.planes.size(); ++i) p[i] = out[i].p + y * out[i].stride + x * l.bytes[i];
            const auto at = [&](int c) { return chroma(c, x, y, 0, 0); };
            const auto near = [&](int c) { return chroma(c, x / 2, y, 1, 0); };
            const auto next = [&](int c) { return chroma(c, std::min((x + 1) / 2, (s.w - 1) / 2), y, 1, 0); };
            if (as_csc)
                l.write(p, rgb_of({{luma, static_cast<int>(at(1)), static_cast<int>(at(2)), 255}}));
            else if (from.half_w && smooth)
                l.write(p, rgb(luma, {near(1), next(1)}, {near(2), next(2)}));
            else
                l.write(p, rgb(luma, at(1), at(2)));
        }
    for (int c = 1; c < to.channels(); ++c)
        for (int y = 0; y < (s.h + to.half_h) >> to.half_h; ++y)
            for (int x = 0; x < (s.w + to.half_w) >> to.half_w; ++x)
                *sample(to, out, c, x, y) = static_cast<u8>(std::floor(chroma(c, x, y, to.half_w, to.half_h) + 0.5));
}

void call_video(const ZELT_VIDEO& v, const video_format& from, const video_format& to, shape s, const view* planes,
                const std::vector<int>& bands) {
    const std::size_t n = from.operands(s, false).size(), all = n + to.operands(s, true).size();
    void* p[8] = {};
    int stride[8] = {};
    for (std::size_t i = 0; i < all; ++i) p[i] = planes[i].p, stride[i] = static_cast<int>(planes[i].stride);
    if (bands.empty()) zelt_video_convert(&v, p, stride, p + n, stride + n, s.w, s.h);
    for (int y = 0, i = 0; !bands.empty() && y < s.h; ++i) {
        const int rows = bands[static_cast<std::size_t>(i) % bands.size()];
        zelt_video_convert_rows(&v, p, stride, p + n, stride + n, s.w, s.h, y, rows);
        y += rows;
    }
}

std::vector<kernel> video_kernels() {
    std::vector<kernel> rows;
    const std::vector<shape> long_rows = {{2, 2}, {31, 2}, {1057, 2}};
    const auto add = [&](const video_format& from, const video_format& to, int chroma) {
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
        rows.push_back({"zelt_video_convert " + from.name + " to " + to.name + (chroma ? " smooth" : ""),
                        reinterpret_cast<function>(zelt_video_convert),
                        i % 4 ? std::vector<shape>{{1, 1}, {3, 5}, {32, 3}, {66, 4}, {129, 3}} : long_rows, operands,
                        call, model});
    };
    for (const video_format& from : video_formats())
        for (const video_format& to : video_formats()) {
            if (!from.channels()) continue;
            add(from, to, ZELT_VIDEO_REPLICATED);
            if (from.half_w > to.half_w || from.half_h > to.half_h) add(from, to, ZELT_VIDEO_SMOOTH);
        }
    return rows;
}
}  // namespace zelt::test
