#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The main job on real input: a clip and photographs through the library, out/ with PNG files, and a table of speeds.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
need "${build_packages[@]}"

echo "Building (build/x86-64)"
cmake --preset x86-64 -DZELT_TESTS=AUTO >/dev/null
cmake --build build/x86-64 --target zelt_tool zelt_demo -- --quiet
mkdir -p out

zelt=build/x86-64/tools/zelt/zelt
$zelt convert -i samples/pan444.y4m -o out/pan.png -v
$zelt convert -i samples/chelsea.png -o out/chelsea.raw --pix-fmt rgb565 -v
$zelt convert -i out/chelsea.raw --raw 451x300:rgb565 -o out/chelsea-from-rgb565.png -v
for size in 88x72 117x96 352x288; do
    $zelt convert -i samples/pan420.y4m --limit 1 -o out/pan420-$size.png --size $size -v
done
for size in 300x200 400x266 1200x800; do
    $zelt convert -i samples/coffee.png -o out/coffee-$size.png --size $size -v
done
echo
build/x86-64/bench/zelt_demo out samples/coffee.png samples/pan444.y4m
echo
echo "In out/: $(find out -name '*.png' | wc -l) PNG files. The clip's frames are pan-0001.png and on; those with a"
echo "format in their names came back from it, those with a size were resized."
