#include "tools/figure_choice.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>

#include "annotation/row_finder.h"
#include "input/field_kind.h"
#include "input/row_texts.h"
#include "util/counted.h"
#include "util/input_error.h"
#include "util/joined.h"

#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

constexpr double kSingleColumn = 89;
constexpr double kDoubleColumn = 183;

/// More unknown names than this are not listed in a message.
constexpr std::size_t kListed = 10;

/// Takes a number off the front; 0 if there is none.
double take_number(std::string_view& text) {
    double number = 0.0;
    const auto read =
        std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    if (read.ec != std::errc()) {
        return 0.0;
    }
    text.remove_prefix(static_cast<std::size_t>(read.ptr - text.data()));
    return number;
}

/// Takes "mm", "px" or nothing off the front.
std::string_view take_unit(std::string_view& text) {
    for (const std::string_view unit : {"mm", "px"}) {
        if (text.starts_with(unit)) {
            text.remove_prefix(unit.size());
            return unit;
        }
    }
    return "";
}

[[noreturn]] void refuse_size(const std::string& text) {
    throw InputError("--figure-size: " + text +
                     " is no size\nGive single or double, for a column of a journal (89 or 183 mm "
                     "wide), or a width, or width x height, as in 120mm, 89x60mm or 1200x900.");
}

/// Refuses a length that is not 0 and no page has.
void check_length(double length, const FigureSize& size, const std::string& text) {
    const double least = size.millimetres ? 30 : 200;
    const double most = size.millimetres ? 600 : 10000;
    if (length != 0.0 && (length < least || length > most)) {
        throw InputError("--figure-size: " + text + " is too " +
                         (length < least ? "small" : "large") + "\nGive " +
                         (size.millimetres ? "30 to 600 mm." : "200 to 10000 pixels."));
    }
}

/// Of a table, the names in the first column.
std::vector<std::string> names_in_file(const std::string& path) {
    std::vector<std::string> names = lines_of(read_row_file(path, "name"));
    for (std::string& line : names) {
        line.resize(std::min(line.find('\t'), line.size()));
    }
    return names;
}

/// The texts between commas.
std::vector<std::string> names_in_list(std::string_view rest) {
    std::vector<std::string> names;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(','), rest.size());
        names.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return names;
}

/// The names without blanks around them, each once, and none that is empty.
std::vector<std::string> distinct(const std::vector<std::string>& texts) {
    std::vector<std::string> names;
    std::set<std::string_view> known = {""};
    for (const std::string& text : texts) {
        const std::string_view name = without_blanks(text);
        if (known.insert(name).second) {
            names.emplace_back(name);
        }
    }
    return names;
}

}  // namespace

FigureSize figure_size_of(const std::string& text) {
    if (text == "single" || text == "double") {
        return {text == "single" ? kSingleColumn : kDoubleColumn, 0.0, true};
    }
    std::string_view rest = text;
    FigureSize size;
    size.width = take_number(rest);
    std::string_view unit = take_unit(rest);
    if (rest.starts_with('x')) {
        rest.remove_prefix(1);
        size.height = take_number(rest);
        const std::string_view second = take_unit(rest);
        if (!(size.height > 0.0) || (!unit.empty() && unit != second)) {
            refuse_size(text);
        }
        unit = second;
    }
    if (!(size.width > 0.0) || !rest.empty()) {
        refuse_size(text);
    }
    size.millimetres = unit == "mm";
    check_length(size.width, size, text);
    check_length(size.height, size, text);
    return size;
}

std::vector<std::string> highlighted_names(const std::string& text) {
    std::error_code no_file;
    const bool is_file = std::filesystem::is_regular_file(text, no_file);
    std::vector<std::string> names = distinct(is_file ? names_in_file(text) : names_in_list(text));
    if (names.empty()) {
        throw InputError("--highlight: there is no name in \"" + text +
                         "\"\nGive names of rows, separated by commas, or a file with one name a "
                         "line.");
    }
    return names;
}

HighlightedRows find_highlighted(const std::vector<std::string>& names,
                                 const std::vector<std::string>& row_names,
                                 bool genes) {
    const RowFinder finder(row_names, genes);
    HighlightedRows found;
    std::set<std::size_t> taken;
    for (const std::string& name : names) {
        const std::vector<std::size_t> rows = finder.rowsOf(name);
        if (rows.empty()) {
            found.unknown.push_back(name);
        }
        for (const std::size_t row : rows) {
            if (taken.insert(row).second) {
                found.rows.push_back(row);
            }
        }
    }
    return found;
}

FigureOptions settle_figure(const Options& options, const std::vector<std::string>& row_names) {
    FigureOptions figure;
    figure.size = options.figure_size;
    if (options.title_is_given) {
        figure.title = options.title;
    }
    if (options.highlight.empty()) {
        return figure;
    }
    const std::vector<std::string> names = highlighted_names(options.highlight);
    const HighlightedRows found =
        find_highlighted(names, row_names, options.names != RowNames::Other);
    if (found.rows.empty()) {
        throw InputError("--highlight: no row is called " + first_few(found.unknown, kListed) +
                         "\nGive names of rows, separated by commas, or a file with one name a "
                         "line.");
    }
    if (!found.unknown.empty()) {
        complain("warning: --highlight: " + std::to_string(found.unknown.size()) + " of " +
                 counted(names.size(), "name", "names") +
                 (found.unknown.size() == 1 ? " is" : " are") +
                 " of no row: " + first_few(found.unknown, kListed));
    }
    figure.highlighted = found.rows;
    return figure;
}

}  // namespace ovik::tool
