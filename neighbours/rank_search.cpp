#include "neighbours/rank_search.h"

#include <algorithm>
#include <cfloat>
#include <numeric>
#include <optional>

#include "neighbours/row_extent.h"
#include "util/instruction_set.h"

namespace ovik {

namespace {

/// Rows of a part, as long as they have no more candidates than this in all: what the kernels
/// compare side by side, twice over.
constexpr std::size_t kMostRowsOfPart = 12;
constexpr std::size_t kMostCandidates = std::size_t{1} << 21;

/// The means of the columns.
std::vector<double> centre_of(const double* points, std::size_t N, std::size_t dims) {
    std::vector<double> centre(dims);
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t d = 0; d < dims; ++d) {
            centre[d] += points[n * dims + d] / static_cast<double>(N);
        }
    }
    return centre;
}

/// Whether a row comes before another among neighbours.
bool comes_before(double squared_distance,
                  std::uint32_t row,
                  double other_squared_distance,
                  std::uint32_t other) {
    return squared_distance < other_squared_distance ||
           (squared_distance == other_squared_distance && row < other);
}

/// Whether a row is among those that are nearer to it than another: all but rows that are the same
/// and come first in the matrix.
bool counts_itself(std::size_t row, const RankSearch::Question& question) {
    return comes_before(
        0.0, static_cast<std::uint32_t>(row), question.squared_distance, question.row);
}

/// A list without candidates.
Candidates empty_list(std::vector<float>& values,
                      std::vector<std::uint32_t>& positions,
                      std::size_t room,
                      float limit) {
    values.resize(room);
    positions.resize(room);
    return {values.data(), positions.data(), 0, limit};
}

}  // namespace

RankSearch::RankSearch(
    const double* points, std::size_t N, std::size_t dims, std::size_t wanted, const Metric& metric)
    : points_(points),
      N_(N),
      dims_(dims),
      wanted_(wanted) {
    const std::optional<double> extent = packable_extent(points, N, dims, metric);
    if (!extent) {
        return;
    }
    kernels_ = &metric.candidates(instruction_set());
    error_share_ = packing_error_share(dims);
    scale_ = packing_scale(*extent);
    const std::size_t pairs = kMostCandidates / N / 2;
    rows_of_part_ = 2 * std::clamp<std::size_t>(pairs, 1, kMostRowsOfPart / 2);
    const std::vector<double> centre = centre_of(points, N, dims);
    blocks_.resize((N + kMostBlockRows - 1) / kMostBlockRows);
    parallel_for_each(blocks_.size(), 1, [&](std::size_t block) {
        const std::size_t first = block * kMostBlockRows;
        std::vector<std::uint32_t> rows(std::min(kMostBlockRows, N - first));
        std::iota(rows.begin(), rows.end(), static_cast<std::uint32_t>(first));
        blocks_[block].pack(*kernels_,
                            points,
                            dims,
                            rows,
                            {centre.data(), scale_},
                            static_cast<std::uint32_t>(first));
    });
}

std::size_t RankSearch::partCount() const {
    if (blocks_.empty()) {
        return 0;
    }
    const std::size_t parts_of_block = (kMostBlockRows + rows_of_part_ - 1) / rows_of_part_;
    const std::size_t last = blocks_.back().count();
    return (blocks_.size() - 1) * parts_of_block + (last + rows_of_part_ - 1) / rows_of_part_;
}

/// A part lies within a block.
IndexRange RankSearch::rowsOf(std::size_t part) const {
    const std::size_t parts_of_block = (kMostBlockRows + rows_of_part_ - 1) / rows_of_part_;
    const std::size_t block = part / parts_of_block;
    const std::size_t begin = part % parts_of_block * rows_of_part_;
    const std::size_t end = std::min(begin + rows_of_part_, blocks_[block].count());
    return {block * kMostBlockRows + begin, block * kMostBlockRows + end};
}

/// The squares are added in coordinate order, as the loops of the metric do.
double RankSearch::squaredDistance(std::size_t row, std::uint32_t other) const {
    const double* const a = points_ + row * dims_;
    const double* const b = points_ + std::size_t{other} * dims_;
    double sum = 0.0;
    for (std::size_t d = 0; d < dims_; ++d) {
        const double difference = a[d] - b[d];
        sum += difference * difference;
    }
    return sum;
}

/// As it is in the packed rows.
double RankSearch::scaled(double squared_distance) const {
    return squared_distance * scale_ * scale_;
}

ValueBounds RankSearch::boundsOf(std::size_t row) const {
    return {blocks_[row / kMostBlockRows].squaredNorm(row % kMostBlockRows), error_share_};
}

/// Measures the given rows, and sorts them.
void RankSearch::ask(IndexRange rows,
                     std::span<const std::uint32_t> given,
                     Scratch& scratch) const {
    scratch.questions.clear();
    for (std::size_t i = 0; i < rows.size() * wanted_; ++i) {
        const auto place = static_cast<std::uint32_t>(i % wanted_);
        const double squared_distance = squaredDistance(rows.begin + i / wanted_, given[i]);
        scratch.questions.push_back({squared_distance, given[i], place});
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::span<Question> of_row =
            std::span(scratch.questions).subspan(i * wanted_, wanted_);
        std::sort(of_row.begin(), of_row.end(), [](const Question& a, const Question& b) {
            return comes_before(b.squared_distance, b.row, a.squared_distance, a.row);
        });
    }
}

/// Lists for each row all others that may be as near as the farthest that is given for it.
void RankSearch::collect(IndexRange rows, Scratch& scratch) const {
    const std::size_t room = N_ + kMostBlockRows + kPackedMultiple;
    scratch.values.resize(rows_of_part_ * room);
    scratch.positions.resize(rows_of_part_ * room);
    scratch.candidates.clear();
    for (std::size_t t = 0; t < rows_of_part_; ++t) {
        // What pads the part has no candidates.
        float limit = -FLT_MAX;
        if (t < rows.size()) {
            const double farthest = scaled(scratch.questions[t * wanted_].squared_distance);
            const ValueBounds bounds = boundsOf(rows.begin + t);
            limit = bounds.limit(bounds.above(farthest));
        }
        scratch.candidates.push_back(
            {scratch.values.data() + t * room, scratch.positions.data() + t * room, 0, limit});
    }
    PackedRows targets = blocks_[rows.begin / kMostBlockRows].view();
    targets.coordinates += rows.begin % kMostBlockRows;
    for (std::size_t block = 0; block < blocks_.size(); ++block) {
        kernels_->collect(targets,
                          rows.size(),
                          blocks_[block].view(),
                          dims_,
                          static_cast<std::uint32_t>(block * kMostBlockRows),
                          scratch.candidates.data());
    }
}

/// How many of some rows are nearer to a row than the one that is asked for.
std::size_t RankSearch::countNearer(std::size_t row,
                                    const Question& question,
                                    std::span<const std::uint32_t> others) const {
    return static_cast<std::size_t>(
        std::count_if(others.begin(), others.end(), [&](std::uint32_t other) {
            return other != question.row &&
                   comes_before(
                       squaredDistance(row, other), other, question.squared_distance, question.row);
        }));
}

/// Lists the nearest of the candidates, among which they are.
void RankSearch::findNearest(std::size_t row, Candidates& candidates, Scratch& scratch) const {
    // With few more than are wanted nothing is won by dropping some.
    constexpr std::size_t kFewMore = 16;
    if (candidates.count > wanted_ + kFewMore) {
        // The row itself is among them.
        const float value = kernels_->bound(candidates.values, candidates.count, wanted_ + 1);
        const ValueBounds bounds = boundsOf(row);
        candidates.limit = bounds.limit(bounds.aboveSquaresOf(value));
        kernels_->drop(candidates);
    }
    scratch.measured.clear();
    for (std::size_t i = 0; i < candidates.count; ++i) {
        const std::uint32_t other = candidates.positions[i];
        if (other != row) {
            scratch.measured.push_back({squaredDistance(row, other), other});
        }
    }
    const auto end = scratch.measured.begin() + static_cast<std::ptrdiff_t>(wanted_);
    std::partial_sort(scratch.measured.begin(),
                      end,
                      scratch.measured.end(),
                      [](const Measured& a, const Measured& b) {
                          return comes_before(a.squared_distance, a.row, b.squared_distance, b.row);
                      });
    scratch.nearest.resize(wanted_);
    std::transform(
        scratch.measured.begin(), end, scratch.nearest.begin(), [](const Measured& measured) {
            return measured.row;
        });
}

/// Goes from the farthest given row to the nearest, with fewer candidates each time. Those left
/// behind a row of a rank below the number of nearest that are wanted would not have all of these.
bool RankSearch::rankAll(std::size_t row, std::size_t target, Scratch& scratch) const {
    const std::span<const Question> questions =
        std::span(scratch.questions).subspan(target * wanted_, wanted_);
    Candidates candidates = scratch.candidates[target];
    const std::size_t room = N_ + kPackedMultiple;
    scratch.uncertain.resize(room);
    scratch.ranks.resize(wanted_);
    const ValueBounds bounds = boundsOf(row);
    // Beyond these, and the rows that are asked for, measuring all is as fast.
    std::size_t may_be_measured = wanted_ + N_ / 4;
    std::size_t asked = 0;
    for (; asked < wanted_; ++asked) {
        const Question& question = questions[asked];
        const double squared = scaled(question.squared_distance);
        Candidates fewer = empty_list(scratch.fewer_values[asked % 2],
                                      scratch.fewer_positions[asked % 2],
                                      room,
                                      bounds.limit(bounds.above(squared)));
        const std::size_t uncertain =
            kernels_->narrow(candidates, bounds.low(squared), fewer, scratch.uncertain.data());
        if (uncertain > may_be_measured) {
            return false;
        }
        may_be_measured -= uncertain;
        const std::size_t rank =
            fewer.count - uncertain +
            countNearer(row, question, std::span(scratch.uncertain).first(uncertain)) -
            (counts_itself(row, question) ? 1 : 0);
        scratch.ranks[question.place] = static_cast<std::uint32_t>(rank);
        if (rank + 1 < wanted_) {
            break;
        }
        candidates = fewer;
    }
    findNearest(row, candidates, scratch);
    for (const Question& question : questions.subspan(asked)) {
        const auto found = std::find(scratch.nearest.begin(), scratch.nearest.end(), question.row);
        scratch.ranks[question.place] = static_cast<std::uint32_t>(found - scratch.nearest.begin());
    }
    return true;
}

}  // namespace ovik
