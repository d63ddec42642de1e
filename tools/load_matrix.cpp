#include "tools/load_matrix.h"

#include "plots/plain_text.h"
#include "util/console.h"
#include "util/input_error.h"

#include "tools/available_memory.h"
#include "tools/input_checks.h"
#include "tools/memory_check.h"
#include "tools/missing_values.h"
#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

/// Applies `--missing`, or its default, and says so.
///
/// @throws InputError if missing values are refused, or too few rows are left
void settle_missing(const Options& options,
                    InspectedMatrix& matrix,
                    std::vector<std::string>& labels) {
    const MissingCounts missing = count_missing(matrix);
    if (missing.count == 0) {
        return;
    }
    const MissingPolicy policy = options.missing.value_or(MissingPolicy::Zero);
    const std::string summary = options.matrix + ": " + missing_summary(matrix, missing);
    const std::string places = missing_places(matrix, missing);
    if (policy == MissingPolicy::Error) {
        throw InputError(summary + "\n" + places +
                         "Fill them in, or choose with --missing what becomes of them.");
    }
    const std::size_t rows = matrix.report.rows;
    treat_missing(options.matrix, policy, missing, matrix, labels);
    if (!options.missing) {
        complain("warning: " + summary + ", and read as 0\n" + places +
                 "--missing can also fill in means (row-mean, column-mean), leave such rows out "
                 "(drop), or refuse them (error).");
        return;
    }
    print_info(one_line_utf8(summary + ": " + treatment(policy, rows, matrix.report.rows)));
    if (policy == MissingPolicy::Drop) {
        check_row_count(options.matrix + ", without the rows that lack values", matrix.report.rows);
    }
}

}  // namespace

InspectedMatrix load_matrix(const Options& options, std::vector<std::string>& labels) {
    const char delimiter = options.delimiter ? *options.delimiter : guess_delimiter(options.matrix);
    if (!options.force) {
        check_memory_of_reading(options.matrix, delimiter, available_memory());
    }
    InspectedMatrix matrix = inspect_matrix(options.matrix, delimiter);
    check_matrix(options.matrix, delimiter, matrix.report);
    for (const std::string& warning : matrix_warnings(options.matrix, matrix.report)) {
        complain("warning: " + warning);
    }
    if (!options.labels_file.empty()) {
        labels = read_labels(options.labels_file, matrix.report.rows);
    }
    settle_missing(options, matrix, labels);
    check_values(options.matrix, matrix);
    return matrix;
}

}  // namespace ovik::tool
