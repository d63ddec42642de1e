#include "stats/panels.h"

#include <algorithm>

#include "util/malloc_array.h"

namespace ovik {

namespace {

/// Calls `body(panel, row_count, copy)` for every panel, with a copy of it as it stands.
template <typename Body>
void rewrite_panels(double* matrix, std::size_t point_count, const Body& body) {
    const std::size_t panel_size = kPanelWidth * point_count;
    const std::size_t panels = panel_count(point_count);
    const auto copies =
        malloc_array<double>(static_cast<std::size_t>(worker_count(panels)) * panel_size);
    require_allocated(copies);
    parallel_for(panels, 1, [&](std::size_t worker, IndexRange range) {
        double* const copy = copies.get() + worker * panel_size;
        for (std::size_t i = range.begin; i < range.end; ++i) {
            double* const panel = matrix + i * panel_size;
            const std::size_t rows = std::min(kPanelWidth, point_count - i * kPanelWidth);
            std::copy_n(panel, panel_size, copy);
            body(panel, rows, copy);
        }
    });
}

}  // namespace

void rows_to_panels(double* matrix, std::size_t point_count) {
    // The rows that pad the last panel are zero.
    std::fill(matrix + point_count * point_count, matrix + panel_matrix_size(point_count), 0.0);
    rewrite_panels(matrix, point_count, [=](double* panel, std::size_t rows, const double* copy) {
        std::fill_n(panel, kPanelWidth * point_count, 0.0);
        for (std::size_t n = 0; n < rows; ++n) {
            for (std::size_t m = 0; m < point_count; ++m) {
                panel[m * kPanelWidth + n] = copy[n * point_count + m];
            }
        }
    });
}

void panels_to_rows(double* matrix, std::size_t point_count) {
    rewrite_panels(matrix, point_count, [=](double* panel, std::size_t rows, const double* copy) {
        for (std::size_t n = 0; n < rows; ++n) {
            for (std::size_t m = 0; m < point_count; ++m) {
                panel[n * point_count + m] = copy[m * kPanelWidth + n];
            }
        }
    });
}

}  // namespace ovik
