#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Labels that are numbers, and labels that say that there is none; as the chart page has them.

namespace ovik {

/// Whether a label says that a gene belongs to none of the others: "other", "none", "NA" and
/// "unknown" in any letter case, and the empty one.
bool says_none(std::string_view label);

/// The number that a label is; none if it is no decimal number.
std::optional<double> number_of_label(std::string_view label);

/// The quantities that labels are, NaN for labels that say none.
///
/// @return empty if one is no number, or the numbers are names of groups: whole, and few or counted
/// up
std::vector<double> quantities_of(std::span<const std::string> labels);

}  // namespace ovik
