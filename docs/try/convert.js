// SPDX-License-Identifier: MIT
// The first part: pictures and frames, converted and resized.
import { ask, latest, onRestart } from "./client.js";
import { $, busy, complain, element, milliseconds, native, shortDigest, verdict } from "./page.js";
import { setZoom, show } from "./stage.js";

const MOST_PIXELS = 25e6;
const SAMPLES = { photo: "coffee.png", clip: "pan420.y4m" };
const NAMES = {
    rgba8888: "RGBA",
    yuv444: "YUV 4:4:4",
    yuv422: "YUV 4:2:2",
    yuv420: "YUV 4:2:0",
    nv12: "NV12",
    yuyv: "YUYV",
    yuv400: "Grey",
    p010: "YUV 4:2:0, 10 bits",
    p210: "YUV 4:2:2, 10 bits",
    p410: "YUV 4:4:4, 10 bits",
    bt601: "BT.601",
    bt709: "BT.709",
    bt2020: "BT.2020",
};

const controls = $("convert-controls");
let source = ""; // of what is converted: the value of its button
let now = null; // what is converted: {kind: "picture" or "clip", width, height, and what a clip has}
let own = null; // the visitor's file
let clipListener = () => {};
let pairListener = () => {};
let playing = 0;
let camera = null;
let settled = 0;
let turn = 0;
let version = 0; // of what is chosen, and of all settings: answers to earlier ones are not shown

/** Calls a function with each clip that is opened, another with each pair of frames of the camera. */
export function onClip(clip, pair) {
    [clipListener, pairListener] = [clip, pair];
}

const choice = (name) => controls.elements[name].value;
const percent = () => native.sizes[$("size").value];
const scaled = (length) => Math.max(1, Math.floor((length * percent() + 50) / 100));

function options() {
    const colour = { matrix: choice("matrix"), range: choice("range") };
    return {
        stored: { format: choice("format"), ...colour },
        shown: {
            size: [scaled(now.width), scaled(now.height)],
            chroma: choice("chroma"),
            filter: choice("filter"),
            ...colour,
        },
    };
}

/** The native digests of the steps, or nothing where the picture is the visitor's own. */
function nativeDigests() {
    const digests = native.convert[source];
    if (!digests) return [];
    const colour = `${choice("matrix")} ${choice("range")}`;
    const format = choice("format");
    return [
        ...digests.source,
        digests.stored[format][colour],
        digests.shown[format][colour][`${choice("chroma")} ${choice("filter")}`][$("size").value],
    ];
}

function describe({ format, width, height }, i, count) {
    const size = `${width} × ${height}`;
    const frames =
        now.count > 1 && source === "clip" ? `${now.count} frames` : now.kind === "clip" ? "Frame" : "Picture";
    if (i === count - 1) return ["Shown", `RGBA, ${size}`];
    if (i === count - 2) return ["Stored", `${NAMES[format]}, ${NAMES[choice("matrix")]}, ${choice("range")}`];
    return i ? ["As RGBA", size] : [frames, `${NAMES[format]}, ${size}`];
}

function fillTable(steps, digests) {
    let agreeing = 0;
    $("steps").replaceChildren(
        ...steps.map((step, i) => {
            const [name, detail] = describe(step, i, steps.length);
            const row = element("tr");
            const chip = element("span");
            const title = element("th", "", name, element("small", "", detail));
            title.scope = "row";
            const agrees = verdict(chip, step.digest, digests[i]);
            if (digests[i]) row.className = agrees ? "yes" : "no";
            agreeing += Number(Boolean(agrees));
            row.append(
                title,
                element("td", "number", step.time === undefined ? "" : milliseconds(step.time)),
                element("td", "here", element("code", "", shortDigest(step.digest))),
                digests[i]
                    ? element("td", "native", element("code", "", digests[i]))
                    : element("td", "native none", "–"),
                element("td", "verdict", chip),
            );
            return row;
        }),
    );
    $("steps-note").textContent = !digests.length
        ? "There are native digests of the photograph and of the clip, not of a picture of your own."
        : agreeing === steps.length
          ? `All ${agreeing} steps give the bytes of the native library. Times are of one frame.`
          : `${steps.length - agreeing} of ${steps.length} steps differ from the native library.`;
}

async function run(details) {
    if (!now) return;
    const mine = { turn, version };
    const digests = nativeDigests();
    const given = { from: now.kind, frame: Number($("frame").value), options: options() };
    if (details) Object.assign(given, { timing: true, digests: source === "clip" ? "all" : "one" });
    try {
        const { before, after, steps } = await ask("convert", given);
        if (mine.turn !== turn) return;
        complain("convert-message", now.note);
        show(before, after);
        const { stored, shown } = given.options;
        $("after-tag").textContent = `${NAMES[stored.format]}, ${shown.size.join(" × ")}`;
        if (details && mine.version === version) fillTable(steps, digests);
    } catch (error) {
        if (mine.turn === turn) complain("convert-message", error.message);
    }
    if (details && mine.version === version) busy("convert", false);
}

const draw = latest(() => run(false));
const detail = latest(() => run(true));

/** Shows at once, and times and digests when nothing has changed for a moment. */
function refresh() {
    ++version;
    busy("convert", true);
    $("size-text").textContent = now ? `${percent()} %, ${scaled(now.width)} × ${scaled(now.height)}` : "";
    draw();
    clearTimeout(settled);
    settled = setTimeout(detail, 120);
}

// ------------------------------------------------------------------------------------------------------------ sources

async function openPicture(blob) {
    let decoded;
    try {
        decoded = await createImageBitmap(blob, { colorSpaceConversion: "none", premultiplyAlpha: "none" });
    } catch {
        throw new Error("The browser cannot read it as a picture: it is broken, or of a kind that it does not know.");
    }
    const { width, height } = decoded;
    if (width * height > MOST_PIXELS)
        throw new Error(`The picture is ${width} × ${height}; this page takes up to 25 million pixels.`);
    return pixelsOf(decoded, width, height);
}

function pixelsOf(drawable, width, height) {
    const context = new OffscreenCanvas(width, height).getContext("2d", { willReadFrequently: true });
    context.drawImage(drawable, 0, 0);
    return { data: context.getImageData(0, 0, width, height).data, width, height };
}

const sample = async (name) => (await fetch(`samples/${name}`)).blob();

/** What is to be converted: {image}, or {file} of a clip */
const materials = {
    photo: async () => ({ image: await openPicture(await sample(SAMPLES.photo)) }),
    clip: async () => ({ file: await sample(SAMPLES.clip), sample: true }),
    camera: openCamera,
    own: () => own,
};

async function give({ image, file, ...more }) {
    if (image) {
        await ask("picture", { image });
        return { kind: "picture", width: image.width, height: image.height };
    }
    const clip = { kind: "clip", ...(await ask("clip", { file })), ...more };
    clipListener(clip);
    return clip;
}

const check = (value) => {
    document.querySelector(`input[name=source][value="${value}"]`).checked = true;
};

async function choose(wanted) {
    const mine = ++turn;
    ++version;
    busy("convert", true);
    stopPlaying();
    stopCamera();
    try {
        const material = await materials[wanted]();
        if (mine !== turn) return;
        const given = await give(material);
        if (mine !== turn) return;
        [source, now] = [wanted, given];
        $("transport").hidden = !(now.count > 1);
        $("frame").max = (now.count ?? 1) - 1;
        $("frame").value = 0;
        frameText();
        refresh();
    } catch (error) {
        if (mine !== turn) return;
        busy("convert", false);
        complain("convert-message", error.message);
        if (source) check(source);
    }
}

/** Opens a picture or a Y4M clip of the visitor. */
export async function openOwn(file) {
    try {
        if (/\.y4m$/i.test(file.name)) {
            await ask("clip", { file });
            own = { file };
        } else {
            own = { image: await openPicture(file) };
        }
    } catch (error) {
        complain("convert-message", `${file.name}: ${error.message}`);
        return;
    }
    $("own-choice").hidden = false;
    $("own-name").textContent = file.name;
    check("own");
    await choose("own");
}

/** The clip of which motion is shown before anybody has chosen one. */
export async function start() {
    await give(await materials.clip());
    await choose("photo");
}

// -------------------------------------------------------------------------------------------------- clips and cameras

function frameText() {
    $("frame-text").textContent = `${Number($("frame").value) + 1} of ${now.count}`;
}

function stopPlaying() {
    clearInterval(playing);
    playing = 0;
    $("play").textContent = "Play";
    $("play").setAttribute("aria-pressed", "false");
}

function play() {
    if (playing) {
        stopPlaying();
        return;
    }
    playing = setInterval(
        () => {
            $("frame").value = (Number($("frame").value) + 1) % now.count;
            frameText();
            draw();
        },
        1000 / Math.min(now.rate, 60),
    );
    $("play").textContent = "Pause";
    $("play").setAttribute("aria-pressed", "true");
}

const stop = (stream) => stream.getTracks().forEach((track) => track.stop());

function stopCamera() {
    if (camera) stop(camera);
    camera = null;
}

async function openCamera() {
    const mine = turn;
    const stream = await navigator.mediaDevices.getUserMedia({ video: { width: { ideal: 640 } } }).catch(() => {
        throw new Error("There is no camera, or this page may not use it.");
    });
    if (mine !== turn) {
        // something else was chosen meanwhile
        stop(stream);
        return null;
    }
    camera = stream;
    const video = document.createElement("video");
    Object.assign(video, { srcObject: stream, muted: true, playsInline: true });
    await video.play();
    const frame = () => pixelsOf(video, video.videoWidth, video.videoHeight);
    let before = null;
    let count = 0;
    const tick = async () => {
        if (mine !== turn) return;
        const image = frame();
        if (before) pairListener([before, image]);
        before = image;
        await ask("picture", { image });
        await run(count++ % 10 === 0);
        requestAnimationFrame(tick);
    };
    requestAnimationFrame(tick);
    return { image: frame() };
}

$("camera-choice").hidden = !navigator.mediaDevices?.getUserMedia;
$("source").addEventListener("change", ({ target }) => choose(target.value));
$("open").addEventListener("change", ({ target }) => {
    if (target.files[0]) openOwn(target.files[0]);
    target.value = "";
});
controls.addEventListener("input", ({ target }) => {
    if (target.id !== "zoom") refresh();
});
controls.addEventListener("submit", (event) => event.preventDefault());
$("frame").addEventListener("input", () => {
    frameText();
    refresh();
});
$("play").addEventListener("click", play);
$("size").max = native.sizes.length - 1;
const zoomTo = () => {
    setZoom(2 ** $("zoom").value);
    $("zoom-text").textContent = `${2 ** $("zoom").value} ×`;
};
$("zoom").addEventListener("input", zoomTo);
zoomTo();
onRestart(() => {
    check("photo");
    start();
});
