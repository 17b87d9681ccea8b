// The alignment drawn as polylines within a chord error.
#include <zelalign/polyline.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>

#include <zelalign/error.h>

namespace zelalign {

namespace {

// Most points drawn for one element: a metre-long arc of 0.2 m radius at a
// micrometre would need more; no drawing or GIS needs them.
constexpr double MaxPolylineSteps = 100000.0;

}  // namespace

std::vector<AlignmentPoint> ElementPolyline(HorizontalAlignment const& alignment, int element, double maxChordError)
{
    if (!std::isfinite(maxChordError) || !(maxChordError > 0.0)) {
        std::ostringstream s;
        s << "the chord error must be positive and finite, got " << maxChordError;
        throw ArgumentError(s.str());
    }
    if (element < 0 || static_cast<std::size_t>(element) >= alignment.Size()) {
        throw ArgumentError("element " + std::to_string(element) + " does not exist");
    }
    HorizontalElement const& e = alignment.Elements()[static_cast<std::size_t>(element)];
    // Tightest radius of the element; a straight has none.
    double rmin = std::numeric_limits<double>::infinity();
    for (double r : {e.spec.Start.Radius.Double(), e.spec.End.Radius.Double()}) {
        if (r != 0.0) {
            rmin = std::min(rmin, std::fabs(r));
        }
    }
    double steps = 1.0;
    if (std::isfinite(rmin)) {
        // Sagitta s^2 / (8 R) <= maxChordError for a step s.
        double const step = std::sqrt(8.0 * rmin * maxChordError);
        steps = std::min(MaxPolylineSteps, std::max(1.0, std::ceil(e.Length() / step)));
    }
    auto const n = static_cast<int>(steps);
    std::vector<AlignmentPoint> points;
    points.reserve(static_cast<std::size_t>(n) + 1);
    for (int k = 0; k <= n; ++k) {
        double const s = k == n ? e.EndStation() : e.StartStation() + e.Length() * k / n;
        points.push_back(alignment.ElementPoint(element, s));
    }
    return points;
}

}  // namespace zelalign
