#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Times the tool beside ffmpeg on a clip of 300 pictures of 1920x1080, made of a sample, and writes the table of
# docs/performance.md: about two minutes, and 1 GB below build/.
#   (nothing)  all rows
#   REGEX      the rows that it matches, shown and not written
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

need "${test_packages[@]}"
build=build/clips
cmake --preset x86-64 -B $build -DZELT_TESTS=OFF -DZELT_BENCH=OFF -DZELT_GSTREAMER=OFF >/dev/null
cmake --build $build --target zelt_tool -- --quiet
if [ ! -s $build/clip.y4m ]; then
    ffmpeg -nostdin -v error -y -stream_loop -1 -i samples/pan420.y4m -frames:v 300 -vf scale=1920:1080,noise=alls=4:allf=t \
        -c:v libx264 -preset veryfast $build/clip.mp4
    ffmpeg -nostdin -v error -y -i $build/clip.mp4 $build/part.y4m
    mv $build/part.y4m $build/clip.y4m
fi
scripts/clips_table.py $build "${1-}"
