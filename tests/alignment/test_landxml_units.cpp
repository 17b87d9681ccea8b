// Units of a LandXML file: every length converted to metres, the file's unit
// and coordinate system kept. Expected values: the file's numbers times the
// unit's exact length in metres (US survey foot 1200/3937 m, foot 0.3048 m).
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include <zelalign/readers/landxml.h>

namespace {

constexpr double UsFoot = 1200.0 / 3937.0;

}  // namespace

TEST(Units, UsSurveyFeetAreConvertedToMetres)
{
    zelalign::Alignment const a =
        zelalign::ReadLandXml(std::string(ZEL_SOURCE_DIR) + "/tests/data/landxml/us_survey_feet.xml");
    EXPECT_TRUE(a.Warnings().empty()) << a.Warnings()[0];
    EXPECT_EQ(a.Source().linearUnit, "USSurveyFoot");
    EXPECT_EQ(a.Source().coordinateSystem, "EPSG:2263");
    auto const& e = a.Horizontal().Elements();
    ASSERT_EQ(e.size(), 2u);
    EXPECT_NEAR(a.StartStation(), 1000.0 * UsFoot, 1e-9);
    EXPECT_NEAR(e[0].Length(), 1000.0 * UsFoot, 1e-9);
    EXPECT_NEAR(e[1].spec.Start.Radius.Double(), 500.0 * UsFoot, 1e-9);
    EXPECT_NEAR(e[1].Length(), 785.398163 * UsFoot, 1e-9);
    EXPECT_NEAR(e[1].spec.End.Coordinate.East().Double(), 20500.0 * UsFoot, 1e-9);
    EXPECT_NEAR(e[1].spec.End.Coordinate.North().Double(), 11500.0 * UsFoot, 1e-9);
    // Halfway round the quarter circle: centre + R (-cos 45°, sin 45°) in (east, north).
    zelalign::AlignmentPoint p;
    ASSERT_TRUE(a.Horizontal().PointAt(e[1].StartStation() + e[1].Length() / 2.0, &p));
    EXPECT_NEAR(p.east, (20500.0 - 500.0 * std::sqrt(0.5)) * UsFoot, 1e-5);
    EXPECT_NEAR(p.north, (11000.0 + 500.0 * std::sqrt(0.5)) * UsFoot, 1e-5);
}

TEST(Units, UnknownLinearUnitIsRefused)
{
    std::string const text =
        "<LandXML>\n<Units><Imperial linearUnit=\"chain\"/></Units>\n<Alignments>\n<Alignment name=\"A\">"
        "<CoordGeom><Line><Start>0 0</Start><End>10 0</End></Line></CoordGeom></Alignment>\n</Alignments>\n"
        "</LandXML>\n";
    try {
        zelalign::ParseLandXml(text, "t.xml");
        FAIL() << "read";
    } catch (zelalign::LandXmlError const& e) {
        EXPECT_EQ(std::string(e.what()).rfind("t.xml:2: <Imperial>: linear unit 'chain' is not supported (supported: meter,",
                                              0),
                  0u)
            << e.what();
    }
}
