// Profiles as design software writes them: unsymmetrical parabolas
// (<UnsymParaCurve>), and profiles that stop a few millimetres short of the
// plan's ends or far from them. Expected heights are worked out by hand from
// the classic closed form of the unsymmetrical vertical curve, written out
// beside each case; lengths along the curve from a separate Simpson
// integration of sqrt(1 + gradient^2).
#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include <zelalign/diagrams.h>
#include <zelalign/error.h>
#include <zelalign/profile.h>
#include <zelalign/readers/landxml.h>

using zelalign::Alignment;
using zelalign::ProfilePoint;
using zelalign::ReadLandXml;
using zelalign::VerticalCurveType;
using zelalign::VerticalProfile;

namespace {

std::string DataFile(char const* name)
{
    return std::string(ZEL_SOURCE_DIR) + "/tests/data/landxml/" + name;
}

bool Contains(std::string const& text, std::string const& part)
{
    return text.find(part) != std::string::npos;
}

// unsym_parabola.xml: g1 = (105 - 100) / 250 = +0.02, g2 = (98 - 105) / 350 =
// -0.02, L1 = 80, L2 = 120, L = 200; middle ordinate
//   e = L1 L2 (g2 - g1) / (2 L) = 80 * 120 * (-0.04) / 400 = -0.96 m.
// BVC 170 at 105 - 0.02 * 80 = 103.4; EVC 370 at 105 - 0.02 * 120 = 102.6.
// First arc (x from BVC):  z = 103.4 + 0.02 x - 0.96 (x / 80)^2,
//                          gradient 0.02 - 2 * 0.96 x / 6400.
// Second arc (y back from EVC): z = 102.6 + 0.02 y - 0.96 (y / 120)^2,
//                          gradient -0.02 + 2 * 0.96 y / 14400.
struct HeightCase {
    double station;
    double height;
    double gradient;
    char const* source;
};
constexpr HeightCase UnsymCases[] = {
    {100.0, 102.0, 0.02, "grade line: 100 + 0.02 * 100"},
    {170.0, 103.4, 0.02, "BVC: x = 0"},
    {210.0, 103.96, 0.008, "x = 40: 103.4 + 0.8 - 0.96 / 4; 0.02 - 0.012"},
    {236.0 + 2.0 / 3.0, 104.0 + 1.0 / 15.0, 0.0,
     "summit x = 0.02 * 6400 / 1.92 = 66.667: 103.4 + 1.33333 - 0.96 * (5/6)^2"},
    {250.0, 104.04, -0.004, "PVI: 105 + e; common gradient (g1 L1 + g2 L2) / L = (1.6 - 2.4) / 200"},
    {310.0, 103.56, -0.012, "y = 60: 102.6 + 1.2 - 0.96 / 4; -0.02 + 0.008"},
    {370.0, 102.6, -0.02, "EVC: y = 0"},
    {500.0, 100.0, -0.02, "grade line: 105 - 0.02 * 250"},
};

// Length along the profile between two stations by Simpson's rule on
// sqrt(1 + gradient^2), the gradient from the closed form above.
double UnsymLength(double a, double b)
{
    auto gradient = [](double s) {
        return s <= 250.0 ? 0.02 - 2.0 * 0.96 * (s - 170.0) / 6400.0 : -0.02 + 2.0 * 0.96 * (370.0 - s) / 14400.0;
    };
    int const n = 2000;
    double const h = (b - a) / n;
    double sum = 0.0;
    for (int k = 0; k <= n; ++k) {
        double const g = gradient(a + k * h);
        double const w = (k == 0 || k == n) ? 1.0 : (k % 2 == 1 ? 4.0 : 2.0);
        sum += w * std::sqrt(1.0 + g * g);
    }
    return sum * h / 3.0;
}

}  // namespace

TEST(LandXmlProfile, UnsymmetricalParabolaHeightsAndGradients)
{
    Alignment const a = ReadLandXml(DataFile("unsym_parabola.xml"));
    EXPECT_TRUE(a.Warnings().empty()) << a.Warnings()[0];
    VerticalProfile const& p = a.Profile();
    ASSERT_EQ(p.Points().size(), 3u);
    EXPECT_EQ(p.Points()[1].curve, VerticalCurveType::UnsymParabola);
    EXPECT_DOUBLE_EQ(p.Points()[1].lengthIn, 80.0);
    EXPECT_DOUBLE_EQ(p.Points()[1].lengthOut, 120.0);
    // Tangent points: PVI - L1 and PVI + L2.
    EXPECT_NEAR(p.CurveStart(1), 170.0, 1e-12);
    EXPECT_NEAR(p.CurveEnd(1), 370.0, 1e-12);
    for (HeightCase const& c : UnsymCases) {
        double h = 0.0;
        double g = 0.0;
        ASSERT_TRUE(p.HeightAt(c.station, &h, &g)) << c.source;
        EXPECT_NEAR(h, c.height, 1e-9) << "station " << c.station << ": " << c.source;
        EXPECT_NEAR(g, c.gradient, 1e-12) << "station " << c.station << ": " << c.source;
        // The same through the alignment's setting out.
        zelalign::SetOutPoint s;
        ASSERT_TRUE(a.SetOut(c.station, &s));
        EXPECT_NEAR(s.designHeight, c.height, 1e-9) << c.source;
    }
}

TEST(LandXmlProfile, UnsymmetricalParabolaIsSmoothAtItsEnds)
{
    Alignment const a = ReadLandXml(DataFile("unsym_parabola.xml"));
    VerticalProfile const& p = a.Profile();
    // Heights and gradients agree a micrometre either side of BVC, PVI and EVC.
    for (double s : {170.0, 250.0, 370.0}) {
        double h1 = 0.0;
        double g1 = 0.0;
        double h2 = 0.0;
        double g2 = 0.0;
        ASSERT_TRUE(p.HeightAt(s - 1e-6, &h1, &g1));
        ASSERT_TRUE(p.HeightAt(s + 1e-6, &h2, &g2));
        EXPECT_NEAR(h2 - h1, g1 * 2e-6, 1e-10) << s;
        EXPECT_NEAR(g1, g2, 1e-8) << s;
    }
}

TEST(LandXmlProfile, UnsymmetricalParabolaLengthsAndTunnelMetres)
{
    Alignment const a = ReadLandXml(DataFile("unsym_parabola.xml"));
    auto const& stretches = a.Profile().Stretches();
    // Grade line, the two arcs, grade line.
    ASSERT_EQ(stretches.size(), 4u);
    EXPECT_EQ(stretches[1].pvi, 1);
    EXPECT_EQ(stretches[2].pvi, 1);
    EXPECT_NEAR(stretches[1].startStation, 170.0, 1e-12);
    EXPECT_NEAR(stretches[1].endStation, 250.0, 1e-12);
    EXPECT_NEAR(stretches[1].length3D, UnsymLength(170.0, 250.0), 1e-7);
    EXPECT_NEAR(stretches[2].length3D, UnsymLength(250.0, 370.0), 1e-7);
    // The arcs' vertex radii: L L1 / (L2 |dg|) = 200 * 80 / (120 * 0.04) and
    // L L2 / (L1 |dg|) = 200 * 120 / (80 * 0.04).
    EXPECT_NEAR(stretches[1].arc.radius, 10000.0 / 3.0, 1e-9);
    EXPECT_NEAR(stretches[2].arc.radius, 7500.0, 1e-9);
    // Tunnel metres from the start (tunnel metre = station at 0): the length
    // along the profile, 170 * sqrt(1.0004) on the grade line, then the arcs.
    double const grade = std::sqrt(1.0004);
    struct {
        double station;
        double tunnelMetre;
    } const cases[] = {
        {170.0, 170.0 * grade},
        {210.0, 170.0 * grade + UnsymLength(170.0, 210.0)},
        {250.0, 170.0 * grade + UnsymLength(170.0, 250.0)},
        {310.0, 170.0 * grade + UnsymLength(170.0, 310.0)},
        {500.0, 170.0 * grade + UnsymLength(170.0, 370.0) + 130.0 * grade},
    };
    for (auto const& c : cases) {
        double tm = 0.0;
        ASSERT_TRUE(a.ToTunnelMetre(c.station, &tm)) << c.station;
        EXPECT_NEAR(tm, c.tunnelMetre, 1e-6) << c.station;
        double back = 0.0;
        ASSERT_TRUE(a.ToStation(tm, &back)) << c.station;
        EXPECT_NEAR(back, c.station, 1e-6) << c.station;
    }
}

TEST(LandXmlProfile, EqualLengthsGiveTheSymmetricalParabola)
{
    // L1 = L2 = 100 about a crest of +2 % / -2 %: the symmetrical parabola of
    // 200 m, vertex radius 200 / 0.04 = 5000; at the PVI 104 - 0.04 * 200 / 8 = 103.
    ProfilePoint unsym{200.0, 104.0, VerticalCurveType::UnsymParabola, 0.0, 100.0, 100.0};
    VerticalProfile const p({{0.0, 100.0}, unsym, {400.0, 100.0}});
    VerticalProfile const q({{0.0, 100.0}, {200.0, 104.0, VerticalCurveType::Parabola, 5000.0}, {400.0, 100.0}});
    double h = 0.0;
    double g = 0.0;
    ASSERT_TRUE(p.HeightAt(200.0, &h, &g));
    EXPECT_NEAR(h, 103.0, 1e-12);
    for (double s = 90.0; s <= 310.0; s += 7.5) {
        double hq = 0.0;
        double gq = 0.0;
        ASSERT_TRUE(p.HeightAt(s, &h, &g));
        ASSERT_TRUE(q.HeightAt(s, &hq, &gq));
        EXPECT_NEAR(h, hq, 1e-9) << s;
        EXPECT_NEAR(g, gq, 1e-12) << s;
    }
}

TEST(LandXmlProfile, UnsymmetricalParabolaRefusals)
{
    // Reaching past the next PVI, no length on one side, equal grades.
    EXPECT_THROW(VerticalProfile({{0.0, 100.0},
                                  {200.0, 104.0, VerticalCurveType::UnsymParabola, 0.0, 100.0, 250.0},
                                  {400.0, 100.0}}),
                 zelalign::DataError);
    EXPECT_THROW(VerticalProfile({{0.0, 100.0},
                                  {200.0, 104.0, VerticalCurveType::UnsymParabola, 0.0, 0.0, 50.0},
                                  {400.0, 100.0}}),
                 zelalign::DataError);
    EXPECT_THROW(VerticalProfile({{0.0, 100.0},
                                  {200.0, 102.0, VerticalCurveType::UnsymParabola, 0.0, 50.0, 50.0},
                                  {400.0, 104.0}}),
                 zelalign::DataError);
    std::string const text =
        "<LandXML>\n<Alignments>\n<Alignment name=\"A\"><CoordGeom><Line><Start>0 0</Start><End>0 400</End></Line>"
        "</CoordGeom>\n<Profile><ProfAlign>\n<PVI>0 100</PVI>\n"
        "<UnsymParaCurve lengthIn=\"-20\" lengthOut=\"50\">200 104</UnsymParaCurve>\n<PVI>400 100</PVI>\n"
        "</ProfAlign></Profile></Alignment>\n</Alignments>\n</LandXML>\n";
    try {
        zelalign::ParseLandXml(text, "t.xml");
        FAIL() << "read";
    } catch (zelalign::LandXmlError const& e) {
        EXPECT_EQ(std::string(e.what()), "t.xml:6: <UnsymParaCurve>: lengthIn and lengthOut must be positive");
    }
}

// profile_short_of_plan.xml: the plan runs 1000.000 to 1400.000; the profile
// from 1000.003 (height 50.000, grade +1 %) to 1399.996 (height 50.99999,
// grade -0.5 %), through 1200 at 51.99997. Within the 50 mm limit both ends
// continue their grade:
//   at 1000.000: 50 - 0.01 * 0.003 = 49.99997
//   at 1400.000: 50.99999 - 0.005 * 0.004 = 50.99997
TEST(LandXmlProfile, ProfileShortOfThePlanContinuesItsEndGrades)
{
    Alignment const a = ReadLandXml(DataFile("profile_short_of_plan.xml"));
    ASSERT_EQ(a.Warnings().size(), 2u);
    EXPECT_TRUE(Contains(a.Warnings()[0], "profile_short_of_plan.xml:16: profile: the profile starts at station "
                                          "1000.0030, 3.0 mm inside the plan's start 1000.0000"))
        << a.Warnings()[0];
    EXPECT_TRUE(Contains(a.Warnings()[0], "heights from 1000.0000 to 1000.0030 continue the profile's first grade"))
        << a.Warnings()[0];
    EXPECT_TRUE(Contains(a.Warnings()[1], "the profile ends at station 1399.9960, 4.0 mm inside the plan's end "
                                          "1400.0000"))
        << a.Warnings()[1];
    EXPECT_TRUE(Contains(a.Warnings()[1], "heights from 1399.9960 to 1400.0000 continue the profile's last grade"))
        << a.Warnings()[1];
    struct {
        double station;
        double height;
        double gradient;
    } const cases[] = {
        {1000.0, 49.99997, 0.01},  {1000.0015, 49.999985, 0.01}, {1100.0, 50.99997, 0.01},
        {1300.0, 51.49997, -0.005}, {1400.0, 50.99997, -0.005},
    };
    for (auto const& c : cases) {
        zelalign::SetOutPoint s;
        ASSERT_TRUE(a.SetOut(c.station, &s)) << c.station;
        EXPECT_NEAR(s.designHeight, c.height, 1e-9) << c.station;
        EXPECT_NEAR(s.gradient, c.gradient, 1e-12) << c.station;
    }
    // A measured point stationed at the very start gets a height difference.
    zelalign::StationedPoint const p = a.Station(499.0, 1000.0, 50.0);
    EXPECT_NEAR(p.station, 1000.0, 1e-9);
    EXPECT_NEAR(p.heightDifference, 50.0 - 49.99997, 1e-9);
    // Tunnel metres (by default equal to the station at the start) count the
    // continued grades along their slope too: 200 m of plan at 1 % and 200 m
    // at 0.5 %.
    double tm = 0.0;
    ASSERT_TRUE(a.ToTunnelMetre(1000.0, &tm));
    EXPECT_NEAR(tm, 1000.0, 1e-12);
    ASSERT_TRUE(a.ToTunnelMetre(1400.0, &tm));
    EXPECT_NEAR(tm, 1000.0 + 200.0 * std::sqrt(1.0001) + 200.0 * std::sqrt(1.000025), 1e-9);
    EXPECT_DOUBLE_EQ(a.Profile().CoveredStart(), 1000.0);
    EXPECT_DOUBLE_EQ(a.Profile().CoveredEnd(), 1400.0);
}

TEST(LandXmlProfile, ProfileFarShortOfThePlanGivesNoHeightsThere)
{
    // The profile covers 1100 to 1300 of a plan from 1000 to 1400: 100 m short
    // at each end, beyond the 50 mm limit. Heights there are absent.
    std::string const text =
        "<LandXML>\n<Alignments>\n<Alignment name=\"A\" staStart=\"1000\"><CoordGeom>"
        "<Line><Start>0 0</Start><End>400 0</End></Line></CoordGeom>\n"
        "<Profile><ProfAlign>\n<PVI>1100 10</PVI>\n<PVI>1300 12</PVI>\n</ProfAlign></Profile>\n"
        "</Alignment>\n</Alignments>\n</LandXML>\n";
    Alignment const a = zelalign::ParseLandXml(text, "t.xml");
    ASSERT_EQ(a.Warnings().size(), 2u);
    EXPECT_TRUE(Contains(a.Warnings()[0], "t.xml:4: profile: the profile starts at station 1100.0000, 100.000 m "
                                          "inside the plan's start 1000.0000"))
        << a.Warnings()[0];
    EXPECT_TRUE(Contains(a.Warnings()[0], "no design heights before station 1100.0000")) << a.Warnings()[0];
    EXPECT_TRUE(Contains(a.Warnings()[1], "no design heights beyond station 1300.0000")) << a.Warnings()[1];
    zelalign::SetOutPoint s;
    ASSERT_TRUE(a.SetOut(1050.0, &s));
    EXPECT_TRUE(std::isnan(s.designHeight));
    ASSERT_TRUE(a.SetOut(1350.0, &s));
    EXPECT_TRUE(std::isnan(s.designHeight));
    ASSERT_TRUE(a.SetOut(1200.0, &s));
    EXPECT_NEAR(s.designHeight, 11.0, 1e-12);
    // A profile longer than the plan: a warning, nothing continued.
    std::string const longer =
        "<LandXML>\n<Alignments>\n<Alignment name=\"A\" staStart=\"1000\"><CoordGeom>"
        "<Line><Start>0 0</Start><End>400 0</End></Line></CoordGeom>\n"
        "<Profile><ProfAlign>\n<PVI>999.99 10</PVI>\n<PVI>1400 14.0001</PVI>\n</ProfAlign></Profile>\n"
        "</Alignment>\n</Alignments>\n</LandXML>\n";
    Alignment const b = zelalign::ParseLandXml(longer, "t.xml");
    ASSERT_EQ(b.Warnings().size(), 1u);
    EXPECT_TRUE(Contains(b.Warnings()[0], "starts at station 999.9900, 10.0 mm outside the plan's start 1000.0000"))
        << b.Warnings()[0];
    EXPECT_DOUBLE_EQ(b.Profile().CoveredStart(), 999.99);
}

TEST(LandXmlProfile, UnsymmetricalParabolaIsOneCurveOfTheProfileDiagram)
{
    Alignment const a = ReadLandXml(DataFile("unsym_parabola.xml"));
    zelalign::ProfileDiagram const d = zelalign::MakeProfileDiagram(a.Profile(), 10.0);
    ASSERT_EQ(d.curves.size(), 1u);
    EXPECT_EQ(d.curves[0].type, VerticalCurveType::UnsymParabola);
    EXPECT_NEAR(d.curves[0].startStation, 170.0, 1e-9);
    EXPECT_NEAR(d.curves[0].endStation, 370.0, 1e-9);
    EXPECT_NEAR(d.curves[0].startHeight, 103.4, 1e-9);
    EXPECT_NEAR(d.curves[0].endHeight, 102.6, 1e-9);
    // Every sample on the curve follows the closed form worked out above.
    int onCurve = 0;
    for (zelalign::ProfileSample const& p : d.samples) {
        if (p.station < 170.0 || p.station > 370.0) {
            continue;
        }
        double const x = p.station - 170.0;
        double const y = 370.0 - p.station;
        double const expected = p.station <= 250.0 ? 103.4 + 0.02 * x - 0.96 * (x / 80.0) * (x / 80.0)
                                                   : 102.6 + 0.02 * y - 0.96 * (y / 120.0) * (y / 120.0);
        EXPECT_NEAR(p.height, expected, 1e-9) << p.station;
        ++onCurve;
    }
    EXPECT_GE(onCurve, 20);  // 200 m of curve in steps of at most 10 m
}
