// SPDX-License-Identifier: MIT
// MD5 digests of bytes and pictures.
import { planesOf } from "./pictures.js";

const RECORD = 88,
    DIGEST = 16,
    PIECE = 1 << 20;

export function digests(library) {
    const { calls } = library;

    /** Runs of bytes in what is digested, each from where to where */
    function runsOf(data, isFrame, length) {
        if (!isFrame) return [[0, length]];
        return planesOf(library, data).planes.flatMap(({ offset, stride, rows, rowBytes }) => {
            if (stride === rowBytes) return [[offset, offset + rows * rowBytes]];
            return Array.from({ length: rows }, (_, y) => [offset + y * stride, offset + y * stride + rowBytes]);
        });
    }

    function md5(data) {
        const isFrame = Boolean(data) && typeof data === "object" && "data" in data;
        const held = library.hold(isFrame ? data.data : data),
            runs = runsOf(data, isFrame, held().length);
        return library.borrow(RECORD + DIGEST + PIECE, (record) => {
            const digest = record + RECORD,
                room = digest + DIGEST;
            calls.zelt_md5_init(record);
            for (const [from, to] of runs)
                for (let start = from; start < to; start += PIECE) {
                    const piece = held().subarray(start, Math.min(start + PIECE, to));
                    library.bytes.set(piece, room);
                    calls.zelt_md5_update(record, room, piece.length);
                }
            calls.zelt_md5_finish(record, digest);
            return Array.from(library.view(digest, DIGEST), (byte) => byte.toString(16).padStart(2, "0")).join("");
        });
    }
    return { md5 };
}
