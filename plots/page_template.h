#pragma once

#include <string_view>

namespace ovik {

/// The page without a chart, built from `plots/page/`: `{{page-title}}` stands for the title and,
/// behind it, `{{chart-data}}` for the data.
std::string_view page_template();

/// The page without runs to compare, built there too: `{{page-title}}`, `{{comparison-head}}`,
/// `{{comparison-runs}}`, `{{comparison-numbers}}` and `{{comparison-data}}`, in this order.
std::string_view comparison_template();

}  // namespace ovik
