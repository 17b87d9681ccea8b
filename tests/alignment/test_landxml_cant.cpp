// Applied cant: run-out shapes, units decided from the file, signs from the
// bending sense, and the cant in stationed and set-out points. Expected values
// are the run-out formulas of cant.h evaluated by hand.
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include <zelalign/cant.h>
#include <zelalign/readers/landxml.h>

using zelalign::Alignment;
using zelalign::CantShape;

namespace {

std::string DataFile(char const* name)
{
    return std::string(ZEL_SOURCE_DIR) + "/tests/data/landxml/" + name;
}

std::string ErrorOf(std::string const& text)
{
    try {
        zelalign::ParseLandXml(text, "t.xml");
    } catch (zelalign::LandXmlError const& e) {
        return e.what();
    }
    return "no error";
}

std::string WithCant(std::string const& cant)
{
    return "<LandXML>\n<Alignments>\n<Alignment name=\"A\" staStart=\"0\">\n"
           "<CoordGeom><Line><Start>0 0</Start><End>1000 0</End></Line></CoordGeom>\n" +
           cant + "</Alignment>\n</Alignments>\n</LandXML>\n";
}

}  // namespace

// Every shape runs from 0 to 1 without turning back.
TEST(Cant, ShapesRunFromZeroToOneMonotonically)
{
    for (CantShape shape : {CantShape::Linear, CantShape::Bloss, CantShape::Cosine, CantShape::Biquadratic}) {
        EXPECT_DOUBLE_EQ(zelalign::CantShapeFraction(shape, 0.0), 0.0);
        EXPECT_DOUBLE_EQ(zelalign::CantShapeFraction(shape, 1.0), 1.0);
        EXPECT_NEAR(zelalign::CantShapeFraction(shape, 0.5), 0.5, 1e-15);  // all are point-symmetric about the middle
        double previous = 0.0;
        for (int k = 1; k <= 1000; ++k) {
            double const f = zelalign::CantShapeFraction(shape, k / 1000.0);
            EXPECT_GE(f, previous);
            previous = f;
        }
    }
}

TEST(Cant, MillimetreTableWithRunOuts)
{
    Alignment const a = zelalign::ReadLandXml(DataFile("cant_millimetres.xml"));
    zelalign::CantProfile const& c = a.Cant();
    ASSERT_EQ(c.Stations().size(), 5u);
    EXPECT_DOUBLE_EQ(c.Gauge(), 1.435);
    EXPECT_EQ(c.RotationPoint(), "insideRail");
    // One row a case: station, applied cant (metres), how it is worked out.
    struct Row {
        double station;
        double cant;
    };
    Row const rows[] = {
        {100.0, 0.0},
        {150.0, 0.060},                                   // linear, half of 120 mm
        {300.0, 0.120},                                   // constant between 200 and 400
        {425.0, 0.120 - 0.120 * (3.0 / 16.0 - 2.0 / 64.0)},  // Bloss at t = 1/4: 3 t^2 - 2 t^3
        {450.0, 0.060},                                   // Bloss at t = 1/2
        {525.0, -0.080 * 2.0 * 0.0625},                   // biquadratic at t = 1/4: 2 t^2, towards -80 mm (ccw)
        {575.0, -0.080 * (1.0 - 2.0 * 0.0625)},           // at t = 3/4: 1 - 2 (1 - t)^2
        {600.0, -0.080},
    };
    for (Row const& r : rows) {
        double cant = 0.0;
        ASSERT_TRUE(c.AppliedCant(r.station, &cant)) << r.station;
        EXPECT_NEAR(cant, r.cant, 1e-12) << r.station;
    }
    double cant = 0.0;
    EXPECT_FALSE(c.AppliedCant(50.0, &cant));
    EXPECT_FALSE(c.AppliedCant(600.5, &cant));
    // In stationed and set-out points.
    zelalign::StationedPoint const p = a.Station(-2.0, 450.0);
    EXPECT_NEAR(p.appliedCant, 0.060, 1e-12);
    zelalign::SetOutPoint s;
    ASSERT_TRUE(a.SetOut(800.0, &s));
    EXPECT_TRUE(std::isnan(s.appliedCant));
}

TEST(Cant, MetresStayMetresAndUnknownRunOutsAreRefused)
{
    Alignment const a = zelalign::ParseLandXml(
        WithCant("<Cant gauge=\"1.435\"><CantStation station=\"0\" appliedCant=\"0.15\" curvature=\"cw\"/>"
                 "<CantStation station=\"100\" appliedCant=\"0.15\" curvature=\"cw\"/></Cant>\n"),
        "t.xml");
    double cant = 0.0;
    ASSERT_TRUE(a.Cant().AppliedCant(50.0, &cant));
    EXPECT_DOUBLE_EQ(cant, 0.15);
    EXPECT_DOUBLE_EQ(a.Cant().Gauge(), 1.435);
    std::string const message =
        ErrorOf(WithCant("<Cant>\n<CantStation station=\"0\" appliedCant=\"0\" transitionType=\"wave\"/>\n</Cant>\n"));
    EXPECT_EQ(message.rfind("t.xml:6: <CantStation>: cant run-out 'wave' is not supported (supported: linear,", 0), 0u)
        << message;
    EXPECT_EQ(ErrorOf(WithCant("<Cant>\n<CantStation station=\"10\" appliedCant=\"0\"/>\n"
                               "<CantStation station=\"5\" appliedCant=\"0\"/>\n</Cant>\n")),
              "t.xml:7: <CantStation>: cant stations must increase");
}
