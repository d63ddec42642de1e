#pragma once

#include <cstddef>

#include "input/matrix_source.h"
#include "input/table_layout.h"
#include "stats/memory_estimate.h"
#include "util/available_memory.h"
#include "util/memory_text.h"

namespace ovik::tool {

using ovik::memory_text;

/// Refuses a run that cannot fit.
///
/// @param size       of the run
/// @param available  what this process can still get, beside what it has
/// @throws InputError with both figures and what makes the run smaller
void check_memory(const RunSize& size, const AvailableMemory& available);

/// How many fits of several seeds, or of other maps, may run side by side in the memory that there
/// is: 0 for as many as there are threads, else 1.
std::size_t seeds_at_once(const RunSize& size, const AvailableMemory& available);

/// Refuses to read a file whose values cannot fit, where its size is known beforehand.
///
/// @param source  the matrix, whose rows are taken to be as long as the first few
void check_memory_of_reading(const MatrixSource& source,
                             const TableLayout& layout,
                             const AvailableMemory& available);

}  // namespace ovik::tool
