// zel info: the element table and the profile of an alignment, as text or JSON.
#include <memory>
#include <string>

#include <zelalign/alignment.h>
#include <zelalign/error.h>
#include <zelalign/readers/landxml.h>

#include "commands.h"
#include "common.h"
#include "exit_codes.h"
#include "output.h"
#include "table_writer.h"

namespace zel {

namespace {

constexpr int LengthDecimals = 4;

char const* CurveName(zelalign::VerticalCurveType type)
{
    switch (type) {
    case zelalign::VerticalCurveType::Circle:
        return "circle";
    case zelalign::VerticalCurveType::Parabola:
        return "parabola";
    case zelalign::VerticalCurveType::UnsymParabola:
        return "unsym_parabola";
    case zelalign::VerticalCurveType::None:
        break;
    }
    return "none";
}

// A JSON number, or null for a value that is not finite.
void AppendJsonNumber(std::string& out, double v)
{
    if (!AppendFixed(out, v, 6)) {
        out += "null";
    }
}

void WriteText(Output& out, zelalign::Alignment const& a)
{
    zelalign::HorizontalAlignment const& h = a.Horizontal();
    zelalign::TunnelMetreMap const& tm = a.TunnelMetres();
    std::string s;
    s += "alignment: " + a.Name() + "\n";
    s += "stations: " + Fixed(h.StartStation(), LengthDecimals) + " to " + Fixed(h.EndStation(), LengthDecimals) +
         " (" + std::to_string(h.Size()) + " elements)\n";
    s += "tunnel metre: " + Fixed(tm.ReferenceTunnelMetre(), LengthDecimals) + " at station " +
         Fixed(tm.ReferenceStation(), LengthDecimals) + (tm.SameDirection() ? "" : ", counted against the stations") +
         "\n";
    // Every length is converted to metres on reading; the file's own unit and
    // coordinate system are named so that the output can be traced back.
    s += "units: metres (file: " + (a.Source().linearUnit.empty() ? std::string("meter") : a.Source().linearUnit) +
         "), angles of the file in " +
         (a.Source().angularUnit.empty() ? std::string("radians") : a.Source().angularUnit) + "\n";
    s += "coordinate system: " +
         (a.Source().coordinateSystem.empty() ? std::string("not declared") : a.Source().coordinateSystem) + "\n";
    s += "station equations: " + std::to_string(a.Equations().Equations().size()) +
         ", cant stations: " + std::to_string(a.Cant().Stations().size()) + "\n";
    s += "warnings: " + std::to_string(a.Warnings().size()) + "\n\n";
    s += "index,type,line,start_station,end_station,length,start_radius,end_radius,start_east,start_north,"
         "end_east,end_north\n";
    out.Write(s);
    for (std::size_t i = 0; i < h.Size(); ++i) {
        zelalign::HorizontalElement const& e = h.Elements()[i];
        s = std::to_string(i) + ',' + zelalign::ElementTypeName(e.type) + ',' + std::to_string(a.SourceLines()[i]) +
            ',' + Fixed(e.StartStation(), LengthDecimals) + ',' + Fixed(e.EndStation(), LengthDecimals) + ',' +
            Fixed(e.Length(), LengthDecimals) + ',' + Fixed(e.spec.Start.Radius.Double(), LengthDecimals) + ',' +
            Fixed(e.spec.End.Radius.Double(), LengthDecimals) + ',' +
            Fixed(e.spec.Start.Coordinate.East().Double(), LengthDecimals) + ',' +
            Fixed(e.spec.Start.Coordinate.North().Double(), LengthDecimals) + ',' +
            Fixed(e.spec.End.Coordinate.East().Double(), LengthDecimals) + ',' +
            Fixed(e.spec.End.Coordinate.North().Double(), LengthDecimals) + '\n';
        out.Write(s);
    }
    out.Write("\n");
    zelalign::VerticalProfile const& p = a.Profile();
    if (p.Empty()) {
        out.Write("profile: none\n");
        return;
    }
    out.Write("pvi,station,height,curve,radius,curve_start,curve_end\n");
    for (std::size_t i = 0; i < p.Points().size(); ++i) {
        zelalign::ProfilePoint const& v = p.Points()[i];
        s = std::to_string(i) + ',' + Fixed(v.station, LengthDecimals) + ',' + Fixed(v.height, LengthDecimals) + ',' +
            CurveName(v.curve) + ',' +
            (v.radius > 0.0 ? Fixed(v.radius, LengthDecimals) : std::string()) + ',' +
            Fixed(p.CurveStart(static_cast<int>(i)), LengthDecimals) + ',' +
            Fixed(p.CurveEnd(static_cast<int>(i)), LengthDecimals) + '\n';
        out.Write(s);
    }
}

void WriteJson(Output& out, zelalign::Alignment const& a)
{
    zelalign::HorizontalAlignment const& h = a.Horizontal();
    zelalign::TunnelMetreMap const& tm = a.TunnelMetres();
    std::string s = "{\n  \"name\": ";
    AppendJsonString(s, a.Name());
    s += ",\n  \"source\": ";
    AppendJsonString(s, a.Source().path);
    s += ",\n  \"start_station\": ";
    AppendJsonNumber(s, h.StartStation());
    s += ",\n  \"end_station\": ";
    AppendJsonNumber(s, h.EndStation());
    s += ",\n  \"length\": ";
    AppendJsonNumber(s, h.EndStation() - h.StartStation());
    s += ",\n  \"element_count\": " + std::to_string(h.Size());
    s += ",\n  \"file_linear_unit\": ";
    AppendJsonString(s, a.Source().linearUnit);
    s += ",\n  \"file_angular_unit\": ";
    AppendJsonString(s, a.Source().angularUnit);
    s += ",\n  \"coordinate_system\": ";
    AppendJsonString(s, a.Source().coordinateSystem);
    s += ",\n  \"tunnel_metre\": {\"reference_station\": ";
    AppendJsonNumber(s, tm.ReferenceStation());
    s += ", \"reference_tunnel_metre\": ";
    AppendJsonNumber(s, tm.ReferenceTunnelMetre());
    s += ", \"same_direction\": ";
    s += tm.SameDirection() ? "true" : "false";
    s += "},\n  \"elements\": [";
    for (std::size_t i = 0; i < h.Size(); ++i) {
        zelalign::HorizontalElement const& e = h.Elements()[i];
        s += i == 0 ? "\n    " : ",\n    ";
        s += "{\"index\": " + std::to_string(i) + ", \"type\": ";
        AppendJsonString(s, zelalign::ElementTypeName(e.type));
        if (e.type == zelalign::ElementType::ShapedTransition) {
            s += ", \"shape\": ";
            AppendJsonString(s, zelalign::TransitionShapeName(e.shape));
        }
        s += ", \"line\": " + std::to_string(a.SourceLines()[i]);
        s += ", \"start_station\": ";
        AppendJsonNumber(s, e.StartStation());
        s += ", \"end_station\": ";
        AppendJsonNumber(s, e.EndStation());
        s += ", \"length\": ";
        AppendJsonNumber(s, e.Length());
        s += ", \"start_radius\": ";
        AppendJsonNumber(s, e.spec.Start.Radius.Double());
        s += ", \"end_radius\": ";
        AppendJsonNumber(s, e.spec.End.Radius.Double());
        s += ", \"start\": [";
        AppendJsonNumber(s, e.spec.Start.Coordinate.East().Double());
        s += ", ";
        AppendJsonNumber(s, e.spec.Start.Coordinate.North().Double());
        s += "], \"end\": [";
        AppendJsonNumber(s, e.spec.End.Coordinate.East().Double());
        s += ", ";
        AppendJsonNumber(s, e.spec.End.Coordinate.North().Double());
        s += "]}";
    }
    s += "\n  ],\n  \"profile\": [";
    zelalign::VerticalProfile const& p = a.Profile();
    for (std::size_t i = 0; i < p.Points().size(); ++i) {
        zelalign::ProfilePoint const& v = p.Points()[i];
        s += i == 0 ? "\n    " : ",\n    ";
        s += "{\"station\": ";
        AppendJsonNumber(s, v.station);
        s += ", \"height\": ";
        AppendJsonNumber(s, v.height);
        s += ", \"curve\": ";
        AppendJsonString(s, CurveName(v.curve));
        s += ", \"radius\": ";
        if (!(v.radius > 0.0)) {  // no curve, or an unsymmetrical parabola (two radii)
            s += "null";
        } else {
            AppendJsonNumber(s, v.radius);
        }
        s += ", \"curve_start\": ";
        AppendJsonNumber(s, p.CurveStart(static_cast<int>(i)));
        s += ", \"curve_end\": ";
        AppendJsonNumber(s, p.CurveEnd(static_cast<int>(i)));
        s += "}";
    }
    s += p.Points().empty() ? "],\n  \"warnings\": [" : "\n  ],\n  \"warnings\": [";
    for (std::size_t i = 0; i < a.Warnings().size(); ++i) {
        s += i == 0 ? "\n    " : ",\n    ";
        AppendJsonString(s, a.Warnings()[i]);
    }
    s += a.Warnings().empty() ? "]\n}\n" : "\n  ]\n}\n";
    out.Write(s);
}

// Every alignment of a file, one row each: name, stations, length, element
// count and warnings, or why it was refused. True when the file holds more
// than one alignment (the list was written).
bool WriteAllAlignments(AlignmentOptions const& options, OutputOptions const& output)
{
    std::string text;
    std::vector<std::string> names;
    std::string const source = options.path == "-" ? std::string("standard input") : options.path;
    try {
        text = zelalign::ReadTextFile(options.path);
        names = zelalign::LandXmlAlignmentNames(text, source);
    } catch (zelalign::IoError const& e) {
        throw Failure(ExitIoFailure, e.what());
    } catch (zelalign::Error const& e) {
        throw Failure(ExitBadData, e.what());
    }
    if (names.size() < 2) {
        return false;
    }
    Output out(output.path, {options.path});
    TableWriter table(out, TableFormat::Csv,
                      {"alignment", "start_station", "end_station", "length", "elements", "warnings", "refused"});
    for (std::string const& name : names) {
        table.Text(name);
        try {
            zelalign::Alignment const a = zelalign::ParseLandXml(text, source, name);
            table.Number(a.StartStation(), LengthDecimals)
                .Number(a.EndStation(), LengthDecimals)
                .Number(a.EndStation() - a.StartStation(), LengthDecimals)
                .Integer(static_cast<long long>(a.Horizontal().Size()))
                .Integer(static_cast<long long>(a.Warnings().size()))
                .Text("");
        } catch (zelalign::Error const& e) {
            table.Text("").Text("").Text("").Text("").Text("").Text(e.what());
        }
        table.EndRow();
    }
    table.Finish();
    out.Close();
    return true;
}

}  // namespace

Command AddInfoCommand(CLI::App& app)
{
    struct Options {
        AlignmentOptions alignment;
        OutputOptions output;
        bool json = false;
    };
    auto o = std::make_shared<Options>();
    CLI::App* c = app.add_subcommand("info", "the element table and the profile of an alignment; for a file of several alignments without --name, one row per alignment");
    AddAlignmentOptions(c, o->alignment);
    AddOutputOption(c, o->output);
    c->add_flag("--json", o->json, "write the alignment's description as JSON, for scripts");
    return [c, o]() -> int {
        if (!c->parsed()) {
            return -1;
        }
        // A file of several alignments without --name: one row each.
        if (o->alignment.name.empty() && !o->json && o->alignment.path != "-" &&
            WriteAllAlignments(o->alignment, o->output)) {
            return ExitSuccess;
        }
        zelalign::Alignment const a = LoadAlignment(o->alignment);
        Output out(o->output.path, {o->alignment.path});
        if (o->json) {
            WriteJson(out, a);
        } else {
            WriteText(out, a);
        }
        out.Close();
        return ExitSuccess;
    };
}

}  // namespace zel
