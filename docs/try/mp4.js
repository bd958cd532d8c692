// SPDX-License-Identifier: MIT
// Reads the sample tables of the first video track of an MP4, MOV or 3GP file (ISO/IEC 14496-12), fragmented ones too.
import { CODECS } from "./annexb.js";

const fail = (sentence) => {
    throw new Error(sentence);
};

/** A box, or a part of one: reads numbers, and never past its end. */
class Box {
    constructor(bytes, type = "file", place = 0, whole = true) {
        this.bytes = bytes;
        this.type = type;
        this.place = place; // in the box around it
        this.whole = whole;
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
            const place = this.at;
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
            const end = Math.min(place + size, this.bytes.length);
            const whole = end === place + size;
            if (!whole && this.type !== "file")
                fail(`The file is broken: “${type}” is larger than “${this.type}” around it.`);
            this.at = end;
            yield new Box(this.bytes.subarray(start, end), type, place, whole);
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
const TOO_MANY = "The file tells of more than two million frames, which this page does not read.";

function readSizes(stbl) {
    const stsz = stbl.find("stsz");
    if (stsz) {
        const same = stsz.skip(4).u32();
        const count = same ? stsz.u32() : stsz.count(4);
        if (count > MOST_FRAMES) fail(TOO_MANY);
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
    if (offsets.length < sizes.length) fail("The file is broken: it does not tell where all of its frames are.");
    return offsets;
}

/** Times at which samples are shown, in units of the track */
function readTimes(stbl, count) {
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
    return Array.from({ length: count }, (_, i) => {
        const shown = time + (shifts[i] ?? 0);
        time += durations[i] ?? 0;
        return shown;
    });
}

/** The samples of a track's own tables */
function readTable(stbl) {
    const sizes = readSizes(stbl);
    const offsets = readOffsets(stbl, sizes);
    const times = readTimes(stbl, sizes.length);
    const stss = stbl.find("stss");
    const marks = stss && new Set(Array.from({ length: stss.skip(4).count(4) }, () => stss.u32() - 1));
    return sizes.map((size, i) => ({ offset: offsets[i], size, time: times[i], marked: !marks || marks.has(i) }));
}

/** The samples of a track that fragments hold, up to where the file is cut off */
function readFragments(file, moov, video) {
    const mvex = moov.find("mvex");
    if (!mvex) return [];
    const tkhd = video.need("tkhd");
    const id = tkhd.skip(tkhd.u8() === 1 ? 19 : 11).u32();
    const trex = [...mvex.all("trex")].find((box) => box.skip(4).u32() === id);
    if (!trex) return [];
    const usual = { duration: trex.skip(4).u32(), size: trex.u32(), flags: trex.u32() };
    const samples = [];
    let time = 0;
    for (const moof of file.all("moof")) {
        for (const traf of moof.whole ? moof.all("traf") : []) {
            const tfhd = traf.need("tfhd");
            const has = tfhd.u32();
            if (tfhd.u32() !== id) continue;
            const base = has & 1 ? tfhd.u64() : moof.place;
            if (has & 2) tfhd.skip(4);
            const [duration, size, flags] = ["duration", "size", "flags"].map((name, bit) =>
                has & (8 << bit) ? tfhd.u32() : usual[name],
            );
            const tfdt = traf.find("tfdt");
            if (tfdt) time = tfdt.u8() === 1 ? tfdt.skip(3).u64() : tfdt.skip(3).u32();
            let offset = base;
            for (const trun of traf.all("trun")) {
                const tells = trun.u32();
                const count = trun.u32();
                if (samples.length + count > MOST_FRAMES) fail(TOO_MANY);
                if (tells & 1) offset = base + (trun.u32() | 0);
                const first = tells & 4 ? trun.u32() : flags;
                for (let i = 0; i < count; ++i) {
                    const lasts = tells & 0x100 ? trun.u32() : duration;
                    const sample = { offset, size: tells & 0x200 ? trun.u32() : size };
                    const own = tells & 0x400 ? trun.u32() : i ? flags : first;
                    sample.time = time + (tells & 0x800 ? trun.u32() | 0 : 0);
                    sample.marked = !(own & 0x10000);
                    samples.push(sample);
                    offset += sample.size;
                    time += lasts;
                }
            }
        }
    }
    return samples;
}

/** The types of a sample's units, and the sample with start codes in place of their lengths */
function unitsOf(sample, { codec, lengthSize }) {
    const types = [];
    const parts = [];
    let size = 0;
    for (let at = 0; at + lengthSize < sample.length;) {
        let length = 0;
        for (let i = 0; i < lengthSize; ++i) length = length * 256 + sample[at + i];
        at += lengthSize;
        if (!length) break;
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
    const file = new Box(bytes);
    const moov = file.find("moov") ?? fail("There are no tables in it (“moov”): it is cut off, or was never finished.");
    const video =
        [...moov.all("trak")].find((trak) => trak.need("mdia", "hdlr").skip(8).code() === "vide") ??
        fail("There is no video in it.");
    const mdhd = video.need("mdia", "mdhd");
    const scale =
        mdhd.skip(mdhd.u8() === 1 ? 19 : 11).u32() || fail("The file is broken: its video has no time scale.");
    const stbl = video.need("mdia", "minf", "stbl");
    const entry = readEntry(stbl.need("stsd"));
    const samples = [...readTable(stbl), ...readFragments(file, moov, video)];
    if (!samples.length) fail("Its video has no frames.");

    const missing = samples.findIndex(({ offset, size }) => !(offset >= 0 && offset + size <= bytes.length));
    const there = missing < 0 ? samples : samples.slice(0, missing);
    if (!there.length) fail("It is cut off before the end of its first frame.");
    if (there.reduce((sum, { size }) => sum + size, 0) > bytes.length) fail("The file is broken: its frames overlap.");
    const first = there.reduce((least, { time }) => Math.min(least, time), Infinity);
    const frames = there.map(({ offset, size, time, marked }) => {
        const sample = bytes.subarray(offset, offset + size);
        const read = () => (entry.lengthSize ? unitsOf(sample, entry) : { types: [], data: sample });
        return { offset, size, time: (time - first) / scale, marked, read };
    });
    return {
        container: "MP4",
        code: entry.code,
        codec: entry.codec?.name ?? null,
        frames,
        note:
            missing < 0
                ? ""
                : `${samples.length - missing} more of its frames are missing: the file is cut off or broken.`,
    };
}
