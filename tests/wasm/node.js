// SPDX-License-Identifier: MIT
// Comes first in programs that node runs: they see its environment, and read their code from a file. emscripten 3.1
// would have it by node's fetch, which takes no paths.
globalThis.fetch = undefined;
Module['preRun'] = () => {
    if (typeof ENV !== 'undefined') Object.assign(ENV, process.env);
};
