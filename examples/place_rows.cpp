#include <cmath>
#include <cstddef>
#include <cstdio>
#include <ovik/stats/fit.h>
#include <ovik/stats/row_placement.h>
#include <vector>

/// Embeds points of a spiral, then places two that lie between them.
int main() {
    const std::size_t rows = 60;
    std::vector<double> X;
    const auto add_point = [](std::vector<double>& values, double t) {
        values.push_back(t * std::cos(t));
        values.push_back(t * std::sin(t));
    };
    for (std::size_t n = 0; n < rows; ++n) {
        add_point(X, 0.2 * static_cast<double>(n));
    }
    ovik::FitOptions options;
    options.perplexity = 5.0;
    options.max_iter = 300;
    const ovik::Fit map = ovik::fit({X.data(), rows, 2}, options);  // scales X in place
    std::vector<double> further;
    add_point(further, 3.1);
    add_point(further, 9.5);
    const ovik::PlacedRows placed = ovik::place_rows({{X.data(), rows, 2},
                                                      map.report.scale,
                                                      {map.embedding.data(), rows, 2},
                                                      options.perplexity},
                                                     {further.data(), 2, 2});
    for (std::size_t n = 0; n < 2; ++n) {
        std::printf("%.2f, %.2f, nearest to row %u\n",
                    placed.embedding[2 * n],
                    placed.embedding[2 * n + 1],
                    placed.nearest[n]);
    }
}
