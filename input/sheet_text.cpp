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

std::string quoted_if_needed(std::string text) {
    if (text.find_first_of("\t\r\n\"") == std::string::npos) {
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
        std::size_t cells = 0;
        std::size_t columns = 0;
        std::size_t next = 0;
        for (const pugi::xml_node cell : row.children()) {
            if (tag_of(cell) != "c") {
                continue;
            }
            const std::size_t column = columnOf(cell, next);
            next = column + 1;
            const std::string text = textOf(cell, {number, column});
            if (text.empty()) {
                continue;
            }
            sheet_.text.append(column - (columns == 0 ? 0 : columns - 1), '\t');
            sheet_.text += text;
            columns = column + 1;
            ++cells;
        }
        has_table_begun_ = has_table_begun_ || cells > 1;
        if (has_table_begun_ && cells > 0) {
            sheet_.text.append(width_ - columns, '\t');
        }
        sheet_.text += '\n';
        ++lines_;
        if (sheet_.text.size() > kLargestText) {
            throw InputError(name_ + ": the sheet is too large: save it as tab-separated text");
        }
    }

    SheetText take() { return std::move(sheet_); }

  private:
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

}  // namespace

SheetText text_of_sheet(const std::string& name,
                        const pugi::xml_document& sheet,
                        const CellRules& rules) {
    const pugi::xml_node rows = child(child(sheet, "worksheet"), "sheetData");
    SheetWriter writer(name, rules, width_of(rows));
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
    return writer.take();
}

}  // namespace ovik
