#pragma once

#include <atomic>
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

/// Panels of as many rows.
constexpr std::size_t panel_count(std::size_t point_count) {
    return padded_to_panels(point_count) / kPanelWidth;
}

/// Brings a row-major matrix into panels, in place.
///
/// @param matrix  room for panel_matrix_size(point_count) elements
/// Throws WorkMemoryError if a panel per thread does not fit in memory.
void rows_to_panels(double* matrix, std::size_t point_count);

/// Brings a matrix that is stored by panels back into row-major order, in place.
void panels_to_rows(double* matrix, std::size_t point_count);

/// Fewest panels for which another thread pays.
constexpr std::size_t kPanelGrain = 8;

/// How many workers loops over panels of pairs get.
inline std::size_t panel_worker_count(std::size_t point_count) {
    return static_cast<std::size_t>(worker_count(panel_count(point_count), kPanelGrain));
}

/// The dynamic schedule of a loop over panels: a worker that is free takes the next panel, so that
/// a core that is busy with another program delays none of the others. For loops whose results do
/// not depend on which worker takes which panel.
class PanelQueue {
  public:
    explicit PanelQueue(std::size_t point_count) : panel_count_(panel_count(point_count)) {}

    /// Calls `body(panel)` for panels that nobody has taken, until none is left.
    template <typename Body>
    void work(const Body& body) {
        for (;;) {
            const std::size_t panel = next_.fetch_add(1, std::memory_order_relaxed);
            if (panel >= panel_count_) {
                return;
            }
            body(panel);
        }
    }

  private:
    std::size_t panel_count_;
    std::atomic<std::size_t> next_ = 0;
};

}  // namespace ovik
