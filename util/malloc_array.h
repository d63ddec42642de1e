#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "util/malloc_pointer.h"
#include "util/work_memory_error.h"

/// Work arrays from `malloc` and `calloc`, and the one way in which running out of them fails.

namespace ovik {

/// Most elements of T that an array can have: their bytes, and differences of pointers, have to
/// fit.
template <typename T>
constexpr std::size_t kLargestCount = static_cast<std::size_t>(PTRDIFF_MAX) / sizeof(T);

/// `count` elements, not initialised; null only if the memory could not be had, also for count 0.
template <typename T>
[[nodiscard]] MallocArray<T> malloc_array(std::size_t count) {
    if (count > kLargestCount<T>) {
        return nullptr;
    }
    return MallocArray<T>(static_cast<T*>(std::malloc((count == 0 ? 1 : count) * sizeof(T))));
}

/// `count` zeroed elements; null only if the memory could not be had, also for count 0.
template <typename T>
[[nodiscard]] MallocArray<T> calloc_array(std::size_t count) {
    if (count > kLargestCount<T>) {
        return nullptr;
    }
    return MallocArray<T>(static_cast<T*>(std::calloc(count == 0 ? 1 : count, sizeof(T))));
}

/// @throws WorkMemoryError if one of the arrays is null
template <typename... Arrays>
void require_allocated(const Arrays&... arrays) {
    if ((... || (arrays == nullptr))) {
        throw WorkMemoryError();
    }
}

}  // namespace ovik
