#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "util/api.h"
#include "util/matrix_view.h"

namespace ovik {

/// The annotated result: one row per pair of output components and point. Row p * N + k is point k
/// under pair p; the pairs are (1, 2), (1, 3), ..., (2, 3), ... Columns have equal length.
template <typename T>
struct ResultTable {
    std::vector<std::array<T, 2>> coordinates;
    std::vector<std::string> names;
    /// "Group:1:2" for components 1 and 2.
    std::vector<std::string> groups;
    /// What the gene does.
    std::vector<std::string> functions;
};

/// Lays out the final embedding as a table.
///
/// @param Y          row-major, N x no_dims; converted to T element by element
/// @param no_dims    below 2 there is no pair and no row
/// @param names      N texts, one per point
/// @param functions  looked up by name; a name that it lacks is inserted with an empty text
template <typename T>
OVIK_API ResultTable<T> make_result_table(const double* Y,
                                          std::size_t N,
                                          std::size_t no_dims,
                                          const std::string* names,
                                          std::map<std::string, std::string>& functions);

/// The same with the function of each point in place of a look-up.
///
/// @param functions  N texts, one per point
template <typename T>
OVIK_API ResultTable<T> make_result_table(MatrixView<const double> Y,
                                          std::span<const std::string> names,
                                          std::span<const std::string> functions);

/// The same for an embedding with its shape, and as many names as it has rows.
template <typename T>
ResultTable<T> make_result_table(MatrixView<const double> Y,
                                 std::span<const std::string> names,
                                 std::map<std::string, std::string>& functions) {
    return make_result_table<T>(Y.values, Y.rows, Y.columns, names.data(), functions);
}

/// The stem of the table's file: "tsne_", the perplexity cut to one digit with "_" for its point,
/// and the suffix. Perplexity 12.75 gives "tsne_12_7".
OVIK_API std::string result_table_stem(double perplexity, const std::string& suffix);

/// Writes the table as comma-separated text under a header line.
///
/// Coordinates have three digits, one that is exactly zero none ("0"). Functions stand in double
/// quotes; neither they nor names are escaped. The file appears whole or not at all: an earlier one
/// stays until then.
///
/// @return why the file could not be written, which the console then says in bold red; no error if
/// it was
template <typename T>
OVIK_API std::error_code write_result_table(const std::string& path, const ResultTable<T>& table);

}  // namespace ovik
