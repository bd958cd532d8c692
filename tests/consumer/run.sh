#!/bin/sh
# Installs a build below a new prefix, builds the consumer against it, and runs it: what it prints, what it is linked with,
# and which library the loader picks.   run.sh BUILD SCRATCH LIBDIR CMAKE
set -eu
build=$1 scratch=$2 libdir=$3 cmake=$4
here=$(dirname "$0")
fail() { echo "$*" >&2 && exit 1; }

rm -rf "$scratch"
"$cmake" --install "$build" --prefix "$scratch/usr" >/dev/null
PKG_CONFIG_PATH=$scratch/usr/$libdir/pkgconfig "$cmake" -S "$here" -B "$scratch/build" -G Ninja \
    -DCMAKE_PREFIX_PATH="$scratch/usr" >/dev/null
"$cmake" --build "$scratch/build" >/dev/null

for program in package_c package_cpp pkgconfig_c pkgconfig_cpp static_c static_cpp; do
    path=$scratch/build/$program
    said=$(LD_LIBRARY_PATH=$scratch/usr/$libdir "$path")
    [ "$said" = "200 200 200" ] || fail "$program says $said"
    case $program in static*) expected= ;; *) expected=libzelt.so.1 ;; esac
    needed=$(readelf -dW "$path" | sed -n 's/.*NEEDED.*\[\(.*\)\]/\1/p' | grep -vE '^lib(c|m|gcc_s|stdc\+\+)\.so' || true)
    [ "$needed" = "$expected" ] || fail "$program needs $needed"
done
needed=$(readelf -dW "$scratch/build/package_c" | grep -c NEEDED)
[ "$needed" = 2 ] || fail "the C consumer needs $needed libraries, not libzelt and libc alone"

picked() { LD_LIBRARY_PATH=$scratch/usr/$libdir LD_DEBUG=libs "$scratch/build/package_c" 2>&1 >/dev/null |
    sed -n "s|.*calling init: $scratch/usr/$libdir/\(.*libzelt.*\)|\1|p"; }
[ -d "$scratch/usr/$libdir/glibc-hwcaps" ] || exit 0
if grep -q avx2 /proc/cpuinfo; then
    case $(picked) in glibc-hwcaps/x86-64-v3/libzelt.so.1*) ;; *) fail "the loader picked $(picked)" ;; esac
    echo "With AVX2 the loader picks $(picked)"
    export GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX2
fi
case $(picked) in libzelt.so.1*) ;; *) fail "without AVX2 the loader picked $(picked)" ;; esac
echo "Without it $(picked)"
