// The shipped sample alignment: import, joints, and the measured points
// against the stations and offsets at which the sample's generator laid them
// out from the exact element geometry.
#include <cmath>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include <zelalign/readers/landxml.h>

using zelalign::AlignmentPoint;
using zelalign::ElementType;
using zelalign::Alignment;
using zelalign::Projection;
using zelalign::ProjectionStatus;

namespace {

std::string const SampleDir = std::string(ZEL_SOURCE_DIR) + "/data/sample/";

Alignment const& Sample()
{
    static Alignment const a = zelalign::ReadLandXml(SampleDir + "alignment.xml");
    return a;
}

struct Expected {
    double station, offset, height;
};

}  // namespace

TEST(SampleAlignment, ImportsEveryElementTypeWithoutWarnings)
{
    Alignment const& a = Sample();
    EXPECT_EQ(a.Name(), "Track 1");
    ASSERT_EQ(a.Horizontal().Size(), 17u);
    for (std::string const& w : a.Warnings()) {
        ADD_FAILURE() << w;
    }
    std::map<ElementType, int> count;
    bool left = false;
    bool right = false;
    for (auto const& e : a.Horizontal().Elements()) {
        ++count[e.type];
        if (e.type == ElementType::Arc) {
            (e.spec.Start.Radius.Double() > 0 ? right : left) = true;
        }
    }
    EXPECT_EQ(count[ElementType::Line], 4);
    EXPECT_EQ(count[ElementType::Arc], 5);
    EXPECT_EQ(count[ElementType::Clothoid], 5);
    EXPECT_EQ(count[ElementType::CubicParabola], 1);
    EXPECT_EQ(count[ElementType::HalfSine], 2);
    EXPECT_TRUE(left && right);
    EXPECT_DOUBLE_EQ(a.Horizontal().StartStation(), 12400.0);
    EXPECT_DOUBLE_EQ(a.Horizontal().EndStation(), 16150.0);
    EXPECT_EQ(a.Profile().Points().size(), 5u);
}

TEST(SampleAlignment, ElementEndsMeet)
{
    Alignment const& a = Sample();
    EXPECT_TRUE(a.Horizontal().CheckJoints(0.0005).empty());
    // Tangents agree at every joint as well (a continuous alignment).
    for (std::size_t i = 0; i + 1 < a.Horizontal().Size(); ++i) {
        double const s = a.Horizontal().Elements()[i].EndStation();
        AlignmentPoint const end = a.Horizontal().ElementPoint(static_cast<int>(i), s);
        AlignmentPoint const start = a.Horizontal().ElementPoint(static_cast<int>(i) + 1, s);
        EXPECT_NEAR(std::remainder(end.azimuth - start.azimuth, 2.0 * 3.14159265358979323846), 0.0, 2e-5) << "joint " << i;
    }
}

TEST(SampleAlignment, PointAtStationProjectsBackToThatStation)
{
    Alignment const& a = Sample();
    std::mt19937_64 rng(7);
    std::uniform_real_distribution<double> station(a.Horizontal().StartStation(), a.Horizontal().EndStation());
    std::uniform_real_distribution<double> side(-8.0, 8.0);
    for (int k = 0; k < 1500; ++k) {
        double const s = station(rng);
        AlignmentPoint p;
        ASSERT_TRUE(a.Horizontal().PointAt(s, &p));
        double const d = side(rng);
        Projection const r = a.Horizontal().Project(p.east + d * std::cos(p.azimuth), p.north - d * std::sin(p.azimuth));
        ASSERT_EQ(r.status, ProjectionStatus::OnElement) << "station " << s;
        EXPECT_NEAR(r.foot.station, s, 1e-3) << "element " << p.element;
        EXPECT_NEAR(r.offset, d, 1e-3) << "element " << p.element;
    }
}

TEST(SampleAlignment, MeasuredPointsLieWhereTheyWereLaidOut)
{
    Alignment const& a = Sample();
    std::ifstream expectedFile(SampleDir + "points_expected.csv");
    std::ifstream pointsFile(SampleDir + "points.csv");
    ASSERT_TRUE(expectedFile && pointsFile);
    std::map<std::string, Expected> expected;
    std::string line;
    std::getline(expectedFile, line);
    while (std::getline(expectedFile, line)) {
        std::istringstream in(line);
        std::string id;
        char comma = 0;
        Expected e{};
        std::getline(in, id, ',');
        in >> e.station >> comma >> e.offset >> comma >> e.height;
        expected[id] = e;
    }
    ASSERT_EQ(expected.size(), 3000u);
    std::getline(pointsFile, line);
    int checked = 0;
    while (std::getline(pointsFile, line)) {
        std::istringstream in(line);
        std::string id;
        char comma = 0;
        double east = 0.0;
        double north = 0.0;
        std::getline(in, id, ',');
        in >> east >> comma >> north;
        Projection const r = a.Horizontal().Project(east, north);
        auto const it = expected.find(id);
        if (it == expected.end()) {
            // The points laid out before the start and beyond the end.
            EXPECT_EQ(r.status, id[0] == 'B' ? ProjectionStatus::BeforeStart : ProjectionStatus::BeyondEnd) << id;
            continue;
        }
        ++checked;
        ASSERT_EQ(r.status, ProjectionStatus::OnElement) << id;
        // The file holds coordinates to 0.1 mm.
        EXPECT_NEAR(r.foot.station, it->second.station, 1e-3) << id << " on element " << r.foot.element;
        EXPECT_NEAR(r.offset, it->second.offset, 1e-3) << id << " on element " << r.foot.element;
        double h = 0.0;
        double g = 0.0;
        ASSERT_TRUE(a.Profile().HeightAt(r.foot.station, &h, &g));
        EXPECT_NEAR(h, it->second.height, 1e-3) << id;
    }
    EXPECT_EQ(checked, 3000);
}

// A point 4.46 m beside the joint where the left-turning arc of radius 1500
// begins (station 13970, element 6): the arc's own foot search puts it one full
// turn later, at 13970 + 2 pi 1500 = 23394.78, far beyond the alignment's end.
// The point belongs at the joint: its distance from the joint's coordinate
// (E 2601643.1542, N 1200663.0115 in the file) is the offset.
TEST(Sample, AFootOneTurnRoundAnArcIsNoFootOnIt)
{
    Alignment const& a = Sample();
    double const east = 2601643.148333971;
    double const north = 1200658.547172005;
    zelalign::StationedPoint const p = a.Station(east, north);
    EXPECT_NE(p.status, ProjectionStatus::NoSolution);
    EXPECT_NEAR(p.station, 13970.0, 0.01);
    EXPECT_LE(p.station, a.EndStation());
    double const toJoint = std::hypot(east - 2601643.1542, north - 1200663.0115);
    EXPECT_NEAR(std::fabs(p.offset), toJoint, 0.01);
}
