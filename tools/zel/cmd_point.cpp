// zel point: the design point at stations (setting out).
#include <cmath>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <zelalign/error.h>
#include <zelalign/set_out.h>

#include "commands.h"
#include "common.h"
#include "exit_codes.h"
#include "output.h"
#include "table_writer.h"

namespace zel {

namespace {

// Decimals of lengths in the table (a tenth of a millimetre) and of the
// gradient in percent.
constexpr int LengthDecimals = 4;
constexpr int GradientDecimals = 4;

// The internal station of a displayed station written as metres or as
// "km+metres"; where it occurs more than once, the first, with a note that
// names every place.
double InternalOf(zelalign::Alignment const& a, std::string const& text)
{
    double value = 0.0;
    if (!zelalign::ParseKilometre(text, &value)) {
        throw Failure(ExitUsage, "--at-displayed: not a station (metres or km+metres): " + Quoted(text));
    }
    std::size_t const plus = text.find('+', 1);
    std::vector<zelalign::DisplayedMatch> matches;
    if (plus != std::string::npos && text[0] != '-') {
        double const km = std::stod(text.substr(0, plus));
        matches = a.Equations().FromKilometre(km, value - km * 1000.0, a.StartStation(), a.EndStation());
    } else {
        matches = a.Equations().FromDisplayed(value, a.StartStation(), a.EndStation());
    }
    if (matches.empty()) {
        throw Failure(ExitBadData, "displayed station " + Quoted(text) + " does not occur on the alignment");
    }
    if (matches.size() > 1) {
        std::string note = "displayed station " + Quoted(text) + " occurs " + std::to_string(matches.size()) +
                           " times:";
        for (zelalign::DisplayedMatch const& m : matches) {
            std::string const& region = a.Equations().RegionName(m.region);
            note += " internal " + Fixed(m.internal, LengthDecimals) +
                    (region.empty() ? std::string() : " (region " + region + ")") + ",";
        }
        note.back() = ';';
        std::cerr << "zel: note: " << note << " using the first\n";
    }
    return matches.front().internal;
}

}  // namespace

Command AddPointCommand(CLI::App& app)
{
    struct Options {
        AlignmentOptions alignment;
        OutputOptions output;
        std::vector<std::string> at;  // as given, for messages
        std::vector<std::string> atDisplayed;
        std::optional<double> every;
        std::optional<double> from;
        std::optional<double> to;
    };
    auto o = std::make_shared<Options>();
    CLI::App* c = app.add_subcommand("point", "coordinates, direction and height at stations (setting out)");
    AddAlignmentOptions(c, o->alignment);
    c->add_option("--at", o->at, "internal station(s) to compute")->check(FiniteNumber());
    c->add_option("--at-displayed", o->atDisplayed,
                  "displayed station(s) after the station equations, as metres or km+metres (12+345.678)");
    c->add_option("--every", o->every, "a setting-out table at this interval (metres)")->check(FiniteNumber());
    c->add_option("--from", o->from, "first station of the table (default: the start)")->check(FiniteNumber());
    c->add_option("--to", o->to, "last station of the table (default: the end)")->check(FiniteNumber());
    AddOutputOption(c, o->output);
    AddFormatOption(c, o->output);
    AddAngleOption(c, o->output);
    AddStationFormatOption(c, o->output);
    return [c, o]() -> int {
        if (!c->parsed()) {
            return -1;
        }
        if (o->at.empty() && o->atDisplayed.empty() && !o->every) {
            throw Failure(ExitUsage, "give --at, --at-displayed or --every");
        }
        if (!o->every && (o->from || o->to)) {
            throw Failure(ExitUsage, "--from and --to go with --every");
        }
        zelalign::Alignment const a = LoadAlignment(o->alignment);
        std::vector<double> stations;
        std::vector<std::string> given;  // each station as the user wrote it, or as computed
        for (std::string const& text : o->at) {
            stations.push_back(NumberOf(text));
            given.push_back("--at " + text);
        }
        for (std::string const& text : o->atDisplayed) {
            stations.push_back(InternalOf(a, text));
            given.push_back("--at-displayed " + text);
        }
        if (o->every) {
            try {
                std::vector<double> const table =
                    zelalign::SettingOutStations(o->from.value_or(a.StartStation()), o->to.value_or(a.EndStation()),
                                                 *o->every);
                for (double s : table) {
                    stations.push_back(s);
                    given.push_back("setting-out station " + Exact(s));
                }
            } catch (zelalign::ArgumentError const& e) {
                throw Failure(ExitUsage, std::string("--every, --from, --to: ") + e.what());
            }
        }
        // Every station is checked before anything is written.
        std::vector<zelalign::SetOutPoint> points(stations.size());
        for (std::size_t i = 0; i < stations.size(); ++i) {
            if (!a.SetOut(stations[i], &points[i])) {
                throw Failure(ExitBadData, given[i] + ": the station lies outside the alignment; expected a station from " +
                                               Exact(a.StartStation()) + " to " + Exact(a.EndStation()));
            }
        }
        Output out(o->output.path, {o->alignment.path});
        std::string const angleColumn = std::string("azimuth_") + AngleUnitName(o->output.angleUnit);
        std::vector<std::string> columns = StationColumnNames(!a.Equations().Empty());
        for (char const* name : {"element", "type", "east", "north", "azimuth", "radius", "design_height",
                                 "gradient_percent", "tunnel_metre"}) {
            columns.emplace_back(name);
        }
        columns[columns.size() - 5] = angleColumn;
        bool const withCant = !a.Cant().Empty();
        if (withCant) {
            columns.emplace_back("applied_cant");  // metres
        }
        TableWriter table(out, o->output.format, columns, GeoJsonMembers(a, o->output));
        for (zelalign::SetOutPoint const& p : points) {
            WriteStationCells(table, a, !a.Equations().Empty(), o->output, p.station, p.displayedStation, p.region);
            table.Integer(p.element)
                .Text(zelalign::ElementTypeName(p.type))
                .Number(p.east, LengthDecimals)
                .Number(p.north, LengthDecimals)
                .Number(AngleIn(p.azimuth, o->output.angleUnit), AngleDecimals(o->output.angleUnit))
                .Number(p.radius, LengthDecimals)
                .Number(p.designHeight, LengthDecimals)
                .Number(p.gradient * 100.0, GradientDecimals)
                .Number(p.tunnelMetre, LengthDecimals);
            if (withCant) {
                table.Number(p.appliedCant, LengthDecimals);
            }
            table.SetPoint(p.east, p.north, p.designHeight);
            table.EndRow();
        }
        table.Finish();
        out.Close();
        return ExitSuccess;
    };
}

}  // namespace zel
