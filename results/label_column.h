#pragma once

#include <string>
#include <vector>

namespace ovik {

/// One way to tell the rows of a run apart: a label for each.
struct LabelColumn {
    /// What the column is called; any bytes.
    std::string title;
    /// One per row; empty for a row without a label.
    std::vector<std::string> texts;
    /// The labels as numbers, NaN for a row without; empty unless all labels are numbers.
    std::vector<double> numbers;

    /// Whether the labels are a quantity, not groups.
    [[nodiscard]] bool isNumeric() const { return !numbers.empty(); }
};

}  // namespace ovik
