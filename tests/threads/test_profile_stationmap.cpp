// The vertical curves of the longitudinal profile and the 2D/3D station
// conversions called from many threads at once on shared inputs: one shared
// station map (which only reads its elements) and shared PIs, radii and
// stations; every height, slope, length and station must equal the
// single-threaded one bit for bit.
#include "common/station_maps.h"
#include "common/thread_check.h"
#include "common/thread_inputs.h"

#include <zelmath/zelmath.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

using namespace zelmath;
using zeltest::ExpectSameFromManyThreads;
using zeltest::InputSource;
using zeltest::Outcome;

namespace {

constexpr std::size_t CaseCount = 300;

struct ProfileCase {
    CACoordinate pi1, pi2, pi3;
    double radius, station, station2, length;
};

// Crests and sags with PIs about 150 m apart at chainages near 12 km, grades
// of a few percent and radii of railway size, now and then an awkward number.
std::vector<ProfileCase> ProfileCases(std::uint64_t seed)
{
    InputSource in(seed);
    std::vector<ProfileCase> cases(CaseCount);
    for (auto& c : cases) {
        double const x2 = in.Around(12000.0, 500.0);
        double const h2 = in.Around(430.0, 20.0);
        c.pi1 = CACoordinate(x2 - in.Around(150.0, 50.0), h2 - in.Around(0.0, 6.0));
        c.pi2 = CACoordinate(x2, h2);
        c.pi3 = CACoordinate(x2 + in.Around(150.0, 50.0), h2 + in.Around(0.0, 6.0));
        c.radius = in.Around(0.0, 20000.0);
        c.station = x2 + in.Around(0.0, 60.0);
        c.station2 = c.station + in.Around(20.0, 20.0);
        c.length = in.Around(60.0, 40.0);
    }
    return cases;
}

// A map held in vectors whose lookups only read, so that one instance can
// serve every thread.
using SharedMap = zeltest::VectorStationMap;

// Grade lines alternating between +1.5 % and -1 % with PIs every 400 m from
// station 10 000, joined by vertical curves of radius 8 000 (circles and
// parabolas in turn): straights between the tangent points, curves around
// each PI. Length3D of a straight is its length along the grade; that of a
// curve is measured with the profile's own length operation, as an alignment
// program would store it.
SharedMap BuildMap()
{
    SharedMap map;
    constexpr int PICount = 12;
    constexpr double Spacing = 400.0, Radius = 8000.0;
    std::vector<CACoordinate> pis;
    double height = 430.0;
    for (int i = 0; i < PICount; ++i) {
        pis.emplace_back(10000.0 + Spacing * i, height);
        height += (i % 2 == 0 ? 0.015 : -0.01) * Spacing;
    }
    double previousEnd = pis[0].East().Double();
    for (int i = 1; i + 1 < PICount; ++i) {
        CStngMapCurved3DDef curve;
        curve.PI1 = pis[static_cast<std::size_t>(i - 1)];
        curve.PI2 = pis[static_cast<std::size_t>(i)];
        curve.PI3 = pis[static_cast<std::size_t>(i + 1)];
        curve.Radius = Radius;
        curve.IsParabola = (i % 2 == 0);
        CACoordinate start, end, centre;
        CALength length;
        bool const ok = curve.IsParabola
                            ? CMathLongProfCurve::calcPIPointsAndLengthOfParabol(curve.PI1, curve.PI2, curve.PI3,
                                                                                 curve.Radius, start, end, length)
                            : CMathLongProfCurve::calcPIPointsAndLengthOfCircle(curve.PI1, curve.PI2, curve.PI3,
                                                                                curve.Radius, start, end, length,
                                                                                centre);
        EXPECT_TRUE(ok);
        double const grade = (i % 2 == 1 ? 0.015 : -0.01);
        CStngMap2D3DElement straight;
        straight.StngStart = previousEnd;
        straight.StngEnd = start.East();
        straight.Length3D = (start.East().Double() - previousEnd) * std::sqrt(1.0 + grade * grade);
        map.elements.push_back(straight);
        map.curves.emplace_back();

        CStngMap2D3DElement curved;
        curved.StngStart = start.East();
        curved.StngEnd = end.East();
        curved.Length3D = length;
        curved.Curved = true;
        map.elements.push_back(curved);
        map.curves.push_back(curve);
        previousEnd = end.East().Double();
    }
    return map;
}

}  // namespace

TEST(ConcurrentCalls, LongitudinalProfile)
{
    auto const cases = ProfileCases(808);
    ExpectSameFromManyThreads(cases.size(), [&](std::size_t i, Outcome& o) {
        ProfileCase const& c = cases[i];
        CACoordinate start, end, centre;
        CALength length, height;
        CASlope slope;
        o.Add(CMathLongProfCurve::calcPIPointsAndLengthOfCircle(c.pi1, c.pi2, c.pi3, CALength(c.radius), start, end,
                                                                length, centre));
        o.Add(start);
        o.Add(end);
        o.Add(length);
        o.Add(centre);
        o.Add(CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(c.pi1, c.pi2, c.pi3, CALength(c.radius),
                                                               CALength(c.station), height, slope));
        o.Add(height);
        o.Add(slope);
        o.Add(CMathLongProfCurve::calcCircleLengthBetween(c.pi1, c.pi2, c.pi3, CALength(c.radius),
                                                          CALength(c.station), CALength(c.station2), length));
        o.Add(length);
        o.Add(CMathLongProfCurve::calcPIPointsAndLengthOfParabol(c.pi1, c.pi2, c.pi3, CALength(c.radius), start,
                                                                 end, length));
        o.Add(start);
        o.Add(end);
        o.Add(length);
        o.Add(CMathLongProfCurve::calcLengthAndSlopeOfParabolAt(c.pi1, c.pi2, c.pi3, CALength(c.radius),
                                                                CALength(c.station), height, slope));
        o.Add(height);
        o.Add(slope);
        o.Add(CMathLongProfCurve::calcParabolLengthBetween(c.pi1, c.pi2, c.pi3, CALength(c.radius),
                                                           CALength(c.station), CALength(c.station2), length));
        o.Add(length);
        CALength radius;
        o.Add(CMathLongProfCurve::calcRadiusFromLengthOfParabol(c.pi1, c.pi2, c.pi3, CALength(c.length), radius));
        o.Add(radius);
    });
}

TEST(ConcurrentCalls, StationMap)
{
    SharedMap map = BuildMap();
    ASSERT_EQ(map.elements.size(), 20u);

    struct Case {
        double referenceStation, referenceTunnelMetre, station, tunnelMetre;
        bool same;
    };
    InputSource in(909);
    std::vector<Case> cases(CaseCount);
    for (std::size_t i = 0; i < cases.size(); ++i) {
        Case& c = cases[i];
        // References inside the map, before it and beyond it; stations and
        // tunnel metres anywhere along it and a little past its ends.
        c.referenceStation = in.Around(12000.0, 2200.0);
        c.referenceTunnelMetre = in.Around(5000.0, 1000.0);
        c.station = in.Around(12000.0, 2200.0);
        c.tunnelMetre = c.referenceTunnelMetre + in.Around(0.0, 2200.0);
        c.same = (i % 3 != 0);
    }
    // The map is consistent: a station inside it goes to its tunnel metre and
    // back to within the curve tolerance, through straights and curves alike.
    for (double s = 10050.0; s < 14000.0; s += 97.0) {
        double tm = 0.0, back = 0.0;
        ASSERT_TRUE(CMathStngMap2D3D::get3DTMFrom2DStng(&map, 10010.0, 0.0, true, s, tm));
        ASSERT_TRUE(CMathStngMap2D3D::get2DStngFrom3DTM(&map, 10010.0, 0.0, true, tm, back));
        EXPECT_NEAR(back, s, 1e-3) << s;
    }
    ExpectSameFromManyThreads(cases.size(), [&](std::size_t i, Outcome& o) {
        Case const& c = cases[i];
        double tm = -1.0, station = -1.0, back = -1.0;
        bool const forward =
            CMathStngMap2D3D::get3DTMFrom2DStng(&map, c.referenceStation, c.referenceTunnelMetre, c.same, c.station, tm);
        o.Add(forward);
        o.Add(tm);
        o.Add(CMathStngMap2D3D::get2DStngFrom3DTM(&map, c.referenceStation, c.referenceTunnelMetre, c.same,
                                                  c.tunnelMetre, station));
        o.Add(station);
        if (forward) {
            // And back again: the curve iteration runs on every curved stretch.
            o.Add(CMathStngMap2D3D::get2DStngFrom3DTM(&map, c.referenceStation, c.referenceTunnelMetre, c.same, tm,
                                                      back));
            o.Add(back);
        }
    });
}
