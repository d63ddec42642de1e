#include "input/sheet_text.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

#include "input/xml_tags.h"
#include "util/input_error.h"

namespace ovik {

namespace {

/// Rows and columns of the largest sheet that there is.
constexpr std::size_t kMostRows = 1048576;
constexpr std::size_t kMostColumns = 16384;
/// Most bytes of the text of a sheet.
constexpr std::size_t kLargestText = std::size_t{1} << 31U;

/// Place of a cell, from 0.
struct CellPlace {
    std::size_t row = 0;
    std::size_t column = 0;
};

/// "B5" for row 4, column 1.
std::string place_text(const CellPlace& place) {
    std::string letters;
    for (std::size_t rest = place.column + 1; rest > 0; rest = (rest - 1) / 26) {
        letters.insert(letters.begin(), static_cast<char>('A' + (rest - 1) % 26));
    }
    return letters + std::to_string(place.row + 1);
}

/// The column of "B5", from 0; none if there are no letters or too many.
std::optional<std::size_t> column_of(std::string_view reference) {
    std::size_t column = 0;
    std::size_t letters = 0;
    while (letters < reference.size() && reference[letters] >= 'A' && reference[letters] <= 'Z') {
        column = 26 * column + static_cast<std::size_t>(reference[letters] - 'A') + 1;
        if (++letters > 3) {
            return std::nullopt;
        }
    }
    return letters == 0 || column > kMostColumns ? std::nullopt : std::optional(column - 1);
}

/// A text as a field of one line: line ends become blanks, as in quoted fields of text.
std::string quoted_if_needed(std::string text) {
    for (std::size_t at = text.find_first_of("\r\n"); at != std::string::npos;
         at = text.find_first_of("\r\n", at + 1)) {
        text.replace(at, text.compare(at, 2, "\r\n") == 0 ? 2 : 1, " ");
    }
    if (text.find_first_of("\t\"") == std::string::npos) {
        return text;
    }
    for (std::size_t at = text.find('"'); at != std::string::npos; at = text.find('"', at + 2)) {
        text.insert(at, 1, '"');
    }
    return '"' + std::move(text) + '"';
}

/// Writes the rows of a sheet one below the other.
class SheetWriter {
  public:
    SheetWriter(const std::string& name, const CellRules& rules, std::size_t width)
        : name_(name),
          rules_(rules),
          width_(width) {}

    /// @param row  its cells
    void add(const pugi::xml_node& row, std::size_t number) {
        for (; lines_ < number; ++lines_) {
            sheet_.text += '\n';
        }
        const RowOutline outline = addCells(row, number);
        quoteName(outline);
        has_table_begun_ = has_table_begun_ || outline.cells > 1;
        if (has_table_begun_ && outline.cells > 0) {
            sheet_.text.append(width_ - outline.columns, '\t');
        }
        sheet_.text += '\n';
        ++lines_;
        if (sheet_.text.size() > kLargestText) {
            throw InputError(name_ + ": the sheet is too large: save it as tab-separated text");
        }
    }

    SheetText take() { return std::move(sheet_); }

  private:
    /// What a row has: cells that are not empty, numbers among them, columns up to the last, and
    /// where the first of them begins and ends in the text.
    struct RowOutline {
        std::size_t cells = 0;
        std::size_t numbers = 0;
        std::size_t columns = 0;
        std::size_t first_begin = 0;
        std::size_t first_end = 0;
    };

    RowOutline addCells(const pugi::xml_node& row, std::size_t number) {
        RowOutline outline;
        std::size_t next = 0;
        for (const pugi::xml_node cell : row.children()) {
            if (tag_of(cell) != "c") {
                continue;
            }
            const std::size_t column = columnOf(cell, next);
            next = column + 1;
            const CellPlace place = {number, column};
            const bool is_first = outline.cells == 0;
            const std::string text =
                is_first && isError(cell) ? errorName(cell, place) : textOf(cell, place);
            if (text.empty()) {
                continue;
            }
            sheet_.text.append(column - (is_first ? 0 : outline.columns - 1), '\t');
            sheet_.text += text;
            if (is_first) {
                outline.first_end = sheet_.text.size();
                outline.first_begin = outline.first_end - text.size();
            }
            outline.columns = column + 1;
            ++outline.cells;
            outline.numbers += isNumber(cell) ? 1 : 0;
        }
        return outline;
    }

    /// Quotes the first cell of the row that came last if it opens with "#", though half of the
    /// cells or more are numbers: such a row below the header is no remark.
    void quoteName(const RowOutline& outline) {
        const bool is_remark =
            outline.cells > 0 && sheet_.text.compare(outline.first_begin, 1, "#") == 0;
        if (is_remark && has_header_come_ && 2 * outline.numbers >= outline.cells) {
            sheet_.text.insert(outline.first_end, 1, '"').insert(outline.first_begin, 1, '"');
        }
        has_header_come_ = has_header_come_ || (outline.cells > 1 && !is_remark);
    }

    /// @param next  the column of a cell that does not say its own
    [[nodiscard]] std::size_t columnOf(const pugi::xml_node& cell, std::size_t next) const {
        const pugi::xml_attribute reference = cell.attribute("r");
        const std::optional<std::size_t> column =
            reference ? column_of(reference.value()) : std::optional(next);
        if (!column || *column < next) {
            throw InputError(name_ + ": the cells of the sheet are not in order (" +
                             reference.value() + ")\nSave the workbook anew.");
        }
        return *column;
    }

    std::string textOf(const pugi::xml_node& cell, const CellPlace& place) {
        const std::string_view type = cell.attribute("t").value();
        if (type == "inlineStr") {
            return quoted_if_needed(string_of(child(cell, "is")));
        }
        const pugi::xml_node value = child(cell, "v");
        std::string text = value.text().get();
        const bool is_empty_number = text.empty() && (type.empty() || type == "n");
        if (!value || is_empty_number) {
            // What a formula gives may also be an empty text, which is of the type of texts.
            requireNoFormula(cell, place);
            return "";
        }
        if (type == "s") {
            return quoted_if_needed(sharedString(text));
        }
        if (type == "e") {
            return errorText(text, place);
        }
        if (type == "b") {
            return text == "1" ? "TRUE" : "FALSE";
        }
        return type.empty() || type == "n" ? numberText(cell, std::move(text))
                                           : quoted_if_needed(std::move(text));
    }

    static bool isError(const pugi::xml_node& cell) {
        return std::string_view(cell.attribute("t").value()) == "e";
    }

    /// The first cell of a row is its name, and no value.
    std::string errorName(const pugi::xml_node& cell, const CellPlace& place) {
        std::string error = child(cell, "v").text().get();
        if (!error.empty() && sheet_.error_names++ == 0) {
            sheet_.first_error_name = place_text(place) + " (" + error + ")";
        }
        return error;
    }

    static bool isNumber(const pugi::xml_node& cell) {
        const std::string_view type = cell.attribute("t").value();
        return type.empty() || type == "n";
    }

    /// What a formula gives is not in the file of a program that does not calculate.
    void requireNoFormula(const pugi::xml_node& cell, const CellPlace& place) const {
        if (child(cell, "f")) {
            throw InputError(
                name_ + ": cell " + place_text(place) +
                " holds a formula that has not been calculated\nOpen the workbook in a "
                "spreadsheet program and save it, or save values in place of "
                "formulas.");
        }
    }

    [[nodiscard]] const std::string& sharedString(const std::string& index) const {
        char* end = nullptr;
        const unsigned long number = std::strtoul(index.c_str(), &end, 10);
        if (index.empty() || *end != '\0' || number >= rules_.shared_strings.size()) {
            throw InputError(name_ + ": the workbook lacks text " + index +
                             " of its list\nFetch or save it anew.");
        }
        return rules_.shared_strings[number];
    }

    std::string errorText(const std::string& error, const CellPlace& place) {
        if (sheet_.errors++ == 0) {
            sheet_.first_error = place_text(place) + " (" + error + ")";
        }
        return "#N/A";
    }

    [[nodiscard]] std::string numberText(const pugi::xml_node& cell, std::string number) const {
        const unsigned style = cell.attribute("s").as_uint();
        const DateFormat format =
            style < rules_.date_formats.size() ? rules_.date_formats[style] : DateFormat::None;
        if (format == DateFormat::None) {
            std::replace(number.begin(), number.end(), '.', rules_.decimal);
            return number;
        }
        const std::string date =
            date_text(std::strtod(number.c_str(), nullptr), rules_.since_1904, format);
        return date.empty() ? number : date;
    }

    const std::string& name_;
    const CellRules& rules_;
    /// Columns of the widest row.
    std::size_t width_;
    std::size_t lines_ = 0;
    bool has_table_begun_ = false;
    bool has_header_come_ = false;
    SheetText sheet_;
};

/// The columns of the widest row.
std::size_t width_of(const pugi::xml_node& rows) {
    std::size_t width = 0;
    for (const pugi::xml_node row : rows.children()) {
        std::size_t columns = 0;
        for (const pugi::xml_node cell : row.children()) {
            const pugi::xml_attribute reference = cell.attribute("r");
            columns = reference ? column_of(reference.value()).value_or(columns) + 1 : columns + 1;
            width = child(cell, "v") || child(cell, "is") ? std::max(width, columns) : width;
        }
    }
    return width;
}

bool is_hidden(const pugi::xml_node& node) {
    const std::string_view value = node.attribute("hidden").value();
    return value == "1" || value == "true";
}

std::size_t hidden_rows_of(const pugi::xml_node& rows) {
    const auto list = rows.children();
    return static_cast<std::size_t>(
        std::count_if(list.begin(), list.end(), [](const pugi::xml_node& row) {
            return is_hidden(row) && child(row, "c");
        }));
}

/// The hidden columns among the first ones.
std::size_t hidden_columns_of(const pugi::xml_node& columns, std::size_t width) {
    std::size_t hidden = 0;
    for (const pugi::xml_node column : columns.children()) {
        const std::size_t first = column.attribute("min").as_ullong();
        const std::size_t last = std::min<std::size_t>(column.attribute("max").as_ullong(), width);
        hidden += is_hidden(column) && first >= 1 && first <= last ? last - first + 1 : 0;
    }
    return hidden;
}

}  // namespace

SheetText text_of_sheet(const std::string& name,
                        const pugi::xml_document& sheet,
                        const CellRules& rules) {
    const pugi::xml_node worksheet = child(sheet, "worksheet");
    const pugi::xml_node rows = child(worksheet, "sheetData");
    const std::size_t width = width_of(rows);
    SheetWriter writer(name, rules, width);
    std::size_t next = 0;
    for (const pugi::xml_node row : rows.children()) {
        const pugi::xml_attribute number = row.attribute("r");
        const std::size_t place = number ? number.as_ullong() - 1 : next;
        if (place < next || place >= kMostRows) {
            throw InputError(name + ": the rows of the sheet are not in order (" + number.value() +
                             ")\nSave the workbook anew.");
        }
        writer.add(row, place);
        next = place + 1;
    }
    SheetText text = writer.take();
    text.hidden_rows = hidden_rows_of(rows);
    text.hidden_columns = hidden_columns_of(child(worksheet, "cols"), width);
    return text;
}

}  // namespace ovik
