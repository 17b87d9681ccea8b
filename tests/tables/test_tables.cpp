// Runs the tables of cases under tests/data: one text file per element
// family, one case a row,
//
//   operation  inputs  |  expected  tolerance unit  |  where the value comes from
//
// Every row is checked on its own; a failing row is reported at its file and
// line. Numbers may be written as nan, as multiples of pi (pi, pi/6, 2pi/3)
// or, for element kinds, by name (StraightIntoCurve, ...).
#include <gtest/gtest.h>

#include <zelmath/complex_shape.h>
#include <zelmath/triangle.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using zelmath::CAAngle;
using zelmath::CALength;
using zelmath::CAxisComplexSpec;
using zelmath::CMathComplexShape;
using zelmath::TComplexType;
using zelmath::CMathPTriangle;
using zelmath::CMathTriangle;

using Operation = std::function<double(std::vector<double> const&)>;

struct Signature {
    std::size_t inputs;
    Operation run;
};

// The operations the tables may name, with the number of inputs each takes.
std::map<std::string, Signature> const& Operations()
{
    static std::map<std::string, Signature> const ops = {
        {"classify",
         {2,
          [](auto const& v) {
              CAxisComplexSpec e;
              e.Start.Radius = v[0];
              e.End.Radius = v[1];
              CMathComplexShape::GetComplextype(&e);
              return static_cast<double>(e.ComplexType);
          }}},
        {"cfromch", {2, [](auto const& v) { return CMathPTriangle::CfromCH(CALength(v[0]), CALength(v[1])).Double(); }}},
        {"hfromcc", {2, [](auto const& v) { return CMathPTriangle::HfromCC(CALength(v[0]), CALength(v[1])).Double(); }}},
        {"angle_sines",
         {3,
          [](auto const& v) {
              return CMathTriangle::AngleFromDistance(CALength(v[0]), CALength(v[1]), CAAngle(v[2])).Double();
          }}},
        {"angle_sides",
         {3,
          [](auto const& v) {
              return CMathTriangle::AngleFromDistance(CALength(v[0]), CALength(v[1]), CALength(v[2])).Double();
          }}},
        {"side_sines",
         {3,
          [](auto const& v) {
              return CMathTriangle::DistanceFromAngle(CAAngle(v[0]), CAAngle(v[1]), CALength(v[2])).Double();
          }}},
        {"side_cosine",
         {3,
          [](auto const& v) {
              return CMathTriangle::DistanceFromAngle(CALength(v[0]), CALength(v[1]), CAAngle(v[2])).Double();
          }}},
    };
    return ops;
}

// A number as the tables write it: a decimal, nan, [k]pi[/n], or the name of
// an element kind.
bool ParseNumber(std::string const& text, double* value)
{
    static std::map<std::string, TComplexType::Type> const kinds = {
        {"NotClassified", TComplexType::NotClassified},
        {"StraightIntoCurve", TComplexType::StraightIntoCurve},
        {"CurveIntoStraight", TComplexType::CurveIntoStraight},
        {"CurveIntoTighterCurve", TComplexType::CurveIntoTighterCurve},
        {"CurveIntoWiderCurve", TComplexType::CurveIntoWiderCurve}};
    if (text == "nan") {
        *value = std::numeric_limits<double>::quiet_NaN();
        return true;
    }
    auto const kind = kinds.find(text);
    if (kind != kinds.end()) {
        *value = static_cast<double>(kind->second);
        return true;
    }
    std::size_t const pi = text.find("pi");
    if (pi != std::string::npos) {
        double factor = 1.0;
        double divisor = 1.0;
        if (pi > 0 && !ParseNumber(text.substr(0, pi), &factor)) {
            return false;
        }
        std::string const rest = text.substr(pi + 2);
        if (!rest.empty() && (rest[0] != '/' || !ParseNumber(rest.substr(1), &divisor))) {
            return false;
        }
        *value = factor * zellib::CAPi / divisor;
        return true;
    }
    std::istringstream in(text);
    in >> *value;
    return !in.fail() && in.eof();
}

std::string Trim(std::string const& s)
{
    std::size_t const a = s.find_first_not_of(" \t");
    std::size_t const b = s.find_last_not_of(" \t\r");
    return a == std::string::npos ? std::string() : s.substr(a, b - a + 1);
}

// Checks every row of one table; returns the number of rows checked.
int ExpectTableRows(std::string const& path)
{
    std::ifstream file(path);
    EXPECT_TRUE(file.good()) << "cannot read " << path;
    int rows = 0;
    int lineNumber = 0;
    std::string line;
    while (std::getline(file, line)) {
        ++lineNumber;
        std::string const content = Trim(line.substr(0, line.find('#')));
        if (content.empty()) {
            continue;
        }
        std::size_t const bar1 = content.find('|');
        std::size_t const bar2 = bar1 == std::string::npos ? bar1 : content.find('|', bar1 + 1);
        if (bar2 == std::string::npos || Trim(content.substr(bar2 + 1)).empty()) {
            ADD_FAILURE_AT(path.c_str(), lineNumber)
                << "a row needs: operation inputs | expected tolerance unit | source";
            continue;
        }
        std::istringstream call(content.substr(0, bar1));
        std::string op;
        call >> op;
        auto const found = Operations().find(op);
        if (found == Operations().end()) {
            ADD_FAILURE_AT(path.c_str(), lineNumber) << "unknown operation " << op;
            continue;
        }
        std::vector<double> inputs;
        std::string word;
        bool readable = true;
        while (call >> word) {
            double v = 0.0;
            readable = readable && ParseNumber(word, &v);
            inputs.push_back(v);
        }
        std::istringstream expectation(content.substr(bar1 + 1, bar2 - bar1 - 1));
        std::string expectedText, toleranceText, unit;
        expectation >> expectedText >> toleranceText >> unit;
        double expected = 0.0;
        double tolerance = 0.0;
        readable = readable && ParseNumber(expectedText, &expected) && ParseNumber(toleranceText, &tolerance) &&
                   !unit.empty();
        if (!readable || inputs.size() != found->second.inputs) {
            ADD_FAILURE_AT(path.c_str(), lineNumber) << "cannot read the row: " << content;
            continue;
        }

        double const got = found->second.run(inputs);
        ++rows;
        if (std::isnan(expected)) {
            if (!std::isnan(got)) {
                ADD_FAILURE_AT(path.c_str(), lineNumber) << op << ": expected nan, got " << got;
            }
        } else if (tolerance == 0.0 ? !(got == expected) : !(std::fabs(got - expected) <= tolerance)) {
            ADD_FAILURE_AT(path.c_str(), lineNumber)
                << op << ": expected " << expected << " within " << tolerance << " " << unit << ", got " << got
                << " (off by " << got - expected << ")";
        }
    }
    return rows;
}

std::string DataFile(char const* name)
{
    return std::string(ZEL_SOURCE_DIR) + "/tests/data/" + name;
}

}  // namespace

TEST(Tables, ComplexShape)
{
    EXPECT_GT(ExpectTableRows(DataFile("complex_shape.txt")), 0);
}

TEST(Tables, Triangle)
{
    EXPECT_GT(ExpectTableRows(DataFile("triangle.txt")), 0);
}
