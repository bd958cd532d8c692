#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The page on which to try the library, build/try/index.html for any server of files, and its tests: the digests beside
# those of the native library, the readers of files, and what a visitor does, in headless Chromium.
#   --site FOLDER  only makes the page, there
#   --digests      only writes docs/try/digests.json anew
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
samples=(coffee.png pan420.y4m pan_h264.mp4 pan.h264 pan_hevc.mp4)

digests() {
    cmake --preset x86-64 >/dev/null
    cmake --build --preset x86-64 --target zelt -- --quiet >&2
    PYTHONDONTWRITEBYTECODE=1 /usr/bin/python3 scripts/try_digests.py "$PWD/build/x86-64/libzelt.so.1"
}

make_site() {
    cmake --preset wasm32 >/dev/null
    cmake --build --preset wasm32 --target zelt-simd zelt-scalar -- --quiet
    rm -rf "$1"
    mkdir -p "$1"/{libzelt,samples}
    cp docs/try/{index.html,*.css,*.js,*.json,*.svg} "$1"
    cp -r bindings/wasm/{index.js,src} build/wasm32/bindings/wasm/*.wasm "$1/libzelt"
    rm -f "$1"/libzelt/src/*.cpp
    cp "${samples[@]/#/samples/}" "$1/samples"
}

case ${1-} in
--site)
    make_site "$2"
    exit
    ;;
--digests)
    need "${python_packages[@]}"
    digests >build/digests.json
    mv build/digests.json docs/try/digests.json
    exit
    ;;
esac

need "${python_packages[@]}" "${npm_packages[@]}" chromium ffmpeg
command -v npm >/dev/null || need npm  # comes with other builds of node than Debian's
make_site build/try
digests | cmp - docs/try/digests.json || { echo "Write it anew: scripts/try.sh --digests" >&2 && exit 1; }
mkdir -p build/shots
npm ci --prefix tests/try --no-audit --no-fund --silent
SITE=$PWD/build/try SHOTS=$PWD/build/shots node --test tests/try/*.test.js
echo "build/try/index.html, for example by python3 -m http.server --directory build/try"
