#include "input/odd_values.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

#include "input/table_layout.h"

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
    /// Whether each number is one more than the one above it, which is `last`.
    bool counts = true;
    double last = 0.0;

    void add(double value) {
        counts = counts && (count == 0 || value == last + 1.0);
        last = value;
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

std::string small_letters(std::string text) {
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return text;
}

/// Whether no value of a column is above that of another one in its row.
bool is_never_above(const InspectedMatrix& matrix, std::size_t column, std::size_t other) {
    for (std::size_t n = 0; n < matrix.report.rows; ++n) {
        const double* const row = matrix.values.get() + n * matrix.report.columns;
        if (row[column] > row[other]) {
            return false;
        }
    }
    return true;
}

/// Columns that number the rows.
std::vector<std::size_t> counting_rows(const std::vector<ColumnCharacter>& columns) {
    constexpr std::size_t kFewestNumbers = 10;
    std::vector<std::size_t> counting;
    for (std::size_t d = 0; columns.size() > 1 && d < columns.size(); ++d) {
        if (columns[d].counts && columns[d].count >= kFewestNumbers) {
            counting.push_back(d);
        }
    }
    return counting;
}

/// Whole numbers from 0 under a header of lengths, or of the places of genes, which are two columns
/// with the start in front of the end. Samples may be called "start" and "end", too.
std::vector<std::size_t> named_like_no_values(const InspectedMatrix& matrix,
                                              const std::vector<ColumnCharacter>& columns) {
    std::vector<std::size_t> named;
    std::optional<std::size_t> start;
    std::optional<std::size_t> end;
    for (std::size_t d = 0; d < matrix.column_names.size(); ++d) {
        const std::string name = small_letters(matrix.column_names[d]);
        if (!columns[d].varies() || !columns[d].is_whole || columns[d].lowest < 0.0) {
            continue;
        }
        if ((name == "length" || name == "gene_length" || name == "width") &&
            columns[d].lowest > 0.0) {
            named.push_back(d);
        }
        start = name == "start" ? d : start;
        end = name == "end" ? d : end;
    }
    if (start && end && is_never_above(matrix, *start, *end)) {
        named.insert(named.end(), {*start, *end});
    }
    std::sort(named.begin(), named.end());
    return named;
}

std::string place_of(const InspectedMatrix& matrix, std::size_t column) {
    const std::string number = matrix.column_fields.empty()
                                   ? "column " + std::to_string(column + 1)
                                   : "field " + std::to_string(matrix.column_fields[column]);
    return matrix.column_names.empty() || matrix.column_names[column].empty()
               ? number
               : "column \"" + matrix.column_names[column] + "\" (" + number + ")";
}

/// What the option calls columns.
std::string handles_of(const InspectedMatrix& matrix, const std::vector<std::size_t>& columns) {
    std::string handles;
    for (const std::size_t column : columns) {
        handles += (handles.empty() ? "" : ",") +
                   column_handle(matrix.header, matrix.column_fields[column] - 1);
    }
    return handles;
}

/// None of these is the name of a gene.
bool is_name_of_no_gene(const std::string& name) {
    constexpr std::array<std::string_view, 21> kNames = {
        "total",      "totals", "grand total", "sum",           "mean",    "average", "median",
        "min",        "max",    "sd",          "stdev",         "std dev", "count",   "time",
        "time point", "dose",   "doses",       "concentration", "gorder",  "eorder",  "eweight"};
    return std::find(kNames.begin(), kNames.end(), small_letters(name)) != kNames.end();
}

struct OddColumns {
    std::vector<std::size_t> columns;
    /// What is odd, of one column and of several.
    const char* of_one;
    const char* of_several;
};

/// The columns that are odd for the first reason that there is.
OddColumns odd_columns(const InspectedMatrix& matrix) {
    const std::vector<ColumnCharacter> characters = characters_of(matrix);
    const OddColumns reasons[] = {
        {counting_rows(characters), " counts the rows", " count the rows"},
        {whole_among_fractions(characters),
         " is unlike the other columns: whole numbers alone",
         " are unlike the other columns: whole numbers alone"},
        {far_above(characters),
         " is unlike the other columns: every value is far above all of theirs",
         " are unlike the other columns: every value is far above all of theirs"},
        {named_like_no_values(matrix, characters),
         " is named as lengths and places of genes are, and holds whole numbers alone",
         " are named as lengths and places of genes are, and hold whole numbers alone"}};
    const auto* const reason =
        std::find_if(std::begin(reasons), std::end(reasons), [](const OddColumns& each) {
            return !each.columns.empty();
        });
    return reason == std::end(reasons) ? OddColumns{{}, "", ""} : *reason;
}

}  // namespace

std::string odd_columns_warning(const std::string& path,
                                const OptionSpelling& spell,
                                const InspectedMatrix& matrix) {
    const OddColumns found = odd_columns(matrix);
    const std::vector<std::size_t>& odd = found.columns;
    if (odd.empty()) {
        return "";
    }
    std::string places;
    for (std::size_t i = 0; i < std::min(odd.size(), kListed); ++i) {
        places += (i == 0 ? "" : ", ") + place_of(matrix, odd[i]);
    }
    places += odd.size() > kListed ? ", ..." : "";
    const bool is_one = odd.size() == 1;
    return path + ": " + places + (is_one ? found.of_one : found.of_several) + "\nIf " +
           (is_one ? "it is" : "they are") +
           " no measurement, such as an identifier, a length or a cluster, leave " +
           (is_one ? "it" : "them") + " out" +
           (matrix.column_fields.empty()
                ? "."
                : " with " + spell("skip-columns", handles_of(matrix, odd)) + ".");
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
