#include <zelmath/station_map.h>

#include <cmath>

#include <zelmath/long_prof_curve.h>

#include "foundation/thresholds.h"

namespace zelmath {

namespace {

// An element shorter than this in plan adds nothing of its own.
constexpr double ZeroLength = foundation_detail::ZeroThreshold;  // 2^-126
// A station on a vertical curve is found when its curve length matches the
// remaining tunnel metres to within this (metres).
constexpr double CurveTolerance = 1e-4;
// Failed fixed-point steps allowed on a vertical curve.
constexpr int MaxCurveSteps = 3000;

// Curve length between two 2D stations of a vertical curve (lower first).
using CurveLengthFn = bool (*)(const CStngMapCurved3DDef&, CALength, CALength, CALength&);

// Fixed-point search on a vertical curve for the station rest tunnel metres
// from base: walking forwards, the trial station s lies after base and moves
// back by the 3D error; walking backwards, it lies before base and moves on by
// the 3D error. s comes in as the caller's start guess, already clamped to the
// element. On success d is the 2D distance from base to the station found.
// curveLength is the caller's, and keeps the last length measured.
bool FindStationOnCurve(CurveLengthFn lengthBetween, const CStngMapCurved3DDef& curve, bool forwards,
                        double base, double rest, double s, CALength& curveLength, double& d)
{
    int failed = 0;
    for (;;) {
        bool const measured = forwards ? lengthBetween(curve, base, s, curveLength)
                                       : lengthBetween(curve, s, base, curveLength);
        if (!measured) {
            return false;
        }
        double const l = curveLength.Double();
        if (std::fabs(l - rest) < CurveTolerance) {
            d = forwards ? std::fabs(s - base) : std::fabs(base - s);
            return true;
        }
        s = forwards ? s - (l - rest) : s + (l - rest);
        if (++failed > MaxCurveSteps) {
            return false;
        }
    }
}

// Walks the map from element index towards increasing stations (forwards) or
// decreasing ones, using up rest tunnel metres, and writes the 2D station where
// they run out. The element at index counts only from the reference station on,
// unless the reference lay outside the map (clamped), in which case it counts
// whole. Off either end of the map one tunnel metre is one station metre.
// Walking forwards, the element count is asked again on every step.
bool WalkMap(IStngMap2D3DElements* elements, CurveLengthFn lengthBetween, bool forwards, int index,
             bool clamped, double referenceStation, double rest, double& station)
{
    CStngMap2D3DElement element;
    CStngMapCurved3DDef curve;
    CALength curveLength;

    for (int i = index;; i = forwards ? i + 1 : i - 1) {
        if (forwards) {
            int const currentCount = elements->GetElementCount();
            if (i >= currentCount) {
                // Ran off the end of the map: one to one beyond it.
                if (rest > 0.0) {
                    if (!elements->GetElement(currentCount - 1, &element)) {
                        return false;
                    }
                    station = element.StngEnd.Double() + rest;
                    return true;
                }
                return false;
            }
        } else if (i < 0) {
            // Ran off the start of the map: one to one before it.
            if (rest > 0.0) {
                if (!elements->GetElement(0, &element)) {
                    return false;
                }
                station = element.StngStart.Double() - rest;
                return true;
            }
            return false;
        }
        if (!elements->GetElement(i, &element)) {
            return false;
        }
        if (!(rest > 0.0)) {
            continue;
        }
        double const start = element.StngStart.Double();
        double const end = element.StngEnd.Double();
        double const length3D = element.Length3D.Double();
        double const len2D = end - start;
        double available = length3D;
        // The walk enters the element at its start going forwards, at its end
        // going backwards.
        double base = forwards ? start : end;

        if (i == index && !clamped) {
            // Only the part on the walking side of the reference counts.
            available = 0.0;
            if (len2D > ZeroLength) {
                if (element.Curved) {
                    if (!elements->GetCurvedDef(i, &curve)) {
                        return false;
                    }
                    bool const measured = forwards ? lengthBetween(curve, referenceStation, end, curveLength)
                                                   : lengthBetween(curve, start, referenceStation, curveLength);
                    if (!measured) {
                        return false;
                    }
                    available = curveLength.Double();
                } else {
                    available = forwards ? std::fabs(end - referenceStation) / len2D * length3D
                                         : std::fabs(referenceStation - start) / len2D * length3D;
                }
            }
            base = referenceStation;
        }

        if (rest <= available) {
            double d = 0.0;
            if (!(length3D > ZeroLength)) {
                d = 0.0;
            } else if (!element.Curved) {
                d = rest / length3D * len2D;
            } else {
                if (!elements->GetCurvedDef(i, &curve)) {
                    return false;
                }
                // Fixed-point steps from rest beyond base, held to the
                // element's far end.
                double s = 0.0;
                if (forwards) {
                    s = base + rest;
                    if (s > end) {
                        s = end;
                    }
                } else {
                    s = base - rest;
                    if (s < start) {
                        s = start;
                    }
                }
                if (!FindStationOnCurve(lengthBetween, curve, forwards, base, rest, s, curveLength, d)) {
                    return false;
                }
            }
            station = forwards ? base + d : base - d;
            return true;
        }
        rest -= available;
    }
}

}  // namespace

bool CMathStngMap2D3D::get3DLengthForCurve(const CStngMapCurved3DDef& curve, CALength station1,
                                           CALength station2, CALength& length)
{
    if (curve.IsParabola) {
        return CMathLongProfCurve::calcParabolLengthBetween(curve.PI1, curve.PI2, curve.PI3,
                                                            curve.Radius, station1, station2, length);
    }
    return CMathLongProfCurve::calcCircleLengthBetween(curve.PI1, curve.PI2, curve.PI3, curve.Radius,
                                                       station1, station2, length);
}

bool CMathStngMap2D3D::get3DTMFrom2DStng(IStngMap2D3DElements* elements, double referenceStation,
                                         double referenceTunnelMetre, bool sameDirection,
                                         double station, double& tunnelMetre)
{
    if (elements == nullptr) {
        return false;
    }
    int const count = elements->GetElementCount();
    if (count < 1) {
        return false;
    }

    // The interval between the two stations, walked from its lower end.
    double lo = 0.0, hi = 0.0, sign = 0.0;
    if (station <= referenceStation) {
        lo = station;
        hi = referenceStation;
        sign = -1.0;
    } else {
        lo = referenceStation;
        hi = station;
        sign = 1.0;
    }
    double total = 0.0;
    bool finished = false;

    // Before the first element the stretch counts one to one.
    CStngMap2D3DElement element;
    if (!elements->GetElement(0, &element)) {
        return false;
    }
    double const firstStart = element.StngStart.Double();
    if (lo < firstStart) {
        if (hi < firstStart) {
            total += hi - lo;
            finished = true;
        } else {
            total += std::fabs(firstStart - lo);
            lo = firstStart;
        }
    }

    // Likewise beyond the last element; this is looked at in any case.
    if (!elements->GetElement(count - 1, &element)) {
        return false;
    }
    double const lastEnd = element.StngEnd.Double();
    if (hi > lastEnd) {
        if (lo > lastEnd) {
            total += hi - lo;
            finished = true;
        } else {
            total += std::fabs(hi - lastEnd);
            hi = lastEnd;
        }
    }

    if (!finished) {
        // Every element is visited; those outside [lo, hi] add nothing.
        for (int i = 0; i < elements->GetElementCount(); ++i) {
            if (!elements->GetElement(i, &element)) {
                return false;
            }
            double const start = element.StngStart.Double();
            double const end = element.StngEnd.Double();
            double const length3D = element.Length3D.Double();
            double const len2D = std::fabs(end - start);

            // The part of the element from a to b, in tunnel metres.
            bool partOk = true;
            auto part = [&](double a, double b) -> double {
                if (!(len2D > ZeroLength)) {
                    return 0.0;
                }
                if (element.Curved) {
                    CStngMapCurved3DDef curve;
                    CALength curveLength;
                    if (!elements->GetCurvedDef(i, &curve) ||
                        !get3DLengthForCurve(curve, a, b, curveLength)) {
                        partOk = false;
                        return 0.0;
                    }
                    return curveLength.Double();
                }
                return std::fabs(b - a) / len2D * length3D;
            };

            if (lo < start) {
                if (hi > end) {
                    total += length3D;  // wholly inside the interval
                } else if (hi >= start) {
                    total += part(start, hi);
                }
            } else if (start <= lo && lo <= end) {
                if (hi > end) {
                    total += part(lo, end);
                } else {
                    total += part(lo, hi);
                }
            }
            if (!partOk) {
                return false;
            }
        }
    }

    if (sameDirection) {
        tunnelMetre = referenceTunnelMetre + sign * total;
    } else {
        tunnelMetre = referenceTunnelMetre - sign * total;
    }
    return true;
}

bool CMathStngMap2D3D::get2DStngFrom3DTM(IStngMap2D3DElements* elements, double referenceStation,
                                         double referenceTunnelMetre, bool sameDirection,
                                         double tunnelMetre, double& station)
{
    // The map is a precondition here: unlike the forward conversion this one
    // does not test it for null.
    int const count = elements->GetElementCount();
    if (count < 1) {
        return false;
    }
    double rest = std::fabs(referenceTunnelMetre - tunnelMetre);
    if (rest == 0.0) {
        station = referenceStation;
        return true;
    }

    int dir = (referenceTunnelMetre <= tunnelMetre) ? 1 : -1;
    if (!sameDirection) {
        dir = -dir;
    }

    int index = -1;
    bool clamped = false;
    CStngMap2D3DElement first;
    CStngMap2D3DElement last;
    if (!elements->GetElement(0, &first) || !elements->GetElement(count - 1, &last)) {
        return false;
    }
    double const firstStart = first.StngStart.Double();
    double const lastEnd = last.StngEnd.Double();

    if (firstStart > referenceStation) {
        // Reference before the map: one to one up to the first element.
        if (dir < 0) {
            station = referenceStation - rest;
            return true;
        }
        if (referenceStation + rest <= firstStart) {
            station = referenceStation + rest;
            return true;
        }
        rest -= (firstStart - referenceStation);
        index = 0;
        clamped = true;
    } else if (lastEnd < referenceStation) {
        // Reference beyond the map: one to one back to the last element.
        if (dir > 0) {
            station = referenceStation + rest;
            return true;
        }
        if (referenceStation - rest >= lastEnd) {
            station = referenceStation - rest;
            return true;
        }
        rest -= (referenceStation - lastEnd);
        index = count - 1;
        clamped = true;
    }

    CStngMap2D3DElement element;
    if (index == -1) {
        for (int i = 0; i < elements->GetElementCount(); ++i) {
            if (!elements->GetElement(i, &element)) {
                return false;
            }
            if (element.StngStart.Double() <= referenceStation &&
                referenceStation <= element.StngEnd.Double()) {
                index = i;
                break;
            }
        }
        if (index == -1) {
            return false;  // the reference lies in a gap of the map
        }
    }

    return WalkMap(elements, &get3DLengthForCurve, dir > 0, index, clamped, referenceStation, rest, station);
}

}  // namespace zelmath
