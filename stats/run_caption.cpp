#include "stats/run_caption.h"

#include <cstdio>

#include "stats/method.h"
#include "stats/option_effect.h"
#include "stats/option_texts.h"
#include "stats/seed_texts.h"

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
    char text[64];
    if (report.variance_kept) {
        std::snprintf(text, sizeof text, "%.1f %%", 100.0 * *report.variance_kept);
        parameters.emplace_back("Variance kept", text);
    }
    std::snprintf(text, sizeof text, "%g", report.reached.cost);
    parameters.emplace_back("Last iteration", std::to_string(report.reached.iteration));
    parameters.emplace_back("Final cost", text);
    if (options.stop_when > 0.0) {
        std::snprintf(text,
                      sizeof text,
                      "%g %% of the cost in 50 iterations%s",
                      100.0 * options.stop_when,
                      report.reached.settled ? "; ended by it" : "");
        parameters.emplace_back("Least gain", text);
    }
    if (report.seeds) {
        parameters.emplace_back("Seeds", seeds_text(*report.seeds));
        parameters.emplace_back("Cost by seed", seed_costs_text(*report.seeds));
        if (report.seeds->agreement) {
            parameters.emplace_back("Agreement of their maps",
                                    agreement_text(*report.seeds->agreement));
        }
    }
    return parameters;
}

}  // namespace ovik
