#include "table_writer.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "format.h"

namespace zel {

void AppendJsonString(std::string& out, std::string_view text)
{
    out += '"';
    for (char c : text) {
        auto const u = static_cast<unsigned char>(c);
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            if (u < 0x20) {
                char buf[8];
                std::snprintf(buf, sizeof buf, "\\u%04x", u);
                out += buf;
            } else {
                out += c;
            }
        }
    }
    out += '"';
}

namespace {

// A CSV cell that holds a separator, a quote or a line break is quoted, its
// quotes doubled.
void AppendCsvText(std::string& out, std::string_view text, char separator)
{
    bool plain = true;
    for (char c : text) {
        if (c == separator || c == '"' || c == '\n' || c == '\r') {
            plain = false;
            break;
        }
    }
    if (plain) {
        out.append(text.data(), text.size());
        return;
    }
    out += '"';
    for (char c : text) {
        if (c == '"') {
            out += '"';
        }
        out += c;
    }
    out += '"';
}

}  // namespace

TableWriter::TableWriter(Output& out, TableFormat format, std::vector<std::string> columns,
                         std::string const& collectionMembers)
    : m_out(&out), m_format(format), m_columns(std::move(columns))
{
    m_row.reserve(1024);
    if (m_format == TableFormat::GeoJson) {
        for (std::string const& c : m_columns) {
            std::string key;
            AppendJsonString(key, c);
            key += ':';
            m_keys.push_back(key);
        }
        m_out->Write("{\"type\":\"FeatureCollection\"," + collectionMembers + "\"features\":[\n");
        return;
    }
    char const separator = m_format == TableFormat::Tsv ? '\t' : ',';
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        if (i > 0) {
            m_row += separator;
        }
        m_row += m_columns[i];
    }
    m_row += '\n';
    m_out->Write(m_row);
    m_row.clear();
}

TableWriter::TableWriter(TableFormat format, std::vector<std::string> keys)
    : m_out(nullptr), m_format(format), m_keys(std::move(keys))
{
    m_row.reserve(1024);
}

TableWriter TableWriter::RowBuffer() const
{
    return TableWriter(m_format, m_keys);
}

void TableWriter::StartRows(long long rowsBefore)
{
    m_rows = rowsBefore;
}

void TableWriter::WriteRows(TableWriter& buffer)
{
    m_out->Write(buffer.m_buffer);
    buffer.m_buffer.clear();
    m_rows += buffer.m_bufferedRows;
    buffer.m_bufferedRows = 0;
}

void TableWriter::Emit(std::string_view text)
{
    if (m_out != nullptr) {
        m_out->Write(text);
    } else {
        m_buffer.append(text.data(), text.size());
    }
}

void TableWriter::Separator()
{
    if (m_cell > 0) {
        m_row += m_format == TableFormat::Tsv ? '\t' : ',';
    }
}

void TableWriter::Key()
{
    m_row += m_keys[m_cell];
}

TableWriter& TableWriter::Text(std::string_view value)
{
    Separator();
    if (m_format == TableFormat::GeoJson) {
        Key();
        AppendJsonString(m_row, value);
    } else {
        AppendCsvText(m_row, value, m_format == TableFormat::Tsv ? '\t' : ',');
    }
    ++m_cell;
    return *this;
}

TableWriter& TableWriter::Integer(long long value)
{
    Separator();
    if (m_format == TableFormat::GeoJson) {
        Key();
    }
    char buf[24];
    std::to_chars_result const r = std::to_chars(buf, buf + sizeof buf, value);
    m_row.append(buf, static_cast<std::size_t>(r.ptr - buf));
    ++m_cell;
    return *this;
}

TableWriter& TableWriter::Number(double value, int decimals)
{
    Separator();
    if (m_format == TableFormat::GeoJson) {
        Key();
        if (!AppendFixed(m_row, value, decimals)) {
            m_row += "null";
        }
    } else {
        AppendFixed(m_row, value, decimals);
    }
    ++m_cell;
    return *this;
}

void TableWriter::SetPoint(double x, double y, double z)
{
    m_point[0] = x;
    m_point[1] = y;
    m_point[2] = z;
}

void TableWriter::EndRow()
{
    if (m_format == TableFormat::GeoJson) {
        std::string& feature = m_feature;
        feature.clear();
        feature += m_rows > 0 ? ",\n" : "";
        feature += "{\"type\":\"Feature\",\"geometry\":";
        if (std::isfinite(m_point[0]) && std::isfinite(m_point[1])) {
            feature += "{\"type\":\"Point\",\"coordinates\":[";
            AppendExact(feature, m_point[0]);
            feature += ',';
            AppendExact(feature, m_point[1]);
            if (std::isfinite(m_point[2])) {
                feature += ',';
                AppendExact(feature, m_point[2]);
            }
            feature += "]}";
        } else {
            feature += "null";
        }
        feature += ",\"properties\":{";
        Emit(feature);
        Emit(m_row);
        Emit("}}");
    } else {
        m_row += '\n';
        Emit(m_row);
    }
    m_row.clear();
    m_cell = 0;
    m_point[0] = m_point[1] = m_point[2] = std::numeric_limits<double>::quiet_NaN();
    ++m_rows;
    ++m_bufferedRows;
}

void TableWriter::Finish()
{
    if (m_format == TableFormat::GeoJson) {
        m_out->Write("\n]}\n");
    }
}

}  // namespace zel
