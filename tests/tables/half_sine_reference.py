#!/usr/bin/env python3
"""Rows of tests/data/half_sine.txt: half-sine transitions laid out from the
curve itself.

The curvature grows as b (1 - cos(a l)), a = pi / L over the station span L,
b = 1 / (2R) with R the radius at the curved end, l the distance from the
origin (zero curvature). Its heading is the integral b (l - sin(a l) / a), its
local point (x, y) the integrals of cos and sin of the heading, here by
quadrature at 30 digits (mpmath), independent of the library's series.

From a straight into a curve the origin is the start, t the azimuth of travel
there, the point at distance l lies x along t and y to the right of it (for
R > 0), heading t + theta. From a curve into a straight the origin is the end,
t the azimuth of travel there, the point at distance l before the end lies x
back along t and y to the right, heading t - theta.

The library sums a truncated series, whose ordinate is already
133 b^3 / (72 a^4) at the origin; the omitted terms are of the same order, so
the points are checked within four times that plus 1 micrometre, the
azimuths (a difference over 1 mm) within four times that over the span plus
1e-5 rad. The series itself, written out term by term and placed as the
element places it, is checked to 1e-9 m:

    x = l - b^2/(12 a^3) (2u^3 - 12 sin u + 12 u cos u - 3 cos u sin u + 3u)
    y = b/2 (l^2 + 2/a^2 (cos u - 1))
        - b^3/(72 a^4) (3u^4 + 36u^2 cos u - 60 cos u - 72 u sin u - 73),  u = a l
"""
import math

from mpmath import mp, mpf, quad, cos, sin

mp.dps = 30


def place(p, az, along, left):
    e = p[0] + along * math.sin(az) + left * math.sin(az - math.pi / 2)
    n = p[1] + along * math.cos(az) + left * math.cos(az - math.pi / 2)
    return (e, n)


def exact(a, b, l):
    a, b, l = mpf(a), mpf(b), mpf(l)
    theta = lambda s: b * (s - sin(a * s) / a)
    x = quad(lambda s: cos(theta(s)), [0, l])
    y = quad(lambda s: sin(theta(s)), [0, l])
    return float(x), float(y), float(theta(l))


def series(a, b, l):
    u = a * l
    x = l - b * b / (12 * a**3) * (2 * u**3 - 12 * math.sin(u) + 12 * u * math.cos(u)
                                   - 3 * math.cos(u) * math.sin(u) + 3 * u)
    y = (b / 2 * (l * l + 2 / (a * a) * (math.cos(u) - 1))
         - b**3 / (72 * a**4) * (3 * u**4 + 36 * u * u * math.cos(u) - 60 * math.cos(u) - 72 * u * math.sin(u) - 73))
    return x, y


def wrap(v):
    r = math.fmod(v, 2 * math.pi)
    return r + 2 * math.pi if r < 0 else r


class Layout:
    def __init__(self, kind, origin, t, R, s0, span):
        self.kind, self.origin, self.t, self.R, self.s0, self.span = kind, origin, t, R, s0, span
        self.a = math.pi / span
        self.b = 1 / (2 * R)
        self.s1 = s0 + span
        far = self.curve(span)[0]
        if kind == 0:
            self.start, self.end, self.rs, self.re = origin, far, 0.0, R
        else:
            self.start, self.end, self.rs, self.re = far, origin, R, 0.0

    def curve(self, l):
        x, y, th = exact(self.a, self.b, l)
        if self.kind == 0:
            return place(self.origin, self.t, x, -y), wrap(self.t + th)
        return place(self.origin, self.t, -x, -y), wrap(self.t - th)

    def dist(self, s):
        return s - self.s0 if self.kind == 0 else self.s1 - s

    def tolerance(self):
        return 4 * 133 * abs(self.b**3) / (72 * self.a**4) + 1e-6

    def element(self):
        kind = ["StraightIntoCurve", "CurveIntoStraight"][self.kind]
        return " ".join(["0", kind] + [repr(v) for v in (
            self.s0, self.start[0], self.start[1], 0, self.rs, self.s1, self.end[0], self.end[1], 0, self.re)])


def tol(v):
    return f"{v * 1.01:.2g}"


def main():
    n = 0
    for kind in (0, 1):
        for R in (400.0, -400.0):
            n += 1
            l = Layout(kind, (2600000.0, 1200000.0), 1.1, R, 3000.0, 100.0)
            name = f"h{n}"
            what = ["from a straight into a", "from a"][kind]
            side = "right" if R > 0 else "left"
            tail = [f"{side} curve of 400 m", f"{side} curve of 400 m into a straight"][kind]
            print(f"\n# {what} {tail}, origin (2600000, 1200000), travelling at 1.1 there,")
            print(f"# stations 3000 to 3100: the points of the curve itself.")
            print(f"define {name} = {l.element()}")
            pt = tol(l.tolerance())
            at = tol(4 * l.tolerance() / l.span + 1e-5)
            for s in range(3000, 3101, 5):
                p, az = l.curve(l.dist(float(s)))
                print(f"halfsine_point {name} {s} | east {p[0]!r} {pt} m; north {p[1]!r} {pt} m; "
                      f"azimuth {az!r} {at} rad(mod2pi); radius untouched; station {s} 0 m | integrated curve")
    n = 0
    for kind in (0, 1):
        for R in (400.0, -400.0):
            n += 1
            l = Layout(kind, (500.0, -300.0), 4.0, R, 0.0, 80.0)
            name = f"s{n}"
            print(f"\n# The series point placed about the origin, the main tangent from the chord")
            print(f"# azimuth and the chord angle sigma = b/2 (L^2 + 2/a^2 (cos pi - 1)) / L:")
            print(f"# {['from a straight', 'into a straight'][kind]}, R = {R:g}, span 80, origin (500, -300), travelling at 4.0.")
            print(f"define {name} = {l.element()}")
            ce = l.end[0] - l.start[0]
            cn = l.end[1] - l.start[1]
            ac = math.atan2(ce, cn)
            sigma = l.b / 2 * (80.0 * 80.0 + 2 / (l.a * l.a) * (math.cos(math.pi) - 1)) / 80.0
            for s in range(0, 81, 10):
                d = l.dist(float(s))
                x, y = series(l.a, l.b, d)
                if kind == 0:
                    p = place(l.start, ac - sigma, x, -y)
                else:
                    p = place(l.end, ac + sigma, -x, -y)
                print(f"halfsine_point {name} {s} | east {p[0]!r} 1e-9 m; north {p[1]!r} 1e-9 m | "
                      f"closed form: the series placed about the origin")
    n = 0
    for kind in (0, 1):
        for R in (400.0, -400.0):
            n += 1
            l = Layout(kind, (1000.0, 1000.0), 3.0, R, 0.0, 100.0)
            print(f"\n# Before the start and beyond the end: {['from a straight', 'into a straight'][kind]}, R = {R:g}.")
            name = f"lot{n}"
            print(f"define {name} = {l.element()}")
            ps, azs = l.curve(l.dist(0.0))
            pe, aze = l.curve(l.dist(100.0))
            pt = tol(l.tolerance())
            p = place(ps, azs, -5.0, 3.0)
            print(f"halfsine_foot {name} {p[0]!r} {p[1]!r} | result BeforeStart; station 0 0 m; "
                  f"east {l.start[0]!r} {pt} m; north {l.start[1]!r} {pt} m | integrated curve: 5 m behind the start")
            p = place(pe, aze, 5.0, -3.0)
            print(f"halfsine_foot {name} {p[0]!r} {p[1]!r} | result BeyondEnd; station 100 0 m; "
                  f"east {l.end[0]!r} {pt} m; north {l.end[1]!r} {pt} m | integrated curve: 5 m beyond the end")

    print("\n# A practically straight element due East whose end lies 150 m from its start over")
    print("# a span of 100: the series put station s at abscissa s - 1000, only the chord's")
    print("# direction is read, and a point 30 m beside abscissa 70 starts the search at its foot.")
    print("define straightish = 0 StraightIntoCurve 1000 0 0 0 0 1100 150 0 0 1e12")
    for side in (30, -30):
        print(f"halfsine_foot straightish 70 {side} | result OnElement; station 1070 1e-9 m; east 70 1e-6 m; "
              f"north 0 1e-6 m | hand: the first trial station is the distance along the start tangent")


if __name__ == "__main__":
    main()
