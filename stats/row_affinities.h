#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "neighbours/near_row.h"
#include "util/elementary.h"

namespace ovik {

/// How the affinities of a point to its nearest neighbours follow from their distances.
class RowAffinities {
  public:
    RowAffinities() = default;
    RowAffinities(const RowAffinities&) = delete;
    RowAffinities& operator=(const RowAffinities&) = delete;
    virtual ~RowAffinities() = default;

    /// Makes room for workers that fill rows side by side; before the first row.
    ///
    /// @param most  neighbours that a row has
    virtual void prepare(std::size_t worker_count, std::size_t most) = 0;

    /// Writes the affinities of a point, which sum to 1 unless there are none.
    ///
    /// @param others      its neighbours, nearest first
    /// @param affinities  a value for each of them
    /// @param worker      below the number that was prepared for
    virtual void fill(std::span<const NearRow> others, double* affinities, std::size_t worker) = 0;
};

/// One of the perplexities that affinities are calibrated to.
struct AffinityScale {
    double perplexity;
    /// Only so many nearest neighbours have affinities above 0.
    std::size_t neighbours;
};

/// The affinities of a Gaussian that is calibrated to a perplexity (at most 200 attempts), or the
/// mean over Gaussians of several perplexities, each over neighbours of its own number: the sum, in
/// the order of the perplexities, times the reciprocal of their number.
///
/// @par Source Lee, Peluffo-Ordonez and Verleysen, "Multi-scale similarities in stochastic
/// neighbour embedding", Neurocomputing 169:246, 2015, for means over perplexities
class CalibratedRows final : public RowAffinities {
  public:
    /// @param scales  at least one
    CalibratedRows(std::vector<AffinityScale> scales, const Elementary& elementary);

    void prepare(std::size_t worker_count, std::size_t most) override;
    void fill(std::span<const NearRow> others, double* affinities, std::size_t worker) override;

  private:
    struct Scratch {
        std::vector<double> squared_distances;
        /// The affinities of one of several perplexities.
        std::vector<double> of_scale;
        /// For each perplexity the precision of the row before.
        std::vector<double> guesses;
    };

    void calibrate(std::size_t scale,
                   std::span<const NearRow> others,
                   double* affinities,
                   Scratch& scratch) const;

    std::vector<AffinityScale> scales_;
    const Elementary& elementary_;
    /// One for each worker.
    std::vector<Scratch> scratch_;
};

/// The same affinity to each neighbour: the reciprocal of their number.
class UniformRows final : public RowAffinities {
  public:
    void prepare(std::size_t worker_count, std::size_t most) override;
    void fill(std::span<const NearRow> others, double* affinities, std::size_t worker) override;
};

}  // namespace ovik
