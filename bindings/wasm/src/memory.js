// SPDX-License-Identifier: MIT
// An instance of the module and its memory, in which everything lies that the library reads and writes.

/** The bytes of a view or a buffer, without a copy */
export function bytesOf(data) {
    const { buffer, byteOffset, byteLength } = ArrayBuffer.isView(data) ? data : { buffer: data };
    const isBuffer = [globalThis.ArrayBuffer, globalThis.SharedArrayBuffer].some(
        (Kind) => Kind && buffer instanceof Kind,
    );
    if (!isBuffer)
        throw new TypeError(
            `bytes are a typed array, a DataView or a buffer, not ${data === null ? null : typeof data}`,
        );
    try {
        return new Uint8Array(buffer, byteOffset, byteLength);
    } catch {
        throw new TypeError(
            "this view is detached, as those of the module's memory are after it has grown: take it anew",
        );
    }
}

export class Library {
    #bytes;
    #words;
    /** Frees what nobody freed */
    forgotten = new FinalizationRegistry((address) => this.calls.free(address));

    constructor({ exports }) {
        exports._initialize?.();
        this.calls = exports;
        this.memory = exports.memory;
    }

    #view() {
        if (this.#bytes?.buffer === this.memory.buffer) return; // another one if the memory has grown
        this.#bytes = new Uint8Array(this.memory.buffer);
        this.#words = new Int32Array(this.memory.buffer);
    }

    get bytes() {
        this.#view();
        return this.#bytes;
    }

    /** The same as signed words, which records consist of */
    get words() {
        this.#view();
        return this.#words;
    }

    view(address, length) {
        return new Uint8Array(this.memory.buffer, address, length);
    }

    text(address) {
        const { bytes } = this;
        return String.fromCharCode(...bytes.subarray(address, bytes.indexOf(0, address)));
    }

    allocate(size) {
        const address = size < 2 ** 31 ? this.calls.malloc(size || 1) : 0;
        if (!address) throw new RangeError(`the module's memory, at most 2 GiB, has no room for ${size} bytes`);
        return address;
    }

    /** What `use` returns, which has memory of that size meanwhile */
    borrow(size, use) {
        const address = this.allocate(size);
        try {
            return use(address);
        } finally {
            this.calls.free(address);
        }
    }

    /** A caller's bytes whenever they are asked for: those in the module have another buffer after it has grown */
    hold(data) {
        const bytes = bytesOf(data),
            { byteOffset, length } = bytes;
        return bytes.buffer === this.memory.buffer ? () => this.view(byteOffset, length) : () => bytes;
    }

    /** What `use` returns, which has a copy of bytes meanwhile */
    lend(data, use) {
        const held = this.hold(data),
            { length } = held();
        return this.borrow(length, (address) => {
            this.bytes.set(held(), address);
            return use(address, length);
        });
    }
}

/** An object with memory of its own */
export class Owner {
    #library;
    #address;

    constructor(library, size) {
        this.#library = library;
        this.#address = library.allocate(size);
        library.forgotten.register(this, this.#address, this);
    }

    /** Where it begins */
    get address() {
        if (!this.#address) throw new TypeError(`this ${this.constructor.name} has been freed`);
        return this.#address;
    }

    free() {
        if (!this.#address) return;
        this.#library.forgotten.unregister(this);
        this.#library.calls.free(this.#address);
        this.#address = 0;
    }
}
if (Symbol.dispose) Owner.prototype[Symbol.dispose] = Owner.prototype.free;
