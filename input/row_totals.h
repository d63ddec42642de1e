#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "util/api.h"

namespace ovik {

/// What the values of each row are scaled to add up to.
struct RowTotal {
    /// 0 for the median of the totals that are above 0.
    double number = 0.0;

    [[nodiscard]] bool isMedian() const { return number == 0.0; }
};

/// "median", or a number above 0; nothing for other texts.
OVIK_API std::optional<RowTotal> row_total_of(std::string_view text);

/// The text that `row_total_of` takes.
std::string text_of(const RowTotal& total);

/// How rows come to a common total.
struct RowScaling {
    /// What the rows add up to.
    double total = 0.0;
    /// What the values of each row are multiplied by; 1 for a row without counts.
    std::vector<double> factors;
    /// Rows without counts, which stay so.
    std::size_t empty_rows = 0;
};

/// @param totals  of the rows; finite, not negative
RowScaling row_scaling(const std::vector<double>& totals, const RowTotal& wanted);

/// What was done, for a sentence: "; the total is 3421, and 2 rows without counts stay as they
/// are".
std::string scaling_text(const RowScaling& scaling);

}  // namespace ovik
