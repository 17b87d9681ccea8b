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

#include <stdexcept>
#include <string>
#include <vector>

#include <zelalign/horizontal.h>
#include <zelalign/profile.h>

namespace zelalign {

class LandXmlError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct ImportedAlignment {
    std::string name;
    HorizontalAlignment horizontal;
    VerticalProfile profile;  // empty when the file has none
    std::vector<std::string> warnings;
    std::vector<int> lines;   // line in the file of each horizontal element
};

// Largest distance (metres) between an element's computed end and the next
// element's start, and between their stations, that passes without a warning.
constexpr double JointWarningTolerance = 0.001;

// Reads the alignment named name (the first one when name is empty). Throws
// LandXmlError.
ImportedAlignment ReadLandXml(std::string const& path, std::string const& name = std::string());

// The same from text in memory; sourceName stands for the file in messages.
ImportedAlignment ParseLandXml(std::string const& text, std::string const& sourceName,
                               std::string const& name = std::string());

}  // namespace zelalign
