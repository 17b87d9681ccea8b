// Shared inputs for the concurrency tests: survey-sized coordinates, railway
// radii and stations, mixed with awkward numbers (NaN, infinities, huge values,
// denormals, zeros) so that every code path, the failing ones included, runs
// concurrently.
#pragma once

#include <zelmath/records.h>

#include "common/awkward_numbers.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace zeltest {

// Draws numbers around a centre, now and then replaced by an awkward one.
class InputSource {
public:
    explicit InputSource(std::uint64_t seed) : m_random(seed) {}

    double Around(double centre, double spread)
    {
        if (std::uniform_int_distribution<int>(0, 9)(m_random) == 0) {
            auto const& awkward = AwkwardOnly();
            return awkward[std::uniform_int_distribution<std::size_t>(0, awkward.size() - 1)(m_random)];
        }
        return centre + std::uniform_real_distribution<double>(-spread, spread)(m_random);
    }

    // A survey coordinate near East 2 600 000, North 1 200 000.
    zelmath::CACoordinate Survey(double spread = 500.0)
    {
        double const east = Around(2600000.0, spread);
        double const north = Around(1200000.0, spread);
        return zelmath::CACoordinate(east, north);
    }

    // A signed railway radius between 300 and 5000 m, either side.
    double Radius()
    {
        double const r = Around(0.0, 5000.0);
        if (std::isfinite(r) && std::fabs(r) < 300.0 && r != 0.0) {
            return r < 0.0 ? r - 300.0 : r + 300.0;
        }
        return r;
    }

private:
    std::mt19937_64 m_random;
};

}  // namespace zeltest
