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
            if (!matrix.filled.empty()) {
                const auto marks = matrix.filled.begin();
                const auto row = marks + static_cast<std::ptrdiff_t>(n * columns);
                std::copy_n(row, columns, marks + static_cast<std::ptrdiff_t>(kept * columns));
            }
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
    matrix.filled.resize(std::min(matrix.filled.size(), kept * columns));
    labels.resize(std::min(labels.size(), kept));
}

}  // namespace ovik
