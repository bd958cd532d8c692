// SPDX-License-Identifier: MIT
// Reads the sample tables of the first video track of an MP4, MOV or 3GP file (ISO/IEC 14496-12).
import { CODECS } from "./annexb.js";

const fail = (sentence) => {
    throw new Error(sentence);
};

/** A box, or a part of one: reads numbers, and never past its end. */
class Box {
    constructor(bytes, type = "file") {
        this.bytes = bytes;
        this.type = type;
        this.view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
        this.at = 0;
    }
    get left() {
        return this.bytes.length - this.at;
    }
    take(count) {
        if (count > this.left) fail(`The file is broken or cut off: its box “${this.type}” ends too early.`);
        this.at += count;
        return this.at - count;
    }
    skip(count) {
        this.take(count);
        return this;
    }
    u8() {
        return this.view.getUint8(this.take(1));
    }
    u16() {
        return this.view.getUint16(this.take(2));
    }
    u32() {
        return this.view.getUint32(this.take(4));
    }
    u64() {
        return this.u32() * 2 ** 32 + this.u32();
    }
    code() {
        return String.fromCharCode(this.u8(), this.u8(), this.u8(), this.u8());
    }
    /** The number of a table's entries, for each of which there must be so many bytes. */
    count(bytes) {
        const count = this.u32();
        if (count * bytes > this.left)
            fail(`The file is broken: its box “${this.type}” has room for fewer than ${count} entries.`);
        return count;
    }
    /** The boxes within this one, from here on. The last one of a file that is cut off is what there is of it. */
    *boxes() {
        while (this.left >= 8) {
            let size = this.u32();
            let head = 8;
            const type = this.code();
            if (size === 1) {
                if (this.left < 8) fail(`The file is cut off within its box “${type}”.`);
                size = this.u64();
                head = 16;
            }
            if (size === 0) size = this.left + head;
            if (size < head) fail(`The file is broken: its box “${type}” tells a size of ${size} bytes.`);
            const start = this.at;
            const end = Math.min(start + size - head, this.bytes.length);
            if (end < start + size - head && this.type !== "file")
                fail(`The file is broken: “${type}” is larger than “${this.type}” around it.`);
            this.at = end;
            yield new Box(this.bytes.subarray(start, end), type);
        }
    }
    *all(type) {
        this.at = 0;
        for (const box of this.boxes()) if (box.type === type) yield box;
    }
    find(type, ...rest) {
        const [box] = this.all(type);
        return box && rest.length ? box.find(...rest) : (box ?? null);
    }
    need(...path) {
        return (
            this.find(...path) ??
            fail(`The file is broken or incomplete: there is no “${path.at(-1)}” in its box “${this.type}”.`)
        );
    }
}

/** What a sample entry says: its code, and of how many bytes units' lengths are, or 0. */
function readEntry(stsd) {
    stsd.skip(8);
    const [entry] = stsd.boxes();
    if (!entry) fail("The file is broken: its video is of no kind.");
    const result = { code: entry.type, lengthSize: 0, codec: null };
    if (entry.bytes.length < 78) return result;
    entry.skip(78);
    for (const box of entry.boxes()) {
        const [codec, place] = { avcC: ["h264", 4], hvcC: ["hevc", 21] }[box.type] ?? [];
        if (codec) Object.assign(result, { codec: CODECS[codec], lengthSize: (box.skip(place).u8() & 3) + 1 });
    }
    return result;
}

const MOST_FRAMES = 2 ** 21;

function readSizes(stbl) {
    const stsz = stbl.find("stsz");
    if (stsz) {
        const same = stsz.skip(4).u32();
        const count = same ? stsz.u32() : stsz.count(4);
        if (count > MOST_FRAMES) fail(`The file tells of ${count} frames; this page reads up to ${MOST_FRAMES}.`);
        return Array.from({ length: count }, () => same || stsz.u32());
    }
    const stz2 = stbl.need("stz2");
    const bits = stz2.skip(7).u8();
    const count = stz2.count(bits / 8);
    if (![4, 8, 16].includes(bits)) fail(`The file is broken: its frames' sizes are of ${bits} bits.`);
    let pair = 0;
    return Array.from({ length: count }, (_, i) => {
        if (bits === 16) return stz2.u16();
        if (bits === 8) return stz2.u8();
        if (i % 2) return pair & 15;
        pair = stz2.u8();
        return pair >> 4;
    });
}

function readOffsets(stbl, sizes) {
    const co64 = stbl.find("co64");
    const chunks = co64 ?? stbl.need("stco");
    const starts = Array.from({ length: chunks.skip(4).count(co64 ? 8 : 4) }, () =>
        co64 ? chunks.u64() : chunks.u32(),
    );
    const stsc = stbl.need("stsc");
    const runs = Array.from({ length: stsc.skip(4).count(12) }, () => ({
        first: stsc.u32(),
        samples: stsc.u32(),
        entry: stsc.u32(),
    }));
    const offsets = [];
    for (let chunk = 1, run = -1; chunk <= starts.length && offsets.length < sizes.length; ++chunk) {
        while (runs[run + 1]?.first <= chunk) ++run;
        if (run < 0) fail("The file is broken: its first chunk has no samples.");
        let at = starts[chunk - 1];
        for (let n = runs[run].samples; n && offsets.length < sizes.length; --n) {
            offsets.push(at);
            at += sizes[offsets.length - 1];
        }
    }
    return offsets;
}

/** Times in which samples are shown, in seconds from the first. */
function readTimes(stbl, count, scale) {
    const runs = (type, read) => {
        const box = stbl.find(type);
        const values = [];
        if (!box) return values;
        for (let n = box.skip(4).count(8); n && values.length < count; --n) {
            const length = Math.min(box.u32(), count - values.length);
            const value = read(box);
            for (let i = 0; i < length; ++i) values.push(value);
        }
        return values;
    };
    const durations = runs("stts", (box) => box.u32());
    const shifts = runs("ctts", (box) => box.u32() | 0);
    let time = 0;
    const times = Array.from({ length: count }, (_, i) => {
        const shown = time + (shifts[i] ?? 0);
        time += durations[i] ?? 0;
        return shown / scale;
    });
    const first = times.reduce((a, b) => Math.min(a, b), Infinity);
    return times.map((t) => t - first);
}

/** A sample with start codes in place of its units' lengths, and the units' types. */
function unitsOf(sample, { codec, lengthSize }) {
    const types = [];
    const parts = [];
    let size = 0;
    for (let at = 0; at + lengthSize < sample.length;) {
        let length = 0;
        for (let i = 0; i < lengthSize; ++i) length = length * 256 + sample[at + i];
        at += lengthSize;
        const unit = sample.subarray(at, at + length);
        types.push(codec.type(sample, at));
        parts.push(unit);
        size += 4 + unit.length;
        at += length;
    }
    const data = new Uint8Array(size);
    let to = 0;
    for (const unit of parts) {
        data.set([0, 0, 0, 1], to);
        data.set(unit, to + 4);
        to += 4 + unit.length;
    }
    return { types, data };
}

export function isMp4(bytes) {
    return ["ftyp", "moov", "mdat", "free", "skip", "wide", "styp", "moof"].includes(
        String.fromCharCode(...bytes.subarray(4, 8)),
    );
}

/** The frames of a file's first video track. Throws an Error whose message is a sentence. */
export function readMp4(bytes) {
    const moov =
        new Box(bytes).find("moov") ??
        fail("There are no tables in it (“moov”): it is cut off, or was never finished.");
    const video =
        [...moov.all("trak")].find((trak) => trak.need("mdia", "hdlr").skip(8).code() === "vide") ??
        fail("There is no video in it.");
    const mdhd = video.need("mdia", "mdhd");
    const long = mdhd.u8() === 1;
    const scale = mdhd.skip(long ? 19 : 11).u32() || fail("The file is broken: its video has no time scale.");
    const stbl = video.need("mdia", "minf", "stbl");
    const entry = readEntry(stbl.need("stsd"));
    const sizes = readSizes(stbl);
    const offsets = readOffsets(stbl, sizes);
    if (!offsets.length)
        fail(
            moov.find("mvex")
                ? "It is a fragmented file, whose tables are spread over it; this page reads those with one table."
                : "Its video has no frames.",
        );
    const times = readTimes(stbl, offsets.length, scale);
    const stss = stbl.find("stss");
    const marks = stss && new Set(Array.from({ length: stss.skip(4).count(4) }, () => stss.u32() - 1));

    const whole = offsets.findIndex((offset, i) => offset + sizes[i] > bytes.length);
    const count = whole < 0 ? offsets.length : whole;
    if (!count) fail("It is cut off before the end of its first frame.");
    if (sizes.slice(0, count).reduce((a, b) => a + b, 0) > bytes.length)
        fail("The file is broken: its frames overlap.");
    const missing = sizes.length - count;
    const frames = offsets.slice(0, count).map((offset, i) => {
        const sample = bytes.subarray(offset, offset + sizes[i]);
        const units = () => (entry.lengthSize ? unitsOf(sample, entry) : { types: [], data: sample });
        return {
            offset,
            size: sizes[i],
            time: times[i],
            marked: !marks || marks.has(i),
            get types() {
                return units().types;
            },
            data: () => units().data,
        };
    });
    return {
        container: "MP4",
        code: entry.code,
        codec: entry.codec?.name ?? null,
        frames,
        note: missing ? `${missing} more of its frames are missing: the file is cut off or broken.` : "",
    };
}
