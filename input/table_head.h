#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "input/load_options.h"
#include "input/matrix_source.h"

namespace ovik {

/// The first lines of a delimited text, taken apart.
struct TableHead {
    /// The lines in front of the header, or in front of the first row if there is no header.
    std::vector<std::string> opening;
    /// Lines in front of the first row, the header among them.
    std::size_t lines_above = 0;
    char delimiter = '\t';
    /// The delimiter under which the first rows hold the most numbers, if there are any.
    std::optional<char> guessed_delimiter;
    /// The fields of the header, in the places of the fields of a row; empty if there is none.
    std::vector<std::string> header;
    /// Whether the header has one field less than the rows, and an empty one in front was added.
    bool lacks_names_header = false;
    /// The fields of the first rows, and of lines like them.
    std::vector<std::vector<std::string>> rows;
    /// Fields of the longest of these rows, and the line on which the first of that length begins,
    /// from 1.
    std::size_t row_fields = 0;
    std::size_t longest_row_line = 0;
    /// Fields that every one of these rows has, with those that trimming has taken from its end.
    std::size_t untrimmed_fields = 0;
    /// Empty fields in front of each of these rows that are no fields of its own: the header has
    /// none, or as many.
    std::size_t empty_front = 0;
};

/// Finds header and rows at the start of a text: behind the `#1.2` of a GCT file, behind the
/// `!series_matrix_table_begin` of GEO, and else behind lines that are empty or comments.
///
/// @param source  its head grows as far as it has to
/// @throws InputError if there are no numbers and no delimiter is given, or no header can be told
/// from a row
TableHead read_table_head(MatrixSource& source, const LoadOptions& options);

/// Whether a text opens as the files of GEO do.
bool opens_as_geo(std::string_view text);

/// The fields of a record as they are read, trimmed and without quotes. A delimiter at its start
/// stays if `keeps_front`.
std::vector<std::string> fields_of(std::string_view record, char delimiter, bool keeps_front);

}  // namespace ovik
