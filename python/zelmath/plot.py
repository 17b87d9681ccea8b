"""Drawings of an alignment for notebooks, with matplotlib (when installed).

Every drawing is computed through the package's own calls: the plan from
:meth:`zelmath.Alignment.point_at` samples, the curvature from the radius
column of those samples, the profile from their design heights. Each function
draws into ``ax`` (a new figure when None) and returns the matplotlib Axes.

Units: metres for stations, coordinates, heights and offsets; curvature in
1/metre, signed like the radius (positive bends right).
"""

from __future__ import annotations

from typing import Optional

import numpy as np

from . import Alignment, Status

__all__ = ["plan", "curvature", "profile", "offsets", "SAMPLES_PER_ELEMENT", "END_INSET"]

#: Samples drawn along each element (both ends included): a 100 m element is
#: drawn at half-metre steps, finer than a plan or a curvature diagram shows.
SAMPLES_PER_ELEMENT = 201


def _axes(ax):
    if ax is not None:
        return ax
    import matplotlib.pyplot as plt

    _, ax = plt.subplots()
    return ax


#: The last sample of an element is taken this far (metres) before its end
#: station: a station at a joint belongs to the later element, and the straight
#: end of a transition has no finite radius.
END_INSET = 1e-6


def _element_samples(alignment: Alignment):
    """Per element: its index, the element, and the point_at table of
    SAMPLES_PER_ELEMENT stations from its start to END_INSET before its end."""
    for index, e in enumerate(alignment.elements()):
        s = np.linspace(e.start_station, e.end_station, SAMPLES_PER_ELEMENT)
        s[-1] = e.end_station - END_INSET
        yield index, e, alignment.point_at(s)


def _curvature(radius: np.ndarray) -> np.ndarray:
    """1/R, 0 on a straight (radius 0)."""
    with np.errstate(divide="ignore"):
        return np.where(radius == 0.0, 0.0, 1.0 / np.where(radius == 0.0, 1.0, radius))


def plan(alignment: Alignment, points=None, *, ax=None):
    """The alignment in plan, East to the right and North up, one line per
    element (labelled with its type) and a dot at every joint.

    points: measured points to draw with it, as (east, north) arrays or
    anything with "east" and "north" columns (a DataFrame, a dict).
    """
    ax = _axes(ax)
    joints_e, joints_n = [], []
    elements = alignment.elements()
    for index, e, t in _element_samples(alignment):
        ax.plot(t.east, t.north, "-", label=f"{index}: {e.type}", gid=f"element-{index}")
        joints_e.append(t.east[0])
        joints_n.append(t.north[0])
    end = alignment.point_at(np.array([elements[-1].end_station]))
    joints_e.append(end.east[0])
    joints_n.append(end.north[0])
    ax.plot(joints_e, joints_n, "k.", gid="joints", label="joints")
    if points is not None:
        if isinstance(points, tuple):
            pe, pn = points
        else:
            pe, pn = points["east"], points["north"]
        ax.plot(np.asarray(pe, dtype=float), np.asarray(pn, dtype=float), "x", markersize=3, gid="points",
                label="points")
    ax.set_aspect("equal", adjustable="datalim")
    ax.set_xlabel("east (m)")
    ax.set_ylabel("north (m)")
    ax.set_title(f"{alignment.name}: plan")
    return ax


def curvature(alignment: Alignment, *, ax=None):
    """Curvature 1/R (1/m, positive bending right) against station (m), one
    line per element, with a dotted vertical line at every joint station.

    A clothoid shows as a straight ramp between the curvatures of its ends, a
    half-sine as a cosine step, an arc as a level line.
    """
    ax = _axes(ax)
    joints = []
    for index, e, t in _element_samples(alignment):
        ax.plot(t.station, _curvature(t.radius), "-", label=f"{index}: {e.type}", gid=f"element-{index}")
        joints.append(e.start_station)
    joints.append(alignment.end_station)
    for j in joints:
        ax.axvline(j, linestyle=":", linewidth=0.6, color="grey", gid="joint")
    ax.set_xlabel("station (m)")
    ax.set_ylabel("curvature 1/R (1/m)")
    ax.set_title(f"{alignment.name}: curvature")
    return ax


def profile(alignment: Alignment, *, ax=None):
    """Design height (m) against station (m) from the vertical profile, with
    the PVIs marked. An alignment without a profile draws nothing but the
    labels."""
    ax = _axes(ax)
    pvis = alignment.profile()
    if pvis:
        start, end = pvis[0][0], pvis[-1][0]
        start, end = max(start, alignment.start_station), min(end, alignment.end_station)
        count = SAMPLES_PER_ELEMENT * max(1, len(alignment.elements()))
        t = alignment.point_at(np.linspace(start, end, count))
        ax.plot(t.station, t.design_height, "-", gid="design_height", label="design height")
        ax.plot([p[0] for p in pvis], [p[1] for p in pvis], "o--", markersize=3, linewidth=0.6, gid="pvi",
                label="PVI")
    ax.set_xlabel("station (m)")
    ax.set_ylabel("height (m)")
    ax.set_title(f"{alignment.name}: profile")
    return ax


def offsets(result, tolerance: Optional[float] = None, *, ax=None):
    """Offsets (m, positive right) of stationed points against their station
    (m), from a :class:`zelmath.StationTable` or anything with "station",
    "offset" (and optionally "status") columns. Only points stationed on the
    alignment (status ON) are drawn.

    tolerance (m): draws the band of +-tolerance and marks the points outside it.
    """
    ax = _axes(ax)
    station = np.asarray(result["station"], dtype=float)
    offset = np.asarray(result["offset"], dtype=float)
    try:
        status = np.asarray(result["status"])
    except (KeyError, IndexError):
        status = np.full(station.shape, int(Status.ON))
    on = status == int(Status.ON)
    station, offset = station[on], offset[on]
    if tolerance is None:
        ax.plot(station, offset, ".", markersize=2, gid="offsets", label="offset")
    else:
        outside = np.abs(offset) > tolerance
        ax.plot(station[~outside], offset[~outside], ".", markersize=2, gid="offsets", label="within tolerance")
        ax.plot(station[outside], offset[outside], ".", markersize=3, color="red", gid="outside",
                label="outside tolerance")
        for y in (-tolerance, tolerance):
            ax.axhline(y, linestyle="--", linewidth=0.6, color="red", gid="tolerance")
    ax.set_xlabel("station (m)")
    ax.set_ylabel("offset, right positive (m)")
    ax.set_title("offsets")
    return ax

