// Motion search and comparison on clips made of a photograph, with vectors and distances known beforehand.
#include "pictures.h"
#include "run.h"

#include <cmath>
#include <cstdio>
#include <map>
#include <sstream>

namespace {
using match = tool;

constexpr int w = 200, h = 120;  // no multiples of a block

/// A window of the photograph from (x, y) on, as a 4:4:4 picture of its green component
std::string window(int x, int y) {
    static const int width = 451;
    static const std::string rgb = [] {
        std::ifstream file(ZELT_SAMPLES "/chelsea.png", std::ios::binary);
        return png_pixels({std::istreambuf_iterator<char>(file), {}}, false);
    }();
    std::string planes;
    for (int row = y; row < y + h; ++row)
        for (int column = x; column < x + w; ++column)
            planes += rgb[static_cast<std::size_t>(3 * (row * width + column) + 1)];
    return planes + std::string(2 * w * h, '\x80');
}

std::string clip(const std::vector<std::string>& frames) { return y4m(w, h, "C444 XCOLORRANGE=FULL", frames); }
}  // namespace

TEST_F(match, finds_how_a_photograph_was_moved) {
    // Where the window goes, the content comes from: the second picture's blocks lie at (dx, dy) in the first.
    const struct { int dx, dy; } moves[] = {{5, -3}, {-11, 7}, {0, 12}};
    std::vector<std::string> frames = {window(120, 80)};
    int x = 120, y = 80;
    for (const auto& m : moves) frames.push_back(window(x += m.dx, y += m.dy));
    store("clip.y4m", clip(frames));
    for (const std::string metric : {"sad", "satd", "ssd"})
        for (const int block : {8, 16, 32}) {
            const outcome result = zelt("match -i clip.y4m --range 12 --csv -o map.png --metric " + metric +
                                        " --block " + std::to_string(block));
            expect_success(result);
            std::istringstream lines(result.out);
            std::string line;
            std::getline(lines, line);
            EXPECT_EQ(line, "picture,x,y,from_x,from_y,cost");
            int inside = 0;
            while (std::getline(lines, line)) {
                int picture, bx, by, dx, dy;
                unsigned cost;
                ASSERT_EQ(std::sscanf(line.c_str(), "%d,%d,%d,%d,%d,%u", &picture, &bx, &by, &dx, &dy, &cost), 6);
                const auto& m = moves[picture - 1];
                // the whole block was in the picture before
                if (bx + m.dx < 0 || by + m.dy < 0 || bx + block + m.dx > w || by + block + m.dy > h ||
                    bx + block > w || by + block > h)
                    continue;
                ++inside;
                EXPECT_TRUE(dx == m.dx && dy == m.dy && cost == 0) << metric << " " << block << ": " << line;
            }
            EXPECT_GT(inside, 20);
        }
    EXPECT_EQ(names(), (std::vector<std::string>{"clip.y4m", "map-0001.png", "map-0002.png", "map-0003.png"}));
}

TEST_F(match, writes_arrows_and_costs_beside_them) {
    store("clip.y4m", clip({window(120, 80), window(126, 80)}));
    const outcome result = zelt("match -i clip.y4m --frame 1 -o map.png");
    expect_success(result);
    EXPECT_NE(result.out.find("(6, 0)"), std::string::npos) << result.out;
    const std::string map = png_pixels(load("map.png"), false);
    ASSERT_EQ(map.size(), 3u * 2 * w * h);
    // the middle of the second block of the second row is an arrow's tip; it costs nothing, which is black
    EXPECT_EQ(map.substr(3 * (24 * 2 * w + 24), 3), "\xFF\x3C" + std::string(1, '\0'));
    EXPECT_EQ(map.substr(3 * (24 * 2 * w + w + 24), 3), std::string(3, '\0'));
}

TEST_F(match, refuses) {
    store("one.y4m", clip({window(0, 0)}));
    expect_failure(zelt("match -i one.y4m -o map.png"), 2, "no picture 1");
    expect_failure(zelt("match -i one.y4m -o map.png --frame 7"), 2, "no picture 7");
    expect_failure(zelt("match -i one.y4m -o map.png --block 12"), 1, "--block");
    EXPECT_EQ(names(), std::vector<std::string>{"one.y4m"});
}

TEST_F(match, compares_clips) {
    std::string a = window(10, 10), b = a;
    uint64_t squares = 0, absolute = 0;
    for (int i = 0; i < w * h; i += 7) {
        const int before = static_cast<uint8_t>(b[static_cast<std::size_t>(i)]), after = (before + i) & 255;
        b[static_cast<std::size_t>(i)] = static_cast<char>(after);
        const int d = after - before;
        squares += static_cast<uint64_t>(d * d), absolute += static_cast<uint64_t>(std::abs(d));
    }
    store("a.y4m", clip({a, a}));
    store("b.y4m", clip({b, a}));
    const outcome result = zelt("compare -i a.y4m -i b.y4m");
    expect_success(result);
    char psnr[32], sad[32];
    std::snprintf(psnr, sizeof psnr, "%.3f", 10 * std::log10(255.0 * 255 * w * h / static_cast<double>(squares)));
    std::snprintf(sad, sizeof sad, "%.4f", static_cast<double>(absolute) / (w * h));
    std::istringstream lines(result.out);
    std::map<std::string, std::vector<std::string>> rows;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream cells(line);
        std::string name;
        cells >> name;
        for (std::string cell; cells >> cell;) rows[name].push_back(cell);
    }
    ASSERT_EQ(rows["0"].size(), 5u) << result.out;
    EXPECT_EQ(rows["0"][0], psnr);
    EXPECT_EQ(rows["0"][1], "inf");
    EXPECT_EQ(rows["0"][3], sad);
    EXPECT_EQ(rows["1"], (std::vector<std::string>{"inf", "inf", "inf", "0.0000", "0.0000"}));

    store("short.y4m", clip({a}));
    const outcome uneven = zelt("compare -i a.y4m -i short.y4m");
    EXPECT_EQ(uneven.status, 2);
    EXPECT_NE(uneven.err.find("more pictures"), std::string::npos);
    store("small.y4m", y4m(2, 2, "C444 XCOLORRANGE=FULL", {std::string(12, '\0')}));
    expect_failure(zelt("compare -i a.y4m -i small.y4m"), 2, "differ in size");
}
