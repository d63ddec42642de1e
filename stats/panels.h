#pragma once

#include <cstddef>

#include "stats/kernels/pair_kernels.h"
#include "util/parallel.h"

/// Square matrices by panels of `kPanelWidth` rows: the entries of a panel are stored column after
/// column, so that rows can be treated side by side.

namespace ovik {

/// Elements of a matrix by panels; the last panel is padded with rows of zeros.
constexpr std::size_t panel_matrix_size(std::size_t point_count) {
    return padded_to_panels(point_count) * point_count;
}

/// Brings a row-major matrix into panels, in place.
///
/// @param matrix  room for panel_matrix_size(point_count) elements
/// Ends the process with "Memory allocation failed!" if a panel per thread does not fit in memory.
void rows_to_panels(double* matrix, std::size_t point_count);

/// Undoes `rows_to_panels`.
void panels_to_rows(double* matrix, std::size_t point_count);

/// How many workers loops over panels of pairs get.
inline std::size_t panel_worker_count(std::size_t point_count) {
    // Panels for which another thread pays.
    constexpr std::size_t kGrain = 8;
    return static_cast<std::size_t>(
        worker_count(padded_to_panels(point_count) / kPanelWidth, kGrain));
}

/// Calls `body(panel)` for the panels of one worker: one from the front for one from the back,
/// since the work of a panel may grow or shrink from one to the next.
template <typename Body>
void for_panels_of(std::size_t worker,
                   std::size_t workers,
                   std::size_t point_count,
                   const Body& body) {
    const std::size_t panels = padded_to_panels(point_count) / kPanelWidth;
    const IndexRange share = static_share((panels + 1) / 2, workers, worker);
    for (std::size_t panel = share.begin; panel < share.end; ++panel) {
        body(panel);
        const std::size_t opposite = panels - 1 - panel;
        if (opposite != panel) {
            body(opposite);
        }
    }
}

}  // namespace ovik
