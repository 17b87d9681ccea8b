// The library allocates nothing: every global allocation function is replaced
// here by one that counts while a measuring window is open, and every public
// operation of every class of the library is called inside such a window, on
// railway elements and on awkward numbers, with a station map that lives on
// the stack. The test framework's own allocations happen outside the windows.
#include "common/robust_support.h"

#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <vector>

#include "common/allocation_counter.h"

using namespace zelmath;
using namespace zeltest;

namespace {

// Keeps results alive so that nothing is left out as unused.
volatile double g_sink = 0.0;

void Keep(double v)
{
    g_sink = g_sink + (v == v ? 0.0 : 1.0);
}
void Keep(CAValue const& v)
{
    Keep(v.Double());
}
void Keep(CACoordinate const& c)
{
    Keep(c.East().Double());
    Keep(c.North().Double());
}
void Keep(CA3DCoordinate const& c)
{
    Keep(c.East().Double());
    Keep(c.North().Double());
    Keep(c.Elevation().Double());
}
void Keep(CAxisPointSpec const& p)
{
    Keep(p.Station);
    Keep(p.Azimuth);
    Keep(p.Radius);
    Keep(p.Coordinate);
}
void Keep(int v)
{
    Keep(static_cast<double>(v));
}
void Keep(bool v)
{
    Keep(v ? 1.0 : 0.0);
}

// Ordinary and awkward numbers, in a fixed array so that nothing is built on
// the heap while counting.
constexpr std::array<double, 9> Numbers = {150.0, -250.0, 0.0, NaN, Inf, -Inf, Huge, Denormal, 2600000.0};

// A station map that lives wholly on the stack: a straight, a vertical curve
// and another straight.
class StackMap : public IStngMap2D3DElements {
public:
    StackMap()
    {
        m_elements[0].StngStart = 800.0;
        m_elements[0].StngEnd = 900.0;
        m_elements[0].Length3D = 100.5;
        m_elements[1].StngStart = 900.0;
        m_elements[1].StngEnd = 1100.0;
        m_elements[1].Length3D = 200.0;
        m_elements[1].Curved = true;
        m_elements[2].StngStart = 1100.0;
        m_elements[2].StngEnd = 1200.0;
        m_elements[2].Length3D = 100.5;
        m_curve.PI1 = CACoordinate(0.0, 0.0);
        m_curve.PI2 = CACoordinate(1000.0, 10.0);
        m_curve.PI3 = CACoordinate(2000.0, 0.0);
        m_curve.Radius = 10000.0;
    }
    void Parabolic(bool on) { m_curve.IsParabola = on; }

    int GetElementCount() override { return static_cast<int>(m_elements.size()); }
    bool GetElement(int index, CStngMap2D3DElement* element) override
    {
        if (index < 0 || index >= GetElementCount()) {
            return false;
        }
        *element = m_elements[static_cast<std::size_t>(index)];
        return true;
    }
    bool GetCurvedDef(int index, CStngMapCurved3DDef* curve) override
    {
        if (index != 1) {
            return false;
        }
        *curve = m_curve;
        return true;
    }

private:
    std::array<CStngMap2D3DElement, 3> m_elements;
    CStngMapCurved3DDef m_curve;
};

// A circular arc of radius 400 to the right from (E 2 600 000, N 1 200 000),
// 100 m long: its end point lies on the circle through the start whose centre
// is 400 m to the right of the start, here at azimuth 0 (due North).
struct Arc {
    CACoordinate start{2600000.0, 1200000.0};
    CACoordinate end;
    double radius = 400.0;
    Arc()
    {
        double const angle = 100.0 / radius;
        end = CACoordinate(2600000.0 + radius * (1.0 - std::cos(angle)), 1200000.0 + radius * std::sin(angle));
    }
};

}  // namespace

TEST(NoHeap, TheCounterSeesAllocations)
{
    long const plain = AllocationsDuring([] {
        void* p = ::operator new(16);
        ::operator delete(p);
        void* q = ::operator new[](16, std::nothrow);
        ::operator delete[](q);
        void* r = ::operator new(64, std::align_val_t(64));
        ::operator delete(r, std::align_val_t(64));
    });
    EXPECT_EQ(plain, 3);
    long const container = AllocationsDuring([] {
        std::vector<double> v(10, 1.0);
        Keep(v[3]);
    });
    EXPECT_GE(container, 1);
    EXPECT_EQ(AllocationsDuring([] {}), 0);
}

TEST(NoHeap, Straight)
{
    CACoordinate const a(2600000.0, 1200000.0), b(2600100.0, 1200050.0), c(2600030.0, 1199980.0),
        d(2600040.0, 1200090.0);
    EXPECT_EQ(AllocationsDuring([&] {
                  for (double v : Numbers) {
                      CAxisPointSpec out;
                      CACoordinate x;
                      CACoordinate const p(v, 1200000.0);
                      Keep(CMathLine::Length(a, b));
                      CMathLine::Kleinpunkt(a, b, CALength(v), &out);
                      Keep(out);
                      Keep(CMathLine::Lot(a, b, p, &out));
                      Keep(CMathLine::Lot(a, b, c, &out));
                      Keep(CMathLine::PointOnLine(a, CAAzimuth(v), CALength(50.0)));
                      Keep(CMathLine::IntLineLine(a, b, c, d, &x));
                      Keep(CMathLine::IntLineLine(a, b, p, d, &x));
                      Keep(CMathLine::IntLineLine(a, CAAzimuth(0.3), c, CAAzimuth(v), &x));
                      Keep(CMathLine::IntLineLineSegment(a, b, c, d, &x));
                      Keep(CMathLine::IntLineSegmentLineSegment(a, b, c, p, &x));
                      Keep(CMathLine::IsPointOnLineSegment(a, b, p));
                      Keep(x);
                  }
              }),
              0);
}

TEST(NoHeap, CircularArc)
{
    Arc const arc;
    CACoordinate const m = CMathCircle::Center(arc.start, arc.end, CALength(arc.radius));
    CACoordinate const a(2599900.0, 1200040.0), b(2600500.0, 1200060.0);
    EXPECT_EQ(AllocationsDuring([&] {
                  for (double v : Numbers) {
                      CAxisPointSpec out;
                      CACoordinate p1, p2, e;
                      CAAzimuth ae;
                      double position = 0.0;
                      CACoordinate const p(2600050.0, v);
                      Keep(CMathCircle::Center(arc.start, arc.end, CALength(v)));
                      CMathCircle::Kleinpunkt(arc.start, arc.end, CALength(arc.radius), CALength(v), &out);
                      Keep(out);
                      Keep(CMathCircle::Lot(arc.start, arc.end, CALength(arc.radius), p, &out));
                      Keep(CMathCircle::Lot(arc.start, arc.end, CALength(arc.radius), a, &out));
                      Keep(CMathCircle::IntLineCircle(a, b, m, CALength(arc.radius), &p1, &p2));
                      Keep(CMathCircle::IntLineCircle(a, p, arc.start, arc.end, CALength(arc.radius), &p1, &p2));
                      Keep(CMathCircle::IntLineCircleSegment(a, b, arc.start, arc.end, CALength(v), &p1, &p2));
                      Keep(CMathCircle::IntLineSegmentCircleSegment(a, b, arc.start, arc.end, CALength(arc.radius),
                                                                    &p1, &p2));
                      Keep(CMathCircle::Length(arc.start, arc.end, CALength(v)));
                      Keep(CMathCircle::PointDistance(m, CALength(arc.radius), p));
                      Keep(CMathCircle::DirectedDeroleDistance(m, CALength(arc.radius), a, p, position));
                      Keep(CMathCircle::PointDeroleLR(m, CALength(arc.radius), p));
                      Keep(CMathCircle::EndPointAndEndAzi(arc.start, CAAzimuth(0.0), CALength(v),
                                                          CALength(arc.radius), e, ae));
                      Keep(position);
                      Keep(p1);
                      Keep(p2);
                      Keep(e);
                      Keep(ae);
                  }
              }),
              0);
}

TEST(NoHeap, TrianglesAndClassification)
{
    EXPECT_EQ(AllocationsDuring([&] {
                  for (double v : Numbers) {
                      Keep(CMathPTriangle::CfromCH(CALength(5.0), CALength(v)));
                      Keep(CMathPTriangle::HfromCC(CALength(v), CALength(3.0)));
                      Keep(CMathTriangle::AngleFromDistance(CALength(3.0), CALength(4.0), CAAngle(v)));
                      Keep(CMathTriangle::AngleFromDistance(CALength(3.0), CALength(4.0), CALength(v)));
                      Keep(CMathTriangle::DistanceFromAngle(CAAngle(0.5), CAAngle(v), CALength(3.0)));
                      Keep(CMathTriangle::DistanceFromAngle(CALength(3.0), CALength(v), CAAngle(0.7)));
                      for (int shape = TComplexType::StraightIntoCurve;
                           shape <= TComplexType::CurveIntoWiderCurve; ++shape) {
                          CAxisComplexSpec e = RailwayTransition(shape);
                          e.End.Radius = v;
                          CMathComplexShape::GetComplextype(&e);
                          Keep(static_cast<int>(e.ComplexType));
                      }
                  }
              }),
              0);
}

TEST(NoHeap, Clothoid)
{
    EXPECT_EQ(AllocationsDuring([&] {
                  for (int shape = TComplexType::StraightIntoCurve;
                       shape <= TComplexType::CurveIntoWiderCurve; ++shape) {
                      CAxisComplexSpec const e = RailwayTransition(shape);
                      for (double v : Numbers) {
                          CAxisPointSpec out;
                          Keep(CMathClothoid::GetLocalCoordinate(e.Parameter, CALength(v)));
                          Keep(CMathClothoid::Parameter(CALength(v), CALength(120.0)));
                          Keep(CMathClothoid::Length(e));
                          CMathClothoid::Kleinpunkt(e, CALength(1000.0 + v), &out);
                          Keep(out);
                          CMathClothoid::Kleinpunkt(e, CALength(1075.0), &out);
                          Keep(CMathClothoid::Lot(e, out.Coordinate, &out));
                          Keep(CMathClothoid::Lot(e, CACoordinate(v, 1200050.0), &out));
                          Keep(out);
                      }
                  }
                  // The start-point form: straight into curve, curve into
                  // straight, curvature growing (which walks back to the
                  // clothoid's origin first), falling, and awkward lengths.
                  CACoordinate const c0(2600000.0, 1200000.0);
                  double const radii[][2] = {{0.0, 400.0}, {400.0, 0.0}, {1200.0, 400.0},
                                             {400.0, 1200.0}, {-1200.0, -400.0}, {400.0, -400.0}};
                  for (auto const& r : radii) {
                      for (double d : {0.0, 45.0, 90.0, NaN}) {
                          CACoordinate point;
                          CAAzimuth azimuth;
                          CALength radius;
                          Keep(CMathClothoid::Kleinpunkt(c0, CAAzimuth(0.7), CALength(r[0]), CALength(r[1]),
                                                         CALength(90.0), CALength(d), point, azimuth, radius));
                          Keep(point);
                          Keep(azimuth);
                          Keep(radius);
                      }
                  }
              }),
              0);
}

TEST(NoHeap, CubicParabolaAndHalfSine)
{
    EXPECT_EQ(AllocationsDuring([&] {
                  for (int shape = TComplexType::StraightIntoCurve;
                       shape <= TComplexType::CurveIntoWiderCurve; ++shape) {
                      CAxisComplexSpec const e = RailwayTransition(shape);
                      for (double v : Numbers) {
                          CAxisPointSpec out;
                          Keep(CMathCbcParabol::Length(e));
                          CMathCbcParabol::Kleinpunkt(e, CALength(1000.0 + v), &out);
                          Keep(out);
                          Keep(CMathCbcParabol::Lot(e, e.End.Coordinate, &out));
                          Keep(CMathCbcParabol::Lot(e, CACoordinate(2600040.0, v), &out));
                          CMathHalfSin::Kleinpunkt(e, CALength(1000.0 + v), &out);
                          Keep(out);
                          Keep(CMathHalfSin::Lot(e, e.End.Coordinate, &out));
                          Keep(CMathHalfSin::Lot(e, CACoordinate(2600040.0, v), &out));
                          Keep(out);
                      }
                  }
              }),
              0);
}

TEST(NoHeap, LongitudinalProfile)
{
    CACoordinate const pi1(0.0, 0.0), pi2(100.0, 2.0), pi3(200.0, 0.0);
    EXPECT_EQ(AllocationsDuring([&] {
                  for (double v : Numbers) {
                      for (double radius : {1000.0, v}) {
                          CACoordinate s, e, m;
                          CALength length, height;
                          CASlope slope;
                          Keep(CMathLongProfCurve::calcPIPointsAndLengthOfCircle(pi1, pi2, pi3, CALength(radius), s,
                                                                                 e, length, m));
                          Keep(CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(pi1, pi2, pi3, CALength(radius),
                                                                                CALength(95.0), height, slope));
                          Keep(CMathLongProfCurve::calcCircleLengthBetween(pi1, pi2, pi3, CALength(radius),
                                                                           CALength(95.0), CALength(v), length));
                          Keep(CMathLongProfCurve::calcPIPointsAndLengthOfParabol(pi1, pi2, pi3, CALength(radius),
                                                                                  s, e, length));
                          Keep(CMathLongProfCurve::calcLengthAndSlopeOfParabolAt(pi1, pi2, pi3, CALength(radius),
                                                                                 CALength(v), height, slope));
                          Keep(CMathLongProfCurve::calcParabolLengthBetween(pi1, pi2, pi3, CALength(radius),
                                                                            CALength(90.0), CALength(110.0), length));
                          Keep(CMathLongProfCurve::calcRadiusFromLengthOfParabol(pi1, pi2, CACoordinate(v, 0.0),
                                                                                 CALength(40.0), length));
                          Keep(s);
                          Keep(e);
                          Keep(m);
                          Keep(length);
                          Keep(height);
                          Keep(slope);
                      }
                  }
              }),
              0);
}

TEST(NoHeap, Plane)
{
    CA3DCoordinate const p1(0.0, 0.0, 0.0), p2(10.0, 0.0, 1.0), p3(0.0, 10.0, 2.0);
    EXPECT_EQ(AllocationsDuring([&] {
                  for (double v : Numbers) {
                      CA3DCoordinate normal, x;
                      CA3DCoordinate const l1(3.0, 4.0, v), l2(3.0, 4.0, 100.0);
                      Keep(CMathPlane::CalculateNormal(p1, p2, CA3DCoordinate(v, 1.0, 0.0), &normal));
                      Keep(CMathPlane::IntPlaneLine(p1, p2, p3, l1, l2, &x));
                      double const a = 0.1, b = 0.2, c = 1.0;
                      Keep(CMathPlane::IntPlaneLine(a, b, c, v, l1, l2, &x));
                      Keep(normal);
                      Keep(x);
                  }
              }),
              0);
}

TEST(NoHeap, StationMap)
{
    StackMap map;
    EXPECT_EQ(AllocationsDuring([&] {
                  for (bool parabolic : {false, true}) {
                      map.Parabolic(parabolic);
                      for (double v : Numbers) {
                          for (bool same : {true, false}) {
                              double tm = 0.0, station = 0.0;
                              Keep(CMathStngMap2D3D::get3DTMFrom2DStng(&map, 850.0, 5000.0, same, 1050.0, tm));
                              Keep(CMathStngMap2D3D::get3DTMFrom2DStng(&map, 850.0, 5000.0, same, v, tm));
                              Keep(CMathStngMap2D3D::get2DStngFrom3DTM(&map, 850.0, 5000.0, same, 5210.0, station));
                              Keep(CMathStngMap2D3D::get2DStngFrom3DTM(&map, 1050.0, 5000.0, same, 4990.0, station));
                              Keep(CMathStngMap2D3D::get2DStngFrom3DTM(&map, v, 5000.0, same, 5100.0, station));
                              Keep(tm);
                              Keep(station);
                          }
                      }
                  }
              }),
              0);
}
