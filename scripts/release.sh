#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the release of HEAD in out/: the tarball, what an SPDX document says of it, and their checksums. All bytes follow
# from the commit. Refused if versions disagree, the change log does not tell of this one, a clone gives another tarball,
# the tarball's builds differ, or it does not build where there is nothing but a compiler.
#   --tarball  the tarball alone, without checks; prints its name
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
need "${release_packages[@]}"

# archive REPOSITORY: the commit's tarball, whatever the user's settings are
archive() {
    git -C "$1" -c tar.umask=0022 -c core.attributesFile=/dev/null archive --format=tar --prefix="$name/" "$commit" |
        xz --threads=1 -9
}

commit=$(git rev-parse HEAD)
version=$(git show "$commit:include/zelt/common.h" | sed -n 's/^#define ZELT_VERSION_[A-Z]* //p' | paste -sd.)
name=libzelt-$version
tarball=$name.tar.xz
mkdir -p out
archive . >"out/$tarball"
[ "${1-}" != --tarball ] || { echo "out/$tarball" && exit; }

work=build/release
rm -rf $work
mkdir -p $work
complain() { echo "$*" >&2 && exit 1; }

echo "== $tarball: $(stat -c %s "out/$tarball") bytes of $commit"
git clone --quiet --depth 1 "file://$PWD" $work/clone
archive $work/clone | cmp - "out/$tarball" || complain "A clone gives another tarball"
tar -C $work -xf "out/$tarball"

echo "== versions"
# agree FILE EXPRESSION: the version that the expression takes out of a line is this one.
agree() {
    local said
    said=$(sed -nE "$2" "$work/$name/$1" | head -n 1)
    echo "$said $1"
    [ "$said" = "$version" ] || complain "$1 says ${said:-nothing} instead of $version"
}
agree CHANGELOG.md 's/^## ([0-9.]+) \([0-9]{4}-[0-9]{2}-[0-9]{2}\)$/\1/p'
agree debian/changelog 's/^libzelt \((.*)-[^-]*\) .*/\1/p'
agree bindings/python/libzelt/__init__.py 's/^__version__ = "(.*)"$/\1/p'
manifest='^ *"?version"?(:| =) "([^"]*)",?$'
manifests=(--include=package.json --include=vcpkg.json --include=conanfile.py)
for file in $(cd "$work/$name" && grep -rlE "$manifest" "${manifests[@]}" .); do
    agree "$file" "s/$manifest/\\2/p"
done
sed -n "/^## $version /,/^## /p" "$work/$name/CHANGELOG.md" | grep -q '^- ' || complain "CHANGELOG.md tells nothing of $version"

echo "== two builds"
# build NAME UMASK: what is installed of a build in a folder of this name
build() (
    export CCACHE_DISABLE=1  # or the second one would be the first
    umask "$2"
    mkdir -p "$work/$1"
    tar -C "$work/$1" --no-same-permissions -xf "out/$tarball"
    cd "$work/$1"
    cmake -S "$name" -B build -G Ninja -DZELT_TESTS=OFF -DZELT_BENCH=OFF -DZELT_GSTREAMER=OFF -DZELT_TOOL=ON >log
    cmake --build build >>log
    DESTDIR=$PWD/install cmake --install build >>log
    cd install && find . -type f -print0 | sort -z | xargs -0 sha256sum
)
build first 022 >$work/first.sums
build a-second-one 077 >$work/second.sums
diff $work/first.sums $work/second.sums || complain "The builds differ"
echo "$(wc -l <$work/first.sums) files, equal"

echo "== a new Debian"
scripts/bare.sh "out/$tarball" >$work/bare.log 2>&1 || { tail -n 30 $work/bare.log >&2 && complain "It does not build"; }
grep -E '^[-a-z+/]+ needs |^zelt ' $work/bare.log

scripts/sbom.py "$version" "out/$tarball" "$(git log -1 --format=%ct "$commit")" >"out/$name.spdx.json"
(cd out && sha256sum "$tarball" "$name.spdx.json" | tee "$name.sha256")
