#include "common.h"

#include <cmath>
#include <iostream>

#include <zelalign/error.h>
#include <zelalign/readers/landxml.h>
#include <zelalign/readers/points_csv.h>

#include "exit_codes.h"

namespace zel {

namespace {

// A number option that must be finite: the value is refused as the user wrote it.
CLI::Validator const Finite(
    [](std::string& text) -> std::string {
        double v = 0.0;
        switch (zelalign::ParseDecimal(text, &v)) {
        case zelalign::DecimalResult::Ok:
            return std::string();
        case zelalign::DecimalResult::OutOfRange:
            return "out of range: " + Quoted(text) + "; expected a finite number, at most about 1.8e308 in magnitude";
        case zelalign::DecimalResult::NotDecimal:
            break;
        }
        return "not a decimal number: " + Quoted(text) + "; expected a finite number such as 12500 or -1.5e3";
    },
    "NUMBER");

}  // namespace

std::string GeoJsonMembers(zelalign::Alignment const& a, OutputOptions const& options)
{
    zelalign::AlignmentSource const& source = a.Source();
    std::string s;
    // The coordinates are written in metres: a GIS may take them in the
    // declared system only where the file's own unit is the metre too.
    bool const metric = source.linearUnit.empty() || source.linearUnit == "meter" || source.linearUnit == "metre";
    if (!source.coordinateSystem.empty()) {
        s += "\"coordinate_system\":";
        AppendJsonString(s, source.coordinateSystem);
        s += ',';
    }
    if (!source.coordinateSystem.empty() && metric) {
        std::string const epsg = "EPSG:";
        std::string const name = source.coordinateSystem.compare(0, epsg.size(), epsg) == 0
                                     ? "urn:ogc:def:crs:EPSG::" + source.coordinateSystem.substr(epsg.size())
                                     : source.coordinateSystem;
        s += "\"crs\":{\"type\":\"name\",\"properties\":{\"name\":";
        AppendJsonString(s, name);
        s += "}},";
    }
    s += "\"units\":{\"length\":\"metre\",\"angle\":";
    AppendJsonString(s, AngleUnitName(options.angleUnit));
    s += ",\"file_linear_unit\":";
    AppendJsonString(s, source.linearUnit.empty() ? std::string("meter") : source.linearUnit);
    s += ",\"file_angular_unit\":";
    AppendJsonString(s, source.angularUnit.empty() ? std::string("radians") : source.angularUnit);
    s += "},";
    return s;
}

CLI::Validator const& FiniteNumber()
{
    return Finite;
}

double NumberOf(std::string const& text)
{
    double v = 0.0;
    if (zelalign::ParseDecimal(text, &v) != zelalign::DecimalResult::Ok) {
        throw Failure(ExitUsage, "not a decimal number: " + Quoted(text));
    }
    return v;
}

void AddAlignmentOptions(CLI::App* app, AlignmentOptions& options)
{
    app->add_option("alignment", options.path, "LandXML 1.2 file with the alignment (- for standard input)")
        ->required();
    app->add_option("--name", options.name, "name of the alignment in the file (default: the first)");
    app->add_option("--ref-station", options.referenceStation,
                    "station of the tunnel-metre reference point (default: the alignment's start)")
        ->check(Finite);
    app->add_option("--ref-tm", options.referenceTunnelMetre,
                    "tunnel metre at the reference point (default: the reference station)")
        ->check(Finite);
    app->add_flag("--against", options.against, "tunnel metres run against the stations");
}

void AddOutputOption(CLI::App* app, OutputOptions& options)
{
    app->add_option("-o,--output", options.path, "write to this file instead of standard output (- for standard output)");
}

void AddFormatOption(CLI::App* app, OutputOptions& options)
{
    AddChoice<TableFormat>(app, "--format", options.format,
                           {{"csv", TableFormat::Csv}, {"tsv", TableFormat::Tsv}, {"geojson", TableFormat::GeoJson}},
                           "output format: csv, tsv or geojson (default: csv)");
}

void AddAngleOption(CLI::App* app, OutputOptions& options)
{
    AddChoice<AngleUnit>(app, "--angle-unit", options.angleUnit,
                         {{"gon", AngleUnit::Gon}, {"deg", AngleUnit::Degree}, {"rad", AngleUnit::Radian}},
                         "unit of the azimuth column: gon, deg or rad (default: gon)");
}

void AddOffsetSideOption(CLI::App* app, OutputOptions& options)
{
    AddChoice<zelalign::OffsetSide>(
        app, "--offset-sign", options.offsetSide,
        {{"right", zelalign::OffsetSide::Right}, {"left", zelalign::OffsetSide::Left}},
        "side of the alignment whose offsets are positive: right (railway practice, default) or left "
        "(GIS tools); the offset column is named offset_right or offset_left");
}

void AddStationFormatOption(CLI::App* app, OutputOptions& options)
{
    std::map<std::string, bool> const forms{{"metres", false}, {"meters", false}, {"km", true}};
    app->add_option("--station-format", options.kilometre,
                    "station columns as plain metres (metres, default) or as kilometre and metres (km: 12+345.6780)")
        ->transform(CLI::CheckedTransformer(forms, CLI::ignore_case));
}

std::vector<std::string> StationColumnNames(bool withEquations)
{
    if (!withEquations) {
        return {"station"};
    }
    return {"station", "displayed_station", "region"};
}

void WriteStationCells(TableWriter& table, zelalign::Alignment const& a, bool withEquations,
                       OutputOptions const& options, double station, double displayed, int region)
{
    // Stations as the other lengths: a tenth of a millimetre.
    constexpr int StationDecimals = 4;
    if (options.kilometre) {
        table.Text(zelalign::FormatKilometre(station, StationDecimals));
    } else {
        table.Number(station, StationDecimals);
    }
    if (!withEquations) {
        return;
    }
    if (a.Equations().Empty()) {
        if (options.kilometre) {
            table.Text(zelalign::FormatKilometre(station, StationDecimals));
        } else {
            table.Number(station, StationDecimals);
        }
        table.Text("");
        return;
    }
    if (options.kilometre) {
        table.Text(a.Equations().Format(zelalign::DisplayedStation{displayed, region}, StationDecimals));
    } else {
        table.Number(displayed, StationDecimals);
    }
    table.Text(a.Equations().RegionName(region));
}

void Warn(std::string const& message)
{
    std::cerr << "zel: warning: " << message << "\n";
}

namespace {

zelalign::TunnelMetreReference ReferenceOf(AlignmentOptions const& options)
{
    zelalign::TunnelMetreReference reference;
    reference.station = options.referenceStation;
    reference.tunnelMetre = options.referenceTunnelMetre;
    reference.sameDirection = !options.against;
    return reference;
}

}  // namespace

std::vector<zelalign::Alignment> LoadAlignments(AlignmentOptions const& options)
{
    try {
        std::string const source = options.path == "-" ? std::string("standard input") : options.path;
        std::vector<zelalign::Alignment> all =
            zelalign::ParseLandXmlAlignments(zelalign::ReadTextFile(options.path), source, ReferenceOf(options));
        for (zelalign::Alignment const& a : all) {
            for (std::string const& w : a.Warnings()) {
                Warn(w);
            }
        }
        return all;
    } catch (zelalign::IoError const& e) {
        throw Failure(ExitIoFailure, e.what());
    } catch (zelalign::Error const& e) {
        throw Failure(ExitBadData, e.what());
    }
}

zelalign::Alignment LoadAlignment(AlignmentOptions const& options)
{
    zelalign::TunnelMetreReference const reference = ReferenceOf(options);
    try {
        zelalign::Alignment a = zelalign::ReadLandXml(options.path, options.name, reference);
        for (std::string const& w : a.Warnings()) {
            Warn(w);
        }
        return a;
    } catch (zelalign::IoError const& e) {
        throw Failure(ExitIoFailure, e.what());
    } catch (zelalign::Error const& e) {
        throw Failure(ExitBadData, e.what());
    }
}

}  // namespace zel
