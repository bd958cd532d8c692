#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds a consumer in each way that there is: what it prints, and what it is linked with.
#   run.sh installed SCRATCH BUILD  of a build that is installed below a new prefix
#   run.sh sources SCRATCH          with the library's sources as a part of another project, or against another C library
set -eu
scratch=$2
here=$(cd "$(dirname "$0")" && pwd)
export CI=true  # warnings are errors in the library's own builds alone
fail() { echo "$*" >&2 && exit 1; }
quietly() { "$@" >"$scratch/log" 2>&1 || { cat "$scratch/log" >&2 && fail "failed: $*"; }; }

rm -rf "$scratch"
mkdir -p "$scratch"

# check PROGRAM LIBRARY...: what it prints, and the libraries that it needs
check() {
    program=$1
    shift
    said=$("$scratch/$program")
    [ "$said" = "200 200 200" ] || fail "$program says $said"
    needed=$(readelf -dW "$scratch/$program" | sed -n 's/.*NEEDED.*\[\(.*\)\]/\1/p' | sort | paste -sd' ')
    [ "$needed" = "$*" ] || fail "$program needs $needed"
    echo "$program needs ${needed:-nothing}"
}

installed() {
    libdir=$(sed -n 's/^CMAKE_INSTALL_LIBDIR:.*=//p' "$2/CMakeCache.txt")
    prefix=$scratch/usr
    quietly cmake --install "$2" --prefix "$prefix"
    export PKG_CONFIG_PATH="$prefix/$libdir/pkgconfig" LD_LIBRARY_PATH="$prefix/$libdir"
    flags=$(pkg-config --cflags zelt)
    warnings="-pedantic -Wall -Wextra -Werror"
    # shellcheck disable=SC2046,SC2086 # lists of flags
    {
        cc -std=c99 $warnings "$here/consumer.c" -o "$scratch/pkg-config" $flags $(pkg-config --libs zelt)
        c++ -std=c++11 $warnings -x c++ "$here/consumer.c" -x none -o "$scratch/pkg-config-c++" $flags $(pkg-config --libs zelt)
        cc -std=c99 $warnings -fno-pie -no-pie "$here/consumer.c" -o "$scratch/pkg-config-no-pie" $flags $(pkg-config --libs zelt)
        cc -std=c99 $warnings "$here/consumer.c" -static -o "$scratch/pkg-config-static" $flags $(pkg-config --static --libs zelt)
        cc -std=c99 $warnings -fPIE "$here/consumer.c" -static-pie -o "$scratch/pkg-config-static-pie" $flags $(pkg-config --static --libs zelt)
    }
    # shellcheck disable=SC2086
    version=$(printf '#include <zelt/common.h>\nZELT_VERSION_MAJOR ZELT_VERSION_MINOR ZELT_VERSION_PATCH\n' |
        cc -E -P -x c $flags - | tail -n 1 | tr ' ' .)
    [ "$version" = "$(pkg-config --modversion zelt)" ] || fail "the headers are of version $version"
    check pkg-config libc.so.6 libzelt.so.1
    check pkg-config-no-pie libc.so.6 libzelt.so.1
    check pkg-config-static
    check pkg-config-static-pie

    quietly cmake -S "$here" -B "$scratch/package" -DCMAKE_PREFIX_PATH="$prefix"
    quietly cmake --build "$scratch/package"
    check package/default libc.so.6 libzelt.so.1
    check package/static libc.so.6

    if [ -x "$prefix/bin/zelt" ]; then
        "$prefix/bin/zelt" --version >/dev/null || fail "the tool does not start"
        for made in man/man1/zelt.1 bash-completion/completions/zelt zsh/site-functions/_zelt; do
            [ -s "$prefix/share/$made" ] || fail "share/$made is not installed"
        done
    fi
}

sources() {
    # The sources as a part of another project, which wants archives, and one level where there are several
    quietly cmake -S "$here" -B "$scratch/subproject" -DZELT_SOURCE="$here/../.." -DBUILD_SHARED_LIBS=OFF -DZELT_LEVELS=baseline
    quietly cmake --build "$scratch/subproject"
    check subproject/default libc.so.6
    quietly cmake --install "$scratch/subproject" --prefix "$scratch/nothing"
    [ ! -e "$scratch/nothing" ] || fail "libzelt is installed with its parent"

    # The sources against musl, whose loader does not choose the levels' forms; quickly
    command -v musl-gcc >/dev/null || exit 0
    quietly cmake -S "$here" -B "$scratch/musl" -DZELT_SOURCE="$here/../.." -DBUILD_SHARED_LIBS=OFF "-DZELT_LEVELS=baseline;v3" \
        --toolchain "$here/../../cmake/toolchains/x86_64-linux-musl.cmake" -DCMAKE_EXE_LINKER_FLAGS=-static -DCMAKE_BUILD_TYPE=Debug
    quietly cmake --build "$scratch/musl" --target static
    check musl/static
}

"$@"
