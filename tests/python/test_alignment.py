"""The vectorised alignment calls against zel's output on the sample, against
the positions the sample generator laid the points out at, and at the edges
(empty and long arrays, bad coordinates, errors, pickling)."""

import io
import math
import pickle

import numpy as np
import pytest

import zelmath
from conftest import SOURCE_DIR, SAMPLE_ALIGNMENT, SAMPLE_EXPECTED, SAMPLE_POINTS, read_csv, run_zel

# Decimals zel writes: lengths to a tenth of a millimetre, angles in gon to six.
LENGTH_DECIMALS = 4
GON_DECIMALS = 6
GRADIENT_DECIMALS = 4
GON_PER_RADIAN = 200.0 / math.pi
# The sample generator lays the points out from exact geometry; the element
# library's transitions (four-term clothoid series, half-sine series with its
# constant term, foot search to 0.4 mm) stay within this of it on the sample.
LAYOUT_TOLERANCE = 0.002  # metres


def fixed(value, decimals):
    """A number as zel writes it: fixed decimals, no "-0", nothing for NaN."""
    if not math.isfinite(value):
        return ""
    text = f"{value:.{decimals}f}"
    if text.startswith("-") and set(text[1:]) <= {"0", "."}:
        text = text[1:]
    return text


def test_station_equals_zel_station_to_the_last_digit(zel_program, sample, sample_points):
    ids, east, north, height = sample_points
    rows = read_csv(io.StringIO(run_zel(zel_program, "station", SAMPLE_ALIGNMENT, SAMPLE_POINTS)))
    assert len(rows) == len(ids) > 3000
    r = sample.station(east, north, height)
    statuses = r.status_name
    types = r.element_type_name
    for i, row in enumerate(rows):
        assert row["id"] == ids[i]
        got = {
            "element": str(r.element[i]) if r.element[i] >= 0 else "",
            "type": types[i],
            "station": fixed(r.station[i], LENGTH_DECIMALS),
            "offset_right": fixed(r.offset[i], LENGTH_DECIMALS),
            "azimuth_gon": fixed(r.azimuth[i] * GON_PER_RADIAN, GON_DECIMALS),
            "radius": fixed(r.radius[i], LENGTH_DECIMALS),
            "design_height": fixed(r.design_height[i], LENGTH_DECIMALS),
            "height_difference": fixed(r.height_difference[i], LENGTH_DECIMALS),
            "tunnel_metre": fixed(r.tunnel_metre[i], LENGTH_DECIMALS),
            "status": statuses[i],
        }
        want = {k: row[k] for k in got}
        assert got == want, f"row {i + 2} ({ids[i]})"


def test_station_agrees_with_the_generated_layout(sample, sample_points):
    ids, east, north, height = sample_points
    expected = {row["id"]: row for row in read_csv(SAMPLE_EXPECTED)}
    r = sample.station(east, north, height)
    checked = 0
    for i, pid in enumerate(ids):
        if pid not in expected or r.status[i] != zelmath.Status.ON:
            continue
        e = expected[pid]
        assert abs(r.station[i] - float(e["station"])) < LAYOUT_TOLERANCE, pid
        assert abs(r.offset[i] - float(e["offset"])) < LAYOUT_TOLERANCE, pid
        assert abs(r.design_height[i] - float(e["design_height"])) < LAYOUT_TOLERANCE, pid
        checked += 1
    assert checked > 2900


def test_points_off_the_ends_get_their_status(sample, sample_points):
    ids, east, north, height = sample_points
    r = sample.station(east, north, height)
    names = dict(zip(ids, r.status_name))
    assert names["B01"] == names["B02"] == "before_start"
    assert names["E01"] == names["E02"] == "beyond_end"


def test_point_at_equals_zel_point(zel_program, sample):
    every = 25.0
    rows = read_csv(io.StringIO(run_zel(zel_program, "point", SAMPLE_ALIGNMENT, "--every", every)))
    t = sample.setting_out(every)
    assert len(t) == len(rows)
    for i, row in enumerate(rows):
        got = {
            "station": fixed(t.station[i], LENGTH_DECIMALS),
            "element": str(t.element[i]),
            "type": zelmath.ELEMENT_TYPE_NAMES[t.element_type[i]],
            "east": fixed(t.east[i], LENGTH_DECIMALS),
            "north": fixed(t.north[i], LENGTH_DECIMALS),
            "azimuth_gon": fixed(t.azimuth[i] * GON_PER_RADIAN, GON_DECIMALS),
            "radius": fixed(t.radius[i], LENGTH_DECIMALS),
            "design_height": fixed(t.design_height[i], LENGTH_DECIMALS),
            "gradient_percent": fixed(t.gradient[i] * 100.0, GRADIENT_DECIMALS),
            "tunnel_metre": fixed(t.tunnel_metre[i], LENGTH_DECIMALS),
        }
        assert got == {k: row[k] for k in got}, f"row {i + 2}"


def test_tunnel_metres_equal_zel_tm(zel_program, sample):
    for station in (12400.0, 13000.0, 14321.5, 16150.0):
        out = run_zel(zel_program, "tm", SAMPLE_ALIGNMENT, "--station", station)
        tm = sample.to_tunnel_metre(np.array([station]))[0]
        assert fixed(tm, LENGTH_DECIMALS) in out
        back = sample.from_tunnel_metre(np.array([tm]))[0]
        assert abs(back - station) < 1e-6


def test_point_at_projects_back_to_its_station(sample):
    stations = np.linspace(sample.start_station + 0.5, sample.end_station - 0.5, 2001)
    p = sample.point_at(stations)
    r = sample.station(p.east, p.north)
    # A point on the axis has offset 0 and the station it was set out at, to
    # the foot search's step limit on the transitions.
    assert np.all(r.status == zelmath.Status.ON)
    assert np.max(np.abs(r.station - stations)) < 0.001
    assert np.max(np.abs(r.offset)) < 0.001


def test_setting_out_table_stations():
    # Independent of the sample: a round-station table of a straight.
    import zelmath

    a = zelmath.parse_landxml(_STRAIGHT)
    t = a.setting_out(30.0)
    np.testing.assert_array_equal(t.station, [100.0, 120.0, 150.0, 180.0, 200.0])
    # Along a straight due East from (1000, 2000) the point is start + distance.
    np.testing.assert_allclose(t.east, 1000.0 + (t.station - 100.0), rtol=0, atol=1e-9)
    np.testing.assert_allclose(t.north, 2000.0, rtol=0, atol=1e-9)
    np.testing.assert_allclose(t.azimuth, math.pi / 2, rtol=0, atol=1e-12)


_STRAIGHT = """<?xml version="1.0"?>
<LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" version="1.2">
 <Alignments>
  <Alignment name="east" length="100" staStart="100">
   <CoordGeom>
    <Line staStart="100" length="100"><Start>2000 1000</Start><End>2000 1100</End></Line>
   </CoordGeom>
  </Alignment>
 </Alignments>
</LandXML>
"""


def test_straight_offsets_are_exact():
    a = zelmath.parse_landxml(_STRAIGHT)
    # Due East: right of the direction of travel is South.
    r = a.station(np.array([1050.0, 1025.0]), np.array([1997.0, 2004.5]))
    np.testing.assert_array_equal(r.station, [150.0, 125.0])
    np.testing.assert_array_equal(r.offset, [3.0, -4.5])
    assert list(r.status_name) == ["on", "on"]


@pytest.mark.parametrize("n", [0, 1, 10, 1_000_000])
def test_array_lengths(sample, n):
    rng = np.random.default_rng(n)
    s = rng.uniform(sample.start_station, sample.end_station, n)
    p = sample.point_at(s)
    r = sample.station(p.east, p.north)
    assert len(r) == n
    for col in r.keys():
        assert r[col].shape == (n,)
    assert r.station.dtype == np.float64 and r.status.dtype == np.int32
    if n:
        assert np.all(r.status == zelmath.Status.ON)
        assert np.max(np.abs(r.station - s)) < 0.001


def test_bad_coordinates_get_a_status_not_an_exception(sample):
    east = np.array([np.nan, np.inf, 2602173.5013, -np.inf, 2602173.5013])
    north = np.array([1200755.4, 1200755.4, np.nan, 1200755.4, 1200755.4079])
    r = sample.station(east, north, np.array([0.0, 0.0, 0.0, 0.0, np.inf]))
    assert list(r.status[:4]) == [zelmath.Status.INVALID] * 4
    assert np.all(np.isnan(r.station[:4])) and np.all(r.element[:4] == -1)
    # An infinite measured height is bad input too.
    assert r.status[4] == zelmath.Status.INVALID


def test_heights_are_optional(sample, sample_points):
    _, east, north, height = sample_points
    with_h = sample.station(east, north, height)
    without = sample.station(east, north)
    np.testing.assert_array_equal(with_h.station, without.station)
    assert np.all(np.isnan(without.height_difference))
    on = with_h.status == zelmath.Status.ON
    np.testing.assert_allclose(with_h.height_difference[on], height[on] - with_h.design_height[on], rtol=0, atol=0)


def test_inputs_of_other_types_are_converted(sample):
    # Lists and integer arrays are converted to float64.
    r1 = sample.station([2602173.0], [1200755.0])
    r2 = sample.station(np.array([2602173], dtype=np.int64), np.array([1200755], dtype=np.int32))
    assert r1.station[0] == r2.station[0] and r1.offset[0] == r2.offset[0]
    # A strided view gives the same as a contiguous array.
    strided = np.array([[2602173.0, 0.0]])[:, 0]
    r3 = sample.station(strided, np.array([1200755.0]))
    assert r3.station[0] == r1.station[0]


def test_errors_carry_the_library_message(tmp_path, sample):
    with pytest.raises(zelmath.IoError) as e:
        zelmath.read_landxml(tmp_path / "missing.xml")
    assert "missing.xml" in str(e.value)
    assert isinstance(e.value, OSError)

    bad = tmp_path / "bad.xml"
    bad.write_text(_STRAIGHT.replace('<Line staStart="100" length="100">', '<Spiral spiType="bloss" length="100">')
                   .replace("</Line>", "</Spiral>"))
    with pytest.raises(zelmath.LandXmlError) as e:
        zelmath.read_landxml(bad)
    assert str(e.value).startswith(str(bad) + ":")
    assert isinstance(e.value, zelmath.DataError) and isinstance(e.value, ValueError)

    with pytest.raises(zelmath.LandXmlError):
        zelmath.read_landxml(SAMPLE_ALIGNMENT, "no such track")
    with pytest.raises(zelmath.ArgumentError, match="different lengths"):
        sample.station(np.zeros(3), np.zeros(2))
    with pytest.raises(zelmath.ArgumentError, match="one-dimensional"):
        sample.station(np.zeros((2, 2)), np.zeros((2, 2)))
    with pytest.raises(zelmath.ArgumentError, match="positive"):
        sample.setting_out(0.0)
    with pytest.raises(zelmath.ArgumentError):
        sample.station(np.zeros(1), np.zeros(1), threads=-1)


def test_alignments_lists_names_and_picks_one():
    assert zelmath.alignments(SAMPLE_ALIGNMENT) == ["Track 1"]
    a = zelmath.read_landxml(SAMPLE_ALIGNMENT, "Track 1")
    assert a.name == "Track 1"
    assert a.start_station == 12400.0 and a.end_station == 16150.0


def test_alignment_is_immutable(sample):
    with pytest.raises(AttributeError):
        sample.name = "other"
    r = sample.station(np.array([2602173.5013]), np.array([1200755.4079]))
    with pytest.raises(ValueError):
        r.station[0] = 0.0


def test_pickle_round_trip(sample, sample_points):
    _, east, north, height = sample_points
    copy = pickle.loads(pickle.dumps(sample))
    assert copy.name == sample.name and copy.source == sample.source
    a, b = sample.station(east, north, height), copy.station(east, north, height)
    for col in a.keys():
        np.testing.assert_array_equal(a[col], b[col])


def test_pickle_keeps_the_tunnel_metre_reference():
    a = zelmath.read_landxml(SAMPLE_ALIGNMENT, reference_station=13000.0, reference_tunnel_metre=0.0,
                             same_direction=False)
    b = pickle.loads(pickle.dumps(a))
    assert b.tunnel_metre_reference == (13000.0, 0.0, False)
    s = np.array([12500.0, 13000.0, 14000.0])
    np.testing.assert_array_equal(a.to_tunnel_metre(s), b.to_tunnel_metre(s))
    assert a.to_tunnel_metre(np.array([13000.0]))[0] == 0.0
    # Against the stations: the tunnel metre falls as the station grows.
    tm = a.to_tunnel_metre(s)
    assert tm[0] > 0.0 > tm[2]


def test_pandas_form(sample, sample_points):
    pd = pytest.importorskip("pandas")
    ids, east, north, height = sample_points
    df = sample.station(east, north, height).to_pandas(index=pd.Index(ids, name="id"))
    assert list(df.columns) == list(zelmath.StationTable._columns)
    assert df.loc["P00001", "station"] == pytest.approx(14510.775, abs=LAYOUT_TOLERANCE)


def test_displayed_station_and_cant_equal_zel_station(zel_program, tmp_path):
    """Displayed stations (kilometre posts) and applied cant, as zel station writes them."""
    import zelmath

    data = SOURCE_DIR / "tests" / "data" / "landxml"
    for name, column in (("kilometre_posts.xml", "displayed_station"), ("cant_millimetres.xml", "applied_cant")):
        path = data / name
        a = zelmath.read_landxml(str(path))
        # Points beside the track, spread over its whole length.
        stations = np.linspace(a.start_station, a.end_station, 41)
        table = a.point_at(stations)
        east = table.east + 1.5 * np.cos(table.azimuth)
        north = table.north - 1.5 * np.sin(table.azimuth)
        points = tmp_path / f"{name}.csv"
        points.write_text("id,east,north\n" + "".join(f"p{i},{e!r},{n!r}\n" for i, (e, n) in enumerate(zip(east, north))))
        rows = read_csv(io.StringIO(run_zel(zel_program, "station", path, points)))
        r = a.station(east, north)
        assert len(rows) == len(r) == 41
        for i, row in enumerate(rows):
            expected = row[column]
            got = getattr(r, column)[i]
            if expected == "":
                assert np.isnan(got), (name, i)
            else:
                assert f"{got:.4f}" == expected, (name, i, got, expected)
    # Without equations the displayed station is the internal one and no region is in force.
    plain = zelmath.read_landxml(SAMPLE_ALIGNMENT)
    r = plain.station(np.array([2600200.0]), np.array([1200340.0]))
    assert r.displayed_station[0] == r.station[0]
    assert r.region[0] == -1
    assert np.isnan(r.applied_cant[0])


def test_unsymmetrical_parabola_heights():
    """The crest of unsym_parabola.xml: +2 % to the PVI at 250 (height 105),
    -2 % after it, 80 m of curve before and 120 m after. By hand: middle
    ordinate e = 80 * 120 * (-0.04) / 400 = -0.96; at 210 (40 m into the first
    arc) 103.4 + 0.8 - 0.96 / 4 = 103.96, gradient 0.02 - 1.92 * 40 / 6400 =
    0.008; at the PVI 104.04; at 310 (60 m before the end) 102.6 + 1.2 - 0.24 =
    103.56."""
    a = zelmath.read_landxml(SOURCE_DIR / "tests" / "data" / "landxml" / "unsym_parabola.xml")
    assert [p[2] for p in a.profile()] == ["", "unsym_parabola", ""]
    table = a.point_at([210.0, 250.0, 310.0])
    np.testing.assert_allclose(table.design_height, [103.96, 104.04, 103.56], rtol=0, atol=1e-9)
    np.testing.assert_allclose(table.gradient, [0.008, -0.004, -0.012], rtol=0, atol=1e-12)


def test_file_units_and_coordinate_system_as_the_file_declares_them():
    # us_survey_feet.xml: <Imperial linearUnit="USSurveyFoot" angularUnit="grads"
    # directionUnit="grads"/> and <CoordinateSystem epsgCode="2263"/>; its first
    # line runs 1000 US survey feet = 1000 * 1200 / 3937 m from station 1000 ft.
    feet = zelmath.read_landxml(SOURCE_DIR / "tests" / "data" / "landxml" / "us_survey_feet.xml")
    assert feet.file_units == {"length": "USSurveyFoot", "angle": "grads", "direction": "grads"}
    assert feet.coordinate_system == "EPSG:2263"
    assert feet.start_station == pytest.approx(1000 * 1200 / 3937, abs=1e-9)
    # The sample declares metres and radians, and no coordinate system.
    sample = zelmath.read_landxml(SAMPLE_ALIGNMENT)
    assert sample.file_units == {"length": "meter", "angle": "radians", "direction": "radians"}
    assert sample.coordinate_system is None
