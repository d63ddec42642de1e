#include <cmath>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <ovik/stats/fit.h>
#include <vector>

/// Embeds a small matrix without files, and prints where its first row lies and what the map costs.
int main() {
    const std::size_t rows = 90;
    const std::size_t columns = 3;
    std::vector<double> X(rows * columns);
    for (std::size_t i = 0; i < X.size(); ++i) {
        const std::size_t group = i / columns % 3;
        X[i] = static_cast<double>(10 * group) + std::sin(static_cast<double>(i));
    }
    ovik::FitOptions options;  // the defaults of the command
    options.perplexity = 10.0;
    options.max_iter = 500;
    ovik::FitHooks hooks;
    hooks.on_iteration = [](const ovik::FitState& state) {
        return state.reached.finite;  // false ends the fit here
    };
    try {
        const ovik::Fit map = ovik::fit({X.data(), rows, columns}, options, hooks);
        std::printf("first row at %g, %g\n", map.embedding[0], map.embedding[1]);
        std::printf("cost %.3f\n", map.report.final_cost);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());  // as where memory runs out
        return 1;
    }
}
