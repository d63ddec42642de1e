#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "neighbours/candidate_block.h"
#include "neighbours/kernels/candidate_kernels.h"
#include "neighbours/metric.h"
#include "neighbours/value_bounds.h"
#include "util/parallel.h"

namespace ovik {

/// Tells for rows of a matrix which rank some others have among their neighbours, and which are
/// the nearest, exactly as squared distances in double precision have it, of equal ones the lower
/// row first.
///
/// All rows are compared in single precision, with a bound of error. As most of them are certainly
/// nearer or certainly farther than one whose rank is asked for, few distances have to be measured.
class RankSearch {
  public:
    /// Rows whose ranks are asked for, of one row.
    struct Question {
        double squared_distance;
        std::uint32_t row;
        /// Among the given rows.
        std::uint32_t place;
    };

    /// A row and how far it is.
    struct Measured {
        double squared_distance;
        std::uint32_t row;
    };

    /// What one thread needs to search part after part.
    class Scratch {
        friend class RankSearch;

        std::vector<float> values;
        std::vector<std::uint32_t> positions;
        std::vector<Candidates> candidates;
        /// Of each row of the part, the farthest first.
        std::vector<Question> questions;
        /// Lists of candidates of one row: the last, and the one that is made of it.
        std::vector<float> fewer_values[2];
        std::vector<std::uint32_t> fewer_positions[2];
        std::vector<std::uint32_t> uncertain;
        std::vector<Measured> measured;
        std::vector<std::uint32_t> nearest;
        std::vector<std::uint32_t> ranks;
    };

    /// @param points  row-major, N x dims; must outlive the search
    /// @param wanted  how many nearest rows are wanted of each, and how many are given: at least
    ///                1, below N
    /// @param metric  must outlive the search
    RankSearch(const double* points,
               std::size_t N,
               std::size_t dims,
               std::size_t wanted,
               const Metric& metric);

    /// How many parts the rows are searched for in. None if this search cannot be made: under a
    /// metric without kernels for it, or with values so large, so small or so many that the bounds
    /// of error would not hold.
    [[nodiscard]] std::size_t partCount() const;

    /// The rows of a part.
    [[nodiscard]] IndexRange rowsOf(std::size_t part) const;

    /// Runs `visit(row, nearest, ranks)` for the rows of a part: spans of its `wanted` nearest,
    /// nearest first, and of the ranks of the given rows, from 0. Both are empty if so many rows
    /// are so near to equally far away that single precision does not tell them apart. Several
    /// threads may search at once.
    ///
    /// @param given  for each row of the part `wanted` different others
    template <typename Visit>
    void search(std::size_t part,
                std::span<const std::uint32_t> given,
                Scratch& scratch,
                const Visit& visit) const {
        const IndexRange rows = rowsOf(part);
        ask(rows, given, scratch);
        collect(rows, scratch);
        for (std::size_t row = rows.begin; row < rows.end; ++row) {
            const std::size_t i = row - rows.begin;
            const bool is_known = rankAll(row, i, scratch);
            const std::size_t count = is_known ? wanted_ : 0;
            visit(row,
                  std::span<const std::uint32_t>(scratch.nearest).first(count),
                  std::span<const std::uint32_t>(scratch.ranks).first(count));
        }
    }

  private:
    [[nodiscard]] double squaredDistance(std::size_t row, std::uint32_t other) const;
    [[nodiscard]] double scaled(double squared_distance) const;
    [[nodiscard]] ValueBounds boundsOf(std::size_t row) const;
    void ask(IndexRange rows, std::span<const std::uint32_t> given, Scratch& scratch) const;
    void collect(IndexRange rows, Scratch& scratch) const;
    bool rankAll(std::size_t row, std::size_t target, Scratch& scratch) const;
    [[nodiscard]] std::size_t countNearer(std::size_t row,
                                          const Question& question,
                                          std::span<const std::uint32_t> others) const;
    void findNearest(std::size_t row, Candidates& candidates, Scratch& scratch) const;

    const double* points_;
    std::size_t N_;
    std::size_t dims_;
    std::size_t wanted_;
    double error_share_ = 0.0;
    double scale_ = 1.0;
    std::size_t rows_of_part_ = 0;
    const CandidateKernels* kernels_ = nullptr;
    std::vector<PackedBlock> blocks_;
};

}  // namespace ovik
