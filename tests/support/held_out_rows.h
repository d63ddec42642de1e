#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "stats/fit.h"
#include "stats/row_placement.h"

#include "tests/plain/plain_tsne.h"

namespace ovik::test {

/// How far held-out genes lie from the ten that are nearest to them on the map of all genes: the
/// mean over these and over the genes, for places found in several ways.
struct HeldOutDistances {
    double placed = 0.0;
    /// The cheapest of the places from which each may set out.
    double start = 0.0;
    /// The mean of the places of the ten rows that are nearest in the input.
    double mean_of_nearest = 0.0;
};

/// A bundled matrix of which every tenth gene is held out.
class HeldOutGenes {
  public:
    HeldOutGenes(const std::string& file, std::size_t most_rows)
        : all_(plain::read_tab_separated(std::string(OVIK_DATA_DIR "/") + file, most_rows)) {
        for (std::size_t n = 0; n < all_.rows; ++n) {
            (n % 10 == 9 ? held_out_ : kept_).push_back(n);
        }
    }

    [[nodiscard]] HeldOutDistances measure(double perplexity, int max_iter) const {
        FitOptions options;
        options.perplexity = perplexity;
        options.max_iter = max_iter;
        std::vector<double> X = all_.values;
        const Fit whole = fit({X.data(), all_.rows, all_.columns}, options);
        std::vector<double> input = valuesOf(kept_);
        const Fit map = fit({input.data(), kept_.size(), all_.columns}, options);
        const FinishedMap finished{{input.data(), kept_.size(), all_.columns},
                                   map.report.scale,
                                   {map.embedding.data(), kept_.size(), 2},
                                   perplexity};
        const std::vector<double> rows = valuesOf(held_out_);
        const MatrixView<const double> view{rows.data(), held_out_.size(), all_.columns};
        PlacementDescent none;
        none.iterations = 0;
        return {meanDistance(whole.embedding, map.embedding, place_rows(finished, view).embedding),
                meanDistance(
                    whole.embedding, map.embedding, place_rows(finished, view, none).embedding),
                meanDistance(whole.embedding, map.embedding, meansOfNearest(map.embedding))};
    }

  private:
    static constexpr std::size_t kNeighbours = 10;

    [[nodiscard]] std::vector<double> valuesOf(const std::vector<std::size_t>& rows) const {
        std::vector<double> values;
        for (const std::size_t n : rows) {
            const auto begin = all_.values.begin() + static_cast<std::ptrdiff_t>(n * all_.columns);
            values.insert(values.end(), begin, begin + static_cast<std::ptrdiff_t>(all_.columns));
        }
        return values;
    }

    /// The kept rows nearest to a held-out one, as positions among the kept.
    [[nodiscard]] std::vector<std::size_t> nearestKept(const std::vector<double>& values,
                                                       std::size_t columns,
                                                       std::size_t held_out) const {
        std::vector<std::pair<double, std::size_t>> distances;
        for (std::size_t i = 0; i < kept_.size(); ++i) {
            double sum = 0.0;
            for (std::size_t d = 0; d < columns; ++d) {
                const double difference =
                    values[held_out * columns + d] - values[kept_[i] * columns + d];
                sum += difference * difference;
            }
            distances.emplace_back(sum, i);
        }
        std::partial_sort(distances.begin(), distances.begin() + kNeighbours, distances.end());
        std::vector<std::size_t> nearest;
        for (std::size_t m = 0; m < kNeighbours; ++m) {
            nearest.push_back(distances[m].second);
        }
        return nearest;
    }

    [[nodiscard]] std::vector<double> meansOfNearest(const std::vector<double>& map) const {
        std::vector<double> places(2 * held_out_.size(), 0.0);
        for (std::size_t h = 0; h < held_out_.size(); ++h) {
            for (const std::size_t i : nearestKept(all_.values, all_.columns, held_out_[h])) {
                places[2 * h] += map[2 * i] / static_cast<double>(kNeighbours);
                places[2 * h + 1] += map[2 * i + 1] / static_cast<double>(kNeighbours);
            }
        }
        return places;
    }

    [[nodiscard]] double meanDistance(const std::vector<double>& whole,
                                      const std::vector<double>& map,
                                      const std::vector<double>& places) const {
        double sum = 0.0;
        for (std::size_t h = 0; h < held_out_.size(); ++h) {
            for (const std::size_t i : nearestKept(whole, 2, held_out_[h])) {
                sum += std::hypot(places[2 * h] - map[2 * i], places[2 * h + 1] - map[2 * i + 1]);
            }
        }
        return sum / static_cast<double>(kNeighbours * held_out_.size());
    }

    plain::Matrix all_;
    std::vector<std::size_t> kept_;
    std::vector<std::size_t> held_out_;
};

}  // namespace ovik::test
