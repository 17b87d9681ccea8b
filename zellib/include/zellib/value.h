// Scalar value types of zellib: a plain double wrapped with the tolerant
// comparisons every surveying computation uses, and the kinds of quantity built
// on it (lengths, angles, azimuths, slopes).
//
// Contract of every type here: a plain value of one double; construction,
// copying, arithmetic and comparison never throw and never allocate; distinct
// objects may be used from different threads at once, and a const object from
// many. NaN passes through arithmetic as NaN and compares unequal.
#pragma once

#include <cmath>

#include <zellib/constants.h>
#include <zellib/zellib_export.h>

namespace zellib {

// A polymorphic holder of one double. Comparisons are tolerant: two values are
// equal when they differ by at most Tolerance, one is smaller than another only
// when it is smaller by more than Tolerance. Where a computation needs the exact
// double it reads Double().
class ZELLIB_EXPORT CAValue {
public:
    // Absolute tolerance of every comparison operator.
    static constexpr double Tolerance = 1e-10;

    CAValue() noexcept = default;
    CAValue(double value) noexcept : m_value(value) {}
    CAValue(CAValue const&) noexcept = default;
    CAValue& operator=(CAValue const&) noexcept = default;
    virtual ~CAValue() = default;

    double Double() const noexcept { return m_value; }

    // The magnitude of the value.
    CAValue Absolute() const noexcept { return CAValue(std::fabs(m_value)); }

    // -1 for a value below 0.0, +1 otherwise (0 counts as positive).
    int Sign() const noexcept { return m_value < 0.0 ? -1 : 1; }

    // Negates the value in place and returns it.
    CAValue& FlipSign() noexcept
    {
        m_value = -m_value;
        return *this;
    }

    // Comparisons with a plain number; the results are ints (non-zero for true).
    int operator==(double rhs) const noexcept { return std::fabs(m_value - rhs) <= Tolerance; }
    int operator!=(double rhs) const noexcept { return !(*this == rhs); }
    int operator<(double rhs) const noexcept { return (rhs - m_value) > Tolerance; }
    int operator>(double rhs) const noexcept { return (m_value - rhs) > Tolerance; }
    int operator<=(double rhs) const noexcept { return !(*this > rhs); }
    int operator>=(double rhs) const noexcept { return !(*this < rhs); }

    // Comparisons of two values of the same kind. operator< yields a bool, the
    // others an int (non-zero for true).
    int operator==(CAValue const& rhs) const noexcept { return *this == rhs.m_value; }
    int operator!=(CAValue const& rhs) const noexcept { return *this != rhs.m_value; }
    bool operator<(CAValue const& rhs) const noexcept { return (*this < rhs.m_value) != 0; }
    int operator>(CAValue const& rhs) const noexcept { return *this > rhs.m_value; }
    int operator<=(CAValue const& rhs) const noexcept { return *this <= rhs.m_value; }
    int operator>=(CAValue const& rhs) const noexcept { return *this >= rhs.m_value; }

protected:
    double m_value = 0.0;
};

// A length in metres (distances, stations, radii, coordinates' components).
class ZELLIB_EXPORT CALength : public CAValue {
public:
    CALength() noexcept = default;
    CALength(double metres) noexcept : CAValue(metres) {}
    CALength(CALength const&) noexcept = default;
    CALength& operator=(CALength const&) noexcept = default;
    CALength& operator=(double metres) noexcept
    {
        m_value = metres;
        return *this;
    }
    ~CALength() override = default;

    CALength Absolute() const noexcept { return CALength(std::fabs(m_value)); }
    CALength& FlipSign() noexcept
    {
        m_value = -m_value;
        return *this;
    }

    CALength operator+(CALength const& rhs) const noexcept { return CALength(m_value + rhs.m_value); }
    CALength operator-(CALength const& rhs) const noexcept { return CALength(m_value - rhs.m_value); }
    CALength operator-() const noexcept { return CALength(-m_value); }
    CALength operator*(double factor) const noexcept { return CALength(m_value * factor); }
    CALength operator/(double divisor) const noexcept { return CALength(m_value / divisor); }
    // The plain ratio of two lengths.
    double operator/(CALength const& rhs) const noexcept { return m_value / rhs.m_value; }
    // The ratio of this length to x (this / x).
    double Factor(CALength const& x) const noexcept { return m_value / x.m_value; }

    CALength& operator+=(CALength const& rhs) noexcept
    {
        m_value += rhs.m_value;
        return *this;
    }
    CALength& operator-=(CALength const& rhs) noexcept
    {
        m_value -= rhs.m_value;
        return *this;
    }
};

// Brings an angle in radians into [0, 2*pi). NaN stays NaN.
inline double NormalizeAngle(double radians) noexcept
{
    double r = std::fmod(radians, CAPimul2);
    if (r < 0.0) {
        r += CAPimul2;
    }
    if (r >= CAPimul2) {
        r = 0.0;
    }
    return r;
}

// An angle in radians. An angle built from a number keeps it as given; the sum
// and difference of two angles are brought into [0, 2*pi), so the clockwise
// difference of two directions is never negative.
class ZELLIB_EXPORT CAAngle : public CAValue {
public:
    CAAngle() noexcept = default;
    CAAngle(double radians) noexcept : CAValue(radians) {}
    CAAngle(CAAngle const&) noexcept = default;
    CAAngle& operator=(CAAngle const&) noexcept = default;
    ~CAAngle() override = default;

    CAAngle Absolute() const noexcept { return CAAngle(std::fabs(m_value)); }
    CAAngle& FlipSign() noexcept
    {
        m_value = -m_value;
        return *this;
    }

    CAAngle operator+(CAAngle const& rhs) const noexcept
    {
        return CAAngle(NormalizeAngle(m_value + rhs.m_value));
    }
    CAAngle operator-(CAAngle const& rhs) const noexcept
    {
        return CAAngle(NormalizeAngle(m_value - rhs.m_value));
    }
};

// A direction: an angle clockwise from North, always held in [0, 2*pi).
class ZELLIB_EXPORT CAAzimuth : public CAAngle {
public:
    CAAzimuth() noexcept = default;
    CAAzimuth(double radians) noexcept : CAAngle(NormalizeAngle(radians)) {}
    CAAzimuth(CAAngle const& angle) noexcept : CAAngle(NormalizeAngle(angle.Double())) {}
    CAAzimuth(CAAzimuth const&) noexcept = default;
    CAAzimuth& operator=(CAAzimuth const&) noexcept = default;
    CAAzimuth& operator=(CAAngle const& angle) noexcept
    {
        m_value = NormalizeAngle(angle.Double());
        return *this;
    }
    CAAzimuth& operator=(double radians) noexcept
    {
        m_value = NormalizeAngle(radians);
        return *this;
    }
    ~CAAzimuth() override = default;
};

// Units in which a slope can be given or read.
enum ANGUNITS {
    ANG_RADIAN = 0,   // inclination angle in radians
    ANG_DEGREE = 1,   // inclination angle in decimal degrees
    ANG_GON = 2,      // inclination angle in gon (400 to the circle)
    ANG_MIL = 3,      // inclination angle in mil (6400 to the circle)
    ANG_RATIO = 4,    // rise over run
    ANG_ONE_IN = 5,   // run per unit of rise ("1 in n")
    ANG_PERCENT = 6,  // 100 x rise over run
    ANG_PERMILLE = 7  // 1000 x rise over run
};

// A slope held as its gradient, rise over run (2 % is 0.02).
class ZELLIB_EXPORT CASlope : public CAValue {
public:
    CASlope() noexcept = default;
    CASlope(double gradient) noexcept : CAValue(gradient) {}
    CASlope(CASlope const&) noexcept = default;
    CASlope& operator=(CASlope const&) noexcept = default;
    ~CASlope() override = default;

    // The gradient of a slope given as value in unit. An unknown unit gives NaN.
    static double GradientFrom(double value, ANGUNITS unit) noexcept;

    // The slope expressed in unit; the inverse of GradientFrom.
    double In(ANGUNITS unit) const noexcept;
};

// A slope given by a value and its unit, converted to a gradient on construction.
class ZELLIB_EXPORT CASlopeUser : public CASlope {
public:
    CASlopeUser(double value, ANGUNITS unit) noexcept : CASlope(GradientFrom(value, unit)) {}
    CASlopeUser(CASlopeUser const&) noexcept = default;
    CASlopeUser& operator=(CASlopeUser const&) noexcept = default;
    ~CASlopeUser() override = default;
};

}  // namespace zellib
