// SVG written as text: the few shapes the report's figures need, numbers in
// pixels with two decimals, text escaped. Each figure is a standalone
// <svg> element (with its namespace), so that the same text is both inlined in
// the HTML report and written as a file of its own.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zel::report {

// Decimals of pixel coordinates: a hundredth of a pixel, finer than any screen.
inline constexpr int PixelDecimals = 2;

// text with &, <, >, " and ' escaped for XML content and attribute values.
std::string Escape(std::string_view text);

// A pixel value as written ("12.34").
std::string Px(double v);

// Screen points of a polyline (pixels).
using Points = std::vector<std::pair<double, double>>;

class Svg {
public:
    // Opens an <svg> of width x height pixels (a viewBox of that size, so that
    // it scales with the page) with data-figure="name" and an accessible title.
    Svg(std::string const& name, double width, double height, std::string const& title);

    // attributes: further attributes as written, e.g. "stroke-dasharray=\"4 3\"".
    void Line(double x1, double y1, double x2, double y2, std::string_view stroke, double width,
              std::string_view attributes = {});
    // A polyline; with data true it carries data-mark (drawn data, not decoration).
    // tooltip, when not empty, becomes its <title>.
    void Polyline(Points const& points, std::string_view stroke, double width, bool data,
                  std::string_view attributes = {}, std::string_view tooltip = {});
    void Polygon(Points const& points, std::string_view fill, std::string_view attributes = {});
    void Circle(double x, double y, double r, std::string_view fill, bool data, std::string_view attributes = {},
                std::string_view tooltip = {});
    void Rect(double x, double y, double w, double h, std::string_view fill, std::string_view attributes = {});
    // anchor: start, middle or end.
    void Text(double x, double y, std::string_view text, std::string_view anchor = "start", double size = 12.0,
              std::string_view attributes = {});
    void OpenGroup(std::string_view attributes);
    void CloseGroup();
    void Raw(std::string_view text) { m_text.append(text); }

    // The closed <svg> element.
    std::string Finish();

private:
    std::string m_text;
};

}  // namespace zel::report
