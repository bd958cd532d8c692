#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the Debian packages of HEAD in out/debian, twice: in other folders, at other times, with other settings of the
# user, which must give the same bytes. Then lintian, and in a new Debian of the host's release, made in a temporary
# folder, the packages are installed, tried by debian/tests and purged.
#   --quick   builds without the tests
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
need "${package_packages[@]}"

options="parallel=$(nproc)"
first=$options
[ "${1-}" != --quick ] || first="$options nocheck"
tarball=$PWD/$(scripts/release.sh --tarball | tail -n 1)
folder=$(basename "$tarball" .tar.xz)
work=build/package
rm -rf $work out/debian
mkdir -p $work out/debian

# build NAME UMASK LOCALE TIMEZONE OPTIONS: the packages, in a folder of this name
build() (
    umask "$2"
    mkdir -p "$work/$1"
    cd "$work/$1"
    cp "$tarball" "${folder/-/_}.orig.tar.xz"
    tar --no-same-permissions -xf "$tarball"
    cd "$folder"
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/nonexistent LC_ALL="$3" TZ="$4" DEB_BUILD_OPTIONS="$5" \
        dpkg-buildpackage -us -uc >../log 2>&1 || { tail -n 30 ../log >&2 && exit 1; }
)
echo "== build"
build first 022 C.UTF-8 UTC "$first"
echo "== build again"
build a-second-one 077 C Asia/Kathmandu "$options nocheck"
mv $work/first/*.{deb,dsc,tar.xz,changes,buildinfo} out/debian
# The source package keeps the permissions that its files have.
(cd out/debian && sha256sum -- *.deb) >$work/sums
(cd $work/a-second-one && sha256sum --check --quiet) <$work/sums ||
    { echo "The packages differ: diffoscope tells how" >&2 && exit 1; }

echo "== lintian"
lintian -I --pedantic --fail-on error,warning,info,pedantic --allow-root out/debian/*.changes

echo "== a new Debian"
packages=$(sed -n 's/^Package: //p' debian/control | paste -sd' ')
# shellcheck disable=SC2016,SC2154 # the new root is mmdebstrap's $1
new_debian --customize-hook="copy-in $(echo out/debian/*.deb) /tmp" \
    --customize-hook="$inside 'apt-get install -y -qq /tmp/*.deb'" \
    --customize-hook="autopkgtest -B --output-dir=$work/tests out/debian/*.deb out/debian/*.dsc -- chroot"' "$1"' \
    --customize-hook="$inside 'apt-get purge -y -qq $packages
        left=\$(find / -xdev \( -path /proc -o -path /tmp \) -prune -o -name \"*zelt*\" -print)
        test -z \"\$left\"'" >$work/new.log 2>&1 || { tail -n 50 $work/new.log >&2 && exit 1; }
cat $work/tests/summary
echo "installed, tried and purged: $packages"

echo "== out/debian"
(cd out/debian && stat -c '%10s %n' -- *.deb)
