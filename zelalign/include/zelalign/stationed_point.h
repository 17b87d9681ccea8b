// The stationing of a measured point: where it lies along an alignment and
// how far it is from the design.
#pragma once

#include <cstdint>
#include <limits>

#include <zelalign/horizontal.h>

namespace zelalign {

// The answer for one measured point. Fields that cannot be given are NaN:
// everything but status for NoSolution and Invalid, the heights without a
// profile, the height difference without a measured height.
struct StationedPoint {
    ProjectionStatus status = ProjectionStatus::NoSolution;
    int element = -1;                   // index of the element of the foot; -1 when there is none
    ElementType type = ElementType::Line;  // kind of that element
    double station = std::numeric_limits<double>::quiet_NaN();  // internal station of the foot (metres)
    // Displayed station of the foot (metres) after the alignment's station
    // equations; the internal station where it has none.
    double displayedStation = std::numeric_limits<double>::quiet_NaN();
    int region = -1;  // the station equation in force at the foot; -1 before the first or without any
    // Signed distance from the foot across the tangent (metres): positive to the
    // right of the direction of increasing station. At a kink, before the start
    // and beyond the end it is taken across the reported tangent.
    double offset = std::numeric_limits<double>::quiet_NaN();
    // Distance along the reported tangent (metres): 0 on an element, negative
    // before the start, positive beyond the end.
    double along = std::numeric_limits<double>::quiet_NaN();
    double footEast = std::numeric_limits<double>::quiet_NaN();   // the foot (metres)
    double footNorth = std::numeric_limits<double>::quiet_NaN();
    // Tangent direction towards increasing station at the foot (radians,
    // clockwise from North, in [0, 2 pi)); the bisector at a kink.
    double azimuth = std::numeric_limits<double>::quiet_NaN();
    // Signed radius at the foot (metres): positive bends right, 0 on a straight.
    double radius = std::numeric_limits<double>::quiet_NaN();
    double designHeight = std::numeric_limits<double>::quiet_NaN();  // profile height at the station (metres)
    // Measured height minus design height (metres): positive above the design.
    double heightDifference = std::numeric_limits<double>::quiet_NaN();
    double tunnelMetre = std::numeric_limits<double>::quiet_NaN();  // tunnel metre of the station (metres)
    // Applied cant at the station (metres; positive in a curve bending right);
    // NaN where the alignment has no cant there.
    double appliedCant = std::numeric_limits<double>::quiet_NaN();
};

// Which side of the alignment counts positive in an offset column. Railway
// practice is the right; GIS tools count the left.
enum class OffsetSide { Right, Left };

// The offset of a stationed point with the chosen side positive.
inline double SignedOffset(StationedPoint const& p, OffsetSide positive)
{
    return positive == OffsetSide::Right ? p.offset : -p.offset;
}

// Caller-owned arrays, one value per point, that a batch writes into. A null
// pointer leaves that column out. Element types and statuses are written as the
// integer values of ElementType and ProjectionStatus.
struct StationColumns {
    double* station = nullptr;
    double* offset = nullptr;  // positive to the right
    std::int32_t* element = nullptr;
    std::int32_t* type = nullptr;
    double* azimuth = nullptr;
    double* radius = nullptr;
    double* designHeight = nullptr;
    double* heightDifference = nullptr;
    double* tunnelMetre = nullptr;
    std::int32_t* status = nullptr;
    double* displayedStation = nullptr;
    std::int32_t* region = nullptr;
    double* appliedCant = nullptr;
};

}  // namespace zelalign
