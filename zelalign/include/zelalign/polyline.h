// The alignment drawn as polylines: points along each element, close enough
// together that the chords stay within a given distance of the curve. For
// export to GIS formats and for drawing.
#pragma once

#include <vector>

#include <zelalign/horizontal.h>
#include <zelalign/zelalign_export.h>

namespace zelalign {

// Largest distance between the curve and a chord of its polyline that the
// export formats accept: a millimetre, below what a plan or a GIS shows.
inline constexpr double DefaultChordError = 0.001;  // metres

// Points of one element from its start to its end station, both included, at
// equal station steps chosen so that the sagitta of every chord, s^2 / (8 R)
// for a step s and the element's tightest radius R, stays below maxChordError
// (metres, > 0). A straight gives its two ends. Throws ArgumentError for a
// maxChordError that is not positive and finite.
ZELALIGN_EXPORT std::vector<AlignmentPoint> ElementPolyline(HorizontalAlignment const& alignment, int element,
                                                            double maxChordError = DefaultChordError);

}  // namespace zelalign
