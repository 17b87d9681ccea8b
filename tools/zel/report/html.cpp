#include "report/html.h"

#include <algorithm>
#include <cmath>

#include <zelalign/diagrams.h>

#include "format.h"
#include "report/svg.h"

namespace zel::report {

namespace {

// Decimals of stations, lengths and radii in the tables (a millimetre), and
// of deviations in millimetres (a tenth).
constexpr int LengthDecimals = 3;
constexpr int MillimetreDecimals = 1;
constexpr double Millimetres = 1000.0;

constexpr char const* Style = R"(
body { font-family: "DejaVu Sans", Arial, Helvetica, sans-serif; color: #222; margin: 0; background: #f4f4f2; }
main { max-width: 1040px; margin: 0 auto; padding: 12px 20px 40px; background: #fff; }
h1 { font-size: 22px; margin: 8px 0 4px; }
h2 { font-size: 17px; margin: 26px 0 8px; border-bottom: 1px solid #ccc; padding-bottom: 3px; }
p.summary { margin: 4px 0; color: #444; }
figure { margin: 10px 0 18px; }
figure svg { width: 100%; height: auto; display: block; border: 1px solid #e2e2e2; }
figcaption { font-size: 12px; color: #555; margin-top: 3px; }
table { border-collapse: collapse; font-size: 12px; }
th, td { border: 1px solid #d4d4d4; padding: 2px 7px; text-align: right; }
th { background: #eef1f4; }
td.text { text-align: left; }
tr:nth-child(even) td { background: #fafafa; }
td.outside { color: #b00; font-weight: bold; }
ul.warnings li { font-family: monospace; font-size: 12px; }
#report-errors { color: #b00; font-family: monospace; white-space: pre-wrap; }
svg[data-figure="plan"] * { vector-effect: non-scaling-stroke; }
)";

// Installed first, so that every later script error and console error is
// recorded in the page.
constexpr char const* ErrorScript = R"(
(function () {
  window.reportErrors = [];
  function record(message) {
    window.reportErrors.push(String(message));
    var list = document.getElementById('report-errors');
    if (list) { list.textContent = window.reportErrors.join('\n'); }
    if (document.body) { document.body.setAttribute('data-report-errors', String(window.reportErrors.length)); }
  }
  window.addEventListener('error', function (e) { record('error: ' + e.message); });
  window.addEventListener('unhandledrejection', function (e) { record('unhandled rejection: ' + e.reason); });
  var consoleError = console.error;
  console.error = function () {
    record('console.error: ' + Array.prototype.join.call(arguments, ' '));
    return consoleError.apply(console, arguments);
  };
  window.recordReportError = record;
})();
)";

// Checks every figure once the page has loaded: drawn with a non-zero size
// and data marks whose bounding box is not empty.
constexpr char const* CheckScript = R"(
(function () {
  function check() {
    var ok = [], bad = [];
    document.querySelectorAll('svg[data-figure]').forEach(function (svg) {
      var name = svg.getAttribute('data-figure');
      var box = svg.getBoundingClientRect();
      var marks = svg.querySelectorAll('[data-mark]');
      var drawn = 0;
      marks.forEach(function (m) { var b = m.getBBox(); if (b.width > 0 || b.height > 0) { drawn++; } });
      if (box.width > 0 && box.height > 0 && drawn > 0) { ok.push(name); } else { bad.push(name); }
      svg.setAttribute('data-marks-drawn', String(drawn));
    });
    document.body.setAttribute('data-figures-ok', ok.join(' '));
    document.body.setAttribute('data-figures-bad', bad.join(' '));
    document.body.setAttribute('data-report-errors', String(window.reportErrors.length));
    document.getElementById('report-errors').textContent = window.reportErrors.join('\n');
    document.body.setAttribute('data-report-checked', 'yes');
  }
  try { check(); } catch (e) { window.recordReportError('figure check: ' + e); }
})();
)";

// Zoom and pan of the plan: the wheel zooms about the pointer (never out
// beyond the whole plan), dragging pans, a double click shows the whole again.
constexpr char const* ZoomScript = R"(
(function () {
  var svg = document.querySelector('svg[data-figure="plan"]');
  if (!svg) { return; }
  var whole = svg.getAttribute('viewBox').split(' ').map(Number);
  var box = whole.slice();
  var drag = null;
  // Points, joints and labels keep their size on the screen; lines keep their
  // width through the style's non-scaling stroke.
  var sized = [];
  svg.querySelectorAll('circle').forEach(function (c) { sized.push([c, 'r', Number(c.getAttribute('r'))]); });
  svg.querySelectorAll('text').forEach(function (t) {
    if (!t.closest('g.tick')) { sized.push([t, 'font-size', Number(t.getAttribute('font-size'))]); }
  });
  // Station ticks are drawn about their point: scaled there as a whole.
  svg.querySelectorAll('g.tick').forEach(function (g) { sized.push([g, 'transform', g.getAttribute('transform')]); });
  function show() {
    svg.setAttribute('viewBox', box.join(' '));
    var scale = box[2] / whole[2];
    sized.forEach(function (s) {
      s[0].setAttribute(s[1], s[1] === 'transform' ? s[2] + ' scale(' + scale + ')' : String(s[2] * scale));
    });
  }
  function at(e) {
    var r = svg.getBoundingClientRect();
    return [box[0] + (e.clientX - r.left) / r.width * box[2], box[1] + (e.clientY - r.top) / r.height * box[3]];
  }
  svg.addEventListener('wheel', function (e) {
    e.preventDefault();
    var p = at(e);
    var f = Math.min(e.deltaY < 0 ? 0.8 : 1.25, whole[2] / box[2]);
    box = [p[0] - (p[0] - box[0]) * f, p[1] - (p[1] - box[1]) * f, box[2] * f, box[3] * f];
    show();
  }, { passive: false });
  svg.addEventListener('mousedown', function (e) { e.preventDefault(); drag = [e.clientX, e.clientY, box[0], box[1]]; });
  window.addEventListener('mousemove', function (e) {
    if (!drag) { return; }
    var r = svg.getBoundingClientRect();
    box[0] = drag[2] - (e.clientX - drag[0]) / r.width * box[2];
    box[1] = drag[3] - (e.clientY - drag[1]) / r.height * box[3];
    show();
  });
  window.addEventListener('mouseup', function () { drag = null; });
  svg.addEventListener('dblclick', function () { box = whole.slice(); show(); });
  svg.style.cursor = 'grab';
})();
)";

std::string Cell(std::string const& text, bool isText = false, bool outside = false)
{
    std::string c = "<td";
    if (isText || outside) {
        c += " class=\"";
        c += isText ? "text" : "outside";
        c += '"';
    }
    return c + '>' + Escape(text) + "</td>";
}

std::string Length(double v)
{
    return Fixed(v, LengthDecimals);
}

std::string Radius(double r)
{
    return r == 0.0 ? std::string("\u221e") : Fixed(r, LengthDecimals);
}

void Summary(std::string& s, ReportPage const& page)
{
    zelalign::Alignment const& a = *page.alignment;
    s += "<h1>" + Escape(a.Name().empty() ? std::string("Alignment") : a.Name()) + "</h1>\n";
    s += "<p class=\"summary\">" + Escape(a.Source().path) + ": stations " + StationLabel(a.StartStation()) + " to " +
         StationLabel(a.EndStation()) + ", " + Length(a.EndStation() - a.StartStation()) + " m, " +
         std::to_string(a.Horizontal().Size()) + " elements, " +
         (a.Profile().Empty() ? std::string("no profile")
                              : std::to_string(a.Profile().Points().size()) + " PVIs") +
         ", " + std::to_string(a.Warnings().size()) + " reader warnings.</p>\n";
    if (page.points != nullptr) {
        std::size_t outsideCount = 0;
        for (auto const& d : page.points->deviations) {
            outsideCount += (d.offsetOutside || d.heightOutside) ? 1 : 0;
        }
        s += "<p class=\"summary\">" + Escape(page.pointsPath) + ": " + std::to_string(page.pointCount) +
             " points, " + std::to_string(page.points->deviations.size()) + " stationed" +
             (page.unstationed > 0 ? ", " + std::to_string(page.unstationed) + " without a station" : std::string()) +
             "; <strong>" + std::to_string(outsideCount) + " outside the tolerance of \u00b1" +
             Fixed(page.points->tolerance * Millimetres, MillimetreDecimals) + " mm</strong>.</p>\n";
    }
    s += "<p class=\"summary\">Offsets are positive to the right of the direction of increasing station; height "
         "differences are measured minus design. Made by " +
         Escape(page.generator) + ".</p>\n";
}

void OutsideTable(std::string& s, MeasuredPoints const& points)
{
    std::vector<zelalign::PointDeviation> const outside = zelalign::PointsOutside(points.deviations);
    s += "<h2 id=\"outside\">Points outside the tolerance</h2>\n";
    if (outside.empty()) {
        s += "<p>Every stationed point lies within \u00b1" +
             Fixed(points.tolerance * Millimetres, MillimetreDecimals) + " mm.</p>\n";
        return;
    }
    s += "<p>" + std::to_string(outside.size()) + " points, the largest excess first" +
         (outside.size() > MaxListedPoints ? "; the first " + std::to_string(MaxListedPoints) + " are listed"
                                           : std::string()) +
         ".</p>\n";
    s += "<table class=\"outside\"><thead><tr><th>id</th><th>station</th><th>offset (mm)</th>"
         "<th>height difference (mm)</th><th>excess (mm)</th><th>status</th></tr></thead><tbody>\n";
    std::size_t const rows = std::min(outside.size(), MaxListedPoints);
    for (std::size_t i = 0; i < rows; ++i) {
        zelalign::PointDeviation const& d = outside[i];
        std::string const id = d.index < points.ids.size() ? points.ids[d.index] : std::string();
        s += "<tr>" + Cell(id, true) + Cell(StationLabel(d.station)) +
             Cell(Fixed(d.offset * Millimetres, MillimetreDecimals), false, d.offsetOutside) +
             Cell(std::isfinite(d.heightDifference) ? Fixed(d.heightDifference * Millimetres, MillimetreDecimals)
                                                    : std::string(),
                  false, d.heightOutside) +
             Cell(Fixed(d.excess * Millimetres, MillimetreDecimals)) +
             Cell(zelalign::ProjectionStatusName(d.status), true) + "</tr>\n";
    }
    s += "</tbody></table>\n";
}

void ElementTable(std::string& s, zelalign::Alignment const& a)
{
    s += "<h2 id=\"elements\">Elements</h2>\n";
    s += "<table class=\"elements\"><thead><tr><th>#</th><th>type</th><th>start</th><th>end</th><th>length (m)</th>"
         "<th>start radius (m)</th><th>end radius (m)</th><th>file line</th></tr></thead><tbody>\n";
    for (std::size_t i = 0; i < a.Horizontal().Size(); ++i) {
        zelalign::HorizontalElement const& e = a.Horizontal().Elements()[i];
        int const line = i < a.SourceLines().size() ? a.SourceLines()[i] : 0;
        s += "<tr>" + Cell(std::to_string(i)) +
             "<td class=\"text\"><span style=\"color:" + ElementColour(e.type) + "\">\u25a0</span> " +
             zelalign::ElementTypeName(e.type) + "</td>" + Cell(StationLabel(e.StartStation())) +
             Cell(StationLabel(e.EndStation())) + Cell(Length(e.Length())) +
             Cell(Radius(e.spec.Start.Radius.Double())) + Cell(Radius(e.spec.End.Radius.Double())) +
             Cell(line > 0 ? std::to_string(line) : std::string()) + "</tr>\n";
    }
    s += "</tbody></table>\n<p class=\"summary\">Radii are positive bending right, \u221e on a straight.</p>\n";
}

void Warnings(std::string& s, zelalign::Alignment const& a)
{
    s += "<h2 id=\"warnings\">Reader warnings</h2>\n";
    if (a.Warnings().empty()) {
        s += "<p>None: every element joins the next within the reader's tolerance.</p>\n";
        return;
    }
    s += "<ul class=\"warnings\">\n";
    for (std::string const& w : a.Warnings()) {
        s += "<li>" + Escape(w) + "</li>\n";
    }
    s += "</ul>\n";
}

}  // namespace

std::string ReportHtml(ReportPage const& page)
{
    zelalign::Alignment const& a = *page.alignment;
    std::string s;
    s += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n";
    s += "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n";
    s += "<title>" + Escape(a.Name()) + " \u2013 alignment report</title>\n";
    s += "<style>" + std::string(Style) + "</style>\n";
    s += "<script>" + std::string(ErrorScript) + "</script>\n";
    s += "</head>\n<body>\n<main>\n";
    Summary(s, page);
    s += "<pre id=\"report-errors\"></pre>\n";
    for (Figure const& f : page.figures) {
        std::string const hint = f.name == "plan" ? " (wheel: zoom, drag: pan, double click: whole plan)" : "";
        s += "<figure id=\"figure-" + f.name + "\">\n" + f.svg + "<figcaption>" + Escape(f.title + hint) +
             "</figcaption>\n</figure>\n";
    }
    if (page.points != nullptr) {
        OutsideTable(s, *page.points);
    }
    ElementTable(s, a);
    Warnings(s, a);
    s += "</main>\n<script>" + std::string(CheckScript) + "</script>\n";
    s += "<script>" + std::string(ZoomScript) + "</script>\n</body>\n</html>\n";
    return s;
}

}  // namespace zel::report
