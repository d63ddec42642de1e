#pragma once

#include <functional>
#include <string>
#include <vector>

#include "golden/golden_parts.h"

namespace ovik::golden {

/// How a part compares with its digests.
struct PartOutcome {
    std::string name;
    /// The first stage that differs; empty if none does. Those behind it follow from it.
    std::string first_difference;
};

/// Computes parts and holds them against a list.
///
/// @param parts     of which each has digests in the list, or differs in its first stage
/// @param expected  the list
/// @param on_part   is told of each part when it has been computed; may be empty
/// @return of each part, in their order
std::vector<PartOutcome> compare_parts(const std::vector<Part>& parts,
                                       const std::vector<ExpectedPart>& expected,
                                       const std::function<void(const PartOutcome&)>& on_part = {});

/// How many of them differ.
std::size_t count_differences(const std::vector<PartOutcome>& outcomes);

}  // namespace ovik::golden
