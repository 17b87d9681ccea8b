// zel tm: station to tunnel metre and back.
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "common.h"
#include "exit_codes.h"
#include "output.h"
#include "table_writer.h"

namespace zel {

namespace {

constexpr int LengthDecimals = 4;

}  // namespace

Command AddTmCommand(CLI::App& app)
{
    struct Options {
        AlignmentOptions alignment;
        OutputOptions output;
        std::vector<std::string> stations;  // as given, for messages
        std::vector<std::string> tunnelMetres;
    };
    auto o = std::make_shared<Options>();
    CLI::App* c = app.add_subcommand("tm", "station to tunnel metre and back");
    AddAlignmentOptions(c, o->alignment);
    c->add_option("--station", o->stations, "station(s) to convert to tunnel metres")->check(FiniteNumber());
    c->add_option("--tunnel-metre", o->tunnelMetres, "tunnel metre(s) to convert to stations")->check(FiniteNumber());
    AddOutputOption(c, o->output);
    AddFormatOption(c, o->output);
    return [c, o]() -> int {
        if (!c->parsed()) {
            return -1;
        }
        if (o->stations.empty() && o->tunnelMetres.empty()) {
            throw Failure(ExitUsage, "give --station or --tunnel-metre");
        }
        zelalign::Alignment const a = LoadAlignment(o->alignment);
        // Every value is converted before anything is written.
        std::vector<std::pair<double, double>> rows;
        for (std::string const& text : o->stations) {
            double const s = NumberOf(text);
            double tm = 0.0;
            if (!a.ToTunnelMetre(s, &tm)) {
                throw Failure(ExitBadData, "--station " + text +
                                               ": the station lies outside the alignment; expected a station from " +
                                               Exact(a.StartStation()) + " to " + Exact(a.EndStation()));
            }
            rows.emplace_back(s, tm);
        }
        for (std::string const& text : o->tunnelMetres) {
            double const tm = NumberOf(text);
            double s = 0.0;
            if (!a.ToStation(tm, &s)) {
                throw Failure(ExitBadData, "--tunnel-metre " + text +
                                               ": the tunnel metre lies outside the alignment; expected one whose "
                                               "station lies from " +
                                               Exact(a.StartStation()) + " to " + Exact(a.EndStation()));
            }
            rows.emplace_back(s, tm);
        }
        Output out(o->output.path, {o->alignment.path});
        TableWriter table(out, o->output.format, {"station", "tunnel_metre"});
        for (auto const& [s, tm] : rows) {
            zelalign::SetOutPoint p;
            table.Number(s, LengthDecimals).Number(tm, LengthDecimals);
            if (a.SetOut(s, &p)) {
                table.SetPoint(p.east, p.north, p.designHeight);
            }
            table.EndRow();
        }
        table.Finish();
        out.Close();
        return ExitSuccess;
    };
}

}  // namespace zel
