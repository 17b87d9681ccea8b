// The report page: one self-contained HTML file (inline CSS, inline SVG and
// inline scripts, nothing loaded from elsewhere) with a summary, the
// figures, the points outside the tolerance, the element table and the
// reader's warnings.
//
// The inline script checks each figure once the page has loaded (drawn, of
// non-zero size, with data marks) and records the result on <body>:
// data-figures-ok and data-figures-bad list figure names, data-report-errors
// counts the script errors and console errors of the page (listed in
// #report-errors), and data-report-checked="yes" says the check ran. Tests
// read these back from the rendered page. The plan zooms with the mouse wheel
// and pans by dragging.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <zelalign/alignment.h>

#include "report/figures.h"

namespace zel::report {

// Most rows of the table of points outside the tolerance; the rest are
// counted. A thousand rows are still read and printed; more are a file's job.
inline constexpr std::size_t MaxListedPoints = 1000;

struct ReportPage {
    zelalign::Alignment const* alignment = nullptr;
    std::string pointsPath;           // empty without points
    MeasuredPoints const* points = nullptr;  // null without points
    std::size_t pointCount = 0;       // points read
    std::size_t unstationed = 0;      // points without a station (no solution)
    std::vector<Figure> figures;      // in page order
    std::string generator;            // "zel 1.2.3"
};

std::string ReportHtml(ReportPage const& page);

}  // namespace zel::report
