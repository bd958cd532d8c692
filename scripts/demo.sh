#!/usr/bin/env bash
# The main job on real input: a clip and photographs through the library, out/ with PNG files, and a table of speeds.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
need "${build_packages[@]}"

echo "Building (build/demo)"
cmake --preset x86-64 -B build/demo -DZELT_TESTS=OFF >/dev/null
cmake --build build/demo --target zelt_tool zelt_demo -- --quiet
mkdir -p out

build/demo/tools/zelt/zelt convert -i samples/pan444.y4m -o out/pan.png -v
build/demo/tools/zelt/zelt convert -i samples/chelsea.png -o out/chelsea.raw --pix-fmt rgb565 -v
build/demo/tools/zelt/zelt convert -i out/chelsea.raw --raw 451x300:rgb565 -o out/chelsea-from-rgb565.png -v
echo
build/demo/bench/zelt_demo out samples/coffee.png samples/chelsea.png samples/pan444.y4m
echo
echo "In out/: $(find out -name '*.png' | wc -l) PNG files. The clip's frames are pan-0001.png and on; coffee-*.png,"
echo "chelsea-*.png and pan444-*.png came back from the format in their names."
