// SPDX-License-Identifier: MIT
// The package in a browser.
import { loader } from "./src/zelt.js";

const modules = {
    "zelt.wasm": new URL("zelt.wasm", import.meta.url),
    "zelt-simd.wasm": new URL("zelt-simd.wasm", import.meta.url),
};

export const load = loader(async (name) => {
    const answer = await fetch(modules[name]);
    if (!answer.ok) throw new Error(`${modules[name]} cannot be fetched: ${answer.status} ${answer.statusText}`);
    return answer.arrayBuffer();
});
