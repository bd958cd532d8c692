// SPDX-License-Identifier: MIT
// The page's readers of files: whole ones, forms that are rare, and what is broken.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, test } from "node:test";
import { fileURLToPath } from "node:url";
import { readAnnexB } from "../../docs/try/annexb.js";
import { isMp4, readMp4 } from "../../docs/try/mp4.js";
import { readY4m } from "../../docs/try/y4m.js";

const sample = (name) => new URL(`../../samples/${name}`, import.meta.url);
const bytesOf = (name) => new Uint8Array(readFileSync(sample(name)));
const coded = (bytes) => (isMp4(bytes) ? readMp4(bytes) : readAnnexB(bytes));
const text = (words) => new TextEncoder().encode(words);

/** The frames of a file are those that ffprobe finds. */
function assertProbed(path, what) {
    const options = "-v error -select_streams v -show_entries packet=pts_time,size,flags -of csv=p=0".split(" ");
    const rows = execFileSync("ffprobe", [...options, path], { encoding: "utf8" })
        .trim()
        .split("\n");
    const { frames } = coded(new Uint8Array(readFileSync(path)));
    const expected = rows.map((row) => row.split(","));
    if (expected[0][0] === "N/A") {
        // a stream alone has neither times nor marks
        assert.deepEqual(
            frames.map(({ size }) => `${size}`),
            expected.map(([, size]) => size),
            what,
        );
        return;
    }
    const first = Math.min(...expected.map(([time]) => Number(time)));
    assert.deepEqual(
        frames.map(({ time, size, marked }) => [time.toFixed(3), `${size}`, marked]),
        expected.map(([time, size, flags]) => [(time - first).toFixed(3), size, flags[0] === "K"]),
        what,
    );
}

const FRAGMENTS = "frag_keyframe+empty_moov";
const folder = mkdtempSync(join(tmpdir(), "try-"));
after(() => rmSync(folder, { recursive: true }));

/** A sample as ffmpeg writes it by other flags; its path. */
function made(flags) {
    const path = join(folder, "made.mp4");
    const input = fileURLToPath(sample("pan_h264.mp4"));
    execFileSync("ffmpeg", ["-v", "error", "-y", "-i", input, "-c", "copy", "-movflags", flags, path]);
    return path;
}

test("frames of files are those that ffprobe finds", () => {
    for (const name of ["pan.h264", "pan_h264.mp4", "pan_hevc.mp4", "pan_hev1.mp4", "pan_h263.3gp"])
        assertProbed(fileURLToPath(sample(name)), name);
    const more = ["default_base_moof", "omit_tfhd_offset", "separate_moof", "negative_cts_offsets"];
    for (const flags of ["faststart", "frag_keyframe", FRAGMENTS, ...more.map((flag) => `${FRAGMENTS}+${flag}`)])
        assertProbed(made(flags), flags);
});

// A file of boxes: [type, content...], where content is numbers of 32 bits, texts, and boxes.
function box([type, ...content]) {
    const parts = content.map((part) =>
        Array.isArray(part)
            ? box(part)
            : typeof part === "string"
              ? Buffer.from(part, "latin1")
              : part instanceof Uint8Array
                ? part
                : Buffer.from([part >>> 24, part >>> 16, part >>> 8, part]),
    );
    const body = Buffer.concat(parts);
    const head = Buffer.alloc(8);
    head.writeUInt32BE(8 + body.length);
    head.write(type, 4, "latin1");
    return Buffer.concat([head, body]);
}

/** Three frames of 5, 6 and 7 bytes from byte 8 on. */
function movie({
    sizes = ["stsz", 0, 0, 3, 5, 6, 7],
    chunks = ["stco", 0, 1, 8],
    runs = [1, 3, 1],
    more = [],
    mdhd = ["mdhd", 0, 0, 0, 10, 30, 0],
} = {}) {
    const entry = ["mp4v", new Uint8Array(78)];
    const stbl = ["stbl", ["stsd", 0, 1, entry], ["stts", 0, 1, 3, 5], ["stsc", 0, 1, ...runs], sizes, chunks, ...more];
    const sound = ["trak", ["mdia", ["hdlr", 0, 0, "soun"]]];
    const video = ["trak", ["mdia", ["hdlr", 0, 0, "vide"], mdhd, ["minf", stbl]]];
    return new Uint8Array(Buffer.concat([box(["mdat", "firstsecondthird.."]), box(["moov", sound, video])]));
}

test("forms of MP4 tables", () => {
    const read = (options) =>
        readMp4(movie(options)).frames.map(({ size, time, marked, read }) => [size, time, marked, read().data[0]]);
    const [f, s, t] = "fst".split("").map((c) => c.charCodeAt(0));
    const whole = [
        [5, 0, true, f],
        [6, 0.5, true, s],
        [7, 1, true, t],
    ];
    assert.deepEqual(read(), whole);
    assert.deepEqual(read({ sizes: ["stz2", 0, 4, 3, "\x56\x70"] }), whole);
    assert.deepEqual(read({ sizes: ["stz2", 0, 8, 3, "\x05\x06\x07"] }), whole);
    assert.deepEqual(read({ sizes: ["stz2", 0, 16, 3, "\0\x05\0\x06\0\x07"] }), whole);
    assert.deepEqual(read({ chunks: ["co64", 0, 1, 0, 8] }), whole);
    assert.deepEqual(read({ mdhd: ["mdhd", 0x01000000, 0, 0, 0, 0, 10, 0, 30, 0] }), whole);
    assert.deepEqual(
        read({ more: [["stss", 0, 2, 1, 3]] }).map(([, , marked]) => marked),
        [true, false, true],
    );
    assert.deepEqual(
        read({ more: [["ctts", 0, 3, 1, 5, 1, 10, 1, 0]] }).map(([, time]) => time),
        [0, 1, 0.5],
    );

    const wrong = (options, sentence) => assert.throws(() => readMp4(movie(options)), { message: sentence });
    wrong({ sizes: ["stsz", 0, 0, 4, 5] }, /room for fewer than 4 entries/);
    wrong({ sizes: ["stsz", 0, 1, 1 << 30] }, /more than two million/);
    wrong({ sizes: ["stsz", 0, 300, 3], chunks: ["stco", 0, 3, 8, 8, 8], runs: [1, 1, 1] }, /overlap/);
    wrong({ runs: [2, 3, 1] }, /first chunk/);
    wrong({ runs: [1, 2, 1] }, /where all of its frames are/);
    wrong({ sizes: ["stsz", 0, 0, 0] }, /no frames/);
    wrong({ sizes: ["stsz", 0, 5000, 3] }, /first frame/);
    wrong({ mdhd: ["mdhd", 0, 0, 0, 0, 30, 0] }, /time scale/);
    wrong({ sizes: ["free"] }, /no “stz2”/);
});

test("access units", () => {
    const units = (...list) => Uint8Array.from(list.flatMap((unit) => [0, 0, 1, ...unit]));
    const types = (bytes) => readAnnexB(bytes).frames.map((frame) => frame.read().types);
    // delimiter, SPS, IDR slice in two parts; slice; SEI, slice
    assert.deepEqual(
        types(units([9, 16], [0x67, 66], [0x65, 0x88], [0x65, 0x40], [0x41, 0x9a], [6, 1], [0x41, 0x9a])),
        [[9, 7, 5, 5], [1], [6, 1]],
    );
    // VPS, IDR slice in two parts; suffix SEI belongs to it; slice
    assert.deepEqual(types(units([0x40, 1, 1], [0x26, 1, 0xaf], [0x26, 1, 0x2f], [0x50, 1, 4], [2, 1, 0xd0])), [
        [32, 19, 19, 40],
        [1],
    ]);
    const [first, second] = readAnnexB(Uint8Array.of(7, 0, 0, 0, 1, 0x65, 0x88, 0, 0, 0, 1, 0x41, 0x9a)).frames;
    assert.deepEqual([first.offset, first.size, second.offset, second.size], [1, 6, 7, 6]);
    const broken = readAnnexB(units([0x65, 0x88], [0x41, 0x9a], [0xc1, 1, 2, 3], [0x41, 0x9a]));
    assert.deepEqual(
        broken.frames.map((frame) => frame.size),
        [5, 5],
    );
    assert.match(broken.note, /From byte 13 on it is broken/);
});

test("Y4M of each layout", () => {
    const rows = [
        ["", 3 * 3 + 8, "yuv420"],
        ["C420jpeg", 3 * 3 + 8, "yuv420"],
        ["C422", 9 + 12, "yuv422"],
        ["C444", 27, "yuv444"],
        ["Cmono", 9, "yuv400"],
        ["C420p10", 34, "p010"],
        ["C444p10", 54, "p410"],
    ];
    for (const [layout, size, format] of rows) {
        const frame = `FRAME Ip\n${"x".repeat(size)}`;
        const clip = readY4m(text(`YUV4MPEG2 W3 H3 F30000:1001 ${layout}\n${frame}${frame}`));
        assert.deepEqual(
            [clip.format, clip.size, clip.offsets.length, clip.note, clip.range],
            [format, size, 2, "", "limited"],
            layout,
        );
        assert.ok(Math.abs(clip.rate - 29.97) < 0.001);
    }
    for (const [words, sentence] of [
        ["RIFF", /no Y4M/],
        ["YUV4MPEG2 W3\n", /size/],
        ["YUV4MPEG2 W3 H-3\n", /size/],
        ["YUV4MPEG2 W3 H3 C411\n", /C411/],
        ["YUV4MPEG2 W3 H3\nFRAME\nxx", /no whole frame/],
    ])
        assert.throws(() => readY4m(text(words)), { message: sentence });
    assert.match(readY4m(text(`YUV4MPEG2 W1 H1 Cmono\nFRAME\nxjunk`)).note, /follows frame 1/);
});

test("damage of any kind gives frames within the file or a sentence, in little time", () => {
    let state = 1;
    const random = (below) => {
        state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
        return Math.floor((state / 2 ** 32) * below);
    };
    const attempt = (bytes) => {
        const start = performance.now();
        try {
            const { frames } = coded(bytes);
            for (const frame of frames) {
                assert.ok(frame.offset >= 0 && frame.size >= 0 && frame.offset + frame.size <= bytes.length);
                frame.read();
            }
        } catch (error) {
            assert.equal(error.constructor, Error, error.stack);
            assert.match(error.message, /^[A-Z].*\.$/);
        }
        assert.ok(performance.now() - start < 2000);
    };
    const fragmented = new Uint8Array(readFileSync(made(FRAGMENTS)));
    const cut = readMp4(fragmented.subarray(0, fragmented.length * 0.7));
    assert.ok(cut.frames.length > 20 && cut.frames.length < 50, `${cut.frames.length} frames`);
    // each with where its tables begin
    const files = [bytesOf("pan_h264.mp4"), bytesOf("pan_hev1.mp4")].map((bytes) => [bytes, bytes.length - 3000]);
    for (const [whole, tables] of [
        ...files,
        [bytesOf("pan.h264"), 0],
        [fragmented, 0],
        [fragmented.subarray(0, 3000), 0],
    ]) {
        for (let length = 0; length < whole.length; length += 1 + random(whole.length / 60))
            attempt(whole.subarray(0, length));
        for (let round = 0; round < 1500; ++round) {
            const damaged = whole.slice();
            for (let n = 1 + random(4); n; --n)
                damaged[tables + random(whole.length - tables)] = [0, 1, 0x7f, 0xff, random(256)][random(5)];
            attempt(damaged);
        }
    }
});
