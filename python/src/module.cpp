// zelmath._core: the alignment layer and the element classes for Python.
//
// Every array call runs one C++ loop over the whole array with the GIL
// released, so that calls from several Python threads run at once. The
// Python-facing classes and their documentation live in zelmath/__init__.py;
// this module holds the computations.
//
// Units and signs, throughout: metres for lengths, stations, coordinates and
// heights; radians for angles; azimuths clockwise from North in [0, 2 pi);
// radii signed, positive bending right, 0 on a straight; offsets positive to
// the right of the direction of increasing station.
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <zelalign/zelalign.h>
#include <zelmath/zelmath.h>

namespace py = pybind11;

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

using InArray = py::array_t<double, py::array::c_style | py::array::forcecast>;
using OutArray = py::array_t<double>;
using IntArray = py::array_t<std::int32_t>;

// The exception classes of the package, created once when the module loads.
struct Exceptions {
    PyObject* error = nullptr;
    PyObject* dataError = nullptr;
    PyObject* landXmlError = nullptr;
    PyObject* ioError = nullptr;
    PyObject* argumentError = nullptr;
};
Exceptions g_exceptions;

PyObject* NewException(py::module_& m, char const* name, py::tuple bases, char const* doc)
{
    std::string const qualified = std::string("zelmath.") + name;
    PyObject* cls = PyErr_NewExceptionWithDoc(qualified.c_str(), doc, bases.ptr(), nullptr);
    if (cls == nullptr) {
        throw py::error_already_set();
    }
    m.add_object(name, py::handle(cls));
    return cls;
}

void RegisterExceptions(py::module_& m)
{
    py::handle valueError(PyExc_ValueError);
    py::handle osError(PyExc_OSError);
    g_exceptions.error = NewException(m, "Error", py::make_tuple(py::handle(PyExc_Exception)),
                                      "Base of every error the alignment layer reports.");
    py::handle error(g_exceptions.error);
    g_exceptions.dataError =
        NewException(m, "DataError", py::make_tuple(error, valueError),
                     "The data is wrong: a file that cannot be represented, a value outside its range, "
                     "elements that do not fit together.");
    g_exceptions.landXmlError =
        NewException(m, "LandXmlError", py::make_tuple(py::handle(g_exceptions.dataError)),
                     "A LandXML file that cannot be read as an alignment: 'file:line: <Element>: message'.");
    g_exceptions.ioError = NewException(m, "IoError", py::make_tuple(error, osError),
                                        "A file could not be opened or read; the message carries the reason.");
    g_exceptions.argumentError =
        NewException(m, "ArgumentError", py::make_tuple(error, valueError),
                     "A value lies outside the range a call accepts (a non-finite station, an interval "
                     "that is not positive, arrays of different lengths).");

    py::register_exception_translator([](std::exception_ptr p) {
        try {
            if (p) {
                std::rethrow_exception(p);
            }
        } catch (zelalign::LandXmlError const& e) {
            PyErr_SetString(g_exceptions.landXmlError, e.what());
        } catch (zelalign::DataError const& e) {
            PyErr_SetString(g_exceptions.dataError, e.what());
        } catch (zelalign::IoError const& e) {
            PyErr_SetString(g_exceptions.ioError, e.what());
        } catch (zelalign::ArgumentError const& e) {
            PyErr_SetString(g_exceptions.argumentError, e.what());
        } catch (zelalign::Error const& e) {
            PyErr_SetString(g_exceptions.error, e.what());
        } catch (std::invalid_argument const& e) {
            // The element chain and the profile report what does not fit by
            // std::invalid_argument.
            PyErr_SetString(g_exceptions.dataError, e.what());
        }
    });
}

// A one-dimensional view of an input array; ArgumentError for another shape.
InArray Vector(py::handle obj, char const* what)
{
    InArray a = InArray::ensure(obj);
    if (!a) {
        throw zelalign::ArgumentError(std::string(what) + " must be convertible to an array of float64");
    }
    if (a.ndim() != 1) {
        throw zelalign::ArgumentError(std::string(what) + " must be one-dimensional, got " +
                                      std::to_string(a.ndim()) + " dimensions");
    }
    return a;
}

void SameLength(InArray const& a, InArray const& b, char const* what)
{
    if (a.shape(0) != b.shape(0)) {
        throw zelalign::ArgumentError(std::string(what) + " have different lengths: " + std::to_string(a.shape(0)) +
                                      " and " + std::to_string(b.shape(0)));
    }
}

unsigned Threads(int threads)
{
    if (threads < 0) {
        throw zelalign::ArgumentError("threads must be 0 (all cores) or positive, got " + std::to_string(threads));
    }
    return threads == 0 ? zelalign::HardwareThreads() : static_cast<unsigned>(threads);
}

// ---------------------------------------------------------------------------
// Alignment

// An alignment with the definition it was read from, so that it can be rebuilt
// (pickling ships the definition, not the computed state).
struct PyAlignment {
    zelalign::Alignment alignment;
    std::string text;        // the LandXML text
    std::string sourceName;  // the file it came from, for messages
    std::string name;        // the alignment asked for ("" for the first)
    zelalign::TunnelMetreReference reference;
};

std::shared_ptr<PyAlignment> ParseAlignment(std::string text, std::string sourceName, std::string name,
                                            std::optional<double> refStation, std::optional<double> refTunnelMetre,
                                            bool sameDirection)
{
    auto a = std::make_shared<PyAlignment>();
    a->reference.station = refStation;
    a->reference.tunnelMetre = refTunnelMetre;
    a->reference.sameDirection = sameDirection;
    {
        py::gil_scoped_release release;
        a->alignment = zelalign::ParseLandXml(text, sourceName, name, a->reference);
    }
    a->text = std::move(text);
    a->sourceName = std::move(sourceName);
    a->name = std::move(name);
    return a;
}

std::string ReadText(std::string const& path)
{
    py::gil_scoped_release release;
    return zelalign::ReadTextFile(path);
}

py::tuple StationArrays(PyAlignment const& self, py::handle eastObj, py::handle northObj, py::handle heightObj,
                        int threadCount)
{
    InArray const east = Vector(eastObj, "east");
    InArray const north = Vector(northObj, "north");
    SameLength(east, north, "east and north");
    std::optional<InArray> height;
    if (!heightObj.is_none()) {
        height = Vector(heightObj, "height");
        SameLength(east, *height, "east and height");
    }
    unsigned const threads = Threads(threadCount);
    auto const n = static_cast<py::ssize_t>(east.shape(0));
    OutArray station(n), offset(n), azimuth(n), radius(n), designHeight(n), heightDifference(n), tunnelMetre(n);
    OutArray displayedStation(n), appliedCant(n);
    IntArray element(n), type(n), status(n), region(n);
    zelalign::StationColumns cols;
    cols.station = station.mutable_data();
    cols.offset = offset.mutable_data();
    cols.element = element.mutable_data();
    cols.type = type.mutable_data();
    cols.azimuth = azimuth.mutable_data();
    cols.radius = radius.mutable_data();
    cols.designHeight = designHeight.mutable_data();
    cols.heightDifference = heightDifference.mutable_data();
    cols.tunnelMetre = tunnelMetre.mutable_data();
    cols.status = status.mutable_data();
    cols.displayedStation = displayedStation.mutable_data();
    cols.region = region.mutable_data();
    cols.appliedCant = appliedCant.mutable_data();
    double const* e = east.data();
    double const* no = north.data();
    double const* h = height ? height->data() : nullptr;
    {
        py::gil_scoped_release release;
        self.alignment.Station(static_cast<std::size_t>(n), e, no, h, cols, threads);
    }
    return py::make_tuple(station, offset, element, type, azimuth, radius, designHeight, heightDifference,
                          tunnelMetre, status, displayedStation, region, appliedCant);
}

py::tuple SetOutArrays(PyAlignment const& self, InArray const& stations, int threadCount)
{
    unsigned const threads = Threads(threadCount);
    auto const n = static_cast<py::ssize_t>(stations.shape(0));
    OutArray east(n), north(n), azimuth(n), radius(n), designHeight(n), gradient(n), tunnelMetre(n);
    IntArray element(n), type(n);
    double const* s = stations.data();
    double* pe = east.mutable_data();
    double* pn = north.mutable_data();
    double* pa = azimuth.mutable_data();
    double* pr = radius.mutable_data();
    double* ph = designHeight.mutable_data();
    double* pg = gradient.mutable_data();
    double* pt = tunnelMetre.mutable_data();
    std::int32_t* pel = element.mutable_data();
    std::int32_t* pty = type.mutable_data();
    {
        py::gil_scoped_release release;
        zelalign::ParallelFor(static_cast<std::size_t>(n), threads, [&](std::size_t begin, std::size_t end) {
            for (std::size_t i = begin; i < end; ++i) {
                zelalign::SetOutPoint p;
                if (self.alignment.SetOut(s[i], &p)) {
                    pe[i] = p.east;
                    pn[i] = p.north;
                    pa[i] = p.azimuth;
                    pr[i] = p.radius;
                    ph[i] = p.designHeight;
                    pg[i] = p.gradient;
                    pt[i] = p.tunnelMetre;
                    pel[i] = p.element;
                    pty[i] = static_cast<std::int32_t>(p.type);
                } else {
                    pe[i] = pn[i] = pa[i] = pr[i] = ph[i] = pg[i] = pt[i] = NaN;
                    pel[i] = -1;
                    pty[i] = -1;
                }
            }
        });
    }
    return py::make_tuple(east, north, element, type, azimuth, radius, designHeight, gradient, tunnelMetre);
}

template <class Convert>
OutArray ConvertArray(py::handle obj, char const* what, Convert convert)
{
    InArray const in = Vector(obj, what);
    auto const n = static_cast<py::ssize_t>(in.shape(0));
    OutArray out(n);
    double const* src = in.data();
    double* dst = out.mutable_data();
    {
        py::gil_scoped_release release;
        for (py::ssize_t i = 0; i < n; ++i) {
            double v = NaN;
            dst[i] = convert(src[i], &v) ? v : NaN;
        }
    }
    return out;
}

// ---------------------------------------------------------------------------
// Elements

// One horizontal element, evaluated as a chain of its own so that it gets the
// same treatment as inside an alignment (a cubic parabola from a curve into a
// straight evaluated reversed, the radius of a half-sine from its curvature).
struct Element {
    zelalign::HorizontalElement element;
    zelalign::HorizontalAlignment chain;

    explicit Element(zelalign::HorizontalElement e) : element(e), chain(std::vector<zelalign::HorizontalElement>{e}) {}
};

struct Line : Element {
    using Element::Element;
};
struct Arc : Element {
    using Element::Element;
};
struct Clothoid : Element {
    using Element::Element;
};
struct CubicParabola : Element {
    using Element::Element;
};
struct HalfSine : Element {
    using Element::Element;
};
struct ShapedTransition : Element {
    using Element::Element;
};

zelmath::CACoordinate Coordinate(std::pair<double, double> const& p)
{
    return zelmath::CACoordinate(p.first, p.second);
}

std::pair<double, double> Pair(zelmath::CACoordinate const& c)
{
    return {c.East().Double(), c.North().Double()};
}

py::object ElementObject(zelalign::HorizontalElement const& e)
{
    switch (e.type) {
    case zelalign::ElementType::Line:
        return py::cast(Line(e));
    case zelalign::ElementType::Arc:
        return py::cast(Arc(e));
    case zelalign::ElementType::Clothoid:
        return py::cast(Clothoid(e));
    case zelalign::ElementType::CubicParabola:
        return py::cast(CubicParabola(e));
    case zelalign::ElementType::HalfSine:
        return py::cast(HalfSine(e));
    case zelalign::ElementType::ShapedTransition:
        return py::cast(ShapedTransition(e));
    }
    return py::none();
}

// The point at a station of an element: (east, north, azimuth, radius).
py::tuple ElementPointAt(Element const& self, double station)
{
    zelalign::AlignmentPoint const p = self.chain.ElementPoint(0, station);
    return py::make_tuple(p.east, p.north, p.azimuth, p.radius);
}

// The projection of a measured point: (status, station, offset, along, foot east, foot north, azimuth, radius).
py::tuple ElementProject(Element const& self, double east, double north)
{
    if (!std::isfinite(east) || !std::isfinite(north)) {
        return py::make_tuple(static_cast<int>(zelalign::ProjectionStatus::Invalid), NaN, NaN, NaN, NaN, NaN, NaN,
                              NaN);
    }
    zelalign::Projection const p = self.chain.Project(east, north);
    if (p.status == zelalign::ProjectionStatus::NoSolution) {
        return py::make_tuple(static_cast<int>(p.status), NaN, NaN, NaN, NaN, NaN, NaN, NaN);
    }
    return py::make_tuple(static_cast<int>(p.status), p.foot.station, p.offset, p.along, p.foot.east, p.foot.north,
                          p.foot.azimuth, p.foot.radius);
}

void CheckStation(double startStation, double length)
{
    if (!std::isfinite(startStation) || !std::isfinite(length) || !(length > 0.0)) {
        throw zelalign::ArgumentError("an element needs a finite start station and a positive length, got " +
                                      std::to_string(startStation) + " and " + std::to_string(length));
    }
}

zelalign::HorizontalElement TransitionElement(zelalign::ElementType type, std::pair<double, double> start,
                                              std::pair<double, double> end, double length, double startRadius,
                                              double endRadius, double startStation)
{
    CheckStation(startStation, length);
    return zelalign::HorizontalElement::Transition(type, startStation, length, Coordinate(start), Coordinate(end),
                                                   startRadius, endRadius);
}

// A vertical curve of the profile at PI2 between the grades PI1-PI2 and PI2-PI3.
struct VerticalCurve {
    zelmath::CACoordinate pi1, pi2, pi3;
    double radius = 0.0;
    bool parabola = false;
    double startStation = 0.0, startHeight = 0.0, endStation = 0.0, endHeight = 0.0, length = 0.0;
};

VerticalCurve MakeVerticalCurve(std::pair<double, double> pi1, std::pair<double, double> pi2,
                                std::pair<double, double> pi3, double radius, std::string const& kind)
{
    VerticalCurve c;
    c.pi1 = Coordinate(pi1);
    c.pi2 = Coordinate(pi2);
    c.pi3 = Coordinate(pi3);
    c.radius = radius;
    if (kind == "parabola") {
        c.parabola = true;
    } else if (kind != "circle") {
        throw zelalign::ArgumentError("a vertical curve is a 'circle' or a 'parabola', got '" + kind + "'");
    }
    zelmath::CACoordinate ts, te, centre;
    zelmath::CALength len;
    bool const ok = c.parabola ? zelmath::CMathLongProfCurve::calcPIPointsAndLengthOfParabol(
                                     c.pi1, c.pi2, c.pi3, zelmath::CALength(radius), ts, te, len)
                               : zelmath::CMathLongProfCurve::calcPIPointsAndLengthOfCircle(
                                     c.pi1, c.pi2, c.pi3, zelmath::CALength(radius), ts, te, len, centre);
    if (!ok) {
        throw zelalign::DataError("the vertical curve cannot be set up between these grades with radius " +
                                  std::to_string(radius));
    }
    c.startStation = ts.East().Double();
    c.startHeight = ts.North().Double();
    c.endStation = te.East().Double();
    c.endHeight = te.North().Double();
    c.length = len.Double();
    return c;
}

// Height and gradient (rise over run) at a station; NaN where the curve operation fails.
std::pair<double, double> VerticalHeight(VerticalCurve const& c, double station)
{
    zelmath::CALength height;
    zelmath::CASlope slope;
    bool const ok = c.parabola
                        ? zelmath::CMathLongProfCurve::calcLengthAndSlopeOfParabolAt(
                              c.pi1, c.pi2, c.pi3, zelmath::CALength(c.radius), zelmath::CALength(station), height, slope)
                        : zelmath::CMathLongProfCurve::calcSlopeAndLengthOfCircleAt(
                              c.pi1, c.pi2, c.pi3, zelmath::CALength(c.radius), zelmath::CALength(station), height, slope);
    if (!ok) {
        return {NaN, NaN};
    }
    // The slope holds the gradient, rise over run.
    return {height.Double(), slope.Double()};
}

template <class T>
py::class_<T, Element> BindElement(py::module_& m, char const* name, char const* doc)
{
    return py::class_<T, Element>(m, name, doc);
}

}  // namespace

PYBIND11_MODULE(_core, m)
{
    m.doc() = "C++ core of zelmath: the alignment layer and the element classes (see the zelmath package).";
    m.attr("__version__") = zelalign::Version();
    RegisterExceptions(m);

    m.def("element_type_name", [](int type) { return zelalign::ElementTypeName(static_cast<zelalign::ElementType>(type)); });
    m.def("status_name", [](int s) { return zelalign::ProjectionStatusName(static_cast<zelalign::ProjectionStatus>(s)); });
    m.def("hardware_threads", &zelalign::HardwareThreads);
    m.def("read_text_file", &ReadText, py::arg("path"));
    m.def("alignment_names", [](std::string const& text, std::string const& sourceName) {
        py::gil_scoped_release release;
        return zelalign::LandXmlAlignmentNames(text, sourceName);
    });
    m.def("setting_out_stations", [](double from, double to, double every) {
        std::vector<double> s = zelalign::SettingOutStations(from, to, every);
        OutArray out(static_cast<py::ssize_t>(s.size()));
        std::copy(s.begin(), s.end(), out.mutable_data());
        return out;
    });

    py::class_<PyAlignment, std::shared_ptr<PyAlignment>>(m, "CoreAlignment")
        .def(py::init(&ParseAlignment), py::arg("text"), py::arg("source_name"), py::arg("name"),
             py::arg("reference_station"), py::arg("reference_tunnel_metre"), py::arg("same_direction"))
        .def_property_readonly("name", [](PyAlignment const& a) { return a.alignment.Name(); })
        .def_property_readonly("requested_name", [](PyAlignment const& a) { return a.name; })
        .def_property_readonly("text", [](PyAlignment const& a) { return py::bytes(a.text); })
        .def_property_readonly("source_name", [](PyAlignment const& a) { return a.sourceName; })
        .def_property_readonly("reference", [](PyAlignment const& a) {
            return py::make_tuple(a.reference.station, a.reference.tunnelMetre, a.reference.sameDirection);
        })
        .def_property_readonly("start_station", [](PyAlignment const& a) { return a.alignment.StartStation(); })
        .def_property_readonly("end_station", [](PyAlignment const& a) { return a.alignment.EndStation(); })
        .def_property_readonly("warnings", [](PyAlignment const& a) { return a.alignment.Warnings(); })
        .def_property_readonly("file_units",
                               [](PyAlignment const& a) {
                                   zelalign::AlignmentSource const& src = a.alignment.Source();
                                   return py::make_tuple(src.linearUnit, src.angularUnit, src.directionUnit);
                               })
        .def_property_readonly("coordinate_system",
                               [](PyAlignment const& a) { return a.alignment.Source().coordinateSystem; })
        .def_property_readonly("has_profile", [](PyAlignment const& a) { return !a.alignment.Profile().Empty(); })
        .def_property_readonly("profile_points",
                               [](PyAlignment const& a) {
                                   py::list out;
                                   for (auto const& p : a.alignment.Profile().Points()) {
                                       char const* kind = p.curve == zelalign::VerticalCurveType::Circle     ? "circle"
                                                          : p.curve == zelalign::VerticalCurveType::Parabola ? "parabola"
                                                          : p.curve == zelalign::VerticalCurveType::UnsymParabola
                                                              ? "unsym_parabola"
                                                              : "";
                                       out.append(py::make_tuple(p.station, p.height, kind, p.radius));
                                   }
                                   return out;
                               })
        .def("elements",
             [](PyAlignment const& a) {
                 py::list out;
                 for (auto const& e : a.alignment.Horizontal().Elements()) {
                     out.append(ElementObject(e));
                 }
                 return out;
             })
        .def("station", &StationArrays, py::arg("east"), py::arg("north"), py::arg("height"), py::arg("threads"))
        .def(
            "point_at",
            [](PyAlignment const& a, py::handle stations, int threads) {
                return SetOutArrays(a, Vector(stations, "stations"), threads);
            },
            py::arg("stations"), py::arg("threads"))
        .def("to_tunnel_metre",
             [](PyAlignment const& a, py::handle stations) {
                 return ConvertArray(stations, "stations",
                                     [&a](double s, double* tm) { return a.alignment.ToTunnelMetre(s, tm); });
             })
        .def("from_tunnel_metre", [](PyAlignment const& a, py::handle tm) {
            return ConvertArray(tm, "tunnel metres",
                                [&a](double t, double* s) { return a.alignment.ToStation(t, s); });
        });

    py::class_<Element>(m, "Element", "A horizontal element of an alignment.")
        .def_property_readonly("type", [](Element const& e) { return zelalign::ElementTypeName(e.element.type); },
                               "Kind of the element: 'line', 'arc', 'clothoid', 'cubic_parabola', 'half_sine' or "
                               "'shaped_transition'.")
        .def_property_readonly("curve", [](Element const& e) { return zelalign::ElementCurveName(e.element); },
                               "Name of the curve: the kind, or a shaped transition's shape ('bloss', ...).")
        .def_property_readonly("start_station", [](Element const& e) { return e.element.StartStation(); },
                               "Station of the start (metres).")
        .def_property_readonly("end_station", [](Element const& e) { return e.element.EndStation(); },
                               "Station of the end (metres).")
        .def_property_readonly("length", [](Element const& e) { return e.element.Length(); },
                               "Length along the element (metres).")
        .def_property_readonly("start", [](Element const& e) { return Pair(e.element.spec.Start.Coordinate); },
                               "Start point (east, north) in metres.")
        .def_property_readonly("end", [](Element const& e) { return Pair(e.element.spec.End.Coordinate); },
                               "End point (east, north) in metres.")
        .def_property_readonly("start_radius", [](Element const& e) { return e.element.spec.Start.Radius.Double(); },
                               "Signed radius at the start (metres): positive bends right, 0 for straight.")
        .def_property_readonly("end_radius", [](Element const& e) { return e.element.spec.End.Radius.Double(); },
                               "Signed radius at the end (metres): positive bends right, 0 for straight.")
        .def_property_readonly("parameter", [](Element const& e) { return e.element.spec.Parameter.Double(); },
                               "Clothoid parameter A (metres), A^2 = L / |1/R_end - 1/R_start|; 0 for others.")
        .def("_point_at", &ElementPointAt, py::arg("station"))
        .def("_project", &ElementProject, py::arg("east"), py::arg("north"));

    BindElement<Line>(m, "CoreLine", "A straight from start to end.")
        .def(py::init([](std::pair<double, double> start, std::pair<double, double> end, double startStation) {
                 double const length = zelmath::CMathLine::Length(Coordinate(start), Coordinate(end)).Double();
                 CheckStation(startStation, length);
                 return Line(zelalign::HorizontalElement::Line(startStation, length, Coordinate(start), Coordinate(end)));
             }),
             py::arg("start"), py::arg("end"), py::arg("start_station"));
    BindElement<Arc>(m, "CoreArc", "A circular arc.")
        .def(py::init([](std::pair<double, double> start, std::pair<double, double> end, double radius,
                         double startStation) {
                 if (!std::isfinite(radius) || radius == 0.0) {
                     throw zelalign::ArgumentError("an arc needs a finite, non-zero radius, got " + std::to_string(radius));
                 }
                 double const length =
                     zelmath::CMathCircle::Length(Coordinate(start), Coordinate(end), zelmath::CALength(radius)).Double();
                 CheckStation(startStation, length);
                 return Arc(zelalign::HorizontalElement::Arc(startStation, length, Coordinate(start), Coordinate(end),
                                                             radius));
             }),
             py::arg("start"), py::arg("end"), py::arg("radius"), py::arg("start_station"));
    BindElement<Clothoid>(m, "CoreClothoid", "A clothoid transition.")
        .def(py::init([](std::pair<double, double> s, std::pair<double, double> e, double length, double r1, double r2,
                         double station) {
                 return Clothoid(TransitionElement(zelalign::ElementType::Clothoid, s, e, length, r1, r2, station));
             }),
             py::arg("start"), py::arg("end"), py::arg("length"), py::arg("start_radius"), py::arg("end_radius"),
             py::arg("start_station"));
    BindElement<CubicParabola>(m, "CoreCubicParabola", "A cubic parabola transition.")
        .def(py::init([](std::pair<double, double> s, std::pair<double, double> e, double length, double r1, double r2,
                         double station) {
                 return CubicParabola(
                     TransitionElement(zelalign::ElementType::CubicParabola, s, e, length, r1, r2, station));
             }),
             py::arg("start"), py::arg("end"), py::arg("length"), py::arg("start_radius"), py::arg("end_radius"),
             py::arg("start_station"));
    BindElement<HalfSine>(m, "CoreHalfSine", "A half-sine transition.")
        .def(py::init([](std::pair<double, double> s, std::pair<double, double> e, double length, double r1, double r2,
                         double station) {
                 return HalfSine(TransitionElement(zelalign::ElementType::HalfSine, s, e, length, r1, r2, station));
             }),
             py::arg("start"), py::arg("end"), py::arg("length"), py::arg("start_radius"), py::arg("end_radius"),
             py::arg("start_station"));

    BindElement<ShapedTransition>(m, "CoreShapedTransition",
                                  "A transition given by its curvature along the length (bloss, biquadratic, cosine, "
                                  "sinusoid).")
        .def(py::init([](std::string const& shape, std::pair<double, double> s, std::pair<double, double> e,
                         double length, double r1, double r2, double station) {
                 for (zelalign::TransitionShape k :
                      {zelalign::TransitionShape::Bloss, zelalign::TransitionShape::Biquadratic,
                       zelalign::TransitionShape::Cosine, zelalign::TransitionShape::Sinusoid}) {
                     if (shape == zelalign::TransitionShapeName(k)) {
                         CheckStation(station, length);
                         return ShapedTransition(zelalign::HorizontalElement::Shaped(k, station, length, Coordinate(s),
                                                                                     Coordinate(e), r1, r2));
                     }
                 }
                 throw zelalign::ArgumentError("unknown transition shape '" + shape +
                                               "' (known: bloss, biquadratic, cosine, sinusoid)");
             }),
             py::arg("shape"), py::arg("start"), py::arg("end"), py::arg("length"), py::arg("start_radius"),
             py::arg("end_radius"), py::arg("start_station"))
        .def_property_readonly(
            "shape", [](ShapedTransition const& e) { return zelalign::TransitionShapeName(e.element.shape); },
            "Shape of the curvature along the length: 'bloss', 'biquadratic', 'cosine' or 'sinusoid'.");

    // Layout from a start point and direction, where the element library gives it.
    m.def("clothoid_end",
          [](std::pair<double, double> start, double azimuth, double length, double r1, double r2) {
              zelmath::CACoordinate p;
              zelmath::CAAzimuth az;
              zelmath::CALength r;
              bool const ok = zelmath::CMathClothoid::Kleinpunkt(Coordinate(start), zelmath::CAAzimuth(azimuth),
                                                                 zelmath::CALength(r1), zelmath::CALength(r2),
                                                                 zelmath::CALength(length), zelmath::CALength(length),
                                                                 p, az, r);
              if (!ok) {
                  throw zelalign::ArgumentError("no clothoid of length " + std::to_string(length) + " from radius " +
                                                std::to_string(r1) + " to " + std::to_string(r2));
              }
              return Pair(p);
          });
    m.def("arc_end", [](std::pair<double, double> start, double azimuth, double length, double radius) {
        zelmath::CACoordinate e;
        zelmath::CAAzimuth ae;
        if (!zelmath::CMathCircle::EndPointAndEndAzi(Coordinate(start), zelmath::CAAzimuth(azimuth),
                                                     zelmath::CALength(length), zelmath::CALength(radius), e, ae)) {
            throw zelalign::ArgumentError("no arc of length " + std::to_string(length) + " with radius " +
                                          std::to_string(radius));
        }
        return Pair(e);
    });

    py::class_<VerticalCurve>(m, "CoreVerticalCurve")
        .def(py::init(&MakeVerticalCurve), py::arg("pi1"), py::arg("pi2"), py::arg("pi3"), py::arg("radius"),
             py::arg("kind"))
        .def_property_readonly("start", [](VerticalCurve const& c) { return std::make_pair(c.startStation, c.startHeight); })
        .def_property_readonly("end", [](VerticalCurve const& c) { return std::make_pair(c.endStation, c.endHeight); })
        .def_property_readonly("length", [](VerticalCurve const& c) { return c.length; })
        .def_property_readonly("radius", [](VerticalCurve const& c) { return c.radius; })
        .def_property_readonly("kind", [](VerticalCurve const& c) { return c.parabola ? "parabola" : "circle"; })
        .def_property_readonly("pis", [](VerticalCurve const& c) {
            return py::make_tuple(Pair(c.pi1), Pair(c.pi2), Pair(c.pi3));
        })
        .def("height_at", &VerticalHeight, py::arg("station"));
}
