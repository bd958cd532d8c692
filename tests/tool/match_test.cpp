// SPDX-License-Identifier: MIT
// Motion search and comparison of clips, beside plain computations.
#include "tool/pictures.h"
#include "tool/run.h"

#include <array>
#include <climits>
#include <cmath>
#include <cstdio>

namespace {
using match = tool;
using compare = tool;
using zelt::test::view;

using pictures = std::vector<std::string>;

constexpr const char* full = "C444 XCOLORRANGE=FULL";

int sample(const std::string& plane, int i) { return static_cast<uint8_t>(plane[static_cast<std::size_t>(i)]); }

/// The nearest sample of a plane
int at(const std::string& plane, int w, int h, int x, int y) {
    return sample(plane, std::clamp(y, 0, h - 1) * w + std::clamp(x, 0, w - 1));
}

/// The sum of the 4x4 tiles' transformed differences
double satd(std::string a, std::string b, int block) {
    static const std::vector<zelt::test::kernel> rows = zelt::test::metric_kernels();
    static const auto row = std::find_if(rows.begin(), rows.end(), [](const auto& r) { return r.name == "zelt_satd"; });
    const view views[] = {{reinterpret_cast<uint8_t*>(a.data()), block}, {reinterpret_cast<uint8_t*>(b.data()), block}};
    return static_cast<double>(row->model({block, block}, views));
}

/// A block of a plane, which beyond its edges goes on as it ends, or with zeros
std::string part(const std::string& plane, int w, int h, int x0, int y0, int block, bool zeros) {
    std::string samples;
    for (int y = y0; y < y0 + block; ++y)
        for (int x = x0; x < x0 + block; ++x)
            samples += static_cast<char>(zeros && (x >= w || y >= h) ? 0 : at(plane, w, h, x, y));
    return samples;
}

/// What zelt compare prints of 4:4:4 pictures on one line
std::string comparison(const std::string& name, const pictures& a, const pictures& b, int w, int h) {
    double squares[3] = {}, absolute = 0, transformed = 0;
    for (std::size_t n = 0; n < a.size(); ++n) {
        for (int i = 0; i < 3 * w * h; ++i) {
            const int d = sample(a[n], i) - sample(b[n], i);
            squares[i / (w * h)] += d * d;
            if (i < w * h) absolute += std::abs(d);
        }
        for (int y = 0; y < h; y += 4)
            for (int x = 0; x < w; x += 4)
                transformed += satd(part(a[n], w, h, x, y, 4, true), part(b[n], w, h, x, y, 4, true), 4);
    }
    const double samples = w * h * static_cast<double>(a.size());
    const auto psnr = [&](double mean) { return 10 * std::log10(255.0 * 255 / mean); };
    char line[120];
    std::snprintf(line, sizeof line, "%7s  %8.3f  %8.3f  %8.3f  %8.3f  %9.4f  %8.4f  %8.4f\n", name.c_str(),
                  psnr(squares[0] / samples), psnr(squares[1] / samples), psnr(squares[2] / samples),
                  psnr((squares[0] + squares[1] + squares[2]) / samples / 3), squares[0] / samples, absolute / samples,
                  transformed / samples);
    return line;
}

/// What zelt match --csv prints of luma planes
std::string matches(const pictures& clip, int w, int h, int block, int range, const std::string& metric) {
    std::string text = "picture,x,y,from_x,from_y,cost\n";
    const auto match_block = [&](std::size_t n, int bx, int by) {
        const std::string now = part(clip[n], w, h, bx, by, block, false);
        std::array<int, 4> best = {INT_MAX};  // cost, length, y, x
        for (int y = -range; y <= range; ++y)
            for (int x = -range; x <= range; ++x) {
                const std::string from = part(clip[n - 1], w, h, bx + x, by + y, block, false);
                int cost = metric == "satd" ? static_cast<int>(satd(now, from, block)) : 0;
                for (int i = 0; metric != "satd" && i < block * block; ++i) {
                    const int d = std::abs(sample(now, i) - sample(from, i));
                    cost += metric == "sad" ? d : d * d;
                }
                best = std::min(best, {cost, x * x + y * y, y, x});
            }
        for (const int v : {static_cast<int>(n), bx, by, best[3], best[2]}) text += std::to_string(v) + ",";
        text += std::to_string(best[0]) + "\n";
    };
    for (std::size_t n = 1; n < clip.size(); ++n)
        for (int y = 0; y < h; y += block)
            for (int x = 0; x < w; x += block) match_block(n, x, y);
    return text;
}
}  // namespace

TEST_F(compare, gives_what_the_formulas_give) {
    // More than a block of 64x64 and no multiple of a tile; noise of another strength in each plane and picture.
    constexpr int w = 70, h = 67, area = w * h;
    pictures a, b, rgb;
    for (int n = 0; n < 3; ++n) {
        a.push_back(random_bytes(3 * area, 6));
        b.push_back(a.back());
        for (int i = 0; i < 3 * area; i += 3 + n)
            b.back()[static_cast<std::size_t>(i)] ^= static_cast<char>(n == 2 ? 0 : 3 << i / area << n);
        rgb.push_back(random_bytes(3 * area, 7));
    }
    store("a.y4m", y4m(w, h, full, a));
    store("b.y4m", y4m(w, h, full, b));
    store("rgb.ppm", ppm(w, h, rgb[0]) + ppm(w, h, rgb[1]) + ppm(w, h, rgb[2]));
    for (std::string& picture : rgb) picture = converted("rgb888", "yuv444", picture);
    for (const auto& [name, other] : {std::pair{"b.y4m", b}, {"rgb.ppm", rgb}}) {
        std::string wanted = "picture    PSNR Y    PSNR U    PSNR V      PSNR      SSD Y     SAD Y    SATD Y\n";
        for (std::size_t n = 0; n < 3; ++n) wanted += comparison(std::to_string(n), {a[n]}, {other[n]}, w, h);
        const outcome result = zelt(std::string("compare -i a.y4m -i ") + name);
        expect_success(result);
        EXPECT_EQ(result.out, wanted + comparison("all", a, other, w, h) + "the first picture that differs is 0\n");
    }
}

TEST_F(compare, layouts) {
    const std::string head = "picture    PSNR Y    PSNR U    PSNR V      PSNR      SSD Y     SAD Y    SATD Y\n";
    const auto line = [](const char* name, double y, const char* u, const char* v, double all, double ssd, double sad,
                         double satd) {
        char text[120];
        std::snprintf(text, sizeof text, "%7s  %8.3f  %8s  %8s  %8.3f  %9.4f  %8.4f  %8.4f\n", name, y, u, v, all, ssd,
                      sad, satd);
        return std::string(text);
    };
    const std::string none = line("0", INFINITY, "inf", "inf", INFINITY, 0, 0, 0);
    // A sample of luma that differs by 8 has 8 in all 16 coefficients of a tile, of whose sum SATD is a half.
    const auto decibels = [](double peak, double mean) { return 10 * std::log10(peak * peak / mean); };
    std::string ten("\0\1\0\1\0\1\0\1\0\2\0\2", 12), other = ten;
    other[0] += 8, other[8] += 1;
    store("a.y4m", y4m(2, 2, "C420p10", {ten, ten}));
    store("b.y4m", y4m(2, 2, "C420p10", {ten, other}));
    EXPECT_EQ(zelt("compare -i a.y4m -i b.y4m").out,
              head + none + line("1", decibels(1023, 16), "60.198", "inf", decibels(1023, 65 / 6.), 16, 2, 16) +
                  line("all", decibels(1023, 8), "63.208", "inf", decibels(1023, 65 / 12.), 8, 1, 8) +
                  "the first picture that differs is 1\n");
    store("a.y4m", y4m(2, 2, "Cmono", {"abcd"}));
    store("b.y4m", y4m(2, 2, "Cmono", {"ibcd"}));
    const double grey = decibels(255, 16);
    EXPECT_EQ(zelt("compare -i a.y4m -i b.y4m").out, head + line("0", grey, "-", "-", grey, 16, 2, 16) +
                                                         line("all", grey, "-", "-", grey, 16, 2, 16) +
                                                         "the first picture that differs is 0\n");
    // The same samples in another layout, and RGB that becomes what it became
    store("rgb.ppm", ppm(6, 5, random_bytes(90, 3)));
    store("a.y4m", y4m(6, 5, "C420", {random_bytes(48, 4)}));
    expect_success(zelt("convert -i rgb.ppm -o limited.y4m --matrix bt709"));
    expect_success(zelt("convert -i a.y4m -o full.y4m --pix-fmt yuv444"));
    for (const std::string inputs : {"rgb.ppm -i limited.y4m", "limited.y4m -i rgb.ppm", "a.y4m -i full.y4m"}) {
        const outcome result = zelt("compare -i " + inputs);
        expect_success(result);
        EXPECT_TRUE(result.out.ends_with("\nno picture differs\n")) << inputs << "\n" << result.out;
    }
    for (const std::string format : {"nv12", "nv21", "yuv420p", "p010le", "yuyv422"}) {
        const std::string bytes = random_bytes(format == "p010le" ? 96 : format == "yuyv422" ? 60 : 48, 5);
        store("a.raw", bytes);
        store("b.raw", bytes);
        EXPECT_TRUE(zelt("compare -i a.raw -i b.raw --raw 6x5:" + format).out.ends_with("\nno picture differs\n"));
    }
    EXPECT_TRUE(
        zelt("compare -i a.y4m -i full.y4m --range full --matrix bt2020").out.ends_with("no picture differs\n"));
}

TEST_F(match, agrees_with_a_full_search) {
    // Few values, so that there are ties; then moved by (2, 1) and brighter; then moved back, with noise.
    constexpr int w = 30, h = 22, area = w * h;
    pictures luma(3, random_bytes(area, 1)), frames;
    for (int i = 0; i < 3 * area; ++i) {
        const int x = i % area % w, y = i % area / w;
        luma[static_cast<std::size_t>(i / area)][static_cast<std::size_t>(i % area)] =
            static_cast<char>(i < area       ? sample(luma[0], i) & 3
                              : i < 2 * area ? at(luma[0], w, h, x + 2, y + 1) + 3
                                             : at(luma[1], w, h, x - 2, y - 1) ^ (i % 5 == 0));
    }
    for (const std::string& plane : luma) frames.push_back(plane + random_bytes(2 * area, 2));
    store("clip.y4m", y4m(w, h, full, frames));
    for (const std::string metric : {"sad", "satd", "ssd"})
        for (const int block : {4, 8, 16}) {
            const outcome result =
                zelt("match -i clip.y4m --range 3 --csv --metric " + metric + " --block " + std::to_string(block));
            expect_success(result);
            EXPECT_EQ(result.out, matches(luma, w, h, block, 3, metric)) << metric << " " << block;
        }
    const outcome all = zelt("match -i clip.y4m"),
                  one = zelt("match -i clip.y4m --frame 1 --block 8 --range 2 --metric satd");
    EXPECT_EQ(all.out, "picture  blocks    mean sad  vectors    most often    share\n"
                       "      1       4       628.8        4      (-15, 5)   25.0 %\n"
                       "      2       4        48.0        1      (-2, -1)  100.0 %\n"
                       "8712 places, 98.8 % given up early\n");
    EXPECT_EQ(one.out, "picture  blocks   mean satd  vectors    most often    share\n"
                       "      1      12        96.0        1        (2, 1)  100.0 %\n"
                       "300 places, 17.0 % given up early\n");
}
