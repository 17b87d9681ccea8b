// Hands one element of the chain to the geometry of its type: literally, to
// the zelmath element class, or through the element's prepared constants.
//
// The prepared path holds what the element classes recompute on every call
// -- a clothoid's origin, origin tangent and the sine and cosine of its turn
// into the world frame, an arc's centre, a straight's direction -- computed once
// by the same operations when the alignment is built. Per call it performs the
// remaining arithmetic of the element class in the same order, so its results
// are bit-identical to the literal call (tests/alignment/test_fast_path.cpp
// compares them over many elements, stations and measured points). Straights,
// arcs and clothoids are prepared; the cubic parabola and the half-sine
// transition are handed to their classes literally from both paths.
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
};

// The constants of an element (its transition already classified).
PreparedElement PrepareElement(HorizontalElement const& element);

// Same results as ElementKleinpunkt and ElementLot, through the constants.
void PreparedKleinpunkt(HorizontalElement const& element, PreparedElement const& c, double station,
                        AlignmentPoint* out);
int PreparedLot(HorizontalElement const& element, PreparedElement const& c, double east, double north,
                AlignmentPoint* out);

}  // namespace detail
}  // namespace zelalign
