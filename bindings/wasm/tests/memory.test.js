// SPDX-License-Identifier: MIT
// Whose memory is whose, and that none is lost.
import assert from "node:assert/strict";
import test from "node:test";
import { setTimeout } from "node:timers/promises";

import { load } from "libzelt";

import { assertBytes, noise, testEach, throws } from "./helpers.js";

testEach("ten thousand calls leave no memory behind", (zelt) => {
    const frame = noise("nv12", 64, 48),
        grey = noise("gray", 64, 48),
        bytes = new Uint8Array(1000);
    const converter = new zelt.Converter("nv12", "rgba", [64, 48]),
        out = converter.convert(frame);
    const own = (Owner, ...args) => {
        const owner = new Owner(...args);
        owner.free();
    };
    const calls = [
        () => converter.convert(frame, out),
        () => zelt.convert(frame, "rgb24", { size: [32, 32] }),
        () => zelt.resize(out, [20, 10]),
        () => zelt.sadMap(grey, grey, { block: 8 }),
        () => zelt.motion(grey, grey),
        () => zelt.md5(frame),
        () => own(zelt.BitReader, bytes),
        () => own(zelt.Picture, "nv12", [64, 64]),
        () => own(zelt.Converter, "nv12", "rgba", [64, 48]),
        () => zelt.isKeyFrame("h264", bytes),
        () => throws(() => zelt.convert(frame, "rgb565a8"), RangeError, /nothing converts/),
        () => throws(() => converter.convert(grey), RangeError, /this converter is for/),
    ];
    for (const call of calls) call();
    const before = zelt.memory.buffer.byteLength;
    for (const call of calls) for (let i = 0; i < 10_000; ++i) call();
    assert.equal(zelt.memory.buffer.byteLength, before);
});

test("frames survive the memory's growth", async () => {
    const zelt = await load(),
        frame = noise("yuv420", 64, 48),
        want = zelt.convert(frame, "rgba").data;
    const source = new zelt.Picture("yuv420", [64, 48]),
        result = new zelt.Picture("rgba", [64, 48]);
    source.data.set(frame.data);
    const converter = new zelt.Converter("yuv420", "rgba", [64, 48]),
        reader = new zelt.BitReader(frame.data);
    const stale = source.data,
        large = new zelt.Picture("rgba", [2000, 2000]);
    assert.equal(stale.length, 0);
    throws(() => zelt.convert({ ...frame, data: stale }, "rgba"), TypeError, /detached, .* take it anew/);
    assertBytes(converter.convert(source, result).data, want, "after growth");
    assert.equal(reader.read(8), frame.data[0]);
    // a call that makes the memory grow itself, over views of it
    const view = { data: large.data, width: 2000, height: 2000 };
    assert.equal(zelt.resize(view, [2100, 2100]).data.length, 4 * 2100 * 2100);
    assert.equal(new zelt.BitReader(large.data).bitsLeft, 32 * 2000 * 2000);
});

test("what nobody freed is freed", async () => {
    const zelt = await load();
    for (let i = 0; i < 200; ++i) {
        new zelt.Picture("rgba", [1000, 1000]);
        globalThis.gc();
        await setTimeout(0);
    }
    assert.ok(zelt.memory.buffer.byteLength < 100e6, `${zelt.memory.buffer.byteLength} bytes`);
});

testEach("the end of a block frees", ({ Picture }) => {
    const picture = new Picture("rgba", [2, 2]);
    picture[Symbol.dispose ?? "free"]();
    throws(() => picture.data, TypeError, /this Picture has been freed/);
});
