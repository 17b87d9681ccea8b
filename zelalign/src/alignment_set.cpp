// Stationing against the nearest of several alignments.
#include <zelalign/alignment_set.h>

#include <cmath>
#include <utility>

#include <zelalign/batch.h>
#include <zelalign/error.h>

namespace zelalign {

double DistanceToAlignment(StationedPoint const& p)
{
    switch (p.status) {
    case ProjectionStatus::OnElement:
    case ProjectionStatus::Kink:
        return std::fabs(p.offset);
    case ProjectionStatus::BeforeStart:
    case ProjectionStatus::BeyondEnd:
        return std::hypot(p.offset, p.along);
    case ProjectionStatus::NoSolution:
    case ProjectionStatus::Invalid:
        break;
    }
    return std::numeric_limits<double>::infinity();
}

AlignmentSet::AlignmentSet(std::vector<Alignment> alignments) : m_alignments(std::move(alignments))
{
    if (m_alignments.empty()) {
        throw DataError("a set of alignments needs at least one alignment");
    }
}

NearestStationedPoint AlignmentSet::Station(double east, double north, double height, double maxOffset) const
{
    NearestStationedPoint best;
    if (!std::isfinite(east) || !std::isfinite(north) || std::isinf(height)) {
        best.point.status = ProjectionStatus::Invalid;
        return best;
    }
    double bestDistance = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < m_alignments.size(); ++i) {
        StationedPoint const p = m_alignments[i].Station(east, north, height);
        double const d = DistanceToAlignment(p);
        if (d < bestDistance) {
            bestDistance = d;
            best.alignment = static_cast<int>(i);
            best.point = p;
        }
    }
    if (!(bestDistance <= maxOffset)) {
        best = NearestStationedPoint();  // none near enough (or no foot at all)
    }
    return best;
}

void AlignmentSet::Station(std::size_t count, double const* east, double const* north, double const* height,
                           NearestStationedPoint* out, unsigned threads, double maxOffset) const
{
    ParallelFor(count, threads, [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            out[i] = Station(east[i], north[i], height ? height[i] : std::numeric_limits<double>::quiet_NaN(),
                             maxOffset);
        }
    });
}

}  // namespace zelalign
