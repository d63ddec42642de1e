#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "input/number_format.h"

#include <pugixml.hpp>

namespace ovik {

/// What of a workbook decides what its cells show.
struct CellRules {
    const std::vector<std::string>& shared_strings;
    /// How the cells of each style show dates.
    const std::vector<DateFormat>& date_formats;
    /// Whether dates count from 1904.
    bool since_1904;
    /// The decimal sign that numbers get, so that they read like those that are stored as text.
    char decimal;
};

/// A sheet as text: a line per row, tabs between the cells, cells quoted as RFC 4180 says where
/// they have to be. Line ends in cells are blanks. The first cell of a row of numbers is quoted,
/// too, if it opens with "#", so that the row is no remark.
struct SheetText {
    /// Line n of it is row n of the sheet. Numbers have the digits of the file, dates as the sheet
    /// shows them, errors among the values "#N/A". Rows end in as many tabs as make them as wide as
    /// the widest, once a row has had more than one cell.
    std::string text;
    /// Cells among the values that hold an error, and the first of them, such as "B5 (#DIV/0!)".
    std::size_t errors = 0;
    std::string first_error;
    /// Rows that open with an error, which is kept as it is, and the first of them.
    std::size_t error_names = 0;
    std::string first_error_name;
    /// Rows and columns with cells that the sheet hides.
    std::size_t hidden_rows = 0;
    std::size_t hidden_columns = 0;
};

/// @param name   of the file, for messages
/// @param sheet  the document of a worksheet
/// @throws InputError if the sheet is damaged, too large, or has a formula without a result
SheetText text_of_sheet(const std::string& name,
                        const pugi::xml_document& sheet,
                        const CellRules& rules);

}  // namespace ovik
