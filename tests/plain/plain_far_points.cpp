#include "tests/plain/plain_far_points.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "tests/plain/plain_mesh.h"

namespace plain {

namespace {

/// The coordinates of a dimension, from the least on.
std::vector<double> sorted_coordinates(const std::vector<double>& Y, std::size_t d) {
    std::vector<double> coordinates;
    for (std::size_t i = d; i < Y.size(); i += 2) {
        coordinates.push_back(Y[i]);
    }
    std::sort(coordinates.begin(), coordinates.end());
    return coordinates;
}

/// The box that leaves some points outside each side.
Box box_within(const std::vector<double>& Y, std::size_t outside) {
    Box box;
    for (std::size_t d = 0; d < 2; ++d) {
        const std::vector<double> coordinates = sorted_coordinates(Y, d);
        box.least[d] = coordinates[outside];
        box.greatest[d] = coordinates[coordinates.size() - 1 - outside];
    }
    return box;
}

double cells_under(const Box& box) {
    const double per_unit = mesh_under(box).cells_per_unit;
    double cells = 1.0;
    for (std::size_t d = 0; d < 2; ++d) {
        cells *= std::floor((box.greatest[d] - box.least[d]) * per_unit) + 6.0;
    }
    return cells;
}

/// The terms of a pair, with d the point less the far one: q^2 * d and q.
PairSums pair(const std::vector<double>& Y, std::size_t n, std::size_t far) {
    const double dx = Y[2 * n] - Y[2 * far];
    const double dy = Y[2 * n + 1] - Y[2 * far + 1];
    const double q = 1.0 / (1.0 + (dx * dx + dy * dy));
    return {{(q * q) * dx, (q * q) * dy}, q};
}

}  // namespace

bool is_inside(const Box& box, const std::vector<double>& Y, std::size_t n) {
    for (std::size_t d = 0; d < 2; ++d) {
        if (Y[2 * n + d] < box.least[d] || Y[2 * n + d] > box.greatest[d]) {
            return false;
        }
    }
    return true;
}

Box mesh_box(const std::vector<double>& Y) {
    const std::size_t N = Y.size() / 2;
    Box best = box_within(Y, 0);
    if (cells_under(best) <= 65536.0) {
        return best;
    }
    const auto price = [N](const Box& box) {
        const double cells = cells_under(box);
        const bool is_too_much = cells > 4194304.0 && cells > 16.0 * static_cast<double>(N);
        return is_too_much ? HUGE_VAL : 20.0 * cells;
    };
    double least_cost = price(best);
    for (std::size_t outside = 1; outside <= 64 && 4 * outside < N; outside *= 2) {
        const Box box = box_within(Y, outside);
        const double cost = price(box) + static_cast<double>(4 * outside * N);
        if (cost < least_cost) {
            best = box;
            least_cost = cost;
        }
    }
    const double all_pairs = static_cast<double>(N * N);
    return all_pairs < least_cost && all_pairs < 84e6 ? Box() : best;
}

PairSums from_far_points(const Box& box, const std::vector<double>& Y, std::size_t n) {
    std::vector<std::size_t> far;
    for (std::size_t i = 0; i < Y.size() / 2; ++i) {
        if (!is_inside(box, Y, i)) {
            far.push_back(i);
        }
    }
    std::sort(far.begin(), far.end(), [&](std::size_t a, std::size_t b) {
        return Y[2 * a] != Y[2 * b] ? Y[2 * a] < Y[2 * b] : Y[2 * a + 1] < Y[2 * b + 1];
    });
    PairSums sums;
    for (const std::size_t f : far) {
        const PairSums term = pair(Y, n, f);
        sums.force[0] += term.force[0];
        sums.force[1] += term.force[1];
        sums.q += term.q;
    }
    return sums;
}

PairSums on_far_point(const std::vector<double>& Y, std::size_t far) {
    const std::size_t N = Y.size() / 2;
    const int digits = static_cast<int>(std::log2(static_cast<double>(N))) + 1;
    const double unit = std::ldexp(1.0, -std::min(62 - digits, 50));
    std::int64_t sums[3] = {};
    for (std::size_t n = 0; n < N; ++n) {
        if (n != far) {
            const PairSums term = pair(Y, n, far);
            sums[0] += std::llrint(term.force[0] / unit);
            sums[1] += std::llrint(term.force[1] / unit);
            sums[2] += std::llrint(term.q / unit);
        }
    }
    return {{-static_cast<double>(sums[0]) * unit, -static_cast<double>(sums[1]) * unit},
            static_cast<double>(sums[2]) * unit};
}

}  // namespace plain
