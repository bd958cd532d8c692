// SPDX-License-Identifier: MIT
// Drawings, as what they put on a canvas, which is the same wherever they are made, and as the tool writes them.
#include "drawing/drawings.h"
#include "drawing/palette.h"
#include "drawing/sheet.h"
#include "tool/pictures.h"
#include "tool/run.h"
#include "zelt/md5.h"

#include <array>
#include <cmath>
#include <iomanip>
#include <numbers>
#include <sstream>

namespace {
using namespace zelt::tool;
using drawings = ::tool;

struct mark {
    std::string kind, text;
    std::vector<point> at;
    colour ink;
    double width;

    bool has(const colour& c) const { return ink.r == c.r && ink.g == c.g && ink.b == c.b; }
    double height() const {
        const auto [low, high] = std::ranges::minmax(at, {}, &point::y);
        return high.y - low.y;
    }
};

/// Remembers what is drawn.
class recorder : public canvas {
public:
    explicit recorder(const drawing& d) {
        d.draw(*this);
        for (const mark& s : marks) {
            text_ << s.kind << std::fixed << std::setprecision(1);
            for (const point& p : s.at) text_ << ' ' << p.x << ' ' << p.y;
            text_ << ' ' << +s.ink.r << ' ' << +s.ink.g << ' ' << +s.ink.b << ' ' << s.width << ' ' << s.text << '\n';
        }
    }
    void area(const std::vector<point>& corners, const colour& c) override {
        marks.push_back({"area", "", corners, c, 0});
    }
    void line(const std::vector<point>& through, double width, const colour& c) override {
        marks.push_back({"line", "", through, c, width});
    }
    void text(point at, anchor where, double size, const colour& c, const std::string& text) override {
        marks.push_back({"text", std::to_string(static_cast<int>(where)) + text, {at}, c, size});
    }
    void image(point at, int times, const picture& pixels) override {
        std::string bytes;
        for (int y = 0; y < pixels.h; ++y)
            bytes.append(reinterpret_cast<const char*>(pixels.row(0, y)), pixels.row_bytes(0));
        images.push_back(bytes);
        marks.push_back({"image", "", {at}, {}, static_cast<double>(times)});
    }
    void clip(const box& to) override { marks.push_back({"clip", "", {{to.x, to.y}, {to.w, to.h}}, {}, 0}); }
    void finish() override {}

    std::string listing() const { return text_.str(); }
    std::string digest() const {
        const std::string text = listing();
        std::array<uint8_t, 16> bytes;
        ZELT_MD5 md5;
        zelt_md5_init(&md5);
        zelt_md5_update(&md5, reinterpret_cast<const uint8_t*>(text.data()), static_cast<uint32_t>(text.size()));
        zelt_md5_finish(&md5, bytes.data());
        std::ostringstream hex;
        for (const uint8_t b : bytes) hex << std::hex << std::setfill('0') << std::setw(2) << +b;
        return hex.str();
    }

    std::vector<mark> marks;
    std::vector<std::string> images;

private:
    std::ostringstream text_;
};

picture pixels(int w, int h) {
    picture pic(format_of(ZELT_CS_BGRA8888), w, h);
    const std::string noise = random_bytes(4 * w * h, 1);
    for (int y = 0; y < h; ++y) std::copy_n(noise.data() + 4 * w * y, 4 * w, pic.row(0, y));
    return pic;
}

motion_field some_motion() {
    return {8,
            {{0, 0, {5, 3}, 7},
             {8, 0, {0, 0}, 0},
             {16, 0, {-6, 0}, 7},
             {0, 8, {0, 1}, 90000},
             {8, 8, {2, -2}, 1},
             {16, 8, {0, 6}, 12}}};
}

quality all_planes(double psnr) { return {{psnr, psnr + 1, psnr + 2, psnr + 0.5}}; }

double distance(const std::array<double, 3>& a, const std::array<double, 3>& b) {
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

/// In Oklab, of what an eye sees that mixes linear R, G and B so
std::array<double, 3> seen(const colour& c, const double (&eye)[3][3]) {
    const auto linear = [](double v) { return v <= 10.31 ? v / 3294.6 : std::pow((v / 255 + 0.055) / 1.055, 2.4); };
    const double rgb[] = {linear(c.r), linear(c.g), linear(c.b)};
    const auto mixed = [&](const double(&row)[3]) {
        return std::clamp(row[0] * rgb[0] + row[1] * rgb[1] + row[2] * rgb[2], 0.0, 1.0);
    };
    const double r = mixed(eye[0]), g = mixed(eye[1]), b = mixed(eye[2]);
    const double l = std::cbrt(0.4122214708 * r + 0.5363325363 * g + 0.0514459929 * b),
                 m = std::cbrt(0.2119034982 * r + 0.6806995451 * g + 0.1073969566 * b),
                 s = std::cbrt(0.0883024619 * r + 0.2817188376 * g + 0.6299787005 * b);
    return {0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s,
            1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s,
            0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s};
}
}  // namespace

TEST_F(drawings, stay_as_they_were_looked_at) {
    const picture small = pixels(20, 13), large = pixels(700, 20);
    const motion_field field = some_motion();
    motion_field still = {64, {}};
    for (int x = 0; x < 700; x += 64) still.blocks.push_back({x, 0, {0, 0}, 5});
    const difference_field differs = {17, 255, {0, 2.5}}, same = {0, 1023, std::vector<double>(88)};
    std::vector<quality> clip, long_clip(3000, all_planes(30));
    for (int i = 0; i < 9; ++i) clip.push_back(i == 4 ? all_planes(INFINITY) : all_planes(30 + 5 * i % 11));
    const std::vector<quality> grey = {{{40, NAN, NAN, 40}}};
    const std::vector<frame_size> frames = {{900, true, true}, {20, false, false}, {0, false, true}, {70, true, false}};
    const struct {
        const char* name;
        drawing drawn;
        const char* digest;
    } rows[] = {{"motion", motion_drawing(field, small, 3, "sad"), "8707ee43c9105cb893436971d81b53dc"},
                {"no motion", motion_drawing(still, large, 1, "satd"), "63029327bbe5746ec2eecd262e80a80d"},
                {"difference", difference_drawing(differs, small, "33.1"), "a91d7ab17d14417b26d56c3f6856e31f"},
                {"no difference", difference_drawing(same, large, "inf"), "7e5e7368b5f7a55f177162b14a1a2a61"},
                {"quality", quality_drawing(clip, "decibels"), "ba81c1a2cc09aa0886b9b60e27d9770e"},
                {"quality of a long clip", quality_drawing(long_clip, ""), "07607d7b3918353a32349889be12edda"},
                {"quality of a grey picture", quality_drawing(grey, ""), "bd66c594841d0eca8abf6882fe36dd29"},
                {"timeline", timeline_drawing(frames, "frames"), "f4a740282dfd5a7d96f5538b26e3c349"}};
    for (const auto& row : rows) {
        const recorder made(row.drawn);
        EXPECT_EQ(made.digest(), row.digest) << row.name << ", which is to be looked at:\n" << made.listing();
    }
}

TEST_F(drawings, arrows_and_costs) {
    const picture pic = pixels(20, 13);
    const motion_field field = some_motion();
    const recorder made(motion_drawing(field, pic, 3, "sad"));
    const sheet s(20, 13);
    EXPECT_EQ(s.times, 32);
    std::size_t found = 0;
    for (const matched_block& b : field.blocks) {
        const double to_x = s.left.x + 32 * (b.x + 4), to_y = s.left.y + 32 * (b.y + 4);
        const colour ink = palette::direction(-b.from.x, -b.from.y);
        const auto near = [](const point& p, double x, double y) { return std::hypot(p.x - x, p.y - y) < 4; };
        for (const mark& drawn : made.marks) {
            if (drawn.kind != "area" || !drawn.has(ink) || b.from == motion_vector{0, 0}) continue;
            std::vector<point> tail;
            for (const point& p : drawn.at)
                if (near(p, to_x + 32 * b.from.x, to_y + 32 * b.from.y)) tail.push_back(p);
            const bool tip = std::ranges::any_of(drawn.at, [&](const point& p) { return near(p, to_x, to_y); });
            if (!tip || tail.size() != 2) continue;
            EXPECT_GE(std::hypot(tail[0].x - tail[1].x, tail[0].y - tail[1].y), 1.5);
            ++found;
        }
    }
    EXPECT_EQ(found, 5u);
    for (std::size_t i = 0; i < made.images[0].size(); i += 4)
        EXPECT_EQ(made.images[0].substr(i, 3), std::string(3, made.images[0][i])) << "grey";
    // By rank: 1 below both 7s, 12, 90000; nothing has no rank.
    std::string cells;
    for (const colour c : {palette::amount(0.375), palette::none, palette::amount(0.375), palette::amount(1),
                           palette::amount(0), palette::amount(0.75)})
        cells += {static_cast<char>(c.b), static_cast<char>(c.g), static_cast<char>(c.r), '\xFF'};
    EXPECT_EQ(made.images[1], cells);
    for (const std::string text : {"01", "290k", "17", "0The longest: 6.0 samples (6 across, 0 down)."})
        EXPECT_NE(made.listing().find(" " + text + "\n"), std::string::npos) << text;
}

TEST_F(drawings, of_long_clips_keep_what_is_rare) {
    std::vector<frame_size> frames(100000, {50, false, false});
    frames[70000] = {100, true, true};
    frames[30001].marked_key = true;
    const recorder bars(timeline_drawing(frames, ""));
    int red = 0, blue = 0;
    double highest = 0, other = 0;
    for (const mark& s : bars.marks) {
        if (s.kind != "area" || s.at[0].y < 64) continue;  // the legend
        red += s.has(palette::red), blue += s.has(palette::blue);
        if (s.has(palette::blue)) highest = std::max(highest, s.height());
        if (s.has(palette::pale)) other = s.height();
    }
    EXPECT_EQ(red, 2);   // a bar and the container's mark
    EXPECT_EQ(blue, 3);  // and the stream's
    EXPECT_NEAR(highest, 2 * other, 1e-6);
    EXPECT_LT(bars.marks.size(), 600u);

    std::vector<quality> pictures(100000, all_planes(40));
    pictures[500] = all_planes(20);
    for (std::size_t n = 60000; n < 61000; ++n) pictures[n] = all_planes(INFINITY);
    const recorder plot(quality_drawing(pictures, ""));
    std::vector<std::size_t> runs;
    for (const mark& s : plot.marks)
        if (s.kind == "line" && s.has(palette::blue)) {
            runs.push_back(s.at.size());
            EXPECT_EQ(s.height() > 50, runs.size() == 1) << "the low one is in the first run";
        }
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_LT(runs[0] + runs[1], 900u);
    EXPECT_NE(plot.listing().find("same\n"), std::string::npos);
}

TEST_F(drawings, colours_are_told_apart_by_all_eyes) {
    // G. M. Machado and others, 2009: without short-, middle- and long-wave cones
    constexpr double eyes[][3][3] = {
        {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
        {{1.255528, -0.076749, -0.178779}, {-0.078411, 0.930809, 0.147602}, {0.004733, 0.691367, 0.303900}},
        {{0.367322, 0.860646, -0.227968}, {0.280085, 0.672501, 0.047413}, {-0.011820, 0.042940, 0.968881}},
        {{0.152286, 1.052583, -0.204868}, {0.114503, 0.786281, 0.099216}, {-0.003882, -0.048116, 1.051998}}};
    const auto direction = [](int degrees) {
        const double angle = degrees * std::numbers::pi / 180;
        return palette::direction(std::cos(angle), std::sin(angle));
    };
    for (const auto& eye : eyes) {
        for (int i = 0; i < 360; i += 5)
            for (int apart = 45; apart <= 180; apart += 15)
                EXPECT_GT(distance(seen(direction(i), eye), seen(direction(i + apart), eye)), 0.055)
                    << i << " " << apart;
        for (int i = 0; i < 10; ++i)
            EXPECT_GT(seen(palette::amount(0.1 * i + 0.1), eye)[0], seen(palette::amount(0.1 * i), eye)[0] + 0.02) << i;
    }
}

#ifdef ZELT_TOOL_DRAWING
TEST_F(drawings, are_files) {
    const std::string samples = ZELT_SAMPLES "/", noise = random_bytes(3 * 260, 1), full = "C444 XCOLORRANGE=FULL";
    std::string moved = noise;
    for (int i = 0; i < 4; ++i) moved[static_cast<std::size_t>(i)] ^= 64;  // the first block of 8x8
    store("a.y4m", y4m(20, 13, full, {noise, noise, moved}));
    store("b.y4m", y4m(20, 13, full, {noise, moved, moved}));
    expect_success(zelt("match -i a.y4m --range 1 --block 8 -o map.png"));
    expect_success(zelt("match -i a.y4m --range 1 --block 8 --frame 2 -o map.ppm"));
    const sheet s(20, 13);
    const std::string map = png_pixels(load("map-0002.png"), false);
    EXPECT_EQ(load("map.ppm"), ppm(s.w, s.h, map));
    const auto at = [&](const std::string& rgb, const box& panel, int x, int y) {  // of the picture
        const double column = panel.x + x * s.times, row = panel.y + y * s.times;
        return rgb.substr(3 * static_cast<std::size_t>(row * s.w + column), 3);
    };
    const auto bytes = [](const colour& c) {
        return std::string{static_cast<char>(c.r), static_cast<char>(c.g), static_cast<char>(c.b)};
    };
    EXPECT_EQ(at(map, s.right, 2, 2), bytes(palette::amount(0.5)));
    EXPECT_EQ(at(map, s.right, 10, 2), bytes(palette::none));
    EXPECT_EQ(map.substr(0, 3), bytes(palette::paper));

    const outcome compared = zelt("compare -i a.y4m -i b.y4m -o worst.png -o psnr.svg");
    expect_success(compared);
    EXPECT_EQ(compared.out, zelt("compare -i a.y4m -i b.y4m").out);
    const std::string worst = png_pixels(load("worst.png"), false);
    EXPECT_EQ(at(worst, s.right, 8, 2), bytes(palette::amount(0.5)));
    EXPECT_EQ(at(worst, s.right, 18, 2), bytes(palette::none));
    store("b.raw", moved);
    expect_success(zelt("convert -i b.raw --raw 20x13:yuv444 -o b.png --range full --matrix bt601"));
    EXPECT_EQ(at(worst, s.left, 9, 5), png_pixels(load("b.png"), false).substr(3 * (5 * 20 + 9), 3));
    std::vector<std::string> svgs = {"psnr.svg"};
#ifdef ZELT_TOOL_CONTAINERS
    expect_success(zelt("keyframes -i " + samples + "pan_hevc.mp4 -o frames.svg"));
    expect_success(zelt("keyframes --csv -i " + samples + "pan_hevc.mp4 -o frames.png"));
    svgs.push_back("frames.svg");
#endif
    for (const std::string& name : svgs) {
        const std::string svg = load(name);
        EXPECT_TRUE(svg.starts_with("<?xml") && svg.ends_with("</svg>\n")) << name;
        EXPECT_NE(svg.find("viewBox=\"0 0 960 376\""), std::string::npos) << name;
    }
    store("wide.raw", std::string(40000, 'a'));
    expect_failure(zelt("match -i wide.raw --raw 20000x1:gray --range 1 -o wide.png"), 4, "32767 each way");
    expect_failure(zelt("compare -i a.y4m -i b.y4m -o none/x.svg"), 3, "none/x.svg: cannot be written");
    expect_failure(zelt("match -i a.y4m -o none/x.png"), 3, "none/x-0001.png: cannot be written");
}
#endif

TEST_F(drawings, need_the_module_and_numbers_do_not) {
    store("a.y4m", y4m(8, 8, "C444", {std::string(192, 'a'), std::string(192, 'b')}));
    for (const std::string verb : {"match -i a.y4m", "compare -i a.y4m -i a.y4m"}) {
        expect_failure(shell("cp \"$Z\" . && ./zelt " + verb + " -o x.png"), 4, "libcairo2-dev");
        EXPECT_EQ(shell("./zelt " + verb).out, zelt(verb).out);
    }
}
