// The vertical profile as a source of the 2D/3D station mapping.
#include <zelalign/tunnel_metre.h>

#include <cmath>

#include <zelmath/station_map.h>

namespace zelalign {

using zelmath::CACoordinate;
using zelmath::CALength;
using zelmath::CStngMap2D3DElement;
using zelmath::CStngMapCurved3DDef;

// Immutable after construction, so the mapping may read it from many threads.
class TunnelMetreMap::Source final : public zelmath::IStngMap2D3DElements {
public:
    Source() = default;
    explicit Source(VerticalProfile const& profile)
    {
        for (ProfileStretch const& s : profile.Stretches()) {
            CStngMap2D3DElement e;
            e.StngStart = CALength(s.startStation);
            e.StngEnd = CALength(s.endStation);
            e.Length3D = CALength(s.length3D);
            e.Curved = s.pvi >= 0;
            CStngMapCurved3DDef curve;
            if (e.Curved) {
                // Each curved stretch is one symmetrical curve (an unsymmetrical
                // parabola is two of them).
                curve.PI1 = CACoordinate(s.arc.before.station, s.arc.before.height);
                curve.PI2 = CACoordinate(s.arc.vertex.station, s.arc.vertex.height);
                curve.PI3 = CACoordinate(s.arc.after.station, s.arc.after.height);
                curve.Radius = CALength(s.arc.radius);
                curve.IsParabola = s.arc.parabola;
            }
            m_elements.push_back(e);
            m_curves.push_back(curve);
        }
    }
    Source(Source const&) = default;
    Source& operator=(Source const&) = default;
    ~Source() = default;

    int GetElementCount() override { return static_cast<int>(m_elements.size()); }

    bool GetElement(int index, CStngMap2D3DElement* element) override
    {
        if (index < 0 || index >= GetElementCount() || element == nullptr) {
            return false;
        }
        *element = m_elements[static_cast<std::size_t>(index)];
        return true;
    }

    bool GetCurvedDef(int index, CStngMapCurved3DDef* curve) override
    {
        if (index < 0 || index >= GetElementCount() || curve == nullptr ||
            !m_elements[static_cast<std::size_t>(index)].Curved) {
            return false;
        }
        *curve = m_curves[static_cast<std::size_t>(index)];
        return true;
    }

private:
    std::vector<CStngMap2D3DElement> m_elements;
    std::vector<CStngMapCurved3DDef> m_curves;
};

TunnelMetreMap::TunnelMetreMap() : m_source(std::make_unique<Source>()) {}

TunnelMetreMap::TunnelMetreMap(VerticalProfile const& profile, double referenceStation, double referenceTunnelMetre,
                               bool sameDirection)
    : m_source(std::make_unique<Source>(profile)),
      m_referenceStation(referenceStation),
      m_referenceTunnelMetre(referenceTunnelMetre),
      m_sameDirection(sameDirection)
{
}

TunnelMetreMap::~TunnelMetreMap() = default;

TunnelMetreMap::TunnelMetreMap(TunnelMetreMap const& other)
    : m_source(std::make_unique<Source>(*other.m_source)),
      m_referenceStation(other.m_referenceStation),
      m_referenceTunnelMetre(other.m_referenceTunnelMetre),
      m_sameDirection(other.m_sameDirection)
{
}

TunnelMetreMap& TunnelMetreMap::operator=(TunnelMetreMap const& other)
{
    if (this != &other) {
        *m_source = *other.m_source;
        m_referenceStation = other.m_referenceStation;
        m_referenceTunnelMetre = other.m_referenceTunnelMetre;
        m_sameDirection = other.m_sameDirection;
    }
    return *this;
}

int TunnelMetreMap::ElementCount() const
{
    return m_source->GetElementCount();
}

bool TunnelMetreMap::ToTunnelMetre(double station, double* tunnelMetre) const
{
    if (!std::isfinite(station)) {
        return false;
    }
    if (ElementCount() < 1) {
        double const d = station - m_referenceStation;
        *tunnelMetre = m_referenceTunnelMetre + (m_sameDirection ? d : -d);
        return true;
    }
    return zelmath::CMathStngMap2D3D::get3DTMFrom2DStng(m_source.get(), m_referenceStation, m_referenceTunnelMetre,
                                                       m_sameDirection, station, *tunnelMetre);
}

bool TunnelMetreMap::ToStation(double tunnelMetre, double* station) const
{
    if (!std::isfinite(tunnelMetre)) {
        return false;
    }
    if (ElementCount() < 1) {
        double const d = tunnelMetre - m_referenceTunnelMetre;
        *station = m_referenceStation + (m_sameDirection ? d : -d);
        return true;
    }
    return zelmath::CMathStngMap2D3D::get2DStngFrom3DTM(m_source.get(), m_referenceStation, m_referenceTunnelMetre,
                                                       m_sameDirection, tunnelMetre, *station);
}

}  // namespace zelalign
