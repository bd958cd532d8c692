#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds and runs every test: on x86-64 (baseline, x86-64-v2 and -v3) and on 32-bit ARM under emulation.
#   --quick    x86-64 alone
#   --all      every preset: the other targets, compilers and sanitizers
#   PRESET...  those presets of CMakePresets.json
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

case ${1-} in
"") presets=(x86-64 armv7-softfp) ;;
--quick) presets=(x86-64) ;;
--all)
    need "${test_packages[@]}"
    listed=$(cmake --list-presets=test | sed -n 's/^ *"\([^"]*\)".*/\1/p')
    mapfile -t presets <<<"$listed"
    ;;
-*) sed -n '3,/^set/s/^# \{0,1\}//p' "$0" >&2 && exit 1 ;;
*) presets=("$@") ;;
esac

need "${test_packages[@]}"
for preset in "${presets[@]}"; do
    case $preset in
    armv7-hf) need "${armhf_packages[@]}" ;;
    arm* | aarch64*) need "${arm_packages[@]}" ;;
    i686) need "${i686_packages[@]}" ;;
    wasm32) need "${wasm_packages[@]}" ;;
    windows) need "${windows_packages[@]}" ;;
    esac
    case $preset in
    *clang) need clang ;;
    esac
done

summary=()
for preset in "${presets[@]}"; do
    echo "== $preset"
    options=()
    # Where LLVM's libunwind stands in for the other one, GStreamer's files for pkg-config are not complete.
    [ "$preset" = x86-64 ] && [ "${CI-}" ] && options=(-DZELT_GSTREAMER=ON)
    cmake --preset "$preset" "${options[@]}" | sed -n 's/^-- \(No .*: \)/\1/p'
    cmake --build --preset "$preset" -- --quiet
    report=$PWD/build/$preset/tests.xml
    ctest --preset "$preset" --output-junit "$report" --test-output-size-passed 100000000 --progress |
        grep -vE '^ *[0-9]+/[0-9]+ Test .* Passed' || exit 1
    tests=$(sed -n 's/^.*\[  PASSED  \] \([0-9]*\) test.*$/\1/p' "$report" | paste -sd+ | sed 's/^$/0/')
    cases=$(sed -n 's/^.*kernel cases: \([0-9]*\).*$/\1/p' "$report" | paste -sd+ | sed 's/^$/0/')
    summary+=("$(printf '%-13s %5d tests, %7d kernel cases' "$preset" $((tests)) $((cases)))")
done
printf '\nAll passed:\n'
printf '%s\n' "${summary[@]}"
