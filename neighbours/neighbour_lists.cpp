#include "neighbours/neighbour_lists.h"

#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

#include "util/comparable_distance.h"
#include "util/format.h"
#include "util/input_error.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Distances are squared and divided by one another: both have to be numbers that `double` can
/// hold.
constexpr double kLargest = 1e300;

/// By how much two distances between the same rows may differ, as a share of the larger: that is
/// what programs that compute in single precision leave.
constexpr double kAsymmetry = 1e-4;

/// Checks neighbours that are given, and says where they stand.
class GivenNeighbours {
  public:
    GivenNeighbours(std::vector<GivenNeighbour> given,
                    std::size_t row_count,
                    const std::string& source)
        : given_(std::move(given)),
          row_count_(row_count),
          source_(source) {}

    NeighbourLists lists() {
        for (const GivenNeighbour& one : given_) {
            checkEach(one);
        }
        std::erase_if(given_, [](const GivenNeighbour& one) { return one.row == one.neighbour; });
        std::sort(given_.begin(), given_.end(), [](const auto& a, const auto& b) {
            return std::tie(a.row, a.neighbour, a.line) < std::tie(b.row, b.neighbour, b.line);
        });
        checkRepetition();
        checkSymmetry();
        checkRange();
        const double scale = checkedScale();
        NeighbourLists result;
        result.starts.reserve(row_count_ + 1);
        result.nearest.reserve(given_.size());
        auto next = given_.begin();
        for (std::size_t n = 0; n < row_count_; ++n) {
            for (; next != given_.end() && next->row == n; ++next) {
                result.nearest.push_back(
                    {static_cast<std::uint32_t>(next->neighbour), next->distance * scale});
            }
            addEnd(n, result);
        }
        return result;
    }

  private:
    [[noreturn]] void refuse(const GivenNeighbour& at, const std::string& what) const {
        throw InputError(source_ + (at.line == 0 ? "" : ":" + std::to_string(at.line)) + ": " +
                         what);
    }

    [[nodiscard]] std::string number(const GivenNeighbour& at, std::size_t row) const {
        return std::to_string(row + (at.line == 0 ? 0 : 1));
    }

    [[nodiscard]] std::string pair(const GivenNeighbour& at) const {
        return "row " + number(at, at.row) + " and its neighbour " + number(at, at.neighbour);
    }

    void checkEach(const GivenNeighbour& one) const {
        const std::size_t highest = std::max(one.row, one.neighbour);
        if (highest >= row_count_) {
            refuse(one,
                   "there is no row " + number(one, highest) + ": the matrix has " +
                       std::to_string(row_count_) +
                       "\nThe graph has to be of the rows of the matrix, in their order.");
        }
        if (!(one.distance >= 0.0 && one.distance <= kLargest)) {
            refuse(
                one,
                pair(one) + " have the distance " + shortest_text(one.distance) +
                    "\nDistances are numbers from 0 to 1e300; 1 - r makes one of a correlation.");
        }
        if (one.row == one.neighbour && one.distance != 0.0) {
            refuse(one,
                   "row " + number(one, one.row) + " has the distance " +
                       shortest_text(one.distance) +
                       " from itself\nDistances are needed, not similarities: 1 - r makes one of a "
                       "correlation.");
        }
    }

    void checkRepetition() const {
        const auto twice = std::adjacent_find(given_.begin(), given_.end(), [](auto& a, auto& b) {
            return a.row == b.row && a.neighbour == b.neighbour;
        });
        if (twice != given_.end()) {
            refuse(twice[1],
                   pair(twice[1]) + " stand there twice\nGive every neighbour of a row once.");
        }
    }

    void checkSymmetry() const {
        for (const GivenNeighbour& one : given_) {
            if (one.row > one.neighbour) {
                continue;
            }
            const auto other =
                std::lower_bound(given_.begin(),
                                 given_.end(),
                                 one,
                                 [](const auto& a, const GivenNeighbour& mirrored) {
                                     return std::tie(a.row, a.neighbour) <
                                            std::tie(mirrored.neighbour, mirrored.row);
                                 });
            if (other != given_.end() && other->row == one.neighbour &&
                other->neighbour == one.row &&
                std::fabs(other->distance - one.distance) >
                    kAsymmetry * std::max(other->distance, one.distance)) {
                refuse(*other,
                       pair(*other) + " have the distance " + shortest_text(other->distance) +
                           ", and the other way round " + shortest_text(one.distance) +
                           (one.line == 0 ? "" : " (line " + std::to_string(one.line) + ")") +
                           "\nA distance is the same both ways.");
            }
        }
    }

    /// Whether no distance is so large that the others are as good as 0 beside it.
    void checkRange() const {
        std::vector<double> nearest(row_count_, std::numeric_limits<double>::infinity());
        for (const GivenNeighbour& one : given_) {
            if (one.distance > 0.0) {
                nearest[one.row] = std::min(nearest[one.row], one.distance);
            }
        }
        const double limit = largest_comparable_distance(std::move(nearest));
        for (const GivenNeighbour& one : given_) {
            if (one.distance > limit) {
                refuse(one,
                       pair(one) + " have the distance " + shortest_text(one.distance) +
                           ", beside which the others are as good as 0: rows have their nearest "
                           "at " +
                           shortest_text(limit / kDistanceRange) +
                           "\nLeave the pair out of the graph, or give its distance, at most 1e20 "
                           "times as large.");
            }
        }
    }

    [[nodiscard]] double checkedScale() const {
        double largest = 0.0;
        for (const GivenNeighbour& one : given_) {
            largest = std::max(largest, one.distance);
        }
        if (!given_.empty() && largest < 1.0 / kLargest) {
            throw InputError(source_ +
                             ": no distance is above 1e-300, so that there is nothing to embed");
        }
        return distance_scale({&largest, 1});
    }

    /// Ends the list of a row.
    void addEnd(std::size_t row, NeighbourLists& result) const {
        const auto begin =
            result.nearest.begin() + static_cast<std::ptrdiff_t>(result.starts.back());
        if (begin == result.nearest.end()) {
            const GivenNeighbour base = given_.empty() ? GivenNeighbour{} : given_.front();
            throw InputError(source_ + ": row " + number(base, row) +
                             " has no neighbour\nEvery row of the matrix needs some: compute the "
                             "graph of all rows, or take such rows out of the matrix.");
        }
        std::sort(begin, result.nearest.end(), is_nearer);
        result.starts.push_back(result.nearest.size());
    }

    std::vector<GivenNeighbour> given_;
    std::size_t row_count_;
    const std::string& source_;
};

/// The others of a row at a finite distance, the `count` nearest of them in order.
void collect_nearest(std::span<const double> distances,
                     std::size_t row,
                     std::size_t count,
                     double scale,
                     std::vector<NearRow>& nearest) {
    nearest.clear();
    for (std::size_t m = 0; m < distances.size(); ++m) {
        if (m != row && std::isfinite(distances[m])) {
            nearest.push_back({static_cast<std::uint32_t>(m), std::max(distances[m], 0.0) * scale});
        }
    }
    const auto end = nearest.begin() + static_cast<std::ptrdiff_t>(std::min(count, nearest.size()));
    std::partial_sort(nearest.begin(), end, nearest.end(), is_nearer);
    nearest.erase(end, nearest.end());
}

}  // namespace

NeighbourLists neighbour_lists(std::vector<GivenNeighbour> given,
                               std::size_t row_count,
                               const std::string& source) {
    return GivenNeighbours(std::move(given), row_count, source).lists();
}

NeighbourLists nearest_by_distance(MatrixView<const double> distances, std::size_t count) {
    const double scale = distance_scale(distances.all());
    std::vector<std::vector<NearRow>> found(distances.rows);
    parallel_for(distances.rows, 1, [&](std::size_t /*worker*/, IndexRange rows) {
        std::vector<NearRow> nearest;
        for (std::size_t n = rows.begin; n < rows.end; ++n) {
            collect_nearest(distances.row(n), n, count, scale, nearest);
            found[n] = {nearest.begin(), nearest.end()};
        }
    });
    NeighbourLists result;
    result.starts.reserve(distances.rows + 1);
    result.nearest.reserve(distances.rows * std::min(count, distances.rows));
    for (std::vector<NearRow>& of_row : found) {
        result.nearest.insert(result.nearest.end(), of_row.begin(), of_row.end());
        result.starts.push_back(result.nearest.size());
        of_row = {};
    }
    return result;
}

double distance_scale(std::span<const double> distances) {
    double largest = 0.0;
    for (const double distance : distances) {
        largest = std::isfinite(distance) ? std::max(largest, distance) : largest;
    }
    int exponent = 0;
    std::frexp(largest, &exponent);
    return std::ldexp(1.0, -exponent);
}

}  // namespace ovik
