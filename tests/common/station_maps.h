// A station map held in vectors, as a caller of the 2D/3D station conversions
// would keep it: one element record per plan range and, at the same index,
// the vertical curve of a curved element. Its lookups only read, so one
// instance can serve many threads; the tests derive from it to record or
// refuse lookups.
#pragma once

#include <zelmath/station_map.h>

#include <cstddef>
#include <vector>

namespace zeltest {

class VectorStationMap : public zelmath::IStngMap2D3DElements {
public:
    std::vector<zelmath::CStngMap2D3DElement> elements;
    std::vector<zelmath::CStngMapCurved3DDef> curves;  // same index as elements

    int GetElementCount() override { return static_cast<int>(elements.size()); }
    bool GetElement(int index, zelmath::CStngMap2D3DElement* element) override
    {
        if (index < 0 || index >= static_cast<int>(elements.size())) {
            return false;
        }
        *element = elements[static_cast<std::size_t>(index)];
        return true;
    }
    bool GetCurvedDef(int index, zelmath::CStngMapCurved3DDef* curve) override
    {
        if (index < 0 || index >= static_cast<int>(curves.size())) {
            return false;
        }
        *curve = curves[static_cast<std::size_t>(index)];
        return true;
    }
    // A straight element from plan station start to end, length3D long in
    // space.
    void AddStraight(double start, double end, double length3D)
    {
        zelmath::CStngMap2D3DElement e;
        e.StngStart = start;
        e.StngEnd = end;
        e.Length3D = length3D;
        elements.push_back(e);
        curves.emplace_back();
    }
    // A curved element from plan station start to end, length3D long in
    // space, following the vertical curve given.
    void AddCurve(double start, double end, double length3D, zelmath::CStngMapCurved3DDef const& curve)
    {
        zelmath::CStngMap2D3DElement e;
        e.StngStart = start;
        e.StngEnd = end;
        e.Length3D = length3D;
        e.Curved = true;
        elements.push_back(e);
        curves.push_back(curve);
    }
};

}  // namespace zeltest
