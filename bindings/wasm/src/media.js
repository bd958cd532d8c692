// SPDX-License-Identifier: MIT
// Media types of containers' codes, and key frames.
import { choice } from "./formats.js";

/** ZELT_MT_* of zelt/fcc2mt.h */
// prettier-ignore
export const TYPES = {
    video: {
        mpeg4: 102, h263: 103, h264: 104, wmv1: 105, wmv2: 106, wmv3: 107, div3: 110, rv10: 113, rv20: 114, rv30: 115,
        rv40: 116, mp43: 117, vc1: 118, vp8: 119, hevc: 120, hfyu: 122, unknown: 299,
    },
    audio: {
        pcm: 300, alaw: 301, mulaw: 302, mpeg: 304, mp3: 305, aac: 306, ac3: 307, dts: 308, amr_nb: 309, amr_wb: 310,
        qcelp: 311, wma: 312, wma_pro: 313, wma_lossless: 314, evrc: 321, sipr: 331, cook: 332, unknown: 499,
    },
    drm: { divx: 1100, unknown: 1299 },
    subtitle: { srt: 3000, tx3g: 3006, ass: 3007, ssa: 3008, unknown: 3199 },
};
const TYPE_LIST = Object.entries(TYPES).flatMap(([kind, names]) =>
    Object.entries(names).map(([name, value]) => ({ kind, name, value })),
);

export function mediaFunctions(library) {
    const { calls } = library;
    const byKind = new Map([
        ["video", calls.zelt_fcc2mt_vid],
        ["audio", calls.zelt_fcc2mt_aud],
        ["subtitle", calls.zelt_fcc2mt_sub],
        ["drm", calls.zelt_fcc2mt_drm],
        [undefined, calls.zelt_fcc2mt],
    ]);

    const videos = new Map(Object.entries(TYPES.video));

    function mediaType(code, kind) {
        const find = choice("kind", byKind, kind);
        if (typeof code === "string") {
            if (code.length !== 4) throw new RangeError(`a FourCC has four characters, not ${code.length}`);
            code = [...code].reduceRight((number, character) => number * 256 + (character.charCodeAt(0) & 255), 0);
        }
        const value = find(code);
        return { ...(TYPE_LIST.find((type) => type.value === value) ?? { kind: "unknown", name: "unknown", value }) };
    }

    function isKeyFrame(codec, data) {
        const value = typeof codec === "number" ? codec : choice("codec", videos, codec);
        return library.lend(
            data,
            (address, length) => length > 0 && calls.zelt_is_vkeyfrm(value, address, length) === 1,
        );
    }
    return { mediaType, isKeyFrame };
}
