// Classification of transition elements: the laws and the boundary cases that
// need code; the list of single cases is tests/data/complex_shape.txt.
#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace zelmath;

namespace {

int Classify(double startRadius, double endRadius)
{
    CAxisComplexSpec e;
    e.Start.Radius = startRadius;
    e.End.Radius = endRadius;
    CMathComplexShape::GetComplextype(&e);
    return e.ComplexType;
}

// The kind from the table of transition shapes, written independently: a radius
// counts as straight below 0.2 m in magnitude.
int ExpectedKind(double rs, double re)
{
    bool const straightStart = std::fabs(rs) < 0.2;
    bool const straightEnd = std::fabs(re) < 0.2;
    if (straightStart) {
        return TComplexType::StraightIntoCurve;  // or both straight
    }
    if (straightEnd) {
        return TComplexType::CurveIntoStraight;
    }
    return std::fabs(rs) > std::fabs(re) ? TComplexType::CurveIntoTighterCurve
                                         : TComplexType::CurveIntoWiderCurve;
}

}  // namespace

TEST(GetComplextype, RadiiInTheRecordAreKept)
{
    CAxisComplexSpec e;
    e.Start.Radius = 0.1;
    e.End.Radius = -0.1;
    e.Parameter = 123.0;
    e.Start.Station = 5.0;
    e.End.Station = 6.0;
    CMathComplexShape::GetComplextype(&e);
    EXPECT_EQ(e.ComplexType, TComplexType::StraightIntoCurve);
    EXPECT_EQ(e.Start.Radius.Double(), 0.1);
    EXPECT_EQ(e.End.Radius.Double(), -0.1);
    EXPECT_EQ(e.Parameter.Double(), 123.0);
    EXPECT_EQ(e.Start.Station.Double(), 5.0);
    EXPECT_EQ(e.End.Station.Double(), 6.0);
}

TEST(GetComplextype, OverwritesAPreviousKind)
{
    CAxisComplexSpec e;
    e.ComplexType = TComplexType::CurveIntoTighterCurve;
    e.Start.Radius = 0.0;
    e.End.Radius = 0.0;
    CMathComplexShape::GetComplextype(&e);
    EXPECT_EQ(e.ComplexType, TComplexType::StraightIntoCurve);
}

TEST(GetComplextype, ThresholdIsExactlyPointTwo)
{
    // 0.2 itself is a row of tests/data/complex_shape.txt; the next double
    // below it is a straight.
    EXPECT_EQ(Classify(std::nextafter(0.2, 0.0), 100.0), TComplexType::StraightIntoCurve);
}

TEST(GetComplextype, MagnitudesWithinTheValueToleranceAreEqual)
{
    // The shrink test is a value comparison: a start radius larger by less than
    // the tolerance is not greater, so the element counts as growing.
    EXPECT_EQ(Classify(300.0 + 5e-11, 300.0), TComplexType::CurveIntoWiderCurve);
    EXPECT_EQ(Classify(300.0 + 1e-6, 300.0), TComplexType::CurveIntoTighterCurve);
}

TEST(GetComplextype, GridOfRadiusPairsFollowsTheTable)
{
    double const radii[] = {-5000.0, -600.0, -300.0, -150.0, -0.5, -0.19, -0.1, 0.0,
                            0.05,    0.19,   0.2,    0.5,    150.0, 300.0, 600.0, 5000.0};
    for (double rs : radii) {
        for (double re : radii) {
            EXPECT_EQ(Classify(rs, re), ExpectedKind(rs, re)) << "start " << rs << " end " << re;
        }
    }
}

