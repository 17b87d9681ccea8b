// Import of an alignment from LandXML 1.2: the horizontal geometry of
// Alignments/Alignment/CoordGeom (Line, Curve, Spiral) and the vertical profile
// of Profile/ProfAlign (PVI, CircCurve, ParaCurve).
//
// Points are read "northing easting [elevation]". Directions are derived from
// the coordinates; the bending sense comes from rot (cw bends right, a positive
// radius). A straight end of a spiral is written INF. Spiral types map to the
// element of matching curvature:
//   clothoid       -> clothoid (curvature linear in the length)
//   cubicParabola  -> cubic parabola y = x^3 / (6 R X), stations linear in the abscissa
//   cosine         -> half-sine transition, curvature (1 - cos(pi l / L)) / (2 R)
// A spiral with equal start and end radius is read as an arc (or a straight).
// Every other type, and any broken or incomplete element, is an error that
// names the file, the line and the element; nothing is imported then.
#pragma once

#include <string>
#include <vector>

#include <zelalign/alignment.h>
#include <zelalign/error.h>
#include <zelalign/zelalign_export.h>

namespace zelalign {

// A file that cannot be read as an alignment: "file:line: <Element>: message".
class ZELALIGN_EXPORT LandXmlError : public DataError {
public:
    using DataError::DataError;
    ~LandXmlError() override;
};

// Largest distance (metres) between an element's computed end and the next
// element's start, and between their stations, that passes without a warning.
inline constexpr double JointWarningTolerance = 0.001;

// Reads the alignment named name (the first one when name is empty) with the
// given tunnel-metre reference. The path "-" reads standard input. Throws
// LandXmlError for content it cannot represent and IoError when the file cannot
// be opened or read; never returns a partial alignment. Warnings (joints and
// stations that miss by more than JointWarningTolerance) are in
// Alignment::Warnings().
ZELALIGN_EXPORT Alignment ReadLandXml(std::string const& path, std::string const& name = std::string(),
                                      TunnelMetreReference const& reference = TunnelMetreReference());

// The same from text in memory; sourceName stands for the file in messages.
ZELALIGN_EXPORT Alignment ParseLandXml(std::string const& text, std::string const& sourceName,
                                       std::string const& name = std::string(),
                                       TunnelMetreReference const& reference = TunnelMetreReference());

// Names of the alignments in LandXML text, in file order (empty names included).
ZELALIGN_EXPORT std::vector<std::string> LandXmlAlignmentNames(std::string const& text,
                                                               std::string const& sourceName);

// The whole of a file, or of standard input for "-". Throws IoError with the
// system's reason.
ZELALIGN_EXPORT std::string ReadTextFile(std::string const& path);

}  // namespace zelalign
