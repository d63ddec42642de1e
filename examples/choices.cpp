#include <cmath>
#include <cstdio>
#include <exception>
#include <ovik/stats/engine.h>
#include <ovik/stats/preset.h>
#include <vector>

/// Embeds profiles by their shape, with the options that a preset stands for.
int main() {
    const std::size_t rows = 90;
    const std::size_t columns = 6;
    std::vector<double> profiles;
    for (std::size_t row = 0; row < rows; ++row) {
        for (std::size_t column = 0; column < columns; ++column) {
            const auto time = static_cast<double>(column + row % 3);
            profiles.push_back(std::sin(time) * static_cast<double>(row + 1) + 0.01 * time * time);
        }
    }
    ovik::Engine engine(ovik::refined_options(rows));
    engine.options.metric = ovik::MetricKind::Pearson;
    engine.options.perplexity = 10.0;
    try {
        engine.setInput(profiles, columns);
        const ovik::Embedding map = engine.run();
        std::printf("%zu rows, cost %.3f\n", map.points().rows, map.report().final_cost);
        engine.options.stop_lying_iter = 100;  // of the classic schedule
        static_cast<void>(engine.run());
    } catch (const std::exception& error) {
        std::printf("%s\n", error.what());  // names the option and the cure
    }
}
