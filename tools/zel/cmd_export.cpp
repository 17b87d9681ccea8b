// zel export: the alignment as a GeoJSON line, one feature per element, so
// that a GIS opens it directly.
#include <memory>
#include <string>

#include <zelalign/error.h>
#include <zelalign/polyline.h>

#include "commands.h"
#include "common.h"
#include "exit_codes.h"
#include "output.h"
#include "table_writer.h"

namespace zel {

namespace {

enum class ExportFormat { GeoJson };

// Decimals of coordinates in the line: a tenth of a millimetre. Rounding moves
// a point by up to half of that in each axis, which the sampling leaves room for.
constexpr int CoordinateDecimals = 4;
constexpr double CoordinateRounding = 0.5e-4 * 1.4142135623730951;  // metres

void AppendNumber(std::string& s, double v, int decimals)
{
    if (!AppendFixed(s, v, decimals)) {
        s += "null";
    }
}

void WriteGeoJson(Output& out, zelalign::Alignment const& a, double chordError)
{
    zelalign::HorizontalAlignment const& h = a.Horizontal();
    std::string s = "{\"type\":\"FeatureCollection\",\"name\":";
    AppendJsonString(s, a.Name());
    s += ",\"features\":[\n";
    out.Write(s);
    for (std::size_t i = 0; i < h.Size(); ++i) {
        zelalign::HorizontalElement const& e = h.Elements()[i];
        s = i == 0 ? "" : ",\n";
        s += "{\"type\":\"Feature\",\"geometry\":{\"type\":\"LineString\",\"coordinates\":[";
        auto const points = zelalign::ElementPolyline(h, static_cast<int>(i), chordError - CoordinateRounding);
        for (std::size_t k = 0; k < points.size(); ++k) {
            s += k == 0 ? "[" : ",[";
            AppendNumber(s, points[k].east, CoordinateDecimals);
            s += ',';
            AppendNumber(s, points[k].north, CoordinateDecimals);
            s += ']';
        }
        s += "]},\"properties\":{\"alignment\":";
        AppendJsonString(s, a.Name());
        s += ",\"index\":" + std::to_string(i) + ",\"type\":";
        AppendJsonString(s, zelalign::ElementTypeName(e.type));
        if (e.type == zelalign::ElementType::ShapedTransition) {
            s += ",\"shape\":";
            AppendJsonString(s, zelalign::TransitionShapeName(e.shape));
        }
        s += ",\"start_station\":";
        AppendNumber(s, e.StartStation(), CoordinateDecimals);
        s += ",\"end_station\":";
        AppendNumber(s, e.EndStation(), CoordinateDecimals);
        s += ",\"length\":";
        AppendNumber(s, e.Length(), CoordinateDecimals);
        s += ",\"start_radius\":";
        AppendNumber(s, e.spec.Start.Radius.Double(), CoordinateDecimals);
        s += ",\"end_radius\":";
        AppendNumber(s, e.spec.End.Radius.Double(), CoordinateDecimals);
        s += ",\"line\":" + std::to_string(a.SourceLines()[i]) + "}}";
        out.Write(s);
    }
    out.Write("\n]}\n");
}

}  // namespace

Command AddExportCommand(CLI::App& app)
{
    struct Options {
        AlignmentOptions alignment;
        OutputOptions output;
        ExportFormat format = ExportFormat::GeoJson;
        double chordError = zelalign::DefaultChordError;
    };
    auto o = std::make_shared<Options>();
    CLI::App* c = app.add_subcommand("export", "the alignment as a GeoJSON line for a GIS, one feature per element");
    AddAlignmentOptions(c, o->alignment);
    AddOutputOption(c, o->output);
    AddChoice<ExportFormat>(c, "--format", o->format, {{"geojson", ExportFormat::GeoJson}},
                            "output format: geojson (default)");
    c->add_option("--chord-error", o->chordError,
                  "largest distance between the curve and the chords of the line (metres, default 0.001)")
        ->check(FiniteNumber());
    return [c, o]() -> int {
        if (!c->parsed()) {
            return -1;
        }
        if (!(o->chordError > 2.0 * CoordinateRounding)) {
            throw Failure(ExitUsage, "--chord-error must be at least 0.0002 m (the coordinates are written to "
                                     "0.1 mm), got " + Exact(o->chordError));
        }
        zelalign::Alignment const a = LoadAlignment(o->alignment);
        Output out(o->output.path, {o->alignment.path});
        WriteGeoJson(out, a, o->chordError);
        out.Close();
        return ExitSuccess;
    };
}

}  // namespace zel
