#pragma once

#include <cstddef>
#include <span>
#include <type_traits>

namespace ovik {

/// A row-major matrix, rows x columns, that is owned elsewhere.
template <typename T>
struct MatrixView {
    T* values = nullptr;
    std::size_t rows = 0;
    std::size_t columns = 0;

    [[nodiscard]] std::size_t size() const { return rows * columns; }

    [[nodiscard]] std::span<T> row(std::size_t n) const { return {values + n * columns, columns}; }

    /// All values, row after row.
    [[nodiscard]] std::span<T> all() const { return {values, size()}; }

    /// The same matrix, to be read only.
    // NOLINTNEXTLINE(google-explicit-constructor): as pointers convert
    operator MatrixView<const T>() const requires(!std::is_const_v<T>) {
        return {values, rows, columns};
    }
};

}  // namespace ovik
