#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The site, build/doc/index.html, and man pages below build/man. Fails if something public lacks documentation or a man
# page, a link leads nowhere, or a drawing is not what its script makes.
#   FOLDER  where they go instead of build
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
need "${docs_packages[@]}"
out=${1-build}
mkdir -p "$out"
out=$(cd "$out" && pwd)
rm -rf "$out/doc" "$out/man" "$out/drawings"

scripts/drawings.py "$out/drawings"
for drawing in "$out"/drawings/*.svg; do
    cmp "$drawing" "docs/guide/$(basename "$drawing")" || { echo "Draw it anew: scripts/drawings.py" >&2 && exit 1; }
done
rm -r "$out/drawings"

figures=$(find docs -path docs/try -prune -o \( -name '*.svg' -o -name '*.png' \) -print | paste -sd' ')
{
    cat docs/Doxyfile
    echo "OUTPUT_DIRECTORY = \"$out\""
    echo "HTML_EXTRA_FILES = $figures"
} | doxygen -
# The page to try the library on is not for installed copies, which no server gives to a browser.
if [ $# -eq 0 ] && command -v emcc >/dev/null; then
    scripts/try.sh --site "$out/doc/try"
else
    mkdir "$out/doc/try"
    cp docs/try/absent.html "$out/doc/try/index.html"
    [ $# -gt 0 ] || echo "The page to try the library on is left out: emscripten is not installed."
fi
scripts/docs.py check "$out/doc"
# A line that starts with a quote is a request.
sed -i "s/^'/\\\\\&&/" "$out"/man/man3/*.3
# What is not in a group, and data, has a link to a page that is not made.
for page in "$out"/man/man3/*; do
    target=$(sed -n '1s/^\.so //p' "$page")
    [ -z "$target" ] || [ -e "$out/man/$target" ] || rm "$page"
done
sed -n 's/^T \([^ ]*\) .*/\1/p' abi/symbols.txt | while read -r name; do
    [ -e "$out/man/man3/$name.3" ] || { echo "no man page of $name" >&2 && exit 1; }
done
echo "$out/doc/index.html"
