// Angular units of <Units>: radians, grads, decimal degrees and "decimal
// dd.mm.ss", each converted to radians by one function; dd.mm.ss is read from
// its digits. Every case states a curve's delta for the quarter circle of
// curve_statements_grads.xml (a turn of pi/2) in a unit; expected radians by
// hand: v * pi / 200 for grads, v * pi / 180 for degrees, and for dd.mm.ss
// (d + m / 60 + s / 3600) * pi / 180.
#include <string>

#include <gtest/gtest.h>

#include <zelalign/readers/landxml.h>

using zelalign::Alignment;
using zelalign::LandXmlError;
using zelalign::ParseLandXml;

namespace {

// The quarter circle with the given <Units> attributes and delta.
std::string Quarter(std::string const& units, std::string const& delta)
{
    return "<LandXML>\n<Units><Metric linearUnit=\"meter\" " + units +
           "/></Units>\n<Alignments>\n<Alignment name=\"A\"><CoordGeom>\n"
           "<Curve rot=\"cw\" radius=\"500\" delta=\"" +
           delta +
           "\"><Start>1000 2000</Start><Center>1000 2500</Center><End>1500 2500</End></Curve>\n"
           "</CoordGeom></Alignment>\n</Alignments>\n</LandXML>\n";
}

std::string Outcome(std::string const& text)
{
    try {
        Alignment const a = ParseLandXml(text, "u.xml");
        return a.Warnings().empty() ? std::string("silent") : a.Warnings()[0];
    } catch (LandXmlError const& e) {
        return std::string("refused: ") + e.what();
    }
}

struct UnitCase {
    char const* units;
    char const* delta;
    char const* expected;  // "silent", or part of the warning or refusal
};

constexpr UnitCase Cases[] = {
    // pi / 2 in each unit, as files round it.
    {"angularUnit=\"radians\"", "1.570796", "silent"},
    {"", "1.5707963", "silent"},  // no unit declared: radians
    {"angularUnit=\"grads\"", "100.0000", "silent"},
    {"angularUnit=\"decimal degrees\"", "90.000000", "silent"},
    {"angularUnit=\"decimal dd.mm.ss\"", "90.0000", "silent"},
    {"angularUnit=\"decimal dd.mm.ss\"", "90", "silent"},
    // 89°59'59.99": 0.01" short, 0.00005 mrad.
    {"angularUnit=\"decimal dd.mm.ss\"", "89.595999", "silent"},
    // 90°10'15" = 90.1708333° = 1.573778 rad, 2.982 mrad too much; read as
    // decimal degrees 90.1015° it would be 1.772 mrad.
    {"angularUnit=\"decimal dd.mm.ss\"", "90.1015", "delta 90.1015 (1.573778 rad), the arc's turn length / radius "
                                                    "1.570796 rad: differs by 2.982 mrad"},
    // 90°10'15.3" = 1.573779 rad, 2.983 mrad.
    {"angularUnit=\"decimal dd.mm.ss\"", "90.10153", "differs by 2.983 mrad"},
    // 100.2 grads = 1.573938 rad, 3.142 mrad; degrees 90.17 = 2.967 mrad.
    {"angularUnit=\"grads\"", "100.2", "delta 100.2 (1.573938 rad)"},
    {"angularUnit=\"decimal degrees\"", "90.17", "differs by 2.967 mrad"},
    // The direction unit is checked as well, never used.
    {"angularUnit=\"grads\" directionUnit=\"decimal dd.mm.ss\"", "100", "silent"},
    // Refusals: units LandXML does not know, digits that are no dd.mm.ss.
    {"angularUnit=\"degrees\"",
     "90", "refused: u.xml:2: <Metric>: angularUnit 'degrees' is not supported (supported: radians, grads, decimal "
           "degrees, decimal dd.mm.ss)"},
    {"angularUnit=\"radians\" directionUnit=\"mils\"", "1.5707963",
     "refused: u.xml:2: <Metric>: directionUnit 'mils' is not supported (supported: radians, grads"},
    {"angularUnit=\"decimal dd.mm.ss\"", "89.5960",
     "refused: u.xml:5: <Curve>: attribute 'delta' '89.5960' has minutes or seconds of 60 or more (dd.mmss)"},
    {"angularUnit=\"decimal dd.mm.ss\"", "89.60",
     "refused: u.xml:5: <Curve>: attribute 'delta' '89.60' has minutes or seconds of 60 or more (dd.mmss)"},
    {"angularUnit=\"decimal dd.mm.ss\"", "9.0E1",
     "refused: u.xml:5: <Curve>: attribute 'delta' is not an angle in degrees, minutes and seconds (dd.mmss): "
     "'9.0E1'"},
    {"angularUnit=\"grads\"", "right", "refused: u.xml:5: <Curve>: attribute 'delta' is not a number: 'right'"},
};

}  // namespace

TEST(AngularUnits, DeltaInEachUnit)
{
    for (UnitCase const& c : Cases) {
        std::string const outcome = Outcome(Quarter(c.units, c.delta));
        EXPECT_NE(outcome.find(c.expected), std::string::npos)
            << c.units << " delta " << c.delta << "\n  expected: " << c.expected << "\n  got: " << outcome;
    }
}

TEST(AngularUnits, TheSourceNamesTheUnits)
{
    Alignment const a = ParseLandXml(Quarter("angularUnit=\"grads\" directionUnit=\"decimal dd.mm.ss\"", "100"), "u.xml");
    EXPECT_EQ(a.Source().angularUnit, "grads");
    EXPECT_EQ(a.Source().directionUnit, "decimal dd.mm.ss");
    EXPECT_EQ(a.Source().linearUnit, "meter");
    Alignment const b = ParseLandXml(Quarter("", "1.5707963"), "u.xml");
    EXPECT_EQ(b.Source().angularUnit, "radians");
    EXPECT_EQ(b.Source().directionUnit, "radians");
}

TEST(AngularUnits, NegativeDegreesMinutesSeconds)
{
    // -90.0000 in dd.mm.ss is a quarter turn written with the left-hand sign.
    EXPECT_EQ(Outcome(Quarter("angularUnit=\"decimal dd.mm.ss\"", "-90.0000")), "silent");
    // -89.5 is -(89°50'): 10' = 2.909 mrad short.
    EXPECT_NE(Outcome(Quarter("angularUnit=\"decimal dd.mm.ss\"", "-89.5")).find("differs by 2.909 mrad"),
              std::string::npos);
}
