#include "input/odd_values.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string_view>
#include <vector>

namespace ovik {

namespace {

constexpr std::size_t kListed = 3;

/// What the numbers of a column are like.
struct ColumnCharacter {
    std::size_t count = 0;
    bool is_whole = true;
    double lowest = std::numeric_limits<double>::infinity();
    double highest = -std::numeric_limits<double>::infinity();
    double least_magnitude = std::numeric_limits<double>::infinity();

    void add(double value) {
        ++count;
        is_whole = is_whole && value == std::floor(value);
        lowest = std::min(lowest, value);
        highest = std::max(highest, value);
        least_magnitude = std::min(least_magnitude, std::fabs(value));
    }

    /// Whether there are numbers that differ.
    [[nodiscard]] bool varies() const { return lowest < highest; }

    [[nodiscard]] double magnitude() const { return std::max(-lowest, highest); }
};

std::vector<ColumnCharacter> characters_of(const InspectedMatrix& matrix) {
    std::vector<ColumnCharacter> columns(matrix.report.columns);
    const double* value = matrix.values.get();
    for (std::size_t n = 0; n < matrix.report.rows; ++n) {
        for (ColumnCharacter& column : columns) {
            if (!std::isnan(*value)) {
                column.add(*value);
            }
            ++value;
        }
    }
    return columns;
}

/// Columns of whole numbers, so many that they are no chance, if two thirds of those that vary have
/// fractions.
std::vector<std::size_t> whole_among_fractions(const std::vector<ColumnCharacter>& columns) {
    constexpr std::size_t kFewestNumbers = 10;
    std::vector<std::size_t> whole;
    std::size_t varying = 0;
    for (std::size_t d = 0; d < columns.size(); ++d) {
        if (columns[d].varies()) {
            ++varying;
            if (columns[d].is_whole && columns[d].count >= kFewestNumbers) {
                whole.push_back(d);
            }
        }
    }
    return 3 * whole.size() <= varying ? whole : std::vector<std::size_t>();
}

/// The column of which every value is ten times any of the other columns.
std::vector<std::size_t> far_above(const std::vector<ColumnCharacter>& columns) {
    constexpr std::size_t kFewest = 3;
    constexpr double kFar = 10.0;
    if (columns.size() < kFewest) {
        return {};
    }
    const auto highest = std::max_element(
        columns.begin(), columns.end(), [](const ColumnCharacter& a, const ColumnCharacter& b) {
            return a.least_magnitude < b.least_magnitude;
        });
    double others = 0.0;
    for (auto column = columns.begin(); column != columns.end(); ++column) {
        others = column == highest ? others : std::max(others, column->magnitude());
    }
    return highest->varies() && others > 0.0 && highest->least_magnitude > kFar * others
               ? std::vector{static_cast<std::size_t>(highest - columns.begin())}
               : std::vector<std::size_t>();
}

std::string place_of(const InspectedMatrix& matrix, std::size_t column) {
    const std::string number = matrix.column_fields.empty()
                                   ? "column " + std::to_string(column + 1)
                                   : "field " + std::to_string(matrix.column_fields[column]);
    return matrix.column_names.empty() || matrix.column_names[column].empty()
               ? number
               : "column \"" + matrix.column_names[column] + "\" (" + number + ")";
}

/// What the option calls a column: its header if that is enough to find it, else its number.
std::string handle_of(const InspectedMatrix& matrix, std::size_t column) {
    const std::vector<std::string>& names = matrix.column_names;
    const bool is_found_by_name = !names.empty() && !names[column].empty() &&
                                  names[column].find(',') == std::string::npos &&
                                  std::count(names.begin(), names.end(), names[column]) == 1;
    return is_found_by_name ? names[column] : std::to_string(matrix.column_fields[column]);
}

std::string small_letters(std::string text) {
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return text;
}

/// None of these is the name of a gene.
bool is_name_of_no_gene(const std::string& name) {
    constexpr std::array<std::string_view, 16> kNames = {"total",
                                                         "totals",
                                                         "grand total",
                                                         "sum",
                                                         "mean",
                                                         "average",
                                                         "median",
                                                         "min",
                                                         "max",
                                                         "sd",
                                                         "stdev",
                                                         "std dev",
                                                         "count",
                                                         "time",
                                                         "time point",
                                                         "eweight"};
    return std::find(kNames.begin(), kNames.end(), small_letters(name)) != kNames.end();
}

}  // namespace

std::string odd_columns_warning(const std::string& path,
                                const OptionSpelling& spell,
                                const InspectedMatrix& matrix) {
    const std::vector<ColumnCharacter> characters = characters_of(matrix);
    std::vector<std::size_t> odd = whole_among_fractions(characters);
    const bool are_whole = !odd.empty();
    if (!are_whole) {
        odd = far_above(characters);
    }
    if (odd.empty()) {
        return "";
    }
    std::string places;
    for (std::size_t i = 0; i < std::min(odd.size(), kListed); ++i) {
        places += (i == 0 ? "" : ", ") + place_of(matrix, odd[i]);
    }
    places += odd.size() > kListed ? ", ..." : "";
    const bool is_one = odd.size() == 1;
    return path + ": " + places + (is_one ? " is" : " are") + " unlike the other columns: " +
           (are_whole ? "whole numbers alone" : "every value is far above all of theirs") +
           "\nIf " + (is_one ? "it is" : "they are") +
           " no measurement, such as an identifier, a length or a cluster, leave " +
           (is_one ? "it" : "them") + " out" +
           (matrix.column_fields.empty()
                ? "."
                : " with " + spell("skip-columns", handle_of(matrix, odd[0])) + ".");
}

std::string odd_rows_warning(const std::string& path, const InspectedMatrix& matrix) {
    std::string places;
    std::size_t count = 0;
    for (std::size_t n = 0; n < matrix.report.rows; ++n) {
        if (is_name_of_no_gene(matrix.row_names[n]) && ++count <= kListed) {
            places +=
                (places.empty() ? "\"" : ", \"") + matrix.row_names[n] + "\"" +
                (matrix.row_lines[n] == 0 ? ""
                                          : " (line " + std::to_string(matrix.row_lines[n]) + ")");
        }
    }
    if (count == 0) {
        return "";
    }
    return path + ": " + (count == 1 ? "row " : "rows ") + places +
           (count > kListed ? ", ..." : "") + (count == 1 ? " is" : " are") +
           " named like a summary or a second header, and would be embedded as the others are\n"
           "Take what is no measurement of its own out of the file.";
}

}  // namespace ovik
