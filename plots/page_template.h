#pragma once

#include <string_view>

namespace ovik {

/// The page without a chart, built from `plots/page/`: `{{page-title}}` stands for the title and,
/// behind it, `{{chart-data}}` for the data.
std::string_view page_template();

}  // namespace ovik
