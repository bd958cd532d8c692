// SPDX-License-Identifier: MIT
// Costs of blocks, and where blocks come from.
import { choice, named, numbered } from "./formats.js";
import { Planes, placed, planesOf } from "./pictures.js";

const BLOCKS = numbered(4, 8, 16, 32, 64);
const METRICS = numbered("sad", "satd", "ssd");

export function blockFunctions(library) {
    const { calls } = library;

    /** The luma of a frame, of 8 bits, as a picture of its own */
    function lumaOf(frame, what) {
        const { format, width, height, bytes, planes, address } = planesOf(library, frame, what);
        if (!format.yuv || format.planes[0].bytes !== 1)
            throw new RangeError(
                `blocks are those of a plane of 8-bit luma, and ${format.name} has none: ` +
                    'convert(frame, "gray") makes one',
            );
        return new Planes(named("gray"), width, height, bytes, planes, address);
    }

    /** Runs `use` over two pictures' luma: with the numbers of metric and block, the addresses of both records of luma,
     *  that of `words` words for each block, and how many blocks there are */
    function compare(a, b, { block = 16, metric = "sad" }, words, use) {
        const pair = [lumaOf(a, "the first picture"), lumaOf(b, "the second picture")],
            [{ width, height }, second] = pair;
        if (width !== second.width || height !== second.height)
            throw new RangeError(
                `the pictures differ: ${width} x ${height} and ${second.width} x ${second.height} pixels`,
            );
        const numbers = [choice("metric", METRICS, metric), choice("block", BLOCKS, block)];
        const columns = Math.ceil(width / block),
            rows = Math.ceil(height / block),
            count = columns * rows;
        const lengths = pair.map(({ address }) => (address === null ? width * height : 0));
        return library.borrow(32 + 4 * words * count + lengths[0] + lengths[1], (records) => {
            const results = records + 32,
                rooms = [results + 4 * words * count, results + 4 * words * count + lengths[0]];
            pair.forEach((luma, i) => {
                const there = placed(library, luma, rooms[i]),
                    [{ offset, stride }] = there.planes;
                if (lengths[i]) luma.copyTo(there);
                library.words.set([offset, stride, width, height], records / 4 + 4 * i);
            });
            return { columns, rows, ...use(numbers, [records, records + 16], results, count) };
        });
    }

    const costsAt = (address, count) => new Uint32Array(library.memory.buffer, address, count).slice();

    function sadMap(a, b, options = {}) {
        return compare(a, b, options, 1, (numbers, planes, results, count) => {
            calls.zelt_blocks_map(...numbers, ...planes, results);
            return { costs: costsAt(results, count) };
        });
    }

    function motion(before, now, { reach = 32, start, ...options } = {}) {
        if (!Number.isInteger(reach) || reach < 1 || reach > 1024)
            throw new RangeError(`reach is from 1 to 1024 samples, not ${reach}`);
        return compare(before, now, options, 2, (numbers, planes, results, count) => {
            const vectors = new Int16Array(library.memory.buffer, results, 2 * count),
                costs = results + 4 * count;
            if (start) {
                if (start.length !== 2 && start.length !== vectors.length)
                    throw new RangeError(`start is a vector or ${count} of them, not ${start.length} numbers`);
                for (let i = 0; i < vectors.length; ++i)
                    vectors[i] = Math.max(-reach, Math.min(start[i % start.length], reach));
            }
            calls.zelt_blocks_motion(...numbers, ...planes, reach, start ? 1 : 0, results, costs);
            return { vectors: vectors.slice(), costs: costsAt(costs, count) };
        });
    }
    return { sadMap, motion };
}
