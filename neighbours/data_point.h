#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

namespace ovik {

/// One point of a neighbour index: its row number and its own copy of its coordinates.
///
/// Copies are deep. A point that was moved from may only be assigned to or destroyed.
template <typename T>
struct DataPoint {
    /// Row number in the input; -1 for a prototype.
    std::int32_t index = -1;
    /// `dimension` values in a `malloc` block, owned; null when the dimension is 0.
    T* coordinates = nullptr;
    std::int32_t dimension = 0;

    DataPoint() = default;

    /// Copies `dimension` values from `source`.
    ///
    /// @throws std::bad_alloc if memory is exhausted
    DataPoint(std::int32_t dimension, std::int32_t index, const T* source)
        : index(index),
          coordinates(copyOf(source, dimension)),
          dimension(dimension) {}

    DataPoint(const DataPoint& other)
        : DataPoint(other.dimension, other.index, other.coordinates) {}

    DataPoint(DataPoint&& other) noexcept
        : index(other.index),
          coordinates(std::exchange(other.coordinates, nullptr)),
          dimension(std::exchange(other.dimension, 0)) {}

    DataPoint& operator=(const DataPoint& other) {
        if (this != &other) {
            *this = DataPoint(other);
        }
        return *this;
    }

    DataPoint& operator=(DataPoint&& other) noexcept {
        std::swap(index, other.index);
        std::swap(coordinates, other.coordinates);
        std::swap(dimension, other.dimension);
        return *this;
    }

    ~DataPoint() { std::free(coordinates); }

  private:
    static T* copyOf(const T* source, std::int32_t count) {
        if (count <= 0) {
            return nullptr;
        }
        const auto size = static_cast<std::size_t>(count);
        auto* const block = static_cast<T*>(std::malloc(size * sizeof(T)));
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        std::copy_n(source, size, block);
        return block;
    }
};

}  // namespace ovik
