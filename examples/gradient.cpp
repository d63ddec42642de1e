#include <cstddef>
#include <cstdio>
#include <ovik/stats/barnes_hut_gradient.h>
#include <ovik/stats/normal_deviates.h>
#include <ovik/stats/sparse_affinities.h>
#include <vector>

/// Embeds points on a line by an optimiser of its own: plain gradient descent.
int main() {
    const std::size_t N = 60;
    const std::size_t dims = 2;
    const double theta = 0.5;
    std::vector<double> points(N);
    for (std::size_t n = 0; n < N; ++n) {
        points[n] = static_cast<double>(n);
    }
    const ovik::SparseMatrix conditional = ovik::neighbour_affinities(points.data(), N, 1, 5.0, 15);
    const ovik::SparseMatrix P = ovik::symmetrized(conditional.view(), N);
    const unsigned int entries = P.row_P[N];
    for (unsigned int i = 0; i < entries; ++i) {
        P.val_P[i] /= static_cast<double>(N);  // all entries now sum to 1
    }

    std::vector<double> Y(N * dims);
    std::vector<double> gradient(N * dims);
    ovik::draw_initial_embedding(Y.data(), Y.size());
    const double first_cost = ovik::barnes_hut_cost(P.view(), Y.data(), N, dims, theta);
    for (int iteration = 0; iteration < 1000; ++iteration) {
        ovik::barnes_hut_gradient(P.view(), Y.data(), N, dims, gradient.data(), theta);
        for (std::size_t i = 0; i < Y.size(); ++i) {
            Y[i] -= 10.0 * gradient[i];
        }
    }
    const double last_cost = ovik::barnes_hut_cost(P.view(), Y.data(), N, dims, theta);
    std::printf("cost %.2f, then %.2f\n", first_cost, last_cost);
}
