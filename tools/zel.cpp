// zel: the alignment tools on the command line.
//
//   zel station ALIGNMENT.xml POINTS.csv   station, offset and height difference of measured points
//   zel point ALIGNMENT.xml --at S | --every D   coordinates, direction and height at stations
//   zel tm ALIGNMENT.xml --station S | --tunnel-metre T   station to tunnel metre and back
//   zel info ALIGNMENT.xml                 element table and profile
//
// Offsets are positive to the right of the direction of increasing station.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

#include <CLI/CLI.hpp>

#include <zelalign/landxml.h>
#include <zelalign/points_csv.h>
#include <zelalign/tunnel_metre.h>

using namespace zelalign;

namespace {

constexpr double Pi = 3.14159265358979323846;
// Rows read, computed in parallel and written per batch: memory stays bounded
// however long the points file is.
constexpr std::size_t BatchRows = 8192;
// A progress bar appears on a terminal once a run has taken this long.
constexpr double ProgressDelaySeconds = 2.0;
constexpr int ProgressBarWidth = 40;
// Longest setting-out table, and how close (metres) a round station may come
// to the end of the table before it is left out in favour of the end itself.
constexpr double MaxTableRows = 1e7;
// Values this large are written in exponent notation rather than with fixed decimals.
constexpr double LargestFixedValue = 1e15;
constexpr double RoundStationTolerance = 1e-9;

enum class AngleUnit { Gon, Degree, Radian };

struct Common {
    std::string alignmentPath;
    std::string alignmentName;
    std::optional<double> referenceStation;
    std::optional<double> referenceTunnelMetre;
    bool against = false;
    AngleUnit angleUnit = AngleUnit::Gon;
    std::string output;
};

struct Loaded {
    ImportedAlignment alignment;
    TunnelMetreMap tunnel;
};

Loaded Load(Common const& c)
{
    Loaded l{ReadLandXml(c.alignmentPath, c.alignmentName), TunnelMetreMap()};
    for (std::string const& w : l.alignment.warnings) {
        std::cerr << "warning: " << w << "\n";
    }
    double const refStation = c.referenceStation.value_or(l.alignment.horizontal.StartStation());
    double const refTm = c.referenceTunnelMetre.value_or(l.alignment.horizontal.StartStation());
    // Without a profile the map is empty and tunnel metres run one to one from the reference.
    l.tunnel = TunnelMetreMap(l.alignment.profile, refStation, refTm, !c.against);
    return l;
}

std::string Fixed(double v, int decimals)
{
    if (!std::isfinite(v)) {
        return std::string();
    }
    char buf[64];
    if (std::fabs(v) >= LargestFixedValue) {
        std::snprintf(buf, sizeof buf, "%.17g", v);
        return buf;
    }
    std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
    std::string s(buf);
    if (s[0] == '-' && s.find_first_not_of("-0.") == std::string::npos) {
        s.erase(0, 1);  // no "-0.0000"
    }
    return s;
}

std::string Angle(double radians, AngleUnit unit)
{
    switch (unit) {
    case AngleUnit::Gon:
        return Fixed(radians * 200.0 / Pi, 6);
    case AngleUnit::Degree:
        return Fixed(radians * 180.0 / Pi, 6);
    case AngleUnit::Radian:
        return Fixed(radians, 8);
    }
    return std::string();
}

char const* AngleUnitName(AngleUnit unit)
{
    switch (unit) {
    case AngleUnit::Gon:
        return "gon";
    case AngleUnit::Degree:
        return "deg";
    case AngleUnit::Radian:
        return "rad";
    }
    return "";
}

// Output to a file or to stdout.
class Output {
public:
    explicit Output(std::string const& path)
    {
        if (!path.empty() && path != "-") {
            m_file = std::make_unique<std::ofstream>(path);
            if (!*m_file) {
                throw std::runtime_error(path + ": cannot write the file");
            }
        }
    }
    std::ostream& Stream() { return m_file ? *m_file : std::cout; }

private:
    std::unique_ptr<std::ofstream> m_file;
};

// ---------------------------------------------------------------- station

// A measured point and its output row.
struct PointRow {
    MeasuredPoint point;
    std::string out;
};

void Station(Loaded const& l, PointRow* row, AngleUnit unit)
{
    Projection const p = l.alignment.horizontal.Project(row->point.east, row->point.north);
    std::string& o = row->out;
    o = row->point.id;
    o += ',';
    if (p.status == ProjectionStatus::NoSolution) {
        o += ",,,,,,,,,";
        o += ProjectionStatusName(p.status);
        return;
    }
    AlignmentPoint const& f = p.foot;
    o += std::to_string(f.element);
    o += ',';
    o += ElementTypeName(l.alignment.horizontal.Elements()[static_cast<std::size_t>(f.element)].type);
    o += ',';
    o += Fixed(f.station, 4);
    o += ',';
    o += Fixed(p.offset, 4);
    o += ',';
    o += Angle(f.azimuth, unit);
    o += ',';
    o += Fixed(f.radius, 4);
    o += ',';
    double height = std::numeric_limits<double>::quiet_NaN();
    double gradient = 0.0;
    if (!l.alignment.profile.Empty() && !l.alignment.profile.HeightAt(f.station, &height, &gradient)) {
        height = std::numeric_limits<double>::quiet_NaN();
    }
    o += Fixed(height, 4);
    o += ',';
    o += Fixed(row->point.height - height, 4);
    o += ',';
    double tm = std::numeric_limits<double>::quiet_NaN();
    if (!l.tunnel.ToTunnelMetre(f.station, &tm)) {
        tm = std::numeric_limits<double>::quiet_NaN();
    }
    o += Fixed(tm, 4);
    o += ',';
    o += ProjectionStatusName(p.status);
}

class Progress {
public:
    Progress(std::string const& path) : m_start(std::chrono::steady_clock::now())
    {
        m_enabled = isatty(STDERR_FILENO) != 0;
        std::ifstream f(path, std::ios::binary | std::ios::ate);
        m_total = f ? static_cast<double>(f.tellg()) : 0.0;
    }
    void Update(double done)
    {
        if (!m_enabled || m_total <= 0.0) {
            return;
        }
        double const elapsed =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count();
        if (elapsed < ProgressDelaySeconds) {
            return;
        }
        double const fraction = std::clamp(done / m_total, 0.0, 1.0);
        int const filled = static_cast<int>(fraction * ProgressBarWidth);
        std::string bar(static_cast<std::size_t>(filled), '#');
        bar.resize(ProgressBarWidth, ' ');
        std::fprintf(stderr, "\r[%s] %3d%%", bar.c_str(), static_cast<int>(fraction * 100.0));
        std::fflush(stderr);
        m_shown = true;
    }
    void Finish()
    {
        if (m_shown) {
            std::fprintf(stderr, "\r%*s\r", ProgressBarWidth + 8, "");
            std::fflush(stderr);
        }
    }

private:
    std::chrono::steady_clock::time_point m_start;
    bool m_enabled = false;
    bool m_shown = false;
    double m_total = 0.0;
};

void Compute(Loaded const& l, std::vector<PointRow>& rows, unsigned threads, AngleUnit unit)
{
    std::size_t const n = rows.size();
    unsigned const workers = static_cast<unsigned>(std::min<std::size_t>(threads, std::max<std::size_t>(n, 1)));
    if (workers <= 1) {
        for (PointRow& r : rows) {
            Station(l, &r, unit);
        }
        return;
    }
    std::vector<std::thread> pool;
    for (unsigned w = 0; w < workers; ++w) {
        pool.emplace_back([&, w] {
            for (std::size_t i = w; i < n; i += workers) {
                Station(l, &rows[i], unit);
            }
        });
    }
    for (std::thread& t : pool) {
        t.join();
    }
}

int RunStation(Common const& c, std::string const& pointsPath, unsigned threads, bool skipBad)
{
    Loaded const l = Load(c);
    std::ifstream in(pointsPath, std::ios::binary);
    if (!in) {
        std::cerr << "error: " << pointsPath << ": cannot open the file\n";
        return 1;
    }
    Output out(c.output);
    std::ostream& os = out.Stream();
    os << "id,element,type,station,offset,azimuth_" << AngleUnitName(c.angleUnit)
       << ",radius,design_height,height_difference,tunnel_metre,status\n";
    Progress progress(pointsPath);
    std::vector<PointRow> batch;
    batch.reserve(BatchRows);
    PointsCsvReader reader(in, pointsPath);
    long bad = 0;
    long done = 0;
    bool failed = false;
    auto flush = [&] {
        Compute(l, batch, threads, c.angleUnit);
        for (PointRow const& r : batch) {
            os << r.out << '\n';
        }
        done += static_cast<long>(batch.size());
        batch.clear();
        progress.Update(static_cast<double>(in.tellg() < 0 ? 0 : static_cast<double>(in.tellg())));
    };
    PointRow row;
    for (PointsCsvReader::Row r = reader.Next(&row.point); r != PointsCsvReader::Row::End; r = reader.Next(&row.point)) {
        if (r == PointsCsvReader::Row::Malformed) {
            std::cerr << (skipBad ? "warning: " : "error: ") << reader.Message() << "\n";
            ++bad;
            if (!skipBad) {
                failed = true;
                break;
            }
            continue;
        }
        batch.push_back(row);
        if (batch.size() >= BatchRows) {
            flush();
        }
    }
    flush();
    os.flush();
    progress.Finish();
    if (failed) {
        std::cerr << "error: stopped at the malformed row after " << done
                  << " points; use --skip-bad to carry on past malformed rows\n";
        return 1;
    }
    if (bad > 0) {
        std::cerr << "skipped " << bad << " malformed row" << (bad == 1 ? "" : "s") << "\n";
    }
    return 0;
}

// ---------------------------------------------------------------- point

int RunPoint(Common const& c, std::vector<double> const& at, std::optional<double> every, std::optional<double> from,
             std::optional<double> to)
{
    Loaded const l = Load(c);
    HorizontalAlignment const& h = l.alignment.horizontal;
    std::vector<double> stations = at;
    if (every) {
        if (!(*every > 0.0)) {
            std::cerr << "error: --every needs a positive interval\n";
            return 2;
        }
        double const a = from.value_or(h.StartStation());
        double const b = to.value_or(h.EndStation());
        if (!std::isfinite(a) || !std::isfinite(b) || (b - a) / *every > MaxTableRows) {
            std::cerr << "error: the setting-out table would be too long\n";
            return 2;
        }
        // The start, the round stations (multiples of the interval) after it, and the end.
        stations.push_back(a);
        for (double k = std::floor(a / *every) + 1.0;; k += 1.0) {
            double const s = k * *every;
            if (s >= b - RoundStationTolerance) {
                break;
            }
            stations.push_back(s);
        }
        if (b > a) {
            stations.push_back(b);
        }
    }
    if (stations.empty()) {
        std::cerr << "error: give --at or --every\n";
        return 2;
    }
    Output out(c.output);
    std::ostream& os = out.Stream();
    os << "station,element,type,east,north,azimuth_" << AngleUnitName(c.angleUnit)
       << ",radius,design_height,gradient_percent,tunnel_metre\n";
    int status = 0;
    for (double s : stations) {
        AlignmentPoint p;
        if (!h.PointAt(s, &p)) {
            std::cerr << "error: station " << Fixed(s, 4) << " lies outside the alignment (" << Fixed(h.StartStation(), 4)
                      << " to " << Fixed(h.EndStation(), 4) << ")\n";
            status = 1;
            continue;
        }
        double height = std::numeric_limits<double>::quiet_NaN();
        double gradient = std::numeric_limits<double>::quiet_NaN();
        if (l.alignment.profile.Empty() || !l.alignment.profile.HeightAt(s, &height, &gradient)) {
            height = gradient = std::numeric_limits<double>::quiet_NaN();
        }
        double tm = std::numeric_limits<double>::quiet_NaN();
        if (!l.tunnel.ToTunnelMetre(s, &tm)) {
            tm = std::numeric_limits<double>::quiet_NaN();
        }
        os << Fixed(s, 4) << ',' << p.element << ',' << ElementTypeName(h.Elements()[static_cast<std::size_t>(p.element)].type)
           << ',' << Fixed(p.east, 4) << ',' << Fixed(p.north, 4) << ',' << Angle(p.azimuth, c.angleUnit) << ','
           << Fixed(p.radius, 4) << ',' << Fixed(height, 4) << ',' << Fixed(gradient * 100.0, 4) << ',' << Fixed(tm, 4)
           << '\n';
    }
    return status;
}

// ---------------------------------------------------------------- tm

int RunTm(Common const& c, std::vector<double> const& stations, std::vector<double> const& tunnelMetres)
{
    Loaded const l = Load(c);
    if (stations.empty() && tunnelMetres.empty()) {
        std::cerr << "error: give --station or --tunnel-metre\n";
        return 2;
    }
    Output out(c.output);
    std::ostream& os = out.Stream();
    os << "station,tunnel_metre\n";
    int status = 0;
    for (double s : stations) {
        double tm = 0.0;
        if (!l.tunnel.ToTunnelMetre(s, &tm)) {
            std::cerr << "error: station " << Fixed(s, 4) << " cannot be converted\n";
            status = 1;
            continue;
        }
        os << Fixed(s, 4) << ',' << Fixed(tm, 4) << '\n';
    }
    for (double tm : tunnelMetres) {
        double s = 0.0;
        if (!l.tunnel.ToStation(tm, &s)) {
            std::cerr << "error: tunnel metre " << Fixed(tm, 4) << " cannot be converted\n";
            status = 1;
            continue;
        }
        os << Fixed(s, 4) << ',' << Fixed(tm, 4) << '\n';
    }
    return status;
}

// ---------------------------------------------------------------- info

int RunInfo(Common const& c)
{
    Loaded const l = Load(c);
    HorizontalAlignment const& h = l.alignment.horizontal;
    Output out(c.output);
    std::ostream& os = out.Stream();
    os << "alignment: " << l.alignment.name << "\n";
    os << "stations: " << Fixed(h.StartStation(), 4) << " to " << Fixed(h.EndStation(), 4) << " ("
       << h.Size() << " elements)\n";
    os << "tunnel metre: " << Fixed(l.tunnel.ReferenceTunnelMetre(), 4) << " at station "
       << Fixed(l.tunnel.ReferenceStation(), 4) << (l.tunnel.SameDirection() ? "" : ", counted against the stations")
       << "\n\n";
    os << "index,type,line,start_station,end_station,length,start_radius,end_radius,start_east,start_north,"
          "end_east,end_north\n";
    for (std::size_t i = 0; i < h.Size(); ++i) {
        HorizontalElement const& e = h.Elements()[i];
        os << i << ',' << ElementTypeName(e.type) << ',' << l.alignment.lines[i] << ',' << Fixed(e.StartStation(), 4)
           << ',' << Fixed(e.EndStation(), 4) << ',' << Fixed(e.Length(), 4) << ','
           << Fixed(e.spec.Start.Radius.Double(), 4) << ',' << Fixed(e.spec.End.Radius.Double(), 4) << ','
           << Fixed(e.spec.Start.Coordinate.East().Double(), 4) << ','
           << Fixed(e.spec.Start.Coordinate.North().Double(), 4) << ','
           << Fixed(e.spec.End.Coordinate.East().Double(), 4) << ','
           << Fixed(e.spec.End.Coordinate.North().Double(), 4) << '\n';
    }
    os << "\n";
    if (l.alignment.profile.Empty()) {
        os << "profile: none\n";
        return 0;
    }
    os << "pvi,station,height,curve,radius,curve_start,curve_end\n";
    auto const& pts = l.alignment.profile.Points();
    for (std::size_t i = 0; i < pts.size(); ++i) {
        ProfilePoint const& p = pts[i];
        char const* kind = p.curve == VerticalCurveType::Circle     ? "circle"
                           : p.curve == VerticalCurveType::Parabola ? "parabola"
                                                                    : "none";
        os << i << ',' << Fixed(p.station, 4) << ',' << Fixed(p.height, 4) << ',' << kind << ','
           << (p.curve == VerticalCurveType::None ? std::string() : Fixed(p.radius, 4)) << ','
           << Fixed(l.alignment.profile.CurveStart(static_cast<int>(i)), 4) << ','
           << Fixed(l.alignment.profile.CurveEnd(static_cast<int>(i)), 4) << '\n';
    }
    return 0;
}

void AddCommon(CLI::App* app, Common& c, bool withOutput = true)
{
    app->add_option("alignment", c.alignmentPath, "LandXML 1.2 file with the alignment")
        ->required()
        ->check(CLI::ExistingFile);
    app->add_option("--name", c.alignmentName, "name of the alignment in the file (default: the first)");
    app->add_option("--ref-station", c.referenceStation,
                    "station of the tunnel-metre reference point (default: the alignment's start)");
    app->add_option("--ref-tm", c.referenceTunnelMetre,
                    "tunnel metre at the reference point (default: the start station)");
    app->add_flag("--against", c.against, "tunnel metres run against the stations");
    if (withOutput) {
        app->add_option("-o,--output", c.output, "write the table to this file instead of standard output");
    }
}

}  // namespace

int main(int argc, char** argv)
{
    CLI::App app{"zel: stationing of measured points along railway and tunnel alignments from LandXML.\n"
                 "Offsets are positive to the right of the direction of increasing station."};
    app.require_subcommand(1);

    Common common;
    std::map<std::string, AngleUnit> const units{
        {"gon", AngleUnit::Gon}, {"deg", AngleUnit::Degree}, {"rad", AngleUnit::Radian}};

    CLI::App* station = app.add_subcommand(
        "station", "station, offset, design height and tunnel metre of measured points (CSV id,east,north[,height])");
    AddCommon(station, common);
    std::string pointsPath;
    unsigned threads = std::max(1u, std::thread::hardware_concurrency());
    bool skipBad = false;
    station->add_option("points", pointsPath, "CSV file of measured points: id,east,north[,height]")
        ->required()
        ->check(CLI::ExistingFile);
    station->add_option("-j,--threads", threads, "number of threads (default: all cores)")
        ->check(CLI::Range(1u, 1024u));
    station->add_flag("--skip-bad", skipBad, "report malformed rows and carry on instead of stopping");
    station->add_option("--angle-unit", common.angleUnit, "unit of the azimuth column: gon, deg or rad")
        ->transform(CLI::CheckedTransformer(units, CLI::ignore_case));

    CLI::App* point = app.add_subcommand("point", "coordinates, direction and height at stations (setting out)");
    AddCommon(point, common);
    std::vector<double> at;
    std::optional<double> every;
    std::optional<double> from;
    std::optional<double> to;
    point->add_option("--at", at, "station(s) to compute");
    point->add_option("--every", every, "a setting-out table at this interval");
    point->add_option("--from", from, "first station of the table (default: the start)");
    point->add_option("--to", to, "last station of the table (default: the end)");
    point->add_option("--angle-unit", common.angleUnit, "unit of the azimuth column: gon, deg or rad")
        ->transform(CLI::CheckedTransformer(units, CLI::ignore_case));

    CLI::App* tm = app.add_subcommand("tm", "station to tunnel metre and back");
    AddCommon(tm, common);
    std::vector<double> tmStations;
    std::vector<double> tmValues;
    tm->add_option("--station", tmStations, "station(s) to convert to tunnel metres");
    tm->add_option("--tunnel-metre", tmValues, "tunnel metre(s) to convert to stations");

    CLI::App* info = app.add_subcommand("info", "the element table and the profile of an alignment");
    AddCommon(info, common);

    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& e) {
        return app.exit(e);
    }

    try {
        if (station->parsed()) {
            return RunStation(common, pointsPath, threads, skipBad);
        }
        if (point->parsed()) {
            return RunPoint(common, at, every, from, to);
        }
        if (tm->parsed()) {
            return RunTm(common, tmStations, tmValues);
        }
        if (info->parsed()) {
            return RunInfo(common);
        }
    } catch (std::exception const& e) {
        std::cerr << "error: " << e.what() << "\n";
        return 1;
    }
    return 2;
}
