#pragma once

#include <cstdlib>
#include <memory>

namespace ovik {

struct FreeDeleter {
    void operator()(void* block) const noexcept { std::free(block); }
};

/// An array from `malloc` or `calloc`, released with `free`.
template <typename T>
using MallocArray = std::unique_ptr<T[], FreeDeleter>;

}  // namespace ovik
