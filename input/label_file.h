#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace ovik {

/// Labels by name, as a file has them.
struct LabelTable {
    /// What the label columns are called.
    std::vector<std::string> titles;
    /// The first field of each line: the name of a row.
    std::vector<std::string> names;
    /// The line on which each name stands, from 1.
    std::vector<std::size_t> lines;
    /// The fields of each label column, one per name.
    std::vector<std::vector<std::string>> columns;
    /// What the first line calls the names; empty if it does not.
    std::string names_title;
};

/// What a file of labels holds: one of the two.
struct LabelFile {
    /// One per row, in the order of the rows.
    std::vector<std::string> labels;
    std::optional<LabelTable> table;
};

/// Reads a file of labels, plain or packed by gzip.
///
/// A table has a header line, then lines of a name and a label per column, separated by tabs,
/// semicolons or commas; fields in double quotes may hold separators, line ends and, doubled,
/// quotes. The header may leave out what the names are called. Any other file has a label per line
/// and row.
///
/// @throws InputError if the file cannot be read; if the lines of a table differ in their number of
/// fields, or names or titles occur twice; if there is not one label per row
LabelFile read_label_file(const std::string& path, std::size_t row_count);

}  // namespace ovik
