// An alignment: the horizontal chain of elements, the vertical profile and the
// tunnel-metre map of one track, loaded from a file or built in code.
//
// Units and signs, throughout: lengths, stations, coordinates and heights in
// metres; angles in radians; azimuths clockwise from North in [0, 2 pi);
// radii signed, positive bending right (clockwise), 0 for a straight; offsets
// positive to the right of the direction of increasing station; height
// differences measured minus design. Stations are the alignment's internal
// stations: its start station plus the length along the elements.
//
// Contract: an Alignment is immutable once built. Every const member may be
// called from any number of threads at once. Construction throws DataError
// for elements, profiles or references that do not fit together; the
// stationing and setting-out calls throw nothing and allocate nothing per point.
#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <zelalign/cant.h>
#include <zelalign/horizontal.h>
#include <zelalign/profile.h>
#include <zelalign/set_out.h>
#include <zelalign/station_equations.h>
#include <zelalign/stationed_point.h>
#include <zelalign/tunnel_metre.h>
#include <zelalign/validation.h>
#include <zelalign/zelalign_export.h>

namespace zelalign {

// Where the tunnel metre is anchored, and in which sense it runs.
struct TunnelMetreReference {
    std::optional<double> station;      // default: the alignment's start station
    std::optional<double> tunnelMetre;  // default: the reference station itself
    bool sameDirection = true;          // false: tunnel metres grow against the stations
};

// Where an alignment came from: the file, and the file line of each horizontal
// element; what its reader noticed but accepted; and the tolerances its
// elements and profile are checked with (see validation.h).
struct AlignmentSource {
    std::string path;                   // empty for an alignment built in code
    std::vector<int> elementLines;      // one per horizontal element, 0 where unknown
    std::vector<std::string> elementTags;  // the file's element names ("Spiral"), empty where unknown
    // Start station of each element as its file states it (metres), NaN where
    // none is stated; empty when not known. Checked against the stations
    // along the alignment, never used for them.
    std::vector<double> statedStarts;
    std::vector<int> profileLines;      // one per profile point, 0 where unknown
    int profileLine = 0;                // line of the profile as a whole
    // The file's length unit ("meter", "foot", "USSurveyFoot", ...); every
    // value of the alignment is converted to metres. Empty when built in code.
    std::string linearUnit;
    // The file's units of angles and of directions as <Units> names them
    // ("radians", "grads", "decimal degrees", "decimal dd.mm.ss"); every angle
    // the reader uses is converted to radians. Empty when built in code.
    std::string angularUnit;
    std::string directionUnit;
    // The coordinate system the file declares ("EPSG:25832", or its name); empty if none.
    std::string coordinateSystem;
    std::vector<std::string> warnings;  // "file:line: <Element>: message"
    Tolerances tolerances;
};

class ZELALIGN_EXPORT Alignment {
public:
    // An empty alignment; every query on it fails.
    Alignment();

    // Builds an alignment from its parts. The profile may be empty. Checks the
    // parts with Validate (tolerances from source): warnings are appended to
    // the source's warnings as "file:line: <Element> (type): message"; a
    // refusal throws DataError with the same place and the size of the miss.
    // Also throws DataError when the tunnel-metre reference is not finite.
    Alignment(std::string name, HorizontalAlignment horizontal, VerticalProfile profile = VerticalProfile(),
              TunnelMetreReference reference = TunnelMetreReference(), AlignmentSource source = AlignmentSource(),
              StationEquations equations = StationEquations(), CantProfile cant = CantProfile());

    // The same alignment with another tunnel-metre reference.
    Alignment WithTunnelMetreReference(TunnelMetreReference const& reference) const;

    std::string const& Name() const { return m_name; }
    HorizontalAlignment const& Horizontal() const { return m_horizontal; }
    VerticalProfile const& Profile() const { return m_profile; }
    TunnelMetreMap const& TunnelMetres() const { return m_tunnel; }
    AlignmentSource const& Source() const { return m_source; }
    // The station equations (displayed stations); empty when the displayed
    // station is the internal one.
    StationEquations const& Equations() const { return m_equations; }
    // The applied cant; empty for a track without one.
    CantProfile const& Cant() const { return m_cant; }
    std::vector<std::string> const& Warnings() const { return m_source.warnings; }
    std::vector<int> const& SourceLines() const { return m_source.elementLines; }
    bool Empty() const { return m_horizontal.Empty(); }

    double StartStation() const { return m_horizontal.StartStation(); }  // metres
    double EndStation() const { return m_horizontal.EndStation(); }      // metres
    // True for a finite station from the start to the end station inclusive.
    bool Contains(double station) const;

    // Stations a measured point (east, north in metres; height in metres or NaN
    // when not measured). Non-finite coordinates give status Invalid.
    //
    // Accuracy (see ProjectionAccuracy): by default the foot is exact, the
    // measured point lying less than 1 micrometre along the tangent at it;
    // ProjectionAccuracy::Element gives the element operations' foot (their
    // search stops within 0.4 mm along the tangent on a transition; straights
    // and arcs are exact either way).
    StationedPoint Station(double east, double north, double height = std::numeric_limits<double>::quiet_NaN(),
                           ProjectionAccuracy accuracy = ProjectionAccuracy::Exact) const;

    // Stations count points into out[0 .. count). height may be null (no
    // heights measured). threads > 1 splits the work with ParallelFor; the
    // results are the same for any number of threads.
    void Station(std::size_t count, double const* east, double const* north, double const* height,
                 StationedPoint* out, unsigned threads = 1,
                 ProjectionAccuracy accuracy = ProjectionAccuracy::Exact) const;
    // The same into caller-owned column arrays (see StationColumns).
    void Station(std::size_t count, double const* east, double const* north, double const* height,
                 StationColumns const& out, unsigned threads = 1,
                 ProjectionAccuracy accuracy = ProjectionAccuracy::Exact) const;

    // The design point at a station. False (point untouched) for a station
    // outside the alignment or not finite.
    bool SetOut(double station, SetOutPoint* point) const;

    // Station to tunnel metre and back (metres). False for a station outside
    // the alignment, or a tunnel metre whose station would lie outside it.
    bool ToTunnelMetre(double station, double* tunnelMetre) const;
    bool ToStation(double tunnelMetre, double* station) const;

private:
    std::string m_name;
    HorizontalAlignment m_horizontal;
    VerticalProfile m_profile;
    TunnelMetreReference m_reference;
    TunnelMetreMap m_tunnel;
    AlignmentSource m_source;
    StationEquations m_equations;
    CantProfile m_cant;
};

}  // namespace zelalign
