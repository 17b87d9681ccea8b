# Writes tests/data/landxml/spiral_*.xml and prints the measured points of
# test_transition_curves.cpp: chains integrated with mpmath (python3-mpmath),
# independently of the library. Run: /usr/bin/python3 spiral_reference.py
import mpmath as mp
mp.mp.dps = 30
pi = mp.pi

def f_shape(shape, t):
    if shape == 'bloss': return 3*t**2 - 2*t**3
    if shape == 'biquadratic': return 2*t**2 if t <= 0.5 else 1 - 2*(1-t)**2
    if shape == 'cosine': return (1 - mp.cos(pi*t))/2
    if shape == 'sinusoid': return t - mp.sin(2*pi*t)/(2*pi)
    raise ValueError(shape)

def k_of(shape, ks, ke, L, l):
    return ks + (ke-ks)*f_shape(shape, l/L)

def theta_spiral(shape, ks, ke, L, l, th0):
    # direction by numerical integration of the curvature (no closed form used)
    if l == 0: return th0
    pts = [0, l] if not (shape == 'biquadratic' and l > L/2) else [0, L/2, l]
    return th0 + mp.quad(lambda u: k_of(shape, ks, ke, L, u), pts)

def spiral_point(shape, ks, ke, L, l, n0, e0, th0):
    # position by integrating (cos az, sin az) with mpmath.quad (tanh-sinh)
    pts = [0, l] if not (shape == 'biquadratic' and l > L/2) else [0, L/2, l]
    th = lambda u: theta_spiral(shape, ks, ke, L, u, th0)
    dn = mp.quad(lambda u: mp.cos(th(u)), pts)
    de = mp.quad(lambda u: mp.sin(th(u)), pts)
    return n0 + dn, e0 + de, th(l)

def arc_point(R, l, n0, e0, th0):
    # signed R (positive right)
    th = th0 + l/R
    n = n0 + R*(mp.sin(th) - mp.sin(th0))
    e = e0 - R*(mp.cos(th) - mp.cos(th0))
    return n, e, th

def fmt(x, d=4):
    return ('%.' + str(d) + 'f') % float(x)

def radius_text(r):
    return 'INF' if r == 0 else fmt(abs(r), 6)

def build(name, desc, rot, chain, az0, probes):
    sign = 1 if rot == 'cw' else -1
    n, e, th = mp.mpf(5000), mp.mpf(1000), mp.mpf(az0)
    sta = mp.mpf(0)
    lines = []
    exact = []  # (sta0, L, kind, params, n0, e0, th0)
    rn, re_ = n, e  # rounded start
    for el in chain:
        kind = el[0]
        L = mp.mpf(el[1])
        if kind == 'line':
            n1 = n + L*mp.cos(th); e1 = e + L*mp.sin(th); th1 = th
            lines.append('        <Line staStart="%s" length="%s">\n          <Start>%s %s</Start>\n          <End>%s %s</End>\n        </Line>' % (fmt(sta,6), fmt(L,6), fmt(n), fmt(e), fmt(n1), fmt(e1)))
        elif kind == 'arc':
            R = sign*mp.mpf(el[2])
            n1, e1, th1 = arc_point(R, L, n, e, th)
            # centre: to the right for positive R
            cn = n - R*mp.sin(th); ce = e + R*mp.cos(th)
            lines.append('        <Curve staStart="%s" length="%s" radius="%s" rot="%s" crvType="arc">\n          <Start>%s %s</Start>\n          <Center>%s %s</Center>\n          <End>%s %s</End>\n        </Curve>' % (fmt(sta,6), fmt(L,6), fmt(abs(R),6), rot, fmt(n), fmt(e), fmt(cn), fmt(ce), fmt(n1), fmt(e1)))
        else:
            spiType, shape, Rs, Re = el[2], el[3], el[4], el[5]
            ks = 0 if Rs == 0 else sign/mp.mpf(Rs)
            ke = 0 if Re == 0 else sign/mp.mpf(Re)
            n1, e1, th1 = spiral_point(shape, ks, ke, L, L, n, e, th)
            # closed-form check of the end direction: ks L + (ke - ks) L / 2
            assert abs(th1 - (th + ks*L + (ke-ks)*L/2)) < mp.mpf('1e-20')
            lines.append('        <Spiral staStart="%s" length="%s" radiusStart="%s" radiusEnd="%s" rot="%s" spiType="%s">\n          <Start>%s %s</Start>\n          <End>%s %s</End>\n        </Spiral>' % (fmt(sta,6), fmt(L,6), radius_text(Rs), radius_text(Re), rot, spiType, fmt(n), fmt(e), fmt(n1), fmt(e1)))
        exact.append((sta, L, el, n, e, th, sign))
        n, e, th = n1, e1, th1
        sta += L
    # probes: (station, offset) -> measured point
    out = []
    for (s, off) in probes:
        s = mp.mpf(s)
        for (s0, L, el, n0, e0, th0, sg) in exact:
            if s0 <= s <= s0 + L:
                l = s - s0
                if el[0] == 'line':
                    pn, pe, pth = n0 + l*mp.cos(th0), e0 + l*mp.sin(th0), th0
                elif el[0] == 'arc':
                    pn, pe, pth = arc_point(sg*mp.mpf(el[2]), l, n0, e0, th0)
                else:
                    shape, Rs, Re = el[3], el[4], el[5]
                    ks = 0 if Rs == 0 else sg/mp.mpf(Rs)
                    ke = 0 if Re == 0 else sg/mp.mpf(Re)
                    pn, pe, pth = spiral_point(shape, ks, ke, L, l, n0, e0, th0)
                break
        # offset to the right: (east, north) += off * (cos az, -sin az)
        mn = pn - off*mp.sin(pth); me = pe + off*mp.cos(pth)
        out.append((float(s), off, '%.6f' % float(me), '%.6f' % float(mn), '%.12f' % float(pth % (2*pi))))
    text = '''<?xml version="1.0" encoding="UTF-8"?>
<!-- %s
     Coordinates (northing easting) to four decimals as design files write
     them; written by spiral_reference.py beside this file. -->
<LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" version="1.2">
  <Units><Metric linearUnit="meter" areaUnit="squareMeter" volumeUnit="cubicMeter" angularUnit="radians" directionUnit="radians"/></Units>
  <Alignments name="Transitions">
    <Alignment name="%s" length="%s" staStart="0.000000">
      <CoordGeom>
%s
      </CoordGeom>
    </Alignment>
  </Alignments>
</LandXML>
''' % (desc, name, fmt(sta, 6), '\n'.join(lines))
    return text, out

files = [
 ('bloss', 'Bloss transitions into and out of R 600 m, bending right.', 'cw', 0.7,
  [('line',100),('spiral',90,'bloss','bloss',0,600),('arc',60,600),('spiral',90,'bloss','bloss',600,0),('line',50)]),
 ('revbloss', 'revBloss transitions into and out of R 450 m, bending left.', 'ccw', 2.1,
  [('line',80),('spiral',70,'revBloss','bloss',0,450),('arc',40,450),('spiral',70,'revBloss','bloss',450,0),('line',40)]),
 ('biquadratic', 'Biquadratic transitions into R 800 m and on to R 500 m, bending right.', 'cw', 4.0,
  [('line',60),('spiral',100,'biquadratic','biquadratic',0,800),('arc',50,800),('spiral',80,'biquadratic','biquadratic',800,500),('arc',30,500)]),
 ('biquadraticparabola', 'biquadraticParabola transitions into and out of R 700 m, bending left.', 'ccw', 5.5,
  [('line',50),('spiral',120,'biquadraticParabola','biquadratic',0,700),('arc',70,700),('spiral',120,'biquadraticParabola','biquadratic',700,0),('line',60)]),
 ('revbiquadratic', 'revBiquadratic from R 1200 m to R 500 m and back to R 1500 m, bending right.', 'cw', 1.3,
  [('arc',40,1200),('spiral',90,'revBiquadratic','biquadratic',1200,500),('arc',50,500),('spiral',110,'revBiquadratic','biquadratic',500,1500),('arc',30,1500)]),
 ('sinusoid', 'Sine-curve transitions into and out of R 500 m, bending left.', 'ccw', 3.3,
  [('line',70),('spiral',110,'sinusoid','sinusoid',0,500),('arc',45,500),('spiral',110,'sinusoid','sinusoid',500,0),('line',30)]),
 ('revsinusoid', 'revSinusoid from R 2000 m to R 600 m and out to a straight, bending right.', 'cw', 0.2,
  [('arc',30,2000),('spiral',100,'revSinusoid','sinusoid',2000,600),('arc',40,600),('spiral',100,'revSinusoid','sinusoid',600,0),('line',40)]),
 ('cosine', 'cosine between two curves, R 900 m to R 400 m and back to R 1000 m, bending left.', 'ccw', 1.9,
  [('line',40),('arc',50,900),('spiral',80,'cosine','cosine',900,400),('arc',40,400),('spiral',90,'cosine','cosine',400,1000),('arc',30,1000)]),
 ('revcosine', 'revCosine from R 1500 m to R 350 m, bending right.', 'cw', 5.9,
  [('arc',40,1500),('spiral',70,'revCosine','cosine',1500,350),('arc',35,350)]),
]
import os
for key, desc, rot, az0, chain in files:
    # probes: middle of each spiral at +3.5 m and -2.0 m
    sta = 0; probes = []
    for el in chain:
        if el[0] == 'spiral':
            probes.append((sta + el[1]*0.5, 3.5))
            probes.append((sta + el[1]*0.3, -2.0))
        sta += el[1]
    text, out = build(key, desc, rot, chain, az0, probes)
    open(os.path.join(os.path.dirname(os.path.abspath(__file__)), 'spiral_%s.xml' % key), 'w').write(text)
    for o in out:
        print(key, o)
