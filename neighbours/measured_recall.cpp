#include "neighbours/measured_recall.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <numeric>
#include <span>
#include <vector>

#include "neighbours/candidate_block.h"
#include "util/mixed_bits.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// The rows with the least of random numbers.
std::vector<std::uint32_t> drawn_rows(std::size_t N, std::size_t most) {
    std::vector<std::uint32_t> rows(N);
    std::iota(rows.begin(), rows.end(), 0U);
    if (N <= most) {
        return rows;
    }
    // One for one: no two are equal.
    std::nth_element(
        rows.begin(),
        rows.begin() + static_cast<std::ptrdiff_t>(most),
        rows.end(),
        [](std::uint32_t a, std::uint32_t b) { return mixed_bits(a) < mixed_bits(b); });
    rows.resize(most);
    std::sort(rows.begin(), rows.end());
    return rows;
}

/// The nearest of all rows for a block of them.
class NearestOfBlock {
  public:
    NearestOfBlock(const double* points,
                   std::size_t dims,
                   const Metric& metric,
                   const Frame& frame,
                   std::size_t count)
        : points_(points),
          dims_(dims),
          kernels_(metric.candidates(instruction_set())),
          row_distances_(metric.kernels(instruction_set()).row_distances),
          frame_(frame),
          count_(count) {}

    /// Compares rows with all others.
    ///
    /// @param targets  at most kMostBlockRows
    /// @param all      all rows of the matrix
    /// @return for each the distance of the last of the nearest
    std::vector<double> compare(std::span<const std::uint32_t> targets,
                                std::span<const std::uint32_t> all) {
        packed_targets_.pack(kernels_, points_, dims_, targets, frame_, 0);
        // One more than are wanted: the row itself is among the candidates.
        candidates_.begin(kernels_, packed_targets_, dims_, count_ + 1);
        nearest_.assign(targets.size(), {});
        for (std::size_t first = 0; first < all.size(); first += kMostBlockRows) {
            const auto some = all.subspan(first, std::min(kMostBlockRows, all.size() - first));
            sources_.pack(
                kernels_, points_, dims_, some, frame_, static_cast<std::uint32_t>(first));
            candidates_.offer(sources_, [&](std::size_t t) { takeAll(t, targets[t]); });
        }
        std::vector<double> last;
        for (std::size_t t = 0; t < targets.size(); ++t) {
            candidates_.tighten(t);
            takeAll(t, targets[t]);
            last.push_back(nearest_[t].back());
        }
        return last;
    }

  private:
    /// Measures the candidates of a target, and keeps the nearest.
    void takeAll(std::size_t target, std::uint32_t row) {
        rows_.clear();
        for (const std::uint32_t position : candidates_.positions(target)) {
            if (position != row) {
                rows_.push_back(position);
            }
        }
        std::vector<double>& nearest = nearest_[target];
        const std::size_t before = nearest.size();
        nearest.resize(before + rows_.size());
        row_distances_(points_,
                       dims_,
                       points_ + row * dims_,
                       rows_.data(),
                       rows_.size(),
                       nearest.data() + before);
        std::sort(nearest.begin(), nearest.end());
        nearest.resize(std::min(nearest.size(), count_));
        candidates_.clear(target);
        if (nearest.size() == count_) {
            const double farthest = nearest.back() * frame_.scale;
            candidates_.admit(target, farthest * farthest);
        }
    }

    const double* points_;
    std::size_t dims_;
    const CandidateKernels& kernels_;
    RowDistances row_distances_;
    Frame frame_;
    std::size_t count_;
    PackedBlock packed_targets_;
    PackedBlock sources_;
    CandidateBlock candidates_;
    std::vector<std::uint32_t> rows_;
    /// For each target the distances of the nearest so far, in order.
    std::vector<std::vector<double>> nearest_;
};

std::vector<double> mean_row(const double* points, std::size_t N, std::size_t dims) {
    std::vector<double> mean(dims, 0.0);
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t d = 0; d < dims; ++d) {
            mean[d] += points[n * dims + d] / static_cast<double>(N);
        }
    }
    return mean;
}

}  // namespace

NeighbourRecall measured_recall(const double* points,
                                std::size_t dims,
                                double scale,
                                const Metric& metric,
                                const NearestLists& lists,
                                std::size_t count,
                                std::size_t most) {
    const std::size_t N = lists.rowCount();
    const std::vector<std::uint32_t> rows = drawn_rows(N, most);
    std::vector<std::uint32_t> all(N);
    std::iota(all.begin(), all.end(), 0U);
    const std::vector<double> centre = mean_row(points, N, dims);
    const std::size_t tasks = (rows.size() + kMostBlockRows - 1) / kMostBlockRows;
    std::atomic<std::size_t> found = 0;
    parallel_tasks(tasks, worker_count(tasks), [&](std::size_t task, std::size_t /*worker*/) {
        const std::size_t first = task * kMostBlockRows;
        const auto targets =
            std::span(rows).subspan(first, std::min(kMostBlockRows, rows.size() - first));
        NearestOfBlock block(points, dims, metric, {centre.data(), scale}, count);
        const std::vector<double> last = block.compare(targets, all);
        for (std::size_t t = 0; t < targets.size(); ++t) {
            for (std::size_t i = 0; i < std::min(count, lists.count(targets[t])); ++i) {
                found += lists.at(targets[t], i).distance <= last[t] ? 1 : 0;
            }
        }
    });
    const auto wanted = static_cast<double>(rows.size() * count);
    return {static_cast<double>(found) / wanted, rows.size()};
}

}  // namespace ovik
