// Chains of horizontal elements made from another chain: mirrored across the
// North axis, run backwards, or repeated end to end to any number of elements.
// The tests of the prepared element path and the alignment benchmarks build
// their long and their left- and right-handed alignments with these, from the
// shipped sample.
#pragma once

#include <cstddef>
#include <vector>

#include <zelalign/horizontal.h>

namespace zelsynthetic {

using zelalign::ElementType;
using zelalign::HorizontalElement;
using zelmath::CACoordinate;

// The element of this type between these ends and radii, built by the
// alignment layer's own factories (a transition's parameter follows from its
// length and radii).
inline HorizontalElement Rebuilt(ElementType type, double startStation, double length, CACoordinate const& start,
                                 CACoordinate const& end, double startRadius, double endRadius,
                                 zelalign::TransitionShape shape = zelalign::TransitionShape::Bloss)
{
    switch (type) {
    case ElementType::Line:
        return HorizontalElement::Line(startStation, length, start, end);
    case ElementType::Arc:
        return HorizontalElement::Arc(startStation, length, start, end, startRadius);
    case ElementType::ShapedTransition:
        return HorizontalElement::Shaped(shape, startStation, length, start, end, startRadius, endRadius);
    default:
        return HorizontalElement::Transition(type, startStation, length, start, end, startRadius, endRadius);
    }
}

// The chain reflected across the North axis (East negated): every bend turns
// the other way, so every radius changes sign.
inline std::vector<HorizontalElement> Mirrored(std::vector<HorizontalElement> const& chain)
{
    std::vector<HorizontalElement> out;
    for (HorizontalElement const& e : chain) {
        CACoordinate const s(-e.spec.Start.Coordinate.East().Double(), e.spec.Start.Coordinate.North().Double());
        CACoordinate const t(-e.spec.End.Coordinate.East().Double(), e.spec.End.Coordinate.North().Double());
        out.push_back(Rebuilt(e.type, e.StartStation(), e.Length(), s, t, -e.spec.Start.Radius.Double(),
                              -e.spec.End.Radius.Double(), e.shape));
    }
    return out;
}

// The chain run from its end to its start over the same station range: ends
// exchanged, radii exchanged and negated (a right bend seen backwards is a
// left bend), a straight-into-curve transition becomes a curve-into-straight one.
inline std::vector<HorizontalElement> Reversed(std::vector<HorizontalElement> const& chain)
{
    std::vector<HorizontalElement> out;
    if (chain.empty()) {
        return out;
    }
    double const mirror = chain.front().StartStation() + chain.back().EndStation();
    for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
        HorizontalElement const& e = *it;
        out.push_back(Rebuilt(e.type, mirror - e.EndStation(), e.Length(), e.spec.End.Coordinate,
                              e.spec.Start.Coordinate, -e.spec.End.Radius.Double(), -e.spec.Start.Radius.Double(),
                              e.shape));
    }
    return out;
}

// The first count elements of the chain repeated end to end: copy k is moved
// k times by the chain's station span and by the vector from its first start
// point to its last end point, so each copy starts where the previous ended
// (with the kink between the chain's end and start tangents).
inline std::vector<HorizontalElement> Repeated(std::vector<HorizontalElement> const& chain, std::size_t count)
{
    std::vector<HorizontalElement> out;
    if (chain.empty()) {
        return out;
    }
    double const span = chain.back().EndStation() - chain.front().StartStation();
    double const de = chain.back().spec.End.Coordinate.East().Double() -
                      chain.front().spec.Start.Coordinate.East().Double();
    double const dn = chain.back().spec.End.Coordinate.North().Double() -
                      chain.front().spec.Start.Coordinate.North().Double();
    out.reserve(count);
    for (std::size_t k = 0; out.size() < count; ++k) {
        for (std::size_t i = 0; i < chain.size() && out.size() < count; ++i) {
            HorizontalElement const& e = chain[i];
            double const kd = static_cast<double>(k);
            CACoordinate const s(e.spec.Start.Coordinate.East().Double() + kd * de,
                                 e.spec.Start.Coordinate.North().Double() + kd * dn);
            CACoordinate const t(e.spec.End.Coordinate.East().Double() + kd * de,
                                 e.spec.End.Coordinate.North().Double() + kd * dn);
            out.push_back(Rebuilt(e.type, e.StartStation() + kd * span, e.Length(), s, t,
                                  e.spec.Start.Radius.Double(), e.spec.End.Radius.Double(), e.shape));
        }
    }
    return out;
}

}  // namespace zelsynthetic
