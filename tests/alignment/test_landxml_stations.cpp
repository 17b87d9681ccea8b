// Station equations: displayed stations and their regions, kilometre posts
// and absolute jumps, the kilometre form of a station, and element stations
// stated as displayed stations. Expected values are sums of the file's
// stations worked out by hand in each case.
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include <zelalign/error.h>
#include <zelalign/readers/landxml.h>
#include <zelalign/station_equations.h>

using zelalign::Alignment;
using zelalign::DisplayedStation;
using zelalign::FormatKilometre;
using zelalign::ParseKilometre;
using zelalign::ReadLandXml;
using zelalign::StationEquation;
using zelalign::StationEquations;

namespace {

std::string DataFile(char const* name)
{
    return std::string(ZEL_SOURCE_DIR) + "/tests/data/landxml/" + name;
}

}  // namespace

TEST(StationEquations, KilometreFormAndItsReading)
{
    // One row a case: metres, decimals, text.
    struct Row {
        double metres;
        int decimals;
        char const* text;
    };
    Row const rows[] = {{12345.678, 3, "12+345.678"}, {-12.3, 3, "-0+012.300"}, {999.9996, 3, "1+000.000"},
                        {0.0, 3, "0+000.000"},        {5473.73, 2, "5+473.73"},  {7.0, 0, "0+007"}};
    for (Row const& r : rows) {
        EXPECT_EQ(FormatKilometre(r.metres, r.decimals), r.text) << r.metres;
    }
    EXPECT_EQ(FormatKilometre(std::nan(""), 3), "");
    double v = 0.0;
    ASSERT_TRUE(ParseKilometre("12+345.678", &v));
    EXPECT_DOUBLE_EQ(v, 12345.678);
    ASSERT_TRUE(ParseKilometre("12+1003.2", &v));
    EXPECT_DOUBLE_EQ(v, 13003.2);
    ASSERT_TRUE(ParseKilometre("-0+012.3", &v));
    EXPECT_DOUBLE_EQ(v, -12.3);
    ASSERT_TRUE(ParseKilometre("4711.5", &v));
    EXPECT_DOUBLE_EQ(v, 4711.5);
    for (char const* bad : {"", "abc", "0x10", "12+-3", "12.5+3", "12+", "+", "1e999", "nan", "12+3+4"}) {
        EXPECT_FALSE(ParseKilometre(bad, &v)) << bad;
    }
}

TEST(StationEquations, InternalStationsMustIncrease)
{
    EXPECT_THROW(StationEquations({StationEquation{100.0, NAN, 0.0, "a"}, StationEquation{100.0, NAN, 5.0, "b"}}),
                 zelalign::DataError);
    EXPECT_THROW(StationEquations({StationEquation{NAN, NAN, 0.0, "a"}}), zelalign::DataError);
}

// Kilometre 12 from internal 0 (displayed 12000) to internal 1003.2, where
// kilometre 13 begins at 13000; kilometre 14 at internal 2003.2.
TEST(StationEquations, KilometrePostsWithALongKilometre)
{
    Alignment const a = ReadLandXml(DataFile("kilometre_posts.xml"));
    // The element stations are the displayed ones: no discrepancy is reported.
    EXPECT_TRUE(a.Warnings().empty()) << a.Warnings()[0];
    EXPECT_DOUBLE_EQ(a.StartStation(), 0.0);
    EXPECT_DOUBLE_EQ(a.EndStation(), 3000.0);
    StationEquations const& q = a.Equations();
    ASSERT_EQ(q.Equations().size(), 3u);
    EXPECT_TRUE(std::isnan(q.Equations()[0].back));
    struct Row {
        double internal;
        double displayed;  // ahead + (internal - equation's internal)
        int region;
        char const* text;
    };
    Row const rows[] = {{500.0, 12500.0, 0, "12+500.000"},   {1003.0, 13003.0, 0, "12+1003.000"},
                        {1003.2, 13000.0, 1, "13+000.000"},  {2500.0, 14496.8, 2, "14+496.800"},
                        {3000.0, 14996.8, 2, "14+996.800"}};
    for (Row const& r : rows) {
        DisplayedStation const d = q.ToDisplayed(r.internal);
        EXPECT_NEAR(d.value, r.displayed, 1e-9) << r.internal;
        EXPECT_EQ(d.region, r.region) << r.internal;
        EXPECT_EQ(q.Format(d, 3), r.text) << r.internal;
    }
    EXPECT_EQ(q.RegionName(1), "13");
    // 13001 is shown twice: in the long kilometre 12 (internal 1001) and in kilometre 13 (1003.2 + 1).
    auto const twice = q.FromDisplayed(13001.0, a.StartStation(), a.EndStation());
    ASSERT_EQ(twice.size(), 2u);
    EXPECT_NEAR(twice[0].internal, 1001.0, 1e-9);
    EXPECT_EQ(twice[0].region, 0);
    EXPECT_NEAR(twice[1].internal, 1004.2, 1e-9);
    EXPECT_EQ(twice[1].region, 1);
    // "12+1003" and "13+1" name one place each.
    auto const km12 = q.FromKilometre(12.0, 1003.0, a.StartStation(), a.EndStation());
    ASSERT_EQ(km12.size(), 1u);
    EXPECT_NEAR(km12[0].internal, 1003.0, 1e-9);
    auto const km13 = q.FromKilometre(13.0, 1.0, a.StartStation(), a.EndStation());
    ASSERT_EQ(km13.size(), 1u);
    EXPECT_NEAR(km13[0].internal, 1004.2, 1e-9);
    // A measured point 3 m right (east) of the track at internal 2500.
    zelalign::StationedPoint const p = a.Station(3.0, 2500.0);
    EXPECT_NEAR(p.station, 2500.0, 1e-9);
    EXPECT_NEAR(p.displayedStation, 14496.8, 1e-9);
    EXPECT_EQ(p.region, 2);
    EXPECT_NEAR(p.offset, 3.0, 1e-9);
    zelalign::SetOutPoint s;
    ASSERT_TRUE(a.SetOut(1003.0, &s));
    EXPECT_NEAR(s.displayedStation, 13003.0, 1e-9);
    EXPECT_EQ(s.region, 0);
}

// One jump: displayed 876.27 becomes 5350 at internal 876.27.
TEST(StationEquations, SingleAbsoluteJump)
{
    Alignment const a = ReadLandXml(DataFile("station_jump.xml"));
    EXPECT_TRUE(a.Warnings().empty()) << a.Warnings()[0];
    StationEquations const& q = a.Equations();
    DisplayedStation const before = q.ToDisplayed(500.0);
    EXPECT_EQ(before.value, 500.0);
    EXPECT_EQ(before.region, -1);
    EXPECT_EQ(q.Format(before, 3), "0+500.000");
    DisplayedStation const after = q.ToDisplayed(1000.0);
    EXPECT_NEAR(after.value, 5350.0 + (1000.0 - 876.27), 1e-9);
    EXPECT_EQ(after.region, 0);
    EXPECT_EQ(q.Format(after, 3), "5+473.730");
    // Displayed 5400 lies 49.73 m past the jump.
    auto const m = q.FromDisplayed(5400.0, a.StartStation(), a.EndStation());
    ASSERT_EQ(m.size(), 1u);
    EXPECT_NEAR(m[0].internal, 926.27, 1e-9);
    // Displayed 3000 is never shown.
    EXPECT_TRUE(q.FromDisplayed(3000.0, a.StartStation(), a.EndStation()).empty());
}

// Kilometre posts whose ahead stations count metres from the post.
TEST(StationEquations, KilometrePostsCountingFromThePost)
{
    StationEquations const q({StationEquation{0.0, NAN, 0.0, "7"}, StationEquation{1000.0, 1000.0, 0.0, "8"}});
    EXPECT_EQ(q.Format(q.ToDisplayed(250.0), 3), "7+250.000");
    EXPECT_EQ(q.Format(q.ToDisplayed(1250.0), 3), "8+250.000");
    auto const m = q.FromKilometre(8.0, 250.0, 0.0, 2000.0);
    ASSERT_EQ(m.size(), 1u);
    EXPECT_NEAR(m[0].internal, 1250.0, 1e-9);
}

TEST(StationEquations, ARepeatedEquationIsRefusedAtItsLine)
{
    std::string const text =
        "<LandXML>\n<Alignments>\n<Alignment name=\"A\" staStart=\"0\">\n"
        "<StaEquation staAhead=\"100\" staInternal=\"10\"/>\n"
        "<StaEquation staAhead=\"200\" staInternal=\"10\"/>\n"
        "<CoordGeom><Line><Start>0 0</Start><End>100 0</End></Line></CoordGeom>\n"
        "</Alignment>\n</Alignments>\n</LandXML>\n";
    try {
        zelalign::ParseLandXml(text, "t.xml");
        FAIL() << "read";
    } catch (zelalign::LandXmlError const& e) {
        EXPECT_EQ(std::string(e.what()), "t.xml:5: <StaEquation>: a second station equation at internal station 10");
    }
}
