// Transition curves given by their curvature along the length: closed-form
// direction, tabled Gauss-Legendre positions, bracketed Newton foot.
#include <zelalign/transition_curve.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include <zelalign/error.h>
#include <zellib/constants.h>

namespace zelalign {

namespace {

constexpr double Pi = zellib::CAPi;
constexpr double TwoPi = 2.0 * Pi;
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

// 8-point Gauss-Legendre rule on [-1, 1] (exact for polynomials of degree 15):
// nodes +-x[i], weights w[i].
constexpr double GaussNode[4] = {0.1834346424956498049394761, 0.5255324099163289858177390,
                                 0.7966664774136267395915539, 0.9602898564975362316835609};
constexpr double GaussWeight[4] = {0.3626837833783619829651504, 0.3137066458778872873379622,
                                   0.2223810344533744705443560, 0.1012285362903762591525314};

// Sub-intervals of the position table: at least MinIntervals, none longer than
// MaxIntervalLength metres nor turning by more than MaxIntervalTurn radians
// (the quadrature's error over a sub-interval falls with the 16th power of
// its turn: 0.05 rad keeps it far below 1e-12 m), at most MaxIntervals
// (a curve that would need more is no track geometry).
constexpr int MinIntervals = 8;
constexpr double MaxIntervalLength = 20.0;
constexpr double MaxIntervalTurn = 0.05;
constexpr int MaxIntervals = 1 << 14;

// A station outside the curve is continued by at most this many sub-interval
// steps beyond its ends (farther: NaN), so that no input makes a call slow.
constexpr double MaxContinuationSteps = 4096.0;

// The foot: at most MaxFootIterations safeguarded Newton steps in a bracket;
// the Newton divisor 1 - k r must stay above MinNewtonDivisor, else the step
// bisects. A bracket narrower than BracketWidth times (1 + L) ends the search.
constexpr int MaxFootIterations = 100;
constexpr double MinNewtonDivisor = 0.05;
constexpr double BracketWidth = 1e-14;

double Normalize(double a)
{
    double r = std::fmod(a, TwoPi);
    if (r < 0.0) {
        r += TwoPi;
    }
    return r >= TwoPi ? 0.0 : r;
}

double RadiusToCurvature(double r) { return r == 0.0 ? 0.0 : 1.0 / r; }

}  // namespace

char const* TransitionShapeName(TransitionShape shape)
{
    switch (shape) {
    case TransitionShape::Bloss:
        return "bloss";
    case TransitionShape::Biquadratic:
        return "biquadratic";
    case TransitionShape::Cosine:
        return "cosine";
    case TransitionShape::Sinusoid:
        return "sinusoid";
    }
    return "unknown";
}

double TransitionShapeFraction(TransitionShape shape, double t)
{
    switch (shape) {
    case TransitionShape::Bloss:
        return t * t * (3.0 - 2.0 * t);
    case TransitionShape::Biquadratic:
        return t <= 0.5 ? 2.0 * t * t : 1.0 - 2.0 * (1.0 - t) * (1.0 - t);
    case TransitionShape::Cosine:
        return (1.0 - std::cos(Pi * t)) / 2.0;
    case TransitionShape::Sinusoid:
        return t - std::sin(TwoPi * t) / TwoPi;
    }
    return NaN;
}

double TransitionShapeIntegral(TransitionShape shape, double t)
{
    switch (shape) {
    case TransitionShape::Bloss:
        return t * t * t * (1.0 - t / 2.0);
    case TransitionShape::Biquadratic:
        if (t <= 0.5) {
            return 2.0 * t * t * t / 3.0;
        } else {
            double const u = 1.0 - t;
            return t - 0.5 + 2.0 * u * u * u / 3.0;
        }
    case TransitionShape::Cosine:
        return t / 2.0 - std::sin(Pi * t) / (2.0 * Pi);
    case TransitionShape::Sinusoid: {
        // (1 - cos x) written as 2 sin^2(x / 2): no cancellation near t = 0.
        double const s = std::sin(Pi * t);
        return t * t / 2.0 - 2.0 * s * s / (4.0 * Pi * Pi);
    }
    }
    return NaN;
}

TransitionCurve::TransitionCurve(TransitionShape shape, double length, double startRadius, double endRadius,
                                 double startEast, double startNorth, double endEast, double endNorth)
    : m_shape(shape),
      m_length(length),
      m_ks(RadiusToCurvature(startRadius)),
      m_ke(RadiusToCurvature(endRadius)),
      m_startEast(startEast),
      m_startNorth(startNorth)
{
    if (!(length > 0.0) || !std::isfinite(length)) {
        throw DataError("a transition needs a positive, finite length");
    }
    for (double v : {startRadius, endRadius, startEast, startNorth, endEast, endNorth}) {
        if (!std::isfinite(v)) {
            throw DataError("a transition needs finite radii and end points");
        }
    }
    if (startRadius == endRadius) {
        throw DataError("a transition between equal radii is an arc or a straight");
    }
    double const turnBound = length * std::max(std::fabs(m_ks), std::fabs(m_ke));
    double const wanted = std::max({static_cast<double>(MinIntervals), std::ceil(length / MaxIntervalLength),
                                    std::ceil(turnBound / MaxIntervalTurn)});
    int n = wanted >= MaxIntervals ? MaxIntervals : static_cast<int>(wanted);
    n += n % 2;  // even: the middle of the curve is a node
    m_step = length / n;
    std::size_t const nodes = static_cast<std::size_t>(n) + 1;
    m_along.assign(nodes, 0.0);
    m_across.assign(nodes, 0.0);
    for (std::size_t i = 1; i < nodes; ++i) {
        double const a = m_step * static_cast<double>(i - 1);
        double const b = i + 1 == nodes ? length : m_step * static_cast<double>(i);
        double da = 0.0;
        double dc = 0.0;
        double const half = (b - a) / 2.0;
        double const mid = (a + b) / 2.0;
        for (int k = 0; k < 4; ++k) {
            for (double sign : {-1.0, 1.0}) {
                double const th = Turn(mid + sign * half * GaussNode[k]);
                da += GaussWeight[k] * std::cos(th);
                dc += GaussWeight[k] * std::sin(th);
            }
        }
        m_along[i] = m_along[i - 1] + da * half;
        m_across[i] = m_across[i - 1] + dc * half;
    }
    // Start direction from the chord: the chord of the curve makes the angle
    // atan2(across, along) to the right of the start tangent.
    double const chordAzimuth = std::atan2(endEast - startEast, endNorth - startNorth);
    if (endEast == startEast && endNorth == startNorth) {
        throw DataError("a transition needs distinct start and end points");
    }
    m_startAzimuth = Normalize(chordAzimuth - std::atan2(m_across.back(), m_along.back()));
    m_sinStart = std::sin(m_startAzimuth);
    m_cosStart = std::cos(m_startAzimuth);
    m_east.resize(nodes);
    m_north.resize(nodes);
    m_sinAz.resize(nodes);
    m_cosAz.resize(nodes);
    for (std::size_t i = 0; i < nodes; ++i) {
        ToWorld(m_along[i], m_across[i], &m_east[i], &m_north[i]);
        double const l = i + 1 == nodes ? length : m_step * static_cast<double>(i);
        double const az = m_startAzimuth + Turn(l);
        m_sinAz[i] = std::sin(az);
        m_cosAz[i] = std::cos(az);
    }
}

double TransitionCurve::Curvature(double l) const
{
    return m_ks + (m_ke - m_ks) * TransitionShapeFraction(m_shape, l / m_length);
}

double TransitionCurve::Turn(double l) const
{
    return m_ks * l + (m_ke - m_ks) * m_length * TransitionShapeIntegral(m_shape, l / m_length);
}

void TransitionCurve::ToWorld(double along, double across, double* east, double* north) const
{
    *east = m_startEast + along * m_sinStart + across * m_cosStart;
    *north = m_startNorth + along * m_cosStart - across * m_sinStart;
}

void TransitionCurve::Integrate(double l, double* along, double* across) const
{
    if (!std::isfinite(l)) {
        *along = NaN;
        *across = NaN;
        return;
    }
    std::size_t const last = m_along.size() - 1;
    // Node to start from, and the number of steps to l (one inside the curve).
    std::size_t node = 0;
    double steps = 1.0;
    if (l < 0.0) {
        steps = std::ceil(-l / m_step);
    } else if (l > m_length) {
        node = last;
        steps = std::ceil((l - m_length) / m_step);
    } else {
        node = std::min(static_cast<std::size_t>(l / m_step), last);
    }
    if (steps > MaxContinuationSteps) {
        *along = NaN;
        *across = NaN;
        return;
    }
    double const from = node == last ? m_length : m_step * static_cast<double>(node);
    double x = m_along[node];
    double y = m_across[node];
    int const count = std::max(1, static_cast<int>(steps));
    double const h = (l - from) / count;
    for (int s = 0; s < count; ++s) {
        double const half = h / 2.0;
        double const mid = from + h * s + half;
        double da = 0.0;
        double dc = 0.0;
        for (int k = 0; k < 4; ++k) {
            for (double sign : {-1.0, 1.0}) {
                double const th = Turn(mid + sign * half * GaussNode[k]);
                da += GaussWeight[k] * std::cos(th);
                dc += GaussWeight[k] * std::sin(th);
            }
        }
        x += da * half;
        y += dc * half;
    }
    *along = x;
    *across = y;
}

void TransitionCurve::LocalPoint(double l, double* along, double* across) const
{
    Integrate(l, along, across);
}

TransitionPoint TransitionCurve::Point(double l) const
{
    TransitionPoint p;
    p.length = l;
    double along = 0.0;
    double across = 0.0;
    Integrate(l, &along, &across);
    ToWorld(along, across, &p.east, &p.north);
    p.azimuth = std::isfinite(l) ? Normalize(m_startAzimuth + Turn(l)) : NaN;
    p.curvature = Curvature(l);
    return p;
}

TransitionFootStatus TransitionCurve::Foot(double east, double north, TransitionPoint* foot) const
{
    *foot = TransitionPoint{};
    foot->length = NaN;
    if (!std::isfinite(east) || !std::isfinite(north)) {
        return TransitionFootStatus::NoSolution;
    }
    std::size_t const last = m_along.size() - 1;
    auto nodeLength = [&](std::size_t i) { return i == last ? m_length : m_step * static_cast<double>(i); };
    // Component of the point along the tangent at node i.
    auto nodeAlong = [&](std::size_t i) {
        return (east - m_east[i]) * m_sinAz[i] + (north - m_north[i]) * m_cosAz[i];
    };
    double best = std::numeric_limits<double>::infinity();
    TransitionFootStatus status = TransitionFootStatus::NoSolution;
    double gPrev = nodeAlong(0);
    double const gFirst = gPrev;
    for (std::size_t i = 0; i < last; ++i) {
        double const gNext = nodeAlong(i + 1);
        if (!std::isfinite(gPrev) || !std::isfinite(gNext)) {
            return TransitionFootStatus::NoSolution;
        }
        if (gPrev >= 0.0 && gNext < 0.0) {
            // The point passes from ahead of the tangent to behind it: a
            // nearest point lies in between. Safeguarded Newton on
            // g(l) = (P - C(l)) . T(l), g'(l) = -(1 - k(l) r(l)).
            double a = nodeLength(i);
            double b = nodeLength(i + 1);
            double l = a + (b - a) * gPrev / (gPrev - gNext);
            TransitionPoint p;
            for (int it = 0; it < MaxFootIterations; ++it) {
                p = Point(l);
                double const de = east - p.east;
                double const dn = north - p.north;
                double const s = std::sin(p.azimuth);
                double const c = std::cos(p.azimuth);
                double const g = de * s + dn * c;
                double const r = de * c - dn * s;
                if (!std::isfinite(g)) {
                    break;
                }
                if (std::fabs(g) < FootTolerance) {
                    break;
                }
                if (g > 0.0) {
                    a = l;
                } else {
                    b = l;
                }
                if (b - a < BracketWidth * (1.0 + m_length)) {
                    break;
                }
                double const divisor = 1.0 - p.curvature * r;
                double next = divisor > MinNewtonDivisor ? l + g / divisor : (a + b) / 2.0;
                if (!(next > a && next < b)) {
                    next = (a + b) / 2.0;
                }
                l = next;
            }
            double const d = std::hypot(east - p.east, north - p.north);
            if (d < best) {
                best = d;
                *foot = p;
                status = TransitionFootStatus::OnCurve;
            }
        }
        gPrev = gNext;
    }
    double const gLast = gPrev;
    if (gLast == 0.0 && status == TransitionFootStatus::NoSolution) {
        *foot = Point(m_length);
        return TransitionFootStatus::OnCurve;
    }
    // The ends, where the point lies outside the tangents there.
    for (bool atStart : {true, false}) {
        double const g = atStart ? gFirst : gLast;
        if (atStart ? !(g < 0.0) : !(g > 0.0)) {
            continue;
        }
        std::size_t const i = atStart ? 0 : last;
        double const d = std::hypot(east - m_east[i], north - m_north[i]);
        if (d < best) {
            best = d;
            *foot = Point(nodeLength(i));
            status = atStart ? TransitionFootStatus::BeforeStart : TransitionFootStatus::BeyondEnd;
        }
    }
    return status;
}

}  // namespace zelalign
