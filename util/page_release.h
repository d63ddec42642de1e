#pragma once

#include <cstddef>

namespace ovik {

/// Gives the memory of a block from `malloc` back to the system, but for the pages that it shares
/// with its neighbours, before the block is freed. What it held is lost.
void release_pages(void* block, std::size_t bytes);

}  // namespace ovik
