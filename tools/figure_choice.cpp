#include "tools/figure_choice.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string_view>
#include <system_error>

#include "annotation/gene_lookup.h"
#include "util/console.h"
#include "util/counted.h"
#include "util/input_error.h"
#include "util/input_file.h"

#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

constexpr double kSingleColumn = 89;
constexpr double kDoubleColumn = 183;

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

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

/// Appends a name that is new and not empty.
void add_name(std::vector<std::string>& names, std::string_view text) {
    const std::string name(trimmed(text));
    if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end()) {
        names.push_back(name);
    }
}

std::vector<std::string> names_in_file(const std::string& path) {
    return with_read_failures_named(path, [&path] {
        std::ifstream file = open_input_file(path);
        if (!file.is_open()) {
            throw_read_failure();
        }
        std::vector<std::string> names;
        constexpr std::string_view kMark = "\xEF\xBB\xBF";
        for (std::string line; std::getline(file, line);) {
            std::string_view text = line;
            text.remove_prefix(text.starts_with(kMark) ? kMark.size() : 0);
            // Of a table, the first column.
            add_name(names, text.substr(0, text.find('\t')));
        }
        return names;
    });
}

std::string joined(const std::vector<std::string>& names) {
    constexpr std::size_t kListed = 10;
    std::string text;
    for (std::size_t n = 0; n < names.size() && n < kListed; ++n) {
        text += (n == 0 ? "" : ", ") + names[n];
    }
    return text + (names.size() > kListed ? ", ..." : "");
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
    std::vector<std::string> names;
    if (std::filesystem::is_regular_file(text, no_file)) {
        names = names_in_file(text);
    } else {
        for (std::string_view rest = text; !rest.empty();) {
            const std::size_t end = std::min(rest.find(','), rest.size());
            add_name(names, rest.substr(0, end));
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }
    if (names.empty()) {
        throw InputError("--highlight: there is no name in \"" + text +
                         "\"\nGive names of rows, separated by commas, or a file with one name a "
                         "line.");
    }
    return names;
}

HighlightedRows find_highlighted(const std::vector<std::string>& names,
                                 const std::vector<std::string>& row_names,
                                 const RowGenes& genes) {
    std::multimap<std::string_view, std::size_t> by_name;
    std::multimap<const GeneEntry*, std::size_t> by_gene;
    for (std::size_t row = 0; row < row_names.size(); ++row) {
        by_name.emplace(row_names[row], row);
        if (row < genes.rows.size() && genes.rows[row].gene != nullptr) {
            by_gene.emplace(genes.rows[row].gene, row);
        }
    }
    HighlightedRows found;
    std::set<std::size_t> taken;
    const auto take = [&](auto range) {
        for (auto entry = range.first; entry != range.second; ++entry) {
            if (taken.insert(entry->second).second) {
                found.rows.push_back(entry->second);
            }
        }
        return range.first != range.second;
    };
    for (const std::string& name : names) {
        const GeneEntry* const gene = by_gene.empty() ? nullptr : identify_gene(name).gene;
        if (!take(by_name.equal_range(name)) &&
            (gene == nullptr || !take(by_gene.equal_range(gene)))) {
            found.unknown.push_back(name);
        }
    }
    return found;
}

FigureOptions settle_figure(const Options& options,
                            const std::vector<std::string>& row_names,
                            const RowGenes& genes) {
    FigureOptions figure;
    figure.size = options.figure_size;
    if (options.title_is_given) {
        figure.title = options.title;
    }
    if (options.highlight.empty()) {
        return figure;
    }
    const std::vector<std::string> names = highlighted_names(options.highlight);
    const HighlightedRows found = find_highlighted(names, row_names, genes);
    if (found.rows.empty()) {
        throw InputError("--highlight: no row is called " + joined(found.unknown) +
                         "\nGive names of rows, separated by commas, or a file with one name a "
                         "line.");
    }
    if (!found.unknown.empty()) {
        complain("warning: --highlight: " + std::to_string(found.unknown.size()) + " of " +
                 counted(names.size(), "name", "names") +
                 (found.unknown.size() == 1 ? " is" : " are") +
                 " of no row: " + joined(found.unknown));
    }
    figure.highlighted = found.rows;
    return figure;
}

}  // namespace ovik::tool
