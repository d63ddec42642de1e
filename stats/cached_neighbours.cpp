#include "stats/cached_neighbours.h"

#include <algorithm>
#include <span>
#include <stdexcept>
#include <utility>

#include "neighbours/approximate_search.h"
#include "stats/tsne.h"
#include "util/parallel.h"
#include "util/stage_count.h"

namespace ovik {

namespace {

void draw_as_a_search(std::size_t N, RandomStream& random) {
    for (std::size_t draw = 0; draw < NeighbourIndex::drawCount(N); ++draw) {
        random.next();
    }
}

}  // namespace

std::shared_ptr<CachedNeighbours> make_cached_neighbours(std::size_t most) {
    return std::make_shared<CachedNeighbours>(most);
}

std::unique_ptr<NeighbourSearch> CachedNeighbours::begin(const double* points,
                                                         std::size_t N,
                                                         std::size_t dims,
                                                         RandomStream& random,
                                                         const NeighbourSearchManner& manner) {
    if (given_) {
        if (N != given_->rowCount()) {
            throw std::invalid_argument("the neighbours that are given are of another matrix");
        }
        draw_as_a_search(N, random);
        return nullptr;
    }
    auto search = std::make_unique<NeighbourSearch>(N, dims, random);
    const Digest digest = digest_of({points, N * dims});
    const std::lock_guard lock(mutex_);
    if (search_ == nullptr) {
        search_ = std::move(search);
        dims_ = dims;
        points_ = digest;
        ties_ = manner.ties;
        is_approximate_ =
            manner.is_approximate && can_be_approximate(points, N, dims, most_, euclidean_metric());
        try {
            if (is_approximate_) {
                fillApproximateLists(points, manner.on_stage);
            } else {
                fillLists(points, manner.on_stage);
            }
        } catch (...) {
            search_.reset();
            lists_.clear();
            found_.clear();
            recall_.reset();
            throw;
        }
        return nullptr;
    }
    if (N != search_->rowCount() || digest != points_) {
        throw std::invalid_argument("neighbours of another matrix are cached");
    }
    return search->draws() == search_->draws() && !is_approximate_ ? nullptr : std::move(search);
}

/// What an approximate search finds does not depend on what is drawn for the tree.
void CachedNeighbours::fillApproximateLists(const double* points, const OnStage& on_stage) {
    found_.resize(search_->rowCount());
    lists_.resize(search_->rowCount() * (most_ + 1));
    search_->findAll(
        points,
        most_,
        [&](std::size_t row, std::span<const NearRow> nearest, std::size_t /*worker*/) {
            found_[row] = nearest.size();
            std::copy_n(nearest.begin(), found_[row], lists_.data() + row * (most_ + 1));
        },
        {.is_approximate = true, .on_stage = on_stage});
    recall_ = search_->recall();
}

std::size_t CachedNeighbours::workerCount() const {
    return given_ ? static_cast<std::size_t>(worker_count(given_->rowCount()))
                  : search_->workerCount();
}

void CachedNeighbours::fillLists(const double* points, const OnStage& on_stage) {
    const std::size_t N = search_->rowCount();
    const CandidateSearch candidates(points, N, dims_, most_ + 1);
    found_.resize(N);
    if (candidates.partCount() == 0) {
        return;
    }
    margin_ = candidates.margin();
    lists_.resize(N * (most_ + 1));
    std::vector<CandidateSearch::Scratch> scratch(workerCount());
    StageCount progress(on_stage, Stage::Neighbours, N);
    parallel_tasks(
        candidates.partCount(), worker_count(N), [&](std::size_t part, std::size_t worker) {
            if (progress.isStopped()) {
                return;
            }
            std::size_t visited = 0;
            candidates.search(
                part, scratch[worker], [&](std::size_t row, std::span<const NearRow> nearest) {
                    found_[row] = std::min(nearest.size(), most_ + 1);
                    std::copy_n(nearest.begin(), found_[row], lists_.data() + row * (most_ + 1));
                    ++visited;
                });
            progress.add(visited);
        });
}

std::optional<NeighbourRecall> CachedNeighbours::findAll(const double* points,
                                                         std::size_t count,
                                                         const NeighbourSearch::Visit& visit,
                                                         NeighbourSearch* own_search,
                                                         const OnStage& on_stage) {
    if (given_) {
        visitGiven(count, visit, on_stage);
        return std::nullopt;
    }
    if (is_approximate_ && count == most_) {
        visitLists(count, visit, on_stage);
        return recall_;
    }
    if (is_approximate_) {
        // A shared search would have to be asked by one run at a time.
        const std::lock_guard lock(mutex_);
        NeighbourSearch& search = own_search != nullptr ? *own_search : *search_;
        search.findAll(points, count, visit, {.is_approximate = true, .on_stage = on_stage});
        return search.recall();
    }
    const std::size_t N = search_->rowCount();
    std::vector<char> is_found(N);
    const std::size_t listed = lists_.empty() ? 0 : N;
    parallel_for(listed, 1, [&](std::size_t worker, IndexRange rows) {
        std::vector<NearRow> head;
        for (std::size_t n = rows.begin; n < rows.end; ++n) {
            if (takeHead(n, count, head)) {
                visit(n, head, worker);
                is_found[n] = 1;
            }
        }
    });
    if (own_search != nullptr) {
        own_search->findOthers(points, count, is_found, visit, ties_, on_stage);
        return std::nullopt;
    }
    const std::lock_guard lock(mutex_);
    search_->findOthers(points, count, is_found, visit, ties_, on_stage);
    return std::nullopt;
}

/// Takes the first neighbours of a row over, if they are certain to be what a search finds.
bool CachedNeighbours::takeHead(std::size_t row,
                                std::size_t count,
                                std::vector<NearRow>& head) const {
    const std::span<const NearRow> list(lists_.data() + row * (most_ + 1), found_[row]);
    const bool by_row = ties_ == NeighbourTies::ByRow;
    if (!(by_row ? is_certain_by_row(list, count) : is_certain(list, count, margin_))) {
        return false;
    }
    head.assign(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(count));
    if (by_row) {
        order_by_row(static_cast<std::uint32_t>(row), head);
    }
    return true;
}

/// Visits every row with the whole list of it.
void CachedNeighbours::visitLists(std::size_t count,
                                  const NeighbourSearch::Visit& visit,
                                  const OnStage& on_stage) const {
    StageCount progress(on_stage, Stage::Neighbours, found_.size());
    parallel_for(found_.size(), 1, [&](std::size_t worker, IndexRange rows) {
        for (std::size_t n = rows.begin; n < rows.end && !progress.isStopped(); ++n) {
            const std::size_t length = std::min(count, found_[n]);
            visit(n, {lists_.data() + n * (most_ + 1), length}, worker);
            progress.add(1);
        }
    });
}

/// @param count  with the row itself, which stands first
void CachedNeighbours::visitGiven(std::size_t count,
                                  const NeighbourSearch::Visit& visit,
                                  const OnStage& on_stage) const {
    const std::size_t most = std::max<std::size_t>(count, 1) - 1;
    StageCount progress(on_stage, Stage::Neighbours, given_->rowCount());
    parallel_for(given_->rowCount(), 1, [&](std::size_t worker, IndexRange rows) {
        std::vector<NearRow> nearest;
        for (std::size_t n = rows.begin; n < rows.end && !progress.isStopped(); ++n) {
            const std::span<const NearRow> others = given_->of(n);
            const std::span<const NearRow> head = others.first(std::min(most, others.size()));
            nearest.assign(1, {static_cast<std::uint32_t>(n), 0.0});
            nearest.insert(nearest.end(), head.begin(), head.end());
            visit(n, nearest, worker);
            progress.add(1);
        }
    });
}

std::string CachedNeighbours::identity() const {
    if (!given_) {
        return "";
    }
    std::vector<double> numbers(given_->starts.begin(), given_->starts.end());
    for (const NearRow& one : given_->nearest) {
        numbers.push_back(one.row);
        numbers.push_back(one.distance);
    }
    return hexadecimal(digest_of(numbers));
}

}  // namespace ovik
