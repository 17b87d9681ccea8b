// The alignment as a library: an alignment built in code, the stationing of a
// point and of a batch into caller-owned arrays, setting out, tunnel metres,
// the batch runner and the polyline of an element.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <zelalign/zelalign.h>
#include <zellib/constants.h>

using zelalign::Alignment;
using zelalign::ArgumentError;
using zelalign::ElementType;
using zelalign::HorizontalAlignment;
using zelalign::HorizontalElement;
using zelalign::ProfilePoint;
using zelalign::ProjectionStatus;
using zelalign::SetOutPoint;
using zelalign::StationedPoint;
using zelalign::VerticalCurveType;
using zelalign::VerticalProfile;
using zelmath::CACoordinate;

namespace {

constexpr double Pi = zellib::CAPi;
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

// North 100 m from (E 1000, N 2000), then a right quarter circle of radius 100
// (centre E 1100, N 2100) into East; stations 0 to 100 + 50 pi. Profile: a
// constant grade of 2 % from height 50 at station 0 to 56 at station 300.
Alignment Track()
{
    std::vector<HorizontalElement> e;
    e.push_back(HorizontalElement::Line(0.0, 100.0, CACoordinate(1000.0, 2000.0), CACoordinate(1000.0, 2100.0)));
    e.push_back(HorizontalElement::Arc(100.0, 50.0 * Pi, CACoordinate(1000.0, 2100.0), CACoordinate(1100.0, 2200.0),
                                       100.0));
    VerticalProfile profile({{0.0, 50.0, VerticalCurveType::None, 0.0}, {300.0, 56.0, VerticalCurveType::None, 0.0}});
    return Alignment("T", HorizontalAlignment(e), profile);
}

}  // namespace

TEST(Alignment, StationsAPointWithHeightsAndTunnelMetre)
{
    Alignment const a = Track();
    // 10 m right of station 60 on the straight (East of it), measured 0.5 m above the grade.
    StationedPoint const p = a.Station(1010.0, 2060.0, 51.7);
    EXPECT_EQ(p.status, ProjectionStatus::OnElement);
    EXPECT_EQ(p.element, 0);
    EXPECT_EQ(p.type, ElementType::Line);
    EXPECT_NEAR(p.station, 60.0, 1e-9);
    EXPECT_NEAR(p.offset, 10.0, 1e-9);
    EXPECT_NEAR(p.azimuth, 0.0, 1e-12);
    EXPECT_EQ(p.radius, 0.0);
    EXPECT_NEAR(p.designHeight, 51.2, 1e-9);          // 50 + 0.02 * 60
    EXPECT_NEAR(p.heightDifference, 0.5, 1e-9);       // measured minus design
    EXPECT_NEAR(p.tunnelMetre, 60.0 * std::sqrt(1.0004), 1e-9);  // slope length from the start
    EXPECT_NEAR(zelalign::SignedOffset(p, zelalign::OffsetSide::Left), -10.0, 1e-9);

    // On the arc, 20 m inside the curve (towards the centre) at 45 degrees of turn.
    double const c = std::cos(Pi / 4.0);
    StationedPoint const q = a.Station(1100.0 - 80.0 * c, 2100.0 + 80.0 * c);
    EXPECT_EQ(q.element, 1);
    EXPECT_EQ(q.type, ElementType::Arc);
    EXPECT_NEAR(q.station, 100.0 + 25.0 * Pi, 1e-6);
    EXPECT_NEAR(q.offset, 20.0, 1e-6);  // the centre lies right of a right-bending arc
    EXPECT_TRUE(std::isnan(q.heightDifference));  // no height measured
}

TEST(Alignment, NonFiniteCoordinatesAreInvalidNotThrown)
{
    Alignment const a = Track();
    for (double bad : {NaN, std::numeric_limits<double>::infinity()}) {
        StationedPoint const p = a.Station(bad, 2000.0);
        EXPECT_EQ(p.status, ProjectionStatus::Invalid);
        EXPECT_EQ(p.element, -1);
        EXPECT_TRUE(std::isnan(p.station));
        EXPECT_TRUE(std::isnan(p.offset));
    }
    EXPECT_EQ(a.Station(1000.0, 2000.0, std::numeric_limits<double>::infinity()).status, ProjectionStatus::Invalid);
}

TEST(Alignment, BatchIntoRecordsAndColumnsEqualsSinglePointsForAnyThreadCount)
{
    Alignment const a = Track();
    std::size_t const n = 1001;
    std::vector<double> east(n), north(n), height(n);
    for (std::size_t i = 0; i < n; ++i) {
        double const t = static_cast<double>(i) / static_cast<double>(n - 1);
        east[i] = 990.0 + 130.0 * t;
        north[i] = 1990.0 + 230.0 * t * t;
        height[i] = i % 7 == 0 ? NaN : 50.0 + t;
    }
    east[17] = NaN;  // a bad point gets its status in the middle of the batch
    for (unsigned threads : {1u, 2u, 3u, 8u}) {
        std::vector<StationedPoint> records(n);
        a.Station(n, east.data(), north.data(), height.data(), records.data(), threads);
        std::vector<double> station(n), offset(n), tm(n);
        std::vector<std::int32_t> element(n), status(n);
        zelalign::StationColumns columns;
        columns.station = station.data();
        columns.offset = offset.data();
        columns.tunnelMetre = tm.data();
        columns.element = element.data();
        columns.status = status.data();
        a.Station(n, east.data(), north.data(), height.data(), columns, threads);
        for (std::size_t i = 0; i < n; ++i) {
            StationedPoint const one = a.Station(east[i], north[i], height[i]);
            ASSERT_EQ(records[i].status, one.status) << i;
            EXPECT_EQ(std::memcmp(&records[i].station, &one.station, sizeof(double)), 0) << i;
            EXPECT_EQ(std::memcmp(&records[i].offset, &one.offset, sizeof(double)), 0) << i;
            EXPECT_EQ(std::memcmp(&records[i].heightDifference, &one.heightDifference, sizeof(double)), 0) << i;
            EXPECT_EQ(std::memcmp(&station[i], &one.station, sizeof(double)), 0) << i;
            EXPECT_EQ(std::memcmp(&offset[i], &one.offset, sizeof(double)), 0) << i;
            EXPECT_EQ(std::memcmp(&tm[i], &one.tunnelMetre, sizeof(double)), 0) << i;
            EXPECT_EQ(element[i], one.element) << i;
            EXPECT_EQ(status[i], static_cast<std::int32_t>(one.status)) << i;
        }
        EXPECT_EQ(records[17].status, ProjectionStatus::Invalid);
    }
}

TEST(Alignment, SetOutGivesTheDesignPointAndRefusesStationsOutside)
{
    Alignment const a = Track();
    SetOutPoint p;
    ASSERT_TRUE(a.SetOut(100.0 + 25.0 * Pi, &p));
    double const c = std::cos(Pi / 4.0);
    EXPECT_EQ(p.element, 1);
    EXPECT_NEAR(p.east, 1100.0 - 100.0 * c, 1e-9);
    EXPECT_NEAR(p.north, 2100.0 + 100.0 * c, 1e-9);
    EXPECT_NEAR(p.azimuth, Pi / 4.0, 1e-12);
    EXPECT_EQ(p.radius, 100.0);
    EXPECT_NEAR(p.designHeight, 50.0 + 0.02 * (100.0 + 25.0 * Pi), 1e-9);
    EXPECT_NEAR(p.gradient, 0.02, 1e-12);
    ASSERT_TRUE(a.SetOut(0.0, &p));
    EXPECT_EQ(p.element, 0);
    ASSERT_TRUE(a.SetOut(100.0, &p));
    EXPECT_EQ(p.element, 1);  // a joint belongs to the later element
    SetOutPoint untouched;
    untouched.east = 7.0;
    EXPECT_FALSE(a.SetOut(-0.001, &untouched));
    EXPECT_FALSE(a.SetOut(100.0 + 50.0 * Pi + 0.001, &untouched));
    EXPECT_FALSE(a.SetOut(NaN, &untouched));
    EXPECT_EQ(untouched.east, 7.0);
}

TEST(Alignment, TunnelMetresRoundTripInsideAndRefuseOutside)
{
    zelalign::TunnelMetreReference ref;
    ref.station = 100.0;
    ref.tunnelMetre = 5000.0;
    Alignment const a = Track().WithTunnelMetreReference(ref);
    double tm = 0.0;
    ASSERT_TRUE(a.ToTunnelMetre(100.0, &tm));
    EXPECT_DOUBLE_EQ(tm, 5000.0);
    ASSERT_TRUE(a.ToTunnelMetre(0.0, &tm));
    EXPECT_NEAR(tm, 5000.0 - 100.0 * std::sqrt(1.0004), 1e-9);
    double s = 0.0;
    ASSERT_TRUE(a.ToStation(tm, &s));
    EXPECT_NEAR(s, 0.0, 1e-9);
    EXPECT_FALSE(a.ToTunnelMetre(-1.0, &tm));
    EXPECT_FALSE(a.ToTunnelMetre(1000.0, &tm));
    EXPECT_FALSE(a.ToStation(4000.0, &s));
    EXPECT_FALSE(a.ToStation(NaN, &s));

    zelalign::TunnelMetreReference bad;
    bad.station = NaN;
    EXPECT_THROW(Track().WithTunnelMetreReference(bad), zelalign::DataError);
}

TEST(SettingOut, StartRoundStationsAndEnd)
{
    // 12 345.6 to 12 420 every 20: the start, 12 360, 12 380, 12 400, and the end.
    EXPECT_EQ(zelalign::SettingOutStations(12345.6, 12420.0, 20.0),
              (std::vector<double>{12345.6, 12360.0, 12380.0, 12400.0, 12420.0}));
    // A single station when the table starts where it ends.
    EXPECT_EQ(zelalign::SettingOutStations(50.0, 50.0, 10.0), (std::vector<double>{50.0}));
    // A round station within 1e-9 of the end gives way to the end.
    EXPECT_EQ(zelalign::SettingOutStations(0.0, 20.0 + 1e-10, 10.0), (std::vector<double>{0.0, 10.0, 20.0 + 1e-10}));
}

TEST(SettingOut, RefusesWhatCannotEndWell)
{
    EXPECT_THROW(zelalign::SettingOutStations(15000.0, 13000.0, 20.0), ArgumentError);   // from after to
    EXPECT_THROW(zelalign::SettingOutStations(0.0, 100.0, 0.0), ArgumentError);          // no interval
    EXPECT_THROW(zelalign::SettingOutStations(0.0, 100.0, -5.0), ArgumentError);
    EXPECT_THROW(zelalign::SettingOutStations(NaN, 100.0, 5.0), ArgumentError);
    EXPECT_THROW(zelalign::SettingOutStations(0.0, std::numeric_limits<double>::infinity(), 5.0), ArgumentError);
    // 1e8 m every millimetre: 1e11 rows, beyond the limit.
    EXPECT_THROW(zelalign::SettingOutStations(0.0, 1e8, 0.001), ArgumentError);
    // Above 2^53 a step of 1 m does not advance a double: refused, not an endless loop.
    EXPECT_THROW(zelalign::SettingOutStations(1e17, 1.00000000001e17, 1.0), ArgumentError);
    try {
        zelalign::SettingOutStations(15000.0, 13000.0, 20.0);
    } catch (ArgumentError const& e) {
        EXPECT_EQ(std::string(e.what()), "the first station 15000 lies after the last 13000");
    }
}

TEST(ParallelFor, CoversEveryItemOnceInContiguousRanges)
{
    for (unsigned threads : {0u, 1u, 2u, 5u, 64u}) {
        for (std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{7}, std::size_t{1000}}) {
            std::vector<int> seen(count, 0);
            zelalign::ParallelFor(count, threads, [&](std::size_t begin, std::size_t end) {
                ASSERT_LE(begin, end);
                for (std::size_t i = begin; i < end; ++i) {
                    ++seen[i];
                }
            });
            for (std::size_t i = 0; i < count; ++i) {
                EXPECT_EQ(seen[i], 1) << "threads " << threads << " count " << count << " item " << i;
            }
        }
    }
}

TEST(ParallelFor, RethrowsWhatAWorkerThrew)
{
    EXPECT_THROW(zelalign::ParallelFor(100, 4,
                                       [](std::size_t begin, std::size_t) {
                                           if (begin > 0) {
                                               throw std::runtime_error("worker failed");
                                           }
                                       }),
                 std::runtime_error);
}

TEST(Polyline, ChordsOfAnArcStayWithinTheChordError)
{
    Alignment const a = Track();
    for (double tolerance : {0.001, 0.01}) {
        auto const points = zelalign::ElementPolyline(a.Horizontal(), 1, tolerance);
        ASSERT_GE(points.size(), 2u);
        EXPECT_DOUBLE_EQ(points.front().station, 100.0);
        EXPECT_DOUBLE_EQ(points.back().station, 100.0 + 50.0 * Pi);
        // Every point lies on the circle; the sagitta of a chord of length c on
        // radius 100 is 100 - sqrt(100^2 - c^2 / 4).
        for (std::size_t k = 0; k < points.size(); ++k) {
            EXPECT_NEAR(std::hypot(points[k].east - 1100.0, points[k].north - 2100.0), 100.0, 1e-9);
            if (k > 0) {
                double const c = std::hypot(points[k].east - points[k - 1].east, points[k].north - points[k - 1].north);
                EXPECT_LE(100.0 - std::sqrt(100.0 * 100.0 - c * c / 4.0), tolerance) << k;
            }
        }
        // Not needlessly dense: the steps are at least half of the largest allowed,
        // c = sqrt(8 R e).
        double const largest = std::sqrt(8.0 * 100.0 * tolerance);
        EXPECT_LE(static_cast<double>(points.size() - 1), std::ceil(50.0 * Pi / largest));
    }
    auto const straight = zelalign::ElementPolyline(a.Horizontal(), 0);
    EXPECT_EQ(straight.size(), 2u);
    EXPECT_THROW(zelalign::ElementPolyline(a.Horizontal(), 0, 0.0), ArgumentError);
    EXPECT_THROW(zelalign::ElementPolyline(a.Horizontal(), 2), ArgumentError);
}

TEST(Version, IsTheBuildsVersionNumber)
{
    EXPECT_STREQ(zelalign::Version(), ZELALIGN_VERSION);
    EXPECT_EQ(std::string(ZELALIGN_VERSION),
              std::to_string(ZELALIGN_VERSION_MAJOR) + "." + std::to_string(ZELALIGN_VERSION_MINOR) + "." +
                  std::to_string(ZELALIGN_VERSION_PATCH));
}

// A point abeam of the start of a straight: the straight's foot arithmetic may
// give a station a rounding error before the start (-1.8e-16); the station is
// the start itself, so the profile gives its height there.
TEST(Alignment, PointAbeamOfTheStartGetsTheStartStation)
{
    std::vector<HorizontalElement> e;
    e.push_back(HorizontalElement::Line(0.0, 100.0, CACoordinate(0.0, 0.0), CACoordinate(0.0, 100.0)));
    VerticalProfile profile({{0.0, 10.0, VerticalCurveType::None, 0.0}, {100.0, 11.0, VerticalCurveType::None, 0.0}});
    Alignment const a("S", HorizontalAlignment(e), profile);
    for (double offset : {1.0, -1.0, 1e-3, 1234.5}) {
        StationedPoint const p = a.Station(offset, 0.0, 10.5);
        EXPECT_GE(p.station, 0.0) << offset;
        EXPECT_NEAR(p.station, 0.0, 1e-12) << offset;
        EXPECT_NEAR(p.offset, offset, 1e-9) << offset;  // East of a straight running North is right
        EXPECT_NEAR(p.designHeight, 10.0, 1e-12) << offset;
        EXPECT_NEAR(p.heightDifference, 0.5, 1e-12) << offset;
    }
}

namespace {

// Two tracks 4.5 m apart, both running North over 100 m from station 0:
// track A along E 0, track B along E 4.5 (the track centres of a double line).
zelalign::AlignmentSet DoubleTrack()
{
    auto track = [](std::string const& name, double east) {
        std::vector<HorizontalElement> e;
        e.push_back(HorizontalElement::Line(0.0, 100.0, CACoordinate(east, 0.0), CACoordinate(east, 100.0)));
        return Alignment(name, HorizontalAlignment(e));
    };
    return zelalign::AlignmentSet({track("A", 0.0), track("B", 4.5)});
}

}  // namespace

TEST(AlignmentSet, EachPointGoesToTheNearestTrack)
{
    zelalign::AlignmentSet const set = DoubleTrack();
    zelalign::NearestStationedPoint p = set.Station(1.0, 30.0);  // 1 m right of A, 3.5 m left of B
    EXPECT_EQ(p.alignment, 0);
    EXPECT_NEAR(p.point.station, 30.0, 1e-12);
    EXPECT_NEAR(p.point.offset, 1.0, 1e-12);
    p = set.Station(3.0, 60.0);  // 3 m right of A, 1.5 m left of B
    EXPECT_EQ(p.alignment, 1);
    EXPECT_NEAR(p.point.offset, -1.5, 1e-12);
    p = set.Station(2.25, 10.0);  // halfway: the first track of the set
    EXPECT_EQ(p.alignment, 0);
    // Beyond the end: the distance to the end point counts, 3 m along and 1 m across.
    EXPECT_NEAR(zelalign::DistanceToAlignment(set.Alignments()[0].Station(1.0, 103.0)), std::sqrt(10.0), 1e-12);
}

TEST(AlignmentSet, PointsFartherThanTheLargestOffsetBelongToNoTrack)
{
    zelalign::AlignmentSet const set = DoubleTrack();
    EXPECT_EQ(set.Station(10.0, 50.0, NaN, 6.0).alignment, 1);  // 5.5 m from B
    zelalign::NearestStationedPoint const far = set.Station(10.0, 50.0, NaN, 5.0);
    EXPECT_EQ(far.alignment, -1);
    EXPECT_EQ(far.point.status, ProjectionStatus::NoSolution);
    EXPECT_TRUE(std::isnan(far.point.station));
    zelalign::NearestStationedPoint const bad = set.Station(NaN, 50.0);
    EXPECT_EQ(bad.alignment, -1);
    EXPECT_EQ(bad.point.status, ProjectionStatus::Invalid);
    EXPECT_THROW(zelalign::AlignmentSet(std::vector<Alignment>{}), zelalign::DataError);

    std::vector<double> east{1.0, 3.0, 10.0}, north{30.0, 60.0, 50.0};
    std::vector<zelalign::NearestStationedPoint> out(3);
    set.Station(3, east.data(), north.data(), nullptr, out.data(), 2, 5.0);
    EXPECT_EQ(out[0].alignment, 0);
    EXPECT_EQ(out[1].alignment, 1);
    EXPECT_EQ(out[2].alignment, -1);
}
