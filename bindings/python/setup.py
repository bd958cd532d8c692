# SPDX-License-Identifier: MIT
"""Tags the wheel: for one kind of machine if the library lies in it (scripts/wheel.sh puts it), for any if not."""
import os
from pathlib import Path

from setuptools import Distribution, setup
from wheel.bdist_wheel import bdist_wheel

BUNDLED = Path(__file__).with_name("libzelt").joinpath("libzelt.so.1").exists()


class Tagged(bdist_wheel):
    def get_tag(self):
        tag = super().get_tag()
        return ("py3", "none", os.environ.get("LIBZELT_PLATFORM", tag[2])) if BUNDLED else tag


class Binary(Distribution):
    def has_ext_modules(self):
        return BUNDLED


setup(cmdclass={"bdist_wheel": Tagged}, distclass=Binary)
