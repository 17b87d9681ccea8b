"""The drawings of zelmath.plot: their data checked against the sample's
LandXML file read here with ElementTree (stations, radii, points, PVIs) and
against the clothoid's law, curvature linear in the length."""

import xml.etree.ElementTree as ET

import numpy as np
import pytest

import zelmath
from conftest import SAMPLE_ALIGNMENT

matplotlib = pytest.importorskip("matplotlib")
matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402

import zelmath.plot  # noqa: E402

NS = {"x": "http://www.landxml.org/schema/LandXML-1.2"}
# The sample's joints meet to a millimetre or better.
JOINT_TOLERANCE = 0.001  # metres
# Curvatures are compared to rounding: 1/R is about 1e-3 1/m.
CURVATURE_TOLERANCE = 1e-12  # 1/m


def file_elements():
    """(tag, staStart, length, radiusStart, radiusEnd, rot, start east/north) from the file."""
    root = ET.parse(SAMPLE_ALIGNMENT).getroot()
    out = []
    for e in root.find(".//x:CoordGeom", NS):
        tag = e.tag.split("}")[1]
        north, east = map(float, e.find("x:Start", NS).text.split())

        def radius(name):
            v = e.get(name, e.get("radius", "INF"))
            return np.inf if v == "INF" else float(v)

        out.append((tag, float(e.get("staStart")), float(e.get("length")), radius("radiusStart"),
                    radius("radiusEnd"), e.get("rot"), east, north))
    return out


def lines_by_gid(ax, prefix):
    return [l for l in ax.get_lines() if (l.get_gid() or "").startswith(prefix)]


@pytest.fixture(autouse=True)
def close_figures():
    yield
    plt.close("all")


def test_curvature_of_a_clothoid_is_a_ramp_and_joints_sit_at_the_element_stations(sample):
    ax = zelmath.plot.curvature(sample)
    assert isinstance(ax, matplotlib.axes.Axes)
    elements = file_elements()
    curves = lines_by_gid(ax, "element-")
    assert len(curves) == len(elements)
    for (tag, start, length, r1, r2, rot, _, _), line in zip(elements, curves):
        x, y = line.get_xdata(), line.get_ydata()
        assert x[0] == start and x[-1] == pytest.approx(start + length, abs=zelmath.plot.END_INSET * 1.01)
        sign = 1.0 if rot == "cw" else -1.0
        k1, k2 = sign / r1, sign / r2  # 1/INF is 0
        if tag == "Line":
            np.testing.assert_array_equal(y, 0.0)
        elif tag == "Curve":
            np.testing.assert_allclose(y, sign / float(r1), rtol=0, atol=CURVATURE_TOLERANCE)
        elif sample.elements()[curves.index(line)].type == "clothoid":
            # A straight ramp from the start curvature to the end curvature.
            ramp = k1 + (k2 - k1) * (x - start) / length
            np.testing.assert_allclose(y, ramp, rtol=0, atol=CURVATURE_TOLERANCE)
    joints = sorted(l.get_xdata()[0] for l in lines_by_gid(ax, "joint"))
    expected = [e[1] for e in elements] + [elements[-1][1] + elements[-1][2]]
    np.testing.assert_allclose(joints, expected, rtol=0, atol=1e-9)


def test_plan_starts_each_element_at_its_file_point(sample):
    ax = zelmath.plot.plan(sample, points=(np.array([2602173.5]), np.array([1200755.4])))
    elements = file_elements()
    curves = lines_by_gid(ax, "element-")
    assert len(curves) == len(elements)
    for e, line in zip(elements, curves):
        assert line.get_xdata()[0] == pytest.approx(e[6], abs=JOINT_TOLERANCE)
        assert line.get_ydata()[0] == pytest.approx(e[7], abs=JOINT_TOLERANCE)
    (pts,) = lines_by_gid(ax, "points")
    assert list(pts.get_xdata()) == [2602173.5]


def test_profile_follows_the_grade_lines_away_from_the_curves(sample):
    ax = zelmath.plot.profile(sample)
    root = ET.parse(SAMPLE_ALIGNMENT).getroot()
    pvis = [tuple(map(float, p.text.split())) for p in root.find(".//x:ProfAlign", NS)]
    (marks,) = lines_by_gid(ax, "pvi")
    np.testing.assert_array_equal(marks.get_xdata(), [p[0] for p in pvis])
    np.testing.assert_array_equal(marks.get_ydata(), [p[1] for p in pvis])
    (line,) = lines_by_gid(ax, "design_height")
    s, h = line.get_xdata(), line.get_ydata()
    # The first vertical curve is 300 m long about the second PVI: up to
    # 100 m before its start the profile is the first grade line.
    (s0, h0), (s1, h1) = pvis[0], pvis[1]
    grade = s <= s1 - 150.0 - 100.0
    assert grade.sum() > 10
    np.testing.assert_allclose(h[grade], h0 + (h1 - h0) * (s[grade] - s0) / (s1 - s0), rtol=0, atol=1e-9)


def test_offsets_mark_the_points_outside_the_tolerance():
    table = {"station": np.array([1.0, 2.0, 3.0, 4.0]), "offset": np.array([0.01, -0.05, 0.2, -0.3]),
             "status": np.array([0, 0, 0, int(zelmath.Status.BEYOND_END)])}
    ax = zelmath.plot.offsets(table, tolerance=0.1)
    (inside,) = lines_by_gid(ax, "offsets")
    (outside,) = lines_by_gid(ax, "outside")
    assert list(inside.get_xdata()) == [1.0, 2.0]
    # The point beyond the end is not drawn.
    assert list(outside.get_xdata()) == [3.0]
    band = sorted(l.get_ydata()[0] for l in lines_by_gid(ax, "tolerance"))
    assert band == [-0.1, 0.1]


def test_offsets_of_a_station_table(sample, sample_points):
    _, east, north, height = sample_points
    r = sample.station(east, north, height)
    ax = zelmath.plot.offsets(r)
    (dots,) = lines_by_gid(ax, "offsets")
    on = r.status == zelmath.Status.ON
    np.testing.assert_array_equal(dots.get_ydata(), r.offset[on])
