// SPDX-License-Identifier: MIT
// Bit fields and Exp-Golomb codes, most significant bit first.
import { Owner } from "./memory.js";

const RECORD = 28,
    LEFT = 1,
    CURRENT = 2,
    BEGIN = 4; // bytes of ZELT_BSR, and words in it

export function bitReaders(library) {
    const { calls } = library;

    return class BitReader extends Owner {
        #length;

        constructor(data) {
            const held = library.hold(data),
                { length } = held();
            if (length >= 2 ** 28)
                throw new RangeError("a reader takes less than 2^28 bytes at once: pass a part of them");
            super(library, RECORD + length);
            this.#length = length;
            library.bytes.set(held(), this.address + RECORD);
            calls.zelt_bsr_init(this.address, this.address + RECORD, length, 0);
        }

        #word(index) {
            return library.words[this.address / 4 + index];
        }

        get position() {
            return (this.#word(CURRENT) - this.#word(BEGIN)) * 8 - this.#word(LEFT);
        }

        get bitsLeft() {
            return this.#length * 8 - this.position;
        }

        #need(count, most = 32) {
            if (!Number.isInteger(count) || count < 0 || count > most)
                throw new RangeError(`from 0 to ${most} bits can be read at once, not ${count}`);
            const left = this.bitsLeft;
            if (count > left) throw new RangeError(`${count} bits are wanted and ${left} left`);
        }

        read(count) {
            this.#need(count);
            return calls.zelt_bsr_read(this.address, count) >>> 0;
        }

        peek(count) {
            this.#need(count);
            return count && calls.zelt_bsr_peek(this.address, count) >>> 0;
        }

        skip(count) {
            this.#need(count, Infinity);
            for (; count > 0; count -= 32) calls.zelt_bsr_skip(this.address, Math.min(count, 32));
        }

        align() {
            this.skip(-this.position & 7);
        }

        readUe() {
            const start = this.position,
                record = this.address / 4;
            const before = library.words.slice(record, record + CURRENT + 1);
            const value = calls.zelt_bsr_read_ue(this.address) >>> 0;
            const length = 63 - 2 * Math.clz32(value + 1);
            if (this.position - start === length && length <= this.#length * 8 - start) return value;
            library.words.set(before, record);
            const left = this.bitsLeft;
            if (left > 15 && !this.peek(16)) throw new RangeError("an Exp-Golomb code is longer than 31 bits");
            throw new RangeError(`the data ends within an Exp-Golomb code, of which it has ${left} bits`);
        }

        readSe() {
            const index = this.readUe();
            return index % 2 ? (index + 1) / 2 : 0 - index / 2; // not -0
        }

        readTe(largest) {
            if (!(largest >= 1)) throw new RangeError(`the largest value of an element is at least 1, not ${largest}`);
            return largest === 1 ? 1 - this.read(1) : this.readUe();
        }
    };
}
