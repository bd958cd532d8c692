# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# Sourced by the other scripts: the Debian packages that each kind of work needs.
build_packages=(g++ cmake ninja-build pkg-config libpng-dev libcli11-dev)
# the plugin for GStreamer, and the pipelines that its tests and its benchmark run
gstreamer_packages=(libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev gstreamer1.0-tools gstreamer1.0-plugins-base
    gstreamer1.0-plugins-good gstreamer1.0-libav)
# shellcheck disable=SC2034 # used by the scripts that source this
{
test_packages=("${build_packages[@]}" "${gstreamer_packages[@]}" googletest libgtest-dev binutils ffmpeg python3
    libavformat-dev libavcodec-dev libcairo2-dev musl-tools qemu-user groff-base zsh)
arm_packages=(g++-arm-linux-gnueabi g++-aarch64-linux-gnu)
armhf_packages=(g++-arm-linux-gnueabihf)
i686_packages=(g++-i686-linux-gnu)
wasm_packages=(emscripten nodejs)
windows_packages=(g++-mingw-w64-x86-64-posix wine64)
android_packages=("${arm_packages[@]}" clang cmake lld g++ make ninja-build python3-pyelftools qemu-user)
docs_packages=(doxygen doxygen-awesome-css python3)
check_packages=("${docs_packages[@]}" clang clang-format reuse shellcheck)
# the Python package, its tests and what examples use
wheel_packages=("${build_packages[@]}" binutils python3-numpy python3-pip python3-setuptools python3-venv python3-wheel)
python_packages=("${wheel_packages[@]}" mypy python3-av python3-distributed python3-pil python3-pytest)
# the npm package: its modules, beside the tool
npm_packages=("${build_packages[@]}" "${wasm_packages[@]}")
# the benchmark, and the libraries that it compares with
bench_packages=("${build_packages[@]}" libaom-dev libavutil-dev libbenchmark-dev libgstreamer1.0-dev
    libjack-jackd2-dev libnuma-dev libopencv-core-dev libopencv-imgproc-dev libssl-dev libswscale-dev
    libturbojpeg0-dev libvpx-dev libx264-dev libx265-dev libyuv-dev libzimg-dev python3)
abi_packages=("${build_packages[@]}" g++-arm-linux-gnueabi abigail-tools)
fuzz_packages=(clang cmake libclang-rt-14-dev ninja-build googletest libgtest-dev)
count_packages=("${arm_packages[@]}" qemu-user g++ cmake ninja-build python3)
# the Debian packages: debian/control, and what checks them
package_packages=("${build_packages[@]}" autopkgtest debhelper dh-python doxygen doxygen-awesome-css libavcodec-dev
    libavformat-dev libgstreamer-plugins-base1.0-dev libgtest-dev lintian mmdebstrap pybuild-plugin-pyproject python3-all
    python3-setuptools python3-wheel)
release_packages=("${build_packages[@]}" mmdebstrap python3 xz-utils)
instruction_packages=("${count_packages[@]}" "${armhf_packages[@]}" clang llvm-19 dpkg-dev)
}

# need PACKAGE...: installs what is missing, or says what is and stops.
need() {
    local missing=() package sudo=()
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    if [ "$(id -u)" -ne 0 ]; then
        if ! sudo -n true 2>/dev/null; then
            echo "Missing packages. Install them with: sudo apt-get install ${missing[*]}" >&2
            exit 1
        fi
        sudo=(sudo)
    fi
    echo "Installing ${missing[*]}"
    "${sudo[@]}" apt-get update -qq
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# inside: what runs a script for sh in the new Debian of new_debian's hooks, where $1 is its folder; nothing of the host's
# environment comes along.
# shellcheck disable=SC2016,SC2034
inside='chroot "$1" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive sh -exc'
# new_debian OPTION...: a new Debian of the host's release, made from the host's package sources in a temporary folder. It
# lives as long as the hooks among mmdebstrap's options run.
new_debian() {
    local release list sources=()
    need mmdebstrap
    release=$(. /etc/os-release && echo "$VERSION_CODENAME")
    for list in /etc/apt/sources.list /etc/apt/sources.list.d/*.{list,sources}; do
        if [ -e "$list" ]; then sources+=("$list"); fi
    done
    mmdebstrap --quiet --variant=apt --format=null --dpkgopt=force-unsafe-io "$@" "$release" /dev/null "${sources[@]}"
}

# unpack_libcxx FOLDER: the headers of libc++ alone. The package, installed, would displace the libunwind-dev that others
# need.
unpack_libcxx() (
    [ ! -d "$1/usr" ] || return 0
    mkdir -p "$1"
    cd "$1" || exit
    get=(apt-get -qq -o APT::Sandbox::User=root download libc++-14-dev)
    "${get[@]}" || { apt-get -qq update && "${get[@]}"; }
    dpkg -x libc++-14-dev_*.deb .
)
