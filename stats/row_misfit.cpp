#include "stats/row_misfit.h"

#include <algorithm>

#include "stats/panels.h"
#include "stats/point_columns.h"
#include "util/parallel.h"

namespace ovik {

void row_similarity_sums(const double* Y, std::size_t N, std::size_t dims, double* sums) {
    const PointColumns columns(Y, N, dims);
    const EmbeddingColumns embedding{columns.column(0), N, dims};
    const auto of_panel = pair_kernels(instruction_set()).similarity_sums;
    parallel_for_each(panel_count(N), kPanelGrain, [=](std::size_t panel) {
        double of_rows[kPanelWidth];
        of_panel(embedding, panel, of_rows);
        const std::size_t first = panel * kPanelWidth;
        std::copy_n(of_rows, std::min(kPanelWidth, N - first), sums + first);
    });
}

}  // namespace ovik
