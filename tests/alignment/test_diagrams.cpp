// The numbers behind the diagrams: axis ranges, station ticks, the plan's
// joints, the curvature diagram (clothoids as straight ramps between the
// curvatures of their ends, jumps at the joints), the profile's grades and
// vertical curves, the cant samples and the points outside a tolerance.
// Expected values come from the element and PVI data of the sample file and
// from hand-worked geometry, not from the code under test.
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zelalign/diagrams.h>
#include <zelalign/error.h>
#include <zelalign/readers/landxml.h>
#include <zellib/constants.h>

using zelalign::Alignment;
using zelalign::AxisScale;
using zelalign::CurvatureSample;
using zelalign::ElementType;
using zelalign::HorizontalAlignment;
using zelalign::HorizontalElement;
using zelalign::ProfilePoint;
using zelalign::ProjectionStatus;
using zelalign::StationedPoint;
using zelalign::VerticalCurveType;
using zelalign::VerticalProfile;
using zelmath::CACoordinate;

namespace {

constexpr double Pi = zellib::CAPi;
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

Alignment const& SampleAlignment()
{
    static Alignment const a = zelalign::ReadLandXml(std::string(ZEL_SOURCE_DIR) + "/data/sample/alignment.xml");
    return a;
}

// North 100 m from (1000, 2000), then a right quarter circle of radius 100 into East.
Alignment LineAndArc()
{
    std::vector<HorizontalElement> e;
    e.push_back(HorizontalElement::Line(0.0, 100.0, CACoordinate(1000.0, 2000.0), CACoordinate(1000.0, 2100.0)));
    e.push_back(HorizontalElement::Arc(100.0, 50.0 * Pi, CACoordinate(1000.0, 2100.0), CACoordinate(1100.0, 2200.0),
                                       100.0));
    return Alignment("T", HorizontalAlignment(e));
}

// The clothoids of the sample, from its file: stations and radii (0 for INF,
// negative for ccw) at both ends.
struct ClothoidCase {
    double start, end, startRadius, endRadius;
};
ClothoidCase const SampleClothoids[] = {
    {12800.0, 12920.0, 0.0, 1200.0},    {13420.0, 13540.0, 1200.0, 0.0}, {15110.0, 15210.0, 1800.0, 900.0},
    {15510.0, 15570.0, 900.0, 2000.0}, {15770.0, 15850.0, 2000.0, 0.0},
};

double InverseOrZero(double r)
{
    return r == 0.0 ? 0.0 : 1.0 / r;
}

}  // namespace

// ---------------------------------------------------------------- axes

TEST(Axis, RoundRangesCoverTheData)
{
    struct Case {
        double low, high;
        int ticks;
        double min, max, step;  // worked by hand: steps 1, 2, 5 x 10^k
    };
    Case const cases[] = {
        {12400.0, 16150.0, 8, 12000.0, 17000.0, 1000.0},  // 500 would need 9 steps
        {-0.013, 0.021, 8, -0.015, 0.025, 0.005},
        {0.0, 1.0, 10, 0.0, 1.0, 0.1},
        {5.0, 5.0, 8, 4.4, 5.6, 0.2},                      // one value: widened by 10 %
        {0.0, 0.0, 8, -1.0, 1.0, 0.5},                     // zero: widened by one unit
        {3.0, -7.0, 5, -10.0, 5.0, 5.0},                   // swapped ends; steps of 2 need 6 intervals
    };
    for (Case const& c : cases) {
        AxisScale const s = zelalign::NiceAxis(c.low, c.high, c.ticks);
        SCOPED_TRACE(std::to_string(c.low) + " .. " + std::to_string(c.high));
        EXPECT_NEAR(s.min, c.min, 1e-12);
        EXPECT_NEAR(s.max, c.max, 1e-12);
        EXPECT_NEAR(s.step, c.step, 1e-15);
    }
}

TEST(Axis, TicksRunFromMinToMaxInSteps)
{
    std::vector<double> const t = zelalign::AxisTicks(AxisScale{-0.015, 0.025, 0.005});
    ASSERT_EQ(t.size(), 9u);
    EXPECT_DOUBLE_EQ(t.front(), -0.015);
    EXPECT_DOUBLE_EQ(t.back(), 0.025);
    EXPECT_NEAR(t[3], 0.0, 1e-15);
}

TEST(Axis, RefusesValuesThatAreNotFinite)
{
    EXPECT_THROW(zelalign::NiceAxis(NaN, 1.0), zelalign::ArgumentError);
    EXPECT_THROW(zelalign::NiceAxis(0.0, std::numeric_limits<double>::infinity()), zelalign::ArgumentError);
    EXPECT_THROW(zelalign::NiceAxis(0.0, 1.0, 0), zelalign::ArgumentError);
}

// ---------------------------------------------------------------- plan

TEST(StationTicks, IntervalFromTheLength)
{
    // At most 20 intervals of 10, 20, 50, 100, ... metres.
    EXPECT_DOUBLE_EQ(zelalign::StationTickInterval(5.0), 10.0);
    EXPECT_DOUBLE_EQ(zelalign::StationTickInterval(200.0), 10.0);
    EXPECT_DOUBLE_EQ(zelalign::StationTickInterval(201.0), 20.0);
    EXPECT_DOUBLE_EQ(zelalign::StationTickInterval(3750.0), 200.0);
    EXPECT_DOUBLE_EQ(zelalign::StationTickInterval(4001.0), 500.0);
    EXPECT_DOUBLE_EQ(zelalign::StationTickInterval(1.0e6), 50000.0);
    EXPECT_THROW(zelalign::StationTickInterval(0.0), zelalign::ArgumentError);
    EXPECT_THROW(zelalign::StationTickInterval(NaN), zelalign::ArgumentError);
}

TEST(StationTicks, RoundStationsOnTheSample)
{
    Alignment const& a = SampleAlignment();
    auto const ticks = zelalign::StationTicks(a, 200.0);
    // 12 400 to 16 150: 12 400, 12 600, ..., 16 000.
    ASSERT_EQ(ticks.size(), 19u);
    for (std::size_t k = 0; k < ticks.size(); ++k) {
        EXPECT_DOUBLE_EQ(ticks[k].station, 12400.0 + 200.0 * static_cast<double>(k));
        zelalign::AlignmentPoint p;
        ASSERT_TRUE(a.Horizontal().PointAt(ticks[k].station, &p));
        EXPECT_DOUBLE_EQ(ticks[k].east, p.east);
        EXPECT_DOUBLE_EQ(ticks[k].north, p.north);
    }
    EXPECT_THROW(zelalign::StationTicks(a, 0.0), zelalign::ArgumentError);
    EXPECT_THROW(zelalign::StationTicks(Alignment(), 10.0), zelalign::ArgumentError);
}

TEST(Plan, JointsAtTheElementStationsAndPolylinesBetweenThem)
{
    Alignment const& a = SampleAlignment();
    zelalign::PlanDiagram const plan = zelalign::MakePlanDiagram(a);
    // Stations of the element starts in the file, and its end.
    double const joints[] = {12400.0, 12800.0, 12920.0, 13420.0, 13540.0, 13890.0, 13970.0,
                             14370.0, 14470.0, 14770.0, 14860.0, 15110.0, 15210.0, 15510.0,
                             15570.0, 15770.0, 15850.0, 16150.0};
    ASSERT_EQ(plan.elements.size(), 17u);
    ASSERT_EQ(plan.joints.size(), 18u);
    for (std::size_t i = 0; i < plan.joints.size(); ++i) {
        EXPECT_NEAR(plan.joints[i].station, joints[i], 1e-9) << i;
    }
    for (std::size_t i = 0; i < plan.elements.size(); ++i) {
        zelalign::PlanElement const& e = plan.elements[i];
        ASSERT_GE(e.points.size(), 2u);
        EXPECT_DOUBLE_EQ(e.points.front().station, joints[i]);
        EXPECT_DOUBLE_EQ(e.points.back().station, joints[i + 1]);
        // Each polyline starts at its joint and ends at the next one (the sample joins within a millimetre).
        EXPECT_NEAR(e.points.front().east, plan.joints[i].east, 1e-3) << i;
        EXPECT_NEAR(e.points.front().north, plan.joints[i].north, 1e-3) << i;
        EXPECT_NEAR(e.points.back().east, plan.joints[i + 1].east, 1e-3) << i;
        EXPECT_NEAR(e.points.back().north, plan.joints[i + 1].north, 1e-3) << i;
        for (auto const& p : e.points) {
            EXPECT_GE(p.east, plan.bounds.minEast);
            EXPECT_LE(p.east, plan.bounds.maxEast);
            EXPECT_GE(p.north, plan.bounds.minNorth);
            EXPECT_LE(p.north, plan.bounds.maxNorth);
        }
    }
    EXPECT_DOUBLE_EQ(plan.tickInterval, 200.0);
    EXPECT_EQ(plan.ticks.size(), 19u);
}

TEST(Plan, BoundsOfAHandBuiltLineAndArc)
{
    zelalign::PlanDiagram const plan = zelalign::MakePlanDiagram(LineAndArc());
    // From (1000, 2000) north to (1000, 2100), round to (1100, 2200).
    EXPECT_NEAR(plan.bounds.minEast, 1000.0, 1e-9);
    EXPECT_NEAR(plan.bounds.maxEast, 1100.0, 1e-9);
    EXPECT_NEAR(plan.bounds.minNorth, 2000.0, 1e-9);
    EXPECT_NEAR(plan.bounds.maxNorth, 2200.0, 1e-9);
    ASSERT_EQ(plan.elements.size(), 2u);
    EXPECT_EQ(plan.elements[0].points.size(), 2u);  // a straight: its two ends
    EXPECT_EQ(plan.elements[1].type, ElementType::Arc);
    // Station ticks every 20 m over 257 m: 0, 20, ..., 240.
    EXPECT_DOUBLE_EQ(plan.tickInterval, 20.0);
    EXPECT_EQ(plan.ticks.size(), 13u);
}

// ---------------------------------------------------------------- curvature

TEST(Curvature, ClothoidsAreStraightRampsBetweenTheirEndCurvatures)
{
    Alignment const& a = SampleAlignment();
    std::vector<CurvatureSample> const samples = zelalign::CurvatureDiagram(a, 5.0);
    for (ClothoidCase const& c : SampleClothoids) {
        SCOPED_TRACE(c.start);
        int inside = 0;
        double const k1 = InverseOrZero(c.startRadius);
        double const k2 = InverseOrZero(c.endRadius);
        for (CurvatureSample const& s : samples) {
            if (s.station < c.start || s.station > c.end ||
                a.Horizontal().Elements()[static_cast<std::size_t>(s.element)].type != ElementType::Clothoid) {
                continue;
            }
            double const expected = k1 + (k2 - k1) * (s.station - c.start) / (c.end - c.start);
            EXPECT_NEAR(s.curvature, expected, 1e-9) << "station " << s.station;
            ++inside;
        }
        // Both ends and at least 16 steps, at most 5 m apart.
        EXPECT_GE(inside, std::max(17, static_cast<int>((c.end - c.start) / 5.0) + 1));
    }
}

TEST(Curvature, JumpsAtTheJointsOfAHandBuiltLineAndArc)
{
    std::vector<CurvatureSample> const s = zelalign::CurvatureDiagram(LineAndArc(), 1.0);
    // A straight and an arc are constant: their two ends only.
    ASSERT_EQ(s.size(), 4u);
    EXPECT_EQ(s[0].element, 0);
    EXPECT_DOUBLE_EQ(s[0].station, 0.0);
    EXPECT_DOUBLE_EQ(s[0].curvature, 0.0);
    EXPECT_DOUBLE_EQ(s[1].station, 100.0);
    EXPECT_DOUBLE_EQ(s[1].curvature, 0.0);
    EXPECT_EQ(s[2].element, 1);
    EXPECT_DOUBLE_EQ(s[2].station, 100.0);
    EXPECT_DOUBLE_EQ(s[2].curvature, 0.01);  // 1 / 100 m, bending right
    EXPECT_NEAR(s[3].station, 100.0 + 50.0 * Pi, 1e-12);
    EXPECT_DOUBLE_EQ(s[3].curvature, 0.01);
}

TEST(Curvature, SampleJointsAndSignsFromTheFile)
{
    Alignment const& a = SampleAlignment();
    std::vector<CurvatureSample> const samples = zelalign::CurvatureDiagram(a, 10.0);
    // Stations never decrease; every element starts and ends on its own stations.
    for (std::size_t i = 1; i < samples.size(); ++i) {
        EXPECT_GE(samples[i].station, samples[i - 1].station);
    }
    for (std::size_t i = 0; i < a.Horizontal().Size(); ++i) {
        auto const& e = a.Horizontal().Elements()[i];
        bool start = false;
        bool end = false;
        for (CurvatureSample const& s : samples) {
            if (s.element != static_cast<int>(i)) {
                continue;
            }
            start = start || s.station == e.StartStation();
            end = end || s.station == e.EndStation();
        }
        EXPECT_TRUE(start && end) << i;
    }
    // The arc of 1500 m turning left (ccw) at 13 970 to 14 370; the cosine
    // transition out of it is 0 at its straight end.
    bool left = false;
    for (CurvatureSample const& s : samples) {
        if (s.element == 6) {
            EXPECT_TRUE(s.station == 13970.0 || s.station == 14370.0) << s.station;  // an arc: its ends only
            EXPECT_NEAR(s.curvature, -1.0 / 1500.0, 1e-12);
            left = true;
        }
        if (s.station == 14470.0 && s.element == 7) {
            EXPECT_DOUBLE_EQ(s.curvature, 0.0);
        }
    }
    EXPECT_TRUE(left);
    EXPECT_THROW(zelalign::CurvatureDiagram(a, 0.0), zelalign::ArgumentError);
    EXPECT_THROW(zelalign::CurvatureDiagram(Alignment(), 1.0), zelalign::ArgumentError);
}

TEST(Curvature, HalfSineRisesAsAHalfCosineWave)
{
    Alignment const& a = SampleAlignment();
    // The cosine transition from the straight at 14 770 to 1800 m (cw) at 14 860.
    for (CurvatureSample const& s : zelalign::CurvatureDiagram(a, 2.0)) {
        if (s.element != 9) {
            continue;
        }
        double const l = s.station - 14770.0;
        double const expected = (1.0 - std::cos(Pi * l / 90.0)) / (2.0 * 1800.0);
        EXPECT_NEAR(s.curvature, expected, 1e-9) << s.station;
    }
}

// ---------------------------------------------------------------- profile

TEST(Profile, GradesAndVerticalCurvesOfTheSample)
{
    Alignment const& a = SampleAlignment();
    zelalign::ProfileDiagram const d = zelalign::MakeProfileDiagram(a.Profile(), 10.0);
    ASSERT_EQ(d.pvis.size(), 5u);
    ASSERT_EQ(d.curves.size(), 3u);
    // Parabola of 300 m at 13 100 (grades +1 % and -1 %): tangent points 150 m either side.
    EXPECT_EQ(d.curves[0].type, VerticalCurveType::Parabola);
    EXPECT_NEAR(d.curves[0].startStation, 12950.0, 1e-6);
    EXPECT_NEAR(d.curves[0].endStation, 13250.0, 1e-6);
    EXPECT_NEAR(d.curves[0].startHeight, 432.0 + 0.01 * 550.0, 1e-6);
    EXPECT_EQ(d.curves[1].type, VerticalCurveType::Circle);
    EXPECT_EQ(d.curves[2].type, VerticalCurveType::Parabola);
    // Grade lines carry the grade between their PVIs.
    double const grades[] = {7.0 / 700.0, -9.0 / 900.0, 7.2 / 900.0, -9.2 / 1250.0};
    for (zelalign::ProfileSample const& s : d.samples) {
        bool inCurve = false;
        for (auto const& c : d.curves) {
            inCurve = inCurve || (s.station > c.startStation && s.station < c.endStation);
        }
        if (inCurve) {
            continue;
        }
        std::size_t k = 0;
        while (k + 1 < 4 && s.station > d.pvis[k + 1].station) {
            ++k;
        }
        EXPECT_NEAR(s.gradient, grades[k], 1e-9) << s.station;
    }
    EXPECT_DOUBLE_EQ(d.samples.front().station, 12400.0);
    EXPECT_DOUBLE_EQ(d.samples.front().height, 432.0);
    EXPECT_DOUBLE_EQ(d.samples.back().station, 16150.0);
    EXPECT_DOUBLE_EQ(d.samples.back().height, 428.0);
}

TEST(Profile, ParabolaByHandAndAGradeBreakWithoutCurve)
{
    // Grades +2 % and -2 % at a PVI (200, 104) with a parabola of vertex radius
    // 2000 m: 80 m long, from 160 to 240, 0.4 m below the PVI at its middle.
    VerticalProfile const p({ProfilePoint{0.0, 100.0, VerticalCurveType::None, 0.0},
                             ProfilePoint{200.0, 104.0, VerticalCurveType::Parabola, 2000.0},
                             ProfilePoint{400.0, 100.0, VerticalCurveType::None, 0.0}});
    zelalign::ProfileDiagram const d = zelalign::MakeProfileDiagram(p, 10.0);
    ASSERT_EQ(d.curves.size(), 1u);
    EXPECT_NEAR(d.curves[0].startStation, 160.0, 1e-9);
    EXPECT_NEAR(d.curves[0].endStation, 240.0, 1e-9);
    bool middle = false;
    for (zelalign::ProfileSample const& s : d.samples) {
        if (s.station > 160.0 && s.station < 240.0) {
            // The gradient falls linearly by 1 / 2000 per metre.
            EXPECT_NEAR(s.gradient, 0.02 - (s.station - 160.0) / 2000.0, 1e-9);
        }
        if (std::fabs(s.station - 200.0) < 1e-9) {
            EXPECT_NEAR(s.height, 103.6, 1e-9);
            middle = true;
        }
    }
    EXPECT_TRUE(middle);

    VerticalProfile const kink({ProfilePoint{0.0, 100.0, VerticalCurveType::None, 0.0},
                                ProfilePoint{100.0, 101.0, VerticalCurveType::None, 0.0},
                                ProfilePoint{200.0, 100.0, VerticalCurveType::None, 0.0}});
    zelalign::ProfileDiagram const k = zelalign::MakeProfileDiagram(kink, 10.0);
    ASSERT_EQ(k.samples.size(), 4u);
    EXPECT_DOUBLE_EQ(k.samples[1].station, 100.0);
    EXPECT_DOUBLE_EQ(k.samples[2].station, 100.0);
    EXPECT_NEAR(k.samples[1].gradient, 0.01, 1e-12);
    EXPECT_NEAR(k.samples[2].gradient, -0.01, 1e-12);
    EXPECT_TRUE(zelalign::MakeProfileDiagram(VerticalProfile(), 1.0).samples.empty());
}

// ---------------------------------------------------------------- cant

TEST(Cant, SamplesInStationOrderWithoutNonFiniteValues)
{
    std::vector<zelalign::CantSample> const c = zelalign::CantDiagram(
        {{200.0, 0.1}, {100.0, 0.0}, {150.0, NaN}, {200.0, 0.12}, {NaN, 0.1}, {120.0, 0.05}});
    ASSERT_EQ(c.size(), 4u);
    EXPECT_DOUBLE_EQ(c[0].station, 100.0);
    EXPECT_DOUBLE_EQ(c[1].station, 120.0);
    EXPECT_DOUBLE_EQ(c[2].cant, 0.1);  // equal stations keep their order: a jump
    EXPECT_DOUBLE_EQ(c[3].cant, 0.12);
    EXPECT_TRUE(zelalign::CantDiagram({}).empty());
}

// ---------------------------------------------------------------- points

TEST(Points, OutsideTheToleranceLargestExcessFirst)
{
    auto point = [](ProjectionStatus status, double station, double offset, double dh) {
        StationedPoint p;
        p.status = status;
        p.station = station;
        p.offset = offset;
        p.heightDifference = dh;
        return p;
    };
    std::vector<StationedPoint> const points{
        point(ProjectionStatus::OnElement, 10.0, 0.01, 0.005),   // inside
        point(ProjectionStatus::OnElement, 20.0, -0.05, NaN),    // offset 3 cm beyond
        point(ProjectionStatus::NoSolution, NaN, NaN, NaN),      // left out
        point(ProjectionStatus::OnElement, 30.0, 0.0, 0.1),      // height 8 cm beyond
        point(ProjectionStatus::BeyondEnd, 40.0, 0.02, -0.02),   // on the band: inside
    };
    std::vector<double> const east{1.0, 2.0, 3.0, 4.0, 5.0};
    std::vector<double> const north{6.0, 7.0, 8.0, 9.0, 10.0};
    auto const d = zelalign::PointDeviations(points.size(), points.data(), east.data(), north.data(), 0.02);
    ASSERT_EQ(d.size(), 4u);
    EXPECT_EQ(d[2].index, 3u);
    EXPECT_DOUBLE_EQ(d[2].east, 4.0);
    EXPECT_DOUBLE_EQ(d[2].north, 9.0);
    EXPECT_FALSE(d[0].offsetOutside || d[0].heightOutside);
    EXPECT_TRUE(d[1].offsetOutside);
    EXPECT_FALSE(d[1].heightOutside);
    EXPECT_FALSE(d[3].offsetOutside || d[3].heightOutside);
    auto const out = zelalign::PointsOutside(d);
    ASSERT_EQ(out.size(), 2u);
    EXPECT_EQ(out[0].index, 3u);
    EXPECT_NEAR(out[0].excess, 0.08, 1e-12);
    EXPECT_TRUE(out[0].heightOutside);
    EXPECT_EQ(out[1].index, 1u);
    EXPECT_NEAR(out[1].excess, 0.03, 1e-12);
    EXPECT_THROW(zelalign::PointDeviations(0, nullptr, nullptr, nullptr, -1.0), zelalign::ArgumentError);
}

// The cant table of tests/data/landxml/cant_millimetres.xml (mm in the file):
// 0 at 100, 120 at 200 (right-hand curve, positive), held to 400, a Bloss
// run-out to 0 at 500, a biquadratic run-in to 80 at 600 in a left-hand curve
// (negative). Worked by hand: Bloss f = 3t^2 - 2t^3 gives f(1/2) = 1/2, so
// 60 mm at 450; the biquadratic f = 2t^2 gives f(1/4) = 1/8, so -10 mm at 525.
TEST(CantSamples, EveryCantStationAndTheCurvedRunOutsBetween)
{
    zelalign::Alignment const a =
        zelalign::ReadLandXml(std::string(ZEL_SOURCE_DIR) + "/tests/data/landxml/cant_millimetres.xml");
    std::vector<zelalign::CantSample> const s = zelalign::CantSamples(a.Cant());
    auto at = [&s](double station) {
        for (zelalign::CantSample const& c : s) {
            if (std::fabs(c.station - station) < 1e-9) {
                return c.cant;
            }
        }
        ADD_FAILURE() << "no sample at " << station;
        return std::nan("");
    };
    EXPECT_NEAR(at(100.0), 0.0, 1e-12);
    EXPECT_NEAR(at(200.0), 0.120, 1e-12);
    EXPECT_NEAR(at(400.0), 0.120, 1e-12);
    EXPECT_NEAR(at(450.0), 0.060, 1e-12);
    EXPECT_NEAR(at(500.0), 0.0, 1e-12);
    EXPECT_NEAR(at(525.0), -0.010, 1e-12);
    EXPECT_NEAR(at(600.0), -0.080, 1e-12);
    // Linear run-outs are straight between their ends: no inner samples.
    for (zelalign::CantSample const& c : s) {
        EXPECT_FALSE(c.station > 100.0 && c.station < 200.0) << c.station;
    }
    // 5 stations, and 15 inner samples in each of the two curved run-outs.
    EXPECT_EQ(s.size(), 5u + 2u * (zelalign::CantRunOutSamples - 1));
    EXPECT_TRUE(zelalign::CantSamples(zelalign::CantProfile()).empty());
}
