#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the Python wheel with the library inside, as out/*.whl, without network; checks what its tag promises, that it
# runs wherever glibc is 2.17 or newer; and tries it in a fresh virtual environment.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
need "${wheel_packages[@]}"

python=/usr/bin/python3 work=build/wheel
cmake --preset x86-64 -DZELT_TESTS=AUTO -DZELT_TOOL=AUTO >/dev/null
cmake --build --preset x86-64 --target zelt -- --quiet

rm -rf $work
mkdir -p $work out
cp -r bindings/python $work/source
objcopy --strip-unneeded "$(realpath build/x86-64/libzelt.so)" $work/source/libzelt/libzelt.so.1
rm -f out/libzelt-*.whl
LIBZELT_PLATFORM=manylinux2014_$(uname -m) $python -m pip --quiet wheel --no-index --no-build-isolation --no-deps \
    --wheel-dir out ./$work/source
wheel=$(echo out/libzelt-*.whl)

$python -m zipfile -e "$wheel" $work/content
library=$work/content/libzelt/libzelt.so.1
newest=$(objdump -T $library | grep -oE 'GLIBC_[0-9.]+' | sort -Vu | tail -1)
needed=$(objdump -p $library | sed -n 's/^ *NEEDED *//p' | paste -sd' ')
if [ "$(printf '%s\n' "$newest" GLIBC_2.17 | sort -V | tail -1)" != GLIBC_2.17 ] || [ "$needed" != libc.so.6 ]; then
    echo "$wheel is not what its tag says: it needs $newest of at most GLIBC_2.17, and $needed" >&2
    exit 1
fi

$python -m venv --system-site-packages $work/venv  # for the system's NumPy
$work/venv/bin/pip --quiet install --no-index --no-deps "$wheel"
cd $work
env -u LIBZELT venv/bin/python -I -c '
import libzelt, numpy, sys
from pathlib import Path
loaded = Path(libzelt._library.library._name)
assert loaded.is_relative_to(sys.prefix), loaded
yuv = numpy.full((3, 2, 2), 128, numpy.uint8)
assert (libzelt.convert(yuv, "yuv444", "rgb888") == 128).all()
print(f"libzelt {libzelt.__version__} with {libzelt.kernels()} kernels")'
echo "$wheel: $(stat -c %s "../../$wheel") bytes, needs $newest and $needed"
