// Tables as zel writes them: CSV, TSV or GeoJSON, one row at a time, with no
// allocation per row once the first rows have been written.
//
// CSV and TSV: a header line of column names, then one line per row; a value
// that cannot be given (NaN) is an empty cell. GeoJSON: a FeatureCollection
// with one Point feature per row, its coordinates given by SetPoint (in the
// coordinate system of the alignment's file) and every cell a property; a value
// that cannot be given is null.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "output.h"

namespace zel {

enum class TableFormat { Csv, Tsv, GeoJson };

class TableWriter {
public:
    // Writes the header (CSV, TSV) or the opening of the collection (GeoJSON).
    // collectionMembers: top-level members of the GeoJSON collection, written
    // before its features as given ("\"crs\":{...},\"units\":{...},", each
    // followed by a comma); ignored by CSV and TSV.
    TableWriter(Output& out, TableFormat format, std::vector<std::string> columns,
                std::string const& collectionMembers = std::string());

    // Cells of the current row, in column order.
    TableWriter& Text(std::string_view value);
    TableWriter& Integer(long long value);
    TableWriter& Number(double value, int decimals);  // NaN: no value
    // The feature's point for GeoJSON (ignored by CSV and TSV); z may be NaN.
    void SetPoint(double x, double y, double z);
    // Ends the current row and hands it to the output.
    void EndRow();
    // Ends the table (closes the GeoJSON collection); the output is not closed.
    void Finish();

    // A writer of rows of this table into memory, for rows formatted on
    // another thread: no header; its rows go to the table's output by
    // WriteRows, in the order the caller chooses. StartRows tells it how many
    // rows of the table come before its next one (a GeoJSON feature but the
    // first is preceded by a comma).
    TableWriter RowBuffer() const;
    void StartRows(long long rowsBefore);
    // Hands the rows gathered by a row buffer to this table's output and
    // empties the buffer (its memory is kept for the next rows).
    void WriteRows(TableWriter& buffer);

private:
    TableWriter(TableFormat format, std::vector<std::string> keys);
    void Separator();
    void Key();
    void Emit(std::string_view text);

    Output* m_out;  // null for a row buffer
    std::string m_buffer;  // the rows of a row buffer
    long long m_bufferedRows = 0;
    TableFormat m_format;
    std::vector<std::string> m_columns;
    std::vector<std::string> m_keys;  // "\"name\":" for GeoJSON
    std::size_t m_cell = 0;
    long long m_rows = 0;
    double m_point[3] = {0.0, 0.0, 0.0};
    std::string m_row;
    std::string m_feature;
};

// Appends text as a JSON string, quotes included.
void AppendJsonString(std::string& out, std::string_view text);

}  // namespace zel
