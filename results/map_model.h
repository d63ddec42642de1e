#pragma once

#include <cstddef>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

/// Models: a finished map with all that is needed to place further rows on it, as a file.
///
/// The file, version 1. All numbers have 8 bytes, the lowest first; reals are IEEE 754 doubles. A
/// text is its length in bytes and these; a list is its length and its texts or reals.
///
///     "OVIKMODL"                                   8 bytes
///     version of the format                        integer
///     length of the body                           integer, in bytes
///     body: the members of `MapModel` in their order
///         rows, columns, output dimensions         integers
///         options                                  list of texts, name and value in turn
///         perplexity                               real
///         names of the rows, of the columns        lists of texts
///         policy of missing values, transformations  texts
///         means, subtracted, divisors              lists of reals
///         centres                                  list of reals
///         factor, largest nearest distance         reals
///         input, embedding                         lists of reals, row-major
///     digest of all bytes before                   two integers, low half first, XXH3 of 128 bits

namespace ovik {

/// A map, and what it was made of.
struct MapModel {
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::size_t out_dims = 0;
    /// Names and values of the options of the fit.
    std::vector<std::pair<std::string, std::string>> options;
    double perplexity = 0.0;
    /// One per row.
    std::vector<std::string> row_names;
    /// One per column; empty if the matrix named none.
    std::vector<std::string> column_names;
    /// What became of missing values, as `missing_policy` names it; empty if nobody chose.
    std::string missing;
    /// What was done to the values once they were read, such as "log1p"; empty for nothing.
    std::string transformations;
    /// The mean of each column as it was read, once no value was missing.
    std::vector<double> column_means;
    /// What was subtracted from each column, and what it was divided by, by the transformations;
    /// empty where they did neither.
    std::vector<double> subtracted;
    std::vector<double> divisors;
    /// How the matrix was centred and scaled for the fit, as `InputScale` has it.
    std::vector<double> centres;
    double factor = 1.0;
    /// The largest distance of a row from its nearest, of the scaled input.
    double largest_nearest_distance = 0.0;
    /// The centred and scaled input, rows x columns.
    std::vector<double> input;
    /// Rows x output dimensions.
    std::vector<double> embedding;
};

/// Writes a model, whole or not at all.
///
/// @return why it could not be written, which the console then says in bold red; no error if it was
std::error_code write_map_model(const std::string& path, const MapModel& model);

/// @throws InputError with the reason if the file cannot be read, is not a model, is one of another
/// version, or is damaged
MapModel read_map_model(const std::string& path);

/// Refuses to let a model replace what is not one, such as a matrix.
///
/// @throws InputError if there is something else than a model or an empty file
void check_model_path(const std::string& path);

}  // namespace ovik
