// What a <Curve> states beside its points -- PI, delta, chord, tangent,
// external, midOrd -- checked against the arc: silent within the tolerance,
// a warning up to the limit, refused beyond. The files hold values worked out
// by hand to six decimals (see their comments); the cases below change one
// value by a known amount and expect that amount in the message.
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include <zelalign/readers/landxml.h>
#include <zelalign/validation.h>

using zelalign::Alignment;
using zelalign::LandXmlError;
using zelalign::ParseLandXml;

namespace {

std::string DataFile(char const* name)
{
    return std::string(ZEL_SOURCE_DIR) + "/tests/data/landxml/" + name;
}

std::string Text(char const* name)
{
    return zelalign::ReadTextFile(DataFile(name));
}

// The text with the first `from` replaced by `to` (which must be there).
std::string Replaced(std::string text, std::string const& from, std::string const& to)
{
    std::size_t const at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos) {
        text.replace(at, from.size(), to);
    }
    return text;
}

std::string ErrorOf(std::string const& text)
{
    try {
        ParseLandXml(text, "c.xml");
    } catch (LandXmlError const& e) {
        return e.what();
    }
    return "(read)";
}

bool Contains(std::string const& text, std::string const& part)
{
    return text.find(part) != std::string::npos;
}

}  // namespace

TEST(CurveStatements, ConsistentFilesReadSilently)
{
    for (char const* name :
         {"curve_statements_grads.xml", "curve_statements_dms.xml", "curve_statements_feet_degrees.xml"}) {
        Alignment const a = zelalign::ReadLandXml(DataFile(name));
        EXPECT_TRUE(a.Warnings().empty()) << name << ": " << a.Warnings()[0];
    }
}

// One row: the attribute text replaced, and what the message must hold.
struct StatementCase {
    char const* file;
    char const* from;
    char const* to;
    char const* expected;  // part of the warning or the refusal
    bool refused;
};

// Sizes by hand: chord 707.106781 -> 707.110000 is 3.2 mm off; tangent 500 ->
// 500.02 is 20 mm; external 207.106781 -> 207.2 is 93.2 mm (beyond 50 mm);
// midOrd 146.446609 -> 146.4446 is 2.0 mm; the PI moved 0.03 m north is 30 mm
// off, 0.3 m is refused; delta 100.1 grads is 0.1 * pi / 200 = 1.571 mrad;
// 90 (degrees read as grads) is 10 * pi / 200 = 157.080 mrad; in dd.mm.ss
// 12.3457789 is one second of arc more, 0.005 mrad: silent; 12.3556789 is one
// minute more, 0.291 mrad: silent; 12.4456789 is ten minutes more, 2.909 mrad;
// in feet, chord 414.120472 is 0.01 ft = 3.048 mm off; delta 30.2° is 3.491 mrad.
constexpr StatementCase Cases[] = {
    {"curve_statements_grads.xml", "chord=\"707.106781\"", "chord=\"707.110000\"",
     "c.xml:14: <Curve>: chord 707.1100 m, the distance between <Start> and <End> 707.1068 m: differs by 3.2 mm "
     "(tolerance 1.0 mm, limit 50.0 mm)",
     false},
    {"curve_statements_grads.xml", "tangent=\"500.000000\"", "tangent=\"500.020000\"",
     "tangent 500.0200 m, the arc's tangent length R tan(D/2) 500.0000 m: differs by 20.0 mm", false},
    {"curve_statements_grads.xml", "external=\"207.106781\"", "external=\"207.200000\"",
     "c.xml:14: <Curve>: external 207.2000 m, the arc's external distance R (sec(D/2) - 1) 207.1068 m: differs by "
     "93.2 mm (tolerance 1.0 mm, limit 50.0 mm)",
     true},
    {"curve_statements_grads.xml", "midOrd=\"146.446609\"", "midOrd=\"146.444600\"",
     "midOrd 146.4446 m, the arc's middle ordinate R (1 - cos(D/2)) 146.4466 m: differs by 2.0 mm", false},
    {"curve_statements_grads.xml", "<PI>1500.000000 2000.000000</PI>", "<PI>1500.030000 2000.000000</PI>",
     "<PI> 1500.0300 2000.0000 (northing easting), the intersection of the end tangents 1500.0000 2000.0000: "
     "differs by 30.0 mm",
     false},
    {"curve_statements_grads.xml", "<PI>1500.000000 2000.000000</PI>", "<PI>1500.300000 2000.000000</PI>",
     "differs by 300.0 mm (tolerance 1.0 mm, limit 50.0 mm)", true},
    {"curve_statements_grads.xml", "delta=\"100.000000\"", "delta=\"100.100000\"",
     "c.xml:14: <Curve>: delta 100.100000 (1.572367 rad), the arc's turn length / radius 1.570796 rad: differs by "
     "1.571 mrad (tolerance 1.000 mrad, limit 10.000 mrad)",
     false},
    {"curve_statements_grads.xml", "delta=\"100.000000\"", "delta=\"90\"",
     "delta 90 (1.413717 rad), the arc's turn length / radius 1.570796 rad: differs by 157.080 mrad", true},
    {"curve_statements_dms.xml", "delta=\"12.3456789\"", "delta=\"12.4456789\"",
     "delta 12.4456789 (0.222514 rad), the arc's turn length / radius 0.219605 rad: differs by 2.909 mrad", false},
    {"curve_statements_feet_degrees.xml", "chord=\"414.110472\"", "chord=\"414.120472\"",
     "chord 126.2239 m, the distance between <Start> and <End> 126.2209 m: differs by 3.0 mm", false},
    {"curve_statements_feet_degrees.xml", "delta=\"30.0000\"", "delta=\"30.2000\"",
     "delta 30.2000 (0.527089 rad), the arc's turn length / radius 0.523599 rad: differs by 3.491 mrad", false},
};

TEST(CurveStatements, EachStatementIsCheckedWithItsTolerance)
{
    for (StatementCase const& c : Cases) {
        std::string const text = Replaced(Text(c.file), c.from, c.to);
        if (c.refused) {
            std::string const error = ErrorOf(text);
            EXPECT_TRUE(Contains(error, c.expected)) << c.file << " " << c.to << "\n  " << error;
            continue;
        }
        Alignment const a = ParseLandXml(text, "c.xml");
        ASSERT_EQ(a.Warnings().size(), 1u) << c.file << " " << c.to;
        EXPECT_TRUE(Contains(a.Warnings()[0], c.expected)) << c.file << " " << c.to << "\n  " << a.Warnings()[0];
    }
}

TEST(CurveStatements, RoundingOfTheStatedAnglesIsSilent)
{
    // One second and one minute of arc more in dd.mm.ss: 0.005 and 0.291 mrad.
    for (char const* delta : {"delta=\"12.3457789\"", "delta=\"12.3556789\"", "delta=\"12.3457\""}) {
        Alignment const a = ParseLandXml(Replaced(Text("curve_statements_dms.xml"), "delta=\"12.3456789\"", delta),
                                         "c.xml");
        EXPECT_TRUE(a.Warnings().empty()) << delta << ": " << a.Warnings()[0];
    }
    // The sign of delta varies by producer (negative to the left).
    Alignment const b =
        ParseLandXml(Replaced(Text("curve_statements_feet_degrees.xml"), "delta=\"30.0000\"", "delta=\"-30.0000\""),
                     "c.xml");
    EXPECT_TRUE(b.Warnings().empty()) << b.Warnings()[0];
}

TEST(CurveStatements, HalfCircleHasNoPi)
{
    // Half a circle of 100 m to the right from (N 0, E 0) heading north:
    // centre (N 0, E 100), end (N 0, E 200); the tangents at the ends are
    // parallel, so PI, tangent and external are not checked; chord 200 and
    // delta 180° are.
    std::string const text =
        "<LandXML>\n<Units><Metric linearUnit=\"meter\" angularUnit=\"decimal degrees\"/></Units>\n<Alignments>\n"
        "<Alignment name=\"A\"><CoordGeom>\n"
        "<Curve rot=\"cw\" radius=\"100\" delta=\"180\" chord=\"200\" tangent=\"1E+18\" external=\"-241.42\">"
        "<Start>0 0</Start><Center>0 100</Center><End>0 200</End><PI>-100 0</PI></Curve>\n"
        "</CoordGeom></Alignment>\n</Alignments>\n</LandXML>\n";
    Alignment const a = ParseLandXml(text, "c.xml");
    EXPECT_TRUE(a.Warnings().empty()) << a.Warnings()[0];
    EXPECT_NEAR(a.Horizontal().Elements()[0].Length(), 100.0 * 3.14159265358979323846, 1e-9);
    EXPECT_TRUE(Contains(ErrorOf(Replaced(text, "delta=\"180\"", "delta=\"90\"")),
                         "c.xml:5: <Curve>: delta 90 (1.570796 rad), the arc's turn length / radius 3.141593 rad: "
                         "differs by 1570.796 mrad"));
    EXPECT_TRUE(Contains(ErrorOf(Replaced(text, "chord=\"200\"", "chord=\"199.9\"")), "differs by 100.0 mm"));
}
