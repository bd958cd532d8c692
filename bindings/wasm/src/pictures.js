// SPDX-License-Identifier: MIT
// Pictures: where the planes of a frame are, and copies of them in the module's memory.
import { named } from "./formats.js";
import { Owner, bytesOf } from "./memory.js";

/** Width and height */
export function sizeOf(size) {
    if (!size || typeof size !== "object" || size.length !== 2) throw new TypeError("a size is [width, height]");
    return [...size];
}

/** Bytes of a picture without gaps */
export const lengthOf = (format, width, height) =>
    format.shapes(width, height).reduce((sum, { rows, rowBytes }) => sum + rows * rowBytes, 0);

/** The layout of one whose planes lie back to back from an offset */
const backToBack = (format, width, height, from = 0) =>
    format.shapes(width, height).map(({ offset, rowBytes }) => ({ offset: from + offset, stride: rowBytes }));

/** A picture as the functions below take it: a format and a size, `bytes`, and of each plane where it begins in them,
 *  stride, rows and rowBytes. `address` is that of the first byte if they are the module's, else null; `span` is where
 *  the bytes begin and end in their buffer. */
export class Planes {
    constructor(format, width, height, bytes, layout, address = null) {
        Object.assign(this, { format, width, height, bytes, address });
        this.span = [address ?? bytes.byteOffset, (address ?? bytes.byteOffset) + bytes.length];
        this.planes = format.shapes(width, height).map(({ rows, rowBytes }, i) => ({ ...layout[i], rows, rowBytes }));
    }

    copyTo(other) {
        this.planes.forEach(({ offset, stride, rows, rowBytes }, i) => {
            const to = other.planes[i];
            const gaps = stride !== rowBytes || to.stride !== rowBytes;
            const pieces = gaps ? rows : 1,
                length = gaps ? rowBytes : rows * rowBytes;
            for (let y = 0; y < pieces; ++y) {
                const start = offset + y * stride;
                other.bytes.set(this.bytes.subarray(start, start + length), to.offset + y * to.stride);
            }
        });
    }
}

/** Those of a caller's frame; an error unless it holds what it says */
export function planesOf(library, frame, what = "the picture") {
    if (!frame || typeof frame !== "object" || !("data" in frame))
        throw new TypeError(`${what} is a frame, { data, width, height, format }, or ImageData`);
    const { data, width, height, format: name = "rgba8888" } = frame;
    const format = named(name),
        bytes = bytesOf(data);
    format.checkSize(width, height);
    const layout = frame.layout ?? backToBack(format, width, height);
    if (layout.length !== format.planes.length)
        throw new RangeError(
            `${format.name} has ${format.planes.length} planes, the layout of ${what} ${layout.length}`,
        );
    const inModule = bytes.buffer === library.memory.buffer;
    const picture = new Planes(format, width, height, bytes, layout, inModule ? bytes.byteOffset : null);
    picture.planes.forEach(({ offset, stride, rows, rowBytes }, i) => {
        if (!Number.isInteger(offset) || !Number.isInteger(stride) || offset < 0 || stride < rowBytes)
            throw new RangeError(
                `plane ${i} of ${what} has rows of ${rowBytes} bytes, its layout an offset of ${offset} ` +
                    `and a stride of ${stride}`,
            );
        const end = offset + (rows - 1) * stride + rowBytes;
        if (end > bytes.length)
            throw new RangeError(
                `${what}, ${width} x ${height} pixels of ${format.name}, has ${end} bytes, but its data ` +
                    bytes.length,
            );
    });
    return picture;
}

/** What is to be written: a caller's `out`, of the right format and size and apart from the source, or a new picture */
export function resultPlanesOf(library, out, format, width, height, source) {
    if (!out) return { format, width, height, address: null };
    const result = planesOf(library, out, "out");
    if (result.format !== format) throw new RangeError(`out is ${result.format.name}, the result ${format.name}`);
    if (result.width !== width || result.height !== height)
        throw new RangeError(`out is ${result.width} x ${result.height} pixels, the result ${width} x ${height}`);
    const together = source.address === null ? result.bytes.buffer === source.bytes.buffer : result.address !== null;
    if (together && result.span[0] < source.span[1] && source.span[0] < result.span[1])
        throw new RangeError("out and the picture share memory");
    return result;
}

/** The same picture as the library reaches it: where it is, or, if it is not in the module, in `room` for it there */
export function placed(library, { format, width, height, planes, address }, room) {
    const layout =
        address === null
            ? backToBack(format, width, height, room)
            : planes.map(({ offset, stride }) => ({ offset: address + offset, stride }));
    return new Planes(format, width, height, library.bytes, layout);
}

/** The frame that a caller gets of a result that was placed: `out`, or a copy in new memory */
export function frameOf(out, result, there) {
    if (out) {
        if (result.address === null) there.copyTo(result);
        return out;
    }
    const { format, width, height, bytes, planes } = there,
        from = planes[0].offset;
    const data = bytes.slice(from, from + lengthOf(format, width, height));
    const clamped = format.name === "rgba8888"; // as ImageData wants it
    return { data: clamped ? new Uint8ClampedArray(data.buffer) : data, width, height, format: format.name };
}

export function pictures(library) {
    return class Picture extends Owner {
        #length;

        constructor(name, size) {
            const format = named(name),
                [width, height] = sizeOf(size);
            format.checkSize(width, height);
            const length = lengthOf(format, width, height);
            super(library, length);
            this.#length = length;
            this.data.fill(0);
            Object.assign(this, { format: format.name, width, height, layout: backToBack(format, width, height) });
        }

        get data() {
            return library.view(this.address, this.#length);
        }
    };
}
