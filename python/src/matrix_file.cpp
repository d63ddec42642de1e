#include "python/src/matrix_file.h"

#include "util/input_error.h"
#include "util/matrix_market.h"
#include "util/matrix_source.h"
#include "util/npy_matrix.h"

#include "tools/input_checks.h"
#include "tools/load_matrix.h"
#include "tools/missing_values.h"

namespace ovik::python {

namespace {

InspectedMatrix read_delimited(MatrixSource& source, std::optional<char> delimiter) {
    const tool::Delimiters delimiters = tool::find_delimiter(source, delimiter);
    InspectedMatrix matrix = inspect_matrix(source, delimiters.used);
    tool::check_matrix(source.name(), delimiters, matrix.report);
    return matrix;
}

InspectedMatrix read_array(MatrixSource& source) {
    InspectedMatrix matrix = source.format() == MatrixFormat::NumPy ? read_npy_matrix(source)
                                                                    : read_matrix_market(source);
    tool::check_row_count(source.name(), matrix.report.rows);
    tool::check_finite(source.name(), matrix.report);
    name_rows(matrix, tool::row_numbers(matrix.report.rows));
    return matrix;
}

/// @throws InputError if missing values are refused, or there is no such policy
void settle_missing(const std::string& path, const std::string& name, InspectedMatrix& matrix) {
    const std::optional<tool::MissingPolicy> policy = tool::missing_policy(name);
    if (!policy) {
        throw InputError(
            "missing should be None, \"zero\", \"row-mean\", \"column-mean\", \"drop\" or "
            "\"error\", not \"" +
            name + "\"");
    }
    const tool::MissingCounts missing = tool::count_missing(matrix);
    if (missing.count == 0) {
        return;
    }
    if (*policy == tool::MissingPolicy::Error) {
        throw InputError(path + ": " + tool::missing_summary(matrix, missing) + "\n" +
                         tool::missing_places(matrix, missing));
    }
    std::vector<std::string> no_labels;
    tool::treat_missing(path, *policy, missing, matrix, no_labels);
}

}  // namespace

MatrixFile read_matrix_file(const std::string& path,
                            std::optional<char> delimiter,
                            const std::string& missing) {
    MatrixSource source(path);
    MatrixFile file;
    file.matrix = source.format() == MatrixFormat::DelimitedText ? read_delimited(source, delimiter)
                                                                 : read_array(source);
    file.warnings = tool::matrix_warnings(source.name(), file.matrix.report);
    if (!missing.empty()) {
        settle_missing(source.name(), missing, file.matrix);
    }
    return file;
}

}  // namespace ovik::python
