#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace ovik {

/// Where a field of a matrix file stands, and what it holds.
struct FieldPlace {
    /// Line of the file, from 1; 0 in formats that have none.
    std::size_t line = 0;
    /// Name of the row to which the field belongs.
    std::string row;
    /// Field of the line, from 1; the name is field 1. Without a line, the column.
    std::size_t field = 0;
    std::string text;
};

/// Fields of one kind: how many, and the first of them.
struct FieldFindings {
    std::size_t count = 0;
    FieldPlace first;
};

/// A row whose number of values differs from that of the others.
struct RaggedRow {
    std::size_t line = 0;
    std::string name;
    std::size_t values = 0;
};

/// What there is to say of a matrix: for delimited text, what `read_matrix_w_index` would pass over
/// in silence. Only rows and columns are of every format.
struct MatrixReport {
    std::size_t rows = 0;
    /// Values of a row.
    std::size_t columns = 0;
    /// Fields of delimited text that open with a number.
    std::size_t numbers = 0;
    /// Fields that do not open with a number, though not missing, and read as 0.
    FieldFindings not_numbers;
    /// Numbers with text behind them, which is ignored.
    FieldFindings with_text_behind;
    /// NaN other than as a sign of a missing value, and infinities, also of numbers beyond the
    /// range of `double`.
    FieldFindings not_finite;
    std::size_t ragged_rows = 0;
    /// The first few ragged rows.
    std::vector<RaggedRow> first_ragged_rows;
    /// Rows whose line opens with a blank delimiter, which is trimmed away with the empty name
    /// in front of it, so that a number has become the name.
    FieldFindings lost_names;
    /// Rows whose name is empty.
    FieldFindings unnamed;
    /// Rows whose name stands in double quotes, which stay part of it.
    FieldFindings quoted_names;
    /// Rows whose name stood above already.
    std::size_t duplicate_names = 0;
    /// The first few of these names.
    std::vector<std::string> first_duplicate_names;
    /// What there is to tell of how the file was taken, each without the name of the file.
    std::vector<std::string> notes;
    /// Whether the first line, which is discarded, looks like a row of data.
    bool header_looks_like_data = false;
};

/// The rows of a matrix file, and what there is to say about them.
struct InspectedMatrix {
    MatrixReport report;
    /// The names of the rows, in the order of the file.
    std::vector<std::string> row_names;
    /// The line on which each row stands in the file, from 1; 0 in formats that have none.
    std::vector<std::size_t> row_lines;
    /// What the file calls each column; empty if it names none, or not as many as the rows have.
    std::vector<std::string> column_names;
    /// Row-major, rows x columns. A missing value is NaN; text that is not a number is 0. Null if
    /// there are rows of different length.
    std::unique_ptr<double[]> values;
};

/// Takes note of names that repeat.
void note_duplicate_names(InspectedMatrix& matrix);

/// Takes note of infinities among the values, by row and column.
void note_infinite_values(InspectedMatrix& matrix);

}  // namespace ovik
