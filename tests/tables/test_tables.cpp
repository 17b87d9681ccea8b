// Runs the tables of cases under tests/data: one text file per element
// family, one case a row,
//
//   operation  inputs  |  expected outputs  |  where the values come from
//
// An operation with one output is checked as
//
//   operation  inputs  |  expected  tolerance unit  |  source
//
// An operation with several outputs (a point at a station gives east, north,
// azimuth, radius, station) names the ones the row checks, separated by ';':
//
//   line_foot 0 0 10 0 4 -3 | result OnElement; station 4 1e-14 m; north 0 1e-14 m | hand: ...
//
// Each expectation is  [output] value [tolerance unit]; without a name it
// is the operation's first output, without a tolerance it asks for the exact
// value (result codes, kinds, flags). A tolerance of 0 asks for the exact
// double too; an expected nan asks for NaN. The unit rad(mod2pi) compares two
// directions by their smallest difference, whole turns apart counting equal.
//
// A line "define name = numbers..." lets the rows below write name for
// those numbers among their inputs: an element, a set of PIs. A line
// "map name = elements" does the same for a station map.
//
// Numbers may be written as nan, inf, -inf, as multiples of pi (pi, pi/6,
// 2pi/3, 7.5pi), as sqrt(x), or by name: element kinds (StraightIntoCurve,
// ...), result codes (OnElement, BeyondEnd, OneIntersection, Tangent, ...),
// true and false, and untouched: the value the operation's output held
// before the call, so that a row can show that an output was not written.
//
// Every row is checked on its own; a failing row is reported at its file and
// line. Where the rows of a family were worked out by a program (the exact
// clothoid, the laid-out cubic parabola and half-sine), that program lies
// beside this driver and prints them.
#include "common/plane_geometry.h"
#include "common/station_maps.h"

#include <gtest/gtest.h>

#include <zelmath/circle.h>
#include <zelmath/clothoid.h>
#include <zelmath/complex_shape.h>
#include <zelmath/cubic_parabola.h>
#include <zelmath/half_sine.h>
#include <zelmath/line.h>
#include <zelmath/long_prof_curve.h>
#include <zelmath/plane.h>
#include <zelmath/station_map.h>
#include <zelmath/triangle.h>

#include <cmath>
#include <cstdint>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using zelmath::CA3DCoordinate;
using zelmath::CAAngle;
using zelmath::CAAzimuth;
using zelmath::CACoordinate;
using zelmath::CALength;
using zelmath::CASlope;
using zelmath::CAxisComplexSpec;
using zelmath::CAxisPointSpec;
using zelmath::CMathCircle;
using zelmath::CMathClothoid;
using zelmath::CMathCbcParabol;
using zelmath::CMathComplexShape;
using zelmath::CMathHalfSin;
using zelmath::CMathLine;
using zelmath::CMathLongProfCurve;
using zelmath::CMathPlane;
using zelmath::CMathPTriangle;
using zelmath::CMathStngMap2D3D;
using zelmath::CStngMapCurved3DDef;
using zelmath::CMathTriangle;
using zelmath::TComplexType;
using zelmath::TIntersectionResult;
using zelmath::TPointMathResult;

using Values = std::vector<double>;

struct Operation {
    std::size_t inputs;
    std::vector<std::string> outputs;  // names of the outputs, the first the default
    std::function<Values(Values const&)> run;
};

// What an output held before the call, known by the output's name. Records
// are filled beforehand with zeltest::Prefilled() (station 111, azimuth 1.25,
// radius -77, point (-5.5, 9.25)); the east and north of every other point,
// in the plane or in space, take the same -5.5 and 9.25; every other output
// (lengths, heights, slopes, elevations, positions, the stations and heights
// of profile points) holds -777.
constexpr double UntouchedScalar = -777.0;

double Untouched(std::string const& output)
{
    CAxisPointSpec const p = zeltest::Prefilled();
    if (output.rfind("east", 0) == 0) {
        return p.Coordinate.East().Double();
    }
    if (output.rfind("north", 0) == 0) {
        return p.Coordinate.North().Double();
    }
    if (output.rfind("azimuth", 0) == 0) {
        return p.Azimuth.Double();
    }
    if (output == "radius") {
        return p.Radius.Double();
    }
    if (output == "station") {
        return p.Station.Double();
    }
    return UntouchedScalar;
}

CACoordinate UntouchedPoint()
{
    return zeltest::Prefilled().Coordinate;
}

CA3DCoordinate UntouchedPoint3D()
{
    CACoordinate const p = UntouchedPoint();
    return CA3DCoordinate(p.East().Double(), p.North().Double(), UntouchedScalar);
}

// A profile point (station, height) before the call.
CACoordinate UntouchedProfilePoint()
{
    return CACoordinate(UntouchedScalar, UntouchedScalar);
}

CACoordinate At(Values const& v, std::size_t i)
{
    return CACoordinate(v[i], v[i + 1]);
}

CA3DCoordinate At3D(Values const& v, std::size_t i)
{
    return CA3DCoordinate(v[i], v[i + 1], v[i + 2]);
}

double Code(int result)
{
    return static_cast<double>(result);
}

// The outputs of an operation that writes a point record.
std::vector<std::string> const PointOutputs = {"east", "north", "azimuth", "radius", "station"};
std::vector<std::string> const FootOutputs = {"result", "east", "north", "azimuth", "radius", "station"};

Values PointValues(CAxisPointSpec const& p)
{
    return {p.Coordinate.East().Double(), p.Coordinate.North().Double(), p.Azimuth.Double(), p.Radius.Double(),
            p.Station.Double()};
}

Values FootValues(int result, CAxisPointSpec const& p)
{
    Values v = PointValues(p);
    v.insert(v.begin(), Code(result));
    return v;
}

// Triangles and the classification of transitions.
void AddFoundation(std::map<std::string, Operation>& ops)
{
    ops["classify"] = {2, {"kind"}, [](Values const& v) {
                           CAxisComplexSpec e;
                           e.Start.Radius = v[0];
                           e.End.Radius = v[1];
                           CMathComplexShape::GetComplextype(&e);
                           return Values{static_cast<double>(e.ComplexType)};
                       }};
    ops["cfromch"] = {2, {"side"}, [](Values const& v) {
                          return Values{CMathPTriangle::CfromCH(CALength(v[0]), CALength(v[1])).Double()};
                      }};
    ops["hfromcc"] = {2, {"side"}, [](Values const& v) {
                          return Values{CMathPTriangle::HfromCC(CALength(v[0]), CALength(v[1])).Double()};
                      }};
    ops["angle_sines"] = {3, {"angle"}, [](Values const& v) {
                              return Values{
                                  CMathTriangle::AngleFromDistance(CALength(v[0]), CALength(v[1]), CAAngle(v[2]))
                                      .Double()};
                          }};
    ops["angle_sides"] = {3, {"angle"}, [](Values const& v) {
                              return Values{
                                  CMathTriangle::AngleFromDistance(CALength(v[0]), CALength(v[1]), CALength(v[2]))
                                      .Double()};
                          }};
    ops["side_sines"] = {3, {"side"}, [](Values const& v) {
                             return Values{
                                 CMathTriangle::DistanceFromAngle(CAAngle(v[0]), CAAngle(v[1]), CALength(v[2]))
                                     .Double()};
                         }};
    ops["side_cosine"] = {3, {"side"}, [](Values const& v) {
                              return Values{
                                  CMathTriangle::DistanceFromAngle(CALength(v[0]), CALength(v[1]), CAAngle(v[2]))
                                      .Double()};
                          }};
}

// The straight and the line geometry.
void AddLine(std::map<std::string, Operation>& ops)
{
    std::vector<std::string> const crossing = {"result", "east", "north"};
    auto intersection = [](auto f) {
        return [f](Values const& v) {
            CACoordinate out = UntouchedPoint();
            int const r = f(v, &out);
            return Values{Code(r), out.East().Double(), out.North().Double()};
        };
    };
    ops["line_length"] = {4, {"length"}, [](Values const& v) {
                              return Values{CMathLine::Length(At(v, 0), At(v, 2)).Double()};
                          }};
    ops["line_point"] = {5, PointOutputs, [](Values const& v) {
                             CAxisPointSpec out = zeltest::Prefilled();
                             CMathLine::Kleinpunkt(At(v, 0), At(v, 2), CALength(v[4]), &out);
                             return PointValues(out);
                         }};
    ops["line_foot"] = {6, FootOutputs, [](Values const& v) {
                            CAxisPointSpec out = zeltest::Prefilled();
                            int const r = CMathLine::Lot(At(v, 0), At(v, 2), At(v, 4), &out);
                            return FootValues(r, out);
                        }};
    ops["point_on_line"] = {4, {"east", "north"}, [](Values const& v) {
                                CACoordinate const p =
                                    CMathLine::PointOnLine(At(v, 0), CAAzimuth(v[2]), CALength(v[3]));
                                return Values{p.East().Double(), p.North().Double()};
                            }};
    ops["int_lines"] = {8, crossing, intersection([](Values const& v, CACoordinate* out) {
                            return CMathLine::IntLineLine(At(v, 0), At(v, 2), At(v, 4), At(v, 6), out);
                        })};
    ops["int_lines_azimuth"] = {6, crossing, intersection([](Values const& v, CACoordinate* out) {
                                    return CMathLine::IntLineLine(At(v, 0), CAAzimuth(v[2]), At(v, 3),
                                                                  CAAzimuth(v[5]), out);
                                })};
    ops["int_line_segment"] = {8, crossing, intersection([](Values const& v, CACoordinate* out) {
                                   return CMathLine::IntLineLineSegment(At(v, 0), At(v, 2), At(v, 4), At(v, 6),
                                                                        out);
                               })};
    ops["int_segments"] = {8, crossing, intersection([](Values const& v, CACoordinate* out) {
                               return CMathLine::IntLineSegmentLineSegment(At(v, 0), At(v, 2), At(v, 4),
                                                                           At(v, 6), out);
                           })};
    ops["on_segment"] = {6, {"on"}, [](Values const& v) {
                             return Values{CMathLine::IsPointOnLineSegment(At(v, 0), At(v, 2), At(v, 4)) ? 1.0
                                                                                                          : 0.0};
                         }};
}

// The circular arc and the circle geometry.
void AddCircle(std::map<std::string, Operation>& ops)
{
    std::vector<std::string> const two = {"result", "east1", "north1", "east2", "north2"};
    auto intersections = [](auto f) {
        return [f](Values const& v) {
            CACoordinate p1 = UntouchedPoint();
            CACoordinate p2 = UntouchedPoint();
            int const r = f(v, &p1, &p2);
            return Values{Code(r), p1.East().Double(), p1.North().Double(), p2.East().Double(),
                          p2.North().Double()};
        };
    };
    ops["circle_centre"] = {5, {"east", "north"}, [](Values const& v) {
                                CACoordinate const c = CMathCircle::Center(At(v, 0), At(v, 2), CALength(v[4]));
                                return Values{c.East().Double(), c.North().Double()};
                            }};
    ops["circle_point"] = {6, PointOutputs, [](Values const& v) {
                               CAxisPointSpec out = zeltest::Prefilled();
                               CMathCircle::Kleinpunkt(At(v, 0), At(v, 2), CALength(v[4]), CALength(v[5]), &out);
                               return PointValues(out);
                           }};
    ops["circle_foot"] = {7, FootOutputs, [](Values const& v) {
                              CAxisPointSpec out = zeltest::Prefilled();
                              int const r = CMathCircle::Lot(At(v, 0), At(v, 2), CALength(v[4]), At(v, 5), &out);
                              return FootValues(r, out);
                          }};
    ops["circle_length"] = {5, {"length"}, [](Values const& v) {
                                return Values{CMathCircle::Length(At(v, 0), At(v, 2), CALength(v[4])).Double()};
                            }};
    ops["int_line_circle"] = {7, two, intersections([](Values const& v, CACoordinate* p1, CACoordinate* p2) {
                                  return CMathCircle::IntLineCircle(At(v, 0), At(v, 2), At(v, 4), CALength(v[6]),
                                                                    p1, p2);
                              })};
    ops["int_line_arc_circle"] = {9, two,
                                  intersections([](Values const& v, CACoordinate* p1, CACoordinate* p2) {
                                      return CMathCircle::IntLineCircle(At(v, 0), At(v, 2), At(v, 4), At(v, 6),
                                                                        CALength(v[8]), p1, p2);
                                  })};
    ops["int_line_arc"] = {9, two, intersections([](Values const& v, CACoordinate* p1, CACoordinate* p2) {
                               return CMathCircle::IntLineCircleSegment(At(v, 0), At(v, 2), At(v, 4), At(v, 6),
                                                                        CALength(v[8]), p1, p2);
                           })};
    ops["int_segment_arc"] = {9, two, intersections([](Values const& v, CACoordinate* p1, CACoordinate* p2) {
                                  return CMathCircle::IntLineSegmentCircleSegment(
                                      At(v, 0), At(v, 2), At(v, 4), At(v, 6), CALength(v[8]), p1, p2);
                              })};
    ops["circle_distance"] = {5, {"distance"}, [](Values const& v) {
                                  return Values{CMathCircle::PointDistance(At(v, 0), CALength(v[2]), At(v, 3))};
                              }};
    ops["circle_position"] = {5, {"position"}, [](Values const& v) {
                                  return Values{CMathCircle::PointDeroleLR(At(v, 0), CALength(v[2]), At(v, 3))};
                              }};
    ops["circle_directed"] = {7, {"distance", "position", "negative"}, [](Values const& v) {
                                  double position = UntouchedScalar;
                                  double const d = CMathCircle::DirectedDeroleDistance(At(v, 0), CALength(v[2]),
                                                                                       At(v, 3), At(v, 5), position);
                                  return Values{d, position, std::signbit(d) ? 1.0 : 0.0};
                              }};
    ops["arc_end"] = {5, {"ok", "east", "north", "azimuth"}, [](Values const& v) {
                          CACoordinate end = UntouchedPoint();
                          CAAzimuth azimuth(Untouched("azimuth"));
                          bool const ok = CMathCircle::EndPointAndEndAzi(At(v, 0), CAAzimuth(v[2]), CALength(v[3]),
                                                                         CALength(v[4]), end, azimuth);
                          return Values{ok ? 1.0 : 0.0, end.East().Double(), end.North().Double(),
                                        azimuth.Double()};
                      }};
}

// A transition element as the rows write it: parameter, kind, then station,
// east, north, azimuth and radius of its start and of its end.
constexpr std::size_t ElementInputs = 12;

CAxisComplexSpec ElementAt(Values const& v, std::size_t i)
{
    CAxisComplexSpec e;
    e.Parameter = v[i];
    e.ComplexType = static_cast<std::int32_t>(v[i + 1]);
    e.Start.Station = v[i + 2];
    e.Start.Coordinate = CACoordinate(v[i + 3], v[i + 4]);
    e.Start.Azimuth = v[i + 5];
    e.Start.Radius = v[i + 6];
    e.End.Station = v[i + 7];
    e.End.Coordinate = CACoordinate(v[i + 8], v[i + 9]);
    e.End.Azimuth = v[i + 10];
    e.End.Radius = v[i + 11];
    return e;
}

// The clothoid.
void AddClothoid(std::map<std::string, Operation>& ops)
{
    ops["clothoid_local"] = {2, {"x", "y"}, [](Values const& v) {
                                 CACoordinate const p = CMathClothoid::GetLocalCoordinate(v[0], v[1]);
                                 return Values{p.X().Double(), p.Y().Double()};
                             }};
    ops["clothoid_parameter"] = {2, {"parameter"}, [](Values const& v) {
                                     return Values{CMathClothoid::Parameter(v[0], v[1])};
                                 }};
    ops["clothoid_length"] = {4, {"length"}, [](Values const& v) {
                                  CAxisComplexSpec e;
                                  e.Parameter = v[0];
                                  e.ComplexType = static_cast<std::int32_t>(v[1]);
                                  e.Start.Radius = v[2];
                                  e.End.Radius = v[3];
                                  return Values{CMathClothoid::Length(e).Double()};
                              }};
    ops["clothoid_point"] = {ElementInputs + 1, PointOutputs, [](Values const& v) {
                                 CAxisPointSpec out = zeltest::Prefilled();
                                 CMathClothoid::Kleinpunkt(ElementAt(v, 0), CALength(v[ElementInputs]), &out);
                                 return PointValues(out);
                             }};
    ops["clothoid_foot"] = {ElementInputs + 2, FootOutputs, [](Values const& v) {
                                CAxisPointSpec out = zeltest::Prefilled();
                                int const r = CMathClothoid::Lot(ElementAt(v, 0), At(v, ElementInputs), &out);
                                return FootValues(r, out);
                            }};
    ops["transition_point"] = {7, {"ok", "east", "north", "azimuth", "radius"}, [](Values const& v) {
                                   CACoordinate point = UntouchedPoint();
                                   CAAzimuth azimuth(Untouched("azimuth"));
                                   CALength radius(Untouched("radius"));
                                   bool const ok = CMathClothoid::Kleinpunkt(At(v, 0), CAAzimuth(v[2]), v[3], v[4],
                                                                             v[5], v[6], point, azimuth, radius);
                                   return Values{ok ? 1.0 : 0.0, point.East().Double(), point.North().Double(),
                                                 azimuth.Double(), radius.Double()};
                               }};
}

// The cubic parabola and the half-sine transition.
void AddCubicParabolaAndHalfSine(std::map<std::string, Operation>& ops)
{
    ops["cubic_length"] = {ElementInputs, {"length"}, [](Values const& v) {
                               return Values{CMathCbcParabol::Length(ElementAt(v, 0)).Double()};
                           }};
    ops["cubic_point"] = {ElementInputs + 1, PointOutputs, [](Values const& v) {
                              CAxisPointSpec out = zeltest::Prefilled();
                              CMathCbcParabol::Kleinpunkt(ElementAt(v, 0), CALength(v[ElementInputs]), &out);
                              return PointValues(out);
                          }};
    ops["cubic_foot"] = {ElementInputs + 2, FootOutputs, [](Values const& v) {
                             CAxisPointSpec out = zeltest::Prefilled();
                             int const r = CMathCbcParabol::Lot(ElementAt(v, 0), At(v, ElementInputs), &out);
                             return FootValues(r, out);
                         }};
    ops["halfsine_point"] = {ElementInputs + 1, PointOutputs, [](Values const& v) {
                                 CAxisPointSpec out = zeltest::Prefilled();
                                 CMathHalfSin::Kleinpunkt(ElementAt(v, 0), CALength(v[ElementInputs]), &out);
                                 return PointValues(out);
                             }};
    ops["halfsine_foot"] = {ElementInputs + 2, FootOutputs, [](Values const& v) {
                                CAxisPointSpec out = zeltest::Prefilled();
                                int const r = CMathHalfSin::Lot(ElementAt(v, 0), At(v, ElementInputs), &out);
                                return FootValues(r, out);
                            }};
}

// Planes in space.
void AddPlane(std::map<std::string, Operation>& ops)
{
    std::vector<std::string> const point = {"result", "east", "north", "elevation"};
    ops["plane_normal"] = {9, {"ok", "east", "north", "elevation"}, [](Values const& v) {
                               CA3DCoordinate n = UntouchedPoint3D();
                               bool const ok = CMathPlane::CalculateNormal(At3D(v, 0), At3D(v, 3), At3D(v, 6), &n);
                               return Values{ok ? 1.0 : 0.0, n.East().Double(), n.North().Double(),
                                             n.Elevation().Double()};
                           }};
    ops["plane_line"] = {15, point, [](Values const& v) {
                             CA3DCoordinate x = UntouchedPoint3D();
                             int const r = CMathPlane::IntPlaneLine(At3D(v, 0), At3D(v, 3), At3D(v, 6), At3D(v, 9),
                                                                    At3D(v, 12), &x);
                             return Values{Code(r), x.East().Double(), x.North().Double(), x.Elevation().Double()};
                         }};
    ops["plane_line_abcd"] = {10, point, [](Values const& v) {
                                  CA3DCoordinate x = UntouchedPoint3D();
                                  int const r =
                                      CMathPlane::IntPlaneLine(v[0], v[1], v[2], v[3], At3D(v, 4), At3D(v, 7), &x);
                                  return Values{Code(r), x.East().Double(), x.North().Double(),
                                                x.Elevation().Double()};
                              }};
}

// Vertical curves of the longitudinal profile. The PIs are (station, height).
void AddProfile(std::map<std::string, Operation>& ops)
{
    ops["vc_circle"] = {7, {"ok", "start_station", "start_height", "end_station", "end_height", "length",
                            "centre_station", "centre_height"},
                        [](Values const& v) {
                            CACoordinate a = UntouchedProfilePoint();
                            CACoordinate b = UntouchedProfilePoint();
                            CACoordinate c = UntouchedProfilePoint();
                            CALength length(UntouchedScalar);
                            bool const ok = CMathLongProfCurve::calcPIPointsAndLengthOfCircle(
                                At(v, 0), At(v, 2), At(v, 4), CALength(v[6]), a, b, length, c);
                            return Values{ok ? 1.0 : 0.0,         a.East().Double(), a.North().Double(),
                                          b.East().Double(),      b.North().Double(), length.Double(),
                                          c.East().Double(),      c.North().Double()};
                        }};
    ops["vc_parabola"] = {7, {"ok", "start_station", "start_height", "end_station", "end_height", "length"},
                          [](Values const& v) {
                              CACoordinate a = UntouchedProfilePoint();
                              CACoordinate b = UntouchedProfilePoint();
                              CALength length(UntouchedScalar);
                              bool const ok = CMathLongProfCurve::calcPIPointsAndLengthOfParabol(
                                  At(v, 0), At(v, 2), At(v, 4), CALength(v[6]), a, b, length);
                              return Values{ok ? 1.0 : 0.0,    a.East().Double(), a.North().Double(),
                                            b.East().Double(), b.North().Double(), length.Double()};
                          }};
    auto heightAndSlope = [](auto f) {
        return [f](Values const& v) {
            CALength height(UntouchedScalar);
            CASlope slope(UntouchedScalar);
            bool const ok = f(At(v, 0), At(v, 2), At(v, 4), CALength(v[6]), CALength(v[7]), height, slope);
            return Values{ok ? 1.0 : 0.0, height.Double(), slope.Double()};
        };
    };
    ops["vc_circle_at"] = {8, {"ok", "height", "slope"},
                           heightAndSlope(&CMathLongProfCurve::calcSlopeAndLengthOfCircleAt)};
    ops["vc_parabola_at"] = {8, {"ok", "height", "slope"},
                             heightAndSlope(&CMathLongProfCurve::calcLengthAndSlopeOfParabolAt)};
    auto between = [](auto f) {
        return [f](Values const& v) {
            CALength length(UntouchedScalar);
            bool const ok = f(At(v, 0), At(v, 2), At(v, 4), CALength(v[6]), CALength(v[7]), CALength(v[8]), length);
            return Values{ok ? 1.0 : 0.0, length.Double()};
        };
    };
    ops["vc_circle_between"] = {9, {"ok", "length"}, between(&CMathLongProfCurve::calcCircleLengthBetween)};
    ops["vc_parabola_between"] = {9, {"ok", "length"}, between(&CMathLongProfCurve::calcParabolLengthBetween)};
    ops["vc_parabola_radius"] = {7, {"ok", "vertex_radius"}, [](Values const& v) {
                                     CALength radius(UntouchedScalar);
                                     bool const ok = CMathLongProfCurve::calcRadiusFromLengthOfParabol(
                                         At(v, 0), At(v, 2), At(v, 4), CALength(v[6]), radius);
                                     return Values{ok ? 1.0 : 0.0, radius.Double()};
                                 }};
}

// The station maps a table defines ("map name = ..."), by number; a table's
// maps are forgotten when the next table is read.
std::vector<zeltest::VectorStationMap>& Maps()
{
    static std::vector<zeltest::VectorStationMap> maps;
    return maps;
}

zeltest::VectorStationMap* MapAt(Values const& v, std::size_t i)
{
    return &Maps().at(static_cast<std::size_t>(v[i]));
}

// The conversions between 2D stations and tunnel metres. The reference's
// direction is written 1 (tunnel metres grow with the stations) or 0.
void AddStationMap(std::map<std::string, Operation>& ops)
{
    ops["to_tunnel_metre"] = {5, {"ok", "tunnel_metre"}, [](Values const& v) {
                                  double tm = UntouchedScalar;
                                  bool const ok = CMathStngMap2D3D::get3DTMFrom2DStng(MapAt(v, 0), v[1], v[2],
                                                                                      v[3] != 0.0, v[4], tm);
                                  return Values{ok ? 1.0 : 0.0, tm};
                              }};
    ops["to_station"] = {5, {"ok", "station_2d"}, [](Values const& v) {
                             double station = UntouchedScalar;
                             bool const ok = CMathStngMap2D3D::get2DStngFrom3DTM(MapAt(v, 0), v[1], v[2],
                                                                                 v[3] != 0.0, v[4], station);
                             return Values{ok ? 1.0 : 0.0, station};
                         }};
}

// The operations the tables may name.
std::map<std::string, Operation> const& Operations()
{
    static std::map<std::string, Operation> const ops = [] {
        std::map<std::string, Operation> all;
        AddFoundation(all);
        AddLine(all);
        AddCircle(all);
        AddClothoid(all);
        AddCubicParabolaAndHalfSine(all);
        AddPlane(all);
        AddProfile(all);
        AddStationMap(all);
        return all;
    }();
    return ops;
}

// A number as the tables write it: a decimal, nan, inf, [k]pi[/n], sqrt(x),
// or a name (element kind, result code, true, false).
bool ParseNumber(std::string const& text, double* value)
{
    static std::map<std::string, double> const names = {
        {"NotClassified", TComplexType::NotClassified},
        {"StraightIntoCurve", TComplexType::StraightIntoCurve},
        {"CurveIntoStraight", TComplexType::CurveIntoStraight},
        {"CurveIntoTighterCurve", TComplexType::CurveIntoTighterCurve},
        {"CurveIntoWiderCurve", TComplexType::CurveIntoWiderCurve},
        {"OnElement", TPointMathResult::OnElement},
        {"BeforeStart", TPointMathResult::BeforeStart},
        {"BeyondEnd", TPointMathResult::BeyondEnd},
        {"NoSolution", TPointMathResult::NoSolution},
        {"NoIntersection", TIntersectionResult::NoIntersection},
        {"OneIntersection", TIntersectionResult::OneIntersection},
        {"TwoIntersections", TIntersectionResult::TwoIntersections},
        {"Coincident", TIntersectionResult::Coincident},
        {"Tangent", TIntersectionResult::Tangent},
        {"true", 1.0},
        {"false", 0.0},
        {"nan", std::numeric_limits<double>::quiet_NaN()},
        {"inf", std::numeric_limits<double>::infinity()},
        {"-inf", -std::numeric_limits<double>::infinity()}};
    auto const name = names.find(text);
    if (name != names.end()) {
        *value = name->second;
        return true;
    }
    if (text.size() > 6 && text.compare(0, 5, "sqrt(") == 0 && text.back() == ')') {
        double x = 0.0;
        if (!ParseNumber(text.substr(5, text.size() - 6), &x)) {
            return false;
        }
        *value = std::sqrt(x);
        return true;
    }
    std::size_t const pi = text.find("pi");
    if (pi != std::string::npos) {
        double factor = 1.0;
        double divisor = 1.0;
        if (pi > 0 && text.substr(0, pi) == "-") {
            factor = -1.0;
        } else if (pi > 0 && !ParseNumber(text.substr(0, pi), &factor)) {
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

std::vector<std::string> Split(std::string const& s, char separator)
{
    std::vector<std::string> parts;
    std::size_t from = 0;
    while (true) {
        std::size_t const to = s.find(separator, from);
        parts.push_back(Trim(s.substr(from, to == std::string::npos ? std::string::npos : to - from)));
        if (to == std::string::npos) {
            return parts;
        }
        from = to + 1;
    }
}

// A map as a table writes it: elements separated by ',', each
//   straight start end length3D
//   circle start end length3D PI1 PI2 PI3 radius     (PIs as station height)
//   parabola start end length3D PI1 PI2 PI3 radius
// Returns false with a message when it cannot be read.
bool ParseMap(std::string const& text, zeltest::VectorStationMap* map, std::string* error)
{
    if (Trim(text).empty()) {
        return true;
    }
    for (std::string const& element : Split(text, ',')) {
        std::istringstream in(element);
        std::string kind;
        in >> kind;
        std::vector<double> v;
        for (std::string w; in >> w;) {
            double x = 0.0;
            if (!ParseNumber(w, &x)) {
                *error = "cannot read '" + w + "' in the map element '" + element + "'";
                return false;
            }
            v.push_back(x);
        }
        if (kind == "straight" && v.size() == 3) {
            map->AddStraight(v[0], v[1], v[2]);
        } else if ((kind == "circle" || kind == "parabola") && v.size() == 10) {
            CStngMapCurved3DDef curve;
            curve.PI1 = CACoordinate(v[3], v[4]);
            curve.PI2 = CACoordinate(v[5], v[6]);
            curve.PI3 = CACoordinate(v[7], v[8]);
            curve.Radius = v[9];
            curve.IsParabola = kind == "parabola";
            map->AddCurve(v[0], v[1], v[2], curve);
        } else {
            *error = "a map element reads: straight start end length3D, or circle/parabola start end "
                     "length3D PI1 PI2 PI3 radius: '" + element + "'";
            return false;
        }
    }
    return true;
}

struct Expectation {
    std::size_t output = 0;
    double value = 0.0;
    double tolerance = 0.0;
    std::string unit;
};

// One expectation "[output] value [tolerance unit]" of a row; false when it
// cannot be read.
bool ParseExpectation(std::string const& text, Operation const& op, Expectation* e, std::string* error)
{
    std::istringstream in(text);
    std::vector<std::string> words;
    for (std::string w; in >> w;) {
        words.push_back(w);
    }
    std::size_t first = 0;
    if (!words.empty()) {
        for (std::size_t i = 0; i < op.outputs.size(); ++i) {
            if (op.outputs[i] == words[0]) {
                e->output = i;
                first = 1;
            }
        }
    }
    std::size_t const rest = words.size() - first;
    if (rest != 1 && rest != 3) {
        *error = "an expectation is [output] value [tolerance unit]: '" + text + "'";
        return false;
    }
    std::string const& name = op.outputs[e->output];
    if (words[first] == "untouched") {
        e->value = Untouched(name);
    } else if (!ParseNumber(words[first], &e->value)) {
        *error = "cannot read the value of " + name + ": '" + words[first] + "'";
        return false;
    }
    if (rest == 3) {
        if (!ParseNumber(words[first + 1], &e->tolerance) || !(e->tolerance >= 0.0)) {
            *error = "cannot read the tolerance of " + name + ": '" + words[first + 1] + "'";
            return false;
        }
        e->unit = words[first + 2];
    }
    return true;
}

// Whether got meets the expectation; the smallest difference of directions
// for the unit rad(mod2pi).
bool Meets(double got, Expectation const& e)
{
    if (std::isnan(e.value)) {
        return std::isnan(got);
    }
    if (e.tolerance == 0.0) {
        return got == e.value;
    }
    if (e.unit == "rad(mod2pi)") {
        return zeltest::AngleGap(got, e.value) <= e.tolerance;
    }
    return std::fabs(got - e.value) <= e.tolerance;
}

// Checks every row of one table; returns the number of rows checked.
int ExpectTableRows(std::string const& path)
{
    std::ifstream file(path);
    EXPECT_TRUE(file.good()) << "cannot read " << path;
    int rows = 0;
    int lineNumber = 0;
    std::string line;
    std::map<std::string, std::vector<std::string>> defined;
    Maps().clear();
    while (std::getline(file, line)) {
        ++lineNumber;
        std::string const content = Trim(line.substr(0, line.find('#')));
        if (content.empty()) {
            continue;
        }
        // "map name = elements": a station map, its name standing for its
        // number among the inputs of the rows below.
        if (content.rfind("map ", 0) == 0) {
            std::size_t const equals = content.find('=');
            std::string const name = equals == std::string::npos ? std::string() : Trim(content.substr(4, equals - 4));
            zeltest::VectorStationMap map;
            std::string error;
            if (name.empty() || !ParseMap(content.substr(equals + 1), &map, &error)) {
                ADD_FAILURE_AT(path.c_str(), lineNumber)
                    << (error.empty() ? std::string("a map reads: map name = elements") : error);
                continue;
            }
            Maps().push_back(map);
            defined[name] = {std::to_string(Maps().size() - 1)};
            continue;
        }
        // "define name = numbers...": a name that stands for those numbers in
        // the inputs of the rows below (an element, a set of PIs).
        if (content.rfind("define ", 0) == 0) {
            std::istringstream in(content.substr(7));
            std::string name, equals;
            in >> name >> equals;
            std::vector<std::string> words;
            for (std::string w; in >> w;) {
                words.push_back(w);
            }
            if (name.empty() || equals != "=" || words.empty()) {
                ADD_FAILURE_AT(path.c_str(), lineNumber) << "a definition reads: define name = numbers";
                continue;
            }
            defined[name] = words;
            continue;
        }
        // The source, the last column, may itself hold a '|'.
        std::vector<std::string> columns = Split(content, '|');
        while (columns.size() > 3) {
            columns[columns.size() - 2] += "|" + columns.back();
            columns.pop_back();
        }
        if (columns.size() != 3 || columns[2].empty()) {
            ADD_FAILURE_AT(path.c_str(), lineNumber)
                << "a row needs: operation inputs | expected outputs | source";
            continue;
        }
        std::istringstream call(columns[0]);
        std::string opName;
        call >> opName;
        auto const found = Operations().find(opName);
        if (found == Operations().end()) {
            ADD_FAILURE_AT(path.c_str(), lineNumber) << "unknown operation " << opName;
            continue;
        }
        Operation const& op = found->second;
        Values inputs;
        std::string word;
        bool readable = true;
        while (call >> word) {
            auto const name = defined.find(word);
            std::vector<std::string> const words =
                name == defined.end() ? std::vector<std::string>{word} : name->second;
            for (std::string const& w : words) {
                double v = 0.0;
                readable = readable && ParseNumber(w, &v);
                inputs.push_back(v);
            }
        }
        if (!readable || inputs.size() != op.inputs) {
            ADD_FAILURE_AT(path.c_str(), lineNumber)
                << opName << " takes " << op.inputs << " numbers as inputs: " << columns[0];
            continue;
        }
        std::vector<Expectation> expectations;
        std::string error;
        for (std::string const& text : Split(columns[1], ';')) {
            Expectation e;
            if (!ParseExpectation(text, op, &e, &error)) {
                break;
            }
            expectations.push_back(e);
        }
        if (!error.empty()) {
            ADD_FAILURE_AT(path.c_str(), lineNumber) << error;
            continue;
        }

        Values const got = op.run(inputs);
        ++rows;
        for (Expectation const& e : expectations) {
            double const g = got[e.output];
            if (!Meets(g, e)) {
                ADD_FAILURE_AT(path.c_str(), lineNumber)
                    << opName << " " << op.outputs[e.output] << ": expected " << e.value << " within "
                    << e.tolerance << " " << e.unit << ", got " << g << " (off by " << g - e.value << ")";
            }
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

TEST(Tables, Line)
{
    EXPECT_GT(ExpectTableRows(DataFile("line.txt")), 0);
}

TEST(Tables, Circle)
{
    EXPECT_GT(ExpectTableRows(DataFile("circle.txt")), 0);
}

TEST(Tables, Plane)
{
    EXPECT_GT(ExpectTableRows(DataFile("plane.txt")), 0);
}

TEST(Tables, Profile)
{
    EXPECT_GT(ExpectTableRows(DataFile("profile.txt")), 0);
}

TEST(Tables, Clothoid)
{
    EXPECT_GT(ExpectTableRows(DataFile("clothoid.txt")), 0);
}

TEST(Tables, CubicParabola)
{
    EXPECT_GT(ExpectTableRows(DataFile("cubic_parabola.txt")), 0);
}

TEST(Tables, HalfSine)
{
    EXPECT_GT(ExpectTableRows(DataFile("half_sine.txt")), 0);
}

TEST(Tables, StationMap)
{
    EXPECT_GT(ExpectTableRows(DataFile("station_map.txt")), 0);
}
