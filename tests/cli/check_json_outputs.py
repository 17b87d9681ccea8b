"""Machine-readable outputs of zel read back as a script or a GIS would.

zel info --json, the GeoJSON of zel station and zel point, and the alignment
exported by zel export are parsed with Python's json module, their values
compared with the CSV outputs and with the geometry of a hand-built alignment,
and the GeoJSON geometries read back with shapely.

Usage: check_json_outputs.py ZEL SAMPLE_DIR SCRATCH_DIR
"""
import csv
import io
import json
import math
import os
import subprocess
import sys

import shapely.geometry

ZEL, SAMPLE, SCRATCH = sys.argv[1:4]

# North 100 m from (E 1000, N 2000), then a right quarter circle of radius 100
# (centre E 1100, N 2100) into East; a 2 % grade from height 50.
HAND = """<?xml version="1.0"?>
<LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" version="1.2">
<Alignments><Alignment name="T" staStart="0"><CoordGeom>
<Line staStart="0" length="100"><Start>2000 1000</Start><End>2100 1000</End></Line>
<Curve rot="cw" radius="100" length="157.07963267948966" staStart="100"><Start>2100 1000</Start><Center>2100 1100</Center><End>2200 1100</End></Curve>
</CoordGeom>
<Profile><ProfAlign name="P"><PVI>0 50</PVI><PVI>300 56</PVI></ProfAlign></Profile>
</Alignment></Alignments></LandXML>
"""

failures = []


def check(condition, what):
    if not condition:
        failures.append(what)


def zel(*args):
    r = subprocess.run([ZEL, *args], capture_output=True, text=True, timeout=120)
    if r.returncode != 0:
        raise SystemExit(f"zel {' '.join(args)} failed with {r.returncode}: {r.stderr}")
    return r.stdout


hand = os.path.join(SCRATCH, f"json_hand_{os.getpid()}.xml")
with open(hand, "w") as f:
    f.write(HAND)
alignment = os.path.join(SAMPLE, "alignment.xml")
points = os.path.join(SAMPLE, "points.csv")

# --- zel info --json: the sample's element table and the hand alignment's values.
info = json.loads(zel("info", alignment, "--json"))
check(info["name"] == "Track 1", "info name")
check(info["element_count"] == 17 and len(info["elements"]) == 17, "info element count")
check(info["start_station"] == 12400.0 and info["end_station"] == 16150.0, "info stations")
check(info["length"] == 3750.0, "info length")
check(len(info["profile"]) == 5, "info profile points")
check(info["warnings"] == [], "info warnings")
for a, b in zip(info["elements"], info["elements"][1:]):
    check(abs(a["end_station"] - b["start_station"]) < 1e-9, f"element {a['index']} ends where the next starts")
hand_info = json.loads(zel("info", hand, "--json"))
arc = hand_info["elements"][1]
check(arc["type"] == "arc" and arc["start_radius"] == 100.0, "hand arc radius")
check(abs(arc["length"] - 50 * math.pi) < 1e-6, "hand arc length")
check(arc["start"] == [1000.0, 2100.0] and arc["end"] == [1100.0, 2200.0], "hand arc end points (east, north)")
check(hand_info["tunnel_metre"]["reference_station"] == 0.0, "hand tunnel-metre reference")

# --- zel station --format geojson against the CSV table of the same run.
table = list(csv.DictReader(io.StringIO(zel("station", alignment, points))))
measured = {r[0]: r for r in csv.reader(open(points)) if r and r[0] != "id"}
collection = json.loads(zel("station", alignment, points, "--format", "geojson"))
check(collection["type"] == "FeatureCollection", "station collection type")
features = collection["features"]
check(len(features) == len(table) == 3004, "one feature per point")
for row, feature in zip(table, features):
    props = feature["properties"]
    check(props["id"] == row["id"], "feature order")
    geometry = shapely.geometry.shape(feature["geometry"])
    check(geometry.geom_type == "Point" and geometry.is_valid, f"{row['id']}: a valid point")
    m = measured[row["id"]]
    check(abs(geometry.x - float(m[1])) < 1e-9 and abs(geometry.y - float(m[2])) < 1e-9,
          f"{row['id']}: the feature stands at the measured point")
    for column in ("station", "offset_right", "design_height", "tunnel_metre"):
        if row[column] == "":
            check(props[column] is None, f"{row['id']}: {column} is null where the table is empty")
        else:
            check(abs(props[column] - float(row[column])) < 1e-9, f"{row['id']}: {column} as in the table")
    check(props["status"] == row["status"], f"{row['id']}: status")

# --- zel point --format geojson: the features stand at the set-out points.
settings = json.loads(zel("point", hand, "--every", "25", "--format", "geojson"))
for feature in settings["features"]:
    p = shapely.geometry.shape(feature["geometry"])
    s = feature["properties"]["station"]
    if s <= 100:
        east, north = 1000.0, 2000.0 + s
    else:
        turn = (s - 100) / 100.0
        east, north = 1100.0 - 100 * math.cos(turn), 2100.0 + 100 * math.sin(turn)
    # The station property is rounded to 0.1 mm (the end, 100 + 50 pi, to
    # 257.0796), so the point computed from it may be off by as much.
    check(abs(p.x - east) < 5e-5 and abs(p.y - north) < 5e-5, f"set-out point at {s}")
    check(abs(p.z - (50 + 0.02 * s)) < 5e-5, f"set-out height at {s}")

# --- The GeoJSON tables state their units and carry the file's coordinate system.
data = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data", "landxml")
grads = json.loads(zel("point", os.path.join(data, "curve_statements_grads.xml"), "--at", "0", "--format", "geojson"))
check(grads["coordinate_system"] == "EPSG:25832", "point: the file's coordinate system")
check(grads["crs"] == {"type": "name", "properties": {"name": "urn:ogc:def:crs:EPSG::25832"}}, "point: crs for GIS")
check(grads["units"] == {"length": "metre", "angle": "gon", "file_linear_unit": "meter", "file_angular_unit": "grads"},
      "point: units")
grads_info = json.loads(zel("info", os.path.join(data, "curve_statements_grads.xml"), "--json"))
check(grads_info["file_angular_unit"] == "grads" and grads_info["coordinate_system"] == "EPSG:25832", "info: units")
# Feet: the coordinates are metres (10000 US survey feet north = 10000 * 1200 / 3937 m),
# so no crs member claims the file's system for them.
feet = json.loads(zel("point", os.path.join(data, "us_survey_feet.xml"), "--at", str(1000 * 1200 / 3937),
                      "--format", "geojson", "--angle-unit", "rad"))
check("crs" not in feet and feet["coordinate_system"] == "EPSG:2263", "feet: coordinate system without crs")
check(feet["units"]["length"] == "metre" and feet["units"]["angle"] == "rad" and
      feet["units"]["file_linear_unit"] == "USSurveyFoot", "feet: units")
fp = feet["features"][0]["geometry"]["coordinates"]
check(abs(fp[0] - 20000 * 1200 / 3937) < 1e-6 and abs(fp[1] - 10000 * 1200 / 3937) < 1e-6, "feet: metres")
stationed = json.loads(zel("station", os.path.join(data, "curve_statements_grads.xml"), points, "--format", "geojson"))
check(stationed["crs"]["properties"]["name"] == "urn:ogc:def:crs:EPSG::25832", "station: crs")
check(stationed["units"]["length"] == "metre", "station: units")
plain = json.loads(zel("station", alignment, points, "--format", "geojson"))
check("crs" not in plain and "coordinate_system" not in plain and plain["units"]["file_linear_unit"] == "meter",
      "station: no coordinate system declared")

# --- zel export: one LineString per element, chords within 1 mm of the arc.
line = json.loads(zel("export", hand))
check(len(line["features"]) == 2, "one feature per element")
straight, curve = (shapely.geometry.shape(f["geometry"]) for f in line["features"])
check(straight.is_valid and curve.is_valid, "valid lines")
check(abs(straight.length - 100.0) < 1e-9, "straight length")
check(abs(curve.length - 50 * math.pi) < 0.001, "the arc's polyline is as long as the arc within 1 mm")
coords = list(curve.coords)
check(coords[0] == (1000.0, 2100.0) and coords[-1] == (1100.0, 2200.0), "arc polyline ends")
for (x1, y1), (x2, y2) in zip(coords, coords[1:]):
    mid = math.hypot((x1 + x2) / 2 - 1100, (y1 + y2) / 2 - 2100)
    check(100 - mid <= 0.001 + 1e-9, "chord error of the arc within 1 mm")
props = line["features"][1]["properties"]
check(props["type"] == "arc" and props["start_radius"] == 100.0 and props["start_station"] == 100.0, "arc properties")
sample_line = json.loads(zel("export", alignment))
check(len(sample_line["features"]) == 17, "sample: one feature per element")
for f, e in zip(sample_line["features"], info["elements"]):
    g = shapely.geometry.shape(f["geometry"])
    length = e["length"]
    if e["type"] == "cubic_parabola":
        # Stations of a cubic parabola run along its abscissa X: the curve
        # y = x^3 / (6 R X) is longer by the integral of y'^2 / 2, X^3 / (40 R^2).
        radius = e["start_radius"] or e["end_radius"]
        length += length ** 3 / (40 * radius ** 2)
    check(abs(g.length - length) < 0.001, f"sample element {e['index']}: polyline as long as the element")

os.remove(hand)
if failures:
    print("\n".join(failures))
    print(f"0 passed, {len(failures)} failed")
    sys.exit(1)
print("JSON and GeoJSON outputs read back: all checks hold")
