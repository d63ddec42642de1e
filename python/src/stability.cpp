#include "python/src/stability.h"

#include <stdexcept>

#include "stats/map_stability.h"
#include "stats/varied_maps.h"

namespace ovik::python {

RecordedStability compare_with_others(MatrixView<const double> points,
                                      MatrixView<const double> map,
                                      const FitOptions& options,
                                      std::size_t count,
                                      std::span<const std::uint32_t> clusters,
                                      const std::atomic<bool>& is_interrupted) {
    VariationManner manner;
    manner.goes_on = [&is_interrupted] { return !is_interrupted; };
    const auto others = varied_maps(points, options, count, manner);
    if (!others) {
        throw std::runtime_error("interrupted");
    }
    return map_stability(map, others->of_seeds, others->of_columns, clusters);
}

}  // namespace ovik::python
