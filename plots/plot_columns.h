#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "util/parallel.h"

namespace ovik {

/// The coordinates of a result table column by column, and what they span.
template <typename T>
struct PlotColumns {
    std::vector<T> x;
    std::vector<T> y;
    /// Minimum x, maximum x, minimum y, maximum y over all rows, from the first row on with strict
    /// comparisons; zeros without rows.
    std::vector<T> bounds;

    explicit PlotColumns(const std::vector<std::array<T, 2>>& coordinates)
        : x(coordinates.size()),
          y(coordinates.size()),
          bounds(4) {
        parallel_for_each(coordinates.size(), kFewestRows, [&](std::size_t row) {
            x[row] = coordinates[row][0];
            y[row] = coordinates[row][1];
        });
        span(x, bounds[0], bounds[1]);
        span(y, bounds[2], bounds[3]);
    }

  private:
    /// Fewest rows for which another thread pays.
    static constexpr std::size_t kFewestRows = 2048;

    static void span(const std::vector<T>& values, T& minimum, T& maximum) {
        if (values.empty()) {
            return;
        }
        minimum = maximum = values.front();
        for (const T value : values) {
            minimum = value < minimum ? value : minimum;
            maximum = value > maximum ? value : maximum;
        }
    }
};

}  // namespace ovik
