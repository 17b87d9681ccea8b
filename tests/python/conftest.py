"""Shared fixtures of the Python tests: the sample data and the zel program."""

import csv
import os
import pathlib
import subprocess

import pytest

SOURCE_DIR = pathlib.Path(os.environ.get("ZEL_SOURCE_DIR", pathlib.Path(__file__).resolve().parents[2]))
SAMPLE_DIR = SOURCE_DIR / "data" / "sample"
SAMPLE_ALIGNMENT = SAMPLE_DIR / "alignment.xml"
SAMPLE_POINTS = SAMPLE_DIR / "points.csv"
SAMPLE_EXPECTED = SAMPLE_DIR / "points_expected.csv"


def read_csv(source):
    """Rows of a CSV file (a path or an open text stream) with a header, as dicts of strings."""
    if hasattr(source, "read"):
        return list(csv.DictReader(source))
    with open(source, newline="") as f:
        return list(csv.DictReader(f))


@pytest.fixture(scope="session")
def zel_program():
    """Path of the built zel program; the test is skipped without one."""
    path = os.environ.get("ZEL_PROGRAM")
    if not path or not os.path.exists(path):
        pytest.skip("the zel program is not built (ZEL_PROGRAM)")
    return path


def run_zel(program, *args):
    """zel's standard output for the arguments; fails the test on a non-zero exit."""
    done = subprocess.run([program, *map(str, args)], capture_output=True, text=True, timeout=60)
    assert done.returncode == 0, done.stderr
    return done.stdout


@pytest.fixture(scope="session")
def sample():
    import zelmath

    return zelmath.read_landxml(SAMPLE_ALIGNMENT)


@pytest.fixture(scope="session")
def sample_points():
    """The sample's measured points: ids and east, north, height arrays."""
    import numpy as np

    rows = read_csv(SAMPLE_POINTS)
    ids = [r["id"] for r in rows]
    cols = {k: np.array([float(r[k]) for r in rows]) for k in ("east", "north", "height")}
    return ids, cols["east"], cols["north"], cols["height"]
