#!/usr/bin/env python3
"""Designs the sample railway alignment and a file of measured points around it.

The horizontal alignment is laid out element by element from its start point
and start direction. Each element's end point and end direction come from its
exact geometry: the direction is the integral of the curvature along the
element, the coordinates the integral of (sin, cos) of the direction, both
integrated numerically (Simpson's rule, fine steps). The cubic parabola is laid
out from its closed form y = x^3 / (6 R X), its stations running along the
abscissa x.

Writes, next to this script:
  alignment.xml        LandXML 1.2 (points "northing easting")
  points.csv           id,east,north,height of measured points
  points_expected.csv  id,station,offset,design_height as designed here, for tests

Run: python3 data/sample/generate_sample.py
"""

import math
import os
import random

HERE = os.path.dirname(os.path.abspath(__file__))

START_STATION = 12400.0
START_EAST = 2600150.0
START_NORTH = 1200320.0
START_AZIMUTH = math.radians(62.0)  # clockwise from North

# (kind, length, start radius, end radius); radius > 0 bends right, 0 is straight.
# kind: line, arc, clothoid, cubic_parabola, half_sine
DESIGN = [
    ("line", 400.0, 0.0, 0.0),
    ("clothoid", 120.0, 0.0, 1200.0),
    ("arc", 500.0, 1200.0, 1200.0),
    ("clothoid", 120.0, 1200.0, 0.0),
    ("line", 350.0, 0.0, 0.0),
    ("cubic_parabola", 80.0, 0.0, -1500.0),
    ("arc", 400.0, -1500.0, -1500.0),
    ("half_sine", 100.0, -1500.0, 0.0),
    ("line", 300.0, 0.0, 0.0),
    ("half_sine", 90.0, 0.0, 1800.0),
    ("arc", 250.0, 1800.0, 1800.0),
    ("clothoid", 100.0, 1800.0, 900.0),
    ("arc", 300.0, 900.0, 900.0),
    ("clothoid", 60.0, 900.0, 2000.0),
    ("arc", 200.0, 2000.0, 2000.0),
    ("clothoid", 80.0, 2000.0, 0.0),
    ("line", 300.0, 0.0, 0.0),
]

# Profile: (station offset from the start, height, curve kind, curve length).
PROFILE = [
    (0.0, 432.0, None, 0.0),
    (700.0, 439.0, "para", 300.0),
    (1600.0, 430.0, "circ", 180.0),
    (2500.0, 437.2, "para", 240.0),
    (3750.0, 428.0, None, 0.0),
]

STEP = 0.25  # metres between Simpson nodes along an element


def curvature(kind, length, rs, re, l):
    """Signed curvature at distance l from the element's start."""
    ks = 0.0 if rs == 0.0 else 1.0 / rs
    ke = 0.0 if re == 0.0 else 1.0 / re
    if kind in ("line", "arc"):
        return ks
    if kind == "clothoid":
        return ks + (ke - ks) * l / length
    if kind == "half_sine":
        # (1 - cos(pi u / L)) / (2 R), u measured from the straight end.
        if rs == 0.0:
            return ke * (1.0 - math.cos(math.pi * l / length)) / 2.0
        return ks * (1.0 - math.cos(math.pi * (length - l) / length)) / 2.0
    raise ValueError(kind)


def heading_change(kind, length, rs, re, l):
    """Integral of the curvature from 0 to l, in closed form."""
    ks = 0.0 if rs == 0.0 else 1.0 / rs
    ke = 0.0 if re == 0.0 else 1.0 / re
    if kind in ("line", "arc"):
        return ks * l
    if kind == "clothoid":
        return ks * l + (ke - ks) * l * l / (2.0 * length)
    if kind == "half_sine":
        if rs == 0.0:
            return ke / 2.0 * (l - length / math.pi * math.sin(math.pi * l / length))
        return ks / 2.0 * (l + length / math.pi * math.sin(math.pi * (length - l) / length))
    raise ValueError(kind)


def simpson(f, a, b, n):
    n = max(2, n + (n % 2))
    h = (b - a) / n
    s = f(a) + f(b)
    for i in range(1, n):
        s += (4 if i % 2 else 2) * f(a + i * h)
    return s * h / 3.0


class Element:
    def __init__(self, kind, length, rs, re, station, east, north, azimuth):
        self.kind, self.length, self.rs, self.re = kind, length, rs, re
        self.station, self.east, self.north, self.azimuth = station, east, north, azimuth
        self.end_east, self.end_north, self.end_azimuth = self.point(length)[:3]
        if kind != "cubic_parabola":
            turned = simpson(lambda u: curvature(kind, length, rs, re, u), 0.0, length, 4000)
            assert abs(turned - (self.end_azimuth - azimuth)) < 1e-12, (kind, turned)

    def point(self, l):
        """(east, north, azimuth, curvature) at distance l from the start."""
        if self.kind == "cubic_parabola":
            return self._parabola(l)
        # Coordinates: the integral of (sin, cos) of the direction, by Simpson's rule.
        az = lambda u: self.azimuth + heading_change(self.kind, self.length, self.rs, self.re, u)
        n = int(math.ceil(l / STEP))
        e = self.east + (simpson(lambda u: math.sin(az(u)), 0.0, l, n) if l > 0 else 0.0)
        north = self.north + (simpson(lambda u: math.cos(az(u)), 0.0, l, n) if l > 0 else 0.0)
        return (e, north, az(l), curvature(self.kind, self.length, self.rs, self.re, l))

    def _parabola(self, l):
        # y = x^3 / (6 R X), x along the main tangent, stations along x.
        big_x = self.length
        if self.rs == 0.0:  # straight into curve: origin at the start
            r = self.re
            x = l
            y = x ** 3 / (6.0 * r * big_x)
            slope = x * x / (2.0 * r * big_x)
            e = self.east + x * math.sin(self.azimuth) + y * math.cos(self.azimuth)
            n = self.north + x * math.cos(self.azimuth) - y * math.sin(self.azimuth)
            return (e, n, self.azimuth + math.atan(slope), 0.0)
        raise ValueError("only straight-into-curve parabolas are laid out here")


def layout():
    elements = []
    station, east, north, az = START_STATION, START_EAST, START_NORTH, START_AZIMUTH
    for kind, length, rs, re in DESIGN:
        el = Element(kind, length, rs, re, station, east, north, az)
        elements.append(el)
        station += length
        east, north, az = el.end_east, el.end_north, el.end_azimuth
    return elements


def fmt(v):
    return "%.4f" % v


def ne(e, n):
    return "%s %s" % (fmt(n), fmt(e))


def write_landxml(elements, path):
    end_station = elements[-1].station + elements[-1].length
    out = []
    out.append('<?xml version="1.0" encoding="UTF-8"?>')
    out.append('<LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" version="1.2" '
               'date="2024-06-07" time="12:00:00">')
    out.append('  <Units><Metric areaUnit="squareMeter" linearUnit="meter" volumeUnit="cubicMeter" '
               'temperatureUnit="celsius" pressureUnit="milliBars" angularUnit="radians" '
               'directionUnit="radians"/></Units>')
    out.append('  <Project name="zelmath sample"/>')
    out.append('  <Alignments name="Sample line">')
    out.append('    <Alignment name="Track 1" length="%s" staStart="%s">' %
               (fmt(end_station - START_STATION), fmt(START_STATION)))
    out.append('      <CoordGeom>')
    for el in elements:
        s = (el.east, el.north)
        e = (el.end_east, el.end_north)
        if el.kind == "line":
            out.append('        <Line staStart="%s" length="%s">' % (fmt(el.station), fmt(el.length)))
            out.append('          <Start>%s</Start>' % ne(*s))
            out.append('          <End>%s</End>' % ne(*e))
            out.append('        </Line>')
        elif el.kind == "arc":
            r = el.rs
            # Centre: to the right of the start tangent for a right-hand arc.
            cx = el.east + r * math.cos(el.azimuth)
            cy = el.north - r * math.sin(el.azimuth)
            out.append('        <Curve rot="%s" radius="%s" length="%s" staStart="%s" crvType="arc">' %
                       ("cw" if r > 0 else "ccw", fmt(abs(r)), fmt(el.length), fmt(el.station)))
            out.append('          <Start>%s</Start>' % ne(*s))
            out.append('          <Center>%s</Center>' % ne(cx, cy))
            out.append('          <End>%s</End>' % ne(*e))
            out.append('        </Curve>')
        else:
            spi = {"clothoid": "clothoid", "cubic_parabola": "cubicParabola", "half_sine": "cosine"}[el.kind]
            bend = el.rs if el.rs != 0.0 else el.re
            rad = lambda v: "INF" if v == 0.0 else fmt(abs(v))
            # Tangent intersection point of the start and end tangents.
            t1 = (math.sin(el.azimuth), math.cos(el.azimuth))
            t2 = (math.sin(el.end_azimuth), math.cos(el.end_azimuth))
            det = t1[0] * (-t2[1]) - t1[1] * (-t2[0])
            dx, dy = e[0] - s[0], e[1] - s[1]
            u = (dx * (-t2[1]) - dy * (-t2[0])) / det
            pi = (s[0] + u * t1[0], s[1] + u * t1[1])
            out.append('        <Spiral length="%s" radiusStart="%s" radiusEnd="%s" rot="%s" spiType="%s" '
                       'staStart="%s">' % (fmt(el.length), rad(el.rs), rad(el.re),
                                           "cw" if bend > 0 else "ccw", spi, fmt(el.station)))
            out.append('          <Start>%s</Start>' % ne(*s))
            out.append('          <PI>%s</PI>' % ne(*pi))
            out.append('          <End>%s</End>' % ne(*e))
            out.append('        </Spiral>')
    out.append('      </CoordGeom>')
    out.append('      <Profile name="Track 1">')
    out.append('        <ProfAlign name="Design">')
    for off, h, kind, length in PROFILE:
        sta = START_STATION + off
        if kind is None:
            out.append('          <PVI>%s %s</PVI>' % (fmt(sta), fmt(h)))
        elif kind == "para":
            out.append('          <ParaCurve length="%s">%s %s</ParaCurve>' % (fmt(length), fmt(sta), fmt(h)))
        else:
            out.append('          <CircCurve length="%s" radius="%s">%s %s</CircCurve>' %
                       (fmt(length), fmt(circle_radius(off, length)), fmt(sta), fmt(h)))
    out.append('        </ProfAlign>')
    out.append('      </Profile>')
    out.append('    </Alignment>')
    out.append('  </Alignments>')
    out.append('</LandXML>')
    with open(path, "w") as f:
        f.write("\n".join(out) + "\n")


def grades(i):
    (s0, h0, _, _), (s1, h1, _, _), (s2, h2, _, _) = PROFILE[i - 1], PROFILE[i], PROFILE[i + 1]
    return (h1 - h0) / (s1 - s0), (h2 - h1) / (s2 - s1)


def circle_radius(off, length):
    i = [p[0] for p in PROFILE].index(off)
    g1, g2 = grades(i)
    return length / abs(math.atan(g2) - math.atan(g1))


def design_height(off):
    """Height at a station offset from the start, from the profile's own geometry."""
    for i in range(1, len(PROFILE) - 1):
        s, h, kind, length = PROFILE[i]
        if kind is None:
            continue
        g1, g2 = grades(i)
        if kind == "para":
            r = length / abs(g2 - g1)
            t = length / 2.0
            if s - t <= off <= s + t:
                sag = 1.0 if g2 > g1 else -1.0
                return h + g1 * (off - s) + sag * (off - (s - t)) ** 2 / (2.0 * r)
        else:
            r = circle_radius(s, length)
            a1, a2 = math.atan(g1), math.atan(g2)
            tan_len = r * math.tan(abs(a2 - a1) / 2.0)
            ts = s - tan_len * math.cos(a1)
            te = s + tan_len * math.cos(a2)
            if ts <= off <= te:
                sag = 1.0 if g2 > g1 else -1.0
                # Centre on the normal of the incoming grade at the tangent point.
                hs = h - tan_len * math.sin(a1)
                cx = ts - sag * r * math.sin(a1)
                cy = hs + sag * r * math.cos(a1)
                return cy - sag * math.sqrt(r * r - (off - cx) ** 2)
    for i in range(1, len(PROFILE)):
        s0, h0 = PROFILE[i - 1][:2]
        s1, h1 = PROFILE[i][:2]
        if s0 <= off <= s1:
            return h0 + (h1 - h0) * (off - s0) / (s1 - s0)
    return None


def write_points(elements, path, expected_path):
    rng = random.Random(20240607)
    total = sum(el.length for el in elements)
    rows, expected = [], []
    count = 3000
    for k in range(count):
        pid = "P%05d" % (k + 1)
        off = rng.uniform(0.0, total)
        # Points on the tunnel lining and the track bed, within a few metres of the axis.
        offset = rng.uniform(-6.0, 6.0)
        s = 0.0
        for el in elements:
            if off <= s + el.length:
                break
            s += el.length
        e, n, az, _ = el.point(off - s)
        east = e + offset * math.cos(az)
        north = n - offset * math.sin(az)
        dh = design_height(off)
        height = dh + rng.choice([0.0, 0.0, 5.6]) + rng.gauss(0.0, 0.01)
        rows.append("%s,%.4f,%.4f,%.4f" % (pid, east, north, height))
        expected.append("%s,%.4f,%.4f,%.4f" % (pid, START_STATION + off, offset, dh))
    # A few points off the ends: before the start and beyond the end.
    first, last = elements[0], elements[-1]
    for k, (d, side) in enumerate([(-25.0, 2.0), (-60.0, -3.5)]):
        east = first.east + d * math.sin(first.azimuth) + side * math.cos(first.azimuth)
        north = first.north + d * math.cos(first.azimuth) - side * math.sin(first.azimuth)
        rows.append("B%02d,%.4f,%.4f,%.4f" % (k + 1, east, north, 432.0))
    for k, (d, side) in enumerate([(15.0, -1.0), (40.0, 4.0)]):
        east = last.end_east + d * math.sin(last.end_azimuth) + side * math.cos(last.end_azimuth)
        north = last.end_north + d * math.cos(last.end_azimuth) - side * math.sin(last.end_azimuth)
        rows.append("E%02d,%.4f,%.4f,%.4f" % (k + 1, east, north, 428.0))
    with open(path, "w") as f:
        f.write("id,east,north,height\n")
        f.write("\n".join(rows) + "\n")
    with open(expected_path, "w") as f:
        f.write("id,station,offset,design_height\n")
        f.write("\n".join(expected) + "\n")


def main():
    elements = layout()
    write_landxml(elements, os.path.join(HERE, "alignment.xml"))
    write_points(elements, os.path.join(HERE, "points.csv"), os.path.join(HERE, "points_expected.csv"))


if __name__ == "__main__":
    main()
