// SPDX-License-Identifier: MIT
// The third part: the frames of a coded file on a line, and which of them are key frames.
import { ask } from "./client.js";
import {
    $,
    busy,
    complain,
    element,
    milliseconds,
    native,
    onLook,
    shortDigest,
    sized,
    style,
    verdict,
} from "./page.js";

const HEIGHT = 150;
const UNITS = {
    h264: { 1: "slice", 2: "partition", 5: "IDR slice", 6: "SEI", 7: "SPS", 8: "PPS", 9: "delimiter" },
    hevc: {
        0: "slice",
        1: "slice",
        16: "BLA slice",
        17: "BLA slice",
        18: "BLA slice",
        19: "IDR slice",
        20: "IDR slice",
        21: "CRA slice",
        32: "VPS",
        33: "SPS",
        34: "PPS",
        35: "delimiter",
        39: "SEI",
        40: "SEI",
    },
};

let file = null;
let own = null;
let at = 0;

/** The columns of the line: a frame each, or as many as there is no room for otherwise. */
function columnsOf(frames, width) {
    const count = Math.min(frames.length, Math.floor(width / 2));
    return Array.from({ length: count }, (_, i) => {
        const part = frames.slice(
            Math.floor((i * frames.length) / count),
            Math.floor(((i + 1) * frames.length) / count),
        );
        return { key: part.some((f) => f.key), size: part.reduce((most, f) => Math.max(most, f.size), 0) };
    });
}

function draw() {
    const canvas = $("timeline-canvas");
    const width = canvas.clientWidth;
    const context = sized(canvas, width, HEIGHT);
    if (!file) return;
    const columns = columnsOf(file.frames, width);
    const step = width / columns.length;
    const gap = step > 4 ? Math.min(step * 0.25, 4) : 0;
    const largest = columns.reduce((most, c) => Math.max(most, c.size), 1);
    const room = HEIGHT - 14;
    const colours = { true: style("--accent"), false: style("--bar") };
    columns.forEach(({ key, size }, i) => {
        // A root: beside key frames the others would be flat.
        const height = Math.max(3, Math.sqrt(size / largest) * room);
        context.fillStyle = colours[key];
        context.fillRect(i * step + gap / 2, room - height, Math.max(step - gap, 1), height);
    });
    const x = Math.min(Math.max(((at + 0.5) / file.frames.length) * width, 6), width - 6);
    context.fillStyle = style("--ink");
    context.beginPath();
    context.moveTo(x, HEIGHT - 10);
    context.lineTo(x - 6, HEIGHT);
    context.lineTo(x + 6, HEIGHT);
    context.fill();
}

function unitNames({ types }) {
    const names = types.map((type) => UNITS[file.codec]?.[type] ?? `type ${type}`);
    const runs = [];
    for (const name of names) {
        if (runs.at(-1)?.name === name) ++runs.at(-1).count;
        else runs.push({ name, count: 1 });
    }
    return runs.map(({ name, count }) => (count > 1 ? `${count} × ${name}` : name)).join(", ");
}

function go(n) {
    at = Math.min(Math.max(n, 0), file.frames.length - 1);
    const frame = file.frames[at];
    const kind = frame.key ? "key frame" : "not a key frame";
    const facts = [
        ["Frame", `${at + 1} of ${file.frames.length}`],
        ["Kind", kind],
        ["Bytes", frame.size.toLocaleString("en")],
    ];
    if (frame.time !== undefined)
        facts.push(
            ["Shown at", `${frame.time.toFixed(3)} s`],
            ["The container says", frame.marked ? "key frame" : "not a key frame"],
        );
    if (frame.types.length) facts.push(["Units", unitNames(frame)]);
    $("frame-facts").replaceChildren(
        ...facts.map(([name, value]) => element("div", "", element("dt", "", name), element("dd", "", value))),
    );
    const line = $("timeline");
    line.setAttribute("aria-valuemax", file.frames.length);
    line.setAttribute("aria-valuenow", at + 1);
    line.setAttribute("aria-valuetext", facts.map(([name, value]) => `${name} ${value}`).join(", "));
    draw();
}

function summary({ frames, codec, container, code, note, time, digest }, known) {
    const keys = frames.flatMap(({ key }, i) => (key ? [i] : []));
    const marked = frames.filter((f) => f.marked).length;
    const longest = keys.reduce((most, k, i) => Math.max(most, (keys[i + 1] ?? frames.length) - k), 0);
    const differing = frames[0].marked !== undefined && frames.some((f) => f.key !== f.marked);
    const chip = element("span");
    verdict(chip, digest, known);
    $("frames-note").replaceChildren(
        `${container}${code ? `, ${code}` : ""}, ${codec}: ${frames.length} frames, ${keys.length} key frames`,
        keys.length ? `, at most ${longest} frames from one to the next` : "",
        `; ${milliseconds(time)} a frame. `,
        differing ? `The container marks ${marked}. ` : "",
        differing && codec === "hevc" ? "Of an HEVC frame the rule looks at the first unit alone. " : "",
        note ? `${note} ` : "",
        "The list’s MD5 is ",
        element("code", "", shortDigest(digest)),
        " ",
        chip,
    );
}

async function open(blob, name) {
    busy("frames", true);
    try {
        file = await ask("keyFrames", { file: blob });
        complain("frames-message");
        summary(file, native.frames[name]);
        go(0);
        return true;
    } catch (error) {
        complain("frames-message", name ? error.message : `${blob.name}: ${error.message}`);
        return false;
    } finally {
        busy("frames", false);
    }
}

async function choose(name) {
    if (name === "own") await open(own);
    else await open(await (await fetch(`samples/${name}`)).blob(), name);
}

/** Opens a coded file of the visitor. */
export async function openOwn(blob) {
    if (!(await open(blob))) return;
    own = blob;
    $("coded-own-choice").hidden = false;
    $("coded-own-name").textContent = blob.name;
    document.querySelector("input[name=coded][value=own]").checked = true;
}

export const start = () => choose("pan_h264.mp4");

const line = $("timeline");
function point(event) {
    if (!file) return;
    const { left, width } = $("timeline-canvas").getBoundingClientRect();
    go(Math.floor(((event.clientX - left) / width) * file.frames.length));
}
line.addEventListener("pointerdown", point);
line.addEventListener("pointermove", (event) => {
    if (event.buttons) point(event);
});
line.addEventListener("keydown", (event) => {
    if (!file) return;
    const { frames } = file;
    const keyBefore = frames.findLastIndex((f, i) => f.key && i < at);
    const keyAfter = frames.findIndex((f, i) => f.key && i > at);
    const to = {
        ArrowLeft: at - 1,
        ArrowDown: at - 1,
        ArrowRight: at + 1,
        ArrowUp: at + 1,
        Home: 0,
        End: frames.length - 1,
        PageUp: keyBefore < 0 ? at : keyBefore,
        PageDown: keyAfter < 0 ? at : keyAfter,
    }[event.key];
    if (to === undefined) return;
    event.preventDefault();
    go(to);
});
$("coded").addEventListener("change", ({ target }) => choose(target.value));
$("open-coded").addEventListener("change", ({ target }) => {
    if (target.files[0]) openOwn(target.files[0]);
    target.value = "";
});
onLook(draw);
