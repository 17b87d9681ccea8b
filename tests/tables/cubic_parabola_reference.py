#!/usr/bin/env python3
"""Rows of tests/data/cubic_parabola.txt: cubic parabola elements laid out by
hand and their points in closed form.

An element from a straight into a curve of radius R with chord c: the chord
leaves the main tangent (azimuth t at the origin, the start) at the angle
a = atan(-c / 6R) (to the right for R > 0), the curved end lies at abscissa
Lx = c cos a, and station s lies at abscissa x = Lx (s - s0) / span on
y = x^3 / (6 R Lx), to the right of the main tangent for R > 0. The tangent
there turns by atan(x^2 / (2 R Lx)), the radius is R Lx / x.

From a curve into a straight the origin is the end, t the azimuth of travel
there, a = atan(c / 6R), the start lies c back along t - a, and station s
lies at x = Lx (s1 - s) / span. The element places that local point about the
end without reversing it: its coordinates are the curve's own point reflected
through the end point, its azimuth t - atan(x^2 / (2 R Lx)).
"""
import math

TIGHT = "1e-9"


def place(p, az, along, left):
    """The point along metres on azimuth az from p, then left metres to its left."""
    e = p[0] + along * math.sin(az) + left * math.sin(az - math.pi / 2)
    n = p[1] + along * math.cos(az) + left * math.cos(az - math.pi / 2)
    return (e, n)


def wrap(a):
    r = math.fmod(a, 2 * math.pi)
    return r + 2 * math.pi if r < 0 else r


class Layout:
    def __init__(self, kind, origin, t, R, c, s0, span):
        self.kind, self.origin, self.t, self.R, self.c, self.s0, self.span = kind, origin, t, R, c, s0, span
        if kind == 0:
            self.a = math.atan(-c / (6 * R))
            self.lx = c * math.cos(self.a)
            self.start, self.end = origin, place(origin, t - self.a, c, 0.0)
            self.rs, self.re = 0.0, R
        else:
            self.a = math.atan(c / (6 * R))
            self.lx = c * math.cos(self.a)
            self.start, self.end = place(origin, t - self.a, -c, 0.0), origin
            self.rs, self.re = R, 0.0
        self.s1 = s0 + span

    def element(self):
        # The parameter and the azimuths are not read: written 0.
        kind = ["StraightIntoCurve", "CurveIntoStraight"][self.kind]
        return " ".join(["0", kind] + [repr(v) for v in (
            self.s0, self.start[0], self.start[1], 0, self.rs, self.s1, self.end[0], self.end[1], 0, self.re)])

    def x(self, s):
        d = s - self.s0 if self.kind == 0 else self.s1 - s
        return self.lx * d / self.span

    def point(self, s):
        x = self.x(s)
        y = x**3 / (6 * self.R * self.lx)
        return place(self.origin, self.t, x, -y if self.kind == 0 else y)

    def curve_point(self, s):
        x = self.x(s)
        y = x**3 / (6 * self.R * self.lx)
        return place(self.origin, self.t, x, -y) if self.kind == 0 else place(self.origin, self.t, -x, -y)

    def azimuth(self, s):
        x = self.x(s)
        turn = math.atan(x * x / (2 * self.R * self.lx))
        return wrap(self.t + turn if self.kind == 0 else self.t - turn)

    def radius(self, s):
        x = self.x(s)
        return 0.0 if x == 0 else self.R * self.lx / x


def point_row(name, l, s, source):
    p = l.point(s)
    r = l.radius(s)
    rtol = "0" if r == 0 else f"{abs(r) * 1.01e-9:.2g}"
    return (f"cubic_point {name} {s!r} | east {p[0]!r} {TIGHT} m; north {p[1]!r} {TIGHT} m; "
            f"azimuth {l.azimuth(s)!r} 1e-12 rad(mod2pi); radius {r!r} {rtol} m; station {s!r} 0 m | {source}")


def main():
    for R in (350.0, -350.0):
        side = "right" if R > 0 else "left"
        l = Layout(0, (1000.0, 2000.0), 0.7, R, 80.0, 100.0, 80.0)
        name = f"sic{'R' if R > 0 else 'L'}"
        print(f"\n# From a straight into a {side} curve of {abs(R):g} m: origin (1000, 2000), main tangent 0.7,")
        print(f"# chord 80, stations 100 to 180.")
        print(f"define {name} = {l.element()}")
        for s in range(100, 181, 8):
            print(point_row(name, l, float(s), "closed form: y = x^3 / (6 R Lx)"))
    for R in (350.0, -350.0):
        side = "right" if R > 0 else "left"
        l = Layout(1, (-300.0, 450.0), 4.0, R, 60.0, -20.0, 60.0)
        name = f"cis{'R' if R > 0 else 'L'}"
        print(f"\n# From a {side} curve of {abs(R):g} m into a straight: origin at the end (-300, 450),")
        print(f"# travelling at 4.0 there, chord 60, stations -20 to 40; points reflected through the end.")
        print(f"define {name} = {l.element()}")
        for s in range(-20, 41, 5):
            print(point_row(name, l, float(s), "closed form, reflected through the end point"))

    print("\n# The origin's station gives the origin itself, its main tangent and radius 0.")
    l = Layout(0, (2600000.0, 1200000.0), 2.1, 350.0, 90.0, 5000.0, 91.0)
    print(f"cubic_point {l.element()} 5000 | east 2600000 0 m; north 1200000 0 m; azimuth 2.1 1e-10 rad(mod2pi); "
          f"radius 0 0 m | hand: the origin at the start")
    l = Layout(1, (2600100.0, 1200050.0), 5.5, -350.0, 70.0, 300.0, 72.0)
    print(f"cubic_point {l.element()} 372 | east 2600100 0 m; north 1200050 0 m; azimuth 5.5 1e-10 rad(mod2pi); "
          f"radius 0 0 m | hand: the origin at the end")

    print("\n# Abscissa length. With the main tangent due East, North, West or South it is")
    print("# |x^3 / (6 R y)| of the curved end, y = x tan a: c cos^2 a = Lx cos a.")
    for t, tn in ((math.pi / 2, "East"), (0.0, "North"), (math.pi, "West"), (3 * math.pi / 2, "South")):
        for R in (300.0, -300.0):
            for kind in (0, 1):
                l = Layout(kind, (2600000.0, 1200000.0), t, R, 90.0, 0.0, 92.0)
                print(f"cubic_length {l.element()} | {l.lx * math.cos(l.a)!r} 1e-6 m | closed form: Lx cos a, "
                      f"main tangent due {tn}, R {R:g}")
    l = Layout(0, (0.0, 0.0), math.pi / 4, 300.0, 90.0, 0.0, 90.0)
    print("# Main tangent at 45 degrees: abscissa and ordinate change places. tan a = -90 / 1800,")
    print("# c sin a = -4.5 / s, c cos a = 90 / s, s = sqrt(1.0025): 4.5^3 / (6 * 300 * 90 * 1.0025).")
    print(f"cubic_length {l.element()} | {5.625e-4 / 1.0025!r} 1e-12 m | hand: 5.625e-4 / 1.0025")
    l = Layout(0, (0.0, 0.0), 1.0, 400.0, 50.0, 0.0, 50.0)
    e = l.element().replace("StraightIntoCurve", "CurveIntoTighterCurve")
    print(f"cubic_length {e} | nan | closed form: an unsupported kind gives 0 / 0")

    print("\n# Feet before the start and beyond the end: the points at the end stations.")
    for R in (350.0, -350.0):
        l = Layout(0, (500.0, 800.0), 2.5, R, 100.0, 0.0, 100.0)
        name = f"lot{'R' if R > 0 else 'L'}"
        print(f"define {name} = {l.element()}")
        p = place(l.origin, 2.5, -10.0, 4.0)
        print(f"cubic_foot {name} {p[0]!r} {p[1]!r} | result BeforeStart; station 0 0 m; east {l.start[0]!r} {TIGHT} m; "
              f"north {l.start[1]!r} {TIGHT} m; radius 0 0 m | hand: 10 m behind the start along the main tangent, 4 m aside")
        et = 2.5 + math.atan(l.c / (2 * R))
        p = place(l.end, et, 10.0, -4.0)
        q = l.point(100.0)
        print(f"cubic_foot {name} {p[0]!r} {p[1]!r} | result BeyondEnd; station 100 0 m; east {q[0]!r} {TIGHT} m; "
              f"north {q[1]!r} {TIGHT} m; radius {R!r} {abs(R) * 1e-9:.2g} m | closed form: 10 m beyond the end "
              f"along its tangent, atan(c / 2R) from the main tangent")

    print("\n# From a curve into a straight the element's own (reflected) points lie beyond")
    print("# the end; the curve's real points find no foot.")
    for R in (350.0, -350.0):
        l = Layout(1, (2600000.0, 1200000.0), 0.9, R, 100.0, 0.0, 100.0)
        name = f"cisfoot{'R' if R > 0 else 'L'}"
        print(f"define {name} = {l.element()}")
        for s in range(2, 99, 8):
            p = l.point(float(s))
            g = l.curve_point(float(s))
            print(f"cubic_foot {name} {p[0]!r} {p[1]!r} | result BeyondEnd; station 100 0 m; "
                  f"east {l.end[0]!r} {TIGHT} m; north {l.end[1]!r} {TIGHT} m | closed form: the reflected point of station {s}")
            print(f"cubic_foot {name} {g[0]!r} {g[1]!r} | result NoSolution | closed form: the curve's point of station {s}")
        st = 0.9 - math.atan(l.c / (2 * R))
        p = place(l.start, st, -5.0, 2.0)
        q = l.point(0.0)
        print(f"cubic_foot {name} {p[0]!r} {p[1]!r} | result BeforeStart; station 0 0 m; east {q[0]!r} {TIGHT} m; "
              f"north {q[1]!r} {TIGHT} m | closed form: behind the start along its tangent, the reflected curved end")

    print("\n# A practically straight element due East whose abscissa (150 m) is half as long")
    print("# again as its span (100): a point 5 m beside abscissa 105 starts the search at")
    print("# 105 * 100 / 150 = 70, its foot.")
    l = Layout(0, (0.0, 0.0), math.pi / 2, 1e12, 150.0, 0.0, 100.0)
    for side in (5.0, -5.0):
        print(f"cubic_foot {l.element()} 105 {side:g} | result OnElement; station 70 1e-9 m; east 105 1e-6 m; "
              f"north 0 1e-6 m | hand: station 105 * 100 / 150")


if __name__ == "__main__":
    main()
