// Numbers as zel writes them: fixed decimals by the quick integer path must be
// the same text, byte for byte, as the exactly rounded decimal expansion that
// std::to_chars gives, with "-0.0000" written as "0.0000".
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "common/awkward_numbers.h"
#include "format.h"

namespace {

// The reference: std::to_chars with the precision (exact decimal expansion of
// the double, rounded), the minus sign of a value that shows as zero dropped,
// the shortest form from 1e15 on.
std::string Reference(double v, int decimals)
{
    char buf[400];
    std::to_chars_result const r =
        std::fabs(v) >= 1e15 ? std::to_chars(buf, buf + sizeof buf, v)
                             : std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed, decimals);
    std::string s(buf, r.ptr);
    if (!s.empty() && s[0] == '-' && s.find_first_not_of("-0.") == std::string::npos) {
        s.erase(0, 1);
    }
    return s;
}

std::string Written(double v, int decimals)
{
    std::string s;
    EXPECT_TRUE(zel::AppendFixed(s, v, decimals)) << v;
    return s;
}

struct FixedCase {
    double value;
    int decimals;
    char const* text;  // worked out by hand
};

TEST(FixedDecimals, HandWorkedValues)
{
    FixedCase const cases[] = {
        {2602173.48754, 4, "2602173.4875"},
        {2602173.48756, 4, "2602173.4876"},
        {-3.87375001, 4, "-3.8738"},
        {0.0, 4, "0.0000"},
        {-0.0, 4, "0.0000"},
        {-0.00004, 4, "0.0000"},
        {-0.00006, 4, "-0.0001"},
        {1e-300, 4, "0.0000"},
        {99.99996, 4, "100.0000"},
        {-99.99996, 4, "-100.0000"},
        {108.7159734, 6, "108.715973"},
        {0.25, 8, "0.25000000"},
        {6.283185307179586, 8, "6.28318531"},
        {7.0, 0, "7"},
        {7.4, 0, "7"},
        {-7.6, 0, "-8"},
        {123456789012.3456, 2, "123456789012.35"},
        {0.1, 17, "0.10000000000000001"},  // the double nearest 0.1 is 0.1000000000000000055511...
        {15379.5364, 4, "15379.5364"},
    };
    for (FixedCase const& c : cases) {
        EXPECT_EQ(Written(c.value, c.decimals), c.text) << c.value << " to " << c.decimals << " decimals";
        EXPECT_EQ(Reference(c.value, c.decimals), c.text) << c.value << " to " << c.decimals << " decimals";
    }
}

// Exact ties of the binary value go to the exactly rounding library path; the
// text is what it gives (ties to even), whatever path wrote it.
TEST(FixedDecimals, TiesAndNeighboursOfTies)
{
    int const decimalsList[] = {0, 1, 2, 4, 6, 8};
    for (int decimals : decimalsList) {
        double const scale = std::pow(10.0, decimals);
        for (int k = -4000; k <= 4000; ++k) {
            // (k + 1/2) / 2^m is exact; those with a short enough expansion are ties.
            for (int m = 0; m <= 12; ++m) {
                double const tie = (k + 0.5) / std::ldexp(1.0, m);
                double const values[] = {tie, std::nextafter(tie, 1e300), std::nextafter(tie, -1e300),
                                         tie / scale, std::nextafter(tie / scale, 1e300),
                                         std::nextafter(tie / scale, -1e300)};
                for (double v : values) {
                    ASSERT_EQ(Written(v, decimals), Reference(v, decimals)) << v << " to " << decimals;
                }
            }
        }
    }
}

TEST(FixedDecimals, RandomValuesOfEveryMagnitude)
{
    std::mt19937_64 rng(16);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    std::uniform_int_distribution<int> exponent(-12, 16);
    int const decimalsList[] = {0, 3, 4, 6, 8, 12, 17};
    for (int decimals : decimalsList) {
        for (int i = 0; i < 200000; ++i) {
            double const v = mantissa(rng) * std::pow(10.0, exponent(rng));
            ASSERT_EQ(Written(v, decimals), Reference(v, decimals)) << v << " to " << decimals;
        }
    }
}

// Survey-like values: coordinates and lengths with a tenth of a millimetre,
// angles with 6 and 8 decimals, including every bit pattern next to them.
TEST(FixedDecimals, ValuesNearTheWrittenDigits)
{
    std::mt19937_64 rng(1600);
    std::uniform_int_distribution<std::int64_t> units(-30000000000LL, 30000000000LL);
    for (int i = 0; i < 300000; ++i) {
        for (int decimals : {4, 6, 8}) {
            double const v = static_cast<double>(units(rng)) / std::pow(10.0, decimals);
            double const near[] = {v, std::nextafter(v, 1e300), std::nextafter(v, -1e300),
                                   v + 0.5 / std::pow(10.0, decimals)};
            for (double x : near) {
                ASSERT_EQ(Written(x, decimals), Reference(x, decimals)) << x << " to " << decimals;
            }
        }
    }
}

TEST(FixedDecimals, LargeAndAwkwardValues)
{
    for (double v : zeltest::AwkwardNumbers()) {
        std::string s;
        bool const written = zel::AppendFixed(s, v, 4);
        EXPECT_EQ(written, std::isfinite(v)) << v;
        if (written) {
            EXPECT_EQ(s, Reference(v, 4)) << v;
        } else {
            EXPECT_TRUE(s.empty()) << v;
        }
    }
    double const large[] = {1e14, -1e14, 9.99999999999999e14, 1e15, -2.5e17, 1.7976931348623157e308,
                            112589990684.2623, 112589990684.2625, 1125899906842.6};
    for (double v : large) {
        for (int decimals : {0, 4, 8}) {
            EXPECT_EQ(Written(v, decimals), Reference(v, decimals)) << v << " to " << decimals;
        }
    }
}

}  // namespace
