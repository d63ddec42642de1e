#include "neighbours/sptree.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <numeric>

#include "util/parallel.h"

namespace ovik {

namespace {

constexpr int kGridBits = 32;

/// Fewest points for which another thread pays.
constexpr std::size_t kEdgeForceGrain = 64;

/// Cell of one coordinate on a grid of 2^32 cells over [low, low + side].
std::uint32_t grid_code(double coordinate, double low, double side) {
    constexpr double kCells = 4294967296.0;
    if (coordinate <= low || side == 0.0) {
        return 0;
    }
    const double cell = (coordinate - low) / side * kCells;
    // Written so that NaN and everything beyond the grid fall into the last cell.
    return cell < kCells - 1.0 ? static_cast<std::uint32_t>(cell) : 4294967295U;
}

/// Orders two coordinates; a NaN equals a NaN and follows all numbers.
int compare_coordinates(double a, double b) {
    if (a < b) {
        return -1;
    }
    if (a > b) {
        return 1;
    }
    return static_cast<int>(std::isnan(a)) - static_cast<int>(std::isnan(b));
}

}  // namespace

SPTree::SPTree(unsigned int D, const double* data, unsigned int N)
    : dims_(D),
      point_count_(N),
      data_(data),
      codes_(dims_ * point_count_),
      order_(point_count_),
      rank_(point_count_) {
    std::iota(order_.begin(), order_.end(), 0U);
    buildNodes();
    linkAndWeigh();
    for (std::uint32_t position = 0; position < point_count_; ++position) {
        rank_[order_[position]] = position;
    }
    codes_ = {};
}

void SPTree::buildNodes() {
    if (point_count_ == 0) {
        return;
    }
    std::vector<PendingCell> pending;
    pending.push_back({0, point_count_, layGrid(0, point_count_)});
    while (!pending.empty()) {
        PendingCell cell = pending.back();
        pending.pop_back();
        if (comparePlaces(order_[cell.first], order_[cell.last - 1]) == 0) {
            nodes_.push_back({0.0, cell.first, cell.last, 0});
            continue;
        }
        int bit = highestDifferingBit(order_[cell.first], order_[cell.last - 1]);
        if (bit < 0) {
            cell.grid_side = layGrid(cell.first, cell.last);
            bit = highestDifferingBit(order_[cell.first], order_[cell.last - 1]);
        }
        const double side = std::ldexp(cell.grid_side, bit + 1 - kGridBits);
        nodes_.push_back({side * side, cell.first, cell.last, 0});
        pushChildren(cell, bit, pending);
    }
}

/// Lays a grid over the box of some points and sorts them in the Morton order of its cells.
///
/// @return the side of the grid; 0 if the points differ only in coordinates that are not finite
double SPTree::layGrid(std::uint32_t first, std::uint32_t last) {
    std::vector<double> low(dims_, DBL_MAX);
    double side = 0.0;
    for (std::size_t d = 0; d < dims_; ++d) {
        double high = -DBL_MAX;
        for (std::uint32_t position = first; position < last; ++position) {
            const double coordinate = data_[order_[position] * dims_ + d];
            if (std::isfinite(coordinate)) {
                low[d] = std::min(low[d], coordinate);
                high = std::max(high, coordinate);
            }
        }
        if (low[d] < high) {
            side = std::max(side, std::min(high - low[d], DBL_MAX));
        }
    }
    for (std::uint32_t position = first; position < last; ++position) {
        const std::size_t row = order_[position] * dims_;
        for (std::size_t d = 0; d < dims_; ++d) {
            codes_[row + d] = grid_code(data_[row + d], low[d], side);
        }
    }
    std::sort(order_.begin() + first,
              order_.begin() + last,
              [this](std::uint32_t a, std::uint32_t b) { return precedes(a, b); });
    return side;
}

/// Puts the children of a cell on the stack, the first one on top. With `bit` -1 the grid tells its
/// points no further apart, and every place becomes a child.
void SPTree::pushChildren(const PendingCell& cell,
                          int bit,
                          std::vector<PendingCell>& pending) const {
    std::uint32_t last = cell.last;
    for (std::uint32_t position = cell.last - 1; position > cell.first; --position) {
        if (!inSameChild(order_[position - 1], order_[position], bit)) {
            pending.push_back({position, last, cell.grid_side});
            last = position;
        }
    }
    pending.push_back({cell.first, last, cell.grid_side});
}

/// Fills the skip links and the centres of mass from the children upwards.
void SPTree::linkAndWeigh() {
    const auto node_count = static_cast<std::uint32_t>(nodes_.size());
    centres_.assign(node_count * dims_, 0.0);
    for (std::uint32_t i = node_count; i-- > 0;) {
        Node& node = nodes_[i];
        double* const sum = centres_.data() + i * dims_;
        std::uint32_t child = i + 1;
        while (child < node_count && nodes_[child].first < node.last) {
            const auto weight = static_cast<double>(nodes_[child].last - nodes_[child].first);
            for (std::size_t d = 0; d < dims_; ++d) {
                sum[d] += weight * centres_[child * dims_ + d];
            }
            child = nodes_[child].next;
        }
        node.next = child;
        const bool is_leaf = child == i + 1;
        const double* const place = data_ + order_[node.first] * dims_;
        const auto weight = static_cast<double>(node.last - node.first);
        for (std::size_t d = 0; d < dims_; ++d) {
            sum[d] = is_leaf ? place[d] : sum[d] / weight;
        }
    }
}

/// The highest bit in which the codes of two points differ in any dimension; -1 if none.
int SPTree::highestDifferingBit(std::uint32_t a, std::uint32_t b) const {
    std::uint32_t differing = 0;
    for (std::size_t d = 0; d < dims_; ++d) {
        differing |= codes_[a * dims_ + d] ^ codes_[b * dims_ + d];
    }
    return static_cast<int>(std::bit_width(differing)) - 1;
}

bool SPTree::inSameChild(std::uint32_t a, std::uint32_t b, int bit) const {
    return bit < 0 ? comparePlaces(a, b) == 0 : highestDifferingBit(a, b) < bit;
}

/// Morton order: decided by the highest differing bit, the lower dimension first; points of one
/// grid cell are ordered by place, points of one place by row.
bool SPTree::precedes(std::uint32_t a, std::uint32_t b) const {
    std::size_t deciding_dim = 0;
    std::uint32_t highest = 0;
    for (std::size_t d = 0; d < dims_; ++d) {
        const std::uint32_t differing = codes_[a * dims_ + d] ^ codes_[b * dims_ + d];
        // Whether the highest bit of `differing` lies above that of `highest`.
        if (highest < differing && highest < (highest ^ differing)) {
            deciding_dim = d;
            highest = differing;
        }
    }
    if (highest != 0) {
        return codes_[a * dims_ + deciding_dim] < codes_[b * dims_ + deciding_dim];
    }
    const int places = comparePlaces(a, b);
    return places != 0 ? places < 0 : a < b;
}

/// Negative, zero or positive: orders the places of two points, first coordinate first.
int SPTree::comparePlaces(std::uint32_t a, std::uint32_t b) const {
    for (std::size_t d = 0; d < dims_; ++d) {
        const int order = compare_coordinates(data_[a * dims_ + d], data_[b * dims_ + d]);
        if (order != 0) {
            return order;
        }
    }
    return 0;
}

void SPTree::computeEdgeForces(const unsigned int* row_P,
                               const unsigned int* col_P,
                               const double* val_P,
                               int N,
                               double* pos_f) const {
    parallel_for_each(static_cast<std::size_t>(N), kEdgeForceGrain, [=, this](std::size_t n) {
        const double* const own = data_ + n * dims_;
        double* const force = pos_f + n * dims_;
        for (std::size_t i = row_P[n]; i < row_P[n + 1]; ++i) {
            const double* const other = data_ + col_P[i] * dims_;
            double squared_distance = 0.0;
            for (std::size_t d = 0; d < dims_; ++d) {
                const double difference = own[d] - other[d];
                squared_distance += difference * difference;
            }
            const double q = 1.0 / (1.0 + squared_distance);
            for (std::size_t d = 0; d < dims_; ++d) {
                force[d] += val_P[i] * q * (own[d] - other[d]);
            }
        }
    });
}

void SPTree::computeNonEdgeForces(unsigned int point,
                                  double theta,
                                  double* neg_f,
                                  double* sum_Q) const {
    switch (dims_) {
        case 2:
            return addRepulsion<2>(point, theta, neg_f, sum_Q);
        case 3:
            return addRepulsion<3>(point, theta, neg_f, sum_Q);
        default:
            return addRepulsion<0>(point, theta, neg_f, sum_Q);
    }
}

/// The walk of `computeNonEdgeForces`.
///
/// @tparam Dims  the number of dimensions where it is known to the compiler, else 0
template <std::size_t Dims>
void SPTree::addRepulsion(unsigned int point, double theta, double* neg_f, double* sum_Q) const {
    const std::size_t dims = Dims > 0 ? Dims : dims_;
    const double* const own = data_ + point * dims;
    const std::uint32_t rank = rank_[point];
    const double squared_theta = theta > 0.0 ? theta * theta : 0.0;
    const auto node_count = static_cast<std::uint32_t>(nodes_.size());
    double share = 0.0;
    for (std::uint32_t i = 0; i < node_count;) {
        const Node& node = nodes_[i];
        const double* const centre = centres_.data() + i * dims;
        const bool is_leaf = node.next == i + 1;
        const bool holds_point = rank >= node.first && rank < node.last;
        double squared_distance = 0.0;
        for (std::size_t d = 0; d < dims; ++d) {
            const double difference = own[d] - centre[d];
            squared_distance += difference * difference;
        }
        const bool is_far = !holds_point && node.squared_side < squared_theta * squared_distance;
        if (!is_leaf && !is_far) {
            ++i;
            continue;
        }
        const std::uint32_t others = node.last - node.first - (holds_point ? 1 : 0);
        if (others > 0) {
            const double q = 1.0 / (1.0 + squared_distance);
            const double weight = static_cast<double>(others) * q;
            share += weight;
            for (std::size_t d = 0; d < dims; ++d) {
                neg_f[d] += weight * q * (own[d] - centre[d]);
            }
        }
        i = node.next;
    }
    *sum_Q += share;
}

}  // namespace ovik
