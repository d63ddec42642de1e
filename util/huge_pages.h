#pragma once

#include <cstddef>

namespace ovik {

/// Asks the system for huge pages in a block that large loops read from start to end: the processor
/// then finds its addresses at once, and the system hands it over in few pieces. Without effect on
/// blocks of less than a huge page, and where the system has none.
///
/// @param block  not yet written, of `bytes` bytes
void prefer_huge_pages(void* block, std::size_t bytes);

}  // namespace ovik
