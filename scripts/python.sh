#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The Python package: types, tests, doctests, and its wheel in a fresh environment.
#   --guide    makes the pictures of docs/python.md again
#   --bench    times it beside OpenCV and Pillow; writes the table of docs/performance.md
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
need "${python_packages[@]}"

python=/usr/bin/python3 package=bindings/python
cmake --preset x86-64 -DZELT_TESTS=AUTO -DZELT_BENCH=AUTO >/dev/null
cmake --build --preset x86-64 --target zelt zelt_tool -- --quiet
export LIBZELT=$PWD/build/x86-64/libzelt.so.1 ZELT=$PWD/build/x86-64/tools/zelt/zelt PYTHONDONTWRITEBYTECODE=1
export PYTHONPATH=$PWD/$package

case ${1-} in
--guide) exec $python $package/examples/guide.py samples docs ;;
--bench)
    need python3-opencv
    exec $python $package/bench.py docs/performance.md
    ;;
esac
(cd $package && mypy --no-error-summary --cache-dir=../../build/mypy libzelt && $python -m pytest)
scripts/wheel.sh
