// SPDX-License-Identifier: MIT
// What the parts of the page share: elements, words, canvases.

export const $ = (id) => document.getElementById(id);

/** An element with a class and children. */
export function element(tag, className = "", ...children) {
    const made = document.createElement(tag);
    if (className) made.className = className;
    made.append(...children);
    return made;
}

/** Shows a sentence about what failed, or none. */
export function complain(id, sentence = "") {
    $(id).textContent = sentence;
    $(id).hidden = !sentence;
}

export const milliseconds = (time) =>
    time < 0.0995 ? `${(time * 1000).toFixed(time < 0.00995 ? 1 : 0)} µs` : `${time.toFixed(time < 9.95 ? 2 : 1)} ms`;
export const shortDigest = (digest) => digest.slice(0, 16);

/** Tells of a part of the page that it is at work, or not any more. */
export const busy = (id, is) => $(id).setAttribute("aria-busy", is);

/** Says whether a digest is the native one, if there is one. */
export function verdict(chip, digest, native) {
    const agrees = native && digest.startsWith(native);
    chip.textContent = native ? (agrees ? "✓ agrees" : "✗ differs") : "";
    chip.className = `agree ${native ? (agrees ? "yes" : "no") : ""}`;
    return agrees;
}

/** The value of a property of the style sheet. */
export const style = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();

/** Sets a canvas to as many pixels as it takes on the screen; returns its context, in units of the style sheet. */
export function sized(canvas, width, height) {
    const scale = devicePixelRatio || 1;
    const [w, h] = [Math.max(1, Math.round(width * scale)), Math.max(1, Math.round(height * scale))];
    if (canvas.width !== w || canvas.height !== h) [canvas.width, canvas.height] = [w, h];
    const context = canvas.getContext("2d");
    context.setTransform(scale, 0, 0, scale, 0, 0);
    context.clearRect(0, 0, width, height);
    return context;
}

/** A canvas of a picture's own pixels, to draw from. */
export function bitmap({ data, width, height }, canvas = document.createElement("canvas")) {
    [canvas.width, canvas.height] = [width, height];
    canvas.getContext("2d").putImageData(new ImageData(data, width, height), 0, 0);
    return canvas;
}

/** Calls a function when the page's width, its resolution or its colours change. */
export function onLook(run) {
    new ResizeObserver(run).observe(document.querySelector("main"));
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", run);
}

/** The digests that the native library gives, and the steps of the sliders for which there are some. */
export const native = await (await fetch("digests.json")).json();
