# SPDX-License-Identifier: MIT
import os
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

from libzelt.formats import FORMATS, WORD

ROOT = Path(__file__).parents[3]
sys.path.insert(0, str(ROOT / "bindings/python/examples"))


@pytest.fixture(scope="session")
def samples():
    return ROOT / "samples"


@pytest.fixture(scope="session")
def zelt():
    """Runs the command-line tool, which the variable ZELT names."""
    if "ZELT" not in os.environ:
        pytest.skip("ZELT does not name the tool")
    return lambda *arguments: subprocess.run([os.environ["ZELT"], *map(str, arguments)], check=True,
                                             capture_output=True, text=True).stdout


def random_planes(name, width, height, seed=0):
    """Of a format, each an array of its own; 10-bit samples within their range"""
    random = np.random.default_rng(seed)
    format = next(f for f in FORMATS if name in (f.name, f.alias))
    deep = format.name in ("p010", "p210", "p410", "r10g10b10")
    return [random.integers(0, 1024 if deep else np.iinfo(p.dtype).max + 1, p.shape(width, height), p.dtype)
            for p in format.planes]


def flat(picture):
    """The bytes of a picture, plane after plane"""
    return b"".join(p.tobytes() for p in picture) if isinstance(picture, list) else picture.tobytes()
