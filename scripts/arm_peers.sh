#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# arm_peers.sh armhf|arm64: fetches what scripts/arm_instructions.sh compares with on ARM into build/arm_peers/ARCH/root,
# laid out as on such a system. Nothing is installed: apt works in a folder of its own, from the sources it is configured
# for. A second run keeps what is there.
# Debian's armhf has no NEON in its baseline. What chooses kernels at run time has them (x264, libaom, libavcodec,
# libjpeg-turbo, pixman); those of libyuv, x265 and libvpx are compiled here from Debian's sources, as for a board with
# NEON. On arm64 NEON is baseline; libraries with more of it since come from the next Debian.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

arch=$1
need "${instruction_packages[@]}"
mkdir -p "build/arm_peers/$arch"
cd "build/arm_peers/$arch"
dir=$PWD
[ -e complete ] && exit
packages=(libaom-dev libavcodec-dev libavutil-dev libglib2.0-dev libgstreamer1.0-dev libpixman-1-dev libssl-dev
    libturbojpeg0-dev libvpx-dev libx264-dev libx265-dev libyuv-dev)
echo "Fetching what is compared with on $arch"

# ------------------------------------------------------------------------------------------------- packages, sources
# apt_in FOLDER ARGUMENTS...: apt-get with all of its state in the folder
apt_in() {
    local state=$dir/$1
    shift
    apt-get -qq -o "APT::Architecture=$arch" -o "APT::Architectures::=$arch" -o "Dir::State=$state" \
        -o "Dir::State::Lists=$state/lists" -o "Dir::State::status=$state/status" -o "Dir::Cache=$state/cache" \
        -o "Dir::Etc::sourcelist=/dev/null" -o "Dir::Etc::sourceparts=$state/parts" -o APT::Sandbox::User=root \
        -o Acquire::Languages=none "$@"
}

# prepare FOLDER RELEASE: the configured sources, for that release and with source packages
prepare() {
    mkdir -p "$1"/{lists/partial,cache/archives/partial,parts}
    touch "$1/status"
    for list in /etc/apt/sources.list /etc/apt/sources.list.d/debian.sources; do
        [ ! -s "$list" ] || sed -e 's/^Types: deb$/Types: deb deb-src/' -e '/^deb /{p;s/^deb /deb-src /}' \
            -e "s/bookworm/$2/g" "$list" >"$1/parts/$(basename "$list")"
    done
    apt_in "$1" update || echo "Some lists are missing: older versions may come" >&2
}

# fetch FOLDER PACKAGE...: unpacks packages over what is in root
fetch() {
    local state=$1 package
    shift
    mkdir -p "deb/$state"
    for package in "$@"; do
        ls "deb/$state/$package"_*.deb >/dev/null 2>&1 || (cd "deb/$state" && apt_in "$state" download "$package")
        dpkg -x "deb/$state/$package"_*.deb root
    done
}

# source_of FOLDER PACKAGE: unpacks its source below src and prints the folder's name
source_of() {
    mkdir -p "src/$2"
    if [ ! -e "src/$2/unpacked" ]; then
        (cd src && apt_in "$1" source --tar-only "$2" && tar xf "$2"_*.orig.tar.* -C "$2" --strip-components=1) >&2
        touch "src/$2/unpacked"
    fi
    (cd "src/$2" && pwd)
}

prepare now bookworm
prepare next trixie
fetch now "${packages[@]}"

# ------------------------------------------------------------------------------------------------- archives of kernels
case $arch in
armhf) triple=arm-linux-gnueabihf ;;
arm64) triple=aarch64-linux-gnu ;;
esac
lib=$dir/root/usr/lib/$triple

# archive NAME: the objects of the current folder
archive() {
    rm -f "$lib/$1"
    "$triple-ar" rcs "$lib/$1" ./*.o
}

# folder NAME: a new empty folder for objects, made the current one
folder() {
    rm -rf "$dir/objects/$1"
    mkdir -p "$dir/objects/$1"
    cd "$dir/objects/$1"
}

# compile COMPILER ARGUMENTS... -- FILES...
compile() {
    local command=()
    while [ "$1" != -- ]; do command+=("$1") && shift; done
    shift
    for f in "$@"; do
        "${command[@]}" -O2 -march=armv7-a -mfpu=neon -mfloat-abi=hard -fno-strict-aliasing -DNDEBUG -w -c "$f" \
            -o "$(basename "$f").o"
    done
}

if [ "$arch" = armhf ]; then
    yuv=$(source_of now libyuv)
    folder libyuv
    compile "$triple-g++" -mthumb -I"$yuv/include" -DLIBYUV_NEON -- \
        "$yuv"/source/{compare,compare_common,compare_neon,convert,convert_argb,convert_from}.cc \
        "$yuv"/source/{convert_from_argb,convert_to_argb,convert_to_i420,cpu_id,planar_functions,rotate,rotate_any}.cc \
        "$yuv"/source/{rotate_argb,rotate_common,rotate_neon,row_any,row_common,row_neon,scale,scale_any,scale_argb}.cc \
        "$yuv"/source/{scale_common,scale_neon,scale_rgb,scale_uv}.cc
    archive libyuv.a
    cp -r "$yuv"/include/. "$dir/root/usr/include"
    cd "$dir"

    x265=$(source_of now x265)/source/common
    folder x265
    compile "$triple-gcc" -marm -I"$x265/arm" -I"$x265" -DHAVE_NEON=1 -DX265_NS=x265 -DHIGH_BIT_DEPTH=0 -DBIT_DEPTH=8 \
        -Wa,-mimplicit-it=always -- "$x265"/arm/{blockcopy8,mc-a,pixel-util,sad-a,ssd-a}.S
    archive libx265_kernels.a
    cd "$dir"

    vpx=$(source_of next libvpx)
    folder libvpx
    {  # what its configure would write, as far as these files look
        printf '#define %s 1\n' VPX_ARCH_ARM HAVE_NEON HAVE_NEON_ASM CONFIG_VP9_HIGHBITDEPTH CONFIG_VP9 CONFIG_VP9_ENCODER
        printf '#define %s\n' 'INLINE inline' 'RESTRICT restrict'
    } >vpx_config.h
    echo '#include "vpx_ports/mem.h"' >vpx_dsp_rtcd.h
    compile "$triple-gcc" -mthumb -I. -I"$vpx" -- \
        "$vpx"/vpx_dsp/arm/{sad_neon,highbd_sad_neon,subtract_neon,sse_neon,highbd_sse_neon}.c
    archive libvpx.a
    cd "$dir"
else
    fetch next libaom-dev libavcodec-dev libavutil-dev libvpx-dev libx264-dev libx265-dev libyuv-dev
fi

# members ARCHIVE INSTANCE PREFIX MEMBER...: takes those objects out, of several of a name the INSTANCE-th
members() {
    local archive=$1 instance=$2 prefix=$3 member
    shift 3
    for member in "$@"; do
        "$triple-ar" xN "$instance" "$archive" "$member"
        mv "$member" "$prefix-$member"
    done
}

# expose OBJECT MANGLED=NAME...: makes functions that are local to a file callable
expose() {
    local object=$1 names=() symbols=() n
    shift
    for n in "$@"; do names+=(--redefine-sym="$n") && symbols+=(--globalize-symbol="${n#*=}"); done
    "$triple-objcopy" "${names[@]}" "$object"
    "$triple-objcopy" "${symbols[@]}" "$object"
}

if [ "$arch" = arm64 ]; then  # the archive has everything three times, for 12, 10 and 8 bits
    folder x265
    members "$lib/libx265.a" 2 10 pixel-prim.cpp.o
    members "$lib/libx265.a" 3 8 {pixel-prim.cpp,sad-a.S,pixel-util.S,pixel-util-common.S,ssd-a.S,ssd-a-common.S}.o \
        {blockcopy8.S,blockcopy8-common.S}.o
    n=_ZN12_GLOBAL__N_1
    names=("${n}19pixel_satd_4x4_neonEPKtlS1_l=x265_10bit_pixel_satd_4x4_local"
        "${n}19pixel_sa8d_8x8_neonEPKtlS1_l=x265_10bit_pixel_sa8d_8x8_local")
    for s in 4x4 4x8 8x4 8x8 8x16 16x8 16x16 16x32 32x16 32x32 32x64 64x32 64x64; do
        of="ILi${s%x*}ELi${s#*x}E"
        names+=("${n}11sad_pp_neon${of}EEiPKtlS2_l=x265_10bit_pixel_sad_${s}_local"
            "${n}8sse_neon${of}ttEEmPKT1_lPKT2_l=x265_10bit_pixel_sse_${s}_local"
            "${n}17pixel_sub_ps_neon${of}EEvPslPKtS3_ll=x265_10bit_pixel_sub_ps_${s}_local")
    done
    expose 10-pixel-prim.cpp.o "${names[@]}"
    names=("${n}19pixel_satd_4x4_neonEPKhlS1_l=x265_pixel_satd_4x4_local"
        "${n}19pixel_sa8d_8x8_neonEPKhlS1_l=x265_pixel_sa8d_8x8_local"
        "${n}21pixel_satd_16x16_neonEPKhlS1_l=x265_pixel_satd_16x16_local")
    for s in 8 32 64; do names+=("${n}10satd8_neonILi${s}ELi${s}EEEiPKhlS2_l=x265_pixel_satd_${s}x${s}_local"); done
    expose 8-pixel-prim.cpp.o "${names[@]}"
    archive libx265_kernels.a
fi

# Of libavcodec and libavutil only the objects with what is called
folder libavcodec
functions='avpriv_find_start_code|ff_startcode_find_candidate_(armv6|c)|ff_pix_abs(8|16)_neon'
mapfile -t objects < <("$triple-nm" -A "$lib/libavcodec.a" 2>/dev/null |
    sed -nE "s/^[^:]*:([^:]*):[0-9a-f]* T ($functions)\$/\1/p" | sort -u)
members "$lib/libavcodec.a" 1 1 "${objects[@]}"
if [ "$arch" = arm64 ]; then
    names=()
    for s in 4 8 16; do names+=("sse${s}_neon=ff_sse${s}_neon"); done
    expose 1-me_cmp_neon.o "${names[@]}"
fi
archive libavcodec_kernels.a
folder libavutil
members "$lib/libavutil.a" 1 1 {fifo,imgutils,md5,mem}.o
archive libavutil_kernels.a
touch "$dir/complete"
