#pragma once

#include <cstddef>
#include <functional>

namespace ovik {

/// Is told how far a search is: `done` of `total` steps of about the same length. Is called by one
/// thread at a time, not always the same; an exception ends the search and reaches its caller.
using OnProgress = std::function<void(std::size_t done, std::size_t total)>;

}  // namespace ovik
