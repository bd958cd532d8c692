// SPDX-License-Identifier: MIT
// Times the package at 1920x1080 with vectors and without, beside the native library (native.cpp), plain loops in
// JavaScript, and yuv-canvas: bench.js NATIVE DOCUMENT writes the table between the document's markers. Candidates take
// turns; a time is the processor time of the best one.
import { execFileSync } from "node:child_process";
import { readFileSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { cpus } from "node:os";

import { load } from "libzelt";

const require = createRequire(import.meta.url);
const YUVBuffer = require("yuv-buffer"),
    { convertYCbCr } = require("yuv-canvas/src/YCbCr.js");

const W = 1920,
    H = 1080,
    TURNS = 25, // of each candidate
    LEAST = 10; // milliseconds of one
const BARS = [
    [/ to /, 4],
    [/^SAD/, 3],
]; // how many times as fast as without vectors

const noise = (length, state = 1) =>
    Uint8Array.from({ length }, () => (state = (Math.imul(state, 1664525) + 1013904223) >>> 0) >>> 24);
const scene = (dx, dy) =>
    Uint8Array.from({ length: W * H }, (_, i) => {
        const x = (i % W) + dx,
            y = Math.floor(i / W) + dy;
        return 128 + 60 * Math.sin(x * 0.09) * Math.cos(y * 0.05) + 60 * Math.sin(y * 0.08) * Math.cos(x * 0.03);
    });
const yuv420 = noise(W * H * 1.5),
    yuv444 = noise(W * H * 3),
    rgba = noise(W * H * 4),
    scenes = [scene(0, 0), scene(6, -4)];

/** As one writes it: fixed point, and the array clamps. u, v: where their first samples are; step: to the next one */
function plainToRgba(yuv, u, v, step, out) {
    for (let y = 0, o = 0; y < H; ++y)
        for (let x = 0; x < W; ++x, o += 4) {
            const c = (y >> 1) * (W >> 1) + (x >> 1),
                luma = 298 * (yuv[y * W + x] - 16) + 128;
            const d = yuv[u + c * step] - 128,
                e = yuv[v + c * step] - 128;
            out[o] = (luma + 409 * e) >> 8;
            out[o + 1] = (luma - 100 * d - 208 * e) >> 8;
            out[o + 2] = (luma + 516 * d) >> 8;
            out[o + 3] = 255;
        }
}
function plainToRgb(yuv, out) {
    for (let i = 0, o = 0; i < W * H; ++i, o += 3) {
        const luma = (yuv[i] << 8) + 128,
            d = yuv[W * H + i] - 128,
            e = yuv[2 * W * H + i] - 128;
        out[o] = (luma + 359 * e) >> 8;
        out[o + 1] = (luma - 88 * d - 183 * e) >> 8;
        out[o + 2] = (luma + 454 * d) >> 8;
    }
}
function plainMap(a, b, costs) {
    for (let top = 0, n = 0; top < H; top += 16)
        for (let left = 0; left < W; left += 16, ++n) {
            let sum = 0;
            for (let y = top; y < Math.min(top + 16, H); ++y)
                for (let x = left, i = y * W + left; x < left + 16; ++x, ++i) sum += Math.abs(a[i] - b[i]);
            costs[n] = sum;
        }
}

/** Rows of a module, in its own memory */
function rowsOf(zelt) {
    const picture = (format, data, size = [W, H]) => {
        const made = new zelt.Picture(format, size);
        if (data) made.data.set(data);
        return made;
    };
    const to = (from, format, data, options) => {
        const source = picture(from, data),
            result = picture(format);
        const converter = new zelt.Converter(from, format, [W, H], options);
        return () => converter.convert(source, result);
    };
    const image = picture("rgba", rgba),
        half = picture("rgba", null, [W / 2, H / 2]),
        canvas = noise(W * H * 4);
    const planes = scenes.map((data) => picture("gray", data)),
        toRgba = new zelt.Converter("yuv420", "rgba", [W, H]);
    const clip = picture("yuv420", yuv420);
    return {
        "YUV 4:2:0 to RGBA": to("yuv420", "rgba", yuv420),
        "the same from and to other memory": () =>
            toRgba.convert(
                { data: yuv420, width: W, height: H, format: "yuv420" },
                { data: canvas, width: W, height: H },
            ),
        "NV12 to RGBA": to("nv12", "rgba", yuv420),
        "YUV 4:4:4 to RGB": to("yuv444", "rgb24", yuv444),
        "RGBA to YUV 4:2:0": to("rgba", "yuv420", rgba),
        "RGBA to a half, bilinear": () => zelt.resize(image, [W / 2, H / 2], { out: half }),
        "SAD of 16x16 blocks": () => zelt.sadMap(...planes),
        "SATD of 16x16 blocks": () => zelt.sadMap(...planes, { metric: "satd" }),
        "motion of 16x16 blocks": () => zelt.motion(...planes),
        MD5: () => zelt.md5(clip),
    };
}

/** Others' functions for the same rows */
function others() {
    const out = new Uint8ClampedArray(W * H * 4).fill(255),
        costs = new Uint32Array(8160);
    const frame = YUVBuffer.frame(YUVBuffer.format({ width: W, height: H, chromaWidth: W / 2, chromaHeight: H / 2 }));
    [
        [frame.y, 0],
        [frame.u, W * H],
        [frame.v, W * H * 1.25],
    ].forEach(([plane, from]) => {
        for (let y = 0, row = from; y < plane.bytes.length / plane.stride; ++y, row += plane === frame.y ? W : W / 2)
            plane.bytes.set(yuv420.subarray(row, row + (plane === frame.y ? W : W / 2)), y * plane.stride);
    });
    return {
        plain: {
            "YUV 4:2:0 to RGBA": () => plainToRgba(yuv420, W * H, W * H * 1.25, 1, out),
            "NV12 to RGBA": () => plainToRgba(yuv420, W * H, W * H + 1, 2, out),
            "YUV 4:4:4 to RGB": () => plainToRgb(yuv444, out),
            "SAD of 16x16 blocks": () => plainMap(...scenes, costs),
        },
        canvas: { "YUV 4:2:0 to RGBA": () => convertYCbCr(frame, out) },
    };
}

const now = () => {
    const { user, system } = process.cpuUsage();
    return (user + system) / 1000;
};

/** Least milliseconds of each function, which the engine has had time to optimise */
function measure(calls) {
    for (const call of calls) for (const start = now(); now() - start < 500;) call();
    const best = calls.map(() => Infinity);
    for (let turn = 0; turn < TURNS; ++turn)
        calls.forEach((call, i) => {
            const start = now();
            let count = 0;
            for (; now() - start < LEAST; ++count) call();
            best[i] = Math.min(best[i], (now() - start) / count);
        });
    return best;
}

const [nativeProgram, document] = process.argv.slice(2);
const native = Object.fromEntries(
    execFileSync(nativeProgram, { encoding: "utf8" })
        .trim()
        .split("\n")
        .map((line) => {
            const [time, ...name] = line.split(" ");
            return [name.join(" "), Number(time)];
        }),
);
const [simd, scalar] = [rowsOf(await load()), rowsOf(await load({ simd: false }))],
    { plain, canvas } = others();
let behind = 0;
const lines = Object.keys(simd).map((name) => {
    const candidates = { simd: simd[name], scalar: scalar[name], plain: plain[name], canvas: canvas[name] };
    const known = Object.entries(candidates).filter(([, call]) => call),
        times = measure(known.map(([, call]) => call));
    const time = Object.fromEntries(known.map(([key], i) => [key, times[i]]));
    const against = (other) => (other ? [other.toFixed(2), (other / time.simd).toFixed(1)] : ["", ""]);
    const bar = BARS.find(([pattern]) => pattern.test(name))?.[1],
        below = time.scalar / time.simd < bar;
    behind += below;
    const cells = [
        name,
        time.simd.toFixed(2),
        ...against(time.scalar),
        ...against(native[name]),
        ...against(time.plain),
        ...against(time.canvas),
        below ? `below ${bar} × without` : "",
    ];
    return `| ${cells.join(" | ")} |`;
});
const table = [
    "| 1920x1080 | SIMD, ms | without | × | native | × | plain loop | × | yuv-canvas | × |  |",
    `| --- |${" --: |".repeat(9)} --- |`,
    ...lines,
].join("\n");
console.log(table);
if (document) {
    const head =
        `\`./scripts/npm.sh --bench\` on ${cpus()[0].model}, node ${process.version}, yuv-canvas ` +
        `${require("yuv-canvas/package.json").version}: ${lines.length} rows, ${behind} below their bar.`;
    const text = readFileSync(document, "utf8");
    writeFileSync(
        document,
        text.replace(/(?<=<!-- bench:npm -->\n)[^]*?(?=<!-- \/bench -->)/, () => `${head}\n\n${table}\n`),
    );
}
