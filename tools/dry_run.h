#pragma once

#include <vector>

#include "stats/memory_estimate.h"
#include "util/available_memory.h"

#include "tools/options.h"

namespace ovik::tool {

/// Prints what runs would do: their size, method and memory, and the files that they would write.
///
/// @param size  of the largest run
void print_plan(const Options& options,
                const std::vector<double>& perplexities,
                const RunSize& size,
                const AvailableMemory& available);

}  // namespace ovik::tool
