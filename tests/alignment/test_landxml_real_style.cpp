// A file written in the styles of railway design files (see
// tests/data/landxml/real_style_yard.xml): it must load without a warning and
// every element must close on its stored end.
//
// Expected coordinates: the chain (line 200 m, clothoid from a straight into
// R = 800 m over 80 m, arc 100 m, clothoid back to a straight over 80 m, line
// 100 m, bending right from North at N 5000, E 1000) integrated independently
// of the element library: the direction theta(s) of each element in closed
// form from its curvature, the position by the composite Simpson rule with
// 4000 panels per element (a /usr/bin/python3 script run once), rounded to
// 0.1 mm as design files write them.
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include <zelalign/readers/landxml.h>

namespace {

std::string const File = std::string(ZEL_SOURCE_DIR) + "/tests/data/landxml/real_style_yard.xml";

}  // namespace

TEST(RealStyle, YardTrackLoadsAndEveryElementCloses)
{
    zelalign::Alignment const a = zelalign::ReadLandXml(File, "Track 1");
    EXPECT_TRUE(a.Warnings().empty()) << a.Warnings()[0];
    EXPECT_EQ(a.Source().coordinateSystem, "EPSG:25832");
    auto const& e = a.Horizontal().Elements();
    ASSERT_EQ(e.size(), 5u);
    EXPECT_EQ(e[1].spec.Start.Radius.Double(), 0.0);  // 5.8979433558474924E+300
    EXPECT_DOUBLE_EQ(a.EndStation(), 560.0);
    for (std::size_t i = 0; i < e.size(); ++i) {
        zelalign::AlignmentPoint const p = a.Horizontal().ElementPoint(static_cast<int>(i), e[i].EndStation());
        EXPECT_NEAR(p.east, e[i].spec.End.Coordinate.East().Double(), 0.0002) << i;
        EXPECT_NEAR(p.north, e[i].spec.End.Coordinate.North().Double(), 0.0002) << i;
    }
    // Independent end points (N, E) of the clothoid into the arc and of the whole chain.
    zelalign::AlignmentPoint p;
    ASSERT_TRUE(a.Horizontal().PointAt(280.0, &p));
    EXPECT_NEAR(p.north, 5279.9800, 0.0002);
    EXPECT_NEAR(p.east, 1001.3331, 0.0002);
    EXPECT_NEAR(p.azimuth, 0.05, 1e-5);  // L / (2 R)
    ASSERT_TRUE(a.Horizontal().PointAt(560.0, &p));
    EXPECT_NEAR(p.north, 5555.0240, 0.0003);
    EXPECT_NEAR(p.east, 1051.4073, 0.0003);
    EXPECT_NEAR(p.azimuth, 0.225, 1e-5);  // 2 * 80 / (2 R) + 100 / R
    // Kilometre 3 runs 200.05 m: internal 200 shows 3+1000.0000, internal 280 4+079.9500.
    zelalign::StationedPoint const s = a.Station(1003.0, 5200.0);
    EXPECT_NEAR(s.station, 200.0, 1e-6);
    EXPECT_NEAR(s.offset, 3.0, 1e-6);
    EXPECT_EQ(a.Equations().Format(zelalign::DisplayedStation{s.displayedStation, s.region}, 4), "3+1000.0000");
    zelalign::SetOutPoint o;
    ASSERT_TRUE(a.SetOut(280.0, &o));
    EXPECT_EQ(a.Equations().Format(zelalign::DisplayedStation{o.displayedStation, o.region}, 4), "4+079.9500");
    // Cant: 100 mm from 280 to 380, half of it halfway up the ramp at 240.
    EXPECT_NEAR(o.appliedCant, 0.100, 1e-12);
    ASSERT_TRUE(a.SetOut(240.0, &o));
    EXPECT_NEAR(o.appliedCant, 0.050, 1e-12);
    // Touching vertical curves: heights everywhere on the plan.
    EXPECT_FALSE(std::isnan(o.designHeight));
    // The second track of the yard.
    zelalign::Alignment const b = zelalign::ReadLandXml(File, "Track 2");
    EXPECT_TRUE(b.Warnings().empty());
    EXPECT_DOUBLE_EQ(b.EndStation(), 200.0);
}
