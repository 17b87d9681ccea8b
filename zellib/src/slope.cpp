#include <zellib/value.h>

#include <cmath>
#include <limits>

namespace zellib {

namespace {

constexpr double kDegreesPerRadian = 180.0 / CAPi;
constexpr double kGonPerRadian = 200.0 / CAPi;
constexpr double kMilPerRadian = 3200.0 / CAPi;

}  // namespace

double CASlope::GradientFrom(double value, ANGUNITS unit) noexcept
{
    switch (unit) {
    case ANG_RADIAN:
        return std::tan(value);
    case ANG_DEGREE:
        return std::tan(value / kDegreesPerRadian);
    case ANG_GON:
        return std::tan(value / kGonPerRadian);
    case ANG_MIL:
        return std::tan(value / kMilPerRadian);
    case ANG_RATIO:
        return value;
    case ANG_ONE_IN:
        return 1.0 / value;
    case ANG_PERCENT:
        return value / 100.0;
    case ANG_PERMILLE:
        return value / 1000.0;
    }
    return std::numeric_limits<double>::quiet_NaN();
}

double CASlope::In(ANGUNITS unit) const noexcept
{
    switch (unit) {
    case ANG_RADIAN:
        return std::atan(m_value);
    case ANG_DEGREE:
        return std::atan(m_value) * kDegreesPerRadian;
    case ANG_GON:
        return std::atan(m_value) * kGonPerRadian;
    case ANG_MIL:
        return std::atan(m_value) * kMilPerRadian;
    case ANG_RATIO:
        return m_value;
    case ANG_ONE_IN:
        return 1.0 / m_value;
    case ANG_PERCENT:
        return m_value * 100.0;
    case ANG_PERMILLE:
        return m_value * 1000.0;
    }
    return std::numeric_limits<double>::quiet_NaN();
}

}  // namespace zellib
