// SPDX-License-Identifier: MIT
// Pixel formats: their names, and what planes a picture of each has.

/** A plane: bytes of a pixel, and by what shifts it is smaller than the picture */
const plane = (bytes, right = 0, down = 0) => ({ bytes, right, down });

const planar = (count, right = 0, down = 0, bytes = 1) =>
    [plane(bytes), plane(bytes, right, down), plane(bytes, right, down), plane(bytes)].slice(0, count);

class PixelFormat {
    constructor(name, alias, cs, planes) {
        Object.assign(this, { name, alias, cs, planes });
        this.yuv = "ynup".includes(name[0]);
    }

    /** Of each plane its rows, the bytes of one, and its place if planes lie back to back; halves are rounded up */
    shapes(width, height) {
        let offset = 0;
        return this.planes.map(({ bytes, right, down }) => {
            const rows = (height + down) >> down,
                rowBytes = ((width + right) >> right) * bytes;
            offset += rows * rowBytes;
            return { rows, rowBytes, offset: offset - rows * rowBytes };
        });
    }

    checkSize(width, height) {
        for (const length of [width, height])
            if (!Number.isInteger(length))
                throw new TypeError(`a size is two whole numbers, [width, height], not ${width} x ${height}`);
        if (width < 1 || height < 1) throw new RangeError(`a picture has at least one pixel, not ${width} x ${height}`);
        if (width * height >= 2 ** 31)
            throw new RangeError(`the module's memory of 2 GiB has no room for ${width} x ${height} pixels`);
        if (["yuyv", "uyvy"].includes(this.name) && width % 2)
            throw new RangeError(`pixels of ${this.name} come in pairs: a width of ${width} is odd`);
    }
}

export const FORMATS = [
    ["yuv400", "gray", 10, planar(1)],
    ["yuv420", "yuv420p", 11, planar(3, 1, 1)],
    ["yuv422", "yuv422p", 12, planar(3, 1, 0)],
    ["yuv440", "yuv440p", 18, planar(3, 0, 1)],
    ["yuv444", "yuv444p", 13, planar(3)],
    ["yuv444a8", "yuva444p", 43, planar(4)],
    ["nv12", "", 800, [plane(1), plane(2, 1, 1)]],
    ["nv21", "", 801, [plane(1), plane(2, 1, 1)]],
    ["nv16", "", 802, [plane(1), plane(2, 1, 0)]],
    ["yuyv", "yuyv422", 820, [plane(2)]],
    ["uyvy", "uyvy422", 821, [plane(2)]],
    ["p010", "yuv420p10le", 60, planar(3, 1, 1, 2)],
    ["p210", "yuv422p10le", 61, planar(3, 1, 0, 2)],
    ["p410", "yuv444p10le", 62, planar(3, 0, 0, 2)],
    ["p010le", "", 810, [plane(2), plane(4, 1, 1)]],
    ["p210le", "", 811, [plane(2), plane(4, 1, 0)]],
    ["rgb565", "rgb565le", 200, [plane(2)]],
    ["rgb888", "rgb24", 400, [plane(3)]],
    ["bgr888", "bgr24", 840, [plane(3)]],
    ["rgba5658", "", 430, [plane(3)]],
    ["rgba8888", "rgba", 500, [plane(4)]],
    ["bgra8888", "bgra", 501, [plane(4)]],
    ["argb8888", "argb", 502, [plane(4)]],
    ["r8g8b8", "", 600, planar(3)],
    ["r8g8b8a8", "", 700, planar(4)],
    ["r10g10b10", "", 603, planar(3, 0, 0, 2)],
    ["rgb565a8", "", 650, [plane(2), plane(1)]],
].map((row) => new PixelFormat(...row));

const byName = new Map(
    FORMATS.flatMap((f) => [
        [f.name, f],
        [f.alias, f],
    ]),
);
byName.delete("");

/** The format of a name, the tool's or FFmpeg's */
export function named(name) {
    const format = byName.get(name);
    if (!format)
        throw new RangeError(`no format is called '${name}'; there are ${FORMATS.map((f) => f.name).join(", ")}`);
    return format;
}

export const formats = () => Object.fromEntries(FORMATS.map((f) => [f.name, f.alias]));

/** A table of choices, which the library numbers */
export const numbered = (...keys) => new Map(keys.map((key, i) => [key, i]));

/** The entry of such a table */
export function choice(what, values, key) {
    if (!values.has(key)) {
        const quoted = (value) => (typeof value === "string" ? `'${value}'` : String(value));
        throw new RangeError(`${what} is one of ${[...values.keys()].map(quoted).join(", ")}, not ${quoted(key)}`);
    }
    return values.get(key);
}
