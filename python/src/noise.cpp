#include "python/src/noise.h"

#include <stdexcept>
#include <vector>

#include "stats/noise_fits.h"
#include "stats/row_concentration.h"
#include "stats/row_reliability.h"

namespace ovik::python {

RowReliability compare_with_noise(MatrixView<const double> points,
                                  RowFits fits,
                                  const FitOptions& options,
                                  std::size_t neighbours,
                                  std::size_t count,
                                  const std::atomic<bool>& is_interrupted) {
    check_shuffles(points, options, count);
    NoiseManner manner;
    manner.neighbours = neighbours;
    manner.goes_on = [&is_interrupted] { return !is_interrupted; };
    const std::vector<RowFits> maps = noise_fits(points, options, count, manner);
    if (maps.empty()) {
        throw std::runtime_error("interrupted");
    }
    fits.concentration = row_concentrations(points);
    RowReliability compared;
    add_chances(compared, fits, ovik::compare_with_noise(fits, maps));
    return compared;
}

}  // namespace ovik::python
