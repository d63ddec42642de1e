#pragma once

#include <string>

#include "stats/memory_estimate.h"

#include "tools/available_memory.h"
#include "tools/options.h"

namespace ovik::tool {

/// Prints what a run would do: its size, method and memory, and the files that it would write.
///
/// @param base  path of table and plots without their extensions
void print_plan(const Options& options,
                const RunSize& size,
                const AvailableMemory& available,
                const std::string& base);

}  // namespace ovik::tool
