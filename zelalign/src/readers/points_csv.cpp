#include <zelalign/readers/points_csv.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>
#include <vector>

namespace zelalign {

namespace {

constexpr char const* Blanks = " \t";

bool ParseNumber(std::string s, double* v)
{
    s.erase(0, s.find_first_not_of(Blanks));
    s.erase(s.find_last_not_of(Blanks) + 1);
    if (s.empty()) {
        return false;
    }
    char* end = nullptr;
    *v = std::strtod(s.c_str(), &end);
    return end == s.c_str() + s.size() && std::isfinite(*v);
}

// Splits a CSV line at commas (no quoting: ids and numbers carry none).
std::vector<std::string> Fields(std::string const& line)
{
    std::vector<std::string> f;
    std::string::size_type start = 0;
    while (true) {
        auto const comma = line.find(',', start);
        f.push_back(line.substr(start, comma == std::string::npos ? std::string::npos : comma - start));
        if (comma == std::string::npos) {
            break;
        }
        start = comma + 1;
    }
    return f;
}

}  // namespace

std::string ParsePointRow(std::string const& line, MeasuredPoint* point)
{
    std::vector<std::string> const f = Fields(line);
    if (f.size() < 3 || f.size() > 4) {
        return "expected id,east,north[,height], found " + std::to_string(f.size()) + " fields";
    }
    point->id = f[0];
    point->id.erase(0, point->id.find_first_not_of(Blanks));
    point->id.erase(point->id.find_last_not_of(Blanks) + 1);
    if (point->id.empty()) {
        return "the point id is empty";
    }
    if (!ParseNumber(f[1], &point->east)) {
        return "east is not a number: '" + f[1] + "'";
    }
    if (!ParseNumber(f[2], &point->north)) {
        return "north is not a number: '" + f[2] + "'";
    }
    point->height = std::numeric_limits<double>::quiet_NaN();
    if (f.size() == 4) {
        std::string h = f[3];
        h.erase(0, h.find_first_not_of(Blanks));
        if (!h.empty() && !ParseNumber(f[3], &point->height)) {
            return "height is not a number: '" + f[3] + "'";
        }
    }
    return std::string();
}

PointsCsvReader::PointsCsvReader(std::istream& in, std::string path) : m_in(in), m_path(std::move(path)) {}

PointsCsvReader::Row PointsCsvReader::Next(MeasuredPoint* point)
{
    while (std::getline(m_in, m_line)) {
        ++m_lineNumber;
        if (!m_line.empty() && m_line.back() == '\r') {
            m_line.pop_back();
        }
        if (m_line.find_first_not_of(Blanks) == std::string::npos) {
            continue;
        }
        m_problem = ParsePointRow(m_line, point);
        if (m_problem.empty()) {
            return Row::Point;
        }
        if (m_lineNumber == 1) {
            continue;  // a header line
        }
        return Row::Malformed;
    }
    m_problem.clear();
    return Row::End;
}

std::string PointsCsvReader::Message() const
{
    return m_path + ":" + std::to_string(m_lineNumber) + ": " + m_problem;
}

}  // namespace zelalign
