// Checks of real-style LandXML files: joints, computed ends against stored
// ends (the last element included), station discrepancies, touching vertical
// curves, huge radii as straights, zero-length elements, parameters outside
// the range of the element formulas, and the tolerances that sort them.
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include <zelalign/readers/landxml.h>
#include <zelalign/validation.h>

using zelalign::Alignment;
using zelalign::ElementType;
using zelalign::LandXmlError;
using zelalign::ParseLandXml;
using zelalign::ReadLandXml;
using zelalign::Severity;
using zelalign::Tolerances;

namespace {

std::string DataFile(char const* name)
{
    return std::string(ZEL_SOURCE_DIR) + "/tests/data/landxml/" + name;
}

// A CoordGeom body in a document whose CoordGeom children start on line 5.
std::string Document(std::string const& geometry, std::string const& profile = std::string())
{
    return "<?xml version=\"1.0\"?>\n"
           "<LandXML xmlns=\"http://www.landxml.org/schema/LandXML-1.2\" version=\"1.2\">\n"
           "<Alignments>\n"
           "<Alignment name=\"A\" staStart=\"1000\"><CoordGeom>\n" +
           geometry + "</CoordGeom>\n" + profile + "</Alignment>\n</Alignments>\n</LandXML>\n";
}

std::string ErrorOf(std::string const& text, Tolerances const& t = Tolerances())
{
    try {
        ParseLandXml(text, "t.xml", std::string(), zelalign::TunnelMetreReference(), t);
    } catch (LandXmlError const& e) {
        return e.what();
    }
    return "no error";
}

bool StartsWith(std::string const& s, std::string const& prefix)
{
    return s.compare(0, prefix.size(), prefix) == 0;
}

}  // namespace

TEST(Validation, ClassifySortsBySizeToleranceAndLimit)
{
    EXPECT_EQ(zelalign::Classify(0.0005, 0.001, 0.05), Severity::Closed);
    EXPECT_EQ(zelalign::Classify(0.001, 0.001, 0.05), Severity::Closed);
    EXPECT_EQ(zelalign::Classify(0.003, 0.001, 0.05), Severity::Warning);
    EXPECT_EQ(zelalign::Classify(0.05, 0.001, 0.05), Severity::Warning);
    EXPECT_EQ(zelalign::Classify(0.051, 0.001, 0.05), Severity::Refused);
    EXPECT_EQ(zelalign::Classify(std::nan(""), 0.001, 0.05), Severity::Refused);
}

// The straight end written 5.8979433558474924E+300 is a straight: the clothoid
// from it must land on its stored end. Expected end points, independently of
// the element library: a clothoid from a straight heading North (tangent turn
// theta(s) = s^2 / (2 R L), R = 500 m, L = 100 m, bending right) integrated by
// the composite Simpson rule with 20000 and 40000 panels (agreeing to 1e-13 m):
// x = 99.900046 m along, y = 3.330953 m across; the arc's centre and end from
// the closed form of the circle (end tangent turn 0.1 rad, then 50 / 500 rad).
TEST(Validation, HugeRadiusIsAStraightAndTheTransitionCloses)
{
    Alignment const a = ReadLandXml(DataFile("huge_radius_straight_end.xml"));
    auto const& e = a.Horizontal().Elements();
    // The zero-length arc is skipped with a warning naming its line.
    ASSERT_EQ(e.size(), 3u);
    ASSERT_EQ(a.Warnings().size(), 1u) << a.Warnings()[0];
    EXPECT_NE(a.Warnings()[0].find("huge_radius_straight_end.xml:19: <Curve>: an element of length 0 m"),
              std::string::npos)
        << a.Warnings()[0];
    EXPECT_EQ(e[1].type, ElementType::Clothoid);
    EXPECT_EQ(e[1].spec.Start.Radius.Double(), 0.0);
    EXPECT_EQ(e[1].spec.End.Radius.Double(), 500.0);
    // Stations run on from the lengths: the 1 µm overlap of the stated
    // 1099.999999 plays no part.
    EXPECT_DOUBLE_EQ(e[1].StartStation(), 1100.0);
    EXPECT_DOUBLE_EQ(a.EndStation(), 1250.0);
    // Each computed end within 0.2 mm of the stored end (the file rounds to 1 µm).
    for (std::size_t i = 0; i < e.size(); ++i) {
        zelalign::AlignmentPoint const p = a.Horizontal().ElementPoint(static_cast<int>(i), e[i].EndStation());
        EXPECT_NEAR(p.east, e[i].spec.End.Coordinate.East().Double(), 0.0002) << i;
        EXPECT_NEAR(p.north, e[i].spec.End.Coordinate.North().Double(), 0.0002) << i;
    }
    zelalign::AlignmentPoint p;
    ASSERT_TRUE(a.Horizontal().PointAt(1250.0, &p));
    EXPECT_NEAR(p.east, 2010.799747, 0.0002);
    EXPECT_NEAR(p.north, 5149.318003, 0.0002);
}

TEST(Validation, ARadiusBeyondTheThresholdIsAStraightEvenAsACurve)
{
    Tolerances t;
    std::string const g =
        "<Curve rot=\"cw\" radius=\"1E+12\" length=\"100\"><Start>0 0</Start><End>100 0</End></Curve>\n";
    Alignment const a = ParseLandXml(Document(g), "t.xml");
    ASSERT_EQ(a.Horizontal().Size(), 1u);
    EXPECT_EQ(a.Horizontal().Elements()[0].type, ElementType::Line);
    ASSERT_EQ(a.Warnings().size(), 1u);
    EXPECT_EQ(a.Warnings()[0], "t.xml:5: <Curve>: a radius of 1E+12 is a straight; the curve is read as a line");
    EXPECT_EQ(t.straightRadius, 1e10);
}

// Tangent points written with rounded lengths: 1100 + 200.00079 / 2 and
// 1300 - 200.00079 / 2 overlap by 0.79 mm, below the 1 mm tolerance.
TEST(Validation, TouchingVerticalCurvesLoad)
{
    Alignment const a = ReadLandXml(DataFile("touching_vertical_curves.xml"));
    ASSERT_EQ(a.Profile().Points().size(), 4u);
    EXPECT_NEAR(a.Profile().CurveEnd(1) - a.Profile().CurveStart(2), 0.00079, 1e-9);
    // The profile ends 3 mm beyond the plan: a warning, heights everywhere on the plan.
    ASSERT_EQ(a.Warnings().size(), 1u);
    EXPECT_NE(a.Warnings()[0].find("the profile ends at station 1500.0030, 3.0 mm outside the plan's end 1500.0000"),
              std::string::npos)
        << a.Warnings()[0];
    // At the joint of the two parabolas: on the grade line, 104 - 0.02 * 100;
    // at the crest's PVI: 104 - (change of grade) * L / 8 = 104 - 0.04 * 200.00079 / 8.
    double h = 0.0;
    double g = 0.0;
    ASSERT_TRUE(a.Profile().HeightAt(1200.0, &h, &g));
    EXPECT_NEAR(h, 102.0, 1e-6);
    ASSERT_TRUE(a.Profile().HeightAt(1100.0, &h, &g));
    EXPECT_NEAR(h, 104.0 - 0.04 * 200.00079 / 8.0, 1e-6);
}

TEST(Validation, OverlappingVerticalCurvesWarnThenRefuse)
{
    auto profile = [](char const* length) {
        return std::string("<Profile><ProfAlign name=\"P\">\n<PVI>1000 100</PVI>\n<ParaCurve length=\"") + length +
               "\">1200 104</ParaCurve>\n<ParaCurve length=\"" + length +
               "\">1400 100</ParaCurve>\n<PVI>1600 104</PVI>\n</ProfAlign></Profile>\n";
    };
    std::string const g = "<Line><Start>0 -100</Start><End>0 500</End></Line>\n";
    // (200.01 + 200.01) / 2 - 200 = 10 mm: a warning at the later curve's line.
    Alignment const a = ParseLandXml(Document(g, profile("200.01")), "t.xml");
    ASSERT_EQ(a.Warnings().size(), 1u);
    EXPECT_TRUE(StartsWith(a.Warnings()[0], "t.xml:10: profile: the vertical curve at station 1400.0000 starts 10.0 mm "
                                            "before the previous one ends"))
        << a.Warnings()[0];
    // 100 mm: beyond the 50 mm limit.
    std::string const message = ErrorOf(Document(g, profile("200.1")));
    EXPECT_TRUE(StartsWith(message, "t.xml:7: <ProfAlign>: PVI 2 at station 1400")) << message;
    EXPECT_NE(message.find("overlaps the one before"), std::string::npos) << message;
}

TEST(Validation, StationDiscrepanciesAreReportedNotUsed)
{
    // A 3.6 m jump of the stated stations after the first element, then a
    // branch-style constant offset that warns only where it changes.
    std::string const g =
        "<Line staStart=\"1000\" length=\"100\"><Start>0 0</Start><End>100 0</End></Line>\n"
        "<Line staStart=\"1103.6\" length=\"100\"><Start>100 0</Start><End>200 0</End></Line>\n"
        "<Line staStart=\"1203.6\" length=\"100\"><Start>200 0</Start><End>300 0</End></Line>\n";
    Alignment const a = ParseLandXml(Document(g), "t.xml");
    EXPECT_DOUBLE_EQ(a.EndStation(), 1300.0);
    ASSERT_EQ(a.Warnings().size(), 1u);
    EXPECT_EQ(a.Warnings()[0],
              "t.xml:6: <Line> (line): stated start station 1103.6000 differs from the station along the alignment "
              "1100.0000 by 3.600 m; stations follow the element lengths");
}

TEST(Validation, ComputedEndsAreCheckedTheLastOneIncluded)
{
    // The last line states 100 m but its end lies 100.5 m away: refused at its line.
    std::string const g =
        "<Line length=\"100\"><Start>0 0</Start><End>100 0</End></Line>\n"
        "<Line length=\"100\"><Start>100 0</Start><End>200.5 0</End></Line>\n";
    EXPECT_EQ(ErrorOf(Document(g)),
              "t.xml:6: <Line> (line): the computed end misses the stored end by 500.0 mm (tolerance 1.0 mm, limit "
              "50.0 mm); check the length, the radii, the bending sense (rot) and the spiral type");
    // 3 mm: a warning. With a limit raised to 1 m, the 500 mm miss warns too.
    std::string const g3 =
        "<Line length=\"100\"><Start>0 0</Start><End>100 0</End></Line>\n"
        "<Line length=\"100\"><Start>100 0</Start><End>200.003 0</End></Line>\n";
    Alignment const a = ParseLandXml(Document(g3), "t.xml");
    ASSERT_EQ(a.Warnings().size(), 1u);
    EXPECT_TRUE(StartsWith(a.Warnings()[0], "t.xml:6: <Line> (line): the computed end misses the stored end by 3.0 mm"))
        << a.Warnings()[0];
    Tolerances loose;
    loose.positionLimit = 1.0;
    Alignment const b = ParseLandXml(Document(g), "t.xml", std::string(), zelalign::TunnelMetreReference(), loose);
    ASSERT_EQ(b.Warnings().size(), 1u);
    EXPECT_NE(b.Warnings()[0].find("500.0 mm (tolerance 1.0 mm, limit 1.000 m)"), std::string::npos)
        << b.Warnings()[0];
}

// A clothoid read with the wrong bending sense is the mirror
// image, fitted between the stored ends with its start tangent turned by
// 2 atan(y / x); continued from the line it lands 2 y = 6.66 m away (x, y the
// Simpson values above).
TEST(Validation, WrongBendingSenseIsRefusedWithTheElementsLine)
{
    std::string const g =
        "<Line><Start>4900 2000</Start><End>5000 2000</End></Line>\n"
        "<Spiral length=\"100\" radiusStart=\"INF\" radiusEnd=\"500\" rot=\"ccw\" spiType=\"clothoid\">"
        "<Start>5000 2000</Start><End>5099.900046 2003.330953</End></Spiral>\n";
    std::string const message = ErrorOf(Document(g));
    EXPECT_TRUE(StartsWith(message, "t.xml:6: <Spiral> (clothoid): continued from the previous element's end tangent, "
                                    "the computed end misses the stored end by 6.66"))
        << message;
}

TEST(Validation, ClothoidBeyondItsSeriesIsRefused)
{
    // L = 2000 m into R = 100 m: A / R = sqrt(L / R) = 4.472, a tangent turn of 10 rad.
    std::string const g =
        "<Spiral length=\"2000\" radiusStart=\"INF\" radiusEnd=\"100\" rot=\"cw\" spiType=\"clothoid\">"
        "<Start>0 0</Start><End>100 100</End></Spiral>\n";
    std::string const message = ErrorOf(Document(g));
    EXPECT_TRUE(StartsWith(message, "t.xml:5: <Spiral> (clothoid): the clothoid turns too far from its origin for its "
                                    "series: A / R = 4.472 exceeds 1.600"))
        << message;
}

TEST(Validation, RadiiAreNeverReinterpretedAndCoordinatesHaveTwoOrThreeNumbers)
{
    EXPECT_EQ(ErrorOf(Document("<Curve rot=\"cw\" radius=\"0\"><Start>0 0</Start><Center>0 10</Center>"
                               "<End>10 10</End></Curve>\n")),
              "t.xml:5: <Curve>: a radius of 0 is not a curve; write a <Line> for a straight");
    EXPECT_EQ(ErrorOf(Document("<Line><Start>0 0 0 0</Start><End>0 10</End></Line>\n")),
              "t.xml:5: <Start>: expected 2 or 3 numbers (northing easting [elevation]), found 4");
    EXPECT_EQ(ErrorOf(Document("<Spiral length=\"20\" radiusStart=\"0\" radiusEnd=\"300\" rot=\"cw\" "
                               "spiType=\"clothoid\"><Start>0 0</Start><End>20 0</End></Spiral>\n")),
              "t.xml:5: <Spiral>: a radius of 0 is not a curve; write INF for a straight end");
    // A centre 100 mm off the stated radius of a quarter circle: refused.
    std::string const off =
        "<Curve rot=\"cw\" radius=\"100.1\"><Start>0 0</Start><Center>0 100</Center><End>100 100</End></Curve>\n";
    EXPECT_EQ(ErrorOf(Document(off)),
              "t.xml:5: <Curve>: the centre lies 100.0 mm off the radius from the start or the end; check the "
              "radius and the <Center> point");
    // A negative radius with rot="cw" bends right as rot says, with a warning.
    std::string const neg =
        "<Curve rot=\"cw\" radius=\"-100\"><Start>0 0</Start><Center>0 100</Center><End>100 100</End></Curve>\n";
    Alignment const a = ParseLandXml(Document(neg), "t.xml");
    EXPECT_EQ(a.Horizontal().Elements()[0].spec.Start.Radius.Double(), 100.0);
    ASSERT_EQ(a.Warnings().size(), 1u);
    EXPECT_TRUE(StartsWith(a.Warnings()[0], "t.xml:5: <Curve>: the radius is written negative")) << a.Warnings()[0];
}

TEST(Validation, KinksWarnWithTheAngle)
{
    // Two straights meeting at (100, 0) with a turn of atan(1 / 100) = 0.0099997 rad = 0.6366 gon.
    std::string const g =
        "<Line><Start>0 0</Start><End>100 0</End></Line>\n"
        "<Line><Start>100 0</Start><End>200 1</End></Line>\n";
    Alignment const a = ParseLandXml(Document(g), "t.xml");
    ASSERT_EQ(a.Warnings().size(), 1u);
    EXPECT_EQ(a.Warnings()[0],
              "t.xml:5: <Line> (line): the direction changes by 0.6366 gon (0.010000 rad) at the joint with the next "
              "element");
}
