#include "python/src/matrix_file.h"

#include "input/input_checks.h"
#include "input/matrix_market.h"
#include "input/matrix_source.h"
#include "input/missing_values.h"
#include "input/npy_matrix.h"
#include "util/input_error.h"

#include "tools/load_matrix.h"

namespace ovik::python {

namespace {

InspectedMatrix read_delimited(MatrixSource& source, std::optional<char> delimiter) {
    const Delimiters delimiters = find_delimiter(source, delimiter);
    InspectedMatrix matrix = inspect_matrix(source, delimiters.used);
    check_matrix(source.name(), delimiters, matrix.report);
    return matrix;
}

InspectedMatrix read_array(MatrixSource& source) {
    InspectedMatrix matrix = source.format() == MatrixFormat::NumPy ? read_npy_matrix(source)
                                                                    : read_matrix_market(source);
    check_row_count(source.name(), matrix.report.rows);
    check_finite(source.name(), matrix.report);
    name_rows(matrix, tool::row_numbers(matrix.report.rows));
    return matrix;
}

/// @throws InputError if missing values are refused, or there is no such policy
void settle_missing(const std::string& path, const std::string& name, InspectedMatrix& matrix) {
    const std::optional<MissingPolicy> policy = missing_policy(name);
    if (!policy) {
        throw InputError(
            "missing should be None, \"zero\", \"row-mean\", \"column-mean\", \"drop\" or "
            "\"error\", not \"" +
            name + "\"");
    }
    const MissingCounts missing = count_missing(matrix);
    if (missing.count == 0) {
        return;
    }
    if (*policy == MissingPolicy::Error) {
        throw InputError(path + ": " + missing_summary(matrix, missing) + "\n" +
                         missing_places(matrix, missing));
    }
    std::vector<std::string> no_labels;
    treat_missing(path, *policy, missing, matrix, no_labels);
}

}  // namespace

MatrixFile read_matrix_file(const std::string& path,
                            std::optional<char> delimiter,
                            const std::string& missing) {
    MatrixSource source(path);
    MatrixFile file;
    file.matrix = source.format() == MatrixFormat::DelimitedText ? read_delimited(source, delimiter)
                                                                 : read_array(source);
    file.warnings = matrix_warnings(source.name(), file.matrix.report);
    if (!missing.empty()) {
        settle_missing(source.name(), missing, file.matrix);
    }
    return file;
}

}  // namespace ovik::python
