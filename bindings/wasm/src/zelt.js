// SPDX-License-Identifier: MIT
// The library in an instance of the module.
import { bitReaders } from "./bits.js";
import { blockFunctions } from "./blocks.js";
import { converters } from "./convert.js";
import { digests } from "./digest.js";
import { formats } from "./formats.js";
import { mediaFunctions } from "./media.js";
import { Library } from "./memory.js";
import { pictures } from "./pictures.js";

/** A module of one function, which makes a vector: valid if the engine knows them */
// prettier-ignore
const VECTORS = Uint8Array.of(
    0, 97, 115, 109, 1, 0, 0, 0, 1, 5, 1, 96, 0, 1, 123, 3, 2, 1, 0, 10, 8, 1, 6, 0, 65, 0, 253, 15, 11);

/** load() of the package, over a function that reads a file beside the scripts */
export const loader =
    (read) =>
    async ({ simd = WebAssembly.validate(VECTORS), module } = {}) => {
        const compiled = module ?? (await read(simd ? "zelt-simd.wasm" : "zelt.wasm"));
        const made = await WebAssembly.instantiate(compiled, { env: { emscripten_notify_memory_growth() {} } });
        const library = new Library(made.instance ?? made); // of bytes there is a compiled module, too
        return {
            kernels: library.text(library.calls.zelt_kernels()),
            memory: library.memory,
            formats,
            Picture: pictures(library),
            ...converters(library),
            ...blockFunctions(library),
            ...digests(library),
            BitReader: bitReaders(library),
            ...mediaFunctions(library),
        };
    };
