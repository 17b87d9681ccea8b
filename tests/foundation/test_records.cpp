#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

using namespace zelmath;

namespace {

CAxisPointSpec MakePoint(double station, double azimuth, double radius, double east, double north)
{
    CAxisPointSpec p;
    p.Station = station;
    p.Azimuth = CAAzimuth(azimuth);
    p.Radius = radius;
    p.Coordinate = CACoordinate(east, north);
    return p;
}

void ExpectSamePoint(CAxisPointSpec const& a, CAxisPointSpec const& b)
{
    EXPECT_EQ(a.Station.Double(), b.Station.Double());
    EXPECT_EQ(a.Azimuth.Double(), b.Azimuth.Double());
    EXPECT_EQ(a.Radius.Double(), b.Radius.Double());
    EXPECT_EQ(a.Coordinate.East().Double(), b.Coordinate.East().Double());
    EXPECT_EQ(a.Coordinate.North().Double(), b.Coordinate.North().Double());
}

}  // namespace

TEST(CAxisPointSpec, DefaultsAreZero)
{
    CAxisPointSpec p;
    EXPECT_EQ(p.Station.Double(), 0.0);
    EXPECT_EQ(p.Azimuth.Double(), 0.0);
    EXPECT_EQ(p.Radius.Double(), 0.0);
    EXPECT_EQ(p.Coordinate.East().Double(), 0.0);
    EXPECT_EQ(p.Coordinate.North().Double(), 0.0);
    EXPECT_FALSE(std::is_polymorphic<CAxisPointSpec>::value);
}

TEST(CAxisPointSpec, CopyAndAssignment)
{
    CAxisPointSpec const a = MakePoint(12.5, 1.25, -300.0, 2600000.0, 1200000.0);
    CAxisPointSpec b(a);
    ExpectSamePoint(a, b);
    CAxisPointSpec c;
    CAxisPointSpec& r = (c = a);
    EXPECT_EQ(&r, &c);
    ExpectSamePoint(a, c);
}

TEST(CAxisPointSpec, SelfAssignmentLeavesEveryField)
{
    CAxisPointSpec a = MakePoint(7.0, 2.0, 150.0, -1.0, 3.0);
    CAxisPointSpec const before = a;
    CAxisPointSpec& alias = a;
    a = alias;
    ExpectSamePoint(a, before);
}

TEST(CAxisComplexSpec, IsPolymorphicWithFieldsInOrder)
{
    EXPECT_TRUE(std::has_virtual_destructor<CAxisComplexSpec>::value);
    EXPECT_TRUE((std::is_same<decltype(CAxisComplexSpec::ComplexType), std::int32_t>::value));
    CAxisComplexSpec e;
    // The end is stored before the start.
    EXPECT_LT(reinterpret_cast<char const*>(&e.Parameter), reinterpret_cast<char const*>(&e.End));
    EXPECT_LT(reinterpret_cast<char const*>(&e.End), reinterpret_cast<char const*>(&e.Start));
    EXPECT_LT(reinterpret_cast<char const*>(&e.Start), reinterpret_cast<char const*>(&e.ComplexType));
}

TEST(CAxisComplexSpec, DefaultIsUnclassified)
{
    CAxisComplexSpec e;
    EXPECT_EQ(e.ComplexType, TComplexType::NotClassified);
    EXPECT_EQ(e.ComplexType, CAxisComplexSpec::NotClassified);
    EXPECT_EQ(e.Parameter.Double(), 0.0);
}

TEST(CAxisComplexSpec, CopyOfUnsetTypeThenClassified)
{
    CAxisComplexSpec unset;
    unset.Start.Radius = 0.0;
    unset.End.Radius = 400.0;
    CAxisComplexSpec copy(unset);
    EXPECT_EQ(copy.ComplexType, unset.ComplexType);  // unset copied as it is
    CAxisComplexSpec assigned;
    assigned.ComplexType = TComplexType::CurveIntoTighterCurve;
    assigned = unset;
    EXPECT_EQ(assigned.ComplexType, unset.ComplexType);

    CMathComplexShape::GetComplextype(&copy);
    EXPECT_GE(copy.ComplexType, TComplexType::StraightIntoCurve);
    EXPECT_LE(copy.ComplexType, TComplexType::CurveIntoWiderCurve);
    EXPECT_EQ(copy.ComplexType, TComplexType::StraightIntoCurve);
    CAxisComplexSpec again(copy);
    EXPECT_EQ(again.ComplexType, TComplexType::StraightIntoCurve);
}

TEST(CAxisComplexSpec, CopyCarriesEveryField)
{
    CAxisComplexSpec e;
    e.Parameter = 250.0;
    e.Start = MakePoint(100.0, 0.5, 0.0, 10.0, 20.0);
    e.End = MakePoint(180.0, 0.7, 500.0, 30.0, 90.0);
    e.ComplexType = TComplexType::StraightIntoCurve;
    CAxisComplexSpec c;
    c = e;
    EXPECT_EQ(c.Parameter.Double(), 250.0);
    ExpectSamePoint(c.Start, e.Start);
    ExpectSamePoint(c.End, e.End);
    EXPECT_EQ(c.ComplexType, TComplexType::StraightIntoCurve);
}

TEST(CAxisComplexSpec, DestroyedThroughABasePointer)
{
    struct Derived : CAxisComplexSpec {
        explicit Derived(bool* flag) : destroyed(flag) {}
        ~Derived() override { *destroyed = true; }
        bool* destroyed;
    };
    bool destroyed = false;
    std::unique_ptr<CAxisComplexSpec> p(new Derived(&destroyed));
    p.reset();
    EXPECT_TRUE(destroyed);
    // Arrays of records are plain values.
    std::unique_ptr<CAxisComplexSpec[]> many(new CAxisComplexSpec[4]);
    EXPECT_EQ(many[3].ComplexType, TComplexType::NotClassified);
}

TEST(ResultCodes, FixedNumbers)
{
    EXPECT_EQ(static_cast<int>(TPointMathResult::OnElement), 0);
    EXPECT_EQ(static_cast<int>(TPointMathResult::BeforeStart), 1);
    EXPECT_EQ(static_cast<int>(TPointMathResult::BeyondEnd), 2);
    EXPECT_EQ(static_cast<int>(TPointMathResult::NoSolution), 3);
    EXPECT_EQ(static_cast<int>(TIntersectionResult::NoIntersection), 0);
    EXPECT_EQ(static_cast<int>(TIntersectionResult::OneIntersection), 1);
    EXPECT_EQ(static_cast<int>(TIntersectionResult::TwoIntersections), 2);
    EXPECT_EQ(static_cast<int>(TIntersectionResult::Coincident), 3);
    EXPECT_EQ(static_cast<int>(TIntersectionResult::Tangent), 4);
}

TEST(ResultCodes, ComparedAsPlainIntegers)
{
    // Callers compare results with numbers, as the segment intersections do with 3.
    TIntersectionResult::Type r = TIntersectionResult::Coincident;
    EXPECT_TRUE(r == 3);
    TPointMathResult::Type p = TPointMathResult::BeyondEnd;
    int const asInt = p;
    EXPECT_EQ(asInt, 2);
}

TEST(ResultCodes, HoldersAreEmptyAndAssignable)
{
    EXPECT_TRUE(std::is_empty<TPointMathResult>::value);
    EXPECT_TRUE(std::is_empty<TIntersectionResult>::value);
    TPointMathResult a;
    TPointMathResult b;
    TPointMathResult& r = (a = b);
    EXPECT_EQ(&r, &a);
}

TEST(DataFreeClasses, CopyAssignmentReturnsTheObject)
{
    EXPECT_TRUE(std::is_empty<CMathComplexShape>::value);
    CMathComplexShape a;
    CMathComplexShape b;
    CMathComplexShape& r = (a = b);
    EXPECT_EQ(&r, &a);
}
