#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Times the plugin for GStreamer beside GStreamer's own converters, and writes the table of docs/performance.md.
#   (nothing)  all rows, in about four minutes
#   REGEX      the rows that it matches, shown and not written
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

need "${build_packages[@]}" "${gstreamer_packages[@]}"
build=build/gstreamer
cmake --preset x86-64 -B $build -DZELT_TESTS=OFF -DZELT_TOOL=OFF -DZELT_BENCH=OFF -DZELT_GSTREAMER=ON >/dev/null
cmake --build $build --target gstzelt -- --quiet
export GST_PLUGIN_PATH=$PWD/$build/integrations/gstreamer GST_REGISTRY=$PWD/$build/registry.bin
scripts/gstreamer_table.py "${1-}"
