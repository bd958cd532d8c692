#!/bin/sh
# SPDX-License-Identifier: MIT
# Pipelines as a user types them, beside what the tool and the example make of the same pictures.
#   launch.sh SAMPLES ZELT NV12_TO_RGB
set -eu
samples=$1 zelt=$2 nv12_to_rgb=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"

launch() {
    # shellcheck disable=SC2086 # a pipeline
    gst-launch-1.0 -q $1 >log 2>&1 || { cat log >&2 && echo "failed: $1" >&2 && exit 1; }
}

# The first picture of a clip
launch "filesrc location=$samples/pan_h264.mp4 ! qtdemux ! avdec_h264 ! zeltconvert ! video/x-raw,format=RGB !
    pngenc snapshot=true ! filesink location=clip.png"
"$zelt" convert -i clip.png -o clip.ppm
"$nv12_to_rgb" "$samples/pan.nv12" 176 144 nv12.ppm
cmp clip.ppm nv12.ppm

# All of a full-range one, on the size of a small screen too
"$zelt" convert -i "$samples/pan444.y4m" -o pan.raw --pix-fmt yuv444
for size in 176x144 128x96; do
    "$zelt" convert -i "$samples/pan444.y4m" -o want.raw --pix-fmt rgb565 --size $size
    launch "filesrc location=pan.raw ! rawvideoparse width=176 height=144 format=y444 !
        capssetter caps=video/x-raw,colorimetry=1:4:7:1 ! zeltconvert n-threads=2 !
        video/x-raw,format=RGB16,width=${size%x*},height=${size#*x} ! filesink location=got.raw"
    cmp got.raw want.raw
done
