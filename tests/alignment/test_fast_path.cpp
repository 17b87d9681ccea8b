// The alignment layer's per-call path against the element library's own
// operations: the point at a station and the element foot through the
// prepared per-element constants give the same bits as zelmath's Kleinpunkt
// and Lot called literally, over every element of the sample alignment, its
// mirror image and its reversal (straights, arcs bending both ways, clothoids
// of all four kinds bending both ways, cubic parabolas and half-sine
// transitions), and over cubic parabolas and half-sine transitions of many
// shapes, at many stations and measured points. Then the exact foot
// (along-tangent residual below 1 micrometre), the literal foot still on
// offer, and projection without a single heap allocation.
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <zelalign/readers/landxml.h>
#include <zelmath/records.h>

#include "common/synthetic_alignment.h"

#include "common/allocation_counter.h"

using zelalign::AlignmentPoint;
using zelalign::ElementType;
using zelalign::HorizontalAlignment;
using zelalign::HorizontalElement;
using zelalign::Projection;
using zelalign::ProjectionAccuracy;
using zelalign::ProjectionStatus;
using zelmath::TPointMathResult;

namespace {

std::string const SampleDir = std::string(ZEL_SOURCE_DIR) + "/data/sample/";

std::vector<HorizontalElement> const& SampleElements()
{
    static std::vector<HorizontalElement> const e =
        zelalign::ReadLandXml(SampleDir + "alignment.xml").Horizontal().Elements();
    return e;
}

// The sample, its mirror image, its reversal and the mirror image of that.
std::vector<HorizontalAlignment> const& Chains()
{
    static std::vector<HorizontalAlignment> const chains = [] {
        auto const& s = SampleElements();
        std::vector<HorizontalAlignment> c;
        c.emplace_back(s);
        c.emplace_back(zelsynthetic::Mirrored(s));
        c.emplace_back(zelsynthetic::Reversed(s));
        c.emplace_back(zelsynthetic::Mirrored(zelsynthetic::Reversed(s)));
        return c;
    }();
    return chains;
}

bool SameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

::testing::AssertionResult SamePoint(AlignmentPoint const& a, AlignmentPoint const& b)
{
    if (SameBits(a.station, b.station) && SameBits(a.east, b.east) && SameBits(a.north, b.north) &&
        SameBits(a.azimuth, b.azimuth) && SameBits(a.radius, b.radius) && a.element == b.element) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << std::hexfloat << "prepared (" << a.station << ", " << a.east << ", " << a.north << ", " << a.azimuth
           << ", " << a.radius << ") literal (" << b.station << ", " << b.east << ", " << b.north << ", "
           << b.azimuth << ", " << b.radius << ")";
}

// Stations over and around an element: ends, just inside and outside them
// (within and beyond the value types' comparison tolerance), and a sweep.
std::vector<double> StationsOf(HorizontalElement const& e)
{
    double const s0 = e.StartStation();
    double const s1 = e.EndStation();
    std::vector<double> s{s0, s1};
    for (double d : {1e-12, 1e-10, 2e-10, 1e-6, 1e-4, 0.01, 5.0}) {
        s.insert(s.end(), {s0 + d, s0 - d, s1 + d, s1 - d});
    }
    int const sweep = 101;
    for (int k = 0; k <= sweep; ++k) {
        s.push_back(s0 + (s1 - s0) * k / sweep);
    }
    return s;
}

// Offsets (metres, positive right) of the measured points: on the element,
// beside it, and in each damping band of the transitions' foot search.
std::vector<double> const& Offsets()
{
    static std::vector<double> const o{0.0,  1e-3,  -1e-3, 2.5,    -2.5,  40.0,  -40.0,
                                       650., -650., 1200., -1200., 2500., -2500.};
    return o;
}

// A point at the given offset from the element's point at a station.
void Beside(AlignmentPoint const& p, double offset, double* east, double* north)
{
    *east = p.east + offset * std::cos(p.azimuth);
    *north = p.north - offset * std::sin(p.azimuth);
}

// Along-tangent and across-tangent parts of (east, north) - foot.
void Residual(AlignmentPoint const& foot, double east, double north, double* along, double* across)
{
    double const de = east - foot.east;
    double const dn = north - foot.north;
    *along = de * std::sin(foot.azimuth) + dn * std::cos(foot.azimuth);
    *across = de * std::cos(foot.azimuth) - dn * std::sin(foot.azimuth);
}

}  // namespace

TEST(FastPath, TheChainsHoldEveryElementKindBendingBothWays)
{
    std::set<std::pair<int, int>> clothoids;  // (kind, bends right)
    std::set<std::pair<int, int>> others;     // (type, bends right)
    for (HorizontalAlignment const& a : Chains()) {
        for (HorizontalElement const& e : a.Elements()) {
            bool const right = e.spec.Start.Radius.Double() > 0.0 || e.spec.End.Radius.Double() > 0.0;
            if (e.type == ElementType::Clothoid) {
                clothoids.insert({e.spec.ComplexType, right});
            } else if (e.type != ElementType::Line) {
                others.insert({static_cast<int>(e.type), right});
            }
        }
    }
    for (int kind = 0; kind < 4; ++kind) {
        EXPECT_TRUE(clothoids.count({kind, 0}) && clothoids.count({kind, 1})) << "clothoid kind " << kind;
    }
    for (ElementType t : {ElementType::Arc, ElementType::CubicParabola, ElementType::HalfSine}) {
        EXPECT_TRUE(others.count({static_cast<int>(t), 0}) && others.count({static_cast<int>(t), 1}))
            << zelalign::ElementTypeName(t);
    }
}

TEST(FastPath, PointAtAStationIsBitIdenticalToTheElementOperation)
{
    long compared = 0;
    for (HorizontalAlignment const& a : Chains()) {
        for (std::size_t i = 0; i < a.Size(); ++i) {
            int const index = static_cast<int>(i);
            for (double s : StationsOf(a.Elements()[i])) {
                ASSERT_TRUE(SamePoint(a.ElementPoint(index, s), a.LiteralElementPoint(index, s)))
                    << zelalign::ElementTypeName(a.Elements()[i].type) << " element " << i << " station "
                    << std::hexfloat << s;
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 8000);
}

TEST(FastPath, ElementFootIsBitIdenticalToTheElementOperation)
{
    long compared = 0;
    std::set<int> results;
    for (HorizontalAlignment const& a : Chains()) {
        for (std::size_t i = 0; i < a.Size(); ++i) {
            int const index = static_cast<int>(i);
            HorizontalElement const& e = a.Elements()[i];
            double const step = e.Length() / 23.0;
            for (double s = e.StartStation() - 30.0; s <= e.EndStation() + 30.0; s += step) {
                AlignmentPoint const p = a.ElementPoint(index, s);
                for (double offset : Offsets()) {
                    double east = 0.0;
                    double north = 0.0;
                    Beside(p, offset, &east, &north);
                    AlignmentPoint fast;
                    AlignmentPoint literal;
                    int const rf = a.ElementFoot(index, east, north, ProjectionAccuracy::Element, &fast);
                    int const rl = a.LiteralElementFoot(index, east, north, &literal);
                    ASSERT_EQ(rf, rl) << zelalign::ElementTypeName(e.type) << " element " << i;
                    ASSERT_TRUE(SamePoint(fast, literal))
                        << zelalign::ElementTypeName(e.type) << " element " << i << " result " << rl;
                    results.insert(rl);
                    ++compared;
                }
            }
        }
    }
    EXPECT_GT(compared, 20000);
    EXPECT_EQ(results.size(), 4u);  // on, before the start, beyond the end, no solution
}

namespace {

// Cubic parabolas and half-sine transitions of many shapes, each an alignment
// of its own: from a straight into a curve and from a curve into a straight
// (a cubic parabola of that sense is evaluated reversed), bending right and
// left, short and long, gentle and sharp, in every quadrant of direction and
// at small and large stations. The end point is placed by the usual
// approximation of a transition (abscissa L, ordinate L^2 / 6R into a curve,
// L^2 / 3R out of one), close to where the element's own curve ends.
std::vector<HorizontalAlignment> const& Transitions()
{
    static std::vector<HorizontalAlignment> const all = [] {
        std::vector<HorizontalAlignment> out;
        for (ElementType type : {ElementType::CubicParabola, ElementType::HalfSine}) {
            for (double length : {0.5, 20.0, 60.0, 120.0, 250.0}) {
                for (double radius : {300.0, -300.0, 900.0, -900.0, 5000.0, -5000.0}) {
                    for (bool intoCurve : {true, false}) {
                        for (double azimuth : {0.3, 2.0, 4.0, 5.9}) {
                            for (double startStation : {0.0, 12345.678}) {
                                double const y = length * length / ((intoCurve ? 6.0 : 3.0) * radius);
                                double const e0 = 2600000.0 + 37.0 * azimuth;
                                double const n0 = 1200000.0 - 11.0 * azimuth;
                                double const e1 = e0 + length * std::sin(azimuth) + y * std::cos(azimuth);
                                double const n1 = n0 + length * std::cos(azimuth) - y * std::sin(azimuth);
                                out.emplace_back(std::vector<HorizontalElement>{HorizontalElement::Transition(
                                    type, startStation, length, zelmath::CACoordinate(e0, n0),
                                    zelmath::CACoordinate(e1, n1), intoCurve ? 0.0 : radius, intoCurve ? radius : 0.0)});
                            }
                        }
                    }
                }
            }
        }
        return out;
    }();
    return all;
}

}  // namespace

TEST(FastPath, TransitionsOfEveryShapeGiveTheElementOperationsBits)
{
    long points = 0;
    long feet = 0;
    std::set<std::pair<int, int>> shapes;  // (type, complex type)
    std::set<int> results;
    for (HorizontalAlignment const& a : Transitions()) {
        HorizontalElement const& e = a.Elements()[0];
        shapes.insert({static_cast<int>(e.type), e.spec.ComplexType});
        for (double s : StationsOf(e)) {
            ASSERT_TRUE(SamePoint(a.ElementPoint(0, s), a.LiteralElementPoint(0, s)))
                << zelalign::ElementTypeName(e.type) << " kind " << e.spec.ComplexType << " R "
                << e.spec.Start.Radius.Double() << "/" << e.spec.End.Radius.Double() << " station " << std::hexfloat
                << s;
            ++points;
        }
        double const step = e.Length() / 7.0;
        for (double s = e.StartStation() - 2.0 * step; s <= e.EndStation() + 2.0 * step; s += step) {
            AlignmentPoint const p = a.LiteralElementPoint(0, s);
            for (double offset : Offsets()) {
                double east = 0.0;
                double north = 0.0;
                Beside(p, offset, &east, &north);
                AlignmentPoint fast;
                AlignmentPoint literal;
                int const rf = a.ElementFoot(0, east, north, ProjectionAccuracy::Element, &fast);
                int const rl = a.LiteralElementFoot(0, east, north, &literal);
                ASSERT_EQ(rf, rl) << zelalign::ElementTypeName(e.type) << " kind " << e.spec.ComplexType;
                ASSERT_TRUE(SamePoint(fast, literal))
                    << zelalign::ElementTypeName(e.type) << " kind " << e.spec.ComplexType << " R "
                    << e.spec.Start.Radius.Double() << "/" << e.spec.End.Radius.Double() << " offset " << offset
                    << " result " << rl;
                results.insert(rl);
                ++feet;
            }
        }
    }
    // Both senses of both types were built, and every kind of result met.
    EXPECT_EQ(shapes.size(), 4u);
    EXPECT_EQ(results.size(), 4u);  // on, before the start, beyond the end, no solution
    EXPECT_GT(points, 100000);
    EXPECT_GT(feet, 100000);
}

// The exact foot on transitions of every shape: the same result as the element
// search (on the element, before its start, beyond its end), a foot on the
// element's own curve with the measured point less than 1 micrometre along
// its tangent, never farther from the point than the element search's foot,
// and the same station as that foot within the element search's 0.4 mm.
TEST(FastPath, ExactFootOnTransitionsOfEveryShape)
{
    int on = 0;
    for (HorizontalAlignment const& a : Transitions()) {
        HorizontalElement const& e = a.Elements()[0];
        for (int k = 1; k < 12; ++k) {
            AlignmentPoint const p = a.LiteralElementPoint(0, e.StartStation() + e.Length() * k / 12.0);
            for (double offset : {0.0, 0.4, -0.4, 3.0, -3.0, 40.0, -40.0, 650.0, -650.0}) {
                double east = 0.0;
                double north = 0.0;
                Beside(p, offset, &east, &north);
                AlignmentPoint exact;
                AlignmentPoint literal;
                int const r = a.ElementFoot(0, east, north, ProjectionAccuracy::Exact, &exact);
                ASSERT_EQ(r, a.LiteralElementFoot(0, east, north, &literal))
                    << zelalign::ElementTypeName(e.type) << " kind " << e.spec.ComplexType << " offset " << offset;
                if (r != TPointMathResult::OnElement) {
                    continue;
                }
                AlignmentPoint const onCurve = a.LiteralElementPoint(0, exact.station);
                EXPECT_TRUE(SamePoint(exact, onCurve)) << zelalign::ElementTypeName(e.type);
                double along = 0.0;
                double across = 0.0;
                Residual(exact, east, north, &along, &across);
                ASSERT_LT(std::fabs(along), 1e-6)
                    << zelalign::ElementTypeName(e.type) << " kind " << e.spec.ComplexType << " offset " << offset;
                EXPECT_LE(std::hypot(east - exact.east, north - exact.north),
                          std::hypot(east - literal.east, north - literal.north) + 1e-9);
                EXPECT_NEAR(exact.station, literal.station, 4.01e-4 * 4);
                ++on;
            }
        }
    }
    EXPECT_GT(on, 30000);
}

TEST(FastPath, ExactFootLiesWithinAMicrometreAlongTheTangent)
{
    int refined = 0;
    double worstLiteral = 0.0;
    for (HorizontalAlignment const& a : Chains()) {
        for (std::size_t i = 0; i < a.Size(); ++i) {
            int const index = static_cast<int>(i);
            HorizontalElement const& e = a.Elements()[i];
            for (int k = 1; k < 40; ++k) {
                double const s = e.StartStation() + e.Length() * k / 40.0;
                AlignmentPoint const p = a.ElementPoint(index, s);
                for (double offset : {0.0, 0.7, -0.7, 6.0, -6.0, 35.0, -35.0}) {
                    double east = 0.0;
                    double north = 0.0;
                    Beside(p, offset, &east, &north);
                    AlignmentPoint exact;
                    AlignmentPoint literal;
                    int const r = a.ElementFoot(index, east, north, ProjectionAccuracy::Exact, &exact);
                    ASSERT_EQ(r, a.LiteralElementFoot(index, east, north, &literal));
                    if (r != TPointMathResult::OnElement) {
                        continue;
                    }
                    double along = 0.0;
                    double across = 0.0;
                    Residual(exact, east, north, &along, &across);
                    ASSERT_LT(std::fabs(along), 1e-6)
                        << zelalign::ElementTypeName(e.type) << " element " << i << " offset " << offset;
                    double literalAlong = 0.0;
                    double literalAcross = 0.0;
                    Residual(literal, east, north, &literalAlong, &literalAcross);
                    worstLiteral = std::max(worstLiteral, std::fabs(literalAlong));
                    // The exact foot is a point of the same element, never farther away.
                    EXPECT_LE(std::hypot(east - exact.east, north - exact.north),
                              std::hypot(east - literal.east, north - literal.north) + 1e-9);
                    EXPECT_EQ(exact.element, index);
                    if (e.type != ElementType::Line && e.type != ElementType::Arc) {
                        ++refined;
                    }
                }
            }
        }
    }
    EXPECT_GT(refined, 1000);
    // The literal search does stop short by up to its tolerance of 0.4 mm,
    // which is what the exact foot removes.
    EXPECT_GT(worstLiteral, 1e-5);
    EXPECT_LE(worstLiteral, 4.0001e-4);
}

TEST(FastPath, ProjectionOffersTheLiteralFootAndTheExactOne)
{
    HorizontalAlignment const& a = Chains().front();
    int differ = 0;
    for (std::size_t i = 0; i < a.Size(); ++i) {
        HorizontalElement const& e = a.Elements()[i];
        for (int k = 1; k < 10; ++k) {
            AlignmentPoint const p = a.ElementPoint(static_cast<int>(i), e.StartStation() + e.Length() * k / 10.0);
            double east = 0.0;
            double north = 0.0;
            Beside(p, 3.0, &east, &north);
            Projection const literal = a.Project(east, north, ProjectionAccuracy::Element);
            Projection const exact = a.Project(east, north);
            ASSERT_EQ(literal.status, ProjectionStatus::OnElement);
            ASSERT_EQ(exact.status, ProjectionStatus::OnElement);
            AlignmentPoint foot;
            ASSERT_EQ(a.LiteralElementFoot(literal.foot.element, east, north, &foot), TPointMathResult::OnElement);
            EXPECT_TRUE(SamePoint(literal.foot, foot));
            EXPECT_NEAR(exact.foot.station, literal.foot.station, 5e-4);
            EXPECT_NEAR(exact.offset, 3.0, 1e-3);
            differ += exact.foot.station != literal.foot.station;
        }
    }
    EXPECT_GT(differ, 0);
}

TEST(FastPath, CrowdedElementsAreSearchedInSeveralRounds)
{
    // A straight North in 2,000 pieces of 0.25 m: far more boxes lie in the
    // first search window than the candidate buffer holds.
    std::vector<HorizontalElement> pieces;
    int const count = 2000;
    double const piece = 0.25;
    for (int k = 0; k < count; ++k) {
        pieces.push_back(HorizontalElement::Line(k * piece, piece, zelmath::CACoordinate(0.0, k * piece),
                                                 zelmath::CACoordinate(0.0, (k + 1) * piece)));
    }
    HorizontalAlignment const a(pieces);
    for (double north : {0.1, 37.3, 250.1, 499.9}) {
        for (double east : {-3.0, 0.0, 0.01, 20.0, -150.0}) {
            Projection const r = a.Project(east, north);
            ASSERT_EQ(r.status, ProjectionStatus::OnElement) << east << " " << north;
            EXPECT_NEAR(r.foot.station, north, 1e-9);
            EXPECT_NEAR(r.offset, east, 1e-9);
            EXPECT_EQ(r.foot.element, static_cast<int>(north / piece));
        }
    }
    // Far away, before the start and beyond the end: the window grows until
    // it holds every box.
    Projection const before = a.Project(5.0, -7000.0);
    EXPECT_EQ(before.status, ProjectionStatus::BeforeStart);
    EXPECT_NEAR(before.along, -7000.0, 1e-9);
    Projection const beyond = a.Project(-2.0, 9000.0);
    EXPECT_EQ(beyond.status, ProjectionStatus::BeyondEnd);
    EXPECT_NEAR(beyond.along, 9000.0 - count * piece, 1e-6);
    EXPECT_NEAR(beyond.offset, -2.0, 1e-9);
}

TEST(FastPath, TheAllocationCounterSeesAllocations)
{
    std::vector<double>* v = nullptr;
    long const counted = AllocationsDuring([&v] { v = new std::vector<double>(100); });
    delete v;
    EXPECT_GE(counted, 2);
}

TEST(FastPath, ProjectionAndPointsAllocateNothing)
{
    // A long alignment, so that the search runs several rounds of the index.
    HorizontalAlignment const a(zelsynthetic::Repeated(SampleElements(), 2000));
    std::vector<double> east;
    std::vector<double> north;
    for (int k = 0; k < 2000; ++k) {
        HorizontalElement const& e = a.Elements()[static_cast<std::size_t>(k * 7 % 2000)];
        AlignmentPoint const p = a.ElementPoint(k * 7 % 2000, e.StartStation() + e.Length() * 0.37);
        double x = 0.0;
        double y = 0.0;
        Beside(p, (k % 13) - 6.0 + (k % 97 == 0 ? 3000.0 : 0.0), &x, &y);
        east.push_back(x);
        north.push_back(y);
    }
    int on = 0;
    long const counted = AllocationsDuring([&] {
        for (std::size_t k = 0; k < east.size(); ++k) {
            Projection const r = a.Project(east[k], north[k]);
            Projection const l = a.Project(east[k], north[k], ProjectionAccuracy::Element);
            AlignmentPoint p;
            a.PointAt(a.StartStation() + 1.5 * static_cast<double>(k), &p);
            on += (r.status == ProjectionStatus::OnElement) + (l.status == ProjectionStatus::OnElement);
        }
    });
    EXPECT_EQ(counted, 0);
    EXPECT_GT(on, 3000);
}
