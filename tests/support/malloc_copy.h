#pragma once

#include <algorithm>
#include <vector>

#include "util/malloc_array.h"

namespace ovik::test {

/// A block of its own with the same elements.
template <typename Number>
MallocArray<Number> malloc_copy(const std::vector<Number>& values) {
    MallocArray<Number> copy = malloc_array<Number>(values.size());
    std::copy(values.begin(), values.end(), copy.get());
    return copy;
}

}  // namespace ovik::test
