#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

#include "neighbours/metric.h"
#include "neighbours/near_row.h"

namespace ovik {

/// For each row of a matrix the nearest other rows of all that were offered to it, nearest first,
/// of equally near ones the lower. Rows may be offered in any order and by several threads at once:
/// the lists depend on what was offered alone.
///
/// Every neighbour is new until it is marked as old.
class NearestLists {
  public:
    /// Highest number of rows: a bit of the neighbours tells new ones.
    static constexpr std::size_t kMostRows = std::size_t{1} << 31U;

    /// What a thread needs.
    class Scratch {
        friend class NearestLists;

        std::vector<std::uint32_t> rows;
        std::vector<double> distances;
        std::vector<NearRow> found;
    };

    /// @param points  row-major, N x dims, all distances finite; has to outlive the lists
    /// @param N       at most kMostRows
    /// @param length  of each list, at least 1
    /// @param metric  with `candidates`
    NearestLists(const double* points,
                 std::size_t N,
                 std::size_t dims,
                 std::size_t length,
                 const Metric& metric);

    [[nodiscard]] std::size_t rowCount() const { return counts_.size(); }

    [[nodiscard]] std::size_t length() const { return length_; }

    /// How many neighbours of a row there are so far.
    [[nodiscard]] std::size_t count(std::size_t row) const { return counts_[row]; }

    [[nodiscard]] NearRow at(std::size_t row, std::size_t place) const {
        return {entries_[row * length_ + place] & ~kNew, distances_[row * length_ + place]};
    }

    [[nodiscard]] bool isNew(std::size_t row, std::size_t place) const {
        return (entries_[row * length_ + place] & kNew) != 0;
    }

    void markAsOld(std::size_t row, std::size_t place) { entries_[row * length_ + place] &= ~kNew; }

    /// What no row may be farther away than to get into a full list; infinite before it is full.
    [[nodiscard]] double farthest(std::size_t row) const {
        return farthest_[row].load(std::memory_order_relaxed);
    }

    /// Offers rows to the list of one. That row itself, and what is in the list, is passed over.
    ///
    /// @param others  distinct
    void offer(std::size_t row, std::span<const std::uint32_t> others, Scratch& scratch);

  private:
    static constexpr std::uint32_t kNew = std::uint32_t{1} << 31U;

    void choose(std::size_t row, std::span<const std::uint32_t> others, Scratch& scratch) const;
    void merge(std::size_t row, std::span<const NearRow> found);

    const double* points_;
    std::size_t dims_;
    std::size_t length_;
    const CandidateKernels& kernels_;
    RowDistances row_distances_;
    /// The neighbours of row n stand from n * length on: their rows, and whether they are new.
    std::vector<std::uint32_t> entries_;
    std::vector<double> distances_;
    std::vector<std::uint32_t> counts_;
    std::vector<std::atomic<double>> farthest_;
    /// One for many rows each.
    std::array<std::mutex, 1024> locks_;
};

}  // namespace ovik
