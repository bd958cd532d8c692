// SPDX-License-Identifier: MIT
// The split view: one picture left of a divider, another right of it, both in the same place and size.
import { $, bitmap, onLook, sized } from "./page.js";

const stage = $("stage");
const canvas = $("stage-canvas");
const divider = $("divider");
const sides = [document.createElement("canvas"), document.createElement("canvas")];
let split = 0.5;
let zoom = 1;
let centre = [0.5, 0.5];

const clamp = (value, least, most) => Math.min(Math.max(value, least), most);

function draw() {
    const [{ width: w, height: h }] = sides;
    const width = Math.min(stage.parentElement.clientWidth, (Math.max(innerHeight * 0.72, 240) * w) / h);
    const height = (width * h) / w;
    stage.style.width = `${width}px`;
    canvas.style.height = `${height}px`;
    const context = sized(canvas, width, height);
    const [left, top] = centre.map((c) => clamp(c - 0.5 / zoom, 0, 1 - 1 / zoom));
    sides.forEach((side, i) => {
        context.save();
        context.beginPath();
        context.rect(i ? width * split : 0, 0, i ? width * (1 - split) : width * split, height);
        context.clip();
        context.imageSmoothingEnabled = width * zoom * devicePixelRatio < side.width;
        context.imageSmoothingQuality = "high";
        context.drawImage(
            side,
            left * side.width,
            top * side.height,
            side.width / zoom,
            side.height / zoom,
            0,
            0,
            width,
            height,
        );
        context.restore();
    });
    divider.style.left = `${100 * split}%`;
    divider.setAttribute("aria-valuenow", Math.round(100 * split));
    divider.setAttribute("aria-valuetext", `${Math.round(100 * split)} % as it came`);
    stage.classList.toggle("zoomed", zoom > 1);
}

export function show(before, after) {
    bitmap(before, sides[0]);
    bitmap(after, sides[1]);
    draw();
}

export function setZoom(value) {
    zoom = value;
    draw();
}

function pan(x, y) {
    centre = [centre[0] + x, centre[1] + y].map((c) => clamp(c, 0.5 / zoom, 1 - 0.5 / zoom));
    draw();
}

function drag(event) {
    if (event.button) return;
    const pans = zoom > 1 && !divider.contains(event.target);
    const place = (e) => (e.clientX - canvas.getBoundingClientRect().left) / canvas.clientWidth;
    const grip = pans || !divider.contains(event.target) ? 0 : place(event) - split;
    let last = event;
    const move = (e) => {
        if (pans) {
            pan(
                (last.clientX - e.clientX) / canvas.clientWidth / zoom,
                (last.clientY - e.clientY) / canvas.clientHeight / zoom,
            );
            last = e;
        } else {
            split = clamp(place(e) - grip, 0, 1);
            draw();
        }
    };
    const end = () => {
        stage.removeEventListener("pointermove", move);
        stage.removeEventListener("pointerup", end);
        stage.removeEventListener("pointercancel", end);
    };
    if (!pans) move(event);
    stage.setPointerCapture(event.pointerId);
    stage.addEventListener("pointermove", move);
    stage.addEventListener("pointerup", end);
    stage.addEventListener("pointercancel", end);
}

function key(event) {
    const arrows = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] };
    const to = { Home: 0, End: 1, PageUp: split + 0.1, PageDown: split - 0.1 }[event.key];
    const arrow = arrows[event.key];
    if (event.shiftKey && arrow) pan(...arrow.map((a) => (0.1 * a) / zoom));
    else if (arrow || to !== undefined) {
        split = clamp(to ?? split + 0.02 * (arrow[0] || -arrow[1]), 0, 1);
        draw();
    } else return;
    event.preventDefault();
}

stage.addEventListener("pointerdown", drag);
divider.addEventListener("keydown", key);
onLook(draw);
