"""The element classes against values computed here from the geometry itself:
circle centres, Fresnel integrals by numerical quadrature, the cubic
parabola's ordinate, the half-sine's curvature, the vertical parabola."""

import math

import numpy as np
import pytest

import zelmath
from conftest import SAMPLE_ALIGNMENT

# Straights and arcs are closed forms: agreement to rounding.
CLOSED_FORM = 1e-9  # metres
# The clothoid's four-term series at L / A = 0.5 stays far below this.
SERIES = 1e-6  # metres
# The foot search on a transition stops below a 0.4 mm step.
FOOT_SEARCH = 1e-3  # metres
# Quadrature points of the independent Fresnel integrals (Simpson's rule).
QUADRATURE_POINTS = 20001


def simpson(f, a, b, n=QUADRATURE_POINTS):
    x = np.linspace(a, b, n)
    y = f(x)
    h = (b - a) / (n - 1)
    return h / 3 * (y[0] + y[-1] + 4 * y[1:-1:2].sum() + 2 * y[2:-1:2].sum())


def test_line_points_and_projection():
    e = zelmath.Line.from_start((100.0, 200.0), math.radians(30.0), 50.0, start_station=1000.0)
    assert e.type == "line" and e.length == pytest.approx(50.0, abs=CLOSED_FORM)
    p = e.point_at(1020.0)
    assert p.east == pytest.approx(100.0 + 20.0 * math.sin(math.radians(30.0)), abs=CLOSED_FORM)
    assert p.north == pytest.approx(200.0 + 20.0 * math.cos(math.radians(30.0)), abs=CLOSED_FORM)
    assert p.radius == 0.0
    # 3 m to the right of the point at 1020: right of azimuth a is a + 90 degrees.
    right = math.radians(120.0)
    q = e.project(p.east + 3.0 * math.sin(right), p.north + 3.0 * math.cos(right))
    assert q.status == zelmath.Status.ON
    assert q.station == pytest.approx(1020.0, abs=CLOSED_FORM)
    assert q.offset == pytest.approx(3.0, abs=CLOSED_FORM)


def test_arc_quarter_circle():
    radius = 100.0
    # Heading North from the origin and bending right: the centre lies at (R, 0).
    e = zelmath.Arc.from_start((0.0, 0.0), 0.0, math.pi * radius / 2, radius)
    assert e.end[0] == pytest.approx(radius, abs=CLOSED_FORM)
    assert e.end[1] == pytest.approx(radius, abs=CLOSED_FORM)
    mid = e.point_at(math.pi * radius / 4)
    assert mid.east == pytest.approx(radius - radius * math.cos(math.pi / 4), abs=CLOSED_FORM)
    assert mid.north == pytest.approx(radius * math.sin(math.pi / 4), abs=CLOSED_FORM)
    assert mid.azimuth == pytest.approx(math.pi / 4, abs=1e-12)
    assert mid.radius == radius
    # A point 10 m farther from the centre lies on the outside, the left.
    q = e.project(radius - 110.0 * math.cos(math.pi / 4), 110.0 * math.sin(math.pi / 4))
    assert q.status == zelmath.Status.ON
    assert q.offset == pytest.approx(-10.0, abs=CLOSED_FORM)
    assert q.station == pytest.approx(math.pi * radius / 4, abs=CLOSED_FORM)


def test_clothoid_from_a_straight_against_fresnel_integrals():
    length, radius = 100.0, 400.0
    a2 = length * radius  # A^2 = R L
    # Heading East, bending right (towards South).
    e = zelmath.Clothoid.from_start((0.0, 0.0), math.pi / 2, length, 0.0, radius)
    assert e.parameter == pytest.approx(math.sqrt(a2), abs=CLOSED_FORM)
    for s in (25.0, 50.0, 100.0):
        x = simpson(lambda t: np.cos(t * t / (2 * a2)), 0.0, s)
        y = simpson(lambda t: np.sin(t * t / (2 * a2)), 0.0, s)
        p = e.point_at(s)
        assert p.east == pytest.approx(x, abs=SERIES)
        assert p.north == pytest.approx(-y, abs=SERIES)
        # Curvature linear in the length: R(s) = A^2 / s.
        assert p.radius == pytest.approx(a2 / s, rel=1e-9)
        assert p.azimuth == pytest.approx(math.pi / 2 + s * s / (2 * a2), abs=1e-9)


def test_clothoid_projection_returns_station_and_offset():
    e = zelmath.Clothoid.from_start((500.0, 500.0), 1.0, 120.0, 1500.0, 600.0, start_station=2000.0)
    for s, off in ((2010.0, 2.5), (2060.0, -4.0), (2115.0, 1.0)):
        p = e.point_at(s)
        right = p.azimuth + math.pi / 2
        q = e.project(p.east + off * math.sin(right), p.north + off * math.cos(right))
        assert q.status == zelmath.Status.ON
        assert q.station == pytest.approx(s, abs=FOOT_SEARCH)
        assert q.offset == pytest.approx(off, abs=FOOT_SEARCH)


def test_points_off_the_element_ends():
    e = zelmath.Line((0.0, 0.0), (0.0, 100.0))
    before = e.project(1.0, -5.0)
    beyond = e.project(-1.0, 107.0)
    assert before.status == zelmath.Status.BEFORE_START and before.along == pytest.approx(-5.0)
    assert beyond.status == zelmath.Status.BEYOND_END and beyond.along == pytest.approx(7.0)
    assert e.project(math.nan, 0.0).status == zelmath.Status.INVALID


def test_cubic_parabola_ordinate():
    length, radius = 80.0, 300.0
    # y = x^3 / (6 R X), heading East, bending left (towards North): radius < 0.
    end = (length, length * length / (6 * radius))
    e = zelmath.CubicParabola((0.0, 0.0), end, length, 0.0, -radius)
    # In the element's own frame (origin at the start, x along its main
    # tangent, y to the left) the points lie on the cubic parabola through its
    # curved end, with the abscissa in proportion to the station.
    a0 = e.point_at(0.0).azimuth
    ux, uy = math.sin(a0), math.cos(a0)

    def local(p):
        return p.east * ux + p.north * uy, p.north * ux - p.east * uy

    x_end, _ = local(e.point_at(length))
    for s in (10.0, 40.0, 70.0):
        p = e.point_at(s)
        x, y = local(p)
        assert x == pytest.approx(x_end * s / length, abs=SERIES)
        assert y == pytest.approx(x**3 / (6 * radius * x_end), abs=SERIES)
        # The curvature grows with the abscissa: R X / x.
        assert p.radius == pytest.approx(-radius * length / s, rel=1e-9)
    # The element's frame is the one the end points give, to a few millimetres.
    p = e.point_at(length)
    assert math.hypot(p.east - end[0], p.north - end[1]) < 0.005


def test_half_sine_curvature_and_end():
    length, radius = 100.0, 1500.0
    # The end point by integrating the curvature (1 - cos(pi l / L)) / (2 R)
    # twice, heading East and bending right.
    n = QUADRATURE_POINTS
    s = np.linspace(0.0, length, n)
    k = (1 - np.cos(np.pi * s / length)) / (2 * radius)
    theta = np.concatenate([[0.0], np.cumsum((k[1:] + k[:-1]) / 2 * np.diff(s))])
    east = np.trapz(np.cos(theta), s)
    north = -np.trapz(np.sin(theta), s)
    e = zelmath.HalfSine((0.0, 0.0), (east, north), length, 0.0, radius)
    for l in (25.0, 50.0, 75.0):
        assert e.point_at(l).radius == pytest.approx(2 * radius / (1 - math.cos(math.pi * l / length)), rel=1e-9)
    # The element's series carries a constant term: 0.07 mm at R = 1500 m, L = 100 m.
    p = e.point_at(length)
    assert math.hypot(p.east - east, p.north - north) < 2e-4


def test_shaped_transition_from_a_curve_into_a_curve():
    # Bloss from R 1200 m into R 400 m over 100 m, heading East and bending
    # right: direction and position by Simpson's rule on the curvature
    # 1/1200 + (1/400 - 1/1200) (3 t^2 - 2 t^3).
    length, r1, r2 = 100.0, 1200.0, 400.0

    def theta(s):
        t = np.asarray(s) / length
        k1, k2 = 1 / r1, 1 / r2
        # The closed form of the integral of the curvature.
        return k1 * t * length + (k2 - k1) * length * (t**3 - t**4 / 2)

    east = simpson(lambda s: np.cos(theta(s)), 0.0, length)
    north = simpson(lambda s: -np.sin(theta(s)), 0.0, length)
    e = zelmath.ShapedTransition("bloss", (0.0, 0.0), (east, north), length, r1, r2)
    assert e.type == "shaped_transition" and e.curve == "bloss" and e.shape == "bloss"
    assert e.point_at(length).radius == pytest.approx(r2, rel=1e-12)
    # End direction: start + k1 L + (k2 - k1) L / 2, East is pi / 2.
    assert e.point_at(length).azimuth == pytest.approx(math.pi / 2 + length / r1 + (1 / r2 - 1 / r1) * length / 2,
                                                       abs=1e-12)
    p = e.point_at(50.0)
    assert p.east == pytest.approx(simpson(lambda s: np.cos(theta(s)), 0.0, 50.0), abs=1e-9)
    assert p.north == pytest.approx(simpson(lambda s: -np.sin(theta(s)), 0.0, 50.0), abs=1e-9)
    f = e.project(p.east + 2.0 * math.cos(p.azimuth), p.north - 2.0 * math.sin(p.azimuth))
    assert f.station == pytest.approx(50.0, abs=1e-6)
    assert f.offset == pytest.approx(2.0, abs=1e-6)
    with pytest.raises(zelmath.ArgumentError):
        zelmath.ShapedTransition("spline", (0.0, 0.0), (east, north), length, r1, r2)


def test_vertical_parabola():
    # Grades +2 % and -2 % meeting at station 100, height 102; vertex radius 2000 m:
    # the curve spans R (g1 - g2) = 80 m and sags the PVI by 80 * 0.04 / 8.
    c = zelmath.VerticalCurve((0.0, 100.0), (100.0, 102.0), (200.0, 100.0), 2000.0, "parabola")
    assert c.start[0] == pytest.approx(60.0, abs=1e-9)
    assert c.end[0] == pytest.approx(140.0, abs=1e-9)
    h, g = c.height_at(100.0)
    assert h == pytest.approx(102.0 - 80.0 * 0.04 / 8, abs=1e-9)
    assert g == pytest.approx(0.0, abs=1e-12)
    h, g = c.height_at(80.0)
    assert g == pytest.approx(0.02 - 20.0 / 2000.0, abs=1e-9)


def test_vertical_circle():
    radius = 5000.0
    c = zelmath.VerticalCurve((0.0, 100.0), (100.0, 101.0), (200.0, 100.0), radius, "circle")
    # Symmetric crest: the top at the PVI station lies R (1 - cos) below the... checked
    # through the circle itself: every point is R from the centre below the top.
    top = c.height_at(100.0)[0]
    for s in (c.start[0], 90.0, 110.0, c.end[0]):
        h = c.height_at(s)[0]
        assert math.hypot(s - 100.0, h - (top - radius)) == pytest.approx(radius, abs=1e-6)
    with pytest.raises(zelmath.ArgumentError):
        zelmath.VerticalCurve((0.0, 0.0), (1.0, 1.0), (2.0, 0.0), 100.0, "spline")


def test_alignment_elements_match_the_alignment():
    a = zelmath.read_landxml(SAMPLE_ALIGNMENT)
    elements = a.elements()
    assert elements[0].start_station == a.start_station
    assert elements[-1].end_station == a.end_station
    kinds = {e.type for e in elements}
    assert kinds == {"line", "arc", "clothoid", "cubic_parabola", "half_sine"}
    for before, after in zip(elements, elements[1:]):
        assert before.end_station == after.start_station
    for e in elements:
        s = (e.start_station + e.end_station) / 2
        t = a.point_at(np.array([s]))
        p = e.point_at(s)
        assert (t.east[0], t.north[0], t.radius[0]) == (p.east, p.north, p.radius)


def test_help_shows_units():
    assert "metres" in zelmath.Clothoid.__doc__
    assert "radians" in zelmath.Clothoid.from_start.__doc__
    assert "positive to the" in zelmath.StationTable.__doc__
    assert "metres" in zelmath.Alignment.station.__doc__


hypothesis = pytest.importorskip("hypothesis")
st = hypothesis.strategies

# Transitions of railway sizes: radii from 300 m to 5 km either way, lengths
# from 20 m to 200 m, points up to 5 m off the axis.
RADII = st.floats(300.0, 5000.0)
LENGTHS = st.floats(20.0, 200.0)
OFFSETS = st.floats(-5.0, 5.0)
FRACTIONS = st.floats(0.02, 0.98)


@hypothesis.settings(max_examples=200, deadline=None, derandomize=True)
@hypothesis.given(radius=RADII, length=LENGTHS, right=st.booleans(), into_curve=st.booleans(),
                  fraction=FRACTIONS, offset=OFFSETS, azimuth=st.floats(0.0, 2 * math.pi, exclude_max=True))
def test_a_point_beside_a_clothoid_projects_back(radius, length, right, into_curve, fraction, offset, azimuth):
    r = radius if right else -radius
    r1, r2 = (0.0, r) if into_curve else (r, 0.0)
    e = zelmath.Clothoid.from_start((1000.0, 2000.0), azimuth, length, r1, r2)
    s = fraction * length
    p = e.point_at(s)
    side = p.azimuth + math.pi / 2
    q = e.project(p.east + offset * math.sin(side), p.north + offset * math.cos(side))
    assert q.status == zelmath.Status.ON
    assert q.station == pytest.approx(s, abs=FOOT_SEARCH)
    assert q.offset == pytest.approx(offset, abs=FOOT_SEARCH)
