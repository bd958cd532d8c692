// SPDX-License-Identifier: MIT
// Any number of threads gives the same, and all of them end.
#include "tool/pictures.h"
#include "tool/run.h"

#include <chrono>
#include <map>

TEST_F(tool, any_number_of_threads_gives_the_same) {
    const std::string samples = ZELT_SAMPLES "/", clip = samples + "pan420.y4m", other = samples + "pan444.y4m";
    const std::string whole = load(clip);
    store("../cut.y4m", whole.substr(0, whole.size() - 100));
    store("../damaged.y4m", std::string(whole).replace(whole.size() / 2, 70000, 70000, 'x'));
    store("../digests", zelt("md5 --per-frame -i " + other).out);
    const struct {
        int status;
        std::string command;
    } rows[] = {
        {0, "convert -o - --to raw --pix-fmt rgb24 -i " + clip},
        {0, "convert -o x.y4m --size 100x80 --bands 16 -i " + clip},
        {0, "convert -o x.png --skip 3 --limit 5 -i " + clip},
        {2, "convert -o - --to ppm -i ../cut.y4m"},
        {2, "convert -o - --to ppm -i ../damaged.y4m"},
        {0, "md5 -i " + clip},
        {0, "md5 --per-frame -i " + clip},
        {2, "md5 --verify ../digests -i " + clip},
        {0, "compare -i " + clip + " -i " + other},
        {0, "match --csv --frame 2 -o x.ppm -i " + clip},
#ifdef ZELT_TOOL_CONTAINERS
        {0, "md5 --per-frame -i " + samples + "pan_h264.mp4"},
        {0, "convert -o x.raw --pix-fmt nv12 -i " + samples + "pan_hevc.mp4"},
        {0, "convert -o - --to ppm --limit 7 -i " + samples + "pan_mpeg4.avi"},
#endif
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command);
        std::map<std::string, std::string> all_of_one;
        for (const char* threads : {"1", "2", "7"}) {
            const outcome result = zelt(row.command + " --threads " + threads);
            EXPECT_EQ(result.status, row.status);
            std::map<std::string, std::string> all = {{"-", result.out}, {"2", result.err}};
            for (const std::string& name : names()) {
                all[name] = load(name);
                std::filesystem::remove(dir() + "/" + name);
            }
            if (*threads == '1')
                all_of_one = all;
            else
                EXPECT_TRUE(all == all_of_one) << threads;
        }
    }
}

TEST_F(tool, threads_that_wait_for_input_end_with_the_others) {
    const std::string picture = ppm(100, 100, random_bytes(30000, 1));
    store("../part", picture + picture + "P6 ");
    const struct {
        const char *then, *output;
        int status;
    } rows[] = {{"", "/dev/full --to ppm", 3}, {"sleep 0.3; kill -TERM $$;", "x.ppm", 128 + 15}};
    for (const auto& row : rows) {
        const auto start = std::chrono::steady_clock::now();
        const outcome result = shell("mkfifo ../pipe; { exec 3>../pipe; cat ../part >&3; " + std::string(row.then) +
                                     " exec sleep 8; } & exec \"$Z\" convert --threads 3 -i ../pipe -o " + row.output);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(6));  // the pipe is still open then
        EXPECT_EQ(result.status, row.status) << result.err;
        EXPECT_TRUE(names().empty());
        std::filesystem::remove(root + "/pipe");
    }
}
