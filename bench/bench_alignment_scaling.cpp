// How the alignment layer's costs grow with the length of the alignment.
//
// The alignments are the shipped sample's 17 elements repeated end to end
// (tests/common/synthetic_alignment.h) and cut at 20, 200, 2,000 and 20,000
// elements. The measured points are the sample's own 3,004, each moved into
// a copy of the sample chosen by a fixed scramble of its number among the
// complete copies: every alignment sees the same points in the same
// neighbourhoods at the same offsets, spread over its whole length.
//
// BM_Alignment_StationCost/<elements>/<accuracy>/<order>: CPU time per point
//   of HorizontalAlignment::Project (accuracy 0 exact foot, 1 element foot;
//   order 0 the points scattered over the alignment, 1 the same points in the
//   order of the alignment, copy after copy; 2 every copy with all the
//   sample's points, copy after copy, so that each element's neighbourhood
//   holds as many points as on the sample itself).
// BM_Alignment_ImportLandXml/<elements>: ReadLandXml of a LandXML text of the
//   same chain written to a temporary file, per element.
#include <zelalign/readers/landxml.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "../tests/common/synthetic_alignment.h"

namespace {

using zelalign::ElementType;
using zelalign::HorizontalAlignment;
using zelalign::HorizontalElement;

std::string const SampleDir = std::string(ZEL_SOURCE_DIR) + "/data/sample/";

// Elements of the sample, and its measured points (east, north).
struct Sample {
    std::vector<HorizontalElement> elements;
    std::vector<std::pair<double, double>> points;
};

Sample const& LoadSample()
{
    static Sample const sample = [] {
        Sample s;
        s.elements = zelalign::ReadLandXml(SampleDir + "alignment.xml").Horizontal().Elements();
        std::ifstream csv(SampleDir + "points.csv");
        std::string line;
        std::getline(csv, line);  // header
        while (std::getline(csv, line)) {
            std::istringstream fields(line);
            std::string id, east, north;
            if (std::getline(fields, id, ',') && std::getline(fields, east, ',') && std::getline(fields, north, ',')) {
                s.points.emplace_back(std::stod(east), std::stod(north));
            }
        }
        return s;
    }();
    return sample;
}

// How the measured points are laid over the copies of the sample.
enum class Spread {
    Scattered,    // each point in one copy, picked by a scramble of its number
    AlongTheLine, // the same, ordered by copy, as a survey walking the line writes them
    EveryCopy     // every point in every copy, copy after copy
};

// Measured points of the sample moved into the complete copies of a chain of
// count elements.
std::vector<std::pair<double, double>> SpreadPoints(std::size_t count, Spread spread)
{
    Sample const& s = LoadSample();
    std::size_t const copies = std::max<std::size_t>(1, count / s.elements.size());
    double const de = s.elements.back().spec.End.Coordinate.East().Double() -
                      s.elements.front().spec.Start.Coordinate.East().Double();
    double const dn = s.elements.back().spec.End.Coordinate.North().Double() -
                      s.elements.front().spec.Start.Coordinate.North().Double();
    std::vector<std::pair<std::size_t, std::pair<double, double>>> placed;
    if (spread == Spread::EveryCopy) {
        std::vector<std::pair<double, double>> out;
        out.reserve(copies * s.points.size());
        for (std::size_t k = 0; k < copies; ++k) {
            for (auto const& p : s.points) {
                out.emplace_back(p.first + static_cast<double>(k) * de, p.second + static_cast<double>(k) * dn);
            }
        }
        return out;
    }
    for (std::size_t i = 0; i < s.points.size(); ++i) {
        // A fixed scramble (multiplicative hash) of the point's number.
        std::size_t const k = (i * 2654435761u) % copies;
        placed.push_back({k, {s.points[i].first + static_cast<double>(k) * de,
                              s.points[i].second + static_cast<double>(k) * dn}});
    }
    if (spread == Spread::AlongTheLine) {
        std::stable_sort(placed.begin(), placed.end(),
                         [](auto const& a, auto const& b) { return a.first < b.first; });
    }
    std::vector<std::pair<double, double>> out;
    for (auto const& p : placed) {
        out.push_back(p.second);
    }
    return out;
}

void BM_Alignment_StationCost(benchmark::State& state)
{
    auto const count = static_cast<std::size_t>(state.range(0));
    auto const accuracy = state.range(1) == 0 ? zelalign::ProjectionAccuracy::Exact
                                              : zelalign::ProjectionAccuracy::Element;
    HorizontalAlignment const a(zelsynthetic::Repeated(LoadSample().elements, count));
    auto const points = SpreadPoints(count, static_cast<Spread>(state.range(2)));
    int on = 0;
    for (auto _ : state) {
        for (auto const& p : points) {
            zelalign::Projection const r = a.Project(p.first, p.second, accuracy);
            on += r.status == zelalign::ProjectionStatus::OnElement;
            benchmark::DoNotOptimize(r);
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(points.size()));
    state.SetLabel(std::to_string(a.Size()) + " elements, " + std::to_string(points.size()) + " points");
}
BENCHMARK(BM_Alignment_StationCost)
    ->ArgsProduct({{20, 200, 2000, 20000}, {0, 1}, {0}})
    ->ArgsProduct({{20, 200, 2000, 20000}, {0}, {1, 2}})
    ->Unit(benchmark::kMillisecond);

// ------------------------------------------------------------------ import

void Number(std::string& out, double v)
{
    char buf[32];
    auto const r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed, 6);
    out.append(buf, r.ptr);
}

void Point(std::string& out, char const* tag, zelmath::CACoordinate const& c)
{
    out += "<";
    out += tag;
    out += ">";
    Number(out, c.North().Double());
    out += " ";
    Number(out, c.East().Double());
    out += "</";
    out += tag;
    out += ">\n";
}

void Radius(std::string& out, char const* name, double r)
{
    out += " ";
    out += name;
    out += "=\"";
    if (r == 0.0) {
        out += "INF";
    } else {
        Number(out, std::fabs(r));
    }
    out += "\"";
}

// The chain as a LandXML 1.2 document, one horizontal element a node.
std::string LandXmlOf(std::vector<HorizontalElement> const& chain)
{
    std::string x = "<?xml version=\"1.0\"?>\n<LandXML version=\"1.2\"><Alignments><Alignment name=\"long\" staStart=\"";
    Number(x, chain.front().StartStation());
    x += "\"><CoordGeom>\n";
    for (HorizontalElement const& e : chain) {
        double const rs = e.spec.Start.Radius.Double();
        double const re = e.spec.End.Radius.Double();
        char const* end = "</Line>\n";
        switch (e.type) {
        case ElementType::Line:
            x += "<Line";
            break;
        case ElementType::Arc:
            x += "<Curve crvType=\"arc\"";
            Radius(x, "radius", rs);
            x += rs > 0.0 ? " rot=\"cw\"" : " rot=\"ccw\"";
            end = "</Curve>\n";
            break;
        default:
            x += "<Spiral spiType=\"";
            // The shaped transitions' shape names are LandXML spiral types.
            x += e.type == ElementType::Clothoid           ? "clothoid"
                 : e.type == ElementType::CubicParabola    ? "cubicParabola"
                 : e.type == ElementType::ShapedTransition ? zelalign::TransitionShapeName(e.shape)
                                                           : "cosine";
            x += "\"";
            Radius(x, "radiusStart", rs);
            Radius(x, "radiusEnd", re);
            x += (rs > 0.0 || re > 0.0) ? " rot=\"cw\"" : " rot=\"ccw\"";
            end = "</Spiral>\n";
            break;
        }
        x += " staStart=\"";
        Number(x, e.StartStation());
        x += "\" length=\"";
        Number(x, e.Length());
        x += "\">\n";
        Point(x, "Start", e.spec.Start.Coordinate);
        Point(x, "End", e.spec.End.Coordinate);
        x += end;
    }
    x += "</CoordGeom></Alignment></Alignments></LandXML>\n";
    return x;
}

void BM_Alignment_ImportLandXml(benchmark::State& state)
{
    auto const count = static_cast<std::size_t>(state.range(0));
    std::string const path =
        (std::filesystem::temp_directory_path() / ("zel-bench-import-" + std::to_string(count) + ".xml")).string();
    {
        std::ofstream(path) << LandXmlOf(zelsynthetic::Repeated(LoadSample().elements, count));
    }
    std::size_t read = 0;
    for (auto _ : state) {
        zelalign::Alignment const a = zelalign::ReadLandXml(path);
        read = a.Horizontal().Size();
        benchmark::DoNotOptimize(read);
    }
    std::remove(path.c_str());
    if (read != count) {
        state.SkipWithError("the document did not read back whole");
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(count));
    state.SetLabel(std::to_string(count) + " elements");
}
BENCHMARK(BM_Alignment_ImportLandXml)->Arg(20)->Arg(200)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);

}  // namespace
