#pragma once

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "util/console.h"
#include "util/matrix_line.h"

namespace ovik {

/// Reads a delimited text file in which every line is one row of a matrix, led by the row's name.
///
/// Lines end at "\n"; `trim_matrix_line` cuts their ends. Empty lines and lines that open with "#"
/// are skipped. Field 0 is the name, kept as it stands; the others are converted with `strtod`: a
/// field that is not a number reads as 0.0 and text behind a number is ignored, without a message.
/// Rows may differ in length. A file that cannot be opened is reported on the console in bold red.
///
/// @param matrix     one vector per row is appended, in file order
/// @param row_names  the name of each row is appended, in file order
/// @param path       the file
/// @param header     number of leading lines that are discarded, whatever they hold
/// @param delimiter  the single character between fields
/// @throws std::bad_alloc if the rows do not fit in memory
template <typename T>
void read_matrix_w_index(std::vector<std::vector<T>>& matrix,
                         std::vector<std::string>& row_names,
                         std::string path,
                         int header,
                         char delimiter) {
    std::ifstream file(path);
    if (!file.is_open()) {
        print_file_error("I cannot open file", path);
        return;
    }
    std::string line;
    for (int discarded = 0; discarded < header; ++discarded) {
        std::getline(file, line);
    }
    std::vector<T> row;
    while (std::getline(file, line)) {
        trim_matrix_line(line);
        if (!is_matrix_row(line)) {
            continue;
        }
        bool at_name = true;
        row.clear();
        for_each_matrix_field(line, delimiter, [&](const char* field) {
            if (at_name) {
                row_names.emplace_back(field);
                at_name = false;
            } else {
                row.push_back(static_cast<T>(std::strtod(field, nullptr)));
            }
        });
        matrix.push_back(row);
    }
}

}  // namespace ovik
