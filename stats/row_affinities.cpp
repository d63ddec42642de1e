#include "stats/row_affinities.h"

#include <algorithm>
#include <utility>

#include "stats/bandwidth_search.h"

namespace ovik {

namespace {

constexpr int kBandwidthAttempts = 200;

}  // namespace

CalibratedRows::CalibratedRows(std::vector<AffinityScale> scales, const Elementary& elementary)
    : scales_(std::move(scales)),
      elementary_(elementary) {}

void CalibratedRows::prepare(std::size_t worker_count, std::size_t most) {
    scratch_.assign(worker_count,
                    {std::vector<double>(most),
                     std::vector<double>(scales_.size() > 1 ? most : 0),
                     std::vector<double>(scales_.size(), 1.0)});
}

void CalibratedRows::fill(std::span<const NearRow> others, double* affinities, std::size_t worker) {
    Scratch& scratch = scratch_[worker];
    for (std::size_t m = 0; m < others.size(); ++m) {
        scratch.squared_distances[m] = others[m].distance * others[m].distance;
    }
    if (scales_.size() == 1) {
        return calibrate(0, others, affinities, scratch);
    }
    std::fill_n(affinities, others.size(), 0.0);
    for (std::size_t s = 0; s < scales_.size(); ++s) {
        const std::size_t count = std::min(others.size(), scales_[s].neighbours);
        calibrate(s, others.first(count), scratch.of_scale.data(), scratch);
        for (std::size_t m = 0; m < count; ++m) {
            affinities[m] += scratch.of_scale[m];
        }
    }
    const double share = 1.0 / static_cast<double>(scales_.size());
    for (std::size_t m = 0; m < others.size(); ++m) {
        affinities[m] *= share;
    }
}

void CalibratedRows::calibrate(std::size_t scale,
                               std::span<const NearRow> others,
                               double* affinities,
                               Scratch& scratch) const {
    const std::size_t count = others.size();
    const auto fill = [&](double beta) {
        for (std::size_t m = 0; m < count; ++m) {
            const double distance = others[m].distance;
            affinities[m] = ((-beta) * distance) * distance;
        }
        elementary_.exponentials(affinities, count);
    };
    const CalibratedPoints points{{scratch.squared_distances.data(), count}, affinities, count};
    double& guess = scratch.guesses[scale];
    guess = calibrate_similarities(
        points, scales_[scale].perplexity, kBandwidthAttempts, guess, elementary_.log, fill);
}

void UniformRows::prepare(std::size_t /*worker_count*/, std::size_t /*most*/) {}

void UniformRows::fill(std::span<const NearRow> others,
                       double* affinities,
                       std::size_t /*worker*/) {
    std::fill_n(affinities, others.size(), 1.0 / static_cast<double>(others.size()));
}

}  // namespace ovik
