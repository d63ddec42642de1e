#include "tools/load_matrix.h"

#include "input/input_checks.h"
#include "input/matrix_market.h"
#include "input/matrix_source.h"
#include "input/missing_values.h"
#include "input/npy_matrix.h"
#include "util/available_memory.h"
#include "util/console.h"
#include "util/input_error.h"
#include "util/plain_text.h"

#include "tools/memory_check.h"
#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

/// Applies `--missing`, or its default, and says so.
///
/// @param name  of the file
/// @return how many values were missing
/// @throws InputError if missing values are refused, or too few rows are left
std::size_t settle_missing(const std::string& name,
                           std::optional<MissingPolicy> chosen,
                           InspectedMatrix& matrix,
                           std::vector<std::string>& labels) {
    const MissingCounts missing = count_missing(matrix);
    if (missing.count == 0) {
        return 0;
    }
    const MissingPolicy policy = chosen.value_or(MissingPolicy::Zero);
    const std::string summary = name + ": " + missing_summary(matrix, missing);
    const std::string places = missing_places(matrix, missing);
    if (policy == MissingPolicy::Error) {
        throw InputError(summary + "\n" + places +
                         "Fill them in, or choose with --missing what becomes of them.");
    }
    const std::size_t rows = matrix.report.rows;
    treat_missing(name, policy, missing, matrix, labels);
    if (!chosen) {
        complain("warning: " + summary + ", and read as 0\n" + places +
                 "--missing can also fill in means (row-mean, column-mean), leave such rows out "
                 "(drop), or refuse them (error).");
        return missing.count;
    }
    print_info(one_line_utf8(summary + ": " + treatment(policy, rows, matrix.report.rows)));
    if (policy == MissingPolicy::Drop) {
        check_row_count(name + ", without the rows that lack values", matrix.report.rows);
    }
    return missing.count;
}

InspectedMatrix read_delimited(MatrixSource& source, const Options& options) {
    const std::string& name = source.name();
    if (!options.row_names_file.empty()) {
        throw InputError("--row-names: the rows of " + name + " have names of their own");
    }
    const Delimiters delimiters = find_delimiter(source, options.delimiter);
    if (!options.force) {
        check_memory_of_reading(source, delimiters.used, available_memory());
    }
    InspectedMatrix matrix = inspect_matrix(source, delimiters.used);
    check_matrix(name, delimiters, matrix.report);
    return matrix;
}

/// The names of the rows, or their numbers.
std::vector<std::string> names_of_rows(const Options& options, std::size_t count) {
    if (!options.row_names_file.empty()) {
        return read_row_texts(options.row_names_file, count, "name");
    }
    complain("note: the format of " + options.matrix +
             " has no names, and rows are called by their numbers; --row-names gives them names");
    return row_numbers(count);
}

/// Reads a format without names.
InspectedMatrix read_array(MatrixSource& source, const Options& options) {
    InspectedMatrix matrix = source.format() == MatrixFormat::NumPy ? read_npy_matrix(source)
                                                                    : read_matrix_market(source);
    check_row_count(source.name(), matrix.report.rows);
    check_finite(source.name(), matrix.report);
    name_rows(matrix, names_of_rows(options, matrix.report.rows));
    return matrix;
}

}  // namespace

std::vector<std::string> row_numbers(std::size_t count) {
    std::vector<std::string> numbers(count);
    for (std::size_t n = 0; n < count; ++n) {
        numbers[n] = std::to_string(n + 1);
    }
    return numbers;
}

LoadedMatrix load_matrix(const Options& options) {
    MatrixSource source(options.matrix);
    const std::string& name = source.name();
    LoadedMatrix loaded;
    InspectedMatrix& matrix = loaded.matrix;
    loaded.format = source.format();
    matrix = source.format() == MatrixFormat::DelimitedText ? read_delimited(source, options)
                                                            : read_array(source, options);
    for (const std::string& warning : matrix_warnings(name, matrix.report)) {
        complain("warning: " + warning);
    }
    if (!options.labels_file.empty()) {
        loaded.labels = read_row_texts(options.labels_file, matrix.report.rows, "label");
    }
    loaded.missing = settle_missing(name, options.missing, matrix, loaded.labels);
    check_values(name, matrix);
    return loaded;
}

}  // namespace ovik::tool
