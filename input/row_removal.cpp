#include "input/row_removal.h"

#include <algorithm>
#include <utility>

namespace ovik {

void leave_rows_out(const std::function<bool(std::size_t row)>& is_left_out,
                    InspectedMatrix& matrix,
                    std::vector<std::string>& labels) {
    const std::size_t columns = matrix.report.columns;
    std::size_t kept = 0;
    for (std::size_t n = 0; n < matrix.report.rows; ++n) {
        if (is_left_out(n)) {
            continue;
        }
        if (kept < n) {
            double* const values = matrix.values.get();
            std::copy_n(values + n * columns, columns, values + kept * columns);
            matrix.row_names[kept] = std::move(matrix.row_names[n]);
            matrix.row_lines[kept] = matrix.row_lines[n];
            if (!labels.empty()) {
                labels[kept] = std::move(labels[n]);
            }
        }
        ++kept;
    }
    matrix.report.rows = kept;
    matrix.row_names.resize(kept);
    matrix.row_lines.resize(kept);
    labels.resize(std::min(labels.size(), kept));
}

}  // namespace ovik
