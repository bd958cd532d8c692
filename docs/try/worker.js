// SPDX-License-Identifier: MIT
// Everything that takes long: the library, and reading of files. {id, call, ...} is answered by {id, result} or by
// {id, error}.
import { load } from "./libzelt/index.js";
import { readAnnexB } from "./annexb.js";
import { isMp4, readMp4 } from "./mp4.js";
import { readY4m } from "./y4m.js";

const MOST_BYTES = 2 ** 29;
const LEAST_TIME = 8; // milliseconds: as long as a step is repeated for its time

let zelt;
let picture = null;
let clip = null;

async function bytesOf(file) {
    if (file.size > MOST_BYTES)
        throw new Error(`It has ${Math.ceil(file.size / 2 ** 20)} MB, and this page reads up to 512.`);
    return new Uint8Array(await file.arrayBuffer());
}

/** What a function returns, and the milliseconds that it takes: a quick one's are the mean of some runs, after others for
 *  the engine, which compiles well what runs often. */
function timed(run) {
    let result;
    const repeat = (least) => {
        const start = performance.now();
        let count = 0;
        let passed = 0;
        while (!count || passed < least) {
            result = run();
            ++count;
            passed = performance.now() - start;
        }
        return passed / count;
    };
    const first = repeat(LEAST_TIME / 2);
    return { result, time: first < LEAST_TIME ? repeat(LEAST_TIME) : first };
}

const clipFrame = (n) => ({
    data: clip.bytes.subarray(clip.offsets[n], clip.offsets[n] + clip.size),
    format: clip.format,
    width: clip.width,
    height: clip.height,
});

/** Standard definition is BT.601. */
const clipColour = () => ({ matrix: clip.height < 720 ? "bt601" : "bt709", range: clip.range });

/** A chain of conversions over frames in the module's memory. */
class Chain {
    constructor(source, steps) {
        this.owned = [];
        this.pictures = [this.own(new zelt.Picture(source.format ?? "rgba8888", [source.width, source.height]))];
        this.converters = steps.map(({ format, ...options }) => {
            const from = this.pictures.at(-1);
            const converter = this.own(new zelt.Converter(from.format, format, [from.width, from.height], options));
            this.pictures.push(this.own(new zelt.Picture(format, converter.resultSize)));
            return converter;
        });
    }
    own(thing) {
        this.owned.push(thing);
        return thing;
    }
    step(n) {
        this.converters[n].convert(this.pictures[n], this.pictures[n + 1]);
    }
    run(source) {
        this.pictures[0].data.set(source.data);
        this.converters.forEach((_, n) => this.step(n));
    }
    free() {
        for (const thing of this.owned) thing.free();
    }
}

/** Of a clip's frame RGBA is made first. */
function chainOf(source, { stored, shown }) {
    const steps = [stored, { format: "rgba8888", ...shown }];
    if (source.format) steps.unshift({ format: "rgba8888", ...clipColour() });
    return new Chain(source, steps);
}

function rgba(frame) {
    return { data: new Uint8ClampedArray(frame.data), width: frame.width, height: frame.height };
}

const calls = {
    async init() {
        zelt = await load();
        return { kernels: zelt.kernels };
    },

    /** Takes a picture of RGBA. */
    picture({ image }) {
        picture = image;
        return {};
    },

    /** Takes a clip: a Y4M file. */
    async clip({ file }) {
        const bytes = await bytesOf(file);
        const opened = readY4m(bytes);
        clip = { bytes, ...opened };
        const { width, height, format, range, rate, offsets, note } = opened;
        return { width, height, format, range, rate, count: offsets.length, note };
    },

    /** Converts a picture or a clip's frame: what is shown before and after, and, where asked for, each step's time and
     *  its digest: of the frame or of all frames of the clip one behind the other. */
    convert({ from, frame, options, digests, timing }) {
        const source = from === "clip" ? clipFrame(frame) : picture;
        const chain = chainOf(source, options);
        try {
            chain.run(source);
            const places = chain.pictures.length;
            const steps = chain.pictures.map(({ format, width, height, data }) => ({
                format,
                width,
                height,
                bytes: data.length,
            }));
            if (timing)
                chain.converters.forEach((_, n) => {
                    steps[n + 1].time = timed(() => chain.step(n)).time;
                });
            const result = { before: rgba(chain.pictures[places - 3]), after: rgba(chain.pictures[places - 1]), steps };
            if (digests === "all" && from === "clip") {
                const all = steps.map(({ bytes }) => new Uint8Array(bytes * clip.offsets.length));
                clip.offsets.forEach((_, n) => {
                    chain.run(clipFrame(n));
                    chain.pictures.forEach((p, i) => all[i].set(p.data, n * steps[i].bytes));
                });
                all.forEach((bytes, i) => {
                    steps[i].digest = zelt.md5(bytes);
                });
            } else if (digests) {
                chain.pictures.forEach((p, i) => {
                    steps[i].digest = zelt.md5(p);
                });
            }
            return result;
        } finally {
            chain.free();
        }
    },

    /** The motion between two frames, of the clip or of RGBA, by each metric; with a reach of 0 what blocks cost where
     *  they are. */
    motion({ frames, images, block, reach, metrics }) {
        const sources = images ?? frames.map(clipFrame);
        // luma as it is: another range would be other costs
        const [before, now] = sources.map((source) =>
            zelt.convert(source, "yuv400", { range: images ? "full" : clip.range }),
        );
        const fields = metrics.map((metric) => {
            const { result, time } = timed(() =>
                reach
                    ? zelt.motion(before, now, { block, reach, metric })
                    : zelt.sadMap(before, now, { block, metric }),
            );
            const vectors = result.vectors ?? new Int16Array(2 * result.costs.length);
            const bytes = new Uint8Array(vectors.byteLength + result.costs.byteLength);
            bytes.set(new Uint8Array(vectors.buffer, vectors.byteOffset, vectors.byteLength));
            bytes.set(
                new Uint8Array(result.costs.buffer, result.costs.byteOffset, result.costs.byteLength),
                vectors.byteLength,
            );
            return {
                metric,
                columns: result.columns,
                rows: result.rows,
                vectors,
                costs: result.costs,
                time,
                digest: zelt.md5(bytes),
            };
        });
        return { width: now.width, height: now.height, luma: new Uint8Array(now.data), fields };
    },

    /** The frames of a coded file. */
    async keyFrames({ file }) {
        const bytes = await bytesOf(file);
        const { container, code, codec, frames, note } = isMp4(bytes) ? readMp4(bytes) : readAnnexB(bytes);
        const type = codec ? { name: codec } : zelt.mediaType(code, "video");
        const start = performance.now();
        const list = frames.map(({ size, time, marked, read }) => {
            const { types, data } = read();
            const key = type.name !== "unknown" && zelt.isKeyFrame(type.name, data);
            return { size, time, marked, types: types.slice(0, 64), key };
        });
        const passed = performance.now() - start;
        const digest = zelt.md5(
            new TextEncoder().encode(list.map(({ size, key }) => `${size},${Number(key)}\n`).join("")),
        );
        return { container, code, codec: type.name, frames: list, note, time: passed / list.length, digest };
    },
};

async function answer({ id, call, ...given }) {
    try {
        postMessage({ id, result: await calls[call](given) });
    } catch (error) {
        postMessage({ id, error: error.message });
    }
}

let turn = Promise.resolve(); // calls are answered one after another
addEventListener("message", ({ data }) => {
    turn = turn.then(() => answer(data));
});
