#include "tests/plain/plain_sptree.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <numeric>

namespace plain {

SPTree::SPTree(std::size_t dims, const std::vector<double>& data)
    : dims_(dims),
      data_(data),
      rank_(data.size() / dims) {
    Points points(rank_.size());
    std::iota(points.begin(), points.end(), std::size_t{0});
    if (!points.empty()) {
        root_ = build(points, gridOver(points));
    }
}

double SPTree::coordinate(std::size_t point, std::size_t d) const {
    return data_[point * dims_ + d];
}

/// Below, at or above 0 as place a comes before b, is b, or comes behind. NaN comes last.
int SPTree::compare(std::size_t a, std::size_t b) const {
    for (std::size_t d = 0; d < dims_; ++d) {
        const double x = coordinate(a, d);
        const double y = coordinate(b, d);
        if (x < y || (!std::isnan(x) && std::isnan(y))) {
            return -1;
        }
        if (x > y || (std::isnan(x) && !std::isnan(y))) {
            return 1;
        }
    }
    return 0;
}

bool SPTree::areAtOnePlace(const Points& points) const {
    return std::all_of(points.begin(), points.end(), [&](std::size_t point) {
        return compare(points.front(), point) == 0;
    });
}

SPTree::Grid SPTree::gridOver(const Points& points) const {
    Grid grid{{}, 0.0};
    for (std::size_t d = 0; d < dims_; ++d) {
        grid.low[d] = DBL_MAX;
        double high = -DBL_MAX;
        for (const std::size_t point : points) {
            const double x = coordinate(point, d);
            if (std::isfinite(x)) {
                grid.low[d] = std::min(grid.low[d], x);
                high = std::max(high, x);
            }
        }
        if (high > grid.low[d]) {
            grid.side = std::max(grid.side, std::min(high - grid.low[d], DBL_MAX));
        }
    }
    return grid;
}

std::uint32_t SPTree::code(const Grid& grid, std::size_t point, std::size_t d) const {
    const double x = coordinate(point, d);
    if (x <= grid.low[d] || grid.side == 0.0) {
        return 0;
    }
    const double cell = (x - grid.low[d]) / grid.side * std::ldexp(1.0, 32);
    if (cell < std::ldexp(1.0, 32) - 1.0) {
        return static_cast<std::uint32_t>(cell);
    }
    return UINT32_MAX;
}

/// -1 if all share one cell of the grid.
int SPTree::highestDifferingBit(const Grid& grid, const Points& points) const {
    std::uint32_t differing = 0;
    for (std::size_t d = 0; d < dims_; ++d) {
        const std::uint32_t first = code(grid, points.front(), d);
        for (const std::size_t point : points) {
            differing |= code(grid, point, d) ^ first;
        }
    }
    int bit = -1;
    for (; differing != 0; differing >>= 1U) {
        ++bit;
    }
    return bit;
}

/// The points of each child, in order.
std::vector<SPTree::Points> SPTree::groups(const Grid& grid, const Points& points, int bit) const {
    std::vector<Points> result;
    if (bit < 0) {
        Points sorted = points;
        std::stable_sort(sorted.begin(), sorted.end(), [this](std::size_t a, std::size_t b) {
            return compare(a, b) < 0;
        });
        for (const std::size_t point : sorted) {
            if (result.empty() || compare(result.back().front(), point) != 0) {
                result.emplace_back();
            }
            result.back().push_back(point);
        }
        return result;
    }
    std::vector<Points> halves(std::size_t{1} << dims_);
    for (const std::size_t point : points) {
        std::size_t child = 0;
        for (std::size_t d = 0; d < dims_; ++d) {
            child = 2 * child + (code(grid, point, d) >> static_cast<unsigned int>(bit) & 1U);
        }
        halves[child].push_back(point);
    }
    for (Points& half : halves) {
        if (!half.empty()) {
            result.push_back(std::move(half));
        }
    }
    return result;
}

std::unique_ptr<SPTree::Cell> SPTree::build(const Points& points, Grid grid) {
    auto cell = std::make_unique<Cell>();
    cell->weight = static_cast<double>(points.size());
    cell->first_rank = next_rank_;
    if (areAtOnePlace(points)) {
        for (const std::size_t point : points) {
            rank_[point] = next_rank_++;
        }
        for (std::size_t d = 0; d < dims_; ++d) {
            cell->centre[d] = coordinate(points.front(), d);
        }
    } else {
        int bit = highestDifferingBit(grid, points);
        if (bit < 0) {
            grid = gridOver(points);
            bit = highestDifferingBit(grid, points);
        }
        const double side = std::ldexp(grid.side, bit + 1 - 32);
        cell->squared_side = side * side;
        for (const Points& group : groups(grid, points, bit)) {
            cell->children.push_back(build(group, grid));
        }
        for (std::size_t d = 0; d < dims_; ++d) {
            for (const auto& child : cell->children) {
                cell->centre[d] += child->weight * child->centre[d];
            }
            cell->centre[d] /= cell->weight;
        }
    }
    cell->last_rank = next_rank_;
    return cell;
}

void SPTree::addRepulsion(std::size_t point, double theta, double* neg_f, double* sum_Q) const {
    double share = 0.0;
    visit(*root_, point, theta > 0.0 ? theta * theta : 0.0, neg_f, &share);
    *sum_Q += share;
}

void SPTree::visit(
    const Cell& cell, std::size_t point, double squared_theta, double* neg_f, double* share) const {
    const bool holds = rank_[point] >= cell.first_rank && rank_[point] < cell.last_rank;
    double squared_distance = 0.0;
    for (std::size_t d = 0; d < dims_; ++d) {
        const double difference = coordinate(point, d) - cell.centre[d];
        squared_distance += difference * difference;
    }
    const bool is_far = !holds && cell.squared_side < squared_theta * squared_distance;
    if (!cell.children.empty() && !is_far) {
        for (const auto& child : cell.children) {
            visit(*child, point, squared_theta, neg_f, share);
        }
        return;
    }
    const double others = cell.weight - (holds ? 1.0 : 0.0);
    if (others == 0.0) {
        return;
    }
    const double q = 1.0 / (1.0 + squared_distance);
    *share += others * q;
    for (std::size_t d = 0; d < dims_; ++d) {
        neg_f[d] += others * q * q * (coordinate(point, d) - cell.centre[d]);
    }
}

Repulsion tree_repulsion(std::size_t dims, double theta) {
    return [dims, theta](const std::vector<double>& Y, std::vector<double>& forces) {
        const SPTree tree(dims, Y);
        forces.assign(Y.size(), 0.0);
        double sum_Q = 0.0;
        for (std::size_t n = 0; n < Y.size() / dims; ++n) {
            tree.addRepulsion(n, theta, forces.data() + n * dims, &sum_Q);
        }
        return sum_Q;
    };
}

namespace {

std::vector<double> gradient_with(const Repulsion& repulsion,
                                  const SparseRows& P,
                                  const std::vector<double>& Y,
                                  std::size_t dims,
                                  double annealing) {
    std::vector<double> pos_f(Y.size(), 0.0);
    std::vector<double> neg_f;
    const double sum_Q = repulsion(Y, neg_f);
    for (std::size_t n = 0; n < P.size(); ++n) {
        for (const auto& [m, p] : P[n]) {
            double squared_distance = 0.0;
            for (std::size_t d = 0; d < dims; ++d) {
                const double difference = Y[n * dims + d] - Y[m * dims + d];
                squared_distance += difference * difference;
            }
            const double q = 1.0 / (1.0 + squared_distance);
            for (std::size_t d = 0; d < dims; ++d) {
                pos_f[n * dims + d] += p * q * (Y[n * dims + d] - Y[m * dims + d]);
            }
        }
    }
    for (std::size_t i = 0; i < Y.size(); ++i) {
        pos_f[i] = annealing * (pos_f[i] - neg_f[i] / (annealing * sum_Q));
    }
    return pos_f;
}

double cost_with(const Repulsion& repulsion,
                 const SparseRows& P,
                 const std::vector<double>& Y,
                 std::size_t dims) {
    std::vector<double> discarded;
    const double sum_Q = repulsion(Y, discarded);
    double sum = 0.0;
    for (std::size_t n = 0; n < P.size(); ++n) {
        for (const auto& [m, p] : P[n]) {
            double squared_distance = 0.0;
            for (std::size_t d = 0; d < dims; ++d) {
                const double difference = Y[n * dims + d] - Y[m * dims + d];
                squared_distance += difference * difference;
            }
            const double q = 1.0 / (squared_distance + 1.0);
            sum += p * functions().log((p + DBL_MIN) / (q / sum_Q + DBL_MIN));
        }
    }
    return sum;
}

}  // namespace

std::vector<double> barnes_hut_gradient(const SparseRows& P,
                                        const std::vector<double>& Y,
                                        std::size_t dims,
                                        double theta,
                                        double annealing) {
    return gradient_with(tree_repulsion(dims, theta), P, Y, dims, annealing);
}

double barnes_hut_cost(const SparseRows& P,
                       const std::vector<double>& Y,
                       std::size_t dims,
                       double theta) {
    return cost_with(tree_repulsion(dims, theta), P, Y, dims);
}

SparseRows joint_similarities(const Matrix& input, double perplexity) {
    std::vector<double> X = input.values;
    normalise_input(X, input.rows, input.columns);
    return joint_similarities(X, input.rows, input.columns, perplexity);
}

SparseRows joint_similarities(const std::vector<double>& points,
                              std::size_t N,
                              std::size_t dims,
                              double perplexity) {
    return joined(neighbour_similarities(
        points, N, dims, perplexity, static_cast<std::size_t>(3.0 * perplexity)));
}

SparseRows joined(const SparseRows& conditional) {
    SparseRows P = symmetrise(conditional);
    double total = 0.0;
    for (const auto& row : P) {
        for (const auto& entry : row) {
            total += entry.second;
        }
    }
    for (auto& row : P) {
        for (auto& entry : row) {
            entry.second /= total;
        }
    }
    return P;
}

namespace {

/// Joint similarities that are scaled one by one, or by a factor of all.
struct Similarities {
    SparseRows rows;
    bool has_factor = false;
    double factor = 1.0;

    void scale(double multiplier, double divisor) {
        if (has_factor) {
            factor = factor * multiplier / divisor;
            return;
        }
        for (auto& row : rows) {
            for (auto& entry : row) {
                entry.second = entry.second * multiplier / divisor;
            }
        }
    }

    [[nodiscard]] SparseRows values() const {
        SparseRows values = rows;
        for (auto& row : values) {
            for (auto& entry : row) {
                entry.second *= factor;
            }
        }
        return values;
    }
};

void round_to_single(SparseRows& rows) {
    for (auto& row : rows) {
        for (auto& entry : row) {
            entry.second = static_cast<double>(static_cast<float>(entry.second));
        }
    }
}

/// Draws as many numbers from the seed as a search for neighbours does.
void draw_tree(const Schedule& schedule, std::size_t N) {
    srand(schedule.seed);
    for (std::size_t draw = 0; draw < tree_draws(N); ++draw) {
        rand();
    }
}

std::vector<double> descend_with(const Repulsion& repulsion,
                                 Similarities P,
                                 std::size_t no_dims,
                                 const Schedule& schedule,
                                 std::vector<double>* costs) {
    const std::size_t N = P.rows.size();
    if (!schedule.is_annealed) {
        P.scale(schedule.exaggeration, 1.0);
    }
    std::vector<double> Y(N * no_dims);
    for (double& y : Y) {
        y = normal_deviate() * schedule.start_spread;
    }
    if (schedule.start != nullptr) {
        Y = *schedule.start;
    }
    std::vector<double> uY(N * no_dims, 0.0);
    std::vector<double> gains(N * no_dims, 1.0);
    const auto sign = [](double x) { return x == 0.0 ? 0 : (x < 0.0 ? -1 : 1); };
    std::vector<double> all_costs;
    for (int iter = 0; iter <= schedule.max_iter && !has_settled(schedule, all_costs); ++iter) {
        const std::vector<double> dY =
            gradient_with(repulsion, P.values(), Y, no_dims, annealing_of(schedule, iter));
        const double momentum = momentum_of(schedule, iter);
        const double learning_rate = learning_rate_of(schedule, N, iter);
        for (std::size_t i = 0; i < Y.size(); ++i) {
            gains[i] = sign(dY[i]) != sign(uY[i]) ? gains[i] + 0.2 : gains[i] * 0.8;
            gains[i] = gains[i] < 0.01 ? 0.01 : gains[i];
            if (!schedule.has_gains) {
                gains[i] = 1.0;
            }
            uY[i] = momentum * uY[i] - gains[i] * learning_rate * dY[i];
            Y[i] += uY[i];
        }
        centre_columns(Y, N, no_dims);
        if (!schedule.is_annealed && iter == schedule.stop_lying_iter) {
            P.scale(1.0, schedule.exaggeration);
        }
        all_costs.push_back(cost_with(repulsion, P.values(), Y, no_dims));
    }
    if (costs != nullptr) {
        costs->insert(costs->end(), all_costs.begin(), all_costs.end());
    }
    return Y;
}

}  // namespace

std::vector<double> embed_with_tree(const Matrix& input,
                                    std::size_t no_dims,
                                    double perplexity,
                                    double theta,
                                    const Schedule& schedule,
                                    std::vector<double>* costs) {
    draw_tree(schedule, input.rows);
    return descend_with_tree(
        joint_similarities(input, perplexity), no_dims, theta, schedule, costs);
}

std::vector<double> embed_in_single_precision(const Repulsion& repulsion,
                                              const Matrix& input,
                                              std::size_t no_dims,
                                              double perplexity,
                                              const Schedule& schedule,
                                              std::vector<double>* costs) {
    draw_tree(schedule, input.rows);
    std::vector<double> X = input.values;
    normalise_input(X, input.rows, input.columns);
    SparseRows conditional = neighbour_similarities(
        X, input.rows, input.columns, perplexity, static_cast<std::size_t>(3.0 * perplexity));
    round_to_single(conditional);
    Similarities P{symmetrise(conditional), true};
    round_to_single(P.rows);
    double total = 0.0;
    for (const auto& row : P.rows) {
        for (const auto& entry : row) {
            total += entry.second;
        }
    }
    P.scale(1.0, total);
    return descend_with(repulsion, std::move(P), no_dims, schedule, costs);
}

std::vector<double> descend_with_tree(SparseRows P,
                                      std::size_t no_dims,
                                      double theta,
                                      const Schedule& schedule,
                                      std::vector<double>* costs) {
    return descend_with(tree_repulsion(no_dims, theta), {std::move(P)}, no_dims, schedule, costs);
}

}  // namespace plain
