// Import of an alignment from LandXML 1.2: the horizontal geometry of
// Alignments/Alignment/CoordGeom (Line, Curve, Spiral) and the vertical profile
// of Profile/ProfAlign (PVI, CircCurve, ParaCurve, UnsymParaCurve). Lengths are
// converted to metres by the linearUnit of <Units>, angles (a Curve's delta) to
// radians by its angularUnit (radians, grads, decimal degrees, decimal
// dd.mm.ss); what a Curve states beside its points (PI, delta, chord, tangent,
// external, midOrd) is checked against its arc with the Tolerances.
//
// Points are read "northing easting [elevation]". Directions are derived from
// the coordinates; the bending sense comes from rot (cw bends right, a positive
// radius). A straight end of a spiral is written INF. Spiral types map to the
// element of matching curvature:
//   clothoid       -> clothoid (curvature linear in the length)
//   cubicParabola  -> cubic parabola y = x^3 / (6 R X), stations linear in the abscissa
//   cosine         -> half-sine transition, curvature (1 - cos(pi l / L)) / (2 R)
// A spiral with equal start and end radius is read as an arc (or a straight).
// A straight end may be written INF or as a radius of Tolerances::straightRadius
// or more (files write 1E+300); a radius of 0 is an error, never a straight.
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

// Reads the alignment named name (the first one when name is empty) with the
// given tunnel-metre reference. The path "-" reads standard input. Throws
// LandXmlError for content it cannot represent and IoError when the file cannot
// be opened or read; never returns a partial alignment.
//
// Stations: the alignment's staStart (else the first element's, else 0) plus
// the lengths along the elements. The staStart of each element is only
// checked against that station (see validation.h), so rounded, overlapping or
// kilometre-based element stations do not cut the alignment.
//
// Checks, sorted by tolerances (see validation.h): an element not longer than
// tolerances.zeroLength is skipped with a warning; a radius of
// tolerances.straightRadius or more is a straight; a Curve's centre must lie at
// its radius from both ends; each element's computed end is compared with its
// stored end and with the next element's start; vertical curves may overlap.
// Warnings ("file:line: <Element>: message") are in Alignment::Warnings();
// a refusal names the element's line, its type, the size of the miss and what
// to check.
ZELALIGN_EXPORT Alignment ReadLandXml(std::string const& path, std::string const& name = std::string(),
                                      TunnelMetreReference const& reference = TunnelMetreReference(),
                                      Tolerances const& tolerances = Tolerances());

// The same from text in memory; sourceName stands for the file in messages.
ZELALIGN_EXPORT Alignment ParseLandXml(std::string const& text, std::string const& sourceName,
                                       std::string const& name = std::string(),
                                       TunnelMetreReference const& reference = TunnelMetreReference(),
                                       Tolerances const& tolerances = Tolerances());

// Names of the alignments in LandXML text, in file order (empty names included).
ZELALIGN_EXPORT std::vector<std::string> LandXmlAlignmentNames(std::string const& text,
                                                               std::string const& sourceName);

// Every alignment of LandXML text, in file order, each read as ParseLandXml
// reads the one of that name. Throws LandXmlError naming the first alignment
// that cannot be read, and for text without any alignment.
ZELALIGN_EXPORT std::vector<Alignment> ParseLandXmlAlignments(std::string const& text, std::string const& sourceName,
                                                              TunnelMetreReference const& reference =
                                                                  TunnelMetreReference());

// The whole of a file, or of standard input for "-". Throws IoError with the
// system's reason.
ZELALIGN_EXPORT std::string ReadTextFile(std::string const& path);

}  // namespace zelalign
