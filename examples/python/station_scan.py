#!/usr/bin/python3
"""Stations a generated tunnel scan against the sample alignment, notebook style.

Run from the source tree with the package on the path, e.g.

    PYTHONPATH=build/python /usr/bin/python3 examples/python/station_scan.py [--plot offsets.png]

Every cell below is one step a notebook would hold. The plots need matplotlib;
without it the script prints the tables only.
"""

import argparse
import pathlib

import numpy as np

import zelmath

SAMPLE = pathlib.Path(__file__).resolve().parents[2] / "data" / "sample" / "alignment.xml"
# The scan: rings every RING_SPACING metres, POINTS_PER_RING points on a
# circular profile of TUNNEL_RADIUS about the axis, RING_NOISE of scatter.
RING_SPACING = 0.5  # metres
POINTS_PER_RING = 360
TUNNEL_RADIUS = 4.5  # metres
AXIS_ABOVE_DESIGN = 2.0  # metres: the tunnel centre above the design height (top of rail)
RING_NOISE = 0.003  # metres, one standard deviation
# A tunnel wall point counts as out of tolerance this far off the design radius.
TOLERANCE = 0.01  # metres

ap = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
ap.add_argument("--plot", help="write the figures to this PNG file instead of showing them")
args = ap.parse_args()

# %% The alignment: elements, stations, profile.
a = zelmath.read_landxml(SAMPLE)
print(a)
for e in a.elements():
    print(f"  {e.type:15s} {e.start_station:10.3f} .. {e.end_station:10.3f}  R {e.start_radius:g} -> {e.end_radius:g}")

# %% A generated scan: rings of points around the axis, every half metre.
rng = np.random.default_rng(1)
rings = a.setting_out(RING_SPACING, start=13000.0, end=14000.0)
angle = np.linspace(0.0, 2 * np.pi, POINTS_PER_RING, endpoint=False)
across = np.outer(np.ones(len(rings)), TUNNEL_RADIUS * np.cos(angle)).ravel()
up = np.outer(np.ones(len(rings)), TUNNEL_RADIUS * np.sin(angle)).ravel()
across += rng.normal(0.0, RING_NOISE, across.size)
az = np.repeat(rings.azimuth, POINTS_PER_RING)
east = np.repeat(rings.east, POINTS_PER_RING) + across * np.cos(az)     # to the right of the axis
north = np.repeat(rings.north, POINTS_PER_RING) - across * np.sin(az)
height = np.repeat(rings.design_height, POINTS_PER_RING) + AXIS_ABOVE_DESIGN + up
print(f"{east.size:,} scan points")

# %% Station every point in one call (all cores).
r = a.station(east, north, height, threads=0)
# Distance from the tunnel axis in the cross-section, against the design radius.
radial = np.hypot(r.offset, r.height_difference - AXIS_ABOVE_DESIGN) - TUNNEL_RADIUS
print(f"statuses: { {n: int((r.status_name == n).sum()) for n in set(r.status_name)} }")
# Points at a kink between elements are reported at the joint; the statistics
# take the points with a foot on an element within the alignment's stations.
on = (r.status == zelmath.Status.ON) & (r.station >= a.start_station) & (r.station <= a.end_station)
print(f"{int((r.status == zelmath.Status.ON).sum() - on.sum())} points with a foot outside the stations")
print(f"radial deviation: mean {radial[on].mean() * 1000:.2f} mm, std {radial[on].std() * 1000:.2f} mm, "
      f"{int((np.abs(radial[on]) > TOLERANCE).sum())} points beyond {TOLERANCE * 1000:.0f} mm")

# %% As a table, when pandas is there.
try:
    df = r.to_pandas()
    df["radial_deviation"] = radial
    print(df.head())
except ImportError:
    pass

# %% The plots, when matplotlib is there.
try:
    import matplotlib

    if args.plot:
        matplotlib.use("Agg")
    import matplotlib.pyplot as plt
except ImportError:
    plt = None
if plt is not None:
    import zelmath.plot

    fig, axes = plt.subplots(2, 2, figsize=(12, 8))
    zelmath.plot.plan(a, ax=axes[0][0])
    zelmath.plot.curvature(a, ax=axes[0][1])
    zelmath.plot.profile(a, ax=axes[1][0])
    zelmath.plot.offsets({"station": r.station[on], "offset": radial[on]}, tolerance=TOLERANCE, ax=axes[1][1])
    axes[1][1].set_ylabel("radial deviation (m)")
    fig.tight_layout()
    if args.plot:
        fig.savefig(args.plot)
        print(f"wrote {args.plot}")
    else:
        plt.show()
