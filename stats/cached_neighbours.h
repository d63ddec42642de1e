#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "neighbours/neighbour_lists.h"
#include "neighbours/neighbour_search.h"
#include "results/checkpoint.h"
#include "util/random_stream.h"

namespace ovik {

/// The nearest neighbours of all rows of a matrix, found once for several runs of different
/// perplexity or seed over it.
///
/// The first run finds as many neighbours as any will want. Later ones get the head of each list
/// where it is certain to be what a search of its own would give. Where distances are equal, or
/// too close at the end of the head, that depends on the way of the search, and it is made again,
/// by a tree of the run's own if its draws are others. The stream of random numbers is left as a
/// search of its own leaves it.
///
/// Where the search is approximate, runs that want as many neighbours share what it found, and
/// others search on their own: each gets what it would get alone.
///
/// Neighbours may also be given, in the place of any search: runs then get the head of each list,
/// the whole list if it is shorter.
///
/// Runs may go on side by side, in threads of their own.
class CachedNeighbours {
  public:
    /// @param most  neighbours of a row that any run will want, without the row itself
    explicit CachedNeighbours(std::size_t most) : most_(most + 1) {}

    /// @param given  of the rows of any matrix that has as many
    explicit CachedNeighbours(NeighbourLists given) : given_(std::move(given)) {}

    /// Begins a run, with what a search of its own draws.
    ///
    /// @param points  row-major, N x dims
    /// @param manner  of a search: whether it is approximate, and what decides ties, is the same
    /// for all runs
    /// @return the search for this run's `findAll`; null for the one that runs share, or if
    /// neighbours are given
    /// @throws std::invalid_argument if the points are not those of the first call, or not as many
    /// as there are lists
    /// @throws what the manner's `on_stage` throws; the next run is the first one then
    std::unique_ptr<NeighbourSearch> begin(const double* points,
                                           std::size_t N,
                                           std::size_t dims,
                                           RandomStream& random = process_random_stream(),
                                           const NeighbourSearchManner& manner = {});

    /// Whether they were given, and nothing is searched.
    [[nodiscard]] bool areGiven() const { return given_.has_value(); }

    /// How many workers `findAll` has at most.
    [[nodiscard]] std::size_t workerCount() const;

    /// Does what `NeighbourSearch::findAll` does, once a run has begun.
    ///
    /// @param own_search  what `begin` gave
    /// @param on_stage    as `NeighbourSearch::findOthers` takes it
    /// @return how many of the nearest were found, if the search is not exact
    std::optional<NeighbourRecall> findAll(const double* points,
                                           std::size_t count,
                                           const NeighbourSearch::Visit& visit,
                                           NeighbourSearch* own_search = nullptr,
                                           const OnStage& on_stage = {});

    /// What tells neighbours that were given from others; empty if none were, since those of a
    /// search follow from the matrix.
    [[nodiscard]] std::string identity() const;

  private:
    void fillLists(const double* points, const OnStage& on_stage);
    void fillApproximateLists(const double* points, const OnStage& on_stage);
    bool takeHead(std::size_t row, std::size_t count, std::vector<NearRow>& head) const;
    void visitLists(std::size_t count,
                    const NeighbourSearch::Visit& visit,
                    const OnStage& on_stage) const;
    void visitGiven(std::size_t count,
                    const NeighbourSearch::Visit& visit,
                    const OnStage& on_stage) const;

    /// Held by the first run while it fills the lists, and by whoever asks the shared search, which
    /// may build its tree then.
    std::mutex mutex_;

    /// How many neighbours of each row are cached, the row itself among them.
    std::size_t most_ = 0;
    std::optional<NeighbourLists> given_;
    std::unique_ptr<NeighbourSearch> search_;
    std::size_t dims_ = 0;
    Digest points_{};
    /// What the search was, not what was wanted.
    bool is_approximate_ = false;
    NeighbourTies ties_ = NeighbourTies::OfTree;
    std::optional<NeighbourRecall> recall_;
    /// That of the search for candidates.
    double margin_ = 0.0;
    /// One more than `most_` for each row, of which the first `found_` are there.
    std::vector<NearRow> lists_;
    std::vector<std::size_t> found_;
};

}  // namespace ovik
