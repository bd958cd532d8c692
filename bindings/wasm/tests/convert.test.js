// SPDX-License-Identifier: MIT
// Conversion and resizing: beside the tool's bytes, and in every form that a frame can have.
import assert from "node:assert/strict";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import test from "node:test";

import { assertBytes, modules, noise, testEach, throws, tool } from "./helpers.js";

const W = 38,
    H = 20;

/** Bytes that the tool makes of a frame */
function told(frame, target, size, ...how) {
    const folder = mkdtempSync(join(tmpdir(), "zelt-"));
    try {
        const [from, to] = [join(folder, "in.raw"), join(folder, "out.raw")];
        writeFileSync(from, frame.data);
        tool(
            "convert",
            "-i",
            from,
            "--raw",
            `${frame.width}x${frame.height}:${frame.format}`,
            "-o",
            to,
            "--pix-fmt",
            target,
            "--size",
            size.join("x"),
            ...how,
        );
        return readFileSync(to);
    } finally {
        rmSync(folder, { recursive: true });
    }
}

test("every pair that the tool converts in one step gives its bytes", () => {
    const rows = tool("formats")
        .split("too:\n")[1]
        .split("\n\n")[0]
        .split("\n")
        .map((row) => row.trim().split(/\s+/));
    let tried = 0;
    for (const [source, ...targets] of rows) {
        const frame = noise(source, W, H),
            known = modules[0].conversions(source);
        for (const mark of targets) {
            const target = mark.replace("*", "");
            if (!known.includes(target)) continue; // the tool puts bytes of RGB in another order by itself
            for (const size of mark.endsWith("*")
                ? [
                      [W, H],
                      [26, 31],
                  ]
                : [[W, H]]) {
                const expected = told(
                    frame,
                    target,
                    size,
                    "--range",
                    "full",
                    "--matrix",
                    "bt601",
                    "--chroma",
                    "replicate",
                    "--filter",
                    "bilinear",
                );
                for (const { convert, kernels } of modules)
                    assertBytes(
                        convert(frame, target, { size, range: "full" }).data,
                        expected,
                        `${source} to ${target} of ${size}, ${kernels}`,
                    );
                ++tried;
            }
        }
    }
    assert.ok(tried > 400, `${tried} pairs`);
});

test("what is asked of a conversion is what the tool is asked", () => {
    const cases = [
        ["nv12", "rgb888", { matrix: "bt709" }, "--matrix", "bt709", "--range", "limited", "--chroma", "replicate"],
        [
            "yuv420",
            "rgba8888",
            { matrix: "bt2020", chroma: "smooth" },
            "--matrix",
            "bt2020",
            "--range",
            "limited",
            "--chroma",
            "smooth",
        ],
        ["rgb888", "yuv422", { range: "limited" }, "--range", "limited", "--matrix", "bt601"],
        ["rgba8888", "yuv444", {}, "--range", "full", "--matrix", "bt601"],
        ["p010le", "bgra8888", { matrix: "bt709" }, "--matrix", "bt709", "--range", "limited", "--chroma", "replicate"],
        [
            "yuv420",
            "rgb888",
            { size: [9, 5], filter: "area" },
            "--filter",
            "area",
            "--range",
            "limited",
            "--matrix",
            "bt601",
        ],
    ];
    for (const [source, target, options, ...how] of cases) {
        const frame = noise(source, W, H),
            expected = told(frame, target, options.size ?? [W, H], ...how);
        for (const { convert } of modules) assertBytes(convert(frame, target, options).data, expected, how.join(" "));
    }
});

test("resizing gives the tool's bytes", () => {
    for (const name of [
        "yuv444",
        "yuv420",
        "yuv444a8",
        "rgb888",
        "rgba8888",
        "bgra8888",
        "rgb565",
        "r8g8b8",
        "rgb565a8",
    ])
        for (const size of [
            [19, 10],
            [61, 33],
            [5, 20],
        ]) {
            const frame = noise(name, W, H),
                expected = told(frame, name, size, "--filter", "bilinear");
            for (const { resize } of modules) assertBytes(resize(frame, size).data, expected, `${name} to ${size}`);
        }
});

testEach("a frame in every form gives the same", ({ convert, Converter, Picture, resize }) => {
    const frame = noise("yuv420p", W, H),
        want = convert(frame, "rgba").data;
    const [y, u, v] = [
        [0, W, H],
        [W * H, W / 2, H / 2],
        [(W * H * 5) / 4, W / 2, H / 2],
    ];
    // as a decoder leaves it: rows with gaps, planes apart and in another order
    const loose = new Uint8Array(4000).fill(77),
        layout = [
            { offset: 7, stride: W + 3 },
            { offset: 3001, stride: 32 },
            { offset: 2001, stride: 32 },
        ];
    [y, u, v].forEach(([from, width, rows], i) => {
        for (let row = 0; row < rows; ++row)
            loose.set(
                frame.data.subarray(from + row * width, from + (row + 1) * width),
                layout[i].offset + row * layout[i].stride,
            );
    });
    const owned = new Picture("yuv420", [W, H]),
        result = new Picture("rgba", [W, H]);
    owned.data.set(frame.data);
    const within = { data: owned.data.subarray(0), width: W, height: H, format: "yuv420" };
    for (const data of [frame.data.buffer, new DataView(frame.data.buffer), new Uint16Array(frame.data.buffer)])
        assertBytes(convert({ ...frame, data }, "rgba").data, want, data.constructor.name);
    const converter = new Converter("yuv420", "rgba8888", [W, H]);
    for (const picture of [{ ...frame, data: loose, layout }, owned, within]) {
        assertBytes(convert(picture, "rgba").data, want, "convert");
        assertBytes(converter.convert(picture).data, want, "Converter");
        assert.equal(converter.convert(picture, result), result);
        assertBytes(result.data, want, "into the module");
        result.data.fill(0);
    }
    converter.free();

    // into a part of a larger picture, whose other bytes stay
    const canvas = {
        data: new Uint8ClampedArray(4 * 50 * 30).fill(9),
        width: W,
        height: H,
        layout: [{ offset: 4 * 53, stride: 200 }],
    };
    assert.equal(convert(frame, "rgba", { out: canvas }), canvas);
    for (let row = 0; row < 30; ++row) {
        const line = canvas.data.subarray(row * 200, row * 200 + 200),
            inside = row >= 1 && row <= H;
        const expected = new Uint8Array(200).fill(9);
        if (inside) expected.set(want.subarray((row - 1) * 4 * W, row * 4 * W), 12);
        assertBytes(line, expected, `row ${row}`);
    }
    assertBytes(resize(owned, [20, 10]).data, resize(frame, [20, 10]).data, "resize");
    const grey = new Picture("rgba", [20, 10]);
    assertBytes(
        resize(result, [20, 10], { out: grey }).data,
        resize({ ...result, data: result.data.slice() }, [20, 10]).data,
        "RGB",
    );
    for (const picture of [owned, result, grey]) picture.free();
});

testEach("pictures are turned and mirrored", ({ convert }) => {
    const frame = noise("nv12", W, H),
        { data } = convert(frame, "rgba"),
        pixels = new Uint32Array(data.buffer);
    const places = {
        0: (x, y) => [x, y],
        90: (x, y) => [y, H - 1 - x],
        180: (x, y) => [W - 1 - x, H - 1 - y],
        270: (x, y) => [W - 1 - y, x],
    };
    for (const [turn, place] of Object.entries(places))
        for (const mirror of [false, true]) {
            const turned = convert(frame, "rgba", { turn: Number(turn), mirror });
            const expected = Uint32Array.from({ length: W * H }, (_, i) => {
                const [x, y] = place(i % turned.width, Math.floor(i / turned.width));
                return pixels[y * W + (mirror ? W - 1 - x : x)];
            });
            assertBytes(turned.data, expected, `${turn} ${mirror}`);
        }
});

testEach("ImageData and what a canvas takes", ({ convert }) => {
    const image = { data: Uint8ClampedArray.from(noise("rgba", 8, 6).data), width: 8, height: 6, colorSpace: "srgb" };
    const yuv = convert(image, "yuv444"),
        back = convert(yuv, "rgba");
    assert.deepEqual(
        [yuv.format, yuv.data.constructor, back.format, back.data.constructor],
        ["yuv444", Uint8Array, "rgba8888", Uint8ClampedArray],
    );
    assert.ok(back.data.every((value, i) => (i % 4 === 3 ? value === 255 : Math.abs(value - image.data[i]) <= 3)));
});

testEach("refusals say what would do", ({ convert, Converter, Picture, resize }) => {
    const zeros = (format, width = 6, height = 4) => ({ ...noise(format, width, height), data: new Uint8Array(1000) });
    const small = new Picture("rgba", [2, 2]),
        freed = new Picture("rgba", [2, 2]);
    freed.free();
    freed.free();
    for (const [call, text, kind = RangeError] of [
        [() => convert(zeros("gray"), "yuv999"), /no format is called 'yuv999'; there are yuv400/],
        [() => convert(zeros("rgb888"), "rgb565"), /In two steps it goes over yuv444$/],
        [() => convert(zeros("p410"), "p010", { size: [3, 2] }), /gives another size: of 10 bits there is none/],
        [() => convert({ ...zeros("yuv444"), data: new Uint8Array(71) }, "rgba"), /has 72 bytes, but its data 71/],
        [() => convert({ ...zeros("yuv444"), layout: [] }, "rgba"), /yuv444 has 3 planes, the layout of the picture 0/],
        [
            () => convert({ ...zeros("gray"), layout: [{ offset: 0, stride: 5 }] }, "rgba"),
            /rows of 6 bytes, .* stride of 5/,
        ],
        [() => convert({ ...zeros("gray"), layout: [{ stride: 6 }] }, "rgba"), /offset of undefined/],
        [() => convert({ ...zeros("gray"), layout: [{ offset: 990, stride: 6 }] }, "rgba"), /has 1014 bytes, .* 1000/],
        [() => convert({ ...zeros("gray"), width: 0 }, "rgba"), /at least one pixel/],
        [() => convert({ ...zeros("gray"), width: 6.5 }, "rgba"), /two whole numbers/, TypeError],
        [() => convert({ ...zeros("gray"), width: 2 ** 32 + 6 }, "rgba"), /no room for 4294967302 x 4 pixels/],
        [
            () => convert({ ...zeros("gray"), data: [0, 0] }, "rgba"),
            /a typed array, a DataView or a buffer, not object/,
            TypeError,
        ],
        [() => convert({ ...zeros("gray"), data: undefined }, "rgba"), /not undefined/, TypeError],
        [() => convert(7, "rgba"), /the picture is a frame/, TypeError],
        [() => convert(zeros("yuyv", 5), "rgba"), /a width of 5 is odd/],
        [
            () => convert(zeros("gray"), "rgba", { matrix: "bt602" }),
            /matrix is one of 'bt601', 'bt709', 'bt2020', not 'bt602'/,
        ],
        [() => convert(zeros("gray"), "rgba", { turn: 45 }), /turn is one of 0, 90, 180, 270, not 45/],
        [() => convert(zeros("gray"), "rgba", { size: 7 }), /a size is \[width, height\]/, TypeError],
        [() => convert(zeros("yuyv"), "uyvy", { turn: 90 }), /turns the picture so/],
        [() => convert(zeros("yuv444"), "rgb565a8", { matrix: "bt709" }), /full-range BT\.601 alone/],
        [() => convert(zeros("gray"), "rgba", { out: zeros("rgba", 6, 3) }), /out is 6 x 3 pixels, the result 6 x 4/],
        [() => convert(zeros("gray"), "rgba", { out: zeros("bgra") }), /out is bgra8888, the result rgba8888/],
        [() => resize(small, [2, 2], { out: small }), /share memory/],
        [() => convert(freed, "yuv444"), /this Picture has been freed/, TypeError],
        [() => new Converter("gray", "rgb24", [6, 5]).convert(zeros("gray")), /this converter is for 6 x 5 of yuv400/],
        [() => resize(zeros("rgb888"), [3, 2], { filter: "area" }), /no area resizing of rgb888/],
        [() => resize(zeros("p410"), [3, 2]), /gives another size: of 10 bits there is none/],
        [() => resize(zeros("rgb888"), [3, 0]), /at least one pixel/],
        [() => new Picture("rgba", [30000, 30000]), /has no room for 3600000000 bytes/],
    ])
        throws(call, kind, text);
    small.free();
});

testEach("no pair writes outside its result", ({ conversions, convert, formats }) => {
    for (const source of Object.keys(formats())) {
        const frame = noise(source, W, H);
        for (const target of conversions(source)) {
            const plain = convert(frame, target).data,
                around = new Uint8Array(plain.length + 64).fill(77);
            convert(frame, target, { out: { ...noise(target, W, H), data: around.subarray(32, -32) } });
            assertBytes(around.subarray(32, -32), plain, `${source} to ${target}`);
            assert.ok(
                [...around.subarray(0, 32), ...around.subarray(-32)].every((value) => value === 77),
                `${source} to ${target}`,
            );
        }
    }
});
