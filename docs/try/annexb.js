// SPDX-License-Identifier: MIT
// Splits H.264 and HEVC streams with start codes into access units: a picture with what belongs to it.

const H264 = {
    name: "h264",
    type: (bytes, at) => bytes[at] & 31,
    isSlice: (type) => type === 1 || type === 2 || type === 5,
    // the first bit of a slice's header is 1 if its first macroblock is the picture's first
    isFirst: (bytes, at) => bytes[at + 1] >= 0x80,
    opens: (type) => (type >= 6 && type <= 9) || (type >= 14 && type <= 18),
};
const HEVC = {
    name: "hevc",
    type: (bytes, at) => (bytes[at] >> 1) & 63,
    isSlice: (type) => type < 32,
    isFirst: (bytes, at) => bytes[at + 2] >= 0x80,
    opens: (type) =>
        (type >= 32 && type <= 35) || type === 39 || (type >= 41 && type <= 44) || (type >= 48 && type <= 55),
};
export const CODECS = { h264: H264, hevc: HEVC };

/** Where the units' first bytes are, behind 00 00 01. */
function* startCodes(bytes) {
    for (let one = bytes.indexOf(1, 2); one >= 0 && one + 1 < bytes.length; one = bytes.indexOf(1, one + 1))
        if (bytes[one - 1] === 0 && bytes[one - 2] === 0) yield one + 1;
}

/** HEVC's parameter sets, delimiters and messages, of layer 0 in their second byte, are no units of H.264. */
function codecOf(bytes, at) {
    return [0x40, 0x42, 0x44, 0x46, 0x4e].includes(bytes[at]) && bytes[at + 1] === 1 ? HEVC : H264;
}

/** The access units of a stream. Throws an Error whose message is a sentence. */
export function readAnnexB(bytes) {
    let codec = null;
    let hasSlice = false;
    let end = bytes.length;
    let note = "";
    const units = []; // access units: where each begins, and the types of what is in it
    for (const at of startCodes(bytes)) {
        codec ??= codecOf(bytes, at);
        if (bytes[at] & 0x80) {
            // the forbidden bit
            note = `From byte ${at} on it is broken; what follows is left out.`;
            end = at - 3;
            break;
        }
        const type = codec.type(bytes, at);
        const slice = codec.isSlice(type);
        if (!units.length || (hasSlice && (slice ? codec.isFirst(bytes, at) : codec.opens(type)))) {
            units.push({ offset: at - (bytes[at - 4] === 0 ? 4 : 3), types: [] }); // a zero before belongs to it
            hasSlice = false;
        }
        hasSlice ||= slice;
        units.at(-1).types.push(type);
    }
    if (!units.some(({ types }) => types.some(codec.isSlice)))
        throw new Error("There is no picture of H.264 or HEVC behind a start code in it.");
    const frames = units.map(({ offset, types }, i) => {
        const data = bytes.subarray(offset, units[i + 1]?.offset ?? end);
        return { offset, size: data.length, read: () => ({ types, data }) };
    });
    return { container: "Annex B", codec: codec.name, frames, note };
}
