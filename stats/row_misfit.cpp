#include "stats/row_misfit.h"

#include "stats/point_columns.h"
#include "util/malloc_array.h"
#include "util/parallel.h"

namespace ovik {

void row_similarity_sums(const double* Y, std::size_t N, std::size_t dims, double* sums) {
    const PointColumns columns(Y, N, dims);
    const auto buffers = malloc_array<double>(static_cast<std::size_t>(worker_count(N)) * N);
    require_allocated(buffers);
    parallel_for(N, 1, [&](std::size_t worker, IndexRange rows) {
        double* const similarities = buffers.get() + worker * N;
        for (std::size_t n = rows.begin; n < rows.end; ++n) {
            columns.squaredDistancesFrom(n, similarities);
            for (std::size_t m = 0; m < N; ++m) {
                similarities[m] = 1.0 / (similarities[m] + 1.0);
            }
            similarities[n] = 0.0;
            double sum = 0.0;
            for (std::size_t m = 0; m < N; ++m) {
                sum += similarities[m];
            }
            sums[n] = sum;
        }
    });
}

}  // namespace ovik
