#include "stats/rank_nearest.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>
#include <numeric>

#include "neighbours/candidate_search.h"
#include "neighbours/row_extent.h"
#include "util/byte_queue.h"
#include "util/stage_count.h"

namespace ovik {

namespace {

/// The extent of all rows, as the first rank finds it; NaN if they have none.
double extent_of_all(MatrixView<const double> points, Ranks& ranks) {
    double extent = 0.0;
    if (ranks.isFirst()) {
        extent = packable_extent(points.values, points.rows, points.columns, euclidean_metric())
                     .value_or(std::numeric_limits<double>::quiet_NaN());
    }
    ranks.hear(std::span(&extent, 1), Errand::Orders);
    return extent;
}

/// Tells of rows that are compared with part after part as of a share of all rows.
OnStage as_share(const OnStage& on_stage, std::size_t N) {
    if (!on_stage) {
        return {};
    }
    return [&on_stage, N](Stage stage, std::uint64_t done, std::uint64_t total) {
        const double share =
            total == 0 ? 1.0 : static_cast<double>(done) / static_cast<double>(total);
        on_stage(stage, static_cast<std::uint64_t>(share * static_cast<double>(N)), N);
    };
}

/// Puts a row, and what the tree has found but for the first, which stands for the row itself.
void put_answer(ByteQueue& answer, std::size_t row, std::span<const NearRow> nearest) {
    const std::span<const NearRow> others = nearest.subspan(nearest.empty() ? 0 : 1);
    answer.put(static_cast<std::uint32_t>(row));
    answer.put(static_cast<std::uint32_t>(others.size()));
    for (const NearRow& other : others) {
        answer.put(other.row);
        answer.put(other.distance);
    }
}

}  // namespace

/// The parts of the matrix that the ranks have.
struct RankNearest::Parts {
    MatrixView<const double> points;
    const RankRows& rows;
    std::vector<std::size_t> starts;

    Parts(MatrixView<const double> all, const RankRows& of) : points(all), rows(of) {
        for (std::size_t rank = 0; rank < rows.ranks().count(); ++rank) {
            starts.push_back(rows.of(rank).begin * points.columns);
        }
        starts.push_back(points.size());
    }

    [[nodiscard]] std::size_t sizeOf(std::size_t rank) const {
        return starts[rank + 1] - starts[rank];
    }

    /// Values of the rows of a rank.
    [[nodiscard]] MatrixView<const double> view(std::size_t rank,
                                                std::span<const double> values) const {
        return {values.data(), rows.of(rank).size(), points.columns};
    }
};

RankNearest::RankNearest(MatrixView<const double> points,
                         std::size_t wanted,
                         NeighbourSearch& tree,
                         const NeighbourSearchManner& manner,
                         const RankRows& rows)
    : wanted_(wanted),
      rows_(rows) {
    const double extent = extent_of_all(points, rows.ranks());
    if (!std::isnan(extent)) {
        passRound(Parts(points, rows), extent, manner);
    }
    askTree(points, tree, manner, undecided(tree_margin(points.columns, extent), manner.ties));
}

std::span<const NearRow> RankNearest::of(std::size_t place) const {
    const auto answer = answers_.find(place);
    if (answer != answers_.end()) {
        return answer->second;
    }
    if (!search_) {
        return {};
    }
    const std::span<const NearRow> others = search_->nearest(place);
    return others.first(std::min(others.size(), wanted_));
}

/// Gives each rank its part, and compares it with all parts, which go from each rank to the next.
void RankNearest::passRound(const Parts& parts,
                            double extent,
                            const NeighbourSearchManner& manner) {
    Ranks& ranks = rows_.ranks();
    const IndexRange own = rows_.own();
    own_values_.resize(ranks.isFirst() ? 0 : parts.sizeOf(ranks.rank()));
    ranks.deal(parts.points.all(), parts.starts, own_values_, Errand::Rows);
    std::span<const double> passing = own_values_;
    if (ranks.isFirst()) {
        passing = parts.points.all().first(parts.sizeOf(0));
    }
    if (own.size() > 0) {
        // One more than is wanted tells where the tree would decide.
        const std::size_t compared = wanted_ + (manner.ties == NeighbourTies::OfTree ? 1 : 0);
        search_.emplace(parts.view(ranks.rank(), passing), own.begin, compared, extent);
    }
    const OnStage on_stage = as_share(manner.on_stage, rows_.count());
    StageCount progress(on_stage, Stage::Neighbours, own.size() * ranks.count());
    std::vector<double> buffers[2];
    for (std::size_t step = 0; step < ranks.count(); ++step) {
        const std::size_t owner = (ranks.rank() + ranks.count() - step) % ranks.count();
        if (step > 0) {
            std::vector<double>& next = buffers[step % 2];
            next.resize(parts.sizeOf(owner));
            ranks.pass(passing, next, Errand::Rows);
            passing = next;
        }
        if (search_ && !passing.empty()) {
            search_->visit(parts.view(owner, passing), rows_.of(owner).begin, progress);
        }
    }
}

/// The rows of the rank whose neighbours the tree has to tell.
///
/// @param margin  `tree_margin` of all rows
std::vector<std::uint32_t> RankNearest::undecided(double margin, NeighbourTies ties) const {
    const IndexRange own = rows_.own();
    std::vector<std::uint32_t> rows;
    if (!search_) {
        rows.resize(own.size());
        std::iota(rows.begin(), rows.end(), static_cast<std::uint32_t>(own.begin));
    }
    if (!search_ || ties == NeighbourTies::ByRow) {
        return rows;
    }
    std::vector<NearRow> nearest;
    for (std::size_t place = 0; place < own.size(); ++place) {
        const auto row = static_cast<std::uint32_t>(own.begin + place);
        const std::span<const NearRow> others = search_->nearest(place);
        nearest.assign(1, {row, 0.0});
        nearest.insert(nearest.end(), others.begin(), others.end());
        if (!is_certain(nearest, wanted_ + 1, margin)) {
            rows.push_back(row);
        }
    }
    return rows;
}

/// Has the first rank look for the neighbours of rows of all ranks in the tree.
///
/// @param rows  of this rank
void RankNearest::askTree(MatrixView<const double> points,
                          NeighbourSearch& tree,
                          const NeighbourSearchManner& manner,
                          std::span<const std::uint32_t> rows) {
    Ranks& ranks = rows_.ranks();
    std::vector<char> is_found(ranks.isFirst() ? rows_.count() : 0, 1);
    bool are_any = false;
    ranks.collect(
        std::as_bytes(rows),
        [&](std::size_t /*from*/, std::span<const std::byte> bytes) {
            for (ByteReader reader(bytes); !reader.isAtEnd(); are_any = true) {
                is_found[reader.get<std::uint32_t>()] = 0;
            }
        },
        Errand::Neighbours);
    ranks.hear(std::span(&are_any, 1), Errand::Orders);
    if (!are_any) {
        return;
    }
    std::vector<ByteQueue> answers(ranks.count());
    if (ranks.isFirst()) {
        std::mutex answering;
        tree.findOthers(
            points.values,
            wanted_ + 1,
            is_found,
            [&](std::size_t row, std::span<const NearRow> nearest, std::size_t /*worker*/) {
                const std::lock_guard lock(answering);
                put_answer(answers[rows_.ownerOf(row)], row, nearest);
            },
            manner.ties,
            manner.on_stage);
    }
    ranks.exchange([&](std::size_t to) { return answers[to].take(); },
                   [&](std::size_t /*from*/, std::span<const std::byte> bytes) { store(bytes); },
                   Errand::Neighbours);
}

void RankNearest::store(std::span<const std::byte> answers) {
    for (ByteReader reader(answers); !reader.isAtEnd();) {
        const auto row = reader.get<std::uint32_t>();
        std::vector<NearRow>& others = answers_[row - rows_.own().begin];
        others.resize(reader.get<std::uint32_t>());
        for (NearRow& other : others) {
            other.row = reader.get<std::uint32_t>();
            other.distance = reader.get<double>();
        }
    }
}

}  // namespace ovik
