#!/bin/sh
# SPDX-License-Identifier: MIT
# elsewhere.sh SCRATCH EMULATOR COMPILER FLAG...: C programs over a library for another system, which the emulator runs
# (none if it is empty), say what they do here.
set -eu
scratch=$1 emulator=$2 compiler=$3
shift 3
here=$(cd "$(dirname "$0")" && pwd)
fail() { echo "$*" >&2 && exit 1; }

"$compiler" -std=c99 "$here/consumer.c" -o "$scratch/consumer" "$@"
"$compiler" -std=c99 "$here/../../examples/nv12_to_rgb.c" -o "$scratch/nv12_to_rgb" "$@"
said=$($emulator "$scratch/consumer")
[ "$said" = "200 200 200" ] || fail "$scratch/consumer says $said"
$emulator "$scratch/nv12_to_rgb" "$here/../../samples/pan.nv12" 176 144 "$scratch/nv12.ppm" >/dev/null
digest=$(md5sum <"$scratch/nv12.ppm")
[ "$digest" = "33af15fb1b91484dfdb334629ef6327a  -" ] || fail "$scratch/nv12_to_rgb makes a picture of $digest"
