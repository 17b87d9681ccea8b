#!/usr/bin/env python3
"""Expected values of the clothoid rows of tests/data/clothoid.txt.

The exact clothoid, by quadrature of the Fresnel integrals at 30 digits
(mpmath), independent of the library and of its four-term series:

    x(u) = integral_0^u cos(s^2 / (2 A^2)) ds,  y(u) = integral_0^u sin(...) ds

A clothoid track has its origin O (zero curvature) with tangent azimuth
thetaO; u is the arc length from the origin along growing station, k = +1
bends right, -1 left:

    point(u)   = O + x(u) (sin thetaO, cos thetaO) + k y(u) (cos thetaO, -sin thetaO)
    azimuth(u) = thetaO + k u^2 / (2 A^2)
    radius(u)  = k A^2 / u

Run it to print the rows; the table holds its output with the tolerances
chosen there.
"""
from mpmath import mp, mpf, quad, cos, sin, sqrt, pi

mp.dps = 30


def unit(l):
    """Unit clothoid (A = 1) at scaled length l."""
    l = mpf(l)
    x = quad(lambda s: cos(s * s / 2), [0, l])
    y = quad(lambda s: sin(s * s / 2), [0, l])
    return x, y


def series4(l):
    """The first four terms of the series, for the rows that pin them."""
    l = mpf(l)
    x = l - l**5 / 40 + l**9 / 3456 - l**13 / 599040
    y = l**3 / 6 - l**7 / 336 + l**11 / 42240 - l**15 / 9676800
    return x, y


class Track:
    def __init__(self, A, k, t0, O, thetaO):
        self.A, self.k, self.t0, self.O, self.thetaO = mpf(A), k, mpf(t0), (mpf(O[0]), mpf(O[1])), mpf(thetaO)

    def point(self, t):
        u = mpf(t) - self.t0
        ux, uy = unit(u / self.A)
        x, y = self.A * ux, self.A * uy
        se, ce = sin(self.thetaO), cos(self.thetaO)
        return (self.O[0] + x * se + self.k * y * ce, self.O[1] + x * ce - self.k * y * se)

    def azimuth(self, t):
        u = mpf(t) - self.t0
        a = self.thetaO + self.k * u * u / (2 * self.A**2)
        return a % (2 * pi)

    def radius(self, t):
        u = mpf(t) - self.t0
        return 0 if u == 0 else self.k * self.A**2 / u

    def left(self, t):
        h = self.azimuth(t)
        return (-cos(h), sin(h))


def f(v, digits=15):
    return mp.nstr(mpf(v), digits, strip_zeros=True, min_fixed=-30, max_fixed=30)


# The elements of the table: (name, track, start station, length).
ELEMENTS = [
    ("straight into a right curve of 600 m", Track(300, 1, 0, (2600000, 1200000), pi / 2), 1000, 150),
    ("left curve of 600 m into a straight", Track(300, 1, 150, (2600500, 1200300), mpf("0.3")), 0, 150),
    ("right curve of 1200 m into 400 m", Track(300, 1, -75, (1000, 2000), 1), 500, 150),
    ("left curve of 400 m into 1200 m", Track(300, 1, 225, (-500, 300), 4), 20, 150),
]


KINDS = ["StraightIntoCurve", "CurveIntoStraight", "CurveIntoTighterCurve", "CurveIntoWiderCurve"]

# Tolerances of the element rows: the four-term series is exact to rounding
# up to a scaled length of 0.5 and within 1.3e-8 m for A = 300 at 0.75; the
# foot is accepted within 0.4 mm of the normal.
POINT_TOL = {0: "1e-8", 1: "1e-8", 2: "1e-7", 3: "1e-7"}
AZIMUTH_TOL = "1e-9"
FOOT_TOL = "5e-4"


def main():
    for l in [mpf(i) / 20 for i in range(1, 21)] + [mpf("1.5"), mpf(2)]:
        x, y = unit(l)
        print(f"unit l={f(l, 4)}: x {f(x, 17)} y {f(y, 17)}")
    x, y = unit(mpf(150) / 300)
    print(f"A=300 L=150: x {f(300 * x, 17)} y {f(300 * y, 17)}")
    x, y = series4(2)
    print(f"four terms at l=2: x {f(x, 17)} y {f(y, 17)}")
    for kind, (name, track, s0, L) in enumerate(ELEMENTS):
        a, b = track.point(0), track.point(L)
        element = " ".join([f(track.A), KINDS[kind]] + [
            f(v, 17) for v in (s0, a[0], a[1], track.azimuth(0), track.radius(0),
                               s0 + L, b[0], b[1], track.azimuth(L), track.radius(L))])
        tol = POINT_TOL[kind]
        label = f"e{kind + 1}"
        print(f"\n# {name}")
        print(f"define {label} = {element}")
        element = label
        for t in (0, L / 2, L, L + 10, -10):
            p = track.point(t)
            # At the origin of a curve into a straight the element reports
            # the start radius, not 0: that row leaves the radius out.
            radius = "" if (kind == 1 and t == L) else f"radius {f(track.radius(t), 17)} 1e-6 m; "
            print(f"clothoid_point {element} {f(s0 + t)} | east {f(p[0], 17)} {tol} m; "
                  f"north {f(p[1], 17)} {tol} m; azimuth {f(track.azimuth(t), 17)} {AZIMUTH_TOL} rad; "
                  f"{radius}station {f(s0 + t)} 0 m | Fresnel integrals")
        for t, off in ((L / 3, 5), (2 * L / 3, -8)):
            p = track.point(t)
            n = track.left(t)
            q = (p[0] + off * n[0], p[1] + off * n[1])
            # The radius changes by A^2 / u^2 per metre of station: within
            # the foot's tolerance along the clothoid it may be that far off.
            u = mpf(t) - track.t0
            rtol = mp.nstr(track.A**2 / u**2 * mpf(FOOT_TOL) * mpf("1.01"), 2)
            print(f"clothoid_foot {element} {f(q[0], 17)} {f(q[1], 17)} | result OnElement; "
                  f"station {f(s0 + t)} {FOOT_TOL} m; east {f(p[0], 17)} {FOOT_TOL} m; "
                  f"north {f(p[1], 17)} {FOOT_TOL} m; radius {f(track.radius(t), 17)} {rtol} m | "
                  f"{abs(off)} m {'left' if off > 0 else 'right'} of the clothoid point, Fresnel integrals")
        for t, result, end, st in ((-10, "BeforeStart", a, s0), (L + 10, "BeyondEnd", b, s0 + L)):
            q = track.point(t)
            print(f"clothoid_foot {element} {f(q[0], 17)} {f(q[1], 17)} | result {result}; "
                  f"station {f(st)} 0 m; east {f(end[0], 17)} {tol} m; north {f(end[1], 17)} {tol} m | "
                  f"10 m {'before the start' if t < 0 else 'beyond the end'} on the continued clothoid")


if __name__ == "__main__":
    main()
