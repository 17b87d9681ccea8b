#include "report/svg.h"

#include "format.h"

namespace zel::report {

namespace {

// Font of every label: the browser's sans-serif, the same in the page and in
// an SVG file opened alone.
constexpr char const* FontFamily = "DejaVu Sans, Arial, Helvetica, sans-serif";

void Attribute(std::string& s, char const* name, std::string_view value)
{
    s += ' ';
    s += name;
    s += "=\"";
    s += Escape(value);
    s += '"';
}

void Attribute(std::string& s, char const* name, double value)
{
    s += ' ';
    s += name;
    s += "=\"";
    s += Px(value);
    s += '"';
}

void Extra(std::string& s, std::string_view attributes)
{
    if (!attributes.empty()) {
        s += ' ';
        s.append(attributes);
    }
}

void AppendPoints(std::string& s, Points const& points)
{
    s += " points=\"";
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (i > 0) {
            s += ' ';
        }
        s += Px(points[i].first);
        s += ',';
        s += Px(points[i].second);
    }
    s += '"';
}

// Ends an element: with a tooltip as its <title> child, else self-closed.
void Close(std::string& s, char const* tag, std::string_view tooltip)
{
    if (tooltip.empty()) {
        s += "/>\n";
        return;
    }
    s += "><title>";
    s += Escape(tooltip);
    s += "</title></";
    s += tag;
    s += ">\n";
}

}  // namespace

std::string Escape(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        case '\'':
            out += "&#39;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

std::string Px(double v)
{
    std::string s;
    if (!AppendFixed(s, v, PixelDecimals)) {
        s = "0";
    }
    return s;
}

Svg::Svg(std::string const& name, double width, double height, std::string const& title)
{
    m_text = "<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"figure\"";
    Attribute(m_text, "data-figure", name);
    Attribute(m_text, "width", width);
    Attribute(m_text, "height", height);
    m_text += " viewBox=\"0 0 " + Px(width) + ' ' + Px(height) + "\" role=\"img\"";
    Attribute(m_text, "font-family", FontFamily);
    m_text += "><title>" + Escape(title) + "</title>\n";
    Rect(0.0, 0.0, width, height, "#ffffff");
}

void Svg::Line(double x1, double y1, double x2, double y2, std::string_view stroke, double width,
               std::string_view attributes)
{
    m_text += "<line";
    Attribute(m_text, "x1", x1);
    Attribute(m_text, "y1", y1);
    Attribute(m_text, "x2", x2);
    Attribute(m_text, "y2", y2);
    Attribute(m_text, "stroke", stroke);
    Attribute(m_text, "stroke-width", width);
    Extra(m_text, attributes);
    m_text += "/>\n";
}

void Svg::Polyline(Points const& points, std::string_view stroke, double width, bool data, std::string_view attributes,
                   std::string_view tooltip)
{
    m_text += "<polyline";
    AppendPoints(m_text, points);
    Attribute(m_text, "fill", "none");
    Attribute(m_text, "stroke", stroke);
    Attribute(m_text, "stroke-width", width);
    m_text += " stroke-linejoin=\"round\"";
    if (data) {
        m_text += " data-mark=\"\"";
    }
    Extra(m_text, attributes);
    Close(m_text, "polyline", tooltip);
}

void Svg::Polygon(Points const& points, std::string_view fill, std::string_view attributes)
{
    m_text += "<polygon";
    AppendPoints(m_text, points);
    Attribute(m_text, "fill", fill);
    Extra(m_text, attributes);
    m_text += "/>\n";
}

void Svg::Circle(double x, double y, double r, std::string_view fill, bool data, std::string_view attributes,
                 std::string_view tooltip)
{
    m_text += "<circle";
    Attribute(m_text, "cx", x);
    Attribute(m_text, "cy", y);
    Attribute(m_text, "r", r);
    Attribute(m_text, "fill", fill);
    if (data) {
        m_text += " data-mark=\"\"";
    }
    Extra(m_text, attributes);
    Close(m_text, "circle", tooltip);
}

void Svg::Rect(double x, double y, double w, double h, std::string_view fill, std::string_view attributes)
{
    m_text += "<rect";
    Attribute(m_text, "x", x);
    Attribute(m_text, "y", y);
    Attribute(m_text, "width", w);
    Attribute(m_text, "height", h);
    Attribute(m_text, "fill", fill);
    Extra(m_text, attributes);
    m_text += "/>\n";
}

void Svg::Text(double x, double y, std::string_view text, std::string_view anchor, double size,
               std::string_view attributes)
{
    m_text += "<text";
    Attribute(m_text, "x", x);
    Attribute(m_text, "y", y);
    Attribute(m_text, "font-size", size);
    Attribute(m_text, "text-anchor", anchor);
    Extra(m_text, attributes);
    m_text += '>';
    m_text += Escape(text);
    m_text += "</text>\n";
}

void Svg::OpenGroup(std::string_view attributes)
{
    m_text += "<g";
    Extra(m_text, attributes);
    m_text += ">\n";
}

void Svg::CloseGroup()
{
    m_text += "</g>\n";
}

std::string Svg::Finish()
{
    m_text += "</svg>\n";
    return std::move(m_text);
}

}  // namespace zel::report
