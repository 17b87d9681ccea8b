#include "common.h"

#include <cmath>
#include <iostream>
#include <map>

#include <zelalign/error.h>
#include <zelalign/readers/landxml.h>

#include "exit_codes.h"

namespace zel {

namespace {

// A number option that must be finite: the value is refused as the user wrote it.
CLI::Validator const Finite(
    [](std::string& text) -> std::string {
        double v = 0.0;
        std::size_t used = 0;
        try {
            v = std::stod(text, &used);
        } catch (std::exception const&) {
            return "not a number: " + Quoted(text);
        }
        if (used != text.size() || !std::isfinite(v)) {
            return "not a finite number: " + Quoted(text);
        }
        return std::string();
    },
    "NUMBER");

}  // namespace

CLI::Validator const& FiniteNumber()
{
    return Finite;
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
    std::map<std::string, TableFormat> const formats{
        {"csv", TableFormat::Csv}, {"tsv", TableFormat::Tsv}, {"geojson", TableFormat::GeoJson}};
    app->add_option("--format", options.format, "output format: csv, tsv or geojson (default: csv)")
        ->transform(CLI::CheckedTransformer(formats, CLI::ignore_case));
}

void AddAngleOption(CLI::App* app, OutputOptions& options)
{
    std::map<std::string, AngleUnit> const units{
        {"gon", AngleUnit::Gon}, {"deg", AngleUnit::Degree}, {"rad", AngleUnit::Radian}};
    app->add_option("--angle-unit", options.angleUnit, "unit of the azimuth column: gon, deg or rad (default: gon)")
        ->transform(CLI::CheckedTransformer(units, CLI::ignore_case));
}

void AddOffsetSideOption(CLI::App* app, OutputOptions& options)
{
    std::map<std::string, zelalign::OffsetSide> const sides{
        {"right", zelalign::OffsetSide::Right}, {"left", zelalign::OffsetSide::Left}};
    app->add_option("--offset-sign", options.offsetSide,
                    "side of the alignment whose offsets are positive: right (railway practice, default) or left "
                    "(GIS tools); the offset column is named offset_right or offset_left")
        ->transform(CLI::CheckedTransformer(sides, CLI::ignore_case));
}

void AddStationFormatOption(CLI::App* app, OutputOptions& options)
{
    std::map<std::string, bool> const forms{{"metres", false}, {"meters", false}, {"km", true}};
    app->add_option("--station-format", options.kilometre,
                    "station columns as plain metres (metres, default) or as kilometre and metres (km: 12+345.6780)")
        ->transform(CLI::CheckedTransformer(forms, CLI::ignore_case));
}

std::vector<std::string> StationColumnNames(zelalign::Alignment const& a)
{
    if (a.Equations().Empty()) {
        return {"station"};
    }
    return {"station", "displayed_station", "region"};
}

void WriteStationCells(TableWriter& table, zelalign::Alignment const& a, OutputOptions const& options,
                       double station, double displayed, int region)
{
    // Stations as the other lengths: a tenth of a millimetre.
    constexpr int StationDecimals = 4;
    if (options.kilometre) {
        table.Text(zelalign::FormatKilometre(station, StationDecimals));
    } else {
        table.Number(station, StationDecimals);
    }
    if (a.Equations().Empty()) {
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

zelalign::Alignment LoadAlignment(AlignmentOptions const& options)
{
    zelalign::TunnelMetreReference reference;
    reference.station = options.referenceStation;
    reference.tunnelMetre = options.referenceTunnelMetre;
    reference.sameDirection = !options.against;
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
