// Tunnel metres of an alignment: the length measured in space along the
// alignment's vertical course. The vertical profile is handed to the station
// mapping of zelmath (CMathStngMap2D3D) as a map of stretches: grade lines as
// straight elements with their length in space, vertical curves as curved
// elements with their PIs and radius. The tunnel metre is anchored at a
// reference station and tunnel metre; outside the profile one station metre is
// one tunnel metre.
#pragma once

#include <memory>
#include <vector>

#include <zelalign/profile.h>
#include <zelalign/zelalign_export.h>

namespace zelalign {

class ZELALIGN_EXPORT TunnelMetreMap {
public:
    // Without a profile, tunnel metres run one to one with the stations from
    // the reference.
    TunnelMetreMap();
    TunnelMetreMap(VerticalProfile const& profile, double referenceStation, double referenceTunnelMetre,
                   bool sameDirection = true);
    ~TunnelMetreMap();
    TunnelMetreMap(TunnelMetreMap const&);
    TunnelMetreMap& operator=(TunnelMetreMap const&);

    double ReferenceStation() const { return m_referenceStation; }
    double ReferenceTunnelMetre() const { return m_referenceTunnelMetre; }
    bool SameDirection() const { return m_sameDirection; }

    // Number of stretches handed to the station mapping.
    int ElementCount() const;

    // Station to tunnel metre and back; false where the mapping fails.
    bool ToTunnelMetre(double station, double* tunnelMetre) const;
    bool ToStation(double tunnelMetre, double* station) const;

private:
    class Source;
    std::unique_ptr<Source> m_source;
    double m_referenceStation = 0.0;
    double m_referenceTunnelMetre = 0.0;
    bool m_sameDirection = true;
};

}  // namespace zelalign
