#pragma once

#include <cstddef>
#include <span>
#include <type_traits>

namespace ovik {

/// A matrix that is owned elsewhere, row-major, `rows` x `columns`: row n lies in the places from
/// n * columns. A `MatrixView<const double>` is one whose values are only read.
template <typename T>
struct MatrixView {
    T* values = nullptr;
    std::size_t rows = 0;
    std::size_t columns = 0;

    /// How many values there are in all.
    [[nodiscard]] constexpr std::size_t size() const { return rows * columns; }

    /// The `columns` values of row n, which is below `rows`.
    [[nodiscard]] constexpr std::span<T> row(std::size_t n) const {
        return {values + n * columns, columns};
    }

    /// All values, row after row.
    [[nodiscard]] constexpr std::span<T> all() const { return {values, size()}; }

    /// The same matrix, to be read only.
    // NOLINTNEXTLINE(google-explicit-constructor): as pointers convert
    operator MatrixView<const T>() const requires(!std::is_const_v<T>) {
        return {values, rows, columns};
    }
};

}  // namespace ovik
