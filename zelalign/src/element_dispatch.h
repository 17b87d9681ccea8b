// Hands one element of the chain to the geometry of its type: literally, to
// the zelmath element class, or through the element's prepared constants.
//
// The prepared path holds what the element classes recompute on every call
// -- a clothoid's origin, origin tangent and the sine and cosine of its turn
// into the world frame, an arc's centre, a straight's direction -- computed once
// by the same operations when the alignment is built. Per call it performs the
// remaining arithmetic of the element class in the same order, so its results
// are bit-identical to the literal call (tests/alignment/test_fast_path.cpp
// compares them over many elements, stations and measured points). Every
// element type is prepared; an element whose constants would stand in the
// largest double for an infinite one (a transition without span or without
// radius, a straight without length) is handed to its class literally.
#pragma once

#include <zelalign/horizontal.h>

namespace zelalign {
namespace detail {

// ---------------------------------------------------------------- literal

// The point at an alignment station of the element (station, coordinate,
// azimuth and radius are all written).
void ElementKleinpunkt(HorizontalElement const& element, double station, AlignmentPoint* out);

// The foot of a measured point on the element: the element class's result code
// (zelmath::TPointMathResult::Type); out is complete for OnElement.
int ElementLot(HorizontalElement const& element, zelmath::CACoordinate const& point, AlignmentPoint* out);

// True when the element classes handle a transition of this type between the
// element's two end radii (after classification).
bool TransitionSupported(HorizontalElement const& element);

// ---------------------------------------------------------------- prepared

// Constants of one element for the prepared path. Which members are used
// depends on the element's type; all lengths in metres, angles in radians.
struct PreparedElement {
    ElementType type = ElementType::Line;
    bool prepared = false;  // false: both operations go to the element class literally

    double startStation = 0.0;  // Start.Station
    double endStation = 0.0;    // End.Station
    double startEast = 0.0, startNorth = 0.0;  // Start.Coordinate
    double endEast = 0.0, endNorth = 0.0;      // End.Coordinate

    // Straight: chord vector, its length and azimuth, and the sine and cosine
    // of the turns into the straight's frame and back.
    double chordEast = 0.0, chordNorth = 0.0, chordLength = 0.0, chordAzimuth = 0.0;
    double intoCos = 0.0, intoSin = 0.0, backCos = 0.0, backSin = 0.0;

    // Arc: radius (signed) and its magnitude, centre, start radius vector,
    // azimuths from the centre to the ends, arc length of the right-turning
    // branch, and the sine and cosine of the turns into the end frames.
    double radius = 0.0, absRadius = 0.0;
    double centreEast = 0.0, centreNorth = 0.0;
    double radialEast = 0.0, radialNorth = 0.0;
    double startRadial = 0.0, endRadial = 0.0, arcLength = 0.0;
    double startCos = 0.0, startSin = 0.0, endCos = 0.0, endSin = 0.0;

    // Clothoid: parameter A, |A|, A^2 and 2 A^2 (as the element class forms them), kind (0..3), arc length of the origin
    // offset (type 2: at the start, 3: at the end), origin, origin tangent,
    // sine and cosine of the turn of the local frame into the world, bending
    // side, counting direction, radius at the origin, and the sine and cosine
    // of the turns into the start and end tangent frames of the foot search.
    double parameter = 0.0, absParameter = 0.0, parameterSquared = 0.0, twoParameterSquared = 0.0;
    int kind = 0;
    double originArc = 0.0;
    double originEast = 0.0, originNorth = 0.0, theta0 = 0.0;
    double turnCos = 0.0, turnSin = 0.0;
    bool right = false, countsBackwards = false;
    double radiusPreset = 0.0;
    double startTangentCos = 0.0, startTangentSin = 0.0, endTangentCos = 0.0, endTangentSin = 0.0;

    // Cubic parabola and half-sine: the element as its class evaluates it (a
    // cubic parabola from a curve into a straight is evaluated reversed, as a
    // straight into a curve: then its ends are swapped here), the azimuth of the
    // main tangent at the origin, the sine and cosine of the turn of the local
    // frame into the world (LocalToWorld of that azimuth), and of the turns
    // into the frames of the start and end tangents of the foot search
    // (WorldToLocal of their azimuths).
    bool reversed = false;
    double curveStartEast = 0.0, curveStartNorth = 0.0, curveEndEast = 0.0, curveEndNorth = 0.0;
    double originAzimuth = 0.0;
    double toWorldCos = 0.0, toWorldSin = 0.0;
    double intoStartCos = 0.0, intoStartSin = 0.0, intoEndCos = 0.0, intoEndSin = 0.0;
    // Cubic parabola: abscissa Lx of the curved end, the station span (signed and
    // its magnitude) and the denominator 6 R Lx of the ordinate.
    double abscissa = 0.0, span = 0.0, spanMagnitude = 0.0, cubicDenominator = 0.0;
    // Half-sine: a = pi / L and b = 1 / (2 R), and the products of them that
    // the element class forms on every call: b^2 / (12 a^3), b / 2, 2 / a^2,
    // b^3 / (72 a^4), 3 a^4, 36 a^2 and 72 a (kind: 0 straight into curve,
    // 1 curve into straight).
    double sineA = 0.0, sineDxFactor = 0.0, sineHalfB = 0.0, sineTwoOverA2 = 0.0, sineDyFactor = 0.0;
    double sineThreeA4 = 0.0, sineThirtySixA2 = 0.0, sineSeventyTwoA = 0.0;
};

// The constants of an element (its transition already classified).
PreparedElement PrepareElement(HorizontalElement const& element);

// Same results as ElementKleinpunkt and ElementLot, through the constants.
void PreparedKleinpunkt(HorizontalElement const& element, PreparedElement const& c, double station,
                        AlignmentPoint* out);
int PreparedLot(HorizontalElement const& element, PreparedElement const& c, double east, double north,
                AlignmentPoint* out);

// Results of PreparedFootStart besides the element classes' result codes.
constexpr int SearchOnElement = -1;  // the foot lies on the element: search from *first
constexpr int NotPrepared = -2;      // a straight, an arc or an element left to its class

// The end tests of a transition's foot search, as PreparedLot makes them:
// BeforeStart or BeyondEnd with *out the end point (as PreparedLot gives it),
// or SearchOnElement with *first the station the element class's search
// starts from (not yet held inside the element).
int PreparedFootStart(HorizontalElement const& element, PreparedElement const& c, double east, double north,
                      AlignmentPoint* out, double* first);

}  // namespace detail
}  // namespace zelalign
