// SPDX-License-Identifier: MIT
// The package under node, whose fetch() reads no files.
import { readFile } from "node:fs/promises";

import { loader } from "./src/zelt.js";

export const load = loader((name) => readFile(new URL(name, import.meta.url)));
