#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "input/sparse_rows.h"

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

/// Fields of one kind: how many, and the first three of them.
struct FieldFindings {
    static constexpr std::size_t kListed = 3;

    std::size_t count = 0;
    std::vector<FieldPlace> places;
};

/// What the fields of a column hold besides numbers, and how many of each.
struct ColumnFindings {
    /// Text, alone or behind a number.
    std::size_t texts = 0;
    std::size_t missing = 0;
};

/// A row whose number of values differs from that of the others.
struct RaggedRow {
    std::size_t line = 0;
    std::string name;
    std::size_t values = 0;
};

/// Rows with a field in quotes that goes on over line ends: how many, and the first of them.
struct RowsOverLines {
    std::size_t count = 0;
    /// The first line of the first of them, and the last.
    std::size_t first_line = 0;
    std::size_t last_line = 0;

    void add(const RowsOverLines& further_down, std::size_t lines_above) {
        if (count == 0) {
            first_line = further_down.first_line + lines_above;
            last_line = further_down.last_line + lines_above;
        }
        count += further_down.count;
    }
};

/// What there is to say of a matrix. Only rows and columns are of every format; the rest is of
/// delimited text.
struct MatrixReport {
    std::size_t rows = 0;
    /// Values of a row.
    std::size_t columns = 0;
    /// Fields that open with a number.
    std::size_t numbers = 0;
    /// Fields that do not open with a number, though not missing.
    FieldFindings not_numbers;
    /// Numbers with text behind them.
    FieldFindings with_text_behind;
    /// Those of them that are numbers with a decimal comma.
    FieldFindings decimal_commas;
    /// Those of them whose digits a comma groups by three, and which may be decimal commas, too.
    FieldFindings grouped_digits;
    /// Those of them whose digits points group by three.
    FieldFindings point_groups;
    /// The numbers that can be read where semicolons are the delimiter and no decimal sign is
    /// given: those with a point in the place of one between thousands, whole ones, and the others.
    FieldFindings doubtful_points;
    std::size_t whole_numbers = 0;
    std::size_t plain_fractions = 0;
    /// For each column that has a field without a number, up to the last of them.
    std::vector<ColumnFindings> by_column;
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
    /// Lines that are skipped because they open with "#", though they have the fields of a row.
    FieldFindings skipped_rows;
    /// More such lines, which open with what may be a name, such as "#N/A" or "#1".
    FieldFindings skipped_names;
    RowsOverLines rows_over_lines;
    /// Those of them with about as many delimiters in such a field as rows have, as two stray
    /// quotes make one.
    RowsOverLines rows_that_may_be_several;
    /// First fields of lines that the layout of the file says are no rows.
    std::vector<std::string> no_rows;
    /// Whether the line that ends the table stands there.
    bool has_end_mark = false;
    /// Rows whose name stood above already.
    std::size_t duplicate_names = 0;
    /// The first few of these names.
    std::vector<std::string> first_duplicate_names;
    /// What there is to tell of how the file was taken, a text each.
    std::vector<std::string> notes;
    /// What of it may not be as the user means it; each opens with ":" and the line, or with ": ".
    std::vector<std::string> warnings;
};

/// The rows of a matrix file, and what there is to say about them.
struct InspectedMatrix {
    MatrixReport report;
    /// The names of the rows, in the order of the file.
    std::vector<std::string> row_names;
    /// The line on which each row stands in the file, from 1; 0 in formats that have none.
    std::vector<std::size_t> row_lines;
    /// Whether the rows have names.
    bool has_names = true;
    /// Whether the format says that the rows are what is to be embedded, and not the columns.
    bool rows_are_points = false;
    /// What the file calls each column; empty if it names none, or not as many as the rows have.
    std::vector<std::string> column_names;
    /// What the file calls each field of a line; empty in formats without a header.
    std::vector<std::string> header;
    /// The field of a line, from 1, that holds each column; empty in formats that have no lines.
    std::vector<std::size_t> column_fields;
    /// Row-major, rows x columns. A missing value is NaN; text that is not a number is 0. Null if
    /// there are rows of different length, or the matrix stays sparse.
    std::unique_ptr<double[]> values;
    /// The values of a large sparse matrix, in the place of `values`: none is missing.
    std::optional<SparseRows> sparse;
    /// Whether each value was missing and has been filled in, as they lie; empty if none was.
    std::vector<bool> filled;
};

/// Takes note of names that repeat.
void note_duplicate_names(InspectedMatrix& matrix);

/// Takes note of infinities among the values, by row and column; of none if there are no values
/// because rows are of different length.
void note_infinite_values(InspectedMatrix& matrix);

}  // namespace ovik
