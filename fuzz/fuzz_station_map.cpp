// Fuzzes both station conversions over a small map held on the stack: up to
// six straight and curved (circular or parabolic) elements read field by field
// from the input, a reported element count that may differ from what the map
// holds, and an element or curve fetch that can be made to fail. The map
// checks every call the conversions make of it: indices inside the reported
// count, a curve asked only for a curved element. Afterwards the promises
// that hold for any input: nothing written by a failing conversion, no
// success from an empty map or without a map, and a tunnel metre equal to the
// reference answered with the reference station without reading an element.
// libFuzzer's -timeout catches a walk or a curve iteration that does not end.
#include "fuzz_input.h"

#include <zelmath/station_map.h>

#include <climits>
#include <cstring>

using namespace zelmath;
using zelfuzz::Require;

namespace {

constexpr int MaxElements = 6;

bool SameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

class FuzzMap final : public IStngMap2D3DElements {
public:
    FuzzMap(zelfuzz::Numbers& in)
    {
        m_count = in.Choice(MaxElements + 1);
        switch (in.Choice(4)) {
        case 0:
            m_reported = m_count;
            break;
        case 1:
            m_reported = m_count + 1;  // one element more than the map can supply
            break;
        case 2:
            m_reported = INT_MAX;
            break;
        default:
            m_reported = in.Choice(2) == 0 ? -1 : INT_MIN;
            break;
        }
        m_failingElement = in.Choice(MaxElements + 1);  // MaxElements: none fails
        m_failingCurve = in.Choice(MaxElements + 1);
        for (int i = 0; i < m_count; ++i) {
            CStngMap2D3DElement& e = m_elements[i];
            e.StngStart = in.Length();
            e.StngEnd = in.Length();
            e.Length3D = in.Length();
            e.Curved = in.Choice(2) == 1;
            if (e.Curved) {
                CStngMapCurved3DDef& c = m_curves[i];
                c.PI1 = in.Coordinate();
                c.PI2 = in.Coordinate();
                c.PI3 = in.Coordinate();
                c.Radius = in.Length();
                c.IsParabola = in.Choice(2) == 1;
            }
        }
    }

    int GetElementCount() override { return m_reported; }

    bool GetElement(int index, CStngMap2D3DElement* element) override
    {
        ++m_elementFetches;
        Require(element != nullptr);
        Require(index >= 0 && index < m_reported);
        if (index >= m_count || index == m_failingElement) {
            return false;
        }
        *element = m_elements[index];
        return true;
    }

    bool GetCurvedDef(int index, CStngMapCurved3DDef* curve) override
    {
        Require(curve != nullptr);
        Require(index >= 0 && index < m_reported);
        if (index >= m_count) {
            return false;
        }
        Require(m_elements[index].Curved);
        if (index == m_failingCurve) {
            return false;
        }
        *curve = m_curves[index];
        return true;
    }

    int Reported() const { return m_reported; }
    long ElementFetches() const { return m_elementFetches; }

private:
    CStngMap2D3DElement m_elements[MaxElements];
    CStngMapCurved3DDef m_curves[MaxElements];
    int m_count = 0;
    int m_reported = 0;
    int m_failingElement = MaxElements;
    int m_failingCurve = MaxElements;
    long m_elementFetches = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    zelfuzz::Numbers in(data, size);
    int const op = in.Choice(3);
    double const referenceStation = in.Next();
    double const referenceTunnelMetre = in.Next();
    bool const sameDirection = in.Choice(2) == 0;
    double const value = in.Next();
    FuzzMap map(in);

    double const sentinel = -4711.5;
    double out = sentinel;

    switch (op) {
    case 0: {
        bool const ok = CMathStngMap2D3D::get3DTMFrom2DStng(&map, referenceStation, referenceTunnelMetre,
                                                             sameDirection, value, out);
        Require(ok || SameBits(out, sentinel));
        Require(!ok || map.Reported() >= 1);
        break;
    }
    case 1: {
        bool const ok = CMathStngMap2D3D::get2DStngFrom3DTM(&map, referenceStation, referenceTunnelMetre,
                                                             sameDirection, value, out);
        Require(ok || SameBits(out, sentinel));
        Require(!ok || map.Reported() >= 1);
        if (map.Reported() >= 1 && referenceTunnelMetre - value == 0.0) {
            // Nothing to walk: the reference itself, the map left unread.
            Require(ok && SameBits(out, referenceStation));
            Require(map.ElementFetches() == 0);
        }
        break;
    }
    default: {
        bool const ok = CMathStngMap2D3D::get3DTMFrom2DStng(nullptr, referenceStation, referenceTunnelMetre,
                                                             sameDirection, value, out);
        Require(!ok && SameBits(out, sentinel));
        break;
    }
    }
    return 0;
}
