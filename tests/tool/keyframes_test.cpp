// Real encoded clips, from the container's code to the key-frame test, beside the container's own marks.
#include "run.h"

#include <sstream>

namespace {
using clips = tool;

std::string sample(const std::string& name) { return "'" ZELT_SAMPLES "/" + name + "'"; }

#ifdef ZELT_TOOL_CONTAINERS
struct listing {
    std::string media_types;  // of all units, each once
    std::string key, marked;  // 1 or 0 for each unit
};

listing parse(const std::string& csv) {
    std::istringstream lines(csv);
    std::string line;
    listing list;
    std::getline(lines, line);
    EXPECT_EQ(line, "unit,time,bytes,media_type,key,container_key");
    for (int unit = 0; std::getline(lines, line); ++unit) {
        std::istringstream cells(line);
        std::string cell[6];
        for (auto& c : cell) std::getline(cells, c, ',');
        EXPECT_EQ(cell[0], std::to_string(unit));
        EXPECT_GT(std::stoi(cell[2]), 0);
        if (list.media_types.find(cell[3]) == std::string::npos) list.media_types += cell[3];
        list.key += cell[4];
        list.marked += cell[5];
    }
    return list;
}

/// A key frame in every `distance`, starting with the first
std::string pattern(int units, int distance) {
    std::string text;
    for (int i = 0; i < units; ++i) text += i % distance ? '0' : '1';
    return text;
}
#endif
}  // namespace

#ifdef ZELT_TOOL_CONTAINERS
TEST_F(clips, the_rules_agree_with_the_containers) {
    const struct {
        const char *name, *media_type;
        int units, distance;
    } rows[] = {{"pan_h264.mp4", "104", 50, 12}, {"pan.h264", "104", 50, 12},     {"pan_mpeg4.avi", "102", 50, 12},
                {"pan_h263.3gp", "103", 50, 12}, {"pan_wmv1.avi", "105", 50, 12}, {"pan_wmv2.avi", "106", 50, 12},
                {"pan_div3.avi", "110", 50, 12}, {"pan_hfyu.avi", "122", 6, 1}};
    for (const auto& row : rows) {
        const outcome result = zelt("keyframes --csv -i " + sample(row.name));
        expect_success(result);
        const listing list = parse(result.out);
        EXPECT_EQ(list.media_types, row.media_type) << row.name;
        EXPECT_EQ(list.key, pattern(row.units, row.distance)) << row.name;
        EXPECT_EQ(list.marked, list.key) << row.name;
    }
}

TEST_F(clips, hevc_frames_behind_parameter_sets_are_none) {
    const outcome csv = zelt("keyframes --csv -i " + sample("pan_hevc.mp4"));
    expect_success(csv);
    const listing list = parse(csv.out);
    EXPECT_EQ(list.media_types, "120");
    EXPECT_EQ(list.key, std::string(50, '0'));
    EXPECT_EQ(std::count(list.marked.begin(), list.marked.end(), '1'), 5);
    const outcome text = zelt("keyframes -i " + sample("pan_hevc.mp4"));
    expect_success(text);
    EXPECT_NE(text.out.find("50 units, 0 key frames; 5 by the container, 5 differ"), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("begins with a parameter set"), std::string::npos) << text.out;
}

TEST_F(clips, tracks) {
    const outcome mp4 = zelt("probe -i " + sample("pan_hevc.mp4"));
    expect_success(mp4);
    EXPECT_NE(mp4.out.find("hvc1"), std::string::npos) << mp4.out;
    EXPECT_NE(mp4.out.find("HEVC (120)"), std::string::npos) << mp4.out;
    EXPECT_NE(mp4.out.find("hevc, 176x144, 25 frames/s"), std::string::npos) << mp4.out;
    const outcome raw = zelt("probe -i - <" + sample("pan.h264"));
    expect_success(raw);
    EXPECT_NE(raw.out.find("none     H264 (104)"), std::string::npos) << raw.out;
}

TEST_F(clips, damage_is_reported) {
    expect_failure(zelt("keyframes -i nothing.mp4"), 2, "nothing.mp4");
    store("noise.mp4", std::string(5000, '\x7F'));
    expect_failure(zelt("probe -i noise.mp4"), 2, "noise.mp4");
    std::ifstream in(ZELT_SAMPLES "/pan_h264.mp4", std::ios::binary);
    const std::string whole{std::istreambuf_iterator<char>(in), {}};
    for (size_t at = 48; at < whole.size(); at += 997) {
        std::string damaged = whole;
        damaged.replace(at, 16, std::string(16, '\xFF'));
        store("damaged.mp4", damaged);
        const outcome result = zelt("keyframes -i damaged.mp4");
        EXPECT_TRUE(result.status == 0 || result.status == 2) << at << ": " << result.status << result.err;
    }
    expect_failure(zelt("keyframes -i " + sample("pan.h264") + " >/dev/full"), 3, "standard output");
    expect_failure(zelt("keyframes -i " + sample("coffee.png") + " -x"), 1, "-x");
}
#else
TEST_F(clips, a_build_without_libavformat_says_so) {
    expect_failure(zelt("probe -i " + sample("pan.h264")), 4, "libavformat-dev");
    expect_failure(zelt("keyframes -i " + sample("pan.h264")), 4, "libavformat-dev");
}
#endif
