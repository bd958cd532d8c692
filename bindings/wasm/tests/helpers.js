// SPDX-License-Identifier: MIT
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import test from "node:test";
import { fileURLToPath } from "node:url";

import { load } from "libzelt";

import { FORMATS } from "../src/formats.js";

export const ROOT = fileURLToPath(new URL("../../../", import.meta.url));

/** The package over both modules, and a test of each */
export const modules = await Promise.all([load({ simd: true }), load({ simd: false })]);
export const testEach = (name, run) =>
    modules.forEach((zelt) => test(`${name} (${zelt.kernels})`, (t) => run(zelt, t)));

/** Runs the command-line tool, which the variable ZELT names */
export const tool = (...args) => execFileSync(process.env.ZELT, args.map(String), { encoding: "utf8", stdio: "pipe" });

/** Numbers below 2^32, the same in every run */
export function random(seed) {
    let state = seed;
    return () => {
        state = (state + 0x9e3779b9) | 0;
        let z = Math.imul(state ^ (state >>> 16), 0x21f0aaad);
        z = Math.imul(z ^ (z >>> 15), 0x735a2d97);
        return (z ^ (z >>> 15)) >>> 0;
    };
}

/** A frame of noise; samples of 10 bits are within their range */
export function noise(format, width, height, seed = 1) {
    const next = random(seed),
        { name, planes, shapes } = FORMATS.find((f) => [f.name, f.alias].includes(format));
    const length = shapes.call({ planes }, width, height).reduce((sum, p) => sum + p.rows * p.rowBytes, 0);
    const data = Uint8Array.from({ length }, next);
    if (["p010", "p210", "p410", "r10g10b10"].includes(name)) for (let i = 1; i < length; i += 2) data[i] &= 3;
    return { data, width, height, format };
}

/** Equal bytes; a failure names what, not megabytes */
export function assertBytes(actual, expected, what) {
    const a = Buffer.from(actual.buffer, actual.byteOffset, actual.byteLength);
    assert.ok(
        a.equals(Buffer.from(expected.buffer, expected.byteOffset, expected.byteLength)),
        `bytes differ: ${what}`,
    );
}

export const throws = (call, kind, text) =>
    assert.throws(call, (error) => {
        assert.ok(error instanceof kind && text.test(error.message), `${error.name}: ${error.message}`);
        return true;
    });
