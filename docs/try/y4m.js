// SPDX-License-Identifier: MIT
// Reads YUV4MPEG2: a line of parameters, then frames, each after a line of its own.

const LAYOUTS = new Map([
    ["420", "yuv420"],
    ["420jpeg", "yuv420"],
    ["420mpeg2", "yuv420"],
    ["420paldv", "yuv420"],
    ["422", "yuv422"],
    ["444", "yuv444"],
    ["mono", "yuv400"],
    ["420p10", "p010"],
    ["422p10", "p210"],
    ["444p10", "p410"],
]);
const LONGEST_LINE = 1024;

/** Bytes of a frame whose planes lie back to back. Halves are rounded up. */
function frameBytes(format, width, height) {
    const across = (width + 1) >> 1;
    const down = (height + 1) >> 1;
    const chroma = {
        yuv420: across * down,
        yuv422: across * height,
        yuv444: width * height,
        yuv400: 0,
        p010: across * down,
        p210: across * height,
        p410: width * height,
    }[format];
    return (width * height + 2 * chroma) * (format[0] === "p" ? 2 : 1);
}

/** The text up to a newline, or null. */
function line(bytes, at) {
    const end = bytes.subarray(at, at + LONGEST_LINE).indexOf(10);
    return end < 0 ? null : String.fromCharCode(...bytes.subarray(at, at + end));
}

/** Where the frames of a clip lie, and what they are. Throws an Error whose message is a sentence. */
export function readY4m(bytes) {
    const header = line(bytes, 0);
    if (!header?.startsWith("YUV4MPEG2 ")) throw new Error("This is no Y4M file: it does not begin with YUV4MPEG2.");
    const words = header.split(" ").slice(1);
    const value = (letter) => words.find((word) => word[0] === letter)?.slice(1);
    const [width, height] = [Number(value("W")), Number(value("H"))];
    for (const size of [width, height])
        if (!Number.isInteger(size) || size < 1 || size > 16384)
            throw new Error("The clip's size is missing, or not from 1 to 16384 pixels each way.");
    const layout = value("C") ?? "420";
    const format = LAYOUTS.get(layout);
    if (!format) throw new Error(`The clip is of the layout C${layout}, which this page does not read.`);
    const [frames, seconds] = (value("F") ?? "25:1").split(":").map(Number);
    const rate = frames > 0 && seconds > 0 ? frames / seconds : 25;
    const range = words.includes("XCOLORRANGE=FULL") ? "full" : "limited";

    const size = frameBytes(format, width, height);
    const offsets = [];
    let at = header.length + 1;
    let note = "";
    while (at < bytes.length) {
        const mark = line(bytes, at);
        if (!mark?.startsWith("FRAME")) {
            note = `What follows frame ${offsets.length} is not a frame, and is left out.`;
            break;
        }
        at += mark.length + 1;
        if (at + size > bytes.length) {
            note = `The file ends within frame ${offsets.length + 1}, which is left out.`;
            break;
        }
        offsets.push(at);
        at += size;
    }
    if (!offsets.length)
        throw new Error(`The clip has no whole frame: one of ${width} × ${height} takes ${size} bytes.`);
    return { width, height, format, range, rate, offsets, size, note };
}
