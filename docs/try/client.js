// SPDX-License-Identifier: MIT
// The page's side of the worker.

const PATIENCE = 20000; // milliseconds, after which a call is given up and the worker with it

let worker = null;
let last = 0;
const waiting = new Map();
const restarted = new EventTarget();

function start() {
    worker = new Worker("worker.js", { type: "module" });
    worker.addEventListener("message", ({ data: { id, result, error } }) => {
        const call = waiting.get(id);
        waiting.delete(id);
        clearTimeout(call?.timer);
        if (error === undefined) call?.resolve(result);
        else call?.reject(new Error(error));
    });
    worker.addEventListener("error", () =>
        giveUp("The library cannot be loaded. This page is to come from a server, as modules do."),
    );
}

function giveUp(sentence) {
    worker.terminate();
    worker = null;
    for (const { reject, timer } of waiting.values()) {
        clearTimeout(timer);
        reject(new Error(sentence));
    }
    waiting.clear();
}

/** Calls the worker; rejects with an Error whose message is a sentence. */
export function ask(call, given = {}, transfer = []) {
    if (!worker) start();
    return new Promise((resolve, reject) => {
        const timer = setTimeout(async () => {
            giveUp(`It took more than ${PATIENCE / 1000} seconds and was stopped.`);
            await ask("init");
            restarted.dispatchEvent(new Event("restart"));
        }, PATIENCE);
        waiting.set(++last, { resolve, reject, timer });
        worker.postMessage({ id: last, call, ...given }, transfer);
    });
}

/** Calls a function whenever the worker has lost what it was given. */
export const onRestart = (run) => restarted.addEventListener("restart", run);

/** A function that runs an asynchronous one once at a time: of calls meanwhile only the last is kept. Returns whether
 *  all is done that was asked for; false at once if somebody else waits for it. */
export function latest(run) {
    let running = false;
    let again = false;
    return async function next() {
        if (running) {
            again = true;
            return false;
        }
        running = true;
        try {
            do {
                again = false;
                await run();
            } while (again);
        } finally {
            running = false;
        }
        return true;
    };
}
