#include "stats/modularity.h"

#include <vector>

namespace ovik {

double modularity(const SparseMatrixView& graph,
                  std::span<const std::uint32_t> communities,
                  double resolution) {
    const std::size_t N = communities.size();
    std::vector<double> within(N);
    std::vector<double> strength(N);
    double total = 0.0;
    for (std::size_t n = 0; n < N; ++n) {
        const std::uint32_t community = communities[n];
        for (unsigned int i = graph.row_P[n]; i < graph.row_P[n + 1]; ++i) {
            const double weight = graph.val_P[i];
            within[community] += communities[graph.col_P[i]] == community ? weight : 0.0;
            strength[community] += weight;
            total += weight;
        }
    }
    if (total == 0.0) {
        return 0.0;
    }
    double sum = 0.0;
    for (std::size_t c = 0; c < N; ++c) {
        sum += within[c] - resolution * strength[c] * strength[c] / total;
    }
    return sum / total;
}

}  // namespace ovik
