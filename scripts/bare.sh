#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds and installs the library where there is nothing but a compiler, cmake and make: a new Debian of the host's
# release, made in a temporary folder from the host's package sources. Then, with pkg-config too, the consumers of
# tests/consumer. It downloads some 200 MB.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

need mmdebstrap
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
sources=()
for list in /etc/apt/sources.list /etc/apt/sources.list.d/*.{list,sources}; do
    if [ -e "$list" ]; then sources+=("$list"); fi
done
mkdir -p build
git ls-files -z --cached | tar -cf build/bare.tar --null --files-from=-

# shellcheck disable=SC2016 # mmdebstrap's $1, the new root; nothing of the host's environment comes along
inside='chroot "$1" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin sh -exc'
mmdebstrap --quiet --variant=apt --format=null --include=g++,cmake,make \
    --customize-hook="$inside 'mkdir /libzelt'" --customize-hook='tar-in build/bare.tar /libzelt' \
    --customize-hook="$inside 'cd /libzelt
        cmake -S . -B build
        cmake --build build >/dev/null
        cmake --install build --prefix /opt/zelt'" \
    --customize-hook="$inside 'apt-get install -y -qq --no-install-recommends pkg-config >/dev/null
        sh /libzelt/tests/consumer/run.sh /libzelt/build /libzelt/consumer'" \
    "$release" /dev/null "${sources[@]}"
