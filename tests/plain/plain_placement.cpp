#include "tests/plain/plain_placement.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "tests/plain/plain_tsne.h"

namespace plain {

namespace {

using Neighbours = std::vector<std::pair<double, std::size_t>>;

/// All rows of the map with their distances from a row, nearest first.
Neighbours rows_by_distance(const FixedMap& map, const std::vector<double>& row) {
    Neighbours neighbours;
    for (std::size_t j = 0; j < map.rows; ++j) {
        double sum = 0.0;
        for (std::size_t d = 0; d < map.columns; ++d) {
            const double x = (row[d] - map.means[d]) * map.factor;
            const double difference = x - map.input[j * map.columns + d];
            sum += difference * difference;
        }
        neighbours.emplace_back(std::sqrt(sum), j);
    }
    std::sort(neighbours.begin(), neighbours.end());
    return neighbours;
}

double median(std::vector<double> numbers) {
    std::sort(numbers.begin(), numbers.end());
    const std::size_t half = numbers.size() / 2;
    if (numbers.size() % 2 == 1) {
        return numbers[half];
    }
    return 0.5 * (numbers[half - 1] + numbers[half]);
}

/// The cost of a place and its gradient.
double cost_at(const FixedMap& map,
               const Neighbours& nearest,
               const std::vector<double>& p,
               const std::vector<double>& y,
               std::vector<double>& gradient) {
    const std::size_t dims = map.out_dims;
    std::vector<double> w(map.rows);
    double Z = 0.0;
    std::vector<double> repulsion(dims, 0.0);
    for (std::size_t j = 0; j < map.rows; ++j) {
        double square = 0.0;
        for (std::size_t d = 0; d < dims; ++d) {
            const double difference = y[d] - map.embedding[j * dims + d];
            square += difference * difference;
        }
        w[j] = 1.0 / (1.0 + square);
        Z += w[j];
        for (std::size_t d = 0; d < dims; ++d) {
            repulsion[d] += (w[j] * w[j]) * (y[d] - map.embedding[j * dims + d]);
        }
    }
    double cost = 0.0;
    std::vector<double> attraction(dims, 0.0);
    for (std::size_t m = 0; m < p.size(); ++m) {
        const std::size_t j = nearest[m].second;
        for (std::size_t d = 0; d < dims; ++d) {
            attraction[d] += (p[m] * w[j]) * (y[d] - map.embedding[j * dims + d]);
        }
        if (p[m] > 0.0) {
            cost += p[m] * functions().log(p[m] * Z / w[j]);
        }
    }
    for (std::size_t d = 0; d < dims; ++d) {
        gradient[d] = 2.0 * (attraction[d] - repulsion[d] / Z);
    }
    return cost;
}

/// Keeps a coordinate among those of the map's points.
double keep_on_map(const FixedMap& map, std::size_t d, double y) {
    double low = map.embedding[d];
    double high = map.embedding[d];
    for (std::size_t j = 0; j < map.rows; ++j) {
        low = std::min(low, map.embedding[j * map.out_dims + d]);
        high = std::max(high, map.embedding[j * map.out_dims + d]);
    }
    return y < low ? low : (y > high ? high : y);
}

/// Shortens a step to length 1.
void limit_length(std::vector<double>& step) {
    double square = 0.0;
    for (const double x : step) {
        square += x * x;
    }
    const double length = std::sqrt(square);
    for (double& x : step) {
        x = length > 1.0 ? x * (1.0 / length) : x;
    }
}

/// The cheapest place that descent comes to from a start.
Place descend(const FixedMap& map,
              const Neighbours& neighbours,
              const std::vector<double>& p,
              const std::vector<double>& start) {
    const std::size_t dims = map.out_dims;
    Place best{start, 0.0};
    std::vector<double> y = start;
    std::vector<double> gradient(dims);
    std::vector<double> velocity(dims, 0.0);
    std::vector<double> gains(dims, 1.0);
    best.cost = cost_at(map, neighbours, p, y, gradient);
    const auto sign = [](double x) { return x == 0.0 ? 0 : (x < 0.0 ? -1 : 1); };
    for (int iteration = 0; iteration < 125; ++iteration) {
        for (std::size_t d = 0; d < dims; ++d) {
            gains[d] = sign(gradient[d]) != sign(velocity[d]) ? gains[d] + 0.2 : gains[d] * 0.8;
            gains[d] = gains[d] < 0.01 ? 0.01 : gains[d];
            velocity[d] = velocity[d] * 0.8 - (gains[d] * 2.0) * gradient[d];
        }
        limit_length(velocity);
        for (std::size_t d = 0; d < dims; ++d) {
            y[d] = keep_on_map(map, d, y[d] + velocity[d]);
        }
        const double cost = cost_at(map, neighbours, p, y, gradient);
        if (cost < best.cost) {
            best.cost = cost;
            best.y = y;
        }
    }
    return best;
}

}  // namespace

Place place_row(const FixedMap& map, const std::vector<double>& row) {
    const Neighbours neighbours = rows_by_distance(map, row);
    std::vector<double> distances;
    const auto K = static_cast<std::size_t>(3.0 * map.perplexity);
    for (std::size_t m = 0; m < std::min(K, map.rows); ++m) {
        distances.push_back(neighbours[m].first);
    }
    const std::vector<double> p = similarities_to(distances, map.perplexity);
    const std::size_t beside = std::min<std::size_t>(25, map.rows);
    std::vector<std::vector<double>> starts(beside + 1);
    for (std::size_t d = 0; d < map.out_dims; ++d) {
        std::vector<double> coordinates;
        for (std::size_t m = 0; m < beside; ++m) {
            coordinates.push_back(map.embedding[neighbours[m].second * map.out_dims + d]);
            starts[m + 1].push_back(coordinates.back());
        }
        starts[0].push_back(median(coordinates));
    }
    std::vector<double> gradient(map.out_dims);
    std::vector<std::pair<double, std::size_t>> order;
    for (std::size_t s = 0; s < starts.size(); ++s) {
        order.emplace_back(cost_at(map, neighbours, p, starts[s], gradient), s);
    }
    std::sort(order.begin(), order.end());
    Place best{starts[order[0].second], order[0].first};
    for (std::size_t o = 0; o < std::min<std::size_t>(3, order.size()); ++o) {
        const Place end = descend(map, neighbours, p, starts[order[o].second]);
        if (end.cost < best.cost) {
            best = end;
        }
    }
    return best;
}

}  // namespace plain
