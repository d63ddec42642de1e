#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "neighbours/kernels/candidate_kernels.h"
#include "neighbours/value_bounds.h"

namespace ovik {

/// Rows in blocks have at most as many, so that two packed blocks stay in a core's cache.
constexpr std::size_t kMostBlockRows = 128;

/// The share of the squared norms A^2 + B^2 of two packed rows by which what the kernels compute of
/// the square of their distance may be wrong.
double packing_error_share(std::size_t dims);

/// Above this error share candidates would be many, and the bounds need not hold.
constexpr double kLargestErrorShare = 0.001;

/// Some rows packed relative to a frame, to be sources or targets.
class PackedBlock {
  public:
    /// @param kernels  of the metric
    /// @param rows     at most kMostBlockRows, not none
    /// @param first    the position that candidates are known by for the first row; those of the
    ///                 others follow
    void pack(const CandidateKernels& kernels,
              const double* points,
              std::size_t dims,
              std::span<const std::uint32_t> rows,
              const Frame& frame,
              std::uint32_t first);

    [[nodiscard]] std::size_t count() const { return count_; }

    [[nodiscard]] PackedRows view() const { return {packed_.data(), starts_.data(), stride_}; }

    /// The squared norm of row i of the block, relative to the frame.
    [[nodiscard]] double squaredNorm(std::size_t i) const { return squared_norms_[i]; }

  private:
    friend class CandidateBlock;

    std::size_t count_ = 0;
    std::size_t stride_ = 0;
    std::uint32_t first_ = 0;
    std::vector<float> packed_;
    std::vector<float> starts_;
    std::vector<double> squared_norms_;
};

/// Some targets, each with the rows that may be among its nearest, of all that were offered: those
/// are certain to be among the candidates, with few others. Targets and sources have to be packed
/// relative to one frame.
class CandidateBlock {
  public:
    /// Begins with targets that have no candidates; every row may be one.
    ///
    /// @param kernels  of the metric; has to outlive the object
    /// @param targets  have to outlive the search for their candidates
    /// @param wanted   how many of the nearest are wanted, at least 1
    void begin(const CandidateKernels& kernels,
               const PackedBlock& targets,
               std::size_t dims,
               std::size_t wanted);

    /// Rows farther away than this are no candidates of a target.
    ///
    /// @param squared  the square of the distance times the frame's scale
    void admit(std::size_t target, double squared);

    /// Offers sources to all targets.
    ///
    /// @param take_all  is called with a target of which more candidates than there is room for are
    ///                  too near one another to be told apart; it has to call `clear` or `giveUp`
    template <typename TakeAll>
    void offer(const PackedBlock& sources, const TakeAll& take_all) {
        collect(sources);
        for (std::size_t t = 0; t < targets_->count(); ++t) {
            if (!hasRoom(t)) {
                take_all(t);
            }
        }
    }

    /// Drops candidates that others have shown not to be among the nearest.
    void tighten(std::size_t target);

    /// Drops all candidates of a target.
    void clear(std::size_t target) { candidates_[target].count = 0; }

    /// Drops all candidates of a target, which gets none any more.
    void giveUp(std::size_t target);

    /// The positions of the candidates of a target.
    [[nodiscard]] std::span<const std::uint32_t> positions(std::size_t target) const {
        return {candidates_[target].positions, candidates_[target].count};
    }

    /// No row is a candidate of any target whose squared scaled distance is above this.
    [[nodiscard]] double farthestSquare() const;

  private:
    void collect(const PackedBlock& sources);
    bool hasRoom(std::size_t target);
    [[nodiscard]] ValueBounds boundsOf(std::size_t target) const;
    void lower(std::size_t target, double bound);

    const CandidateKernels* kernels_ = nullptr;
    const PackedBlock* targets_ = nullptr;
    std::size_t dims_ = 0;
    std::size_t wanted_ = 0;
    double error_share_ = 0.0;
    std::vector<float> values_;
    std::vector<std::uint32_t> positions_;
    std::vector<Candidates> candidates_;
    /// For each target, above the square of the scaled distance of the last that is wanted.
    std::vector<double> bounds_;
};

}  // namespace ovik
