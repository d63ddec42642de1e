#pragma once

#include <vector>

#include "golden/golden_parts.h"
#include "tools/exit_status.h"

namespace ovik::tool {

/// Computes parts of the engine with portable numerics, holds them against the digests that they
/// have on every machine, and tells of each whether it is equal.
///
/// @return `Success`, or `Different` if a part differs, which standard error then says, too
ExitStatus show_self_test(const std::vector<golden::Part>& parts,
                          const std::vector<golden::ExpectedPart>& expected);

}  // namespace ovik::tool
