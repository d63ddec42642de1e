#include "input/inspected_matrix.h"

#include <cmath>
#include <string_view>
#include <unordered_set>

namespace ovik {

namespace {

constexpr std::size_t kListed = 3;

}  // namespace

void note_duplicate_names(InspectedMatrix& matrix) {
    MatrixReport& report = matrix.report;
    std::unordered_set<std::string_view> names;
    for (const std::string& name : matrix.row_names) {
        if (!name.empty() && !names.insert(name).second) {
            ++report.duplicate_names;
            if (report.first_duplicate_names.size() < kListed) {
                report.first_duplicate_names.push_back(name);
            }
        }
    }
}

void note_infinite_values(InspectedMatrix& matrix) {
    MatrixReport& report = matrix.report;
    const double* value = matrix.values.get();
    if (value == nullptr) {
        return;
    }
    for (std::size_t n = 0; n < report.rows; ++n) {
        for (std::size_t d = 0; d < report.columns; ++d, ++value) {
            if (std::isinf(*value) && report.not_finite.count++ < FieldFindings::kListed) {
                report.not_finite.places.push_back(
                    {0, std::to_string(n + 1), d + 1, *value > 0 ? "inf" : "-inf"});
            }
        }
    }
}

}  // namespace ovik
