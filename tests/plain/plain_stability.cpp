#include "tests/plain/plain_stability.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "tests/plain/plain_tsne.h"

namespace plain {

namespace {

/// Moves a map to its middle.
///
/// @return the root of the mean squared distance of its rows from there
double centred(std::vector<double>& map) {
    const std::size_t N = map.size() / 2;
    centre_columns(map, N, 2);
    double squares = 0.0;
    for (const double value : map) {
        squares += value * value;
    }
    return std::sqrt(squares / static_cast<double>(N));
}

double squares_between(const std::vector<double>& A, const std::vector<double>& B, std::size_t n) {
    return (A[2 * n] - B[2 * n]) * (A[2 * n] - B[2 * n]) +
           (A[2 * n + 1] - B[2 * n + 1]) * (A[2 * n + 1] - B[2 * n + 1]);
}

/// A map turned by the angle that brings it nearest to another, after the second column changed
/// its sign, if so wanted.
std::vector<double> turned_onto(const std::vector<double>& target,
                                std::vector<double> map,
                                bool is_mirrored) {
    double along = 0.0;
    double across = 0.0;
    for (std::size_t i = 0; i < map.size(); i += 2) {
        map[i + 1] = is_mirrored ? -map[i + 1] : map[i + 1];
        along += map[i] * target[i] + map[i + 1] * target[i + 1];
        across += map[i] * target[i + 1] - map[i + 1] * target[i];
    }
    const double angle = std::atan2(across, along);
    for (std::size_t i = 0; i < map.size(); i += 2) {
        const double x = map[i];
        const double y = map[i + 1];
        map[i] = std::cos(angle) * x - std::sin(angle) * y;
        map[i + 1] = std::sin(angle) * x + std::cos(angle) * y;
    }
    return map;
}

double all_squares_between(const std::vector<double>& A, const std::vector<double>& B) {
    double sum = 0.0;
    for (std::size_t n = 0; n < A.size() / 2; ++n) {
        sum += squares_between(A, B, n);
    }
    return sum;
}

/// The squared distance of a row to the nearest other one of a cluster.
double nearest_of(const std::vector<double>& map,
                  const std::vector<std::uint32_t>& clusters,
                  std::size_t n,
                  std::uint32_t cluster) {
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t m = 0; m < clusters.size(); ++m) {
        const double dx = map[2 * n] - map[2 * m];
        const double dy = map[2 * n + 1] - map[2 * m + 1];
        if (m != n && clusters[m] == cluster) {
            least = std::min(least, dx * dx + dy * dy);
        }
    }
    return least;
}

}  // namespace

std::vector<double> rows_shared(const std::vector<double>& A,
                                const std::vector<double>& B,
                                std::size_t K) {
    const std::size_t N = A.size() / 2;
    const auto nearest = [=](const std::vector<double>& map, std::size_t n) {
        std::vector<std::pair<double, std::size_t>> others;
        for (std::size_t m = 0; m < N; ++m) {
            const double dx = map[2 * n] - map[2 * m];
            const double dy = map[2 * n + 1] - map[2 * m + 1];
            if (m != n) {
                others.emplace_back(dx * dx + dy * dy, m);
            }
        }
        std::sort(others.begin(), others.end());
        others.resize(K);
        return others;
    };
    std::vector<double> shares;
    for (std::size_t n = 0; n < N; ++n) {
        std::size_t shared = 0;
        for (const auto& a : nearest(A, n)) {
            for (const auto& b : nearest(B, n)) {
                shared += a.second == b.second ? 1 : 0;
            }
        }
        shares.push_back(static_cast<double>(shared) / static_cast<double>(K));
    }
    return shares;
}

std::vector<double> plane_spread(const std::vector<double>& map,
                                 const std::vector<std::vector<double>>& others) {
    std::vector<double> target = map;
    const double radius = centred(target);
    std::vector<double> spread(map.size() / 2, 0.0);
    for (std::vector<double> other : others) {
        const double scale = radius / centred(other);
        for (double& value : other) {
            value *= scale;
        }
        const std::vector<double> turned = turned_onto(target, other, false);
        const std::vector<double> mirrored = turned_onto(target, other, true);
        const std::vector<double>& laid =
            all_squares_between(target, turned) <= all_squares_between(target, mirrored) ? turned
                                                                                         : mirrored;
        for (std::size_t n = 0; n < spread.size(); ++n) {
            spread[n] += squares_between(target, laid, n);
        }
    }
    for (double& value : spread) {
        value = std::sqrt(value / static_cast<double>(others.size())) / radius;
    }
    return spread;
}

double separation(const std::vector<double>& map,
                  const std::vector<std::uint32_t>& clusters,
                  std::uint32_t first,
                  std::uint32_t second) {
    double shares = 0.0;
    for (const auto& [own, other] : {std::pair(first, second), std::pair(second, first)}) {
        double rows = 0.0;
        double nearer = 0.0;
        for (std::size_t n = 0; n < clusters.size(); ++n) {
            if (clusters[n] == own) {
                rows += 1.0;
                nearer += nearest_of(map, clusters, n, own) < nearest_of(map, clusters, n, other)
                              ? 1.0
                              : 0.0;
            }
        }
        shares += nearer / rows;
    }
    return shares / 2.0;
}

}  // namespace plain
