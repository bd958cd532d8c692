// SPDX-License-Identifier: MIT
// The page as a visitor uses it, in headless Chromium. SITE: its folder, SHOTS: where pictures of it go.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { createServer } from "node:http";
import { extname, join } from "node:path";
import { after, before, beforeEach, test } from "node:test";
import puppeteer from "puppeteer-core";

const { SITE, SHOTS, CHROMIUM = "/usr/bin/chromium" } = process.env;
const TYPES = {
    ".html": "text/html",
    ".js": "text/javascript",
    ".css": "text/css",
    ".wasm": "application/wasm",
    ".svg": "image/svg+xml",
};
const PATIENCE = { timeout: 30000 };

let server, origin, browser, page;
let patches = {}; // functions that change a file as it is served, by path
const complaints = [];

async function serve(request, response) {
    const path = new URL(request.url, origin).pathname;
    try {
        let body = await readFile(join(SITE, decodeURIComponent(path)));
        if (patches[path]) body = patches[path](`${body}`);
        response.writeHead(200, { "content-type": TYPES[extname(path)] ?? "application/octet-stream" }).end(body);
    } catch {
        response.writeHead(404).end();
    }
}

before(async () => {
    server = createServer(serve);
    await new Promise((ready) => server.listen(0, "127.0.0.1", ready));
    origin = `http://127.0.0.1:${server.address().port}`;
    browser = await puppeteer.launch({
        executablePath: CHROMIUM,
        args: ["--no-sandbox", "--use-fake-device-for-media-stream", "--use-fake-ui-for-media-stream"],
    });
    page = await browser.newPage();
    page.on("console", (message) => ["error", "warn"].includes(message.type()) && complaints.push(message.text()));
    page.on("pageerror", (error) => complaints.push(error.message));
    page.on("request", (request) => {
        if (!/^(data|blob):/.test(request.url()) && !request.url().startsWith(origin))
            complaints.push(`asks for ${request.url()}`);
    });
    page.on(
        "response",
        (response) => response.status() >= 400 && complaints.push(`${response.status()} ${response.url()}`),
    );
});
after(async () => {
    await browser?.close();
    server?.close();
});
beforeEach(() => complaints.splice(0));

const text = (selector) => page.$eval(selector, (element) => element.textContent);
const until = (condition, ...given) => page.waitForFunction(condition, PATIENCE, ...given);
const press = async (selector, ...keys) => {
    await page.focus(selector);
    for (const key of keys) await page.keyboard.press(key);
};
const choose = (name, value) => page.click(`label:has(input[name="${name}"][value="${value}"])`);

async function open(width = 1280, scheme = "light") {
    await page.setViewport({ width, height: width < 600 ? 844 : 900, deviceScaleFactor: width < 600 ? 2 : 1 });
    await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: scheme }]);
    await page.goto(`${origin}/index.html`);
    await agreeing(3);
    await fieldsAgree();
    await until(() => document.querySelector("#frames-note .agree.yes"));
}

/** Waits until the page has done what it was asked for. */
const settled = () => until(() => !document.querySelector("[aria-busy=true]"));

async function agreeing(steps) {
    await until((n) => document.querySelectorAll("#steps tr").length === n, steps); // may be busy only in a moment
    await settled();
    assert.equal((await page.$$("#steps tr.yes")).length, steps, await text("#steps"));
    assert.match(await text("#steps-note"), /^All \d steps/);
}
async function fieldsAgree() {
    await settled();
    assert.equal((await page.$$("#motion .agree.yes")).length, 2, await text("#motion .pair"));
}

/** Drops a file that is made in the page. */
const drop = (name, bytes, type = "") =>
    page.evaluate(
        (given, coded, kind) => {
            const data = new DataTransfer();
            data.items.add(new File([Uint8Array.from(atob(coded), (c) => c.charCodeAt(0))], given, { type: kind }));
            for (const event of ["dragenter", "dragover", "drop"])
                document.body.dispatchEvent(
                    new DragEvent(event, { dataTransfer: data, bubbles: true, cancelable: true }),
                );
        },
        name,
        Buffer.from(bytes).toString("base64"),
        type,
    );

const sampleBytes = (name) => readFile(join(SITE, "samples", name));

test("a photograph becomes each format in each size, with the native bytes", async () => {
    await open();
    const settings = [
        ["format", "yuv444"],
        ["matrix", "bt601"],
        ["format", "yuv422"],
        ["range", "full"],
        ["format", "yuv420"],
        ["chroma", "replicated"],
        ["format", "yuyv"],
        ["filter", "area"],
        ["matrix", "bt2020"],
        ["format", "yuv400"],
        ["format", "nv12"],
    ];
    const seen = new Set();
    for (const [name, value] of settings) {
        if (name === "format") await page.select("#format", value);
        else await choose(name, value);
        await agreeing(3);
        seen.add(await text("#steps tr:nth-child(2) code"));
    }
    assert.ok(seen.size >= 8, "settings change what is stored");

    const sizes = [];
    for (let i = 0; i < 7; ++i) {
        await press("#size", i ? "ArrowRight" : "Home");
        await agreeing(3);
        sizes.push(await text("#steps tr:nth-child(3) small"));
    }
    assert.deepEqual(
        sizes.map((size) => size.match(/\d+ × \d+/)[0]),
        ["150 × 100", "300 × 200", "450 × 300", "600 × 400", "750 × 500", "900 × 600", "1200 × 800"],
    );
    assert.match(await text("#steps tr:nth-child(2) .number"), /^[\d.]+ (µs|ms)$/);
    assert.deepEqual(complaints, []);
});

test("the divider and the zoom, by keys and by pointer", async () => {
    await open();
    const value = () => page.$eval("#divider", (divider) => Number(divider.getAttribute("aria-valuenow")));
    const canvas = () => page.$eval("#stage-canvas", (element) => element.toDataURL());
    await press("#divider", "Home");
    assert.equal(await value(), 0);
    const after = await canvas();
    await press("#divider", "End");
    assert.equal(await value(), 100);
    assert.notEqual(await canvas(), after);
    await press("#divider", "PageDown", "ArrowLeft");
    assert.equal(await value(), 88);
    const box = await (await page.$("#stage")).boundingBox();
    await page.mouse.move(box.x + box.width * 0.88, box.y + 30);
    await page.mouse.down();
    await page.mouse.move(box.x + box.width * 0.3, box.y + 30, { steps: 4 });
    await page.mouse.up();
    assert.ok(Math.abs((await value()) - 30) <= 1);
    await press("#zoom", "End");
    assert.equal(await text("#zoom-text"), "16 ×");
    const centre = await canvas();
    await page.keyboard.down("Shift");
    await press("#divider", "ArrowRight");
    await page.keyboard.up("Shift");
    assert.notEqual(await canvas(), centre);
    assert.deepEqual(complaints, []);
});

test("a clip: its frames, and it plays", async () => {
    await open();
    await choose("source", "clip");
    await agreeing(4);
    await press("#frame", "End");
    assert.equal(await text("#frame-text"), "16 of 16");
    await page.click("#play");
    await until(() => !/^(1|16) of 16$/.test(document.querySelector("#frame-text").textContent));
    await page.click("#play");
    await page.select("#format", "yuv422");
    await agreeing(4);
    assert.deepEqual(complaints, []);
});

test("motion for each size of block and each range, with the native vectors and costs", async () => {
    await open();
    const label = () => page.$eval("#field-satd", (canvas) => canvas.getAttribute("aria-label"));
    await press("#block", "Home");
    await press("#reach", "Home");
    for (const gap of ["1", "4"]) {
        await choose("gap", gap);
        await fieldsAgree();
        for (let i = 0; i < 5; ++i) {
            await press("#block", i ? "ArrowRight" : "Home");
            await press("#reach", i ? "ArrowRight" : "Home");
            await press("#pair", i % 2 ? "Home" : "End");
            await fieldsAgree();
        }
    }
    assert.equal(await text("#block-text"), "64 × 64");
    assert.equal(await text("#pair-text"), "12 → 16");
    assert.match(await label(), /^SATD: 9 blocks, \d of them moved, cost [\d.]+ a pixel$/);
    const drawn = () => page.$eval("#field-sad", (canvas) => canvas.toDataURL());
    const both = await drawn();
    await page.click("#costs");
    assert.notEqual(await drawn(), both);
    assert.deepEqual(complaints, []);
});

test("key frames of the samples and of a file that is dropped, by keys", async () => {
    await open();
    for (const name of ["pan.h264", "pan_hevc.mp4"]) {
        await page.$eval("#frames-note", (note) => note.replaceChildren());
        await choose("coded", name);
        await until(() => document.querySelector("#frames-note .agree.yes"));
    }
    await drop("mine.mp4", await sampleBytes("pan_h264.mp4"));
    await until(
        () =>
            document.querySelector("#coded-own-name").textContent === "mine.mp4" &&
            document.querySelector("[name=coded]:checked").value === "own",
    );
    const at = () =>
        page.$eval("#timeline", (line) => [
            line.getAttribute("aria-valuenow"),
            /Kind (key frame)/.test(line.getAttribute("aria-valuetext")),
        ]);
    await press("#timeline", "Home", "PageDown");
    assert.deepEqual(await at(), ["13", true]);
    await press("#timeline", "ArrowRight");
    assert.deepEqual(await at(), ["14", false]);
    await press("#timeline", "End", "PageUp");
    assert.deepEqual(await at(), ["49", true]);
    assert.match(await text("#frames-note"), /50 frames, 5 key frames, at most 12 frames from one to the next/);
    assert.deepEqual(complaints, []);
});

test("what is broken gives a sentence, and the page goes on", async () => {
    await open();
    const [mp4, h264, y4m, png] = await Promise.all(
        ["pan_h264.mp4", "pan.h264", "pan420.y4m", "coffee.png"].map(sampleBytes),
    );
    const moov = mp4.indexOf("moov");
    const noSizes = Buffer.from(mp4);
    noSizes.writeUInt32BE(0x7fffffff, mp4.indexOf("stsz") + 12);
    const cases = [
        ["frames", "cut.mp4", mp4.subarray(0, moov - 4), /tables/],
        ["frames", "cut-in-tables.mp4", mp4.subarray(0, moov + 400), /broken|cut off|incomplete/],
        ["frames", "count.mp4", noSizes, /entries/],
        ["frames", "empty.mp4", "", /no picture/],
        ["frames", "text.h264", "This is not a video.", /no picture/],
        ["frames", "no-picture.h264", h264.subarray(0, 30), /no picture/],
        ["convert", "header.y4m", y4m.subarray(0, 40), /no Y4M|size/],
        ["convert", "no-frame.y4m", y4m.subarray(0, 2000), /no whole frame/],
        ["convert", "huge.y4m", "YUV4MPEG2 W999999 H999999\nFRAME\n", /16384/],
        ["convert", "cut.png", png.subarray(0, 50), /cannot read/],
    ];
    for (const [part, name, bytes, sentence] of cases) {
        await page.$eval(`#${part}-message`, (message) => {
            message.hidden = true;
        });
        await drop(name, bytes, name.endsWith("png") ? "image/png" : "");
        await until((id) => !document.getElementById(id).hidden, `${part}-message`);
        const said = await text(`#${part}-message`);
        assert.match(said, sentence, name);
        assert.ok(said.startsWith(`${name}: `), said);
    }
    await drop("half.y4m", y4m.subarray(0, y4m.length / 2));
    await until(() => /ends within frame 8/.test(document.querySelector("#convert-message").textContent));
    assert.equal(await text("#frame-text"), "1 of 7");
    await choose("source", "photo");
    await agreeing(3);
    assert.equal(await page.$eval("#convert-message", (message) => message.hidden), true);
    assert.deepEqual(complaints, []);
});

test("an own picture, and the camera", async () => {
    await open();
    const input = await page.$("#open");
    await input.uploadFile(join(SITE, "samples/coffee.png"));
    await until(() => document.querySelectorAll("#steps td.none").length === 3);
    assert.equal(await text("#own-name"), "coffee.png");
    await choose("source", "camera");
    const shot = () => page.$eval("#stage-canvas", (canvas) => canvas.toDataURL());
    await until(() => document.querySelector("#pair-text").textContent === "camera");
    const first = await shot();
    await until((before) => document.querySelector("#stage-canvas").toDataURL() !== before, first);
    await choose("source", "photo");
    await agreeing(3);
    assert.deepEqual(complaints, []);
});

test("a digest that differs is told", async () => {
    patches = { "/digests.json": (body) => body.replace(/"photo":\{"source":\["\w{4}/, '"photo":{"source":["0000') };
    await page.goto(`${origin}/index.html`);
    await settled();
    patches = {};
    assert.match(await text("#steps tr.no"), /^Picture.*differs$/);
    assert.match(await text("#steps-note"), /^1 of 3 steps differ/);
});

test("work that does not end is given up, and the page goes on", async () => {
    const hang = 'addEventListener("message", ({ data }) => { while (data.file?.name === "endless.mp4"); });\n';
    patches = {
        "/worker.js": (body) => hang + body,
        "/client.js": (body) => body.replace(/PATIENCE = \d+/, "PATIENCE = 1500"),
    };
    await open();
    patches = {};
    await choose("source", "clip");
    await agreeing(4);
    await drop("endless.mp4", "");
    await until(() => /took more than/.test(document.querySelector("#frames-message").textContent));
    await until(() => document.querySelectorAll("#steps tr.yes").length === 3); // the photograph again
    await choose("coded", "pan.h264");
    await settled();
    await choose("source", "clip");
    await agreeing(4);
    assert.deepEqual(complaints, []);
});

test("without SIMD the bytes are the same", async () => {
    patches = { "/worker.js": (body) => `WebAssembly.validate = () => false;\n${body}` };
    await open();
    patches = {};
    assert.match(await text("#engine"), /without SIMD/);
});

test("every control has a name and is reached by Tab; nothing is wider than the screen", async () => {
    for (const [width, scheme] of [
        [1280, "light"],
        [1280, "dark"],
        [390, "light"],
        [390, "dark"],
        [320, "light"],
    ]) {
        await open(width, scheme);
        await choose("source", "clip");
        await agreeing(4);
        const { scroll, inner } = await page.evaluate(() => ({
            scroll: document.documentElement.scrollWidth,
            inner: innerWidth,
        }));
        assert.ok(scroll <= inner, `${scroll} pixels on a screen of ${width}`);
        if (SHOTS) await page.screenshot({ path: join(SHOTS, `${width}-${scheme}.png`), fullPage: true });
    }
    const reached = new Set();
    await page.evaluate(() => scrollTo(0, 0));
    for (let i = 0; i < 60; ++i) {
        await page.keyboard.press("Tab");
        reached.add(await page.evaluate(() => document.activeElement.id || document.activeElement.name));
    }
    for (const id of [
        "source",
        "open",
        "divider",
        "play",
        "frame",
        "format",
        "matrix",
        "range",
        "chroma",
        "filter",
        "size",
        "zoom",
        "pair",
        "gap",
        "block",
        "reach",
        "arrows",
        "costs",
        "coded",
        "open-coded",
        "timeline",
    ])
        assert.ok(reached.has(id), `${id} is not reached`);
    const tree = await page.accessibility.snapshot();
    const nameless = [];
    const walk = (node) => {
        if (["slider", "button", "radio", "checkbox", "combobox", "img", "link"].includes(node.role) && !node.name)
            nameless.push(node);
        node.children?.forEach(walk);
    };
    walk(tree);
    assert.deepEqual(nameless, []);
});
