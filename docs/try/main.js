// SPDX-License-Identifier: MIT
import { ask } from "./client.js";
import * as convert from "./convert.js";
import * as frames from "./frames.js";
import * as motion from "./motion.js";
import { $ } from "./page.js";

/** Gives a file to the part that can read it. */
async function open(file) {
    const picture = file.type.startsWith("image/") || /\.y4m$/i.test(file.name);
    $(picture ? "convert" : "frames").scrollIntoView();
    await (picture ? convert : frames).openOwn(file);
}

// While files are over the page, enter and leave come for each element on the way.
let within = 0;
const isFile = (event) => event.dataTransfer?.types.includes("Files");
function over(event, change) {
    if (!isFile(event)) return;
    event.preventDefault();
    within = Math.max(within + change, 0);
    $("drop").hidden = !within;
}
addEventListener("dragenter", (event) => over(event, 1));
addEventListener("dragover", (event) => over(event, 0));
addEventListener("dragleave", (event) => over(event, -1));
addEventListener("drop", (event) => {
    over(event, -within);
    if (isFile(event) && event.dataTransfer.files[0]) open(event.dataTransfer.files[0]);
});

convert.onClip(motion.showClip, motion.showPair);
try {
    const { kernels } = await ask("init");
    $("engine").textContent = `Running here: ${kernels === "scalar" ? "without SIMD" : "with SIMD"} (${kernels})`;
    $("engine").classList.add("ready");
    await convert.start();
    await frames.start();
} catch (error) {
    $("engine").textContent = error.message;
    $("engine").className = "message";
}
