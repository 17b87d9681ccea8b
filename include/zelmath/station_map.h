// Conversion between 2D stations and 3D tunnel metres (CMathStngMap2D3D).
#pragma once

#include <zelmath/records.h>
#include <zelmath/zelmath_export.h>

namespace zelmath {

// One stretch of the alignment: its 2D station range and its length in space
// (tunnel metres). A vertical curve (Curved) is measured along its curve,
// which the map supplies under the same index.
class ZELMATH_EXPORT CStngMap2D3DElement {
public:
    CALength StngStart;  // 2D station of the element's start
    CALength StngEnd;    // 2D station of its end (greater than StngStart)
    CALength Length3D;   // length in space, in tunnel metres
    bool Curved = false; // the element is a vertical curve
};

// The vertical curve of a curved element: three PIs (station in East, height
// in North) and the radius of the circle or the vertex radius of the parabola.
class ZELMATH_EXPORT CStngMapCurved3DDef {
public:
    CACoordinate PI1;
    CACoordinate PI2;
    CACoordinate PI3;
    CALength Radius;
    bool IsParabola = false;  // false: circular curve
};

// The alignment as the calling application supplies it to the conversions,
// element by element in order of increasing station. The count must not
// change during one conversion; the conversions ask for it repeatedly.
class ZELMATH_EXPORT IStngMap2D3DElements {
public:
    virtual int GetElementCount() = 0;
    virtual bool GetElement(int index, CStngMap2D3DElement* element) = 0;
    virtual bool GetCurvedDef(int index, CStngMapCurved3DDef* curve) = 0;

protected:
    IStngMap2D3DElements() = default;
    IStngMap2D3DElements(IStngMap2D3DElements const&) = default;
    IStngMap2D3DElements& operator=(IStngMap2D3DElements const&) = default;
    ~IStngMap2D3DElements() = default;
};

// The tunnel metre is anchored at a reference point of known 2D station and
// tunnel metre; sameDirection tells whether tunnel metres grow with the
// stations. Outside the map one station metre is one tunnel metre. Both
// conversions write their output only on success. Stations and tunnel metres
// are metres.
//
// Accuracy: exact to rounding on straight grades; on a vertical curve the 2D
// station of a tunnel metre is searched until the length along the curve
// matches to 0.1 mm (at most 3000 steps, then false).
//
// Contract: static members only, no state; nothing throws, nothing allocates
// on the heap. Calls from many threads at once are safe as far as the caller's
// map may be read from them; the map is only read.
class ZELMATH_EXPORT CMathStngMap2D3D {
public:
    // Tunnel metre of a 2D station. False for a null or empty map, an element
    // or curve the map cannot supply, or a station on a curved element outside
    // the span of its curve.
    static bool get3DTMFrom2DStng(IStngMap2D3DElements* elements, double referenceStation,
                                  double referenceTunnelMetre, bool sameDirection, double station,
                                  double& tunnelMetre);

    // 2D station of a tunnel metre, walking from the reference along the map.
    // The map must not be null. False for an empty map, a reference station in
    // a gap of the map, an element or curve the map cannot supply, or a curve
    // on which the station does not converge.
    static bool get2DStngFrom3DTM(IStngMap2D3DElements* elements, double referenceStation,
                                  double referenceTunnelMetre, bool sameDirection,
                                  double tunnelMetre, double& station);

private:
    friend struct CMathStngMap2D3DTestAccess;

    // Length along the element's vertical curve between two 2D stations
    // (station1 <= station2, both on the curve).
    static bool get3DLengthForCurve(const CStngMapCurved3DDef& curve, CALength station1,
                                    CALength station2, CALength& length);
};

}  // namespace zelmath
