// SPDX-License-Identifier: MIT
// Real encoded clips, from the container's code to the key-frame test, beside the container's own marks.
#include "run.h"

namespace {
using clips = tool;

std::string sample(const std::string& name) { return ZELT_SAMPLES "/" + name; }

}  // namespace

#ifdef ZELT_TOOL_CONTAINERS
TEST_F(clips, the_rules_agree_with_the_containers) {
    const char *steady = "0,0.000 1,0.040 2,0.080 3,0.120 ", *reordered = "0,0.000 1,0.120 2,0.040 3,0.080 ";
    const struct {
        const char *name, *media_type, *times;
        int units, distance;  // from one key frame to the next
    } rows[] = {{"pan_h264.mp4", "104", reordered, 50, 12}, {"pan.h264", "104", "0, 1, 2, 3, ", 50, 12},
                {"pan_mpeg4.avi", "102", steady, 50, 12},   {"pan_h263.3gp", "103", steady, 50, 12},
                {"pan_wmv1.avi", "105", steady, 50, 12},    {"pan_wmv2.avi", "106", steady, 50, 12},
                {"pan_div3.avi", "110", steady, 50, 12},    {"pan_hfyu.avi", "122", steady, 6, 1},
                {"pan_h264.ts", "104", "", 13, 12}};
    for (const auto& row : rows) {
        const outcome result = shell("\"$Z\" keyframes --csv -i " + sample(row.name) +
                                     ">csv && cut -d, -f1,2 csv | head -5 | tr '\\n' ' ' && cut -d, -f4- csv");
        expect_success(result);
        const std::string times = *row.times ? row.times : "0,1.480 1,1.600 2,1.520 3,1.560 ";
        std::string wanted = "unit,time " + times + "media_type,key,container_key\n";
        for (int i = 0; i < row.units; ++i)
            wanted += row.media_type + std::string(i % row.distance ? ",0,0\n" : ",1,1\n");
        EXPECT_EQ(result.out, wanted) << row.name;
    }
}

TEST_F(clips, tracks_and_units) {
    const std::string head = "\ntrack  kind       code     media type          details\n0      ";
    store("a:b.wav",
          std::string("RIFF\x24\x03\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x40\x1F\0\0\x40\x1F\0\0\1\0\x08\0data\0\3\0\0", 44) +
              std::string(768, '\x80'));
    const std::string hevc = sample("pan_hevc.mp4"), sound = sample("pan_sound.mkv");
    const std::string rows[][3] = {
        {"probe", hevc,
         ": QuickTime / MOV" + head + "video      hvc1     HEVC (120)          hevc, 176x144, 25 frames/s\n"},
        {"probe", "- <" + sample("pan.h264"),
         ": raw H.264 video" + head + "video      none     H264 (104)          h264, 176x144, 25 frames/s\n"},
        {"probe", "a:b.wav",
         ": WAV / WAVE (Waveform Audio)" + head +
             "audio      1        PCM (300)           pcm_u8, 8000 Hz, 1 channel\n"},
        {"probe", sound,
         ": Matroska / WebM" + head +
             "audio      7        MULAW (302)         pcm_mulaw, 8000 Hz, 1 channel\n"
             "1      video      I420     unknown (299)       rawvideo, 176x144, 23.976 frames/s\n"},
        {"probe", sample("pan_hevc.ts"),
         ": MPEG-TS (MPEG-2 Transport Stream)" + head +
             "video      HEVC     HEVC (120)          hevc, 176x144, 25 frames/s\n"},
        {"probe", sample("pan_hev1.mp4"),
         ": QuickTime / MOV" + head + "video      hev1     HEVC (120)          hevc, 176x144, 25 frames/s\n"},
        {"probe", sample("pan_vp8_aac.mkv"),
         ": Matroska / WebM" + head +
             "video      none     VP8 (119)           vp8, 176x144, 25 frames/s\n"
             "1      audio      none     AAC (306)           aac, 8000 Hz, 1 channel\n"},
        {"keyframes", sound,
         ": I420, unknown (299)\n  unit       time      bytes  key  container\n"
         "     0      0.000      38016  no   yes\n     1      0.042      38016  no   yes\n"
         "2 units, 0 key frames; 2 by the container, 2 differ\n"
         "There is no rule for frames of this media type: none is a key frame by it.\n"},
        {"keyframes", sample("pan.h264") + " | sed '3,/^    49/d'",
         ": none, H264 (104)\n  unit       time      bytes  key  container\n"
         "50 units, 5 key frames; 5 by the container, 0 differ\n"},
        {"keyframes", hevc + " | sed '3,/^    49/d; /^Of/,$d'",
         ": hvc1, HEVC (120), start codes put in place of lengths\n  unit       time      bytes  key  container\n"
         "50 units, 0 key frames; 5 by the container, 5 differ\n"},
    };
    for (const auto& [verb, file, wanted] : rows) {
        const outcome result = zelt(verb + " -i " + file);
        expect_success(result);
        EXPECT_EQ(result.out, file.substr(0, file.find(' ')) + wanted);
    }
    EXPECT_EQ(zelt("keyframes --csv -i " + sound).out, "unit,time,bytes,media_type,key,container_key\n"
                                                       "0,0.000,38016,299,0,1\n1,0.042,38016,299,0,1\n");
    expect_failure(zelt("keyframes -i a:b.wav"), 2, "a:b.wav: has no video");
}

TEST_F(clips, damage_is_reported) {
    expect_failure(zelt("keyframes -i nothing.mp4"), 2, "nothing.mp4");
    store("noise.mp4", std::string(5000, '\x7F'));
    expect_failure(zelt("probe -i noise.mp4"), 2, "noise.mp4");
    const std::string whole = load(sample("pan_h264.mp4"));
    for (size_t at = 48; at < whole.size(); at += 997) {
        SCOPED_TRACE(at);
        std::string damaged = whole;
        damaged.replace(at, 16, std::string(16, '\xFF'));
        store("damaged.mp4", damaged);
        const outcome result = zelt("keyframes -i damaged.mp4");
        const bool first = at == 48;  // the length of the first unit
        first || result.status ? expect_failure(result, 2, first ? "the lengths within a unit" : "")
                               : expect_success(result);
    }
    for (const std::string name : {"pan_sound.mkv", "pan_hfyu.avi"})
        for (const int quarters : {3, 4}) {
            const std::string all = load(sample(name)),
                              some = all.substr(0, all.size() / 4 * quarters + all.size() % 4);
            store("clip", some);
            for (const std::string input : {"clip", "-"}) {
                const outcome result = zelt("keyframes --csv -i " + input, some);
                quarters < 4 ? expect_failure(result, 2, ": is cut short") : expect_success(result);
                EXPECT_NE(result.out.find("\n0,0.000,"), std::string::npos) << name;  // what there is
            }
        }
    expect_failure(zelt("keyframes -i " + sample("pan.h264") + " >/dev/full"), 3, "standard output");
    expect_failure(zelt("probe -i " + sample("pan.h264") + " >/dev/full"), 3, "standard output");
}

TEST_F(clips, are_decoded) {
    // Digests are those of ffmpeg, which has the pictures' layouts and order.
    const std::string h264 = sample("pan_h264.mp4"), hevc = sample("pan_hevc.mp4");
    EXPECT_EQ(zelt("md5 -i " + h264).out, "MD5=93ccc6fe2913cde2dde97a5ec17d69ab\n");
    const outcome each = zelt("md5 --per-frame -i " + h264);
    EXPECT_NE(each.out.find("#tb 0: 1/25\n"), std::string::npos);
    EXPECT_NE(each.out.find("0,          1,          1,        1,    38016, eff1674eeca0b3ea15ef569df5da0483\n"),
              std::string::npos);
    store("list", each.out);
    expect_success(zelt("md5 -i - --verify list <" + h264));
    // PSNR is that of ffmpeg's filter of that name: y:32.953746 u:39.867114 v:38.731603 average:34.234207
    const outcome result = zelt("compare -i " + h264 + " -i " + hevc);
    expect_success(result);
    EXPECT_NE(result.out.find("\n    all    32.954    39.867    38.732    34.234 "), std::string::npos) << result.out;
    EXPECT_TRUE(result.out.ends_with("\nthe first picture that differs is 0\n"));
    EXPECT_TRUE(zelt("compare -i " + h264 + " -i " + h264).out.ends_with("\nno picture differs\n"));
    store("411.y4m", "YUV4MPEG2 W4 H1 C411\nFRAME\nabcdef");  // a layout that has no name here
    EXPECT_EQ(zelt("md5 -i 411.y4m").out, "MD5=e80b5017098950fc58aad83c8c14978e\n");
    // What is taken for granted is told.
    EXPECT_EQ(zelt("convert -v -i " + hevc + " -o x.ppm --limit 1 --skip 3").err,
              "176x144: yuv420 -> rgb888; limited range (as the file says), bt601 (by habit)\n1 written: x.ppm\n");
    EXPECT_EQ(zelt("convert -v -i " + h264 + " -o x.png --limit 1 --range full --matrix bt2020").err,
              "176x144: yuv420 -> rgb888; full range (as told), bt2020 (as told)\n1 written: x.png\n");
    // A stream that begins between two key frames, and one that stops within a picture
    const std::string whole = load(sample("pan.h264"));
    store("late.h264", whole.substr(0, 38) + whole.substr(whole.find(std::string("\0\0\1\x41", 4))));
    const outcome late = zelt("convert -v -i late.h264 -o late.y4m");
    EXPECT_EQ(late.status, 0);
    EXPECT_NE(late.err.find("38 written"), std::string::npos) << late.err;
    for (const std::string text : {"GIF89a", "nothing"})
        expect_failure(zelt("convert -i - -o x.ppm", text), 2, "standard input: is no clip or picture of a known kind");
    expect_failure(zelt("convert -i " + sample("pan.nv12") + " -o x.ppm"), 2, "(raw pictures need --raw");
}

TEST_F(clips, are_left_when_it_is_stopped) {
    const outcome result =
        shell("mkfifo ../pipe; { exec 3>../pipe; for i in 1 2 3 4 5 6 7 8; do cat " + sample("pan.h264") +
              "; done >&3; for i in $(seq 100); do sleep 0.05; ls -A | grep -q zelt && break; done; "
              "kill -TERM $$; sleep 0.05; } & exec \"$Z\" convert -i ../pipe -o x.ppm");
    EXPECT_EQ(result.status, 128 + 15);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(names().empty());
}

TEST_F(clips, the_module_is_found_where_it_is_installed) {
    const std::string run = "bin/zelt probe -i " + sample("pan.h264");
    const std::string folder = "\"bin/" ZELT_MODULE_FOLDER "\"";
    expect_success(shell("mkdir bin && cp \"$Z\" bin && mkdir -p " + folder +
                         " && cp \"$(dirname \"$Z\")/zelt_containers.so\" " + folder + " && " + run));
}
#endif

TEST_F(clips, a_tool_without_the_module_says_so) {
    for (const std::string verb : {"probe", "keyframes", "md5", "convert -o x.png", "match"})
        expect_failure(shell("cp \"$Z\" . && ./zelt " + verb + " -i " + sample("pan.h264")), 4, "libavformat-dev");
}
