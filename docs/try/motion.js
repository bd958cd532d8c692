// SPDX-License-Identifier: MIT
// The second part: where the blocks of a frame come from, and what they cost.
import { ask, latest } from "./client.js";
import { $, bitmap, busy, complain, milliseconds, native, onLook, shortDigest, sized, verdict } from "./page.js";

const METRICS = ["sad", "satd"];
const HEAT = [
    [255, 220, 120],
    [244, 132, 48],
    [200, 30, 70],
    [110, 10, 90],
];

let clip = null;
let pair = null;
let shown = null;

/** The settings as they are now. What is shown has those it was made with. */
const block = () => native.blocks[$("block").value];
const reach = () => native.reaches[$("reach").value];
const gap = () => Number($("motion-controls").elements.gap.value);

/** The colour of a part of the scale, and how much it covers. */
function heat(part) {
    const place = Math.min(Math.max(part, 0), 1) * (HEAT.length - 1);
    const i = Math.min(Math.floor(place), HEAT.length - 2);
    const colour = HEAT[i].map((c, k) => Math.round(c + (HEAT[i + 1][k] - c) * (place - i)));
    return `rgb(${colour.join(" ")} / ${Math.min(part * 4, 1) * 0.7})`;
}

/** What nearly all blocks stay below, a pixel: the end of the scale, one for both metrics to compare them. */
function most(fields, size) {
    const ends = fields.map(({ costs }) => Float64Array.from(costs).sort()[Math.floor((costs.length - 1) * 0.97)]);
    return Math.max(Math.max(...ends) / size ** 2, 1);
}

function arrow(context, fromX, fromY, toX, toY, scale) {
    const angle = Math.atan2(toY - fromY, toX - fromX);
    const head = Math.min(2 + 1.2 * scale, Math.hypot(toX - fromX, toY - fromY) * 0.5);
    context.moveTo(fromX, fromY);
    context.lineTo(toX, toY);
    for (const side of [-0.5, 0.5]) {
        context.moveTo(toX, toY);
        context.lineTo(toX - head * Math.cos(angle + side), toY - head * Math.sin(angle + side));
    }
}

function drawField(canvas, { width, height, picture, end, size }, field) {
    const w = canvas.parentElement.clientWidth;
    const h = (w * height) / width;
    const scale = w / width;
    canvas.style.height = `${h}px`;
    const context = sized(canvas, w, h);
    context.imageSmoothingEnabled = true;
    context.drawImage(picture, 0, 0, w, h);
    const each = (draw) => {
        for (let y = 0, i = 0; y < field.rows; ++y)
            for (let x = 0; x < field.columns; ++x, ++i) draw(x * size, y * size, i);
    };
    if ($("costs").checked)
        each((x, y, i) => {
            context.fillStyle = heat(field.costs[i] / size ** 2 / end);
            context.fillRect(x * scale, y * scale, size * scale, size * scale);
        });
    if (!$("arrows").checked) return;
    context.beginPath();
    each((x, y, i) => {
        const [dx, dy] = field.vectors.subarray(2 * i, 2 * i + 2);
        const toX = Math.min(x + size / 2, width) * scale;
        const toY = Math.min(y + size / 2, height) * scale;
        if (dx || dy) arrow(context, toX + dx * scale, toY + dy * scale, toX, toY, scale);
    });
    context.lineCap = "round";
    for (const [colour, line] of [
        ["rgb(0 0 0 / 60%)", 3],
        ["#fff", 1.5],
    ]) {
        context.strokeStyle = colour;
        context.lineWidth = line;
        context.stroke();
    }
}

function drawAll() {
    if (!shown) return;
    for (const field of shown.fields) drawField($(`field-${field.metric}`), shown, field);
    const scale = sized($("scale"), 180, 8);
    for (let x = 0; x < 180; ++x) {
        scale.fillStyle = heat(x / 180);
        scale.fillRect(x, 0, 1, 8);
    }
    $("scale-most").textContent = `${shown.end.toFixed(1)} and more a pixel`;
}

function countMoved(vectors, others = new Int16Array(vectors.length)) {
    let count = 0;
    for (let i = 0; i < vectors.length; i += 2)
        count += Number(vectors[i] !== others[i] || vectors[i + 1] !== others[i + 1]);
    return count;
}

function describe({ fields, size, searched, digests }) {
    for (const { metric, vectors, costs, time, digest } of fields) {
        const cost = (costs.reduce((a, b) => a + b, 0) / costs.length / size ** 2).toFixed(2);
        const chip = $(`${metric}-agree`);
        $(`${metric}-time`).textContent = `${milliseconds(time)} a frame`;
        $(`${metric}-cost`).textContent = `${cost} a pixel`;
        $(`${metric}-digest`).textContent = shortDigest(digest);
        verdict(chip, digest, digests?.[metric]);
        chip.title = digests ? `MD5 of the native vectors and costs: ${digests[metric]}` : "";
        $(`field-${metric}`).setAttribute(
            "aria-label",
            `${metric.toUpperCase()}: ${costs.length} blocks, ${countMoved(vectors)} of them moved, ` +
                `cost ${cost} a pixel`,
        );
    }
    const [sad, satd] = fields;
    $("motion-note").textContent = searched
        ? `${sad.costs.length} blocks; SATD chooses another vector for ${countMoved(sad.vectors, satd.vectors)} of them.`
        : `${sad.costs.length} blocks, compared where they are.`;
}

async function run() {
    if (!clip && !pair) return;
    const frame = Number($("pair").value);
    const from = pair ? { images: pair } : { frames: [frame, frame + gap()] };
    const made = { size: block(), searched: reach() > 0 };
    if (!pair && clip.sample)
        made.digests = Object.fromEntries(
            METRICS.map((metric) => [metric, native.motion[metric][gap()][block()][reach()][frame]]),
        );
    try {
        const { width, height, luma, fields } = await ask("motion", {
            ...from,
            block: block(),
            reach: reach(),
            metrics: METRICS,
        });
        const grey = new Uint8ClampedArray(4 * width * height);
        luma.forEach((value, i) => {
            grey.fill(value, 4 * i, 4 * i + 3);
            grey[4 * i + 3] = 255;
        });
        shown = {
            ...made,
            width,
            height,
            fields,
            end: most(fields, made.size),
            picture: bitmap({ data: grey, width, height }),
        };
        complain("motion-message");
        drawAll();
        describe(shown);
    } catch (error) {
        complain("motion-message", error.message);
    }
}

const search = latest(run);
async function refresh() {
    busy("motion", true);
    if (await search()) busy("motion", false);
}

function texts() {
    if (clip) $("pair").max = clip.count - 1 - gap();
    $("pair-text").textContent = pair
        ? "camera"
        : `${Number($("pair").value) + 1} → ${Number($("pair").value) + 1 + gap()}`;
    $("block-text").textContent = `${block()} × ${block()}`;
    $("reach-text").textContent = reach() ? `± ${reach()}` : "no search";
}

/** Shows the motion of a clip. */
export function showClip(opened) {
    pair = null;
    clip = opened;
    if (clip.count < 2) {
        complain("motion-message", "The clip has one frame; motion is between two.");
        return;
    }
    $("pair").disabled = false;
    for (const { value, parentElement } of $("motion-controls").elements.gap)
        parentElement.hidden = value >= clip.count;
    if (gap() >= clip.count) $("motion-controls").elements.gap.value = "1";
    texts();
    refresh();
}

/** Shows the motion between two frames of a camera. */
export function showPair(images) {
    pair = images;
    $("pair").disabled = true;
    texts();
    refresh();
}

$("block").max = native.blocks.length - 1;
$("reach").max = native.reaches.length - 1;
$("motion-controls").addEventListener("input", ({ target }) => {
    texts();
    if (target.type === "checkbox") drawAll();
    else refresh();
});
$("motion-controls").addEventListener("submit", (event) => event.preventDefault());
onLook(drawAll);
texts();
