#include "tests/plain/plain_tsne.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace plain {

Functions& functions() {
    static Functions chosen{[](double x) { return std::exp(x); },
                            [](double x) { return std::log(x); }};
    return chosen;
}

namespace {

/// The precision of a Gaussian under search, and its bounds.
struct Bandwidth {
    double beta = 1.0;
    double min_beta = -DBL_MAX;
    double max_beta = DBL_MAX;

    /// Whether the entropy is near enough; otherwise moves on.
    bool fits(double difference) {
        if (difference < 1e-5 && difference > -1e-5) {
            return true;
        }
        if (difference > 0) {
            min_beta = beta;
            beta =
                max_beta == DBL_MAX || max_beta == -DBL_MAX ? beta + beta : 0.5 * (beta + max_beta);
        } else {
            max_beta = beta;
            beta =
                min_beta == DBL_MAX || min_beta == -DBL_MAX ? beta * 0.5 : 0.5 * (beta + min_beta);
        }
        return false;
    }
};

}  // namespace

Matrix read_tab_separated(const std::string& path, std::size_t most_rows) {
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error("cannot open " + path);
    }
    Matrix matrix;
    std::string line;
    std::getline(file, line);
    while (matrix.rows < most_rows && std::getline(file, line)) {
        std::istringstream fields(line);
        std::string field;
        std::getline(fields, field, '\t');
        matrix.names.push_back(field);
        while (std::getline(fields, field, '\t')) {
            matrix.values.push_back(std::strtod(field.c_str(), nullptr));
        }
        ++matrix.rows;
    }
    matrix.columns = matrix.values.size() / matrix.rows;
    return matrix;
}

void centre_columns(std::vector<double>& values, std::size_t rows, std::size_t columns) {
    for (std::size_t d = 0; d < columns; ++d) {
        double mean = 0.0;
        for (std::size_t n = 0; n < rows; ++n) {
            mean += values[n * columns + d];
        }
        mean = mean * (1.0 / static_cast<double>(rows));
        for (std::size_t n = 0; n < rows; ++n) {
            values[n * columns + d] -= mean;
        }
    }
}

void normalise_input(std::vector<double>& values, std::size_t rows, std::size_t columns) {
    centre_columns(values, rows, columns);
    double largest = 0.0;
    for (const double value : values) {
        largest = std::max(largest, std::abs(value));
    }
    const double reciprocal = 1.0 / largest;
    for (double& value : values) {
        value *= reciprocal;
    }
}

std::vector<double> squared_distances(const std::vector<double>& points,
                                      std::size_t N,
                                      std::size_t dims) {
    std::vector<double> distances(N * N, 0.0);
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t m = n + 1; m < N; ++m) {
            double sum = 0.0;
            for (std::size_t d = 0; d < dims; ++d) {
                const double difference = points[n * dims + d] - points[m * dims + d];
                sum += difference * difference;
            }
            distances[n * N + m] = sum;
            distances[m * N + n] = sum;
        }
    }
    return distances;
}

std::vector<double> conditional_similarities(const std::vector<double>& points,
                                             std::size_t N,
                                             std::size_t dims,
                                             double perplexity) {
    return conditional_similarities_by(squared_distances(points, N, dims), N, perplexity);
}

std::vector<double> conditional_similarities_by(const std::vector<double>& distances,
                                                std::size_t N,
                                                double perplexity) {
    std::vector<double> P(N * N);
    for (std::size_t n = 0; n < N; ++n) {
        Bandwidth bandwidth;
        double sum_P = 0.0;
        for (int left = 500; left > 0; --left) {
            const double beta = bandwidth.beta;
            for (std::size_t m = 0; m < N; ++m) {
                P[n * N + m] = functions().exp((-beta) * distances[n * N + m]);
            }
            P[n * N + n] = DBL_MIN;
            sum_P = DBL_MIN;
            for (std::size_t m = 0; m < N; ++m) {
                sum_P += P[n * N + m];
            }
            double H = 0.0;
            for (std::size_t m = 0; m < N; ++m) {
                H += P[n * N + m] * distances[n * N + m] * beta;
            }
            H = H / sum_P + functions().log(sum_P);
            if (bandwidth.fits(H - functions().log(perplexity))) {
                break;
            }
        }
        for (std::size_t m = 0; m < N; ++m) {
            P[n * N + m] /= sum_P;
        }
    }
    return P;
}

void symmetrise_and_normalise(std::vector<double>& P, std::size_t N) {
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t m = n + 1; m < N; ++m) {
            P[n * N + m] += P[m * N + n];
            P[m * N + n] = P[n * N + m];
        }
    }
    double total = 0.0;
    for (const double p : P) {
        total += p;
    }
    for (double& p : P) {
        p /= total;
    }
}

std::vector<double> gradient(const std::vector<double>& P,
                             const std::vector<double>& Y,
                             std::size_t N,
                             std::size_t dims,
                             double annealing) {
    std::vector<double> Q = squared_distances(Y, N, dims);
    double sum_Q = 0.0;
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t m = 0; m < N; ++m) {
            if (m != n) {
                Q[n * N + m] = 1.0 / (Q[n * N + m] + 1.0);
                sum_Q += Q[n * N + m];
            }
        }
    }
    std::vector<double> dC(N * dims, 0.0);
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t m = 0; m < N; ++m) {
            if (m != n) {
                const double mult =
                    Q[n * N + m] * (P[n * N + m] - Q[n * N + m] / (annealing * sum_Q));
                for (std::size_t d = 0; d < dims; ++d) {
                    dC[n * dims + d] += (Y[n * dims + d] - Y[m * dims + d]) * mult;
                }
            }
        }
    }
    for (double& element : dC) {
        element *= annealing;
    }
    return dC;
}

double cost(const std::vector<double>& P,
            const std::vector<double>& Y,
            std::size_t N,
            std::size_t dims) {
    std::vector<double> Q = squared_distances(Y, N, dims);
    double sum_Q = DBL_MIN;
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t m = 0; m < N; ++m) {
            if (m == n) {
                Q[n * N + n] = DBL_MIN;
            } else {
                Q[n * N + m] = 1.0 / (Q[n * N + m] + 1.0);
                sum_Q += Q[n * N + m];
            }
        }
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < N * N; ++i) {
        sum += P[i] * functions().log((P[i] + DBL_MIN) / (Q[i] / sum_Q + DBL_MIN));
    }
    return sum;
}

std::vector<double> similarities_to(const std::vector<double>& distances, double perplexity) {
    const std::size_t K = distances.size();
    std::vector<double> P(K);
    Bandwidth bandwidth;
    double sum_P = 0.0;
    for (int left = 200; left > 0; --left) {
        const double beta = bandwidth.beta;
        for (std::size_t m = 0; m < K; ++m) {
            P[m] = functions().exp(((-beta) * distances[m]) * distances[m]);
        }
        sum_P = DBL_MIN;
        for (std::size_t m = 0; m < K; ++m) {
            sum_P += P[m];
        }
        double H = 0.0;
        for (std::size_t m = 0; m < K; ++m) {
            H += distances[m] * distances[m] * P[m] * beta;
        }
        H = H / sum_P + functions().log(sum_P);
        if (bandwidth.fits(H - functions().log(perplexity))) {
            break;
        }
    }
    for (double& p : P) {
        p /= sum_P;
    }
    return P;
}

SparseRows neighbour_similarities(const std::vector<double>& points,
                                  std::size_t N,
                                  std::size_t dims,
                                  double perplexity,
                                  std::size_t K) {
    std::vector<double> distances = squared_distances(points, N, dims);
    for (double& distance : distances) {
        distance = std::sqrt(distance);
    }
    return neighbour_similarities_by(distances, N, perplexity, K);
}

SparseRows neighbour_similarities_by(const std::vector<double>& distances,
                                     std::size_t N,
                                     double perplexity,
                                     std::size_t K) {
    SparseRows rows(N);
    for (std::size_t n = 0; n < N; ++n) {
        std::vector<std::pair<double, std::size_t>> others;
        for (std::size_t m = 0; m < N; ++m) {
            if (m != n) {
                others.emplace_back(distances[n * N + m], m);
            }
        }
        std::sort(others.begin(), others.end());
        others.resize(K);
        std::vector<double> nearest;
        for (const auto& other : others) {
            nearest.push_back(other.first);
        }
        const std::vector<double> cur_P = similarities_to(nearest, perplexity);
        for (std::size_t m = 0; m < K; ++m) {
            rows[n].emplace_back(others[m].second, cur_P[m]);
        }
    }
    return rows;
}

SparseRows symmetrise(const SparseRows& conditional) {
    SparseRows rows(conditional.size());
    for (std::size_t n = 0; n < conditional.size(); ++n) {
        for (const auto& [j, value] : conditional[n]) {
            bool found = false;
            double sum = value;
            for (const auto& [column, mirror_value] : conditional[j]) {
                if (column == n) {
                    found = true;
                    sum = value + mirror_value;
                }
            }
            if (found && n > j) {
                continue;
            }
            rows[n].emplace_back(j, sum);
            if (j != n) {
                rows[j].emplace_back(n, sum);
            }
        }
    }
    for (auto& row : rows) {
        for (auto& entry : row) {
            entry.second *= 0.5;
        }
    }
    return rows;
}

std::size_t tree_draws(std::size_t point_count) {
    if (point_count < 2) {
        return 0;
    }
    // One point is the vantage point; those from the middle on go right.
    const std::size_t right = point_count - point_count / 2;
    return 1 + tree_draws(point_count - 1 - right) + tree_draws(right);
}

double normal_deviate() {
    double x = 0.0;
    double y = 0.0;
    double r = 0.0;
    do {
        x = static_cast<double>(rand()) * std::pow(2.0, -31.0);
        x = x + x - 1.0;
        y = static_cast<double>(rand()) * std::pow(2.0, -31.0);
        y = y + y - 1.0;
        r = y * y + x * x;
    } while (r >= 1.0 || r == 0.0);
    return x * std::sqrt((functions().log(r) * -2.0) / r);
}

double exaggeration_of(const Schedule& schedule, int iter) {
    if (!schedule.is_annealed) {
        return iter <= schedule.stop_lying_iter ? schedule.exaggeration : 1.0;
    }
    if (iter < schedule.hold_iter) {
        return schedule.exaggeration;
    }
    const int left = std::max(schedule.hold_iter + schedule.release_iter - iter, 0);
    return 1.0 + (schedule.exaggeration - 1.0) *
                     (static_cast<double>(left) / static_cast<double>(schedule.release_iter + 1));
}

double annealing_of(const Schedule& schedule, int iter) {
    return schedule.is_annealed ? exaggeration_of(schedule, iter) : 1.0;
}

double momentum_of(const Schedule& schedule, int iter) {
    if (schedule.is_annealed) {
        const bool is_released = iter >= schedule.hold_iter + schedule.release_iter;
        return is_released ? schedule.final_momentum : std::min(schedule.final_momentum, 0.8);
    }
    return iter <= schedule.mom_switch_iter ? schedule.momentum : schedule.final_momentum;
}

double learning_rate_of(const Schedule& schedule, std::size_t N, int iter) {
    return schedule.has_automatic_rate
               ? std::max(200.0, static_cast<double>(N) / exaggeration_of(schedule, iter))
               : schedule.learning_rate;
}

bool has_settled(const Schedule& schedule, const std::vector<double>& costs) {
    const int iter = static_cast<int>(costs.size()) - 1;
    const int last_exaggerated = schedule.is_annealed
                                     ? schedule.hold_iter + schedule.release_iter - 1
                                     : schedule.stop_lying_iter;
    const int before = iter - 50;
    if (iter % 50 != 0 || before < 0 || before < last_exaggerated) {
        return false;
    }
    const double now = costs[static_cast<std::size_t>(iter)];
    return costs[static_cast<std::size_t>(before)] - now < schedule.stop_when * now;
}

std::vector<double> embed_exactly(const Matrix& input,
                                  std::size_t no_dims,
                                  double perplexity,
                                  const Schedule& schedule,
                                  std::vector<double>* costs) {
    const std::size_t N = input.rows;
    std::vector<double> X = input.values;
    normalise_input(X, N, input.columns);
    std::vector<double> P = conditional_similarities(X, N, input.columns, perplexity);
    symmetrise_and_normalise(P, N);
    return descend_exactly(std::move(P), N, no_dims, schedule, costs);
}

std::vector<double> descend_exactly(std::vector<double> P,
                                    std::size_t N,
                                    std::size_t no_dims,
                                    const Schedule& schedule,
                                    std::vector<double>* costs) {
    if (!schedule.is_annealed) {
        for (double& p : P) {
            p *= schedule.exaggeration;
        }
    }
    srand(schedule.seed);
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
        const std::vector<double> dY = gradient(P, Y, N, no_dims, annealing_of(schedule, iter));
        const double momentum = momentum_of(schedule, iter);
        const double learning_rate = learning_rate_of(schedule, N, iter);
        for (std::size_t i = 0; i < Y.size(); ++i) {
            gains[i] = sign(dY[i]) != sign(uY[i]) ? gains[i] + 0.2 : gains[i] * 0.8;
            gains[i] = gains[i] < 0.01 ? 0.01 : gains[i];
            if (!schedule.has_gains) {
                gains[i] = 1.0;
            }
            uY[i] = uY[i] * momentum - (gains[i] * learning_rate) * dY[i];
            Y[i] += uY[i];
        }
        centre_columns(Y, N, no_dims);
        if (!schedule.is_annealed && iter == schedule.stop_lying_iter) {
            for (double& p : P) {
                p /= schedule.exaggeration;
            }
        }
        if (costs != nullptr || schedule.stop_when > 0.0) {
            all_costs.push_back(cost(P, Y, N, no_dims));
        }
    }
    if (costs != nullptr) {
        costs->insert(costs->end(), all_costs.begin(), all_costs.end());
    }
    return Y;
}

}  // namespace plain
