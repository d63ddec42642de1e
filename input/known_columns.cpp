#include "input/known_columns.h"

#include <algorithm>
#include <map>
#include <memory>

#include "util/counted.h"
#include "util/input_error.h"

namespace ovik {

namespace {

constexpr std::size_t kListed = 5;

/// The first few names, in quotes.
std::string listed(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), kListed); ++i) {
        text += (i == 0 ? "\"" : ", \"") + names[i] + "\"";
    }
    return text + (names.size() > kListed ? ", ..." : "");
}

/// Where each name stands.
std::map<std::string, std::size_t> places_of(const std::vector<std::string>& names) {
    std::map<std::string, std::size_t> places;
    for (std::size_t d = 0; d < names.size(); ++d) {
        places.emplace(names[d], d);
    }
    return places;
}

/// The names that have no place among others.
std::vector<std::string> names_without(const std::vector<std::string>& names,
                                       const std::map<std::string, std::size_t>& places) {
    std::vector<std::string> without;
    std::copy_if(names.begin(),
                 names.end(),
                 std::back_inserter(without),
                 [&places](const std::string& name) { return places.count(name) == 0; });
    return without;
}

/// @throws InputError if a name stands in a list twice
void require_distinct(const std::string& path,
                      const std::string& whose,
                      const std::vector<std::string>& names) {
    std::vector<std::string> sorted = names;
    std::sort(sorted.begin(), sorted.end());
    const auto twice = std::adjacent_find(sorted.begin(), sorted.end());
    if (twice != sorted.end()) {
        throw InputError(path + ": two columns of " + whose + " are called \"" + *twice +
                         "\", and the others stand in another order\nGive the columns the order "
                         "that they have in the matrix of the map.");
    }
}

/// @throws InputError if the columns are not those of the map
void require_same_columns(const std::string& path,
                          const KnownColumns& known,
                          const OptionSpelling& spell,
                          const std::vector<std::string>& names) {
    const std::vector<std::string> missing = names_without(known.names, places_of(names));
    const std::vector<std::string> additional = names_without(names, places_of(known.names));
    if (missing.size() == known.names.size()) {
        throw InputError(path + ": no column has a name of the map's columns: it has " +
                         listed(names) + ", the map " + listed(known.names) +
                         "\nGive rows of the same measurements, with the same names.");
    }
    if (!missing.empty()) {
        throw InputError(path + ": " + counted(missing.size(), "column", "columns") +
                         " of the map " + (missing.size() == 1 ? "is" : "are") +
                         " missing: " + listed(missing) +
                         "\nAdd them, or make a map of the columns that are there.");
    }
    if (!additional.empty()) {
        throw InputError(path + ": " + counted(additional.size(), "column is", "columns are") +
                         " not of the map: " + listed(additional) + "\nLeave them out with " +
                         spell("skip-columns", additional.front()) + ".");
    }
    require_distinct(path, "the map", known.names);
    require_distinct(path, "the matrix", names);
}

/// Makes column d of a matrix what column `sources[d]` was.
void reorder(const std::vector<std::size_t>& sources, InspectedMatrix& matrix) {
    const std::size_t columns = matrix.report.columns;
    std::vector<double> row(columns);
    for (std::size_t n = 0; n < matrix.report.rows; ++n) {
        double* const values = matrix.values.get() + n * columns;
        std::copy_n(values, columns, row.begin());
        for (std::size_t d = 0; d < columns; ++d) {
            values[d] = row[sources[d]];
        }
    }
    if (!matrix.column_fields.empty()) {
        std::vector<std::size_t> fields(columns);
        for (std::size_t d = 0; d < columns; ++d) {
            fields[d] = matrix.column_fields[sources[d]];
        }
        matrix.column_fields = std::move(fields);
    }
}

}  // namespace

std::vector<double> means_of_columns(const InspectedMatrix& matrix) {
    const MatrixReport& report = matrix.report;
    std::vector<double> means(report.columns, 0.0);
    for (std::size_t n = 0; n < report.rows; ++n) {
        for (std::size_t d = 0; d < report.columns; ++d) {
            means[d] += matrix.values[n * report.columns + d];
        }
    }
    for (double& mean : means) {
        mean /= static_cast<double>(report.rows);
    }
    return means;
}

void match_columns(const std::string& path,
                   const KnownColumns& known,
                   const OptionSpelling& spell,
                   InspectedMatrix& matrix) {
    const std::size_t columns = matrix.report.columns;
    const std::vector<std::string>& names = matrix.column_names;
    const bool by_name = !known.names.empty() && !names.empty();
    if (by_name && names == known.names) {
        return;
    }
    if (by_name) {
        require_same_columns(path, known, spell, names);
    }
    if (columns != known.means.size()) {
        throw InputError(path + ": has " + counted(columns, "column", "columns") +
                         " of values, and the map was made of " +
                         std::to_string(known.means.size()) +
                         "\nGive rows of the same measurements; columns that are none can be left "
                         "out with " +
                         spell("skip-columns", "") + ".");
    }
    if (by_name) {
        const std::map<std::string, std::size_t> places = places_of(names);
        std::vector<std::size_t> sources(columns);
        for (std::size_t d = 0; d < columns; ++d) {
            sources[d] = places.at(known.names[d]);
        }
        reorder(sources, matrix);
        matrix.column_names = known.names;
    }
}

}  // namespace ovik
