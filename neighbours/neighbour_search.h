#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "neighbours/candidate_search.h"
#include "neighbours/metric.h"
#include "neighbours/neighbour_index.h"
#include "neighbours/neighbour_recall.h"
#include "neighbours/search_manner.h"
#include "util/random_stream.h"

namespace ovik {

class StageCount;

/// The nearest neighbours of all rows of a matrix, exactly those of the vantage-point tree in its
/// order, found by `CandidateSearch` where that is certain to be so. The tree is built for the
/// other rows alone, if there are any; random numbers are drawn for it in any case.
class NeighbourSearch {
  public:
    /// Is given a row, the rows that are nearest to it, nearest first, and the number of the worker
    /// that calls: below `workerCount()`. Workers call side by side.
    using Visit =
        std::function<void(std::size_t row, std::span<const NearRow> nearest, std::size_t worker)>;

    /// Draws what the tree will need from a stream.
    ///
    /// @param metric  with the triangle inequality; must outlive the search
    NeighbourSearch(std::size_t N,
                    std::size_t dims,
                    RandomStream& random,
                    const Metric& metric = euclidean_metric());

    /// How many workers there are at most.
    [[nodiscard]] std::size_t workerCount() const;

    [[nodiscard]] std::size_t rowCount() const { return N_; }

    /// What was drawn for the tree: searches with the same draws find the same.
    [[nodiscard]] const std::vector<int>& draws() const { return draws_; }

    /// Visits every row with its `count` nearest, itself among them; with fewer where there are not
    /// so many at a finite distance. An approximate search, or one with ties by row, visits each
    /// with itself first, and then others, of equally near ones the lower first.
    ///
    /// @param points  row-major, N x dims, the same in all calls
    /// @throws what the manner's `on_stage` throws
    void findAll(const double* points,
                 std::size_t count,
                 const Visit& visit,
                 const NeighbourSearchManner& manner = {});

    /// How many of the nearest the last `findAll` found; nothing if it was exact.
    [[nodiscard]] const std::optional<NeighbourRecall>& recall() const { return recall_; }

    /// Visits the rows that are not found yet, by the tree.
    ///
    /// @param is_found  for each row whether it is left out
    /// @param ties      as those of a manner
    /// @param on_stage  takes how far the search is, and may end it, as that of a manner
    /// @throws what `on_stage` throws
    void findOthers(const double* points,
                    std::size_t count,
                    const std::vector<char>& is_found,
                    const Visit& visit,
                    NeighbourTies ties,
                    const OnStage& on_stage = {});

  private:
    void findCertain(const double* points,
                     std::size_t count,
                     std::vector<char>& is_found,
                     const Visit& visit,
                     NeighbourTies ties,
                     StageCount& progress) const;
    void findByTree(const double* points,
                    std::size_t count,
                    const std::vector<char>& is_found,
                    const Visit& visit,
                    NeighbourTies ties,
                    StageCount& progress);
    void findApproximately(const double* points,
                           std::size_t count,
                           const Visit& visit,
                           const OnStage& on_stage);
    [[nodiscard]] Visit visitInOrder(const Visit& visit, NeighbourTies ties) const;
    const NeighbourIndex& index(const double* points);

    std::size_t N_;
    std::size_t dims_;
    const Metric& metric_;
    std::optional<NeighbourRecall> recall_;
    /// What was drawn for the tree.
    std::vector<int> draws_;
    std::unique_ptr<NeighbourIndex> index_;
};

/// Brings nearest rows into the order of `NeighbourTies::ByRow`: the row itself, then the others by
/// distance and number.
///
/// @param nearest  of which the last gives way to the row itself, if that is not among them
void order_by_row(std::uint32_t row, std::vector<NearRow>& nearest);

}  // namespace ovik
