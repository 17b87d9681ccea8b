"""zelmath: railway and tunnel alignments for surveying, vectorised over numpy.

Read an alignment from LandXML and station whole arrays of measured points
in one call::

    import numpy as np
    import zelmath

    a = zelmath.read_landxml("data/sample/alignment.xml")
    r = a.station(east, north, height)      # numpy arrays in, named arrays out
    r.station, r.offset, r.status_name      # one value per point

Units and signs, throughout the package:

* lengths, stations, coordinates and heights in metres; angles in radians;
* azimuths clockwise from North, in [0, 2 pi);
* radii signed: positive bends to the right (clockwise, the azimuth grows
  with the station), negative to the left, 0 on a straight;
* offsets positive to the right of the direction of increasing station;
* height differences are measured minus design height (positive above);
* gradients are rise over run (0.02 is 2 %).

Every array call runs one C++ loop with the GIL released: calls from several
Python threads run at once, and ``threads=`` splits one call over cores.
Points that cannot be stationed (NaN or infinite coordinates, no foot) get a
status and NaN values; nothing is raised in the middle of an array. Errors of
the arguments or of the data raise :class:`Error` subclasses with the
library's message.
"""

from __future__ import annotations

import enum
import os
from typing import Dict, Iterator, List, Optional, Sequence, Tuple

import numpy as np

from . import _core
from ._core import ArgumentError, DataError, Error, IoError, LandXmlError

__version__: str = _core.__version__

__all__ = [
    "Alignment",
    "ArgumentError",
    "Arc",
    "Clothoid",
    "CubicParabola",
    "DataError",
    "ElementType",
    "Error",
    "HalfSine",
    "IoError",
    "LandXmlError",
    "Line",
    "PointTable",
    "Projection",
    "ShapedTransition",
    "StationTable",
    "Status",
    "VerticalCurve",
    "alignments",
    "parse_landxml",
    "read_landxml",
]


class ElementType(enum.IntEnum):
    """Kind of a horizontal element, as held in the ``element_type`` columns."""

    LINE = 0
    ARC = 1
    CLOTHOID = 2
    CUBIC_PARABOLA = 3
    HALF_SINE = 4
    SHAPED_TRANSITION = 5


class Status(enum.IntEnum):
    """How a measured point was stationed, as held in the ``status`` column.

    ON: the foot of the perpendicular lies on an element.
    KINK: the point lies in the wedge outside a kink between two elements; the
    joint is reported, the offset taken across the bisector of the tangents.
    BEFORE_START / BEYOND_END: before the start or beyond the end; the end
    point is reported with the offset across its tangent.
    NO_SOLUTION: no element gave a foot. INVALID: coordinates not finite.
    """

    ON = 0
    KINK = 1
    BEFORE_START = 2
    BEYOND_END = 3
    NO_SOLUTION = 4
    INVALID = 5


#: Names of the element types, indexed by :class:`ElementType` value.
ELEMENT_TYPE_NAMES: Tuple[str, ...] = tuple(_core.element_type_name(int(t)) for t in ElementType)
#: Names of the statuses (as ``zel station`` writes them), indexed by :class:`Status` value.
STATUS_NAMES: Tuple[str, ...] = tuple(_core.status_name(int(s)) for s in Status)


def _names(codes: np.ndarray, names: Sequence[str]) -> np.ndarray:
    """Names for integer codes; "" for a code of -1 (no element)."""
    table = np.array(list(names) + [""], dtype=object)
    idx = np.where(codes < 0, len(names), codes)
    return table[idx]


class _Table:
    """Named columns of equal length (numpy arrays), read-only by convention."""

    _columns: Tuple[str, ...] = ()

    def __init__(self, arrays: Sequence[np.ndarray]) -> None:
        for name, arr in zip(self._columns, arrays):
            arr.flags.writeable = False
            object.__setattr__(self, name, arr)

    def __setattr__(self, name, value):  # noqa: D401 - immutability
        raise AttributeError(f"{type(self).__name__} is read-only")

    def __len__(self) -> int:
        return len(getattr(self, self._columns[0]))

    def __getitem__(self, name: str) -> np.ndarray:
        if name not in self._columns:
            raise KeyError(name)
        return getattr(self, name)

    def __iter__(self) -> Iterator[str]:
        return iter(self._columns)

    def keys(self) -> Tuple[str, ...]:
        """The column names."""
        return self._columns

    def to_dict(self) -> Dict[str, np.ndarray]:
        """The columns as a dict of numpy arrays (copies, writable)."""
        return {c: np.array(getattr(self, c)) for c in self._columns}

    def to_pandas(self, index=None):
        """The columns as a pandas DataFrame (needs pandas); ``index`` as given."""
        import pandas as pd

        return pd.DataFrame(self.to_dict(), index=index)

    def __repr__(self) -> str:
        return f"<{type(self).__name__} of {len(self)} rows: {', '.join(self._columns)}>"


class StationTable(_Table):
    """The stationing of measured points: one value per point in each column.

    Columns (numpy arrays):

    station : float64, metres
        Internal station of the foot (the alignment's start station plus the
        length along its elements).
    offset : float64, metres
        Signed distance from the foot across the tangent: positive to the
        right of the direction of increasing station.
    element : int32
        Index of the element of the foot in :meth:`Alignment.elements`; -1 when
        there is none.
    element_type : int32
        :class:`ElementType` of that element; see :attr:`element_type_name`.
    azimuth : float64, radians
        Tangent direction at the foot, clockwise from North in [0, 2 pi).
    radius : float64, metres
        Signed radius at the foot: positive bends right, 0 on a straight.
    design_height : float64, metres
        Height of the vertical profile at the station (NaN without a profile).
    height_difference : float64, metres
        Measured minus design height (NaN without a measured height).
    tunnel_metre : float64, metres
        Tunnel metre of the station: length in space along the profile.
    status : int32
        :class:`Status` of the point; see :attr:`status_name`.
    displayed_station : float64, metres
        The station as displayed after the alignment's station equations
        (kilometre posts, jumps); the internal station where there are none.
    region : int32
        Index of the station equation in force at the foot (its kilometre or
        region, as ``zel station`` names it); -1 before the first or without any.
    applied_cant : float64, metres
        Applied cant at the station from the alignment's cant table, positive
        in a curve bending right; NaN without cant or outside the table.

    Everything but status is NaN (element -1) for NO_SOLUTION and INVALID.
    """

    _columns = (
        "station",
        "offset",
        "element",
        "element_type",
        "azimuth",
        "radius",
        "design_height",
        "height_difference",
        "tunnel_metre",
        "status",
        "displayed_station",
        "region",
        "applied_cant",
    )

    @property
    def status_name(self) -> np.ndarray:
        """Status names ("on", "kink", "before_start", ...) as an object array."""
        return _names(self.status, STATUS_NAMES)

    @property
    def element_type_name(self) -> np.ndarray:
        """Element type names ("line", "arc", "clothoid", ...); "" without an element."""
        return _names(np.where(self.element < 0, -1, self.element_type), ELEMENT_TYPE_NAMES)


class PointTable(_Table):
    """Design points at stations: one value per station in each column.

    Columns: station (metres, as asked), east, north (metres), element (index,
    -1 outside the alignment), element_type (:class:`ElementType`, -1 outside),
    azimuth (radians clockwise from North), radius (metres, signed, positive
    bends right, 0 straight), design_height (metres), gradient (rise over run)
    and tunnel_metre (metres). Stations outside the alignment or not finite
    give NaN in every float column but station.
    """

    _columns = (
        "station",
        "east",
        "north",
        "element",
        "element_type",
        "azimuth",
        "radius",
        "design_height",
        "gradient",
        "tunnel_metre",
    )


class Alignment:
    """A railway or tunnel alignment: horizontal elements, vertical profile and
    tunnel-metre map, immutable once read.

    Build one with :func:`read_landxml` or :func:`parse_landxml`. It pickles by
    its definition (the LandXML text, the alignment's name and the tunnel-metre
    reference), so that a worker process rebuilds the same alignment.
    Every method may be called from any number of threads at once.
    """

    __slots__ = ("_core",)

    def __init__(self, core: "_core.CoreAlignment") -> None:
        object.__setattr__(self, "_core", core)

    def __setattr__(self, name, value):
        raise AttributeError("an Alignment is immutable")

    # -- definition and pickling ------------------------------------------------
    def __reduce__(self):
        c = self._core
        rs, rt, same = c.reference
        return (_rebuild, (c.text, c.source_name, c.requested_name, rs, rt, same))

    def __repr__(self) -> str:
        return (
            f"<zelmath.Alignment {self.name!r}: stations {self.start_station:.4f} to "
            f"{self.end_station:.4f}, {len(self.elements())} elements>"
        )

    @property
    def name(self) -> str:
        """The alignment's name in its file."""
        return self._core.name

    @property
    def source(self) -> str:
        """The file (or the name given for text) the alignment was read from."""
        return self._core.source_name

    @property
    def start_station(self) -> float:
        """Station of the start (metres)."""
        return self._core.start_station

    @property
    def end_station(self) -> float:
        """Station of the end (metres)."""
        return self._core.end_station

    @property
    def warnings(self) -> List[str]:
        """What the reader accepted but noticed: joints that miss by more than 1 mm."""
        return list(self._core.warnings)

    @property
    def file_units(self) -> Dict[str, str]:
        """The units of the file as its <Units> names them: {"length": "USSurveyFoot",
        "angle": "grads", "direction": "grads"}; an empty name where the file
        gives none. Every value of the alignment is already converted: lengths,
        stations and coordinates are metres, angles radians."""
        length, angle, direction = self._core.file_units
        return {"length": length, "angle": angle, "direction": direction}

    @property
    def coordinate_system(self) -> Optional[str]:
        """The coordinate system the file declares ("EPSG:25832", or its name), None if none.
        The coordinates are in metres even where that system's unit is another."""
        return self._core.coordinate_system or None

    @property
    def tunnel_metre_reference(self) -> Tuple[Optional[float], Optional[float], bool]:
        """(station, tunnel metre, same direction) as given when reading; None for the defaults."""
        return tuple(self._core.reference)

    def elements(self) -> List["Element"]:
        """The horizontal elements in station order, as element objects."""
        return [_wrap_element(e) for e in self._core.elements()]

    def profile(self) -> List[Tuple[float, float, str, float]]:
        """The PVIs of the vertical profile: (station, height, curve, radius) in
        metres; curve is "circle", "parabola", "unsym_parabola" (an
        unsymmetrical parabola, radius 0: it has two) or "" for none. Empty
        without a profile."""
        return list(self._core.profile_points)

    # -- vectorised calls ---------------------------------------------------------
    def station(self, east, north, height=None, *, threads: int = 1) -> StationTable:
        """Stations measured points: station, offset and the rest of :class:`StationTable`.

        east, north : array_like of float, metres
            Coordinates of the points (one-dimensional, equal lengths, any length
            including 0).
        height : array_like of float, metres, optional
            Measured heights (NaN where not measured); without it the height
            difference is NaN.
        threads : int
            1 computes on the calling thread; n > 1 splits the array over n
            threads; 0 uses every core. The results do not depend on it.

        Accuracy: straights and arcs are exact; on transitions the foot search
        stops when its step along the tangent falls below 0.4 mm.
        Points with NaN or infinite coordinates get status INVALID. Raises
        :class:`ArgumentError` for arrays of other shapes or lengths.
        """
        return StationTable(self._core.station(east, north, height, threads))

    def point_at(self, stations, *, threads: int = 1) -> PointTable:
        """Design points at stations (metres): coordinates, tangent azimuth,
        radius, design height, gradient and tunnel metre (:class:`PointTable`).
        Stations outside the alignment give NaN."""
        s = np.ascontiguousarray(stations, dtype=np.float64)
        if s.ndim != 1:
            raise ArgumentError(f"stations must be one-dimensional, got {s.ndim} dimensions")
        return PointTable((s.copy(),) + tuple(self._core.point_at(s, threads)))

    def setting_out(self, every: float, start: Optional[float] = None, end: Optional[float] = None) -> PointTable:
        """A setting-out table: design points from ``start`` to ``end`` (metres,
        default the alignment's ends) at ``start``, every round station
        k * ``every`` strictly between, and ``end``.

        Raises :class:`ArgumentError` for an interval that is not positive, a
        start after the end, or a table of more than ten million rows.
        """
        s0 = self.start_station if start is None else float(start)
        s1 = self.end_station if end is None else float(end)
        return self.point_at(_core.setting_out_stations(s0, s1, float(every)))

    def to_tunnel_metre(self, stations) -> np.ndarray:
        """Tunnel metres (metres along the profile in space) of stations; NaN
        for stations outside the alignment."""
        return self._core.to_tunnel_metre(stations)

    def from_tunnel_metre(self, tunnel_metres) -> np.ndarray:
        """Stations (metres) of tunnel metres; NaN where the station would lie
        outside the alignment."""
        return self._core.from_tunnel_metre(tunnel_metres)


def _rebuild(text, source_name, name, ref_station, ref_tm, same_direction) -> Alignment:
    return Alignment(_core.CoreAlignment(text, source_name, name, ref_station, ref_tm, same_direction))


def parse_landxml(
    text,
    name: Optional[str] = None,
    *,
    source_name: str = "<text>",
    reference_station: Optional[float] = None,
    reference_tunnel_metre: Optional[float] = None,
    same_direction: bool = True,
) -> Alignment:
    """An :class:`Alignment` from LandXML 1.2 text (str or bytes).

    name picks the alignment (default: the first). The tunnel metre is anchored
    at reference_station (default: the start station) with
    reference_tunnel_metre (default: that station); same_direction=False lets
    tunnel metres run against the stations. Raises :class:`LandXmlError`
    ("file:line: <Element>: message") for content that cannot be read.
    """
    if isinstance(text, str):
        text = text.encode("utf-8")
    core = _core.CoreAlignment(
        text, source_name, name or "", reference_station, reference_tunnel_metre, same_direction
    )
    return Alignment(core)


def read_landxml(
    path,
    name: Optional[str] = None,
    *,
    reference_station: Optional[float] = None,
    reference_tunnel_metre: Optional[float] = None,
    same_direction: bool = True,
) -> Alignment:
    """An :class:`Alignment` from a LandXML 1.2 file (see :func:`parse_landxml`).

    Raises :class:`IoError` when the file cannot be read and
    :class:`LandXmlError` for content that cannot be represented; never returns
    a partial alignment. Joints that miss by more than 1 mm are listed in
    :attr:`Alignment.warnings`.
    """
    p = os.fspath(path)
    return parse_landxml(
        _core.read_text_file(p),
        name,
        source_name=p,
        reference_station=reference_station,
        reference_tunnel_metre=reference_tunnel_metre,
        same_direction=same_direction,
    )


def alignments(path) -> List[str]:
    """Names of the alignments in a LandXML file, in file order."""
    p = os.fspath(path)
    return list(_core.alignment_names(_core.read_text_file(p), p))


# -- element classes ------------------------------------------------------------


class Projection(tuple):
    """The foot of a measured point on an element.

    status (:class:`Status`), station (metres), offset (metres, positive to the
    right), along (metres along the end tangent: negative before the start,
    positive beyond the end, 0 on the element), foot_east, foot_north
    (metres), azimuth (radians clockwise from North) and radius (metres, signed)
    of the foot. NaN but for status when there is no foot.
    """

    __slots__ = ()
    _fields = ("status", "station", "offset", "along", "foot_east", "foot_north", "azimuth", "radius")

    def __new__(cls, values):
        values = (Status(values[0]),) + tuple(values[1:])
        return super().__new__(cls, values)

    def __getattr__(self, name):
        try:
            return self[self._fields.index(name)]
        except ValueError:
            raise AttributeError(name) from None

    def __repr__(self) -> str:
        inner = ", ".join(f"{k}={v!r}" for k, v in zip(self._fields, self))
        return f"Projection({inner})"


class ElementPoint(tuple):
    """A point of an element: east, north (metres), azimuth (radians clockwise
    from North), radius (metres, signed, positive bends right, 0 straight)."""

    __slots__ = ()
    _fields = ("east", "north", "azimuth", "radius")

    def __getattr__(self, name):
        try:
            return self[self._fields.index(name)]
        except ValueError:
            raise AttributeError(name) from None

    def __repr__(self) -> str:
        inner = ", ".join(f"{k}={v!r}" for k, v in zip(self._fields, self))
        return f"ElementPoint({inner})"


class Element:
    """Common interface of the horizontal elements.

    Stations are those of the element's alignment (start_station at the
    start). Properties: type, start_station, end_station, length, start, end
    ((east, north) in metres), start_radius, end_radius (metres, signed,
    positive bends right, 0 straight) and parameter (a clothoid's A, metres).
    """

    _core_element: "_core.Element"

    def __init__(self, core) -> None:
        self._core_element = core

    @property
    def type(self) -> str:
        """Kind of the element: "line", "arc", "clothoid", "cubic_parabola",
        "half_sine" or "shaped_transition"."""
        return self._core_element.type

    @property
    def curve(self) -> str:
        """Name of the curve: the kind, or for a shaped transition its shape
        ("bloss", "biquadratic", "cosine", "sinusoid")."""
        return self._core_element.curve

    @property
    def start_station(self) -> float:
        """Station of the start (metres)."""
        return self._core_element.start_station

    @property
    def end_station(self) -> float:
        """Station of the end (metres)."""
        return self._core_element.end_station

    @property
    def length(self) -> float:
        """Length along the element (metres); the abscissa length of a cubic parabola."""
        return self._core_element.length

    @property
    def start(self) -> Tuple[float, float]:
        """Start point (east, north), metres."""
        return tuple(self._core_element.start)

    @property
    def end(self) -> Tuple[float, float]:
        """End point (east, north), metres."""
        return tuple(self._core_element.end)

    @property
    def start_radius(self) -> float:
        """Signed radius at the start (metres): positive bends right, 0 straight."""
        return self._core_element.start_radius

    @property
    def end_radius(self) -> float:
        """Signed radius at the end (metres): positive bends right, 0 straight."""
        return self._core_element.end_radius

    @property
    def parameter(self) -> float:
        """Clothoid parameter A (metres), A^2 = L / |1/R_end - 1/R_start|; 0 for a line or an arc."""
        return self._core_element.parameter

    def point_at(self, station: float) -> ElementPoint:
        """The point at a station (metres); stations outside the element
        continue its geometry."""
        return ElementPoint(self._core_element._point_at(float(station)))

    def project(self, east: float, north: float) -> Projection:
        """The foot of the perpendicular from a measured point (metres)."""
        return Projection(self._core_element._project(float(east), float(north)))

    def __repr__(self) -> str:
        c = self._core_element
        return (
            f"<zelmath.{type(self).__name__} stations {c.start_station:.4f}..{c.end_station:.4f}, "
            f"radius {c.start_radius:g} -> {c.end_radius:g}>"
        )


def _pair(p) -> Tuple[float, float]:
    e, n = p
    return (float(e), float(n))


class Line(Element):
    """A straight from ``start`` to ``end`` ((east, north), metres); its
    stations run from ``start_station`` (metres) over its length."""

    def __init__(self, start, end, start_station: float = 0.0) -> None:
        super().__init__(_core.CoreLine(_pair(start), _pair(end), float(start_station)))

    @classmethod
    def from_start(cls, start, azimuth: float, length: float, start_station: float = 0.0) -> "Line":
        """A straight from a start point (metres) along an azimuth (radians
        clockwise from North) for a length (metres)."""
        e, n = _pair(start)
        end = (e + length * np.sin(azimuth), n + length * np.cos(azimuth))
        return cls(start, end, start_station)


class Arc(Element):
    """A circular arc from ``start`` to ``end`` ((east, north), metres) with a
    signed ``radius`` (metres): positive turns clockwise (right), negative
    counter-clockwise (left). Its length is that of the arc between the points."""

    def __init__(self, start, end, radius: float, start_station: float = 0.0) -> None:
        super().__init__(_core.CoreArc(_pair(start), _pair(end), float(radius), float(start_station)))

    @classmethod
    def from_start(
        cls, start, azimuth: float, length: float, radius: float, start_station: float = 0.0
    ) -> "Arc":
        """An arc laid out from a start point (metres) and start azimuth
        (radians clockwise from North) with a length and signed radius (metres)."""
        end = _core.arc_end(_pair(start), float(azimuth), float(length), float(radius))
        return cls(start, end, radius, start_station)


class _Transition(Element):
    _core_class = None

    def __init__(
        self, start, end, length: float, start_radius: float, end_radius: float, start_station: float = 0.0
    ) -> None:
        super().__init__(
            type(self)._core_class(
                _pair(start), _pair(end), float(length), float(start_radius), float(end_radius), float(start_station)
            )
        )


class Clothoid(_Transition):
    """A clothoid transition: curvature linear in the length, R * L = A^2 from
    its origin.

    start, end : (east, north), metres. length : metres along the element.
    start_radius, end_radius : signed radii (metres), positive bends right, 0
    for a straight end. The parameter A follows from A^2 = L / |1/R_end - 1/R_start|.
    Points come from the four-term Fresnel series of the element library.
    """

    _core_class = _core.CoreClothoid

    @classmethod
    def from_start(
        cls, start, azimuth: float, length: float, start_radius: float, end_radius: float, start_station: float = 0.0
    ) -> "Clothoid":
        """A clothoid laid out from a start point (metres) and start azimuth
        (radians clockwise from North) over a length from one radius to the
        other (metres, signed, 0 straight)."""
        end = _core.clothoid_end(_pair(start), float(azimuth), float(length), float(start_radius), float(end_radius))
        return cls(start, end, length, start_radius, end_radius, start_station)


class CubicParabola(_Transition):
    """A cubic parabola transition y = x^3 / (6 R X) from a straight into a
    curve or from a curve into a straight: stations run linearly along the
    abscissa x, ``length`` is the abscissa X of the curved end (metres).
    Arguments as for :class:`Clothoid`; one radius must be 0."""

    _core_class = _core.CoreCubicParabola


class HalfSine(_Transition):
    """A half-sine transition with curvature (1 - cos(pi l / L)) / (2 R), l
    from the straight end, from a straight into a curve or back. Arguments as
    for :class:`Clothoid`; one radius must be 0. The radius reported at a point
    is the reciprocal of that curvature."""

    _core_class = _core.CoreHalfSine


class ShapedTransition(Element):
    """A transition given by its curvature along the length,
    k(l) = k_s + (k_e - k_s) f(l / L), between any two radii (straight to
    curve, curve to straight, curve to curve, both bending senses).

    shape : "bloss" (f = 3 t^2 - 2 t^3), "biquadratic" (f = 2 t^2 up to the
    middle, 1 - 2 (1 - t)^2 beyond), "cosine" (f = (1 - cos(pi t)) / 2) or
    "sinusoid" (f = t - sin(2 pi t) / (2 pi)). start, end : (east, north),
    metres; the curve starts on start, its chord pointing at end. length :
    metres along the element. start_radius, end_radius : signed radii
    (metres), positive bends right, 0 for a straight end. Directions are exact,
    positions integrated to better than 1e-9 m.
    """

    def __init__(
        self,
        shape: str,
        start,
        end,
        length: float,
        start_radius: float,
        end_radius: float,
        start_station: float = 0.0,
    ) -> None:
        super().__init__(
            _core.CoreShapedTransition(
                str(shape),
                _pair(start),
                _pair(end),
                float(length),
                float(start_radius),
                float(end_radius),
                float(start_station),
            )
        )

    @property
    def shape(self) -> str:
        """Shape of the curvature: "bloss", "biquadratic", "cosine" or "sinusoid"."""
        return self._core_element.shape


_ELEMENT_CLASSES = {
    "line": Line,
    "arc": Arc,
    "clothoid": Clothoid,
    "cubic_parabola": CubicParabola,
    "half_sine": HalfSine,
    "shaped_transition": ShapedTransition,
}


def _wrap_element(core) -> Element:
    obj = object.__new__(_ELEMENT_CLASSES[core.type])
    Element.__init__(obj, core)
    return obj


class VerticalCurve:
    """A vertical curve of the longitudinal profile at pi2, between the grade
    lines pi1-pi2 and pi2-pi3.

    pi1, pi2, pi3 : (station, height), metres.
    radius : metres, of the circle or the vertex radius of the parabola; its
    sign is ignored (crest or sag follows from the grades).
    kind : "circle" or "parabola".

    Properties: start and end tangent points (station, height), length along
    the curve (metres). Raises :class:`DataError` when the curve cannot be set
    up (collinear grades, zero radius).
    """

    def __init__(self, pi1, pi2, pi3, radius: float, kind: str = "circle") -> None:
        self._c = _core.CoreVerticalCurve(_pair(pi1), _pair(pi2), _pair(pi3), float(radius), kind)

    @property
    def start(self) -> Tuple[float, float]:
        """Start tangent point (station, height) in metres."""
        return self._c.start

    @property
    def end(self) -> Tuple[float, float]:
        """End tangent point (station, height) in metres."""
        return self._c.end

    @property
    def length(self) -> float:
        """Length along the curve (metres)."""
        return self._c.length

    @property
    def kind(self) -> str:
        """"circle" or "parabola"."""
        return self._c.kind

    def height_at(self, station: float) -> Tuple[float, float]:
        """(height in metres, gradient as rise over run) at a station (metres)
        between the tangent points; NaN where the curve operation fails."""
        return self._c.height_at(float(station))

    def __repr__(self) -> str:
        return f"<zelmath.VerticalCurve {self.kind} from {self.start} to {self.end}>"
