// SPDX-License-Identifier: MIT
// Colour conversion and resizing.
import { FORMATS, choice, named, numbered } from "./formats.js";
import { Owner } from "./memory.js";
import { frameOf, lengthOf, placed, planesOf, resultPlanesOf, sizeOf } from "./pictures.js";

const MATRICES = numbered("bt601", "bt709", "bt2020");
const RANGES = numbered("limited", "full");
const CHROMA = numbered("replicated", "smooth");
const FILTERS = numbered("bilinear", "area");
const TURNS = numbered(0, 90, 180, 270);
const MIRRORED = 4;
const FULL_RANGE = ["yuv444", "yuv444a8", "p410"]; // sources and destinations of full range unless told otherwise

// Fields of ZELT_VIDEO that are set, the record's words, and words of the four arrays of a call's arguments
const FIELDS = ["src_cs", "dst_cs", "matrix", "range", "chroma", "filter", "dst_w", "dst_h", "turn"];
const RECORD = 64,
    ARRAYS = 16;

export function converters(library) {
    const { calls } = library;
    const functionAt = (index) => (index ? calls.__indirect_function_table.get(index) : null);

    /** The converter of full-range BT.601 that the dispatch has for a pair, or null */
    function dispatched(source, target, size, targetSize) {
        if (source === target && source.name === "r10g10b10") return null; // the dispatch converts it to p410
        // Its converter there writes 4 bytes a pixel.
        if (source.name === "r8g8b8a8" && target.name === "rgba5658")
            return String(size) === String(targetSize) ? calls.zelt_csc_r8g8b8a8_to_rgba5658 : null;
        return functionAt(calls.zelt_imgp_get_fn_csc(...size, source.cs, ...targetSize, target.cs, 0));
    }

    /** Fills a record at an address: whether the library does what is asked */
    function prepared(address, source, target, request = {}) {
        const values = { src_cs: source.cs, dst_cs: target.cs, ...request };
        const record = library.words.subarray(address / 4, address / 4 + RECORD);
        record.fill(0);
        FIELDS.forEach((field, i) => (record[i] = values[field] ?? 0));
        return calls.zelt_video_init(address) === 0;
    }
    const does = (...request) => library.borrow(4 * RECORD, (address) => prepared(address, ...request));

    const converts = (source, target) => Boolean(dispatched(source, target, [1, 1], [1, 1])) || does(source, target);

    const conversions = (name) => FORMATS.filter((f) => converts(named(name), f)).map((f) => f.name);

    function refusal(source, target, request) {
        const pair = `${source.name} to ${target.name}`;
        if (!converts(source, target)) {
            const between = ["yuv444a8", "r8g8b8a8", "yuv444", "r8g8b8", "p410"].find(
                (name) => converts(source, named(name)) && converts(named(name), target),
            );
            return (
                `nothing converts ${pair}; ${source.name} can become ${conversions(source.name).join(", ")}` +
                (between ? `. In two steps it goes over ${between}` : "")
            );
        }
        if (request.turn && !does(source, target, { turn: request.turn }))
            return `no converter from ${pair} turns the picture so: convert it first, to yuv420 or yuv444`;
        if (request.dst_w)
            return `no converter from ${pair} gives another size: of 10 bits there is none, and RGB has resize()`;
        return `no converter from ${pair} has this matrix and range: it is full-range BT.601 alone`;
    }

    let run;
    class Converter extends Owner {
        #source;
        #target;
        #size;
        #resultSize;
        #function = null; // or the record tells what to do
        #rooms = []; // for pictures that are not in the module

        constructor(from, to, size, options = {}) {
            const source = named(from),
                target = named(to),
                [width, height] = sizeOf(size);
            const { matrix = "bt601", chroma = "replicated", filter = "bilinear", turn = 0, mirror = false } = options;
            const yuv = source.yuv ? source : target;
            const { range = yuv.yuv && !FULL_RANGE.includes(yuv.name) ? "limited" : "full" } = options;
            const request = {
                matrix: choice("matrix", MATRICES, matrix),
                range: choice("range", RANGES, range),
                chroma: choice("chroma", CHROMA, chroma),
                filter: choice("filter", FILTERS, filter),
                turn: choice("turn", TURNS, turn) + (mirror ? MIRRORED : 0),
            };
            const upright = turn % 180 ? [height, width] : [width, height];
            const resultSize = options.size ? sizeOf(options.size) : upright;
            source.checkSize(width, height);
            target.checkSize(...resultSize);
            if (String(resultSize) !== String(upright)) [request.dst_w, request.dst_h] = resultSize;

            super(library, 4 * (RECORD + ARRAYS));
            this.#source = source;
            this.#target = target;
            this.#size = [width, height];
            this.#resultSize = resultSize;
            const repacked = source.yuv === target.yuv; // without a matrix
            if (!request.turn && !request.filter && (repacked || (matrix === "bt601" && range === "full")))
                this.#function = dispatched(source, target, [width, height], resultSize);
            if (!this.#function && !prepared(this.address, source, target, request)) {
                this.free();
                throw new RangeError(refusal(source, target, request));
            }
        }

        static {
            run = (converter, source, out) => converter.#run(source, out);
        }

        get size() {
            return [...this.#size];
        }

        get resultSize() {
            return [...this.#resultSize];
        }

        convert(frame, out) {
            return this.#run(planesOf(library, frame), out);
        }

        #run(source, out) {
            const record = this.address,
                [width, height] = this.#size;
            if (source.format !== this.#source || source.width !== width || source.height !== height)
                throw new RangeError(
                    `the picture is ${source.width} x ${source.height} pixels of ${source.format.name}, ` +
                        `this converter is for ${width} x ${height} of ${this.#source.name}`,
                );
            const result = resultPlanesOf(library, out, this.#target, ...this.#resultSize, source);
            const rooms = [this.#room(0, source), this.#room(1, result)]; // after which the memory does not grow
            const from = placed(library, source, rooms[0]),
                to = placed(library, result, rooms[1]);
            if (rooms[0]) source.copyTo(from);
            this.#call(record, from.planes, to.planes);
            return frameOf(out, result, to);
        }

        /** Memory for a picture that is not in the module, kept for the next one; else 0 */
        #room(i, { address, format, width, height }) {
            if (address !== null) return 0;
            return (this.#rooms[i] ??= new Owner(library, lengthOf(format, width, height))).address;
        }

        #call(record, from, to) {
            const arrays = record + 4 * RECORD;
            const words = library.words.subarray(arrays / 4, arrays / 4 + ARRAYS);
            words.fill(0); // no plane is a null pointer
            [from, to].forEach((planes, side) =>
                planes.forEach(({ offset, stride }, i) => {
                    words[8 * side + i] = offset;
                    words[8 * side + 4 + i] = stride;
                }),
            );
            const source = [arrays, arrays + 16],
                target = [arrays + 32, arrays + 48];
            if (!this.#function) calls.zelt_video_convert(record, ...source, ...target, ...this.#size);
            else {
                const end = [target[0], ...this.#resultSize, target[1], this.#target.cs];
                this.#function(source[0], ...this.#size, source[1], this.#source.cs, ...end);
            }
        }

        free() {
            for (const room of this.#rooms) room?.free();
            this.#rooms = [];
            super.free();
        }
    }

    /** With a converter for this picture alone */
    function once(source, target, { out, ...options }) {
        const converter = new Converter(source.format.name, target, [source.width, source.height], options);
        try {
            return run(converter, source, out);
        } finally {
            converter.free();
        }
    }

    const convert = (frame, format, options = {}) => once(planesOf(library, frame), format, options);

    /** The library's function that resizes a plane, or undefined */
    function resizer({ name }, { bytes }) {
        if (name === "rgba5658") return undefined;
        if (name.startsWith("rgb565")) return bytes === 2 ? calls.zelt_irsz5b6b5b_full : calls.zelt_irsz8b_full;
        return { 1: calls.zelt_irsz8b_full, 3: calls.zelt_irsz8b8b8b_full, 4: calls.zelt_irsz8b8b8b8b_full }[bytes];
    }

    function resize(frame, size, { filter = "bilinear", out } = {}) {
        const source = planesOf(library, frame),
            { format } = source,
            [width, height] = sizeOf(size);
        if (format.yuv && format.name !== "yuv444a8") return once(source, format.name, { size, filter, out });
        const resizers = format.planes.map((plane) => resizer(format, plane));
        if (choice("filter", FILTERS, filter) || !resizers.every(Boolean))
            throw new RangeError(
                `there is no ${filter} resizing of ${format.name}; YUV formats of 8 bits without alpha ` +
                    "have both filters, rgb565 and those of 8 bits a sample the bilinear one",
            );
        format.checkSize(width, height);
        const result = resultPlanesOf(library, out, format, width, height, source);
        const lengths = [source, result].map((p) => (p.address === null ? lengthOf(format, p.width, p.height) : 0));
        return library.borrow(8 + lengths[0] + lengths[1], (steps) => {
            const from = placed(library, source, steps + 8),
                to = placed(library, result, steps + 8 + lengths[0]);
            if (lengths[0]) source.copyTo(from);
            calls.bilinear_rsz_step_size(source.width, source.height, width, height, steps, steps + 4);
            const [across, down] = library.words.subarray(steps / 4);
            resizers.forEach((resizer, i) =>
                resizer(
                    from.planes[i].offset,
                    from.planes[i].stride,
                    width,
                    height,
                    to.planes[i].stride,
                    to.planes[i].offset,
                    across,
                    down,
                ),
            );
            return frameOf(out, result, to);
        });
    }
    return { Converter, convert, resize, conversions };
}
