#pragma once

#include <cstddef>

#include "util/huge_pages.h"
#include "util/malloc_array.h"

namespace ovik {

/// An array for work that asks for another size now and then: it only grows.
template <typename T>
class WorkArray {
  public:
    /// Makes room for `count` elements; what the array held is lost if that takes another one.
    ///
    /// @throws WorkMemoryError
    void reserve(std::size_t count) {
        if (count <= capacity_ && values_ != nullptr) {
            return;
        }
        values_.reset();
        capacity_ = 0;
        values_ = malloc_array<T>(count);
        require_allocated(values_);
        prefer_huge_pages(values_.get(), count * sizeof(T));
        capacity_ = count;
    }

    [[nodiscard]] T* get() { return values_.get(); }

    [[nodiscard]] const T* get() const { return values_.get(); }

  private:
    MallocArray<T> values_;
    std::size_t capacity_ = 0;
};

}  // namespace ovik
