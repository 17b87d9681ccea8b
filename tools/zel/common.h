// What the subcommands share: the alignment options and their loading, the
// output options, the choice of units and formats.
#pragma once

#include <cctype>
#include <memory>
#include <utility>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <zelalign/alignment.h>

#include "format.h"
#include "table_writer.h"

namespace zel {

struct AlignmentOptions {
    std::string path;  // "-" for standard input
    std::string name;
    std::optional<double> referenceStation;
    std::optional<double> referenceTunnelMetre;
    bool against = false;
};

struct OutputOptions {
    std::string path;  // "" or "-" for standard output
    TableFormat format = TableFormat::Csv;
    AngleUnit angleUnit = AngleUnit::Gon;
    zelalign::OffsetSide offsetSide = zelalign::OffsetSide::Right;
    bool kilometre = false;  // station columns as km+mmm.mmmm instead of metres
};

// Adds the alignment file and the options that choose and anchor the alignment.
void AddAlignmentOptions(CLI::App* app, AlignmentOptions& options);
// Adds -o/--output; with table true also --format, and with angles --angle-unit.
void AddOutputOption(CLI::App* app, OutputOptions& options);
void AddFormatOption(CLI::App* app, OutputOptions& options);
void AddAngleOption(CLI::App* app, OutputOptions& options);
void AddOffsetSideOption(CLI::App* app, OutputOptions& options);
// Adds --station-format metres|km.
void AddStationFormatOption(CLI::App* app, OutputOptions& options);

// Station columns: "station" and, for an alignment with station equations,
// "displayed_station" and "region" (the kilometre or region the equation
// names). Written as metres with four decimals, or as km+mmm.mmmm.
std::vector<std::string> StationColumnNames(bool withEquations);
// The station cells of a row: the station, and with equations the displayed
// station and its region (an alignment without equations displays its
// internal station, in no region).
void WriteStationCells(TableWriter& table, zelalign::Alignment const& a, bool withEquations,
                       OutputOptions const& options, double station, double displayed, int region);

// The top-level members of a GeoJSON table of points computed on an
// alignment: "coordinate_system", the system its file declares as the file
// names it ("EPSG:25832"); "crs", the same for GIS software
// ("urn:ogc:def:crs:EPSG::25832"), only where the file's linear unit is the
// metre, since the coordinates are written in metres; and "units": the units
// of the table (lengths, stations, heights and coordinates in metres whatever
// the file's unit; azimuths in the chosen angle unit) and the file's own
// units. Members the file gives nothing for are left out. Each member ends in
// a comma.
std::string GeoJsonMembers(zelalign::Alignment const& a, OutputOptions const& options);

// Reads the alignment and prints its reader's warnings to standard error.
// Throws Failure with the exit code that fits the problem.
zelalign::Alignment LoadAlignment(AlignmentOptions const& options);
// Every alignment of the file, in file order (the options' name is not used).
std::vector<zelalign::Alignment> LoadAlignments(AlignmentOptions const& options);

// Accepts a finite decimal number only (no hexadecimal, inf or nan); the
// message quotes the value as given.
CLI::Validator const& FiniteNumber();

// The value of an option text that FiniteNumber() has accepted.
double NumberOf(std::string const& text);

// Adds an option that takes one of a few words (case-insensitive) and sets
// target to the value that goes with it. Another word is refused with the
// word as given and the list of valid ones.
template <typename T>
CLI::Option* AddChoice(CLI::App* app, std::string const& name, T& target,
                       std::vector<std::pair<std::string, T>> const& choices, std::string const& help)
{
    auto const lower = [](std::string s) {
        for (char& c : s) {
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        return s;
    };
    std::string list;
    for (std::size_t i = 0; i < choices.size(); ++i) {
        list += (i == 0 ? "" : i + 1 == choices.size() ? " or " : ", ") + choices[i].first;
    }
    CLI::Validator const valid(
        [choices, list, lower](std::string& text) -> std::string {
            for (auto const& c : choices) {
                if (c.first == lower(text)) {
                    return std::string();
                }
            }
            return "unknown value " + Quoted(text) + "; expected " + list;
        },
        "WORD");
    return app
        ->add_option_function<std::string>(
            name,
            [&target, choices, lower](std::string const& text) {
                for (auto const& c : choices) {
                    if (c.first == lower(text)) {
                        target = c.second;
                    }
                }
            },
            help)
        ->check(valid);
}

// Prints "zel: warning: message" to standard error.
void Warn(std::string const& message);

}  // namespace zel
