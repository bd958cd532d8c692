#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds and installs the library where there is nothing but a compiler, cmake and make: a new Debian of the host's
# release. Then, with pkg-config too, the consumers of tests/consumer, and with libpng and CLI11 the tool. It downloads
# some 200 MB.
#   TARBALL  the sources, instead of the checkout's
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

mkdir -p build
if [ $# -gt 0 ]; then
    xz -cd "$1" >build/bare.tar
else
    git ls-files -z --cached | tar -cf build/bare.tar --transform='s,^,libzelt/,' --null --files-from=-
fi
# shellcheck disable=SC2154 # inside
new_debian --include=g++,cmake,make --customize-hook='upload build/bare.tar /libzelt.tar' \
    --customize-hook="$inside 'mkdir /libzelt
        tar -C /libzelt --strip-components=1 -xf /libzelt.tar
        cd /libzelt
        cmake -S . -B build
        cmake --build build >/dev/null
        cmake --install build --prefix /opt/zelt'" \
    --customize-hook="$inside 'apt-get install -y -qq --no-install-recommends pkg-config libcli11-dev libpng-dev >/dev/null
        sh /libzelt/tests/consumer/run.sh installed /libzelt/consumer /libzelt/build
        cd /libzelt
        cmake -S . -B build -DZELT_TOOL=ON
        cmake --build build >/dev/null
        cmake --install build --prefix /opt/zelt
        /opt/zelt/bin/zelt --version
        /opt/zelt/bin/zelt convert -i samples/pan444.y4m -o pan.png --limit 1'"
