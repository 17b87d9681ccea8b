// Plane and spatial coordinates of zellib. A plane coordinate is a point or a
// vector with an East and a North component (X is East, Y is North); azimuths
// run clockwise from North, so a vector of length d at azimuth a is
// (d sin a, d cos a). Components are metres.
//
// Contract: plain values; nothing here throws or allocates; distinct objects
// may be used from different threads at once, and a const object from many.
#pragma once

#include <cmath>

#include <zellib/value.h>
#include <zellib/zellib_export.h>

namespace zellib {

class ZELLIB_EXPORT CACoordinate {
public:
    CACoordinate() noexcept = default;
    CACoordinate(double east, double north) noexcept : m_east(east), m_north(north) {}
    CACoordinate(CALength const& east, CALength const& north) noexcept
        : m_east(east.Double()), m_north(north.Double())
    {
    }
    CACoordinate(CACoordinate const&) noexcept = default;
    CACoordinate& operator=(CACoordinate const&) noexcept = default;
    ~CACoordinate() = default;

    CALength East() const noexcept { return CALength(m_east); }
    CALength North() const noexcept { return CALength(m_north); }
    void East(CALength const& east) noexcept { m_east = east.Double(); }
    void North(CALength const& north) noexcept { m_north = north.Double(); }

    // Second pair of accessors of the same components: X is East, Y is North.
    CALength X() const noexcept { return CALength(m_east); }
    CALength Y() const noexcept { return CALength(m_north); }
    void X(CALength const& x) noexcept { m_east = x.Double(); }
    void Y(CALength const& y) noexcept { m_north = y.Double(); }

    // Euclidean norm.
    CALength Length() const noexcept { return CALength(std::sqrt(m_east * m_east + m_north * m_north)); }

    // Direction of the vector, clockwise from North in [0, 2*pi); 0 for the zero vector.
    CAAzimuth Azimuth() const noexcept
    {
        if (m_east == 0.0 && m_north == 0.0) {
            return CAAzimuth(0.0);
        }
        return CAAzimuth(std::atan2(m_east, m_north));
    }

    // Turns the coordinate in place so that its azimuth decreases by theta, and
    // returns a copy of the turned value.
    CACoordinate Rotate(CAAngle const& theta) noexcept
    {
        double const c = std::cos(theta.Double());
        double const s = std::sin(theta.Double());
        double const east = m_east * c - m_north * s;
        double const north = m_east * s + m_north * c;
        m_east = east;
        m_north = north;
        return *this;
    }

    // This point (an origin) plus the local vector turned by theta.
    CACoordinate TransAndRotate(CACoordinate const& local, CAAngle const& theta) const noexcept
    {
        CACoordinate turned(local);
        turned.Rotate(theta);
        return *this + turned;
    }

    // The left-hand perpendicular of the same length: (E, N) becomes (-N, E).
    CACoordinate Normal() const noexcept { return CACoordinate(-m_north, m_east); }

    CACoordinate operator+(CACoordinate const& rhs) const noexcept
    {
        return CACoordinate(m_east + rhs.m_east, m_north + rhs.m_north);
    }
    CACoordinate operator-(CACoordinate const& rhs) const noexcept
    {
        return CACoordinate(m_east - rhs.m_east, m_north - rhs.m_north);
    }
    CACoordinate operator*(double const& factor) const noexcept
    {
        return CACoordinate(m_east * factor, m_north * factor);
    }
    // Both components divided by divisor. The operand itself is left unchanged.
    CACoordinate operator/(double const& divisor) noexcept
    {
        return CACoordinate(m_east / divisor, m_north / divisor);
    }

    // Both components equal within the tolerance of the value comparisons.
    bool operator==(CACoordinate const& rhs) const noexcept
    {
        return (East() == rhs.East()) && (North() == rhs.North());
    }
    bool operator!=(CACoordinate const& rhs) const noexcept { return !(*this == rhs); }

private:
    double m_east = 0.0;
    double m_north = 0.0;
};

class ZELLIB_EXPORT CA3DCoordinate {
public:
    CA3DCoordinate() noexcept = default;
    CA3DCoordinate(double east, double north, double elevation) noexcept
        : m_east(east), m_north(north), m_elevation(elevation)
    {
    }
    CA3DCoordinate(CA3DCoordinate const&) noexcept = default;
    CA3DCoordinate& operator=(CA3DCoordinate const&) noexcept = default;
    ~CA3DCoordinate() = default;

    CALength East() const noexcept { return CALength(m_east); }
    CALength North() const noexcept { return CALength(m_north); }
    CALength Elevation() const noexcept { return CALength(m_elevation); }
    void East(CALength const& east) noexcept { m_east = east.Double(); }
    void North(CALength const& north) noexcept { m_north = north.Double(); }
    void Elevation(CALength const& elevation) noexcept { m_elevation = elevation.Double(); }

    // Euclidean norm of the three components.
    CALength Length() const noexcept
    {
        return CALength(std::sqrt(m_east * m_east + m_north * m_north + m_elevation * m_elevation));
    }

private:
    double m_east = 0.0;
    double m_north = 0.0;
    double m_elevation = 0.0;
};

}  // namespace zellib
