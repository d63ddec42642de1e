#pragma once

#include <cstddef>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "util/console.h"
#include "util/input_file.h"
#include "util/line_blocks.h"
#include "util/matrix_line.h"
#include "util/number_field.h"

namespace ovik {

/// Rows of a matrix file and their names.
template <typename T>
struct MatrixRows {
    std::vector<std::vector<T>> values;
    std::vector<std::string> names;

    /// Appends a line, if it is a row.
    void add(std::string_view text, char delimiter, const NumberReader& numbers) {
        line_ = trimmed_matrix_line(text);
        if (!is_matrix_row(line_)) {
            return;
        }
        bool at_name = true;
        row_.clear();
        for_each_matrix_field(line_, delimiter, [&](const char* field, const char* end) {
            if (at_name) {
                names.emplace_back(field, end);
                at_name = false;
            } else {
                row_.push_back(static_cast<T>(numbers.read(field, end)));
            }
        });
        values.push_back(row_);
    }

  private:
    std::string line_;
    std::vector<T> row_;
};

/// Reads rows from where a file stands, the lines spread over the cores. See `read_matrix_w_index`.
///
/// @param file  throws what it cannot read
template <typename T>
void read_matrix_rows(std::istream& file,
                      char delimiter,
                      std::vector<std::vector<T>>& matrix,
                      std::vector<std::string>& row_names) {
    const NumberReader numbers;
    auto parsed = parse_line_blocks<MatrixRows<T>>(
        file, "", [&](std::string_view block, MatrixRows<T>& rows) {
            for_each_line(block,
                          [&](std::string_view text) { rows.add(text, delimiter, numbers); });
        });
    for (MatrixRows<T>& rows : parsed) {
        std::move(rows.values.begin(), rows.values.end(), std::back_inserter(matrix));
        std::move(rows.names.begin(), rows.names.end(), std::back_inserter(row_names));
    }
}

/// Reads a delimited text file in which every line is one row of a matrix, led by the row's name.
///
/// Lines end at "\n"; `trimmed_matrix_line` cuts their ends. Empty lines and lines that open with
/// "#" are skipped. Field 0 is the name, kept as it stands; the others are converted with `strtod`:
/// a field that is not a number reads as 0.0 and text behind a number is ignored, without a
/// message. `strtod` follows the locale that the caller's thread has, for all rows. Rows may differ
/// in length. The lines are spread over the cores. A file that cannot be opened is reported on the
/// console in bold red.
///
/// @param matrix     one vector per row is appended, in file order
/// @param row_names  the name of each row is appended, in file order
/// @param path       the file
/// @param header     number of leading lines that are discarded, whatever they hold
/// @param delimiter  the single character between fields
/// @throws std::bad_alloc if the rows do not fit in memory
/// @throws std::system_error with the path and the system's reason if the path is a directory, or
/// the file cannot be read to its end
template <typename T>
void read_matrix_w_index(std::vector<std::vector<T>>& matrix,
                         std::vector<std::string>& row_names,
                         std::string path,
                         int header,
                         char delimiter) {
    std::ifstream file = open_input_file(path);
    if (!file.is_open()) {
        print_file_error("I cannot open file", path);
        return;
    }
    with_read_failures_named(path, [&] {
        std::string line;
        for (int discarded = 0; discarded < header; ++discarded) {
            std::getline(file, line);
        }
        read_matrix_rows(file, delimiter, matrix, row_names);
    });
}

}  // namespace ovik
