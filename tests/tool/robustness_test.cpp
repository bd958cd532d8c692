// SPDX-License-Identifier: MIT
// Broken input of every kind: each run ends with a documented status and one line, and leaves nothing behind.
#include "tool/pictures.h"
#include "tool/run.h"

#include <png.h>
#include <random>

namespace {

constexpr int w = 9, h = 5, area = w * h;
const std::string noise = random_bytes(8 * area, 3), colour = noise.substr(0, 3 * area);

struct sample {
    std::string head, frame;
    int frames;
    std::string arguments;
};

std::vector<sample> samples() {
    const std::string grey = noise.substr(0, area);
    const auto png_of = [](int type, int depth, bool interlaced, std::size_t row) {
        const bool palette = type == PNG_COLOR_TYPE_PALETTE;
        const std::string rows = palette ? std::string(row * h, '\x24') : noise.substr(0, row * h);
        return png(w, h, type, depth, interlaced, rows, palette);
    };
    return {
        {y4m(w, h, "F25:1 Ip A1:1 C444 XCOLORRANGE=FULL", {}), "FRAME\n" + colour, 2, "-o out.png"},
        {y4m(w, h, "Cmono", {}), "FRAME\n" + grey, 2, "-o out.y4m"},
        {y4m(w, h, "C420p10", {}), "FRAME\n" + noise.substr(0, 2 * area + 4 * 15), 2, "-o out.png"},
        {"", ppm(w, h, colour), 2, "-o out.png"},
        {"", "P5\n# grey\n9 5\n255\n" + grey, 2, "-o out.ppm"},
        {"", noise.substr(0, 2 * area), 2, "--raw 9x5:rgb565 -o out.raw --pix-fmt bgra"},
        {"", png_of(PNG_COLOR_TYPE_RGB, 8, false, 3 * w), 1, "-o out.y4m"},
        {"", png_of(PNG_COLOR_TYPE_RGB_ALPHA, 16, true, 8 * w), 1, "-o out.png"},
        {"", png_of(PNG_COLOR_TYPE_GRAY, 4, true, w / 2 + 1), 1, "-o out.ppm"},
        {"", png_of(PNG_COLOR_TYPE_PALETTE, 2, false, w / 4 + 1), 1, "-o out.png"},
    };
}

class robustness : public tool {
protected:
    /// Through a pipe and as a file, whose size is known beforehand; returns the status.
    int run(const std::string& arguments, const std::string& bytes, bool piped) {
        store("../in", bytes);
        const outcome result =
            shell((piped ? "cat ../in | \"$Z\" convert -i - " : "\"$Z\" convert -i ../in ") + arguments);
        EXPECT_TRUE(result.status == 0 || result.status == 2 || result.status == 4) << result.status;
        result.status ? expect_failure(result, result.status, "") : expect_success(result);
        EXPECT_EQ(names().empty(), result.status != 0);
        for (const std::string& name : names()) {
            EXPECT_TRUE(name.starts_with("out")) << name;
            std::filesystem::remove(dir() + "/" + name);
        }
        return result.status;
    }
};

}  // namespace

TEST_F(robustness, cut_or_changed_anywhere) {
    std::mt19937 random{4};
    for (const sample& s : samples()) {
        const std::string whole = s.head + s.frame + (s.frames > 1 ? s.frame : "");
        const std::size_t step = std::max<std::size_t>(1, whole.size() / 24);
        for (std::size_t cut = 0; cut < whole.size(); cut += cut < 14 || cut + 14 > whole.size() ? 1 : step) {
            SCOPED_TRACE(s.arguments + " cut to " + std::to_string(cut));
            const bool sound = cut > s.head.size() && (cut - s.head.size()) % s.frame.size() == 0;
            EXPECT_EQ(run(s.arguments, whole.substr(0, cut), cut % 2), sound ? 0 : 2);
        }
        for (int n = 0; n < 40; ++n) {
            std::string bytes = whole;
            // Headers, at the start, are where a change matters most.
            const std::size_t reach = n % 3 ? std::min<std::size_t>(bytes.size(), 64) : bytes.size();
            for (unsigned changes = 1 + random() % 3; changes; --changes) {
                const std::size_t at = random() % std::min(reach, bytes.size());
                if (random() % 4)
                    bytes.replace(at, random() % 4, random() % 4, "09\n #\xFF"[random() % 6]);
                else
                    bytes[at] ^= static_cast<char>(1u << random() % 8);
            }
            SCOPED_TRACE(s.arguments + " change " + std::to_string(n));
            run(s.arguments, bytes, n % 2);
        }
    }
}

TEST_F(robustness, absurd_sizes) {
    for (const std::string size :
         {"0 5", "5 0", "-1 5", "2147483647 2147483647", "2147483648 1", "4294967297 1", "65536 65536", "46341 46341",
          "1 2147483647", "30000 20000", "1e3 1", "0x10 1", " 5", "999999999999999999999999 1"})
        for (const std::string& bytes :
             {"YUV4MPEG2 W" + std::string(size).replace(size.find(' '), 1, " H") + " C444\nFRAME\nabc",
              "P6 " + size + " 255\nabc", "P5 " + size + " 255\nabc"})
            for (const bool piped : {false, true}) {
                SCOPED_TRACE(bytes);
                // A grey picture that could just be, but not in colour
                EXPECT_EQ(run("-o out.png", bytes, piped), bytes.starts_with("P5 1 2147483647") ? 4 : 2);
            }
}
