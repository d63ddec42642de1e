#include "stats/chosen_affinities.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "stats/method.h"
#include "stats/numerics.h"

namespace ovik {

namespace {

bool is_uniform(const FitOptions& options) {
    return options.affinity == AffinityKind::Uniform;
}

}  // namespace

std::vector<double> perplexities_of(const FitOptions& options) {
    if (is_uniform(options)) {
        return {};
    }
    return options.multiscale.empty()
               ? std::vector<double>{options.perplexity}
               : std::vector<double>(options.multiscale.begin(), options.multiscale.end());
}

int affinity_neighbours(const FitOptions& options, std::size_t N) {
    if (is_uniform(options)) {
        return static_cast<int>(std::min(static_cast<std::size_t>(std::max(options.neighbours, 0)),
                                         std::max<std::size_t>(N, 1) - 1));
    }
    const std::vector<double> perplexities = perplexities_of(options);
    return neighbour_count(*std::max_element(perplexities.begin(), perplexities.end()), N);
}

std::unique_ptr<RowAffinities> chosen_rows(const FitOptions& options, std::size_t N) {
    if (is_uniform(options)) {
        return std::make_unique<UniformRows>();
    }
    std::vector<AffinityScale> scales;
    for (const double perplexity : perplexities_of(options)) {
        scales.push_back(
            {perplexity, static_cast<std::size_t>(std::max(neighbour_count(perplexity, N), 0))});
    }
    return std::make_unique<CalibratedRows>(std::move(scales), elementary_of(options.numerics));
}

DenseRow chosen_dense_row(const FitOptions& options) {
    return is_uniform(options)
               ? uniform_row(static_cast<std::size_t>(std::max(options.neighbours, 0)))
               : calibrated_row(perplexities_of(options), elementary_of(options.numerics));
}

}  // namespace ovik
