#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the library for Android's ABIs, checks it and Android.mk, and makes an archive (AAR) for Gradle.
#   android.sh NDK   with the NDK in that folder: out/zelt-VERSION.aar
#   android.sh       without one, below build/android, as far as packaging/android/stand_in.cmake goes; C programs over
#                    that library run here
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
need "${android_packages[@]}"

build=$PWD/build/android ndk=${1-} python=/usr/bin/python3
mkdir -p "$build"
if [ "$ndk" ]; then
    release=$(sed -nE 's/^Pkg.Revision *= *([0-9]+).*/\1/p' "$ndk/source.properties")
    version=$(sed -nE 's/^#define ZELT_VERSION_[A-Z]+ ([0-9]+)$/\1/p' include/zelt/common.h | paste -sd.)
    mkdir -p out
    archive=out/zelt-$version.aar
    options=(--toolchain "$ndk/build/cmake/android.toolchain.cmake" -DANDROID_PLATFORM=android-21)
else
    release=0 archive=build/android/stand-in.aar
    options=(--toolchain packaging/android/stand_in.cmake "-DSTAND_IN=$build")
    unpack_libcxx "$build"
    # What the library may take from the C library: names that Android's has, or those that glibc's headers make of them
    for name in calloc fclose fopen free fscanf __isoc99_fscanf malloc memchr memcmp memcpy memmove memset raise snprintf \
        sprintf strcspn strlen strncmp __aeabi_mem{clr,cpy,move,set}{,4,8}; do
        echo "void $name(void) {}"
    done >"$build/libc.c"
    : >"$build/empty.c"
fi

for abi in armeabi-v7a arm64-v8a x86_64; do
    at=$build/$abi
    if [ ! "$ndk" ]; then
        sysroot=/ flags=()
        case $abi in
        armeabi-v7a) triple=arm-linux-gnueabi sysroot=/usr/$triple flags=(-mfloat-abi=softfp) emulator="qemu-arm -cpu cortex-a9" ;;
        arm64-v8a) triple=aarch64-linux-gnu sysroot=/usr/$triple emulator=qemu-aarch64 ;;
        x86_64) triple=x86_64-linux-gnu emulator=qemu-x86_64 ;;
        esac
        mkdir -p "$at/libc" "$at/run"
        "$triple-gcc" -w -fno-builtin -shared -nostdlib -Wl,-soname,libc.so "$build/libc.c" -o "$at/libc/libc.so"
        "$triple-gcc" -shared -nostdlib -Wl,-soname,libc.so "$build/empty.c" -o "$at/run/libc.so"
    fi
    cmake --no-warn-unused-cli -S . -B "$at" -G Ninja "${options[@]}" "-DANDROID_ABI=$abi" -DCMAKE_BUILD_TYPE=Release -DZELT_TESTS=OFF \
        -DZELT_BENCH=OFF -DZELT_WERROR=ON -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >/dev/null
    cmake --build "$at" -- --quiet
    sh tests/abi/exports.sh nm abi/symbols.txt "$at/libzelt.so"
    sh tests/abi/image.sh readelf libzelt.so "$at/libzelt.so"
    echo "$abi: libzelt.so of $(($(stat -c %s "$at/libzelt.so") / 1024)) KB, and an archive"
    if [ ! "$ndk" ]; then
        sh tests/consumer/elsewhere.sh "$at/run" "$emulator -L $sysroot -E LD_LIBRARY_PATH=$at:$at/run" \
            "$triple-gcc" "${flags[@]}" -Iinclude "$at/libzelt.so" -Wl,--allow-shlib-undefined
        echo "$abi: C programs over it run"
    fi
done

$python packaging/android/aar.py make "$archive" "$release" "$build"
$python tests/packaging/android_test.py "$build" "$archive"
$python -m zipfile -l "$archive"
