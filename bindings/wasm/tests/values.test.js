// SPDX-License-Identifier: MIT
// Blocks, digests, bits and media types, beside models of their own.
import assert from "node:assert/strict";
import { createHash } from "node:crypto";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import test from "node:test";

import { load } from "libzelt";

import { TYPES } from "../src/media.js";
import { ROOT, noise, random, testEach, throws } from "./helpers.js";

const plane = (width, height, sample) => ({
    data: Uint8Array.from({ length: width * height }, (_, i) => sample(i % width, Math.floor(i / width))),
    width,
    height,
    format: "gray",
});

/** Differences of two blocks, whose pictures' edges are repeated */
function differences(a, b, n, x, y, [dx, dy] = [0, 0]) {
    const at = (p, i, j) =>
        p.data[Math.min(Math.max(j, 0), p.height - 1) * p.width + Math.min(Math.max(i, 0), p.width - 1)];
    return Array.from({ length: n * n }, (_, k) => {
        const i = x + (k % n),
            j = y + Math.floor(k / n);
        return at(a, i, j) - at(b, i + dx, j + dy);
    });
}
const sum = (values) => values.reduce((total, value) => total + value, 0);
/** Half of the magnitudes of the Hadamard transform of 4x4 tiles, each rounded by itself */
function satd(d) {
    const n = Math.sqrt(d.length),
        butterfly = ([a, b, c, e]) => [a + b + c + e, a - b + c - e, a + b - c - e, a - b - c + e];
    let total = 0;
    for (let y = 0; y < n; y += 4)
        for (let x = 0; x < n; x += 4) {
            const rows = [0, 1, 2, 3].map((j) => butterfly(d.slice((y + j) * n + x, (y + j) * n + x + 4)));
            const columns = [0, 1, 2, 3].map((i) => butterfly(rows.map((row) => row[i])));
            total += Math.floor(sum(columns.flat().map(Math.abs)) / 2);
        }
    return total;
}
const MODELS = { sad: (d) => sum(d.map(Math.abs)), satd, ssd: (d) => sum(d.map((value) => value * value)) };

testEach("maps of costs", ({ sadMap, Picture }) => {
    const a = noise("gray", 100, 70),
        b = noise("gray", 100, 70, 2);
    for (const [metric, model] of Object.entries(MODELS))
        for (const block of [4, 8, 16, 32, 64]) {
            const { columns, rows, costs } = sadMap(a, b, { block, metric });
            assert.deepEqual(
                [columns, rows, costs.length],
                [Math.ceil(100 / block), Math.ceil(70 / block), columns * rows],
            );
            costs.forEach((cost, i) => {
                const [x, y] = [(i % columns) * block, Math.floor(i / columns) * block];
                assert.equal(cost, model(differences(a, b, block, x, y)), `${metric} ${block} at ${x}, ${y}`);
            });
        }
    // the luma of other formats, where it lies
    const owned = new Picture("nv12", [100, 70]);
    owned.data.set(a.data);
    const loose = { ...b, data: new Uint8Array(120 * 70 + 5), layout: [{ offset: 5, stride: 120 }] };
    for (let y = 0; y < 70; ++y) loose.data.set(b.data.subarray(100 * y, 100 * y + 100), 5 + 120 * y);
    assert.deepEqual(sadMap(owned, loose), sadMap(a, b));
    owned.free();
});

const scene = (dx = 0, dy = 0) =>
    plane(
        170,
        130,
        (x, y) =>
            128 +
            60 * Math.sin((x + dx) * 0.09) * Math.cos((y + dy) * 0.05) +
            60 * Math.sin((y + dy) * 0.08) * Math.cos((x + dx) * 0.03),
    );
const inside = ({ vectors, columns }, [left, right], [top, bottom]) => {
    const all = [];
    for (let y = top; y < bottom; ++y)
        for (let x = left; x < right; ++x)
            all.push([...vectors.subarray(2 * (y * columns + x), 2 * (y * columns + x) + 2)]);
    return all;
};
const same = ([x, y], [u, v]) => x === u && y === v;

/** The search by itself, place by place */
function searched(before, now, n, x, y, reach, metric, start) {
    const cost = (v) => MODELS[metric](differences(now, before, n, x, y, v));
    const large = [
            [0, -2],
            [1, -1],
            [2, 0],
            [1, 1],
            [0, 2],
            [-1, 1],
            [-2, 0],
            [-1, -1],
        ],
        small = [
            [0, -1],
            [1, 0],
            [0, 1],
            [-1, 0],
        ];
    let best = [0, 0],
        least = cost(best),
        tried = 1;
    const step = (places) => {
        const wanted = places.filter(([u, v]) => Math.abs(u) <= reach && Math.abs(v) <= reach),
            costs = wanted.map(cost);
        tried += wanted.length;
        const lowest = Math.min(...costs),
            moves = lowest < least;
        if (moves) [best, least] = [wanted[costs.indexOf(lowest)], lowest];
        return moves;
    };
    if (start) step([start]);
    let seen = [],
        moved = least > 0;
    while (moved) {
        const centre = best,
            around = large.map(([u, v]) => [centre[0] + u, centre[1] + v]);
        moved = step(around.filter((v) => !seen.some((old) => same(v, old)))) && least > 0 && tried + 9 <= 40;
        seen = [...around, centre];
    }
    if (least > 0) step(small.map(([u, v]) => [best[0] + u, best[1] + v]));
    assert.ok(tried <= 40);
    return [best, least];
}

testEach("motion", ({ motion }) => {
    const before = scene(),
        now = scene(6, -4);
    for (const metric of Object.keys(MODELS)) {
        const found = motion(before, now, { metric });
        assert.deepEqual([found.columns, found.rows], [11, 9]);
        const right = inside(found, [1, 9], [1, 7]).filter((v) => same(v, [6, -4]));
        assert.ok(right.length > 0.8 * 48, `${metric}: ${right.length} of 48`);
    }
    const noisy = [noise("gray", 50, 37), noise("gray", 50, 37, 2)];
    for (const [a, b] of [[before, now], noisy])
        for (const options of [
            { block: 16 },
            { block: 8, reach: 3, metric: "satd" },
            { block: 32, metric: "ssd", start: [9, -40] },
        ]) {
            const { block, reach = 32, metric = "sad", start } = options,
                found = motion(a, b, options);
            found.costs.forEach((cost, i) => {
                const [x, y] = [(i % found.columns) * block, Math.floor(i / found.columns) * block];
                const [v, least] = searched(
                    a,
                    b,
                    block,
                    x,
                    y,
                    reach,
                    metric,
                    start?.map((s) => Math.max(-reach, Math.min(s, reach))),
                );
                assert.deepEqual([...found.vectors.subarray(2 * i, 2 * i + 2), cost], [...v, least], `${x}, ${y}`);
            });
        }
    const fast = scene(25, 12);
    assert.ok(inside(motion(before, fast), [2, 5], [2, 5]).some((v) => !same(v, [25, 12])));
    for (const start of [[25, 12], Int16Array.from({ length: 198 }, (_, i) => (i % 2 ? 12 : 25))])
        assert.ok(inside(motion(before, fast, { start }), [2, 5], [2, 5]).every((v) => same(v, [25, 12])));
});

testEach("blocks refuse", ({ motion, sadMap }) => {
    const a = plane(8, 8, () => 0);
    for (const [call, text] of [
        [() => sadMap(a, { ...a, height: 4 }), /the pictures differ: 8 x 8 and 8 x 4/],
        [() => sadMap(a, { ...a, height: 9 }), /the second picture, 8 x 9 pixels/],
        [() => sadMap(a, a, { block: 12 }), /block is one of 4, 8, 16, 32, 64, not 12/],
        [() => sadMap(a, a, { metric: "psnr" }), /metric is one of 'sad', 'satd', 'ssd', not 'psnr'/],
        [() => motion(a, a, { reach: 0 }), /reach is from 1 to 1024 samples, not 0/],
        [() => motion(a, a, { start: [1, 2, 3] }), /start is a vector or 1 of them, not 3 numbers/],
        [() => motion(noise("rgba", 8, 8), noise("rgba", 8, 8)), /rgba8888 has none: convert\(frame, "gray"\)/],
    ])
        throws(call, RangeError, text);
});

testEach("digests", ({ md5 }) => {
    const hash = (data) => createHash("md5").update(data).digest("hex"),
        next = random(7);
    for (const length of [0, 1, 55, 56, 64, 1000, (1 << 20) + 1]) {
        const data = Uint8Array.from({ length }, next);
        assert.equal(md5(data), hash(data));
    }
    const wide = Uint8Array.from({ length: 20 * 33 }, next);
    const rows = Array.from({ length: 20 }, (_, y) => wide.subarray(33 * y + 2, 33 * y + 32));
    assert.equal(
        md5({ data: wide, width: 30, height: 20, format: "gray", layout: [{ offset: 2, stride: 33 }] }),
        hash(Buffer.concat(rows)),
    );
    const frame = noise("p010le", 7, 5);
    assert.equal(md5(frame), hash(frame.data));
    throws(() => md5("abc"), TypeError, /bytes are a typed array/);
});

/** The Exp-Golomb code of a number, and bytes of ones and zeros */
const ue = (value) => "0".repeat((value + 1).toString(2).length - 1) + (value + 1).toString(2);
const packed = (text) => Uint8Array.from(text.match(/.{1,8}/g) ?? [], (byte) => parseInt(byte.padEnd(8, "0"), 2));

testEach("bits beside text of ones and zeros", ({ BitReader }) => {
    const next = random(11),
        steps = [];
    let text = "";
    for (let i = 0; i < 3000; ++i) {
        const count = next() % 33,
            value = next() >>> (next() % 32),
            kind = ["read", "readUe", "readSe", "readTe"][next() % 4];
        const field = count ? value % 2 ** count : 0,
            golomb = value % 65535,
            signed = Math.ceil(golomb / 2) * (golomb % 2 ? 1 : -1) || 0;
        const [code, argument, expected] = {
            read: [count ? field.toString(2).padStart(count, "0") : "", count, field],
            readUe: [ue(golomb), undefined, golomb],
            readSe: [ue(golomb), undefined, signed],
            readTe: count % 2 ? [String(1 - (value % 2)), 1, value % 2] : [ue(golomb), 65534, golomb],
        }[kind];
        steps.push([kind, argument, expected, (text += code).length]);
    }
    const reader = new BitReader(packed(text));
    for (const [kind, argument, expected, position] of steps) {
        const ahead = Math.min(32, reader.bitsLeft),
            from = reader.position;
        assert.equal(
            reader.peek(ahead),
            parseInt(`0${text.padEnd(text.length + 8, "0").slice(from, from + ahead)}`, 2),
        );
        assert.equal(reader[kind](argument), expected, `${kind}(${argument})`);
        assert.equal(reader.position, position);
    }
    reader.align();
    assert.equal(reader.bitsLeft, 0);
    reader.free();
    throws(() => reader.read(0), TypeError, /this BitReader has been freed/);
});

testEach("reading stops before the end and stays", ({ BitReader }) => {
    const code = ue(1000); // of 19 bits, cut where a byte ends
    for (let offset = 0; offset < 40; ++offset)
        for (let length = -offset & 7; length < code.length; length += 8) {
            const reader = new BitReader(packed("1".repeat(offset) + code.slice(0, length)));
            reader.skip(offset);
            for (const kind of ["readUe", "readSe"]) {
                throws(() => reader[kind](), RangeError, /ends within an Exp-Golomb code/);
                assert.equal(reader.position, offset);
                throws(
                    () => reader.read(length + 1),
                    RangeError,
                    new RegExp(`^${length + 1} bits are wanted and ${length} left`),
                );
            }
            assert.equal(reader.read(length), parseInt(`0${code.slice(0, length)}`, 2));
            reader.free();
        }
    const two = () => new BitReader(Uint8Array.of(97, 98));
    for (const [call, text] of [
        [() => new BitReader(Uint8Array.of(0, 0, 0, 255, 255, 255, 255)).readUe(), /longer than 31 bits/],
        [() => two().read(33), /from 0 to 32 bits/],
        [() => two().skip(-1), /bits can be/],
        [() => two().skip(1.5), /bits can be/],
        [() => two().skip(17), /17 bits are wanted and 16 left/],
        [() => two().readTe(0), /at least 1, not 0/],
        [() => new BitReader(new Uint8Array()).read(1), /1 bits are wanted and 0 left/],
        [() => new BitReader(new Uint8Array()).readUe(), /of which it has 0 bits/],
    ])
        throws(call, RangeError, text);
});

test("versions and media types are those of the headers", () => {
    const header = (name) => readFileSync(join(ROOT, "include/zelt", name), "utf8");
    const prefixes = { video: "VID", audio: "AUD", drm: "DRM", subtitle: "SUB" };
    const types = Object.entries(TYPES).flatMap(([kind, names]) =>
        Object.entries(names).map(([name, value]) => `${prefixes[kind]}_${name.toUpperCase()} = ${value}`),
    );
    assert.deepEqual(
        types,
        [...header("fcc2mt.h").matchAll(/ZELT_MT_(\w+_\w+ = \d+)/g)].map((match) => match[1]),
    );
    const version = [...header("common.h").matchAll(/#define ZELT_VERSION_\w+ (\d+)/g)]
        .map((match) => match[1])
        .join(".");
    assert.equal(JSON.parse(readFileSync(new URL("../package.json", import.meta.url))).version, version);
});

testEach("media", ({ isKeyFrame, mediaType }) => {
    for (const [code, kind, want] of [
        ["hvc1", undefined, ["video", "hevc", 120]],
        ["mp4a", "audio", ["audio", "aac", 306]],
        [1, undefined, ["audio", "pcm", 300]],
        ["divx", "drm", ["drm", "divx", 1100]],
        ["none", undefined, ["unknown", "unknown", 0]],
        ["none", "video", ["video", "unknown", 299]],
        ["tx3g", "subtitle", ["subtitle", "tx3g", 3006]],
    ])
        assert.deepEqual(Object.values(mediaType(code, kind)), want);
    for (const [codec, bytes, want] of [
        ["h264", [0, 0, 0, 1, 0x41], false],
        [104, [0, 0, 0, 1, 0x65], true],
        ["hfyu", [1], true],
        ["hevc", [0, 0, 0, 1, 0x26, 1], true],
        ["vp8", [0, 0, 0, 0], false],
        ["wmv1", [], false],
    ])
        assert.equal(isKeyFrame(codec, Uint8Array.from(bytes)), want, codec);
    throws(() => mediaType("abc"), RangeError, /four characters, not 3/);
    throws(() => mediaType("abcd", "text"), RangeError, /kind is one of 'video', 'audio', 'subtitle', 'drm'/);
    throws(() => isKeyFrame("h265", new Uint8Array()), RangeError, /codec is one of 'mpeg4', 'h263', .*, not 'h265'/);
});

test("the module can be given, and the engine's best one is the default", async () => {
    const bytes = readFileSync(new URL("../zelt.wasm", import.meta.url));
    for (const module of [bytes, await WebAssembly.compile(bytes)])
        assert.equal((await load({ module })).kernels, "scalar");
    assert.equal((await load()).kernels, "wasm-simd128");
});
