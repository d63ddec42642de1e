#include "tools/constant_rows.h"

#include <algorithm>
#include <string>
#include <vector>

#include "input/matrix_checks.h"
#include "input/row_removal.h"
#include "stats/row_metric.h"
#include "util/console.h"
#include "util/counted.h"
#include "util/plain_text.h"

namespace ovik::tool {

namespace {

RowWords words_of(const Options& options, const InspectedMatrix& matrix) {
    return {options.matrix == "-" ? "standard input" : options.matrix,
            matrix.row_names,
            matrix.row_lines};
}

MatrixView<const double> values_of(const InspectedMatrix& matrix) {
    return {matrix.values.get(), matrix.report.rows, matrix.report.columns};
}

void drop_constant_rows(LoadedMatrix& loaded, const Options& options) {
    InspectedMatrix& matrix = loaded.matrix;
    const std::vector<std::size_t> rows =
        rows_without_direction(values_of(matrix), options.fit.metric);
    if (rows.empty()) {
        return;
    }
    const RowWords words = words_of(options, matrix);
    std::string text = words.source + ": " + counted(rows.size(), "row", "rows") +
                       " without variation left out: " + listed_rows(rows, words);
    leave_rows_out(
        [&rows](std::size_t row) { return std::binary_search(rows.begin(), rows.end(), row); },
        matrix,
        loaded.labels);
    text += "; " + std::to_string(matrix.report.rows) + " remain";
    print_info(one_line_utf8(text));
    const std::string remaining = words.source + ", without the rows that do not vary";
    if (options.onto.empty()) {
        check_row_count(remaining, matrix.report.rows);
    } else {
        check_row_count(remaining, matrix.report.rows, 1);
    }
}

}  // namespace

void settle_constant_rows(LoadedMatrix& loaded, const Options& options) {
    if (!compares_directions(options.fit.metric)) {
        return;
    }
    if (options.drops_constant_rows) {
        drop_constant_rows(loaded, options);
    }
    const RowWords words = words_of(options, loaded.matrix);
    if (options.onto.empty()) {
        check_rows(values_of(loaded.matrix),
                   options.fit.metric,
                   words,
                   "Leave such rows out (--constant-rows drop), or compare the rows by --metric "
                   "euclidean.");
    } else {
        check_directions(values_of(loaded.matrix),
                         options.fit.metric,
                         words,
                         "Leave such rows out (--constant-rows drop), or place them on a map that "
                         "is made by --metric euclidean.");
    }
}

}  // namespace ovik::tool
