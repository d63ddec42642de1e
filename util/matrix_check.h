#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ovik {

/// Where a field of a matrix file stands, and what it holds.
struct FieldPlace {
    /// Line of the file, from 1.
    std::size_t line = 0;
    /// Name of its row.
    std::string row;
    /// Field of the line, from 1; the name is field 1.
    std::size_t field = 0;
    std::string text;
};

/// Fields of one kind: how many, and the first of them.
struct FieldFindings {
    std::size_t count = 0;
    FieldPlace first;
};

/// A row whose number of values differs from that of the first row.
struct RaggedRow {
    std::size_t line = 0;
    std::string name;
    std::size_t values = 0;
};

/// What `read_matrix_w_index` would read from a file, and what it would pass over in silence.
struct MatrixReport {
    std::size_t rows = 0;
    /// Values of the first row.
    std::size_t columns = 0;
    /// Fields that open with a number.
    std::size_t numbers = 0;
    /// Blank fields, which read as 0.
    FieldFindings empty;
    /// Fields that do not open with a number, and read as 0.
    FieldFindings not_numbers;
    /// Numbers with text behind them, which is ignored.
    FieldFindings with_text_behind;
    /// NaN and infinities, also of numbers beyond the range of `double`.
    FieldFindings not_finite;
    std::size_t ragged_rows = 0;
    /// The first few of them.
    std::vector<RaggedRow> first_ragged_rows;
    /// Rows whose line opens with a blank delimiter, which is trimmed away with the empty name
    /// in front of it, so that a number has become the name.
    FieldFindings lost_names;
    /// Rows whose name is empty.
    FieldFindings unnamed;
    /// Rows whose name stood above already.
    std::size_t duplicate_names = 0;
    /// The first few of these names.
    std::vector<std::string> first_duplicate_names;
    /// Largest absolute value.
    double largest_magnitude = 0.0;
    /// Largest difference of two values of a column.
    double widest_range = 0.0;
    /// Whether all rows hold the same values.
    bool rows_all_equal = true;
    /// Whether the first line, which is discarded, looks like a row of data.
    bool header_looks_like_data = false;
};

/// Inspects a matrix file by the rules of `read_matrix_w_index` with one header line.
///
/// @throws InputError if the file is missing or unreadable, no regular file, or no plain text
MatrixReport inspect_matrix(const std::string& path, char delimiter);

/// The delimiter under which the first rows of a file hold the most numbers: tab, semicolon, comma
/// or blank, in this order among equals.
///
/// @throws InputError as `inspect_matrix`, and if none of them parts a number from the name
char guess_delimiter(const std::string& path);

}  // namespace ovik
