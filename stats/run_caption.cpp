#include "stats/run_caption.h"

#include <cstdio>

#include "stats/method.h"
#include "stats/option_effect.h"
#include "stats/option_texts.h"

namespace ovik {

std::vector<std::pair<std::string, std::string>> caption_parameters(
    const FitOptions& options,
    std::size_t rows,
    std::size_t columns,
    const FitReport& report,
    const std::string& transformations) {
    std::vector<std::pair<std::string, std::string>> parameters{
        {"Method", std::string(method_of(options).name) + " t-SNE"},
        {"Input", std::to_string(rows) + " rows, " + std::to_string(columns) + " columns"}};
    if (!transformations.empty()) {
        parameters.emplace_back("Transformations", transformations);
    }
    visit_fit_options(options, [&](const auto& option) {
        // The page of a run that was ended is that of a run with this last iteration.
        if (option.words.decides_states && is_told(options, option)) {
            parameters.emplace_back(option.words.title, value_text(option));
        }
    });
    char cost[64];
    std::snprintf(cost, sizeof cost, "%g", report.reached.cost);
    parameters.emplace_back("Last iteration", std::to_string(report.reached.iteration));
    parameters.emplace_back("Final cost", cost);
    return parameters;
}

}  // namespace ovik
