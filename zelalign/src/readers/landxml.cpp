// LandXML 1.2 import of horizontal alignments and vertical profiles.
#include <zelalign/readers/landxml.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <utility>

#include <pugixml.hpp>

#include <zelmath/long_prof_curve.h>
#include <zellib/constants.h>

namespace zelalign {

using zelmath::CACoordinate;

namespace {

// Cant values are metres unless the largest of a Cant table exceeds this
// (metres): no track is canted by half a metre (the largest applied cants are
// about 0.2 m), so such a table is in millimetres.
constexpr double CantMillimetreThreshold = 0.5;
// A gauge above this (metres) is in millimetres (1435 for 1.435 m).
constexpr double GaugeMillimetreThreshold = 10.0;

// Linear units of <Units> and their length in metres (the international foot
// is 0.3048 m exactly, the US survey foot 1200/3937 m).
struct LinearUnit {
    char const* name;
    double metres;
};
constexpr LinearUnit LinearUnits[] = {{"meter", 1.0},           {"metre", 1.0},
                                      {"millimeter", 0.001},    {"centimeter", 0.01},
                                      {"kilometer", 1000.0},    {"foot", 0.3048},
                                      {"USSurveyFoot", 1200.0 / 3937.0}, {"inch", 0.0254}};

// Angular units of <Units> (angularUnit for angles such as a curve's delta,
// directionUnit for directions). "decimal dd.mm.ss" writes 45°30'25.5" as
// 45.30255: two digits of minutes, two of seconds, then decimals of a second.
enum class AngleUnit { Radians, Grads, DecimalDegrees, DegreesMinutesSeconds };
struct AngularUnit {
    char const* name;
    AngleUnit unit;
};
constexpr AngularUnit AngularUnits[] = {{"radians", AngleUnit::Radians},
                                        {"grads", AngleUnit::Grads},
                                        {"decimal degrees", AngleUnit::DecimalDegrees},
                                        {"decimal dd.mm.ss", AngleUnit::DegreesMinutesSeconds}};
constexpr double Pi = zellib::CAPi;

// A Curve's length attribute may differ from the length its points give by
// this much (metres) before a warning is issued.
constexpr double CurveLengthTolerance = 0.001;

// Element names without a namespace prefix.
char const* LocalName(pugi::xml_node node)
{
    char const* name = node.name();
    char const* colon = std::strrchr(name, ':');
    return colon ? colon + 1 : name;
}

pugi::xml_node Child(pugi::xml_node node, char const* name)
{
    for (pugi::xml_node c = node.first_child(); c; c = c.next_sibling()) {
        if (c.type() == pugi::node_element && std::strcmp(LocalName(c), name) == 0) {
            return c;
        }
    }
    return pugi::xml_node();
}

// The LandXML spiral types (spiType) and the curve each is read as; the one
// place that decides, and the list the refusal names.
//
// clothoid and cubicParabola are the element library's clothoid and cubic
// parabola. cosine is the half-sine transition, curvature (1 - cos(pi t)) / 2
// of the change of curvature: between a straight and a curve the element
// library's half-sine, between two curves (which that element does not take)
// the shaped transition of the same law. bloss, biquadratic (Schramm) and
// sinusoid (Klein's sine curve) are shaped transitions (transition_curve.h).
// japaneseCubic, the ordinate x^3 / (6 R X) over the tangent abscissa, is the
// cubic parabola itself.
// biquadraticParabola is the same biquadratic parabola. The rev... types are
// these curves written from their other end: every one of the shapes is
// point-symmetric about its middle (f(1 - t) = 1 - f(t)), so the curve read
// backwards from its end radius has the same law, and rev... is read as the
// curve itself.
//
// Refused, with the reason, are the types that neither an element of the
// element library nor a curvature along the length describes: cubic (the clothoid's first approximation, ordinate
// l^3 / (6 R L) over the length; not the cubic parabola), sineHalfWave (the
// Japanese sine half-wavelength diminishing tangent curve, ordinate
// x^2 / (4 R) - X^2 (1 - cos(pi x / X)) / (2 pi^2 R) over the tangent
// abscissa), radioid (no curvature law along the length documented for the
// LandXML type), and weinerBogen (its lateral
// position depends on the cant and the height of the vehicle's centre of
// gravity, which a LandXML spiral does not carry).
enum class SpiralCurve { Clothoid, CubicParabola, Cosine, Shaped, Refused };

struct SpiralKind {
    char const* name;
    SpiralCurve curve;
    TransitionShape shape;  // Cosine and Shaped
    char const* refusal;    // Refused: why
};

constexpr SpiralKind SpiralKinds[] = {
    {"clothoid", SpiralCurve::Clothoid, TransitionShape::Bloss, ""},
    {"cubicParabola", SpiralCurve::CubicParabola, TransitionShape::Bloss, ""},
    // The Japanese cubic is the cubic parabola y = x^3 / (6 R X) over the
    // tangent, its length X along the tangent: the same curve.
    {"japaneseCubic", SpiralCurve::CubicParabola, TransitionShape::Bloss, ""},
    {"cosine", SpiralCurve::Cosine, TransitionShape::Cosine, ""},
    {"revCosine", SpiralCurve::Cosine, TransitionShape::Cosine, ""},
    {"bloss", SpiralCurve::Shaped, TransitionShape::Bloss, ""},
    {"revBloss", SpiralCurve::Shaped, TransitionShape::Bloss, ""},
    {"biquadratic", SpiralCurve::Shaped, TransitionShape::Biquadratic, ""},
    {"biquadraticParabola", SpiralCurve::Shaped, TransitionShape::Biquadratic, ""},
    {"revBiquadratic", SpiralCurve::Shaped, TransitionShape::Biquadratic, ""},
    {"sinusoid", SpiralCurve::Shaped, TransitionShape::Sinusoid, ""},
    {"revSinusoid", SpiralCurve::Shaped, TransitionShape::Sinusoid, ""},
    {"cubic", SpiralCurve::Refused, TransitionShape::Bloss,
     "the cubic spiral is given by its ordinate over the length, not by a curvature along it"},
    {"sineHalfWave", SpiralCurve::Refused, TransitionShape::Bloss,
     "the sine half-wave is given by its ordinate over the tangent, not by a curvature along its length"},
    {"radioid", SpiralCurve::Refused, TransitionShape::Bloss,
     "the radioid is not given by a curvature along its length"},
    {"weinerBogen", SpiralCurve::Refused, TransitionShape::Bloss,
     "the Wiener Bogen depends on the cant and the height of the centre of gravity, which the spiral does not carry"},
};

class Reader {
public:
    Reader(std::string const& text, std::string source, Tolerances const& tolerances = Tolerances())
        : m_text(text), m_source(std::move(source)), m_tolerances(tolerances)
    {
        m_lineStarts.push_back(0);
        for (std::size_t i = 0; i < m_text.size(); ++i) {
            if (m_text[i] == '\n') {
                m_lineStarts.push_back(i + 1);
            }
        }
    }

    Alignment Read(std::string const& name, TunnelMetreReference const& reference);
    std::vector<std::string> Names();

private:
    // Line (from 1) of a byte offset into the text, from the table of line
    // starts: a binary search, so that reading stays linear in the file size.
    int LineOf(std::ptrdiff_t offset) const
    {
        if (offset < 0) {
            return 0;
        }
        auto const it = std::upper_bound(m_lineStarts.begin(), m_lineStarts.end(), static_cast<std::size_t>(offset));
        return static_cast<int>(it - m_lineStarts.begin());
    }
    int LineOf(pugi::xml_node node) const { return LineOf(node.offset_debug()); }

    std::string Where(pugi::xml_node node) const
    {
        return m_source + ":" + std::to_string(LineOf(node)) + ": <" + LocalName(node) + ">";
    }

    [[noreturn]] void Fail(pugi::xml_node node, std::string const& message) const
    {
        throw LandXmlError(Where(node) + ": " + message);
    }

    void Warn(pugi::xml_node node, std::string const& message) { m_warnings.push_back(Where(node) + ": " + message); }

    // A number; INF and -INF are accepted (as infinities) only when allowInfinite.
    double Number(pugi::xml_node node, char const* what, char const* text, bool allowInfinite) const
    {
        std::string s(text);
        s.erase(0, s.find_first_not_of(" \t\r\n"));
        s.erase(s.find_last_not_of(" \t\r\n") + 1);
        if (s == "INF" || s == "+INF" || s == "-INF") {
            if (!allowInfinite) {
                Fail(node, std::string(what) + " must be finite, not '" + s + "'");
            }
            return s[0] == '-' ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
        }
        char* end = nullptr;
        errno = 0;
        double const v = std::strtod(s.c_str(), &end);
        if (s.empty() || end != s.c_str() + s.size() || errno == ERANGE || !std::isfinite(v)) {
            Fail(node, std::string(what) + " is not a number: '" + s + "'");
        }
        return v;
    }

    bool Has(pugi::xml_node node, char const* attribute) const { return !node.attribute(attribute).empty(); }

    double Attribute(pugi::xml_node node, char const* attribute, bool allowInfinite = false) const
    {
        pugi::xml_attribute a = node.attribute(attribute);
        if (a.empty()) {
            Fail(node, std::string("attribute '") + attribute + "' is missing");
        }
        return m_scale * Number(node, (std::string("attribute '") + attribute + "'").c_str(), a.value(), allowInfinite);
    }

    // An angle attribute in the file's angular unit, converted to radians.
    double AngleAttribute(pugi::xml_node node, char const* attribute) const
    {
        pugi::xml_attribute a = node.attribute(attribute);
        if (a.empty()) {
            Fail(node, std::string("attribute '") + attribute + "' is missing");
        }
        return ToRadians(node, std::string("attribute '") + attribute + "'", a.value(), m_angleUnit);
    }

    // The one conversion of an angle written in a unit of <Units> to radians.
    // Degrees, minutes and seconds are taken from the digits as written, so
    // that 45.3025 is exactly 45°30'25"; minutes or seconds of 60 or more are
    // refused.
    double ToRadians(pugi::xml_node node, std::string const& what, char const* text, AngleUnit unit) const
    {
        double const v = Number(node, what.c_str(), text, false);
        switch (unit) {
        case AngleUnit::Radians:
            return v;
        case AngleUnit::Grads:
            return v * (Pi / 200.0);
        case AngleUnit::DecimalDegrees:
            return v * (Pi / 180.0);
        case AngleUnit::DegreesMinutesSeconds:
            break;
        }
        std::string s(text);
        s.erase(0, s.find_first_not_of(" \t\r\n"));
        s.erase(s.find_last_not_of(" \t\r\n") + 1);
        double sign = 1.0;
        std::size_t k = 0;
        if (k < s.size() && (s[k] == '-' || s[k] == '+')) {
            sign = s[k] == '-' ? -1.0 : 1.0;
            ++k;
        }
        std::size_t const dot = s.find('.', k);
        std::string const degrees = s.substr(k, dot == std::string::npos ? std::string::npos : dot - k);
        std::string digits = dot == std::string::npos ? std::string() : s.substr(dot + 1);
        auto allDigits = [](std::string const& t) {
            return t.find_first_not_of("0123456789") == std::string::npos;
        };
        if ((degrees.empty() && digits.empty()) || !allDigits(degrees) || !allDigits(digits)) {
            Fail(node, what + " is not an angle in degrees, minutes and seconds (dd.mmss): '" + s + "'");
        }
        digits.resize(std::max<std::size_t>(digits.size(), 4), '0');
        double const minutes = std::atof(digits.substr(0, 2).c_str());
        double const seconds = std::atof((digits.substr(2, 2) + "." + digits.substr(4)).c_str());
        if (minutes >= 60.0 || seconds >= 60.0) {
            Fail(node, what + " '" + s + "' has minutes or seconds of 60 or more (dd.mmss)");
        }
        double const deg = degrees.empty() ? 0.0 : std::atof(degrees.c_str());
        return sign * (deg + minutes / 60.0 + seconds / 3600.0) * (Pi / 180.0);
    }

    // Sorts the difference between a value the file states beside the
    // geometry and the value the geometry gives: silent, a warning, or a
    // refusal "what stated differs by ... (tolerance, limit)".
    void CheckStatedValue(pugi::xml_node node, StatedMeasure measure, double difference, std::string const& what)
    {
        Finding const f = CheckStated(measure, difference, m_tolerances);
        if (f.severity == Severity::Closed) {
            return;
        }
        std::string const message = what + " " + f.message;
        if (f.severity == Severity::Refused) {
            Fail(node, message);
        }
        Warn(node, message);
    }
    void CheckCurveStatements(pugi::xml_node node, CACoordinate start, CACoordinate end, double radius,
                              double length, bool cw);

    // From least to most numbers of a node's text ("northing easting
    // [elevation]" or "station height"); more or fewer is an error.
    std::vector<double> Numbers(pugi::xml_node node, std::size_t least, std::size_t most, char const* form) const
    {
        if (!node.attribute("pntRef").empty()) {
            Fail(node, "point references (pntRef) are not supported; write the coordinates");
        }
        std::istringstream in(node.child_value());
        std::vector<double> values;
        std::string word;
        while (in >> word) {
            values.push_back(m_scale * Number(node, "coordinate", word.c_str(), false));
        }
        if (values.size() < least || values.size() > most) {
            Fail(node, "expected " + std::to_string(least) + (most > least ? " or " + std::to_string(most) : "") +
                           " numbers (" + form + "), found " + std::to_string(values.size()));
        }
        return values;
    }

    CACoordinate Point(pugi::xml_node element, char const* name) const
    {
        pugi::xml_node node = Child(element, name);
        if (!node) {
            Fail(element, std::string("point <") + name + "> is missing");
        }
        std::vector<double> const v = Numbers(node, 2, 3, "northing easting [elevation]");
        return CACoordinate(v[1], v[0]);  // northing easting
    }

    bool Clockwise(pugi::xml_node node) const
    {
        pugi::xml_attribute a = node.attribute("rot");
        if (a.empty()) {
            Fail(node, "attribute 'rot' is missing");
        }
        std::string const rot = a.value();
        if (rot == "cw") {
            return true;
        }
        if (rot == "ccw") {
            return false;
        }
        Fail(node, "attribute 'rot' must be cw or ccw, not '" + rot + "'");
    }

    HorizontalElement ReadLine(pugi::xml_node node, double station);
    HorizontalElement ReadCurve(pugi::xml_node node, double station);
    HorizontalElement ReadSpiral(pugi::xml_node node, double station);
    VerticalProfile ReadProfile(pugi::xml_node profAlign, AlignmentSource* source);
    StationEquations ReadEquations(pugi::xml_node alignment);
    void ReadUnits(pugi::xml_node root, AlignmentSource* source);
    CantProfile ReadCant(pugi::xml_node alignment);

    pugi::xml_node Root(pugi::xml_document& doc);

    std::string const& m_text;
    std::vector<std::size_t> m_lineStarts;  // offset of the first character of each line
    std::string m_source;
    std::vector<std::string> m_warnings;
    Tolerances m_tolerances;
    double m_scale = 1.0;  // metres per length unit of the file
    AngleUnit m_angleUnit = AngleUnit::Radians;  // of angles (a curve's delta)
};

HorizontalElement Reader::ReadLine(pugi::xml_node node, double station)
{
    CACoordinate const start = Point(node, "Start");
    CACoordinate const end = Point(node, "End");
    double const chord = (end - start).Length().Double();
    double const length = Has(node, "length") ? Attribute(node, "length") : chord;
    return HorizontalElement::Line(station, length, start, end);
}

HorizontalElement Reader::ReadCurve(pugi::xml_node node, double station)
{
    bool const cw = Clockwise(node);
    CACoordinate const start = Point(node, "Start");
    CACoordinate const end = Point(node, "End");
    auto chordTooLong = [&](double r) {
        return (end - start).Length().Double() > 2.0 * r + m_tolerances.position;
    };
    pugi::xml_node centreNode = Child(node, "Center");
    double radius = 0.0;
    double length = 0.0;
    bool lengthKnown = false;
    bool const radiusGiven = Has(node, "radius");
    if (radiusGiven) {
        double const written = Attribute(node, "radius", true);
        if (written == 0.0) {
            Fail(node, "a radius of 0 is not a curve; write a <Line> for a straight");
        }
        if (written < 0.0 && cw) {
            Warn(node, "the radius is written negative with rot=\"cw\"; the curve bends right as rot says");
        }
        radius = std::fabs(written);
        if (radius >= m_tolerances.straightRadius) {
            Warn(node, "a radius of " + std::string(node.attribute("radius").value()) +
                           " is a straight; the curve is read as a line");
            return ReadLine(node, station);
        }
    }
    if (centreNode) {
        CACoordinate const centre = Point(node, "Center");
        double const toStart = (start - centre).Length().Double();
        double const toEnd = (end - centre).Length().Double();
        if (!radiusGiven) {
            radius = toStart;
        }
        // The centre must lie at the radius from both ends.
        double const miss = std::max(std::fabs(toStart - radius), std::fabs(toEnd - radius));
        Severity const severity = Classify(miss, m_tolerances.position, m_tolerances.positionLimit);
        if (severity != Severity::Closed) {
            std::ostringstream msg;
            msg.precision(1);
            msg << std::fixed << "the centre lies " << miss * 1000.0
                << " mm off the radius from the start or the end; check the radius and the <Center> point";
            if (severity == Severity::Refused) {
                Fail(node, msg.str());
            }
            Warn(node, msg.str());
        }
        // Angle swept from the start radius to the end radius in the turning sense.
        double const as = (start - centre).Azimuth().Double();
        double const ae = (end - centre).Azimuth().Double();
        double const swept = zellib::NormalizeAngle(cw ? ae - as : as - ae);
        length = radius * swept;
        lengthKnown = true;
    }
    if (!(radius > 0.0)) {
        Fail(node, "needs a radius (attribute 'radius' or a <Center> point)");
    }
    if (Has(node, "length")) {
        double const given = Attribute(node, "length");
        if (lengthKnown && std::fabs(given - length) > CurveLengthTolerance) {
            std::ostringstream msg;
            msg << "length " << given << " differs from the arc through its points (" << length << ") by "
                << std::fabs(given - length) << " m";
            Warn(node, msg.str());
        }
        length = given;
    } else if (!lengthKnown) {
        if (chordTooLong(radius)) {
            Fail(node, "the chord between start and end is longer than the diameter; check the radius");
        }
        double const chord = (end - start).Length().Double();
        length = 2.0 * radius * std::asin(std::min(1.0, chord / (2.0 * radius)));
    }
    CheckCurveStatements(node, start, end, radius, length, cw);
    return HorizontalElement::Arc(station, length, start, end, cw ? radius : -radius);
}

// What a <Curve> states beside its points, radius and length, checked against
// the arc they make: with the turn D = length / radius,
//   delta     D (in the file's angular unit; its sign is ignored)
//   chord     the distance between <Start> and <End>
//   tangent   R tan(D/2), the distance from either end to the PI
//   external  R (1 / cos(D/2) - 1), from the PI to the middle of the arc
//   midOrd    R (1 - cos(D/2)), from the middle of the chord to the arc
//   <PI>      the intersection of the tangents at the two ends: from the start
//             along the start tangent (the chord's direction turned back by
//             D/2) by the tangent length
// The tangents of an arc of half a circle or more do not meet in front of it,
// so tangent, external and <PI> are checked only for D < pi.
void Reader::CheckCurveStatements(pugi::xml_node node, CACoordinate start, CACoordinate end, double radius,
                                  double length, bool cw)
{
    double const turn = length / radius;
    double const half = turn / 2.0;
    auto metres = [](double v) {
        char buffer[48];
        std::snprintf(buffer, sizeof buffer, "%.4f m", v);
        return std::string(buffer);
    };
    auto lengthCheck = [&](char const* attribute, double expected, char const* meaning) {
        if (!Has(node, attribute)) {
            return;
        }
        double const stated = Attribute(node, attribute);
        CheckStatedValue(node, StatedMeasure::Length, stated - expected,
                         std::string(attribute) + " " + metres(stated) + ", " + meaning + " " + metres(expected) +
                             ":");
    };
    if (Has(node, "delta")) {
        double const stated = std::fabs(AngleAttribute(node, "delta"));
        char buffer[200];
        std::snprintf(buffer, sizeof buffer, "delta %s (%.6f rad), the arc's turn length / radius %.6f rad:",
                      node.attribute("delta").value(), stated, turn);
        CheckStatedValue(node, StatedMeasure::Angle, stated - turn, buffer);
    }
    lengthCheck("chord", (end - start).Length().Double(), "the distance between <Start> and <End>");
    lengthCheck("midOrd", radius * (1.0 - std::cos(half)), "the arc's middle ordinate R (1 - cos(D/2))");
    if (!(turn < Pi)) {
        return;
    }
    lengthCheck("tangent", radius * std::tan(half), "the arc's tangent length R tan(D/2)");
    lengthCheck("external", radius * (1.0 / std::cos(half) - 1.0), "the arc's external distance R (sec(D/2) - 1)");
    if (Child(node, "PI")) {
        CACoordinate const pi = Point(node, "PI");
        double const chordAzimuth = (end - start).Azimuth().Double();
        double const a = cw ? chordAzimuth - half : chordAzimuth + half;
        double const t = radius * std::tan(half);
        double const east = start.East().Double() + t * std::sin(a);
        double const north = start.North().Double() + t * std::cos(a);
        double const miss = std::hypot(pi.East().Double() - east, pi.North().Double() - north);
        char buffer[200];
        std::snprintf(buffer, sizeof buffer,
                      "<PI> %.4f %.4f (northing easting), the intersection of the end tangents %.4f %.4f:",
                      pi.North().Double(), pi.East().Double(), north, east);
        CheckStatedValue(node, StatedMeasure::Length, miss, buffer);
    }
}

HorizontalElement Reader::ReadSpiral(pugi::xml_node node, double station)
{
    double const length = Attribute(node, "length");
    double const rs = Attribute(node, "radiusStart", true);
    double const re = Attribute(node, "radiusEnd", true);
    bool const cw = Clockwise(node);
    pugi::xml_attribute typeAttr = node.attribute("spiType");
    if (typeAttr.empty()) {
        Fail(node, "attribute 'spiType' is missing");
    }
    std::string const spiType = typeAttr.value();
    CACoordinate const start = Point(node, "Start");
    CACoordinate const end = Point(node, "End");
    double const sign = cw ? 1.0 : -1.0;
    // INF and radii of straightRadius or more (1E+300 in some files) are a straight end.
    double const straight = m_tolerances.straightRadius;
    auto signedRadius = [sign, straight](double r) { return std::fabs(r) >= straight ? 0.0 : sign * std::fabs(r); };
    double const radiusStart = signedRadius(rs);
    double const radiusEnd = signedRadius(re);
    if (rs == 0.0 || re == 0.0) {
        Fail(node, "a radius of 0 is not a curve; write INF for a straight end");
    }
    SpiralKind const* kind = nullptr;
    for (SpiralKind const& k : SpiralKinds) {
        if (spiType == k.name) {
            kind = &k;
        }
    }
    if (kind == nullptr || kind->curve == SpiralCurve::Refused) {
        std::string list;
        for (SpiralKind const& k : SpiralKinds) {
            if (k.curve != SpiralCurve::Refused) {
                list += (list.empty() ? "" : ", ") + std::string(k.name);
            }
        }
        std::string const why = kind == nullptr ? std::string() : std::string(": ") + kind->refusal;
        Fail(node, "spiral type '" + spiType + "' is not supported" + why + " (supported: " + list + ")");
    }
    if (radiusStart == radiusEnd) {
        // Equal radii at both ends: no transition, an arc (or a straight).
        if (radiusStart == 0.0) {
            return HorizontalElement::Line(station, length, start, end);
        }
        return HorizontalElement::Arc(station, length, start, end, radiusStart);
    }
    bool const straightEnd = radiusStart == 0.0 || radiusEnd == 0.0;
    switch (kind->curve) {
    case SpiralCurve::Clothoid:
        return HorizontalElement::Transition(ElementType::Clothoid, station, length, start, end, radiusStart,
                                             radiusEnd);
    case SpiralCurve::CubicParabola:
        return HorizontalElement::Transition(ElementType::CubicParabola, station, length, start, end, radiusStart,
                                             radiusEnd);
    case SpiralCurve::Cosine:
        if (straightEnd) {
            return HorizontalElement::Transition(ElementType::HalfSine, station, length, start, end, radiusStart,
                                                 radiusEnd);
        }
        break;
    case SpiralCurve::Shaped:
    case SpiralCurve::Refused:
        break;
    }
    try {
        return HorizontalElement::Shaped(kind->shape, station, length, start, end, radiusStart, radiusEnd);
    } catch (DataError const& e) {
        Fail(node, e.what());
    }
}

VerticalProfile Reader::ReadProfile(pugi::xml_node profAlign, AlignmentSource* source)
{
    struct Raw {
        pugi::xml_node node;
        ProfilePoint point;
        double length;
    };
    std::vector<Raw> raw;
    for (pugi::xml_node c = profAlign.first_child(); c; c = c.next_sibling()) {
        if (c.type() != pugi::node_element) {
            continue;
        }
        std::string const kind = LocalName(c);
        if (kind == "Feature") {
            continue;
        }
        Raw r{c, ProfilePoint{}, 0.0};
        std::vector<double> const v = Numbers(c, 2, 2, "station height");
        r.point.station = v[0];
        r.point.height = v[1];
        if (kind == "PVI") {
        } else if (kind == "CircCurve") {
            r.point.curve = VerticalCurveType::Circle;
            if (Has(c, "radius")) {
                r.point.radius = std::fabs(Attribute(c, "radius"));
            } else {
                r.length = Attribute(c, "length");
            }
        } else if (kind == "ParaCurve") {
            r.point.curve = VerticalCurveType::Parabola;
            r.length = Attribute(c, "length");
        } else if (kind == "UnsymParaCurve") {
            // Its text is the PVI; lengthIn and lengthOut the horizontal
            // extent of the curve before and after it.
            r.point.curve = VerticalCurveType::UnsymParabola;
            r.point.lengthIn = Attribute(c, "lengthIn");
            r.point.lengthOut = Attribute(c, "lengthOut");
            if (!(r.point.lengthIn > 0.0) || !(r.point.lengthOut > 0.0)) {
                Fail(c, "lengthIn and lengthOut must be positive");
            }
        } else {
            Fail(c, "profile element '" + kind +
                        "' is not supported (supported: PVI, CircCurve, ParaCurve, UnsymParaCurve)");
        }
        raw.push_back(r);
    }
    if (raw.size() < 2) {
        Fail(profAlign, "a profile needs at least two PVIs");
    }
    for (std::size_t i = 0; i < raw.size(); ++i) {
        Raw& r = raw[i];
        if (i > 0 && !(r.point.station > raw[i - 1].point.station)) {
            Fail(r.node, "stations must increase along the profile");
        }
        if (r.point.curve != VerticalCurveType::None && (i == 0 || i + 1 == raw.size())) {
            Fail(r.node, "the first and the last point of a profile cannot carry a vertical curve");
        }
        if (r.point.curve == VerticalCurveType::None || r.point.curve == VerticalCurveType::UnsymParabola ||
            r.point.radius > 0.0) {
            continue;
        }
        if (i == 0 || i + 1 == raw.size()) {
            Fail(r.node, "the first and the last point of a profile cannot carry a vertical curve");
        }
        ProfilePoint const& a = raw[i - 1].point;
        ProfilePoint const& b = raw[i + 1].point;
        double const g1 = (r.point.height - a.height) / (r.point.station - a.station);
        double const g2 = (b.height - r.point.height) / (b.station - r.point.station);
        if (r.point.curve == VerticalCurveType::Parabola) {
            zelmath::CALength radius;
            if (!zelmath::CMathLongProfCurve::calcRadiusFromLengthOfParabol(
                    CACoordinate(a.station, a.height), CACoordinate(r.point.station, r.point.height),
                    CACoordinate(b.station, b.height), zelmath::CALength(r.length), radius)) {
                Fail(r.node, "cannot turn the parabola's length into a radius");
            }
            r.point.radius = std::fabs(radius.Double());
        } else {
            // Arc length over the angle between the grade lines.
            double const angle = std::fabs(std::atan(g2) - std::atan(g1));
            r.point.radius = angle > 0.0 ? r.length / angle : 0.0;
        }
        if (!std::isfinite(r.point.radius) || !(r.point.radius > 0.0)) {
            Fail(r.node, "the vertical curve has no finite radius (equal grades on both sides?)");
        }
    }
    std::vector<ProfilePoint> points;
    source->profileLine = LineOf(profAlign);
    for (Raw const& r : raw) {
        points.push_back(r.point);
        source->profileLines.push_back(LineOf(r.node));
    }
    try {
        // Overlaps up to the hard limit are built; Validate sorts them.
        return VerticalProfile(points, m_tolerances.positionLimit);
    } catch (DataError const& e) {
        Fail(profAlign, e.what());
    }
}

// StaEquation children of an Alignment: staInternal and staAhead are
// required; staBack may be missing or NaN (the first kilometre post); desc
// names the region (the kilometre).
StationEquations Reader::ReadEquations(pugi::xml_node alignment)
{
    std::vector<StationEquation> equations;
    std::vector<pugi::xml_node> nodes;
    for (pugi::xml_node c = alignment.first_child(); c; c = c.next_sibling()) {
        if (c.type() != pugi::node_element || std::strcmp(LocalName(c), "StaEquation") != 0) {
            continue;
        }
        StationEquation e;
        e.internal = Attribute(c, "staInternal");
        e.ahead = Attribute(c, "staAhead");
        pugi::xml_attribute back = c.attribute("staBack");
        std::string const backText = back.value();
        if (!back.empty() && backText != "NaN" && backText != "nan") {
            e.back = Number(c, "attribute 'staBack'", back.value(), false);
        }
        e.region = c.attribute("desc").value();
        equations.push_back(e);
        nodes.push_back(c);
    }
    // Files list them by station; keep that order but refuse a repeat.
    std::vector<std::size_t> order(equations.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        order[i] = i;
    }
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return equations[a].internal < equations[b].internal; });
    std::vector<StationEquation> sorted;
    for (std::size_t k = 0; k < order.size(); ++k) {
        if (k > 0 && equations[order[k]].internal == equations[order[k - 1]].internal) {
            Fail(nodes[order[k]], "a second station equation at internal station " +
                                      std::string(nodes[order[k]].attribute("staInternal").value()));
        }
        sorted.push_back(equations[order[k]]);
    }
    return StationEquations(std::move(sorted));
}

// The Cant of an Alignment: CantStation rows (station, appliedCant, the
// bending sense in curvature, the run-out shape in transitionType), the gauge
// and the rotation point. Units: see CantMillimetreThreshold.
CantProfile Reader::ReadCant(pugi::xml_node alignment)
{
    pugi::xml_node cant = Child(alignment, "Cant");
    if (!cant) {
        return CantProfile();
    }
    std::vector<CantStation> rows;
    std::vector<pugi::xml_node> nodes;
    double largest = 0.0;
    for (pugi::xml_node c = cant.first_child(); c; c = c.next_sibling()) {
        if (c.type() != pugi::node_element || std::strcmp(LocalName(c), "CantStation") != 0) {
            continue;
        }
        CantStation row;
        row.station = Attribute(c, "station");
        row.cant = std::fabs(Attribute(c, "appliedCant"));
        largest = std::max(largest, row.cant);
        std::string const curvature = c.attribute("curvature").value();
        if (curvature == "ccw") {
            row.cant = -row.cant;
        } else if (!curvature.empty() && curvature != "cw") {
            Fail(c, "attribute 'curvature' must be cw or ccw, not '" + curvature + "'");
        }
        std::string const shape = c.attribute("transitionType").value();
        if (shape.empty() || shape == "linear" || shape == "clothoid") {
            row.shape = CantShape::Linear;
        } else if (shape == "bloss") {
            row.shape = CantShape::Bloss;
        } else if (shape == "cosine" || shape == "sineHalfWave") {
            row.shape = CantShape::Cosine;
        } else if (shape == "biquadratic" || shape == "biquadraticParabola") {
            row.shape = CantShape::Biquadratic;
        } else {
            Fail(c, "cant run-out '" + shape +
                        "' is not supported (supported: linear, clothoid, bloss, cosine, sineHalfWave, "
                        "biquadratic, biquadraticParabola)");
        }
        if (!rows.empty() && !(row.station > rows.back().station)) {
            Fail(c, "cant stations must increase");
        }
        rows.push_back(row);
        nodes.push_back(c);
    }
    if (largest > CantMillimetreThreshold) {
        for (CantStation& row : rows) {
            row.cant /= 1000.0;
        }
    }
    double gauge = std::numeric_limits<double>::quiet_NaN();
    if (Has(cant, "gauge")) {
        gauge = Attribute(cant, "gauge");
        if (gauge > GaugeMillimetreThreshold) {
            gauge /= 1000.0;
        }
        if (!(gauge > 0.0)) {
            Fail(cant, "the gauge must be positive");
        }
    }
    return CantProfile(std::move(rows), gauge, cant.attribute("rotationPoint").value());
}

// <Units>: the linear unit of <Metric> or <Imperial> scales every length the
// file writes (coordinates, stations, lengths, radii, cant) to metres; the
// angular unit converts every angle the reader uses (a curve's delta) to
// radians. Directions (dir) follow different conventions between producers and
// are never used, but their unit must be one LandXML knows. An unknown unit is
// refused with the supported list. The units and the <CoordinateSystem> are
// kept in the source for the output's metadata.
void Reader::ReadUnits(pugi::xml_node root, AlignmentSource* source)
{
    source->linearUnit = "meter";
    source->angularUnit = "radians";
    source->directionUnit = "radians";
    auto angular = [this](pugi::xml_node system, char const* attribute, std::string* name) {
        pugi::xml_attribute a = system.attribute(attribute);
        if (a.empty()) {
            return AngleUnit::Radians;
        }
        std::string list;
        for (AngularUnit const& u : AngularUnits) {
            if (a.value() == std::string(u.name)) {
                *name = u.name;
                return u.unit;
            }
            list += list.empty() ? u.name : std::string(", ") + u.name;
        }
        Fail(system, std::string(attribute) + " '" + a.value() + "' is not supported (supported: " + list + ")");
    };
    if (pugi::xml_node units = Child(root, "Units")) {
        for (pugi::xml_node system = units.first_child(); system; system = system.next_sibling()) {
            if (system.type() != pugi::node_element ||
                (std::strcmp(LocalName(system), "Metric") != 0 && std::strcmp(LocalName(system), "Imperial") != 0)) {
                continue;
            }
            if (!system.attribute("linearUnit").empty()) {
                std::string const name = system.attribute("linearUnit").value();
                bool known = false;
                for (LinearUnit const& u : LinearUnits) {
                    if (name == u.name) {
                        m_scale = u.metres;
                        known = true;
                    }
                }
                if (!known) {
                    std::string list;
                    for (LinearUnit const& u : LinearUnits) {
                        list += list.empty() ? u.name : std::string(", ") + u.name;
                    }
                    Fail(system, "linear unit '" + name + "' is not supported (supported: " + list + ")");
                }
                source->linearUnit = name;
            }
            m_angleUnit = angular(system, "angularUnit", &source->angularUnit);
            angular(system, "directionUnit", &source->directionUnit);
            break;
        }
    }
    if (pugi::xml_node crs = Child(root, "CoordinateSystem")) {
        std::string const epsg = crs.attribute("epsgCode").value();
        source->coordinateSystem = epsg.empty() ? crs.attribute("name").value() : "EPSG:" + epsg;
    }
}

pugi::xml_node Reader::Root(pugi::xml_document& doc)
{
    pugi::xml_parse_result const parsed =
        doc.load_buffer(m_text.data(), m_text.size(), pugi::parse_default, pugi::encoding_utf8);
    if (parsed.status == pugi::status_out_of_memory) {
        throw LandXmlError(m_source + ": out of memory while reading the file");
    }
    if (!parsed) {
        throw LandXmlError(m_source + ":" + std::to_string(LineOf(parsed.offset)) +
                           ": not well-formed XML: " + parsed.description());
    }
    pugi::xml_node root = doc.document_element();
    if (!root || std::strcmp(LocalName(root), "LandXML") != 0) {
        throw LandXmlError(m_source + ":" + std::to_string(LineOf(root)) + ": the root element is not <LandXML>");
    }
    return root;
}

std::vector<std::string> Reader::Names()
{
    pugi::xml_document doc;
    pugi::xml_node root = Root(doc);
    std::vector<std::string> names;
    for (pugi::xml_node group = root.first_child(); group; group = group.next_sibling()) {
        if (group.type() != pugi::node_element || std::strcmp(LocalName(group), "Alignments") != 0) {
            continue;
        }
        for (pugi::xml_node a = group.first_child(); a; a = a.next_sibling()) {
            if (a.type() == pugi::node_element && std::strcmp(LocalName(a), "Alignment") == 0) {
                names.emplace_back(a.attribute("name").value());
            }
        }
    }
    return names;
}

Alignment Reader::Read(std::string const& name, TunnelMetreReference const& reference)
{
    pugi::xml_document doc;
    pugi::xml_node root = Root(doc);
    pugi::xml_node alignment;
    for (pugi::xml_node group = root.first_child(); group && !alignment; group = group.next_sibling()) {
        if (group.type() != pugi::node_element || std::strcmp(LocalName(group), "Alignments") != 0) {
            continue;
        }
        for (pugi::xml_node a = group.first_child(); a; a = a.next_sibling()) {
            if (a.type() == pugi::node_element && std::strcmp(LocalName(a), "Alignment") == 0 &&
                (name.empty() || name == a.attribute("name").value())) {
                alignment = a;
                break;
            }
        }
    }
    if (!alignment) {
        throw LandXmlError(m_source + ":" + std::to_string(LineOf(root)) + ": <LandXML>: no <Alignment>" +
                           (name.empty() ? std::string() : " named '" + name + "'") + " in <Alignments>");
    }
    std::string const alignmentName = alignment.attribute("name").value();
    HorizontalAlignment horizontal;
    VerticalProfile profile;
    AlignmentSource source;
    source.path = m_source;
    ReadUnits(root, &source);
    pugi::xml_node geometry = Child(alignment, "CoordGeom");
    if (!geometry) {
        Fail(alignment, "<CoordGeom> is missing");
    }
    // Stations run continuously: the alignment's start station plus the
    // lengths of the elements before. The stations the elements state are kept
    // for the check in Validate, never used to place them.
    double station = 0.0;
    bool stationKnown = false;
    if (Has(alignment, "staStart")) {
        station = Attribute(alignment, "staStart");
        stationKnown = true;
    }
    StationEquations const equations = ReadEquations(alignment);
    std::vector<HorizontalElement> elements;
    std::vector<pugi::xml_node> nodes;
    for (pugi::xml_node c = geometry.first_child(); c; c = c.next_sibling()) {
        if (c.type() != pugi::node_element) {
            continue;
        }
        std::string const kind = LocalName(c);
        if (kind == "Feature") {
            continue;
        }
        double const stated =
            Has(c, "staStart") ? Attribute(c, "staStart") : std::numeric_limits<double>::quiet_NaN();
        if (!stationKnown && !std::isnan(stated)) {
            station = stated;  // no alignment start station: the first element's
        }
        stationKnown = true;
        HorizontalElement element;
        if (kind == "Line") {
            element = ReadLine(c, station);
        } else if (kind == "Curve") {
            element = ReadCurve(c, station);
        } else if (kind == "Spiral") {
            element = ReadSpiral(c, station);
        } else {
            Fail(c, "element '" + kind + "' is not supported (supported: Line, Curve, Spiral)");
        }
        double const length = element.Length();
        if (length >= 0.0 && length <= m_tolerances.zeroLength) {
            std::ostringstream msg;
            msg << "an element of length " << length << " m carries no geometry; skipped";
            Warn(c, msg.str());
            continue;
        }
        try {
            HorizontalAlignment single(std::vector<HorizontalElement>{element});
        } catch (DataError const& e) {
            std::string message = e.what();
            std::string const prefix = "element 0 ";
            if (message.compare(0, prefix.size(), prefix) == 0) {
                message.erase(0, prefix.size());
            }
            Fail(c, message);
        }
        elements.push_back(element);
        nodes.push_back(c);
        // An element station stated as a displayed station (after an
        // equation) agrees with the alignment: nothing to check.
        double const displayed = equations.ToDisplayed(element.StartStation()).value;
        bool const asDisplayed = !equations.Empty() && std::fabs(stated - displayed) <= m_tolerances.station;
        source.statedStarts.push_back(asDisplayed ? std::numeric_limits<double>::quiet_NaN() : stated);
        station = element.EndStation();
    }
    if (elements.empty()) {
        Fail(geometry, "the alignment has no elements");
    }
    try {
        horizontal = HorizontalAlignment(elements);
    } catch (DataError const& e) {
        Fail(geometry, e.what());
    }
    for (pugi::xml_node node : nodes) {
        source.elementLines.push_back(LineOf(node));
        source.elementTags.emplace_back(LocalName(node));
    }
    if (pugi::xml_node profileNode = Child(alignment, "Profile")) {
        if (pugi::xml_node profAlign = Child(profileNode, "ProfAlign")) {
            profile = ReadProfile(profAlign, &source);
        }
    }
    source.tolerances = m_tolerances;
    source.warnings = m_warnings;
    try {
        return Alignment(alignmentName, std::move(horizontal), std::move(profile), reference, std::move(source),
                         equations, ReadCant(alignment));
    } catch (DataError const& e) {
        // The checks of the elements and the profile name their own place.
        std::string const message = e.what();
        if (message.compare(0, m_source.size() + 1, m_source + ":") == 0) {
            throw LandXmlError(message);
        }
        Fail(alignment, message);
    }
}

}  // namespace

Alignment ParseLandXml(std::string const& text, std::string const& sourceName, std::string const& name,
                       TunnelMetreReference const& reference, Tolerances const& tolerances)
{
    Reader reader(text, sourceName, tolerances);
    return reader.Read(name, reference);
}

std::vector<std::string> LandXmlAlignmentNames(std::string const& text, std::string const& sourceName)
{
    Reader reader(text, sourceName);
    return reader.Names();
}

std::vector<Alignment> ParseLandXmlAlignments(std::string const& text, std::string const& sourceName,
                                              TunnelMetreReference const& reference)
{
    std::vector<std::string> const names = LandXmlAlignmentNames(text, sourceName);
    if (names.empty()) {
        throw LandXmlError(sourceName + ": no <Alignment> in the file");
    }
    std::vector<Alignment> alignments;
    for (std::size_t i = 0; i < names.size(); ++i) {
        for (std::size_t k = 0; k < i; ++k) {
            if (names[k] == names[i]) {
                throw LandXmlError(sourceName + ": the alignment name '" + names[i] +
                                   "' occurs more than once; each alignment needs a name of its own");
            }
        }
        alignments.push_back(ParseLandXml(text, sourceName, names[i], reference));
    }
    return alignments;
}

std::string ReadTextFile(std::string const& path)
{
    std::FILE* f = path == "-" ? stdin : std::fopen(path.c_str(), "rb");
    std::string const name = path == "-" ? std::string("standard input") : path;
    if (f == nullptr) {
        throw IoError(name + ": cannot open the file: " + std::strerror(errno));
    }
    std::string text;
    char buffer[1 << 16];
    std::size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0) {
        text.append(buffer, n);
    }
    bool const failed = std::ferror(f) != 0;
    int const error = errno;
    if (f != stdin) {
        std::fclose(f);
    }
    if (failed) {
        throw IoError(name + ": cannot read the file: " + std::strerror(error));
    }
    return text;
}

Alignment ReadLandXml(std::string const& path, std::string const& name, TunnelMetreReference const& reference,
                      Tolerances const& tolerances)
{
    return ParseLandXml(ReadTextFile(path), path == "-" ? std::string("standard input") : path, name, reference,
                        tolerances);
}

}  // namespace zelalign
