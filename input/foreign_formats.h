#pragma once

#include <string>
#include <string_view>

namespace ovik {

/// What a file is that is handed over for a matrix though its format is none that is read, and how
/// to make a matrix file of it: workbooks, data frames of R and Python, archives, pages, pictures.
/// Its first bytes alone decide, whatever the name of the file.
///
/// @param head  the first bytes, unpacked if they were packed by gzip
/// @return "this is ...: ..."; empty for all other files
std::string foreign_format(std::string_view head);

/// Whether a file is an Excel workbook (.xlsx, .xlsm, .xlsb).
bool is_workbook(std::string_view head);

}  // namespace ovik
