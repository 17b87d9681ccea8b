// LandXML import: elements, profile, errors naming file, line and element, gap warnings.
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include <zelalign/readers/landxml.h>
#include <zellib/constants.h>

using zelalign::ElementType;
using zelalign::Alignment;
using zelalign::LandXmlError;
using zelalign::ParseLandXml;
using zelalign::VerticalCurveType;

namespace {

constexpr double Pi = zellib::CAPi;

// Wraps a CoordGeom body (and an optional profile) into a LandXML document whose
// CoordGeom children start on line 5.
std::string Document(std::string const& geometry, std::string const& profile = std::string())
{
    return "<?xml version=\"1.0\"?>\n"
           "<LandXML xmlns=\"http://www.landxml.org/schema/LandXML-1.2\" version=\"1.2\">\n"
           "<Alignments>\n"
           "<Alignment name=\"A\" staStart=\"1000\"><CoordGeom>\n" +
           geometry + "</CoordGeom>\n" + profile + "</Alignment>\n</Alignments>\n</LandXML>\n";
}

// North 100 m from (E 2600000, N 1200000), a right quarter circle of radius 100, East 50 m.
std::string const Geometry =
    "<Line staStart=\"1000\" length=\"100\"><Start>1200000 2600000</Start><End>1200100 2600000</End></Line>\n"
    "<Curve rot=\"cw\" radius=\"100\" staStart=\"1100\"><Start>1200100 2600000</Start>"
    "<Center>1200100 2600100</Center><End>1200200 2600100</End></Curve>\n"
    "<Line><Start>1200200 2600100</Start><End>1200200 2600150</End></Line>\n";

std::string ErrorOf(std::string const& text)
{
    try {
        ParseLandXml(text, "test.xml");
    } catch (LandXmlError const& e) {
        return e.what();
    }
    return "no error";
}

}  // namespace

TEST(LandXml, ReadsLinesAndCurvesNorthingFirst)
{
    Alignment const a = ParseLandXml(Document(Geometry), "test.xml");
    EXPECT_EQ(a.Name(), "A");
    ASSERT_EQ(a.Horizontal().Size(), 3u);
    EXPECT_TRUE(a.Warnings().empty());
    EXPECT_EQ(a.SourceLines(), (std::vector<int>{5, 6, 7}));
    auto const& e = a.Horizontal().Elements();
    EXPECT_EQ(e[0].type, ElementType::Line);
    EXPECT_EQ(e[0].spec.Start.Coordinate.East().Double(), 2600000.0);
    EXPECT_EQ(e[0].spec.Start.Coordinate.North().Double(), 1200000.0);
    EXPECT_EQ(e[1].type, ElementType::Arc);
    EXPECT_EQ(e[1].spec.Start.Radius.Double(), 100.0);
    // Length from the centre: a quarter circle.
    EXPECT_NEAR(e[1].Length(), 50.0 * Pi, 1e-9);
    // The last line has no staStart: it follows the arc.
    EXPECT_NEAR(e[2].StartStation(), 1100.0 + 50.0 * Pi, 1e-9);
    EXPECT_NEAR(a.Horizontal().EndStation(), 1150.0 + 50.0 * Pi, 1e-9);
    EXPECT_TRUE(a.Profile().Empty());

    zelalign::AlignmentPoint p;
    ASSERT_TRUE(a.Horizontal().PointAt(1100.0 + 25.0 * Pi, &p));
    EXPECT_NEAR(p.east, 2600100.0 - 100.0 * std::sqrt(0.5), 1e-6);
    EXPECT_NEAR(p.north, 1200100.0 + 100.0 * std::sqrt(0.5), 1e-6);
}

TEST(LandXml, CounterClockwiseCurveBendsLeft)
{
    std::string const g =
        "<Curve rot=\"ccw\" radius=\"-50\" length=\"78.53981633974483\"><Start>0 0</Start>"
        "<Center>0 -50</Center><End>50 -50</End></Curve>\n";
    Alignment const a = ParseLandXml(Document(g), "test.xml");
    EXPECT_EQ(a.Horizontal().Elements()[0].spec.Start.Radius.Double(), -50.0);
    EXPECT_DOUBLE_EQ(a.Horizontal().StartStation(), 1000.0);
}

TEST(LandXml, SpiralTypesMapToTheirElements)
{
    // Spirals with equal radii at both ends are read as arcs; a straight
    // "spiral" with two INF radii as a line.
    std::string const g =
        "<Spiral length=\"20\" radiusStart=\"300\" radiusEnd=\"300\" rot=\"cw\" spiType=\"clothoid\">"
        "<Start>0 0</Start><PI>10 0</PI><End>19.98 0.66</End></Spiral>\n"
        "<Spiral length=\"10\" radiusStart=\"INF\" radiusEnd=\"INF\" rot=\"cw\" spiType=\"cosine\">"
        "<Start>19.98 0.66</Start><PI>0 0</PI><End>29.9 2.0</End></Spiral>\n";
    Alignment const a = ParseLandXml(Document(g), "test.xml");
    ASSERT_EQ(a.Horizontal().Size(), 2u);
    EXPECT_EQ(a.Horizontal().Elements()[0].type, ElementType::Arc);
    EXPECT_EQ(a.Horizontal().Elements()[0].spec.Start.Radius.Double(), 300.0);
    EXPECT_EQ(a.Horizontal().Elements()[1].type, ElementType::Line);
}

TEST(LandXml, ProfileWithCircularAndParabolicCurves)
{
    std::string const profile =
        "<Profile><ProfAlign name=\"P\">\n"
        "<PVI>1000 400</PVI>\n"
        "<ParaCurve length=\"200\">1200 404</ParaCurve>\n"
        "<CircCurve length=\"100\" radius=\"-2500\">1500 398</CircCurve>\n"
        "<PVI>1800 404</PVI>\n"
        "</ProfAlign></Profile>\n";
    Alignment const a = ParseLandXml(Document(Geometry, profile), "test.xml");
    auto const& pts = a.Profile().Points();
    ASSERT_EQ(pts.size(), 4u);
    // A parabola 200 m long over a change of grade of 0.02 - (-0.02) = 0.04.
    EXPECT_EQ(pts[1].curve, VerticalCurveType::Parabola);
    EXPECT_NEAR(pts[1].radius, 200.0 / 0.04, 1e-9);
    // The circle's radius is taken by magnitude; crest or sag comes from the PVIs.
    EXPECT_EQ(pts[2].curve, VerticalCurveType::Circle);
    EXPECT_EQ(pts[2].radius, 2500.0);
    double h = 0.0;
    double g = 0.0;
    ASSERT_TRUE(a.Profile().HeightAt(1200.0, &h, &g));
    EXPECT_NEAR(h, 404.0 - 100.0 * 100.0 / (2.0 * 5000.0), 1e-9);
    ASSERT_TRUE(a.Profile().HeightAt(1500.0, &h, &g));
    EXPECT_GT(h, 398.0);  // a sag curve lies above its PVI
}

TEST(LandXml, MissingAttributeNamesFileLineAndElement)
{
    std::string const g =
        "<Line><Start>0 0</Start><End>0 10</End></Line>\n"
        "<Spiral length=\"20\" radiusEnd=\"300\" rot=\"cw\" spiType=\"clothoid\">"
        "<Start>10 0</Start><PI>15 0</PI><End>20 0</End></Spiral>\n";
    std::string const message = ErrorOf(Document(g));
    EXPECT_EQ(message, "test.xml:6: <Spiral>: attribute 'radiusStart' is missing");
}

TEST(LandXml, MissingPointAndRotation)
{
    EXPECT_EQ(ErrorOf(Document("<Line><Start>0 0</Start></Line>\n")), "test.xml:5: <Line>: point <End> is missing");
    EXPECT_EQ(ErrorOf(Document("<Curve radius=\"10\"><Start>0 0</Start><End>0 10</End></Curve>\n")),
              "test.xml:5: <Curve>: attribute 'rot' is missing");
    EXPECT_EQ(ErrorOf(Document("<Curve rot=\"left\" radius=\"10\"><Start>0 0</Start><End>0 10</End></Curve>\n")),
              "test.xml:5: <Curve>: attribute 'rot' must be cw or ccw, not 'left'");
}

TEST(LandXml, UnknownSpiralType)
{
    std::string const g =
        "<Spiral length=\"20\" radiusStart=\"INF\" radiusEnd=\"300\" rot=\"cw\" spiType=\"wiener\">"
        "<Start>0 0</Start><PI>10 0</PI><End>20 0</End></Spiral>\n";
    EXPECT_EQ(ErrorOf(Document(g)),
              "test.xml:5: <Spiral>: spiral type 'wiener' is not supported (supported: clothoid, cubicParabola, "
              "japaneseCubic, cosine, revCosine, bloss, revBloss, biquadratic, biquadraticParabola, revBiquadratic, "
              "sinusoid, revSinusoid)");
}

TEST(LandXml, UnparsableNumbers)
{
    EXPECT_EQ(ErrorOf(Document("<Line length=\"1O0\"><Start>0 0</Start><End>0 100</End></Line>\n")),
              "test.xml:5: <Line>: attribute 'length' is not a number: '1O0'");
    EXPECT_EQ(ErrorOf(Document("<Line><Start>0 0</Start>\n<End>0 1e999</End></Line>\n")),
              "test.xml:6: <End>: coordinate is not a number: '1e999'");
    EXPECT_EQ(ErrorOf(Document("<Line><Start>0</Start><End>0 1</End></Line>\n")),
              "test.xml:5: <Start>: expected 2 or 3 numbers (northing easting [elevation]), found 1");
    EXPECT_EQ(ErrorOf(Document("<Line length=\"INF\"><Start>0 0</Start><End>0 1</End></Line>\n")),
              "test.xml:5: <Line>: attribute 'length' must be finite, not 'INF'");
}

TEST(LandXml, EmptyAlignmentAndMissingParts)
{
    EXPECT_EQ(ErrorOf(Document("")), "test.xml:4: <CoordGeom>: the alignment has no elements");
    EXPECT_EQ(ErrorOf("<LandXML>\n<Alignments/>\n</LandXML>\n"),
              "test.xml:1: <LandXML>: no <Alignment> in <Alignments>");
    EXPECT_EQ(ErrorOf("<Other/>"), "test.xml:1: the root element is not <LandXML>");
    EXPECT_EQ(ErrorOf("<LandXML><Alignments><Alignment name=\"x\"/></Alignments></LandXML>"),
              "test.xml:1: <Alignment>: <CoordGeom> is missing");
}

TEST(LandXml, BrokenXmlGivesTheLine)
{
    std::string text = Document(Geometry);
    text.replace(text.find("</Line>"), 7, "</Lin>");
    std::string const message = ErrorOf(text);
    EXPECT_EQ(message.rfind("test.xml:5: not well-formed XML", 0), 0u) << message;
}

TEST(LandXml, ZeroLengthAndUnsupportedTransition)
{
    EXPECT_EQ(ErrorOf(Document("<Line length=\"-5\"><Start>0 0</Start><End>0 5</End></Line>\n")),
              "test.xml:5: <Line>: (line): length must be positive and finite");
    // A zero-length element is skipped; with nothing else there is no alignment.
    EXPECT_EQ(ErrorOf(Document("<Line length=\"0\"><Start>0 0</Start><End>0 0</End></Line>\n")),
              "test.xml:4: <CoordGeom>: the alignment has no elements");
    // A cubic parabola between two curves is not handled by the element class.
    std::string const g =
        "<Spiral length=\"20\" radiusStart=\"600\" radiusEnd=\"300\" rot=\"cw\" spiType=\"cubicParabola\">"
        "<Start>0 0</Start><PI>10 0</PI><End>20 0</End></Spiral>\n";
    std::string const message = ErrorOf(Document(g));
    EXPECT_EQ(message.rfind("test.xml:5: <Spiral>: (cubic_parabola): this transition", 0), 0u) << message;
}

TEST(LandXml, GapsOverAMillimetreAreWarnings)
{
    std::string const g =
        "<Line><Start>0 0</Start><End>100 0</End></Line>\n"
        "<Line staStart=\"1100\"><Start>100.0005 0</Start><End>200 0</End></Line>\n"
        "<Line staStart=\"1199.9995\"><Start>200.003 0</Start><End>300 0</End></Line>\n";
    Alignment const a = ParseLandXml(Document(g), "test.xml");
    ASSERT_EQ(a.Warnings().size(), 1u);
    EXPECT_EQ(a.Warnings()[0],
              "test.xml:6: <Line> (line): the end misses the next element's start by 3.0 mm (tolerance 1.0 mm, limit "
              "50.0 mm); check the coordinates of the two points");
    std::string const g2 =
        "<Line><Start>0 0</Start><End>100 0</End></Line>\n"
        "<Line staStart=\"1100.01\"><Start>100 0</Start><End>200 0</End></Line>\n";
    Alignment const b = ParseLandXml(Document(g2), "test.xml");
    ASSERT_EQ(b.Warnings().size(), 1u);
    EXPECT_EQ(b.Warnings()[0],
              "test.xml:6: <Line> (line): stated start station 1100.0100 differs from the station along the "
              "alignment 1100.0000 by 10.0 mm; stations follow the element lengths");
}

TEST(LandXml, MissingFile)
{
    try {
        zelalign::ReadLandXml("/nonexistent/none.xml");
        FAIL() << "a missing file was read";
    } catch (zelalign::IoError const& e) {
        EXPECT_EQ(std::string(e.what()), "/nonexistent/none.xml: cannot open the file: No such file or directory");
    }
}
