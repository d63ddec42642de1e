#include <cstddef>
#include <cstdio>
#include <ovik/stats/sparse_affinities.h>
#include <vector>

/// Prints how similar points on a line are to their neighbours.
int main() {
    const std::vector<double> points = {0.0, 1.0, 2.0, 10.0, 11.0, 12.0};
    const std::size_t N = 6;
    const std::size_t dims = 1;
    const double perplexity = 1.5;
    const int neighbours = 2;  // three times the perplexity is usual where there are so many
    const ovik::SparseMatrix conditional =
        ovik::neighbour_affinities(points.data(), N, dims, perplexity, neighbours);
    const ovik::SparseMatrix symmetric = ovik::symmetrized(conditional.view(), N);
    for (std::size_t n = 0; n < N; ++n) {
        for (unsigned int i = symmetric.row_P[n]; i < symmetric.row_P[n + 1]; ++i) {
            std::printf("%zu and %u: %.3f\n", n, symmetric.col_P[i], symmetric.val_P[i]);
        }
    }
}
